#include "sim/sock.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int timeoutSeconds = -1;

void error(const char* text) { std::cerr << "Sock error: " << text << std::endl; }

char* copyText(const char* s) {
  if (!s) return nullptr;
  char* c = strdup(s);
  if (!c) {
    error("memory exhausted");
    std::abort();
  }
  return c;
}

socket_type* newRecord(const char* exhausted) {
  socket_type* s = static_cast<socket_type*>(std::calloc(1, sizeof(socket_type)));
  if (!s) {
    error(exhausted);
    std::abort();
  }
  s->fd = -1;
  return s;
}

// Waits until fd is ready for `events`; false with a message on timeout or error.
bool waitFor(int fd, short events, const char* what) {
  pollfd p{fd, events, 0};
  int ms = SOCK_timeout_seconds() * 1000;
  for (;;) {
    int r = poll(&p, 1, ms);
    if (r > 0) return true;
    if (r < 0 && errno == EINTR) continue;
    std::string text = std::string("no ") + what + " within " + std::to_string(SOCK_timeout_seconds()) +
                       " seconds";
    if (r < 0) text = std::string(what) + ": " + std::strerror(errno);
    error(text.c_str());
    return false;
  }
}

// A stream socket, and addr set to the family and the port; -1 with a message on failure.
int streamSocket(sockaddr_in& addr, int port) {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  if (fd < 0) {
    error("cannot create socket");
    return -1;
  }
  addr.sin_family = AF_INET;
  addr.sin_port = htons(static_cast<uint16_t>(port));
  return fd;
}

void recordPeer(socket_type* s, const sockaddr_in& peer) {
  std::free(s->hostname);
  std::free(s->hostaddress);
  const char* dotted = inet_ntoa(peer.sin_addr);
  hostent* h = gethostbyaddr(&peer.sin_addr, sizeof(peer.sin_addr), AF_INET);
  s->hostname = copyText(h ? h->h_name : dotted);
  s->hostaddress = copyText(dotted);
}

}  // namespace

int SOCK_timeout_seconds() {
  if (timeoutSeconds < 0) {
    const char* env = std::getenv("QUARN_SOCKET_TIMEOUT");
    int v = env ? std::atoi(env) : 0;
    timeoutSeconds = v > 0 ? v : 30;
  }
  return timeoutSeconds;
}

void SOCK_set_timeout_seconds(int seconds) { timeoutSeconds = seconds > 0 ? seconds : 30; }

void SOCK_init() {}

socket_type* SOCK_make_client(const char* host, int port) {
  hostent* h = host ? gethostbyname(host) : nullptr;
  if (!h || h->h_addrtype != AF_INET) {
    std::string text = std::string("unknown or misspelled host name `") + (host ? host : "") + "'";
    error(text.c_str());
    return nullptr;
  }
  sockaddr_in addr{};
  int fd = streamSocket(addr, port);
  if (fd < 0) return nullptr;
  std::memcpy(&addr.sin_addr, h->h_addr_list[0], sizeof(addr.sin_addr));
  // A connect that the peer neither accepts nor refuses ends with the layer's timeout.
  int flags = fcntl(fd, F_GETFL, 0);
  fcntl(fd, F_SETFL, flags | O_NONBLOCK);
  int r = connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof(addr));
  if (r < 0 && errno == EINPROGRESS) {
    int err = 0;
    socklen_t len = sizeof(err);
    if (waitFor(fd, POLLOUT, "connexion") && getsockopt(fd, SOL_SOCKET, SO_ERROR, &err, &len) == 0 &&
        err == 0)
      r = 0;
  }
  if (r < 0) {
    close(fd);
    error("cannot set connexion");
    return nullptr;
  }
  fcntl(fd, F_SETFL, flags);
  socket_type* s = newRecord("memory exausted");
  s->fd = fd;
  s->port = port;
  s->hostname = copyText(host);
  s->hostaddress = copyText(inet_ntoa(addr.sin_addr));
  return s;
}

socket_type* SOCK_make_server(int port) {
  sockaddr_in addr{};
  int fd = streamSocket(addr, port);
  if (fd < 0) return nullptr;
  addr.sin_addr.s_addr = htonl(INADDR_ANY);
  socklen_t len = sizeof(addr);
  if (bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)) < 0) {
    std::string text = "Cannot create socket: port " + std::to_string(port) + ": " + std::strerror(errno);
    close(fd);
    error(text.c_str());
    return nullptr;
  }
  if (getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len) < 0) {
    close(fd);
    error("cannot get socket name");
    return nullptr;
  }
  if (listen(fd, 5) < 0) {
    close(fd);
    error("Cannot create socket");
    return nullptr;
  }
  socket_type* s = newRecord("memory exhausted");
  s->fd = fd;
  s->port = ntohs(addr.sin_port);
  return s;
}

int SOCK_accept(socket_type* s) {
  if (!s || s->fd < 0) return 0;
  if (!waitFor(s->fd, POLLIN, "connexion")) return 0;
  sockaddr_in peer{};
  socklen_t len = sizeof(peer);
  int fd = accept(s->fd, reinterpret_cast<sockaddr*>(&peer), &len);
  if (fd < 0) {
    error("unable to make connexion");
    return 0;
  }
  close(s->fd);
  s->fd = fd;
  recordPeer(s, peer);
  return 1;
}

void SOCK_shutdown(socket_type* s, int free_it) {
  if (!s) return;
  if (s->fd >= 0) close(s->fd);
  s->fd = -1;
  if (free_it) {
    std::free(s->hostname);
    std::free(s->hostaddress);
    std::free(s);
  }
}

int SOCK_port_number(socket_type* s) { return s ? s->port : 0; }

int SOCK_read(socket_type* s, void* buf, int len) {
  if (!s || s->fd < 0) return -1;
  if (!waitFor(s->fd, POLLIN, "reply")) return -1;
  return static_cast<int>(recv(s->fd, buf, len, 0));
}

int SOCK_write(socket_type* s, const void* buf, int len) {
  if (!s || s->fd < 0) return -1;
  return static_cast<int>(send(s->fd, buf, len, MSG_NOSIGNAL));
}

char* SOCK_hostname(socket_type* s) { return s ? s->hostname : nullptr; }
char* SOCK_host_address(socket_type* s) { return s ? s->hostaddress : nullptr; }

socket_type* SOCK_dup(socket_type* s) {
  if (!s) return nullptr;
  int fd = dup(s->fd);
  if (fd < 0) {
    error("cannot duplicate socket");
    return nullptr;
  }
  socket_type* d = newRecord("memory exhausted");
  *d = *s;
  d->fd = fd;
  return d;
}

char* SOCK_local_address(socket_type* s) {
  if (!s) return nullptr;
  sockaddr_in addr{};
  socklen_t len = sizeof(addr);
  if (getsockname(s->fd, reinterpret_cast<sockaddr*>(&addr), &len) < 0) {
    error("cannot get socket name");
    return nullptr;
  }
  return inet_ntoa(addr.sin_addr);
}

// Client and server ends of a TCP stream between the simulator and its data server.
// Failures are reported on the error stream ("Sock error: ...") and give null or 0.
#pragma once

struct socket_type {
  int port;          // host order
  char* hostname;    // peer or server host name, or null; owned
  char* hostaddress; // dotted address, or null; owned
  int fd;            // -1 after shutdown
};

void SOCK_init();
socket_type* SOCK_make_client(const char* host, int port);
socket_type* SOCK_make_server(int port);
int SOCK_accept(socket_type* s);
void SOCK_shutdown(socket_type* s, int free_it);
int SOCK_port_number(socket_type* s);
int SOCK_read(socket_type* s, void* buf, int len);
int SOCK_write(socket_type* s, const void* buf, int len);
char* SOCK_hostname(socket_type* s);
char* SOCK_host_address(socket_type* s);
socket_type* SOCK_dup(socket_type* s);
char* SOCK_local_address(socket_type* s);

// Every wait of this layer (connect, accept, a read) ends after this many seconds with
// a "Sock error: ... within N seconds" line and a failure result. Starts from the
// environment variable QUARN_SOCKET_TIMEOUT, else 30.
int SOCK_timeout_seconds();
void SOCK_set_timeout_seconds(int seconds);

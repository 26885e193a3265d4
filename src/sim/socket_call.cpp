// One request of the simulator to its data server and its reply.
#include <cstring>
#include <iostream>

#include "util/compilation.h"
#include "sim/sock.h"

std::string Compilation::Socket_call(const std::string& buffer, socket_type* s) {
  int written = SOCK_write(s, buffer.data(), static_cast<int>(buffer.size()));
  std::cerr << "Socket_call buffer: " << buffer << std::endl;
  if (!s || written <= 0) return "";
  char reply[1024];
  std::memset(reply, 0, sizeof(reply));
  int count = SOCK_read(s, reply, 1023);
  if (count > 0) return std::string(reply);
  if (count == 0) std::cout << "connexion stopped by client " << std::endl;
  return "";
}

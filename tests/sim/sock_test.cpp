// The socket layer and one request of the simulator on loopback.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "util/compilation.h"
#include "sim/sock.h"

namespace {

// A server that answers each request with "<request>!" until the client closes.
void echoServer(socket_type* server, int replies) {
  ASSERT_EQ(SOCK_accept(server), 1);
  char buf[1024];
  for (int i = 0; i < replies; i++) {
    int n = SOCK_read(server, buf, 1023);
    if (n <= 0) break;
    std::string reply = std::string(buf, n) + "!";
    SOCK_write(server, reply.data(), int(reply.size()));
  }
  SOCK_shutdown(server, 1);
}

TEST(Sock, RequestAndReplyOnLoopback) {
  socket_type* server = SOCK_make_server(0);
  ASSERT_NE(server, nullptr);
  int port = SOCK_port_number(server);
  ASSERT_GT(port, 0);
  std::thread t(echoServer, server, 2);
  socket_type* client = SOCK_make_client("localhost", port);
  ASSERT_NE(client, nullptr);
  EXPECT_STREQ(SOCK_host_address(client), "127.0.0.1");
  testing::internal::CaptureStderr();
  EXPECT_EQ(Compilation::Socket_call("BOP,1,int, + ,2,int", client), "BOP,1,int, + ,2,int!");
  EXPECT_EQ(Compilation::Socket_call("CONST,zero", client), "CONST,zero!");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Socket_call buffer: BOP,1,int, + ,2,int\nSocket_call buffer: CONST,zero\n");
  // The server has ended after two replies: the closed socket gives the empty reply.
  t.join();
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(Compilation::Socket_call("UOP, -,3,int", client), "");
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "connexion stopped by client \n");
  SOCK_shutdown(client, 1);
  EXPECT_EQ(Compilation::Socket_call("MC,f,", nullptr), "");
}

TEST(Sock, PortInUseIsRefused) {
  socket_type* first = SOCK_make_server(0);
  ASSERT_NE(first, nullptr);
  testing::internal::CaptureStderr();
  EXPECT_EQ(SOCK_make_server(SOCK_port_number(first)), nullptr);
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(err.rfind("Sock error: Cannot create socket: port " + std::to_string(SOCK_port_number(first)), 0),
            0u)
      << err;
  SOCK_shutdown(first, 1);
}

TEST(Sock, WaitsEndWithTheTimeout) {
  SOCK_set_timeout_seconds(1);
  socket_type* server = SOCK_make_server(0);
  ASSERT_NE(server, nullptr);
  testing::internal::CaptureStderr();
  EXPECT_EQ(SOCK_accept(server), 0);  // nobody connects
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Sock error: no connexion within 1 seconds\n");
  // A peer that accepts (the backlog does) but never answers.
  socket_type* client = SOCK_make_client("127.0.0.1", SOCK_port_number(server));
  ASSERT_NE(client, nullptr);
  testing::internal::CaptureStderr();
  EXPECT_EQ(Compilation::Socket_call("CONST,c", client), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Socket_call buffer: CONST,c\nSock error: no reply within 1 seconds\n");
  SOCK_shutdown(client, 1);
  SOCK_shutdown(server, 1);
  SOCK_set_timeout_seconds(30);
}

TEST(Sock, BadHostsAndNullRecords) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(SOCK_make_client("no-such-host.invalid", 1), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Sock error: unknown or misspelled host name `no-such-host.invalid'\n");
  socket_type* server = SOCK_make_server(0);
  int port = SOCK_port_number(server);
  SOCK_shutdown(server, 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(SOCK_make_client("127.0.0.1", port), nullptr);  // nobody listens
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Sock error: cannot set connexion\n");
  EXPECT_EQ(SOCK_accept(nullptr), 0);
  EXPECT_EQ(SOCK_port_number(nullptr), 0);
  SOCK_shutdown(nullptr, 1);
}

}  // namespace

// The valued simulator's data server: a C++ program that answers the simulator's
// requests for the operations of the user's types over a TCP socket.
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "data/data.h"
#include "util/compilation.h"
#include "model/module.h"
#include "util/sim_support.h"
#include "targets/quarns_server.h"
#include "util/report.h"

namespace {

std::list<std::string> typeNames() {
  std::list<std::string> names;
  if (Compilation::GDataTypeTable)
    for (const auto& entry : Compilation::GDataTypeTable->getTypeTable()) names.push_back(entry.first);
  return names;
}

// The fixed socket part of the server and its main loop. Every wait has a limit: the
// simulator must connect within QUARN_SOCKET_TIMEOUT seconds (30) and send a request
// within QUARN_IDLE_TIMEOUT seconds (600); a lost connexion ends the server.
const char* const SocketBlock = R"QUARNS(
/* SOCKET SERVER */
/*===============*/
#define QUARNS_BUFFER_RECEPT_LENGTH 1024

#ifdef WIN32
#include <winsock.h>
#define QUARNS_INVALID_SOCKET INVALID_SOCKET
#define QUARNS_BAD_SOCKET(s) ((s) == QUARNS_INVALID_SOCKET)
typedef int socklen_t;
#else
#include <arpa/inet.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#define QUARNS_BAD_SOCKET(s) ((s) < 0)
#endif

string unsint2s(unsigned d) {
  string s;
  do {
    s.insert(s.begin(), char('0' + d % 10));
    d /= 10;
  } while (d != 0);
  return s;
}

static int quarns_wait_limit(const char* variable, int fallback) {
  const char* text = getenv(variable);
  int seconds = text ? atoi(text) : 0;
  return seconds > 0 ? seconds : fallback;
}

// True when fd can be read within the limit; false with a message otherwise.
static bool quarns_wait_readable(int fd, int seconds, const char* what) {
#ifdef WIN32
  return true;
#else
  pollfd p;
  p.fd = fd;
  p.events = POLLIN;
  p.revents = 0;
  for (;;) {
    int r = poll(&p, 1, seconds * 1000);
    if (r > 0) return true;
    if (r < 0 && errno == EINTR) continue;
    cerr << "no " << what << " within " << seconds << " seconds" << endl;
    return false;
  }
#endif
}

class sockserv {
 protected:
  void init() {
#ifdef WIN32
    WSADATA data;
    WSAStartup(MAKEWORD(1, 1), &data);
#endif
  }
  unsigned internal_portnumber;
  string internal_hostname;
  string internal_hostip;
  int internal_fd;

 public:
  sockserv(unsigned portnum) : internal_portnumber(portnum), internal_fd(-1) {
    init();
    internal_fd = socket(AF_INET, SOCK_STREAM, 0);
    if (QUARNS_BAD_SOCKET(internal_fd)) {
      cerr << "cannot create socket" << endl;
      exit(1);
    }
    struct sockaddr_in addr;
    memset(&addr, 0, sizeof(addr));
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_ANY);
    addr.sin_port = htons(portnum);
    if (bind(internal_fd, (struct sockaddr*)&addr, sizeof(addr)) < 0) {
      cerr << "Cannot create socket: port " << portnum << " is not free" << endl;
      exit(1);
    }
    socklen_t len = sizeof(addr);
    if (getsockname(internal_fd, (struct sockaddr*)&addr, &len) < 0) {
      cerr << "Cannot create socket" << endl;
      exit(1);
    }
    internal_portnumber = ntohs(addr.sin_port);
    if (listen(internal_fd, 5) < 0) {
      cerr << "Cannot create socket" << endl;
      exit(1);
    }
  }
  int accept_connection() {
    if (!quarns_wait_readable(internal_fd, quarns_wait_limit("QUARN_SOCKET_TIMEOUT", 30),
                              "connexion of the simulator quarns")) {
      cerr << "unable to make connexion" << endl;
      return 0;
    }
    struct sockaddr_in peer;
    socklen_t len = sizeof(peer);
    int fd = accept(internal_fd, (struct sockaddr*)&peer, &len);
    if (QUARNS_BAD_SOCKET(fd)) {
      cerr << "unable to make connexion" << endl;
      return 0;
    }
    close(internal_fd);
    internal_fd = fd;
    internal_hostip = inet_ntoa(peer.sin_addr);
    struct hostent* h = gethostbyaddr((const char*)&peer.sin_addr, sizeof(peer.sin_addr), AF_INET);
    internal_hostname = h ? h->h_name : internal_hostip;
    return 1;
  }
  int read(string& buffer) {
    buffer.clear();
    if (!quarns_wait_readable(internal_fd, quarns_wait_limit("QUARN_IDLE_TIMEOUT", 600),
                              "request from the simulator quarns"))
      exit(1);
    char data[QUARNS_BUFFER_RECEPT_LENGTH];
    int count = recv(internal_fd, data, QUARNS_BUFFER_RECEPT_LENGTH - 1, 0);
    if (count < 0) return count;
    data[count] = 0;
    buffer = data;
    return count;
  }
  int write(const string& buffer) {
    return send(internal_fd, buffer.data(), buffer.size(), 0);
  }
  unsigned portnumber() { return internal_portnumber; }
  string hostname() { return internal_hostname; }
  string hostip() { return internal_hostip; }
  int fd() { return internal_fd; }
};

int main() {
  sockserv socket_server(0);
  cerr << "allocated port number is " << socket_server.portnumber() << endl;
  char host[256];
  memset(host, 0, sizeof(host));
  gethostname(host, sizeof(host) - 1);
  string command = string("quarns ") + application + " " + host + " " +
                   unsint2s(socket_server.portnumber()) + " &";
  if (system(command.c_str()) != 0) cerr << "cannot start: " << command << endl;
  if (!socket_server.accept_connection()) return 1;
  cerr << "SOCKET accepted ..." << endl;
#ifndef WIN32
  int blocking = 0;
  ioctl(socket_server.fd(), FIONBIO, &blocking);
#endif
  for (;;) {
    string request;
    int count = socket_server.read(request);
    cerr << "reading SOCKET ..." << endl;
    if (count > 0) {
      cerr << "BUFFER RECEIVED:" << request << endl;
      string reply;
      try {
        reply = compute_data_value(request);
      } catch (...) {
        cerr << "Error: SIMUL_QNC:the data operation failed" << endl;
        reply = "--";
      }
      cerr << "TRANSMIT:" << reply << endl;
      socket_server.write(reply);
    } else if (count == 0) {
      return 0;
    } else if (errno != EINTR && errno != EAGAIN) {
      cerr << "connexion lost: " << strerror(errno) << endl;
      return 1;
    }
  }
}
)QUARNS";

}  // namespace

void Module::SIMUL_QNC_put_predef_func(std::ostream& out) {
  const std::list<std::string> types = typeNames();
  out << "using namespace std;\n\n"
      << "/* TYPE RELATED FUNCTIONS  */\n"
      << "/*=======================*/\n\n";
  out << "bool check_type(string type, string arg) {\n  bool result = false;\n";
  for (const std::string& t : types)
    out << "  if (type == \"" << t << "\") result = check_" << t << "(arg);\n";
  out << "  return result;\n}\n\n";
  out << "bool string_to_bool(string s) { return s == \"true\"; }\n\n";
  out << "/* Binary Operators */ \n";
  struct Op {
    const char* name;
    const char* op;
    bool boolean;
  };
  const Op ops[] = {{"binop_plus", "+", false},     {"binop_minus", "-", false},   {"binop_mult", "*", false},
                    {"binop_div", "/", false},      {"binop_equal", "==", true},   {"binop_notequal", "!=", true},
                    {"binop_inf", "<", true},       {"binop_infe", "<=", true},    {"binop_sup", ">", true},
                    {"binop_supe", ">=", true}};
  for (const Op& o : ops) {
    out << (o.boolean ? "bool " : "string ") << o.name << "(string type, string arg1, string arg2) {\n"
        << (o.boolean ? "  bool result = false;\n" : "  string result = \"--\";\n");
    for (const std::string& t : types) {
      out << "  if (type == \"" << t << "\") result = ";
      if (o.boolean)
        out << "string_to_" << t << "(arg1) " << o.op << " string_to_" << t << "(arg2);\n";
      else
        out << t << "_to_string(string_to_" << t << "(arg1) " << o.op << " string_to_" << t << "(arg2));\n";
    }
    out << "  return result;\n}\n\n";
  }
}

// User methods and constants are called with "::": the file uses namespace std, whose
// names (plus, max, ...) would otherwise make a user's name ambiguous.
void Module::SIMUL_QNC_put_method(std::ostream& out) {
  if (!Compilation::GDataMethodTable) return;
  out << "   //  METHOD CALL\n";
  out << "  if (v[0] == \"MC\") {\n";
  for (MethodDecl* m : *Compilation::GDataMethodTable->getMethodList()) {
    const std::string& r = m->getReturnType();
    out << "    if (v[1] == \"" << m->getName() << "\") {\n";
    std::list<std::string>* args = m->getArgTypes();
    if (!args || args->empty()) {
      out << "      data = " << r << "_to_string(::" << m->getName() << "());\n";
    } else {
      std::string checks, calls;
      int k = 2;
      for (const std::string& a : *args) {
        const std::string field = "v[" + std::to_string(k++) + "]";
        checks += (checks.empty() ? "" : " && ") + ("check_" + a + "(" + field + ")");
        calls += (calls.empty() ? "" : ", ") + ("string_to_" + a + "(" + field + ")");
      }
      out << "      if (v.size() > " << k - 1 << " && " << checks << ")\n"
          << "        data = " << r << "_to_string(::" << m->getName() << "(" << calls << "));\n"
          << "      else\n"
          << "        data = \"--\";\n";
    }
    out << "    }\n";
  }
  out << "  }\n";
}

void Module::SIMUL_QNC_put_binary_op(std::ostream& out) {
  out << "   //BINARY OP\n";
  out << "  if (v[0] == \"BOP\") {\n"
      << "    if (v.size() < 6 || v[2] != v[5]) {\n"
      << "      cerr << \"Error: Binary operator with arguments not having the same type\" << endl;\n"
      << "      data = \"--\";\n"
      << "    } else if (!(check_type(v[2], v[1]) && check_type(v[2], v[4]))) {\n"
      << "      data = \"--\";\n"
      << "    } else {\n";
  struct Row {
    const char* op;
    const char* call;
    bool boolean;
  };
  const Row rows[] = {{" + ", "binop_plus", false},     {" - ", "binop_minus", false},
                      {" * ", "binop_mult", false},     {" / ", "binop_div", false},
                      {" && ", "", true},               {" | ", "", true},
                      {" == ", "binop_equal", true},    {" != ", "binop_notequal", true},
                      {" < ", "binop_inf", true},       {" <= ", "binop_infe", true},
                      {" > ", "binop_sup", true},       {" >= ", "binop_supe", true}};
  bool first = true;
  for (const Row& r : rows) {
    out << "      " << (first ? "if" : "else if") << " (v[3] == \"" << r.op << "\")\n";
    first = false;
    std::string value;
    if (std::string(r.op) == " && ")
      value = "string_to_bool(v[1]) && string_to_bool(v[4])";
    else if (std::string(r.op) == " | ")
      value = "string_to_bool(v[1]) | string_to_bool(v[4])";
    else
      value = std::string(r.call) + "(v[2], v[1], v[4])";
    if (r.boolean)
      out << "        data = (" << value << ") ? \"true\" : \"false\";\n";
    else
      out << "        data = " << value << ";\n";
  }
  out << "      else {\n"
      << "        cerr << \"Error: SIMUL_QNC:unknown binary operator\" << endl;\n"
      << "        data = \"--\";\n"
      << "      }\n"
      << "    }\n"
      << "  }\n";
}

void Module::SIMUL_QNC_put_unary_op(std::ostream& out) {
  out << "   //UNARY OP\n";
  out << "  if (v[0] == \"UOP\") {\n"
      << "    if (v.size() < 4 || !check_type(v[3], v[2]))\n"
      << "      data = \"--\";\n"
      << "    else if (v[1] == \" -\")\n"
      << "      data = \" -\" + v[2];\n"
      << "    else if (v[1] == \" !\")\n"
      << "      data = string_to_bool(v[2]) ? \"false\" : \"true\";\n"
      << "    else {\n"
      << "      cerr << \"Error: SIMUL_QNC:unknown unary operator\" << endl;\n"
      << "      data = \"--\";\n"
      << "    }\n"
      << "  }\n";
}

void Module::SIMUL_QNC_put_const(std::ostream& out) {
  if (!Compilation::GDataConstantTable) return;
  out << "   //CONSTANTS\n";
  out << "  if (v[0] == \"CONST\") {\n"
      << "    data = \"--\";\n";
  if (Compilation::GDataConstantTable->getConstantList())
    for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) {
      if (c->getValueTable()) continue;
      out << "    if (v.size() > 1 && v[1] == \"" << c->getName() << "\") data = " << c->getType()
          << "_to_string(::" << c->getName() << ");\n";
    }
  out << "  }\n";
}

void Module::SIMUL_QNC_put(std::ostream& out) {
  const std::list<std::string> types = typeNames();
  out << "#include <iostream>\n"
      << "#include <vector>\n"
      << "#include <string>\n"
      << "#include <sys/ioctl.h>\n";
  for (const std::string& t : types) out << "#include \"quarns_data_user_" << t << ".h\"\n";
  out << "\n";
  out << "#define application \"" << name << ".qnc\"\n\n";
  SIMUL_QNC_put_predef_func(out);
  out << "string compute_data_value(const string & param) {\n"
      << "  vector<string> v;\n"
      << "  string field;\n"
      << "  for (char c : param) {\n"
      << "    if (c == ',') {\n"
      << "      v.push_back(field);\n"
      << "      field.clear();\n"
      << "    } else {\n"
      << "      field += c;\n"
      << "    }\n"
      << "  }\n"
      << "  v.push_back(field);\n"
      << "  string data;\n";
  SIMUL_QNC_put_method(out);
  SIMUL_QNC_put_binary_op(out);
  SIMUL_QNC_put_unary_op(out);
  SIMUL_QNC_put_const(out);
  out << "  return data;\n"
      << "}\n";
  out << SocketBlock;
}

void Module::save_quarns_code() {
  const std::string path = SimulationQncDir + "/quarns_" + name + ".cc";
  std::ofstream out(path);
  if (!out) {
    std::string text = "Cannot open quarns file:" + path;
    report_message(text);
    std::cerr << text << std::endl;
  }
  SIMUL_QNC_put(out);
}

std::string quarnsBuildCommand(const std::string& moduleName, const std::list<std::string>& typeNames) {
  std::string command = "g++ quarns_" + moduleName + ".cc ";
  for (const std::string& t : typeNames) command += "quarns_data_user_" + t + ".cc ";
  command += "-o quarns_" + moduleName;
  return command;
}

void runValuedSimulator(const std::string& name) {
  const std::list<std::string> types = typeNames();
  for (const std::string& t : types)
    for (const char* ext : {".h", ".cc"}) {
      std::string file = "quarns_data_user_" + t + ext;
      if (!std::ifstream(file)) {
        std::cerr << "quarnc: -valued_simul: missing user file " << file << " (check_" << t << ", string_to_"
                  << t << ", " << t << "_to_string and the methods of " << t << ")" << std::endl;
        std::exit(1);
      }
    }
  std::string build = quarnsBuildCommand(name, types);
  std::cerr << "calling: " << build << std::endl;
  if (quarn_sim_run(build) != 0) {
    std::cerr << "quarnc: -valued_simul: the server quarns_" << name << " does not build" << std::endl;
    std::exit(1);
  }
  std::string run = "./quarns_" + name;
  std::cerr << "calling: " << run << std::endl;
  if (quarn_sim_run(run) != 0) {
    std::cerr << "quarnc: -valued_simul: the server quarns_" << name << " ended with a failure" << std::endl;
    std::exit(1);
  }
}

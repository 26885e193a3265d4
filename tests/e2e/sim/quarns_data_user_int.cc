#include "quarns_data_user_int.h"

#include <cstdlib>

bool check_int(std::string s) {
  if (s.empty()) return false;
  char* end = nullptr;
  std::strtol(s.c_str(), &end, 10);
  return *end == 0;
}
int string_to_int(std::string s) { return int(std::strtol(s.c_str(), nullptr, 10)); }
std::string int_to_string(int v) { return std::to_string(v); }
// 999 stands for a fault of the user's code: the server dies.
int plus(int a, int b) {
  if (b == 999) std::abort();
  return a + b;
}

// One line of the Boolean expression reader over the variables a, b, c and d.
#include <cstdint>
#include <string>

#include "bdd/bddpp.h"
#include "fuzz_exit.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static bddpp_manager* manager = [] {
    auto* m = new bddpp_manager();
    for (const char* v : {"a", "b", "c", "d"}) m->New_var_last(v);
    return m;
  }();
  std::string text(reinterpret_cast<const char*>(data), size);
  fuzz::guarded([&] {
    int priority = 0, error = 0;
    manager->Parse_expression(text, &priority, &error);
  });
  return 0;
}

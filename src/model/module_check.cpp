// What the grammar can't see in a module: value types unknown to the data section.
#include <cstdlib>
#include <iostream>

#include "data/data.h"
#include "util/compilation.h"
#include "util/report.h"
#include "model/module.h"
#include "model/statement.h"
#include "signals/signal_manager.h"

namespace {

[[noreturn]] void typeFailure(const std::string& what, Signal* s, const std::string& type) {
  std::string text = what + s->getOriginalName() + "\": type \"" + type +
                     "\" is not defined in data section ...";
  report_message(text);
  std::cerr << text << std::endl;
  std::exit(1);
}

void checkSignal(Module* m, Signal* s, const std::string& what) {
  if (!s || !s->isValued(m)) return;
  std::string type = s->getValueType(m);
  if (!Compilation::GDataTypeTable->isDefined(type)) typeFailure(what, s, type);
}

void checkList(Module* m, std::list<Signal*>* l, const std::string& what) {
  if (!l) return;
  for (Signal* s : *l) checkSignal(m, s, what);
}

}  // namespace

void Module::complementary_check_syntax() {
  // Without a data section no type is known, and none is checked.
  if (Compilation::GDataTypeTable) {
    checkList(this, inputList, "ERROR about input valued signal \"");
    checkList(this, outputList, "ERROR about output valued signal \"");
    checkList(this, localList, "ERROR about local valued signal \"");
    checkList(this, dataSignalList, "ERROR about data signal \"");
    if (preList)
      for (memorizedSignal* p : *preList)
        checkSignal(this, p->getActual(), "ERROR about pre valued signal \"");
  }
  if (statement) statement->complementary_check_syntax();
}

// The encapsulated model for the automaton tool (.hov): the interface of a module as
// sections of a heading line and a closing ";".
#include <fstream>

#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/formats.h"

namespace {

bool has_id(long id) { return id >= 0; }

}  // namespace

void Module::ENCAPSULATEDHOV_put(std::ostream& out) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) return;
  auto wire = [&](long id) { return wood->Name_var_by_index(id); };
  const std::string& m = name;

  // Entries separated by "," and a line end; the last one ends its line.
  auto entries = [&](const std::string& fixed, std::list<Signal*>* signals, bool initial) {
    bool any = !fixed.empty();
    out << fixed;
    if (signals)
      for (Signal* s : *signals) {
        if (!s->hasOccurrence(wood)) continue;
        long over = initial ? s->getInitialOverBddId(this, wood) : s->getOverBddId(this, wood);
        if (!has_id(over)) continue;
        if (any) out << "," << "\n";
        any = true;
        out << wire(over) << ": " << (s->isValued(this) ? s->getValueType(this) : "pure");
        long under = initial ? s->getInitialUnderBddId(this, wood) : s->getUnderBddId(this, wood);
        if (!finalised && has_id(under)) out << "," << "\n" << wire(under) << ": pure";
      }
    if (any) out << "\n";
  };

  out << "Name: " << m << ": quarn_model:;" << "\n";
  out << "Type:" << "\n" << ";" << "\n" << "\n";
  out << "Input:" << "\n";
  entries(finalised ? "" : " _s_SET" + m + ", _s_RESET" + m, inputList, false);
  out << ";" << "\n" << "\n";
  out << "Sensor:" << "\n" << ";" << "\n" << "\n";
  out << "Output:" << "\n";
  entries(finalised ? "" : "_s_RTL" + m, outputList, true);
  out << ";" << "\n" << "\n";
  for (const char* heading : {"Local:", "Variable:", "Run:", "Function:", "Constant:", "Action:"})
    out << heading << "\n" << ";" << "\n" << "\n";
  out << "Encapsulation:" << "\n" << ";" << "\n";
}

void Module::printENCAPSULATEDHOV() {
  std::ofstream out(target_path(name, ".hov", false));
  ENCAPSULATEDHOV_put(out);
}

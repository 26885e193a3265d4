// The debug trace: a text dump of a compiled module (signals, wires, dated equations,
// bindings, data tables) written to a .dbg file and shown in the report display.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "targets/debug_trace.h"
#include "targets/formats.h"
#include "targets/report_display.h"
#include "targets/target_table.h"
#include "util/report.h"

namespace {

// Longest line the display takes; the character that would be the next one is dropped.
constexpr size_t kReportLineLength = 128;

void put_wire(std::ostream& out, Bddexpressionwood* wood, long id) {
  if (id == -1)
    out << "NODEF";
  else
    out << wood->Name_var_by_index(id) << "(" << id << ")";
}

void put_signals(Module& m, std::ostream& out, const char* title, std::list<Signal*>* signals) {
  if (!signals || signals->empty()) return;
  out << title << std::endl;
  for (Signal* s : *signals) {
    m.DEBUG_OneSignal_put(out, s);
    out << std::endl;
  }
}

}  // namespace

std::string debug_trace_path(const std::string& module) {
  const std::string& o = Module::OutputFile;
  std::string path = Module::OutputDir + "/" + (o.empty() ? module + ".dbg" : o);
  if (o.empty()) return path;
  for (const Target& t : targetTable()) {
    if (t.flag == &Compilation::DebugFlag) break;  // the stages before the trace
    if (!*t.flag || !t.write) continue;
    for (const std::string& file : t.files(module)) {
      std::error_code ec;
      if (std::filesystem::equivalent(file, path, ec)) return path + ".dbg";
    }
  }
  return path;
}

std::list<std::string> report_lines_of_file(const std::string& path) {
  std::list<std::string> lines{"#COLONNE 130 "};
  std::ifstream in(path, std::ios::binary);
  std::string line;
  bool open = false;  // characters read since the last end of line
  char c;
  while (in.get(c)) {
    if (c == '\n' || c == '\0' || line.size() == kReportLineLength) {
      lines.push_back(line);
      line.clear();
      open = false;
      continue;
    }
    line += c;
    open = true;
  }
  if (open) lines.push_back(line);
  return lines;
}

void Module::DEBUG_OneSignal_put(std::ostream& out, Signal* s) {
  Bddexpressionwood* wood = getBddWood();
  if (!s || !wood) return;
  bool wired = s->hasOccurrence(wood) && s->getSignalRef(this, wood);
  out << " " << (wired ? s->getName(this, wood) : s->getInternalName()) << ": ";
  put_wire(out, wood, wired ? s->getOverBddId(this, wood) : -1);
  out << ",";
  put_wire(out, wood, wired ? s->getUnderBddId(this, wood) : -1);
}

void Module::DEBUG_put(std::ostream& out) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood) {
    std::cerr << "end of debug put\n";
    return;
  }
  out << "module: " << name << std::endl;
  put_signals(*this, out, "inputs:", inputList);
  put_signals(*this, out, "outputs:", outputList);
  put_signals(*this, out, "data signals:", dataSignalList);
  put_signals(*this, out, "locals:", localList);
  if (registerList && !registerList->empty()) {
    out << "registers:" << std::endl;
    for (regclass* r : *registerList) out << *r << std::endl;
    out << std::endl;
  }
  if (preList && !preList->empty()) {
    out << "memorized signal" << std::endl;
    for (memorizedSignal* p : *preList) out << *p << std::endl;
    out << std::endl;
  }

  out << "external wires: " << std::endl;
  out << "SET: ";
  DEBUG_OneSignal_put(out, set);
  out << std::endl << "RESET: ";
  DEBUG_OneSignal_put(out, reset);
  out << std::endl << "RTL: ";
  DEBUG_OneSignal_put(out, rtl);
  out << std::endl;

  out << "equations" << std::endl;
  long level = getPertLevel();
  for (long d = 0; d <= level; d++) {
    out << "Early date: " << d << std::endl;
    for (long id : wood->getExpIds()) {
      Bddexpression* e = wood->exp_by_index(id);
      if (!e || e->getEarlyDate() != d) continue;
      out << id << ": " << *e << "  dates (" << e->getEarlyDate() << "," << e->getLateDate() << ")"
          << " aval ";
      // The equations that read this one's variable.
      out << "{";
      bool first = true;
      for (long r : wood->getReaders(id)) {
        out << (first ? "" : ",") << r;
        first = false;
      }
      out << "}" << std::endl;
    }
  }
  out << "end equations" << std::endl << std::endl;
  debugPrintBinding(out);

  if (Compilation::GDataTypeTable) {
    out << "data type:" << std::endl;
    for (const auto& entry : Compilation::GDataTypeTable->getTypeTable()) out << entry.first << std::endl;
  }
  if (Compilation::GDataMethodTable) {
    out << std::endl << "methods table:" << std::endl;
    Compilation::GDataMethodTable->C_put(out);
  }
  if (Compilation::GDataConstantTable) {
    out << std::endl << "constants table: " << std::endl;
    if (Compilation::GDataConstantTable->getConstantList())
      for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) {
        c->DEBUG_put(out, this);
        out << std::endl;
      }
  }
  std::cerr << "end of debug put\n";
}

void Module::printDebug() {
  const std::string path = debug_trace_path(name);
  std::ofstream out;
  if (!open_target(out, path, true)) return;
  DEBUG_put(out);
  out.close();

  // The display blocks until it is closed: a batch run or one without a display skips it.
  const char* display = std::getenv("DISPLAY");
  if (std::getenv("QUARN_BATCH") || !display || !*display) return;
  report_display(report_lines_of_file(path), "Debugging trace", "");
}

// The .qnc writer: one compiled module as text. Variables are written as file numbers
// given in the order of the sections; the reader creates its variables in the same order,
// so a file number is a variable id of the reading manager.
#include <algorithm>
#include <climits>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <vector>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "targets/formats.h"
#include "equations/Bddexpression.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "util/Stringpp.h"

namespace {

// The file numbering of the writing: corres by variable index, -1 for "not in the file".
class FileNumbers {
 public:
  explicit FileNumbers(long count) : corres(count > 0 ? count : 1, -1) {}
  void number(long index) {
    if (index >= 0 && index < long(corres.size())) corres[index] = next;
    // The reader creates a variable for every numbered name, in range or not.
    next++;
  }
  bool has(long index) const { return index >= 0 && index < long(corres.size()) && corres[index] >= 0; }
  long* data() { return corres.data(); }

 private:
  std::vector<long> corres;
  long next = 0;
};

// " name" and " : type" of a signal of the input, output or data section.
void putInterfaceSignal(std::ostream& out, Signal* s, Module* m, Bddexpressionwood* wood,
                        bool typed, bool refRequired) {
  SignalRef* ref = s->getSignalRef(m, wood);
  if (!ref && refRequired) Compilation::fatal(s->getOriginalName() + " has no signal reference!");
  out << " " << s->getOriginalName();
  if (typed && ref && ref->isValued()) out << " : " << ref->getType();
}

const char* languageLabel(int language) {
  switch (language) {
    case TLanguage::VHDL: return " :vhdl= ";
    case TLanguage::C: return " :c= ";
    case TLanguage::CSHARP: return " :csharp= ";
    case TLanguage::SMV: return " :nusmv= ";
    case TLanguage::LUSTRE: return " :lustre= ";
    case TLanguage::ESTEREL: return " :esterel= ";
    case TLanguage::DEFAULT: return " :default= ";
  }
  return nullptr;
}

// A value between double quotes: a double quote and a backslash are escaped by a
// backslash. A line end can't stand in the file.
bool quoted(const std::string& s, std::string& out) {
  out = "\"";
  for (char c : s) {
    if (c == '\n' || c == '\r') return false;
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  out += '"';
  return true;
}

void putConstant(std::ostream& out, ConstantDecl* c) {
  out << c->getType() << " " << c->getName();
  std::map<int, DataExpr*>* values = c->getValueTable();
  if (values) {
    for (const auto& [language, value] : *values) {
      const char* label = languageLabel(language);
      if (!label) {
        std::cerr << "****error:ConstantDecl:print: constant:" << c->getName()
                  << "   wrong target language" << std::endl;
        std::exit(1);
      }
      bool literal = value && value->isDataValue();
      if (language == TLanguage::DEFAULT && !literal) continue;
      out << label;
      if (!literal) continue;
      const std::string& text = static_cast<DataValue*>(value)->getText();
      std::string field;
      if (!quoted(text, field))
        Compilation::fatal("constant " + c->getName() + ": a value on several lines can't be saved in a compiled module");
      out << " " << field;
    }
  }
  out << ";" << std::endl;
}

}  // namespace

namespace {

void addSignalPairs(std::set<long>& set, Signal* s, Module* m, Bddexpressionwood* wood) {
  if (!s || !s->getSignalRef(m, wood)) return;
  if (s->isLocal() || s->isWire() || s->isOutput()) {
    for (long id : s->getAllBddId(m, wood)) set.insert(id);
  } else {
    set.insert(s->getInitialOverBddId(m, wood));
    set.insert(s->getInitialUnderBddId(m, wood));
  }
}

// Pairs (over, under; under -1 when the variable has no record) of the variables that
// the saved equations and bindings read beyond those of the signal lists, in index order.
std::list<std::pair<long, long>> unlistedVariables(Module* m, Bddexpressionwood* wood) {
  std::set<long> listed;
  for (auto* list : {m->getInputSignalList(), m->getOutputSignalList(), m->getDataSignalList(),
                     m->getLocalSignalList()})
    if (list)
      for (Signal* s : *list) addSignalPairs(listed, s, m, wood);
  if (m->getPreSignalList())
    for (memorizedSignal* p : *m->getPreSignalList()) addSignalPairs(listed, p->getPre(), m, wood);
  for (Signal* s : {m->getSet(), m->getReset(), m->getRtl()}) addSignalPairs(listed, s, m, wood);

  std::set<long> wanted;
  if (m->getDataTable())
    for (const auto& [name, b] : *m->getDataTable()) {
      addSignalPairs(wanted, b->getSignal(), m, wood);
      addSignalPairs(wanted, b->getClock(), m, wood);
    }
  std::set<long> known = listed;
  std::vector<long> work(listed.begin(), listed.end());
  work.insert(work.end(), wanted.begin(), wanted.end());
  known.insert(wanted.begin(), wanted.end());
  bddpp_manager* manager = wood->my_bdd_manager();
  while (!work.empty()) {
    long v = work.back();
    work.pop_back();
    Bddexpression* e = wood->exp_by_index(v);
    if (!e) continue;
    std::set<long> used = e->getDependances();
    if (e->my_bdd_exp().initialised()) {
      std::set<long> support = manager->set_of_index_depend_on(e->my_bdd_exp());
      used.insert(support.begin(), support.end());
    }
    for (long u : used)
      if (known.insert(u).second) work.push_back(u);
  }
  std::list<std::pair<long, long>> pairs;
  std::set<long> done = listed;
  for (long v : known) {
    if (done.count(v)) continue;
    SignalRef* ref = m->getSignalManager()->getSignalRefById(v, wood);
    long over = v, under = -1;
    if (ref) {
      over = ref->getOverBddId(wood);
      under = ref->getUnderBddId(wood);
    }
    if (done.count(over) || done.count(under)) {
      // Half of a pair that a list names: the whole record can't be made again.
      over = v;
      under = -1;
    }
    done.insert(over);
    done.insert(under);
    pairs.push_back({over, under});
  }
  return pairs;
}

}  // namespace

static void forgetEvaluationNumbers(DataExpr* e) {
  if (!e) return;
  e->DataExpr::setIndex(-1);
  if (auto* call = dynamic_cast<DataMethodCall*>(e)) {
    if (call->getArgList())
      for (DataExpr* a : *call->getArgList()) forgetEvaluationNumbers(a);
  } else if (auto* binary = dynamic_cast<DataBinaryOp*>(e)) {
    forgetEvaluationNumbers(binary->getLeft());
    forgetEvaluationNumbers(binary->getRight());
  } else if (auto* unary = dynamic_cast<DataUnaryOp*>(e)) {
    forgetEvaluationNumbers(unary->getOperand());
  }
}

// A comment runs to the line end: the documentation of an equation must stay on one line.
static std::string oneLine(std::string s) {
  for (char& c : s)
    if (c == '\n' || c == '\r') c = ' ';
  return s;
}

namespace {

// Locals, then the later occurrences of the outputs. The reader's grammar wants at least one
// name before the ";", so an empty section is not written at all.
void putLocals(std::ostream& out, Module* m, Bddexpressionwood* wood, FileNumbers& numbers, int forgetLocals) {
  std::ostringstream locals;
  bool any = false;
  auto putPair = [&](long over, long under) {
    numbers.number(over);
    numbers.number(under);
    any = true;
    if (forgetLocals) {
      locals << "  V" << numbers.data()[over];
      return;
    }
    SignalRef* ref = m->getSignalManager()->getSignalRefById(over, wood);
    if (!ref) Compilation::fatal(m->getSignalNameById(over) + " no signal reference ");
    locals << " " << ref->getCurrentName();
    if (ref->isValued()) locals << " : " << ref->getType();
  };
  if (m->getLocalSignalList())
    for (Signal* s : *m->getLocalSignalList()) {
      std::list<long> ids = s->getAllBddId(m, wood);
      for (auto it = ids.begin(); it != ids.end(); ++it) {
        long over = *it;
        if (++it == ids.end()) break;
        putPair(over, *it);
      }
    }
  if (m->getOutputSignalList())
    for (Signal* s : *m->getOutputSignalList()) {
      std::list<long> ids = s->getAllBddId(m, wood);
      if (ids.size() < 2) continue;
      auto it = std::next(ids.begin(), 2);
      for (; it != ids.end(); ++it) {
        long over = *it;
        if (++it == ids.end()) break;
        putPair(over, *it);
      }
    }
  // Variables that the saved equations or bindings read and that no list names (value
  // signals made for bindings, say) stand here too: otherwise the reader would not
  // create them, and their numbers would be -1, which reads as the terminal.
  for (const auto& [over, under] : unlistedVariables(m, wood)) {
    numbers.number(over);
    numbers.number(under);
    any = true;
    SignalRef* ref = m->getSignalManager()->getSignalRefById(over, wood);
    if (forgetLocals || !ref) {
      locals << "  V" << numbers.data()[over];
      continue;
    }
    locals << " " << ref->getCurrentName();
    if (ref->isValued()) locals << " : " << ref->getType();
  }
  if (any) out << "local:" << locals.str() << ";" << std::endl;
}

// The run's user types, methods and constants, when there are any.
void putDataSection(std::ostream& out) {
  if (Compilation::GDataTypeTable || Compilation::GDataMethodTable ||
      Compilation::GDataConstantTable) {
    out << "data:" << std::endl;
    if (Compilation::GDataTypeTable)
      Compilation::GDataTypeTable->print(out, false);
    else
      out << "type:" << std::endl << std::endl;
    if (Compilation::GDataMethodTable) Compilation::GDataMethodTable->print(out, false);
    if (Compilation::GDataConstantTable) {
      out << "constant:" << std::endl;
      // "$k" in the evaluation table is a constant index, and the reader numbers the
      // constants by their place in this section: numbered constants first, by index.
      std::vector<ConstantDecl*> ordered;
      if (std::list<ConstantDecl*>* list = Compilation::GDataConstantTable->getConstantList())
        ordered.assign(list->begin(), list->end());
      std::stable_sort(ordered.begin(), ordered.end(), [](ConstantDecl* a, ConstantDecl* b) {
        long ka = a->getConstantIndex() < 0 ? LONG_MAX : a->getConstantIndex();
        long kb = b->getConstantIndex() < 0 ? LONG_MAX : b->getConstantIndex();
        return ka < kb;
      });
      for (ConstantDecl* c : ordered) putConstant(out, c);
    }
    out << "end:" << std::endl << std::endl;
  }
}

}  // namespace

void Module::save() {
  if (!getBddWood() || !getBddWood()->my_bdd_manager() || !set || !reset || !rtl)
    Compilation::fatal("Module::save: module " + name + " is not compiled");
  const std::string path = target_path(name, ".qnc", true);
  if (std::ifstream(path).is_open())
    std::cerr << "File: " << path << " already exists. File rewrited." << std::endl;
  std::ofstream out(path);
  if (!out.is_open()) Compilation::fatal("Cannot open output file: " + path);
  QNC_put(out, 2, !Compilation::KeepWiresFlag, Compilation::ForgetLocalsNameFlag);
  out.close();
  if (!out) Compilation::fatal("Cannot write output file: " + path);
}

void Module::QNC_put(std::ostream& out, int, int, int forgetLocals) {
  Bddexpressionwood* wood = getBddWood();
  if (!wood || !wood->my_bdd_manager() || !set || !reset || !rtl) return;
  bddpp_manager* manager = wood->my_bdd_manager();
  FileNumbers numbers(manager->Nb_bdd_vars);

  out << "module: " << name << "  " << (reincarnate ? 1 : 0) << " " << finalised << std::endl;

  if (inputList && !inputList->empty()) {
    out << "input:";
    for (Signal* s : *inputList) {
      putInterfaceSignal(out, s, this, wood, true, true);
      numbers.number(s->getInitialOverBddId(this, wood));
      numbers.number(s->getInitialUnderBddId(this, wood));
    }
    out << " ;" << std::endl;
  }

  if (outputList && !outputList->empty()) {
    out << "output:";
    for (Signal* s : *outputList) {
      putInterfaceSignal(out, s, this, wood, true, false);
      std::list<long> ids = s->getAllBddId(this, wood);
      auto it = ids.begin();
      numbers.number(it != ids.end() ? *it++ : -1);
      numbers.number(it != ids.end() ? *it : -1);
    }
    out << " ;" << std::endl;
  }

  if (dataSignalList && !dataSignalList->empty()) {
    out << "data_signal:";
    for (Signal* s : *dataSignalList) {
      putInterfaceSignal(out, s, this, wood, false, true);
      numbers.number(s->getInitialOverBddId(this, wood));
      numbers.number(s->getInitialUnderBddId(this, wood));
    }
    out << " ;" << std::endl;
  }

  putLocals(out, this, wood, numbers, forgetLocals);

  if (registerList && !registerList->empty()) {
    out << "register:" << std::endl;
    for (regclass* r : *registerList) {
      if (forgetLocals)
        out << " V" << numbers.data()[r->next_var()->getInitialOverBddId(this, wood)] << " V"
            << numbers.data()[r->actual_var()->getInitialOverBddId(this, wood)] << " "
            << (r->is_initialy_true() ? 1 : 0) << ";" << std::endl;
      else
        out << *r << ";" << std::endl;
    }
    out << std::endl;
  }

  if (preList && !preList->empty()) {
    out << "memorized:" << std::endl;
    for (memorizedSignal* m : *preList) {
      out << *m << std::endl;
      // A pre signal already written by name is found by the reader, which then makes
      // no variable for it: number it only when it is new to the file.
      long over = m->getPre()->getInitialOverBddId(this, wood);
      if (!numbers.has(over)) {
        numbers.number(over);
        numbers.number(m->getPre()->getInitialUnderBddId(this, wood));
      }
    }
    out << std::endl;
  }

  out << "connexion: " << set->getName(this, wood) << " " << reset->getName(this, wood) << " "
      << rtl->getName(this, wood) << ";" << std::endl
      << std::endl;
  for (Signal* s : {set, reset, rtl}) {
    numbers.number(s->getInitialOverBddId(this, wood));
    numbers.number(s->getInitialUnderBddId(this, wood));
  }

  out << "equation_def:" << std::endl;
  wood->Put_qnc(out, numbers.data(), Compilation::DebugFlag);
  out << "end:" << std::endl << std::endl;

  if (dataTable) {
    // Evaluation numbers of constants belong to one file: a number left by an earlier
    // writing would point into another table.
    if (Compilation::GDataConstantTable && Compilation::GDataConstantTable->getConstantList())
      for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) c->setEvalIndex(-1);
    // So are those of the value trees: an argument still numbered by an earlier writing
    // would be written in place, and the table would no longer be flat.
    for (const auto& [bound, binding] : *dataTable) forgetEvaluationNumbers(binding->getValue());
    printBinding(out, numbers.data());
  }

  putDataSection(out);
}

void Bddexpressionwood::Put_qnc(std::ostream& out, const long* corres, int debug) {
  auto numbered = [&](long index) { return index >= 0 && index < nb_bdd_vars && corres[index] >= 0; };
  // A variable without a file number would be read back as the terminal (its number
  // would be -1): such an equation can't be saved.
  auto check = [&](long index, long used) {
    if (!numbered(used))
      Compilation::fatal("Bddexpressionwood::Put_qnc: equation of " + Name_var_by_index(index) +
                         " reads " + Name_var_by_index(used) + ", which has no place in the file");
  };
  std::list<bdd> rights;
  for (long index : exp_ids) {
    Bddexpression* e = exp_table[index];
    if (!e || !numbered(index)) continue;
    for (long d : e->dependances) check(index, d);
    if (!e->right.initialised()) continue;
    for (long d : manager->set_of_index_depend_on(e->right)) check(index, d);
    rights.push_back(e->right);
  }
  manager->Print_bdds_list_by_nodes_list(out, rights, corres);
  out << "expressions:" << std::endl;
  for (long index : exp_ids) {
    Bddexpression* e = exp_table[index];
    if (!e) continue;
    if (!numbered(index)) {
      if (debug) out << "// no generate expression about:" << index << ":" << oneLine(e->debug_in_string()) << std::endl;
      continue;
    }
    if (debug) out << "// expression " << index << ":" << oneLine(e->debug_in_string()) << std::endl;
    e->put_qnc(out, corres);
  }
}

void Bddexpression::put_qnc(std::ostream& out, const long* corres) {
  long index = getIndex();
  out << early_date << " " << getLateDate() << " " << corres[index] << ":";
  if (right.initialised())
    out << right.node()->print_number << "," << right.link_type();
  else
    out << "-3,-3";
  out << ",(";
  for (long d : dependances) out << corres[d] << " ";
  out << ")" << std::endl;
}

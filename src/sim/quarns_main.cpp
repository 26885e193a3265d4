// quarns: the valued simulator. It connects to the data server that started it, reads
// the compiled module, and runs it reaction by reaction: presence by the module's
// equations, values by requests to the server. Inputs come from a trace file
// (QUARNS_TRACE) or, under a display, from the input panel.
//   quarns FILE.qnc HOST PORT
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

#include <FL/Fl.H>

#include "bdd/bddpp.h"
#include "data/data.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "gui/formspp.h"
#include "model/module.h"
#include "signals/signal_manager.h"
#include "gui/sim_panels.h"
#include "sim/sock.h"
#include "sim/trace.h"

namespace {

const char* const Usage =
    "usage: quarns FILE.qnc HOST PORT\n"
    "  Runs the compiled module FILE.qnc with the data server listening at HOST:PORT.\n"
    "  QUARNS_TRACE=file   reactions to run (\"inputs / outputs\" lines, NAME=value)\n"
    "  QUARNS_OUTPUT=file  where the reactions are written (default: standard output)\n"
    "  Without a trace the input and output panels drive the run; they need a display.\n";

[[noreturn]] void fail(socket_type* sock, const std::string& text) {
  std::cerr << "quarns: " << text << std::endl;
  SOCK_shutdown(sock, 1);
  std::exit(1);
}

// The state of a run of the finalized module.
class ValuedRun {
 public:
  ValuedRun(Module* m, socket_type* s) : module(m), sock(s), wood(m->getBddWood()) {
    manager = wood->my_bdd_manager();
    wires.assign(wood->Nb_bdd_vars() + 1, 0);
    if (Compilation::GDataConstantTable && Compilation::GDataConstantTable->getConstantList())
      for (ConstantDecl* c : *Compilation::GDataConstantTable->getConstantList()) {
        DataExpr* e = nullptr;
        if (auto* table = c->getValueTable()) {
          auto it = table->find(TLanguage::DEFAULT);
          if (it == table->end()) it = table->find(TLanguage::C);
          if (it == table->end()) it = table->begin();
          if (it != table->end()) e = it->second;
        }
        constants[c->getName()] = {e, ""};
      }
    reset();
  }

  void reset() {
    if (module->getRegisterList())
      for (regclass* r : *module->getRegisterList()) {
        long a = r->actual_var()->getOverBddId(module, wood);
        if (a >= 0) wires[a] = r->is_initialy_true();
      }
    prePresent.clear();
    preValue.clear();
    if (module->getPreSignalList())
      for (memorizedSignal* p : *module->getPreSignalList()) {
        prePresent.push_back(0);
        preValue.push_back(initialValue(p->getInitialValue()));
      }
  }

  std::vector<Signal*> inputs() const { return list(module->getInputSignalList()); }
  std::vector<Signal*> outputs() const { return list(module->getOutputSignalList()); }

  // One reaction; gives the text "OUT OUT=value ...".
  std::string react(const std::vector<std::pair<std::string, std::string>>& given) {
    values.clear();
    for (long i = 0; i <= wood->Nb_bdd_vars(); i++) values[i] = "--";
    for (Signal* s : inputs()) {
      long over = s->getOverBddId(module, wood);
      if (over >= 0) wires[over] = 0;
    }
    for (const auto& [name, value] : given) {
      Signal* s = module->getInputSignal(name);
      long over = s ? s->getOverBddId(module, wood) : -1;
      if (over < 0) throw std::runtime_error(name + " is not an input of " + module->getName());
      wires[over] = 1;
      if (!value.empty()) values[s->getInitialOverBddId(module, wood)] = value;
    }
    int k = 0;
    if (module->getPreSignalList())
      for (memorizedSignal* p : *module->getPreSignalList()) {
        long over = p->getPre()->getOverBddId(module, wood);
        if (over >= 0) wires[over] = prePresent[k];
        values[p->getPre()->getInitialOverBddId(module, wood)] = preValue[k];
        k++;
      }
    manager->Bdd_global_clear_marks();
    for (long id : wood->earliest_sort()) {
      Bddexpression* e = wood->exp_by_index(id);
      if (!e) continue;
      SignalRef* ref = module->getSignalManager()->getSignalRefById(id, wood);
      const std::string signalName = ref ? ref->getCurrentName() : e->my_bddname();
      DataBinding* b = ref ? module->getBinding(signalName) : nullptr;
      if (e->getAbstraction()) {
        // A data condition: its value is also the wire the equations read.
        if (b) values[id] = evaluate(b->getValue());
        wires[id] = values[id] == "true" ? 1 : 0;
        continue;
      }
      wires[id] = eval(e->my_bdd_exp());
      if (b && b->getClock() && wires[id])
        values[b->getClock()->getInitialOverBddId(module, wood)] = evaluate(b->getValue());
    }
    std::string text;
    for (Signal* s : outputs()) {
      long over = s->getInitialOverBddId(module, wood);
      if (over < 0 || !wires[over]) continue;
      text += " " + s->getOriginalName();
      if (s->isValued(module)) text += "=" + values[over];
    }
    if (module->getRegisterList())
      for (regclass* r : *module->getRegisterList()) {
        long a = r->actual_var()->getOverBddId(module, wood);
        long n = r->next_var()->getOverBddId(module, wood);
        if (a >= 0 && n >= 0) wires[a] = wires[n];
      }
    k = 0;
    if (module->getPreSignalList())
      for (memorizedSignal* p : *module->getPreSignalList()) {
        Signal* a = p->getActual();
        long id = a->isInput() ? a->getOverBddId(module, wood) : a->getInitialOverBddId(module, wood);
        prePresent[k] = id >= 0 ? wires[id] : 0;
        preValue[k] = id >= 0 ? values[a->getInitialOverBddId(module, wood)] : "--";
        k++;
      }
    return text;
  }

  bool present(Signal* s) {
    long over = s->getInitialOverBddId(module, wood);
    return over >= 0 && wires[over];
  }

 private:
  static std::vector<Signal*> list(std::list<Signal*>* l) {
    return l ? std::vector<Signal*>(l->begin(), l->end()) : std::vector<Signal*>();
  }

  std::string evaluate(DataExpr* e) {
    std::string v = e->QUARNS_put(module, &constants, &values, wires.data(), sock);
    if (v.empty()) throw std::runtime_error("no reply from the data server: the connexion is closed");
    return v;
  }

  std::string initialValue(const std::string& name) {
    if (name.empty()) return "--";
    auto it = constants.find(name);
    if (it == constants.end()) return name;
    if (!it->second.second.empty()) return it->second.second;
    std::string v = it->second.first ? evaluate(it->second.first)
                                     : Compilation::Socket_call("CONST," + name, sock);
    it->second.second = v;
    return v;
  }

  int eval(const bdd& f) {
    if (!f.initialised()) return 0;
    int v = node(f.node());
    return f.link_type() == 1 ? v : !v;
  }

  int node(bdd_node* n) {
    if (n == manager->Bdd_node_one()) return 1;
    long index = manager->index_of_id[n->var_id];
    if (wires[index]) return node(n->then_node);
    int e = node(n->else_node);
    return n->else_link_type == 1 ? e : !e;
  }

  Module* module;
  socket_type* sock;
  Bddexpressionwood* wood;
  bddpp_manager* manager;
  std::vector<int> wires;
  DataConstantValueMap constants;
  DataSignalValueMap values;
  std::vector<int> prePresent;
  std::vector<std::string> preValue;
};

int runPanels(ValuedRun& run, std::ostream& out) {
  std::vector<Signal*> in = run.inputs(), outs = run.outputs();
  OFD_simulator_input inputs(400);
  for (Signal* s : in) inputs.add(s->getOriginalName());
  OFD_simulator_output outputs(400, "Outputs Pannel");
  for (Signal* s : outs) outputs.add(s->getOriginalName());
  std::vector<int> chosen(in.size() + 1, 0), shown(outs.size() + 1, 2);
  int n = 0;
  for (;;) {
    int init = 0, quit = 0;
    inputs.check(&init, &quit, chosen.data());
    if (quit) return inputs.timed_out() ? 1 : 0;
    if (init) {
      run.reset();
      continue;
    }
    std::vector<std::pair<std::string, std::string>> given;
    for (size_t i = 0; i < in.size(); i++)
      if (chosen[i]) given.emplace_back(in[i]->getOriginalName(), "");
    out << ++n << " /" << run.react(given) << std::endl;
    for (size_t i = 0; i < outs.size(); i++) shown[i] = run.present(outs[i]) ? 1 : 0;
    outputs.eval(shown.data());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << Usage;
    return 2;
  }
  const char* traceFile = std::getenv("QUARNS_TRACE");
  socket_type* sock = SOCK_make_client(argv[2], std::atoi(argv[3]));
  if (!sock) fail(nullptr, std::string("cannot reach the data server at ") + argv[2] + ":" + argv[3]);
  if (!traceFile && !quarn_display_reachable()) {
    std::cerr << Usage;
    fail(sock, "no trace (QUARNS_TRACE) and no display: nothing to run");
  }
  std::vector<TraceReaction> reactions;
  std::string error;
  if (traceFile && !read_trace(traceFile, reactions, error)) fail(sock, error);
  {
    std::ifstream probe(argv[1]);
    if (!probe) fail(sock, std::string("File: ") + argv[1] + " does not exist");
  }
  Module* loaded = Compilation::qnc_parse(argv[1], Compilation::EmptyString, nullptr, nullptr);
  if (!loaded) fail(sock, std::string("cannot read the compiled module ") + argv[1]);
  Module* module = new Module(*loaded);
  module->finalize(0);

  std::ofstream file;
  const char* outputFile = std::getenv("QUARNS_OUTPUT");
  if (outputFile) {
    file.open(outputFile);
    if (!file) fail(sock, std::string("cannot write ") + outputFile);
  }
  std::ostream& out = outputFile ? file : std::cout;
  ValuedRun run(module, sock);
  int status = 0;
  try {
    if (traceFile) {
      int n = 0;
      for (const TraceReaction& r : reactions) out << ++n << " /" << run.react(r.inputs) << std::endl;
    } else {
      status = runPanels(run, out);
    }
  } catch (const std::exception& e) {
    fail(sock, e.what());
  }
  SOCK_shutdown(sock, 1);
  return status;
}

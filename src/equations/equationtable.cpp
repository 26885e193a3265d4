#include "equations/equationtable.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <set>
#include <vector>

#include "bdd/bddpp.h"
#include "util/compilation.h"
#include "equations/Bddexpression.h"
#include "util/report.h"
#include "signals/expression.h"
#include "signals/owner.h"
#include "signals/signal_manager.h"
#include "util/Stringpp.h"

EquationTable::EquationTable(const std::string& n, Bddexpressionwood* w) : wood(w), name(n) {}

// ---- Writing equations -------------------------------------------------------------

void EquationTable::createEquation(Signal* s, Expression* e, Module* m) {
  createEquation(s, e, m, false);
}

void EquationTable::createEquation(Signal* s, Expression* e, Module* m, bool initial) {
  bddpp_manager* g = wood->my_bdd_manager();
  int overType = s->computeOverType();
  int underType = s->computeUnderType();
  bdd over = initial ? e->getInitialOverBdd(m, wood) : e->getOverBdd(m, wood);
  long oid = initial ? s->getInitialOverBddId(m, wood) : s->getOverBddId(m, wood);
  new Bddexpression(s->getInternalName(), wood, g->Bdd_var_by_index(oid), over, 0, 0, overType);
  if (s->isWire()) {
    // A wire is two-valued: its under is the negated over variable, whatever e says.
    bdd underVar = s->getUnderBdd(m, wood);
    bdd overVar = s->getOverBdd(m, wood);
    new Bddexpression(s->getInternalName(), wood, underVar, g->Bdd_not(overVar), 0, 0, underType);
    return;
  }
  bdd under = initial ? e->getInitialUnderBdd(m, wood) : e->getUnderBdd(m, wood);
  new Bddexpression(s->getInternalName(), wood, s->getUnderBdd(m, wood), under, 0, 0, underType);
}

// An emitted value is computed before the emission: the equation depends on every
// signal the value reads, and on the signal of each binding clocked by it.
static void addValueDependences(Bddexpression* eq, Signal* s, Module* m, Bddexpressionwood* w,
                                bool overSide) {
  for (Signal* d : *s->getValueDependencies()) {
    eq->add_specific_var_dependance(overSide ? d->getOverBddId(m, w) : d->getUnderBddId(m, w));
    std::vector<Signal*> clocked;
    if (!owner::clockedSignals(m, d, clocked)) {
      std::cerr << "****error:" << "signal:" << d->getInternalName()
                << "valued without data table for main module\n";
      continue;
    }
    for (Signal* bs : clocked)
      eq->add_specific_var_dependance(overSide ? bs->getOverBddId(m, w) : bs->getUnderBddId(m, w));
  }
}

void EquationTable::createUnifyEquation(Signal* s, Expression* e, Module* m, bool initial) {
  bdd over = initial ? e->getInitialOverBdd(m, wood) : e->getOverBdd(m, wood);
  long oid = initial ? s->getInitialOverBddId(m, wood) : s->getOverBddId(m, wood);
  Bddexpression* eq = wood->exp_by_index(oid);
  if (eq == nullptr) {
    std::cerr << "internal error 1 in createUnifyEquation()! about oid=" << oid << std::endl;
  } else {
    eq->append_or_exp(over);
    addValueDependences(eq, s, m, wood, true);
  }
  bdd under = initial ? e->getInitialUnderBdd(m, wood) : e->getUnderBdd(m, wood);
  long uid = s->getUnderBddId(m, wood);
  eq = wood->exp_by_index(uid);
  if (eq == nullptr) {
    std::cerr << "internal error 2 in createUnifyEquation()! about uid=" << uid << std::endl;
    return;
  }
  eq->append_or_exp(under);
  addValueDependences(eq, s, m, wood, false);
}

void EquationTable::createRegisterEquation(Signal* s, Module* m) {
  bddpp_manager* g = wood->my_bdd_manager();
  new Bddexpression(s->getInternalName(), wood, s->getUnderBdd(m, wood),
                    g->Bdd_not(s->getOverBdd(m, wood)), 0, 0, s->computeUnderType());
}

void EquationTable::createBottomEquation(Signal* s, Module* m) {
  bddpp_manager* g = wood->my_bdd_manager();
  new Bddexpression(s->getInternalName(), wood, g->Bdd_var_by_index(s->getOverBddId(m, wood)),
                    g->Bdd_zero(), 0, 0, s->computeOverType());
  new Bddexpression(s->getInternalName(), wood, g->Bdd_var_by_index(s->getUnderBddId(m, wood)),
                    g->Bdd_zero(), 0, 0, s->computeUnderType());
}

void EquationTable::createBottomEquation(Signal* s, Module* m, int occurrence) {
  SignalRef* ref = owner::signalManager(m)->getSignalRefByOccurrence(s, occurrence);
  if (ref == nullptr)
    Compilation::IllegalOperationException("createBottomEquation: no signalref" +
                                           s->getInternalName());
  bddpp_manager* g = wood->my_bdd_manager();
  new Bddexpression(s->getInternalName(), wood, g->Bdd_var_by_index(ref->getOverBddId(wood)),
                    g->Bdd_zero(), 0, 0, s->computeOverType());
  new Bddexpression(s->getInternalName(), wood, g->Bdd_var_by_index(ref->getUnderBddId(wood)),
                    g->Bdd_zero(), 0, 0, s->computeUnderType());
}

void EquationTable::replaceEquation(Signal* s, Signal* other, Module* m) {
  bddpp_manager* g = wood->my_bdd_manager();
  long oid = s->getOverBddId(m, wood);
  if (Bddexpression* eq = wood->exp_by_index(oid))
    eq->setBddExp(other->getOverBdd(m, wood));
  else
    new Bddexpression(s->getInternalName(), wood, g->Bdd_var_by_index(oid),
                      other->getOverBdd(m, wood), 0, 0, Compilation::STAT);
  long uid = s->getUnderBddId(m, wood);
  if (Bddexpression* eq = wood->exp_by_index(uid))
    eq->setBddExp(other->getUnderBdd(m, wood));
  else
    new Bddexpression(s->getInternalName(), wood, g->Bdd_var_by_index(uid),
                      other->getUnderBdd(m, wood), 0, 0, Compilation::VAL);
}

void EquationTable::cond(Signal* s, Module* m) {
  bdd c = s->getOverBdd(m, wood);
  auto narrow = [&](long id) {
    if (id < 0 || id >= wood->Nb_bdd_vars())
      Compilation::IllegalOperationException("EquationTable::id out of bounds");
    if (Bddexpression* eq = wood->exp_by_index(id)) eq->append_and_exp(c);
  };
  if (std::list<Signal*>* outputs = owner::outputSignals(m))
    for (Signal* o : *outputs) {
      narrow(o->getOverBddId(m, wood));
      narrow(o->getUnderBddId(m, wood));
    }
  if (std::list<Signal*>* locals = owner::localSignals(m))
    for (Signal* l : *locals)
      if (l->isLocal() && !l->isWire())
        for (long id : l->getAllBddId(m, wood)) narrow(id);
}

void EquationTable::learnSignal(Signal* s, Module* m) {
  SignalManager* sm = owner::signalManager(m);
  std::string current = s->getName(m);
  SignalRef* ref = sm->getSignalRefByName(current);
  if (ref == nullptr || ref->isDefinedWood(wood)) return;
  Bddexpressionwood* moduleWood = owner::bddWood(m);
  if (s->getOverBddId(m, moduleWood) == -1 || s->getUnderBddId(m, moduleWood) == -1)
    Compilation::IllegalOperationException(
        "EquationTable:learSignal: signal not defined in module wood: " + current);
  long over = wood->Index_new_var_last("_s_" + current);
  long under = wood->Index_new_var_last("_v_" + current);
  sm->extendSignalRef(over, under, ref, wood);
}

// ---- Occurrences -------------------------------------------------------------------

// Occurrence 0 is the or of all occurrences: _s_S = _s_S_1 + ... + _s_S_n.
void EquationTable::pre(Module* m) {
  SignalManager* sm = owner::signalManager(m);
  bddpp_manager* g = wood->my_bdd_manager();
  auto chainNewOccurrence = [&](Signal* s, Bddexpression* over0, Bddexpression* under0) {
    over0->append_or_exp(g->Bdd_var_by_index(s->getOverBddId(m, wood)));
    under0->append_or_exp(g->Bdd_var_by_index(s->getUnderBddId(m, wood)));
  };
  auto equationsOfOccurrence0 = [&](Signal* s) {
    SignalRef* ref0 = sm->getSignalRefByName(s->getInternalName());
    Bddexpression* over0 = nullptr;
    Bddexpression* under0 = nullptr;
    if (ref0 != nullptr && ref0->isDefinedWood(wood)) {
      over0 = wood->exp_by_index(ref0->getOverBddId(wood));
      under0 = wood->exp_by_index(ref0->getUnderBddId(wood));
    }
    return std::make_pair(over0, under0);
  };
  if (std::list<Signal*>* outputs = owner::outputSignals(m))
    for (Signal* s : *outputs) {
      if (!s->hasOccurrence(wood)) continue;
      s->newOccurrence(wood, m);
      createBottomEquation(s, m);
      auto [over0, under0] = equationsOfOccurrence0(s);
      if (over0 == nullptr) {
        std::cerr << "undefined equation for over wire of :" << s->getInternalName() << std::endl;
        exit(1);
      }
      if (under0 == nullptr) {
        std::cerr << "undefined equation for under wire of :" << s->getInternalName()
                  << std::endl;
        exit(1);
      }
      chainNewOccurrence(s, over0, under0);
    }
  if (std::list<Signal*>* locals = owner::localSignals(m))
    for (Signal* s : *locals) {
      if (s->isWire() || s->isValue() || !s->hasOccurrence(wood)) continue;
      auto [over0, under0] = equationsOfOccurrence0(s);
      if (over0 == nullptr || under0 == nullptr) continue;
      s->newOccurrence(wood, m);
      createBottomEquation(s, m);
      chainNewOccurrence(s, over0, under0);
    }
}

// ---- Branches ----------------------------------------------------------------------

EquationTable* EquationTable::duplicate(Module* m) {
  auto* copy = new Bddexpressionwood(wood);
  auto* table = new EquationTable(*Compilation::EmptyString, copy);
  owner::signalManager(m)->duplicate(copy, wood);
  auto carry = [&](Signal* s, const std::string& text) {
    if (s->getOccurrenceTable() == nullptr)
      Compilation::IllegalOperationException(text + s->getInternalName());
    if (s->hasOccurrence(wood)) s->extendCurrentOccurrenceTable(copy, (*s->getOccurrenceTable())[wood]);
  };
  const std::string noTable = "EquationTable::duplicate: no occurrence table for signal ";
  for (std::list<Signal*>* l : {owner::inputSignals(m), owner::outputSignals(m),
                                owner::dataSignals(m), owner::localSignals(m)})
    if (l != nullptr)
      for (Signal* s : *l) carry(s, noTable);
  if (std::list<memorizedSignal*>* pres = owner::preSignals(m))
    for (memorizedSignal* p : *pres)
      if (p->getPre() != nullptr)
        carry(p->getPre(), "EquationTable::duplicate: no occurrence table for signal");
  return table;
}

// The index of the variable of that name in w, made at the end if unknown.
static long variableHere(Bddexpressionwood* w, const std::string& name) {
  return SignalRef::computeId(name, w);
}

// The dependences of a concrete equation that its right member doesn't show: those
// createUnifyEquation added for emitted values, by name in e's wood.
static std::list<std::string> valueDependenceNames(Bddexpression* e) {
  std::list<std::string> names;
  Bddexpressionwood* w = e->getBddexpressionwood();
  std::set<long> shown = w->my_bdd_manager()->set_of_index_depend_on(e->my_bdd_exp());
  for (long d : e->getDependances())
    if (shown.count(d) == 0) names.push_back(w->Name_var_by_index(d));
  return names;
}

// Rebuilding a right member rebuilds the dependences from it: the value dependences
// are entered again.
static void restoreValueDependences(Bddexpression* e, const std::list<std::string>& names) {
  for (const std::string& n : names)
    e->add_specific_var_dependance(variableHere(e->getBddexpressionwood(), n));
}

void EquationTable::add(Bddexpression* e, Module* m) {
  Bddexpressionwood* source = e->getBddexpressionwood();
  bddpp_manager* here = wood->my_bdd_manager();
  bddpp_manager* there = source->my_bdd_manager();
  std::string bddName = e->my_bddname();
  bdd variable = Bdd_isomorphe_by_name(here, there, e->my_bdd_var());
  if (e->getAbstraction() != 0) {
    // Dependences are indexes of the source wood: carried over by variable name.
    std::set<long> deps;
    for (long d : e->getDependances()) deps.insert(variableHere(wood, there->Name_var_by_index(d)));
    auto* copy = new Bddexpression(here->Index_var_by_bdd(variable), wood, nullptr, &deps,
                                   e->getExpDef(), e->getEarlyDate(), e->getLateDate());
    copy->setName(e->getName());
    copy->setUserType(e->getUserType());
  } else {
    auto* copy = new Bddexpression(e->getName(), wood, variable,
                                   Bdd_isomorphe_by_name(here, there, e->my_bdd_exp()),
                                   e->getEarlyDate(), e->getLateDate(), e->getUserType());
    restoreValueDependences(copy, valueDependenceNames(e));
  }
  SignalManager* sm = owner::signalManager(m);
  std::string refName = my_after(bddName, 3);
  SignalRef* ref = sm->getSignalRefByName(refName);
  if (ref == nullptr)
    Compilation::IllegalOperationException("EquationTable::add: no Signal ref " + refName);
  if (!ref->isDefinedWood(wood)) {
    long over = variableHere(wood, "_s_" + ref->getCurrentName());
    long under = variableHere(wood, "_v_" + ref->getCurrentName());
    sm->extendSignalRef(over, under, ref, wood);
  }
  Signal* s = owner::signalFromInternalName(m, ref->getInternalName());
  if (s != nullptr && s->hasOccurrence(source))
    s->extendCurrentOccurrenceTable(wood, s->getCurrentOccurrence(source));
}

// What both branches drive is or'ed, over with over and under with under: true and
// nothing gives true, true and false gives error, nothing and nothing stays bottom.
void EquationTable::unify(EquationTable* other, Module* m) {
  Bddexpressionwood* ow = other->wood;
  wood->update_bdd_vars();
  ow->update_bdd_vars();
  long n = ow->Nb_bdd_vars();
  bddpp_manager* here = wood->my_bdd_manager();
  bddpp_manager* there = ow->my_bdd_manager();
  SignalManager* sm = owner::signalManager(m);
  for (long id = 0; id < n; id++) {
    if (id >= ow->Nb_bdd_vars())
      throw IllegalOperationException("EquationTable::id out of bounds", "unify");
    std::string varName = there->Name_var_by_index(id);
    std::string stripped = my_after(varName, 3);
    Bddexpression* eq = ow->exp_by_index(id);
    if (eq == nullptr) {
      Signal* s = owner::signal(m, stripped);
      if (s == nullptr || !s->hasOccurrence(ow)) continue;
      int current = s->getCurrentOccurrence(ow);
      s->extendCurrentOccurrenceTable(wood, current);
      SignalRef* ref = sm->getSignalRefByOccurrence(s, current);
      if (ref != nullptr && !ref->isDefinedWood(wood)) {
        long over = variableHere(wood, "_s_" + ref->getCurrentName());
        long under = variableHere(wood, "_v_" + ref->getCurrentName());
        sm->extendSignalRef(over, under, ref, wood);
      }
      continue;
    }
    if (eq->getAbstraction() != 0) {
      add(eq, m);
      continue;
    }
    long partner = here->Index_var_by_name(eq->my_bddname());
    Bddexpression* mine =
        partner >= 0 && partner < wood->Nb_bdd_vars() ? wood->exp_by_index(partner) : nullptr;
    if (mine == nullptr || mine->getAbstraction() != 0) {
      add(eq, m);
      continue;
    }
    std::list<std::string> values = valueDependenceNames(mine);
    values.splice(values.end(), valueDependenceNames(eq));
    mine->append_or_exp(Bdd_isomorphe_by_name(here, there, eq->my_bdd_exp()));
    restoreValueDependences(mine, values);
    Signal* s = owner::signal(m, stripped);
    if (s != nullptr && s->hasOccurrence(ow)) {
      int theirs = s->getCurrentOccurrence(ow);
      if (!s->hasOccurrence(wood) || s->getCurrentOccurrence(wood) < theirs)
        s->extendCurrentOccurrenceTable(wood, theirs);
    }
  }
  // The branch wood is gone: no signal may keep an occurrence for its address.
  for (std::list<Signal*>* l : {owner::inputSignals(m), owner::outputSignals(m),
                                owner::dataSignals(m), owner::localSignals(m)})
    if (l != nullptr)
      for (Signal* s : *l)
        if (s->getOccurrenceTable() != nullptr) s->getOccurrenceTable()->erase(ow);
  if (std::list<memorizedSignal*>* pres = owner::preSignals(m))
    for (memorizedSignal* p : *pres)
      if (p->getPre() != nullptr && p->getPre()->getOccurrenceTable() != nullptr)
        p->getPre()->getOccurrenceTable()->erase(ow);
  sm->deleteWood(ow);
  other->wood = nullptr;
}

Bddexpression* EquationTable::getBddExpression(long id) {
  if (id < 0 || id >= wood->Nb_bdd_vars())
    throw IllegalOperationException("EquationTable::id out of bounds", "getBddExpression");
  return wood->exp_by_index(id);
}

// ---- Dating and causality ----------------------------------------------------------

// An equation of a cycle report: its exact text up to kReportedEquationSize
// characters; a longer one is cut after its last whole term within that size,
// then "…" and the count of characters left out.
static const size_t kReportedEquationSize = 2000;

static std::string boundedText(const std::string& text) {
  if (text.size() <= kReportedEquationSize) return text;
  size_t cut = text.rfind(" + ", kReportedEquationSize);
  size_t equal = text.find(" = ");
  if (cut == std::string::npos || equal == std::string::npos || cut <= equal) cut = kReportedEquationSize;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;  // whole UTF-8 characters
  return text.substr(0, cut) + " … (" + std::to_string(text.size() - cut) + " characters left out)";
}

// Depth first from the last id of path; a dependence already on the path closes a
// cycle, and the equations of the path make the text. Ids whose whole reach was seen
// without a cycle are not walked again.
static std::string dependenceText(Bddexpressionwood* w, std::list<long>& path,
                                  std::set<long>& onPath, std::set<long>& dead) {
  long last = path.back();
  Bddexpression* eq = last >= 0 && last < w->Nb_bdd_vars() ? w->exp_by_index(last) : nullptr;
  if (eq == nullptr) return "";
  std::string text;
  for (long d : eq->getDependances()) {
    if (onPath.count(d) != 0) {
      std::string cycle;
      for (long id : path) {
        Bddexpression* e = id < w->Nb_bdd_vars() ? w->exp_by_index(id) : nullptr;
        if (e == nullptr)
          cycle += w->my_bdd_manager()->Name_var_by_index(id) + " = -\n\n";
        else
          cycle += boundedText(e->debug_in_string()) + "\n\n";
      }
      return cycle;
    }
    if (dead.count(d) != 0) continue;
    path.push_back(d);
    onPath.insert(d);
    std::string found = dependenceText(w, path, onPath, dead);
    if (found.empty()) dead.insert(d);
    text += found;
    onPath.erase(d);
    path.pop_back();
  }
  return text;
}

std::string EquationTable::computeDependence(std::list<long>& path) {
  if (path.empty()) return "";
  std::set<long> onPath(path.begin(), path.end());
  std::set<long> dead;
  return dependenceText(wood, path, onPath, dead);
}

static std::string cycleHeader(const std::string& module, Bddexpressionwood* w,
                               const std::list<long>& ids, const std::string& afterList) {
  std::string text = "ERROR in Module `" + module + "': detecting variables in a dependance cycle:\n";
  for (long id : ids) text += " " + w->my_bdd_manager()->Name_var_by_index(id) + "\n";
  return text + afterList + "when sorting equations: \n";
}

long EquationTable::callPert() {
  long level = wood->compute_dates();
  if (level < 0) Compilation::ModulePertFailureException();
  std::list<long> loop = wood->loop_detection();
  if (loop.empty()) return level;
  std::string report = cycleHeader(name, wood, loop, "\n\n");
  std::cerr << report << std::endl;
  std::list<long> path = loop;
  report += computeDependence(path);
  report_message(report);
  std::cerr << report << std::endl;
  exit(1);
}

long EquationTable::callPert(const std::list<long>& ids) {
  std::list<long> dated = ids;
  long level = wood->compute_dates(dated);
  if (level < 0) Compilation::ModulePertFailureException();
  std::list<long> loop = wood->loop_detection();
  if (loop.empty()) return level;
  std::string report = cycleHeader(name, wood, loop, "\n");
  std::list<long> path = loop;
  report += computeDependence(path);
  std::cerr << report << std::endl;
  report_big_message(report, 300);
  exit(1);
}

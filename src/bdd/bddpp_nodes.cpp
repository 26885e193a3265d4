// Node listings (the node table of compiled modules) and copies of functions
// between managers.
#include <iostream>

#include "bdd/bddpp.h"

// ---------------------------------------------------------------------------
// Node listings
// ---------------------------------------------------------------------------

void bddpp_manager::Print_bdd_node(std::ostream& out, bdd_node* node) { Print_bdd_node(out, node, nullptr); }

void bddpp_manager::Print_bdd_node(std::ostream& out, bdd_node* node, const long* corres) {
  if (node == nullptr) return;
  long index = Index_of_node(node);
  out << node->print_number << ": " << ((corres != nullptr && index >= 0) ? corres[index] : index) << ":"
      << (node->then_node ? node->then_node->print_number : -3L) << ":"
      << (node->else_node ? node->else_node->print_number : -3L) << "," << node->else_link_type;
}

void Print_bdd_node(std::ostream& out, bdd_node* node) {
  if (node == nullptr) return;
  node->manager()->Print_bdd_node(out, node);
}

// Each unmarked node once, then child before else child, as the numbering walk.
void bddpp_manager::Print_nodes_rec(std::ostream& out, bdd_node* n, const long* corres) {
  if (n == nullptr || n->mark) return;
  Print_bdd_node(out, n, corres);
  out << std::endl;
  n->mark = 1;
  if (n->then_node == nullptr) return;
  Print_nodes_rec(out, n->then_node, corres);
  Print_nodes_rec(out, n->else_node, corres);
}

void bddpp_manager::Print_bdd_by_nodes_list(std::ostream& out, const bdd& f) {
  Bdd_clear_marks(f.node());
  out << "nombre de noeud trouves: " << Bdd_incremental_id(f.node(), 0) << std::endl;
  Bdd_clear_marks(f.node());
  Print_nodes_rec(out, f.node(), nullptr);
}

void bddpp_manager::Print_bdd_by_nodes_list(std::ostream& out, const bdd& f, const long* corres) {
  Bdd_clear_marks(f.node());
  Bdd_incremental_id(f.node(), 0);
  Bdd_clear_marks(f.node());
  Print_nodes_rec(out, f.node(), corres);
}

void bddpp_manager::Print_bdds_list_by_nodes_list(std::ostream& out, const std::list<bdd>& list) {
  for (const bdd& f : list) Bdd_clear_marks(f.node());
  long count = 0;
  for (const bdd& f : list)
    if (f.node() != nullptr) count = Bdd_incremental_id(f.node(), count);
  out << "bdd_vars: " << std::endl;
  for (long id = 0; id < Nb_bdd_vars; ++id) out << (id ? "," : "") << names[id];
  out << ";" << std::endl;
  out << "bdd_nodes: " << std::endl;
  for (const bdd& f : list) Bdd_clear_marks(f.node());
  for (const bdd& f : list) Print_nodes_rec(out, f.node(), nullptr);
}

void bddpp_manager::Print_bdds_list_by_nodes_list(std::ostream& out, const std::list<bdd>& list,
                                                  const long* corres) {
  for (const bdd& f : list) Bdd_clear_marks(f.node());
  long count = 0;
  for (const bdd& f : list)
    if (f.node() != nullptr) count = Bdd_incremental_id(f.node(), count);
  out << count << std::endl;
  for (const bdd& f : list) Bdd_clear_marks(f.node());
  for (const bdd& f : list) Print_nodes_rec(out, f.node(), corres);
}

// ---------------------------------------------------------------------------
// Copies between managers
// ---------------------------------------------------------------------------

namespace {
enum CopyMode { SAME_INDEX = 0, TRANSLATED = 1, BY_NAME = 2 };
constexpr uint32_t OP_COPY = 6;
}  // namespace

// One call's copies are memoised in the source's cache under a call tag: a
// node met again would only rebuild nodes that the target already has.
bdd_node* Bdd_copy_node(bddpp_manager* target, bddpp_manager* source, bdd_node* n, const long* translation,
                        int mode, uint32_t tag) {
  if (source == nullptr || n == nullptr || n == source->one) return target->one;
  if (tag == 0) tag = source->New_call_tag(OP_COPY);
  bddpp_manager::cache_entry& hit = source->Cache_at(n->slot, 0, tag);
  if (hit.op == tag && hit.a == n->slot && hit.b == 0) return target->Node_at(hit.result);

  const long source_index = source->Level(n);
  long target_index = source_index;
  if (mode == TRANSLATED) {
    target_index = translation[source_index];
  } else if (mode == BY_NAME) {
    const std::string& name = source->names[n->var_id];
    long id = target->Id_var_by_name(name);
    if (id < 0) id = target->New_node_var_last(name)->var_id;
    target_index = target->index_of_id[id];
  }

  bdd_node* t = Bdd_copy_node(target, source, n->then_node, translation, mode, tag);
  bdd_node* e = Bdd_copy_node(target, source, n->else_node, translation, mode, tag);
  int link = 1;
  bdd_node* result;
  bool direct = mode == SAME_INDEX;
  if (!direct && t != nullptr && e != nullptr && t != target->one && e != target->one) {
    direct = target_index < target->Index_of_node(t) && target_index < target->Index_of_node(e);
  }
  if (direct) {
    result = target->Find_or_create_bdd_node(target_index, 1, n->else_link_type, t, e, link);
  } else {
    // (b and t) or (not b and e)
    bdd b = target->Bdd_var_by_index(target_index);
    if (b.node() == nullptr || t == nullptr || e == nullptr) {  // reported as the conjunction does, and stops
      int unused;
      target->Bdd_and(b.link_type(), b.node(), 1, t, unused);
      target->Bdd_and(-b.link_type(), b.node(), n->else_link_type, e, unused);
    }
    bddpp_manager::edge r;
    bddpp_manager::edge te = reinterpret_cast<bddpp_manager::edge>(t);
    bddpp_manager::edge ee = reinterpret_cast<bddpp_manager::edge>(e) | (n->else_link_type < 0 ? 1 : 0);
    if (b.node() == target->one)
      r = target->Ite(reinterpret_cast<bddpp_manager::edge>(target->one), te, ee);
    else
      r = target->Ite_on_var(b.node()->var_id, te, ee);
    result = bddpp_manager::Node(r);
    link = bddpp_manager::Link(r);
    ++result->refs;  // held for the caller
  }
  if (link != 1) {
    if (mode == BY_NAME)
      std::cerr << "erreur inattendue dans Bdd_isomorphe_by_name() !" << std::endl;
    else
      std::cerr << "erreur inattendue dans Bdd_isomorphe() avec correspondance!" << std::endl;
  }
  if (result != nullptr)
    source->Cache_at(n->slot, 0, tag) = bddpp_manager::cache_entry{n->slot, 0, tag, result->slot};
  return result;
}

bdd_node* Bdd_isomorphe(bddpp_manager* target, bddpp_manager* source, bdd_node* n) {
  if (source == nullptr) return target->one;
  return Bdd_copy_node(target, source, n, nullptr, SAME_INDEX, 0);
}

bdd Bdd_isomorphe(bddpp_manager* target, bddpp_manager* source, const bdd& f) {
  return bdd(target, f.link_type(), Bdd_isomorphe(target, source, f.node()));
}

bdd_node* Bdd_isomorphe(bddpp_manager* target, bddpp_manager* source, bdd_node* n, const long* translation) {
  if (source == nullptr) return target->one;
  return Bdd_copy_node(target, source, n, translation, TRANSLATED, 0);
}

bdd Bdd_isomorphe(bddpp_manager* target, bddpp_manager* source, const bdd& f, const long* translation) {
  if (f.node() == nullptr || source == nullptr || target == nullptr) {
    std::cerr << "ERROR: Bad call of Bdd_isomorphe() !" << std::endl;
    return target == nullptr ? bdd() : target->Bdd_zero();
  }
  return bdd(target, f.link_type(), Bdd_isomorphe(target, source, f.node(), translation));
}

bdd_node* Bdd_isomorphe_by_name(bddpp_manager* target, bddpp_manager* source, bdd_node* n) {
  if (source == nullptr) return target->one;
  return Bdd_copy_node(target, source, n, nullptr, BY_NAME, 0);
}

bdd Bdd_isomorphe_by_name(bddpp_manager* target, bddpp_manager* source, const bdd& f) {
  return bdd(target, f.link_type(), Bdd_isomorphe_by_name(target, source, f.node()));
}

// Boolean operations. Conjunction is the one recursive connective (disjunction
// is its dual through the links); the others are built from it in the fixed
// order that decides which nodes are created first. Memoisation never changes
// that order: a result found in the cache is a node that a recomputation
// would only have found again in the unique table.
#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "bdd/bddpp.h"

namespace {

[[noreturn]] void stop() {
  std::cerr.flush();
  std::exit(1);
}

enum : uint32_t { OP_AND = 1, OP_CUBE = 2, OP_COMPOSE = 3, OP_REPLACE = 4, OP_KEEP = 5, OP_EVAL = 7 };

void null_and(const bdd_node* x, const bdd_node* y) {
  if (x != nullptr && y != nullptr) return;
  std::cerr << "ERROR: call bddpp_manager::Bdd_and() with null reference" << std::endl
            << "Bdd_and(" << static_cast<const void*>(x) << "," << static_cast<const void*>(y) << ")"
            << std::endl;
  stop();
}

void null_or(const bdd_node* x, const bdd_node* y) {
  if (x != nullptr && y != nullptr) return;
  std::cerr << "ERROR: call bddpp_manager::Bdd_or() with null reference" << std::endl;
  stop();
}

}  // namespace

// ---------------------------------------------------------------------------
// Conjunction and disjunction
// ---------------------------------------------------------------------------

bddpp_manager::edge bddpp_manager::And_rec(edge x, edge y) {
  bdd_node* xn = Node(x);
  bdd_node* yn = Node(y);
  const edge zero = reinterpret_cast<edge>(one) | 1;
  if (xn == one) return (x & 1) ? zero : y;
  if (yn == one) return (y & 1) ? zero : x;
  if (xn == yn) return x == y ? x : zero;

  // The recursion is symmetric in its operands, so one entry serves both orders.
  uint32_t a = Code(x), b = Code(y);
  if (a > b) std::swap(a, b);
  edge r;
  if (Cache_get(a, b, OP_AND, r)) return r;

  const long ix = Level(xn), iy = Level(yn);
  const edge xs = x & 1, ys = y & 1;
  edge t, e;
  long var;
  if (ix < iy) {
    var = xn->var_id;
    t = And_rec(reinterpret_cast<edge>(xn->then_node) | xs, y);
    e = And_rec(reinterpret_cast<edge>(xn->else_node) | (xs ^ (xn->else_link_type < 0)), y);
  } else if (ix == iy) {
    var = xn->var_id;
    t = And_rec(reinterpret_cast<edge>(xn->then_node) | xs, reinterpret_cast<edge>(yn->then_node) | ys);
    e = And_rec(reinterpret_cast<edge>(xn->else_node) | (xs ^ (xn->else_link_type < 0)),
                reinterpret_cast<edge>(yn->else_node) | (ys ^ (yn->else_link_type < 0)));
  } else {
    var = yn->var_id;
    t = And_rec(reinterpret_cast<edge>(yn->then_node) | ys, x);
    e = And_rec(reinterpret_cast<edge>(yn->else_node) | (ys ^ (yn->else_link_type < 0)), x);
  }
  r = (t == e) ? t : Mk(var, t, e);
  Cache_put(a, b, OP_AND, r);
  return r;
}

void bddpp_manager::Check_and_result(const char* op, edge r, edge x, edge y) {
  bdd_node* rn = Node(r);
  if (rn == one) return;
  long ir = Level(rn), ix = Index_of_node(Node(x)), iy = Index_of_node(Node(y));
  if (ir < ix && ir < iy) And_internal_error(op, r, x, y);
}

void bddpp_manager::And_internal_error(const char* op, edge r, edge x, edge y) {
  const bool is_and = op[0] == 'a';
  long ir = Index_of_node(Node(r)), ix = Index_of_node(Node(x)), iy = Index_of_node(Node(y));
  if (is_and)
    std::cerr << "INTERNAL ERROR in Bdd_and(): result has an index (" << ir << ") less than the operands (" << ix
              << " ) of x  and (" << iy << ") of y!" << std::endl;
  else
    std::cerr << "INTERNAL ERROR in Bdd_or(): result has an index (" << ir << ") less than the operands (" << ix
              << ") and (" << iy << ")!" << std::endl;
  Bdd_global_clear_marks();
  long next = Bdd_incremental_id(Node(x), 0);
  next = Bdd_incremental_id(Node(y), next);
  Bdd_incremental_id(Node(r), next);
  Bdd_global_clear_marks();
  std::cerr << std::endl << std::endl;
  std::cerr << "param1= " << ((x & 1) ? "NOT" : "") << std::endl;
  Print_bdd_structure_loc(std::cerr, 5, Node(x));
  if (is_and && !Node(x)->is_correct()) std::cerr << "BE CAREFUL: x is not correct!" << std::endl;
  std::cerr << "param2=" << ((y & 1) ? "NOT" : "") << std::endl;
  Print_bdd_structure_loc(std::cerr, 5, Node(y));
  if (is_and && !Node(y)->is_correct()) std::cerr << "BE CAREFUL: y is not correct!" << std::endl;
  std::cerr << "result=" << std::endl;
  Print_bdd_structure_loc(std::cerr, 5, Node(r));
  Bdd_stats(std::cerr);
  stop();
}

bdd_node* bddpp_manager::Bdd_and(int link_x, bdd_node* x, int link_y, bdd_node* y, int& result_link) {
  null_and(x, y);
  edge ex = Edge(link_x, x), ey = Edge(link_y, y);
  edge r = And_rec(ex, ey);
  Check_and_result("and", r, ex, ey);
  result_link = Link(r);
  return Node(r);
}

bdd_node* bddpp_manager::Bdd_or(int link_x, bdd_node* x, int link_y, bdd_node* y, int& result_link) {
  null_or(x, y);
  edge ex = Edge(link_x, x), ey = Edge(link_y, y);
  edge r = Or(ex, ey);
  Check_and_result("or", r, ex, ey);
  result_link = Link(r);
  return Node(r);
}

bdd bddpp_manager::Bdd_and(const bdd& f, const bdd& g) {
  null_and(f.node(), g.node());
  edge x = Edge(f.link_type(), f.node()), y = Edge(g.link_type(), g.node());
  edge r = And_rec(x, y);
  Check_and_result("and", r, x, y);
  return Wrap(r);
}

bdd bddpp_manager::Bdd_or(const bdd& f, const bdd& g) {
  null_or(f.node(), g.node());
  edge x = Edge(f.link_type(), f.node()), y = Edge(g.link_type(), g.node());
  edge r = Or(x, y);
  Check_and_result("or", r, x, y);
  return Wrap(r);
}

bdd bddpp_manager::Bdd_nand(const bdd& f, const bdd& g) { return Bdd_not(Bdd_and(f, g)); }
bdd bddpp_manager::Bdd_nor(const bdd& f, const bdd& g) { return Bdd_not(Bdd_or(f, g)); }

bdd bddpp_manager::Bdd_xor(const bdd& f, const bdd& g) {
  null_and(f.node(), g.node());
  edge x = Edge(f.link_type(), f.node()), y = Edge(g.link_type(), g.node());
  edge a = And_rec(x, y ^ 1);
  edge b = And_rec(x ^ 1, y);
  return Wrap(Or(a, b));
}

bdd bddpp_manager::Bdd_xnor(const bdd& f, const bdd& g) { return Bdd_not(Bdd_xor(f, g)); }
bdd bddpp_manager::Bdd_eq(const bdd& f, const bdd& g) { return Bdd_xnor(f, g); }

bdd bddpp_manager::Bdd_implication(const bdd& f, const bdd& g) { return Bdd_or(Bdd_not(f), g); }

bddpp_manager::edge bddpp_manager::Ite(edge f, edge g, edge h) {
  edge a = And_rec(f, g);
  edge b = And_rec(f ^ 1, h);
  return Or(a, b);
}

// Ite on a positive variable above both branches (terminals included): the
// same three steps, (x and t), (not x and e) and their disjunction, make the
// same nodes in the same order, so they are taken directly.
bddpp_manager::edge bddpp_manager::Ite_var(long var_id, edge t, edge e) {
  const edge zero = reinterpret_cast<edge>(one) | 1;
  const edge x = reinterpret_cast<edge>(var_nodes[var_id]);
  edge a, b;
  if (Node(t) == one)
    a = (t & 1) ? zero : x;
  else
    a = Mk(var_id, t, zero);
  if (Node(e) == one)
    b = (e & 1) ? zero : (x | 1);
  else
    b = Mk(var_id, zero, e);
  if (a == zero) return b;
  if (b == zero) return a;
  if (Node(a) == Node(b)) return a == b ? a : reinterpret_cast<edge>(one);
  return t == e ? t : Mk(var_id, t, e);
}

bddpp_manager::edge bddpp_manager::Ite_on_var(long var_id, edge t, edge e) {
  const long level = index_of_id[var_id];
  const bool above_t = Node(t) == one || level < Level(Node(t));
  const bool above_e = Node(e) == one || level < Level(Node(e));
  if (above_t && above_e) return Ite_var(var_id, t, e);
  return Ite(reinterpret_cast<edge>(var_nodes[var_id]), t, e);
}

bdd bddpp_manager::Bdd_ite(const bdd& f, const bdd& g, const bdd& h) {
  null_and(f.node(), g.node());
  null_and(f.node(), h.node());
  return Wrap(Ite(Edge(f.link_type(), f.node()), Edge(g.link_type(), g.node()), Edge(h.link_type(), h.node())));
}

bdd bddpp_manager::Bdd_ite(int link, long index, const bdd& g, const bdd& h) {
  bdd_node* selector;
  if (index == -1) {
    selector = one;
  } else if (index < 0 || index >= Nb_bdd_vars) {
    std::cerr << "ERROR: abnormal index in bddpp_manager::Bdd_ite()" << std::endl;
    selector = nullptr;
  } else {
    selector = var_nodes[id_of_index[index]];
  }
  null_and(selector, g.node());
  null_and(selector, h.node());
  return Wrap(Ite(Edge(link, selector), Edge(g.link_type(), g.node()), Edge(h.link_type(), h.node())));
}

int bddpp_manager::Bdd_equiv(const bdd& f, const bdd& g) { return Bdd_is_one_tautologic(Bdd_xnor(f, g)) ? 1 : 0; }
int bddpp_manager::Bdd_imply(const bdd& f, const bdd& g) {
  return Bdd_is_one_tautologic(Bdd_implication(f, g)) ? 1 : 0;
}
int bddpp_manager::Bdds_excl(const bdd& f, const bdd& g) { return Bdd_is_zero_tautologic(Bdd_and(f, g)) ? 1 : 0; }
int bddpp_manager::Bdds_exclude(const bdd& f, const bdd& g) { return Bdds_excl(f, g); }

int bddpp_manager::Bdd_is_cube(const bdd& f) {
  edge x = Edge(f.link_type(), f.node());
  for (;;) {
    bdd_node* n = Node(x);
    if (n == nullptr || n == one) return 1;
    edge t = reinterpret_cast<edge>(n->then_node) | (x & 1);
    edge e = reinterpret_cast<edge>(n->else_node) | ((x & 1) ^ (n->else_link_type < 0));
    bool t_zero = Node(t) == one && (t & 1);
    bool e_zero = Node(e) == one && (e & 1);
    if (t_zero)
      x = e;
    else if (e_zero)
      x = t;
    else
      return 0;
  }
}

// ---------------------------------------------------------------------------
// Cofactors and substitutions
// ---------------------------------------------------------------------------

bdd bddpp_manager::Bdd_then(const bdd& f) {
  bdd_node* n = f.node();
  if (n == nullptr || n == one) {
    std::cerr << "ERROR in Bdd_then(): calling with a tautologic function!" << std::endl;
    stop();
  }
  return bdd(this, f.link_type(), n->then_node);
}

bdd bddpp_manager::Bdd_else(const bdd& f) {
  bdd_node* n = f.node();
  if (n == nullptr || n == one) {
    std::cerr << "ERROR in Bdd_else(): calling with a tautologic function!" << std::endl;
    stop();
  }
  return bdd(this, f.link_type() * n->else_link_type, n->else_node);
}

// Cofactor of (+1, n) by the literal array; a negative root only negates the result.
bddpp_manager::edge bddpp_manager::Cube_reduce_rec(bdd_node* n, const int* literals, uint32_t cube) {
  edge sign = 0;
  for (;;) {
    // Below the deepest literal the cofactor is the node itself.
    if (n == one || Level(n) > cube_bottom_) return reinterpret_cast<edge>(n) | sign;
    int lit = literals[Level(n)];
    if (lit == 1) {
      n = n->then_node;
    } else if (lit == 0) {
      sign ^= (n->else_link_type < 0);
      n = n->else_node;
    } else {
      break;
    }
  }
  edge r;
  if (Cache_get(n->slot, cube, OP_CUBE, r)) return r ^ sign;
  edge t = Cube_reduce_rec(n->then_node, literals, cube);
  edge e = Cube_reduce_rec(n->else_node, literals, cube) ^ (n->else_link_type < 0 ? 1 : 0);
  r = (t == e) ? t : Mk(n->var_id, t, e);
  Cache_put(n->slot, cube, OP_CUBE, r);
  return r ^ sign;
}

bdd bddpp_manager::Bdd_cube_reduce(const bdd& f, const bdd& cube) {
  if (f.node() == nullptr) {
    std::cerr << "Error in Bdd_cube_reduce(): bdd has a Null pointer!" << std::endl;
    stop();
  }
  if (cube.node() == nullptr) {
    std::cerr << "Error in Bdd_cube_reduce(): assertion has a Null pointer!" << std::endl;
    stop();
  }
  if (f.node() == one || cube.node() == one) return f;
  literals_.assign(Nb_bdd_vars, 2);
  Bdd_node_to_literals(cube.link_type(), cube.node(), literals_.data());
  cube_bottom_ = Nb_bdd_vars - 1;
  while (cube_bottom_ >= 0 && literals_[cube_bottom_] == 2) cube_bottom_--;
  edge r = Cube_reduce_rec(f.node(), literals_.data(), Code(Edge(cube.link_type(), cube.node())));
  return Wrap(f.link_type() < 0 ? r ^ 1 : r);
}

bdd bddpp_manager::Bdd_exist(const bdd& f, const bdd& v) {
  if (!Bdd_is_var(v) && !Bdd_is_negvar(v)) return f;
  if (!Bdd_depends_on(f, v)) return f;
  bdd a = Bdd_cube_reduce(f, v);
  bdd b = Bdd_cube_reduce(f, Bdd_not(v));
  return Bdd_or(a, b);
}

bdd bddpp_manager::Bdd_forall(const bdd& f, const bdd& v) {
  if (!Bdd_is_var(v) && !Bdd_is_negvar(v)) return f;
  if (!Bdd_depends_on(f, v)) return f;
  bdd a = Bdd_cube_reduce(f, v);
  bdd b = Bdd_cube_reduce(f, Bdd_not(v));
  return Bdd_and(a, b);
}

bddpp_manager::edge bddpp_manager::Compose_rec(edge f, long var_index, edge g, uint32_t tag) {
  bdd_node* n = Node(f);
  if (n == one) return f;
  edge r;
  if (Cache_get(Code(f), 0, tag, r)) return r;
  const edge s = f & 1;
  edge t = Compose_rec(reinterpret_cast<edge>(n->then_node) | s, var_index, g, tag);
  edge e = Compose_rec(reinterpret_cast<edge>(n->else_node) | (s ^ (n->else_link_type < 0)), var_index, g, tag);
  if (Level(n) == var_index)
    r = Ite(g, t, e);
  else
    r = Ite_on_var(n->var_id, t, e);
  Cache_put(Code(f), 0, tag, r);
  return r;
}

bdd bddpp_manager::Bdd_compose(const bdd& f, const bdd& v, const bdd& g) {
  if (!Bdd_is_var(v)) {
    std::cerr << "Warning in bddpp_manager::Bdd_compose(): second parametre is not a variable!" << std::endl;
    return Bdd_zero();
  }
  null_and(f.node(), g.node());
  uint32_t tag = New_call_tag(OP_COMPOSE);
  return Wrap(Compose_rec(Edge(f.link_type(), f.node()), Level(v.node()), Edge(g.link_type(), g.node()), tag));
}

bddpp_manager::edge bddpp_manager::Replace_rec(edge f, const long* map, uint32_t tag) {
  bdd_node* n = Node(f);
  if (n == one) return f;
  edge r;
  if (Cache_get(Code(f), 0, tag, r)) return r;
  const edge s = f & 1;
  edge t = Replace_rec(reinterpret_cast<edge>(n->then_node) | s, map, tag);
  edge e = Replace_rec(reinterpret_cast<edge>(n->else_node) | (s ^ (n->else_link_type < 0)), map, tag);
  long index = map[Level(n)];
  bdd_node* selector;
  if (index == -1) {
    selector = one;
  } else if (index < 0 || index >= Nb_bdd_vars) {
    std::cerr << "ERROR: abnormal index in bddpp_manager::Bdd_ite()" << std::endl;
    selector = nullptr;
  } else {
    selector = var_nodes[id_of_index[index]];
  }
  null_and(selector, selector);
  r = selector == one ? Ite(reinterpret_cast<edge>(one), t, e) : Ite_on_var(selector->var_id, t, e);
  Cache_put(Code(f), 0, tag, r);
  return r;
}

bdd bddpp_manager::Bdd_replace_vars(const bdd& f, const long* map) {
  null_and(f.node(), f.node());
  uint32_t tag = New_call_tag(OP_REPLACE);
  return Wrap(Replace_rec(Edge(f.link_type(), f.node()), map, tag));
}

bddpp_manager::edge bddpp_manager::Keep_rec(edge f, long n, uint32_t tag) {
  bdd_node* x = Node(f);
  if (x == one) return f;
  if (Level(x) >= n) return reinterpret_cast<edge>(one);
  edge r;
  if (Cache_get(Code(f), 0, tag, r)) return r;
  const edge s = f & 1;
  edge t = Keep_rec(reinterpret_cast<edge>(x->then_node) | s, n, tag);
  edge e = Keep_rec(reinterpret_cast<edge>(x->else_node) | (s ^ (x->else_link_type < 0)), n, tag);
  r = Ite_on_var(x->var_id, t, e);
  Cache_put(Code(f), 0, tag, r);
  return r;
}

bdd bddpp_manager::Bdd_keep_first_variables(const bdd& f, long n) {
  null_and(f.node(), f.node());
  uint32_t tag = New_call_tag(OP_KEEP);
  return Wrap(Keep_rec(Edge(f.link_type(), f.node()), n, tag));
}

bdd bddpp_manager::Bdd_follow_assoc(const bdd& f, long* out_index) {
  *out_index = -1;
  if (Bdd_is_var(f)) {
    const bdd& a = assoc_table[f.node()->var_id];
    if (!a.initialised()) return f;
    if (Bdd_depends_on(a, f)) *out_index = Level(f.node());
    return a;
  }
  bdd result = f;
  std::vector<long> ids;
  Support_ids(f.node(), ids);
  for (long id : ids) {
    bdd v(this, 1, var_nodes[id]);
    bdd a = assoc_table[id];
    if (!a.initialised()) continue;
    if (!Bdd_depends_on(a, v))
      result = Bdd_compose(result, v, a);
    else
      *out_index = index_of_id[id];
  }
  return result;
}

void bddpp_manager::Bdd_assoc_bdd_to_var(const bdd& expression, const bdd& v) {
  if (!Bdd_is_var(v)) {
    if ((Bdd_is_one_tautologic(v) && Bdd_is_one_tautologic(expression)) ||
        (Bdd_is_zero_tautologic(v) && Bdd_is_zero_tautologic(expression)))
      return;
    std::cerr << "error in bddpp_manager::Bdd_assoc_bdd_to_var():" << std::endl
              << "     second parameter is not a var !" << std::endl
              << "replace from: " << Print_sop_to_String("+", ".", "!", "", v)
              << " by expression: " << Print_sop_to_String("+", ".", "!", "", expression) << std::endl;
    stop();
  }
  bdd copy = expression;
  for (long index = 0; index < Nb_bdd_vars; ++index) {
    bdd var = Bdd_var_by_index(index);
    if (!Bdd_depends_on(copy, var)) continue;
    const bdd a = assoc_table[id_of_index[index]];
    if (a.initialised() && !Bdd_depends_on(a, var)) copy = Bdd_compose(copy, var, a);
  }
  const long vid = v.node()->var_id;
  assoc_table[vid] = copy;
  if (!Bdd_depends_on(copy, v)) {
    for (long id = 0; id < Nb_bdd_vars; ++id) {
      if (id == vid) continue;
      const bdd a = assoc_table[id];
      if (a.initialised() && Bdd_depends_on(a, v)) assoc_table[id] = Bdd_compose(a, v, copy);
    }
  }
}

bdd bddpp_manager::Bdd_reduce(const bdd& f, const bdd& assertion) {
  if (!exists_common_variables(f, assertion)) return f;
  if (Bdd_is_cube(assertion)) return Bdd_cube_reduce(f, assertion);
  bdd rest = assertion;
  bdd result = Bdd_one();
  while (!Bdd_is_zero_tautologic(rest)) {
    bdd c = Bdd_satisfy(rest);
    if (!Bdd_is_cube(c)) {
      std::cerr << "ERROR about !!!" << std::endl;
      Print_bdd_structure(std::cerr, c);
      stop();
    }
    bdd reduced = Bdd_cube_reduce(f, c);
    result = Bdd_and(result, reduced);
    rest = Bdd_and(rest, Bdd_not(c));
  }
  return result;
}

bdd bddpp_manager::Bdd_simplify(const bdd& f, const bdd& c) {
  if (f.node() == one) return f;
  bdd r = f;
  std::vector<long> ids;
  Support_ids(f.node(), ids);
  for (long id : ids) {
    bdd candidate = Bdd_exist(r, bdd(this, 1, var_nodes[id]));
    if (Bdds_excl(candidate, c)) r = candidate;
  }
  return r;
}

bdd bddpp_manager::Bdd_simplify2(const bdd& f, const bdd& c) {
  if (f.node() == one) return f;
  bdd r = f;
  const long root = Level(f.node());
  std::vector<long> ids;
  Support_ids(f.node(), ids);
  for (long id : ids) {
    if (!(id < root)) continue;
    bdd candidate = Bdd_exist(r, bdd(this, 1, var_nodes[id]));
    if (Bdds_excl(candidate, c)) r = candidate;
  }
  return r;
}

// ---------------------------------------------------------------------------
// Evaluation
// ---------------------------------------------------------------------------

bdd bddpp_manager::Bdd_eval(const bdd& f, const int* values) {
  bdd r = f;
  for (long index = 0; index < Nb_bdd_vars; ++index) {
    if (values[index] == 1)
      r = Bdd_cube_reduce(r, Bdd_var_by_index(index));
    else if (values[index] == 0)
      r = Bdd_cube_reduce(r, Bdd_not(Bdd_var_by_index(index)));
  }
  return r;
}

int bddpp_manager::Bdd_eval_for_literal(const bdd& f, const int* literals) {
  // Memoised on the node under a positive link: a negative link swaps 0 and 1.
  const uint32_t tag = New_call_tag(OP_EVAL);
  auto eval = [&](auto&& self, bdd_node* n, int link) -> int {
    if (n == one) return link == 1 ? 1 : 0;
    if (n == nullptr || n->var_id < 0 || n->var_id >= Nb_bdd_vars) {
      std::cerr << "error in bddpp_manager::Bdd_eval(): unknown bdd type ..." << std::endl;
      stop();
    }
    auto flip = [link](int v) { return (link == 1 || v == 2) ? v : 1 - v; };
    cache_entry& c = Cache_at(n->slot, 0, tag);
    if (c.op == tag && c.a == n->slot && c.b == 0) return flip(int(c.result));
    int lit = literals[Level(n)];
    int v;
    if (lit == 1) {
      v = self(self, n->then_node, 1);
    } else if (lit == 0) {
      v = self(self, n->else_node, n->else_link_type);
    } else {
      int a = self(self, n->then_node, 1);
      int b = self(self, n->else_node, n->else_link_type);
      v = a == b ? a : 2;
    }
    Cache_at(n->slot, 0, tag) = cache_entry{n->slot, 0, tag, uint32_t(v)};
    return flip(v);
  };
  if (f.node() == nullptr) {
    std::cerr << "error in bddpp_manager::Bdd_eval(): unknown bdd type ..." << std::endl;
    stop();
  }
  return eval(eval, f.node(), f.link_type());
}

// ---------------------------------------------------------------------------
// Literals and cubes
// ---------------------------------------------------------------------------

int bddpp_manager::Bdd_OneSat(bdd_node* node, int link, int* literals) {
  if (node == nullptr) {
    std::cerr << "ERROR: call bddpp_manager::Bdd_OneSat() with null reference" << std::endl;
    stop();
  }
  if (node == one) return link == 1 ? 1 : 0;
  long index = Level(node);
  literals[index] = 1;
  if (Bdd_OneSat(node->then_node, link, literals)) return 1;
  literals[index] = 0;
  return Bdd_OneSat(node->else_node, link * node->else_link_type, literals);
}

bdd bddpp_manager::Bdd_satisfy(const bdd& f) {
  std::vector<int> literals(Nb_bdd_vars, 2);
  Bdd_OneSat(f.node(), f.link_type(), literals.data());
  return Literals_to_bdd(literals.data());
}

void bddpp_manager::Bdd_node_to_literals(int link, bdd_node* node, int* literals) {
  std::fill(literals, literals + Nb_bdd_vars, 2);
  if (node == nullptr) {
    std::cerr << "Warning: bddpp_manager::Bdd_node_to_literals() call with a NULL bdd node !" << std::endl;
    return;
  }
  if (node == one) {
    if (link == 1) {
      std::cerr << "ERROR in  bddpp_manager::Bdd_node_to_literals() :" << std::endl
                << "constant 1 is not a literal ..." << std::endl;
      stop();
    }
    return;
  }
  int sign = link;
  bdd_node* n = node;
  while (n != one) {
    long index = Level(n);
    if (n->then_node != one) {
      literals[index] = 1;
      n = n->then_node;
    } else if (n->else_node != one) {
      literals[index] = 0;
      sign *= n->else_link_type;
      n = n->else_node;
    } else {
      literals[index] = sign == 1 ? 1 : 0;
      return;
    }
  }
}

void bddpp_manager::Bdd_to_literals(const bdd& f, int* literals) {
  Bdd_node_to_literals(f.link_type(), f.node(), literals);
}

bdd bddpp_manager::Literals_to_bdd(const int* literals) {
  bdd r = Bdd_one();
  for (long index = 0; index < Nb_bdd_vars; ++index) {
    if (literals[index] == 1)
      r = Bdd_and(r, Bdd_var_by_index(index));
    else if (literals[index] == 0)
      r = Bdd_and(r, Bdd_not(Bdd_var_by_index(index)));
  }
  return r;
}

bdd bddpp_manager::Minterm(long number, int count, const bdd* vars) {
  if (number < 0) return Bdd_zero();
  bdd r = Bdd_one();
  for (int i = 0; i < count; ++i) r = Bdd_and(r, ((number >> i) & 1) ? vars[i] : Bdd_not(vars[i]));
  return r;
}

bdd bddpp_manager::Bdd_function_by_id(uint64_t id, int count, const bdd* vars) {
  bdd r = Bdd_zero();
  const int minterms = count >= 6 ? 64 : (1 << count);
  for (int k = 0; k < minterms; ++k)
    if ((id >> k) & 1) r = Bdd_or(r, Minterm(k, count, vars));
  return r;
}

uint64_t bddpp_manager::Id_function_by_bdd(const bdd& f, int count, const bdd* vars) {
  if (count > 6) {
    std::cerr << "In bddpp_manager::Id_function_by_bdd(): number of variables (" << count
              << ") too big! avorted ..." << std::endl;
    return 0;
  }
  uint64_t id = 0;
  for (int k = 0; k < (1 << count); ++k)
    if (Bdd_imply(Minterm(k, count, vars), f)) id |= uint64_t(1) << k;
  return id;
}

// Node numbers reach the generated targets, so the nodes an operation creates
// and their order are part of its result. A plain, unmemoised reading of the
// recursions, built on Find_or_create_bdd_node alone, runs beside the package
// on a twin manager: every result must carry the same global id.
#include <gtest/gtest.h>

#include <random>

#include "bddcore_tt.h"

namespace {

struct F {
  bdd_node* n;
  int link;
  bool operator==(const F& o) const { return n == o.n && link == o.link; }
};

class Reference {
 public:
  explicit Reference(bddpp_manager& m) : m_(m) {}

  F Not(F f) { return F{f.n, -f.link}; }
  F One() { return F{m_.one, 1}; }
  F Zero() { return F{m_.one, -1}; }
  F Var(long index) { return F{m_.var_nodes[m_.id_of_index[index]], 1}; }
  F Then(F f) { return F{f.n->then_node, f.link}; }
  F Else(F f) { return F{f.n->else_node, f.link * f.n->else_link_type}; }
  long Index(bdd_node* n) { return n == m_.one ? -1 : m_.index_of_id[n->var_id]; }

  F Make(long index, F t, F e) {
    if (t == e) return t;
    int link = 1;
    bdd_node* n = m_.Find_or_create_bdd_node(index, t.link, e.link, t.n, e.n, link);
    return F{n, link};
  }

  F And(F x, F y) {
    if (x.n == m_.one) return x.link == 1 ? y : Zero();
    if (y.n == m_.one) return y.link == 1 ? x : Zero();
    if (x.n == y.n) return x.link == y.link ? x : Zero();
    long ix = Index(x.n), iy = Index(y.n);
    if (ix < iy) {
      F t = And(Then(x), y);
      F e = And(Else(x), y);
      return Make(ix, t, e);
    }
    if (ix == iy) {
      F t = And(Then(x), Then(y));
      F e = And(Else(x), Else(y));
      return Make(ix, t, e);
    }
    F t = And(Then(y), x);
    F e = And(Else(y), x);
    return Make(iy, t, e);
  }

  F Or(F x, F y) {
    if (x.n == m_.one) return x.link == 1 ? One() : y;
    if (y.n == m_.one) return y.link == 1 ? One() : x;
    if (x.n == y.n) return x.link == y.link ? x : One();
    long ix = Index(x.n), iy = Index(y.n);
    if (ix < iy) {
      F t = Or(Then(x), y);
      F e = Or(Else(x), y);
      return Make(ix, t, e);
    }
    if (ix == iy) {
      F t = Or(Then(x), Then(y));
      F e = Or(Else(x), Else(y));
      return Make(ix, t, e);
    }
    F t = Or(Then(y), x);
    F e = Or(Else(y), x);
    return Make(iy, t, e);
  }

  F Xor(F f, F g) {
    F a = And(f, Not(g));
    F b = And(Not(f), g);
    return Or(a, b);
  }
  F Ite(F f, F g, F h) {
    F a = And(f, g);
    F b = And(Not(f), h);
    return Or(a, b);
  }

  F CubeReduce(F f, const std::vector<int>& lits) {
    if (f.n == m_.one) return f;
    long index = Index(f.n);
    if (lits[index] == 1) return CubeReduce(Then(f), lits);
    if (lits[index] == 0) return CubeReduce(Else(f), lits);
    F t = CubeReduce(Then(f), lits);
    F e = CubeReduce(Else(f), lits);
    return Make(index, t, e);
  }

  F Literal(F f, long index, int value) {
    std::vector<int> lits(m_.Nb_bdd_vars, 2);
    lits[index] = value;
    return CubeReduce(f, lits);
  }

  bool Depends(F f, long index) {
    if (f.n == m_.one) return false;
    if (Index(f.n) == index) return true;
    return Depends(Then(f), index) || Depends(Else(f), index);
  }

  F Exist(F f, long index, int polarity) {
    if (!Depends(f, index)) return f;
    F a = Literal(f, index, polarity);
    F b = Literal(f, index, 1 - polarity);
    return Or(a, b);
  }

  F Compose(F f, long index, F g) {
    if (f.n == m_.one) return f;
    F t = Compose(Then(f), index, g);
    F e = Compose(Else(f), index, g);
    if (Index(f.n) == index) return Ite(g, t, e);
    return Ite(Var(Index(f.n)), t, e);
  }

  F Keep(F f, long n) {
    if (f.n == m_.one) return f;
    if (Index(f.n) >= n) return One();
    F t = Keep(Then(f), n);
    F e = Keep(Else(f), n);
    return Ite(Var(Index(f.n)), t, e);
  }

  F Replace(F f, const std::vector<long>& map) {
    if (f.n == m_.one) return f;
    F t = Replace(Then(f), map);
    F e = Replace(Else(f), map);
    return Ite(Var(map[Index(f.n)]), t, e);
  }

 private:
  bddpp_manager& m_;
};

TEST(BddCreationOrder, SameNodesInTheSameOrderAsThePlainRecursions) {
  constexpr int kN = 8;
  for (unsigned seed = 1; seed <= 6; ++seed) {
    bddpp_manager a, b;
    bddtest::make_vars(a, kN);
    bddtest::make_vars(b, kN);
    Reference ref(b);
    std::mt19937 rng(seed);
    std::vector<bdd> pool_a;
    std::vector<F> pool_b;
    std::vector<bdd> keep_b;  // handles so that nothing in b looks unused
    for (int i = 0; i < kN; ++i) {
      pool_a.push_back(a.Bdd_var_by_index(i));
      pool_b.push_back(ref.Var(i));
    }
    auto pick = [&]() { return size_t(rng() % pool_a.size()); };
    for (int step = 0; step < 300; ++step) {
      size_t i = pick(), j = pick(), k = pick();
      long v = long(rng() % kN);
      int sign = (rng() & 1) ? 1 : -1;
      bdd fa = sign > 0 ? pool_a[i] : a.Bdd_not(pool_a[i]);
      F fb = sign > 0 ? pool_b[i] : ref.Not(pool_b[i]);
      bdd ra;
      F rb;
      int op = int(rng() % 10);
      switch (op) {
        case 0: ra = a.Bdd_and(fa, pool_a[j]); rb = ref.And(fb, pool_b[j]); break;
        case 1: ra = a.Bdd_or(fa, pool_a[j]); rb = ref.Or(fb, pool_b[j]); break;
        case 2: ra = a.Bdd_xor(fa, pool_a[j]); rb = ref.Xor(fb, pool_b[j]); break;
        case 3:
          ra = a.Bdd_ite(fa, pool_a[j], pool_a[k]);
          rb = ref.Ite(fb, pool_b[j], pool_b[k]);
          break;
        case 4:
          ra = a.Bdd_exist(fa, a.Bdd_var_by_index(v));
          rb = ref.Exist(fb, v, 1);
          break;
        case 5:
          ra = a.Bdd_exist(fa, a.Bdd_not(a.Bdd_var_by_index(v)));
          rb = ref.Exist(fb, v, 0);
          break;
        case 6:
          ra = a.Bdd_compose(fa, a.Bdd_var_by_index(v), pool_a[j]);
          rb = ref.Compose(fb, v, pool_b[j]);
          break;
        case 7:
          ra = a.Bdd_cube_reduce(fa, a.Bdd_not(a.Bdd_var_by_index(v)));
          rb = ref.Literal(fb, v, 0);
          break;
        case 8:
          ra = a.Bdd_keep_first_variables(fa, v);
          rb = ref.Keep(fb, v);
          break;
        default: {
          std::vector<long> map(kN);
          for (int q = 0; q < kN; ++q) map[q] = q;
          std::shuffle(map.begin(), map.end(), rng);
          ra = a.Bdd_replace_vars(fa, map.data());
          rb = ref.Replace(fb, map);
        }
      }
      ASSERT_EQ(ra.node()->global_id(), rb.n->global_id()) << "seed " << seed << " step " << step << " op " << op;
      ASSERT_EQ(ra.link_type(), rb.link) << "seed " << seed << " step " << step;
      ASSERT_EQ(a.Bdd_total_size(), b.Bdd_total_size()) << "seed " << seed << " step " << step << " op " << op;
      // Keep the pool small enough for the plain recursions.
      if (a.Bdd_size(ra) < 60) {
        pool_a.push_back(ra);
        pool_b.push_back(rb);
        keep_b.push_back(bdd(&b, rb.link, rb.n));
      }
    }
  }
}

// The copy between managers, read plainly: no memo, every path rebuilt.
F plain_copy(bddpp_manager& target, Reference& ref, bddpp_manager& source, bdd_node* n, const long* translation) {
  if (n == source.one) return ref.One();
  long index;
  if (translation != nullptr) {
    index = translation[source.index_of_id[n->var_id]];
  } else {
    long id = target.Id_var_by_name(source.names[n->var_id]);
    if (id < 0) id = target.New_node_var_last(source.names[n->var_id])->var_id;
    index = target.index_of_id[id];
  }
  F t = plain_copy(target, ref, source, n->then_node, translation);
  F e = plain_copy(target, ref, source, n->else_node, translation);
  if (t.n != target.one && e.n != target.one && index < ref.Index(t.n) && index < ref.Index(e.n)) {
    int link = 1;
    return F{target.Find_or_create_bdd_node(index, 1, n->else_link_type, t.n, e.n, link), link};
  }
  F v = ref.Var(index);
  F a = ref.And(v, F{t.n, 1});
  F b = ref.And(ref.Not(v), F{e.n, n->else_link_type});
  return ref.Or(a, b);
}

TEST(BddCreationOrder, CopiesMakeTheNodesOfThePlainCopy) {
  constexpr int kN = 8;
  bddpp_manager source;
  bddtest::make_vars(source, kN);
  bddtest::Gen gen(source, 77, kN);
  long reverse[kN];
  for (int i = 0; i < kN; ++i) reverse[i] = kN - 1 - i;
  for (int round = 0; round < 12; ++round) {
    bdd f = gen.random(6).f;
    for (int by_name = 0; by_name < 2; ++by_name) {
      bddpp_manager a, b;
      for (int i = kN - 1; i >= 0; i -= 2) {  // half the names, in another order
        a.New_var_last("x" + std::to_string(i));
        b.New_var_last("x" + std::to_string(i));
      }
      if (!by_name)
        for (int i = kN - 2; i >= 0; i -= 2) {
          a.New_var_last("x" + std::to_string(i));
          b.New_var_last("x" + std::to_string(i));
        }
      Reference ref(b);
      bdd ca = by_name ? Bdd_isomorphe_by_name(&a, &source, f) : Bdd_isomorphe(&a, &source, f, reverse);
      F cb = plain_copy(b, ref, source, f.node(), by_name ? nullptr : reverse);
      ASSERT_EQ(ca.node()->global_id(), cb.n->global_id()) << round << " " << by_name;
      ASSERT_EQ(a.Bdd_total_size(), b.Bdd_total_size()) << round << " " << by_name;
      ASSERT_EQ(a.Nb_bdd_vars, b.Nb_bdd_vars);
      for (long i = 0; i < a.Nb_bdd_vars; ++i) ASSERT_EQ(a.names[i], b.names[i]);
    }
  }
}

TEST(BddCreationOrder, KnownNumbers) {
  // Variables a, b take global ids 2 and 3. a and b: one node, id 4.
  // a xor b = (a and not b) or (not a and b): ids 5, 6, then the result 7.
  bddpp_manager m;
  bdd a = m.New_var_last("a"), b = m.New_var_last("b");
  EXPECT_EQ(a.node()->global_id(), 2);
  EXPECT_EQ(b.node()->global_id(), 3);
  bdd ab = m.Bdd_and(a, b);
  EXPECT_EQ(ab.node()->global_id(), 4);
  bdd x = m.Bdd_xor(a, b);
  EXPECT_EQ(x.node()->global_id(), 7);
  EXPECT_EQ(m.Bdd_total_size(), 8);
  // The xor's then edge is normalised: a ? !b : b is stored as not(a ? b : !b).
  EXPECT_EQ(x.link_type(), -1);
  EXPECT_EQ(x.node()->then_node, b.node());
  EXPECT_EQ(x.node()->else_node, b.node());
  EXPECT_EQ(x.node()->else_link_type, -1);
}

}  // namespace

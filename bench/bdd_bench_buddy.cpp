// The reference package. Its header also declares a C++ class named `bdd`
// whose members would clash at link time with ours, so this unit uses only
// the C interface (plain int handles) and undoes the header's C++ renamings.
#include <bdd.h>
#undef bdd_init
#undef bdd_ithvar
#undef bdd_nithvar

#include <chrono>

#include "bdd_bench.h"

namespace bddbench {
namespace {

// A counted reference on a node of the reference package.
class Ref {
public:
  Ref() : root(0) {}
  explicit Ref(BDD r) : root(r) { bdd_addref(root); }
  Ref(const Ref& o) : root(o.root) { bdd_addref(root); }
  Ref& operator=(const Ref& o) {
    if (root != o.root) {
      bdd_addref(o.root);
      bdd_delref(root);
      root = o.root;
    }
    return *this;
  }
  ~Ref() { bdd_delref(root); }
  BDD get() const { return root; }

private:
  BDD root;
};

struct BuddyBackend {
  using F = Ref;
  void start(int nvars) {
    bdd_init(1 << 20, 1 << 18);
    bdd_gbc_hook(nullptr);
    bdd_setvarnum(nvars);
  }
  void finish() { bdd_done(); }
  F var(int i) { return Ref(bdd_ithvar(i)); }
  F one() { return Ref(1); }
  F zero() { return Ref(0); }
  F land(const F& f, const F& g) { return Ref(bdd_and(f.get(), g.get())); }
  F lor(const F& f, const F& g) { return Ref(bdd_or(f.get(), g.get())); }
  F lxor(const F& f, const F& g) { return Ref(bdd_xor(f.get(), g.get())); }
  F lnot(const F& f) { return Ref(bdd_not(f.get())); }
  F exist(const F& f, int i) { return Ref(bdd_exist(f.get(), bdd_ithvar(i))); }
  F compose(const F& f, int i, const F& g) { return Ref(bdd_compose(f.get(), g.get(), i)); }
  bool same(const F& f, const F& g) { return f.get() == g.get(); }
  double satcount(const F& f) { return bdd_satcount(f.get()); }
};

}  // namespace

Outcome run_buddy(const Workload& w) {
  BuddyBackend b;
  b.start(w.nvars());
  auto t0 = std::chrono::steady_clock::now();
  double value = run(b, w);
  auto t1 = std::chrono::steady_clock::now();
  b.finish();
  return {value, std::chrono::duration<double, std::milli>(t1 - t0).count()};
}

}  // namespace bddbench

// The manager: variables, complement links, the unique table, reclaiming,
// reports, and the independence of results from the signature's widths.
#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <sstream>

#include "bddcore_tt.h"

using namespace bddtest;

namespace {

// Every node of the table: correct, not redundant, and unique on its key.
void expect_table_invariants(bddpp_manager& m) {
  std::set<std::tuple<long, const bdd_node*, const bdd_node*, int>> keys;
  for (bdd_node* n : m.Map_nodes_by_signature()) {
    ASSERT_NE(n, m.one);
    EXPECT_TRUE(n->is_correct());
    EXPECT_TRUE(n->else_link_type == 1 || n->else_link_type == -1);
    EXPECT_FALSE(n->then_node == n->else_node && n->else_link_type == 1) << "redundant node";
    EXPECT_TRUE(keys.insert({n->var_id, n->then_node, n->else_node, n->else_link_type}).second) << "duplicate";
  }
  EXPECT_EQ(long(keys.size()), m.Map_size());
}

TEST(BddManager, ComplementLinks) {
  bddpp_manager m;
  bdd a = m.New_var_last("a"), b = m.New_var_last("b");
  EXPECT_EQ(m.Bdd_not(m.Bdd_not(a)), a);
  bdd f = m.Bdd_and(a, m.Bdd_not(b));
  long size = m.Bdd_total_size();
  EXPECT_EQ(m.Bdd_and(a, m.Bdd_not(b)), f);
  EXPECT_EQ(m.Bdd_and(m.Bdd_not(b), a), f);
  EXPECT_EQ(m.Bdd_total_size(), size) << "the same function twice makes no node";
  bdd g = m.Bdd_not(f);
  EXPECT_EQ(g.node(), f.node());
  EXPECT_EQ(g.link_type(), -f.link_type());
  EXPECT_EQ(m.Bdd_or(m.Bdd_not(a), b), g);

  // A negative then edge moves out to the handle and to the else edge.
  int link = 1;
  bdd_node* n = m.Find_or_create_bdd_node(0, -1, 1, b.node(), m.one, link);
  EXPECT_EQ(link, -1);
  EXPECT_EQ(n->then_node, b.node());
  EXPECT_EQ(n->else_link_type, -1);
  EXPECT_EQ(tt_of(m, bdd(&m, link, n), 2), (~tt_var(0) | ~tt_var(1)) & tt_mask(2)) << "a ? !b : 1";

  // Both children the terminal: one, or the variable node under the moved sign.
  link = 1;
  EXPECT_EQ(m.Find_or_create_bdd_node(1, -1, 1, m.one, m.one, link), b.node());
  EXPECT_EQ(link, -1);
  link = 1;
  EXPECT_EQ(m.Find_or_create_bdd_node(1, 1, 1, m.one, m.one, link), m.one);
  link = 1;
  EXPECT_EQ(m.Find_or_create_bdd_node(-1, 1, 1, b.node(), b.node(), link), m.one);
  link = 1;
  EXPECT_EQ(m.Find_or_create_bdd_node(-2, 1, 1, b.node(), b.node(), link), nullptr);

  testing::internal::CaptureStderr();
  link = 1;
  EXPECT_EQ(m.Find_or_create_bdd_node(1, 1, 1, f.node(), m.one, link), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "FATAL ERROR: Bad call of bddpp_manager::Find_or_create_bdd_node():\n"
            "  index 1 is not less than  its then node index (0)\n");

  EXPECT_TRUE(m.Bdd_is_var(a));
  EXPECT_FALSE(m.Bdd_is_var(m.Bdd_not(a)));
  EXPECT_TRUE(m.Bdd_is_negvar(m.Bdd_not(a)));
  EXPECT_FALSE(m.Bdd_is_var(f));
  EXPECT_TRUE(m.Bdd_is_tautology(m.Bdd_zero()));
  EXPECT_TRUE(m.Bdd_is_tautology(m.Bdd_one(), 5));
  EXPECT_FALSE(m.Bdd_is_tautology(m.Bdd_one(), 0));
  EXPECT_TRUE(m.Bdd_is_zero_tautologic(m.Bdd_zero()));
  EXPECT_FALSE(m.Bdd_is_one_tautologic(m.Bdd_zero()));
  expect_table_invariants(m);
}

TEST(BddManager, HandlesCountReferences) {
  bddpp_manager m;
  bdd a = m.New_var_last("a"), b = m.New_var_last("b");
  bdd f = m.Bdd_and(a, b);
  bdd_node* n = f.node();
  EXPECT_EQ(n->refs, 1);
  {
    bdd g = f;
    bdd h;
    h = f;
    EXPECT_EQ(n->refs, 3);
    h = m.Bdd_not(f);
    EXPECT_EQ(n->refs, 3) << "same node: the count is untouched";
    bdd moved = std::move(g);
    EXPECT_EQ(n->refs, 3);
  }
  EXPECT_EQ(n->refs, 1);
  EXPECT_FALSE(bdd().initialised());
  EXPECT_EQ(bdd().link_type(), 0);
  EXPECT_TRUE(f.initialised());
  EXPECT_EQ(m.one->refs, 2) << "the terminal: its own reference and the else edge of a.b";
}

TEST(BddManager, Variables) {
  bddpp_manager m;
  std::vector<bdd> vars;
  for (int i = 0; i < 16; ++i) vars.push_back(m.New_var_last("v" + std::to_string(i)));
  EXPECT_EQ(m.var_capacity, 16);
  bdd f = m.Bdd_xor(vars[3], m.Bdd_and(vars[0], vars[15]));
  TT before = tt_of(m, f, 16 > kVars ? kVars : 16);
  bdd v16 = m.New_var_last("v16");
  EXPECT_EQ(m.var_capacity, 32);
  EXPECT_EQ(m.Nb_bdd_vars, 17);
  EXPECT_EQ(m.Name_var_by_index(16), "v16");
  EXPECT_EQ(m.Name_var_by_id(3), "v3");
  EXPECT_EQ(m.Bdd_var_by_name("v3"), vars[3]);
  EXPECT_EQ(m.Index_var_by_name("v15"), 15);

  // A known name gives its variable and creates nothing.
  long size = m.Bdd_total_size();
  EXPECT_EQ(m.New_var_last("v3"), vars[3]);
  EXPECT_EQ(m.New_var_before(0, "v5"), vars[5]);
  EXPECT_EQ(m.Nb_bdd_vars, 17);
  EXPECT_EQ(m.Bdd_total_size(), size);

  // Inserting before index 0 moves every index up, keeps every id and function.
  bdd first = m.New_var_before(0, "first");
  EXPECT_EQ(m.Id_var_by_name("first"), 17);
  EXPECT_EQ(m.Index_var_by_name("first"), 0);
  EXPECT_EQ(m.Index_var_by_name("v0"), 1);
  EXPECT_EQ(m.Id_var_by_name("v0"), 0);
  EXPECT_EQ(m.Bdd_var_by_index(0), first);
  EXPECT_EQ(m.Bdd_var_by_index(4), vars[3]);
  for (unsigned a = 0; a < (1u << kVars); ++a) EXPECT_EQ(eval_at(m, f, a << 1), before[a]);
  // Inserting after an index puts the variable just below it.
  bdd mid = m.New_var_after(4, "mid");
  EXPECT_EQ(m.Bdd_if_index(mid), 5);
  EXPECT_EQ(m.Bdd_if_index(vars[4]), 6);
  EXPECT_EQ(m.Bdd_if_id(mid), 18);
  bdd last = m.New_var_after(m.Nb_bdd_vars - 1, "last");
  EXPECT_EQ(m.Bdd_if_index(last), m.Nb_bdd_vars - 1);
  bdd before_mid = m.New_var_before(mid, "before_mid");
  EXPECT_EQ(m.Bdd_if_index(before_mid), 5);
  EXPECT_EQ(m.Bdd_if_index(mid), 6);
  // Operations still follow the order after insertions.
  bdd g = m.Bdd_and(m.Bdd_or(v16, first), m.Bdd_xor(mid, before_mid));
  EXPECT_TRUE(m.Bdd_is_correct(g));
  EXPECT_EQ(m.Bdd_if(g), first);
  EXPECT_EQ(m.Bdd_exist(m.Bdd_exist(g, v16), first), m.Bdd_xor(mid, before_mid));

  EXPECT_EQ(m.Bdd_var_by_index(-1), m.Bdd_one());
  EXPECT_EQ(m.Bdd_var_by_name("nothing"), m.Bdd_zero());
  EXPECT_EQ(m.Index_var_by_name("nothing"), -1);
  EXPECT_EQ(m.Id_var_by_name("nothing"), -1);
  EXPECT_EQ(m.Name_var_by_bdd(m.Bdd_zero()), "0");
  EXPECT_EQ(m.Name_var_by_bdd(m.Bdd_one()), "1");
  EXPECT_EQ(m.Name_var_by_bdd(m.Bdd_not(vars[2])), "v2");
  EXPECT_EQ(m.Bdd_if_index(m.Bdd_one()), -1);
  EXPECT_EQ(m.Bdd_if_id(m.Bdd_zero()), -1);

  struct Message {
    std::function<void()> call;
    std::string text;
  } messages[] = {
      {[&] { EXPECT_EQ(m.Bdd_var_by_id(99), m.Bdd_zero()); },
       "calling bddpp_manager::Bdd_var_by_id() with id= 99 :out of range!\n"},
      {[&] { EXPECT_FALSE(m.Bdd_var_by_index(99).initialised()); },
       "calling bddpp_manager::Bdd_var_by_index() with index= 99 :out of range!\n"},
      {[&] { EXPECT_EQ(m.Bdd_if(m.Bdd_one()), m.Bdd_zero()); },
       "calling bddpp_manager::Bdd_if() with bdd index= -1 :out of range!\n"},
      {[&] { EXPECT_EQ(m.New_node_var_before(99, "x"), nullptr); },
       "Error in new_node_var_before(): abnormal index ...\n"},
      {[&] { EXPECT_EQ(m.New_node_var_after(99, "x"), nullptr); },
       "Error in new_node_var_after(): abnormal id ...\n"},
      {[&] { m.Bdd_var_reorder(); }, "bddpp_manager::Bdd_var_reorder(void) A FAIRE\n"},
      {[&] { EXPECT_EQ(m.Bdd_swap_vars(g, 0, 1), m.Bdd_zero()); }, "bddpp_manager::Bdd_swap_vars(bdd f) A FAIRE\n"},
      {[&] { EXPECT_EQ(m.Bdd_dup(g), g); }, "Warning: bddpp_manager::Bdd_dup() is became useless ...\n"},
  };
  for (const Message& msg : messages) {
    testing::internal::CaptureStderr();
    msg.call();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), msg.text);
  }
  EXPECT_FALSE(m.Bdd_var_by_name("x").node() != m.one) << "failed insertions create nothing";
}

TEST(BddManager, ForeignHandles) {
  bddpp_manager m, other;
  bdd a = m.New_var_last("a");
  bdd b = other.New_var_last("b");
  struct Case {
    std::function<void()> call;
    std::string text;
  } cases[] = {
      {[&] { EXPECT_EQ(m.Bdd_if_id(b), -3); },
       "Error in bddpp_manager::Bdd_if_id(): bad Bdd manager or bdd not initialized!\n"},
      {[&] { EXPECT_EQ(m.Bdd_if_index(bdd()), -3); },
       "Error in bddpp_manager::Bdd_if_index(): bad Bdd manager or bdd not initialized!\n"},
      {[&] { EXPECT_FALSE(m.Bdd_depends_on(a, b)); },
       "Error in bddpp_manager::Bdd_node_depends_on():  bad Bdd manager or bdd(s) not initialized!\n"},
      {[&] { EXPECT_TRUE(m.set_of_id_depend_on(b).empty()); },
       "Warning: call  bddpp_manager::set_of_index_depend_on() with a bad manager\n"},
      {[&] { EXPECT_FALSE(m.Bdd_is_correct(bdd())); },
       "Warning: call  bddpp_manager::Bdd_is_correct() with a null reference!\n"},
      {[&] { EXPECT_EQ(m.Bdd_incremental_id(nullptr, 7), 7); },
       "Warning: call bddpp_manager::Bdd_incremental_id() with null reference!\n"},
  };
  for (const Case& c : cases) {
    testing::internal::CaptureStderr();
    c.call();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.text);
  }
}

TEST(BddManager, Names) {
  bddpp_manager m;
  m.New_var_last("_a");
  m.New_var_last("b.c");
  m.New_var_last("_d");
  struct Case {
    std::string new_name, old_name, message;
  } renames[] = {
      {"b.c", "_a", "in bdd_manager::Rename_var(): WARNING b.c ALREADY DEFINED !\nrenaming process aborted ...\n"},
      {"zz", "nothing", "in bdd_manager::Rename_var(): WARNING nothing NOT FOUND !\nrenaming process aborted ...\n"},
      {"e", "_d", ""},
  };
  for (const Case& c : renames) {
    testing::internal::CaptureStderr();
    m.Rename_var(c.new_name, c.old_name);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.message);
  }
  EXPECT_EQ(m.Name_var_by_index(2), "e");
  EXPECT_EQ(m.Index_var_by_name("e"), -1) << "lookups know the names of creation";
  EXPECT_EQ(m.Index_var_by_name("_d"), 2);
  m.Replace_char_in_all_names('.', '_');
  EXPECT_EQ(m.Name_var_by_id(1), "b_c");
  m.No_begin_underscore_name();
  EXPECT_EQ(m.names[0], "v_a");
  EXPECT_EQ(m.names[1], "b_c");
  m.Change_name_by_index(1, "x");
  m.Change_name_by_id(2, "y");
  EXPECT_EQ(m.Name_var_by_bdd(m.Bdd_var_by_id(1)), "x");
  EXPECT_EQ(m.Name_var_by_index(2), "y");
}

TEST(BddManager, CopyConstructorTakesVariablesOnly) {
  bddpp_manager m;
  bdd a = m.New_var_last("a"), b = m.New_var_last("b");
  m.New_var_before(0, "c");
  bdd f = m.Bdd_and(a, b);
  bddpp_manager copy(&m);
  EXPECT_EQ(copy.Nb_bdd_vars, 3);
  EXPECT_EQ(copy.Index_var_by_name("c"), 0);
  EXPECT_EQ(copy.Id_var_by_name("c"), 2);
  EXPECT_EQ(copy.var_nodes[0]->global_id(), 2);
  EXPECT_EQ(copy.var_nodes[2]->global_id(), 4);
  EXPECT_EQ(copy.Bdd_total_size(), 5);
  EXPECT_EQ(copy.Map_size(), 3);
  EXPECT_EQ(copy.assoc_table[1], copy.Bdd_var_by_name("b"));
}

TEST(BddManager, ManyManagersEachKnowTheirNodes) {
  std::vector<std::unique_ptr<bddpp_manager>> managers;
  std::vector<bdd> functions;
  for (int k = 0; k < 200; ++k) {
    managers.push_back(std::make_unique<bddpp_manager>());
    bddpp_manager& m = *managers.back();
    make_vars(m, 4);
    functions.push_back(m.Bdd_xor(m.Bdd_var_by_index(k % 4), m.Bdd_var_by_index((k + 1) % 4)));
  }
  for (int k = 0; k < 200; ++k) {
    EXPECT_EQ(functions[k].node()->manager(), managers[k].get());
    EXPECT_EQ(managers[k]->one->manager(), managers[k].get());
    std::ostringstream line;
    Print_bdd_node(line, managers[k]->one);
    EXPECT_EQ(line.str(), std::to_string(managers[k]->one->print_number) + ": -1:-3:-3,1");
  }
  functions.clear();
}

TEST(BddManager, MarksAndSizes) {
  bddpp_manager m;
  make_vars(m, 3);
  bdd f = m.Bdd_or(m.Bdd_and(m.Bdd_var_by_index(0), m.Bdd_var_by_index(2)), m.Bdd_var_by_index(1));
  EXPECT_EQ(m.Bdd_size(f), 5) << "x0 ? (x1 or x2) : x1, with x1, x2 and the terminal";
  EXPECT_EQ(m.Bdd_size(m.Bdd_zero()), 1);
  EXPECT_EQ(f.node()->print_number, 0);
  EXPECT_EQ(f.node()->mark, 1);
  m.Bdd_clear_marks(f);
  EXPECT_EQ(f.node()->mark, 0);
  EXPECT_EQ(m.one->mark, 0);
  EXPECT_EQ(m.Bdd_incremental_id(f.node(), 10), 15);
  EXPECT_EQ(m.Bdd_incremental_id(f.node(), 20), 20) << "marked nodes keep their numbers";
  m.Bdd_global_clear_marks();
  for (bdd_node* n : m.Map_nodes_by_signature()) EXPECT_EQ(n->mark, 0);
  EXPECT_TRUE(m.Bdd_is_correct(f));
  EXPECT_EQ(f.node()->print_number, 1) << "numbered from 1";
}

TEST(BddManager, GarbageCollection) {
  bddpp_manager m;
  make_vars(m);
  Gen gen(m, 4);
  std::vector<Pair> kept;
  std::vector<long> kept_ids;
  for (int round = 0; round < 4; ++round) {
    for (int i = 0; i < 30; ++i) {
      Pair p = gen.random(6);
      if (i % 3 == 0) kept.push_back(p);
    }
    long total = m.Bdd_total_size();
    long map_before = m.Map_size();
    m.Bdd_gc();
    EXPECT_EQ(m.gc_calls, round + 1);
    EXPECT_EQ(m.Bdd_total_size(), total) << "global ids are never given back";
    EXPECT_LE(m.Map_size(), map_before);
    for (long id = 0; id < kVars; ++id) EXPECT_EQ(m.Bdd_var_by_id(id).node(), m.var_nodes[id]);
    for (const Pair& p : kept) {
      EXPECT_EQ(tt_of(m, p.f), p.t);
      EXPECT_TRUE(m.Bdd_is_correct(p.f));
    }
    expect_table_invariants(m);
    // Nothing is left that nothing holds.
    for (bdd_node* n : m.Map_nodes_by_signature()) {
      bool is_var = m.var_nodes[n->var_id] == n;
      EXPECT_TRUE(is_var || n->refs > 0);
    }
  }
  // Operations after a collection reuse the freed places and still agree.
  for (int i = 0; i < 20; ++i) {
    Pair p = gen.random(6);
    EXPECT_EQ(tt_of(m, p.f), p.t);
    Pair q = kept[i % kept.size()];
    EXPECT_EQ(tt_of(m, m.Bdd_and(p.f, q.f)), p.t & q.t);
  }
  expect_table_invariants(m);

  // A collected function is rebuilt with a new global id.
  bdd x = m.Bdd_var_by_index(0), y = m.Bdd_var_by_index(1);
  long old_id = m.Bdd_and(x, y).node()->global_id();
  m.Bdd_gc();
  long before = m.Bdd_total_size();
  bdd again = m.Bdd_and(x, y);
  EXPECT_GT(again.node()->global_id(), old_id);
  EXPECT_EQ(again.node()->global_id(), before);
  // A node with no reference between two collections stays valid and shared.
  long id = m.Bdd_or(x, y).node()->global_id();
  EXPECT_EQ(m.Bdd_or(x, y).node()->global_id(), id);
}

TEST(BddManager, MapSuppressAndIntegrate) {
  bddpp_manager m;
  bdd a = m.New_var_last("a"), b = m.New_var_last("b");
  bdd f = m.Bdd_and(a, b);
  long size = m.Map_size();
  m.Map_suppress(f.node());
  EXPECT_EQ(m.Map_size(), size - 1);
  // Out of the table, the node is not found again: the function gets a new node.
  long next = m.Bdd_total_size();
  bdd g = m.Bdd_and(a, b);
  EXPECT_NE(g.node(), f.node());
  EXPECT_EQ(g.node()->global_id(), next);
  EXPECT_EQ(tt_of(m, g, 2), tt_of(m, f, 2));
  EXPECT_EQ(m.Map_size(), size);
  m.Map_integrate(f.node());  // its key is taken by g's node: nothing changes
  EXPECT_EQ(m.Bdd_and(a, b), g);
  m.Map_suppress(g.node());
  m.Map_integrate(f.node());
  EXPECT_EQ(m.Bdd_and(a, b), f);
  expect_table_invariants(m);
}

TEST(BddManager, Stats) {
  bddpp_manager m;
  m.New_var_last("a");
  m.New_var_last("b");
  bdd f = m.Bdd_and(m.Bdd_var_by_index(0), m.Bdd_var_by_index(1));
  std::ostringstream out;
  m.Bdd_stats(out);
  std::string text = std::regex_replace(out.str(), std::regex("adress: 0x[0-9a-f]+"), "adress: @");
  EXPECT_EQ(text,
            "BDD MANAGER statistics:\n"
            "memory adress: @ Version: 4.7\n"
            "bdd constant number: 1\n"
            "-: 1 --> -1\n"
            "bdd variables number: 2\n"
            "Index (Id): name --> signature\n"
            "0(0): a --> 2097154\n"
            "1(1): b --> 2199025352706\n"
            "\n"
            "Map:\n"
            "global id: sign = var_index then_node else_node else_link_type (refs number)\n"
            "2: 2097154 = 0 1 1 inverse (1)\n"
            "a (node: 2,index: 0)\n"
            "-------------------------------------------\n"
            "4: 6291458 = 0 3 1 inverse (1)\n"
            "if a (node: 4,index: 0)\n"
            "  b (node: 3,index: 1)\n"
            "else (not a)\n"
            "  not(\n"
            "      1 (node: 1,index: -1)\n"
            "     )\n"
            "-------------------------------------------\n"
            "3: 2199025352706 = 1 1 1 inverse (2)\n"
            "b (node: 3,index: 1)\n"
            "-------------------------------------------\n"
            "Finaly:\n"
            "Map Nodes number: 3 --> useless: 0\n"
            "Global references number: 4\n"
            "number of garbage collector calls: 0\n"
            "----------------------------------------------\n");
  std::ostringstream handle;
  handle << m.Bdd_zero();
  EXPECT_TRUE(std::regex_match(handle.str(),
                               std::regex("adr manager= 0x[0-9a-f]+, link type =-1, adr node= 0x[0-9a-f]+, "
                                          "node signature: -1")))
      << handle.str();
  EXPECT_EQ(Bdd_version(), "4.7");
}

// Results never depend on the widths of the signature's fields: with two bits
// per child id, signatures collide all the time and nothing may be shared wrongly.
TEST(BddManager, NarrowSignatureFieldsStayCorrect) {
  bddpp_manager m;
  m.signature_id_bits = 2;
  make_vars(m);
  Gen gen(m, 8);
  std::vector<Pair> pairs;
  for (int i = 0; i < 60; ++i) pairs.push_back(gen.random(7));
  for (const Pair& p : pairs) ASSERT_EQ(tt_of(m, p.f), p.t);
  for (size_t i = 0; i + 1 < pairs.size(); ++i) {
    EXPECT_EQ(m.Bdd_equiv(pairs[i].f, pairs[i + 1].f), pairs[i].t == pairs[i + 1].t ? 1 : 0);
    EXPECT_EQ(tt_of(m, m.Bdd_and(pairs[i].f, pairs[i + 1].f)), pairs[i].t & pairs[i + 1].t);
  }
  expect_table_invariants(m);
  std::map<int64_t, int> seen;
  for (bdd_node* n : m.Map_nodes_by_signature()) ++seen[n->signature()];
  EXPECT_LT(seen.size(), size_t(m.Map_size())) << "the test must make signatures collide";
  m.Bdd_gc();
  expect_table_invariants(m);
  for (const Pair& p : pairs) ASSERT_EQ(tt_of(m, p.f), p.t);
}

// The default layout past its 1048576 ids: more nodes than a child field can hold.
TEST(BddManager, MoreNodesThanTheSignatureCanNumber) {
  bddpp_manager m;
  const int n = 21;
  make_vars(m, n);
  // Level by level from the bottom, every function of the level below gives
  // two new nodes: (x and g) and (not x and g).
  std::vector<bdd> level{m.Bdd_one()};
  for (int index = n - 1; index >= 0 && m.Bdd_total_size() <= (1L << 20) + 1000; --index) {
    std::vector<bdd> next;
    next.reserve(level.size() * 2);
    bdd x = m.Bdd_var_by_index(index);
    for (const bdd& g : level) {
      int link = 1;
      bdd_node* t = m.Find_or_create_bdd_node(index, g.link_type(), -1, g.node(), m.one, link);
      next.push_back(bdd(&m, link, t));
      link = 1;
      bdd_node* e = m.Find_or_create_bdd_node(index, -1, g.link_type(), m.one, g.node(), link);
      next.push_back(bdd(&m, link, e));
    }
    level.swap(next);
  }
  ASSERT_GT(m.Bdd_total_size(), 1L << 20);
  // The last cubes: distinct nodes, each the right cube, found again on rebuilding.
  long size = m.Bdd_total_size();
  for (size_t k = level.size() - 64; k < level.size(); ++k) {
    const bdd& c = level[k];
    EXPECT_GT(c.node()->global_id(), 1L << 20);
    EXPECT_EQ(m.Bdd_is_cube(c), 1);
    std::vector<int> literals(n);
    m.Bdd_to_literals(c, literals.data());
    EXPECT_EQ(m.Literals_to_bdd(literals.data()), c);
    EXPECT_EQ(m.Bdd_satisfy(c), c);
  }
  EXPECT_NE(level[level.size() - 1], level[level.size() - 2]);
  EXPECT_GE(m.Bdd_total_size(), size);
}

}  // namespace

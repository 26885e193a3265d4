// Equations of a compiled module and the wood that holds them.
//
// A `Bddexpression` says that one variable of a BDD manager equals a BDD over
// other variables of that manager (concrete), or is computed outside by a named
// definition of which only the dependences are known (abstract). A
// `Bddexpressionwood` is the set of a module's equations, indexed by variable
// index, with the inverse of the dependences (`readers`) kept up to date, and
// the PERT dates: the early date of an equation is the longest path that ends
// at it, the late date of a variable the longest path that starts at it.
//
// Dating, closures and critical paths are linear in equations plus
// dependences: dates go in topological order, closures and path lengths are
// memoised iterative walks, and cycles are found by an iterative strongly
// connected component search (no recursion follows the graph).
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "bdd/bddpp.h"

class Bddexpressionwood;

class Bddexpression {
 public:
  // An empty record: abstract, weight 1, dates 0. The second form sets the
  // wood and does not enter the record in it.
  Bddexpression();
  explicit Bddexpression(Bddexpressionwood* wood);

  // Concrete equation `variable = right`, entered in `wood` (dependences built,
  // learned, late date stored). With a null wood: an abstract record with
  // empty handles.
  Bddexpression(const std::string& name, Bddexpressionwood* wood, const bdd& variable, const bdd& right,
                long early, long late);
  Bddexpression(const std::string& name, Bddexpressionwood* wood, const bdd& variable, const bdd& right,
                long early, long late, int usertype);
  // The name is the manager's name of `variable`.
  Bddexpression(Bddexpressionwood* wood, const bdd& variable, const bdd& right, long early, long late);
  // A non-empty exp_def makes the equation abstract (the right member is not
  // kept) and enters it with learn_abstract_expression.
  Bddexpression(const std::string& name, Bddexpressionwood* wood, const bdd& variable, const bdd& right,
                const std::string& exp_def, long early, long late, int usertype);
  // The abstract equation of the variable at index `id`, named after it.
  Bddexpression(long id, Bddexpressionwood* wood, const std::set<long>& dependances,
                const std::string& exp_def, long early, long late);
  // Same; `extra` (may be null) orders the equation without being a dependence.
  Bddexpression(long id, Bddexpressionwood* wood, const std::set<long>* extra,
                const std::set<long>* dependances, const std::string& exp_def, long early, long late);
  Bddexpression(long id, Bddexpressionwood* wood, const std::set<long>* extra,
                const std::set<long>* dependances, long early, long late);

  // Copies. The forms with a wood carry the handles into that wood's manager
  // (by index); the three-argument form then learns the copy in `wood`.
  Bddexpression(const Bddexpression& other);
  Bddexpression(Bddexpressionwood* wood, const Bddexpression& other);
  Bddexpression(Bddexpressionwood* wood, Bddexpressionwood* other_wood, const Bddexpression& other);
  Bddexpression& operator=(const Bddexpression& other);
  // Equal abstraction, variable, right member, usertype, weight, name, exp_def.
  bool operator==(const Bddexpression& other) const;
  bool operator!=(const Bddexpression& other) const { return !(*this == other); }

  // ---- fields ----
  Bddexpressionwood* getBddexpressionwood() const { return wood; }
  const std::string& getName() const { return name; }
  void setName(const std::string& n) { name = n; }
  const bdd& my_bdd_var() const { return variable; }
  const bdd& my_bdd_exp() const { return right; }
  int getAbstraction() const { return abstraction; }
  void setAbstraction(int a);
  const std::string& getExpDef() const { return exp_def; }
  // A non-empty name makes the equation abstract; "" leaves abstraction alone.
  void setExpDef(const std::string& def);
  long getW() const { return weight; }
  void setW(long w) { weight = w; }
  const std::set<long>& getDependances() const { return dependances; }
  long getEarlyDate() const { return early_date; }
  void setEarlyDate(long d) { early_date = d; }
  // The late date stands in the wood, by the variable's index; 0 when it
  // cannot be reached.
  long getLateDate() const;
  void setLateDate(long d);
  int getUserType() const { return usertype; }
  void setUserType(int t) { usertype = t; }
  // Index of the left member in the wood's manager, -1 without one.
  long getIndex() const;

  // ---- editing ----
  // Only on a record without a wood.
  void setBddVar(bddpp_manager* manager, const bdd& var);
  void setBddExp(bddpp_manager* manager, const bdd& exp);
  // The ordinary way: keeps the wood's readers right, watches for cycles.
  void setBddExp(const bdd& exp);
  // The same with the dates set and without the cycle watch (file readers).
  void setBddExp(const bdd& exp, long early, long late);
  void append_or_exp(const bdd& g);
  void append_and_exp(const bdd& g);
  void append_not_exp();
  // Adds to the dependences alone; readers are not touched.
  void add_specific_var_dependance(long index);
  void setBddexpressionwood(Bddexpressionwood* w);
  void build_normal_dependances();
  void internal_build_dependances();
  void internal_build_dependances(bddpp_manager* manager);
  // Dependences plus the left member's index.
  std::set<long> set_of_index_used_variables() const;
  // The manager's name of the left member; empty without wood or variable.
  std::string my_bddname() const;

  // Case analysis on the variable of id `id`: two new equations hold the two
  // cofactors, and the right member becomes ite(x, then, else). Outputs -3
  // when nothing is done.
  void Shannon_expand(long id, long& then_index, long& else_index);

  // Text of operator<< without address, type, weight and usertype.
  std::string debug_in_string() const;
  friend std::ostream& operator<<(std::ostream& out, const Bddexpression& e);

  // ---- target printers: defined with the generators ----
  void put_c(std::ostream& out, const std::string& node_array, std::list<std::string>& pointer_wires);
  void put_csharp(std::ostream& out, const std::string& node_array, int indent);
  void put_vhdl_quarnc(std::ostream& out, const std::string& node_array, std::list<std::string>& outputs);
  void put_blif(std::ostream& out, const std::string& node_base);
  void put_lustre_arrayless(std::ostream& out, const std::string& node_base);
  void put_doc(std::ostream& out, const std::string& node_base);
  void put_qnc(std::ostream& out, const long* corres);

 private:
  friend class Bddexpressionwood;
  void Print(std::ostream& out, bool full) const;
  void Carry_from(bddpp_manager* source, const Bddexpression& other);

  Bddexpressionwood* wood = nullptr;
  std::string name;
  bdd variable;
  int abstraction = 1;
  std::string exp_def;
  bdd right;
  long weight = 1;
  std::set<long> dependances;
  long early_date = 0;
  int usertype = 0;
};

class Bddexpressionwood {
 public:
  // Own manager, tables sized for it.
  Bddexpressionwood();
  explicit Bddexpressionwood(bddpp_manager* manager);
  // Copy of every equation, readers set and late date. With
  // common_bdd_manager 0 the copy gets a manager of its own. Null: empty wood.
  explicit Bddexpressionwood(Bddexpressionwood* other);
  Bddexpressionwood(const Bddexpressionwood& other);
  Bddexpressionwood& operator=(const Bddexpressionwood& other);
  // Destroys every equation of the table, then the manager unless shared.
  ~Bddexpressionwood();

  int get_common_bdd_manager() const { return common_bdd_manager; }
  void set_common_bdd_manager(int c) { common_bdd_manager = c; }
  bddpp_manager* my_bdd_manager() const { return manager; }
  const std::set<long>& getExpIds() const { return exp_ids; }
  long exp_number() const { return long(exp_ids.size()); }
  long Nb_bdd_vars() const { return nb_bdd_vars; }
  long getWoodSize() const { return wood_size; }
  // Equation by index, null where a variable has none; Nb_bdd_vars() entries.
  Bddexpression** Exp_table() { return exp_table.data(); }
  // Indexes of the equations that read variable `index` (empty out of range).
  const std::set<long>& getReaders(long index) const;
  long getLateDate(long index) const;
  void setLateDate(long index, long date);
  long Nb_level() const { return nb_level; }
  void update_nb_level(long level) { nb_level = level; }

  // ---- variables ----
  bdd New_var_last(const std::string& name);
  long Index_new_var_last(const std::string& name);
  bdd New_var_before_by_bdd(const bdd& var, const std::string& name);
  bdd New_var_before_by_index(long index, const std::string& name);
  bdd New_var_after_by_bdd(const bdd& var, const std::string& name);
  bdd New_var_after_by_index(long index, const std::string& name);
  // Tables cover every variable of the manager.
  void update_bdd_vars();
  // After an insertion at `index`: entries at and behind it move up by one.
  void update_bdd_vars(long index);

  // ---- access ----
  Bddexpression* exp_by_index(long index);
  Bddexpression* exp_by_bdd(const bdd& var);
  Bddexpression* exp_by_bddname(const std::string& name);
  Bddexpression* exp_by_name(const std::string& name);  // by the `name` field
  long Index_exp_by_name(const std::string& name);
  std::string Name_exp_by_index(long index);
  std::string Name_exp_by_bdd(const bdd& var);
  std::string Bddname_exp_by_index(long index);
  std::string Bddname_exp_by_bdd(const bdd& var);
  // The n-th equation in index order, from 0.
  Bddexpression* exp(long n);
  // Every variable that an equation defines or reads.
  std::set<long> Set_of_index_used_variables();
  void append_not_expression(long index);

  bdd Bdd_one();
  bdd Bdd_zero();
  bdd Bdd_var_by_index(long index);
  long Index_var_by_name(const std::string& name);
  std::string Name_var_by_index(long index);
  std::string Name_var_by_bdd(const bdd& f);
  bool Bdd_is_tautology(const bdd& f);
  bdd Bdd_and(const bdd& f, const bdd& g);
  bdd Bdd_not(const bdd& f);
  bdd Bdd_reduce(const bdd& f, const bdd& assertion);
  bdd Bdd_simplify2(const bdd& f, const bdd& c);

  // ---- entering and leaving ----
  void learn_expression(Bddexpression* exp);
  // `extra` (may be null): readers entries without dependences.
  void learn_abstract_expression(Bddexpression* exp, const std::set<long>* extra);
  void forget_expression_by_bddid(long index);
  void absolute_forget_expression_by_bddid(long index);
  // Drops constant equations that nobody reads and that `keep` doesn't name.
  void clean(const std::list<long>& keep);
  void clean(const std::set<long>& keep);
  void delete_prefixe_names(const std::string& prefix);

  // ---- printing ----
  void stat(std::ostream& out);
  std::string debug_in_string();
  friend std::ostream& operator<<(std::ostream& out, Bddexpressionwood& wood);

  // ---- dates (PERT) ----
  // Dates the whole wood unless Nb_level is already non-zero; gives Nb_level.
  long compute_dates();
  // Raises the dates from the given indexes (negative ones are skipped).
  long compute_dates(const std::list<long>& indexes);
  // Indexes of equations in a cycle or behind one; empty when all is well.
  std::list<long> loop_detection();
  // Ascending early date, ascending index within a date.
  std::list<long> earliest_sort();
  // Descending late date, ascending index within a date.
  std::list<long> latest_sort();

  // Transitive closures: `set` plus what `index` reads (up) or what reads it (down).
  std::set<long> up_dependances(long index, long depth, const std::set<long>& set);
  std::set<long> down_dependances(long index, long depth, const std::set<long>& set);
  // Heaviest paths through the weights of the equations.
  long up_critical_path(long index, long depth, long weight);
  long down_critical_path(long index, long depth, long weight);

  // Case analysis on free variables of the cycles; gives the new variables.
  std::set<long> loop_breaking(const std::set<long>& candidates, int& flag);

  // ---- reductions: defined in wood_reductions.cpp ----
  void constants_propagation(const std::list<int>& types);
  void constants_propagation();
  void suppress_wires(const std::list<int>& types);
  void suppress_wires();
  void suppress_local(long index);
  // The same, with the constants that it brings about propagated under protection `types`.
  void suppress_local(long index, const std::list<int>& types);
  void suppress_locals(const std::list<int>& types);
  void suppress_locals();
  // Substitutes the equation into its readers and leaves it with none.
  void useless_local(long index);
  void reduce_expressions(const bdd& assertion, const std::list<int>& types);
  void reduce_expressions(const bdd& assertion);
  void reduce_expressions_when_var_forgotten_by_exist_op(long index);
  void reduce_expressions_when_var_forgotten_by_forall_op(long index);
  long reduce_proposition_by_variable();
  bool global_tautology();
  void internal_global_build_dependances();
  bdd reduce_proposition_by_assertion();

  // ---- instantiation (wood_instance.cpp): the sub-wood's equations copied
  // under the names of the map (a missing entry warns and is empty) or with
  // the suffix appended ----
  void Include_wood_instance(Bddexpressionwood& sub, std::map<std::string, std::string>* names);
  void Include_wood_instance(Bddexpressionwood& sub, const std::string& suffix);

  // ---- target printers: defined with the generators ----
  void Put_c(std::ostream& out, const std::string& node_array, std::list<std::string>& pointer_wires);
  void Put_blif(std::ostream& out, const std::string& node_base);
  void Put_doc(std::ostream& out, const std::string& node_base);
  void Put_qnc(std::ostream& out, const long* corres, int debug);
  void Lustre_writing_node_used(int size, int* used);

 private:
  friend class Bddexpression;
  void Init_tables(long count, const char* who);
  void Copy_from(const Bddexpressionwood& other);
  void Destroy();
  void Learn(Bddexpression* exp, const std::set<long>* extra);
  long Index_of(const Bddexpression* exp) const;
  // Step of the dating for every index of `seeds` (wood_dates.cpp).
  void Date_from(const std::vector<long>& seeds, const char* too_big);
  void Direct_dates(const std::vector<long>& seeds);
  // Heaviest path below (downward) or above an index, memoised; sets `cycle`
  // when the walk meets one. Without `fresh` the values of the previous walk
  // in the same direction are reused: the graph must not have changed.
  long Path_weight(long index, bool downward, bool& cycle, bool fresh = true);
  // Composes the equation at `index` into the concrete reader `r`.
  void Compose_into(long r, long index);
  // Drops from each readers set the entries whose equation doesn't read it.
  void Prune_readers();

  // Incremental upkeep of the reductions. After a full rebuild of the
  // dependences the wood is in step: every concrete equation reads exactly
  // the support of its right member and `readers` is the exact inverse. From
  // there the reductions log what they change (readers entries, equations),
  // so that the next rebuild only undoes the log and redoes the changed
  // equations, and the constant propagation starts from the indexes that may
  // have become constants with readers. Any other change leaves step.
  void Leave_step();
  void Reader_insert(long d, long r);
  void Reader_erase(long d, long r);
  void Reader_clear(long d);
  // Before the right member, the dependences or the presence of `i` change.
  void Touch(long i);
  // A constant equation with readers, as the constant propagation takes them.
  bool Constant_with_readers(long i) const;
  void Full_rebuild();
  void Step_rebuild();
  struct Reader_change {
    long d, r;
    bool inserted;
  };
  bool in_step = false;
  std::vector<Reader_change> reader_log;
  std::map<long, std::set<long>> touched;  // index -> dependences when in step
  std::set<long> candidates;  // may satisfy Constant_with_readers
  // Both forms of Include_wood_instance: `rename` gives the parent's name of a
  // sub-module name (a true second argument makes a missing one fatal).
  void Include(Bddexpressionwood& sub, const std::function<std::string(const std::string&, bool)>& rename,
               bool verbose);

  int common_bdd_manager = 0;
  bddpp_manager* manager = nullptr;
  std::set<long> exp_ids;
  long nb_bdd_vars = 0;
  long wood_size = 1;
  std::vector<Bddexpression*> exp_table;
  std::vector<std::set<long>> readers;
  std::vector<long> late_dates;
  long nb_level = 0;
  // Records that the tables let go of (replaced or cleaned); destroyed with the wood.
  std::vector<Bddexpression*> dropped;
  // Scratch of the memoised walks: a slot is valid when its stamp is the walk's.
  std::vector<uint32_t> walk_stamp;
  std::vector<long> walk_value;
  std::vector<char> walk_state;
  uint32_t walk_serial = 0;
};

// compute_dates() on the wood.
long PERT(Bddexpressionwood* wood);

// The stand-alone dater by relaxation over an array of equations.
long normalise_min_min(long count, long* early, long* late);
long PERT_original_version(long count, Bddexpression** expressions);
long PERT_original_version(long count, Bddexpression* expressions);
bool learn_upstream_dependance(long count, long* dates, Bddexpression* exp, int& flag);
bool learn_downstream_dependance(long count, long* dates, Bddexpression* exp, int& flag);

// Reduced ordered binary decision diagrams with complement links.
//
// A function is a `bdd` handle: (manager, link, node). Only the else edge of
// a node carries a sign; the then edge is always normal, so a function and its
// negation share every node and negation is free. Nodes store the id of their
// variable (fixed for life); the order goes through `index_of_id`, so a
// variable can be inserted anywhere without touching a node.
//
// Storage: nodes live in 2 MB blocks of 32768 nodes, addressed by a 32-bit
// slot; a node never moves. The unique table is an open hash on (variable,
// then slot, else slot, else sign): it never depends on the 64-bit
// `signature`, whose fields are only a display form, so a manager past 2^20
// nodes stays correct. Recursive operations are memoised through a
// direct-mapped operation cache that `Bdd_gc` clears. A remembered result is
// a node that the plain recursion would only have found again, so memoising
// never changes which nodes are made nor their global ids. Nodes are only
// reclaimed by `Bdd_gc`.
#pragma once

#include <cstdint>
#include <cstdio>
#include <iosfwd>
#include <list>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

class bddpp_manager;
class bdd_node;

namespace bdd_detail {
// Zeroed storage for the big tables: large blocks ask the system for huge
// pages, since every lookup in them is a random access.
// A block is aligned on its own 2 MB whatever its size.
void* Allocate_table(size_t bytes, bool block = false);
void Free_table(void* p, size_t bytes, bool block = false);

// A fixed-size array of plain records (resized only by `assign`).
template <class T>
class table {
 public:
  table() = default;
  table(const table&) = delete;
  table& operator=(const table&) = delete;
  ~table() { Free_table(data_, size_ * sizeof(T)); }
  // n records, all bytes zero: the empty form of every table.
  void assign_zero(size_t n) {
    Free_table(data_, size_ * sizeof(T));
    data_ = static_cast<T*>(Allocate_table(n * sizeof(T)));
    size_ = n;
  }
  void swap(table& o) {
    std::swap(data_, o.data_);
    std::swap(size_, o.size_);
  }
  size_t size() const { return size_; }
  T& operator[](size_t i) { return data_[i]; }
  const T& operator[](size_t i) const { return data_[i]; }
  T* begin() { return data_; }
  T* end() { return data_ + size_; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + size_; }

 private:
  T* data_ = nullptr;
  size_t size_ = 0;
};
}  // namespace bdd_detail

std::string Bdd_version();

// One node, 48 bytes. The fields are public for the walks of the printers and
// the generators; only the manager writes anything but `mark` and
// `print_number`. The owner and the signature are derived, not stored: nodes
// live in 2 MB blocks whose head names the manager.
class bdd_node {
 public:
  bdd_node* then_node = nullptr;  // child when the variable is true; null on the terminal
  bdd_node* else_node = nullptr;  // child when the variable is false; null on the terminal
  int32_t var_id = -1;            // id of the node's variable; -1 on the terminal
  int32_t refs = 0;               // handles and parent nodes pointing here
  int16_t else_link_type = 1;     // +1 normal, -1 inverse
  int16_t mark = 0;               // scratch of marking walks: 0 or 1
  uint32_t slot = 0;              // place in the manager's pool
  long print_number = 0;          // number given by the last marking walk

  long global_id() const { return gid_; }
  bddpp_manager* manager() const {
    return *reinterpret_cast<bddpp_manager* const*>(reinterpret_cast<uintptr_t>(this) & ~kBlockMask);
  }
  // Key form: var_id (bits 63-41) | then global id (40-21) | else global id
  // (20-1) | 1 for a normal else edge; -1 on the terminal. Child ids wider
  // than their field are cut to it: the signature is shown, never looked up.
  int64_t signature() const;
  // Manager present, variable in range, children present, distinct from the
  // node, below it in the order and themselves correct, signature not negative.
  bool is_correct() const;

 private:
  friend class bddpp_manager;
  static constexpr uintptr_t kBlockMask = (uintptr_t(1) << 21) - 1;
  long gid_ = 0;                  // serial number in the manager, never reused
};

// A counted handle on a function: the node's `refs` counts the handles.
class bdd {
 public:
  bdd() = default;
  bdd(bddpp_manager* manager, int link, bdd_node* node);
  bdd(const bdd& other);
  bdd(bdd&& other) noexcept;
  ~bdd();
  bdd& operator=(const bdd& other);
  bdd& operator=(bdd&& other) noexcept;

  bool initialised() const { return manager_ != nullptr && node_ != nullptr; }
  bddpp_manager* manager_ref() const { return manager_; }
  int link_type() const { return link_; }
  bdd_node* node() const { return node_; }

  bool operator==(const bdd& o) const {
    return manager_ == o.manager_ && link_ == o.link_ && node_ == o.node_;
  }
  bool operator!=(const bdd& o) const { return !(*this == o); }
  // An arbitrary but stable order (by node serial, then link) for sets and maps.
  bool operator<(const bdd& o) const;

  // Defined by the VHDL generator: "not " for a complemented handle, then
  // node_array "(" global id ")".
  std::string vhdl_node_name(const std::string& node_array) const;

 private:
  bddpp_manager* manager_ = nullptr;
  int link_ = 0;
  bdd_node* node_ = nullptr;
};

// "adr manager= " ... ", link type =" ... ", adr node= " ... ", " ["node signature: " ...]
std::ostream& operator<<(std::ostream& out, const bdd& f);

inline bdd::bdd(bddpp_manager* manager, int link, bdd_node* node) : manager_(manager), link_(link), node_(node) {
  if (node_ != nullptr) ++node_->refs;
}
inline bdd::bdd(const bdd& other) : manager_(other.manager_), link_(other.link_), node_(other.node_) {
  if (node_ != nullptr) ++node_->refs;
}
inline bdd::bdd(bdd&& other) noexcept : manager_(other.manager_), link_(other.link_), node_(other.node_) {
  other.manager_ = nullptr;
  other.link_ = 0;
  other.node_ = nullptr;
}
inline bdd::~bdd() {
  if (node_ != nullptr) --node_->refs;
}
inline bdd& bdd::operator=(const bdd& other) {
  if (node_ != other.node_) {
    if (other.node_ != nullptr) ++other.node_->refs;
    if (node_ != nullptr) --node_->refs;
    node_ = other.node_;
  }
  manager_ = other.manager_;
  link_ = other.link_;
  return *this;
}
inline bdd& bdd::operator=(bdd&& other) noexcept {
  if (this != &other) {
    if (node_ != nullptr) --node_->refs;
    manager_ = other.manager_;
    link_ = other.link_;
    node_ = other.node_;
    other.manager_ = nullptr;
    other.link_ = 0;
    other.node_ = nullptr;
  }
  return *this;
}
inline bool bdd::operator<(const bdd& o) const {
  if (manager_ != o.manager_) return manager_ < o.manager_;
  long a = node_ ? node_->global_id() : 0, b = o.node_ ? o.node_->global_id() : 0;
  if (a != b) return a < b;
  return link_ < o.link_;
}

class bddpp_manager {
 public:
  bddpp_manager();
  // Same variables (names, ids, order), fresh variable nodes, no inner node.
  explicit bddpp_manager(bddpp_manager* other);
  ~bddpp_manager();
  bddpp_manager(const bddpp_manager&) = delete;
  bddpp_manager& operator=(const bddpp_manager&) = delete;

  // ---- variables (read-only for clients) ----
  long Nb_bdd_vars = 0;
  long var_capacity = 16;
  long next_global_id = 2;
  std::vector<std::string> names;        // by id
  std::vector<bdd_node*> var_nodes;      // by id
  std::vector<long> index_of_id;         // by id
  std::vector<long> id_of_index;         // by index
  std::vector<bdd> assoc_table;          // by id
  std::map<std::string, long> name_to_id;
  long gc_calls = 0;
  bdd_node* one = nullptr;               // the terminal

  // Width of the two child-id fields of `signature` (20). The unique table
  // does not use the signature, so a manager with more nodes stays correct;
  // only the displayed signatures stop being distinct. Tests lower it.
  int signature_id_bits = 20;

  std::string Bdd_version() const;

  // ---- variables ----
  bdd_node* New_node_var_last(const std::string& name);
  bdd New_var_last(const std::string& name);
  bdd_node* New_node_var_before(long index, const std::string& name);
  bdd_node* New_node_var_after(long index, const std::string& name);
  bdd New_var_before(long index, const std::string& name);
  bdd New_var_after(long index, const std::string& name);
  bdd New_var_before(const bdd& var, const std::string& name);
  bdd New_var_after(const bdd& var, const std::string& name);

  bdd Bdd_var_by_id(long id);
  bdd Bdd_var_by_index(long index);
  bdd Bdd_var_by_name(const std::string& name);
  bdd Bdd_if(const bdd& f);
  long Bdd_if_id(const bdd& f);
  long Id_var_by_bdd(const bdd& f);
  long Bdd_if_index(const bdd& f);
  long Index_var_by_bdd(const bdd& f);
  long Index_var_by_name(const std::string& name);
  long Id_var_by_name(const std::string& name);
  std::string Name_var_by_index(long index);
  std::string Name_var_by_id(long id);
  std::string Name_var_by_bdd(const bdd& f);
  long Index_of_node(const bdd_node* n) const;  // -1 terminal, -3 no manager

  void Rename_var(const std::string& new_name, const std::string& old_name);
  void Change_name_by_index(long index, const std::string& name);
  void Change_name_by_id(long id, const std::string& name);
  void Replace_char_in_all_names(char from, char to);
  void No_begin_underscore_name();

  void Bdd_var_reorder();
  bdd Bdd_swap_vars(const bdd& f, long a, long b);

  // ---- constants and tests ----
  bdd Bdd_one();
  bdd Bdd_zero();
  bdd_node* Bdd_node_one() const { return one; }
  bdd Bdd_not(const bdd& f);
  bool Bdd_is_var(const bdd& f) const;
  bool Bdd_is_negvar(const bdd& f) const;
  bool Bdd_is_tautology(const bdd& f) const;
  bool Bdd_is_tautology(const bdd& f, int value) const;
  bool Bdd_is_one_tautologic(const bdd& f) const;
  bool Bdd_is_zero_tautologic(const bdd& f) const;

  bool Bdd_node_depends_on(bdd_node* node, bdd_node* var_node);
  bool Bdd_depends_on(const bdd& f, const bdd& v);
  std::set<long> set_of_id_depend_on(const bdd& f);
  std::set<long> set_of_index_depend_on(const bdd& f);
  void Present_variables(const bdd& f, int* flags);  // one int per index
  bool exists_common_variables(const bdd& f, const bdd& g);
  bool Variable_awaited(const bdd& f, long index);
  bool Variable_true_awaited(const bdd& f, long index);
  bool Variable_false_awaited(const bdd& f, long index);

  // ---- marks and sizes ----
  void Bdd_clear_marks(bdd_node* node);
  void Bdd_clear_marks(const bdd& f);
  void Bdd_global_clear_marks();
  long Bdd_incremental_id(bdd_node* node, long start);
  long Bdd_node_size(bdd_node* node);
  long Bdd_size(const bdd& f);
  long Bdd_total_size() const { return next_global_id; }
  bool Bdd_is_correct(const bdd& f);

  // ---- unique table, reclaiming, reports ----
  bdd_node* Find_or_create_bdd_node(long index, int then_link, int else_link, bdd_node* then_node,
                                    bdd_node* else_node, int& link);
  void Map_integrate(bdd_node* node);
  void Map_suppress(bdd_node* node);
  long Map_size() const { return live_nodes_; }
  // Every node of the unique table in ascending signature (then global id).
  std::vector<bdd_node*> Map_nodes_by_signature() const;
  void Bdd_gc();
  void Bdd_stats(std::ostream& out);
  bdd Bdd_dup(const bdd& f);
  void Bdd_free(const bdd& f);

  // ---- Boolean operations ----
  bdd Bdd_and(const bdd& f, const bdd& g);
  bdd Bdd_or(const bdd& f, const bdd& g);
  bdd_node* Bdd_and(int link_x, bdd_node* x, int link_y, bdd_node* y, int& result_link);
  bdd_node* Bdd_or(int link_x, bdd_node* x, int link_y, bdd_node* y, int& result_link);
  bdd Bdd_nand(const bdd& f, const bdd& g);
  bdd Bdd_nor(const bdd& f, const bdd& g);
  bdd Bdd_xor(const bdd& f, const bdd& g);
  bdd Bdd_xnor(const bdd& f, const bdd& g);
  bdd Bdd_eq(const bdd& f, const bdd& g);
  bdd Bdd_implication(const bdd& f, const bdd& g);
  bdd Bdd_ite(const bdd& f, const bdd& g, const bdd& h);
  bdd Bdd_ite(int link, long index, const bdd& g, const bdd& h);

  int Bdd_equiv(const bdd& f, const bdd& g);
  int Bdd_imply(const bdd& f, const bdd& g);
  int Bdd_is_cube(const bdd& f);
  int Bdds_excl(const bdd& f, const bdd& g);
  int Bdds_exclude(const bdd& f, const bdd& g);

  bdd Bdd_then(const bdd& f);
  bdd Bdd_else(const bdd& f);
  bdd Bdd_cube_reduce(const bdd& f, const bdd& cube);
  bdd Bdd_exist(const bdd& f, const bdd& v);
  bdd Bdd_forall(const bdd& f, const bdd& v);
  bdd Bdd_compose(const bdd& f, const bdd& v, const bdd& g);
  bdd Bdd_replace_vars(const bdd& f, const long* map);  // new index by old index
  bdd Bdd_follow_assoc(const bdd& f, long* out_index);
  void Bdd_assoc_bdd_to_var(const bdd& expression, const bdd& v);
  bdd Bdd_keep_first_variables(const bdd& f, long n);
  bdd Bdd_reduce(const bdd& f, const bdd& assertion);
  bdd Bdd_simplify(const bdd& f, const bdd& c);
  bdd Bdd_simplify2(const bdd& f, const bdd& c);

  bdd Bdd_eval(const bdd& f, const int* values);                 // one value per index
  int Bdd_eval_for_literal(const bdd& f, const int* literals);   // 0, 1 or 2

  // Literal arrays: one int per index, 1 true, 0 false, 2 absent.
  bdd Bdd_satisfy(const bdd& f);
  int Bdd_OneSat(bdd_node* node, int link, int* literals);
  void Bdd_to_literals(const bdd& f, int* literals);
  void Bdd_node_to_literals(int link, bdd_node* node, int* literals);
  bdd Literals_to_bdd(const int* literals);
  bdd Minterm(long number, int count, const bdd* vars);
  uint64_t Id_function_by_bdd(const bdd& f, int count, const bdd* vars);
  bdd Bdd_function_by_id(uint64_t id, int count, const bdd* vars);

  // ---- node listings (the node table of compiled modules) ----
  void Print_bdd_node(std::ostream& out, bdd_node* node);
  void Print_bdd_node(std::ostream& out, bdd_node* node, const long* corres);
  void Print_bdd_by_nodes_list(std::ostream& out, const bdd& f);
  void Print_bdd_by_nodes_list(std::ostream& out, const bdd& f, const long* corres);
  void Print_bdds_list_by_nodes_list(std::ostream& out, const std::list<bdd>& list);
  void Print_bdds_list_by_nodes_list(std::ostream& out, const std::list<bdd>& list, const long* corres);

  // =====================================================================
  // Sums of products and implicants: defined in bdd_sop.cpp.
  // A cover is a list of cubes whose disjunction is the function.
  // =====================================================================
  void Bdd_sop(const bdd& f, std::list<bdd>& list, int level);
  int Bdd_sop(const bdd& f, bdd* array, int level);  // obsolete form, gives the count
  void Bdd_sop_0(const bdd& f, std::list<bdd>& list);
  void Bdd_sop_1(const bdd& f, std::list<bdd>& list);
  void Bdd_sop_2(const bdd& f, std::list<bdd>& list);
  void Bdd_sop_2plus(const bdd& f, std::list<bdd>& list);
  void Bdd_prime_implicants(const bdd& f, std::list<bdd>& list);
  void Bdd_essential_implicants(const bdd& f, std::list<bdd>& essential, std::list<bdd>& others);
  bdd Bdd_one_implicant(const bdd& f);
  bdd Bdd_simplify3(const bdd& f, const bdd& c);
  void Truth_table(const bdd& f, int count, const bdd* vars, std::string* text);
  void Bdd_truth_table(const bdd& f, int count, const bdd* vars, bdd* results);
  long Max_number_of_terms() const;

  // =====================================================================
  // Printers and expression reader: defined in bdd_print.cpp and
  // parse_exp_bdd.cpp.
  // =====================================================================
  void Print_bdd_structure(std::ostream& out, const bdd& f);
  void Print_bdd_structure(FILE* out, const bdd& f);
  void Print_bdd_structure_loc(std::ostream& out, int indent, bdd_node* node);
  void Print_bdd_structure_loc(FILE* out, int indent, bdd_node* node);
  void Print_bdd_global_structure_loc(std::ostream& out, int indent, bdd_node* node);

  std::string Print_product_to_String_pref_suff(const std::string& and_word, const std::string& not_word,
                                                const std::string& not_end_word, const bdd& f,
                                                const std::string& prefix, const std::string& suffix);
  std::string Print_sop_to_String_pref_suff(const std::string& or_word, const std::string& and_word,
                                            const std::string& not_word, const std::string& not_end_word,
                                            const bdd& f, const std::string& prefix,
                                            const std::string& suffix, int level = 0);
  std::string Print_product_to_String(const std::string& and_word, const std::string& not_word,
                                      const std::string& not_end_word, const bdd& f);
  std::string Print_sop_to_String(const std::string& or_word, const std::string& and_word,
                                  const std::string& not_word, const std::string& not_end_word, const bdd& f,
                                  int level = 0);
  void Print_product(std::ostream& out, const std::string& and_word, const std::string& not_word,
                     const std::string& not_end_word, const bdd& f);
  void Print_sop(std::ostream& out, const std::string& or_word, const std::string& and_word,
                 const std::string& not_word, const std::string& not_end_word, const bdd& f, int level = 0);
  void Print_product_pref_suff(std::ostream& out, const std::string& and_word, const std::string& not_word,
                               const std::string& not_end_word, const bdd& f, const std::string& prefix,
                               const std::string& suffix);
  void Print_sop_pref_suff(std::ostream& out, const std::string& or_word, const std::string& and_word,
                           const std::string& not_word, const std::string& not_end_word, const bdd& f,
                           const std::string& prefix, const std::string& suffix, int level = 0);
  std::string Print_sop_to_ESTEREL_String(const bdd& f, int level = 0);
  std::string Print_sop_to_VHDL_String(const bdd& f, int level = 0);

  void PLA_print_pref_suff(std::ostream& out, const bdd& variable, const bdd& f, const std::string& var_prefix,
                           const std::string& var_suffix, const std::string& header,
                           const std::string& output_suffix, const std::string& cube_sep,
                           const std::string& end_word, const std::string& literal_sep, int level);
  void PLA_print_pref_suff_with_renaming(std::ostream& out, const long* corres, const bdd& variable, const bdd& f,
                                         const std::string& var_prefix, const std::string& var_suffix,
                                         const std::string& header, const std::string& output_suffix,
                                         const std::string& cube_sep, const std::string& end_word,
                                         const std::string& literal_sep, int level);
  void BLIF_print(std::ostream& out, const bdd& variable, const bdd& f, int level);
  void QNC_print(std::ostream& out, const long* corres, const bdd& variable, const bdd& f, int level);

  void Print_Fixes_Points(std::ostream& out, const bdd& f);
  void debug_variables(std::ostream& out);
  bdd Parse_expression(const std::string& text, int* error);
  bdd Parse_expression(const std::string& text, int* priority, int* error);

  // =====================================================================
  // Evaluation code of the target generators: defined with the generators.
  // =====================================================================
  void Print_node_for_eval(const std::string& or_op, const std::string& and_op, const std::string& not_op,
                           const std::string& close_not, const std::string& var_prefix,
                           const std::string& var_suffix, const std::string& zero,
                           const std::string& end_of_line, const std::string& node_array, std::ostream& out,
                           bdd_node* n);
  void Print_node_for_eval(const std::string& or_op, const std::string& and_op, const std::string& not_op,
                           const std::string& close_not, const std::string& var_prefix,
                           const std::string& var_suffix, const std::string& zero,
                           const std::string& end_of_line, const std::string& line_prefix,
                           const std::string& node_array, std::ostream& out, bdd_node* n);
  void Print_node_for_eval_arrayless(const std::string& or_op, const std::string& and_op,
                                     const std::string& not_op, const std::string& close_not,
                                     const std::string& var_prefix, const std::string& var_suffix,
                                     const std::string& zero, const std::string& end_of_line,
                                     const std::string& node_array, std::ostream& out, bdd_node* n);
  void Print_node_for_eval_VHDL(const std::string& node_array, std::ostream& out, bdd_node* n);
  void Print_node_for_eval_NUSMV(const std::string& var_prefix, const std::string& var_suffix,
                                 const std::string& line_prefix, const std::string& node_base, std::ostream& out,
                                 bdd_node* n);
  void Print_node_for_eval_BLIF(const std::string& var_prefix, const std::string& var_suffix,
                                const std::string& node_base, std::ostream& out, bdd_node* n);

 private:
  // An edge is a node pointer with the sign in bit 0 (set = negated).
  using edge = uintptr_t;
  struct unique_slot {
    uint32_t hash, node;  // full hash of the node's key; node 0 (the terminal) marks a free place
  };
  struct cache_entry {
    uint32_t a, b, op, result;
  };

  static edge Edge(int link, bdd_node* n) { return reinterpret_cast<edge>(n) | (link < 0 ? 1u : 0u); }
  static bdd_node* Node(edge e) { return reinterpret_cast<bdd_node*>(e & ~edge(1)); }
  static int Link(edge e) { return (e & 1) ? -1 : 1; }
  bdd Wrap(edge e) { return bdd(this, Link(e), Node(e)); }
  long Level(const bdd_node* n) const { return index_of_id[n->var_id]; }
  bool Is_var_node(const bdd_node* n) const {
    return n != one && n->var_id >= 0 && var_nodes[n->var_id] == n;
  }

  bdd_node* Node_at(uint32_t slot) const { return chunks_[slot >> kChunkBits] + (slot & kChunkMask); }
  bdd_node* Allocate_node();
  bdd_node* Make_node(long var_id, bdd_node* then_node, bdd_node* else_node, int else_link);
  edge Mk(long var_id, edge t, edge e);
  void Grow_vars();
  void Build_var_node(long id);
  int64_t Signature_of(long var_id, const bdd_node* t, const bdd_node* e, int else_link) const;

  // unique table
  static uint32_t Unique_hash(uint32_t var, uint32_t t, uint32_t e);
  static uint32_t Key_hash(const bdd_node* n);
  bdd_node* Unique_find(long var, const bdd_node* t, const bdd_node* e, int else_link) const;
  void Unique_insert(bdd_node* n);
  void Unique_rebuild(size_t capacity);
  void Unique_erase(bdd_node* n);

  // operation cache
  // The slot from the address alone (the block head holds the block's number),
  // so a cache probe does not touch the node.
  static uint32_t Slot_of(const bdd_node* n) {
    const uintptr_t p = reinterpret_cast<uintptr_t>(n), base = p & ~bdd_node::kBlockMask;
    const uint32_t block = *reinterpret_cast<const uint32_t*>(base + sizeof(bddpp_manager*));
    return (block << kChunkBits) | uint32_t((p - base - 64) / sizeof(bdd_node));
  }
  static uint32_t Code(edge e) { return (Slot_of(Node(e)) << 1) | uint32_t(e & 1); }
  edge Decode(uint32_t c) const { return reinterpret_cast<edge>(Node_at(c >> 1)) | (c & 1); }
  cache_entry& Cache_at(uint32_t a, uint32_t b, uint32_t op) {
    uint32_t h = a * 0x9E3779B1u + b * 0x85EBCA77u + op * 0xC2B2AE3Du;
    return cache_[(h ^ (h >> 15)) & cache_mask_];
  }
  bool Cache_get(uint32_t a, uint32_t b, uint32_t op, edge& result) {
    const cache_entry& c = Cache_at(a, b, op);
    if (c.op != op || c.a != a || c.b != b) return false;
    result = Decode(c.result);
    return true;
  }
  void Cache_put(uint32_t a, uint32_t b, uint32_t op, edge result) {
    Cache_at(a, b, op) = cache_entry{a, b, op, Code(result)};
  }
  void Cache_clear();
  void Cache_maybe_grow();
  uint32_t New_call_tag(uint32_t op);

  // recursions
  edge And_rec(edge x, edge y);
  edge Or(edge x, edge y) { return And_rec(x ^ 1, y ^ 1) ^ 1; }
  edge Ite(edge f, edge g, edge h);
  edge Ite_var(long var_id, edge t, edge e);
  edge Ite_on_var(long var_id, edge t, edge e);
  edge Cube_reduce_rec(bdd_node* n, const int* literals, uint32_t op);
  edge Compose_rec(edge f, long var_index, edge g, uint32_t tag);
  edge Replace_rec(edge f, const long* map, uint32_t tag);
  edge Keep_rec(edge f, long n, uint32_t tag);
  void Check_and_result(const char* op, edge r, edge x, edge y);
  [[noreturn]] void And_internal_error(const char* op, edge r, edge x, edge y);

  // walks on private stamps (leave `mark` to the clients)
  uint32_t New_visit();
  bool Visited(bdd_node* n, uint32_t stamp);
  void Support_ids(bdd_node* n, std::vector<long>& ids);
  bool Node_support_has(bdd_node* n, long var_id);
  bool Is_correct_rec(const bdd_node* n, uint32_t stamp);
  void Print_nodes_rec(std::ostream& out, bdd_node* n, const long* corres);
  friend class bdd_node;
  friend bdd_node* Bdd_copy_node(bddpp_manager*, bddpp_manager*, bdd_node*, const long*, int, uint32_t);

  static constexpr int kChunkBits = 15;  // 1.5 MB of nodes behind a block head, in 2 MB
  static constexpr uint32_t kChunkMask = (1u << kChunkBits) - 1;
  static constexpr size_t kBlockBytes = size_t(1) << 21;
  static constexpr size_t kBlockUsed = 64 + (sizeof(bdd_node) << kChunkBits);
  static_assert(kBlockUsed <= kBlockBytes, "a block holds its nodes");
  std::vector<bdd_node*> chunks_;
  uint32_t pool_top_ = 0;                 // slots ever handed out
  bdd_node* free_list_ = nullptr;         // through then_node
  long live_nodes_ = 0;                   // inner nodes in the unique table
  bdd_detail::table<unique_slot> unique_;
  uint32_t unique_mask_ = 0;
  bool unique_purge_ = false;             // the next rebuild leaves out freed nodes
  bdd_detail::table<cache_entry> cache_;
  uint32_t cache_mask_ = 0;
  uint32_t call_serial_ = 0;
  std::vector<uint32_t> visit_;           // stamp by slot
  uint32_t visit_stamp_ = 0;
  std::vector<int> literals_;             // scratch literal array
  long cube_bottom_ = -1;                 // deepest level that literals_ fixes
};

// Copies between managers: target first, source second. The node forms give
// a node of the target; the handle forms wrap it with the link of `f`.
bdd_node* Bdd_isomorphe(bddpp_manager* target, bddpp_manager* source, bdd_node* n);
bdd Bdd_isomorphe(bddpp_manager* target, bddpp_manager* source, const bdd& f);
bdd_node* Bdd_isomorphe(bddpp_manager* target, bddpp_manager* source, bdd_node* n, const long* translation);
bdd Bdd_isomorphe(bddpp_manager* target, bddpp_manager* source, const bdd& f, const long* translation);
bdd_node* Bdd_isomorphe_by_name(bddpp_manager* target, bddpp_manager* source, bdd_node* n);
bdd Bdd_isomorphe_by_name(bddpp_manager* target, bddpp_manager* source, const bdd& f);

// The node line of its own manager.
void Print_bdd_node(std::ostream& out, bdd_node* node);
// Defined with the printers: a debug dump of a function.
void Print_debug_bdd(std::ostream& out, const bdd& f);

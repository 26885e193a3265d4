// The manager: variables, node pool, unique table, operation cache, the
// recursive operations and the reclaiming of nodes.
#include "bdd/bddpp.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

#include <sys/mman.h>

namespace {

constexpr uint32_t kEmpty = 0;  // slot 0 is the terminal, never in the table
constexpr uint32_t kMaxSlots = 0x7FFFFFFEu;  // slots are coded on 31 bits in the cache

// Operation codes of the cache. Codes with a call serial above bit 4 memoise
// one call only; the two plain ones hold across calls until `Bdd_gc`.
enum : uint32_t { OP_AND = 1, OP_CUBE = 2, OP_COMPOSE = 3, OP_REPLACE = 4, OP_KEEP = 5, OP_COPY = 6, OP_EVAL = 7 };

[[noreturn]] void stop() {
  std::cerr.flush();
  std::exit(1);
}

inline uint32_t mix(uint32_t a, uint32_t b, uint32_t c) {
  uint32_t h = a * 0x9E3779B1u + b * 0x85EBCA77u + c * 0xC2B2AE3Du;
  h ^= h >> 16;
  h *= 0x7FEB352Du;
  h ^= h >> 15;
  return h;
}

}  // namespace

namespace bdd_detail {

constexpr size_t kHugePage = size_t(1) << 21;

void* Allocate_table(size_t bytes, bool block) {
  if (bytes < kHugePage && !block) {
    void* p = ::operator new(bytes, std::align_val_t(64));
    std::memset(p, 0, bytes);
    return p;
  }
  // Fresh anonymous pages come zeroed; align them on a huge page.
  size_t rounded = (bytes + kHugePage - 1) & ~(kHugePage - 1);
  void* raw = mmap(nullptr, rounded + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) {
    std::cerr << "FATAL ERROR in bddpp_manager: out of memory (" << bytes << " bytes)" << std::endl;
    stop();
  }
  uintptr_t start = reinterpret_cast<uintptr_t>(raw);
  uintptr_t aligned = (start + kHugePage - 1) & ~(kHugePage - 1);
  if (aligned > start) munmap(raw, aligned - start);
  uintptr_t end = start + rounded + kHugePage;
  if (end > aligned + rounded) munmap(reinterpret_cast<void*>(aligned + rounded), end - (aligned + rounded));
  void* p = reinterpret_cast<void*>(aligned);
  if (block) return p;  // nodes are written before they are read
  // Map the pages now, each by a write: a table read before it is written
  // would fault twice per page.
#ifdef MADV_POPULATE_WRITE
  if (madvise(p, (bytes + 4095) & ~size_t(4095), MADV_POPULATE_WRITE) == 0) return p;
#endif
  for (size_t offset = 0; offset < bytes; offset += 4096) static_cast<volatile char*>(p)[offset] = 0;
  return p;
}

void Free_table(void* p, size_t bytes, bool block) {
  if (p == nullptr) return;
  if (bytes < kHugePage && !block)
    ::operator delete(p, std::align_val_t(64));
  else
    munmap(p, (bytes + kHugePage - 1) & ~(kHugePage - 1));
}

}  // namespace bdd_detail

std::string Bdd_version() { return "4.7"; }
std::string bddpp_manager::Bdd_version() const { return ::Bdd_version(); }

std::ostream& operator<<(std::ostream& out, const bdd& f) {
  out << "adr manager= " << static_cast<const void*>(f.manager_ref()) << ", link type =" << f.link_type()
      << ", adr node= " << static_cast<const void*>(f.node()) << ", ";
  if (f.node() != nullptr) out << "node signature: " << f.node()->signature();
  return out;
}

// ---------------------------------------------------------------------------
// Construction
// ---------------------------------------------------------------------------

bddpp_manager::bddpp_manager() {
  names.resize(var_capacity);
  var_nodes.assign(var_capacity, nullptr);
  index_of_id.assign(var_capacity, 0);
  id_of_index.assign(var_capacity, 0);
  assoc_table.resize(var_capacity);
  // Small at first: a compilation makes many managers with few nodes each.
  Unique_rebuild(1u << 10);
  cache_.assign_zero(1u << 11);
  cache_mask_ = (1u << 11) - 1;
  one = Allocate_node();
  one->var_id = -1;
  one->gid_ = 1;
  one->refs = 1;
  one->else_link_type = 1;
  next_global_id = 2;
}

bddpp_manager::bddpp_manager(bddpp_manager* other) : bddpp_manager() {
  if (other == nullptr) return;
  signature_id_bits = other->signature_id_bits;
  name_to_id = other->name_to_id;
  var_capacity = other->var_capacity;
  names.resize(var_capacity);
  var_nodes.assign(var_capacity, nullptr);
  index_of_id.assign(var_capacity, 0);
  id_of_index.assign(var_capacity, 0);
  assoc_table.resize(var_capacity);
  Nb_bdd_vars = other->Nb_bdd_vars;
  for (long id = 0; id < Nb_bdd_vars; ++id) {
    names[id] = other->names[id];
    Build_var_node(id);
    index_of_id[id] = other->index_of_id[id];
    id_of_index[id] = other->id_of_index[id];
    assoc_table[id] = bdd(this, 1, var_nodes[id]);
  }
}

bddpp_manager::~bddpp_manager() {
  assoc_table.clear();
  for (bdd_node* c : chunks_) bdd_detail::Free_table(reinterpret_cast<char*>(c) - 64, kBlockUsed, true);
}

// ---------------------------------------------------------------------------
// Node pool and unique table
// ---------------------------------------------------------------------------

bdd_node* bddpp_manager::Allocate_node() {
  bdd_node* n;
  if (free_list_ != nullptr) {
    n = free_list_;
    free_list_ = n->then_node;
    uint32_t slot = n->slot;
    new (n) bdd_node();
    n->slot = slot;
    return n;
  }
  if (pool_top_ >= kMaxSlots) {
    std::cerr << "FATAL ERROR in bddpp_manager: no room for another BDD node (" << pool_top_ << " nodes)"
              << std::endl;
    stop();
  }
  if ((pool_top_ >> kChunkBits) >= chunks_.size()) {
    // A block of 2 MB on its own alignment: its head names the manager.
    char* block = static_cast<char*>(bdd_detail::Allocate_table(kBlockUsed, true));
    *reinterpret_cast<bddpp_manager**>(block) = this;
    *reinterpret_cast<uint32_t*>(block + sizeof(bddpp_manager*)) = uint32_t(chunks_.size());
    chunks_.push_back(reinterpret_cast<bdd_node*>(block + 64));
  }
  if ((pool_top_ & 1023) == 0) Cache_maybe_grow();
  n = new (Node_at(pool_top_)) bdd_node();
  n->slot = pool_top_++;
  return n;
}

int64_t bddpp_manager::Signature_of(long var_id, const bdd_node* t, const bdd_node* e, int else_link) const {
  const int bits = signature_id_bits;
  const int64_t mask = (int64_t(1) << bits) - 1;
  const int64_t var_mask = (int64_t(1) << (62 - 2 * bits)) - 1;
  return ((int64_t(var_id) & var_mask) << (2 * bits + 1)) | ((t->gid_ & mask) << (bits + 1)) |
         ((e->gid_ & mask) << 1) | (else_link > 0 ? 1 : 0);
}

int64_t bdd_node::signature() const {
  if (var_id < 0) return -1;
  return manager()->Signature_of(var_id, then_node, else_node, else_link_type);
}

uint32_t bddpp_manager::Unique_hash(uint32_t var, uint32_t t, uint32_t e) { return mix(var, t, e); }

uint32_t bddpp_manager::Key_hash(const bdd_node* n) {
  return mix(uint32_t(n->var_id), Slot_of(n->then_node),
             (Slot_of(n->else_node) << 1) | (n->else_link_type < 0 ? 1u : 0u));
}

bdd_node* bddpp_manager::Unique_find(long var, const bdd_node* t, const bdd_node* e, int else_link) const {
  const uint32_t h = Unique_hash(uint32_t(var), Slot_of(t), (Slot_of(e) << 1) | (else_link < 0 ? 1u : 0u));
  for (uint32_t i = h & unique_mask_;; i = (i + 1) & unique_mask_) {
    const unique_slot& s = unique_[i];
    if (s.node == kEmpty) return nullptr;
    if (s.hash != h) continue;
    bdd_node* n = Node_at(s.node);
    if (n->var_id == var && n->then_node == t && n->else_node == e && n->else_link_type == else_link) return n;
  }
}

void bddpp_manager::Unique_insert(bdd_node* n) {
  if (size_t(live_nodes_ + 1) * 4 > unique_.size() * 3) Unique_rebuild(unique_.size() * 2);
  const uint32_t h = Key_hash(n);
  uint32_t i = h & unique_mask_;
  while (unique_[i].node != kEmpty) i = (i + 1) & unique_mask_;
  unique_[i] = unique_slot{h, n->slot};
  ++live_nodes_;
}

void bddpp_manager::Unique_rebuild(size_t capacity) {
  // Moves the entries of the table, leaving out the nodes that `Bdd_gc` freed.
  size_t cap = 1u << 10;
  while (cap < capacity || cap * 3 < size_t(live_nodes_) * 4 + 4) cap *= 2;
  bdd_detail::table<unique_slot> old;
  old.assign_zero(cap);
  old.swap(unique_);
  unique_mask_ = uint32_t(cap - 1);
  live_nodes_ = 0;
  const bool purge = unique_purge_;
  unique_purge_ = false;
  for (const unique_slot& s : old) {
    if (s.node == kEmpty || (purge && Node_at(s.node)->var_id < 0)) continue;
    uint32_t i = s.hash & unique_mask_;
    while (unique_[i].node != kEmpty) i = (i + 1) & unique_mask_;
    unique_[i] = s;
    ++live_nodes_;
  }
}

void bddpp_manager::Unique_erase(bdd_node* n) {
  uint32_t i = Key_hash(n) & unique_mask_;
  for (;; i = (i + 1) & unique_mask_) {
    if (unique_[i].node == kEmpty) return;
    if (unique_[i].node == n->slot) break;
  }
  // Backward shift keeps every probe chain unbroken.
  uint32_t j = i;
  for (;;) {
    j = (j + 1) & unique_mask_;
    const unique_slot& s = unique_[j];
    if (s.node == kEmpty) break;
    uint32_t k = s.hash & unique_mask_;
    bool stays = (i <= j) ? (i < k && k <= j) : (i < k || k <= j);
    if (stays) continue;
    unique_[i] = s;
    i = j;
  }
  unique_[i].node = kEmpty;
  --live_nodes_;
}

void bddpp_manager::Map_integrate(bdd_node* node) {
  if (node == nullptr || node == one || node->var_id < 0) return;
  if (Unique_find(node->var_id, node->then_node, node->else_node, node->else_link_type) != nullptr) return;
  Unique_insert(node);
}

void bddpp_manager::Map_suppress(bdd_node* node) {
  if (node == nullptr || node == one || node->var_id < 0) return;
  Unique_erase(node);
  Cache_clear();  // a remembered result must not hand out a node the table lost
}

std::vector<bdd_node*> bddpp_manager::Map_nodes_by_signature() const {
  std::vector<std::pair<int64_t, bdd_node*>> keyed;
  keyed.reserve(live_nodes_);
  for (const unique_slot& s : unique_) {
    if (s.node == kEmpty) continue;
    bdd_node* n = Node_at(s.node);
    keyed.emplace_back(n->signature(), n);
  }
  std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    return a.first != b.first ? a.first < b.first : a.second->gid_ < b.second->gid_;
  });
  std::vector<bdd_node*> nodes;
  nodes.reserve(keyed.size());
  for (const auto& k : keyed) nodes.push_back(k.second);
  return nodes;
}

bdd_node* bddpp_manager::Make_node(long var_id, bdd_node* t, bdd_node* e, int else_link) {
  bdd_node* n = Allocate_node();
  n->var_id = int32_t(var_id);
  n->then_node = t;
  n->else_node = e;
  n->else_link_type = int16_t(else_link);
  n->gid_ = next_global_id;
  ++next_global_id;
  ++t->refs;
  ++e->refs;
  return n;
}

// The node for (var ? t : e), with a negative then edge moved out to the result.
bddpp_manager::edge bddpp_manager::Mk(long var_id, edge t, edge e) {
  edge neg = t & 1;
  t ^= neg;
  e ^= neg;
  bdd_node* tn = Node(t);
  bdd_node* en = Node(e);
  const int16_t el = (e & 1) ? -1 : 1;
  const uint32_t h = Unique_hash(uint32_t(var_id), Slot_of(tn), (Slot_of(en) << 1) | uint32_t(e & 1));
  uint32_t i = h & unique_mask_;
  for (;; i = (i + 1) & unique_mask_) {
    const unique_slot& s = unique_[i];
    if (s.node == kEmpty) break;
    if (s.hash != h) continue;
    bdd_node* n = Node_at(s.node);
    if (n->var_id == var_id && n->then_node == tn && n->else_node == en && n->else_link_type == el)
      return reinterpret_cast<edge>(n) | neg;
  }
  bdd_node* n = Make_node(var_id, tn, en, el);
  if (size_t(live_nodes_ + 1) * 4 > unique_.size() * 3) {
    Unique_insert(n);
  } else {
    unique_[i] = unique_slot{h, n->slot};
    ++live_nodes_;
  }
  return reinterpret_cast<edge>(n) | neg;
}

void bddpp_manager::Build_var_node(long id) {
  bdd_node* n = Allocate_node();
  n->var_id = int32_t(id);
  n->then_node = one;
  n->else_node = one;
  n->else_link_type = -1;
  n->gid_ = next_global_id++;
  var_nodes[id] = n;
  Unique_insert(n);
}

bdd_node* bddpp_manager::Find_or_create_bdd_node(long index, int then_link, int else_link, bdd_node* then_node,
                                                 bdd_node* else_node, int& link) {
  link *= then_link;
  if (index == -1) return one;
  if (index < 0 || index >= Nb_bdd_vars) return nullptr;
  if (then_node == nullptr || else_node == nullptr) return nullptr;
  if (then_node == one && else_node == one) {
    if (then_link * else_link == 1) return one;
    return var_nodes[id_of_index[index]];
  }
  if (then_node != one && !(index < Index_of_node(then_node))) {
    std::cerr << "FATAL ERROR: Bad call of bddpp_manager::Find_or_create_bdd_node():" << std::endl
              << "  index " << index << " is not less than " << " its then node index ("
              << Index_of_node(then_node) << ")" << std::endl;
    return nullptr;
  }
  if (else_node != one && !(index < Index_of_node(else_node))) {
    std::cerr << "FATAL ERROR: Bad call of bddpp_manager::Find_or_create_bdd_node():" << std::endl
              << "  index " << index << " is not less than " << " its else node index ("
              << Index_of_node(else_node) << ")" << std::endl;
    return nullptr;
  }
  if (then_node->gid_ < 0) {
    std::cerr << "ERROR in bdd_node_signature(): then node have a bad global id!" << std::endl;
    stop();
  }
  if (else_node->gid_ < 0) {
    std::cerr << "ERROR in bdd_node_signature(): else node have a bad global id!" << std::endl;
    stop();
  }
  long id = id_of_index[index];
  int el = then_link * else_link;
  bdd_node* n = Unique_find(id, then_node, else_node, el);
  if (n == nullptr) {
    n = Make_node(id, then_node, else_node, el);
    Unique_insert(n);
  }
  return n;
}

// ---------------------------------------------------------------------------
// Operation cache
// ---------------------------------------------------------------------------

void bddpp_manager::Cache_clear() { cache_.assign_zero(cache_.size()); }

void bddpp_manager::Cache_maybe_grow() {
  constexpr size_t kMaxCache = size_t(1) << 22;
  if (cache_.size() >= kMaxCache || size_t(pool_top_) < cache_.size() * 2) return;
  bdd_detail::table<cache_entry> old;
  old.swap(cache_);
  cache_.assign_zero(old.size() * 2);
  cache_mask_ = uint32_t(cache_.size() - 1);
  for (const cache_entry& c : old)
    if (c.op != 0) Cache_at(c.a, c.b, c.op) = c;
}

uint32_t bddpp_manager::New_call_tag(uint32_t op) {
  if (++call_serial_ >= (1u << 27)) {
    Cache_clear();
    call_serial_ = 1;
  }
  return (call_serial_ << 4) | op;
}

// ---------------------------------------------------------------------------
// Walks on private stamps
// ---------------------------------------------------------------------------

uint32_t bddpp_manager::New_visit() {
  if (visit_.size() < pool_top_) visit_.resize(size_t(chunks_.size()) << kChunkBits, 0);
  if (++visit_stamp_ == 0) {
    std::fill(visit_.begin(), visit_.end(), 0);
    visit_stamp_ = 1;
  }
  return visit_stamp_;
}

bool bddpp_manager::Visited(bdd_node* n, uint32_t stamp) {
  uint32_t& v = visit_[n->slot];
  if (v == stamp) return true;
  v = stamp;
  return false;
}

// ---------------------------------------------------------------------------
// Variables
// ---------------------------------------------------------------------------

void bddpp_manager::Grow_vars() {
  if (Nb_bdd_vars < var_capacity) return;
  var_capacity *= 2;
  names.resize(var_capacity);
  var_nodes.resize(var_capacity, nullptr);
  index_of_id.resize(var_capacity, 0);
  id_of_index.resize(var_capacity, 0);
  assoc_table.resize(var_capacity);
}

bdd_node* bddpp_manager::New_node_var_last(const std::string& name) {
  Grow_vars();
  auto known = name_to_id.find(name);
  if (known != name_to_id.end()) return var_nodes[known->second];
  long id = Nb_bdd_vars;
  names[id] = name;
  name_to_id[name] = id;
  Build_var_node(id);
  index_of_id[id] = id;
  id_of_index[id] = id;
  assoc_table[id] = bdd(this, 1, var_nodes[id]);
  ++Nb_bdd_vars;
  return var_nodes[id];
}

bdd bddpp_manager::New_var_last(const std::string& name) { return bdd(this, 1, New_node_var_last(name)); }

bdd_node* bddpp_manager::New_node_var_before(long index, const std::string& name) {
  if (index < 0 || index > Nb_bdd_vars - 1) {
    std::cerr << "Error in new_node_var_before(): abnormal index ..." << std::endl;
    return nullptr;
  }
  Grow_vars();
  auto known = name_to_id.find(name);
  if (known != name_to_id.end()) return var_nodes[known->second];
  long id = Nb_bdd_vars;
  names[id] = name;
  name_to_id[name] = id;
  Build_var_node(id);
  assoc_table[id] = bdd(this, 1, var_nodes[id]);
  for (long pos = index; pos < Nb_bdd_vars; ++pos) ++index_of_id[id_of_index[pos]];
  index_of_id[id] = index;
  for (long pos = Nb_bdd_vars; pos > index; --pos) id_of_index[pos] = id_of_index[pos - 1];
  id_of_index[index] = id;
  ++Nb_bdd_vars;
  return var_nodes[id];
}

bdd_node* bddpp_manager::New_node_var_after(long index, const std::string& name) {
  if (index == Nb_bdd_vars - 1) return New_node_var_last(name);
  if (index >= Nb_bdd_vars) {
    std::cerr << "Error in new_node_var_after(): abnormal id ..." << std::endl;
    return nullptr;
  }
  return New_node_var_before(index + 1, name);
}

bdd bddpp_manager::New_var_before(long index, const std::string& name) {
  return bdd(this, 1, New_node_var_before(index, name));
}
bdd bddpp_manager::New_var_after(long index, const std::string& name) {
  return bdd(this, 1, New_node_var_after(index, name));
}
bdd bddpp_manager::New_var_before(const bdd& var, const std::string& name) {
  return New_var_before(Bdd_if_index(var), name);
}
bdd bddpp_manager::New_var_after(const bdd& var, const std::string& name) {
  return New_var_after(Bdd_if_index(var), name);
}

bdd bddpp_manager::Bdd_var_by_id(long id) {
  if (id < 0 || id >= Nb_bdd_vars) {
    std::cerr << "calling bddpp_manager::Bdd_var_by_id() with id= " << id << " :out of range!" << std::endl;
    return Bdd_zero();
  }
  return bdd(this, 1, var_nodes[id]);
}

bdd bddpp_manager::Bdd_var_by_index(long index) {
  if (index == -1) return Bdd_one();
  if (index < 0 || index >= Nb_bdd_vars) {
    std::cerr << "calling bddpp_manager::Bdd_var_by_index() with index= " << index << " :out of range!"
              << std::endl;
    return bdd();
  }
  return bdd(this, 1, var_nodes[id_of_index[index]]);
}

bdd bddpp_manager::Bdd_var_by_name(const std::string& name) {
  auto it = name_to_id.find(name);
  if (it == name_to_id.end()) return Bdd_zero();
  return bdd(this, 1, var_nodes[it->second]);
}

long bddpp_manager::Index_of_node(const bdd_node* n) const {
  if (n == nullptr) return -3;
  if (n->var_id < 0) return -1;
  return index_of_id[n->var_id];
}

bdd bddpp_manager::Bdd_if(const bdd& f) {
  long index = f.node() == nullptr ? -3 : Index_of_node(f.node());
  if (index < 0 || index >= Nb_bdd_vars) {
    std::cerr << "calling bddpp_manager::Bdd_if() with bdd index= " << index << " :out of range!" << std::endl;
    return Bdd_zero();
  }
  return bdd(this, 1, var_nodes[f.node()->var_id]);
}

long bddpp_manager::Bdd_if_id(const bdd& f) {
  if (f.manager_ref() != this || f.node() == nullptr) {
    std::cerr << "Error in bddpp_manager::Bdd_if_id(): bad Bdd manager or bdd not initialized!" << std::endl;
    return -3;
  }
  return f.node()->var_id;
}
long bddpp_manager::Id_var_by_bdd(const bdd& f) { return Bdd_if_id(f); }

long bddpp_manager::Bdd_if_index(const bdd& f) {
  if (f.manager_ref() != this || f.node() == nullptr) {
    std::cerr << "Error in bddpp_manager::Bdd_if_index(): bad Bdd manager or bdd not initialized!" << std::endl;
    return -3;
  }
  return Index_of_node(f.node());
}
long bddpp_manager::Index_var_by_bdd(const bdd& f) { return Bdd_if_index(f); }

long bddpp_manager::Index_var_by_name(const std::string& name) {
  auto it = name_to_id.find(name);
  return it == name_to_id.end() ? -1 : index_of_id[it->second];
}
long bddpp_manager::Id_var_by_name(const std::string& name) {
  auto it = name_to_id.find(name);
  return it == name_to_id.end() ? -1 : it->second;
}
std::string bddpp_manager::Name_var_by_index(long index) { return names[id_of_index[index]]; }
std::string bddpp_manager::Name_var_by_id(long id) { return names[id]; }

std::string bddpp_manager::Name_var_by_bdd(const bdd& f) {
  bdd_node* n = f.node();
  if (n == one) return f.link_type() == 1 ? "1" : "0";
  if (n == nullptr || n->var_id < 0 || n->var_id >= Nb_bdd_vars) {
    std::cerr << "error in bddpp_manager::Name_var_by_bdd()" << std::endl
              << "bdd defined by: " << f << ", is not correct ..." << std::endl
              << "(typebdd = " << (n ? long(n->var_id) : -3L) << ")" << std::endl;
    stop();
  }
  return names[n->var_id];
}

void bddpp_manager::Rename_var(const std::string& new_name, const std::string& old_name) {
  for (long id = 0; id < Nb_bdd_vars; ++id) {
    if (names[id] == new_name) {
      std::cerr << "in bdd_manager::Rename_var(): " << "WARNING " << new_name << " ALREADY DEFINED !" << std::endl
                << "renaming process aborted ..." << std::endl;
      return;
    }
  }
  for (long id = 0; id < Nb_bdd_vars; ++id) {
    if (names[id] == old_name) {
      names[id] = new_name;
      return;
    }
  }
  std::cerr << "in bdd_manager::Rename_var(): " << "WARNING " << old_name << " NOT FOUND !" << std::endl
            << "renaming process aborted ..." << std::endl;
}

void bddpp_manager::Change_name_by_index(long index, const std::string& name) { names[id_of_index[index]] = name; }
void bddpp_manager::Change_name_by_id(long id, const std::string& name) { names[id] = name; }

void bddpp_manager::Replace_char_in_all_names(char from, char to) {
  for (long id = 0; id < Nb_bdd_vars; ++id) std::replace(names[id].begin(), names[id].end(), from, to);
}

void bddpp_manager::No_begin_underscore_name() {
  for (long id = 0; id < Nb_bdd_vars; ++id)
    if (!names[id].empty() && names[id][0] == '_') names[id] = "v" + names[id];
}

void bddpp_manager::Bdd_var_reorder() {
  std::cerr << "bddpp_manager::Bdd_var_reorder(void) A FAIRE" << std::endl;
}

bdd bddpp_manager::Bdd_swap_vars(const bdd&, long, long) {
  std::cerr << "bddpp_manager::Bdd_swap_vars(bdd f) A FAIRE" << std::endl;
  return Bdd_zero();
}

// ---------------------------------------------------------------------------
// Constants and tests
// ---------------------------------------------------------------------------

bdd bddpp_manager::Bdd_one() { return bdd(this, 1, one); }
bdd bddpp_manager::Bdd_zero() { return bdd(this, -1, one); }
bdd bddpp_manager::Bdd_not(const bdd& f) { return bdd(f.manager_ref(), -f.link_type(), f.node()); }

bool bddpp_manager::Bdd_is_var(const bdd& f) const {
  const bdd_node* n = f.node();
  return n != nullptr && n != one && n->then_node == one && n->else_node == one && n->else_link_type == -1 &&
         f.link_type() == 1;
}
bool bddpp_manager::Bdd_is_negvar(const bdd& f) const {
  const bdd_node* n = f.node();
  return n != nullptr && n != one && n->then_node == one && n->else_node == one && n->else_link_type == -1 &&
         f.link_type() == -1;
}
bool bddpp_manager::Bdd_is_tautology(const bdd& f) const { return f.node() == one; }
bool bddpp_manager::Bdd_is_tautology(const bdd& f, int value) const {
  return f.node() == one && f.link_type() == (value != 0 ? 1 : -1);
}
bool bddpp_manager::Bdd_is_one_tautologic(const bdd& f) const { return f.node() == one && f.link_type() == 1; }
bool bddpp_manager::Bdd_is_zero_tautologic(const bdd& f) const { return f.node() == one && f.link_type() == -1; }

bool bddpp_manager::Node_support_has(bdd_node* n, long var_id) {
  const long target = index_of_id[var_id];
  const uint32_t stamp = New_visit();
  std::vector<bdd_node*> stack{n};
  while (!stack.empty()) {
    bdd_node* m = stack.back();
    stack.pop_back();
    if (m == one || Visited(m, stamp)) continue;
    long level = Level(m);
    if (level == target) return true;  // one variable per level
    if (level > target) continue;      // everything below is further down the order
    stack.push_back(m->else_node);
    stack.push_back(m->then_node);
  }
  return false;
}

bool bddpp_manager::Bdd_node_depends_on(bdd_node* node, bdd_node* var_node) {
  if (node == nullptr || var_node == nullptr || node->manager() != this || var_node->manager() != this) {
    std::cerr << "Error in bddpp_manager::Bdd_node_depends_on():  bad Bdd manager or bdd(s) not initialized!"
              << std::endl;
    return false;
  }
  if (node->var_id == var_node->var_id) return true;
  if (node == one || var_node->var_id < 0) return false;
  return Node_support_has(node, var_node->var_id);
}

bool bddpp_manager::Bdd_depends_on(const bdd& f, const bdd& v) {
  if (f.manager_ref() != this || v.manager_ref() != this) {
    std::cerr << "Error in bddpp_manager::Bdd_node_depends_on():  bad Bdd manager or bdd(s) not initialized!"
              << std::endl;
    return false;
  }
  return Bdd_node_depends_on(f.node(), v.node());
}

void bddpp_manager::Support_ids(bdd_node* n, std::vector<long>& ids) {
  ids.clear();
  if (n == nullptr || n == one) return;
  // Sorted and made unique at the end: a mark per variable would cost a walk over
  // all variables on every call.
  const uint32_t stamp = New_visit();
  std::vector<bdd_node*> stack{n};
  while (!stack.empty()) {
    bdd_node* m = stack.back();
    stack.pop_back();
    if (m == one || Visited(m, stamp)) continue;
    ids.push_back(m->var_id);
    stack.push_back(m->else_node);
    stack.push_back(m->then_node);
  }
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

std::set<long> bddpp_manager::set_of_id_depend_on(const bdd& f) {
  if (f.manager_ref() != this || f.node() == nullptr) {
    std::cerr << "Warning: call  bddpp_manager::set_of_index_depend_on() with a bad manager" << std::endl;
    return {};
  }
  std::vector<long> ids;
  Support_ids(f.node(), ids);
  return std::set<long>(ids.begin(), ids.end());
}

std::set<long> bddpp_manager::set_of_index_depend_on(const bdd& f) {
  // A bad manager: the warning and an empty set.
  if (f.manager_ref() != this || f.node() == nullptr) return set_of_id_depend_on(f);
  std::vector<long> ids;
  Support_ids(f.node(), ids);
  std::set<long> result;
  for (long id : ids) result.insert(index_of_id[id]);
  return result;
}

void bddpp_manager::Present_variables(const bdd& f, int* flags) {
  std::fill(flags, flags + Nb_bdd_vars, 0);
  std::vector<long> ids;
  Support_ids(f.node(), ids);
  for (long id : ids) flags[index_of_id[id]] = 1;
}

bool bddpp_manager::exists_common_variables(const bdd& f, const bdd& g) {
  std::vector<long> a, b;
  Support_ids(f.node(), a);
  Support_ids(g.node(), b);
  size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    if (a[i] == b[j]) return true;
    if (a[i] < b[j])
      ++i;
    else
      ++j;
  }
  return false;
}

bool bddpp_manager::Variable_awaited(const bdd& f, long index) {
  if (index < 0 || index >= Nb_bdd_vars) return false;
  return Bdd_depends_on(f, Bdd_var_by_index(index));
}

bool bddpp_manager::Variable_true_awaited(const bdd& f, long index) {
  if (!Variable_awaited(f, index)) return false;
  return !Bdd_is_zero_tautologic(Bdd_cube_reduce(f, Bdd_var_by_index(index)));
}

bool bddpp_manager::Variable_false_awaited(const bdd& f, long index) {
  if (!Variable_awaited(f, index)) return false;
  return !Bdd_is_zero_tautologic(Bdd_cube_reduce(f, Bdd_not(Bdd_var_by_index(index))));
}

// ---------------------------------------------------------------------------
// Marks and sizes
// ---------------------------------------------------------------------------

void bddpp_manager::Bdd_clear_marks(bdd_node* node) {
  if (node == nullptr) return;
  const uint32_t stamp = New_visit();
  std::vector<bdd_node*> stack{node};
  while (!stack.empty()) {
    bdd_node* m = stack.back();
    stack.pop_back();
    if (Visited(m, stamp)) continue;
    m->mark = 0;
    if (m->var_id < 0 || m->var_id >= Nb_bdd_vars) continue;
    stack.push_back(m->else_node);
    stack.push_back(m->then_node);
  }
}

void bddpp_manager::Bdd_clear_marks(const bdd& f) { Bdd_clear_marks(f.node()); }

void bddpp_manager::Bdd_global_clear_marks() {
  one->mark = 0;
  for (const unique_slot& s : unique_)
    if (s.node != kEmpty) Node_at(s.node)->mark = 0;
}

long bddpp_manager::Bdd_incremental_id(bdd_node* node, long start) {
  if (node == nullptr) {
    std::cerr << "Warning: call bddpp_manager::Bdd_incremental_id() with null reference!" << std::endl;
    return start;
  }
  if (node->mark) return start;
  node->print_number = start++;
  node->mark = 1;
  if (node == one || node->then_node == nullptr) return start;
  start = Bdd_incremental_id(node->then_node, start);
  return Bdd_incremental_id(node->else_node, start);
}

long bddpp_manager::Bdd_node_size(bdd_node* node) {
  Bdd_clear_marks(node);
  return Bdd_incremental_id(node, 0);
}

long bddpp_manager::Bdd_size(const bdd& f) { return Bdd_node_size(f.node()); }

bool bddpp_manager::Is_correct_rec(const bdd_node* n, uint32_t stamp) {
  if (n->var_id == -1) return true;
  if (n->var_id < 0 || n->var_id >= Nb_bdd_vars) return false;
  if (visit_[n->slot] == stamp) return true;
  visit_[n->slot] = stamp;
  const bdd_node* kids[2] = {n->then_node, n->else_node};
  for (const bdd_node* k : kids) {
    if (k == nullptr || k == n) return false;
    if (k->var_id >= 0) {
      if (k->manager() != this || k->var_id >= Nb_bdd_vars) return false;
      if (!(Level(k) > Level(n))) return false;
      if (!Is_correct_rec(k, stamp)) return false;
    }
  }
  return n->signature() >= 0;
}

bool bdd_node::is_correct() const {
  bddpp_manager* m = manager();
  return m->Is_correct_rec(this, m->New_visit());
}

bool bddpp_manager::Bdd_is_correct(const bdd& f) {
  if (f.node() == nullptr) {
    std::cerr << "Warning: call  bddpp_manager::Bdd_is_correct() with a null reference!" << std::endl;
    return false;
  }
  Bdd_clear_marks(f.node());
  Bdd_incremental_id(f.node(), 1);
  return f.node()->is_correct();
}

// ---------------------------------------------------------------------------
// Reclaiming and reports
// ---------------------------------------------------------------------------

void bddpp_manager::Bdd_gc() {
  // Every inner node that is not a variable node and that nothing holds goes,
  // and with it whatever only it held: the fixpoint of repeated sweeps.
  std::vector<bdd_node*> stack;
  auto candidate = [&](bdd_node* n) { return n != one && n->var_id >= 0 && n->refs <= 0 && !Is_var_node(n); };
  bool freed = false;
  for (uint32_t s = 1; s < pool_top_; ++s) {
    bdd_node* n = Node_at(s);
    if (!candidate(n)) continue;
    stack.push_back(n);
    while (!stack.empty()) {
      bdd_node* m = stack.back();
      stack.pop_back();
      if (m->var_id < 0) continue;
      bdd_node* t = m->then_node;
      bdd_node* e = m->else_node;
      m->var_id = -2;  // free
      m->then_node = free_list_;
      m->else_node = nullptr;
      free_list_ = m;
      freed = true;
      --live_nodes_;
      --t->refs;
      --e->refs;
      if (candidate(e)) stack.push_back(e);
      if (candidate(t)) stack.push_back(t);
    }
  }
  if (freed) {
    unique_purge_ = true;
    Unique_rebuild(0);
  }
  Cache_clear();
  ++gc_calls;
}

void bddpp_manager::Bdd_stats(std::ostream& out) {
  out << "BDD MANAGER statistics:" << std::endl;
  out << "memory adress: " << static_cast<const void*>(this) << " Version: " << Bdd_version() << std::endl;
  out << "bdd constant number: 1" << std::endl;
  out << "-: 1 --> " << one->signature() << std::endl;
  out << "bdd variables number: " << Nb_bdd_vars << std::endl;
  if (Nb_bdd_vars > 0) {
    out << "Index (Id): name --> signature" << std::endl;
    for (long index = 0; index < Nb_bdd_vars; ++index) {
      long id = id_of_index[index];
      out << index << "(" << id << "): " << names[id] << " --> " << var_nodes[id]->signature() << std::endl;
    }
    out << std::endl;
  }
  out << "Map:" << std::endl;
  out << "global id: sign = var_index then_node else_node else_link_type (refs number)" << std::endl;
  const int bits = signature_id_bits;
  const int64_t mask = (int64_t(1) << bits) - 1;
  long useless = 0, references = 0, count = 0;
  for (bdd_node* n : Map_nodes_by_signature()) {
    int64_t s = n->signature();
    out << n->gid_ << ": " << s << " = " << (s >> (2 * bits + 1)) << " " << ((s >> (bits + 1)) & mask) << " "
        << ((s >> 1) & mask) << " " << ((s & 1) ? "normal" : "inverse") << " (" << n->refs << ")" << std::endl;
    Print_bdd_global_structure_loc(out, 0, n);
    out << "-------------------------------------------" << std::endl;
    ++count;
    if (n->refs < 1) ++useless;
    references += n->refs;
  }
  out << "Finaly:" << std::endl;
  out << "Map Nodes number: " << count << " --> useless: " << useless << std::endl;
  out << "Global references number: " << references << std::endl;
  out << "number of garbage collector calls: " << gc_calls << std::endl;
  out << "----------------------------------------------" << std::endl;
}

bdd bddpp_manager::Bdd_dup(const bdd& f) {
  std::cerr << "Warning: bddpp_manager::Bdd_dup() is became useless ..." << std::endl;
  return f;
}

void bddpp_manager::Bdd_free(const bdd& f) {
  std::cerr << "Warning: bddpp_manager::Bdd_free() is now became useless" << std::endl << f << std::endl;
}
static_assert(sizeof(bdd_node) == 48, "compact nodes");

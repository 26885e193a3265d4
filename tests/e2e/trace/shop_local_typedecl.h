// What the SystemC step of shop_local expects of its types: int and money (cents).
#include <cstdio>
struct money { long cents; };
const int zero_int = 0;
const money zero_money = {0};
const money no_money = {0};
inline money add_cents(money m, int c) { return money{m.cents + c}; }
inline int cents(money m) { return static_cast<int>(m.cents); }
inline void print_money(FILE* out, money m) { std::fprintf(out, "%ld", m.cents); }
inline int sup_int(int a, int b) { return a > b; }
inline void print_int(FILE* out, int x) { std::fprintf(out, "%d", x); }

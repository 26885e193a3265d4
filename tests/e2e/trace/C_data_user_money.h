/* What the generated C expects of the type money: an amount in cents. */
#include <stdio.h>
typedef struct { long cents; } money;
const money zero_money = {0};
const money no_money = {0};
static money copy_money(money m) { return m; }
static money add_cents(money m, int c) { money r = {m.cents + c}; return r; }
static int cents(money m) { return (int)m.cents; }
static void print_money(FILE* out, money m) { fprintf(out, "%ld", m.cents); }

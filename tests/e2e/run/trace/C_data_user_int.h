/* What the generated C expects of the type int. */
#include <stdio.h>
const int zero_int = 0;
static int copy_int(int x) { return x; }
static int add_int(int a, int b) { return a + b; }
static int sub_int(int a, int b) { return a - b; }
static int neg_int(int a) { return -a; }
static int sup_int(int a, int b) { return a > b; }
static void print_int(FILE* out, int x) { fprintf(out, "%d", x); }

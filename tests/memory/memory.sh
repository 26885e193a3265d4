#!/usr/bin/env bash
# Memory of the generated C:
#   memory.sh QUARNC E2E_DIR
# 1. Every reaction-trace case of the e2e suite runs its C step function under valgrind:
#    no invalid access, no use of an undefined value, no leak.
# 2. A module runs 10^6 reactions on pseudo-random inputs in the memory it had after 10^3.
set -u
quarnc=$(readlink -f "$1")
e2e=$(readlink -f "$2")
export QUARN_BATCH=1 ASAN_OPTIONS=detect_leaks=0 E2E=$e2e QUARN_TRACE_TARGETS=c
unset DISPLAY
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
cases=0

while IFS= read -r run; do
  then=$(grep -m1 '^then: bash "\$E2E/trace.sh"' "$run") || continue
  args=$(grep -m1 '^args:' "$run"); args=${args#args:}
  set -- ${then#*trace.sh\"}
  module=$1 trace=$2
  dir=$work/$(echo "${run#$e2e/}" | tr '/' '_')
  mkdir -p "$dir" && cp -rL "$(dirname "$run")"/. "$dir"/
  if ! (cd "$dir" && eval "\"$quarnc\" $args" > /dev/null 2>&1 && bash "$e2e/trace.sh" "$module" "$trace" > /dev/null 2>&1); then
    echo "memory: ${run#$e2e/} does not build its trace"; status=1; continue
  fi
  if ! (cd "$dir" && valgrind -q --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=all \
        --track-origins=yes ./trace_gcc > /dev/null 2> valgrind.log); then
    echo "memory: valgrind on ${run#$e2e/}:"; cat "$dir/valgrind.log"; status=1
  fi
  cases=$((cases + 1))
done < <(find "$e2e" -name '*.run' | sort)
echo "memory: $cases trace cases valgrind-clean"

# 10^6 reactions of a module with pauses, aborts and a parallel, inputs from an LCG.
long=$work/long && mkdir -p "$long" && cd "$long" || exit 1
cat > lg.qn <<'QN'
module lg:
Input: A, B, R;
Output: O, P;
loop { strong abort { { wait A || wait B } >> emit O >> loop { present A emit P else nothing >> pause } } when R }
QN
echo end >> lg.qn
"$quarnc" -c -main lg lg.qn > /dev/null 2>&1 || { echo "memory: lg does not compile"; exit 1; }
cat > long.c <<'C'
#include <stdio.h>
#include <sys/resource.h>
#include "lg.c"
static long peak(void) { struct rusage u; getrusage(RUSAGE_SELF, &u); return u.ru_maxrss; }
int main(void) {
  unsigned x = 1; int o = 0, p = 0; long counted = 0, early = 0;
  lg_reset_automaton();
  for (long i = 1; i <= 1000000; i++) {
    x = x * 1103515245u + 12345u;
    lg_automaton((x >> 16) & 1, (x >> 17) & 1, ((x >> 18) & 15) == 0, &o, &p);
    counted += o + p;
    if (i == 1000) early = peak();
  }
  printf("%ld %ld %ld\n", early, peak(), counted);
  return 0;
}
C
gcc -O1 -o long long.c || { echo "memory: the long driver does not build"; exit 1; }
read -r early late counted < <(./long)
if [ "$late" -gt "$early" ]; then
  echo "memory: 10^6 reactions grew the resident set from $early to $late kB"; status=1
else
  echo "memory: 10^6 reactions in $late kB, as after 10^3 ($counted outputs)"
fi
exit $status

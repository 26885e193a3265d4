#!/usr/bin/env bash
# Proves with berkeley-abc's dsec that two netlists of a module are sequentially
# equivalent: one with its called modules compiled from source, one linked from their
# compiled files.
#   blif_equivalent.sh MODULE "SOURCE ARGS" "LINKED ARGS"
# Runs $QUARNC -blif -main MODULE with each set of arguments in the current directory;
# the linked run must read a compiled file (its .log appears). As a check of the check,
# the netlist with its boot latch starting false (the module never starts) must be found
# different.
set -eu
m=$1
run() {
  eval "set -- $1"
  timeout 60 "$QUARNC" -blif -main "$m" "$@" > quarnc_out.txt 2>&1 || { cat quarnc_out.txt; exit 1; }
}
run "$2"
mv "$m.blif" "${m}_source.blif"
rm -f ./*.qnc.log
run "$3"
ls ./*.qnc.log > /dev/null 2>&1 || { echo "$m: no compiled file was read"; exit 1; }
mv "$m.blif" "${m}_linked.blif"
dsec() { timeout 60 berkeley-abc -c "dsec $1 $2" 2>&1; }
out=$(dsec "${m}_source.blif" "${m}_linked.blif")
grep -q "Networks are equivalent" <<< "$out" || { echo "$out"; echo "$m: netlists differ"; exit 1; }
sed 's/^\(\.latch [^ ]* [^ ]*_boot\) 1 $/\1 0 /' "${m}_linked.blif" > "${m}_stopped.blif"
! cmp -s "${m}_linked.blif" "${m}_stopped.blif" || { echo "$m: no boot latch"; exit 1; }
out=$(dsec "${m}_source.blif" "${m}_stopped.blif")
grep -q "NOT EQUIVALENT" <<< "$out" || { echo "$out"; echo "$m: dsec misses a difference"; exit 1; }

#!/usr/bin/env bash
# The netlist simulator of the reaction traces: netsim.sh MODULE LINES (see README.md).
# "quarnc -pure_simul" writes the module's netlist and runs tarvix on it with the lines as
# its trace; tarvix prints one "N / outputs" line per reaction. A netlist has no values.
set -u
m=$1
lines=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
out=netsim_$m.txt
log=netsim_$m.log
rm -f "$out"
eval "set -- $QUARNC_ARGS"
TARVIX_TRACE=$lines TARVIX_OUTPUT=$out TARVIX_VCD=netsim_$m.vcd timeout 60 "$QUARNC" "$@" -pure_simul \
  > /dev/null 2> "$log"
status=$?
if [ $status != 0 ] || [ ! -s "$out" ] || grep -q '^tarvix: .*blif:' "$log"; then
  cat "$log" >&2
  echo "netsim: quarnc -pure_simul ended with $status; tarvix wrote no reactions for $m" >&2
  exit 1
fi
cat "$out"

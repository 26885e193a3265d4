#!/usr/bin/env bash
# netsim.sh [PATTERN]: runs the reaction-trace cases of tests/e2e/trace (those whose
# name begins with one of the letters of PATTERN, e.g. "[a-m]") through the netlist simulator:
# quarnc -pure_simul writes the netlist and tarvix runs the trace; its reactions must be
# those of the trace (and so those of the C target, which the trace cases check).
# A trace with values, or with a line "# skip netsim: reason", is skipped (said).
set -u
normalise() { local n slash rest; while read -r n slash rest; do echo "$n $slash" $(printf '%s\n' $rest | sort); done; }
expected() {
  local n=0 line
  while IFS= read -r line || [ -n "$line" ]; do
    line=${line%%#*}
    [ -n "$(echo "$line" | tr -d ' \t')" ] || continue
    n=$((n + 1))
    echo "$n /${line#*/}"
  done < "$1" | normalise
}
status=0
count=0
for run in "$E2E"/trace/${1:-}*.run; do
  args=$(sed -n 's/^args://p' "$run")
  while read -r m trace; do
    [ -n "$trace" ] || continue
    name=$(basename "$run" .run)
    if grep -q '^# skip netsim:' "$E2E/trace/$trace"; then
      echo "skip $name: $(sed -n 's/^# skip netsim: //p' "$E2E/trace/$trace")"; continue
    fi
    if sed 's/#.*//' "$E2E/trace/$trace" | grep -q '='; then echo "skip $name: values"; continue; fi
    work=netsim_$name
    mkdir -p "$work" && cp -r "$E2E"/trace/. "$work"/
    eval "set -- $args"
    (cd "$work" && TARVIX_TRACE=$trace TARVIX_OUTPUT=netsim.txt timeout 60 "$QUARNC" "$@" -pure_simul \
      > stdout.txt 2> stderr.txt) || { echo "netsim: quarnc fails on $name"; cat "$work/stderr.txt"; status=1; continue; }
    expected "$work/$trace" > "$work/expected.txt"
    normalise < "$work/netsim.txt" > "$work/got.txt"
    if diff -u "$work/expected.txt" "$work/got.txt"; then count=$((count + 1)); else echo "netsim: $name differs from $trace"; status=1; fi
  done < <(grep -o 'trace.sh" [^ ]* [^ ]*' "$run" | sed 's/trace.sh" //')
done
echo "netsim: $count traces agree"
[ $count -gt 0 ] || status=1
exit $status

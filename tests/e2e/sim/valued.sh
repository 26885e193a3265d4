#!/usr/bin/env bash
# Runs a compiled module through quarnc -valued_simul with a trace for quarns and
# compares the reactions with the trace.    valued.sh MODULE TRACE
set -u
m=$1
trace=$2
normalise() {
  local n slash rest
  while read -r n slash rest; do echo "$n $slash" $(printf '%s\n' $rest | sort); done
}
n=0
while IFS= read -r line || [ -n "$line" ]; do
  line=${line%%#*}
  [ -n "$(echo "$line" | tr -d ' \t')" ] || continue
  n=$((n + 1))
  echo "$n /${line#*/}"
done < "$trace" | normalise > valued_expected.txt
QUARNS_TRACE=$trace QUARNS_OUTPUT=valued_out.txt timeout 60 "$QUARNC" -qnc -valued_simul -main "$m" "$m.qn" \
  > valued_stdout.txt 2> server.log
status=$?
[ $status = 0 ] || { cat server.log; echo "valued: quarnc -valued_simul ended with $status"; exit 1; }
normalise < valued_out.txt > valued_got.txt
diff -u valued_expected.txt valued_got.txt || { echo "valued: quarns differs from $trace"; exit 1; }

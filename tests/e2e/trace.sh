#!/usr/bin/env bash
# Runs a reaction trace on every target and compares each with the trace.
#   trace.sh MODULE TRACE_FILE
# A trace line is one reaction:  inputs present / outputs expected
# Words are signal names; NAME=expr gives a valued input its value (a C expression) or says
# the value printed for a valued output. "#" starts a comment; a line without "/" is an error.
# "# skip TARGET: reason" in the trace keeps TARGET off this case; the reason is printed.
# Each target is a script targets/TARGET.sh (see targets/README.md); c runs first.
# QUARN_TRACE_TARGETS="c blif" restricts the run to some targets.
set -u
m=$1
trace=$2
here=$(cd "$(dirname "$0")" && pwd)
. "$here/targets/lib.sh"

trace_reactions "$trace" > trace_lines.txt || exit 1
n=0
while IFS= read -r line; do
  n=$((n + 1))
  echo "$n /${line#*/}"
done < trace_lines.txt | trace_normalise > trace_expected.txt

targets=${QUARN_TRACE_TARGETS:-c $(cd "$here/targets" && ls *.sh | sed 's/\.sh$//' | grep -vx 'c\|lib' | sort)}
status=0
for t in $targets; do
  if reason=$(trace_skip "$t" "$trace"); then
    echo "trace: $t skipped: $reason"
    continue
  fi
  if ! bash "$here/targets/$t.sh" "$m" trace_lines.txt > "trace_$t.raw" 2> "trace_$t.log"; then
    cat "trace_$t.log"; echo "trace: $m fails on target $t"; status=1; continue
  fi
  trace_normalise < "trace_$t.raw" > "trace_$t.txt"
  if ! diff -u trace_expected.txt "trace_$t.txt"; then
    echo "trace: $m on target $t differs from $trace"; status=1
  else
    echo "trace: $t agrees"
  fi
done
exit $status

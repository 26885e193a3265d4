#!/usr/bin/env bash
# The NuSMV target of the reaction traces: smv.sh MODULE LINES (see README.md).
# Makes MODULE.smv with "quarnc -nusmv" (and the C header, which names the outputs) and
# replays the reactions with smv_eval.py, the evaluator of the model subset quarnc writes.
set -eu
m=$1
trace=$2
. "$(dirname "$0")/lib.sh"
[ -f "$m.smv" ] && [ -f "$m.h" ] || REGENERATE_OPTIONS="-nusmv -c" regenerate
[ -f "$m.smv" ] && [ -f "$m.h" ] || { echo "smv: $m.smv or $m.h missing" >&2; exit 1; }

# The outputs are the pointer parameters of the C step function, less the values.
decl=$(tr '\n' ' ' < "$m.h" | grep -o "extern void ${m}_automaton([^)]*)" || true)
[ -n "$decl" ] || { echo "smv: no step function in $m.h" >&2; exit 1; }
outputs=$(grep -o 'int\* *[A-Za-z0-9_]*' <<< "$decl" | sed 's/int\* *//' | grep -v '_val$' | paste -sd, -)
timeout 60 python3 "$(dirname "$0")/smv_eval.py" "$m.smv" "$outputs" "$trace"

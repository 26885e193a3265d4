#!/usr/bin/env bash
# A short tour of quarnc: bash examples/demo.sh build/quarnc
# Each step is a function; add new ones to STEPS below.
set -u
QUARNC=${1:-build/quarnc}
QUARNC=$(cd "$(dirname "$QUARNC")" && pwd)/$(basename "$QUARNC")
EXAMPLES=$(cd "$(dirname "$0")" && pwd)
# The demo runs without windows: message boxes stay closed.
export QUARN_BATCH=1
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT

step() { printf '\n=== %s\n$ quarnc %s\n' "$1" "${*:2}"; }
run() { (cd "$WORK" && "$QUARNC" "$@"); echo "(exit status $?)"; }

banner() {
  step "version banner" -v
  run -v
}

usage() {
  step "usage text" -h
  run -h 2>&1
}

compile_abro() {
  cp "$EXAMPLES/abro.qn" "$WORK/"
  step "compile ABRO to a compiled module and C" -qnc -c -main abro abro.qn
  run -qnc -c -main abro abro.qn 2>&1
  echo "files written:"; (cd "$WORK" && ls | grep -v '\.qn$' | sed 's/^/  /')
}

wrong_command_line() {
  step "a wrong command line is reported and ends with status 1" m.qn -o
  run m.qn -o 2>&1
}

run_abro() {
  cp "$EXAMPLES/abro.qn" "$EXAMPLES/abro_main.c" "$WORK/"
  step "compile ABRO to C, build it with a small driver and run it" -c -main abro abro.qn
  run -c -main abro abro.qn 2>&1
  printf '$ gcc -o abro abro_main.c abro.c && ./abro < abro.in\n'
  (cd "$WORK" && gcc -o abro abro_main.c abro.c && ./abro < "$EXAMPLES/abro.in")
  echo "(O comes once both A and B have been seen; R starts over)"
}

simulate_abro() {
  cp "$EXAMPLES/abro.qn" "$EXAMPLES/abro.trace" "$WORK/"
  step "simulate ABRO's netlist with tarvix on a trace, waveforms in abro.vcd" -pure_simul -main abro abro.qn
  echo "(the equations before and after finalization are dumped; only the banners are shown)"
  (cd "$WORK" && TARVIX_TRACE=abro.trace "$QUARNC" -pure_simul -main abro abro.qn 2>&1 |
    grep -E '^(AVANT|APRES|[0-9]+ /|tarvix|\*\*\*|compilation)')
  echo "waveforms: $(cd "$WORK" && grep -c '^\$var' abro.vcd) signals, $(cd "$WORK" && grep -c '^#' abro.vcd) time steps"
}

STEPS=(banner usage compile_abro run_abro simulate_abro wrong_command_line)
for s in "${STEPS[@]}"; do "$s"; done

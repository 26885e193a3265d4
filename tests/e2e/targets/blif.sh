#!/usr/bin/env bash
# The BLIF target of the reaction traces: blif.sh MODULE LINES (see README.md).
# Makes MODULE.blif with "quarnc -blif" unless the case's run made it. Two readers check
# the netlist: berkeley-abc, which must read it without patching undriven nets, and
# yosys, whose check rejects undriven and multiply driven nets. berkeley-abc then writes
# it as Verilog with one clock for all latches, and iverilog runs a testbench that sets
# the inputs of each reaction, reads the outputs and then gives a clock edge.
set -eu
m=$1
trace=$2
blif=$m.blif
. "$(dirname "$0")/lib.sh"
[ -f "$blif" ] || REGENERATE_OPTIONS=-blif regenerate
[ -f "$blif" ] || { echo "blif: $blif missing" >&2; exit 1; }
work=$(mktemp -d blif_sim.XXXXXX)
trap 'rm -rf "$work"' EXIT

# Ports from the netlist itself.
ports() { awk -v key="$1" '$1 == key { for (i = 2; i <= NF; i++) print $i }' "$blif"; }
model=$(awk '$1 == ".model" { print $2; exit }' "$blif")
mapfile -t inputs < <(ports .inputs)
mapfile -t outputs < <(ports .outputs)

abc() { timeout 60 berkeley-abc -c "$1" 2>&1; }
stats=$(abc "read_blif $blif; print_stats")
if ! grep -q "i/o *=" <<< "$stats" || grep -qi "error\|cannot\|failed\|drivers added" <<< "$stats"; then
  echo "$stats" >&2; echo "blif: berkeley-abc does not read $blif cleanly" >&2; exit 1
fi
if ! timeout 60 yosys -q -p "read_blif $blif; hierarchy -check -top $model; check -assert" > "$work/yosys.txt" 2>&1; then
  cat "$work/yosys.txt" >&2; echo "blif: yosys rejects $blif" >&2; exit 1
fi
abc "read_blif $blif; write_verilog $work/dut.v" > "$work/abc_verilog.txt"
[ -s "$work/dut.v" ] || { cat "$work/abc_verilog.txt" >&2; echo "blif: no Verilog from $blif" >&2; exit 1; }
has_clock=0
grep -q "input  clock;" "$work/dut.v" && has_clock=1

is_input() { local i; for i in "${inputs[@]}"; do [ "$i" = "$1" ] && return 0; done; return 1; }
is_output() { local o; for o in "${outputs[@]}"; do [ "$o" = "$1" ] && return 0; done; return 1; }

{
  echo "module trace_tb;"
  echo "  reg clock = 0;"
  for i in "${inputs[@]}"; do echo "  reg $i = 0;"; done
  for o in "${outputs[@]}"; do echo "  wire $o;"; done
  conn=()
  [ $has_clock = 1 ] && conn+=(".clock(clock)")
  for p in "${inputs[@]}" "${outputs[@]}"; do conn+=(".$p($p)"); done
  (IFS=,; echo "  $model dut(${conn[*]});")
  echo "  initial begin"
  echo "    #1;"
  n=0
  while IFS= read -r line; do
    n=$((n + 1))
    for i in "${inputs[@]}"; do echo "    $i = 0;"; done
    for w in ${line%%/*}; do
      s=${w%%=*}
      is_input "$s" || { echo "blif: $s is not an input of $model" >&2; exit 1; }
      echo "    $s = 1;"
    done
    for w in ${line#*/}; do
      s=${w%%=*}
      is_output "$s" || { echo "blif: $s is not an output of $model" >&2; exit 1; }
    done
    echo "    #1;"
    echo "    \$write(\"$n /\");"
    for o in "${outputs[@]}"; do
      echo "    if ($o === 1'b1) \$write(\" $o\"); else if ($o !== 1'b0) \$write(\" $o=X\");"
    done
    echo "    \$write(\"\\n\");"
    echo "    clock = 1; #1; clock = 0; #1;"
  done < <(trace_reactions "$trace")
  echo "    \$finish;"
  echo "  end"
  echo "endmodule"
} > "$work/tb.v"

timeout 60 iverilog -o "$work/sim" "$work/tb.v" "$work/dut.v" >&2
timeout 60 vvp -n "$work/sim" | grep -v '^\$finish\|^VCD\|finish called'

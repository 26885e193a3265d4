#!/usr/bin/env bash
# The VHDL target of the reaction traces: vhdl.sh MODULE LINES (see README.md).
# Reads MODULE.vhd made by "quarnc -vhdl_altera", or makes it, and replays the reactions
# with GHDL. Valued signals need the case's vhdl_libs.inc, which declares the type, its
# zero_<type> and, for a type other than int and real, image_<type> giving its text.
# The testbench is built from the entity's ports: reset low, then one clock period per
# reaction; the inputs are set before the rising edge and the outputs read after the
# falling edge. An absent valued input carries the zero of its type. An output that is
# neither '0' nor '1' prints as NAME?, so that an undriven wire can't pass for absent.
set -eu
m=$1
trace=$2
vhd=$m.vhd
. "$(dirname "$0")/lib.sh"
[ -f "$vhd" ] || REGENERATE_OPTIONS=-vhdl_altera regenerate
[ -f "$vhd" ] || { echo "vhdl: $vhd missing" >&2; exit 1; }

# Ports: "name mode type" lines of the entity.
# A reserved word of VHDL stands as an extended identifier (\TO\): the bench names it without
# the backslashes and maps the port by its written form.
ports=$(awk '/^entity /{e=1} e && /^ *\\?[A-Za-z0-9_]+\\? : (in|out) /{ sub(/;$/, ""); print $1, $3, $4 } /^end /{e=0}' "$vhd")
[ -n "$ports" ] || { echo "vhdl: no ports in $vhd" >&2; exit 1; }

declare -A mode=() type=() formal=()
declare -a order=()
while read -r name md ty; do
  key=${name//\\/}
  mode[$key]=$md; type[$key]=$ty; formal[$key]=$name; order+=("$key")
done <<< "$ports"

vname() { echo "${1//__/_X_}"; }   # the generated file's form of a source name
zero_of() {
  case $1 in std_logic|bit) echo "'0'" ;; int|integer) echo 0 ;; real) echo 0.0 ;; *) echo "zero_$1" ;; esac
}
image() {   # VHDL expression printing the value of a port
  case $2 in int|integer) echo "integer'image($1)" ;; real) echo "real'image($1)" ;; *) echo "image_$2($1)" ;; esac
}

{
  # The context clauses of the design (the libs lines before the entity) serve the bench too.
  awk '/^entity /{exit} /^ *(library|use) /' "$vhd"
  echo "use std.textio.all;"
  echo "entity tb_$m is end tb_$m;"
  echo "architecture bench of tb_$m is"
  for p in "${order[@]}"; do
    t=${type[$p]}
    if [ "${mode[$p]}" = in ]; then
      echo "  signal tb_$p : $t := $(zero_of "$t");"
    else
      echo "  signal tb_$p : $t;"
    fi
  done
  echo "begin"
  echo "  dut: entity work.$m port map ("
  sep=""
  for p in "${order[@]}"; do printf '%s    %s => tb_%s' "$sep" "${formal[$p]}" "$p"; sep=$',\n'; done
  echo ");"
  echo "  process"
  echo "    variable l : line;"
  echo "  begin"
  echo "    tb_reset <= '0'; tb_clk <= '0'; wait for 5 ns;"
  echo "    tb_reset <= '1'; wait for 5 ns;"
  n=0
  while IFS= read -r line; do
    n=$((n + 1))
    for p in "${order[@]}"; do
      [ "${mode[$p]}" = in ] && [ "$p" != reset ] && [ "$p" != clk ] && echo "    tb_$p <= $(zero_of "${type[$p]}");"
    done
    for w in ${line%%/*}; do
      s=$(vname "${w%%=*}")
      [ "${mode[$s]:-}" = in ] || { echo "vhdl: ${w%%=*} is not an input of $m" >&2; exit 1; }
      echo "    tb_$s <= '1';"
      if [[ $w == *=* ]]; then
        [ "${mode[${s}_val]:-}" = in ] || { echo "vhdl: ${w%%=*} carries no value" >&2; exit 1; }
        echo "    tb_${s}_val <= ${w#*=};"
      fi
    done
    echo "    wait for 5 ns; tb_clk <= '1'; wait for 5 ns; tb_clk <= '0'; wait for 5 ns;"
    echo "    write(l, string'(\"$n /\"));"
    for p in "${order[@]}"; do
      [ "${mode[$p]}" = out ] || continue
      [[ $p == *_val && "${mode[${p%_val}]:-}" = out ]] && continue
      echo "    if tb_$p = '1' then"
      if [ "${mode[${p}_val]:-}" = out ]; then
        echo "      write(l, string'(\" $p=\") & $(image "tb_${p}_val" "${type[${p}_val]}"));"
      else
        echo "      write(l, string'(\" $p\"));"
      fi
      echo "    elsif tb_$p /= '0' then write(l, string'(\" $p?\")); end if;"
    done
    echo "    writeline(output, l);"
  done < <(trace_reactions "$trace")
  echo "    wait;"
  echo "  end process;"
  echo "end bench;"
} > "tb_$m.vhd"

mkdir -p ghdl_work
g="timeout 60 ghdl"
opts="--workdir=ghdl_work -fsynopsys"
$g -a $opts "$vhd" "tb_$m.vhd" >&2
$g -e $opts "tb_$m" >&2
$g -r $opts "tb_$m" --stop-time=1ms | sed 's/_X_/__/g'

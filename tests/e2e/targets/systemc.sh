#!/usr/bin/env bash
# The SystemC target of the reaction traces: systemc.sh MODULE LINES (see README.md).
# quarnc has no option for the SystemC form: quarn_systemc, built beside quarnc, writes
# MODULE_sc.cpp and MODULE_sc.h from the case's arguments.
# A generated SC_MODULE takes the inputs' presences on sc_in ports and gives the
# outputs' on sc_out ports; values travel in members. The user types come from
# MODULE_typedecl.h; without one, the case's C_data_user_<type>.h files stand for it.
# The harness is built once; it prints "N / OUT OUT=value" per reaction.
set -eu
m=$1
trace=$2
if [ ! -f "${m}_sc.cpp" ]; then
  eval "set -- $QUARNC_ARGS"
  timeout 60 "$(dirname "$QUARNC")/quarn_systemc" "$@" > systemc_tool.log 2>&1 || { cat systemc_tool.log >&2; exit 1; }
fi
[ -f "${m}_sc.cpp" ] && [ -f "${m}_sc.h" ] || { echo "systemc: ${m}_sc.cpp or ${m}_sc.h missing" >&2; exit 1; }
if grep -q "#include \"${m}_typedecl.h\"" "${m}_sc.h" && [ ! -f "${m}_typedecl.h" ]; then
  types=$(sed -n "/should be defined in file/{n;p;}" "${m}_sc.cpp" | tr -d ';' | tr ',' ' ')
  for t in $types; do echo "#include \"C_data_user_$t.h\""; done > "${m}_typedecl.h"
fi
header=${m}_sc.h
decl=$(tr '\n' ' ' < "$header" | grep -o "extern void ${m}_automaton([^)]*)" || true)
[ -n "$decl" ] || { echo "systemc: no step function in $header" >&2; exit 1; }
params=${decl#*(}; params=${params%)}
declare -a kinds=() names=() types=() raw=()
IFS=',' read -r -a raw <<< "$params"
for p in "${raw[@]}"; do
  p=$(echo "$p" | sed 's/\*/* /; s/  */ /g; s/^ //; s/ $//')
  [ -n "$p" ] || continue
  name=${p##* }; type=${p% *}
  case "$type" in
    *'*') type=$(echo "${type%\*}" | sed 's/ $//'); kind=out; [[ $name == *_val ]] && kind=outval ;;
    *) kind=in; [[ $name == *_val ]] && kind=inval ;;
  esac
  kinds+=("$kind"); names+=("$name"); types+=("$type")
done
{
  echo "#include <systemc.h>"
  echo "#include <cstdio>"
  echo "#include \"${m}_sc.cpp\""
  echo "SC_MODULE(${m}_harness) {"
  echo "  sc_in<int> tick;"
  for i in "${!names[@]}"; do
    case ${kinds[$i]} in
      in) echo "  sc_in<bool> ${names[$i]};" ;;
      out) echo "  sc_out<bool> ${names[$i]};" ;;
      *) echo "  ${types[$i]} ${names[$i]} = zero_${types[$i]};" ;;
    esac
  done
  echo "  void react() {"
  args=""
  for i in "${!names[@]}"; do
    case ${kinds[$i]} in
      in) echo "    int ${names[$i]}_now = ${names[$i]}.read();"; a=${names[$i]}_now ;;
      out) echo "    int ${names[$i]}_now = 0;"; a="&${names[$i]}_now" ;;
      inval) a=${names[$i]} ;;
      outval) a="&${names[$i]}" ;;
    esac
    args="${args:+$args, }$a"
  done
  echo "    ${m}_automaton($args);"
  for i in "${!names[@]}"; do
    [ "${kinds[$i]}" = out ] && echo "    ${names[$i]}.write(${names[$i]}_now != 0);"
  done
  echo "  }"
  echo "  SC_CTOR(${m}_harness) { SC_METHOD(react); sensitive << tick; dont_initialize(); }"
  echo "};"
  echo "int sc_main(int, char**) {"
  echo "  sc_signal<int> tick;"
  for i in "${!names[@]}"; do
    case ${kinds[$i]} in in|out) echo "  sc_signal<bool> s_${names[$i]};" ;; esac
  done
  echo "  ${m}_harness h(\"h\");"
  echo "  h.tick(tick);"
  for i in "${!names[@]}"; do
    case ${kinds[$i]} in in|out) echo "  h.${names[$i]}(s_${names[$i]});" ;; esac
  done
  echo "  ${m}_reset_automaton();"
  n=0
  while IFS= read -r line; do
    n=$((n + 1))
    for i in "${!names[@]}"; do [ "${kinds[$i]}" = in ] && echo "  s_${names[$i]}.write(0);"; done
    for w in ${line%%/*}; do
      s=${w%%=*}
      echo "  s_$s.write(1);"
      [[ $w == *=* ]] && echo "  h.${s}_val = (${w#*=});"
    done
    echo "  tick.write($n);"
    echo "  sc_start(1, SC_NS);"
    echo "  printf(\"$n /\");"
    for i in "${!names[@]}"; do
      [ "${kinds[$i]}" = out ] || continue
      s=${names[$i]}
      valued=0 t=""
      for j in "${!names[@]}"; do [ "${names[$j]}" = "${s}_val" ] && { valued=1; t=${types[$j]}; }; done
      if [ $valued = 1 ]; then
        echo "  if (s_$s.read()) { printf(\" $s=\"); print_$t(stdout, h.${s}_val); }"
      else
        echo "  if (s_$s.read()) printf(\" $s\");"
      fi
    done
    echo "  printf(\"\\n\");"
  done < "$trace"
  echo "  return 0;"
  echo "}"
} > systemc_harness.cpp
g++ -O0 -w -o systemc_harness systemc_harness.cpp -lsystemc 2> systemc_harness.log || { cat systemc_harness.log >&2; echo "systemc: $m does not build" >&2; exit 1; }
SC_COPYRIGHT_MESSAGE=DISABLE timeout 60 ./systemc_harness

#!/usr/bin/env bash
# The C target of the reaction traces: c.sh MODULE LINES (see README.md).
# Reads MODULE.h and MODULE.c made by "quarnc -c", or makes them. Valued signals need the
# case's C_data_user_<type>.h, which defines the type, zero_<type>, copy_<type>, the
# operators, and print_<type>(FILE*, <type>).
# The driver includes MODULE.c and is built as C (gcc) and as C++ (g++); both must agree.
set -eu
m=$1
trace=$2
header=$m.h
. "$(dirname "$0")/lib.sh"
[ -f "$header" ] && [ -f "$m.c" ] || REGENERATE_OPTIONS=-c regenerate
[ -f "$header" ] && [ -f "$m.c" ] || { echo "trace: $m.c or $m.h missing" >&2; exit 1; }

decl=$(tr '\n' ' ' < "$header" | grep -o "extern void ${m}_automaton([^)]*)" || true)
[ -n "$decl" ] || { echo "trace: no step function in $header"; exit 1; }
params=${decl#*(}
params=${params%)}

# Parameters: "kind name type" lines; kinds in, inval, out, outval.
declare -a kinds=() names=() types=()
IFS=',' read -r -a raw <<< "$params"
for p in "${raw[@]}"; do
  p=$(echo "$p" | sed 's/\*/* /; s/  */ /g; s/^ //; s/ $//')
  [ -n "$p" ] || continue
  name=${p##* }
  type=${p% *}
  case "$type" in
    *'*') base=$(echo "${type%\*}" | sed 's/ $//'); kind=out; [[ $name == *_val ]] && kind=outval ;;
    *) base=$type; kind=in; [[ $name == *_val ]] && kind=inval ;;
  esac
  kinds+=("$kind"); names+=("$name"); types+=("$base")
done

has_param() {
  local i
  for i in "${!names[@]}"; do [ "${names[$i]}" = "$1" ] && [ "${kinds[$i]}" = "$2" ] && return 0; done
  return 1
}
type_of() {
  local i
  for i in "${!names[@]}"; do [ "${names[$i]}" = "$1" ] && { echo "${types[$i]}"; return; }; done
}

{
  echo "#include <stdio.h>"
  echo "#include \"$m.c\""
  echo "int main(void) {"
  for i in "${!names[@]}"; do
    case ${kinds[$i]} in
      in|out) echo "  int ${names[$i]} = 0;" ;;
      inval|outval) echo "  ${types[$i]} ${names[$i]} = zero_${types[$i]};" ;;
    esac
  done
  echo "  ${m}_reset_automaton();"
  n=0
  while IFS= read -r line; do
    n=$((n + 1))
    for i in "${!names[@]}"; do [ "${kinds[$i]}" = in ] && echo "  ${names[$i]} = 0;"; done
    for w in ${line%%/*}; do
      s=${w%%=*}
      has_param "$s" in || { echo "trace: $s is not an input of $m" >&2; exit 1; }
      echo "  $s = 1;"
      if [[ $w == *=* ]]; then
        has_param "${s}_val" inval || { echo "trace: $s carries no value" >&2; exit 1; }
        echo "  ${s}_val = (${w#*=});"
      fi
    done
    for w in ${line#*/}; do
      s=${w%%=*}
      has_param "$s" out || { echo "trace: $s is not an output of $m" >&2; exit 1; }
    done
    args=""
    for i in "${!names[@]}"; do
      case ${kinds[$i]} in in|inval) a=${names[$i]} ;; *) a="&${names[$i]}" ;; esac
      args="${args:+$args, }$a"
    done
    echo "  ${m}_automaton($args);"
    echo "  printf(\"$n /\");"
    for i in "${!names[@]}"; do
      [ "${kinds[$i]}" = out ] || continue
      s=${names[$i]}
      if has_param "${s}_val" outval; then
        t=$(type_of "${s}_val")
        echo "  if ($s) { printf(\" $s=\"); print_$t(stdout, ${s}_val); }"
      else
        echo "  if ($s) printf(\" $s\");"
      fi
    done
    echo "  printf(\"\\n\");"
  done < "$trace"
  echo "  return 0;"
  echo "}"
} > trace_driver.c

status=0
for cc in "gcc -x c -std=c99 -Werror=implicit-function-declaration" "g++ -x c++"; do
  exe=trace_${cc%% *}
  if ! $cc -o "$exe" trace_driver.c 2> "$exe.log"; then
    cat "$exe.log" >&2; echo "trace: $m does not build with ${cc%% *}" >&2; exit 1
  fi
  ./"$exe" > "$exe.txt" || { echo "trace: $exe failed" >&2; exit 1; }
done
cmp -s trace_gcc.txt trace_g++.txt || { diff trace_gcc.txt trace_g++.txt >&2; echo "trace: gcc and g++ builds differ" >&2; exit 1; }
cat trace_gcc.txt

#!/usr/bin/env bash
# Runs the C step function of a module on a trace of reactions and compares its outputs.
#   trace.sh MODULE TRACE_FILE
# Reads MODULE.h and MODULE.c made by "quarnc -c". A trace line is one reaction:
#   inputs present / outputs expected
# Words are signal names; NAME=expr gives a valued input its value (a C expression) or
# says the value printed for a valued output. "#" starts a comment; a line without "/"
# is an error. Valued signals need the case's C_data_user_<type>.h, which defines the
# type, zero_<type>, copy_<type>, the operators, and print_<type>(FILE*, <type>).
# The driver includes MODULE.c and is built as C (gcc) and as C++ (g++).
set -eu
m=$1
trace=$2
header=$m.h
[ -f "$header" ] && [ -f "$m.c" ] || { echo "trace: $m.c or $m.h missing"; exit 1; }

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
  while IFS= read -r line || [ -n "$line" ]; do
    line=${line%%#*}
    [ -n "$(echo "$line" | tr -d ' \t')" ] || continue
    case "$line" in */*) ;; *) echo "trace: line without '/': $line" >&2; exit 1 ;; esac
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
    echo "$n /${line#*/}" >> trace_expected.raw
  done < "$trace"
  echo "  return 0;"
  echo "}"
} > trace_driver.c

# One line per reaction, outputs sorted, so that the order of the words doesn't count.
normalise() {
  local n slash rest
  while read -r n slash rest; do
    echo "$n $slash" $(printf '%s\n' $rest | sort)
  done
}
normalise < trace_expected.raw > trace_expected.txt
rm -f trace_expected.raw

status=0
for cc in "gcc -x c -std=c99 -Werror=implicit-function-declaration" "g++ -x c++"; do
  exe=trace_${cc%% *}
  if ! $cc -o "$exe" trace_driver.c 2> "$exe.log"; then
    cat "$exe.log"; echo "trace: $m does not build with ${cc%% *}"; status=1; continue
  fi
  ./"$exe" | normalise > "$exe.txt"
  if ! diff -u trace_expected.txt "$exe.txt"; then
    echo "trace: $m built with ${cc%% *} differs from $trace"; status=1
  fi
done
exit $status

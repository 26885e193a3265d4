#!/usr/bin/env bash
# Runs one end-to-end case: run_case.sh QUARNC CASE.run
# The case's directory is copied to a scratch directory and quarnc runs there.
set -u
quarnc=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
case_file=$2
case_dir=$(dirname "$case_file")
case_name=$(basename "$case_file" .run)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# -L: a file shared with another case directory is a link to it.
cp -rL "$case_dir"/. "$work"/
# Scripts shared by the cases (trace.sh) are reached through $E2E.
export E2E=$(cd "$(dirname "$0")" && pwd)
cd "$work" || exit 2

fail() { echo "FAIL $case_name: $*"; exit 1; }

args=""; want_exit=0; has_args=0
declare -a want_err=() want_out=() no_err=() want_files=() no_files=() goldens=() shells=()
while IFS= read -r line || [ -n "$line" ]; do
  case "$line" in
    ''|'#'*) ;;
    args:*)        args=${line#args:}; has_args=1 ;;
    exit:*)        want_exit=$(echo ${line#exit:}) ;;
    stderr:*)      want_err+=("${line#stderr: }") ;;
    stdout:*)      want_out+=("${line#stdout: }") ;;
    not-stderr:*)  no_err+=("${line#not-stderr: }") ;;
    file:*)        want_files+=("$(echo ${line#file:})") ;;
    no-file:*)     no_files+=("$(echo ${line#no-file:})") ;;
    golden:*)      goldens+=("$(echo ${line#golden:})") ;;
    then:*)        shells+=("${line#then: }") ;;
    *) fail "bad line in case file: $line" ;;
  esac
done < "$case_file"
[ $has_args = 1 ] || fail "no args: line"

unset DISPLAY
export QUARN_BATCH=1
# Target scripts of the traces rerun quarnc with the case's arguments.
export QUARNC=$quarnc QUARNC_ARGS=$args
eval "set -- $args"
timeout 60 "$quarnc" "$@" > stdout.txt 2> stderr.txt
status=$?
[ $status = 124 ] && fail "timed out"
if [ "$status" != "$want_exit" ]; then
  echo "--- stdout"; cat stdout.txt; echo "--- stderr"; cat stderr.txt
  fail "exit status $status, expected $want_exit"
fi
grep -q 'runtime error\|AddressSanitizer\|LeakSanitizer' stderr.txt && { cat stderr.txt; fail "sanitizer report"; }
for s in "${want_err[@]}"; do
  grep -qF -- "$s" stderr.txt || { cat stderr.txt; fail "stderr lacks: $s"; }
done
for s in "${no_err[@]}"; do
  grep -qF -- "$s" stderr.txt && { cat stderr.txt; fail "stderr has: $s"; }
done
for s in "${want_out[@]}"; do
  grep -qF -- "$s" stdout.txt || { cat stdout.txt; fail "stdout lacks: $s"; }
done
# Every file a progress line announces was written. The lines name the module's files
# even when "-o" renames them, so a case with "-o" checks its files by name instead.
[[ " $args " == *" -o "* ]] || for f in $(sed -n 's/^\*\*\* generate //p; s/^\*\*\*\* Save //p' stderr.txt | sed 's/ and / /'); do
  [ -e "$f" ] || [ -n "$(find . -name "$(basename "$f")" -print -quit)" ] || fail "announced file $f missing"
done
for f in "${want_files[@]}"; do [ -e "$f" ] || fail "missing file $f"; done
for f in "${no_files[@]}"; do [ ! -e "$f" ] || fail "unexpected file $f"; done
# golden: GENERATED EXPECTED  -- exact comparison
for g in "${goldens[@]}"; do
  set -- $g
  diff -u "$2" "$1" || fail "$1 differs from $2"
done
# then: a shell command that must succeed in the scratch directory (build and run generated code, ...)
for c in "${shells[@]}"; do
  bash -c "$c" || fail "then: $c"
done
echo "ok $case_name"

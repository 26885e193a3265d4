#!/usr/bin/env bash
# The lean C target of the reaction traces: lean_c.sh MODULE LINES (see README.md).
# Makes MODULE.c and MODULE.h with "quarnc -lean_c" in a directory of its own, from a copy
# of the case's files, and runs them with the C target's driver (gcc and g++).
set -eu
m=$1
trace=$2
here=$(cd "$(dirname "$0")" && pwd)
. "$here/lib.sh"
rm -rf lean_c
mkdir lean_c
find . -maxdepth 1 -type f ! -name "$m.c" ! -name "$m.h" -exec cp {} lean_c/ \;
cd lean_c
REGENERATE_OPTIONS=-lean_c regenerate
[ -f "$m.c" ] && [ -f "$m.h" ] || { echo "lean_c: $m.c or $m.h missing" >&2; exit 1; }
if grep -q "int ${m}_node\[" "$m.c"; then
  echo "lean_c: $m.c still has its node array" >&2
  exit 1
fi
exec bash "$here/c.sh" "$m" "$trace"

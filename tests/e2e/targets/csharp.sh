#!/usr/bin/env bash
# The C# target of the reaction traces: csharp.sh MODULE LINES (see README.md).
# Reads MODULE.cs made by "quarnc -csharp", or makes it.
# Builds MODULE.cs with the bean environment of csharp/ (and MODULE_user.cs, the case's
# other half of the class for user types and methods, when present), then sends each
# reaction's inputs as one event string and prints "N / OUT OUT=value".
set -eu
m=$1
trace=$2
here=$(cd "$(dirname "$0")" && pwd)
. "$here/lib.sh"
[ -f "$m.cs" ] || REGENERATE_OPTIONS=-csharp regenerate
[ -f "$m.cs" ] || { echo "csharp: $m.cs missing" >&2; exit 1; }
sources=("$here/csharp/Env.cs" "$here/csharp/Driver.cs" "$m.cs")
[ -f "${m}_user.cs" ] && sources+=("${m}_user.cs")
if ! mcs -nologo -nowarn:219,414,162,168 -out:"csharp_$m.exe" "${sources[@]}" > "csharp_$m.log" 2>&1; then
  cat "csharp_$m.log" >&2
  echo "csharp: $m.cs does not build" >&2
  exit 1
fi
# One event string per reaction: the input words of the line, ";" between them.
while IFS= read -r line; do
  echo ${line%%/*} | tr ' ' ';'
done < "$trace" > "csharp_$m.events"
timeout 60 mono "csharp_$m.exe" < "csharp_$m.events"

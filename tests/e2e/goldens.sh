#!/usr/bin/env bash
# The files that quarnc writes for the end-to-end cases, byte for byte:
#   goldens.sh QUARNC [--regenerate]
# Every case that ends with status 0 is run again in a scratch directory (without its
# "then:" commands); each file it wrote is hashed, with the scratch path replaced, and the
# list is compared with goldens.sums. --regenerate rewrites the list: read the diff before
# committing it. Simulation cases open sockets and are left to their own checks.
set -u
quarnc=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
here=$(cd "$(dirname "$0")" && pwd)
sums=$here/goldens.sums
export QUARN_BATCH=1
unset DISPLAY

list() {
  local case args dir work
  find "$here" -name '*.run' | sort | while read -r case; do
    grep -q '^exit: *[1-9]' "$case" && continue
    args=$(sed -n 's/^args://p' "$case" | head -1)
    case "$args" in *simul*|*-sim*|*-gui*) continue ;; esac
    dir=$(dirname "$case")
    work=$(mktemp -d)
    cp -rL "$dir"/. "$work"/
    ( cd "$work" && find . -type f -exec sha256sum {} + | sort ) > "$work.before"
    ( cd "$work" && eval "set -- $args" && timeout 60 "$quarnc" "$@" > /dev/null 2>&1 )
    ( cd "$work" && find . -type f -exec sha256sum {} + | sort ) | comm -13 "$work.before" - |
      while read -r _ f; do
        # Debug dumps print addresses.
        printf '%s %s\n' "$(sed -e "s|$work|DIR|g" -e 's/0x[0-9a-f]*/0x/g' "$work/$f" | sha256sum | cut -c1-16)" \
          "${case#$here/}:${f#./}"
      done
    rm -f "$work.before"
    rm -rf "$work"
  done
}

if [ "${2:-}" = --regenerate ]; then
  list > "$sums"
  echo "goldens: $(wc -l < "$sums") files in $sums"
  exit 0
fi
now=$(mktemp)
trap 'rm -f "$now"' EXIT
list > "$now"
if ! diff <(sort -k2 "$sums") <(sort -k2 "$now"); then
  echo "goldens: generated files differ from $sums (lines marked > are this build's)"
  exit 1
fi
echo "goldens: $(wc -l < "$now") files agree"

#!/usr/bin/env bash
# Fails when a source file includes a header of a higher layer. The layers, lowest first:
#   util < bdd < signals < equations < data, model < front < targets < sim < gui, driver
# A program's main file (*_main.cpp) stands above every layer.
#   layers.sh SRC_DIR
set -u
src=${1:?usage: layers.sh SRC_DIR}
rank() {
  case $1 in
    util) echo 0 ;; bdd) echo 1 ;; signals) echo 2 ;; equations) echo 3 ;;
    data | model) echo 4 ;; front) echo 5 ;; targets) echo 6 ;; sim) echo 7 ;;
    gui | driver) echo 8 ;; *) echo -1 ;;
  esac
}
bad=0
for file in "$src"/*/*.h "$src"/*/*.cpp "$src"/*/*.l "$src"/*/*.y; do
  [ -f "$file" ] || continue
  case $file in *_main.cpp) continue ;; esac
  layer=$(basename "$(dirname "$file")")
  own=$(rank "$layer")
  [ "$own" -ge 0 ] || { echo "$file: unknown layer $layer"; bad=1; continue; }
  while IFS= read -r included; do
    other=$(rank "$included")
    if [ "$other" -gt "$own" ]; then
      echo "${file#"$src"/} includes $included/: $layer may not reach up"
      bad=1
    fi
  done < <(sed -n 's/^#include "\([a-z_]*\)\/.*/\1/p' "$file")
done
exit $bad

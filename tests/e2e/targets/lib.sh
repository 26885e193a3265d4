# Shared by trace.sh and the target scripts.

# The reactions of a trace file, one "inputs / outputs" line each, comments and blank lines
# dropped. Fails on a line without "/".
trace_reactions() {
  local line
  while IFS= read -r line || [ -n "$line" ]; do
    line=${line%%#*}
    [ -n "$(echo "$line" | tr -d ' \t')" ] || continue
    case "$line" in */*) ;; *) echo "trace: line without '/': $line" >&2; return 1 ;; esac
    echo "$line"
  done < "$1"
}

# Prints the reason and succeeds when the trace says "# skip TARGET: reason".
trace_skip() {
  local r
  r=$(sed -n "s/^# *skip $1: *//p" "$2" | head -1)
  [ -n "$r" ] && echo "$r"
}

# One line per reaction, "N / outputs" with the outputs sorted, so that the order of the
# words doesn't count.
trace_normalise() {
  local n slash rest
  while read -r n slash rest; do
    echo "$n $slash" $(printf '%s\n' $rest | sort)
  done
}

# Runs quarnc again with the case's arguments and more options (a target's own), quietly;
# its error stream is shown on failure.
regenerate() {
  local log
  log=$(mktemp)
  eval "set -- $QUARNC_ARGS"
  if ! timeout 60 "$QUARNC" "$@" ${REGENERATE_OPTIONS:-} > /dev/null 2> "$log"; then
    cat "$log" >&2; rm -f "$log"; return 1
  fi
  rm -f "$log"
}

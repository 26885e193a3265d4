# No display, no wait: with QUARN_BATCH=1 on a live server, and without DISPLAY, every
# window is skipped, its text goes to the error stream and the run goes on or ends.
cp "$3/abro.qn" "$3/three_pages.rpt" "$3/three_pages.txt" .
for mode in batch nodisplay; do
  dump="$ART/$mode.dump"
  run() {  # STATUS TEXT CMD...: the command ends in time with STATUS and TEXT on stderr
    local status=$1 text=$2
    shift 2
    if [ $mode = batch ]; then
      QUARN_BATCH=1 QUARN_WIDGET_DUMP="$dump" timeout 10 "$@" >out 2>err
    else
      env -u DISPLAY QUARN_WIDGET_DUMP="$dump" timeout 10 "$@" >out 2>err
    fi
    local got=$?
    [ $got = "$status" ] || xw_fail "$mode: $* ended with $got, expected $status"
    [ -z "$text" ] || grep -qF -- "$text" err || xw_fail "$mode: $* wrote no \"$text\" on the error stream"
  }
  run 1 "no display for the front panel" "$1"
  run 1 "no display for the front panel" "$1" abro.qn
  run 1 "Main module: nosuch undefined" "$1" -qnc -main nosuch abro.qn
  run 1 "error: no outfile name supplied" "$1" abro.qn -o
  run 0 "***Parsing File: abro.qn" "$1" -qnc -main abro abro.qn
  run 0 "Debugging trace" "$2" show three_pages.rpt "Debugging trace"
  run 0 "" "$2" message "a message"
  run 0 "" "$2" alert "an alert"
  run 0 "" "$2" big "a big message"
  run 0 "working on it" "$2" wait "working on it"
  # The simulator's panels: no trace, no display, so it says how to use it and ends.
  run 0 "tarvix: no trace and no display: nothing to run" "$1" -pure_simul -main abro abro.qn
  run 0 "tarvix: no trace and no display: nothing to run" "$(dirname "$1")/tarvix" abro
  [ -e "$dump" ] && xw_fail "$mode: a window was shown"
done
# The skipped report is the report as text.
QUARN_BATCH=1 "$2" show three_pages.rpt "Debugging trace" 2>err
{ echo "Debugging trace"; cat three_pages.txt; } | cmp - err || xw_fail "report text differs"

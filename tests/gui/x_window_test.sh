#!/usr/bin/env bash
# Runs one window test on a private virtual X server and ends on its own.
#
#   x_window_test.sh ARTEFACTS CASE [ARGS...]
#
# Starts Xvfb (it picks a free display itself), then sources CASE in a scratch
# directory with ARGS as "$@". ARTEFACTS receives the screenshots (.xwd), the widget
# dumps and the output of every program the case launched; it is kept after the run.
# Exit 77 (skipped) when Xvfb, xdotool or xwd is missing.
#
# Helpers for the case (every wait has a timeout, XW_TIMEOUT seconds by default):
#   xw_launch NAME CMD...      runs CMD with the display in the background; its widget
#                              dump is $ART/NAME.dump, its output $ART/NAME.out/.err
#   xw_window NAME TITLE       waits for a shown window of that label (from the dump of
#                              NAME), prints its X id
#   xw_dump_has NAME TEXT      waits until the dump of NAME holds TEXT (fixed string)
#   xw_labels NAME TEXT...     each TEXT must stand in the dump of NAME as a label
#   xw_click WID X Y           a click at X, Y inside the window
#   xw_type TEXT / xw_key KEY  keyboard input to the window under the pointer
#   xw_shot WID SHOT [W H]     screenshot $ART/SHOT.xwd, which must be W by H
#   xw_wait_exit [STATUS]      waits for the launched program; checks its exit status
#   xw_gone NAME TITLE         waits until that window is no longer shown
#   xw_fail TEXT               fails the case
set -u

ART=$(realpath -m "$1")
CASE=$(realpath "$2")
shift 2
XW_TIMEOUT=${XW_TIMEOUT:-20}

for tool in Xvfb xdotool xwd xwininfo; do
  if ! command -v "$tool" >/dev/null; then
    echo "skipped: $tool is not installed"
    exit 77
  fi
done

rm -rf "$ART"
mkdir -p "$ART"
SCRATCH=$(mktemp -d)
XVFB_PID=
XW_PID=

cleanup() {
  [ -n "$XW_PID" ] && kill "$XW_PID" 2>/dev/null
  [ -n "$XVFB_PID" ] && kill "$XVFB_PID" 2>/dev/null
  rm -rf "$SCRATCH"
}
trap cleanup EXIT

# A failure inside $(...) ends the whole case too.
trap 'exit 1' USR1
xw_fail() {
  echo "FAIL: $*" >&2
  [ "$BASHPID" != "$$" ] && kill -USR1 $$
  for f in "$ART"/*.err; do
    [ -s "$f" ] && { echo "--- $f" >&2; tail -n 20 "$f" >&2; }
  done
  exit 1
}

# The server writes its display number on a pipe once it accepts connections.
exec 3< <(Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp -noreset 2>"$ART/xvfb.err" & echo "pid $!")
read -r -t 10 _ XVFB_PID <&3 || xw_fail "Xvfb did not start"
read -r -t 10 display_number <&3 || xw_fail "Xvfb gave no display"
export DISPLAY=":$display_number"
unset QUARN_BATCH
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=0}

xw_launch() {
  local name=$1
  shift
  QUARN_WIDGET_DUMP="$ART/$name.dump" "$@" >"$ART/$name.out" 2>"$ART/$name.err" &
  XW_PID=$!
}

# Runs a test of a condition until it holds or the time is up.
xw_until() {
  local what=$1
  shift
  local end=$((SECONDS + XW_TIMEOUT))
  until "$@"; do
    [ $SECONDS -ge $end ] && xw_fail "timeout waiting for $what"
    sleep 0.1
  done
}

xw_holds() { grep -qF -- "$2" "$1" 2>/dev/null; }

xw_dump_has() {
  xw_until "\"$2\" in $1.dump" xw_holds "$ART/$1.dump" "$2"
}

# The X id of the latest shown state of a window, from its dump line
# 'window "TITLE" WxH xid N'.
xw_find_window() {
  grep -F "window \"$2\" " "$ART/$1.dump" 2>/dev/null | tail -n 1 | sed -n 's/.* xid \([0-9]*\)$/\1/p'
}

xw_window() {
  xw_dump_has "$1" "window \"$2\" "
  local wid
  wid=$(xw_find_window "$1" "$2")
  [ -n "$wid" ] || xw_fail "no id for window $2"
  # The window is drawn once it is viewable.
  xw_until "window $2 mapped" xw_viewable "$wid"
  sleep 0.1
  echo "$wid"
}

xw_viewable() { xwininfo -id "$1" 2>/dev/null | grep -q "IsViewable"; }
xw_not_viewable() { ! xw_viewable "$1"; }

xw_gone() {
  local wid
  wid=$(xw_find_window "$1" "$2")
  [ -z "$wid" ] || xw_until "window $2 to close" xw_not_viewable "$wid"
}

xw_labels() {
  local name=$1
  shift
  for label in "$@"; do
    grep -qF -- "\"$label\"" "$ART/$name.dump" || xw_fail "label \"$label\" not in $name"
  done
}

xw_click() {
  xdotool mousemove --window "$1" "$2" "$3" click 1
  sleep 0.1
}

xw_type() {
  xdotool type --delay 30 -- "$1"
  sleep 0.1
}

xw_key() {
  xdotool key "$1"
  sleep 0.1
}

# An xwd file starts with big-endian 32-bit fields; width and height are the 5th and 6th.
xw_shot() {
  local out="$ART/$2.xwd"
  xwd -silent -id "$1" -out "$out" || xw_fail "no screenshot of $2"
  local size
  size=$(od -A n -t u1 -j 16 -N 8 "$out" |
    awk '{ printf "%dx%d", $1*16777216+$2*65536+$3*256+$4, $5*16777216+$6*65536+$7*256+$8 }')
  [ $# -lt 4 ] || [ "$size" = "$3x$4" ] || xw_fail "screenshot $2 is $size, not $3x$4"
}

xw_wait_exit() {
  local end=$((SECONDS + XW_TIMEOUT))
  while kill -0 "$XW_PID" 2>/dev/null; do
    [ $SECONDS -ge $end ] && xw_fail "the program did not end"
    sleep 0.1
  done
  wait "$XW_PID"
  local status=$?
  XW_PID=
  if [ $# -gt 0 ] && [ "$status" != "$1" ]; then
    xw_fail "exit status $status, expected $1"
  fi
}

cd "$SCRATCH" || exit 1
source "$CASE"
echo "ok: $(basename "$CASE")"

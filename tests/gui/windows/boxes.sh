# Message box, alert box and the big message form, each dismissed by a click; the wait
# form shows and goes by itself; the compiler's own alert for an unknown main module.
box_button() {  # click the button at the lower right of the latest unnamed box of NAME
  local box
  box=$(xw_window "$1" "$2")
  xw_shot "$box" "$1"
  read -r bw bh < <(grep -F "window \"$2\" " "$ART/$1.dump" | tail -n 1 | sed 's/.*" \([0-9]*\)x\([0-9]*\) xid.*/\1 \2/')
  xw_click "$box" $((bw - $3)) $((bh - $4))
}
xw_launch message "$2" message "Hello from quarnc"
xw_dump_has message "Hello from quarnc"
box_button message "" 40 20
xw_wait_exit 0

xw_launch alert "$2" alert "Something is wrong"
xw_dump_has alert "Something is wrong"
box_button alert "" 40 20
xw_wait_exit 0

xw_launch big "$2" big "$(printf 'line one\nline two\nline three')"
xw_dump_has big 'lines 3 first "line one"'
xw_labels big "Quit" "save"
box_button big "Messages" 45 20
xw_wait_exit 0

xw_launch wait "$2" wait "working on it"
wid=$(xw_window wait "travail en cours ...")
xw_shot "$wid" wait_form 600 60
xw_labels wait "working on it"
xw_wait_exit 0

cp "$3/abro.qn" .
xw_launch main "$1" -qnc -main nosuch abro.qn
xw_dump_has main "undefined"
box_button main "" 40 20
xw_wait_exit 1
grep -qF "Main module: nosuch undefined" "$ART/main.err" || xw_fail "no text on the error stream"

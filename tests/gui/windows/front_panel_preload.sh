# A lone file argument preloads the panel; "c" ticked and compiled. A file without
# ".qn" gets its message box, dismissed by a click; the quit button ends the run.
cp "$3/abro.qn" .
xw_launch preload "$1" abro.qn
wid=$(xw_window preload winquarnc)
xw_dump_has preload 'value "abro.qn"'
xw_dump_has preload 'input "" 160,80 385x35 value "abro"'
xw_click "$wid" 330 392  # c
xw_dump_has preload 'button "c" 311,377 224x30 value 1'
xw_click "$wid" 140 629  # Compile && Quit
xw_wait_exit 0
[ -s abro.c ] && [ -s abro.h ] || xw_fail "abro.c and abro.h were not written"

xw_launch notqn "$1" notes.txt
box=$(xw_window notqn "")
xw_dump_has notqn "ERROR IN LOADING FILE: notes.txt"
xw_shot "$box" message_box
# The box's one button stands at its lower right corner.
read -r bw bh < <(grep -F 'window "" ' "$ART/notqn.dump" | tail -n 1 | sed 's/.*" \([0-9]*\)x\([0-9]*\) xid.*/\1 \2/')
xw_click "$box" $((bw - 40)) $((bh - 20))
wid=$(xw_window notqn winquarnc)
xw_click "$wid" 417 629  # Quit
xw_wait_exit 0

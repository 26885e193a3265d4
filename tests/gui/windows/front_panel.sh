# The front panel: its labels, a file chosen in the file chooser, QNC ticked, compiled.
# Arguments: quarnc, quarn_report, data directory.
cp "$3/abro.qn" .
xw_launch panel "$1"
wid=$(xw_window panel winquarnc)
xw_shot "$wid" front_panel 565 655
xw_labels panel "Load" "Main module" "Output file" "Output directory" "Load qnc file" \
  "Options" "Generations" "Start pure simulator" "Start valued simulator Quarns" "Debug" \
  "Forget locals name" "Keep all locals" "check Overknowledge" "QNC" "Quarns simulator" "c" \
  "CSharp" "blif" "nusmv" "vhdl altera" "Compile && Quit" "Quit" "quarnc version"
xw_dump_has panel '"quarnc version" 220,10 160x25 value "3.4.3"'

xw_click "$wid" 80 57  # Load
chooser=$(xw_window panel "quarnc file selection")
xw_shot "$chooser" file_chooser
xw_type "abro.qn"
xw_key Return
xw_gone panel "quarnc file selection"
xw_dump_has panel 'input "" 160,80 385x35 value "abro"'

xw_click "$wid" 330 320  # QNC
xw_dump_has panel 'button "QNC" 311,305 224x30 value 1'
xw_click "$wid" 140 629  # Compile && Quit
xw_wait_exit 0
[ -s abro.qnc ] || xw_fail "abro.qnc was not written"
grep -qF "***Parsing File: " "$ART/panel.err" || xw_fail "no parsing line"
grep -qF "compilation finished in " "$ART/panel.out" || xw_fail "no timing line"

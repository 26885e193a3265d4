# The report display on a three-page report: labels, paging by button and by number,
# the text and PDF files (each acknowledged by a message box closed with a click), cancel.
cp "$3/three_pages.rpt" .
xw_launch report "$2" show three_pages.rpt "Debugging trace"
wid=$(xw_window report "Debugging trace")
xw_shot "$wid" report_display 920 700
xw_labels report "next page" "previous page" "CANCEL" "pdf file" "text file" "page 1 / 3    " \
  "Debugging trace"
xw_dump_has report 'browser "" 10,50 910x570 lines 76 first "@f@S14 -------'

xw_click "$wid" 360 640  # next page
xw_dump_has report '"page 2 / 3    "'
xw_click "$wid" 170 655  # the page field
xw_key ctrl+a
xw_type "3"
xw_click "$wid" 200 655  # go
xw_dump_has report '"page 3 / 3    "'
xw_dump_has report 'lines 16 first "@f@S14 49: OR(_s_A49'
xw_click "$wid" 360 670  # previous page
xw_dump_has report 'page 2 / 3    '
xw_key ctrl+a
xw_type "9"
xw_key Return
xw_dump_has report 'input "" 150,645 40x20 value "2"'  # beyond the last page: unchanged

dismiss() {  # the message box that acknowledges a file
  xw_dump_has report "$1"
  local box
  box=$(xw_window report "")
  xw_shot "$box" "$2"
  read -r bw bh < <(grep -F 'window "" ' "$ART/report.dump" | tail -n 1 | sed 's/.*" \([0-9]*\)x\([0-9]*\) xid.*/\1 \2/')
  xw_click "$box" $((bw - 40)) $((bh - 20))
}
xw_click "$wid" 800 655  # text file
dismiss "generation of tmp.txt file" text_message
cmp tmp.txt "$3/three_pages.txt" || xw_fail "tmp.txt differs from the golden file"
xw_click "$wid" 550 655  # pdf file
dismiss "generation of tmp.pdf file" pdf_message
if command -v pdfinfo >/dev/null; then
  pdfinfo tmp.pdf 2>&1 | grep -q "^Pages: *3$" || xw_fail "tmp.pdf is not a 3-page PDF"
fi
cp tmp.txt tmp.pdf "$ART/"
xw_click "$wid" 85 655  # CANCEL
xw_wait_exit 0

# Escape closes the display as well.
xw_launch escape "$2" show three_pages.rpt "Second report"
wid=$(xw_window escape "Second report")
xdotool mousemove --window "$wid" 400 300
xw_key Escape
xw_wait_exit 0

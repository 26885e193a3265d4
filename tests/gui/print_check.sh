#!/usr/bin/env bash
# The printed forms of a three-page report, read by the tools that use them:
# Ghostscript renders the PostScript, poppler reads the PDF, the text matches its golden
# file, and tmp_ps converts with ps2pdf and reports the missing viewer.
#   print_check.sh QUARN_REPORT DATA_DIR
set -u
REPORT=$(realpath "$1")
DATA=$(realpath "$2")
for tool in gs pdfinfo pdftotext ps2pdf; do
  command -v $tool >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir" || exit 1
fail() { echo "FAIL: $*" >&2; exit 1; }

"$REPORT" ps "$DATA/three_pages.rpt" out.ps || fail "no PostScript"
timeout 60 gs -dSAFER -dBATCH -dNOPAUSE -sDEVICE=bbox out.ps >gs.out 2>&1 || { cat gs.out; fail "gs rejects the PostScript"; }
grep -qi "error" gs.out && { cat gs.out; fail "gs reports an error"; }
[ "$(grep -c '^%%BoundingBox' gs.out)" = 3 ] || { cat gs.out; fail "gs did not render 3 pages"; }

"$REPORT" pdf "$DATA/three_pages.rpt" out.pdf || fail "no PDF"
timeout 60 pdfinfo out.pdf >info 2>err || { cat err; fail "pdfinfo rejects the PDF"; }
[ -s err ] && { cat err; fail "pdfinfo complains"; }
grep -q "^Pages: *3$" info || { cat info; fail "the PDF has not 3 pages"; }
timeout 60 pdftotext -f 3 -l 3 out.pdf page3.txt 2>err && [ ! -s err ] || fail "pdftotext fails"
grep -q "last line" page3.txt || fail "page 3 lacks its last line"
grep -q "one (open parenthesis alone" page3.txt || fail "a lone parenthesis is lost"
if command -v qpdf >/dev/null; then
  qpdf --check out.pdf >/dev/null || fail "qpdf rejects the PDF"
fi
"$REPORT" pdf /dev/null empty.pdf && timeout 60 pdfinfo empty.pdf 2>&1 | grep -q "^Pages: *1$" ||
  fail "an empty report is not a one-page PDF"

"$REPORT" txt "$DATA/three_pages.rpt" out.txt && cmp out.txt "$DATA/three_pages.txt" || fail "text differs"

QUARN_BATCH=1 timeout 120 "$REPORT" tmp_ps "$DATA/three_pages.rpt" 2>err || fail "tmp_ps failed"
grep -qF "viewer not found: acroread (tmp.pdf is kept)" err || { cat err; fail "no viewer message"; }
[ -e tmp.ps ] && fail "tmp.ps left behind"
pdfinfo tmp.pdf 2>/dev/null | grep -q "^Pages: *3$" || fail "ps2pdf gave no 3-page tmp.pdf"
echo ok

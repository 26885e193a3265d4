#!/usr/bin/env bash
# Compiles the handshake to VHDL and simulates it with GHDL:
#   bash examples/vhdl/run.sh [build/quarnc]
set -eu
QUARNC=${1:-build/quarnc}
QUARNC=$(cd "$(dirname "$QUARNC")" && pwd)/$(basename "$QUARNC")
HERE=$(cd "$(dirname "$0")" && pwd)
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cp "$HERE"/handshake.qn "$HERE"/vhdl_libs.inc "$HERE"/tb_handshake.vhd "$WORK"/
cd "$WORK"
echo "$ quarnc -vhdl_altera -main handshake handshake.qn"
QUARN_BATCH=1 "$QUARNC" -vhdl_altera -main handshake handshake.qn
echo "$ ghdl -a handshake.vhd tb_handshake.vhd && ghdl -e tb_handshake && ghdl -r tb_handshake"
timeout 120 ghdl -a handshake.vhd tb_handshake.vhd
timeout 120 ghdl -e tb_handshake
timeout 120 ghdl -r tb_handshake

#!/usr/bin/env bash
# Shows quarnc at work: banner and usage for now.
set -u
quarnc=${1:-build/quarnc}
"$quarnc" -v
QUARN_BATCH=1 "$quarnc" -h -c || true

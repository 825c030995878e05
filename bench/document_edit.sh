#!/usr/bin/env bash
# An edit and its undo on a 10-hour stereo document against a 10-second one (ratio of processor
# times per operation; the goal is <= 1.5). Usage: bench/document_edit.sh BUILD_DIR
set -euo pipefail
bin="${1:-build/release}/bench/bench_document_edit"
[ -x "$bin" ] || { echo "no $bin" >&2; exit 2; }
"$bin"

#!/usr/bin/env bash
# The spectrogram's full view of a 3-hour stereo document, first and after an edit, beside sox
# drawing the same audio. Usage: bench/spectrogram.sh BUILD_DIR
set -euo pipefail
bin="${1:-build/release}/bench/bench_spectrogram"
[ -x "$bin" ] || { echo "no $bin" >&2; exit 2; }
command -v sox >/dev/null || { echo "sox is not installed (tools/setup-debian.sh installs it)" >&2; exit 2; }
"$bin"

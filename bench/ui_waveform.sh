#!/usr/bin/env bash
# The waveform display of a 3-hour stereo document beside cat reading the same overview bytes.
set -euo pipefail
build_dir=$1
if [ ! -x "$build_dir/bench/bench_ui_waveform" ]; then
  echo "bench_ui_waveform was not built (the editor needs Qt 6); skipped"
  exit 0
fi
"$build_dir/bench/bench_ui_waveform"

#!/usr/bin/env bash
# Echo, reverb, high-pass, compressor, normalize, reverse and the equalizer on a 10-minute stereo file beside
# the nearest sox effect (ratio of wall times; the goal is <= 1.0), then every streaming effect
# and reverse on a 2-hour stereo document (peak resident memory; the goal is under 100 MB).
# Usage: bench/effects.sh BUILD_DIR
set -euo pipefail
bin="${1:-build/release}/bench/bench_effects"
[ -x "$bin" ] || { echo "no $bin" >&2; exit 2; }
if command -v sox >/dev/null; then
  "$bin" --minutes 10
else
  echo "sox is not installed; skipping the speed comparison" >&2
fi
"$bin" --memory --hours 2

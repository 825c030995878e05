#!/usr/bin/env bash
# A batch of 200 files (2 s, stereo, 44.1 kHz) through normalize, high-pass filter and fade in,
# saved as WAV: sonitra-cli batch on two worker processes against one, in the same run. Prints
# the ratio of wall times (jobs 2 / jobs 1; the goal on two cores is <= 0.6), and the same three
# steps with sox, one file after the other, for reference.
# Usage: bench/batch.sh BUILD_DIR
set -euo pipefail
. "$(dirname "$0")/lib/timing.sh"
if [ $# -ne 1 ]; then
  echo "usage: bench/batch.sh BUILD_DIR" >&2
  exit 64
fi
cli="$1/sonitra-cli"
[ -x "$cli" ] || { echo "no sonitra-cli in $1" >&2; exit 2; }
command -v sox >/dev/null || { echo "sox is not installed; skipping" >&2; exit 0; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache"
mkdir -p "$work/in"
for i in $(seq 0 199); do
  sox -n -r 44100 -c 2 -b 16 "$work/in/f$i.wav" synth 2 sine $((200 + i * 5)) sine $((900 + i)) gain -$((3 + i % 12))
done
"$cli" script new "$work/s.snb" normalize NormalizePeakLevel=90 then high-pass-filter LowCutFreq=300 then fade-in

# Every timed run starts with no outputs.
before_run() { rm -rf "$work/out"; }

sox_steps() {
  mkdir -p "$work/out"
  for f in "$work"/in/*.wav; do
    sox "$f" "$work/out/$(basename "$f")" norm -0.9 highpass -1 300 fade t 2 || return 1
  done
}

one=$(best_of_3 "$cli" batch "$work/s.snb" "$work"/in/*.wav --to wav --out "$work/out" --jobs 1)
two=$(best_of_3 "$cli" batch "$work/s.snb" "$work"/in/*.wav --to wav --out "$work/out" --jobs 2)
ref=$(best_of_3 sox_steps)
awk -v a="$one" -v b="$two" -v s="$ref" -v n="$(nproc)" \
  'BEGIN { printf "batch of 200 files        jobs 1 %6.3f s   jobs 2 %6.3f s   ratio %.2f   (sox, one by one: %6.3f s; %d cores)\n", a, b, b / a, s, n }'

#!/usr/bin/env bash
# Decoding 10-minute IMA ADPCM, Microsoft ADPCM and u-law WAV files (22050 Hz stereo, written by
# sox) to raw 16-bit samples, beside sox doing the same in the same run. Prints the ratio of wall
# times (sonitra / sox; the goal is <= 1.0 for each). Usage: bench/wav_codecs.sh BUILD_DIR
set -euo pipefail
. "$(dirname "$0")/lib/timing.sh"
bin="${1:-build/release}/bench/bench_wav_decode"
[ -x "$bin" ] || { echo "no $bin" >&2; exit 2; }
command -v sox >/dev/null || { echo "wav_codecs: sox is not installed; skipping" >&2; exit 0; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sox -n -r 22050 -c 2 -b 16 "$work/src.wav" synth 600 pinknoise sine 300-3000 gain -12
for enc in ima-adpcm ms-adpcm u-law; do
  sox "$work/src.wav" -e "$enc" "$work/$enc.wav"
  cat "$work/$enc.wav" >/dev/null # in the page cache for both
done


status=0
for enc in ima-adpcm ms-adpcm u-law; do
  ours=$(best_of_3 "$bin" "$work/$enc.wav" "$work/out.raw")
  theirs=$(best_of_3 sox "$work/$enc.wav" -t s16 "$work/out.raw")
  awk -v l="decode $enc" -v a="$ours" -v b="$theirs" \
    'BEGIN { printf "%-20s sonitra %6.3f s   sox %6.3f s   ratio %.2f (goal <= 1.0)\n", l, a, b, a / b }'
  awk -v a="$ours" -v b="$theirs" 'BEGIN { exit !(a > b) }' && status=1
done
exit $status

#!/usr/bin/env bash
# Reading a 60-minute disc image (12 tracks) into documents against cd-paranoia reading the same
# image to a raw file, in the same paranoia mode: our "paranoid" beside cd-paranoia's default,
# and our "fast" beside cd-paranoia -Z. Prints the ratios of wall times (the goal is <= 1.0).
# Usage: bench/cd_read.sh BUILD_DIR
set -euo pipefail
. "$(dirname "$0")/lib/timing.sh"
BUILD=${1:-build/release}
BIN="$BUILD/bench/bench_cd_read"
[ -x "$BIN" ] || { echo "cd_read: $BIN not built"; exit 1; }
for tool in sox cd-paranoia; do
  command -v $tool >/dev/null || { echo "cd_read: $tool not found, skipped"; exit 0; }
done

DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
# 60 minutes are 270000 sectors of 2352 bytes: raw 16-bit little-endian stereo at 44100 Hz.
sox -n -r 44100 -c 2 -b 16 -e signed -L -t raw "$DIR/disc.bin" synth 3600 sine 220-3520 pinknoise gain -12
{
  echo 'FILE "disc.bin" BINARY'
  for n in $(seq 1 12); do
    printf '  TRACK %02d AUDIO\n    INDEX 01 %02d:00:00\n' "$n" $(((n - 1) * 5))
  done
} >"$DIR/disc.cue"
cat "$DIR/disc.bin" >/dev/null # in the page cache for both

before_run() { rm -rf "$DIR/work" "$DIR/out.raw"; mkdir -p "$DIR/work"; }
echo "cd_read: 60-minute image of 12 tracks, best of 3 wall times"
status=0
for pair in "paranoid:" "fast:-Z"; do
  mode=${pair%%:*}
  flag=${pair#*:}
  ours=$(best_of_3 "$BIN" "$DIR/disc.cue" "$mode" "$DIR/work")
  alone=$(best_of_3 "$BIN" "$DIR/disc.cue" "$mode" -)
  theirs=$(best_of_3 cd-paranoia $flag -q -r -d "$DIR/disc.cue" "1-" "$DIR/out.raw")
  awk -v m="$mode" -v f="${flag:-default}" -v a="$ours" -v b="$theirs" -v r="$alone" \
    'BEGIN { printf "  %-8s into documents %7.3f s   cd-paranoia %-7s %7.3f s   ratio %.2f (goal <= 1.0); reading alone %.3f s, ratio %.2f\n", m, a, f, b, a / b, r, r / b }'
  awk -v a="$ours" -v b="$theirs" 'BEGIN { exit (a / b <= 1.0 ? 0 : 1) }' || status=1
done
exit $status

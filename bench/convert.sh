#!/usr/bin/env bash
# Converting a 10-minute stereo 16-bit WAV: sonitra-cli against sox, the same work in the same
# run. Prints the ratio of wall times (sonitra / sox; the goal is <= 1.0).
set -euo pipefail
. "$(dirname "$0")/lib/timing.sh"
if [ $# -ne 1 ]; then
  echo "usage: bench/convert.sh BUILD_DIR" >&2
  exit 64
fi
cli="$1/sonitra-cli"
[ -x "$cli" ] || { echo "no sonitra-cli in $1" >&2; exit 2; }
command -v sox >/dev/null || { echo "sox is not installed; skipping" >&2; exit 0; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sox -n -r 44100 -c 2 -b 16 "$work/in.wav" synth 600 sine 440 sine 1000 gain -3


compare() {
  local label=$1 ours theirs
  shift
  ours=$(best_of_3 "$cli" convert "$work/in.wav" "$work/ours.wav" "$@")
  if [ $# -eq 0 ]; then
    theirs=$(best_of_3 sox "$work/in.wav" "$work/theirs.wav")
  else
    theirs=$(best_of_3 sox "$work/in.wav" -r "$2" "$work/theirs.wav")
  fi
  awk -v l="$label" -v a="$ours" -v b="$theirs" \
    'BEGIN { printf "%-24s sonitra %6.3f s   sox %6.3f s   ratio %.2f\n", l, a, b, a / b }'
}

compare "convert (no options)"
compare "convert --rate 22050" --rate 22050

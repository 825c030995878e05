#!/usr/bin/env bash
# The constant-pitch speed change, the constant-speed pitch change and rate conversion on a
# 10-minute stereo 16-bit WAV: sonitra-cli against sox's tempo, pitch and rate, the same work in
# the same run. Prints the ratio of wall times (sonitra / sox; the goal is <= 1.0).
set -euo pipefail
. "$(dirname "$0")/lib/timing.sh"
if [ $# -ne 1 ]; then
  echo "usage: bench/speed_pitch.sh BUILD_DIR" >&2
  exit 64
fi
cli="$1/sonitra-cli"
[ -x "$cli" ] || { echo "no sonitra-cli in $1" >&2; exit 2; }
command -v sox >/dev/null || { echo "sox is not installed; skipping" >&2; exit 0; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache"
# Something with a changing pitch and noise in it, so that the grain search has work to do.
sox -n -r 44100 -c 2 -b 16 "$work/in.wav" synth 600 sine 200-2000 sine 330 brownnoise gain -6


report() {
  awk -v l="$1" -v a="$2" -v b="$3" \
    'BEGIN { printf "%-30s sonitra %7.3f s   sox %7.3f s   ratio %.2f\n", l, a, b, a / b }'
}

in="$work/in.wav"
ours=$(best_of_3 "$cli" effect "$in" "$work/o.wav" constant-pitch-and-speed-change ConstPitchSpeed=125)
theirs=$(best_of_3 sox "$in" "$work/s.wav" tempo 1.25)
report "tempo 125 % (sox tempo 1.25)" "$ours" "$theirs"

ours=$(best_of_3 "$cli" effect "$in" "$work/o.wav" constant-pitch-and-speed-change ConstPitchSpeed=80)
theirs=$(best_of_3 sox "$in" "$work/s.wav" tempo 0.8)
report "tempo 80 % (sox tempo 0.8)" "$ours" "$theirs"

# 150 % of the pitch is 702 cents up.
ours=$(best_of_3 "$cli" effect "$in" "$work/o.wav" constant-speed-and-pitch-change ConstSpeedPitch=150)
theirs=$(best_of_3 sox "$in" "$work/s.wav" pitch 702)
report "pitch 150 % (sox pitch 702)" "$ours" "$theirs"

for rate in 22050 48000; do
  ours=$(best_of_3 "$cli" convert "$in" "$work/o.wav" --rate "$rate")
  theirs=$(best_of_3 sox "$in" "$work/s.wav" rate "$rate")
  report "rate 44100 -> $rate (sox rate)" "$ours" "$theirs"
done

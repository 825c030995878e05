#!/usr/bin/env bash
# Takes a picture of the editor under a virtual X server: the frame with two files open,
# side by side, and a region selected with the mouse in the first.
# Usage: tools/screenshot.sh [BUILD_DIR] [OUT.png]
set -euo pipefail
if [ "${1:-}" = "--inside" ]; then
  bin=$2 out=$3 work=$4
  inside=1
else
  bin=${1:-build/release}
  out=${2:-build/screenshot.png}
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT
  inside=0
fi
if [ "$inside" = 0 ]; then
  sox -n -r 44100 -c 2 -b 16 "$work/sweep.wav" synth 8 sine 220-880 sine 330-990 tremolo 1.5 70 fade 0.5 8 1 vol 0.7
  sox -n -r 22050 -c 1 -b 16 "$work/voice.wav" synth 6 pinknoise tremolo 3 90 fade 0.2 6 0.5 vol 0.5
  mkdir -p "$(dirname "$out")"
  # The same script again, inside the virtual display.
  xvfb-run -a -s '-screen 0 1280x800x24' "$0" --inside "$bin" "$out" "$work"
  echo "wrote $out"
  exit 0
fi

export XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache" XDG_RUNTIME_DIR="$work/run"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
"$bin/sonitra" "$work/sweep.wav" "$work/voice.wav" &
pid=$!
for _ in $(seq 50); do
  win=$(xdotool search --name "^Sonitra" 2>/dev/null | head -1 || true)
  [ -n "$win" ] && break
  sleep 0.2
done
[ -n "$win" ] || { echo "the editor did not open" >&2; kill "$pid"; exit 1; }
xdotool windowsize "$win" 1280 800 windowmove "$win" 0 0
sleep 1.5
# Window > Tile Vertical, through its menu, as a person would.
xdotool key --window "$win" alt+w
sleep 0.3
xdotool key Down Down Return
sleep 1
# Drag across the detail view of the left file window.
xdotool mousemove 140 420 mousedown 1 mousemove 260 420 mousemove 380 420 mouseup 1
sleep 1
import -window root "$out"
kill "$pid"
wait "$pid" 2>/dev/null || true

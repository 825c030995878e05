#!/usr/bin/env bash
# Takes pictures of the editor under a virtual X server: OUT.png, the frame with two files open,
# side by side, and a region selected with the mouse in the first; OUT-markers.png, four files
# tiled, bookmarks and regions on the first, and the frequency analysis window; and
# OUT-spectrogram.png, two file windows in spectrogram view, speech and a stereo sweep.
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
  sox -n -r 44100 -c 1 -b 16 "$work/chord.wav" synth 5 pluck C4 pluck E4 pluck G4 fade 0 5 2 vol 0.6
  sox -n -r 16000 -c 1 -b 16 "$work/beeps.wav" synth 0.25 sine 1000 pad 0 0.25 repeat 7 vol 0.5
  espeak-ng -s 140 -w "$work/speech-raw.wav" "Every window can show its sound as a spectrogram: hum, clicks and noise stand out at a glance."
  # A faint mains hum under the voice, as a spectrogram shows it and a waveform does not.
  sox -n -r "$(soxi -r "$work/speech-raw.wav")" -c 1 "$work/hum.wav" synth "$(soxi -D "$work/speech-raw.wav")" sine 50 vol 0.02
  sox -m "$work/speech-raw.wav" "$work/hum.wav" -r 16000 -b 16 "$work/speech.wav"
  sox -n -r 44100 -c 2 -b 16 "$work/tones.wav" synth 6 square 110-1760 sine 3000-300 vol 0.4 fade 0.1 6 0.1
  mkdir -p "$(dirname "$out")"
  # The same script again, inside the virtual display.
  xvfb-run -a -s '-screen 0 1280x800x24' "$0" --inside "$bin" "$out" "$work"
  echo "wrote $out, ${out%.png}-markers.png and ${out%.png}-spectrogram.png"
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

# The second picture is driven by the editor's own test script, so it needs no mouse.
markers="${out%.png}-markers.png"
cat > "$work/markers.txt" <<SCRIPT
open $work/voice.wav
open $work/chord.wav
open $work/beeps.wav
open $work/sweep.wav
cursor 44100
command 8001
cursor 176400
command 8001
select 88200 154350
command 8004
select 220500 286650
command 8004
command 5012
select 66150 110250
command 7001
SCRIPT
# A fresh start at the picture's size, so that the windows are tiled in the frame they end in.
rm -rf "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME"
mkdir -p "$XDG_CONFIG_HOME/Korvane"
printf '[MainWindow]\nWidth=1280\nHeight=770\n\n[Settings]\nAutoPlaybackAfterEffects=0\n' \
  > "$XDG_CONFIG_HOME/Korvane/Sonitra.conf"
SONITRA_TEST_SCRIPT="$work/markers.txt" "$bin/sonitra" &
pid=$!
win=
for _ in $(seq 50); do
  win=$(xdotool search --name "^Sonitra" 2>/dev/null | head -1 || true)
  [ -n "$win" ] && break
  sleep 0.2
done
[ -n "$win" ] || { echo "the editor did not open" >&2; kill "$pid"; exit 1; }
xdotool windowmove "$win" 0 0
sleep 2
spectrum=$(xdotool search --name "^Frequency Analysis" 2>/dev/null | head -1 || true)
[ -n "$spectrum" ] && xdotool windowsize "$spectrum" 620 330 windowmove "$spectrum" 650 460
sleep 1.5
import -window root "$markers"
kill "$pid"
wait "$pid" 2>/dev/null || true

# The third: the same file windows as spectrograms, the stereo one with a lane per channel.
spectro="${out%.png}-spectrogram.png"
cat > "$work/spectro.txt" <<SCRIPT
open $work/speech.wav
command 5013
select 16000 40000
open $work/tones.wav
command 5013
command 5008
command 5010
SCRIPT
rm -rf "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME"
mkdir -p "$XDG_CONFIG_HOME/Korvane"
printf '[MainWindow]\nWidth=1280\nHeight=770\n\n[Settings]\nAutoPlaybackAfterEffects=0\n' \
  > "$XDG_CONFIG_HOME/Korvane/Sonitra.conf"
SONITRA_TEST_SCRIPT="$work/spectro.txt" "$bin/sonitra" &
pid=$!
win=
for _ in $(seq 50); do
  win=$(xdotool search --name "^Sonitra" 2>/dev/null | head -1 || true)
  [ -n "$win" ] && break
  sleep 0.2
done
[ -n "$win" ] || { echo "the editor did not open" >&2; kill "$pid"; exit 1; }
xdotool windowmove "$win" 0 0
sleep 4
import -window root "$spectro"
kill "$pid"
wait "$pid" 2>/dev/null || true

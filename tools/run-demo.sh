#!/usr/bin/env bash
# Makes a demo file and opens it in the editor.
set -euo pipefail
bin=build/release
demo=build/demo
mkdir -p "$demo"
# A stereo sweep with a tremolo, so that the waveform has something to show.
sox -n -r 44100 -c 2 -b 16 "$demo/demo.wav" synth 8 sine 220-880 sine 330-990 tremolo 1.5 70 fade 0.5 8 1 vol 0.7
"$bin/sonitra-cli" info "$demo/demo.wav"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo
  echo "There is no display here, so the editor cannot open its window."
  echo "Run it under a virtual X server instead:"
  echo "  xvfb-run -a -s '-screen 0 1280x800x24' $bin/sonitra $demo/demo.wav"
  echo "or take a picture of it with:"
  echo "  tools/screenshot.sh $bin build/screenshot.png"
  exit 0
fi
exec "$bin/sonitra" "$demo/demo.wav"

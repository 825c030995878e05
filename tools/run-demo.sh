#!/usr/bin/env bash
# Makes a demo file and shows the command-line tool at work on it.
set -euo pipefail
bin=build/release
demo=build/demo
mkdir -p "$demo"
sox -n -r 44100 -c 2 -b 16 "$demo/demo.wav" synth 5 sine 440 sine 660 vol 0.5
"$bin/sonitra-cli" info "$demo/demo.wav"
"$bin/sonitra-cli" convert "$demo/demo.wav" "$demo/demo-22k-mono.wav" --rate 22050 --channels 1
"$bin/sonitra-cli" info "$demo/demo-22k-mono.wav"

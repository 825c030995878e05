#!/bin/sh
# Ten minutes played at 20x on the virtual device with every core loaded, once with the device
# taking whatever is due and once in 256-frame callbacks; reports the underruns (goal 0).
# Usage: bench/player_underruns.sh BUILD-DIR
set -e
BUILD=${1:-build/release}
BIN="$BUILD/bench/bench_player_underruns"
[ -x "$BIN" ] || { echo "player_underruns: $BIN not built"; exit 1; }
echo "player_underruns:"
"$BIN" 10 20 | sed 's/^/  /'
"$BIN" 10 20 "$(nproc)" 256 | sed 's/^/  /'

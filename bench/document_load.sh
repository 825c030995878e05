#!/bin/sh
# Loading a 10-minute stereo WAV into a document against sox copying it to a raw 32-bit file
# (both read 16-bit samples and write 32-bit ones). Usage: bench/document_load.sh BUILD-DIR
set -e
BUILD=${1:-build/release}
BIN="$BUILD/bench/bench_document_load"
command -v sox >/dev/null || { echo "document_load: sox not found, skipped"; exit 0; }
[ -x "$BIN" ] || { echo "document_load: $BIN not built"; exit 1; }
DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
sox -n -r 44100 -c 2 -b 16 "$DIR/in.wav" synth 600 sine 440 sine 660 gain -3
cat "$DIR/in.wav" >/dev/null # in the page cache for both

now() { date +%s.%N; }
best_sox=999
best_load=999
for i in 1 2 3; do
    t0=$(now)
    sox "$DIR/in.wav" -t raw -e signed -b 32 "$DIR/out.raw"
    t1=$(now)
    rm -f "$DIR/out.raw"
    best_sox=$(echo "$t0 $t1 $best_sox" | awk '{d = $2 - $1; print (d < $3 ? d : $3)}')
    t0=$(now)
    "$BIN" "$DIR/in.wav" "$DIR/work" >/dev/null
    t1=$(now)
    best_load=$(echo "$t0 $t1 $best_load" | awk '{d = $2 - $1; print (d < $3 ? d : $3)}')
done
echo "document_load: 10-minute stereo 16-bit WAV, best of 3 wall times"
echo "  sox to raw 32-bit: ${best_sox} s"
echo "  load into a document: ${best_load} s"
echo "$best_load $best_sox" | awk '{printf "  ratio load / sox: %.2f (goal <= 1.0)\n", $1 / $2; exit ($1 / $2 <= 1.0 ? 0 : 1)}'

#!/bin/sh
# Opening a 10-minute 8 kHz µ-law AU: our reader decoding it to raw 32-bit samples against sox
# doing the same, then loading it into a document (segment and overview written) against sox
# again. Usage: bench/au_open.sh BUILD-DIR
set -e
BUILD=${1:-build/release}
DECODE="$BUILD/bench/bench_au_decode"
LOAD="$BUILD/bench/bench_document_load"
command -v sox >/dev/null || { echo "au_open: sox not found, skipped"; exit 0; }
[ -x "$DECODE" ] || { echo "au_open: $DECODE not built"; exit 1; }
[ -x "$LOAD" ] || { echo "au_open: $LOAD not built"; exit 1; }
DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
# Speech-band noise with a slow swell, so every µ-law segment is used.
sox -n -r 8000 -c 1 -e mu-law "$DIR/in.au" synth 600 pinknoise tremolo 0.3 90 gain -6
cat "$DIR/in.au" >/dev/null # in the page cache for every run

now() { date +%s.%N; }
best() { echo "$1 $2 $3" | awk '{d = $2 - $1; print (d < $3 ? d : $3)}'; }
best_sox=999
best_decode=999
best_load=999
for i in 1 2 3 4 5; do
    t0=$(now)
    sox "$DIR/in.au" -t raw -e signed -b 32 "$DIR/sox.raw"
    t1=$(now)
    best_sox=$(best "$t0" "$t1" "$best_sox")
    rm -f "$DIR/sox.raw"
    t0=$(now)
    "$DECODE" "$DIR/in.au" "$DIR/ours.raw" >/dev/null
    t1=$(now)
    best_decode=$(best "$t0" "$t1" "$best_decode")
    rm -f "$DIR/ours.raw"
    t0=$(now)
    "$LOAD" "$DIR/in.au" "$DIR/work" >/dev/null
    t1=$(now)
    best_load=$(best "$t0" "$t1" "$best_load")
    rm -rf "$DIR/work"
done
echo "au_open: 10-minute 8 kHz mono u-law AU, best of 5 wall times"
echo "  sox to raw 32-bit: ${best_sox} s"
echo "  our reader to raw 32-bit: ${best_decode} s"
echo "  load into a document: ${best_load} s"
echo "$best_decode $best_sox" | awk '{printf "  ratio reader / sox: %.2f (goal <= 1.0)\n", $1 / $2}'
echo "$best_load $best_sox" | awk '{printf "  ratio document load / sox: %.2f\n", $1 / $2}'
echo "$best_decode $best_sox" | awk '{exit ($1 / $2 <= 1.0 ? 0 : 1)}'

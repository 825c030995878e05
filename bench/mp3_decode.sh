#!/usr/bin/env bash
# Decoding 10-minute MP3 files (128 kbit/s CBR stereo, VBR -V 2 stereo, MPEG-2 22.05 kHz mono) to
# a WAV file: `sonitra-cli convert IN OUT.wav` against `mpg123 -w OUT.wav IN` on the same files,
# whole processes run in turn, pair after pair, in the same run. Prints the medians of the wall
# times and of the processor times (user + system, which a busy machine disturbs less) and their
# ratios; the goal is a wall ratio of at most 0.8. ffmpeg decoding the same files is shown beside
# them when it is installed.
# Usage: bench/mp3_decode.sh BUILD_DIR [PAIRS]   (PAIRS defaults to 7, at least 5)
set -euo pipefail
BUILD=${1:-build/release}
PAIRS=${2:-7}
[ "$PAIRS" -ge 5 ] 2>/dev/null || PAIRS=5
CLI="$BUILD/sonitra-cli"
DECODER="$BUILD/bench/bench_mp3_decode"
[ -x "$CLI" ] || { echo "mp3_decode: $CLI not built"; exit 1; }
for tool in lame sox mpg123; do
  command -v $tool >/dev/null || { echo "mp3_decode: $tool not found, skipped"; exit 0; }
done
HAVE_FFMPEG=0
command -v ffmpeg >/dev/null && HAVE_FFMPEG=1

DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
sox -n -r 44100 -c 2 -b 16 "$DIR/st.wav" synth 600 sine 220-3520 sine 660 pinknoise gain -12 remix 1,3 2,3
sox "$DIR/st.wav" -r 22050 -c 1 "$DIR/mono22.wav"
lame --quiet -b 128 "$DIR/st.wav" "$DIR/cbr128.mp3"
lame --quiet -V 2 "$DIR/st.wav" "$DIR/vbr2.mp3"
lame --quiet -b 48 -m m "$DIR/mono22.wav" "$DIR/mpeg2-22k.mp3"
rm -f "$DIR"/*.wav

# timed COMMAND...: runs it with its output dropped; prints "wall cpu" in seconds.
timed() {
  local TIMEFORMAT='%R %U %S' t
  t=$( { time "$@" >/dev/null 2>&1; } 2>&1 )
  awk '{ printf "%.4f %.4f\n", $1, $2 + $3 }' <<<"$t"
}

# median FILE COLUMN: the median of one column of numbers.
median() {
  awk -v c="$2" '{ print $c }' "$1" | sort -n | awk '{ v[NR] = $1 } END { print (NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2) }'
}

echo "mp3_decode: 10-minute files to WAV, medians of $PAIRS pairs run in turn ($(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2- | sed 's/^ *//'))"
status=0
for f in cbr128 vbr2 mpeg2-22k; do
  in="$DIR/$f.mp3"
  cat "$in" >/dev/null
  : >"$DIR/ours" ; : >"$DIR/mpg" ; : >"$DIR/ff"
  for ((k = 0; k < PAIRS; k++)); do
    timed "$CLI" convert "$in" "$DIR/ours.wav" >>"$DIR/ours"
    timed mpg123 -q -w "$DIR/mpg.wav" "$in" >>"$DIR/mpg"
    if [ $HAVE_FFMPEG = 1 ]; then
      timed ffmpeg -nostdin -v error -threads 1 -i "$in" -y "$DIR/ff.wav" >>"$DIR/ff"
    fi
  done
  ow=$(median "$DIR/ours" 1); oc=$(median "$DIR/ours" 2)
  mw=$(median "$DIR/mpg" 1); mc=$(median "$DIR/mpg" 2)
  awk -v f="$f" -v ow="$ow" -v oc="$oc" -v mw="$mw" -v mc="$mc" 'BEGIN {
    printf "  %-10s sonitra %6.3f s (cpu %6.3f)   mpg123 %6.3f s (cpu %6.3f)   ratio %.2f (cpu %.2f)", f, ow, oc, mw, mc, ow / mw, oc / mc }'
  if [ $HAVE_FFMPEG = 1 ]; then
    fw=$(median "$DIR/ff" 1)
    awk -v ow="$ow" -v fw="$fw" 'BEGIN { printf "   ffmpeg %6.3f s   ratio %.2f", fw, ow / fw }'
  fi
  if [ -x "$DECODER" ]; then
    awk -v d="$(timed "$DECODER" "$in" | cut -d' ' -f1)" 'BEGIN { printf "   decoder alone %6.3f s", d }'
  fi
  echo
  awk -v a="$ow" -v b="$mw" 'BEGIN { exit (a / b <= 0.8 ? 0 : 1) }' || status=1
done
exit $status

#!/usr/bin/env bash
# Decoding 10-minute MP3 files (128 kbit/s CBR stereo, VBR -V 2, MPEG-2 22.05 kHz mono) with our
# decoder against mpg123 and ffmpeg decoding the same files, on one core, in the same run.
# Prints the ratios of wall times (the goal is <= 1.0 against mpg123). Usage: bench/mp3_decode.sh BUILD_DIR
set -euo pipefail
. "$(dirname "$0")/lib/timing.sh"
BUILD=${1:-build/release}
BIN="$BUILD/bench/bench_mp3_decode"
[ -x "$BIN" ] || { echo "mp3_decode: $BIN not built"; exit 1; }
for tool in lame sox mpg123; do
  command -v $tool >/dev/null || { echo "mp3_decode: $tool not found, skipped"; exit 0; }
done
HAVE_FFMPEG=0
command -v ffmpeg >/dev/null && HAVE_FFMPEG=1
ONE_CORE=()
command -v taskset >/dev/null && ONE_CORE=(taskset -c 0)

DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
sox -n -r 44100 -c 2 -b 16 "$DIR/st.wav" synth 600 sine 220-3520 sine 660 pinknoise gain -12 remix 1,3 2,3
sox "$DIR/st.wav" -r 22050 -c 1 "$DIR/mono22.wav"
lame --quiet -b 128 "$DIR/st.wav" "$DIR/cbr128.mp3"
lame --quiet -V 2 "$DIR/st.wav" "$DIR/vbr2.mp3"
lame --quiet -b 48 -m m "$DIR/mono22.wav" "$DIR/mpeg2-22k.mp3"
rm -f "$DIR"/*.wav


echo "mp3_decode: 10-minute files, best of 3 wall times on one core"
status=0
for f in cbr128 vbr2 mpeg2-22k; do
  cat "$DIR/$f.mp3" >/dev/null
  ours=$(best_of_3 "${ONE_CORE[@]}" "$BIN" "$DIR/$f.mp3")
  mpg=$(best_of_3 "${ONE_CORE[@]}" mpg123 -q -s "$DIR/$f.mp3")
  line=$(awk -v f="$f" -v a="$ours" -v b="$mpg" 'BEGIN { printf "  %-10s sonitra %6.3f s   mpg123 %6.3f s   ratio %.2f", f, a, b, a / b }')
  if [ $HAVE_FFMPEG = 1 ]; then
    ff=$(best_of_3 "${ONE_CORE[@]}" ffmpeg -nostdin -v error -threads 1 -i "$DIR/$f.mp3" -f s16le -y /dev/null)
    line="$line$(awk -v a="$ours" -v c="$ff" 'BEGIN { printf "   ffmpeg %6.3f s   ratio %.2f", c, a / c }')"
  fi
  echo "$line"
  awk -v a="$ours" -v b="$mpg" 'BEGIN { exit (a / b <= 1.0 ? 0 : 1) }' || status=1
done
exit $status

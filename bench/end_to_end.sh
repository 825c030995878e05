#!/usr/bin/env bash
# Whole processes as a user runs them, each beside its peer, in pairs taken in turn (ours, then
# theirs), with the median of each side and their ratio:
#  - every `sonitra-cli effect` verb that sox has a counterpart for, on a stereo file (goal:
#    ratio <= 0.7), with what the run read and wrote as multiples of its input and output size
#    (goal: 1x and 1x; normalize reads twice);
#  - a batch of 200 files through normalize, high-pass and fade-in with --jobs 1 beside a sox
#    loop of the same chain (goal: <= 0.6);
#  - MP3 decoding (`sonitra-cli convert x.mp3 x.wav`) beside mpg123 and ffmpeg;
#  - the peak resident memory of streaming chains over a 2-hour stereo file (goal: < 50 MB).
# Usage: bench/end_to_end.sh BUILD_DIR   (PAIRS, MINUTES, FILES, LONG_MINUTES override the sizes)
set -euo pipefail
if [ $# -ne 1 ]; then
  echo "usage: bench/end_to_end.sh BUILD_DIR" >&2
  exit 64
fi
cli="$1/sonitra-cli"
[ -x "$cli" ] || { echo "no sonitra-cli in $1" >&2; exit 2; }
for tool in sox python3; do
  command -v "$tool" >/dev/null || { echo "$tool is not installed; skipping" >&2; exit 0; }
done
run="$(cd "$(dirname "$0")" && pwd)/lib/proc_run.py"
pairs=${PAIRS:-5}
minutes=${MINUTES:-5}
files=${FILES:-200}
long_minutes=${LONG_MINUTES:-120}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache"

median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
# The bytes of a file, or of the WAV files of a folder.
size() { if [ -d "$1" ]; then cat "$1"/*.wav | wc -c; else stat -c %s "$1"; fi; }

# pair LABEL INPUT OUTPUT -- OUR COMMAND... -- THEIR COMMAND...: PAIRS runs of each in turn; prints
# the medians, the ratio, and the I/O of our last run as multiples of the input and output size.
pair() {
  local label=$1 in=$2 out=$3 ours=() theirs=() k a b io="" t_ours="" t_theirs=""
  shift 4
  while [ "$1" != "--" ]; do ours+=("$1"); shift; done
  shift
  theirs=("$@")
  for ((k = 0; k < pairs; k++)); do
    rm -rf "$out"
    io=$(python3 "$run" "${ours[@]}") || { echo "$label: sonitra-cli failed" >&2; return 1; }
    t_ours+="${io%% *}"$'\n'
    rm -rf "$out"
    a=$(python3 "$run" "${theirs[@]}") || { echo "$label: ${theirs[0]} failed" >&2; return 1; }
    t_theirs+="${a%% *}"$'\n'
  done
  a=$(printf %s "$t_ours" | median)
  b=$(printf %s "$t_theirs" | median)
  [ -e "$out" ] || python3 "$run" "${ours[@]}" >/dev/null
  set -- $io
  awk -v l="$label" -v a="$a" -v b="$b" -v peer="$(basename "${theirs[0]}")" -v r="$3" -v w="$4" \
    -v i="$(size "$in")" -v o="$(size "$out")" \
    'BEGIN { printf "%-34s sonitra %7.3f s  %-7s %7.3f s  ratio %.2f   read %.2fx in  wrote %.2fx out\n",
             l, a, peer, b, a / b, r / i, w / o }'
}

echo "machine: $(nproc) cores, $(awk -F': ' '/model name/ { print $2; exit }' /proc/cpuinfo), $pairs pairs each"
in="$work/in.wav"
sox -n -r 44100 -c 2 -b 16 "$in" synth "$((minutes * 60))" pinknoise sine 440 gain -6
mono="$work/mono.wav"
sox "$in" "$mono" remix 1
o="$work/o.wav"
effect() { pair "$1" "${3:-$in}" "$o" -- "$cli" effect "${3:-$in}" "$o" $2 -- sox "${3:-$in}" "$o" "${@:4}"; }

echo "-- effect verbs, ${minutes} min stereo 44.1 kHz"
effect echo "echo EchoTime=500 EchoGain=50" "" echo 1 1 500 0.5
effect reverb "reverb" "" reverb
effect high-pass-filter "high-pass-filter LowCutFreq=300" "" highpass -1 300
effect equalizer "equalizer Points=100:6,1000:-3,5000:4" "" equalizer 100 1q 6 equalizer 1000 1q -3 equalizer 5000 1q 4
effect reverse "reverse" "" reverse
effect amplify "amplify AmplifyGain=70" "" vol 0.7
effect normalize "normalize NormalizePeakLevel=90" "" norm -0.9
effect fade-in "fade-in" "" fade t "$((minutes * 60))"
effect fade-out "fade-out" "" fade t 0 "$((minutes * 60))" "$((minutes * 60))"
effect dynamic-range-compressor "dynamic-range-compressor" "" compand 0.01,0.05 -60,-60,-20,-20,0,-10 0 -90
effect simple-speed-and-pitch-change "simple-speed-and-pitch-change SpSpeedPitch=120" "" speed 1.2
effect constant-pitch-and-speed-change "constant-pitch-and-speed-change ConstPitchSpeed=120" "" tempo 1.2
effect constant-speed-and-pitch-change "constant-speed-and-pitch-change ConstSpeedPitch=120" "" pitch 316
effect convert-sample-rate "convert-sample-rate ConvertSampleRate=22050" "" rate 22050
effect mono "mono" "" remix 1
effect stereo "stereo" "$mono" channels 2

echo "-- batch of $files files (2 s stereo): normalize, high-pass, fade-in, --jobs 1"
mkdir -p "$work/in"
for ((i = 0; i < files; i++)); do
  sox -n -r 44100 -c 2 -b 16 "$work/in/f$i.wav" synth 2 sine $((200 + i * 5)) sine $((900 + i)) gain -$((3 + i % 12))
done
"$cli" script new "$work/s.snb" normalize NormalizePeakLevel=90 then high-pass-filter LowCutFreq=300 then fade-in >/dev/null
sox_loop() {
  mkdir -p "$work/out"
  for f in "$work"/in/*.wav; do
    sox "$f" "$work/out/$(basename "$f")" norm -0.9 highpass -1 300 fade t 2 || exit 1
  done
}
export -f sox_loop
export work
batch() { rm -rf "$work/out"; mkdir -p "$work/out"; "$cli" batch "$work/s.snb" "$work"/in/*.wav --to wav --out "$work/out" --jobs 1; }
export -f batch
export cli
pair "batch ($files files)" "$work/in" "$work/out" -- bash -c batch -- bash -c 'rm -rf "$work/out"; sox_loop'

echo "-- MP3 decoding, ${minutes} min"
if command -v lame >/dev/null && command -v mpg123 >/dev/null; then
  lame --quiet -b 128 "$in" "$work/cbr.mp3"
  lame --quiet -V2 "$in" "$work/vbr.mp3"
  sox "$mono" -r 22050 "$work/m22.wav"
  lame --quiet -b 64 "$work/m22.wav" "$work/m2.mp3"
  for kind in cbr vbr m2; do
    mp3="$work/$kind.mp3"
    pair "convert $kind.mp3 (mpg123)" "$mp3" "$o" -- "$cli" convert "$mp3" "$o" -- mpg123 -q -w "$o" "$mp3"
    if command -v ffmpeg >/dev/null; then
      pair "convert $kind.mp3 (ffmpeg)" "$mp3" "$o" -- "$cli" convert "$mp3" "$o" -- ffmpeg -v quiet -y -i "$mp3" "$o"
    fi
  done
else
  echo "lame or mpg123 is not installed; skipping"
fi

echo "-- peak resident memory, ${long_minutes} min stereo 44.1 kHz"
rm -rf "$work/in" "$work/out"
long="$work/long.wav"
sox -n -r 44100 -c 2 -b 16 "$long" synth "$((long_minutes * 60))" pinknoise gain -6
for chain in "echo" "reverse" "normalize" "equalizer Points=100:6,1000:-3,5000:4"; do
  set -- $(python3 "$run" "$cli" effect "$long" "$o" $chain)
  awk -v l="$chain" -v m="$2" -v r="$3" -v w="$4" -v i="$(size "$long")" -v o="$(size "$o")" \
    'BEGIN { printf "%-40s peak %6.1f MB   read %.2fx in  wrote %.2fx out\n", l, m / 1024, r / i, w / o }'
  rm -f "$o"
done

#!/usr/bin/env bash
# Coding 10 minutes of 8000 Hz speech to GSM 06.10 and back: sonitra-cli convert against toast
# and untoast (libgsm-tools) doing the same work in the same run. Prints the ratios of wall
# times (sonitra / toast, sonitra / untoast; the goal is <= 1.0) and checks that both sides
# produced the same bytes and samples.
set -euo pipefail
. "$(dirname "$0")/lib/timing.sh"
if [ $# -ne 1 ]; then
  echo "usage: bench/gsm.sh BUILD_DIR" >&2
  exit 64
fi
cli="$1/sonitra-cli"
[ -x "$cli" ] || { echo "no sonitra-cli in $1" >&2; exit 2; }
for tool in toast untoast sox espeak-ng; do
  command -v "$tool" >/dev/null || { echo "$tool is not installed; skipping" >&2; exit 0; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# About a minute of speech in four voices, repeated to ten minutes.
text="The quick brown fox jumps over the lazy dog. Please leave a message after the tone, and we
will call you back as soon as we can. Numbers: one, two, three, four, five, six, seven, eight."
parts=()
for voice in en-us en+f3 de fr; do
  espeak-ng -v "$voice" -w "$work/$voice.wav" "$text" 2>/dev/null
  parts+=("$work/$voice.wav")
done
sox "${parts[@]}" -r 8000 -c 1 -b 16 -e signed "$work/once.wav"
sox "$work/once.wav" "$work/speech.wav" repeat 30 trim 0 600
sox "$work/speech.wav" -t raw "$work/speech.raw"
toast -l -c "$work/speech.raw" > "$work/theirs.gsm"
cat "$work/speech.wav" "$work/speech.raw" "$work/theirs.gsm" >/dev/null # in the page cache for both

# The times below are the best of five runs: the runs are short, and the best of a few keeps a
# busy machine from deciding the ratio.

report() {
  awk -v l="$1" -v a="$2" -v t="$3" -v b="$4" \
    'BEGIN { printf "%-28s sonitra %6.3f s   %-7s %6.3f s   ratio %.2f (goal <= 1.0)\n", l, a, t, b, a / b }'
}

# Both sides write their output to a file.
to_file() { local out=$1; shift; "$@" > "$out"; }

ours=$(best_of 5 "$cli" convert "$work/speech.wav" "$work/ours.gsm")
theirs=$(best_of 5 to_file "$work/toast.gsm" toast -l -c "$work/speech.raw")
report "encode 10 min to .gsm" "$ours" toast "$theirs"
cmp -s "$work/ours.gsm" "$work/theirs.gsm" || echo "!! the encoded frames differ from toast's" >&2

ours=$(best_of 5 "$cli" convert "$work/theirs.gsm" "$work/ours.wav")
theirs=$(best_of 5 to_file "$work/theirs.raw" untoast -l -c "$work/theirs.gsm")
report "decode 10 min from .gsm" "$ours" untoast "$theirs"
sox "$work/ours.wav" -t raw "$work/ours.raw"
cmp -s "$work/ours.raw" "$work/theirs.raw" || echo "!! the decoded samples differ from untoast's" >&2

#!/usr/bin/env bash
# Saving a project with a 2-hour document again after an edit, beside `cp -al` linking the same
# project folder (the least any save that keeps the audio must do). Goal: well under a second,
# ratio near 1. Usage: bench/project_save.sh BUILD_DIR
set -euo pipefail
bin="${1:-build/release}/bench/bench_project_save"
[ -x "$bin" ] || { echo "no $bin" >&2; exit 2; }
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
out=$("$bin" "$dir")
echo "$out" | grep -v '^SECOND_SAVE_S='
ours=$(echo "$out" | sed -n 's/^SECOND_SAVE_S=//p')
start=$(date +%s.%N)
cp -al "$dir/long_audio" "$dir/linked_audio"
cp "$dir/long.snp" "$dir/linked.snp"
end=$(date +%s.%N)
awk -v o="$ours" -v s="$start" -v e="$end" \
  'BEGIN { c = e - s; printf "save after an edit %.4f s, cp -al of the project %.4f s, ratio %.2f\n", o, c, o / c }'

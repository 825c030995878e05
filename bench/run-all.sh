#!/usr/bin/env bash
# Runs every benchmark script in this folder against the programs of BUILD_DIR.
# A new benchmark is a new bench/<name>.sh taking BUILD_DIR as its argument; nothing here changes.
set -uo pipefail
if [ $# -ne 1 ] || [ ! -d "$1" ]; then
  echo "usage: bench/run-all.sh BUILD_DIR" >&2
  exit 64
fi
build_dir=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
failed=0
for script in "$here"/*.sh; do
  [ "$(basename "$script")" = "run-all.sh" ] && continue
  echo "== $(basename "$script" .sh)"
  if ! bash "$script" "$build_dir"; then
    echo "!! $(basename "$script") failed" >&2
    failed=1
  fi
done
exit $failed

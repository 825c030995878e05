#!/bin/sh
# Runs every benchmark: bench/<name>.sh when there is one (it runs bench_<name> beside an
# established tool), otherwise the program bench_<name> itself. Usage: bench/run-all.sh BUILD-DIR
BUILD=${1:-build/release}
HERE=$(dirname "$0")
status=0
for src in "$HERE"/*.cpp; do
    name=$(basename "$src" .cpp)
    if [ -x "$HERE/$name.sh" ]; then
        "$HERE/$name.sh" "$BUILD" || status=1
    else
        "$BUILD/bench/bench_$name" || status=1
    fi
done
exit $status

# Sourced by the benchmark scripts: the best wall time of repeated runs of a command.

# best_of N COMMAND [ARG...]: runs the command N times, its output dropped (after the caller's
# before_run function, when it has one), and prints the shortest wall time in seconds.
best_of() {
  local n=$1 best="" start end t k
  shift
  for ((k = 0; k < n; k++)); do
    if declare -F before_run >/dev/null; then before_run; fi
    start=$(date +%s.%N)
    "$@" >/dev/null 2>&1
    end=$(date +%s.%N)
    t=$(awk -v a="$start" -v b="$end" 'BEGIN { printf "%.4f", b - a }')
    if [ -z "$best" ] || awk -v t="$t" -v b="$best" 'BEGIN { exit !(t < b) }'; then best=$t; fi
  done
  echo "$best"
}

best_of_3() { best_of 3 "$@"; }

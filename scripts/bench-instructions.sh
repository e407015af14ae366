#!/usr/bin/env bash
# Counts the instructions of every hot path on a small input. They repeat exactly on one system, so
# they show what times on a busy machine hide. Exit status 1 when a path takes over 5 % more than
# its baseline; --update makes the present counts the baseline.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

paths=(mgf zb2 target_decoy mod_list mod_combinations load_results write_results merge_files
    initialize batches)
baseline=bench/instructions.baseline
counts=build/bench/instructions.txt

scripts/install_packages.sh g++ cmake ninja-build libbenchmark-dev valgrind
cmake --preset bench >/dev/null
cmake --build --preset bench -- --quiet

: >"$counts"
for path in "${paths[@]}"; do
    # A first run makes the input, so that the second one counts nothing else.
    build/bench/bench/tessel_bench --once="$path" >/dev/null
    valgrind --tool=callgrind --toggle-collect='*measured_work*' \
        --callgrind-out-file="build/bench/callgrind.$path" --log-file=build/bench/callgrind.log \
        build/bench/bench/tessel_bench --once="$path" >/dev/null
    echo "$path $(awk '/^(summary|totals):/ { count = $2 } END { print count }' \
        "build/bench/callgrind.$path")" >>"$counts"
done

if [ "${1:-}" = --update ]; then
    cp "$counts" "$baseline"
fi
awk '
    NR == FNR { baseline[$1] = $2; next }
    { change = ($1 in baseline) ? 100 * ($2 / baseline[$1] - 1) : 0
      printf "%-18s %12d instructions %+7.1f %%\n", $1, $2, change
      if (change > 5) slower = 1 }
    END { exit slower }' "$baseline" "$counts"

#!/usr/bin/env bash
# Builds the benchmark, counts the instructions of small inputs, measures every hot path beside a
# plain version and a limit, and prints one table. Exit status 1 when a Must of the table does not
# hold. Arguments go to the program: --rounds=N, --growth, --benchmark_filter=REGEX (bench/main.cpp).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/bench-instructions.sh >/dev/null || echo "Instructions have changed: scripts/bench-instructions.sh"
build/bench/bench/tessel_bench --instructions=build/bench/instructions.txt "$@" 2>build/bench/progress.txt

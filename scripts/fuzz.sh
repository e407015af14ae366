#!/usr/bin/env bash
# fuzz.sh SECONDS [TARGET...]: builds the fuzz targets (tests/fuzz) and runs each, or those that are
# named, for so many seconds under the address and undefined-behaviour sanitizers, FUZZ_JOBS (2) at
# a time.
# Corpora grow in build/fuzz/corpus, logs and findings lie in build/fuzz/logs and
# build/fuzz/findings, those of earlier runs in build/fuzz/findings/earlier. Prints a table; exit status
# 1 when there is any finding.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

[ $# -ge 1 ] || { echo "usage: $0 SECONDS [TARGET...]" >&2; exit 1; }
seconds=$1
shift
targets=("$@")
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(ls tests/fuzz/corpus)

scripts/install_packages.sh clang libclang-rt-14-dev cmake ninja-build
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${targets[@]/#/fuzz_}" -- --quiet

build=$PWD/build/fuzz
# Files of the targets lie in memory where that is possible.
memory=/dev/shm
[ -d "$memory" ] && [ -w "$memory" ] || memory=${TMPDIR:-/tmp}
TMPDIR=$(mktemp -d -p "$memory" tessel_fuzz.XXXXXX)
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT
# A small quarantine keeps memory in the caches.
export ASAN_OPTIONS=quarantine_size_mb=4:malloc_context_size=8
export UBSAN_OPTIONS=print_stacktrace=1
mkdir -p "$build/logs" "$build/findings/earlier"

# Work of some inputs grows with the square of their length, by design, and every spectrum with one
# peak far out takes an index of 400 kB; others need long lines.
longest_input() {
    case $1 in
        read_number | write_number | splitters | titles | enzyme | ion_type | bucket_index) echo 512 ;;
        zbs) echo 1024 ;;
        quant | learn_file | modifications | mgf | zb2) echo 4096 ;;
        parameter_file) echo 8192 ;;
        *) echo 65536 ;;
    esac
}

run_target() {
    local target=$1 dictionary=tests/fuzz/dictionaries/$1.dict
    mkdir -p "$build/corpus/$target"
    find "$build/findings" -maxdepth 1 -type f -name "$target-*" -exec mv -t "$build/findings/earlier" {} +
    "$build/tests/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len="$(longest_input "$target")" \
        -rss_limit_mb=1024 -malloc_limit_mb=512 -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$target-" ${FUZZ_SEED:+-seed="$FUZZ_SEED"} \
        $([ ! -f "$dictionary" ] || echo "-dict=$PWD/$dictionary") \
        "$build/corpus/$target" "$PWD/tests/fuzz/corpus/$target" >"$build/logs/$target.txt" 2>&1 ||
        echo "FAILED" >>"$build/logs/$target.txt"
}

for target in "${targets[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge "${FUZZ_JOBS:-2}" ]; do
        wait -n
    done
    run_target "$target" &
done
wait

# ---- The table ----

status=0
awk '
    function finish() {
        if (target == "") return
        printf "%-16s %12d %10d %7d of %-6d %6d %9s\n", target, runs, rate, edges, all, units, finding
        totalRuns += runs
        if (finding != "-") ++findings
    }
    BEGIN { printf "%-16s %12s %10s %17s %6s %9s\n", "target", "executions", "per second",
                   "edges covered", "inputs", "finding" }
    FNR == 1 { finish()
               target = FILENAME; sub(/.*\//, "", target); sub(/\.txt$/, "", target)
               runs = rate = edges = all = units = 0; finding = "-" }
    /Loaded 1 modules/ { all = $0; sub(/.*\(/, "", all); all += 0 }
    /^#[0-9]+/ { runs = substr($1, 2) + 0
                 for (i = 2; i < NF; ++i) {
                     if ($i == "cov:") edges = $(i + 1)
                     if ($i == "corp:") units = $(i + 1) + 0
                     if ($i == "exec/s:") rate = $(i + 1)
                 } }
    /^stat::number_of_executed_units/ { runs = $2 }
    /^stat::average_exec_per_sec/ { rate = $2 }
    /^FAILED/ { finding = "yes" }
    END { finish()
          printf "total: %d targets, %d executions, %d findings\n", ARGC - 1, totalRuns, findings
          exit findings > 0 }' $(printf "$build/logs/%s.txt " "${targets[@]}") || status=$?
earlier=$(find "$build/findings/earlier" -type f | wc -l)
[ "$earlier" -eq 0 ] || echo "of earlier runs: $earlier findings, in build/fuzz/findings/earlier"
exit "$status"

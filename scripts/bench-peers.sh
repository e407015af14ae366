#!/usr/bin/env bash
# Beside other programs: decoys of a protein database (OpenMS DecoyDatabase, seqkit) and reading of
# MGF spectra (OpenMS FileInfo). Installs them, runs all in turns and prints the median CPU times of
# whole processes and their ratios to this library's. Optional: nothing else needs these programs.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

rounds=${1:-5}
scripts/install_packages.sh g++ cmake ninja-build libbenchmark-dev topp seqkit
cmake --preset bench >/dev/null
cmake --build --preset bench -- --quiet

bench=build/bench/bench/tessel_bench
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen OMP_NUM_THREADS=1 GOMAXPROCS=1 OPENMS_DISABLE_UPDATE_CHECK=ON

# Runs a command and adds its CPU time, user and system, to the times of a name.
measure() {
    local name=$1 seconds
    shift
    TIMEFORMAT='%U %S'
    seconds=$({ time "$@" >"$work/output" 2>"$work/messages"; } 2>&1) ||
        { cat "$work/messages" >&2; exit 1; }
    echo "$seconds" | awk '{ print $1 + $2 }' >>"$work/$name.seconds"
}

# Targets and decoys on one line each, the decoys' names marked.
seqkit_decoys() {
    local one_line=(--line-width 0)
    seqkit seq "${one_line[@]}" "$fasta"
    seqkit seq "${one_line[@]}" --reverse --seq-type protein "$fasta" |
        seqkit replace "${one_line[@]}" --pattern '^' --replacement REV_
}

median() {
    sort --general-numeric-sort "$work/$1.seconds" | awk '{ t[NR] = $1 } END { print t[int((NR + 1) / 2)] }'
}

compare() {
    awk -v what="$1" -v peer="$(median "$2")" -v own="$(median "$3")" -v aim="$4" 'BEGIN {
        printf "%-44s %8.2f s, this library %6.2f s: %5.1f times (aim %d)\n",
               what, peer, own, peer / own, aim }'
}

"$bench" --once=target_decoy --large >/dev/null  # makes the input
"$bench" --once=mgf --large >/dev/null
fasta=$(ls build/bench/inputs/*/100000000.fasta)
mgf=$(ls build/bench/inputs/*/30000.mgf)
for ((round = 0; round < rounds; ++round)); do
    measure own_decoys "$bench" --once=target_decoy --large
    measure decoy_database DecoyDatabase -in "$fasta" -out "$work/decoys.fasta" \
        -decoy_string REV_ -decoy_string_position prefix -method reverse
    measure seqkit seqkit_decoys
    measure own_mgf "$bench" --once=mgf --large
    measure file_info FileInfo -in "$mgf"
done
compare "decoys: OpenMS DecoyDatabase" decoy_database own_decoys 7
compare "decoys: seqkit" seqkit own_decoys 4
compare "MGF: OpenMS FileInfo" file_info own_mgf 3

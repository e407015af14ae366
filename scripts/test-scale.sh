#!/usr/bin/env bash
# test-scale.sh [GIGABYTES [FOLDER]]: takes files of so many gigabytes (5) through the library and
# prints time and peak memory beside the size of a batch. Needs four times as much room in the folder
# (a new one under /tmp), which is given back.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bytes=$((${1:-5} * 1000 * 1000 * 1000))
folder=$(mktemp --directory --tmpdir="${2:-/tmp}" tessel_scale.XXXXXX)
trap 'rm -rf "$folder"' EXIT

scripts/install_packages.sh g++ cmake ninja-build libgtest-dev
cmake --preset release >/dev/null
cmake --build --preset release --target scale -- --quiet
scale=build/release/tests/scale

spectra=$($scale write-mgf "$folder/a.mgf" "$bytes")
for batch in 1000 50000; do
    $scale spectra MGF "$folder/a.mgf" "$batch" "$spectra"
done
rm "$folder/a.mgf"

spectra=$($scale write-zb2 "$folder/a.zb2" "$bytes")
for batch in 1000 50000; do
    $scale spectra ZB2 "$folder/a.zb2" "$batch" "$spectra"
done
rm "$folder/a.zb2"

proteins=$($scale write-fasta "$folder/db.fasta" "$bytes")
for residues in 1000000 60000000; do
    $scale decoys "$folder/db.fasta" "$residues" "$proteins"
done
rm "$folder/db.fasta" "$folder/db.fasta_td.fasta"

# Together of that size, each of more than 2 GiB where that is 5 GB.
$scale write-results "$folder/run.1.res" $((bytes / 2)) >/dev/null
$scale write-results "$folder/run.2.res" $((bytes / 2)) >/dev/null
$scale merge "$folder/run.res" "$folder/run.1.res" "$folder/run.2.res"

#!/usr/bin/env bash
# Builds the closed search and searches the spectra of examples/ecoli with it in build/demo. What an
# earlier run left there is used again. The last line is the path of the final result file, relative
# to the repository.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh g++ cmake ninja-build

echo "== Build =="
# Tests are not needed here; a tree that builds them already stays as it is.
[ -f build/release/build.ninja ] || cmake --preset release -DTESSEL_BUILD_TESTS=OFF >/dev/null
cmake --build --preset release --target closed_search -- --quiet

echo "== Search =="
folder=build/demo
mkdir -p "$folder/results"
cp --update data/element.ini data/aa.ini data/modification.ini data/quant.ini \
    examples/ecoli/ecoli.mgf examples/ecoli/ecoli.fasta examples/ecoli/ecoli.param "$folder"
(cd "$folder" && ../release/examples/closed_search ecoli.param | tee summary.txt)

echo "$folder/$(tail -n 1 "$folder/summary.txt")"

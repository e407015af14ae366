#!/usr/bin/env bash
# Installs what it needs, cross-builds everything for Windows and runs all tests there under Wine, in
# a Wine prefix of its own (build/wine). Also builds the programs for this system whose files the
# Windows ones must repeat byte for byte.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Without its preloader Wine asks for the address of its shared data, 0x7ffe0000, too late: recent
# kernels put the heap anywhere in the gigabyte around it, and one start in ten thousand finds it
# taken and ends without a word.
scripts/install_packages.sh g++ cmake ninja-build libgtest-dev googletest python3 \
    g++-mingw-w64-x86-64-posix wine wine64 wine64-preloader

echo "== Build: this system =="
cmake --preset release >/dev/null
cmake --build --preset release --target closed_search labels mgf_to_zb2 rewrite_parameters -- --quiet

echo "== Start Wine =="
. scripts/start_wine.sh

echo "== Build and test: windows =="
cmake --preset windows >/dev/null
cmake --build --preset windows -- --quiet
ctest --preset windows --parallel "$(nproc)" --quiet --output-log build/windows/ctest.log ||
    { cat build/windows/ctest.log; exit 1; }
sed -n '/tests passed,/,$p' build/windows/ctest.log

#!/usr/bin/env bash
# Installs what it needs, cross-builds everything for Windows and runs all tests there under Wine, in
# a Wine prefix of its own (build/wine). Also builds the programs for this system whose files the
# Windows ones must repeat byte for byte.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh g++ cmake ninja-build libgtest-dev googletest python3 \
    g++-mingw-w64-x86-64-posix wine wine64

# The preset "windows" sets the same for what CMake and CTest run.
export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' TZ=UTC0
wine=/usr/lib/wine

echo "== Build: this system =="
# A tree that builds the tests or not stays as it is, but these programs are needed.
[ -f build/release/build.ninja ] || cmake --preset release >/dev/null
cmake --build --preset release --target closed_search labels mgf_to_zb2 rewrite_parameters -- --quiet

echo "== Start Wine =="
# One server for all tests spares each of them the start of its own. It would hold this script's
# streams open.
mkdir -p "$WINEPREFIX"
"$wine/wineserver64" --kill >/dev/null 2>&1 || true
"$wine/wineserver64" --persistent </dev/null >/dev/null 2>&1
trap '"$wine/wineserver64" --kill >/dev/null 2>&1' EXIT
"$wine/wine64" wineboot --init </dev/null >build/wine/start.log 2>&1 ||
    { cat build/wine/start.log; exit 1; }
rm -rf "$WINEPREFIX"/drive_c/users/*/Temp/tessel_*

echo "== Build and test: windows =="
cmake --preset windows >/dev/null
cmake --build --preset windows -- --quiet
ctest --preset windows --parallel "$(nproc)" --quiet --output-log build/windows/ctest.log ||
    { cat build/windows/ctest.log; exit 1; }
sed -n '/tests passed,/,$p' build/windows/ctest.log

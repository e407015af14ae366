#!/usr/bin/env bash
# What every change has to pass, and what takes too long for that: all tests built by clang, as
# debug builds, with a static library, with clang's sanitizers, and as a debug build for Windows.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/test.sh
bash scripts/test-windows.sh

# test NAME PRESET OPTION...: configures the preset with options in build/all/NAME, builds and tests.
test_variant() {
    local folder=build/all/$1 preset=$2
    shift 2
    echo "== Build and test: $folder =="
    cmake --preset "$preset" -B "$folder" -DTESSEL_BUILD_TESTS=ON "$@" >/dev/null
    cmake --build "$folder" -- --quiet
    ctest --test-dir "$folder" --output-on-failure --parallel "$(nproc)" --quiet \
        --output-log "$folder/ctest.log" || { cat "$folder/ctest.log"; exit 1; }
    sed -n '/tests passed,/,$p' "$folder/ctest.log"
}

test_variant debug dev
test_variant static release -DBUILD_SHARED_LIBS=OFF
test_variant clang clang
test_variant clang-sanitize sanitize -DCMAKE_CXX_COMPILER=clang++

# The server that test-windows.sh used has ended with it.
. scripts/start_wine.sh
test_variant windows-debug windows -DCMAKE_BUILD_TYPE=Debug
test_variant windows-static windows -DBUILD_SHARED_LIBS=OFF

#!/usr/bin/env bash
# Installs what the tests need, lints, builds everything and runs all tests: optimised, and with the
# address and undefined-behaviour sanitizers. Also compiles the library with clang and tries the Debian
# packages. Windows has scripts/test-windows.sh.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh g++ cmake ninja-build libgtest-dev python3 clang clang-format-14 \
    pkgconf snakemake

echo "== Lint =="
scripts/lint.sh

scripts/install_german_locale.sh

echo "== Build: clang =="
cmake --preset clang >/dev/null
cmake --build --preset clang -- --quiet

echo "== Documentation =="
scripts/docs.sh

for preset in release sanitize; do
    echo "== Build and test: $preset =="
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -- --quiet
    ctest --preset "$preset" --parallel "$(nproc)" --quiet --output-log "build/$preset/ctest.log" ||
        { cat "build/$preset/ctest.log"; exit 1; }
    sed -n '/tests passed,/,$p' "build/$preset/ctest.log"
done

echo "== Build and test: thread =="
cmake --preset thread >/dev/null
cmake --build --preset thread -- --quiet
# The sanitizer needs to know where memory is; g++ 12's cannot cope with much randomness.
setarch --addr-no-randomize build/thread/tests/concurrency_tests --gtest_brief=1

echo "== Debian packages =="
scripts/test-package.sh

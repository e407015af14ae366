#!/usr/bin/env bash
# Runs all tests with coverage counted and prints lines and branches of tessel/ by file. Exit status 1
# below 97 % of the lines or 90 % of the branches. Branches that only an exception takes are left out;
# what the children of death tests execute counts.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh g++ cmake ninja-build libgtest-dev python3 gcovr
scripts/install_german_locale.sh

cmake --preset coverage >/dev/null
cmake --build --preset coverage -- --quiet
find build/coverage -name '*.gcda' -delete
ctest --preset coverage --parallel "$(nproc)" --quiet --output-log build/coverage/ctest.log ||
    { cat build/coverage/ctest.log; exit 1; }

report=(gcovr --root . --filter tessel/ --object-directory build/coverage --gcov-ignore-parse-errors
    --exclude-throw-branches --exclude-unreachable-branches)
"${report[@]}" --json build/coverage/coverage.json
report=(gcovr --root . --add-tracefile build/coverage/coverage.json)
"${report[@]}" --branches
"${report[@]}" --fail-under-line 97 --fail-under-branch 90 --print-summary

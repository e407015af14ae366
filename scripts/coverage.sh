#!/usr/bin/env bash
# Runs all tests with coverage counted and prints lines and branches of tessel/ by file; build/coverage/
# html shows which are missing. Exit status 1 below 97 % of the lines or 90 % of the branches. Counted
# are branches of the source, as clang sees them (those that the compiler adds for exceptions are none),
# and what the children of death tests execute counts.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh g++ clang llvm libclang-rt-14-dev cmake ninja-build libgtest-dev python3
scripts/install_german_locale.sh

cmake --preset coverage >/dev/null
cmake --build --preset coverage -- --quiet

# Processes of one program add to one profile. The workflow runs programs that other tests run, what
# the consumers build is not counted, and a limit of file sizes is one of profiles, too.
unfit='^(examples\.workflow$|consumer\.|prepare_database_posix\.failed_write_is_fatal)'
profiles=$PWD/build/coverage/profiles
rm -rf "$profiles"
export LLVM_PROFILE_FILE=$profiles/%4m.profraw
ctest --preset coverage --parallel "$(nproc)" --exclude-regex "$unfit" \
    --quiet --output-log build/coverage/ctest.log || { cat build/coverage/ctest.log; exit 1; }
llvm-profdata merge --sparse "$profiles"/*.profraw --output build/coverage/all.profdata

mapfile -t programs < <(find build/coverage/tests build/coverage/examples build/coverage/tools \
    -maxdepth 2 -type f -perm -u+x)
arguments=(-instr-profile build/coverage/all.profdata "${programs[0]}" "${programs[@]/#/--object=}")
llvm-cov show "${arguments[@]}" --format=html --output-dir=build/coverage/html \
    --show-branches=count tessel 2>/dev/null
llvm-cov export "${arguments[@]}" --summary-only tessel >build/coverage/summary.json
python3 - <<'END'
import json, os, sys

LEAST = {"lines": 97.0, "branches": 90.0}  # percent
with open("build/coverage/summary.json", encoding="utf-8") as file:
    data = json.load(file)["data"][0]
print(f"{'':38} {'lines':>12} {'':>7} {'branches':>12}")
for entry in data["files"] + [{"filename": "all", "summary": data["totals"]}]:
    cells = [f"{part['covered']:5} of {part['count']:4} {part['percent']:5.1f} %"
             for part in (entry["summary"][kind] for kind in LEAST)]
    print(f"{os.path.relpath(entry['filename']):38}", *cells)
low = [kind for kind, least in LEAST.items() if data["totals"][kind]["percent"] < least]
if low:
    sys.exit(f"too few {' and '.join(low)} are covered")
END

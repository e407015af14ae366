#!/usr/bin/env bash
# Installs what the documentation needs, builds it and prints where it begins. Fails when anything
# public is without documentation, or a link or a snippet leads nowhere.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh g++ cmake ninja-build doxygen
cmake -S . -B build/docs -G Ninja -DTESSEL_BUILD_TESTS=OFF -DTESSEL_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build/docs --target docs -- --quiet
echo "build/docs/docs/html/index.html"

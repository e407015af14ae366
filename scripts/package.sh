#!/usr/bin/env bash
# Builds the Debian packages of the library: libtessel with its version, libtessel-dev, tessel-data,
# tessel-tools and libtessel-doc. The last lines are their paths, relative to the repository.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install_packages.sh g++ cmake ninja-build dpkg-dev file doxygen
cmake --preset package >/dev/null
cmake --build --preset package --target all docs -- --quiet
rm -f build/package/*.deb
(cd build/package && cpack >cpack.log 2>&1) || { cat build/package/cpack.log; exit 1; }
ls build/package/*.deb

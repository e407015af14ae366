#!/usr/bin/env bash
# Makes the locale in which the tests run, de_DE.UTF-8, where it is missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

locale -a | grep --quiet --ignore-case '^de_DE\.utf-\?8$' && exit 0
scripts/install_packages.sh locales
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
"${as_root[@]}" localedef --inputfile=de_DE --charmap=UTF-8 de_DE.UTF-8

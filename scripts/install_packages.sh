#!/usr/bin/env bash
# install_packages.sh PACKAGE...: installs those of the Debian packages that are missing.
set -euo pipefail

if ! command -v dpkg-query >/dev/null; then
    echo "This system has no Debian packages; make sure of: $*" >&2
    exit 0
fi

missing=()
for package in "$@"; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Needed, as root: apt-get install ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
echo "Install: ${missing[*]}"
"${as_root[@]}" apt-get update --quiet --quiet
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install --yes --quiet --quiet --no-install-recommends "${missing[@]}" >/dev/null

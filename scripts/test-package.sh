#!/usr/bin/env bash
# Builds the Debian packages, installs them into a scratch root that holds little more than a C++
# runtime, compiles a program against them by CMake and by pkg-config, runs it inside the root and
# removes everything again. The system itself stays as it is. Without root, a user namespace serves.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if [ "${1:-}" != --built ]; then
    scripts/install_packages.sh pkgconf
    scripts/package.sh
    if [ "$(id -u)" -ne 0 ]; then
        exec unshare --user --map-root-user "$0" --built
    fi
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
packages=build/package
library=$(echo "$packages"/libtessel[0-9]*.deb)
library_package=$(dpkg-deb --field "$library" Package)
multiarch=$(dpkg-architecture --query DEB_HOST_MULTIARCH)

fail() { echo "FAILED: $*" >&2; exit 1; }
in_root() { dpkg --root="$root" --force-not-root "$@" >"$work/dpkg.log" 2>&1; }
expect_success() { in_root "$@" || { cat "$work/dpkg.log" >&2; fail "dpkg $*"; }; }
expect_refusal() { ! in_root "$@" || fail "dpkg $* was not refused"; }
# All paths but what dpkg and the linker's cache keep for themselves.
listing() { (cd "$root" && find . -path ./var/lib/dpkg -prune -o -path ./etc/ld.so.cache -prune -o \
    -path ./var/cache -prune -o -path ./var/log -prune -o -print | sort); }

# A file of the running system with the libraries that it needs.
copy_program() {
    local file
    for file in "$1" $(ldd "$1" 2>/dev/null | grep --only-matching '/[^ ]*' || true); do
        mkdir -p "$root$(dirname "$file")"
        cp --dereference --update "$file" "$root$file"
    done
}

echo "-- Scratch root"
mkdir -p "$root"/{usr/{bin,sbin,lib,lib64},etc/ld.so.conf.d,tmp,var/{log,cache,lib/dpkg/{info,updates}}}
for folder in bin sbin lib lib64; do ln -s "usr/$folder" "$root/$folder"; done
echo "include /etc/ld.so.conf.d/*.conf" >"$root/etc/ld.so.conf"
echo "/usr/lib/$multiarch" >"$root/etc/ld.so.conf.d/multiarch.conf"
for program in /bin/sh /sbin/ldconfig "/usr/lib/$multiarch/libstdc++.so.6"; do copy_program "$program"; done
dpkg-query --status libc6 libgcc-s1 libstdc++6 >"$root/var/lib/dpkg/status"
listing >"$work/before.txt"

echo "-- Install"
expect_refusal --install "$packages"/libtessel-dev_*.deb
expect_success --install "$packages"/*.deb
[ -L "$root/usr/lib/$multiarch/libtessel.so" ] || fail "no libtessel.so for the linker"
grep --quiet libtessel.so "$root/etc/ld.so.cache" || fail "the linker's cache does not know the library"
dpkg-deb --field "$library" Depends | grep --quiet 'libstdc++6' || fail "the library depends on nothing"

echo "-- Use, by CMake"
cat >"$work/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.21)
project(consumer LANGUAGES CXX)
find_package(tessel CONFIG REQUIRED)
add_executable(by_cmake $PWD/tests/consumer/main.cpp)
target_link_libraries(by_cmake PRIVATE tessel::tessel)
CMAKE
cmake -S "$work" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
cmake --build "$work/build" -- --quiet

echo "-- Use, by pkg-config"
flags=$(PKG_CONFIG_PATH="$root/usr/lib/$multiarch/pkgconfig" pkg-config --cflags --libs tessel)
# shellcheck disable=SC2086  # the flags are words
"${CXX:-c++}" -std=c++20 tests/consumer/main.cpp -o "$work/build/by_pkg_config" $flags

for program in by_cmake by_pkg_config; do
    cp "$work/build/$program" "$root/tmp/"
    chroot "$root" /bin/sh -c "cd /usr/share/tessel && /tmp/$program" >/dev/null ||
        fail "the program built $program does not run in the scratch root"
    rm "$root/tmp/$program"
done

echo "-- Remove"
expect_refusal --remove "$library_package"
expect_success --purge libtessel-dev libtessel-doc tessel-tools tessel-data "$library_package"
listing >"$work/after.txt"
diff "$work/before.txt" "$work/after.txt" || fail "the packages leave something behind"
echo "The packages install, serve and go."

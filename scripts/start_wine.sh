# To be sourced in the root of the sources: gives programs that run under Wine a prefix of their own
# (build/wine) and one server, until the script that sources this ends.

# The preset "windows" sets the same for what is started without these scripts.
export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' TZ=UTC0
# Names of files are those of the locale to Wine: others than ASCII need UTF-8.
export LC_ALL=C.UTF-8
wine=/usr/lib/wine

# One server for all tests spares each of them the start of its own. It would hold the streams of the
# script open.
mkdir -p "$WINEPREFIX"
"$wine/wineserver64" --kill >/dev/null 2>&1 || true
"$wine/wineserver64" --persistent </dev/null >/dev/null 2>&1
trap '"$wine/wineserver64" --kill >/dev/null 2>&1' EXIT
"$wine/wine64" wineboot --init </dev/null >"$WINEPREFIX/start.log" 2>&1 ||
    { cat "$WINEPREFIX/start.log"; exit 1; }
# What tests that were killed have left behind.
rm -rf "$WINEPREFIX"/drive_c/users/*/Temp/tessel_*

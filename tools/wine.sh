#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs what was built for Windows, under a wine of its own in build/wine: no display, no menus, nothing outside.
#   tools/wine.sh PROGRAM.exe [ARGUMENT...]
#   tools/wine.sh --display PROGRAM.exe [ARGUMENT...]     shows its windows on $DISPLAY
#   tools/wine.sh --start     makes that wine when there is none, and keeps its server for faster starts
#   tools/wine.sh --stop      ends everything that runs in it
set -eu
WINEPREFIX=$(cd "$(dirname "$0")/.." && pwd)/build/wine
# Its folders of documents and pictures lead to the home.
HOME=$WINEPREFIX
# Names of files are UTF-8 to wine only where the locale says so.
LC_ALL=C.UTF-8
# Tests may change all of this Windows.
QUILLBOX_WINDOWS_FOR_TESTS=1
export HOME LC_ALL QUILLBOX_WINDOWS_FOR_TESTS WINEPREFIX WINEDEBUG=-all
export WINEDLLOVERRIDES="winemenubuilder.exe,mscoree,mshtml="
if [ "${1:-}" = --display ]; then
  shift
else
  unset DISPLAY
fi
unset WAYLAND_DISPLAY
# Debian keeps the loader and the server beside wine's libraries.
wine=/usr/lib/wine

case "${1:-}" in
  --start)
    mkdir -p "$WINEPREFIX/drive_c" "$WINEPREFIX/drive_d" "$WINEPREFIX/dosdevices"
    for drive in c:../drive_c d:../drive_d z:/; do
      ln -sfn "${drive#?:}" "$WINEPREFIX/dosdevices/${drive%%:*}:"
    done
    "$wine/wineserver64" -p
    # Its services stay while the server does. They keep the output of who starts them open, so it is not a test's.
    "$wine/wine64" wineboot --init </dev/null >/dev/null 2>&1 || {
      echo "tools/wine.sh: wine cannot start in $WINEPREFIX" >&2
      exit 1
    }
    ;;
  --stop)
    # It fails when nothing is running.
    "$wine/wineserver64" -k || true
    "$wine/wineserver64" -w
    ;;
  *)
    exec "$wine/wine64" "$@"
    ;;
esac

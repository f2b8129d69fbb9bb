#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# tools/setup.sh [LIST...]: installs the packages of debian-packages.txt, or of the lists given, that are missing. Does
# nothing when none is.
set -eu
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- debian-packages.txt

missing=""
# shellcheck disable=SC2013 # a name a line
for package in $(grep -hv '^#' "$@"); do
  status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing:$missing"
root=""
[ "$(id -u)" = 0 ] || root="sudo"
export DEBIAN_FRONTEND=noninteractive
$root apt-get update -q
# shellcheck disable=SC2086 # a list of names
$root apt-get install -q -y --no-install-recommends $missing

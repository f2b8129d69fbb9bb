#!/bin/sh
# Installs the packages of debian-packages.txt that are missing. Does nothing when none is.
set -eu
cd "$(dirname "$0")/.."

missing=""
for package in $(grep -v '^#' debian-packages.txt); do
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

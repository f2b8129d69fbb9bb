#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: reproducible.sh [COMMIT]
# Builds COMMIT (HEAD) and its package in two temporary folders, whose names differ in length too, and compares the
# programs and the packages byte for byte. Each is compiled afresh; it takes as long as two builds of the programs.
set -eu
top=$(git -C "$(dirname "$0")/.." rev-parse --show-toplevel)
commit=$(git -C "$top" rev-parse --verify "${1:-HEAD}^{commit}")
work=$(mktemp -d "${TMPDIR:-/tmp}/quillbox-reproducible.XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
SOURCE_DATE_EPOCH=$(git -C "$top" log -1 --format=%ct "$commit")
# A cache would compare a build with itself.
export SOURCE_DATE_EPOCH CCACHE_DISABLE=1

build() {
  mkdir -p "$1"
  git -C "$top" archive "$commit" | tar -x -C "$1"
  (cd "$1" && cmake --preset release && cmake --build --preset release --target installation &&
    cpack --config build/release/CPackConfig.cmake -B "$1/build/package") >"$work/log" 2>&1 ||
    { tail -n 20 "$work/log" >&2; exit 1; }
}
build "$work/a"
build "$work/another folder/with a longer name"

failed=0
for file in build/release/bin/quillbox build/release/bin/quillbox-cli build/release/bin/regedit; do
  [ -e "$work/a/$file" ] || continue
  cmp "$work/a/$file" "$work/another folder/with a longer name/$file" && echo "equal  $file" || failed=1
done
package=$(cd "$work/a/build/package" && ls ./*.deb)
cmp "$work/a/build/package/$package" "$work/another folder/with a longer name/build/package/$package" &&
  echo "equal  $package" || failed=1
exit $failed

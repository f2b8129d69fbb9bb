#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: check-commits.sh RANGE [PRESET]
# Tries each commit of RANGE ("main~5..main") in a work tree of its own: it must configure, build without a warning, and
# pass the tests that need no display. Prints one line for each commit; exits with 1 when one of them fails.
set -eu
[ $# -ge 1 ] || { sed -n '2,4s/^# //p' "$0" >&2; exit 2; }
range=$1
preset=${2:-debug}
top=$(git rev-parse --show-toplevel)
tree=$(mktemp -d "${TMPDIR:-/tmp}/quillbox-commits.XXXXXX")
git -C "$top" worktree add --quiet --detach "$tree/tree" HEAD
trap 'git -C "$top" worktree remove --force "$tree/tree"; rm -rf "$tree"' EXIT
cd "$tree/tree"

# The build folder stays from one commit to the next, so that each builds only what it changed.
try() {
  git checkout --quiet --detach "$1" &&
    cmake --preset "$preset" >"$tree/log" 2>&1 &&
    cmake --build --preset "$preset" >"$tree/log" 2>&1 &&
    ctest --preset "$preset" --label-exclude display >"$tree/log" 2>&1
}

failed=0
for commit in $(git -C "$top" rev-list --reverse "$range"); do
  if try "$commit"; then verdict=good; else verdict=BAD failed=1; fi
  echo "$verdict  $(git log -1 --format='%h %s' "$commit")"
  [ "$verdict" = good ] || tail -n 20 "$tree/log"
done
exit $failed

#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: mutants.sh [--count N] [--seed S] [--all] [--only PART-OF-A-PATH] [--list]
# Breaks the tables and texts of settings, registry items, backups, windows and reports, one token at a time, and lists
# the changes that no test notices. N changes (60) are picked by the seed (1); --all tries each one; --list only names
# them. Changes that make no difference are in tools/mutants.equivalent, with the reason. What is committed is tried, in
# a work tree of its own in build/mutants; the build there is kept for the next time. Exits with 1 when one survived.
set -eu
cd "$(dirname "$0")/.."
for arg; do
  case $arg in -h | --help) exec sed -n '2,6s/^# //p' "tools/mutants.sh" ;; esac
done
[ -z "$(git status --porcelain -- src tests)" ] || echo "Changes that are not committed are not tried." >&2
here=$PWD/build/mutants
mkdir -p "$here"
git worktree prune
trap 'git worktree remove --force "$here/tree"' EXIT
trap 'exit 1' HUP INT TERM
git worktree add --quiet --force --detach "$here/tree" HEAD
launcher=
! command -v ccache >/dev/null || launcher=-DCMAKE_CXX_COMPILER_LAUNCHER=ccache
# Of no build type: without debugging information and optimisation it builds fastest.
# shellcheck disable=SC2086 # the option or nothing
cmake -S "$here/tree" -B "$here/build" -G Ninja -DCMAKE_BUILD_TYPE= $launcher >/dev/null
python3 tools/mutants.py "$here/tree" "$here/build" "$@"

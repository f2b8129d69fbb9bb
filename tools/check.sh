#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: check.sh [--quick] [BASE]
# What can be said about the sources without running them: format, licence lines, length of files, shell scripts, lines
# that are there twice, the table of layers, the desktop's files; then clang-tidy on what changed since BASE, and the
# build by clang, whose warnings are errors. BASE is a commit; without one it is where this branch left origin's main
# branch, else the last tag, else the commit before. --quick leaves out what compiles. Every check runs; the end is 1
# when one of them failed. QUILLBOX_TIDY_FILES is the most files that clang-tidy looks at; it takes 10 to 30 s for one.
set -u
cd "$(dirname "$0")/.." || exit
quick=false base=
for argument; do
  case $argument in
    --quick) quick=true ;;
    -*) sed -n '3,9s/^# //p' "$0" >&2; exit 2 ;;
    *) base=$argument ;;
  esac
done
[ -z "$base" ] || git rev-parse --quiet --verify "$base^{commit}" >/dev/null || { echo "$base is not a commit" >&2; exit 2; }
tools/setup.sh debian-packages.txt fuzz/debian-packages.txt tools/debian-packages-check.txt || exit

failed=0
# check NAME COMMAND...: runs it and prints what it says when it fails.
check() {
  name=$1
  shift
  if output=$("$@" 2>&1); then
    echo "ok      $name"
  else
    failed=1
    printf 'FAILED  %s\n%s\n' "$name" "$output"
  fi
}

# Files of the project by patterns, also those that are not committed yet.
files() {
  git ls-files --cached --others --exclude-standard -- "$@" | while read -r file; do
    [ ! -f "$file" ] || echo "$file"
  done
}

check_format() {
  files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
}

check_licence_lines() {
  missing=$(files '*.cpp' '*.h' '*.cpp.in' '*.py' '*.sh' '*.cmake' '*CMakeLists.txt' '*.svg' '*.1' run test test-windows \
    .ci/run | while read -r file; do head -n 3 "$file" | grep -q 'SPDX-License-Identifier: ' || echo "$file"; done)
  [ -z "$missing" ] || { echo "without a licence line: $missing"; return 1; }
}

check_lengths() {
  long=$(files 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'tools/*.cpp' 'bench/*.cpp' 'fuzz/*.cpp' | xargs wc -l |
    awk '$2 != "total" && $1 >= 500')
  [ -z "$long" ] || { echo "500 lines or more: $long"; return 1; }
}

check_shell() {
  # 2317: functions that "check" calls by their names. 2016: texts that others than the shell expand.
  files '*.sh' run test test-windows .ci/run | xargs shellcheck -e SC2317,SC2016
}

# The folders of the first table of the page are the layers, each once. The page may name several in a row. The sample
# disk's maker is the one layer that is in the text below it.
check_layers() {
  sed -n '/^| `/s/^| \([^|]*\)|.*/\1/p' docs/architecture.md | tr -d '`' | tr ' ' '\n' | sed '/^$/d' | sort >"$named"
  files 'src/*CMakeLists.txt' | sed 's#^src/##; s#/CMakeLists.txt$##' | grep -v '^sample$' | sort | comm -3 "$named" - >"$named.only"
  [ ! -s "$named.only" ] || { echo "in docs/architecture.md alone, or (indented) in src alone:"; cat "$named.only"; return 1; }
}

check_desktop() {
  desktop-file-validate packaging/quillbox.desktop &&
    sed 's#@QUILLBOX_SITE@#https://quillbox.invalid#; s#@PROJECT_VERSION@#0#' packaging/quillbox.metainfo.xml.in \
      >"$named.metainfo.xml" && appstreamcli validate --no-net "$named.metainfo.xml"
}

# The last resort is for a clone without history, as checks on other machines make: then nothing counts as changed.
find_base() {
  for remote in origin/HEAD origin/main origin/master; do
    git merge-base HEAD "$remote" 2>/dev/null && return
  done
  git describe --tags --abbrev=0 2>/dev/null || git rev-parse --verify --quiet HEAD~1 || git rev-parse HEAD
}

check_tidy() {
  [ -n "$base" ] || base=$(find_base)
  # Only what the clang build compiles has a command.
  git diff --name-only --diff-filter=d "$base" -- 'src/*.cpp' 'tests/*.cpp' 'tools/*.cpp' |
    while read -r file; do
      ! grep -q "/$file\"" build/clang/compile_commands.json || echo "$file"
    done >"$named"
  changed=$(wc -l <"$named") most=${QUILLBOX_TIDY_FILES:-$changed}
  [ "$changed" -le "$most" ] || echo "        clang-tidy looks at $most of $changed changed files" >&3
  head -n "$most" "$named" | xargs -r -P "$(nproc)" -n 1 clang-tidy --quiet -p build/clang
}

exec 3>&1
named=$(mktemp)
trap 'rm -f "$named" "$named.only" "$named.metainfo.xml"' EXIT
trap 'exit 1' HUP INT TERM
check format check_format
check "licence lines" check_licence_lines
check "length of files" check_lengths
check "shell scripts" check_shell
check "lines that are there twice" tools/duplicates.py
check "layers in docs/architecture.md" check_layers
check "desktop entry and metainfo" check_desktop
if ! $quick; then
  check "build by clang" cmake --workflow --preset clang
  check "clang-tidy on changes" check_tidy
fi
exit $failed

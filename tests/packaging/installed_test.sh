#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: installed_test.sh BUILD BINDIR PRIVATEDIR
# An installation that was moved: what is in it, a quick backup through its real window, with another program's
# "regedit" beside it, and its manual, which Help > Manual opens. Needs make_sample_disk in BUILD/bin.
set -eu
tools=$(cd "$(dirname "$0")/../../tools" && pwd)
build=$1 bin=$2 private=$3
work=$(mktemp -d "${TMPDIR:-/tmp}/quillbox-installed.XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM

cmake --install "$build" --prefix "$work/first" >"$work/log"
mv "$work/first" "$work/moved"
cd "$work/moved"
for file in "$bin/quillbox" "$bin/quillbox-regedit" "$private/regedit"; do
  [ -x "$file" ] || { echo "$file is not installed, or leads nowhere" >&2; exit 1; }
done
unwanted=$(find . -name '*.a' -o -name '*.h' -o -name '*.so*' -o -name '*_test' -o -name '*_bench' -o -name 'make_*')
[ -z "$unwanted" ] || { echo "installed without use: $unwanted" >&2; exit 1; }

printf '#!/bin/sh\necho "the wrong regedit" >&2\nexit 1\n' >"$bin/regedit"
chmod +x "$bin/regedit"
"$build/bin/make_sample_disk" "$work/disk" >"$work/log"
QUILLBOX_WALKTHROUGH=1 "$tools/walkthrough.sh" "$work/moved/$bin" "$work/disk" "$work/out"
[ -s "$work/disk/D/Backup/Main Identity/IAM.reg" ]

# A browser that notes what it opens.
mkdir "$work/browser"
printf '#!/bin/sh\nprintf "%%s" "$1" >"%s/new" && mv "%s/new" "%s/opened"\n' "$work" "$work" "$work" >"$work/browser/xdg-open"
chmod +x "$work/browser/xdg-open"
PATH="$work/browser:$PATH" XDG_STATE_HOME="$work/out/state" "$bin/quillbox" "$work/disk/C" --drive "D=$work/disk/D" &
program=$!
window=$(timeout 60 xdotool search --sync --onlyvisible --name '^Quillbox$' | tail -n 1)
# A busy machine may show the window before it takes keys.
for attempt in 1 2 3 4 5; do
  sleep "$attempt"
  [ ! -e "$work/opened" ] || break
  xdotool windowfocus --sync "$window" || true
  xdotool key --delay 150 Escape Escape F10 Right Right Right Right Right Right Right Right Down Return
done
kill "$program"
manual=$(cat "$work/opened")
echo "Help > Manual opens $manual"
case $manual in "$work/moved/"*/manual.html) ;; *) exit 1 ;; esac
python3 "$tools/../tests/docs/documents_test.py" "$tools/.." "$(dirname "$manual")"

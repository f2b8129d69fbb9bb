#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: walkthrough.sh BIN SAMPLE OUT
# Opens the program on the sample disk under a virtual display, presses Quick Backup in the real window, saves a
# picture of the window to OUT, and prints what was written where. Programs for Windows in BIN run under wine, and press
# it a second time on the Windows that wine is, which gets the sample's identities.
set -eu
tools=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$3"
bin=$(cd "$1" && pwd) sample=$(cd "$2" && pwd) out=$(cd "$3" && pwd)

if [ -z "${QUILLBOX_WALKTHROUGH:-}" ]; then
  QUILLBOX_WALKTHROUGH=1 NO_AT_BRIDGE=1 exec xvfb-run -a -s "-screen 0 1280x800x24" "$0" "$@"
fi

# The programs, and what a path of this machine begins with for them.
if [ -e "$bin/quillbox.exe" ]; then
  root=Z:
  run() { exec "$tools/wine.sh" --display "$@"; }
  quillbox=$bin/quillbox.exe regedit=$bin/offline/regedit.exe
  "$tools/wine.sh" --start
else
  root=
  # shellcheck disable=SC2086 # words: how to start a program elsewhere, such as "chroot FOLDER"
  run() { exec ${QUILLBOX_RUN:-} "$@"; }
  quillbox=$bin/quillbox regedit=$bin/quillbox-regedit
  [ -e "$regedit" ] || regedit=$bin/regedit
  XDG_STATE_HOME=$out/state
  export XDG_STATE_HOME
fi

program=
finish() {
  [ -z "$program" ] || kill "$program" 2>/dev/null || true
  [ -z "$root" ] || "$tools/wine.sh" --stop
}
trap finish EXIT
trap 'exit 1' HUP INT TERM

# open_main_window [ARGUMENT...]: starts the program, and waits for its main window, which gets the keys.
open_main_window() {
  (run "$quillbox" "$@") &
  program=$!
  window=$(timeout 60 xdotool search --sync --onlyvisible --name '^Quillbox$' | tail -n 1)
  sleep 1
  xdotool windowfocus --sync "$window" || true
}

# quick_backup FILE PICTURE: presses Quick Backup, waits for FILE, the last that is written, and saves a picture.
quick_backup() {
  # From the first picker Tab goes to the other two, the check box and Quick Backup.
  xdotool key --window "$window" --delay 100 Tab Tab Tab Tab space
  waited=0
  until [ -s "$1" ]; do
    sleep 0.2
    waited=$((waited + 1))
    [ $waited -lt 300 ] || { echo "The backup did not end within a minute." >&2; exit 1; }
  done
  sleep 1
  # Under wine and without a window manager, nothing draws again what a closed window has covered.
  xdotool windowunmap --sync "$window" windowmap --sync "$window"
  sleep 1
  import -window root "$2"
}

# list_files FOLDER NAME: what is in FOLDER, which the program calls NAME.
list_files() {
  (cd "$1" && find . -type f -printf "  %10s bytes  $2/%P\n" | tr / '\134' | sort -k 3)
}

on_the_sample_disk() {
  backup=$sample/D/Backup
  rm -rf "$backup"
  mkdir -p "$backup"
  # The backup folder is chosen with the registry editor, as a person could with a file from another machine.
  cat > "$out/backup-folder.reg" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Identities]
"Quillbox"="D:\\Backup"
REG
  (run "$regedit" --disk "$root$sample/C" --profile "Ann Miller" --drive "D=$root$sample/D" /s /c \
    "$root$out/backup-folder.reg")
  open_main_window "$root$sample/C" --profile "Ann Miller" --drive "D=$root$sample/D"
  quick_backup "$backup/Main Identity/IAM.reg" "$out/window.png"
  echo
  echo "Quick backup of \"Main Identity\", through the real window:"
  list_files "$backup" "D:/Backup"
  echo "The folder D:\\Backup is $backup"
  echo "A picture of the window is $out/window.png"
}

# The sample's keys that wine's registry gets. Its folders are copied to where wine's user has them.
sampled_keys='HKEY_CURRENT_USER\Identities
HKEY_CURRENT_USER\Software\Microsoft\Internet Account Manager
HKEY_CURRENT_USER\Software\Microsoft\WAB
HKEY_LOCAL_MACHINE\Software\Microsoft\Outlook Express
HKEY_LOCAL_MACHINE\Software\Microsoft\WAB'

on_this_computer() {
  prefix=$tools/../build/wine
  home=$prefix/drive_c/users/$(id -un)
  cp -R "$sample/C/Documents and Settings" "$prefix/drive_c"
  cp -R "$sample/C/Documents and Settings/Ann Miller/Local Settings" \
    "$sample/C/Documents and Settings/Ann Miller/Application Data" "$home"
  rm -rf "$prefix/drive_d/Backup"
  mkdir -p "$prefix/drive_d/Backup"
  printf '%s\n' "$sampled_keys" | while read -r key; do
    (run "$regedit" --disk "$root$sample/C" --profile "Ann Miller" /e "$root$out/key.reg" "$key") </dev/null
    (run regedit /s "$root$out/key.reg") </dev/null
  done
  rm "$out/key.reg"
  (run regedit /s "$root$out/backup-folder.reg")
  open_main_window --this-computer
  quick_backup "$prefix/drive_d/Backup/Main Identity/IAM.reg" "$out/this-computer.png"
  echo
  echo "The same on \"This Computer\":"
  list_files "$prefix/drive_d/Backup" "D:/Backup"
  echo "A picture of the window is $out/this-computer.png"
}

close_the_program() {
  kill "$program" 2>/dev/null || true
  wait "$program" 2>/dev/null || true
  program=
}

on_the_sample_disk
[ -z "$root" ] || { close_the_program; on_this_computer; }

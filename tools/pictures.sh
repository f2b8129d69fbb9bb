#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: pictures.sh BIN [OUT]
# Makes the pictures of the manual, docs/pictures/*.png or in OUT: starts the program in BIN on a sample disk under a
# virtual display, opens each window by keys as a person would, and saves a picture of it. Needs make_sample_disk in BIN.
set -eu
cd "$(dirname "$0")/.."
# Paths are seen in the pictures, so that they are the same each time.
work=/tmp/old-computer

if [ -z "${QUILLBOX_PICTURES:-}" ]; then
  [ $# -ge 1 ] || { sed -n '3,5s/^# //p' "$0" >&2; exit 2; }
  tools/setup.sh debian-packages.txt tools/debian-packages-pictures.txt
  mkdir "$work"
  trap 'rm -rf "$work"' EXIT
  trap 'exit 1' HUP INT TERM
  # Without "Composite" menus and tooltips have the screen's depth; in a picture of the screen they would be black.
  QUILLBOX_PICTURES=1 NO_AT_BRIDGE=1 xvfb-run -a -s "-screen 0 1280x900x24 -wr -extension Composite" "$0" "$@"
  exit
fi

bin=$(realpath "$1")
mkdir -p "${2:-docs/pictures}"
out=$(realpath "${2:-docs/pictures}")
export HOME="$work/home" XDG_STATE_HOME="$work/home/.local/state" TZ=UTC
mkdir -p "$HOME/mail"

manager='' program=''
finish() {
  for process in $program $manager; do kill "$process" 2>/dev/null || true; done
}
trap finish EXIT
trap 'exit 1' HUP INT TERM
openbox >"$work/openbox.log" 2>&1 &
manager=$!

# shown TITLE: waits for the window of that title, a pattern, which gets the keys.
shown() {
  window=$(timeout 30 xdotool search --sync --onlyvisible --name "^$1\$" | tail -n 1)
  [ -n "$window" ] || { echo "no window \"$1\" came up" >&2; exit 1; }
  xdotool windowactivate --sync "$window"
  # No tooltips.
  xdotool mousemove 1279 899
  sleep 1
}

# start [ARGUMENT...]: starts the program.
start() {
  "$bin/quillbox" "$@" &
  program=$!
}

# stop: ends the program.
stop() {
  kill "$program"
  wait "$program" || true
  program=''
}

# press KEY...: presses keys, one after the other.
press() {
  xdotool key --delay 150 "$@"
  sleep 0.3
}

# choose KEYS TITLE: opens a window by the menu. KEYS as in real_windows_test: arrows, and e for Enter.
choose() {
  # shellcheck disable=SC2046 # words
  press F10 $(echo "$1" | sed 's/>/Right /g; s/</Left /g; s/v/Down /g; s/\^/Up /g; s/e/Return /g')
  shown "$2"
}

# type_text TEXT: in place of what the field has.
type_text() {
  press ctrl+a
  xdotool type --delay 20 "$1"
}

# take NAME: saves a picture of what is on the screen as NAME.png.
take() {
  sleep 0.5
  # All that is not white: the window with its frame, and an open menu.
  import -window root -trim +repage "$work/$1.png"
  pngquant --force --strip --speed 1 --output "$out/$1.png" 64 "$work/$1.png"
  echo "$1.png"
}

# wait_for FILE: waits until a command has written it.
wait_for() {
  waited=0
  until [ -s "$1" ]; do
    sleep 0.2
    waited=$((waited + 1))
    [ $waited -lt 300 ] || { echo "$1 was not written within a minute" >&2; exit 1; }
  done
  sleep 2
}

back() {
  press Escape
  shown Quillbox
}

# picture NAME KEYS TITLE [KEY...]: a window as it comes up, after some keys.
picture() {
  name=$1
  choose "$2" "$3"
  shift 3
  [ $# -eq 0 ] || press "$@"
  take "$name"
  back
}

# disk_image FILE: an image of a disk with one NTFS partition, as far as its first bytes say so.
disk_image() {
  truncate -s 8M "$1"
  {
    printf '\200\1\1\0\7\376\77\0\77\0\0\0\0\76\0\0' | dd of="$1" bs=1 seek=446 conv=notrunc
    printf '\125\252' | dd of="$1" bs=1 seek=510 conv=notrunc
    printf 'NTFS    ' | dd of="$1" bs=1 seek=$((63 * 512 + 3)) conv=notrunc
  } 2>/dev/null
}

"$bin/make_sample_disk" "$work/disk" >/dev/null
mkdir "$work/backup"
cat >"$work/folder.reg" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Identities]
"Quillbox"="Z:\\tmp\\old-computer\\backup"
REG
"$bin/regedit" --disk "$work/disk/C" --profile "Ann Miller" --drive "D=$work/disk/D" /s "$work/folder.reg"

start
shown "Quillbox - Open a Windows disk"
take start-empty
disk_image "$work/old-disk.img"
xdotool type --delay 20 "$work/old-disk.img"
press Return
take start-image
stop

start "$work/disk/C" --profile "Ann Miller" --drive "D=$work/disk/D"
# The registry names the folder; it counts when the person says so.
shown Quillbox
press alt+y
shown Quillbox
# From the first picker Tab goes to the other two, the check box and Quick Backup.
press Tab Tab Tab Tab space
wait_for "$work/backup/Main Identity/IAM.reg"
take main
# On to "Show Additional Identity Info", and there again.
press Tab Tab Tab Tab space
take main-more
press space
choose '>>v' Quillbox
take menu
press Escape Escape
picture backup-folder '>>vv>e' 'Select or Create a Backup Folder'
picture last-backup '>>v^^e' 'Last Backup'
picture check-backup '>>v^e' 'Check Backup' Return
picture export-mail '>>>>>>>ve' 'Export Mail'
picture export-contacts '>>>>>>>v^e' 'Export Contacts'
picture search '>>>>>>e' Search Tab Return
picture clone-identity '>>>>vve' 'Clone An Identity'
picture create-identity '>>>>ve' 'Create New identity'
picture delete-identities '>>>>>ve' 'Delete Identities'
picture manage-identities '>>>vve' 'Manage Identities'
picture replace-user-id '>>>ve' 'Replace .USER_ID. String in .reg File'
choose '>ve' 'Change Address Book'
take address-book
# From the path, Tab goes over all that is to do with the first address book, then the four slots.
press Tab Tab Tab Tab Tab Tab Tab Tab space
shown 'Select Address Books .*'
take select-address-books
press Escape
shown 'Change Address Book'
back
picture settings '>>v^^^^e' '5.0 Settings'
picture odds-and-ends '>>v^^^e' 'Odds and Ends'
picture mail-rules '>>v^^^^^^e' 'Mail - Message Rules'
picture news-rules '>>v^^^^^e' 'News - Message Rules'
# A second quick backup. The item between it and the rules cannot be chosen.
choose '>>v^^^^^^^e' 'Confirm File Replace'
take replace-file
press Escape
shown Quillbox
stop

start --choose
shown "Quillbox - Open a Windows disk"
take start
stop

# Changes to a registry of Windows 98 go to a private copy.
"$bin/make_sample_disk" --windows98 "$work/disk98" >/dev/null
"$bin/regedit" --disk "$work/disk98/C" --drive "D=$work/disk98/D" /s "$work/folder.reg"
start --choose
shown "Quillbox - Open a Windows disk"
press alt+p
shown Quillbox
take remove-private-data

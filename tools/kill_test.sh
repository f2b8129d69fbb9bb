#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: kill_test.sh [KILLS [BIN]]
# Starts the registry editor and the window program on a sample disk and kills them at random moments, KILLS times in
# all (300), with the programs in BIN (build/release/bin). After each kill programs of others must read every hive, and
# a hive must hold what it held before the command or what it should hold after it; a copied file must be whole, the
# old one or not there. After the next start both hives of a merge must be of the same age and no temporary file may be
# left. Prints each fault and, last, one line of numbers; exits with 1 when there was a fault.
# shellcheck disable=SC2086 # $disk holds several words
set -eu

kills=${1:-300}
bin=$(cd "${2:-$(dirname "$0")/../build/release/bin}" && pwd)
if [ -z "${QUILLBOX_KILL_TEST:-}" ]; then
  QUILLBOX_KILL_TEST=1 NO_AT_BRIDGE=1 exec xvfb-run -a -s "-screen 0 1280x800x24" "$0" "$kills" "$bin"
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/quillbox-kills.XXXXXX")
program="" children=""
cleanup() {
  # shellcheck disable=SC2086 # numbers
  [ -z "$program$children" ] || kill -9 $program $children 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 1' INT TERM

export XDG_STATE_HOME="$work/state"
"$bin/make_sample_disk" "$work/disk" >/dev/null
config="$work/disk/C/WINDOWS/system32/config"
person="$work/disk/C/Documents and Settings/Ann Miller"
backup="$work/disk/D/Backup"
number=0 faults=0 before=0 after=0 mixed=0 leftovers=0 backups=0 restores=0

# --- what every part uses

fault() {
  faults=$((faults + 1))
  echo "kill $number: $*" >&2
}

# A number below $1.
random() {
  echo $(($(od -An -N4 -tu4 /dev/urandom) % $1))
}

milliseconds() {
  echo $(($(date +%s%N) / 1000000))
}

# Chooses when to kill, within $1 milliseconds, and whether to kill what the program has started too. Done before the
# program starts, since it takes as long as a short command.
choose_moment() {
  moment=$(random "$1" | awk '{ printf "%.3f", $1 / 1000 }')
  with_children=$(random 2)
}
with_children=1

# Waits for up to a minute until the command given succeeds.
wait_for() {
  tries=0
  until "$@"; do
    tries=$((tries + 1))
    [ $tries -lt 600 ] || return 1
    sleep 0.1
  done
}

regedit() {
  "$bin/regedit" --disk "$work/disk/C" --profile "Ann Miller" --drive "D=$work/disk/D" /s "$@"
}

# What a hive holds, without the times of its keys, as another program reads it.
fingerprint() {
  reglookup "$1" 2>/dev/null | cut -d, -f1-3 | cksum
}

check_readable() {
  for hive in "$person/NTUSER.DAT" "$config/software"; do
    hivexml "$hive" >/dev/null 2>&1 || fault "hivexml cannot read $hive"
    reglookup "$hive" >/dev/null 2>&1 || fault "reglookup cannot read $hive"
  done
}

# Temporary files anywhere on the disk.
temporary_files() {
  find "$work/disk" -name '.quillbox*' | wc -l
}

# Kills the started program, in half of the cases with what it started, and waits until all of it has ended.
kill_program() {
  children=""
  { read -r children <"/proc/$program/task/$program/children"; } 2>/dev/null || true
  kill -9 "$program" 2>/dev/null || true
  if [ "$with_children" = 1 ] && [ -n "$children" ]; then kill -9 $children 2>/dev/null || true; fi
  wait "$program" 2>/dev/null || true
  for child in $children; do
    tries=0
    while kill -0 "$child" 2>/dev/null; do
      tries=$((tries + 1))
      [ $tries -lt 200 ] || { fault "the registry editor did not end"; kill -9 "$child" 2>/dev/null || true; }
      sleep 0.05
    done
  done
  program="" children=""
}

# --- merges that change two hives

# Writes a registry file of 20,000 values a hive, all of them "$1".
write_merge() {
  awk -v text="$1" 'BEGIN {
    print "REGEDIT4\n"
    for (hive = 0; hive < 2; ++hive) {
      print hive ? "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Killed]" : "[HKEY_CURRENT_USER\\Software\\Killed]"
      for (i = 0; i < 20000; ++i) printf "\"value %d\"=\"%s\"\n", i, text
    }
  }' >"$2"
}

# Which state a hive is in: its fingerprint's place among those that were seen after whole merges.
state_of() {
  found=$(fingerprint "$1")
  if [ "$found" = "$3" ]; then
    echo one
  elif [ "$found" = "$4" ]; then
    echo two
  else
    echo neither
  fi
}
user_state() { state_of "$person/NTUSER.DAT" user "$user_one" "$user_two"; }
machine_state() { state_of "$config/software" machine "$machine_one" "$machine_two"; }

# One merge of $1 (one or two), killed; the disk holds the other state before.
kill_merge() {
  choose_moment "$merge_time"
  "$bin/regedit" --disk "$work/disk/C" --profile "Ann Miller" /s "$work/$1.reg" >/dev/null 2>&1 &
  program=$!
  sleep "$moment"
  kill_program
  check_readable
  for state in "$(user_state)" "$(machine_state)"; do
    [ "$state" != neither ] || fault "a hive is neither as before nor as after a merge"
  done
  regedit "$work/nothing.reg" 2>"$work/err" || fault "the next start failed: $(cat "$work/err")"
  left=$(temporary_files)
  [ "$left" -le "$leftovers" ] || fault "$left temporary files after the next start"
  leftovers=$left
  user=$(user_state)
  if [ "$user" != "$(machine_state)" ]; then
    mixed=$((mixed + 1))
    fault "one hive is as before and one as after a merge"
    regedit "$work/$1.reg"
  elif [ "$user" = "$1" ]; then
    after=$((after + 1))
  else
    before=$((before + 1))
  fi
}

prepare_merges() {
  printf 'REGEDIT4\n' >"$work/nothing.reg"
  write_merge one "$work/one.reg"
  write_merge two "$work/two.reg"
  regedit "$work/two.reg"
  user_two=$(fingerprint "$person/NTUSER.DAT") machine_two=$(fingerprint "$config/software")
  start=$(milliseconds)
  regedit "$work/one.reg"
  merge_time=$((($(milliseconds) - start) * 6 / 5 + 1))
  user_one=$(fingerprint "$person/NTUSER.DAT") machine_one=$(fingerprint "$config/software")
}

kill_merges() {
  prepare_merges
  while [ "$number" -lt "$1" ]; do
    number=$((number + 1))
    if [ "$(user_state)" = one ]; then kill_merge two; else kill_merge one; fi
  done
}

# --- the window program

# Starts it and waits for its window.
start_window() {
  "$bin/quillbox" "$work/disk/C" --profile "Ann Miller" --drive "D=$work/disk/D" >"$work/log" 2>&1 &
  program=$!
  window=$(timeout 30 xdotool search --sync --onlyvisible --name '^Quillbox$' 2>/dev/null | tail -n 1) || true
  [ -n "$window" ] || { fault "the window did not open: $(tail -n 3 "$work/log")"; kill_program; return 1; }
  sleep 0.3
  xdotool windowfocus --sync "$window" 2>/dev/null || true
}

# Enter presses the default button, Quick Backup.
press_quick_backup() {
  xdotool key --window "$window" Return
}

# Complete Restore is ten stops after the list that has the keyboard first.
press_restore() {
  xdotool key --window "$window" Tab Tab Tab Tab Tab Tab Tab Tab Tab Tab space
}

# The restore asks for an address book once it has merged the registry files; Escape goes on without.
decline_address_book() {
  dialog=$(timeout 20 xdotool search --sync --onlyvisible --name '^Open$' 2>/dev/null | tail -n 1) || return 1
  [ -n "$dialog" ] || return 1
  sleep 0.2
  xdotool windowfocus --sync "$dialog" key Escape 2>/dev/null || true
}

backup_is_done() {
  [ -s "$backup/Main Identity/IAM.reg" ]
}

# Every file of $1 must be as in $2 or as in $3, or be missing where $3 lacks it.
check_files() {
  for file in "$1"/*; do
    name=$(basename "$file")
    cmp -s "$file" "$2/$name" || cmp -s "$file" "$3/$name" || fault "$file is neither old nor whole"
  done
  for file in "$3"/*; do
    [ -f "$1/$(basename "$file")" ] || fault "$1/$(basename "$file") is gone"
  done
}

# A folder with an older content in half of the files of $1, the other half missing.
make_older() {
  rm -rf "$2"
  mkdir -p "$2"
  odd=0
  for file in "$1"/*; do
    odd=$((1 - odd))
    if [ $odd = 1 ]; then echo older >"$2/$(basename "$file")"; fi
  done
}

prepare_backups() {
  mkdir -p "$backup"
  printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Identities]\n"Quillbox"="D:\\\\Backup"\n"BackupOverWrite"=dword:1\n' >"$work/folder.reg"
  regedit "$work/folder.reg"
  start_window || return 1
  start=$(milliseconds)
  press_quick_backup
  wait_for backup_is_done || { fault "a quick backup that nobody killed did not end"; return 1; }
  backup_time=$(($(milliseconds) - start))
  sleep 1
  kill_program
  cp -a "$backup/Main Identity" "$work/whole"
  make_older "$work/whole" "$work/older"
  cp -a "$person/NTUSER.DAT" "$work/user.dat"
}

kill_backup() {
  rm -rf "$backup/Main Identity"
  cp -a "$work/older" "$backup/Main Identity"
  choose_moment "$backup_time"
  start_window || return 0
  press_quick_backup
  sleep "$moment"
  kill_program
  check_readable
  check_files "$backup/Main Identity" "$work/whole" "$work/older"
  backups=$((backups + 1))
}

# --- restores

store="$person/Local Settings/Application Data/Identities/{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}/Microsoft/Outlook Express"

# The registry files of a complete backup, and the stores as the quick backup saved them. What they hold is what the
# disk holds, so that a hive has one state before, during and after a restore.
prepare_restores() {
  rm -rf "$backup/Main Identity"
  cp -a "$work/whole" "$backup/Main Identity"
  regedit /e:A "$backup/AllIdentities.reg" 'HKEY_CURRENT_USER\Identities'
  regedit /e:A "$backup/IAM.reg" 'HKEY_CURRENT_USER\Software\Microsoft\Internet Account Manager\Accounts'
  regedit /e:A "$backup/AddressBook.reg" 'HKEY_CURRENT_USER\Software\Microsoft\WAB'
  cp -a "$store" "$work/store"
  make_older "$work/store" "$work/older-store"
  user_restored=$(fingerprint "$person/NTUSER.DAT")
  make_store_older
  start_window || return 1
  start=$(milliseconds)
  press_restore
  decline_address_book || { fault "the restore did not ask for an address book"; kill_program; return 1; }
  asked=$(milliseconds)
  wait_for store_is_restored || { fault "a restore that nobody killed did not end"; return 1; }
  merges_time=$((asked - start)) stores_time=$(($(milliseconds) - asked))
  sleep 1
  kill_program
}

# The quick backup leaves out what the store holds besides messages.
store_is_restored() {
  for file in "$work/whole"/*.dbx; do
    cmp -s "$file" "$store/$(basename "$file")" || return 1
  done
}

make_store_older() {
  rm -rf "$store"
  cp -a "$work/older-store" "$store"
}

kill_restore() {
  make_store_older
  during=$(random 2)
  if [ "$during" = 0 ]; then choose_moment "$merges_time"; else choose_moment "$stores_time"; fi
  start_window || return 0
  press_restore
  [ "$during" = 0 ] || decline_address_book || fault "the restore did not ask for an address book"
  sleep "$moment"
  kill_program
  check_readable
  [ "$(fingerprint "$person/NTUSER.DAT")" = "$user_restored" ] || fault "the person's hive has changed"
  check_files "$store" "$work/store" "$work/older-store"
  restores=$((restores + 1))
}

# --- all of it

began=$(date +%s)
kill_merges $((kills * 2 / 3))
merges=$number
if prepare_backups; then
  while [ "$number" -lt $((kills * 5 / 6)) ]; do
    number=$((number + 1))
    kill_backup
  done
  if prepare_restores; then
    while [ "$number" -lt "$kills" ]; do
      number=$((number + 1))
      kill_restore
    done
  fi
fi
# A whole command of each kind sweeps what the killed ones have left.
left_by_kills=$(temporary_files)
regedit "$work/nothing.reg" || true
if [ -d "$work/store" ]; then
  rm -rf "$backup/Main Identity"
  make_store_older
  start_window && press_quick_backup && wait_for backup_is_done && sleep 1
  press_restore
  decline_address_book && wait_for store_is_restored && sleep 1
  kill_program
fi
left=$(temporary_files)
[ "$left" = 0 ] || fault "$left temporary files are left after whole commands: $(find "$work/disk" -name '.quillbox*' | head -n 3)"

echo "$((merges + backups + restores)) kills in $(($(date +%s) - began)) s: $merges merges ($before as before, $after" \
  "as after, $mixed mixed), $backups quick backups, $restores restores; $left_by_kills temporary files before the last" \
  "commands, $left after; $faults faults"
[ "$faults" = 0 ]

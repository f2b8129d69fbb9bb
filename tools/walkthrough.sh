#!/bin/sh
# usage: walkthrough.sh BIN SAMPLE OUT
# Opens the program on the sample disk under a virtual display, presses Quick Backup in the real window, saves a
# picture of the window to OUT, and prints what was written where.
set -eu
bin=$1 sample=$2 out=$3
mkdir -p "$out"

if [ -z "${QUILLBOX_WALKTHROUGH:-}" ]; then
  QUILLBOX_WALKTHROUGH=1 NO_AT_BRIDGE=1 exec xvfb-run -a -s "-screen 0 1280x800x24" "$0" "$@"
fi

XDG_STATE_HOME=$out/state
export XDG_STATE_HOME
backup=$sample/D/Backup
rm -rf "$backup"
mkdir -p "$backup"
disk="--disk $sample/C --profile"

# The backup folder is chosen with the registry editor, as a person could with a file from another machine.
cat > "$out/backup-folder.reg" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Identities]
"Quillbox"="D:\\Backup"
REG
# shellcheck disable=SC2086 # options
"$bin/regedit" $disk "Ann Miller" --drive "D=$sample/D" /s /c "$out/backup-folder.reg"

"$bin/quillbox" "$sample/C" --profile "Ann Miller" --drive "D=$sample/D" &
program=$!
trap 'kill $program 2>/dev/null || true' EXIT
window=$(timeout 60 xdotool search --sync --onlyvisible --name '^Quillbox$' | tail -n 1)
sleep 1
xdotool windowfocus --sync "$window" || true
# From the first picker Tab goes to the other two, the check box and Quick Backup.
xdotool key --window "$window" --delay 100 Tab Tab Tab Tab space

waited=0
until [ -s "$backup/Main Identity/IAM.reg" ]; do
  sleep 0.2
  waited=$((waited + 1))
  [ $waited -lt 300 ] || { echo "The backup did not end within a minute." >&2; exit 1; }
done
sleep 1
import -window root "$out/window.png"

echo
echo "Quick backup of \"Main Identity\", through the real window:"
(cd "$backup" && find . -type f -printf '  %10s bytes  D:\\Backup\\%P\n' | tr '/' '\\' | sort -k 3)
echo "The folder D:\\Backup is $backup"
echo "A picture of the window is $out/window.png"

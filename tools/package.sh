#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: package.sh [--no-check | --check DEB]
# Builds the programs, packs them into build/package/quillbox_VERSION_ARCHITECTURE.deb, and has lintian look at it. Then
# tries it in a bare Debian in a temporary folder: installs it, does a quick backup of a sample disk through the real
# window, purges it, and fails if a file is left. The trial needs root and about 700 MB. --check tries DEB.
set -eu
cd "$(dirname "$0")/.."
release=bookworm

make_package() {
  tools/setup.sh debian-packages.txt tools/debian-packages-package.txt
  cmake --preset release
  cmake --build --preset release --target installation
  SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
  export SOURCE_DATE_EPOCH
  rm -rf build/package
  cpack --config build/release/CPackConfig.cmake -B "$PWD/build/package"
  rm -rf build/package/_CPack_Packages
  package=$(ls "$PWD"/build/package/*.deb)
  # No bug report asks for the first package of a program that is not in Debian.
  lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs --info "$package"
}

package=""
case ${1:-} in
  --check) package=$(realpath "$2") ;;
  --no-check) make_package; exit ;;
  "") make_package ;;
  *) sed -n '3,6s/^# //p' "$0" >&2; exit 2 ;;
esac
[ "$(id -u)" = 0 ] || { echo "Trying the package in a bare Debian needs root; --no-check leaves it out." >&2; exit 1; }
cmake --build --preset release --target make_sample_disk

work=$(mktemp -d /tmp/quillbox-package.XXXXXX)
root=$work/root
finish() {
  ! mountpoint -q "$root/proc" || umount "$root/proc"
  # Never into what is still mounted.
  rm -rf --one-file-system "$work"
}
trap finish EXIT
trap 'exit 1' HUP INT TERM

in_root() {
  in_root_as 0:0 /root "$@"
}

# usage: in_root_as USER:GROUP HOME COMMAND...
in_root_as() {
  user=$1 home=$2
  shift 2
  chroot --userspec="$user" "$root" env -i HOME="$home" PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}

# Every file of the bare Debian, but what the trial itself and dpkg's and apt's own memory put there.
list_files() {
  (cd "$root" && find . -xdev \( -path ./proc -o -path ./tmp -o -path ./var/log -o -path ./var/cache/apt -o \
    -path ./var/cache/ldconfig \) -prune -o ! -name '*-old' -print | sort)
}

mirror=$(apt-get indextargets --format '$(REPO_URI)' "Codename: $release" "Created-By: Packages" | head -n 1)
echo "A bare $release ..."
debootstrap --variant=minbase "$release" "$root" "${mirror:-http://deb.debian.org/debian}" >"$work/log" 2>&1 ||
  { tail -n 20 "$work/log" >&2; exit 1; }
# The way to the mirror is this machine's.
apt-config dump | grep -iE '^Acquire::https?::' >"$root/etc/apt/apt.conf.d/90mirror" || true
mount -t proc proc "$root/proc"

echo "Installing what the package depends on ..."
depends=$(dpkg-deb -f "$package" Depends)
{ in_root apt-get update && in_root apt-get satisfy -y --no-install-recommends "$depends"; } >"$work/log" 2>&1 ||
  { tail -n 20 "$work/log" >&2; exit 1; }
cp "$package" "$root/tmp/quillbox.deb"
list_files >"$work/before"
in_root dpkg -i /tmp/quillbox.deb
list_files | comm -13 "$work/before" - | sed 's/^/  /'

# An ordinary user's folder has the same path inside and outside, so that both can use it.
shared=$work/shared
mkdir -p "$root$shared/bin" "$root$shared/home" "$root$shared/out"
ln -s "$root$shared" "$shared"
build/release/bin/make_sample_disk "$shared/disk" >"$work/log"
for program in quillbox quillbox-regedit; do
  printf '#!/bin/sh\nexec /usr/bin/%s "$@"\n' $program >"$shared/bin/$program"
  chmod 755 "$shared/bin/$program"
done
chmod 755 "$work" "$root"
chown -R 1000:1000 "$root$shared"
in_root quillbox --version
in_root quillbox-cli --version
in_root bash -c '. /usr/share/bash-completion/completions/quillbox-cli && complete -p quillbox-cli'
on_disk() {
  command=$1
  shift
  in_root_as 1000:1000 "$shared/home" quillbox-cli "$command" "$shared/disk/C" --profile "Ann Miller" --drive "D=$shared/disk/D" "$@"
}
on_disk list
on_disk mail --to "$shared/out/mail"
# The display is this machine's; its key is handed in.
cat >"$work/trial" <<'TRIAL'
set -eu
cp "$XAUTHORITY" "$shared/key"
chmod 644 "$shared/key"
umask 0
export XAUTHORITY="$shared/key" HOME="$shared/home" QUILLBOX_WALKTHROUGH=1 NO_AT_BRIDGE=1
export QUILLBOX_RUN="chroot --userspec=1000:1000 $root"
tools/walkthrough.sh "$shared/bin" "$shared/disk" "$shared/out"
TRIAL
export root shared
xvfb-run -a -s "-screen 0 1280x800x24" sh "$work/trial"
mkdir -p build/package
cp "$shared/out/window.png" build/package/window.png

in_root dpkg --purge quillbox
rm -rf "${root:?}$shared"
list_files >"$work/after"
if ! comm -3 "$work/before" "$work/after" >"$work/difference" || [ -s "$work/difference" ]; then
  echo "Purging left a difference (first column: missing, second: left over):" >&2
  cat "$work/difference" >&2
  exit 1
fi
echo "Purged without a rest. $(stat -c %s "$package") bytes  $package"

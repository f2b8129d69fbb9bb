#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# tools/build-windows.sh: builds the programs for 64-bit Windows and packs them into build/quillbox-VERSION-windows.zip.
# The first run builds wxWidgets too; see tools/wxwidgets-windows.sh.
set -eu
cd "$(dirname "$0")/.."
tools/setup.sh debian-packages.txt debian-packages-windows-app.txt
QUILLBOX_WXWIDGETS=$(tools/wxwidgets-windows.sh)
export QUILLBOX_WXWIDGETS
cmake --workflow --preset windows-app

built=build/windows-app
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$built/CMakeCache.txt")
name=quillbox-$version-windows
package=$built/$name
rm -rf "$package"
mkdir -p "$package/offline" "$package/docs" "$package/licences"
# regedit.exe has a folder of its own: beside quillbox.exe the system would take it for its own editor.
for program in quillbox.exe offline/regedit.exe; do
  x86_64-w64-mingw32-strip -o "$package/$program" "$built/bin/$program"
  libraries=$(x86_64-w64-mingw32-objdump -p "$package/$program" | sed -n 's/^.*DLL Name: \(lib.*\)/\1/p')
  [ -z "$libraries" ] || { echo "$program needs what no Windows has: $libraries" >&2; exit 1; }
done
cp README.md CHANGELOG.md "$package"
cp docs/windows.md docs/main-window.png "$package/docs"
cp -R "$built/bin/docs/." "$package/docs"
cp docs/windows-licences.txt "$package/licences/README.txt"
cp "$QUILLBOX_WXWIDGETS"/share/doc/*.txt "$package/licences"
cp /usr/share/doc/mingw-w64-common/copyright "$package/licences/mingw-w64.txt"
cp /usr/share/doc/gcc-mingw-w64-base/copyright "$package/licences/gcc.txt"

zip=$PWD/build/$name.zip
rm -f "$zip"
(cd "$built" && cmake -E tar cf "$zip" --format=zip "$name")
(cd "$built" && find "$name" -type f -printf '%10s bytes  %P\n' | sort -k 3)
echo "$(stat -c %s "$zip") bytes  $zip"

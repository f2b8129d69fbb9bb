#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# tools/wxwidgets-windows.sh: prints the folder of wxWidgets for 64-bit Windows. Builds it there when it is missing, from
# Debian's source package of the version that is installed for this machine's own programs: about 15 minutes with two
# processors. The folder is in the user's cache, for all trees of the project; its name says the version and what else
# decides about the result.
set -eu
export LC_ALL=C

# What the program does not use is left out: less to build, and less in the program.
options="--host=x86_64-w64-mingw32 --disable-shared --enable-monolithic --enable-accessibility
  --disable-tests --disable-precomp-headers --without-subdirs
  --without-regex --without-libpng --without-libjpeg --without-libtiff --without-zlib --without-expat --without-liblzma
  --without-opengl
  --disable-protocols --disable-url --disable-sockets --disable-webrequest --disable-ipc --disable-fs_inet
  --disable-fs_archive --disable-fs_zip --disable-arcstream --disable-tarstream --disable-zipstream
  --disable-dialupman --disable-debugreport --disable-dbghelp --disable-fswatcher --disable-secretstore
  --disable-sound --disable-joystick --disable-docview --disable-mdi --disable-mdidoc --disable-help
  --disable-mshtmlhelp --disable-html --disable-htmlhelp --disable-xrc --disable-aui --disable-propgrid
  --disable-ribbon --disable-stc --disable-richtext --disable-webview --disable-webviewie --disable-mediactrl
  --disable-printarch --disable-postscript --disable-svg --disable-graphics-d2d --disable-grid
  --disable-calendar --disable-datepick --disable-timepick --disable-splash --disable-tipdlg --disable-wizarddlg
  --disable-prefseditor --disable-notifmsg
  --disable-taskbaricon --disable-animatectrl --disable-commandlinkbutton --disable-treelist --disable-treebook
  --disable-toolbook --disable-listbook --disable-choicebook --disable-filehistory --disable-fsvolume"
compiler=x86_64-w64-mingw32
flags="-O2 -ffunction-sections -fdata-sections"

version=$(dpkg-query -W -f '${source:Version}' libwxgtk3.2-dev)
kind=$(echo "$options $flags $($compiler-g++-posix -dumpfullversion)" | cksum | cut -d ' ' -f 1)
cache=${XDG_CACHE_HOME:-$HOME/.cache}/quillbox
folder=$cache/wxwidgets-$version-$kind
if [ -d "$folder" ]; then
  echo "$folder"
  exit 0
fi

# Everything happens beside it, and it takes its name when it is whole.
mkdir -p "$cache"
work=$(mktemp -d "$cache/building-XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
# Messages go to standard error, the folder alone to standard output.
exec 3>&1 >&2
echo "Building wxWidgets $version for Windows in $folder, once."

# The system's own lists and settings stay as they are. Where they name no sources, the ones of its packages are used.
mkdir -p "$work/lists/partial" "$work/parts"
apt="-o Dir::State::lists=$work/lists -o Dir::Cache=$work/cache -o APT::Sandbox::User="
if [ -z "$(apt-get indextargets 'Created-By: Sources')" ]; then
  sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources > "$work/parts/debian.sources"
  apt="$apt -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts=$work/parts"
fi
cd "$work"
# shellcheck disable=SC2086 # options
apt-get -q $apt update
# shellcheck disable=SC2086 # options
apt-get -q $apt source "wxwidgets3.2=$version"
mv wxwidgets3.2-*/ source

mkdir build
cd build
# Windows 7 is the oldest that the program runs on.
# shellcheck disable=SC2086 # options
../source/configure $options --prefix="$folder" CC=$compiler-gcc-posix CXX=$compiler-g++-posix \
  CPPFLAGS=-D_WIN32_WINNT=0x0601 CFLAGS="$flags" CXXFLAGS="$flags" > ../configure.log ||
  { tail -n 30 ../configure.log; exit 1; }
make -j "$(nproc)" > ../make.log || { tail -n 30 ../make.log; exit 1; }
make install DESTDIR="$work/stage" > ../install.log
mkdir -p "$work/stage$folder/share/doc"
cp ../source/docs/licence.txt "$work/stage$folder/share/doc/wxwidgets.txt"
sed -n '/^\/\*/,/\*\//p;/\*\//q' ../source/3rdparty/nanosvg/src/nanosvg.h > "$work/stage$folder/share/doc/nanosvg.txt"
mv -T "$work/stage$folder" "$folder"
echo "$folder" >&3

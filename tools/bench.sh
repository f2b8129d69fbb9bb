#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Prints one table of what Quillbox takes beside other programs. Needs a built preset "release", a quiet machine and 10 GB.
#   tools/bench.sh [FOLDER]    FOLDER is where the files are made; a folder for temporary files without it
set -eu
cd "$(dirname "$0")/.."
folder=${1:-${TMPDIR:-/tmp}}
printf '%s\n' '| What | Quillbox | Beside it | It takes | Ratio |' '|---|---|---|---|---|'
for name in export hive search copy replace store; do
  "build/release/bin/${name}_bench" "$folder"
done

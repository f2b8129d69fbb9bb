#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: man_pages_test.sh BIN
# The options that each program's help names are those of its man page, which groff formats without a warning.
set -eu
pages=$(cd "$(dirname "$0")/../../packaging" && pwd)

# The options in a text: --words, and the registry editor's with a slash.
options() {
  grep -oE '(^|[^[:alnum:]/_-])(--[a-z][a-z0-9-]*|/[a-z](:A)?)($|[^[:alnum:]/:_.-])' |
    grep -oE '(--[a-z][a-z0-9-]*|/[a-z](:A)?)' | sort -u
}

failed=0
# check PAGE HELP: holds a page against a help text.
check() {
  warnings=$(groff -man -Tutf8 -ww -z "$pages/$1.1" 2>&1)
  [ -z "$warnings" ] || { echo "$1.1: $warnings" >&2; failed=1; }
  shown=$(groff -man -Tascii -P-c -rLL=500n "$pages/$1.1" | sed 's/.\x08//g')
  in_page=$(printf '%s\n' "$shown" | sed 's/[|[]/ /g' | options)
  in_help=$(printf '%s\n' "$2" | options)
  [ "$in_page" = "$in_help" ] && [ -n "$in_help" ] && return
  printf '%s.1 names:\n%s\nthe help names:\n%s\n' "$1" "$in_page" "$in_help" >&2
  failed=1
}

check quillbox "$("$1/quillbox" --help)
-h"
# It prints its help when it is given nothing to do.
check quillbox-regedit "$("$1/regedit" 2>&1 || true)"
if [ -x "$1/quillbox-cli" ]; then
  check quillbox-cli "$(
    "$1/quillbox-cli" --help
    for command in list backup restore mail contacts report check; do "$1/quillbox-cli" $command --help; done
  )"
fi
exit $failed

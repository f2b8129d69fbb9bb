#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Lists lines that are in src/ twice: runs of at least LINES lines that say something, blanks and comments aside.

usage: duplicates.py [--list]

Lines that every file begins or ends alike (includes, namespaces, braces alone) do not count. A run that is accepted is a
line of tools/duplicates.accepted, "FILE FILE: reason"; the program ends with 1 when another one is found, or when an
accepted pair has none any more. --list shows the lines of each run.
"""
import collections
import pathlib
import re
import sys

LINES = 8
PLAIN = re.compile(r"^(#.*|//.*|namespace.*|[\W_]*|(public|private|protected):|break;|return;|using .*;)$")


def telling(path):
    """The lines of a file that count: number and text without its blanks."""
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        text = line.strip()
        if not PLAIN.match(text):
            yield number, re.sub(r"\s+", " ", text)


def runs(files):
    """The runs that two places share, as (file, line, file, line, lines), each at its full length."""
    lines = {path: list(telling(path)) for path in files}
    places = collections.defaultdict(list)
    for path in files:
        for at in range(len(lines[path]) - LINES + 1):
            places[tuple(text for _, text in lines[path][at:at + LINES])].append((path, at))
    for found in places.values():
        for i, (one, a) in enumerate(found):
            for other, b in found[i + 1:]:
                first, second = lines[one], lines[other]
                if a and b and first[a - 1][1] == second[b - 1][1]:
                    continue
                length = 0
                while (a + length < len(first) and b + length < len(second)
                       and first[a + length][1] == second[b + length][1]):
                    length += 1
                yield one, first[a][0], other, second[b][0], [text for _, text in first[a:a + length]]


def accepted_pairs(file):
    """The pairs of files of a list, each line "FILE FILE: reason"."""
    for line in file.read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            pair, reason = line.split(":", 1)
            assert reason.strip(), f"{file}: no reason: {line}"
            yield tuple(sorted(pair.split()))


def main():
    top = pathlib.Path(__file__).resolve().parent.parent
    files = sorted(path for path in (top / "src").rglob("*") if path.suffix in (".cpp", ".h"))
    accepted = set(accepted_pairs(top / "tools/duplicates.accepted"))
    used, failed = set(), False
    for one, line, other, second, shared in runs(files):
        names = str(one.relative_to(top)), str(other.relative_to(top))
        if tuple(sorted(names)) in accepted:
            used.add(tuple(sorted(names)))
            continue
        failed = True
        print(f"{names[0]}:{line} and {names[1]}:{second}: {len(shared)} lines are the same")
        if "--list" in sys.argv:
            print("".join(f"    {text}\n" for text in shared), end="")
    for pair in sorted(accepted - used):
        failed = True
        print("tools/duplicates.accepted names", " and ".join(pair), "which share nothing any more")
    return 1 if failed else 0


sys.exit(main())

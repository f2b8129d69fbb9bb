# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes one-token changes to the tables of a source tree, runs the tests, and lists the changes that survive.

Called by mutants.sh with the work tree, its build folder and the options."""

import argparse
import pathlib
import random
import re
import subprocess
import sys

# Which files are tried, which test programs can see a change in them, and the tests that most likely do: those run
# first, all others only when these saw nothing.
TARGETS = [
    ("src/settings/", ["forms_test"], "Form12Test.*:Form13Test.*"),
    ("src/backup/registry_items.cpp", ["forms_test"], "RegistryItemsTest.*"),
    ("src/backup/", ["forms_test", "backup_test"], "QuickBackupTest.*:CompleteBackupTest.*:Form1Test.*"),
    ("src/reports/", ["reports_test", "forms_test"], "*"),
    ("src/ui/forms/main_window", ["forms_test"], "Form1Test.*"),
    ("src/ui/forms/search_window.cpp", ["forms_test"], "Form2Test.*:Form1Test.*"),
    ("src/ui/forms/", ["forms_test"], "*"),
]

# Tokens that can stand for one another.
GROUPS = [
    "true false",
    "MenuState::On MenuState::Off",
    "Settings Mail News Rules Machine WebMain WebToolbar",
    "kOnOff kOffOn kDigits",
    "kWritesOnOff kWritesNothing",
    "kWritesChoice kWritesOnOff",
    "ShownAs::Choice ShownAs::Digits ShownAs::DigitsOrOff ShownAs::Minutes ShownAs::Text ShownAs::TextOrNoneSelected",
    "WrittenAs::Choice WrittenAs::Number WrittenAs::Text",
    "RegistryRoot::CurrentUser RegistryRoot::LocalMachine",
    "FolderMessage::WithFullStop FolderMessage::WithBlank FolderMessage::WithoutEnding",
    "KeyForm::Quoted KeyForm::Plain KeyForm::PlainAfterOneBlank",
    "MessageIcon::Exclamation MessageIcon::Question MessageIcon::None",
    "MessageButtons::YesNo MessageButtons::OkCancel MessageButtons::YesNoCancel",
    "MessageAnswer::Yes MessageAnswer::No",
    "Colour::Red Colour::Default",
    "Pop3Uidl::Skip Pop3Uidl::Copy",
    "CopyPart::OnlyFile CopyPart::OneOfSeveral",
    "ReportFormat::Text ReportFormat::Html",
    "ValueType::Sz ValueType::ExpandSz",
    "OnFailure::Tell OnFailure::LogOnly OnFailure::TellUnlessMissing",
    "RegistryItem::AddressBook RegistryItem::Machine RegistryItem::Accounts RegistryItem::AllIdentities",
]
NEXT = {}
for group in GROUPS:
    words = group.split()
    for index, word in enumerate(words):
        NEXT.setdefault(word, words[(index + 1) % len(words)])

# Lines whose texts nobody but a programmer sees, and those that are no table. The name that a handler runs by is in the
# log only.
SKIPPED = re.compile(
    r"^\s*(#|//|///|namespace|using|static_assert|case )|GetLog\(\)|log_\.|logic_error|invalid_argument|spokenName|isShort"
    r'|RunHandler\("'
)
# The first line of a function that only arranges controls: shares of the space and columns have no right value.
LAYOUT = re.compile(r"^(std::vector<)?LayoutNode.* .*\{$")
TOKEN = re.compile(r'"(?:[^"\\]|\\.)*"|\b[A-Za-z_]\w*(?:::\w+)*|\b\d+\b|//.*')


def changed(token):
    """The token with one change, or None."""
    if token == '""':
        return '"x"'
    if token.startswith('"'):
        places = [i for i, c in enumerate(token) if c.isalnum() and token[i - 1] not in "\\%"]
        if not places:
            return None
        at = places[len(places) // 2]
        return token[:at] + ("w" if token[at] != "w" else "v") + token[at + 1 :]
    if token.isdigit():
        return str(int(token) + 1)
    return NEXT.get(token)


def mutants(tree, only):
    """Every change: file, line, column, the text of the line before and of this one, token, other token."""
    for start, _, _ in TARGETS:
        for path in sorted(tree.glob("src/**/*.cpp")):
            name = str(path.relative_to(tree))
            if not name.startswith(start) or target_of(name)[0] != start or only not in name:
                continue
            lines = path.read_text().split("\n")
            arranges = False
            for number, line in enumerate(lines):
                arranges = line != "}" and (arranges or bool(LAYOUT.match(line)))
                if arranges or SKIPPED.search(line):
                    continue
                for match in TOKEN.finditer(line):
                    other = changed(match.group())
                    if other:
                        place = f"{lines[number - 1].strip()} {line.strip()}".strip()
                        yield name, number, match.start(), place, match.group(), other


def target_of(name):
    return next(row for row in TARGETS if name.startswith(row[0]))


def equivalents(file):
    rows = [line for line in file.read_text().split("\n") if line.strip() and not line.startswith("#")]
    return {tuple(part.strip() for part in row.split(" :: ")[:3]) for row in rows}


def key(mutant):
    name, _, _, place, old, new = mutant
    return name, place, f"{old} -> {new}"


def run(command, seconds):
    try:
        return subprocess.run(command, capture_output=True, timeout=seconds, check=False).returncode
    except subprocess.TimeoutExpired:
        return "timeout"


def build(folder, programs):
    return run(["cmake", "--build", folder, "--target", "regedit", *programs], 3600)


def is_noticed(folder, programs, first):
    rounds = [[programs[0], first], *[[program, "*"] for program in programs]]
    for program, tests in rounds[1:] if first == "*" else rounds:
        if run([f"{folder}/bin/{program}", "--gtest_fail_fast", f"--gtest_filter={tests}"], 600) != 0:
            return True
    return False


def attempt(tree, folder, mutant):
    """"killed", "survived" or "not built"; the file is as it was afterwards."""
    name, number, column, _, old, new = mutant
    file = tree / name
    before = file.read_text()
    lines = before.split("\n")
    lines[number] = lines[number][:column] + new + lines[number][column + len(old) :]
    _, programs, first = target_of(name)
    try:
        file.write_text("\n".join(lines))
        if build(folder, programs) != 0:
            return "not built"
        return "killed" if is_noticed(folder, programs, first) else "survived"
    finally:
        file.write_text(before)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("tree", type=pathlib.Path)
    parser.add_argument("build")
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--all", action="store_true")
    parser.add_argument("--only", default="")
    parser.add_argument("--list", action="store_true")
    options = parser.parse_args()

    known = equivalents(pathlib.Path(__file__).with_name("mutants.equivalent"))
    everything = list(mutants(options.tree, options.only))
    tried = [mutant for mutant in everything if key(mutant) not in known]
    print(f"{len(everything)} changes, {len(everything) - len(tried)} of them known to make no difference", flush=True)
    if not options.all and len(tried) > options.count:
        tried = sorted(random.Random(options.seed).sample(tried, options.count))
    if options.list:
        for mutant in tried:
            print(" :: ".join(key(mutant)))
        return 0

    programs = sorted({program for mutant in tried for program in target_of(mutant[0])[1]})
    if build(options.build, programs) != 0:
        sys.exit("the tree as it is does not build")
    if any(is_noticed(options.build, [program], "*") for program in programs):
        sys.exit("tests fail in the tree as it is")
    counts = {"killed": 0, "survived": 0, "not built": 0}
    for number, mutant in enumerate(tried):
        print(f"{number}/{len(tried)}", end="\r", file=sys.stderr, flush=True)
        outcome = attempt(options.tree, options.build, mutant)
        counts[outcome] += 1
        if outcome == "survived":
            print(f"{mutant[0]}:{mutant[1] + 1}: survived: " + " :: ".join(key(mutant)), flush=True)
    print(", ".join(f"{count} {outcome}" for outcome, count in counts.items()))
    return 1 if counts["survived"] else 0


sys.exit(main())

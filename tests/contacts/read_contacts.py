# SPDX-License-Identifier: GPL-3.0-or-later
"""read_contacts.py vcard|csv|ldif FILE: what readers that we did not write find in a file of contacts, one value a line."""
import csv
import sys


def vcard(path):
    import vobject
    with open(path, encoding="utf-8", newline="") as file:
        for card in vobject.readComponents(file):
            for line in card.getChildren():
                types = ",".join(sorted(line.params.get("TYPE", [])))
                value = line.value
                if line.name == "N":
                    value = [value.family, value.given, value.additional, value.prefix, value.suffix]
                elif line.name == "ADR":
                    value = [value.extended, value.street, value.city, value.region, value.code, value.country]
                yield line.name + ("[" + types + "]" if types else ""), value
            yield "-", ""


def table(path):
    with open(path, encoding="utf-8", newline="") as file:
        for row in csv.DictReader(file, strict=True):
            assert None not in row and None not in row.values(), "a row is longer or shorter than the headings"
            yield from ((name, value) for name, value in row.items() if value)
            yield "-", ""


def ldif_entries(path):
    import ldif
    with open(path, "rb") as file:
        reader = ldif.LDIFRecordList(file)
        reader.parse()
    for name, attributes in reader.all_records:
        yield "dn", name
        for attribute, values in attributes.items():
            yield attribute, [value.decode("utf-8") for value in values]
        yield "-", ""


for name, value in {"vcard": vcard, "csv": table, "ldif": ldif_entries}[sys.argv[1]](sys.argv[2]):
    text = value if isinstance(value, str) else "|".join(v if isinstance(v, str) else "+".join(v) for v in value)
    sys.stdout.buffer.write((name + " " + text.replace("\n", "\\n") + "\n").encode("utf-8"))

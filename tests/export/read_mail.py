# SPDX-License-Identifier: GPL-3.0-or-later
"""read_mail.py mbox|files|maildir FOLDER: the messages of an export, as Python's own readers see them: for each a line
"FOLDER|SUBJECT|FLAGS|LENGTH", and its bytes behind it."""
import email
import email.header
import mailbox
import os
import re
import sys

NAMES = rb"(?:X-Mozilla-Status2?|X-Mozilla-Keys|Status|X-Status):"
OWN = re.compile(NAMES + rb"[^\n]*\n", re.I)
ORIGINAL = re.compile(rb"^X-Original-(?=(?:X-Original-)*" + NAMES + rb")", re.I | re.M)


def give(folder, message, flags, content):
    subject = str(email.header.make_header(email.header.decode_header(message["subject"] or "")))
    sys.stdout.buffer.write(("%s|%s|%s|%d\n" % (folder, subject, flags, len(content))).encode("utf-8") + content)


def mbox(top):
    for folder, _, names in sorted(os.walk(top)):
        for name in sorted(names):
            box = mailbox.mbox(os.path.join(folder, name), create=False)
            for key in box.keys():
                content = box.get_bytes(key)
                for _ in range(5):
                    content = content[OWN.match(content).end():]
                header, gap, body = content.partition(b"\r\n\r\n")
                content = re.sub(rb"(?m)^>(>*From )", rb"\1", ORIGINAL.sub(b"", header) + gap + body)
                content = re.sub(rb"\r\n\n\Z|(?<=\n)\r\n\Z|(?<=\n)\n\Z", b"", content)
                shown = os.path.relpath(os.path.join(folder, name), top).replace(".sbd", "")
                give(shown, box[key], "".join(sorted(box[key].get_flags())), content)


def files(top):
    for folder, _, names in sorted(os.walk(top)):
        for name in sorted(names):
            with open(os.path.join(folder, name), "rb") as file:
                content = file.read()
            assert name.endswith(".eml"), name
            give(os.path.relpath(folder, top), email.message_from_bytes(content), "", content)


def maildir(top):
    for identity in sorted(os.listdir(top)):
        root = mailbox.Maildir(os.path.join(top, identity), create=False)
        for folder in [""] + sorted(root.list_folders()):
            box = root.get_folder(folder) if folder else root
            for key in sorted(box.keys()):
                flags = "".join(sorted(box[key].get_flags()))
                give(os.path.join(identity, folder.replace(".", "/")), box[key], flags, box.get_bytes(key))


{"mbox": mbox, "files": files, "maildir": maildir}[sys.argv[1]](sys.argv[2])

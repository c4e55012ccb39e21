"""Prints what Python's email package makes of each message under the folders given: a line "file NAME" and then, for
each part that is no container, its decoded length and CRC-32. The oracle of tests/mailbox/mime/corpus_test.cpp."""
import email
import os
import sys
import zlib


def leaves(part):
    if part.get_content_type() in ("message/rfc822", "message/global") or part.get_content_maintype() == "multipart":
        if part.is_multipart():
            for child in part.get_payload():
                yield from leaves(child)
            return
    yield part


def line(part):
    if part.is_multipart():  # message/delivery-status and its like: taken apart there, content here
        return "any"
    data = part.get_payload(decode=True)
    return f"{len(data)} {zlib.crc32(data)}"


for root in sys.argv[1:]:
    for folder, _, names in sorted(os.walk(root)):
        for name in sorted(names):
            if not name.endswith((".msg", ".eml")) and "messages" not in folder:
                continue
            path = os.path.join(folder, name)
            with open(path, "rb") as file:
                message = email.message_from_bytes(file.read())
            print("file", os.path.relpath(path, root))
            for part in leaves(message):
                print(line(part))

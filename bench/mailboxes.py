"""Three mailboxes from a seed, for the side-by-side runs.

A  2,000 messages, 1 to 3 attachments of 1 to 400 KB
B  50,000 messages with 1 or 2 of 1 to 20 KB
C  20 messages of 40 to 60 MB
"""
import base64
import binascii
import collections
import hashlib
import pathlib
import json
import random
import sys

Shape = collections.namedtuple("Shape", "messages attachments size")
SHAPES = {
    "A": Shape(2_000, (1, 3), (1_000, 400_000)),
    "B": Shape(50_000, (1, 2), (1_000, 20_000)),
    "C": Shape(20, (1, 1), (29_000_000, 44_000_000)),  # decoded: base64 and line ends make 40 to 60 MB of it
}
EXTENSIONS = ["pdf", "png", "docx", "zip", "jpg", "xlsx"]


def encoded(content):
    """Base64 in lines of 76 columns, as mail programs write it."""
    text = binascii.b2a_base64(content, newline=False)
    return b"\n".join(text[i:i + 76] for i in range(0, len(text), 76)) if len(text) < 1_000_000 else base64.encodebytes(content)[:-1]


def message(number, contents, words):
    boundary = b"=_part_%d" % number
    subject = b" ".join(words.choices([b"report", b"invoice", b"minutes", b"photos", b"draft", b"order"], k=3))
    day = 1 + number % 28
    parts = [
        b"From: Sender %d <sender%d@example.org>\nTo: Reader <reader@example.org>\nSubject: %s %d\n"
        b"Date: Wed, %02d Jan 2025 %02d:%02d:%02d +0000\nMessage-ID: <%d@example.org>\nMIME-Version: 1.0\n"
        b'Content-Type: multipart/mixed; boundary="%s"\n\n'
        % (number % 97, number % 97, subject, number, day, number // 3600 % 24, number // 60 % 60, number % 60, number, boundary),
        b"--%s\nContent-Type: text/plain; charset=utf-8\n\nHello,\n\nhere is what you asked for.\n\n" % boundary,
    ]
    for index, content in enumerate(contents):
        name = b"file-%d-%d.%s" % (number, index, words.choice(EXTENSIONS).encode())
        parts.append(
            b"\n--%s\nContent-Type: application/octet-stream; name=\"%s\"\nContent-Disposition: attachment; filename=\"%s\"\n"
            b"Content-Transfer-Encoding: base64\n\n%s" % (boundary, name, name, encoded(content)))
    parts.append(b"\n--%s--\n" % boundary)
    return b"".join(parts)


def make(folder, letter, seed=1, scale=1.0):
    """Writes a Maildir and gives the SHA-256 of every attachment in it, as a multiset."""
    shape = SHAPES[letter]
    words = random.Random(f"{seed}{letter}")
    maildir = pathlib.Path(folder)
    for part in ("cur", "new", "tmp"):
        (maildir / part).mkdir(parents=True)
    digests = collections.Counter()
    for number in range(max(1, int(shape.messages * scale))):
        contents = [words.randbytes(words.randint(*shape.size)) for _ in range(words.randint(*shape.attachments))]
        digests.update(hashlib.sha256(content).hexdigest() for content in contents)
        (maildir / "cur" / f"{1700000000 + number}.M{number}.bench:2,S").write_bytes(message(number, contents, words))
    return digests


if __name__ == "__main__":  # FOLDER LETTER SCALE: makes one, and prints its digests
    print(json.dumps(make(sys.argv[1], sys.argv[2], scale=float(sys.argv[3]))))

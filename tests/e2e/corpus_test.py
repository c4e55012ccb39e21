"""Real and hard mail: what is saved compared with Python's email package, and the way there and back.

Messages are read from ../shared/corpus; the test is skipped where that is not there. Prints how many were compared.
"""
import email
import hashlib
import unittest
from collections import Counter
from pathlib import Path

from harness import CORPUS, Case, main

# Python leaves this part undecoded: a blank stands behind its "base64".
PYTHON_IS_WRONG = {"twopart.msg"}


def corpus() -> list:
    kept = {".msg", ".eml"}
    return [p for p in sorted(CORPUS.rglob("*"))
            if p.is_file() and (p.suffix in kept or p.parent.name in ("messages", "smime") and p.suffix == ".txt")]


def leaves(message):
    """The parts that a person would call files or texts; what is inside an embedded message belongs to that."""
    if message.get_content_maintype() == "message" or not message.is_multipart():
        yield message
        return
    for part in message.get_payload():
        yield from leaves(part)


def named(content: bytes) -> list:
    """(type, name, content) of the parts with a file name and of embedded messages; the latter have no content here."""
    result = []
    for part in leaves(email.message_from_bytes(content)):
        embedded = part.get_content_type() == "message/rfc822" and part.is_multipart()
        if part.get_filename() or embedded:
            result.append((part.get_content_type(), part.get_filename(),
                           None if embedded else part.get_payload(decode=True)))
    return result


class Corpus(Case):
    def setUp(self):
        super().setUp()
        self.source = {}
        for path in corpus():
            self.source["Inbox/" + self.home.add(path).name.split(":")[0]] = path

    def bytes_of(self) -> dict:
        return {"Inbox/" + p.name.split(":")[0]: p.read_bytes() for p in self.home.messages()}

    def test_every_message_is_listed_and_shown(self):
        self.home.set()
        listed = self.home.run("--json", "list")
        self.assertEqual((listed.status, listed.err), (0, ""))
        self.assertEqual({entry["id"] for entry in listed.json}, set(self.source))
        for entry in listed.json[::4]:
            shown = self.home.run("--json", "show", entry["id"])
            self.assertEqual((shown.status, shown.err), (0, ""), entry)
            self.assertEqual({**shown.json, **entry}, shown.json)

    def test_what_is_saved_is_what_python_decodes(self):
        self.home.set()
        before = self.bytes_of()
        types = {entry["id"]: entry["type"] for entry in self.home.run("--json", "list").json}
        done = self.home.run("--json", "save")
        self.assertEqual((done.status, done.err), (0, ""))
        self.assertEqual(self.bytes_of(), before)
        saved = {}
        for entry in done.json["saved"]:
            saved.setdefault(entry["item"], []).append(Path(entry["path"]).read_bytes())
            self.assertEqual(Path(entry["path"]).parent, self.home.saved)
        compared = files = 0
        for item, path in self.source.items():
            message = email.message_from_bytes(path.read_bytes())
            if types[item] not in ("MailItem", "PostItem"):
                self.assertNotIn(item, saved)
                continue
            if path.name in PYTHON_IS_WRONG or message.get_content_type().count("/") != 1:
                continue
            # What a winmail.dat holds is saved, not the winmail.dat.
            wanted = Counter(data for kind, _, data in named(path.read_bytes())
                             if data is not None and kind != "application/ms-tnef")
            missing = wanted - Counter(saved.get(item, []))
            self.assertFalse([len(data) for data in missing], f"bytes not saved of {path.name}")
            compared, files = compared + 1, files + sum(wanted.values())
        print(f"\n{compared} messages, {files} files equal to what Python decodes, {len(done.json['saved'])} saved")
        self.assertGreater(compared, 90)

    def test_there_and_back(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        done = self.home.run("--json", "save")
        self.assertIn(done.status, (0, 1))
        stripped = {entry["id"]: entry["new_id"] for entry in done.json["items"]}
        after = self.bytes_of()
        for item, path in self.source.items():
            if item not in stripped:
                self.assertEqual(after[item], path.read_bytes(), path.name)
        contents = Counter(Path(entry["path"]).read_bytes() for entry in done.json["saved"])
        attachments = {e["id"]: e["attachments"] for e in self.home.run("--json", "list").json}
        back = self.home.run("--json", "restore", *stripped.values())
        self.assertEqual((back.status, back.err), (0, ""))
        restored = {entry["id"]: entry["new_id"] for entry in back.json["items"]}
        self.assertEqual(set(restored), set(stripped.values()))
        now = self.bytes_of()
        parts = same = 0
        for item, stripped_id in stripped.items():
            before = self.source[item].read_bytes()
            with self.subTest(self.source[item].name):
                self.assertEqual(self.parts(now[restored[stripped_id]]), self.parts(before))
            parts += len(self.parts(before))
            same += now[restored[stripped_id]] == before
        self.assertTrue(contents and attachments)
        print(f"\n{len(stripped)} messages there and back, {parts} parts equal, {same} messages the very same bytes")

    @staticmethod
    def parts(content: bytes) -> list:
        return [(kind, name, len(data), hashlib.sha1(data).hexdigest()) for kind, name, data in named(content)
                if kind != "message/rfc822"]


if __name__ == "__main__":
    main(needs_corpus=True)

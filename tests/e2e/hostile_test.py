"""Bad input and bad surroundings: one clear sentence, the rest goes on, and no message is harmed."""
import os
import shutil
import subprocess
import unittest
from pathlib import Path

import harness
from harness import Case, mail, main, parsed

CONTENT = b"content of an attachment\n"


def nested(depth: int) -> bytes:
    """Multiparts within multiparts, with a file in the innermost."""
    lines = ["From: a@example.org", "Subject: deep", "MIME-Version: 1.0"]
    for i in range(depth):
        lines += [f"Content-Type: multipart/mixed; boundary=b{i}", "", f"--b{i}"]
    lines += ['Content-Disposition: attachment; filename="deep.txt"', "", "deep"]
    for i in reversed(range(depth)):
        lines += [f"--b{i}--"]
    return "\r\n".join(lines).encode() + b"\r\n"


class BadMessages(Case):
    def test_no_strange_message_stops_the_others_or_changes(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        strange = {
            "empty": b"",
            "one line feed": b"\n",
            "zeros": b"\0" * 5000,
            "noise": bytes((i * 7919 + i // 255) % 256 for i in range(20_000)),
            "header without an end": b"Subject: x" + b"y" * 100_000,
            "a boundary that never comes": b"Content-Type: multipart/mixed; boundary=q\r\n\r\ntext\r\n",
            "an empty boundary": b'Content-Type: multipart/mixed; boundary=""\r\n\r\n--\r\n\r\n----\r\n',
            "deep": nested(3000),
            "lots of addresses": b"From: " + b"(" * 50_000 + b"\r\nTo: " + b"a:" * 50_000 + b";\r\n\r\nx",
            "lone surrogates": b"Subject: \xed\xa0\x80\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n\xed\xb0\x80\xff",
            "one long line": b"Subject: long\r\n\r\n" + b"z" * 3_000_000,
        }
        paths = [self.home.add(content) for content in strange.values()]
        before = {p.name: p.read_bytes() for p in paths}
        self.home.add(mail(files=[("good.txt", CONTENT)]))
        done = self.home.run("save")
        self.assertIn(done.status, (0, 1), done)
        self.assertEqual(self.home.saved_files().get("good.txt"), CONTENT)
        after = {p.name: p.read_bytes() for p in self.home.messages()}
        for name, content in before.items():
            if name in after:
                self.assertEqual(after[name], content)
        for arguments in (["list"], ["--json", "list"], *(["--json", "show", i] for i in range(1, len(strange) + 2))):
            listed = self.home.run(*arguments)
            self.assertEqual(listed.status, 0, listed)

    def test_an_unreadable_message_is_reported_and_the_others_are_saved(self):
        if os.geteuid() == 0 and not drop_possible():
            self.skipTest("everything is readable for root")
        self.home.set(RemoveAttachment=1)
        self.home.add(mail(subject="first", files=[("first.txt", CONTENT)]))
        locked = self.home.add(mail(subject="locked", files=[("locked.txt", CONTENT)]))
        self.home.add(mail(subject="last", files=[("last.txt", CONTENT)]))
        before = locked.read_bytes()
        locked.chmod(0)
        done = run_unprivileged(self.home, "save")
        self.assertEqual(done.status, 1, done)
        self.assertEqual(sorted(self.home.saved_files()), ["first.txt", "last.txt"])
        self.assertIn("quillfile: ", done.err)
        self.assertNotIn("Error occurred at line 0", done.err)
        self.assertEqual(locked.read_bytes() if os.geteuid() == 0 else before, before)

    def test_no_escape_sequence_reaches_the_terminal(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        raw = (b"From: \x1b]0;owned\x07 <a@example.org>\r\nSubject: \x1b[31mred\x9b31m\r\nMIME-Version: 1.0\r\n"
               b"Content-Type: multipart/mixed; boundary=q\r\n\r\n--q\r\n\r\nbody \x1b[2J\r\n--q\r\n"
               b'Content-Disposition: attachment; filename="\x1b[1m.txt"\r\n\r\nx\r\n--q--\r\n')
        self.home.add(raw)
        for arguments in (["list"], ["show", "1"], ["save"], ["show", "1"], ["forward", "1"], ["folders"]):
            done = self.home.run(*arguments)
            self.assertNotIn("\x1b", done.out + done.err)
            self.assertNotIn("\x07", done.out + done.err)


class BadPlaces(Case):
    def test_a_target_folder_that_is_a_file_is_one_sentence(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.saved.write_bytes(b"I am a file")
        before = self.home.add(mail(files=[("a.txt", CONTENT)])).read_bytes()
        done = self.home.run("save")
        self.assertEqual(done.status, 1)
        self.assertEqual(
            done.err,
            f"quillfile: Warning: Unable to create folder {self.home.saved}/ Please create it manually and try again.\n",
        )
        self.assertEqual(self.home.message(), before)

    def test_a_read_only_save_folder(self):
        if os.geteuid() == 0 and not drop_possible():
            self.skipTest("everything is writable for root")
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.saved.mkdir()
        before = self.home.add(mail(files=[("a.txt", CONTENT)])).read_bytes()
        self.home.saved.chmod(0o555)
        done = run_unprivileged(self.home, "save")
        self.assertEqual(done.status, 1, done)
        self.assertEqual(self.home.message(), before)

    def test_a_full_disk_leaves_the_messages_and_no_part_of_a_file(self):
        with small_disk(self, self.home.root / "small", "1m"):
            self.home.set(RemoveAttachment=1, AddURL=1, SavePath=f"{self.home.root}/small/")
            contents = {f"{i}.bin": bytes([i]) * 300_000 for i in range(6)}
            for name, content in contents.items():
                self.home.add(mail(subject=name, files=[(name, content)]))
            done = self.home.run("save")
            self.assertEqual(done.status, 1, done)
            files = {p.name: p.read_bytes() for p in (self.home.root / "small").iterdir()}
            for name, content in files.items():
                self.assertEqual(content, contents[name])
            kept = {part.get_filename() for p in self.home.messages() for part in parsed(p.read_bytes()).iter_attachments()}
            self.assertEqual(kept | set(files), set(contents) | {"Paperclip.ico"})
            self.assertTrue(files)

    def test_a_full_mail_store_leaves_the_messages_as_they_were(self):
        with small_disk(self, self.home.root / "mail", "1m") as disk:
            self.home.environment["QUILLFILE_MAIL"] = str(disk)
            self.home.maildir = disk
            self.home.set(RemoveAttachment=1, AddURL=1)
            before = [self.home.add(mail(subject=str(i), text="t" * 100_000, files=[(f"{i}.bin", b"x" * 1000)])).read_bytes()
                      for i in range(6)]
            (disk / "filler").write_bytes(b"f" * (int(shutil.disk_usage(disk).free) - 60_000))
            done = self.home.run("save")
            self.assertEqual(done.status, 1, done)
            self.assertEqual([p.read_bytes() for p in self.home.messages()], before)

    def test_leftovers_of_a_stopped_run_are_cleared(self):
        self.home.set()
        self.home.add(mail(files=[("a.txt", CONTENT)]))
        self.home.saved.mkdir()
        stale = self.home.saved / ".quillfile-999999999-1.part"
        stale.write_bytes(b"half")
        self.assertDone(self.home.run("save"))
        self.assertFalse(stale.exists())


class small_disk:
    """A tmpfs of a few bytes; the test is skipped where none can be mounted."""

    def __init__(self, case, path: Path, size: str):
        self.case, self.path, self.size = case, path, size

    def __enter__(self):
        self.path.mkdir()
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={self.size}", "tmpfs", self.path],
                                 capture_output=True, check=False)
        if mounted.returncode != 0:
            self.case.skipTest("no small disk can be mounted here")
        return self.path

    def __exit__(self, *_):
        subprocess.run(["umount", self.path], check=False)


def drop_possible() -> bool:
    return shutil.which("setpriv") is not None


def run_unprivileged(home, *arguments):
    """The program as somebody for whom permissions count."""
    if os.geteuid() != 0:
        return home.run(*arguments)
    # Root without the capability that overrides permissions still owns these files.
    program = harness.PROGRAM
    harness.PROGRAM = "/usr/bin/setpriv"
    try:
        return home.run("--bounding-set=-dac_override,-dac_read_search", "--inh-caps=-dac_override,-dac_read_search",
                        program, *arguments)
    finally:
        harness.PROGRAM = program



if __name__ == "__main__":
    main()

"""Mail with a winmail.dat through the real program: saved from with removal, shown rightly, restored.

The streams are those of the corpus and some that formats_tool writes; Python's email package says what a reader of mail
sees. A run is also stopped at each call that changes the disk: nothing that was in the container may be lost.
"""
import base64
import hashlib
import os
import pathlib
import shutil
import subprocess
import sys
from collections import Counter

from harness import CORPUS, Case, main, parsed

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from crash.program import build_shim  # noqa: E402

TOOL = pathlib.Path(os.environ.get("TOOLS", "")) / "formats_tool"
SOURCE = pathlib.Path(os.environ.get("SOURCE_DIR", pathlib.Path(__file__).resolve().parents[2]))
NOTE = "Attachment saved to"
FILES = {"report.pdf": b"%PDF \x00\xff\r\n" * 900, "b\u00e4r {1}.txt": b"plain\nlines\n", "one.bin": b"\x00"}


def winmail(stream: bytes, beside_text=True) -> bytes:
    """A message with the stream beside a plain text, or with nothing else."""
    container = (b'Content-Type: application/ms-tnef; name="winmail.dat"\nContent-Transfer-Encoding: base64\n\n'
                 + base64.encodebytes(stream))
    head = b"From: a@example.org\nSubject: Rich\nDate: Wed, 04 Mar 2009 14:05:00 +0000\nMIME-Version: 1.0\n"
    if not beside_text:
        return head + container
    return (head + b'Content-Type: multipart/mixed; boundary="b"\n\n--b\nContent-Type: text/plain\n\nHello\n--b\n'
            + container + b"--b--\n")


def leaves(message):
    for part in message.walk():
        if not part.is_multipart():
            yield part


def shown(content: bytes) -> str:
    """What a reader without rich text shows."""
    body = parsed(content).get_body(("html", "plain"))
    return body.get_content() if body else ""


class Winmail(Case):
    def streams(self):
        if CORPUS.is_dir():
            for path in sorted((CORPUS / "mimekit/tnef").glob("*.tnef")):
                yield path.stem, path.read_bytes()
        if TOOL.exists():
            yield "ours", self.stream_of(FILES)

    def stream_of(self, files: dict) -> bytes:
        folder = self.home.root / "in"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        for name, content in files.items():
            (folder / name).write_bytes(content)
        out = self.home.root / "made.tnef"
        subprocess.run([TOOL, "write", "tnef", out, *sorted(folder.iterdir())], check=True)
        return out.read_bytes()

    def attachments(self):
        (item,) = self.home.run("--json", "list").json
        return [(a["file_name"], a["type"], a["size"]) for a in item["attachments"]]

    def start(self, message: bytes):
        for path in self.home.messages():
            path.unlink()
        shutil.rmtree(self.home.saved, ignore_errors=True)
        self.home.set(RemoveAttachment=1, AddURL=1, RetainPaperclip=0)
        self.home.add(message)
        return message

    def test_every_stream_there_and_back(self):
        taken = kept = 0
        for name, stream in self.streams():
            for beside_text in (True, False):
                with self.subTest(name, beside_text=beside_text):
                    before = self.start(winmail(stream, beside_text))
                    had = self.attachments()
                    body = self.home.run("--json", "show", "1").json
                    done = self.home.run("--json", "save")
                    saved = [pathlib.Path(entry["path"]) for entry in done.json["saved"]]
                    self.assertEqual(len(saved), len(had), done)
                    if done.status != 0:
                        self.assertIn("Attachments were saved but not removed", done.err)
                        self.assertEqual(self.home.message(), before)
                        kept += 1
                        continue
                    after = self.home.message()
                    if not had:
                        self.assertEqual(after, before)
                        continue
                    taken += 1
                    self.assertNotIn(b"ms-tnef", after.lower())
                    self.assertEqual(self.attachments(), [])
                    for path in saved:
                        self.assertIn(f"{NOTE} ", shown(after).replace("\n", " "))
                        self.assertIn(f"file://{path}".replace(" ", ""), shown(after).replace("\n", "").replace(" ", ""))
                    again = self.home.run("--json", "save")
                    self.assertEqual((again.json["saved"], self.home.message()), ([], after), "a second run does nothing")
                    contents = Counter(hashlib.sha1(path.read_bytes()).hexdigest() for path in saved)
                    self.assertDone(self.home.run("restore", "1"))
                    self.assertEqual(self.attachments(), had)
                    back = self.home.run("--json", "show", "1").json
                    for kind in ("body", "html_body", "rtf_body"):
                        self.assertEqual((back[kind] or "").lower(), (body[kind] or "").lower(), kind)
                    parts = Counter(hashlib.sha1(p.get_payload(decode=True)).hexdigest() for p in leaves(parsed(self.home.message())))
                    for digest, count in contents.items():
                        path = next(p for p in saved if hashlib.sha1(p.read_bytes()).hexdigest() == digest)
                        if path.suffix != ".eml":
                            self.assertGreaterEqual(parts[digest], count, path.name)
        print(f"\n{taken} messages there and back, {kept} whose container stays whole")
        self.assertGreater(taken, 0)

    def test_stopped_at_every_call_nothing_inside_is_lost(self):
        shim = build_shim(SOURCE / "tests/tools/fault_shim.c", self.home.root)
        if shim is None or not TOOL.exists():
            self.skipTest("there is no C compiler, or formats_tool was not built")
        message = winmail(self.stream_of(FILES))
        number = tried = 0
        while True:
            number += 1
            self.start(message)
            log = self.home.root / "calls"
            log.unlink(missing_ok=True)
            done = self.home.run("save", environment=self.fault(shim, number, log))
            if done.status != -9:
                break
            tried += 1
            held = {path.read_bytes() for path in self.home.saved.rglob("*") if path.is_file() and path.name[0] != "."}
            visible = [path.read_bytes() for path in self.home.messages()]
            whole = any(b"ms-tnef" in one for one in visible)
            for one in visible:
                held |= {part.get_payload(decode=True) for part in leaves(parsed(one))}
            for name, content in FILES.items():
                self.assertTrue(whole or content in held, f"{name} is lost at call {number}")
            self.assertDone(self.home.run("save"))
            self.assertEqual(len(self.home.messages()), 1)
            self.assertNotIn(b"ms-tnef", self.home.message())
            held = {path.read_bytes() for path in self.home.saved.rglob("*") if path.is_file()}
            self.assertTrue(set(FILES.values()) <= held)
        print(f"\nstopped at {tried} calls")
        self.assertGreater(tried, 10)

    @staticmethod
    def fault(shim, number, log):
        return {"LD_PRELOAD": str(shim), "SHIM_LOG": str(log), "SHIM_AT": str(number), "SHIM_FAULT": "kill",
                "ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=0"}


if __name__ == "__main__":
    main()

"""A newcomer's machine in a temporary folder: a home, a mail store, a save folder, and the program run in it.

Nothing outside the temporary folder is read or written; the program comes from the environment variable QUILLFILE.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from email import message_from_bytes, policy
from email.message import EmailMessage
from pathlib import Path

SKIPPED = 77
SOURCE = Path(os.environ.get("SOURCE_DIR", Path(__file__).resolve().parents[2]))
PROGRAM = os.environ.get("QUILLFILE", str(SOURCE / "build/release/apps/quillfile/quillfile"))
SAMPLES = SOURCE / "samples/mail"
# Beside the project, or beside the project whose worktree this is.
CORPUS = next((p for p in (up / "shared/corpus" for up in SOURCE.resolve().parents) if p.is_dir()), SOURCE / "../shared/corpus")


class Done:
    """What one run of the program left: its exit status and what it printed."""

    def __init__(self, process):
        self.status = process.returncode
        self.out = process.stdout.decode("utf-8", "replace")
        self.err = process.stderr.decode("utf-8", "replace")

    @property
    def json(self):
        return json.loads(self.out)

    def __repr__(self):
        return f"status {self.status}\n--- out\n{self.out}\n--- err\n{self.err}"


class Home:
    """One user: home folder, Maildir, settings file and save folder."""

    def __init__(self):
        self.root = Path(tempfile.mkdtemp(prefix="quillfile-e2e-"))
        self.maildir = self.root / "Maildir"
        self.saved = self.root / "saved"
        self.settings_file = self.root / "settings.ini"
        self.trace_file = self.root / "trace.log"
        self.environment = {
            "HOME": str(self.root),
            "PATH": "/usr/bin:/bin",
            "LANG": "C.UTF-8",
            "TZ": "UTC",
            "QUILLFILE_MAIL": str(self.maildir),
            "QUILLFILE_SETTINGS": str(self.settings_file),
        }
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        self.folder("")

    def close(self):
        for folder, _, _ in os.walk(self.root):
            os.chmod(folder, 0o700)
        shutil.rmtree(self.root, ignore_errors=True)

    def folder(self, name: str) -> Path:
        """The folder's directory, made when it is missing; "" is the Inbox, "Projects/2026" is .Projects.2026."""
        path = self.maildir / ("." + name.replace("/", ".") if name else "")
        for part in ("cur", "new", "tmp"):
            (path / part).mkdir(parents=True, exist_ok=True)
        return path

    def add(self, content, name="1700000000.M1P1.host", flags="S", folder="") -> Path:
        """Puts a message into the store; a name with a number in it keeps the list in the order of adding."""
        if isinstance(content, Path):
            content = content.read_bytes()
        elif not isinstance(content, bytes):
            content = content.as_bytes()
        directory = self.folder(folder)
        count = len(list((directory / "cur").iterdir())) + 1
        path = directory / "cur" / f"{name}.{count:05}:2,{flags}"
        path.write_bytes(content)
        return path

    def messages(self, folder="") -> list:
        """The files of a folder, in order of their names."""
        directory = self.folder(folder)
        return sorted(p for part in ("cur", "new") for p in (directory / part).iterdir())

    def message(self, folder="") -> bytes:
        """The bytes of the only message."""
        (path,) = self.messages(folder)
        return path.read_bytes()

    def set(self, **values):
        """Settings; the ones that are not given keep a plain state: everything saved, nothing removed."""
        plain = {
            "SavePath": f"{self.saved}/",
            "SaveAllAttachments": "1",
            "RemoveAttachment": "0",
            "AddURL": "0",
            "ImitateOutlookFolders": "0",
            "PostProcess": "1",
            "ErrorPrompt": "1",
        }
        lines = [f"{key}={quoted(str(value))}" for key, value in {**plain, **values}.items()]
        self.settings_file.write_text("[Quillfile]\n" + "\n".join(lines) + "\n")

    def setting(self, key: str) -> str:
        return self.run("settings", "get", key).out.rstrip("\n")

    def run(self, *arguments, stdin=subprocess.DEVNULL, environment=None, through=(), **options) -> Done:
        """`through`: the words of a program that starts it."""
        return Done(
            subprocess.run(
                [*through, PROGRAM, *map(str, arguments)],
                stdin=stdin,
                stdout=subprocess.PIPE,
                stderr=subprocess.PIPE,
                env={**self.environment, **(environment or {})},
                cwd=self.root,
                timeout=300,
                check=False,
                **options,
            )
        )

    def saved_files(self) -> dict:
        """Everything below the save folder: relative path → content."""
        return {
            str(path.relative_to(self.saved)): path.read_bytes()
            for path in sorted(self.saved.rglob("*"))
            if path.is_file() and not path.is_symlink()
        }

    def trace(self) -> list:
        """The trace as (procedure, message), without times."""
        lines = self.trace_file.read_text().splitlines()
        return [tuple(line.split("\t", 3)[2:]) for line in lines]


def quoted(value: str) -> str:
    return '"' + value.replace("\\", "\\\\").replace('"', '\\"') + '"' if value != value.strip() else value


def mail(subject="Hello", text="Good day.\n", html=None, files=(), sender="Ada <ada@example.org>") -> EmailMessage:
    """A message; each file is (name, content) or (name, content, "main/sub")."""
    message = EmailMessage()
    message["From"] = sender
    message["To"] = "Ben <ben@example.org>"
    message["Subject"] = subject
    message["Date"] = "Wed, 04 Mar 2009 14:05:00 +0000"
    message["Message-ID"] = "<one@example.org>"
    if text is not None:
        message.set_content(text)
    if html is not None:
        if text is None:
            message.set_content(html, subtype="html")
        else:
            message.add_alternative(html, subtype="html")
    for name, content, *kind in files:
        main, sub = (kind[0] if kind else "application/octet-stream").split("/")
        message.add_attachment(content, maintype=main, subtype=sub, filename=name)
    for number, part in enumerate(p for p in message.walk() if p.is_multipart()):
        part.set_boundary(f"=_part_{number}")  # so that the same message is the same bytes
    return message


def parsed(content: bytes) -> EmailMessage:
    return message_from_bytes(content, policy=policy.default)


class Case(unittest.TestCase):
    """A test with a home of its own."""

    maxDiff = None

    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.close)

    def assertDone(self, done: Done, status=0):
        self.assertEqual(done.status, status, done)
        if status == 0:
            self.assertEqual(done.err, "", done)


def main(needs_corpus=False):
    if not Path(PROGRAM).exists():
        sys.exit(f"{PROGRAM} is missing; set QUILLFILE")
    if needs_corpus and not CORPUS.is_dir():
        print(f"skipped: {CORPUS} is not there")
        sys.exit(SKIPPED)
    unittest.main(verbosity=1)

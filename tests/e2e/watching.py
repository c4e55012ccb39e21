"""A home of its own for one watch: mail store, settings, state; delivery, and what is there afterwards."""
import email
import email.message
import email.policy
import itertools
import json
import os
import pathlib
import subprocess
import tempfile
import time

PROGRAM = os.environ.get("QUILLFILE", "")
_numbers = itertools.count(1)


def message(subject, attachments=(("a.pdf", b"x" * 1000),), **fields):
    made = email.message.EmailMessage()
    made["From"], made["To"], made["Subject"] = "Ann <ann@example.org>", "bob@example.org", subject
    made["Date"] = "Mon, 02 Mar 2026 10:00:00 +0000"
    made["Message-ID"] = f"<{subject.replace(' ', '.')}@example.org>"
    for name, value in fields.items():
        made[name.replace("_", "-")] = value
    made.set_content("Hello\n")
    for name, content in attachments:
        made.add_attachment(content, maintype="application", subtype="pdf", filename=name)
    return made.as_bytes()


class Home:
    def __init__(self, *settings):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="quillfile-watch-"))
        self.mail, self.documents = self.root / "Maildir", self.root / "Documents"
        self.environment = {
            **os.environ, "HOME": str(self.root), "QUILLFILE_MAIL": str(self.mail), "TZ": "UTC",
            "QUILLFILE_SETTINGS": str(self.root / "settings.ini"), "XDG_STATE_HOME": str(self.root / "state"),
            "XDG_DOCUMENTS_DIR": str(self.documents), "XDG_DATA_HOME": str(self.root / "data"),
        }
        for name in ("cur", "new", "tmp"):
            (self.mail / name).mkdir(parents=True)
        self.run("watch", "--once")  # the first look, and the first settings
        self.run("settings", "set", "AutomaticMode", "1")
        for key, value in settings:
            self.run("settings", "set", key, value)
        self.watches = []

    def run(self, *words, status=0, **more):
        done = subprocess.run([PROGRAM, *words], env=self.environment, capture_output=True, text=True,
                              stdin=subprocess.DEVNULL, timeout=60, **more)
        assert status is None or done.returncode == status, (words, done.returncode, done.stdout, done.stderr)
        return done

    def once(self, *words, status=0):
        return json.loads(self.run("watch", "--once", "--json", *words, status=status).stdout)

    def folder(self, name=""):
        return self.mail / name if name else self.mail

    def deliver(self, content, folder="", name=None, into="new", flags=""):
        """As delivery programs do: written in tmp/, then renamed."""
        name = name or f"{int(time.time())}.M{next(_numbers):06d}P{os.getpid()}.test"
        temporary = self.folder(folder) / "tmp" / name
        temporary.write_bytes(content)
        temporary.rename(self.folder(folder) / into / (name + flags))
        return name

    def messages(self, folder=""):
        found = {}
        for place in ("new", "cur"):
            for path in sorted((self.folder(folder) / place).iterdir()):
                try:
                    found[path.name] = email.message_from_bytes(path.read_bytes(), policy=email.policy.default)
                except FileNotFoundError:
                    pass
        return found

    def saved(self):
        """Without the hidden files that are not whole yet."""
        return sorted(str(path.relative_to(self.documents)) for path in self.documents.rglob("[!.]*") if path.is_file())

    def watch(self, *words):
        started = self.announcements() + 1
        process = subprocess.Popen([PROGRAM, "watch", "--json", *words], env=self.environment, text=True,
                                   stdin=subprocess.DEVNULL, stdout=open(self.root / "out", "a"),
                                   stderr=open(self.root / "err", "a"))
        self.watches.append(process)
        wait_until(lambda: self.announcements() >= started or process.poll() is not None, "the watch starts")
        assert process.poll() is None, self.errors()
        return process

    def announcements(self):
        return self.errors().count("Files are saved below")

    def errors(self):
        return (self.root / "err").read_text() if (self.root / "err").exists() else ""

    def documents_printed(self):
        return [json.loads(line) for line in (self.root / "out").read_text().splitlines()]

    def stop(self, process):
        process.terminate()
        assert process.wait(20) == 0, self.errors()

    def close(self):
        for process in self.watches:
            if process.poll() is None:
                process.kill()
                process.wait()


def attachments(made):
    return [part.get_filename() for part in made.iter_attachments() if part.get_filename() != "Paperclip.ico"]


def wait_until(holds, what, seconds=20):
    end = time.monotonic() + seconds
    while not holds():
        assert time.monotonic() < end, "waited in vain: " + what
        time.sleep(0.02)

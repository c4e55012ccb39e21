"""A mailbox of a few messages with attachments, and what must be true of it at every instant."""
import base64
import email
import os
import random
import re
import shutil
from pathlib import Path

SETTINGS = """[Quillfile]
SavePath={saved}/
SaveAllAttachments=1
RemoveAttachment=1
AddURL=1
RetainPaperclip=0
PostProcess=1
AutomaticRename=1
ImitateOutlookFolders=0
ErrorPrompt=0
"""

THREE = {"attachments": [  # message, name, size
    (1, "report.pdf", 30_000),
    (2, "report.pdf", 300_000),
    (2, "photo.jpg", 700),
    (3, "notes.bin", 5_000),
], "flags": {1: "", 2: "S", 3: "FRS"}}

# So few that each file and folder is flushed by itself.
ONE = {"attachments": [(1, "report.pdf", 30_000)], "flags": {1: "S"}}

# More than the program flushes at once, so that its groups overlap.
MANY = {"attachments": [(n, "image.png", 300 + n) for n in range(1, 201)], "flags": {n: "" for n in range(1, 201)}}

# As few as make two groups.
TWO_GROUPS = {"attachments": [(n, "image.png", 3000 + n) for n in range(1, 81)], "flags": {n: "S" for n in range(1, 81)}}


def message(number: int, attachments: list) -> bytes:
    lines = ["From: Ann <ann@example.org>", "To: Bob <bob@example.org>", f"Subject: Message {number}",
             "Date: Wed, 4 Mar 2009 14:05:00 +0000", "MIME-Version: 1.0",
             'Content-Type: multipart/mixed; boundary="b"', "", "--b", "Content-Type: text/plain; charset=utf-8", "",
             f"Body of message {number}."]
    for name, content in attachments:
        lines += ["--b", "Content-Type: application/octet-stream", "Content-Transfer-Encoding: base64",
                  f'Content-Disposition: attachment; filename="{name}"', "",
                  base64.encodebytes(content).decode().strip()]
    return ("\n".join(lines + ["--b--", ""])).encode()


LINK = re.compile(rb"file://[^>\r\n]*")


class Mailbox:
    """One directory, made anew for each run at the same place, so that the texts of links are the same."""

    def __init__(self, root: Path, attachments: list, flags: dict):
        self.attachments, self.flags = attachments, flags
        self.payloads = [random.Random(index).randbytes(size) for index, (_, _, size) in enumerate(attachments)]
        self.root, self.mail, self.saved = root, root / "Maildir", root / "Saved"
        self.settings = root / "settings.ini"
        self.originals = {number: message(number, self.of(number)) for number in flags}
        self.rewritten: dict[int, bytes] = {}  # by message, from the run without a fault

    def of(self, number: int) -> list:
        """A message's attachments: name and bytes."""
        return [(name, self.payloads[index]) for index, (owner, name, _) in enumerate(self.attachments) if owner == number]

    def reset(self):
        shutil.rmtree(self.root, ignore_errors=True)
        for part in ("cur", "new", "tmp"):
            (self.mail / part).mkdir(parents=True)
        self.saved.mkdir()
        for number, flags in self.flags.items():
            (self.mail / "cur" / f"1236175{number:03}.M{number}P1.host:2,{flags}").write_bytes(self.originals[number])
        self.settings.write_text(SETTINGS.format(saved=self.saved))

    def messages(self):
        """Every visible message: path and bytes."""
        for folder, _, names in os.walk(self.mail):
            if os.path.basename(folder) in ("cur", "new"):
                for name in names:
                    path = Path(folder, name)
                    yield path, path.read_bytes()

    def files(self):
        """Every saved file under a final name."""
        for folder, _, names in os.walk(self.saved):
            for name in names:
                if not name.startswith("."):
                    path = Path(folder, name)
                    yield path, path.read_bytes()

    def everything(self) -> set:
        """What must not get lost: the numbers of the attachments, and the messages."""
        return set(range(len(self.attachments))) | {f"message {number}" for number in self.flags}

    def held(self) -> dict:
        """What of everything each path holds."""
        number = {content: index for index, content in enumerate(self.payloads)}
        held = {str(path): {number[content]} if content in number else set() for path, content in self.files()}
        for path, content in self.messages():
            held[str(path)] = {number[part] for part in parts_of(content) if part in number} | {f"message {number_of(content)}"}
        return held

    def learn(self):
        """After the run without a fault: what each message looks like when its attachments are gone."""
        if self.rewritten:
            return
        for _, content in self.messages():
            self.rewritten[number_of(content)] = without_names(content)

    def broken_promises(self) -> list[str]:
        """What is wrong right now, whatever was going on; empty when all is well."""
        wrong = []
        messages, files = list(self.messages()), list(self.files())
        held = {part for _, content in messages for part in parts_of(content)}
        held |= {content for _, content in files}
        for index, (number, name, _) in enumerate(self.attachments):
            if self.payloads[index] not in held:
                wrong.append(f"attachment {name} of message {number} is lost")
        for path, content in messages:
            number = number_of(content)
            complete = content == self.originals.get(number) or without_names(content) == self.rewritten.get(number)
            if not complete and not self.partly_rewritten(number, content):
                wrong.append(f"{path.name} is neither the original nor a complete rewrite")
            for link in LINK.findall(content):
                if not os.path.isfile(link[7:]):
                    wrong.append(f"{path.name} has a link to {link}, which is not there")
        for path, content in files:
            if content not in self.payloads and content != b"another's":
                wrong.append(f"{path.name} holds something else than a whole attachment ({len(content)} bytes)")
        return wrong

    def partly_rewritten(self, number: int, content: bytes) -> bool:
        """Some attachments could not be saved and are still there, whole; the others have a link each."""
        still = parts_of(content)
        all_of_it = [part for _, part in self.of(number)]
        return (content.endswith(b"--b--\n") and 0 < len(still) < len(all_of_it)
                and all(part in all_of_it for part in still) and len(LINK.findall(content)) == len(all_of_it) - len(still))

    def not_converged(self) -> list[str]:
        """What a run without a fault, after one with, has left undone."""
        wrong = self.broken_promises()
        messages, files = list(self.messages()), list(self.files())
        numbers = sorted(number_of(content) for _, content in messages)
        if numbers != sorted(self.flags):
            wrong.append(f"the messages are {numbers}")
        for path, content in messages:
            if parts_of(content):
                wrong.append(f"{path.name} still has attachments")
            if path.name.rpartition(":2,")[2] != self.flags[number_of(content)]:
                wrong.append(f"{path.name} has other flags")
        held = {content for _, content in files}
        wrong += [f"attachment {index} is in no file" for index, content in enumerate(self.payloads) if content not in held]
        return wrong + self.left_over()

    def left_over(self) -> list[str]:
        """Files of the program's own that nobody needs any more."""
        wrong = []
        for folder, _, names in os.walk(self.root):
            hidden = [name for name in names if name.startswith(".quillfile") or name.startswith("quillfile,")]
            wrong += [f"left over: {name}" for name in hidden]
            if os.path.basename(folder) == "tmp" and names:
                wrong.append(f"left over in tmp: {names}")
        return wrong


def without_names(content: bytes) -> bytes:
    """A rewritten message without the names of the saved files: a run after one with a fault gives other numbers."""
    return re.sub(rb"path=[^;]*;", b"path=;", LINK.sub(b"file://", content))


def number_of(content: bytes) -> int:
    subject = email.message_from_bytes(content)["Subject"] or ""
    return int(subject[8:]) if subject.startswith("Message ") else 0


def parts_of(content: bytes) -> list[bytes]:
    parts = email.message_from_bytes(content).walk()
    return [part.get_payload(decode=True) for part in parts if part.get_filename()]

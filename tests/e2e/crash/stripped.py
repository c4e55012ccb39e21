"""The mailbox after a save that took everything out, for the commands that go the other way."""
import email
import shutil

from crash.mailbox import Mailbox, number_of


def names_of(content: bytes) -> list:
    """The attachments of a message: name and bytes."""
    return [(part.get_filename(), part.get_payload(decode=True)) for part in email.message_from_bytes(content).walk()
            if part.get_filename()]


class Stripped(Mailbox):
    """Made once by a real save, and copied back to its place for each run. Saved files are never to change."""

    def prepare(self, save):
        """`save`: runs the program's save over this mailbox."""
        Mailbox.reset(self)
        status, errors = save.run()
        if status != 0:
            raise SystemExit(f"the save ended with {status}: {errors}")
        self.kept = self.root.with_name(self.root.name + ".stripped")
        shutil.copytree(self.root, self.kept)
        self.saved_files = dict(self.files())
        self.stripped = {number_of(content): content for _, content in self.messages()}
        self.inbox = dict(self.messages())

    def reset(self):
        shutil.rmtree(self.root, ignore_errors=True)
        shutil.copytree(self.kept, self.root)

    def learn(self):
        pass

    def broken_promises(self) -> list[str]:
        files = dict(self.files())
        return [] if files == self.saved_files else [f"the saved files are {sorted(files)}, or changed"]


class Restored(Stripped):
    """After `restore`: a message is as it was before the command, or as it was before the save, byte for byte."""

    def broken_promises(self) -> list[str]:
        wrong = super().broken_promises()
        found = {}
        for path, content in self.messages():
            number = number_of(content)
            if content not in (self.stripped.get(number), self.originals.get(number)):
                wrong.append(f"{path.name} is neither the message that was there nor the original")
            found.setdefault(number, []).append(content)
        for number in self.flags:
            if number not in found:
                wrong.append(f"message {number} is lost")
            elif len(set(found[number])) != len(found[number]):
                wrong.append(f"message {number} is there twice")
        return wrong

    def not_converged(self) -> list[str]:
        wrong = self.broken_promises() + self.left_over()
        there = [(number_of(content), path.name.rpartition(":2,")[2], content) for path, content in self.messages()]
        if sorted(there) != sorted((number, flags, self.originals[number]) for number, flags in self.flags.items()):
            wrong.append(f"the messages are {sorted(entry[:2] for entry in there)}, or not all restored")
        return wrong


class Answered(Stripped):
    """After `forward` or `reply`: the messages are untouched, and each draft that a reader would show is complete."""

    prefix, files_attached = "FW: ", True

    def drafts(self) -> list:
        paths = [path for part in ("cur", "new") for path in (self.mail / ".Drafts" / part).glob("*")]
        return [(path, content) for path in paths if (content := path.read_bytes()) != b"another's"]

    def broken_promises(self) -> list[str]:
        wrong = super().broken_promises()
        for path, content in self.inbox.items():
            if not path.exists() or path.read_bytes() != content:
                wrong.append(f"{path.name} is not what it was")
        for path, content in self.drafts():
            number = self.number_of_draft(content)
            if number not in self.flags or not path.name.endswith(":2,D"):
                wrong.append(f"{path.name} is no draft of ours")
            elif names_of(content) != (self.of(number) if self.files_attached else []):
                wrong.append(f"{path.name} does not have the files of message {number}")
            elif f"Body of message {number}.".encode() not in content or b"file://" in content:
                wrong.append(f"{path.name} does not have the text of message {number}")
        return wrong

    def not_converged(self) -> list[str]:
        wrong = self.broken_promises() + self.left_over()
        missing = set(self.flags) - {self.number_of_draft(content) for _, content in self.drafts()}
        return wrong + [f"there is no draft for message {number}" for number in sorted(missing)]

    def number_of_draft(self, content: bytes) -> int:
        subject = email.message_from_bytes(content)["Subject"] or ""
        return number_of(f"Subject: {subject.removeprefix(self.prefix)}\n\n".encode()) if subject.startswith(self.prefix) else 0


class Replied(Answered):
    prefix, files_attached = "RE: ", False

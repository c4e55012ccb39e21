"""A renamer, a deleter and a deliverer against a watch: no message lost or doubled, what others do survives.

RACE_OPERATIONS says how many (3,000 in the test run).
"""
import os
import pathlib
import random
import shutil
import sys
import threading
import time

from watching import PROGRAM, Home, attachments, message, wait_until

OPERATIONS = int(os.environ.get("RACE_OPERATIONS", "3000"))
POOL = 60  # messages that are renamed and deleted meanwhile


class World:
    """What the other programs have done, by subject."""

    def __init__(self, home):
        self.home, self.lock = home, threading.Lock()
        self.delivered, self.deleted, self.flagged, self.operations = set(), set(), set(), 0

    def subject_of(self, path):
        with open(path, "rb") as file:
            for line in file:
                if line.startswith(b"Subject: "):
                    return line[9:].strip().decode()
        return None

    def some_path(self, numbers):
        paths = list((self.home.mail / "new").iterdir()) + list((self.home.mail / "cur").iterdir())
        return numbers.choice(paths) if paths else None

    def count(self):
        with self.lock:
            self.operations += 1
            return self.operations <= OPERATIONS

    def deliver(self, numbers):
        with self.lock:
            number = len(self.delivered)
            if number - len(self.deleted) > POOL:
                return
            subject = f"r{number}"
            self.delivered.add(subject)
        self.home.deliver(message(subject, [(f"{number}.pdf", b"%d" % number * 500)]))

    def rename(self, numbers):
        """A reader marks a message as flagged, and takes it out of new/ with that."""
        path = self.some_path(numbers)
        if path is None:
            return
        try:
            subject = self.subject_of(path)
            unique, _, flags = path.name.partition(":2,")
            seen = "".join(sorted(set(flags) ^ {"S"} | {"F"}))
            os.rename(path, self.home.mail / "cur" / f"{unique}:2,{seen}")
            self.flagged.add(subject)
        except FileNotFoundError:
            pass

    def delete(self, numbers):
        if numbers.random() > 0.2:
            return
        path = self.some_path(numbers)
        try:
            subject = self.subject_of(path) if path else None
            if subject:
                os.unlink(path)
                self.deleted.add(subject)
        except FileNotFoundError:
            pass


def main():
    home = Home(("PostProcess", "1"))
    world = World(home)
    watch = home.watch()

    def work(what, seed):
        numbers = random.Random(seed)
        while world.count():
            what(numbers)
            time.sleep(0.001)

    threads = [threading.Thread(target=work, args=(what, seed))
               for seed, what in enumerate((world.deliver, world.rename, world.rename, world.delete))]
    began = time.monotonic()
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    took = time.monotonic() - began
    wait_until(lambda: all(not attachments(made) for made in home.messages().values()), "all is handled", 60)
    home.stop(watch)

    found = [made["Subject"] for made in home.messages().values()]
    assert len(found) == len(set(found)), "a message is there twice: " + str(sorted(found))
    lost = world.delivered - world.deleted - set(found)
    assert not lost, f"lost: {lost}"
    back = set(found) & world.deleted
    assert not back, f"deleted, and back: {back}"
    unflagged = {made["Subject"] for name, made in home.messages().items()
                 if made["Subject"] in world.flagged and "F" not in name.partition(":2,")[2]}
    assert not unflagged, f"flag changes lost: {unflagged}"
    files = {path.stem: path.read_bytes() for path in home.documents.rglob("[!.]*.pdf")}
    for subject in found:
        number = subject[1:]
        assert files.get(number) == b"%d" % int(number) * 500, subject
    twice = [name for name in files if "-" in name]
    assert not twice, f"saved twice: {twice}"
    assert list((home.mail / "tmp").iterdir()) == []
    errors = [line for line in home.errors().splitlines() if line.startswith("quillfile:")]
    print(f"{OPERATIONS} operations in {took:.1f} s: {len(world.delivered)} delivered, {len(world.deleted)} deleted, "
          f"{len(world.flagged)} flagged, {len(found)} left, {len(files)} files, {len(errors)} errors reported")
    for line in errors[:5]:
        print(line)
    home.close()
    shutil.rmtree(home.root)


if __name__ == "__main__":
    if not os.access(PROGRAM, os.X_OK):
        sys.exit(77)
    main()

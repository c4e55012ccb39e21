"""Cuts the power of a real file system at random moments of a save with removal, and looks for what is lost.

After each cut the disk is started again: every attachment must be complete in a visible message or in a saved file,
and a second start of the program must converge. Then the same with a program that forgets to flush its files: that
must lose something, or the cuts prove nothing. CUTS is the number of cuts (40), SEED makes them others.
"""
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
from collections import Counter
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from crash import seeds  # noqa: E402
from crash.disk import Disk, Unavailable  # noqa: E402
from crash.mailbox import ONE, THREE, TWO_GROUPS, Mailbox, parts_of  # noqa: E402
from crash.program import Program  # noqa: E402

SKIP = 77
SOURCE = Path(os.environ.get("SOURCE_DIR", Path(__file__).resolve().parents[2]))
PROGRAM = Path(os.environ.get("QUILLFILE", SOURCE / "build/asan/apps/quillfile/quillfile"))
CUTS = int(os.environ.get("CUTS", "40"))
FORGETFUL = "a missing file flush"


class Saving:
    """A program at work on one mailbox on the disk."""

    def __init__(self, disk: Disk, name: str, what: dict, executable: Path):
        self.disk, self.name = disk, name
        self.mailbox = Mailbox(disk.point / "box", **what)
        program = Program(executable, disk.image, self.mailbox)
        self.command, self.environment = program.command(), program.environment()
        self.seconds = self.whole_run()
        self.mailbox.learn()

    def fresh(self):
        self.mailbox.reset()
        self.disk.flush()

    def start(self):
        return subprocess.Popen(self.command, env=self.environment, stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)

    def begun(self, process):
        """Waits until the first file is on its way: before that there is nothing to lose."""
        while process.poll() is None and not any(os.scandir(self.mailbox.saved)):
            time.sleep(0.0002)

    def whole_run(self) -> float:
        """Seconds from the first file on."""
        self.fresh()
        process = self.start()
        self.begun(process)
        start = time.monotonic()
        _, errors = process.communicate(timeout=120)
        if process.returncode != 0:
            raise SystemExit(f"{self.name}: the run without a cut ended with {process.returncode}: {errors.decode()}")
        return time.monotonic() - start

    def cut(self, after: float) -> list[str]:
        """One run, cut so many seconds after its first file; what is lost once the disk is there again."""
        self.fresh()
        process = self.start()
        self.begun(process)
        time.sleep(after)
        self.disk.cut_power()
        process.kill()
        process.communicate()
        self.disk.start_again()
        return [f"{self.name}, cut after {after:.4f} s: {what}" for what in self.mailbox.broken_promises()]

    def stage(self) -> str:
        """How far the run had come on the disk."""
        stripped = [not parts_of(content) for _, content in self.mailbox.messages()]
        if not any(stripped):
            return "files saved" if any(True for _ in self.mailbox.files()) else "nothing done"
        return "all done" if all(stripped) and len(stripped) == len(self.mailbox.flags) else "messages rewritten in part"

    def converge(self) -> list[str]:
        process = self.start()
        _, errors = process.communicate(timeout=120)
        wrong = self.mailbox.not_converged()
        if process.returncode != 0:
            wrong.append(f"ended with {process.returncode}: {errors.decode(errors='replace')[-500:]}")
        return [f"{self.name}, the next start: {what}" for what in wrong]


def cut_many(disk, executable, chance) -> list[str]:
    savings = [Saving(disk, name, what, executable) for name, what in
               (("one message", ONE), ("three messages", THREE), ("two groups", TWO_GROUPS))]
    stages, wrong = Counter(), []
    start = time.monotonic()
    for number in range(CUTS):
        saving = savings[number % len(savings)]
        wrong += saving.cut(chance.uniform(0, saving.seconds))
        stages[saving.stage()] += 1
        wrong += saving.converge()
    lost = sum("is lost" in what for what in wrong)
    print(f"power cuts: {CUTS} in {time.monotonic() - start:.0f} s, attachments lost: {lost}; found on the disk: {dict(stages)}",
          flush=True)
    return wrong


def forgetful_is_caught(disk, folder, chance) -> list[str]:
    """How many cuts it takes until a program that does not flush its files loses one."""
    seed = next(seed for seed in seeds.SEEDS if seed.name == FORGETFUL)
    executable = seeds.build(seed, SOURCE, PROGRAM.resolve().parents[2], folder)
    saving = Saving(disk, "one message", ONE, executable)
    for number in range(1, 101):
        lost = saving.cut(chance.uniform(0, saving.seconds))
        if lost:
            print(f"seeded: {FORGETFUL}: caught by cut {number}: {lost[0]}")
            return []
    return [f"the seeded fault was not caught by 100 cuts: {FORGETFUL}"]


def main() -> int:
    if not PROGRAM.exists():
        print(f"skipped: there is no program at {PROGRAM}")
        return SKIP
    memory = Path("/dev/shm")
    folder = Path(tempfile.mkdtemp(prefix="quillfile-power-", dir=memory if memory.is_dir() else None))
    disk = None
    try:
        disk = Disk(folder)
        chance = random.Random(os.environ.get("SEED", "1"))
        wrong = cut_many(disk, PROGRAM, chance)
        if not wrong:
            wrong = forgetful_is_caught(disk, folder, chance)
    except Unavailable as reason:
        print(f"skipped: {reason}")
        return SKIP
    finally:
        if disk:
            disk.close()
        shutil.rmtree(folder, ignore_errors=True)
    for what in wrong[:40]:
        print("WRONG:", what)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())

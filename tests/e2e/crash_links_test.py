"""Stops, fails and cheats `restore`, `forward` and `reply` at every call that changes something on disk.

After each fault the messages and the saved files must be as they were or fully done, and no draft that a reader would
show may be a half one; the same command without a fault must converge, and clear away what was left. Prints how many
points there were. Then faults seeded into a copy of the code: each must be caught.
"""
import os
import shutil
import sys
import tempfile
from collections import Counter
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from crash import kernel, seeds  # noqa: E402
from crash.mailbox import THREE  # noqa: E402
from crash.program import Program, build_shim  # noqa: E402
from crash.stripped import Answered, Replied, Restored  # noqa: E402
from crash.sweep import reference, sweep  # noqa: E402

SKIP = 77
SOURCE = Path(os.environ.get("SOURCE_DIR", Path(__file__).resolve().parents[2]))
PROGRAM = Path(os.environ.get("QUILLFILE", SOURCE / "build/asan/apps/quillfile/quillfile"))
COMMANDS = {"restore": Restored, "forward": Answered, "reply": Replied}


def swept(program, folder) -> list[str]:
    """The sweep over one command; what went wrong."""
    name, mailbox = program.arguments[0], program.mailbox
    calls, wrong = reference(program, mailbox)
    counted = Counter(call.name for call in calls if call.phase == "end")
    mailbox.reset()
    seen = kernel.changing_calls(program.command(), program.environment(), folder)
    if seen not in (None, counted):
        wrong.append(f"{name}: calls went past the shim: {dict(seen)} beside {dict(counted)}")
    print(f"{name}: calls that change the disk: {sum(counted.values())}: {dict(counted)}", flush=True)
    if not wrong:
        tried, wrong = sweep(program, mailbox, calls)
        print(f"{name}: points tried: {sum(tried.values())}: {dict(tried)}", flush=True)
    return [f"{name}: {what}" for what in wrong]


def seeded(program, folder) -> list[str]:
    missed = []
    for seed in seeds.DRAFT_SEEDS:
        executable = seeds.build(seed, SOURCE, PROGRAM.resolve().parents[2], folder)
        calls, wrong = reference(program, program.mailbox, executable)
        if not wrong:
            _, wrong = sweep(program, program.mailbox, calls, executable, stop_at_first=True)
        print(f"seeded: {seed.name}: {'caught: ' + wrong[0] if wrong else 'NOT CAUGHT'}", flush=True)
        if not wrong:
            missed.append(f"the seeded fault was not caught: {seed.name}")
    return missed


def main() -> int:
    if not PROGRAM.exists():
        print(f"skipped: there is no program at {PROGRAM}")
        return SKIP
    memory = Path("/dev/shm")
    folder = Path(tempfile.mkdtemp(prefix="quillfile-crash-", dir=memory if memory.is_dir() else None))
    try:
        shim = build_shim(SOURCE / "tests/tools/fault_shim.c", folder)
        if shim is None:
            print("skipped: there is no C compiler to build the shim with")
            return SKIP
        wrong = []
        for name, kind in COMMANDS.items():
            mailbox = kind(folder / name, **THREE)
            program = Program(PROGRAM, shim, mailbox, name, "1-3")
            mailbox.prepare(Program(PROGRAM, shim, mailbox))
            wrong += swept(program, folder)
            if name == "forward" and not wrong and "--no-seeds" not in sys.argv:
                wrong += seeded(program, folder)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    for what in wrong[:40]:
        print("WRONG:", what)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())

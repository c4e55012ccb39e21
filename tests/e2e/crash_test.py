"""Stops, fails and cheats the real program at every call that changes something on disk, and looks for what is lost.

A three-message run with removal on is repeated once for each such call and fault; after each, every attachment must be
complete in a visible message or in a saved file, and a run without a fault must converge. Then a model of a disk that
keeps only what was flushed cuts the power after every call. Last, faults seeded into a copy of the code: each must be
caught. Prints how many points there were.
"""
import os
import shutil
import sys
import tempfile
from collections import Counter
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from crash import kernel, power_cut, seeds  # noqa: E402
from crash.mailbox import MANY, ONE, THREE, Mailbox, parts_of  # noqa: E402
from crash.program import Program, build_shim  # noqa: E402

SKIP = 77
SOURCE = Path(os.environ.get("SOURCE_DIR", Path(__file__).resolve().parents[2]))
PROGRAM = Path(os.environ.get("QUILLFILE", SOURCE / "build/asan/apps/quillfile/quillfile"))

# Which calls each fault is tried at. "torn", "short" and "flip" are faults of writes, "squat" of renames.
FAULTS = {"kill": None, "eio": None, "enospc": None, "torn": "write", "short": "write", "flip": "write", "squat": "rename"}


def held_by_path(mailbox) -> dict:
    held, number = {}, {content: index for index, content in enumerate(mailbox.payloads)}
    for path, content in mailbox.messages():
        held[str(path)] = {number[part] for part in parts_of(content) if part in number}
    for path, content in mailbox.files():
        held[str(path)] = {number[content]} if content in number else set()
    return held


def reference(program, mailbox, executable=None):
    """The run without a fault: its calls, and what a power cut would have broken."""
    mailbox.reset()
    start = held_by_path(mailbox)
    status, errors = program.run(program=executable)
    if status != 0:
        return [], [f"the run without a fault ended with {status}: {errors}"]
    calls = program.calls()
    if not mailbox.rewritten:
        mailbox.learn()
    return calls, mailbox.not_converged() + power_cut.violations(calls, mailbox, held_by_path(mailbox), start)


def try_fault(program, mailbox, call, fault, executable=None) -> list[str]:
    """One run with a fault, and one without after it; what went wrong."""
    mailbox.reset()
    status, errors = program.run(call.number, fault, executable)
    about = f"{fault} at call {call.number} ({call.name} {call.path} {call.second})"
    if status not in (0, 1, 3, -9):
        return [f"{about}: ended with {status}: {errors[-500:]}"]
    wrong = [f"{about}: {what}" for what in mailbox.broken_promises()]
    if fault == "squat" and call.second.startswith(str(mailbox.saved)):
        if Path(call.second).read_bytes() != b"another's":
            wrong.append(f"{about}: another program's file was replaced")
    if fault == "short":
        wrong += [f"{about}: {what}" for what in mailbox.not_converged()]
    status, errors = program.run(program=executable)
    if status != 0:
        wrong.append(f"{about}: the next run ended with {status}: {errors[-500:]}")
    return wrong + [f"{about}, next run: {what}" for what in mailbox.not_converged()]


def sweep(program, mailbox, calls, executable=None, stop_at_first=False):
    """Every call, every fault that fits it."""
    tried, wrong = Counter(), []
    for fault, name in FAULTS.items():
        for call in calls:
            if call.phase == "begin" or (name and call.name != name):
                continue
            if fault == "flip" and call.path.startswith(str(mailbox.settings)):
                continue  # the settings are not read back: no attachment depends on them
            tried[fault] += 1
            wrong += try_fault(program, mailbox, call, fault, executable)
            if wrong and stop_at_first:
                return tried, wrong
    return tried, wrong


def seeded(program, one, folder) -> list[str]:
    mailbox = program.mailbox
    build_folder = PROGRAM.resolve().parents[2]
    missed = []
    for seed in seeds.SEEDS:
        executable = seeds.build(seed, SOURCE, build_folder, folder)
        calls, wrong = reference(program, mailbox, executable)
        wrong = wrong or reference(one, one.mailbox, executable)[1]
        if not wrong:
            _, wrong = sweep(program, mailbox, calls, executable, stop_at_first=True)
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
        one, many, program = (Program(PROGRAM, shim, Mailbox(folder / "box", **what)) for what in (ONE, MANY, THREE))
        wrong = []
        for run in (one, many, program):
            calls, wrong_here = reference(run, run.mailbox)
            wrong += wrong_here
            print(f"messages: {len(run.mailbox.flags)}, power cuts modelled: {len(calls)}", flush=True)
        counted = Counter(call.name for call in calls if call.phase == "end")
        print(f"calls that change the disk: {sum(counted.values())}: {dict(counted)}", flush=True)
        program.mailbox.reset()
        seen = kernel.changing_calls(program.command(), program.environment(), folder)
        print("the kernel saw", "nothing: there is no strace" if seen is None else "the same calls" if seen == counted else dict(seen))
        if seen not in (None, counted):
            wrong.append("calls went past the shim")
        if not wrong:
            tried, wrong = sweep(program, program.mailbox, calls)
            print(f"points tried: {sum(tried.values())}: {dict(tried)}", flush=True)
        if not wrong and "--no-seeds" not in sys.argv:
            wrong = seeded(program, one, folder)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    for what in wrong[:40]:
        print("WRONG:", what)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())

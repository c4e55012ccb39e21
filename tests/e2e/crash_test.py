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
from crash import kernel, seeds  # noqa: E402
from crash.mailbox import MANY, ONE, THREE, Mailbox  # noqa: E402
from crash.program import Program, build_shim  # noqa: E402
from crash.sweep import reference, sweep  # noqa: E402

SKIP = 77
SOURCE = Path(os.environ.get("SOURCE_DIR", Path(__file__).resolve().parents[2]))
PROGRAM = Path(os.environ.get("QUILLFILE", SOURCE / "build/asan/apps/quillfile/quillfile"))

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

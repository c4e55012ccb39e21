"""Stops, fails and cheats the real program at every call that changes something on disk, and looks for what is lost.

A three-message run with removal on is repeated once for each such call and fault; after each, every attachment must be
complete in a visible message or in a saved file, and a run without a fault must converge. Then a model of a disk that
keeps only what was flushed cuts the power after every call. All of it twice: on a file system that has files without a
name, and as on one that has none. Last, faults seeded into a copy of the code: each must be caught. Prints how many
points there were.
"""
import sys
from collections import Counter
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from crash import kernel, seeds  # noqa: E402
from crash.mailbox import MANY, ONE, THREE, Mailbox  # noqa: E402
from crash.program import Program  # noqa: E402
from crash.run import PROGRAM, WITH_SEEDS, missed, run  # noqa: E402
from crash.sweep import reference, sweep  # noqa: E402


def find_wrong(shim, folder) -> list[str]:
    return find_wrong_where(True, seeds.SEEDS, shim, folder) + find_wrong_where(False, seeds.NAMED_SEEDS, shim, folder)


def find_wrong_where(nameless, seeded, shim, folder) -> list[str]:
    one, many, program = (Program(PROGRAM, shim, Mailbox(folder / "box", **what), nameless=nameless)
                          for what in (ONE, MANY, THREE))
    wrong = []
    print("files without a name:", program.nameless)
    for each in (one, many, program):
        calls, wrong_here = reference(each, each.mailbox)
        wrong += wrong_here
        print(f"messages: {len(each.mailbox.flags)}, power cuts modelled: {len(calls)}", flush=True)
    counted = Counter(call.name for call in calls if call.phase == "end")
    print(f"calls that change the disk: {sum(counted.values())}: {dict(counted)}", flush=True)
    program.mailbox.reset()
    seen = kernel.changing_calls(program.command(), program.environment(), folder) if nameless else None
    if nameless:
        print("the kernel saw", "nothing: there is no strace" if seen is None else "the same calls" if seen == counted else dict(seen))
    if seen not in (None, counted):
        wrong.append("calls went past the shim")
    if not wrong:
        tried, wrong = sweep(program, program.mailbox, calls)
        print(f"points tried: {sum(tried.values())}: {dict(tried)}", flush=True)
    if wrong or not WITH_SEEDS:
        return wrong

    def with_fault(executable):
        calls, wrong = reference(program, program.mailbox, executable)
        wrong = wrong or reference(one, one.mailbox, executable)[1]
        return wrong or sweep(program, program.mailbox, calls, executable, stop_at_first=True)[1]

    return missed(seeded, folder, with_fault)


if __name__ == "__main__":
    sys.exit(run(find_wrong))

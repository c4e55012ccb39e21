"""Stops, fails and cheats `restore`, `forward` and `reply` at every call that changes something on disk.

After each fault the messages and the saved files must be as they were or fully done, and no draft that a reader would
show may be a half one; the same command without a fault must converge, and clear away what was left. Prints how many
points there were. Then faults seeded into a copy of the code: each must be caught.
"""
import sys
from collections import Counter
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from crash import kernel, seeds  # noqa: E402
from crash.mailbox import THREE  # noqa: E402
from crash.program import Program  # noqa: E402
from crash.run import PROGRAM, WITH_SEEDS, missed, run  # noqa: E402
from crash.stripped import Answered, Replied, Restored  # noqa: E402
from crash.sweep import reference, sweep  # noqa: E402

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


def find_wrong(shim, folder) -> list[str]:
    wrong = []
    for name, kind in COMMANDS.items():
        mailbox = kind(folder / name, **THREE)
        program = Program(PROGRAM, shim, mailbox, name, "1-3")
        mailbox.prepare(Program(PROGRAM, shim, mailbox))

        def with_fault(executable):
            calls, found = reference(program, mailbox, executable)
            return found or sweep(program, mailbox, calls, executable, stop_at_first=True)[1]

        wrong += swept(program, folder)
        if name == "forward" and not wrong and WITH_SEEDS:
            wrong += missed(seeds.DRAFT_SEEDS, folder, with_fault)
    return wrong


if __name__ == "__main__":
    sys.exit(run(find_wrong))

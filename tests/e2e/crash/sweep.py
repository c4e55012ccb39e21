"""Every fault at every call of a run that changes something on disk, and what is wrong after each."""
from collections import Counter
from pathlib import Path

from crash import power_cut

# Which calls each fault is tried at. "torn", "short" and "flip" are faults of writes, "squat" of names that are given.
ANY, WRITES, NAMES = None, ("write",), ("rename", "link")
FAULTS = {"kill": ANY, "eio": ANY, "enospc": ANY, "torn": WRITES, "short": WRITES, "flip": WRITES, "squat": NAMES}


def reference(program, mailbox, executable=None):
    """The run without a fault: its calls, and what a power cut would have broken."""
    mailbox.reset()
    start = mailbox.held()
    status, errors = program.run(program=executable)
    if status != 0:
        return [], [f"the run without a fault ended with {status}: {errors}"]
    calls = program.calls()
    mailbox.learn()
    return calls, mailbox.not_converged() + power_cut.violations(calls, mailbox, mailbox.held(), start)


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
    for fault, names in FAULTS.items():
        for call in calls:
            if call.phase == "begin" or (names and call.name not in names):
                continue
            if fault == "squat" and call.name == "link" and not call.second.startswith(str(mailbox.saved)):
                continue  # another message has no such name
            if fault == "flip" and call.path.startswith(str(mailbox.settings)):
                continue  # the settings are not read back: no attachment depends on them
            tried[fault] += 1
            wrong += try_fault(program, mailbox, call, fault, executable)
            if wrong and stop_at_first:
                return tried, wrong
    return tried, wrong

"""A model of a disk that keeps nothing but what was flushed, and of a power cut at every call of a run.

The worst disk that is allowed: a name or a file's bytes are certain to be there after a cut only once they were
flushed; a name whose removal was asked for may be gone from that moment on, flushed or not. A rename is one step.
"""
import os
from dataclasses import dataclass, field

NOREPLACE = 1


@dataclass
class File:
    holds: frozenset = frozenset()  # what of everything it holds, once it is complete
    durable: bool = True


@dataclass
class Disk:
    names: dict = field(default_factory=dict)    # path -> File, as programs see it
    certain: dict = field(default_factory=dict)  # path -> File, as after a cut
    pending: list = field(default_factory=list)  # (folder, path, File or None) that was not flushed yet
    marks: dict = field(default_factory=dict)    # what a flush that is running will have covered

    def add(self, path, file):
        self.names[path] = self.certain[path] = file

    def give(self, path, file):
        self.names[path] = file
        self.pending.append((os.path.dirname(path), path, file))

    def take(self, path):
        file = self.names.pop(path, None)
        self.certain.pop(path, None)
        self.pending = [entry for entry in self.pending if entry[1] != path]
        return file

    def flush(self, covered, folder=None):
        for entry in covered:
            if entry in self.pending and folder in (None, entry[0]):
                self.certain[entry[1]] = entry[2]
                self.pending.remove(entry)


def visible(path: str) -> bool:
    parts = path.split("/")
    nameless = parts[-1].startswith("#")
    return not nameless and not parts[-1].startswith(".") and "tmp" not in parts[-2:-1]


def violations(calls, mailbox, holds_at_end, holds_at_start) -> list[str]:
    """Promises that a power cut at some call would have broken. `holds_…`: path -> what it holds."""
    disk, wrong = Disk(), []
    for path, held in holds_at_start.items():
        disk.add(path, File(frozenset(held)))
    final = final_names(calls)
    inside = (str(mailbox.mail), str(mailbox.saved))

    def check(call):
        kept = {a for path, file in disk.certain.items() if file.durable and visible(path) for a in file.holds}
        for lost in sorted(map(str, mailbox.everything() - kept)):
            wrong.append(f"a power cut after call {call.number} ({call.name} {call.path}) loses {lost}")

    for call in calls:
        if not call.path.startswith(inside) and call.name != "syncfs":
            continue
        if call.phase == "begin":
            disk.marks[call.path] = list(disk.pending), [f for f in disk.names.values() if not f.durable]
            continue
        if call.result < 0:
            continue
        if call.name == "open":
            if call.path not in disk.names:
                last = final.get(call.path, call.path)
                disk.give(call.path, File(frozenset(holds_at_end.get(last, ()))))
        elif call.name in ("write", "truncate") and call.path in disk.names:
            disk.names[call.path].durable = False
        elif call.name in ("fsync", "syncfs"):
            names, files = disk.marks.pop(call.path)
            everything = call.name == "syncfs"
            disk.flush(names, None if everything else call.path)
            for file in files:
                file.durable = file.durable or everything or disk.names.get(call.path) is file
        elif call.name in ("rename", "link"):
            was_certain = disk.certain.get(call.path)
            file = disk.take(call.path) if call.name == "rename" else disk.names.get(call.path)
            if file is None:
                continue
            if call.name == "rename" and was_certain is file and visible(call.path) and visible(call.second):
                disk.add(call.second, file)  # it is there under the one name or the other
                continue
            if visible(call.second) and not file.durable:
                wrong.append(f"call {call.number} gives {call.second} to bytes that were not flushed")
            if call.name == "rename" and call.flags != NOREPLACE and call.second.startswith(str(mailbox.saved)):
                wrong.append(f"call {call.number} could replace {call.second}")
            disk.give(call.second, file)
        elif call.name == "unlink":
            disk.take(call.path)
        check(call)
    return wrong


def final_names(calls):
    """Where each file that was created under a temporary name ended up."""
    final = {}
    for call in calls:
        if call.phase == "end" and call.result >= 0 and call.name in ("rename", "link"):
            final[call.path] = call.second
    return final

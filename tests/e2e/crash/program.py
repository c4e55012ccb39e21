"""Runs the program under the preload shim."""
import os
import shutil
import subprocess
from dataclasses import dataclass
from pathlib import Path


@dataclass
class Call:
    """A call that changes something on disk, as the shim wrote it down."""
    number: int
    phase: str  # "begin" (flushes only) or "end"
    name: str
    path: str
    second: str
    flags: int
    result: int


class Program:
    def __init__(self, program: Path, shim: Path, mailbox, *arguments: str, nameless: bool = True):
        """`nameless`: whether the file system has files without a name."""
        self.program, self.shim, self.mailbox, self.arguments = program, shim, mailbox, arguments or ("save",)
        self.nameless = "yes" if nameless else "no"
        self.log = shim.parent / "calls.log"

    def command(self):
        box = self.mailbox
        return [str(self.program), "--mail", str(box.mail), "--settings", str(box.settings), "--answer", "yes", "--quiet",
                *self.arguments]

    def environment(self):
        home = str(self.mailbox.root / "home")
        return {"PATH": os.environ.get("PATH", ""), "HOME": home, "XDG_STATE_HOME": home, "LC_ALL": "C.UTF-8", "TZ": "UTC",
                "ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=0"}

    def run(self, at: int = 0, fault: str = "", program: Path | None = None):
        """Exit status (negative: the signal) and standard error."""
        self.log.unlink(missing_ok=True)
        environment = self.environment() | {"LD_PRELOAD": str(self.shim), "SHIM_LOG": str(self.log), "SHIM_NAMELESS": self.nameless}
        if fault:
            environment |= {"SHIM_AT": str(at), "SHIM_FAULT": fault}
        command = self.command()
        if program:
            command[0] = str(program)
        done = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
        return done.returncode, done.stderr.decode(errors="replace")

    def calls(self) -> list[Call]:
        calls = []
        for line in self.log.read_text(errors="surrogateescape").splitlines():
            number, phase, name, path, second, flags, result = line.split("\t")
            calls.append(Call(int(number), phase, name, path, second, int(flags), int(result)))
        return calls


def build_shim(source: Path, folder: Path) -> Path | None:
    compiler = shutil.which(os.environ.get("CC", "cc"))
    if not compiler:
        return None
    shim = folder / "fault_shim.so"
    subprocess.run([compiler, "-shared", "-fPIC", "-O1", "-o", str(shim), str(source)], check=True)
    return shim

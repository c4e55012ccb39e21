"""What the kernel saw of a run: so that nothing that changes the disk goes past the shim."""
import re
import shutil
import subprocess
from collections import Counter
from pathlib import Path

NAMES = {
    "open": "open", "openat": "open", "creat": "open", "write": "write", "writev": "write", "pwrite64": "write",
    "fsync": "fsync", "fdatasync": "fsync", "syncfs": "syncfs", "rename": "rename", "renameat": "rename",
    "renameat2": "rename", "link": "link", "linkat": "link", "unlink": "unlink", "unlinkat": "unlink", "rmdir": "unlink",
    "mkdir": "mkdir", "mkdirat": "mkdir", "truncate": "truncate", "ftruncate": "truncate", "chmod": "chmod", "fchmod": "chmod",
    "fchmodat": "chmod", "utimensat": "times", "fallocate": "fallocate", "copy_file_range": "write", "sendfile": "write",
    "symlink": "symlink", "symlinkat": "symlink", "setxattr": "xattr", "fsetxattr": "xattr", "sync": "sync",
}


def changing_calls(command: list, environment: dict, folder: Path) -> Counter | None:
    """The same run without the shim, counted by strace; none where there is no strace that works."""
    tracer, log = shutil.which("strace"), folder / "strace.log"
    if not tracer:
        return None
    trace = [tracer, "-f", "-y", "-s", "0", "-o", str(log), "-e", "trace=" + ",".join(f"?{name}" for name in NAMES)]
    done = subprocess.run([*trace, *command], env=environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=300)
    if done.returncode != 0 or not log.exists():
        return None
    seen = Counter()
    for line in log.read_text(errors="replace").splitlines():
        found = re.match(r"\d+ +(\w+)\((.*)", line)
        if not found or found[1] not in NAMES:
            continue
        name, arguments = NAMES[found[1]], found[2]
        if name == "open" and not re.search(r"O_CREAT|O_TRUNC|O_TMPFILE", arguments):
            continue
        if name == "write" and not re.match(r"\d+</(?!dev/(?!shm/)|proc/)", arguments):
            continue  # to a terminal, a pipe or a socket
        seen[name] += 1
    return seen

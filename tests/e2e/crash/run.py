"""What the crash tests share: the program and the shim, a folder of their own, and the faults seeded into a copy of the code."""
import os
import shutil
import sys
import tempfile
from pathlib import Path

from . import seeds
from .program import build_shim

SKIP = 77
SOURCE = Path(os.environ.get("SOURCE_DIR", Path(__file__).resolve().parents[3]))
PROGRAM = Path(os.environ.get("QUILLFILE", SOURCE / "build/asan/apps/quillfile/quillfile"))
WITH_SEEDS = "--no-seeds" not in sys.argv


def run(find_wrong) -> int:
    """Exit status. `find_wrong` is given the shim and a folder, and answers with what went wrong."""
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
        wrong = find_wrong(shim, folder)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    for what in wrong[:40]:
        print("WRONG:", what)
    return 1 if wrong else 0


def missed(seeded, folder, find_wrong) -> list[str]:
    """The seeded faults that were not caught. `find_wrong` is given the program with the fault."""
    left = []
    for seed in seeded:
        wrong = find_wrong(seeds.build(seed, SOURCE, PROGRAM.resolve().parents[2], folder))
        print(f"seeded: {seed.name}: {'caught: ' + wrong[0] if wrong else 'NOT CAUGHT'}", flush=True)
        if not wrong:
            left.append(f"the seeded fault was not caught: {seed.name}")
    return left

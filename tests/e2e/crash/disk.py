"""A disk whose power can be cut: an ext4 file system on a loop device, in a file.

Mounted with noauto_da_alloc, so that ext4 flushes nothing that it was not asked to. The cut is ext4's own shutdown
call (EXT4_IOC_SHUTDOWN, linux/fs/ext4/ext4.h) without a flush of its journal: what was not written by then is gone.
"""
import fcntl
import os
import shutil
import struct
import subprocess
import time
from pathlib import Path

SHUTDOWN = 0x8004587D  # _IOR('X', 125, __u32)
WITHOUT_LOG_FLUSH = 2
SIZE = 128 << 20


class Unavailable(Exception):
    """This machine has no such disk; the text says why."""


def run(*command) -> str:
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True)
    if done.returncode != 0:
        raise OSError(f"{' '.join(done.args)}: {done.stderr.strip()}")
    return done.stdout.strip()


class Disk:
    def __init__(self, folder: Path):
        """Makes it in a file in `folder`, and cuts its power once for a try. Throws Unavailable."""
        if os.geteuid() != 0:
            raise Unavailable("only root can mount a loop device")
        missing = [tool for tool in ("mkfs.ext4", "losetup", "mount", "umount") if not shutil.which(tool)]
        if missing:
            raise Unavailable(f"there is no {missing[0]}")
        self.image, self.point, self.device = folder / "disk.img", folder / "disk", ""
        try:
            self.point.mkdir()
            with self.image.open("wb") as file:
                file.truncate(SIZE)
            run("mkfs.ext4", "-q", "-F", self.image)
            self.device = run("losetup", "--find", "--show", self.image)
            self.mount()
            self.cut_power()
            self.start_again()
        except OSError as reason:
            self.close()
            raise Unavailable(str(reason)) from reason

    def mount(self):
        run("mount", "-t", "ext4", "-o", "noauto_da_alloc", self.device, self.point)

    def unmount(self):
        for _ in range(50):  # somebody may just be looking at the new file system
            if subprocess.run(["umount", str(self.point)], capture_output=True).returncode == 0:
                return
            time.sleep(0.1)
        raise OSError(f"{self.point} cannot be unmounted")

    def flush(self):
        run("sync", "-f", self.point)

    def cut_power(self):
        """From now on every write fails; what the disk holds stays as it is until it is started again."""
        folder = os.open(self.point, os.O_RDONLY)
        try:
            fcntl.ioctl(folder, SHUTDOWN, struct.pack("I", WITHOUT_LOG_FLUSH))
        finally:
            os.close(folder)

    def start_again(self):
        """Unmounts, and mounts again: the journal is replayed."""
        self.unmount()
        self.mount()

    def close(self):
        if self.point.is_mount():
            self.unmount()
        if self.device:
            subprocess.run(["losetup", "--detach", self.device], capture_output=True)

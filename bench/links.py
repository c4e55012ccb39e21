#!/usr/bin/env python3
"""Forward and restore of one message with many link notes, and of one with a huge body: time and peak memory.

    bench/links.py [notes N…] [bytes MB…]

Each row is one run of the real program (build/release, or $QUILLFILE) over a mailbox of one message. "cpu s" is user and
system time, "peak MB" the largest resident set; what it costs to start the program is in both.
"""
import os
import subprocess
import sys
import tempfile
from pathlib import Path

PROGRAM = os.environ.get("QUILLFILE", str(Path(__file__).resolve().parents[1] / "build/release/apps/quillfile/quillfile"))
NOTES, MEGABYTES = (2_500, 5_000, 10_000), (12.5, 25, 50)
SETTINGS = "[Quillfile]\nSavePath={saved}/\nRemoveAttachment=1\nAddURL=1\nAutomaticReattachWanted=1\n"


def body(kind: str, links: list, filler: int) -> str:
    """A body of the kind with a note for each link at its end, as the program writes them, and `filler` bytes before."""
    line = "All work and no play makes this a dull body of mail, line after line. \n"
    text = line * (filler // len(line) + 1)
    if kind == "html":
        notes = "".join(f'<p>Attachment saved to <a href="{link}">{link}</a></p>' for link in links)
        return f"<html><body>\n<pre>{text}</pre>\n{notes}</Body></html>\n"
    return text + "".join(f"\n\nAttachment saved to <{link}>" for link in links) + "\n"


def measured(command: list, environment: dict):
    """Wall seconds, seconds of processor, peak kilobytes; by time(1), since a child of this process would begin with its size."""
    done = subprocess.run(["/usr/bin/time", "-f", "%e %U %S %M", *command], env=environment, stdin=subprocess.DEVNULL,
                          capture_output=True, text=True)
    *errors, figures = done.stderr.splitlines() or [""]
    if done.returncode != 0:
        sys.exit(f"{command} ended with {done.returncode}: {errors or figures}")
    wall, user, system, peak = map(float, figures.split())
    return wall, user + system, peak


def run(kind: str, notes: int, filler: int, command: str):
    with tempfile.TemporaryDirectory(prefix="quillfile-bench-", dir="/dev/shm" if Path("/dev/shm").is_dir() else None) as folder:
        root = Path(folder)
        for part in ("cur", "new", "tmp"):
            (root / "mail" / part).mkdir(parents=True)
        saved = root / "saved"
        saved.mkdir()
        for number in range(notes):
            (saved / f"file {number:05}.txt").write_bytes(b"content %d\n" % number)
        links = [f"file://{saved}/file {number:05}.txt" for number in range(notes)]
        subtype = "html" if kind == "html" else "plain"
        (root / "mail/cur/1700000000.M1P1.host:2,S").write_text(
            "From: a@example.org\nTo: b@example.org\nSubject: links\nDate: Wed, 4 Mar 2009 14:05:00 +0000\n"
            f"MIME-Version: 1.0\nContent-Type: text/{subtype}; charset=utf-8\n\n" + body(kind, links, filler))
        (root / "settings.ini").write_text(SETTINGS.format(saved=saved))
        environment = {"HOME": folder, "PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "TZ": "UTC"}
        return measured([PROGRAM, "--mail", str(root / "mail"), "--settings", str(root / "settings.ini"), "--quiet",
                         command, "1"], environment)


def main():
    words = sys.argv[1:]
    notes = [int(word) for word in words[words.index("notes") + 1:] if word.isdigit()] if "notes" in words else NOTES
    sizes = [float(word) for word in words[words.index("bytes") + 1:]] if "bytes" in words else MEGABYTES
    if words and "bytes" not in words:
        sizes = []
    if words and "notes" not in words:
        notes = []
    print(f"{'command':<9}{'body':<7}{'notes':>7}{'MB':>7}{'wall s':>9}{'cpu s':>9}{'peak MB':>9}")
    rows = [(n, 10_000) for n in notes] + [(10, int(size * 1e6)) for size in sizes]
    for command in ("restore", "forward", "reply"):
        for kind in ("plain", "html"):
            for count, filler in rows:
                wall, cpu, peak = run(kind, count, filler, command)
                print(f"{command:<9}{kind:<7}{count:>7}{filler / 1e6:>7.1f}{wall:>9.2f}{cpu:>9.2f}{peak / 1024:>9.1f}", flush=True)


if __name__ == "__main__":
    main()

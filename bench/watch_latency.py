"""What a watch costs: its start over a large folder, its memory at rest, and the time from delivery to saved file.

    QUILLFILE=build/release/apps/quillfile/quillfile python3 bench/watch_latency.py 200000

The Inbox holds that many small messages (hard links to a few files); then 1 MB messages are delivered, one at a time.
"""
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests" / "e2e"))
from watching import PROGRAM, Home, message, wait_until  # noqa: E402


def fill(home, count):
    source = home.root / "small"
    for number in range(count):
        if number % 30_000 == 0:  # file systems bound the links to a file
            source = home.root / f"small{number}"
            source.write_bytes(message("small", attachments=()))
        os.link(source, home.mail / "cur" / f"{1_600_000_000 + number}.M{number}P1.host.example.org:2,S")


def resident(process):
    fields = dict(line.split(":", 1) for line in open(f"/proc/{process.pid}/status"))
    return int(fields["VmRSS"].split()[0]) / 1024


def saved_after(home, number):
    content = message(f"large {number}", [(f"large{number}.pdf", os.urandom(720_000))])
    wanted = home.documents / "Saved Attachments" / "Inbox" / f"large{number}.pdf"
    began = time.perf_counter()
    home.deliver(content)
    while not wanted.exists():
        time.sleep(0.0005)
    return (time.perf_counter() - began) * 1000


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 200_000
    home = Home()
    shutil.rmtree(home.root / "state")
    fill(home, count)
    for what in ("first start", "next start"):
        began = time.perf_counter()
        home.run("watch", "--once")
        print(f"{what} over {count} messages: {time.perf_counter() - began:.2f} s")
    watch = home.watch()
    wait_until(lambda: watch.poll() is None and resident(watch) > 0, "the watch")
    time.sleep(2)
    print(f"resident at rest: {resident(watch):.1f} MB")
    times = []
    for number in range(15):
        times.append(saved_after(home, number))
        time.sleep(0.2)
    print(f"delivery to saved file, 1 MB: median {statistics.median(times):.1f} ms, longest {max(times):.1f} ms")
    print(f"resident after that: {resident(watch):.1f} MB")
    home.stop(watch)
    home.close()
    shutil.rmtree(home.root)


if __name__ == "__main__":
    main()

"""Memory does not grow with a message's attachments, whatever is done with it.

Each command runs on a small message and on a large one of the same build; the peaks, mapped pages among them, must not
differ by more than a few buffers.
"""
import base64
import os
import struct
import subprocess

from harness import PROGRAM, Case, main

SMALL, LARGE = 1_000_000, 32_000_000
ROOM = 16_000  # kilobytes
HEAD = (b"From: Ada <ada@example.org>\nTo: Ben <ben@example.org>\nSubject: Large\nMIME-Version: 1.0\n"
        b"Date: Wed, 04 Mar 2009 14:05:00 +0000\nContent-Type: multipart/mixed; boundary=b\n\n"
        b"--b\nContent-Type: text/plain\n\nHello\n\n")
BLOCK = bytes(range(256)) * 57


def pieces(size):
    for at in range(0, size, len(BLOCK)):
        yield BLOCK[:size - at]


def write_mail(path, head, contents):
    """Each content comes in pieces: this process stays small."""
    with open(path, "wb") as out:
        out.write(HEAD)
        for content in contents:
            out.write(b"--b\n" + head + b"Content-Transfer-Encoding: base64\n\n")
            rest = b""
            for piece in content:
                rest += piece
                whole = len(rest) // 57 * 57
                out.write(base64.encodebytes(rest[:whole]))
                rest = rest[whole:]
            out.write(base64.encodebytes(rest))
        out.write(b"--b--\n")


PDF = b"Content-Type: application/pdf; name=a.pdf\n"


def write_many(path, size):
    write_mail(path, PDF, (pieces(SMALL) for _ in range(size // SMALL)))


def stream(size):
    """A TNEF stream with one file."""
    def attribute(level, number, data):
        return struct.pack("<BII", level, number, len(data)) + data + struct.pack("<H", sum(data) & 0xFFFF)
    yield struct.pack("<IH", 0x223E9F78, 1)
    yield attribute(2, 0x00069002, bytes(14)) + attribute(2, 0x00018010, b"a.pdf\0")
    yield struct.pack("<BII", 2, 0x0006800F, size)
    total = 0
    for piece in pieces(size):
        total += sum(piece)
        yield piece
    yield struct.pack("<H", total & 0xFFFF)


def write_body(kind):
    """A body of so many bytes and a small attachment."""
    line = b"All work and no play makes this a dull body of mail, line after line. \n"
    begin, end = (b"<html><body>\n<pre>", b"</pre>\n</body></html>\n") if kind == "html" else (b"", b"")

    def write(path, size):
        head = HEAD.replace(b"text/plain", b"text/" + kind.encode())
        with open(path, "wb") as out:
            out.write(head.replace(b"Hello\n\n", b"") + begin)
            for _ in range(size // len(line)):
                out.write(line)
            out.write(end + b"--b\n" + PDF + b"Content-Transfer-Encoding: base64\n\n" + base64.encodebytes(bytes(600)) + b"--b--\n")
    return write


def write_container(path, size):
    write_mail(path, b"Content-Type: application/ms-tnef; name=winmail.dat\n", [stream(size)])


class Memory(Case):
    def peak(self, *arguments):
        """Runs the program; its largest memory in kilobytes."""
        # AddressSanitizer keeps what was freed for a while; here it counts.
        sanitizer = ":".join(filter(None, (self.home.environment.get("ASAN_OPTIONS"), "quarantine_size_mb=1")))
        with open(self.home.root / "out", "wb") as out:
            child = subprocess.Popen([PROGRAM, *map(str, arguments)], stdout=out, stderr=out, stdin=subprocess.DEVNULL,
                                     env={**self.home.environment, "ASAN_OPTIONS": sanitizer}, cwd=self.home.root)
            _, status, usage = os.wait4(child.pid, 0)
            child.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(child.returncode, 0, (self.home.root / "out").read_text())
        return usage.ru_maxrss

    def start(self, write, size, **settings):
        self.home.close()
        self.home.__init__()
        self.home.set(AutomaticRename=1, **settings)
        path = self.home.root / "a.eml"
        write(path, size)
        return path

    def work(self, write, size):
        """Command → its peak."""
        peaks = {}
        for number, name in enumerate(("msg", "html", "txt", "eml", "tnef")):
            self.home_with(write, size, SaveEmailsWanted=1, SaveEmailsAs1=number)
            peaks[f"save as .{name}"] = self.peak("save")
            (made,) = self.home.saved.glob("*." + name)
            if name in ("msg", "tnef"):
                peaks[f"import of a .{name}"] = self.peak("import", made)
        path = self.home_with(write, size, RemoveAttachment=1, AddURL=1)
        peaks["list"] = self.peak("list")
        peaks["forward"] = self.peak("forward", 1)
        peaks["save with removal"] = self.peak("save")
        self.assertEqual(sum(path.stat().st_size for path in self.home.saved.iterdir()), size)
        self.assertLess(self.messages()[0].stat().st_size, SMALL)
        peaks["restore"] = self.peak("restore", 1)
        self.assertGreater(self.messages()[0].stat().st_size, size)
        peaks["import of an .eml"] = self.peak("import", path)
        box = self.home.root / "a.mbox"
        subprocess.run(f"{{ echo 'From ada@example.org Sun Sep 13 12:26:40 2020'; cat a.eml; }} >a.mbox", shell=True, check=True,
                       cwd=self.home.root)
        peaks["import of an mbox"] = self.peak("import", box)
        return peaks

    def messages(self):
        return [path for path in self.home.messages() if path.is_file()]

    def home_with(self, write, size, **settings):
        path = self.start(write, size, **settings)
        os.link(path, self.home.maildir / "cur" / "1700000000.M1P1.host:2,S")
        return path

    def check(self, write):
        small, large = self.work(write, SMALL), self.work(write, LARGE)
        grown = {name: (small[name], large[name]) for name in small if large[name] - small[name] > ROOM}
        self.assertEqual(grown, {}, "kilobytes for a small message and a large one")

    def body_work(self, write, size):
        self.home_with(write, size, RemoveAttachment=1, AddURL=1)
        return {"save with removal": self.peak("save"), "forward": self.peak("forward", 1), "reply": self.peak("reply", 1),
                "restore": self.peak("restore", 1)}

    def test_a_large_body(self):
        """A body is text in memory, two bytes a letter: no command holds more than so many times the body."""
        most = {"save with removal": 5, "forward": 7, "reply": 7, "restore": 5}
        for kind in ("plain", "html"):
            small, large = (self.body_work(write_body(kind), size) for size in (SMALL, LARGE))
            times = {name: (large[name] - small[name]) * 1024 / (LARGE - SMALL) for name in small}
            too_much = {name: times[name] for name in times if times[name] > most[name]}
            self.assertEqual(too_much, {}, kind)

    def test_many_attachments(self):
        self.check(write_many)

    def test_a_large_attachment_in_a_container(self):
        self.check(write_container)


if __name__ == "__main__":
    main()

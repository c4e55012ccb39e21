"""Message files and TNEF streams, read by programs that nobody here wrote: every byte of every attachment.

Asks file, msgconvert, tnef and ytnef, those of them that are installed, and compares with what was put in. The same for
the TNEF streams of the corpus, taken apart by us and by tnef and ytnef.
"""
import email
import email.message
import email.policy
import hashlib
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile

TOOL = pathlib.Path(os.environ.get("TOOLS", "")) / "formats_tool"
PROGRAM = pathlib.Path(os.environ.get("QUILLFILE", ""))
SKIPPED = 77
SIZES = {"one.bin": 1, "small.txt": 4095, "sector.dat": 4096, "large.bin": 300_001, "b\u00e4r.pdf": 70_000}


def run(*words, **more):
    return subprocess.run([str(word) for word in words], capture_output=True, check=True, **more)


def works(*words):
    """Whether the program is there and can start: a missing Perl module stops msgconvert."""
    try:
        return subprocess.run(words, capture_output=True, stdin=subprocess.DEVNULL, timeout=60).returncode == 0
    except FileNotFoundError:
        return False


def digests(folder):
    return sorted(hashlib.sha256(path.read_bytes()).hexdigest() for path in folder.rglob("*") if path.is_file())


def inputs(folder):
    folder.mkdir()
    numbers = random.Random(7)
    for name, size in SIZES.items():
        (folder / name).write_bytes(numbers.randbytes(size))
    return sorted(folder.iterdir())


def check_message_file(work, files):
    run(TOOL, "write", "msg", work / "a.msg", *files)
    run(TOOL, "write", "msg", work / "b.msg", *files)
    assert (work / "a.msg").read_bytes() == (work / "b.msg").read_bytes(), "equal messages give equal files"
    if works("file", "--version"):
        kind = run("file", "-b", work / "a.msg").stdout.decode()
        assert kind.startswith("CDFV2 Microsoft Outlook Message"), kind
    if not works("perl", "-MEmail::Outlook::Message", "-MEmail::Address", "-e", "1"):
        print("skipped: msgconvert does not run here")
        return
    run("msgconvert", "--outfile", work / "a.eml", work / "a.msg")
    message = email.message_from_bytes((work / "a.eml").read_bytes(), policy=email.policy.default)
    found = {part.get_filename(): part.get_payload(decode=True) for part in message.iter_attachments()}
    assert found == {path.name: path.read_bytes() for path in files}, sorted(found)
    assert message["Message-Id"] == "<one@example.org>", message["Message-Id"]
    assert "bob@example.org" in message["To"] and "carol@example.org" in message["Cc"]
    assert message.get_body(("plain",)).get_content().split() == ["Hello,", "here", "they", "are."]
    assert message.get_body(("html",)).get_content().strip() == "<p>Hello, here they are.</p>"


def check_tnef(work, files):
    run(TOOL, "write", "tnef", work / "a.tnef", *files)
    if works("file", "--version"):
        kind = run("file", "-b", work / "a.tnef").stdout.decode()
        assert kind.startswith("Transport Neutral Encapsulation Format"), kind
    wanted = digests(work / "in")
    for name, words in (("tnef", ("-C",)), ("ytnef", ("-f",))):
        if not shutil.which(name):
            print("skipped: no", name)
            continue
        out = work / name
        out.mkdir()
        run(name, *words, out, work / "a.tnef")
        assert digests(out) == wanted, (name, sorted(path.name for path in out.iterdir()))


def check_own_readers(work):
    """Ours, of the same files, and through RFC 5322."""
    wanted = digests(work / "in")
    for format in ("msg", "tnef"):
        out = work / ("own-" + format)
        out.mkdir()
        run(TOOL, "read", work / ("a." + format), out)
        assert digests(out) == wanted, format
        run(TOOL, "convert", "eml", work / "c.eml", work / ("a." + format))
        message = email.message_from_bytes((work / "c.eml").read_bytes(), policy=email.policy.default)
        parts = sorted(hashlib.sha256(part.get_payload(decode=True)).hexdigest() for part in message.iter_attachments())
        assert parts == wanted, format


def corpus():
    for above in pathlib.Path(os.environ.get("SOURCE_DIR", ".")).resolve().parents:
        if (above / "shared" / "corpus" / "mimekit" / "tnef").is_dir():
            return above / "shared" / "corpus" / "mimekit" / "tnef"
    return None


# Streams in which the other reader finds other bytes than we do, and why.
DIFFERENT = {
    "tnef": {
        "MAPI_OBJECT": "it leaves the sixteen bytes in front of an object that say who reads it",
        "winmail": "as MAPI_OBJECT",
        "christmas": "a message within the message is the bytes of a stream to it; we open the message",
        "panic": "it stops at the bytes behind the stream, with the third attachment still unwritten",
    },
    "ytnef": {
        "MAPI_ATTACH_DATA_OBJ": "it finds no attachment whose bytes are among the properties",
        "MAPI_OBJECT": "it takes an object of 600 KB for damage",
        "winmail": "it writes no objects",
        "christmas": "it ends with an error at the message within the message",
        "data-before-name": "it ends with an error at an empty file",
        "panic": "it ends with an error at the bytes behind the stream",
        "triples": "it makes a calendar file out of the properties of an appointment",
    },
}


def check_corpus(work):
    folder = corpus()
    if folder is None or not shutil.which("tnef"):
        print("skipped: no corpus, or no tnef")
        return
    for stream in sorted(folder.glob("*.tnef")):
        found = {}
        for reader, words in (("ours", (TOOL, "read")), ("tnef", ("tnef", "--number-backups", "-C")), ("ytnef", ("ytnef", "-f"))):
            out = work / reader / stream.stem
            out.mkdir(parents=True)
            if shutil.which(words[0]):
                order = (stream, out) if reader == "ours" else (out, stream)
                subprocess.run([*words, *order], capture_output=True)
                found[reader] = digests(out)
        for reader in ("tnef", "ytnef"):
            if reader in found:
                same = found["ours"] == found[reader]
                why = DIFFERENT[reader].get(stream.stem)
                assert same != bool(why), (stream.stem, reader, "agrees" if same else "differs")
                print(stream.stem, reader, "agrees" if same else "differs: " + why)
        check_other_format(work, stream, found["ours"])


def check_other_format(work, stream, wanted):
    """The same attachments after a way through the other format."""
    run(TOOL, "convert", "msg", work / "x.msg", stream)
    again = work / "again" / stream.stem
    again.mkdir(parents=True)
    run(TOOL, "read", work / "x.msg", again)
    assert digests(again) == wanted, stream.stem


def mail(files):
    """A message with an HTML body that shows a picture, the files, and a message in it."""
    inner = email.message.EmailMessage(policy=email.policy.SMTP)
    inner["Subject"] = "Within"
    inner.set_content("inner\n")
    message = email.message.EmailMessage(policy=email.policy.SMTP)
    message["From"] = "Ada M\u00fcller <ada@example.org>"
    message["To"] = "Bob <bob@example.org>"
    message["Subject"] = "A report"
    message["Date"] = "Sun, 13 Sep 2020 12:26:40 +0000"
    message["Message-ID"] = "<e2e@example.org>"
    message.set_content("Hello\n")
    message.add_alternative("<p>Hello <img src='cid:p@x'></p>\n", subtype="html")
    for path in files:
        message.add_attachment(path.read_bytes(), maintype="application", subtype="octet-stream", filename=path.name)
    message.add_attachment(inner)
    return message.as_bytes()


def filed(message):
    """Names and digests of what has a name in a message, but for messages in it."""
    return sorted((part.get_filename(), hashlib.sha256(part.get_payload(decode=True) or b"").hexdigest())
                  for part in message.walk() if part.get_filename() and not part.get_filename().endswith(".eml")
                  and part.get_content_maintype() != "message")


def check_program(work, files):
    """The program itself: the item saved in both formats, and what it saved imported again."""
    if not PROGRAM.is_file():
        print("skipped: the program was not built")
        return
    store, home, settings = work / "store", work / "home", work / "settings.ini"
    for folder in (store / "cur", store / "new", store / "tmp", home):
        folder.mkdir(parents=True)
    original = mail(files)
    (store / "cur" / "1600000000.M1P1.host:2,S").write_bytes(original)
    settings.write_text("[Quillfile]\nSaveEmailsWanted=1\nSaveEmailsAs1=0\nSaveEmailsAs2=4\n")
    quiet = {**os.environ, "HOME": str(home)}  # where the first run puts its folder for saved files
    run(PROGRAM, "--mail", store, "--settings", settings, "save", env=quiet)
    wanted = filed(email.message_from_bytes(original, policy=email.policy.default))
    files_of = {ending: list(home.rglob("*" + ending)) for ending in (".msg", ".tnef")}
    assert all(len(found) == 1 for found in files_of.values()), files_of
    for ending, (path,) in files_of.items():
        again = work / ("again" + ending)
        for folder in ("cur", "new", "tmp"):
            (again / folder).mkdir(parents=True)
        run(PROGRAM, "--mail", again, "--settings", settings, "import", path, env=quiet)
        (back,) = [file for file in again.rglob("*") if file.is_file() and file.parent.name in ("cur", "new")]
        message = email.message_from_bytes(back.read_bytes(), policy=email.policy.default)
        assert filed(message) == wanted, (ending, filed(message), wanted)
        assert message["Subject"] == "A report" and message["Message-ID"] == "<e2e@example.org>"
        inside = [part.get_content()["Subject"] for part in message.iter_attachments()
                  if part.get_content_type() == "message/rfc822"]
        assert inside == ["Within"], inside
    if works("perl", "-MEmail::Outlook::Message", "-MEmail::Address", "-e", "1"):
        run("msgconvert", "--outfile", work / "p.eml", files_of[".msg"][0])
        theirs = email.message_from_bytes((work / "p.eml").read_bytes(), policy=email.policy.default)
        assert filed(theirs) == wanted, (filed(theirs), wanted)
    if shutil.which("tnef"):
        (work / "p").mkdir()
        run("tnef", "-C", work / "p", files_of[".tnef"][0])
        # The message within it comes out of tnef as a stream of its own.
        assert set(digest for _, digest in wanted) <= set(digests(work / "p"))


def main():
    if not TOOL.exists():
        print("skipped: the program formats_tool was not built")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        files = inputs(work / "in")
        check_message_file(work, files)
        check_tnef(work, files)
        check_own_readers(work)
        check_program(work, files)
        check_corpus(work)
    return 0


if __name__ == "__main__":
    sys.exit(main())

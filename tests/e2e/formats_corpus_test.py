"""Messages of the corpus in all five formats, read back by readers that nobody here wrote, every attachment's bytes compared.

Every EVERY-th message (8 when nothing is said; 1 for all of them). Prints the table: format, reader, and for how many
messages it gave every attachment back. What a reader cannot give back is named below with its reason; anything else fails.
"""
import email
import email.policy
import hashlib
import os
import pathlib
import shutil
import subprocess
from collections import Counter

from corpus_test import corpus
from harness import Case, main

TOOL = pathlib.Path(os.environ.get("TOOLS", "")) / "formats_tool"
EVERY = int(os.environ.get("EVERY", "8"))
EMPTY = "it gives no empty files"
SAME_NAME = "it writes files of the same name over each other"
# What a reader does not give back: (message, ending, reader) → why. Anything else fails, and so does a row that is not needed.
EXPLAINED = {
    ("multi-badnames.msg", ".eml", "Python"): "it does not see a boundary that goes over two lines",
    ("twopart.msg", ".eml", "Python"): "it does not know an encoding's name with a blank behind it",
    ("multi-badnames.msg", ".tnef", "ytnef"): EMPTY,
    **{(f"body.{n}.txt", ".tnef", "ytnef"): EMPTY for n in range(4, 10)},
    ("epilogue.txt", ".tnef", "ytnef"): EMPTY,
    ("example.msg", ".tnef", "ytnef"): SAME_NAME,
    ("dup-names.msg", ".tnef", "ytnef"): SAME_NAME,
    ("multi-2evil.msg", ".tnef", "ytnef"): "it refuses names of more than 100 bytes",
}
MSGCONVERT = ("perl", "-MEmail::Outlook::Message", "-MEmail::Address", "-e", "1")


def quiet(*words):
    return subprocess.run([str(word) for word in words], capture_output=True, stdin=subprocess.DEVNULL, timeout=300)


def ending_of(path: pathlib.Path) -> str:
    return path.suffix or path.name  # a message without a subject is ".msg"


def digest(content: bytes) -> str:
    return hashlib.sha1(content).hexdigest()


def digests(folder: pathlib.Path) -> Counter:
    return Counter(digest(path.read_bytes()) for path in folder.rglob("*") if path.is_file())


def of_mail(content: bytes) -> Counter:
    message = email.message_from_bytes(content, policy=email.policy.compat32)
    return Counter(digest(part.get_payload(decode=True) or b"") for part in message.walk() if not part.is_multipart())


class Corpus(Case):
    def written(self, first: int, second: int, folder: str):
        """Saves every message as two formats; file by item and ending."""
        target = self.home.root / folder
        self.home.set(SavePath=f"{target}/", SaveEmailsWanted=1, SaveEmailsAs1=first, SaveEmailsAs2=second, AutomaticRename=1)
        done = self.home.run("--json", "save")
        self.assertEqual((done.status, done.err), (0, ""))
        return done.json["saved"]

    def read_back(self, path: pathlib.Path, out: pathlib.Path):
        """Reader → what it found, as a multiset of digests; only of readers that are here."""
        found = {}
        ending = ending_of(path)
        out.mkdir(parents=True)
        if ending in (".msg", ".tnef"):
            (out / "ours").mkdir()
            quiet(TOOL, "read", path, out / "ours")
            found["ours"] = digests(out / "ours")
        if ending == ".msg" and self.has_msgconvert:
            quiet("msgconvert", "--outfile", out / "a.eml", path)
            found["msgconvert"] = of_mail((out / "a.eml").read_bytes()) if (out / "a.eml").exists() else Counter()
        if ending == ".tnef":
            for reader, words in (("tnef", ("tnef", "--number-backups", "-C")), ("ytnef", ("ytnef", "-f"))):
                if shutil.which(reader):
                    (out / reader).mkdir()
                    quiet(*words, out / reader, path)
                    found[reader] = digests(out / reader)
        if ending == ".eml":
            found["Python"] = of_mail(path.read_bytes())
        if shutil.which("file"):
            kind = quiet("file", "-b", path).stdout.decode(errors="replace")
            wanted = {".msg": "CDFV2 Microsoft Outlook Message", ".tnef": "Transport Neutral Encapsulation Format"}
            self.assertTrue(kind.startswith(wanted.get(ending, "")), (path, kind))
        return found

    def test_every_format_and_reader(self):
        if not TOOL.exists():
            self.skipTest("the program formats_tool was not built")
        self.has_msgconvert = quiet(*MSGCONVERT).returncode == 0
        source = {}
        for path in corpus()[::EVERY]:
            source["Inbox/" + self.home.add(path).name.split(":")[0]] = path
        listed = {item["id"]: item for item in self.home.run("--json", "list").json}
        self.assertEqual(set(listed), set(source))
        self.home.set(SavePath=f"{self.home.root}/plain/", AutomaticRename=1)
        files = {}
        for entry in self.home.run("--json", "save").json["saved"]:
            files.setdefault(entry["item"], []).append((entry["file_name"], pathlib.Path(entry["path"])))
        written, asked, whole = Counter(), Counter(), Counter()
        different = {}
        for first, second, folder in ((0, 4, "a"), (1, 2, "b"), (3, 5, "c")):
            saved = self.written(first, second, folder)
            again = self.written(first, second, folder + "2")
            mails, others = self.mails(saved), self.mails(again)
            for (item, ending), path in mails.items():
                self.assertEqual(path.read_bytes(), others[(item, ending)].read_bytes(), "equal messages, equal files")
                written[ending] += 1
                # Messages within messages come out of the readers in their own forms.
                embedded = {a["file_name"] for a in listed[item]["attachments"] if a["type"] != 1}
                wanted = Counter(digest(file.read_bytes()) for name, file in files.get(item, [])
                                 if name not in embedded and not name.endswith(".eml"))
                if ending == ".eml" and b"ms-tnef" in path.read_bytes():
                    continue  # the message's own bytes: what the container holds is for readers of TNEF
                for reader, found in self.read_back(path, self.home.root / "out" / folder / path.name).items():
                    missing = wanted - found
                    asked[(ending, reader)] += 1
                    whole[(ending, reader)] += not missing
                    if missing:
                        different[(source[item].name, ending, reader)] = sum(missing.values())
        print()
        print("written:", dict(sorted(written.items())))
        for (ending, reader), count in sorted(asked.items()):
            print(f"{ending} {reader}: {whole[(ending, reader)]} of {count}")
        for where, count in different.items():
            print("differs:", *where, count, "-", EXPLAINED.get(where, "?"))
        names = {path.name for path in source.values()}
        self.assertEqual(set(different), {row for row in EXPLAINED if row[0] in names and row[1:] in asked})
        self.assertEqual(written, Counter({ending: len(source) for ending in (".msg", ".html", ".txt", ".eml", ".tnef")}))

    @staticmethod
    def mails(saved) -> dict:
        """The saved e-mails, by item and ending. Attachments have a name, or are called after their number."""
        return {(entry["item"], ending_of(pathlib.Path(entry["path"]))): pathlib.Path(entry["path"])
                for entry in saved if not entry["file_name"] and not pathlib.Path(entry["path"]).name.startswith("ATT0")}


if __name__ == "__main__":
    main(needs_corpus=True)

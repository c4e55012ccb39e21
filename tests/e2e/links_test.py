"""The way back: restore, forward, reply and reply-all of messages that were stripped."""
import random
import unittest
from email.message import EmailMessage

from harness import Case, mail, main, parsed

FILES = {"report.pdf": b"%PDF \x00\xff\r\n" * 300, "notes & plans #2.txt": b"plain\nlines\n", "empty.bin": b""}
NAMES = {"notes & plans #2.txt": "notes - plans -2.txt"}


def stripped(case, **content):
    """A message with the files, saved with removal; gives its bytes before."""
    case.home.set(RemoveAttachment=1, AddURL=1)
    kinds = {"notes & plans #2.txt": "text/x-notes"}
    message = mail(files=[(name, data, kinds.get(name, "application/octet-stream")) for name, data in FILES.items()],
                   **content)
    before = case.home.add(message).read_bytes()
    case.assertDone(case.home.run("save"))
    case.assertNotEqual(case.home.message(), before)
    return before


def attached(content: bytes) -> list:
    return [(p.get_content_type(), p.get_filename(), p.get_content() if p.get_content_maintype() != "text"
             else p.get_payload(decode=True)) for p in parsed(content).iter_attachments()]


class Restore(Case):
    def test_every_kind_of_body_comes_back_with_its_attachments(self):
        html = "<html><body><p>Good day.</p></body></html>\n"
        for name, content in {
            "plain": {},
            "alternative": {"html": html},
            "html only": {"text": None, "html": html},
            "html without body tags": {"html": "<p>x</p>"},
            "not ASCII": {"text": "Grüße\n", "html": "<html><body>Grüße</body></html>"},
            "nothing said": {"text": ""},
            "a note of its own": {"text": "The words Attachment saved to mean nothing here.\n"},
        }.items():
            with self.subTest(name):
                for path in self.home.messages():
                    path.unlink()
                before = stripped(self, **content)
                self.assertDone(self.home.run("restore", "1"))
                after = self.home.message()
                self.assertEqual(attached(after), attached(before))
                for kind in ("plain", "html"):
                    old, new = parsed(before).get_body((kind,)), parsed(after).get_body((kind,))
                    self.assertEqual(old is None, new is None)
                    if old is not None:
                        self.assertEqual(new.get_content().replace("</Body>", "</body>"), old.get_content())
                self.assertNotIn(b"Paperclip", after)

    def test_what_the_header_has_no_room_to_remember_stays_in_the_message(self):
        """Two megabytes of header are read; 600 parts with headers of 4 KB each need more than that to be remembered."""
        contents = {f"file {i}.bin": b"content %d" % i for i in range(600)}
        message = b"From: ada@example.org\nSubject: Many\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n"
        message += b"--b\nContent-Type: text/plain\n\nHello\n"
        for name, content in contents.items():
            message += b'--b\nContent-Type: application/octet-stream; name="%s"\n' % name.encode()
            message += b"X-Padding: " + b" ".join([b"x" * 70 + b"\n"] * 58) + b"\n" + content + b"\n"
        message += b"--b--\n"
        self.home.add(message)
        self.home.set(RemoveAttachment=1, AddURL=1)
        saved = self.home.run("save")
        self.assertDone(saved, 1)
        self.assertIn("the message's header has no room to remember more attachments", saved.err)
        self.assertEqual({name: self.home.saved_files()[name] for name in contents}, contents)
        kept = {name: content for _, name, content in attached(self.home.message()) if name in contents}
        self.assertTrue(0 < len(kept) < 400, len(kept))
        self.assertEqual(kept, {name: contents[name] for name in kept})
        self.assertDone(self.home.run("restore", "1"))
        self.assertEqual(self.home.message(), message)

    def test_links_at_the_top(self):
        self.home.set(RemoveAttachment=1, AddURL=1, LinkLocation="Top")
        before = self.home.add(mail(files=[("a.txt", b"a"), ("b.txt", b"b")])).read_bytes()
        self.assertDone(self.home.run("save"))
        text = parsed(self.home.message()).get_body(("plain",)).get_content()
        self.assertTrue(text.startswith(f"Attachment saved to <file://{self.home.saved}/a.txt>\n\n"), text)
        self.assertDone(self.home.run("restore", "1"))
        self.assertEqual(attached(self.home.message()), attached(before))
        self.assertEqual(parsed(self.home.message()).get_body(("plain",)).get_content(), "Good day.\n")

    def test_a_file_that_is_gone_is_reported_and_its_note_stays(self):
        stripped(self)
        (self.home.saved / "report.pdf").unlink()
        done = self.home.run("restore", "1")
        self.assertEqual(done.status, 1)
        self.assertIn("report.pdf is gone", done.err)
        text = parsed(self.home.message()).get_body(("plain",)).get_content()
        self.assertIn(f"Attachment saved to <file://{self.home.saved}/report.pdf>", text)
        self.assertEqual(sorted(name for _, name, _ in attached(self.home.message()) if name in FILES),
                         ["empty.bin", "notes & plans #2.txt"])

    def test_when_all_files_are_gone_the_message_is_left_alone(self):
        stripped(self)
        for path in self.home.saved.iterdir():
            path.unlink()
        before = self.home.message()
        self.assertEqual(self.home.run("restore", "1").status, 1)
        self.assertEqual(self.home.message(), before)

    def test_a_name_or_a_folder_that_holds_an_escaped_blank_comes_back(self):
        for name, folder in (("Invoice%20March.pdf", "x"), ("a.pdf", "May%20June"), ("b%20c%20d.pdf", "7%20 8")):
            for content in ({}, {"html": "<html><body><p>Good day.</p></body></html>"}):
                with self.subTest(name, folder=folder, **content):
                    for where in ("", "Drafts"):
                        self.home.folder(where)
                        for path in self.home.messages(where):
                            path.unlink()
                    self.home.set(RemoveAttachment=1, AddURL=1, SavePath=f"{self.home.saved}/{folder}/")
                    before = self.home.add(mail(files=[(name, b"%PDF")], **content)).read_bytes()
                    self.assertDone(self.home.run("save"))
                    self.assertDone(self.home.run("forward", "1"))
                    (draft,) = self.home.messages("Drafts")
                    self.assertEqual([data for _, _, data in attached(draft.read_bytes())], [b"%PDF"])
                    self.assertDone(self.home.run("restore", "1"))
                    self.assertEqual(attached(self.home.message()), attached(before))

    def test_only_regular_files_are_attached(self):
        stripped(self)
        target = self.home.root / "secret"
        target.write_bytes(b"secret")
        (self.home.saved / "report.pdf").unlink()
        (self.home.saved / "report.pdf").symlink_to(target)
        self.assertEqual(self.home.run("restore", "1").status, 1)
        self.assertNotIn(b"c2VjcmV0", self.home.message())


class Responses(Case):
    def draft(self):
        (path,) = self.home.messages("Drafts")
        return path.read_bytes()

    def test_a_forward_attaches_the_very_bytes(self):
        stripped(self, html="<html><body><p>Good day.</p></body></html>")
        self.assertDone(self.home.run("forward", "1"))
        draft = parsed(self.draft())
        self.assertEqual(draft["Subject"], "FW: Hello")
        self.assertEqual({NAMES.get(name, name): data for _, name, data in attached(self.draft())},
                         {NAMES.get(name, name): data for name, data in FILES.items()})
        self.assertNotIn("Attachment saved to", draft.get_body(("html",)).get_content())
        self.assertNotIn("file://", draft.get_body(("html",)).get_content())

    def test_a_forward_of_a_text_message(self):
        stripped(self)
        self.assertDone(self.home.run("forward", "1"))
        draft = parsed(self.draft())
        self.assertEqual(len(list(draft.iter_attachments())), 3)
        self.assertNotIn("file://", draft.get_body(("plain",)).get_content())

    def test_a_reply_has_no_links_and_no_files(self):
        for content in ({}, {"html": "<html><body><p>Good day.</p></body></html>"}):
            with self.subTest(content):
                for folder in ("", "Drafts"):
                    for path in self.home.messages(folder):
                        path.unlink()
                stripped(self, **content)
                self.assertDone(self.home.run("reply", "1"))
                draft = parsed(self.draft())
                self.assertEqual(list(draft.iter_attachments()), [])
                self.assertEqual((draft["Subject"], draft["To"]), ("RE: Hello", "Ada <ada@example.org>"))
                self.assertEqual((draft["In-Reply-To"], draft["References"]),
                                 ("<one@example.org>", "<one@example.org>"))
                self.assertNotIn("file://", self.draft().decode())
                self.assertIn("Good day.", draft.get_body(("plain",)).get_content())

    def test_reply_all_goes_to_everybody_once_and_reply_to_is_heeded(self):
        self.home.set()
        message = mail(sender="Ada <ada@example.org>")
        message.replace_header("To", "Ben <ben@example.org>, Cleo <cleo@example.org>")
        message["Cc"] = "Dan <dan@example.org>, ADA@example.org, =?utf-8?q?J=C3=B6rg?= <joerg@example.org>"
        self.home.add(message)
        self.assertDone(self.home.run("reply-all", "1"))
        draft = parsed(self.draft())
        people = [a.addr_spec.lower() for field in ("To", "Cc") for a in (draft[field].addresses if draft[field] else ())]
        self.assertEqual(sorted(people), sorted(set(people)), "nobody twice")
        self.assertEqual(set(people), {"ada@example.org", "ben@example.org", "cleo@example.org", "dan@example.org",
                                       "joerg@example.org"})
        self.assertIn("ada@example.org", draft["To"].addresses[0].addr_spec)

    def test_a_reply_goes_where_reply_to_says(self):
        self.home.set()
        message = mail()
        message["Reply-To"] = "list@example.org"
        self.home.add(message)
        self.assertDone(self.home.run("reply", "1"))
        self.assertEqual(parsed(self.draft())["To"], "list@example.org")

    def test_with_reattaching_off_the_client_answers_itself(self):
        stripped(self)
        self.home.set(AutomaticReattachWanted=0)
        self.assertDone(self.home.run("forward", "1"))
        self.assertIn("Attachment saved to", parsed(self.draft()).get_body(("plain",)).get_content())

    def test_several_items_and_a_window(self):
        self.home.set()
        for i in range(3):
            self.home.add(mail(subject=f"{i}"))
        done = self.home.run("--json", "forward", "1-3")
        self.assertDone(done)
        self.assertEqual(len(done.json["drafts"]), 3)
        self.assertDone(self.home.run("forward", "--open", "2"))
        subjects = sorted(parsed(p.read_bytes())["Subject"] for p in self.home.messages("Drafts"))
        self.assertEqual(subjects, ["FW: 0", "FW: 1", "FW: 1", "FW: 2"])


class AnyPath(Case):
    """Whatever a path holds, in whatever body: the file goes out with a forward and comes back with a restore."""

    PIECES = ("%", "%20", "%41", "#", "<", ">", '"', "'", " ", "  ", "é", "日本", "😀", "\\", "\\par", "{", "}", ">}", "&", "&amp;",
              "</p>", "</a>", "<Body>", "Attachment saved to ", "file:///", "\t", "~", "$HOME", "`", ";", ":", "?*|", "-", "a", "b.c")
    FOLDER_PIECES = (*PIECES, "\n", "\r")
    BODIES = {
        "plain": ("plain", "7bit", "us-ascii"), "latin": ("plain", "8bit", "iso-8859-1"), "quoted": ("plain", "quoted-printable", "utf-8"),
        "base64": ("plain", "base64", "utf-8"), "page": ("html", "7bit", "us-ascii"),
        "quoted page": ("html", "quoted-printable", "iso-8859-1"), "base64 page": ("html", "base64", "utf-8"),
        "rich": ("rtf", "7bit", "us-ascii"), "base64 rich": ("rtf", "base64", "us-ascii"),
    }
    TEXTS = {"plain": "Good day.\n" + "word " * 40 + "\n", "html": "<html><body><p>Good day.</p></body></html>\n",
             "rtf": "{\\rtf1\\ansi Good day.\\par\n" + "word " * 40 + "}"}

    def message(self, kind: str, names: list) -> tuple:
        subtype, encoding, charset = self.BODIES[kind]
        message = EmailMessage()
        message["From"], message["To"], message["Subject"] = "ada@example.org", "ben@example.org", "Any path"
        message["Date"] = "Wed, 04 Mar 2009 14:05:00 +0000"
        message.set_content(self.TEXTS[subtype], subtype=subtype, charset=charset, cte=encoding)
        for number, name in enumerate(names):
            message.add_attachment(b"content %d" % number, maintype="application", subtype="octet-stream", filename=name)
        return message

    @staticmethod
    def named_parts(content: bytes) -> list:
        return sorted((str(part.get_filename()), part.get_payload(decode=True)) for part in parsed(content).walk() if part.get_filename())

    def round_trip(self, kind: str, location: str, folder: str, names: list):
        for box in ("", "Drafts"):
            for path in self.home.messages(box):
                path.unlink()
        self.home.set(RemoveAttachment=1, AddURL=1, LinkLocation=location)
        self.assertDone(self.home.run("settings", "set", "SavePath", f"{self.home.saved}/{folder}/"))
        self.home.add(self.message(kind, names))
        before = self.named_parts(self.home.message())
        contents = sorted(content for _, content in before)
        self.assertDone(self.home.run("save"))
        self.assertEqual([name for name, _ in self.named_parts(self.home.message()) if name != "Paperclip.ico"], [])
        self.assertDone(self.home.run("forward", "1"))
        (draft,) = self.home.messages("Drafts")
        self.assertEqual(sorted(content for _, content in self.named_parts(draft.read_bytes())), contents)
        self.assertDone(self.home.run("restore", "1"))
        self.assertEqual(self.named_parts(self.home.message()), before)
        for stands in (parsed(self.home.message()), parsed(draft.read_bytes())):
            text = next(part for part in stands.walk() if part.get_content_maintype() == "text").get_payload(decode=True)
            self.assertNotIn(b"file://", text)
            self.assertIn(b"Good day.", text)

    def test_generated_paths(self):
        chance = random.Random(20091)
        for round in range(3 * len(self.BODIES)):
            kind, location = list(self.BODIES)[round % len(self.BODIES)], chance.choice(("Bottom", "Top"))
            folder = "".join(chance.choices(self.FOLDER_PIECES, k=chance.randrange(1, 6))).strip()
            names = ["".join(chance.choices(self.PIECES, k=chance.randrange(1, 6))) + ".bin" for _ in range(chance.randrange(1, 4))]
            with self.subTest(kind=kind, location=location, folder=folder, names=names):
                self.round_trip(kind, location, folder, names)

    def test_very_long_paths(self):
        for kind in ("plain", "quoted page", "rich"):
            with self.subTest(kind):
                self.round_trip(kind, "Bottom", "/".join(["d" * 200] * 12), ["x" * 250 + ".bin", "é" * 120 + ".bin"])

    def test_a_blank_that_a_mail_program_escaped(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.add(self.message("plain", ["a b.bin"]))
        self.assertDone(self.home.run("save"))
        (path,) = self.home.messages()
        path.write_bytes(path.read_bytes().replace(b"/a b.bin>", b"/a%20b.bin>"))
        self.assertDone(self.home.run("restore", "1"))
        self.assertEqual([content for _, content in self.named_parts(self.home.message())], [b"content 0"])
        self.assertNotIn(b"file://", self.home.message())


class WrappedByAnotherProgram(Case):
    """A note that another program broke over lines: the file is found or the note is left standing, and said so."""

    NAME = "a report of some length for the year 2009.pdf"

    def clear(self):
        for path in [*self.home.messages(), *self.home.messages("Drafts"), *self.home.saved.glob("*")]:
            path.unlink()

    def stripped(self, **content) -> str:
        """A saved message, and the path of its file."""
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.add(mail(files=[(self.NAME, b"%PDF")], **content))
        self.assertDone(self.home.run("save"))
        return f"{self.home.saved}/{self.NAME}"

    def rewrite(self, old: str, new: str):
        (path,) = self.home.messages()
        content = path.read_bytes()
        self.assertEqual(content.count(old.encode()), 1, content)
        path.write_bytes(content.replace(old.encode(), new.encode()))

    def text(self, content: bytes, kind: str) -> str:
        return parsed(content).get_body((kind,)).get_content()

    def draft(self) -> bytes:
        (path,) = self.home.messages("Drafts")
        return path.read_bytes()

    def files(self, content: bytes) -> list:
        return [data for _, name, data in attached(content) if name != "Paperclip.ico"]

    def test_soft_breaks_of_quoted_printable_are_none(self):
        for kind in ("plain", "html"):
            with self.subTest(kind):
                self.clear()
                link = self.stripped(**({"text": None, "html": "<html><body><p>x</p></body></html>"} if kind == "html" else {}))
                (path,) = self.home.messages()
                message = parsed(path.read_bytes())
                body = message.get_body((kind,))
                text = body.get_content()
                self.assertIn(link, text)
                quoted = text.replace("=", "=3D").replace("Attachment saved", "Attach=\nment sav=\ned").replace("file://", "fi=\nle:=\n//")
                (whole,) = [part for part in path.read_bytes().split(b"\n--") if b"Attachment saved to" in part]
                self.assertIn(b"7bit", whole)
                head = whole.split(b"\n\n", 1)[0].replace(b"7bit", b"quoted-printable")
                path.write_bytes(path.read_bytes().replace(whole, head + b"\n\n" + quoted.rstrip("\n").encode()))
                self.assertEqual(self.text(self.home.message(), kind).rstrip("\n"), text.rstrip("\n"))
                self.assertDone(self.home.run("forward", "1"))
                self.assertEqual(self.files(self.draft()), [b"%PDF"])
                self.assertNotIn("file://", self.text(self.draft(), kind))
                self.assertDone(self.home.run("restore", "1"))
                self.assertEqual(self.files(self.home.message()), [b"%PDF"])
                self.assertNotIn("file://", self.text(self.home.message(), kind))

    def test_a_line_that_ends_between_words_of_a_text_note_loses_no_file_and_no_link(self):
        for name, old, new in (
                ("hard, in the phrase", "Attachment saved to <", "Attachment\nsaved to <"),
                ("hard, behind the phrase", "saved to <file", "saved to\n<file"),
                ("flowed", "saved to <file", "saved to \n<file")):
            with self.subTest(name):
                self.clear()
                link = self.stripped()
                self.rewrite(old, new)
                self.assertDone(self.home.run("forward", "1"))
                self.assertEqual(self.files(self.draft()), [b"%PDF"])
                self.assertIn(link, self.text(self.draft(), "plain").replace("\n", " ").replace("  ", " "))
                self.assertDone(self.home.run("restore", "1"))
                self.assertEqual(self.files(self.home.message()), [b"%PDF"])
                self.assertIn(link, self.text(self.home.message(), "plain"))

    def test_a_line_that_ends_within_the_path_leaves_the_note_and_says_so(self):
        link = self.stripped()
        self.rewrite("of some", "of\nsome")
        before = self.home.message()
        done = self.home.run("restore", "1")
        self.assertEqual(done.status, 1)
        self.assertIn("is gone, so its link was left", done.err)
        self.assertEqual(self.home.message(), before)
        self.assertTrue((self.home.saved / self.NAME).exists(), link)

    def test_a_page_whose_tag_was_broken_behind_the_link_keeps_the_note_and_says_so(self):
        self.stripped(text=None, html="<html><body><p>x</p></body></html>")
        self.rewrite('.pdf">', '.pdf"\n>')
        before = self.home.message()
        done = self.home.run("restore", "1")
        self.assertEqual(done.status, 1)
        self.assertIn("is gone, so its link was left", done.err)
        self.assertEqual(self.home.message(), before)

    def test_a_page_that_was_reflowed_between_tags(self):
        self.stripped(text=None, html="<html><body><p>x</p></body></html>")
        self.rewrite('<p>Attachment saved to <a href="', '<p\n>Attachment\nsaved to <a\nhref="')
        self.rewrite("</a></p>", "</a>\n</p>")
        self.assertDone(self.home.run("forward", "1"))
        self.assertEqual(self.files(self.draft()), [b"%PDF"])
        self.assertNotIn("file://", self.text(self.draft(), "html"))
        self.assertDone(self.home.run("restore", "1"))
        self.assertEqual(self.files(self.home.message()), [b"%PDF"])
        self.assertNotIn("file://", self.text(self.home.message(), "html"))


if __name__ == "__main__":
    main()

"""Names and folders of saved files: hostile names, taken names, rename keywords, the Save-As form."""
import concurrent.futures
import os
import shutil
import stat
import unittest

from harness import Case, mail, main, parsed

CONTENT = b"content of an attachment\n"


def raw(disposition: str, count=1, boundary="b") -> bytes:
    """A message whose attachments carry this very Content-Disposition field."""
    part = (f"--{boundary}\r\nContent-Type: application/octet-stream\r\n{disposition}\r\n"
            "Content-Transfer-Encoding: base64\r\n\r\nY29udGVudCBvZiBhbiBhdHRhY2htZW50Cg==\r\n")
    head = ("From: a@example.org\r\nTo: b@example.org\r\nSubject: s\r\nDate: Wed, 04 Mar 2009 14:05:00 +0000\r\n"
            f"MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary={boundary}\r\n\r\n"
            f"--{boundary}\r\nContent-Type: text/plain\r\n\r\nText.\r\n")
    return (head + part * count + f"--{boundary}--\r\n").encode("utf-8", "surrogateescape")


class HostileNames(Case):
    NAMES = {
        'attachment; filename="../../etc/passwd"': "passwd",
        r'attachment; filename="..\\..\\x.txt"': "x.txt",
        'attachment; filename="/etc/cron.d/job"': "job",
        'attachment; filename="CON"': "_CON",
        'attachment; filename="nul.txt"': "_nul.txt",
        'attachment; filename="a.pdf."': "a.pdf",
        "attachment; filename*=utf-8''a%00b.txt": "ab.txt",
        "attachment; filename*=utf-8''x%E2%80%AEfdp.exe": "xfdp.exe",
        "attachment; filename*=utf-8''line%0D%0Abreak.txt": "line  break.txt",
        'attachment; filename="what?#&.txt"': "what---.txt",
        'attachment; filename="..."': "ATT00001.txt",
        'attachment; filename=""': "ATT00001.txt",
        "attachment; filename*0*=utf-8''gr%C3%BC; filename*1=n.txt": "grün.txt",
        'attachment; filename="=?utf-8?Q?gr=C3=BCn?= =?utf-8?Q?er.txt?="': "grüner.txt",
        'attachment; filename=".hidden"': ".hidden",
        'attachment; filename="-rf"': "-rf",
    }

    def test_every_name_becomes_one_harmless_file_in_the_save_folder(self):
        for disposition, expected in self.NAMES.items():
            with self.subTest(disposition):
                self.home.set(SavePath=f"{self.home.saved}/{abs(hash(disposition))}/")
                for path in self.home.messages():
                    path.unlink()
                self.home.add(raw("Content-Disposition: " + disposition))
                self.assertDone(self.home.run("save"))
                folder = self.home.saved / str(abs(hash(disposition)))
                self.assertEqual([p.name for p in folder.iterdir()], [expected])
                self.assertEqual((folder / expected).read_bytes(), CONTENT)

    def test_four_thousand_characters_are_cut_to_what_a_file_system_takes(self):
        self.home.set()
        self.home.add(raw('Content-Disposition: attachment; filename="' + "ä" * 4000 + '.pdf"'))
        self.assertDone(self.home.run("save"))
        (name,) = self.home.saved_files()
        self.assertTrue(name.startswith("ää") and name.endswith(".pdf"), name)
        self.assertLessEqual(len(name.encode()), 255)

    def test_a_link_waiting_under_the_name_is_neither_followed_nor_replaced(self):
        for rename in (1, 0):
            with self.subTest(AutomaticRename=rename):
                self.home.set(AutomaticRename=rename, SavePath=f"{self.home.saved}/{rename}/")
                for path in self.home.messages():
                    path.unlink()
                victim = self.home.root / f"victim{rename}"
                victim.write_bytes(b"precious")
                folder = self.home.saved / str(rename)
                folder.mkdir(parents=True)
                (folder / "a.txt").symlink_to(victim)
                self.home.add(mail(files=[("a.txt", CONTENT)]))
                self.home.run("save", "--answer", "no")
                self.assertEqual(victim.read_bytes(), b"precious")
                if rename:
                    self.assertTrue((folder / "a.txt").is_symlink())
                    self.assertEqual((folder / "a-1.txt").read_bytes(), CONTENT)

    def test_a_dangling_link_is_a_taken_name(self):
        self.home.set()
        self.home.saved.mkdir()
        (self.home.saved / "a.txt").symlink_to(self.home.root / "nowhere")
        self.home.add(mail(files=[("a.txt", CONTENT)]))
        self.assertDone(self.home.run("save"))
        self.assertFalse((self.home.root / "nowhere").exists())
        self.assertEqual((self.home.saved / "a-1.txt").read_bytes(), CONTENT)

    def test_a_slash_in_the_subject_of_a_message_inside_is_no_folder(self):
        self.home.set()
        outer = mail(subject="outer")
        outer.add_attachment(mail(subject="Re: 34Mbit/s Netz"))
        self.home.add(outer)
        self.assertDone(self.home.run("save"))
        self.assertEqual(list(self.home.saved_files()), ["Re 34Mbit-s Netz.eml"])

    def test_a_name_that_would_end_a_link_early_can_be_found_by_it(self):
        description = "attachment\r\nContent-Description: "
        for disposition, name in (
            ('attachment; filename="a<b>c|d.txt"', "a-b-c-d.txt"),
            (description + 'x"><b>y</b>', "xby-b.txt"),
            (description + "=?utf-8?q?..=2F=00=0A" + "y" * 300 + "?=", "..-"),
        ):
            with self.subTest(disposition):
                self.home.set(AutomaticRename=0, RemoveAttachment=1, AddURL=1, RetainPaperclip=0)
                for path in self.home.messages():
                    path.unlink()
                self.home.add(raw("Content-Disposition: " + disposition))
                before = parsed(self.home.message())
                self.assertDone(self.home.run("save"))
                (saved,) = self.home.saved_files()
                self.assertTrue(saved.startswith(name), saved)
                self.assertDone(self.home.run("restore", "1"))
                (back,) = parsed(self.home.message()).iter_attachments()
                self.assertEqual(back.get_content(), next(before.iter_attachments()).get_content())
                (self.home.saved / saved).unlink()


class TakenNames(Case):
    def test_the_first_free_number_is_taken(self):
        self.home.set()
        self.home.saved.mkdir()
        for name in ("x.pdf", "x-1.pdf", "x-3.pdf"):
            (self.home.saved / name).write_bytes(b"mine")
        self.home.add(mail(files=[("x.pdf", CONTENT)]))
        self.assertDone(self.home.run("save"))
        files = self.home.saved_files()
        self.assertEqual(files.pop("x-2.pdf"), CONTENT)
        self.assertEqual(set(files.values()), {b"mine"})

    def test_with_rename_off_a_writable_file_is_replaced_and_a_read_only_one_is_asked_about(self):
        self.home.set(AutomaticRename=0)
        self.home.saved.mkdir()
        taken = self.home.saved / "x.pdf"
        taken.write_bytes(b"old")
        self.home.add(mail(files=[("x.pdf", CONTENT)]))
        self.assertDone(self.home.run("save"))
        self.assertEqual(taken.read_bytes(), CONTENT)
        taken.write_bytes(b"old")
        taken.chmod(0o444)
        for answer, expected in (("no", ["x.pdf"]), ("cancel", ["x.pdf"]), ("yes", ["x-1.pdf", "x.pdf"])):
            with self.subTest(answer):
                self.home.run("--answer", answer, "save")
                self.assertEqual(sorted(self.home.saved_files()), expected)
                self.assertEqual(taken.read_bytes(), b"old")
                self.assertEqual(stat.S_IMODE(taken.stat().st_mode), 0o444)

    def test_three_programs_in_one_folder_never_overwrite_each_other(self):
        self.home.set()
        stores = [self.home.root / name for name in ("one", "two", "three")]
        for store in stores:
            self.home.maildir = store
            for i in range(40):
                self.home.add(mail(subject=f"{i}", files=[("image001.png", b"picture %d\n" % i)]))
        with concurrent.futures.ThreadPoolExecutor() as pool:
            for done in pool.map(lambda store: self.home.run("--mail", store, "save"), stores):
                self.assertDone(done)
        files = self.home.saved_files()
        self.assertEqual(len(files), 120)
        self.assertEqual({c: list(files.values()).count(c) for c in files.values()},
                         {b"picture %d\n" % i: 3 for i in range(40)})

    @unittest.skipUnless(shutil.which("strace"), "there is no strace")
    def test_thousands_of_one_name_cost_the_same_each(self):
        self.home.set()
        disposition = 'Content-Disposition: attachment; filename="image001.png"'
        counts = self.home.root / "calls"

        def system_calls(count):
            for path in self.home.messages():
                path.unlink()
            for _ in range(count // 100):
                self.home.add(raw(disposition, count=100))
            through = ["strace", "-f", "-c", "-U", "calls", "-o", counts]
            environment = {"ASAN_OPTIONS": "detect_leaks=0"}  # which cannot be done to a traced program
            self.assertDone(self.home.run("--quiet", "save", through=through, environment=environment))
            return int(counts.read_text().splitlines()[-1].split()[0])  # the line "… total"

        few = system_calls(300)  # into an empty folder
        many = system_calls(1500)  # on top of the first
        self.assertEqual(len(self.home.saved_files()), 1800)
        self.assertLess(many, 5 * few * 1.5, f"{few} system calls for 300, {many} for 1,500 more")


class RenameKeywords(Case):
    def save_as(self, pattern, name="a.b.pdf", subject="Hello", sender="Ada <ada@example.org>"):
        self.home.set(AutomaticRenameKeywords=pattern)
        for path in self.home.messages():
            path.unlink()
        before = set(self.home.saved_files())
        self.home.add(mail(subject=subject, sender=sender, files=[(name, CONTENT)]))
        self.assertDone(self.home.run("save", environment={"LC_ALL": "C.UTF-8"}))
        (new,) = set(self.home.saved_files()) - before
        return new

    def test_the_keywords_are_filled_ignoring_case(self):
        self.assertEqual(self.save_as("<Sender Name> - <ATTACHMENT NAME>"), "Ada - a.b.pdf")
        self.assertEqual(self.save_as("<sender address> <subject>"), "ada@example.org Hello.pdf")
        self.assertEqual(self.save_as("<subject>", subject="a/b: #1 <x>?").count("/"), 0)
        self.assertEqual(self.save_as("<attachment name>", name="README"), "README")

    def test_the_received_date_has_no_slash_and_no_colon(self):
        name = self.save_as("<received date> <attachment name>")
        self.assertRegex(name, r"^3-4-2009 2-05-00 PM a\.b\.pdf$|^03-04-09 14-05-00 a\.b\.pdf$")

    def test_a_template_too_long_keeps_its_subject_keyword(self):
        long = "x" * 121 + "<subject>"
        self.assertTrue(self.save_as(long).startswith("x" * 121 + "subject") or "Hello" not in self.save_as(long))


class SaveAsForm(Case):
    def test_yes_takes_the_proposed_name_and_the_careful_answer_cancels(self):
        self.home.set(OptionalRenameWanted=1, RemoveAttachment=1)
        before = self.home.add(mail(files=[("a.pdf", CONTENT)])).read_bytes()
        self.home.run("save")
        self.assertEqual(self.home.saved_files() if self.home.saved.exists() else {}, {})
        self.assertEqual(self.home.message(), before)
        self.home.saved.mkdir(exist_ok=True)
        self.assertDone(self.home.run("--answer", "yes", "save"))
        self.assertEqual(self.home.saved_files(), {"a.pdf": CONTENT})
        self.assertEqual(self.home.setting("SaveAsMRUPath"), f"{self.home.saved}/")


if __name__ == "__main__":
    main()

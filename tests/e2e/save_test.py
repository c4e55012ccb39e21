"""Saving by hand: what comes out, what becomes of the messages, what the program says."""
import os
import unittest

from harness import SAMPLES, Case, mail, main, parsed

PDF = b"%PDF-1.4 \x00\xff pretend\r\n" * 50
PICTURE = b"\x89PNG\r\n\x1a\n" + bytes(range(256)) * 40


class Saving(Case):
    def test_without_removal_the_files_come_out_and_no_message_changes(self):
        self.home.set()
        path = self.home.add(mail(files=[("report.pdf", PDF), ("logo.png", PICTURE)]))
        before = path.read_bytes()
        done = self.home.run("save")
        self.assertDone(done)
        self.assertEqual(self.home.saved_files(), {"report.pdf": PDF, "logo.png": PICTURE})
        self.assertEqual(self.home.message(), before)
        self.assertEqual(
            done.out.splitlines(),
            ["Processing complete.  2 attachments removed.", f"2 files, 11.3 KB, in {self.home.saved}/"],
        )

    def test_one_attachment_is_spoken_of_in_the_singular(self):
        self.home.set()
        self.home.add(mail(files=[("a.pdf", PDF)]))
        self.assertIn("Processing complete.  1 attachment removed.", self.home.run("save").out)

    def test_an_empty_folder_is_a_run_of_nothing(self):
        self.home.set()
        done = self.home.run("save")
        self.assertDone(done)
        self.assertEqual(done.out, "Processing complete.  0 attachments removed.\n")

    def test_with_removal_each_message_keeps_its_text_and_gets_a_link(self):
        self.home.set(RemoveAttachment=1, AddURL=1, RetainPaperclip=0)
        self.home.add(mail(text="Good day.\n", files=[("report.pdf", PDF)]))
        self.assertDone(self.home.run("save"))
        after = parsed(self.home.message())
        self.assertEqual(list(after.iter_attachments()), [])
        self.assertEqual(
            after.get_body(("plain",)).get_content().rstrip("\n"),
            f"Good day.\n\n\nAttachment saved to <file://{self.home.saved}/report.pdf>",
        )
        self.assertEqual(after["Subject"], "Hello")
        self.assertEqual(after["Message-ID"], "<one@example.org>")

    def test_the_note_stands_in_both_bodies_of_an_alternative(self):
        self.home.set(RemoveAttachment=1, AddURL=1, RetainPaperclip=0)
        self.home.add(mail(html="<html><body><p>Good day.</p></body></html>\n", files=[("a b.pdf", PDF)]))
        self.assertDone(self.home.run("save"))
        after = parsed(self.home.message())
        link = f"file://{self.home.saved}/a b.pdf"
        self.assertIn(f"Attachment saved to <{link}>", after.get_body(("plain",)).get_content())
        self.assertIn(
            f'<p>Attachment saved to <a href="{link}">{link}</a></p></Body>', after.get_body(("html",)).get_content()
        )

    def test_the_paperclip_stays_when_everything_went(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.add(mail(files=[("a.pdf", PDF)]))
        self.assertDone(self.home.run("save"))
        (clip,) = parsed(self.home.message()).iter_attachments()
        self.assertEqual((clip.get_filename(), clip["Content-Description"]),
                         ("Paperclip.ico", "Paperclip retained by Quillfile"))
        self.assertDone(self.home.run("save"))
        self.assertEqual(list(self.home.saved_files()), ["a.pdf"], "the paperclip is never saved")

    def test_a_rewritten_message_has_a_new_name_and_keeps_flags_and_time(self):
        self.home.set(RemoveAttachment=1)
        path = self.home.add(mail(files=[("a.pdf", PDF)]), flags="FRS")
        os.utime(path, (1_236_175_500, 1_236_175_500))
        done = self.home.run("--json", "save")
        self.assertDone(done)
        (after,) = self.home.messages()
        self.assertNotEqual(after.name, path.name)
        self.assertTrue(after.name.endswith(":2,FRS"), after)
        self.assertEqual(int(after.stat().st_mtime), 1_236_175_500)
        (change,) = done.json["items"]
        self.assertEqual(change["new_id"], "Inbox/" + after.name.split(":")[0])

    def test_saved_files_carry_the_time_of_receipt(self):
        self.home.set()
        self.home.add(mail(files=[("a.pdf", PDF)]))
        self.assertDone(self.home.run("save"))
        self.assertEqual(int((self.home.saved / "a.pdf").stat().st_mtime), 1_236_175_500)

    def test_a_second_run_over_stripped_messages_changes_nothing(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.add(mail(files=[("a.pdf", PDF), ("b.pdf", PDF)]))
        self.assertDone(self.home.run("save"))
        before = {p.name: p.read_bytes() for p in self.home.messages()}
        done = self.home.run("--json", "save")
        self.assertDone(done)
        self.assertEqual((done.json["count"], done.json["saved"], done.json["items"]), (0, [], []))
        self.assertEqual({p.name: p.read_bytes() for p in self.home.messages()}, before)

    def test_unread_mail_stays_unread_or_is_marked_or_deleted_as_the_setting_says(self):
        for post_process, expected in (("0", "S"), ("1", ""), ("2", None)):
            with self.subTest(PostProcess=post_process):
                self.home.set(PostProcess=post_process)
                for path in self.home.messages():
                    path.unlink()
                self.home.add(mail(files=[(f"{post_process}.pdf", PDF)]), flags="")
                self.assertDone(self.home.run("save"))
                flags = [path.name.split(":2,")[1] for path in self.home.messages()]
                self.assertEqual(flags, [] if expected is None else [expected])

    def test_named_items_and_ranges_only(self):
        self.home.set()
        for i in range(1, 6):
            message = mail(subject=f"{i}", files=[(f"{i}.bin", b"%d" % i)])
            message.replace_header("Date", f"Wed, 0{i} Mar 2009 14:05:00 +0000")
            self.home.add(message)
        self.assertDone(self.home.run("save", "1", "3-4"))
        self.assertEqual(sorted(self.home.saved_files()), ["1.bin", "3.bin", "4.bin"])
        last = self.home.run("--json", "list").json[-1]
        self.assertDone(self.home.run("save", last["id"]))
        self.assertIn("5.bin", self.home.saved_files())

    def test_both_store_layouts_and_the_folder_path(self):
        self.home.set(ImitateOutlookFolders=1)
        self.home.add(mail(files=[("dotted.pdf", PDF)]), folder="Projects/2026")
        nested = self.home.root / "Nested"
        for name in ("INBOX", "Projects/2026"):
            for part in ("cur", "new", "tmp"):
                (nested / name / part).mkdir(parents=True)
        (nested / "Projects/2026/cur/1.a.b:2,S").write_bytes(mail(files=[("nested.pdf", PDF)]).as_bytes())
        (nested / "INBOX/cur/1.a.b:2,S").write_bytes(mail(files=[("inbox.pdf", PDF)]).as_bytes())
        self.assertDone(self.home.run("save", "--folder", "Projects/2026"))
        self.assertDone(self.home.run("--mail", nested, "save", "--folder", "Projects/2026"))
        self.assertDone(self.home.run("--mail", nested, "save"))
        self.assertEqual(
            sorted(self.home.saved_files()),
            ["Inbox/inbox.pdf", "Projects/2026/dotted.pdf", "Projects/2026/nested.pdf"],
        )

    def test_signed_and_damaged_messages_are_saved_from_and_never_changed(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        signed = self.home.add(SAMPLES / "07-signed.eml")
        before = signed.read_bytes()
        done = self.home.run("save")
        self.assertEqual(done.status, 1)
        self.assertEqual(
            done.err,
            'quillfile: Attachments were saved but not removed from "The signed contract": the message is signed, '
            "and a change would break its signature\n",
        )
        self.assertEqual(sorted(self.home.saved_files()), ["contract.pdf", "signature.asc"])
        self.assertEqual(signed.read_bytes(), before)

    def test_a_signed_message_gets_no_link_where_attachments_stay_either(self):
        self.home.set(RemoveAttachment=0, AddURL=1)
        signed = self.home.add(SAMPLES / "07-signed.eml")
        before = signed.read_bytes()
        done = self.home.run("save")
        self.assertEqual(done.status, 1)
        self.assertEqual(done.err.count("was left as it was"), 1, done)
        self.assertIn("the message is signed", done.err)
        self.assertEqual(sorted(self.home.saved_files()), ["contract.pdf", "signature.asc"])
        self.assertEqual(signed.read_bytes(), before)


class FirstRun(Case):
    def test_the_first_save_writes_the_settings_and_goes_to_the_documents(self):
        self.home.add(mail(files=[("a.pdf", PDF)]))
        self.assertDone(self.home.run("save"))
        saved = self.home.root / "Documents/Saved Attachments/Inbox/a.pdf"
        self.assertEqual(saved.read_bytes(), PDF)
        self.assertEqual(self.home.setting("RemoveAttachment"), "1")
        self.assertEqual(self.home.setting("SavePath"), f"{self.home.root}/Documents/Saved Attachments/")

    def test_a_setting_made_before_the_first_save_holds(self):
        self.home.add(mail(files=[("a.pdf", PDF)]))
        self.assertDone(self.home.run("settings", "set", "RemoveAttachment", "0"))
        self.assertDone(self.home.run("save"))
        self.assertEqual(self.home.setting("RemoveAttachment"), "0")
        (attachment,) = parsed(self.home.message()).iter_attachments()
        self.assertEqual((attachment.get_filename(), attachment.get_content()), ("a.pdf", PDF))

    def test_a_folder_monitored_before_the_first_save_stays_monitored(self):
        self.home.folder("Bills")
        self.assertDone(self.home.run("monitor", "Bills"))
        self.assertDone(self.home.run("save"))
        monitored = [f["path"] for f in self.home.run("--json", "folders").json if f["monitored"]]
        self.assertEqual(monitored, ["Inbox", "Bills"])



class Order(Case):
    def test_messages_of_one_second_keep_their_numbers_when_one_is_rewritten(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        for same_file_time in (False, True):
            with self.subTest(same_file_time=same_file_time):
                for path in self.home.messages():
                    path.unlink()
                for number in range(6):
                    path = self.home.add(mail(subject=f"{number}", files=[(f"{number}.txt", b"x")]))
                    nanoseconds = 1_700_000_000_000_000_000 + (0 if same_file_time else number)
                    os.utime(path, ns=(nanoseconds, nanoseconds))
                subjects = lambda: [item["subject"] for item in self.home.run("--json", "list").json]
                before = subjects()
                if not same_file_time:
                    self.assertEqual(before, ["0", "1", "2", "3", "4", "5"])
                for number in (2, 5, 1):
                    self.assertDone(self.home.run("save", number))
                    self.assertEqual(subjects(), before)
                self.assertDone(self.home.run("restore", 2))
                self.assertEqual(subjects(), before)


if __name__ == "__main__":
    main()

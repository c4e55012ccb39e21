"""Settings: what each changes in a run, and reading and writing them."""
import os
import stat
import time
import unittest

from harness import Case, mail, main, parsed

CONTENT = b"content of an attachment\n"


class Filters(Case):
    """With SaveAllAttachments off only what passes a filter is saved."""

    def saved_with(self, message, **settings):
        self.home.set(SaveAllAttachments=0, SavePath=f"{self.home.saved}/{time.monotonic_ns()}/", **settings)
        for path in self.home.messages():
            path.unlink()
        self.home.add(message)
        before = set(self.home.saved_files()) if self.home.saved.exists() else set()
        self.assertDone(self.home.run("save"))
        after = set(self.home.saved_files()) if self.home.saved.exists() else set()
        return sorted(name.split("/", 1)[1] for name in after - before)

    def test_each_filter(self):
        message = mail(subject="Invoice 17", files=[("a.pdf", b"x" * 102_399), ("b.txt", b"x" * 102_400), ("c.pdf", b"x")])
        everything = ["a.pdf", "b.txt", "c.pdf"]
        for settings, expected in (
            ({}, []),
            ({"SubjectLineEnabled": 1, "SubjectLine": "INVOICE"}, everything),
            ({"SubjectLineEnabled": 1, "SubjectLine": "offer"}, []),
            ({"SubjectLineEnabled": 1, "SubjectLine": "inv* 1?"}, everything),
            ({"SubjectLineEnabled": 1}, []),
            ({"EmailFromEnabled": 1, "EmailFrom": "ada"}, everything),
            ({"EmailFromEnabled": 1, "EmailFrom": "@EXAMPLE.org"}, everything),
            ({"EmailFromEnabled": 1, "EmailFrom": "ben"}, []),
            ({"AttachmentNameEnabled": 1, "AttachmentName": "*.pdf"}, ["a.pdf", "c.pdf"]),
            ({"AttachmentNameEnabled": 1, "AttachmentName": "B.TXT"}, ["b.txt"]),
            ({"AttachmentSizeEnabled": 1, "AttachmentSize": 100}, ["a.pdf", "c.pdf"]),
            # attachment 1 matches by name, so the size is not looked at
            ({"AttachmentNameEnabled": 1, "AttachmentName": "a.pdf", "AttachmentSizeEnabled": 1, "AttachmentSize": 1},
             ["a.pdf"]),
            ({"AttachmentNameEnabled": 1, "AttachmentName": "b.txt", "AttachmentSizeEnabled": 1, "AttachmentSize": 1},
             ["b.txt", "c.pdf"]),
        ):
            with self.subTest(settings):
                self.assertEqual(self.saved_with(message, **settings), expected)

    def test_a_size_beyond_32_bits_saves_nothing_and_does_not_wrap(self):
        self.home.set(SaveAllAttachments=0, AttachmentSizeEnabled=1, AttachmentSize=2_097_152)
        self.home.add(mail(files=[("a.pdf", CONTENT)]))
        done = self.home.run("save")
        self.assertEqual(done.status, 1)
        self.assertIn('is "2097152" and takes a whole number from 0 to 2097151', done.err)
        self.assertFalse(self.home.saved.exists() and self.home.saved_files())
        self.assertEqual(self.home.run("settings", "set", "AttachmentSize", "2097152").status, 2)
        self.assertDone(self.home.run("settings", "set", "AttachmentSize", "2097151"))
        self.assertDone(self.home.run("save"))
        self.assertEqual(list(self.home.saved_files()), ["a.pdf"])


class Settings(Case):
    def save(self, *files, status=0, arguments=(), **settings):
        self.home.set(**settings)
        for path in self.home.messages():
            path.unlink()
        self.home.add(mail(files=files or [("a.txt", CONTENT)]))
        done = self.home.run(*arguments, "save")
        self.assertEqual(done.status, status, done)
        return sorted(self.home.saved_files()) if self.home.saved.exists() else []

    def test_the_exclusion_list(self):
        files = [("logo.gif", CONTENT), ("Note.ics", CONTENT), ("report.pdf", CONTENT)]
        self.assertEqual(self.save(*files, ExclusionList="*.GIF;note"), ["report.pdf"])

    def test_an_exclusion_lists_empty_pattern_matches_nothing(self):
        self.assertEqual(self.save(ExclusionList="b.txt;"), ["a.txt"])

    def test_the_modules_own_icons_are_never_saved(self):
        files = [("PaperClip.ico", CONTENT), ("tessalysoftware.ico", CONTENT), ("a.txt", CONTENT)]
        self.assertEqual(self.save(*files), ["a.txt"])

    def test_read_only_and_writable(self):
        self.save(ReadWrite=1)
        path = self.home.saved / "a.txt"
        self.assertEqual(path.stat().st_mode & 0o222, 0)
        self.save(ReadWrite=2)
        self.assertNotEqual((self.home.saved / "a-1.txt").stat().st_mode & stat.S_IWUSR, 0)

    def test_attachments_can_be_left_out(self):
        self.assertEqual(self.save(SaveAttachmentsWanted=0), [])

    def test_folders_are_imitated(self):
        self.assertEqual(self.save(ImitateOutlookFolders=1), ["Inbox/a.txt"])

    def test_the_e_mail_in_every_format(self):
        for first, second, expected in (
            (0, 5, {"Hello.msg"}), (1, 2, {"Hello.html", "Hello.txt"}), (3, 4, {"Hello.eml", "Hello.tnef"}),
            (5, 5, set()), (3, 3, {"Hello.eml", "Hello-1.eml"}),
        ):
            with self.subTest(first=first, second=second):
                path = f"{self.home.saved}/{first}{second}/"
                self.save(SaveEmailsWanted=1, SaveEmailsAs1=first, SaveEmailsAs2=second, SavePath=path,
                          SaveAttachmentsWanted=0)
                folder = self.home.saved / f"{first}{second}"
                self.assertEqual({p.name for p in folder.iterdir()} if folder.exists() else set(), expected)
        self.assertEqual((self.home.saved / "34/Hello.eml").read_bytes(), self.home.message())
        text = (self.home.saved / "12/Hello.txt").read_text()
        for line in ("Ada", "ben@example.org", "Hello", "Good day."):
            self.assertIn(line, text)
        self.assertIn("Good day.", (self.home.saved / "12/Hello.html").read_text())
        self.assertEqual((self.home.saved / "05/Hello.msg").read_bytes()[:8], bytes.fromhex("d0cf11e0a1b11ae1"))
        self.assertEqual((self.home.saved / "34/Hello.tnef").read_bytes()[:4], bytes.fromhex("789f3e22"))

    def test_the_e_mail_is_complete_though_its_attachments_go(self):
        before = mail(files=[("a.txt", CONTENT)]).as_bytes()
        self.save(SaveEmailsWanted=1, SaveEmailsAs1=3, RemoveAttachment=1)
        eml = parsed((self.home.saved / "Hello.eml").read_bytes())
        self.assertEqual([p.get_filename() for p in eml.iter_attachments()], ["a.txt"])
        self.assertEqual(len((self.home.saved / "Hello.eml").read_bytes()), len(before))

    def test_numbers_are_read_with_blanks_and_sign_and_anything_else_counts_as_nothing(self):
        self.assertEqual(self.save(RemoveAttachment=" +1 ", RetainPaperclip=0), ["a.txt"])
        self.assertNotIn(b"filename", self.home.message())
        before = mail(files=[("a.txt", CONTENT)]).as_bytes()
        for wrong in ("on", "1.5", "99999999999", ""):
            with self.subTest(wrong):
                self.save(RemoveAttachment=wrong, status=1)
                self.assertEqual(self.home.message(), before)

    def test_a_value_that_is_no_number_is_told_by_its_key(self):
        self.home.set(AddURL="yes", AttachmentSize="-1", LinkLocation="anywhere")
        done = self.home.run("--json", "save")
        sentences = [f'The setting {key} in {self.home.settings_file} is "{value}" and takes {wanted}; '
                     f"`quillfile settings unset {key}` takes it out"
                     for key, value, wanted in (("AddURL", "yes", "1 (on) or 0 (off)"),
                                                ("AttachmentSize", "-1", "a whole number from 0 to 2097151"))]
        self.assertEqual(done.status, 1)
        self.assertEqual(done.err, "".join(f"quillfile: {sentence}\n" for sentence in sentences))
        self.assertEqual([e["message"] for e in done.json["errors"]], sentences)

    def test_an_empty_save_path_is_the_current_folder_and_the_link_leads_there(self):
        self.save(SavePath="", RemoveAttachment=1, AddURL=1)
        self.assertEqual((self.home.root / "a.txt").read_bytes(), CONTENT)
        self.assertDone(self.home.run("restore", "1"))
        self.assertIn(b"filename", self.home.message())


class Programs(Case):
    def run_on(self, command, expected, path="a b.txt", **settings):
        self.home.set(ExecuteWanted=1, ExecuteCommandLine=command, SavePath=f"{self.home.saved}/", **settings)
        for old in self.home.messages():
            old.unlink()
        out = self.home.root / "out"
        if out.exists():
            out.unlink()
        self.home.add(mail(files=[(path, CONTENT)]))
        self.assertDone(self.home.run("save"))
        deadline = time.monotonic() + (10 if expected is not None else 1)
        while time.monotonic() < deadline and not (out.exists() and out.read_text().endswith("\n")):
            time.sleep(0.02)
        self.assertEqual(out.read_text() if out.exists() else None, expected)

    def setUp(self):
        super().setUp()
        self.tool = self.home.root / "tool"
        self.tool.write_text('#!/bin/sh\nprintf "%s|" "$#" "$@" >"$HOME/out.part"; printf "\\n" >>"$HOME/out.part"\n'
                             'mv "$HOME/out.part" "$HOME/out"\n')
        self.tool.chmod(0o755)

    def test_the_path_is_one_word_in_quotes_and_no_shell_reads_it(self):
        self.run_on(f'{self.tool} "%1"', f"1|{self.home.saved}/a b.txt|\n")
        self.run_on(f'{self.tool} "%1"', f"1|{self.home.saved}/$(touch x);`y` 'z.txt|\n", path="$(touch x);`y` 'z.txt")
        self.assertFalse((self.home.root / "x").exists())

    def test_without_a_separator_an_attachment_starts_nothing(self):
        self.run_on("tool %1", None)

    def test_on_e_mails_only(self):
        self.run_on(f'{self.tool} "%1"', f"1|{self.home.saved}/Hello.txt|\n", ExecuteOn=0, SaveEmailsWanted=1,
                    SaveEmailsAs1=2)

    def test_a_program_that_is_not_there_stops_nothing(self):
        self.run_on("/nonexistent/tool %1", None)


class SettingsFile(Case):
    def test_unknown_keys_comments_and_line_ends_survive_a_write(self):
        self.home.settings_file.write_bytes(
            b"; mine\r\n[Other]\r\nKey=value\r\n\r\n[Quillfile]\r\n# here\r\nSaveAllAttachments=1\r\nMyKey=x\r\nAddURL = 0\r\n"
        )
        self.assertDone(self.home.run("settings", "set", "AddURL", "1"))
        self.assertEqual(
            self.home.settings_file.read_bytes(),
            b"; mine\r\n[Other]\r\nKey=value\r\n\r\n[Quillfile]\r\n# here\r\nSaveAllAttachments=1\r\nMyKey=x\r\nAddURL=1\r\n",
        )

    def test_get_set_unset(self):
        self.home.set()
        self.assertEqual(self.home.setting("LinkLocation"), "Bottom")
        self.assertDone(self.home.run("settings", "set", "LinkLocation", "Top"))
        self.assertEqual(self.home.setting("LinkLocation"), "Top")
        self.assertDone(self.home.run("settings", "unset", "LinkLocation"))
        self.assertEqual(self.home.setting("LinkLocation"), "Bottom")
        self.assertNotIn("LinkLocation", self.home.settings_file.read_text())

    def test_a_path_is_made_absolute_and_ends_in_the_separator(self):
        self.home.set()
        self.assertDone(self.home.run("settings", "set", "SavePath", "sub/../here"))
        self.assertEqual(self.home.setting("SavePath"), f"{self.home.root}/here/")
        self.assertDone(self.home.run("settings", "set", "SavePath", "~/Post"))
        self.assertEqual(self.home.setting("SavePath"), f"{self.home.root}/Post/")

    def test_a_command_line_that_could_never_start_is_warned_of(self):
        self.home.set()
        done = self.home.run("settings", "set", "ExecuteCommandLine", "notepad %1")
        self.assertEqual(done.status, 0)
        self.assertIn("never on saved attachments", done.err)
        done = self.home.run("settings", "set", "ExecuteCommandLine", '/usr/bin/file "%1')
        self.assertIn("never closed", done.err)
        self.assertDone(self.home.run("settings", "set", "ExecuteCommandLine", '/usr/bin/file "%1"'))

    def test_values_with_blanks_quotes_and_other_letters_come_back(self):
        self.home.set()
        for value in ("  two blanks  ", '"quoted"', "back\\slash", "Grüße; # = []", "-1"):
            with self.subTest(value):
                self.assertDone(self.home.run("settings", "set", "SubjectLine", "--", value))
                self.assertEqual(self.home.setting("SubjectLine"), value)


if __name__ == "__main__":
    main()

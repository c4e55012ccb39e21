"""The command line: exit statuses, what is printed where, the fields of --json, prompts and progress on a terminal."""
import json
import os
import pty
import select
import subprocess
import time
import unittest

from harness import PROGRAM, Case, mail, main

CONTENT = b"content of an attachment\n"


class ExitStatus(Case):
    def test_a_wrong_command_line_is_2_and_one_sentence(self):
        self.home.set()
        for arguments in (
            [],
            ["frobnicate"],
            ["--nonsense", "list"],
            ["--answer", "perhaps", "save"],
            ["list", "--folder", "Nowhere"],
            ["save", "7"],
            ["save", "0"],
            ["save", "3-1"],
            ["show"],
            ["show", "1"],
            ["restore"],
            ["delete"],
            ["forward"],
            ["settings", "get", "Nonsense"],
            ["settings", "set", "Nonsense", "1"],
            ["settings", "set", "ReadWrite", "many"],
            ["settings", "set", "ReadWrite", "4294967296"],
            ["settings", "set", "SavePath", ""],
            ["monitor", "Nowhere"],
            ["monitor", "--remove", "Nowhere"],
        ):
            with self.subTest(arguments):
                done = self.home.run(*arguments)
                self.assertEqual(done.status, 2, done)
                self.assertTrue(done.err.startswith("quillfile: "), done)
                self.assertEqual(done.out, "")
                self.assertLessEqual(len(done.err.splitlines()), 2, done)

    def test_a_command_that_is_none_is_told_from_a_missing_one(self):
        self.assertIn("There is no command frobnicate.", self.home.run("frobnicate").err)
        self.assertIn("A command is missing.", self.home.run().err)
        self.assertIn("--nonsense", self.home.run("--nonsense", "list").err)

    def test_a_folder_is_found_by_its_own_name_when_no_other_has_it(self):
        self.home.set()
        self.home.add(mail(subject="In 2026"), folder="Projects/2026")
        for folder in ("Projects/2026", "2026"):
            self.assertIn("In 2026", self.home.run("list", "--folder", folder).out)
        self.home.folder("Other/2026")
        self.assertEqual(self.home.run("list", "--folder", "2026").status, 2)

    def test_a_store_or_settings_that_cannot_be_used_are_3(self):
        missing = self.home.run("--mail", "/nonexistent", "list")
        self.assertEqual(missing.status, 3)
        self.assertEqual(missing.err, "quillfile: Could not open the mail store /nonexistent: it is not there.\n")
        no_store = self.home.root / "empty"
        no_store.mkdir()
        self.assertEqual(self.home.run("--mail", no_store, "list").status, 3)
        self.home.settings_file.write_text("this is no setting\n")
        wrong = self.home.run("save")
        self.assertEqual(wrong.status, 3, wrong)
        self.assertIn("Line 1 of the settings file", wrong.err)
        self.home.settings_file.unlink()
        self.home.settings_file.mkdir()
        self.assertEqual(self.home.run("save").status, 3)

    def test_help_and_version_are_0_and_go_to_standard_output(self):
        for arguments in (["--help"], ["save", "--help"], ["--version"], ["settings", "--help"]):
            done = self.home.run(*arguments)
            self.assertDone(done)
            self.assertTrue(done.out)

    def test_something_not_done_is_1(self):
        self.home.set(SavePath="/proc/nowhere/")
        before = self.home.add(mail(files=[("a.txt", CONTENT)])).read_bytes()
        done = self.home.run("save")
        self.assertEqual(done.status, 1, done)
        self.assertIn("Unable to create folder /proc/nowhere/", done.err)
        self.assertEqual(self.home.message(), before)

    def test_standard_output_that_is_full_is_1(self):
        self.home.set()
        with open("/dev/full", "wb") as full:
            process = subprocess.run([PROGRAM, "settings"], stdout=full, stderr=subprocess.PIPE,
                                     env=self.home.environment, check=False)
        self.assertEqual(process.returncode, 1)

    def test_closed_standard_streams_do_no_harm(self):
        self.home.set()
        self.home.add(mail(files=[("a.txt", CONTENT)]))
        process = subprocess.run(["/bin/sh", "-c", '"$0" save <&- >&- 2>&-', PROGRAM],
                                 env=self.home.environment, check=False)
        self.assertIn(process.returncode, (0, 1))
        self.assertEqual(self.home.saved_files(), {"a.txt": CONTENT})


class Json(Case):
    def setUp(self):
        super().setUp()
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.add(mail(html="<html><body>Hi</body></html>", files=[("a.txt", CONTENT, "text/plain")]), flags="")

    def test_folders(self):
        self.home.add(mail(), folder="Projects/2026")
        done = self.home.run("--json", "folders")
        self.assertDone(done)
        inbox, *others = done.json
        self.assertEqual(
            inbox,
            {"name": "Inbox", "path": "Inbox", "id": inbox["id"], "store_id": str(self.home.maildir),
             "role": "inbox", "items": 1, "unread": 1, "monitored": False},
        )
        (project,) = [f for f in others if f["path"] == "Projects/2026"]
        self.assertEqual((project["name"], project["role"], project["items"], project["unread"]), ("2026", None, 1, 0))

    def test_list_and_show(self):
        (entry,) = self.home.run("list", "--json").json
        self.assertEqual(
            entry,
            {"number": 1, "id": entry["id"], "type": "MailItem", "subject": "Hello", "sender_name": "Ada",
             "sender_address": "ada@example.org", "received": "2009-03-04T14:05:00+00:00", "unread": True,
             "size": len(self.home.message()), "format": "HTML",
             "attachments": [{"index": 1, "file_name": "a.txt", "display_name": "a.txt", "type": 1,
                              "size": len(CONTENT)}]},
        )
        shown = self.home.run("--json", "show", "1").json
        extra = {key: shown.pop(key) for key in ("body", "html_body", "rtf_body", "links")}
        self.assertEqual(shown, entry)
        self.assertEqual((extra["body"].strip(), extra["rtf_body"], extra["links"]), ("Good day.", "", []))
        self.assertEqual(extra["html_body"].strip(), "<html><body>Hi</body></html>")

    def test_save_and_the_links_after_it(self):
        before = self.home.run("--json", "list").json[0]["id"]
        done = self.home.run("--json", "save")
        self.assertDone(done)
        (change,) = done.json["items"]
        path = f"{self.home.saved}/a.txt"
        self.assertEqual(
            done.json,
            {"message": "Processing complete.  1 attachment removed.", "count": 1,
             "saved": [{"item": before, "file_name": "a.txt", "path": path, "size": len(CONTENT)}],
             "items": [{"id": before, "new_id": change["new_id"]}], "drafts": [], "deleted_files": [], "errors": []},
        )
        self.assertEqual(self.home.run("--json", "show", change["new_id"]).json["links"], [path])

    def test_delete_moves_and_then_deletes_for_good(self):
        before = self.home.run("--json", "list").json[0]["id"]
        (moved,) = self.home.run("--json", "delete", "1").json["items"]
        self.assertEqual(moved["id"], before)
        self.assertTrue(moved["new_id"].startswith("Trash/"), moved)
        (gone,) = self.home.run("--json", "delete", "--folder", "Trash", "1").json["items"]
        self.assertEqual(gone, {"id": moved["new_id"], "new_id": ""})
        self.assertEqual(self.home.messages("Trash"), [])

    def test_errors_are_in_the_document_and_on_standard_error(self):
        self.home.set(SavePath="/proc/nowhere/")
        done = self.home.run("--json", "save")
        self.assertEqual(done.status, 1)
        errors = done.json["errors"]
        self.assertTrue(errors)
        for error in errors:
            self.assertEqual(sorted(error), ["level", "message", "source"])
        self.assertEqual(len(done.err.splitlines()), len(errors))

    def test_the_settings(self):
        rows = {row["key"]: row for row in self.home.run("--json", "settings").json}
        self.assertEqual(
            rows["AddURL"],
            {"key": "AddURL", "value": "1", "default": "0", "set": True, "meaning": rows["AddURL"]["meaning"]},
        )
        self.assertEqual((rows["LinkLocation"]["value"], rows["LinkLocation"]["set"]), ("Bottom", False))

    def test_nothing_else_stands_on_standard_output(self):
        for arguments in (["folders"], ["list"], ["show", "1"], ["save"], ["reply", "1"], ["forward", "1"],
                          ["restore", "1"], ["settings"], ["delete", "1"]):
            done = self.home.run("--json", *arguments)
            json.loads(done.out)


class Quiet(Case):
    def test_quiet_says_nothing_on_success(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.add(mail(files=[("a.txt", CONTENT)]))
        for arguments in (["save"], ["forward", "1"], ["reply", "1"], ["restore", "1"], ["delete", "1"]):
            done = self.home.run("--quiet", *arguments)
            self.assertDone(done)
            self.assertEqual(done.out, "", arguments)

    def test_restore_and_delete_say_how_many(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.add(mail(files=[("a.txt", CONTENT)]))
        self.assertDone(self.home.run("save"))
        self.assertEqual(self.home.run("restore", "1").out, "1 message restored\n")
        self.assertEqual(self.home.run("delete", "1").out, "1 message deleted\n")


class Trace(Case):
    def test_a_manual_run_traces_its_option_lines(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.assertDone(self.home.run("--trace", self.home.trace_file, "save"))
        lines = [message for procedure, message in self.home.trace() if procedure == "QuillfileButton"]
        self.assertEqual(
            lines,
            ["Entering QuillfileButton", "Save All Attachments: -1", "Post Pocessing (read, unread, delete): 1",
             "Remove Attachment After Processing: -1", "Mimic Outlook Folders: 0", "Error Prompt: -1", "Add URL: -1",
             f"Root Save Path: {self.home.saved}/", "Read write change (none, ro, rw): 0", "Automatic Rename: -1",
             "Send Remove Attachments: 0", "Send Delete Attachments: 0", "Leaving QuillfileButton"],
        )

    def test_each_trace_is_one_line_of_four_fields(self):
        self.home.set(RemoveAttachment=1, AddURL=1)
        self.home.add(mail(subject="tab\tand more", text="two\nlines\n", files=[("a.txt", CONTENT)]))
        done = self.home.run("--trace", "-", "save")
        self.assertEqual(done.status, 0)
        lines = done.err.splitlines()
        self.assertIn("Body (without removal) after save: ", done.err)
        for line in lines:
            self.assertEqual(line.count("\t"), 3, line)
            self.assertEqual(line.split("\t")[1], "Quillfile")


class Terminal(Case):
    """The program on a terminal of its own."""

    def talk(self, *arguments, answers=(), environment=None, timeout=60):
        """Runs it; each answer is (text to wait for, keys). Gives (status, everything that the terminal showed)."""
        pid, terminal = pty.fork()
        if pid == 0:
            os.chdir(self.home.root)
            os.execve(PROGRAM, [PROGRAM, *map(str, arguments)],
                      {**self.home.environment, "TERM": "xterm", **(environment or {})})
        seen, waiting, searched = b"", list(answers), 0
        deadline = time.monotonic() + timeout
        while time.monotonic() < deadline:
            if select.select([terminal], [], [], 0.1)[0]:
                try:
                    more = os.read(terminal, 4096)
                except OSError:
                    break
                if not more:
                    break
                seen += more
            if waiting and (at := seen.find(waiting[0][0].encode(), searched)) >= 0:
                searched = at + len(waiting[0][0])
                os.write(terminal, waiting.pop(0)[1].encode())
        _, status = os.waitpid(pid, 0)
        os.close(terminal)
        return os.waitstatus_to_exitcode(status), seen.decode("utf-8", "replace")

    def test_the_first_save_asks_once(self):
        before = self.home.add(mail(files=[("a.txt", CONTENT)])).read_bytes()
        status, shown = self.talk("save", answers=[("[n]o: ", "n")])
        self.assertEqual(status, 1, shown)
        self.assertIn("This is the first run.", shown)
        self.assertEqual(self.home.message(), before)
        status, shown = self.talk("save", answers=[("[n]o: ", "y")])
        self.assertEqual(status, 0, shown)
        self.assertTrue((self.home.root / "Documents/Saved Attachments/Inbox/a.txt").exists())
        status, shown = self.talk("save")
        self.assertNotIn("first run", shown)

    def test_a_read_only_file_is_asked_about_and_yes_opens_the_form(self):
        self.home.set(AutomaticRename=0)
        self.home.saved.mkdir()
        taken = self.home.saved / "a.txt"
        taken.write_bytes(b"old")
        taken.chmod(0o444)
        self.home.add(mail(files=[("a.txt", CONTENT)]))
        status, shown = self.talk("save", answers=[("[c]ancel: ", "y"), ("Save as (return", "b.txt\n")])
        self.assertEqual(status, 0, shown)
        self.assertIn("Warning: A file with the same name ('a.txt') already exists and is read-only.", shown)
        self.assertIn("Would you like to rename the file?", shown)
        self.assertEqual(self.home.saved_files(), {"a.txt": b"old", "b.txt": CONTENT})

    def test_end_of_input_at_a_question_is_the_careful_answer(self):
        self.home.set(OptionalRenameWanted=1)
        self.home.add(mail(files=[("a.txt", CONTENT)]))
        self.talk("save", answers=[("Save as (return", "\x04")])
        self.assertFalse(self.home.saved.exists() and self.home.saved_files())

    def test_progress_is_gone_without_a_trace(self):
        self.home.set()
        for i in range(600):
            self.home.add(mail(subject=f"{i}", files=[("image.png", b"x" * 60_000)]))
        status, shown = self.talk("save", answers=())
        self.assertEqual(status, 0)
        self.assertIn(" of 600 items, ", shown)
        self.assertEqual(on_screen(shown),
                         ["Processing complete.  600 attachments removed.", f"600 files, 36.0 MB, in {self.home.saved}/"])

    def test_a_question_stands_on_a_line_of_its_own(self):
        self.home.set(OptionalRenameWanted=1)
        for i in range(3):
            self.home.add(mail(subject=f"{i}", files=[(f"{i}.bin", b"x" * 10_000_000)]))
        status, shown = self.talk("save", answers=[("Save as (return", "\n")] * 3)
        self.assertEqual(status, 0, shown)
        for line in on_screen(shown):
            self.assertFalse("items" in line and "Save as" in line, line)
        self.assertEqual(len(self.home.saved_files()), 3)


def on_screen(text: str) -> list:
    """The lines that stand on a terminal after this text; knows return, line feed and clear-to-end-of-line."""
    lines, column = [""], 0
    at = 0
    while at < len(text):
        if text.startswith("\x1b[K", at):
            lines[-1] = lines[-1][:column]
            at += 3
            continue
        c = text[at]
        at += 1
        if c == "\r":
            column = 0
        elif c == "\n":
            lines.append("")
        else:
            lines[-1] = lines[-1][:column] + c + lines[-1][column + 1:]
            column += 1
    return [line for line in lines if line]


if __name__ == "__main__":
    main()

"""`quillfile watch`: each message that arrives is handled once, whatever moves, restarts and fails meanwhile."""
import json
import os
import resource
import shutil
import signal
import sys
import time

from watching import PROGRAM, Home, attachments, message, wait_until


def stripped(home, folder=""):
    return [made["Subject"] for made in home.messages(folder).values() if not attachments(made)]


def what_is_there_at_the_first_look_counts_as_seen(home):
    shutil.rmtree(home.root / "state")
    home.deliver(message("old"))
    assert home.once()["saved"] == []
    home.deliver(message("fresh"))
    done = home.once()
    assert [os.path.basename(entry["path"]) for entry in done["saved"]] == ["a.pdf"], done
    assert done["count"] == 1 and len(done["items"]) == 1, done
    assert stripped(home) == ["fresh"]
    assert home.once()["saved"] == [], "its own rewrite is no arrival"


def arrivals_are_handled_once_each_wherever_they_move(home):
    watch = home.watch()
    name = home.deliver(message("plain", attachments=()))
    wait_until(lambda: len(home.documents_printed()) == 1, "a document for the message")
    os.rename(home.mail / "new" / name, home.mail / "cur" / (name + ":2,"))
    os.rename(home.mail / "cur" / (name + ":2,"), home.mail / "cur" / (name + ":2,S"))
    home.deliver(message("one"), into="cur", flags=":2,F")
    wait_until(lambda: stripped(home) == ["plain", "one"] or stripped(home) == ["one", "plain"], "the next one")
    home.stop(watch)
    printed = home.documents_printed()
    assert [len(document["saved"]) for document in printed] == [0, 1], printed
    assert [name for name, made in home.messages().items() if made["Subject"] == "one"][0].endswith(":2,F")


def a_restart_catches_up_oldest_first(home):
    home.stop(home.watch())
    for number in (1, 2, 3):
        home.deliver(message(f"m{number}", [(f"{number}.pdf", b"x")]), name=f"{number}00.M1P1.host")
    watch = home.watch()
    wait_until(lambda: len(home.documents_printed()) == 3, "three documents")
    paths = [os.path.basename(document["saved"][0]["path"]) for document in home.documents_printed()]
    assert paths == ["1.pdf", "2.pdf", "3.pdf"], paths
    home.stop(watch)
    assert home.once()["saved"] == []


def a_message_that_is_being_copied_into_place_is_waited_for(home):
    watch = home.watch()
    content = message("slow", [("big.pdf", b"y" * 200_000)])
    with open(home.mail / "new" / "1.slow", "wb") as file:
        file.write(content[:50_000])
        file.flush()
        time.sleep(1.5)
        file.write(content[50_000:])
    wait_until(lambda: home.saved() != [], "the attachment is saved")
    assert [path.stat().st_size for path in home.documents.rglob("big*.pdf")] == [200_000]
    home.stop(watch)


def a_folder_made_or_replaced_meanwhile_is_watched(home):
    home.run("settings", "set", "FolderCount", "2")
    home.run("settings", "set", "FolderEntryId2", "Work")
    watch = home.watch()
    work = home.mail / ".Work"
    for turn in range(6):
        for name in ("tmp", "new", "cur"):
            (work / name).mkdir(parents=True)
        home.deliver(message(f"made {turn}", [(f"made{turn}.pdf", b"x")]), folder=".Work")
        wait_until(lambda: f"made{turn}.pdf" in " ".join(home.saved()), "mail in a new folder")
        home.deliver(message(f"more {turn}", [(f"more{turn}.pdf", b"x")]), folder=".Work")
        wait_until(lambda: f"more{turn}.pdf" in " ".join(home.saved()), "more of it")
        os.rename(work, home.root / f"gone{turn}")
    home.stop(watch)


def monitored_folders_and_settings_apply_from_the_next_item(home):
    (home.mail / ".Later").mkdir()
    for name in ("tmp", "new", "cur"):
        (home.mail / ".Later" / name).mkdir()
    watch = home.watch()
    home.run("monitor", "Later")
    home.run("settings", "set", "RemoveAttachment", "0")
    time.sleep(0.5)
    home.deliver(message("later"), folder=".Later")
    wait_until(lambda: home.saved() != [], "mail in a folder that is monitored since")
    home.stop(watch)
    assert stripped(home, ".Later") == [] and len(home.saved()) == 1
    assert home.once()["saved"] == [], "it is not handled again"


def settings_that_are_a_link_apply_from_the_next_item(home):
    for name in ("tmp", "new", "cur"):
        (home.mail / ".Later" / name).mkdir(parents=True)
    (home.root / "kept").mkdir()
    os.rename(home.root / "settings.ini", home.root / "kept" / "quillfile.ini")
    os.symlink("kept/quillfile.ini", home.root / "settings.ini")
    watch = home.watch()
    home.run("monitor", "Later")
    time.sleep(0.5)
    home.deliver(message("later"), folder=".Later")
    wait_until(lambda: stripped(home, ".Later") == ["later"], "mail in a folder that is monitored since")
    home.stop(watch)


def a_setting_that_cannot_be_used_is_reported_and_does_not_end_it(home):
    for poll in ((), ("--poll", "1")):
        settings = (home.root / "settings.ini").read_text()
        said = home.errors().count("EnableButton")
        watch = home.watch(*poll)
        (home.root / "settings.ini").write_text(settings + "EnableButton=yes\n")
        wait_until(lambda: home.errors().count("EnableButton") > said, "the report")
        home.deliver(message("meanwhile" + "".join(poll)))
        wait_until(lambda: "meanwhile" + "".join(poll) in stripped(home), "the next message")
        time.sleep(1.5)
        assert home.errors().count("The setting EnableButton") == said // 2 + 1, "it is told once"
        home.stop(watch)
        refused = home.run("watch", "--once", status=3).stderr
        assert "The setting EnableButton in " in refused and "settings unset EnableButton" in refused, refused
        home.run("settings", "unset", "EnableButton")


def monitored_folders_are_numbered_without_gaps(home):
    def keys():
        lines = (home.root / "settings.ini").read_text().splitlines()
        return sorted(line for line in lines if line.startswith(("FolderName", "FolderEntryId", "FolderCount")))

    for folder in ("Bills", "Work", "Work.2026"):
        for name in ("tmp", "new", "cur"):
            (home.mail / f".{folder}" / name).mkdir(parents=True)
    home.run("monitor", "Bills", "Work", "Work/2026", "Work")
    assert keys() == ["FolderCount=4", "FolderEntryId1=Inbox", "FolderEntryId2=Bills", "FolderEntryId3=Work",
                      "FolderEntryId4=Work/2026", "FolderName1=Inbox", "FolderName2=Bills", "FolderName3=Work",
                      "FolderName4=2026"], keys()
    home.run("monitor", "--remove", "Inbox", "Work")
    assert keys() == ["FolderCount=2", "FolderEntryId1=Bills", "FolderEntryId2=Work/2026", "FolderName1=Bills",
                      "FolderName2=2026"], keys()
    assert "Watching Bills, Sent, Trash, Work/2026" in home.run("watch", "--once").stdout
    shown = json.loads(home.run("folders", "--json").stdout)
    assert [folder["path"] for folder in shown if folder["monitored"]] == ["Bills", "Work/2026"], shown
    shutil.rmtree(home.mail / ".Bills")
    home.run("monitor", "--remove", "Bills", "Work/2026")
    assert keys() == ["FolderCount=0"], keys()
    assert "`quillfile monitor Inbox` adds one" in home.run("watch", "--once").stdout


def a_clock_that_jumps_loses_nothing_and_doubles_nothing(home):
    """To a watch a jump shows in the times of the folders."""
    hour = 3600
    for words in ((), ("--poll", "1")):
        for jump in (hour, -hour):
            subjects = [f"{turn} {jump} {len(words)}" for turn in range(3)]
            home.deliver(message(subjects[0], [("a.pdf", b"x")]))
            watch = home.watch(*words)
            for subject in subjects[1:]:
                home.deliver(message(subject, [("a.pdf", b"x")]))
                for name in ("new", "cur"):
                    os.utime(home.mail / name, (time.time() + jump, time.time() + jump))
            wait_until(lambda: all(stripped(home).count(subject) == 1 for subject in subjects), "each is handled")
            home.stop(watch)
    assert home.once()["saved"] == [] and len(home.saved()) == 12 == len(home.messages())


def more_events_than_the_system_keeps_lose_nothing(home):
    watch = home.watch()
    watch.send_signal(signal.SIGSTOP)
    kept = int(open("/proc/sys/fs/inotify/max_queued_events").read())
    name = home.deliver(message("first", [("first.pdf", b"x")]))
    junk = home.deliver(message("junk", attachments=()), into="cur", flags=":2,")
    for turn in range(kept // 2 + 100):
        os.rename(home.mail / "cur" / (junk + ":2,"), home.mail / "cur" / (junk + ":2,S"))
        os.rename(home.mail / "cur" / (junk + ":2,S"), home.mail / "cur" / (junk + ":2,"))
    home.deliver(message("last", [("last.pdf", b"x")]))
    watch.send_signal(signal.SIGCONT)
    wait_until(lambda: len(home.documents_printed()) == 3, "all three")
    home.stop(watch)
    assert [os.path.basename(path) for path in home.saved()] == ["first.pdf", "last.pdf"], home.saved()
    assert name not in home.messages() and sorted(stripped(home)) == ["first", "junk", "last"]


def share(home, *answer):
    for number in range(40):
        home.deliver(message(f"m{number}", [("same.pdf", b"%d" % number * 100)]))
        if number % 3 == 2:
            home.run(*answer, "save", status=None)
    wait_until(lambda: len(stripped(home)) == 40, "all forty are stripped")
    contents = sorted(path.read_bytes() for path in home.documents.rglob("[!.]*.pdf"))
    assert contents == sorted(b"%d" % number * 100 for number in range(40)), len(contents)
    assert sorted(stripped(home)) == sorted(f"m{number}" for number in range(40))


def a_save_by_hand_beside_it_shares_the_messages(home):
    """Each is saved from once, and no file is overwritten."""
    watch = home.watch()
    share(home)
    home.stop(watch)


def what_was_saved_by_hand_is_not_saved_again(home):
    """Though the message stays as it was."""
    home.run("settings", "set", "RemoveAttachment", "0")
    home.run("settings", "set", "AddURL", "0")
    home.deliver(message("by hand", [("by-hand.pdf", b"x")]))
    home.run("save")
    home.deliver(message("later", [("later.pdf", b"x")]))
    assert [entry["file_name"] for entry in home.once()["saved"]] == ["later.pdf"]
    watch = home.watch()
    watch.send_signal(signal.SIGSTOP)
    home.deliver(message("beside", [("beside.pdf", b"x")]))
    home.run("save")
    number = len(home.saved())
    watch.send_signal(signal.SIGCONT)
    home.deliver(message("last", [("last.pdf", b"x")]))
    wait_until(lambda: len(home.documents_printed()) >= 1, "the last one is handled")
    home.stop(watch)
    assert len(home.saved()) == number + 1, home.saved()


def a_manual_run_is_not_taken_for_the_watchs_own(home):
    home.run("settings", "set", "OptionalRenameWanted", "1")  # asks for a path in a manual run, and only there
    watch = home.watch("--answer", "cancel")
    share(home, "--answer", "yes")
    home.stop(watch)
    assert home.run("settings", "get", "ButtonClicked").stdout.strip() == "0"


def polling_sees_the_same(home):
    watch = home.watch("--poll", "1")
    home.deliver(message("polled"))
    wait_until(lambda: stripped(home) == ["polled"], "a look")
    home.stop(watch)


def sent_mail_follows_the_send_options(home):
    home.run("settings", "set", "SendRemoveAttachments", "1")
    home.deliver(message("sent"), folder=".Sent", into="cur", flags=":2,S")
    assert len(home.once()["saved"]) == 1
    assert stripped(home, ".Sent") == ["sent"]


def deleted_mail_keeps_its_files_unless_told_otherwise(home):
    home.deliver(message("first", [("keep.pdf", b"x")]))
    home.deliver(message("second", [("drop.pdf", b"x")]))
    home.once()
    names = {made["Subject"]: name for name, made in home.messages().items()}
    move = lambda subject: os.rename(home.mail / "cur" / names[subject], home.mail / ".Trash/cur" / names[subject])
    move("first")
    assert home.once()["deleted_files"] == []
    move("second")
    done = home.once("--answer", "yes")
    assert [os.path.basename(path) for path in done["deleted_files"]] == ["drop.pdf"], done
    assert [os.path.basename(path) for path in home.saved()] == ["keep.pdf"]


def its_own_deletions_are_not_the_users(home):
    """After-save action 2 moves the message to Deleted Items; the saved file must stay."""
    home.run("settings", "set", "PostProcess", "2")
    home.deliver(message("goes"))
    home.once("--answer", "yes")
    home.once("--answer", "yes")
    assert [made["Subject"] for made in home.messages(".Trash").values()] == ["goes"]
    assert len(home.saved()) == 1


def a_message_that_fails_three_times_is_set_aside(home):
    home.run("settings", "set", "SavePath", "/proc/nowhere/")
    home.deliver(message("bad"))
    for turn in (1, 2, 3):
        home.deliver(message(f"plain {turn}", attachments=()))
        errors = home.once(status=1)["errors"]
        assert any("left alone" in error["message"] for error in errors) == (turn == 3), errors
    home.run("settings", "set", "SavePath", str(home.documents))
    assert home.once()["saved"] == []


def a_message_that_ends_the_program_is_set_aside(home):
    """The system kills who writes a file beyond the limit: a crash in the middle of one item."""
    limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 20, 1 << 20))
    home.deliver(message("bad", [("bad.pdf", b"x" * (2 << 20))]), name="100.bad")
    home.deliver(message("good", [("good.pdf", b"x")]), name="200.good")
    ends = [home.run("watch", "--once", status=None, preexec_fn=limit).returncode for _ in range(4)]
    assert ends == [-signal.SIGXFSZ] * 3 + [1], ends
    assert stripped(home) == ["good"] and len(home.messages()) == 2
    assert home.run("watch", "--once", preexec_fn=limit).stderr == "", "it stays aside"


def a_signal_ends_it_after_the_item_in_hand(home):
    for number in range(30):
        home.deliver(message(f"m{number}", [(f"{number}.pdf", b"z" * 100_000)]))
    watch = home.watch()
    wait_until(lambda: home.saved() != [], "the first file")
    watch.send_signal(signal.SIGINT)
    assert watch.wait(20) == 0, home.errors()
    done = len(home.documents_printed())
    assert len(stripped(home)) == done and len(home.saved()) == done
    rest = home.once()
    assert len(rest["saved"]) == 30 - done and sorted(stripped(home)) == sorted(f"m{n}" for n in range(30))


def another_watch_is_refused(home):
    watch = home.watch()
    assert "Another watch" in home.run("watch", "--once", status=3).stderr
    home.stop(watch)


def it_says_when_nothing_will_be_saved(home):
    home.run("settings", "set", "AutomaticMode", "0")
    said = home.run("watch", "--once").stdout
    assert "Watching Inbox" in said and "settings set AutomaticMode 1" in said and "Documents" in said, said
    assert home.run("watch", "--once", "--quiet").stdout == ""
    home.run("settings", "set", "AutomaticMode", "2")  # neither on nor off, and nothing is done either
    assert "Automatic mode is off" in home.run("watch", "--once").stdout
    home.run("settings", "set", "AutomaticMode", "1")
    assert "Automatic mode is off" not in home.run("watch", "--once").stdout
    home.run("settings", "set", "AutomaticMode", "0")
    home.run("settings", "set", "SendDeleteAttachments", "1")
    assert "Automatic mode is off" not in home.run("watch", "--once").stdout


def at_rest_it_costs_nothing(home):
    watch = home.watch()
    home.deliver(message("one"))
    wait_until(lambda: stripped(home) == ["one"], "the first message")
    time.sleep(0.5)
    status = lambda: dict(line.split(":", 1) for line in open(f"/proc/{watch.pid}/status"))
    before = status()
    time.sleep(3)
    after = status()
    assert before["voluntary_ctxt_switches"] == after["voluntary_ctxt_switches"], "it woke up"
    # A sanitizer keeps shadows of its own: they count there, so the limit is another one.
    limit = 120_000 if "libasan" in open(f"/proc/{watch.pid}/maps").read() else 20_000
    assert int(after["VmRSS"].split()[0]) < limit, after["VmRSS"]
    home.stop(watch)


CASES = [value for value in list(globals().values())
         if callable(value) and getattr(value, "__code__", None) and value.__code__.co_varnames[:1] == ("home",)
         and value not in (stripped, share)]

if __name__ == "__main__":
    if not os.access(PROGRAM, os.X_OK):
        sys.exit(77)
    wanted = sys.argv[1:]
    for case in CASES:
        if wanted and case.__name__ not in wanted:
            continue
        began = time.monotonic()
        home = Home()
        try:
            case(home)
        except BaseException:
            print(f"FAILED {case.__name__}\n{home.errors()}", flush=True)
            raise
        finally:
            home.close()
        shutil.rmtree(home.root)
        print(f"{time.monotonic() - began:5.1f} s  {case.__name__}", flush=True)

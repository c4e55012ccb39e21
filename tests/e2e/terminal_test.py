"""Questions on a terminal: one key each, one answer for a whole deletion, and Ctrl-C."""
import os
import pty
import select
import shutil
import signal
import subprocess
import sys
import termios
import time

from watching import PROGRAM, Home, message, wait_until

QUESTION = "Would you like to delete this file?"
END = "n[o] to all: "


class Terminal:
    """The program on a terminal of its own, and what it says there."""

    def __init__(self, home, *words):
        self.keyboard, inside = pty.openpty()
        self.before = termios.tcgetattr(inside)
        self.inside, self.said = inside, ""
        self.program = subprocess.Popen([PROGRAM, *words], env=home.environment, stdin=inside, stderr=inside,
                                        stdout=subprocess.DEVNULL)

    def hear(self):
        while select.select([self.keyboard], [], [], 0.05)[0]:
            self.said += os.read(self.keyboard, 65536).decode()
        return self.said

    def asked(self, times):
        wait_until(lambda: self.hear().count(END) == times, f"question {times}")

    def press(self, key):
        os.write(self.keyboard, key)

    def ended(self):
        status = self.program.wait(20)
        assert termios.tcgetattr(self.inside) == self.before, "the terminal is not as it was"
        self.hear()
        return status


def stripped(home, *names):
    """One message for each name, its attachment saved and taken out of it; their paths in the Inbox."""
    for name in names:
        home.deliver(message(name, [(name + ".pdf", b"x")]))
    home.once()
    paths = {made["Subject"]: home.mail / "cur" / name for name, made in home.messages().items()}
    return [paths[name] for name in names]


def saved(home):
    return [os.path.basename(path) for path in home.saved()]


def yes_to_all_covers_the_items_of_one_command(home):
    stripped(home, "a", "b", "c", "d")
    terminal = Terminal(home, "delete", "1-3")
    terminal.asked(1)
    assert QUESTION in terminal.said and str(home.documents) in terminal.said, terminal.said
    terminal.press(b"A")
    assert terminal.ended() == 0
    assert terminal.said.count(END) == 1, terminal.said
    assert saved(home) == ["d.pdf"]
    terminal = Terminal(home, "delete", "1")
    terminal.asked(1)
    terminal.press(b"n")
    assert terminal.ended() == 0 and saved(home) == ["d.pdf"]


def no_to_all_does_too_and_yes_is_for_one(home):
    stripped(home, "a", "b", "c", "d")
    terminal = Terminal(home, "delete", "1-4")
    for number, key in enumerate((b"n", b"y", b"xo"), 1):  # no answer has the key x
        terminal.asked(number)
        terminal.press(key)
    assert terminal.ended() == 0
    assert terminal.said.count(END) == 3 and saved(home) == ["a.pdf", "c.pdf", "d.pdf"], terminal.said


def an_interrupt_at_the_question_ends_a_delete(home):
    (path,) = stripped(home, "a")
    terminal = Terminal(home, "delete", "1")
    terminal.asked(1)
    terminal.press(b"\x03")
    assert terminal.ended() == -signal.SIGINT
    assert saved(home) == ["a.pdf"] and not path.exists()
    assert [made["Subject"] for made in home.messages(".Trash").values()] == ["a"]


def an_interrupt_at_the_question_is_a_no_and_ends_a_watch(home):
    (path,) = stripped(home, "a")
    terminal = Terminal(home, "watch")
    wait_until(lambda: watching(home, terminal), "the watch starts")
    os.rename(path, home.mail / ".Trash/cur" / path.name)
    terminal.asked(1)
    terminal.press(b"\x03")
    assert terminal.ended() == 0
    assert saved(home) == ["a.pdf"]
    assert home.once("--answer", "yes")["deleted_files"] == [], "it has been handled"


def a_second_signal_ends_a_watch_at_once_and_nothing_is_lost(home):
    (path,) = stripped(home, "a")
    terminal = Terminal(home, "watch")
    wait_until(lambda: watching(home, terminal), "the watch starts")
    os.rename(path, home.mail / ".Trash/cur" / path.name)
    terminal.asked(1)
    terminal.program.send_signal(signal.SIGTERM)
    time.sleep(0.3)
    assert terminal.program.poll() is None, "the item in hand is finished first"
    terminal.program.send_signal(signal.SIGTERM)
    assert terminal.program.wait(20) == 128 + signal.SIGTERM
    assert saved(home) == ["a.pdf"] and (home.mail / ".Trash/cur" / path.name).exists()
    done = home.once("--answer", "yes")
    assert [os.path.basename(name) for name in done["deleted_files"]] == ["a.pdf"], "it is taken up again"


def watching(home, terminal):
    """Whether the watch listens: the system says for what a descriptor is."""
    assert terminal.program.poll() is None, terminal.hear()
    places = f"/proc/{terminal.program.pid}/fdinfo"
    return any("inotify wd" in open(f"{places}/{name}").read() for name in os.listdir(places))


CASES = [yes_to_all_covers_the_items_of_one_command, no_to_all_does_too_and_yes_is_for_one,
         an_interrupt_at_the_question_ends_a_delete, an_interrupt_at_the_question_is_a_no_and_ends_a_watch,
         a_second_signal_ends_a_watch_at_once_and_nothing_is_lost]

if __name__ == "__main__":
    if not os.access(PROGRAM, os.X_OK):
        sys.exit(77)
    for case in CASES:
        home = Home()
        try:
            case(home)
        finally:
            home.close()
        shutil.rmtree(home.root)
        print(case.__name__, flush=True)

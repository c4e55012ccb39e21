"""neomutt in a terminal: the macro saves the attachments of the tagged messages, and the others keep theirs."""
import os
import pathlib
import shutil
import subprocess
import sys

from watching import PROGRAM, Home, attachments, message, wait_until

SCRIPTS = pathlib.Path(__file__).resolve().parent.parent.parent / "packaging" / "neomutt"
CONFIGURATION = """
set mbox_type=Maildir folder={mail} spool_file={mail} mail_check=1 wait_key=no sort=subject
set pipe_split=yes pipe_decode=no confirm_append=no quit=yes mark_old=no header_cache=""
macro index,pager S "<pipe-message>quillfile-save<enter>"
"""


def main():
    home = Home()
    for name in ("one", "two", "three"):
        more = {"In_Reply_To": "<one@example.org>"} if name == "two" else {}
        content = message(name, [(f"{name}.pdf", name.encode())], **more)
        home.deliver(content.replace(b"ID: <one", b"Id:\r\n <one"), into="cur", flags=":2,S")  # folded, as RFC 5322 allows
    (home.root / "rc").write_text(CONFIGURATION.format(mail=home.mail))
    socket = str(home.root / "tmux")
    path = f"{SCRIPTS}:{pathlib.Path(PROGRAM).resolve().parent}:{os.environ['PATH']}"
    environment = {**home.environment, "PATH": path, "TERM": "xterm"}

    def tmux(*words):
        return subprocess.run(["tmux", "-S", socket, *words], env=environment, capture_output=True, text=True,
                              timeout=20, check=True).stdout

    tmux("-f", "/dev/null", "new-session", "-d", "-x", "100", "-y", "30", f"neomutt -n -F {home.root}/rc")
    try:
        screen = lambda: tmux("capture-pane", "-p")
        wait_until(lambda: "three" in screen() and "two" in screen(), "neomutt shows the messages")
        tmux("send-keys", "1", "Enter")
        tmux("send-keys", "t", "t")  # tags the first two by subject: one, three; each tag moves on
        wait_until(lambda: screen().count("*") >= 2, "two tags")
        tmux("send-keys", ";S")
        wait_until(lambda: len(home.saved()) == 2, "two files")
        left = lambda: sorted((made["Subject"], len(attachments(made))) for made in home.messages().values())
        wait_until(lambda: left() == [("one", 0), ("three", 0), ("two", 1)], "two stripped messages")
        tmux("send-keys", "q")
    except AssertionError:
        print(screen(), left() if "left" in locals() else "")
        raise
    finally:
        subprocess.run(["tmux", "-S", socket, "kill-server"], env=environment, capture_output=True, timeout=20)
    shutil.rmtree(home.root)
    print("two tagged messages were saved and stripped, the third was left alone")


if __name__ == "__main__":
    if not os.access(PROGRAM, os.X_OK) or not shutil.which("neomutt") or not shutil.which("tmux"):
        print("skipped: no program, no neomutt or no tmux")
        sys.exit(77)
    main()

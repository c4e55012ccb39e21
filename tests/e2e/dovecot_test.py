"""A watch beside Dovecot on one Maildir: mail by LDA and by APPEND while it strips, seen by an IMAP client."""
import imaplib
import os
import re
import shutil
import sys
import time

from dovecot_server import Server, missing_programs, run_as_nobody
from watching import PROGRAM, Home, attachments, message, wait_until

import email
import email.policy

COUNT = 20


def fetch_all(client, folder):
    client.select(folder, readonly=True)
    numbers = client.search(None, "ALL")[1][0].split()
    found = []
    for number in numbers:
        answer = client.fetch(number, "(UID FLAGS RFC822.SIZE BODY.PEEK[])")[1]
        head, body = answer[0]
        told = int(re.search(rb"RFC822.SIZE (\d+)", head).group(1))
        found.append((email.message_from_bytes(body, policy=email.policy.default), told, len(body), head + answer[1]))
    return found


def main():
    home = Home()
    server = Server(home)
    try:
        watch = home.watch()
        client = server.client()
        client.select("INBOX")  # a client that stays, as mail readers do
        for number in range(COUNT):
            content = message(f"m{number}", [(f"{number}.pdf", bytes([number]) * 50_000)])
            if number % 2:
                server.deliver(content)
            else:
                flags = "(\\Flagged)" if number % 4 == 0 else None
                client.append("INBOX", flags, None, content.replace(b"\n", b"\r\n"))
            client.noop()
        wait_until(lambda: len(home.documents_printed()) == COUNT, "every message is handled", 40)
        reader = server.client()
        found = fetch_all(reader, "INBOX")
        subjects = sorted(made["Subject"] for made, *_ in found)
        assert subjects == sorted(f"m{n}" for n in range(COUNT)), subjects
        for made, told, size, head in found:
            number = int(made["Subject"][1:])
            assert told == size, (number, told, size)
            assert attachments(made) == [], number
            assert f"{number}.pdf" in made.get_body().get_content(), made.as_string()
            flagged = number % 4 == 0
            assert (b"\\Flagged" in head) == flagged, (number, head)
        files = {path.name: path.read_bytes() for path in home.documents.rglob("*.pdf")}
        assert files == {f"{n}.pdf": bytes([n]) * 50_000 for n in range(COUNT)}, sorted(files)
        # The user deletes one in the reader: it arrives in Deleted Items under a name of Dovecot's.
        reader.select("INBOX")
        reader._simple_command("MOVE", "1", "Trash")
        wait_until(lambda: len(home.documents_printed()) == COUNT + 1, "the deleted message is noticed")
        assert len(files) == len(list(home.documents.rglob("*.pdf")))
        home.stop(watch)
    finally:
        server.stop()
        home.close()
    wrong = [line for line in server.log().splitlines()
             if re.search(r"Error|Warning|Panic|Fatal", line) and "Killed with signal 15" not in line]
    assert not wrong, "\n".join(wrong)
    shutil.rmtree(home.root)
    print(f"{COUNT} messages, each seen once with its size right")


if __name__ == "__main__":
    if not os.access(PROGRAM, os.X_OK) or missing_programs("dovecot"):
        print("skipped: no program, or no Dovecot")
        sys.exit(77)
    run_as_nobody()
    began = time.monotonic()
    main()
    print(f"{time.monotonic() - began:.1f} s")

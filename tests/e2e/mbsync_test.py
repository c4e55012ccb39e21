"""mbsync between the watched Maildir and an account elsewhere: what was stripped is stripped there, once, for good."""
import email
import email.policy
import os
import shutil
import subprocess
import sys
import time

from dovecot_server import Server, missing_programs, run_as_nobody
from watching import PROGRAM, Home, attachments, message, wait_until

CONFIGURATION = """
IMAPAccount far
Host 127.0.0.1
Port {port}
User user
Pass secret
SSLType None
AuthMechs LOGIN

IMAPStore far
Account far

MaildirStore near
Inbox {mail}
SubFolders Maildir++

Channel all
Far :far:
Near :near:
Patterns INBOX
Create Near
Sync All
Expunge Both
SyncState {root}/sync-state-
"""


def main():
    home = Home()
    far_mail = home.root / "far"
    far_mail.mkdir()
    server = Server(home, mail=far_mail, name="far-server")
    try:
        configuration = home.root / "mbsyncrc"
        configuration.write_text(CONFIGURATION.format(port=server.port, mail=home.mail, root=home.root))

        def sync():
            done = subprocess.run(["mbsync", "-c", str(configuration), "-a"], capture_output=True, text=True, timeout=30,
                                  env=home.environment)
            assert done.returncode == 0, done.stdout + done.stderr

        def there():
            client = server.client()
            client.select("INBOX", readonly=True)
            found = []
            for number in client.search(None, "ALL")[1][0].split():
                content = client.fetch(number, "(BODY.PEEK[])")[1][0][1]
                found.append(email.message_from_bytes(content, policy=email.policy.default))
            client.logout()
            return sorted((made["Subject"], tuple(attachments(made))) for made in found)

        watch = home.watch()
        for number in range(5):
            server.deliver(message(f"far {number}", [(f"far{number}.pdf", b"f" * 20_000)]))
        home.deliver(message("near", [("near.pdf", b"n" * 20_000)]))
        sync()
        wait_until(lambda: len(home.saved()) == 6, "all six files")
        wait_until(lambda: all(not attachments(made) for made in home.messages().values()), "all six rewrites")
        for _ in range(3):
            sync()
        stripped = sorted([(f"far {n}", ()) for n in range(5)] + [("near", ())])
        assert there() == stripped, there()
        here = sorted((made["Subject"], tuple(attachments(made))) for made in home.messages().values())
        assert here == stripped, here
        assert len(home.saved()) == 6, home.saved()
        home.stop(watch)
    finally:
        server.stop()
        home.close()
    shutil.rmtree(home.root)
    print("six messages, stripped on both sides, each there once")


if __name__ == "__main__":
    if not os.access(PROGRAM, os.X_OK) or missing_programs("dovecot", "mbsync"):
        print("skipped: no program, no Dovecot or no mbsync")
        sys.exit(77)
    run_as_nobody()
    began = time.monotonic()
    main()
    print(f"{time.monotonic() - began:.1f} s")

"""Dovecot on loopback, without privileges, over the Maildir of one home."""
import email
import email.policy
import encodings.ascii
import encodings.idna  # what is imported late could not be read by then, where Python lies in root's home
import imaplib
import os
import pwd
import shutil
import socket
import subprocess
import tempfile
import time

from watching import message

LDA = "/usr/lib/dovecot/dovecot-lda"

CONFIGURATION = """
protocols = imap
listen = 127.0.0.1
base_dir = {root}/dovecot
state_dir = {root}/dovecot-state
log_path = {root}/dovecot.log
default_internal_user = {user}
default_internal_group = {group}
default_login_user = {user}
ssl = no
disable_plaintext_auth = no
mail_location = maildir:{mail}
first_valid_uid = 1
passdb {{
  driver = static
  args = password=secret
}}
userdb {{
  driver = static
  args = uid={uid} gid={gid} home={root}
}}
service imap-login {{
  chroot =
  inet_listener imap {{
    port = {port}
  }}
  inet_listener imaps {{
    port = 0
  }}
}}
service anvil {{
  chroot =
}}
namespace inbox {{
  inbox = yes
  separator = /
  mailbox Sent {{
    auto = no
    special_use = \\Sent
  }}
  mailbox Trash {{
    auto = no
    special_use = \\Trash
  }}
}}
"""


def missing_programs(*names):
    there = lambda name: shutil.which(name) or os.path.exists(f"/usr/sbin/{name}")
    return [name for name in names if not there(name)]


def run_as_nobody():
    """Dovecot serves nobody's mail as root: root becomes nobody, for the rest of the test."""
    email.message_from_bytes(message("first"), policy=email.policy.default).get_body().get_content()
    if os.geteuid() == 0:
        nobody = pwd.getpwnam("nobody")
        os.setgroups([])
        os.setgid(nobody.pw_gid)
        os.setuid(nobody.pw_uid)
    os.chdir(tempfile.gettempdir())


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Server:
    def __init__(self, home, mail=None, name="dovecot"):
        self.root = home.root / name
        self.root.mkdir()
        self.mail = mail or home.mail
        self.port = free_port()
        user = pwd.getpwuid(os.getuid())
        group = subprocess.run(["id", "-gn"], capture_output=True, text=True).stdout.strip()
        self.configuration = self.root / "dovecot.conf"
        self.configuration.write_text(CONFIGURATION.format(
            root=self.root, mail=self.mail, user=user.pw_name, group=group, uid=os.getuid(), gid=os.getgid(),
            port=self.port))
        program = shutil.which("dovecot") or "/usr/sbin/dovecot"
        self.process = subprocess.Popen([program, "-F", "-c", str(self.configuration)], stdin=subprocess.DEVNULL,
                                        stdout=open(self.root / "out", "w"), stderr=subprocess.STDOUT)
        try:
            self.wait_until_it_answers()
        except BaseException:
            self.stop()
            raise

    def wait_until_it_answers(self):
        end = time.monotonic() + 20
        while True:
            try:
                socket.create_connection(("127.0.0.1", self.port), 1).close()
                return
            except OSError:
                assert self.process.poll() is None and time.monotonic() < end, \
                    (self.root / "out").read_text() + self.log()
                time.sleep(0.05)

    def client(self):
        client = imaplib.IMAP4("127.0.0.1", self.port)
        client.login("user", "secret")
        return client

    def deliver(self, content, folder="INBOX"):
        subprocess.run([LDA, "-c", str(self.configuration), "-d", "user", "-m", folder], input=content, check=True,
                       timeout=30)

    def log(self):
        path = self.root / "dovecot.log"
        return path.read_text() if path.exists() else ""

    def stop(self):
        self.process.terminate()
        try:
            self.process.wait(20)
        except subprocess.TimeoutExpired:
            self.process.kill()

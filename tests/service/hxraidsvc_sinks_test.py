#!/usr/bin/env python3
"""The sinks of hxraidsvc as a process: mail, the journal, and trying them with --test-alert.

usage: hxraidsvc_sinks_test.py HXRAIDSVC
"""

import email
import email.policy
import json
import os
import socket
import struct
import threading
import unittest

from hxraidsvc_test import PATIENCE, PROGRAMS, SERVICE, Case, Running, wait_for


def fields_of(datagram):
    """{name: value} of an entry as the journal reads it."""
    fields = {}
    while datagram:
        line, datagram = datagram.split(b"\n", 1)
        if b"=" in line:
            name, value = line.split(b"=", 1)
        else:
            name, (length,) = line, struct.unpack("<Q", datagram[:8])
            value, datagram = datagram[8:8 + length], datagram[9 + length:]
        fields[name.decode()] = value.decode()
    return fields


class Sinks(Case):
    def setUp(self):
        super().setUp()
        self.letters = self.root.folder / "letters"
        self.letters.mkdir()

    def program(self, name, script):
        program = self.root.folder / name
        program.write_text(f"#!/bin/sh\ncd '{self.letters}' || exit 9\n{script}\n")
        program.chmod(0o755)
        return program


class Mail(Sinks):
    def test_is_handed_to_the_mail_program_with_its_words(self):
        program = self.program("sendmail", 'echo "$@" >words; cat >mail')
        self.root.configure(f'[sink.ops]\nkind = "mail"\nto = ["root", "ops@example.org"]\n'
                            f'from = "raid@example.org"\nprogram = "{program}"\n')
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        self.root.service("--once")
        self.assertEqual((self.letters / "words").read_text(), "-t -oi -f raid@example.org\n")
        mail = email.message_from_bytes((self.letters / "mail").read_bytes(),
                                        policy=email.policy.default)
        self.assertEqual(mail["To"], "root, ops@example.org")
        self.assertEqual(mail["From"], "raid@example.org")
        self.assertEqual(mail["Auto-Submitted"], "auto-generated")
        self.assertIn(f"[WARNING] {socket.gethostname()}: ", mail["Subject"])
        self.assertTrue(mail["Date"].datetime)
        self.assertIn("DISK_PREDICTED_FAILURE", mail.get_content())
        self.assertEqual(mail.defects, [])

    def test_has_the_same_id_when_it_is_sent_again(self):
        program = self.program("sendmail", 'cat >mail.$(ls | wc -l); exit 75')
        self.root.configure(f'[sink.ops]\nkind = "mail"\nto = ["root"]\nprogram = "{program}"\n')
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        for _ in range(2):
            self.root.service("--once")
        ids = [email.message_from_bytes(each.read_bytes())["Message-ID"]
               for each in self.letters.iterdir()]
        self.assertEqual(len(ids), 2)
        self.assertEqual(len(set(ids)), 1)


class Journal(Sinks):
    def setUp(self):
        super().setUp()
        path = self.root.path("/run/systemd/journal/socket")
        path.parent.mkdir(parents=True)
        self.socket = self.enterContext(socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM))
        self.socket.bind(str(path))
        self.path = str(path)
        self.read = []
        self.reader = threading.Thread(target=self.receive, daemon=True)
        self.reader.start()

    def receive(self):
        while datagram := self.socket.recv(1 << 20):
            self.read.append(datagram)

    def entries(self):
        """All that was written until now."""
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as last:
            last.sendto(b"", self.path)
        self.reader.join(PATIENCE)
        return [fields_of(each) for each in self.read]

    def test_gets_events_and_alerts(self):
        self.root.configure('[sink.journal]\nkind = "journal"\n')
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        self.root.service("--once")
        entries = self.entries()
        (event,) = [each for each in entries if "HXRAID_CODE" not in each and
                    (each["CLASS"], each["CODE"]) == ("2", "11")]
        self.assertEqual((event["ADAPTER"], event["SYSLOG_IDENTIFIER"]), ("0", "hxraidsvc"))
        self.assertEqual(event["MESSAGE_ID"], "8f1c6a5e0d2b4c739ae4b7d10002000b")
        (alert,) = [each for each in entries if "HXRAID_CODE" in each]
        self.assertEqual((alert["HXRAID_CODE"], alert["HXRAID_OBJECT"], alert["PRIORITY"]),
                         ("DISK_PREDICTED_FAILURE", "a0/pd4", "4"))
        self.assertEqual(alert["SEQUENCE"], event["SEQUENCE"])

    def test_gets_events_without_a_sink(self):
        self.root.hxsimctl("disk", "fail", "a0/pd5")
        self.root.service("--once")
        self.assertTrue(any("a0/pd5" in each["MESSAGE"] for each in self.entries()))


class TestAlert(Sinks):
    def test_goes_through_every_sink_and_reports_each(self):
        good = self.program("good", 'cat >letter')
        bad = self.program("bad", 'echo no line; exit 3')
        self.root.configure(f'[sink.good]\nkind = "command"\ncommand = ["{good}"]\n'
                            f'[sink.bad]\nkind = "command"\ncommand = ["{bad}"]\n'
                            f'[sink.journal]\nkind = "journal"\n')
        done = self.root.service("--test-alert", code=1)
        lines = sorted(done.stdout.splitlines())
        self.assertEqual(lines[0], "bad (command): failed: ended with exit status 3: no line")
        self.assertEqual(lines[1], "good (command): delivered")
        self.assertTrue(lines[2].startswith("journal (journal): failed: there is neither a journal "
                                            "nor a syslog: "), lines)
        self.assertTrue(json.loads((self.letters / "letter").read_text())["test"])

    def test_goes_through_one_sink_and_kills_what_hangs(self):
        hangs = self.program("hangs", 'setsid sleep 1000 & echo $! >pid; sleep 1000')
        good = self.program("good", 'cat >letter')
        self.root.configure(f'[sink.good]\nkind = "command"\ncommand = ["{good}"]\n'
                            f'[sink.hangs]\nkind = "command"\ncommand = ["{hangs}"]\n'
                            'limit = "1s"\n')
        self.assertEqual(self.root.service("--test-alert", "good").stdout,
                         "good (command): delivered\n")
        self.assertEqual(self.root.service("--test-alert", "hangs", code=1).stdout,
                         "hangs (command): failed: did not end within 1s\n")
        pid = self.letters / "pid"
        if pid.exists():  # else it was killed before it could start another
            stat = f"/proc/{pid.read_text().strip()}/stat"
            wait_for(lambda: not os.path.exists(stat) or " Z " in open(stat).read(), "its end")

    def test_names_the_sinks_that_there_are(self):
        self.assertIn("the settings name no sink", self.root.service("--test-alert", code=2).stderr)
        self.root.configure('[sink.journal]\nkind = "journal"\n')
        self.assertIn('there is no sink "fax"; the settings name journal',
                      self.root.service("--test-alert", "fax", code=2).stderr)
        self.root.service("fax", code=2)
        self.root.service("--test-alert", "--once", code=2)


class Two(Sinks):
    """A sink that cannot deliver is told by every other one."""

    def test_tell_of_each_other(self):
        good = self.program("good", 'cat >t.$$; mv t.$$ "good.$$"')
        bad = self.program("bad", 'exit 1')
        settings = ('[collect]\ninterval = "1h"\n'
                    f'[sink.bad]\nkind = "command"\ncommand = ["{bad}"]\n'
                    f'[sink.good]\nkind = "command"\ncommand = ["{good}"]\n')
        self.root.configure(settings)
        self.root.hxsimctl("smart", "trip", "a0/pd4")

        def told():
            return [(alert["change"], alert["code"], alert["object"]["name"])
                    for each in self.letters.glob("good.*")
                    for alert in json.loads(each.read_text())["alerts"]]

        with Running(self.root):
            failing = ("raised", "DELIVERY_FAILING", "bad")
            wait_for(lambda: failing in told(), "what the other one cannot deliver")
            done = self.root.run(os.path.join(PROGRAMS, "vexorctl"), "alert", "test", "-o", "json",
                                 code=1)
            rows = {each["name"]: each["result"] for each in json.loads(done.stdout)["items"]}
            self.assertEqual(rows, {"good": "delivered", "bad": "ended with exit status 1"})
            self.program("bad", 'cat >bad')
            cleared = ("cleared", "DELIVERY_FAILING", "bad")
            wait_for(lambda: cleared in told(), "the end of it")
        names = [each["code"] for each in json.loads((self.letters / "bad").read_text())["alerts"]]
        self.assertIn("DISK_PREDICTED_FAILURE", names)
        self.assertNotIn("DELIVERY_FAILING", names)


if __name__ == "__main__":
    assert SERVICE
    unittest.main()

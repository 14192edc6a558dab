#!/usr/bin/env python3
"""The alerts of hxraidsvc as a process: a command that gets them, crashes, and sinks that fail.

usage: hxraidsvc_alerts_test.py HXRAIDSVC
"""

import contextlib
import json
import os
import signal
import socket
import unittest

from hxraidsvc_test import PATIENCE, PROGRAMS, Case, Running, wait_for


class Alerts(Case):
    """A command sink that keeps each letter in a file of its own."""

    def setUp(self):
        super().setUp()
        self.letters = self.root.folder / "letters"
        self.letters.mkdir()
        self.sink('n=$(ls | wc -l); cat >"t"; mv t "$n"')

    def sink(self, script, more="", rounds=""):
        """The settings with a sink that runs this shell script in the folder of the letters."""
        program = self.root.folder / "sink"
        program.write_text(f"#!/bin/sh\ncd '{self.letters}' || exit 9\n{script}\n")
        program.chmod(0o755)
        self.root.configure(f'{rounds}[sink.pager]\nkind = "command"\n'
                            f'command = ["{program}", "a b", "$HOME"]\n{more}')

    def changes(self):
        """The changes in the letters, in the order in which they came."""
        found = []
        for name in sorted((int(each.name) for each in self.letters.iterdir()
                            if each.name.isdigit())):
            letter = json.loads((self.letters / str(name)).read_text())
            for alert in letter["alerts"]:
                mark = "?" if alert["may_be_repeat"] else ""
                found.append(f'{alert["change"]}{mark} {alert["code"]} '
                             f'{alert["object"]["address"]}')
        return found


class Once(Alerts):
    def test_sends_the_loss_and_the_clear_to_the_command(self):
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        for _ in range(2):
            self.root.service("--once")
        self.assertEqual(self.changes(), ["raised DISK_PREDICTED_FAILURE a0/pd4"])
        self.root.hxsimctl("disk", "replace", "a0/pd4")
        self.root.service("--once")
        self.assertEqual(self.changes()[1:], ["cleared DISK_PREDICTED_FAILURE a0/pd4"])

    def test_gives_the_command_its_words_and_what_describes_the_letter(self):
        self.sink('{ echo "$# $1 $2"; env; } >0')
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        self.root.service("--once")
        text = (self.letters / "0").read_text()
        self.assertTrue(text.startswith("2 a b $HOME\n"), text)
        self.assertIn("\nHXRAID_LEVEL=warning\n", text)
        self.assertIn("\nHXRAID_ATTEMPT=1\n", text)
        self.assertNotIn("HXSIM_STATE", text)

    def test_sends_what_failed_with_the_next_round_and_says_that_it_may_be_a_repeat(self):
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        self.sink("echo no line >&2; exit 1")
        done = self.root.service("--once")
        self.assertIn("alerts cannot be delivered by pager: ended with exit status 1: no line",
                      done.stderr)
        self.sink('cat >0')
        self.root.service("--once")
        self.assertEqual(self.changes(), ["raised? DISK_PREDICTED_FAILURE a0/pd4"])

    def test_ends_although_a_command_hangs(self):
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        self.sink("sleep 1000", more='limit = "1s"\n')
        self.assertIn("did not end within 1s", self.root.service("--once").stderr)


class Crash(Alerts):
    INTERVAL = '[collect]\ninterval = "1h"\n'

    def test_between_rounds_neither_loses_nor_repeats_an_alert(self):
        self.sink('n=$(ls | wc -l); cat >"t"; mv t "$n"', rounds=self.INTERVAL)
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        for _ in range(3):
            with Running(self.root) as service:
                wait_for(self.root.path("/run/hxraid/status.json").exists, "the status")
                service.says("1 alert delivered by pager")
                service.process.kill()
            self.root.path("/run/hxraid/status.json").unlink()
        self.assertEqual(self.changes(), ["raised DISK_PREDICTED_FAILURE a0/pd4"])

    def test_during_a_delivery_sends_again_and_says_so(self):
        self.sink("echo $$ >pid; exec sleep 1000", rounds=self.INTERVAL)
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        pid = self.letters / "pid"
        with Running(self.root) as service:
            wait_for(lambda: pid.exists() and pid.read_text().endswith("\n"), "the command")
            service.process.kill()
        os.kill(int(pid.read_text()), signal.SIGKILL)
        self.sink('cat >0', rounds=self.INTERVAL)
        self.root.service("--once")
        self.assertEqual(self.changes(), ["raised? DISK_PREDICTED_FAILURE a0/pd4"])

    def test_of_the_command_is_a_condition_that_ends(self):
        self.sink("kill -9 $$", rounds=self.INTERVAL)
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        with Running(self.root) as service:
            service.says("raised: [warning] DELIVERY_FAILING: ")
            self.sink('n=$(ls | wc -l); cat >"t"; mv t "$n"', rounds=self.INTERVAL)
            service.process.send_signal(signal.SIGHUP)
            service.says("cleared after")
        self.assertEqual(self.changes()[0], "raised? DISK_PREDICTED_FAILURE a0/pd4")

    def test_never_keeps_the_rounds_from_going_on(self):
        self.sink("sleep 1000", rounds='[collect]\ninterval = "1s"\njitter = "0s"\n')
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        with Running(self.root) as service:
            service.says("DISK_PREDICTED_FAILURE")
            self.root.hxsimctl("disk", "fail", "a0/pd5")
            service.says("Disk a0/pd5 was set down")
            self.assertEqual(service.end()[1], 0)


class Asked(Alerts):
    """The running service, by its socket and vexorctl alert."""

    def setUp(self):
        super().setUp()
        self.sink('n=$(ls | wc -l); cat >"t"; mv t "$n"',
                  rounds='[collect]\ninterval = "1h"\n')
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        service = Running(self.root)
        self.service = self.enterContext(service)
        service.says("1 alert delivered by pager")
        self.path = self.root.path("/run/hxraid/hxraidsvc.sock")

    def alert(self, *words, code=0):
        return self.root.run(os.path.join(PROGRAMS, "vexorctl"), "alert", *words, "-o", "json",
                             code=code)

    def rows(self, *words, code=0):
        return json.loads(self.alert(*words, code=code).stdout)["items"]

    def conditions(self):
        return {row["code"]: row for row in self.rows("list")}

    def ask(self, text):
        """What the service sends back until it closes the connection."""
        with socket.socket(socket.AF_UNIX) as connection:
            connection.settimeout(PATIENCE)
            connection.connect(str(self.path))
            try:
                connection.sendall(text)
                return b"".join(iter(lambda: connection.recv(65536), b""))
            except (BrokenPipeError, ConnectionResetError):
                return b""

    def test_listens_for_root_and_its_group_alone(self):
        self.assertEqual(self.path.stat().st_mode & 0o777, 0o660)
        self.service.end()
        self.assertFalse(self.path.exists())

    def test_acknowledges_and_stays_quiet_until_the_end(self):
        self.assertIsNone(self.conditions()["DISK_PREDICTED_FAILURE"]["acknowledged_by"])
        self.rows("ack", "a0/pd4", "--note", "ordered")
        wait_for(lambda: self.conditions()["DISK_PREDICTED_FAILURE"]["acknowledged_by"],
                 "the acknowledgement")
        self.root.hxsimctl("disk", "replace", "a0/pd4")
        self.service.process.send_signal(signal.SIGUSR1)
        wait_for(lambda: len(self.changes()) == 2, "the clear")
        self.assertEqual(self.changes()[1], "cleared DISK_PREDICTED_FAILURE a0/pd4")

    def test_silences_and_ends_that(self):
        self.rows("silence", "a0/pd4", "--for", "8h")
        wait_for(lambda: self.conditions()["DISK_PREDICTED_FAILURE"]["silenced_until"],
                 "the silence")
        self.rows("silence", "a0/pd4", "--end")
        wait_for(lambda: not self.conditions()["DISK_PREDICTED_FAILURE"]["silenced_until"],
                 "its end")
        self.assertIn("there is no such silence",
                      self.alert("silence", "a0/pd4", "--end", code=1).stderr)
        self.alert("silence", "a0/pd4", "--for", "91d", code=2)

    def test_tells_what_it_saved_when_it_does_not_run(self):
        self.rows("ack", "a0/pd4", "--note", "ordered")
        self.service.end()
        done = self.alert("list", code=5)
        self.assertIn("the event service cannot be asked: ", done.stderr)
        self.assertRegex(done.stderr,
                         r"what follows is from \d{4}-\d\d-\d\dT\S+Z, when it ran last")
        codes = [row["code"] for row in json.loads(done.stdout)["items"]]
        self.assertIn("DISK_PREDICTED_FAILURE", codes)
        self.assertIn("delivered", [row["what"] for row in self.rows("history", code=5)])
        self.root.path("/var/lib/hxraid/alerts.json").write_text("{")
        self.assertEqual(self.rows("list", code=5), [])

    def test_tries_its_sinks(self):
        (row,) = self.rows("test")
        self.assertEqual((row["name"], row["result"]), ("pager", "delivered"))
        self.assertTrue(json.loads((self.letters / "1").read_text())["test"])
        self.sink("echo no line; exit 1", rounds='[collect]\ninterval = "1h"\n')
        (row,) = self.rows("test", "pager", code=1)
        self.assertEqual(row["result"], "ended with exit status 1: no line")

    def test_tells_its_history(self):
        self.assertEqual([row["what"] for row in self.rows("history")][-2:],
                         ["raised", "delivered"])
        self.assertEqual(len(self.rows("history", "--last", "1")), 1)

    def test_bounds_every_request(self):
        self.assertEqual(self.ask(b"x" * 5000), b"")
        self.assertEqual(json.loads(self.ask(b"{}\n"))["ok"], False)
        with contextlib.ExitStack() as idle:  # who says nothing is sent away
            for _ in range(20):
                connection = idle.enter_context(socket.socket(socket.AF_UNIX))
                connection.connect(str(self.path))
            connection.settimeout(PATIENCE)
            self.assertEqual(connection.recv(1), b"")
            wait_for(lambda: b'"ok":true' in self.ask(b'{"do":"history"}\n'), "room for others")

    def test_is_not_there_without_a_service(self):
        self.service.end()
        self.assertIn("start it with: systemctl start hxraidsvc",
                      self.alert("list", code=5).stderr)


if __name__ == "__main__":
    unittest.main()

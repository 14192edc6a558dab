#!/usr/bin/env python3
"""hxraidsvc as a process: signals, the lock, its files and exit codes, over a virtual controller.

usage: hxraidsvc_test.py HXRAIDSVC
"""

import json
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
SERVICE = sys.argv.pop(1)
PROGRAMS = os.path.dirname(SERVICE)
PATIENCE = 120  # seconds until a state that must come counts as missing


class Root:
    """A root prefix and the state file of a virtual controller, in a temporary folder."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="hxraidsvc-"))
        self.root = self.folder / "root"
        self.root.mkdir()
        self.environment = {**os.environ, "VEXORAPI_ROOT": str(self.root),
                            "HXSIM_STATE": str(self.folder / "machine.db")}
        self.hxsimctl("init", "--topology", "small", "--seed", "7")

    def remove(self):
        shutil.rmtree(self.folder)

    def hxsimctl(self, *words):
        return self.run(os.path.join(PROGRAMS, "hxsimctl"), *words).stdout

    def run(self, *command, code=0):
        done = subprocess.run(command, text=True, capture_output=True, env=self.environment,
                              timeout=PATIENCE, check=False)
        if done.returncode != code:
            raise AssertionError(f"{command} ended with {done.returncode}, not {code}: "
                                 f"{done.stdout}{done.stderr}")
        return done

    def service(self, *words, code=0):
        return self.run(SERVICE, *words, code=code)

    def path(self, name):
        return self.root / name.lstrip("/")

    def configure(self, text):
        file = self.path("/etc/hxraid/hxraidsvc.conf")
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        return file

    def log(self):
        """The lines of the service log, without their times."""
        file = self.path("/var/log/hxraidsvc.log")
        text = file.read_text() if file.exists() else ""
        return re.findall(r"^\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4}: (.*)$", text, re.M)


def wait_for(state, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        if state():
            return
        time.sleep(0.02)
    raise AssertionError(f"this never came: {what}")


class Running:
    """A service that runs until the end of the block, or until it was ended."""

    def __init__(self, root, *words):
        self.root = root
        self.process = subprocess.Popen([SERVICE, "--foreground", *words], text=True,
                                        stderr=subprocess.PIPE, env=root.environment)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.communicate()

    def says(self, text):
        wait_for(lambda: any(text in line for line in self.root.log()), f"{text} in the log")

    def end(self, how=signal.SIGTERM):
        self.process.send_signal(how)
        return self.process.communicate(timeout=PATIENCE)[1], self.process.returncode


class Case(unittest.TestCase):
    def setUp(self):
        self.root = Root()
        self.addCleanup(self.root.remove)


class Once(Case):
    def test_stores_the_events_and_tells_them(self):
        self.root.hxsimctl("disk", "fail", "a0/pd5")
        done = self.root.service("--once")
        self.assertEqual(done.stdout, "")
        self.assertIn("hxraidsvc: 1 adapter\n", done.stderr)
        self.assertRegex(done.stderr, r"hxraidsvc: event \d+ \[major\] Disk a0/pd5 was set down")
        store = self.root.path("/opt/kestrel/raid/db/vx_hx_raid.ev")
        self.assertTrue(store.stat().st_size > 512)
        self.assertEqual([f"hxraidsvc: {line}" for line in self.root.log()],
                         done.stderr.splitlines())

    def test_takes_nothing_while_the_store_cannot_be_written(self):
        folder = self.root.path("/opt/kestrel/raid/db")
        folder.mkdir(parents=True)
        blocked = folder / "vx_hx_raid.ev"
        blocked.mkdir()
        self.root.hxsimctl("disk", "fail", "a0/pd5")
        done = self.root.service("--once", code=5)
        self.assertIn(f"hxraidsvc: {blocked}: cannot write the event store: Is a directory. "
                      "No event is taken from a controller until it can be written\n", done.stderr)
        blocked.rmdir()
        self.assertIn("Disk a0/pd5 was set down", self.root.service("--once").stderr)

    def test_says_why_a_controller_cannot_be_asked(self):
        state = pathlib.Path(self.root.environment["HXSIM_STATE"])
        state.write_text("no database")
        done = self.root.service("--once", code=5)
        self.assertIn("the controller could not be opened: ", done.stderr)
        self.assertFalse(self.root.path("/opt/kestrel/raid/db/vx_hx_raid.ev").exists())


class Settings(Case):
    def test_are_checked_line_by_line(self):
        self.assertIn("not there; the defaults hold", self.root.service("--check-config").stdout)
        file = self.root.configure('[collect]\ninterval = "20s"\n')
        self.assertEqual(self.root.service("--check-config").stdout,
                         f"{file}: the settings can be used\n")
        file = self.root.configure('[collect]\nintervals = "20s"\njitter = 3\n')
        done = self.root.service("--check-config", code=2)
        self.assertEqual(done.stderr.splitlines(), [
            f'hxraidsvc: {file}:2: there is no key "collect.intervals"; did you mean '
            '"collect.interval"?',
            f'hxraidsvc: {file}:3: "collect.jitter" must be a duration in quotation marks, such as '
            '"1s"'])
        # No service starts with them.
        self.assertEqual(self.root.service("--once", code=2).stderr, done.stderr)
        self.assertFalse(self.root.path("/run").exists())

    def test_of_a_named_file_must_be_there(self):
        done = self.root.service("--once", "--config", "/none/hxraidsvc.conf", code=2)
        self.assertEqual(done.stderr, "hxraidsvc: /none/hxraidsvc.conf: No such file or directory\n")


class Manual(unittest.TestCase):
    def test_of_the_settings_is_what_their_table_says(self):
        page = TREE / "docs" / "man" / "hxraidsvc.conf.5"
        written = subprocess.run([os.path.join(PROGRAMS, "write_settings_manual")], text=True,
                                 capture_output=True, check=True, timeout=PATIENCE).stdout
        self.assertEqual(page.read_text(), written, "write it anew: write_settings_manual")

    def test_of_the_program_has_every_option_and_signal(self):
        page = TREE / "docs" / "man" / "hxraidsvc.8"
        text = page.read_text()
        said = subprocess.run([SERVICE, "--help"], text=True, capture_output=True, check=True,
                              timeout=PATIENCE).stdout
        options = re.findall(r"^  (?:-\w,)?-(-[\w-]+)", said, re.M)
        self.assertGreater(len(options), 4)
        for option in options:
            self.assertRegex(text, rf"(?m)^\.It Fl {option}( |$)")


class Usage(Case):
    def test_of_other_words_is_refused(self):
        for words in (["--forground"], ["start"], ["--once", "--check-config"]):
            with self.subTest(words=words):
                done = self.root.service(*words, code=2)
                self.assertTrue(done.stderr.endswith(" (see hxraidsvc --help)\n"), done.stderr)

    def test_tells_help_and_version(self):
        self.assertIn("--check-config", self.root.service("--help").stdout)
        self.assertRegex(self.root.service("--version").stdout, r"^hxraidsvc \d+\.\d+\.\d+\n$")

    def test_makes_no_folder_without_a_word_that_says_so(self):
        done = self.root.service(code=5)
        folder = self.root.path("/run/hxraid")
        self.assertEqual(done.stderr, f"hxraidsvc: {folder}: No such file or directory; make it "
                                      f"with: install -d -m 0755 {folder}\n")


class Loop(Case):
    def test_collects_when_asked_and_ends_when_told(self):
        self.root.configure('[collect]\ninterval = "1h"\n')
        with Running(self.root) as service:
            service.says("1 adapter")
            self.root.hxsimctl("disk", "fail", "a0/pd5")
            service.process.send_signal(signal.SIGUSR1)
            service.says("Disk a0/pd5 was set down")
            said, code = service.end()
        self.assertEqual(code, 0)
        self.assertTrue(said.endswith("hxraidsvc: hxraidsvc has ended\n"), said)

    def test_collects_by_itself(self):
        self.root.configure('[collect]\ninterval = "1s"\njitter = "0s"\n')
        with Running(self.root) as service:
            service.says("1 adapter")
            self.root.hxsimctl("disk", "fail", "a0/pd5")
            service.says("Disk a0/pd5 was set down")

    def test_collects_at_once_when_the_virtual_controller_changes(self):
        self.root.configure('[collect]\ninterval = "1h"\njitter = "0s"\n[watch]\n'
                            'interval = "1h"\n')
        self.root.service("--once")  # after events it would look again by itself
        with Running(self.root) as service:
            wait_for(lambda: self.root.path("/run/hxraid/status.json").exists(), "the status")
            # The round may just be ending: what changes within it waits for the next one.
            for disk in ("a0/pd5", "a0/pd6", "a0/pd7", "a0/pd4"):
                self.root.hxsimctl("disk", "fail", disk)
                time.sleep(1)
                if any("was set down" in line for line in self.root.log()):
                    break
            service.says("was set down")

    def test_reads_its_settings_again(self):
        self.root.configure('[collect]\ninterval = "1h"\n')
        with Running(self.root) as service:
            service.says("1 adapter")
            file = self.root.configure("interval = 5\n")
            service.process.send_signal(signal.SIGHUP)
            service.says(f'{file}:1: there is no key "interval"; the old settings hold')
            self.root.configure('[collect]\ninterval = "1s"\n')
            service.process.send_signal(signal.SIGHUP)
            service.says("the settings were read again")
            self.root.hxsimctl("disk", "fail", "a0/pd5")
            service.says("Disk a0/pd5 was set down")

    def test_stays_up_without_its_controller_and_finds_it_again(self):
        self.root.configure('[collect]\ninterval = "1s"\njitter = "0s"\n')
        state = pathlib.Path(self.root.environment["HXSIM_STATE"])
        kept = state.read_bytes()
        state.write_text("no database")
        with Running(self.root) as service:
            service.says("the controller could not be opened: ")
            state.write_bytes(kept)
            service.says("the controller answers again")
            self.assertEqual(service.end(signal.SIGINT)[1], 0)

    def test_runs_once_on_a_machine(self):
        with Running(self.root) as service:
            service.says("1 adapter")
            done = self.root.service("--once", code=5)
            lock = self.root.path("/run/hxraid/hxraidsvc.lock")
            self.assertEqual(done.stderr, "hxraidsvc: another hxraidsvc runs already: process "
                                          f"{service.process.pid} holds {lock}. Only one may take "
                                          "the controllers' events.\n")
            service.process.kill()
            service.process.wait()
        self.root.service("--once")


class Conditions(Case):
    def status(self):
        return json.loads(self.root.path("/run/hxraid/status.json").read_text())

    def codes(self):
        return [each["code"] for each in self.status()["conditions"]]

    def changes(self):
        return [line for line in self.root.log()
                if re.match(r"(raised|cleared|worse|better|passed)\b", line)]

    def test_are_told_once_and_remembered_between_rounds(self):
        self.root.service("--once")
        self.assertEqual(self.status()["overall"], "ok")
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        self.root.service("--once")
        self.root.service("--once")
        raised = [line for line in self.changes() if "a0/pd4" in line]
        self.assertEqual(len(raised), 1, raised)
        self.assertTrue(raised[0].startswith("raised: [warning] DISK_PREDICTED_FAILURE: a0/pd4"))
        self.assertIn("DISK_PREDICTED_FAILURE", self.codes())
        self.root.hxsimctl("disk", "replace", "a0/pd4")
        self.root.service("--once")
        self.assertRegex(self.changes()[-1],
                         r"^cleared after .*: \[warning\] DISK_PREDICTED_FAILURE: a0/pd4")
        self.assertNotIn("DISK_PREDICTED_FAILURE", self.codes())

    def test_are_published_for_everybody_after_each_round(self):
        self.root.service("--once")
        file = self.root.path("/run/hxraid/status.json")
        self.assertEqual(file.stat().st_mode & 0o777, 0o644 & ~os.umask(os.umask(0)))
        status = self.status()
        self.assertEqual(status["schema"], "hxraidsvc-status/1")
        self.assertEqual(status["once"], True)
        self.assertEqual(status["collecting"], True)
        self.assertEqual(status["machine"]["disks"], 8)
        self.assertEqual(status["store"]["first"], 0)
        self.assertGreater(status["store"]["next"], 5)
        self.assertLess(abs(status["written_at"] - time.time()), 3600)

    def test_are_not_told_again_by_a_service_that_was_killed(self):
        self.root.configure('[collect]\ninterval = "1h"\n')
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        for _ in range(2):
            with Running(self.root) as service:
                wait_for(lambda: self.root.path("/run/hxraid/status.json").exists(), "the status")
                service.says("DISK_PREDICTED_FAILURE")
                self.assertIn("DISK_PREDICTED_FAILURE", self.codes())
                service.process.kill()
            self.root.path("/run/hxraid/status.json").unlink()
        self.assertEqual(len([line for line in self.changes() if "a0/pd4" in line]), 1)

    def test_of_a_service_that_has_ended_are_published_no_more(self):
        with Running(self.root) as service:
            wait_for(lambda: self.root.path("/run/hxraid/status.json").exists(), "the status")
            service.end()
        self.assertFalse(self.root.path("/run/hxraid/status.json").exists())

    def test_of_a_running_service_are_known_to_vexorctl(self):
        def check():
            return self.root.run(os.path.join(PROGRAMS, "vexorctl"), "check").stdout
        self.assertIn("NOT_WATCHED", check())
        with Running(self.root) as service:
            wait_for(lambda: self.root.path("/run/hxraid/status.json").exists(), "the status")
            self.assertNotIn("NOT_WATCHED", check())
            service.end()
        self.assertIn("NOT_WATCHED", check())

    def test_begin_anew_when_the_state_file_is_damaged(self):
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        self.root.service("--once")
        state = self.root.path("/var/lib/hxraid/state.db")
        state.write_bytes(b"x" * 5000)
        done = self.root.service("--once")
        self.assertIn(f"; it is {state}.damaged now\n", done.stderr)
        self.assertIn("raised: [warning] DISK_PREDICTED_FAILURE: a0/pd4", done.stderr)
        self.assertIn("SERVICE_STATE_DAMAGED", self.codes())

    def test_tell_that_events_are_not_collected(self):
        folder = self.root.path("/opt/kestrel/raid/db")
        folder.mkdir(parents=True)
        (folder / "vx_hx_raid.ev").mkdir()
        done = self.root.service("--once", code=5)
        self.assertIn("raised: [critical] EVENTS_NOT_COLLECTED: ", done.stderr)
        self.assertEqual(self.status()["collecting"], False)
        self.assertEqual(self.status()["overall"], "critical")
        (folder / "vx_hx_raid.ev").rmdir()
        self.assertRegex(self.root.service("--once").stderr,
                         r"cleared after .*: \[critical\] EVENTS_NOT_COLLECTED: ")


class Notified(Case):
    """What a service manager receives on its socket."""

    def setUp(self):
        super().setUp()
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(self.socket.close)
        self.socket.settimeout(PATIENCE)
        path = str(self.root.folder / "notify")
        self.socket.bind(path)
        self.root.environment["NOTIFY_SOCKET"] = path

    def receive(self, wanted):
        """The next message that begins so, and those before it."""
        before = []
        while not before or not before[-1].startswith(wanted):
            before.append(self.socket.recv(65536).decode())
        return before

    def test_is_ready_after_the_first_round_reloads_and_stops(self):
        self.root.configure('[collect]\ninterval = "1h"\n')
        with Running(self.root) as service:
            self.assertEqual(self.receive("READY=1"), ["READY=1"])
            self.assertIn("1 adapter", self.root.log())
            self.assertRegex(self.receive("STATUS=")[-1],
                             r"^STATUS=1 adapter, \d+ events collected since the start$")
            service.process.send_signal(signal.SIGHUP)
            reloading = self.receive("RELOADING=1")[-1]
            self.assertRegex(reloading, r"^RELOADING=1\nMONOTONIC_USEC=\d+$")
            self.receive("READY=1")
            service.process.send_signal(signal.SIGTERM)
            self.receive("STOPPING=1")
            self.assertEqual(service.end()[1], 0)

    def test_feeds_the_watchdog_from_the_loop(self):
        self.root.configure('[collect]\ninterval = "1h"\n')
        self.root.environment["WATCHDOG_USEC"] = "100000"
        with Running(self.root):
            for _ in range(3):
                self.receive("WATCHDOG=1")


@unittest.skipUnless(shutil.which("systemd-analyze") or os.environ.get("CI"),
                     "systemd-analyze is not installed; scripts/bootstrap installs it")
class Unit(unittest.TestCase):
    """The unit file of systemd."""

    def test_exposes_little(self):
        with tempfile.TemporaryDirectory() as folder:
            unit = pathlib.Path(folder) / "hxraidsvc.service"
            text = (TREE / "packaging" / "hxraidsvc.service.in").read_text()
            unit.write_text(text.replace("@CMAKE_INSTALL_FULL_SBINDIR@", "/usr/sbin"))
            self.assertEqual(self.exposure_of(unit).returncode, 0)
            unit.write_text("[Service]\nExecStart=/usr/sbin/hxraidsvc\n")
            self.assertNotEqual(self.exposure_of(unit).returncode, 0)

    def exposure_of(self, unit):
        return subprocess.run(["systemd-analyze", "security", "--offline=true", "--threshold=25",
                               "--no-pager", unit], capture_output=True, timeout=PATIENCE,
                              check=False)

    def test_starts_the_program_where_it_is_installed_with_words_that_it_knows(self):
        text = (TREE / "packaging" / "hxraidsvc.service.in").read_text()
        self.assertIn("\nExecStart=@CMAKE_INSTALL_FULL_SBINDIR@/hxraidsvc\n", text)
        self.assertIn("\nType=notify\n", text)
        self.assertRegex(text, r"\nWatchdogSec=")


@unittest.skipUnless(shutil.which("logrotate") or os.environ.get("CI"),
                     "logrotate is not installed; scripts/bootstrap installs it")
class Rotation(Case):
    def rotate(self, text):
        """What logrotate says of a configuration, which it does not carry out."""
        file = self.root.folder / "logrotate.conf"
        file.write_text(text)
        file.chmod(0o644)
        return subprocess.run(["logrotate", "--debug", "--state", self.root.folder / "state", file],
                              text=True, capture_output=True, timeout=PATIENCE, check=False)

    def test_of_the_log_is_what_logrotate_takes(self):
        text = (TREE / "packaging" / "hxraidsvc.logrotate").read_text()
        self.root.service("--once")
        log = str(self.root.path("/var/log/hxraidsvc.log"))
        done = self.rotate(text.replace("/var/log/hxraidsvc.log", log))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn(f"considering log {log}", done.stderr)
        self.assertNotIn("error", done.stderr)
        self.assertIn("error", self.rotate(text.replace("weekly", "weakly")).stderr)


if __name__ == "__main__":
    unittest.main()

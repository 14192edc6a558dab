#!/usr/bin/env python3
"""hxraidsvc on a machine that takes away what it needs: disk, descriptors, time, and its own life.

usage: hxraidsvc_hostile_test.py HXRAIDSVC [FAULTS]

FAULTS is the library of tests/support/faults.c; sanitized builds have none.
"""

import json
import os
import random
import re
import resource
import shlex
import signal
import subprocess
import sys
import time
import unittest

from hxraidsvc_alerts_test import Alerts
from hxraidsvc_test import PATIENCE, PROGRAMS, SERVICE, Case, Running, wait_for

FAULTS = sys.argv.pop(1) if len(sys.argv) > 1 else None
STORE = "/opt/kestrel/raid/db"
STATE = "/var/lib/hxraid"


def can_mount():
    done = subprocess.run(["unshare", "--mount", "sh", "-c", "mount -t tmpfs -o size=8k none /mnt"],
                          capture_output=True, timeout=PATIENCE, check=False)
    return done.returncode == 0


@unittest.skipUnless(can_mount(), "no file system may be mounted here")
class Disk(Case):
    """Folders that are file systems of their own, which only the process of a test sees."""

    def in_namespace(self, script, code=0):
        """What the service says in a shell script, in which hxraidsvc is the service's --once."""
        whole = (f'set -e; store={shlex.quote(str(self.root.path(STORE)))}; '
                 f'state={shlex.quote(str(self.root.path(STATE)))}; '
                 f'hxraidsvc() {{ {shlex.quote(SERVICE)} --once 2>&1; }}; {script}')
        return self.root.run("unshare", "--mount", "sh", "-c", whole, code=code).stdout

    def test_of_the_store_that_is_full_takes_no_event(self):
        self.root.path(STORE).mkdir(parents=True)
        self.root.hxsimctl("disk", "fail", "a0/pd5")
        said = self.in_namespace(
            'mount -t tmpfs -o size=256k none "$store"; '
            'head -c 1M /dev/zero >"$store/full" 2>/dev/null || true; '
            'hxraidsvc && exit 9; echo THEN; rm "$store/full"; hxraidsvc')
        full, freed = said.split("THEN\n")
        self.assertIn("No event is taken from a controller until it can be written", full)
        self.assertIn("raised: [critical] EVENTS_NOT_COLLECTED: ", full)
        self.assertNotIn("was set down", full)
        self.assertEqual(freed.count("Disk a0/pd5 was set down"), 1, "it waited in the controller")
        self.assertIn("[critical] EVENTS_NOT_COLLECTED: ", freed)
        self.assertNotIn("EVENTS_LOST", said)

    def test_of_the_state_that_is_full_keeps_nothing_from_being_told(self):
        self.root.service("--once")
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        said = self.in_namespace(
            'cp "$state"/* /tmp/. 2>/dev/null; size=$(stat -c %s "$state/state.db"); '
            'cp "$state/state.db" "$state/../kept.db"; '
            'mount -t tmpfs -o size=$((size + 4096)) none "$state"; '
            'mv "$state/../kept.db" "$state/state.db"; '
            'head -c 1M /dev/zero >"$state/full" 2>/dev/null || true; '
            'hxraidsvc; echo THEN; rm "$state/full"; hxraidsvc')
        full, freed = said.split("THEN\n")
        self.assertIn("raised: [warning] DISK_PREDICTED_FAILURE: a0/pd4", full)
        self.assertRegex(full, r"state\.db.*(full|No space)")
        # What could not be remembered is told again rather than lost.
        self.assertIn("raised: [warning] DISK_PREDICTED_FAILURE: a0/pd4", freed)

    def test_of_the_store_that_is_read_only_takes_no_event(self):
        self.root.service("--once")
        self.root.hxsimctl("disk", "fail", "a0/pd5")
        said = self.in_namespace(
            'mount --bind "$store" "$store"; mount -o remount,bind,ro "$store"; '
            'hxraidsvc && exit 9; echo THEN; umount "$store"; hxraidsvc')
        closed, opened = said.split("THEN\n")
        self.assertIn("Read-only file system. No event is taken from a controller", closed)
        self.assertNotIn("was set down", closed)
        self.assertEqual(opened.count("Disk a0/pd5 was set down"), 1)


class Store(Case):
    def test_that_is_reset_underneath_is_told_and_goes_on(self):
        self.root.configure('[collect]\ninterval = "1h"\n')
        with Running(self.root) as service:
            service.says("1 adapter")
            wait_for(self.root.path("/run/hxraid/status.json").exists, "the status")
            self.root.path(STORE + "/vx_hx_raid.ev").unlink()
            service.process.send_signal(signal.SIGUSR1)
            service.says("the event store was reset")
            service.says("raised: [warning] EVENTS_LOST: an unknown number of events")
            self.root.hxsimctl("disk", "fail", "a0/pd5")
            service.process.send_signal(signal.SIGUSR1)
            service.says("Disk a0/pd5 was set down")
            self.assertEqual(service.end()[1], 0)


class Process(Case):
    def setUp(self):
        super().setUp()
        self.root.configure('[collect]\ninterval = "1h"\n')

    def fail_a_disk_while_stopped(self, service):
        """Stopped in the middle of a call it keeps the machine to itself: then it is stopped once more."""
        for attempt in range(10):
            service.process.send_signal(signal.SIGSTOP)
            try:
                self.root.hxsimctl("disk", "fail", "a0/pd5")
                return
            except AssertionError as error:
                if attempt == 9 or "has been kept by another process" not in str(error):
                    raise
            service.process.send_signal(signal.SIGCONT)

    def test_that_was_stopped_goes_on_with_what_has_happened(self):
        with Running(self.root) as service:
            wait_for(self.root.path("/run/hxraid/status.json").exists, "the status")
            self.fail_a_disk_while_stopped(service)
            self.assertFalse(any("was set down" in line for line in self.root.log()))
            service.process.send_signal(signal.SIGUSR1)
            service.process.send_signal(signal.SIGCONT)
            service.says("Disk a0/pd5 was set down")
            self.assertEqual(service.end()[1], 0)

    def test_in_a_storm_of_reloads_collects_what_it_is_asked_for(self):
        with Running(self.root) as service:
            service.says("1 adapter")
            self.root.hxsimctl("disk", "fail", "a0/pd5")
            for number in range(500):
                service.process.send_signal(signal.SIGHUP)
                if number == 250:
                    service.process.send_signal(signal.SIGUSR1)
            service.says("Disk a0/pd5 was set down")
            service.says("the settings were read again")
            self.assertEqual(service.end()[1], 0)

    def test_without_descriptors_stays_up_and_goes_on_with_new_ones(self):
        with Running(self.root) as service:
            wait_for(self.root.path("/run/hxraid/status.json").exists, "the status")
            pid = service.process.pid
            old = resource.prlimit(pid, resource.RLIMIT_NOFILE)
            # Those that are open stay open, and the first of them are.
            resource.prlimit(pid, resource.RLIMIT_NOFILE, (5, old[1]))
            self.root.hxsimctl("disk", "fail", "a0/pd5")
            service.process.send_signal(signal.SIGUSR1)
            time.sleep(0.5)  # nothing can be written that would tell of the round
            self.assertIsNone(service.process.poll())
            self.assertFalse(any("was set down" in line for line in self.root.log()))
            resource.prlimit(pid, resource.RLIMIT_NOFILE, old)

            def is_told():
                service.process.send_signal(signal.SIGUSR1)
                return any("Disk a0/pd5 was set down" in line for line in self.root.log())
            wait_for(is_told, "the event")
            self.assertEqual(service.end()[1], 0)


@unittest.skipUnless(FAULTS, "sanitized programs take no preloaded library")
class Faults(Alerts):
    """What a preloaded library lets happen to the running service."""

    def setUp(self):
        super().setUp()
        self.file = self.root.folder / "fault"

    def start(self, variable):
        programs = dict(self.root.environment)
        self.root.environment.update({"LD_PRELOAD": FAULTS, variable: str(self.file)})
        service = self.enterContext(Running(self.root))
        self.root.environment = programs
        service.says("1 adapter")
        wait_for(self.root.path("/run/hxraid/status.json").exists, "the status")
        return service

    def written_at(self):
        return json.loads(self.root.path("/run/hxraid/status.json").read_text())["written_at"]

    def test_of_processes_keep_alerts_until_they_can_be_sent_and_make_them_no_repeats(self):
        self.file.touch()
        service = self.start("FAULTS_NO_PROCESS")
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        service.process.send_signal(signal.SIGUSR1)
        service.says("alerts cannot be delivered by pager: cannot be started: "
                     "Resource temporarily unavailable")
        service.says("raised: [warning] DELIVERY_FAILING: ")
        self.assertEqual(self.changes(), [])
        self.file.unlink()
        service.says("alerts are delivered by pager again")
        self.assertEqual(self.changes(), ["raised DISK_PREDICTED_FAILURE a0/pd4"])
        self.assertEqual(service.end()[1], 0)

    def test_of_the_clock_raise_clear_and_send_nothing(self):
        self.sink('n=$(ls | wc -l); cat >"t"; mv t "$n"',
                  rounds='[collect]\ninterval = "1s"\njitter = "0s"\n[watch]\ninterval = "1h"\n')
        self.root.hxsimctl("smart", "trip", "a0/pd4")
        service = self.start("FAULTS_CLOCK")
        service.says("1 alert delivered by pager")
        told = self.told_of_the_disk()
        for seconds in (400 * 86400, -400 * 86400, 0):
            self.file.with_suffix(".new").write_text(str(seconds))
            self.file.with_suffix(".new").rename(self.file)
            wait_for(lambda: abs(self.written_at() - time.time() - seconds) < 3600, "a round")
            for _ in range(2):
                at = self.looks()
                service.process.send_signal(signal.SIGUSR1)
                wait_for(lambda before=at: self.looks() > before, "a look")
        self.assertEqual(self.told_of_the_disk(), told)
        self.assertEqual(self.changes(), ["raised DISK_PREDICTED_FAILURE a0/pd4"])
        self.assertEqual(service.end()[1], 0)

    def told_of_the_disk(self):
        return [line for line in self.root.log()
                if re.match("raised|cleared|worse|better", line) and "a0/pd4" in line]

    def looks(self):
        text = self.root.path("/var/lib/prometheus/node-exporter/hxraid.prom").read_text()
        return int(re.search(r"^hxraid_looks_total (\d+)$", text, re.M)[1])


class Flood(Case):
    """FLOOD=10000 in the environment makes it so many events; a story's steps take their time."""

    BATCH = 500  # the adapter's queue holds 512

    def test_of_events_is_stored_whole_and_once(self):
        count = int(os.environ.get("FLOOD", "1500"))
        self.root.configure('[collect]\ninterval = "1h"\n')
        story = self.root.folder / "story"
        status = self.root.path("/run/hxraid/status.json")

        def stored():
            return json.loads(status.read_text())["store"]["next"]
        self.root.service("--once")
        began = stored()
        # Not in the foreground: so many lines would fill a pipe that nobody reads.
        with subprocess.Popen([SERVICE], env=self.root.environment) as service:
            self.addCleanup(service.kill)
            wait_for(lambda: any("has started" in line for line in self.root.log()), "the start")
            for first in range(0, count, self.BATCH):
                last = min(first + self.BATCH, count)
                story.write_text("".join(f"event a0/pd0 HD_ERROR_FIXED {number}\n"
                                         for number in range(first, last)))
                self.root.hxsimctl("scenario", "run", str(story))
                service.send_signal(signal.SIGUSR1)
                wait_for(lambda number=last: stored() >= began + number, "the batch")
            service.terminate()
            self.assertEqual(service.wait(PATIENCE), 0)
        lines = self.root.run(os.path.join(PROGRAMS, "vexorctl"), "event", "list", "-o", "jsonl")
        events = [json.loads(line) for line in lines.stdout.splitlines()]
        self.assertEqual([each["params"][0] for each in events[began:]], list(range(count)))
        told = [line for line in self.root.log() if "An error on disk a0/pd0 was repaired" in line]
        self.assertEqual(len(told), count)


class Killed(Alerts):
    ROUNDS = 8

    def once(self, kill_after=None):
        with subprocess.Popen([SERVICE, "--once"], env=self.root.environment,
                              stderr=subprocess.DEVNULL) as service:
            if kill_after is not None:
                time.sleep(kill_after)
                service.kill()
            service.wait(PATIENCE)

    def test_anywhere_neither_loses_an_alert_nor_repeats_one_in_silence(self):
        # Each letter has a name of its own, because a killed round's command may still be writing.
        self.sink('t=$(mktemp .XXXXXX) && cat >"$t" && mv "$t" "$(date +%s%N)"')
        began = time.monotonic()
        self.once()
        whole = time.monotonic() - began
        chance = random.Random(7)
        disks = ["a0/pd4", "a0/pd5", "a0/pd6", "a0/pd7"]
        for number in range(self.ROUNDS):
            if number < len(disks):
                self.root.hxsimctl("smart", "trip", disks[number])
            self.once(chance.uniform(0, whole))
        self.once()
        changes = self.changes()
        for disk in disks:
            of_disk = [each for each in changes if each.endswith(disk)]
            silent = [each for each in of_disk if each == f"raised DISK_PREDICTED_FAILURE {disk}"]
            self.assertGreaterEqual(len(of_disk), 1, f"{disk} is lost: {changes}")
            self.assertLessEqual(len(silent), 1, f"{disk} comes twice in silence: {changes}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

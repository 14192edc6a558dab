#!/usr/bin/env python3
"""Conditions that need minutes or days, raised and cleared by the real service over the virtual controller:
each round is one --once at a time that the test names.

usage: hxraidsvc_conditions_test.py HXRAIDSVC
"""

import datetime
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

SERVICE = sys.argv.pop(1)
PROGRAMS = os.path.dirname(SERVICE)
PATIENCE = 120  # seconds
START = datetime.datetime(2027, 1, 31, 12, tzinfo=datetime.timezone.utc)
MINUTES = 60
HOURS = 3600
DAYS = 86400


class Case(unittest.TestCase):
    topology = "small"

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="hxraidsvc-conditions-")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name) / "root"
        self.root.mkdir()
        self.environment = {**os.environ, "VEXORAPI_ROOT": str(self.root), "TZ": "UTC",
                            "HXSIM_STATE": str(pathlib.Path(folder.name) / "machine.db")}
        self.now = START
        self.said = ""
        self.hxsimctl("init", "--topology", self.topology, "--seed", "7")
        self.hxsimctl("clock", "freeze")

    def run_program(self, program, *words, code=0):
        done = subprocess.run([os.path.join(PROGRAMS, program), *map(str, words)], text=True,
                              capture_output=True, env=self.environment, timeout=PATIENCE,
                              check=False)
        self.assertEqual(done.returncode, code, (program, words, done.stderr))
        return done

    def hxsimctl(self, *words):
        return self.run_program("hxsimctl", *words).stdout

    def vexorctl(self, *words):
        return self.run_program("vexorctl", *words, "--yes").stdout

    def data(self, *words):
        self.vexorctl("vd", "create", "a0/pd4-6", "--raid", "5", "--size", "20GiB", "--name", "DATA",
                      *(words or ("--init", "none")))

    def begin(self):
        """The first looks of all: for 30 seconds what needs time to be raised is not raised."""
        self.round()
        return self.round(31)

    def round(self, after=0):
        """One round that many seconds later; the heads and what is folded into them."""
        self.now += datetime.timedelta(seconds=after)
        self.said = self.run_program("hxraidsvc", "--once", "--now", self.now.isoformat()).stderr
        status = json.loads((self.root / "run/hxraid/status.json").read_text())
        return {each["code"]: each for head in status["conditions"]
                for each in (head, *head["folded"])}

    def is_raised(self, code, conditions):
        self.assertIn(code, conditions)
        self.assertIn(f"{code}: ", self.said)
        return conditions[code]["sentence"]

    def is_cleared(self, code, conditions):
        self.assertNotIn(code, conditions)
        self.assertRegex(self.said, rf"cleared[^:]*: \[\w+\] {code}: ")


class Rows(Case):
    def test_a_virtual_disk_that_was_never_initialised(self):
        self.data()
        self.assertNotIn("VD_NOT_INITIALISED", self.round())
        self.assertNotIn("VD_NOT_INITIALISED", self.round(9 * MINUTES))
        said = self.is_raised("VD_NOT_INITIALISED", self.round(1 * MINUTES))
        self.assertEqual(said, "DATA (a0/vd0) was never initialised; its redundancy is not valid")
        self.vexorctl("task", "start", "a0/vd0", "--kind", "init-background")
        self.hxsimctl("clock", "advance", "30d")
        self.is_cleared("VD_NOT_INITIALISED", self.round(1 * MINUTES))

    def test_an_activity_that_stands(self):
        self.data("--init", "background")
        self.hxsimctl("clock", "advance", "10s")
        self.hxsimctl("stall", "a0/vd0")
        self.round()
        self.assertNotIn("ACTIVITY_STALLED", self.round(59 * MINUTES))
        said = self.is_raised("ACTIVITY_STALLED", self.round(1 * MINUTES))
        self.assertRegex(said, r"^the background initialisation of DATA \(a0/vd0\) ")
        self.vexorctl("adapter", "set", "a0", "--init-rate", "80")
        self.hxsimctl("clock", "advance", "1m")
        self.is_cleared("ACTIVITY_STALLED", self.round(1 * MINUTES))

    def test_a_rebuild_that_stands(self):
        self.data()
        self.hxsimctl("disk", "fail", "a0/pd5")
        self.hxsimctl("disk", "replace", "a0/pd5")
        self.hxsimctl("clock", "advance", "5s")
        self.hxsimctl("stall", "a0/vd0")
        self.round()
        conditions = self.round(29 * MINUTES)
        self.assertNotIn("REBUILD_STALLED", conditions)
        self.assertIn("VD_REBUILDING_UNPROTECTED", conditions)
        conditions = self.round(2 * MINUTES)
        self.assertIn("REBUILD_STALLED", conditions)
        self.assertEqual(conditions["VD_NO_REDUNDANCY"]["hindrance"], "REBUILD_STALLED")
        self.assertIn("worse, was VD_REBUILDING_UNPROTECTED: [critical] VD_NO_REDUNDANCY", self.said)
        self.vexorctl("adapter", "set", "a0", "--rebuild-rate", "80")
        self.hxsimctl("clock", "advance", "1m")
        self.assertNotIn("REBUILD_STALLED", self.round(1 * MINUTES))

    def test_a_relearn_that_does_not_end(self):
        self.vexorctl("battery", "relearn", "a0")
        self.round()
        self.assertNotIn("BATTERY_RELEARN_OVERDUE", self.round(24 * HOURS - 1))
        self.is_raised("BATTERY_RELEARN_OVERDUE", self.round(1))
        self.hxsimctl("clock", "advance", "2d")
        self.is_cleared("BATTERY_RELEARN_OVERDUE", self.round(1 * MINUTES))

    def test_a_check_that_is_overdue(self):
        self.data("--init", "quick")
        self.hxsimctl("clock", "advance", "1d")
        self.round()
        self.assertNotIn("VD_CHECK_OVERDUE", self.round(35 * DAYS - 1))
        self.assertIn("VD_CHECK_OVERDUE", self.round(1))
        self.vexorctl("task", "start", "a0/vd0", "--kind", "check")
        self.hxsimctl("clock", "advance", "1d")
        self.assertNotIn("VD_CHECK_OVERDUE", self.round(1 * MINUTES))

    def test_what_is_gone_needs_two_looks(self):
        self.round()
        self.vexorctl("vd", "create", "a0/pd0", "--raid", "0", "--name", "PLAIN")
        self.round(1 * MINUTES)
        self.vexorctl("vd", "delete", "a0/vd0")
        self.assertNotIn("VD_GONE", self.round(1 * MINUTES))
        self.assertNotIn("VD_GONE", self.round(1 * MINUTES), "it was deleted")

    def test_the_clock_set_back_ends_nothing(self):
        self.data()
        self.round()
        self.round(10 * MINUTES)
        conditions = self.round(-5 * DAYS)
        self.assertIn("VD_NOT_INITIALISED", conditions)
        self.assertNotIn("cleared", self.said)

    def test_a_clock_that_differs(self):
        self.hxsimctl("clock", "advance", START.isoformat())
        self.hxsimctl("battery", "temperature", "a0", 45)
        self.round()
        self.hxsimctl("disk", "fail", "a0/pd0")
        self.assertIn("CLOCK_DIFFERS", self.round(10 * MINUTES))
        self.hxsimctl("clock", "advance", self.now.isoformat())
        self.hxsimctl("disk", "replace", "a0/pd0")
        self.assertNotIn("CLOCK_DIFFERS", self.round())


class Enclosures(Case):
    topology = "default"

    def test_a_shelf_that_goes_and_comes_back(self):
        self.begin()
        self.hxsimctl("enclosure", "unplug", "a0/enc0")
        self.assertNotIn("ENC_GONE", self.round())
        conditions = self.round(10)
        said = self.is_raised("ENC_GONE", conditions)
        self.assertRegex(said, r"^enclosure .* with \d+ disks is gone$")
        # A message each of sixteen disks would hide it.
        self.assertNotIn("raised: [warning] DISK_MISSING", self.said)
        self.hxsimctl("enclosure", "plug", "a0/enc0")
        self.is_cleared("ENC_GONE", self.round(1 * MINUTES))

    def test_an_element_that_is_taken_out(self):
        self.round()
        self.hxsimctl("element", "a0/enc0/el2", "not_installed")
        self.round(1)
        self.assertNotIn("ENC_ELEMENT_REMOVED", self.round(4 * MINUTES))
        self.is_raised("ENC_ELEMENT_REMOVED", self.round(1 * MINUTES))
        self.hxsimctl("element", "a0/enc0/el2", "ok")
        self.round(1 * MINUTES)
        self.is_cleared("ENC_ELEMENT_REMOVED", self.round(5 * MINUTES))


class Levels(Case):
    def set_levels(self, text):
        folder = self.root / "etc/hxraid"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "hxraidsvc.conf").write_text("[conditions]\n" + text)

    def check(self, code):
        return self.run_program("vexorctl", "check", code=code).stdout

    def test_are_those_of_the_file_for_the_service_and_for_check(self):
        self.begin()
        self.hxsimctl("disk", "fail", "a0/pd5")
        self.assertRegex(self.check(1), r"^WARNING: .*a0/pd5 ")
        self.round()
        for level, code in (("critical", 2), ("info", 0)):
            self.set_levels(f'DISK_FAILED = "{level}"\n')
            self.assertIn("(level set here)", self.check(code))
            condition = self.round(1 * MINUTES)["DISK_FAILED"]
            self.assertEqual((condition["level"], condition["level_set_here"]), (level, True))
        self.set_levels('DISK_FAILED = "off"\n')
        self.assertNotIn("DISK_FAILED", self.round())
        self.assertRegex(self.check(0), r"^OK: [^|]*; 1 switched off \|")

    def test_that_cannot_be_used_are_told(self):
        self.set_levels('DISK_FAILD = "off"\n')
        self.hxsimctl("disk", "fail", "a0/pd5")
        said = self.check(1)
        self.assertIn("SERVICE_CONFIG_REJECTED", said)
        self.assertIn('hxraidsvc.conf:2: there is no condition "DISK_FAILD"; did you mean '
                      '"DISK_FAILED"?; the levels that it sets are not used here', said)
        self.assertIn("a0/pd5", said)
        refused = self.run_program("hxraidsvc", "--check-config", code=2)
        self.assertIn('did you mean "DISK_FAILED"?', refused.stderr)


class Now(Case):
    def test_is_for_tests_alone(self):
        for words, told in ((("--now", "2027-01-31T12:00:00Z"), "--now needs --once"),
                            (("--once", "--now", "soon"), "soon")):
            self.assertIn(told, self.run_program("hxraidsvc", *words, code=2).stderr)
        del self.environment["VEXORAPI_ROOT"]
        refused = self.run_program("hxraidsvc", "--once", "--now", "2027-01-31T12:00:00Z", code=2)
        self.assertIn("--now needs VEXORAPI_ROOT", refused.stderr)


if __name__ == "__main__":
    unittest.main()

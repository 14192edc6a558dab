#!/usr/bin/env python3
"""vexorctl check over the virtual controller: what happens to the machine is told as the condition that
it is, with its exit code, and is gone when it is mended.

usage: vexorctl_check_test.py VEXORCTL [TEST]...
"""

import json
import re
import sqlite3
import time

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, schema

DATA = "create vd a0 name=DATA raid=5 disks=4,5,6 size=200GiB init=none cache=write_back"
ITEM = re.compile(r"[a-z0-9_]+=-?[0-9]+%?(;(~|-?[0-9]+)?:?(-?[0-9]+)?){0,2};?")


class CheckCase(VexorctlCase):
    topology = "small"

    def happen(self, *steps):
        """Steps of a scenario, or commands of vexorctl."""
        for step in steps:
            if step.startswith("vexorctl "):
                run = self.run_words(*step.split()[1:], "--yes")
                self.assertEqual(run.returncode, 0, (step, run.stderr))
            else:
                path = self.root / "story"
                path.write_text(step + "\n")
                self.machine.hxsimctl("scenario", "run", path)

    def document(self):
        run = self.run_words("check", "-o", "json")
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        return document, run.returncode

    def expect(self, code, *heads):
        """The heads, information left out, with those folded into them behind a colon."""
        document, returncode = self.document()
        found = []
        for head in document["conditions"]:
            folded = [each["code"] for each in head["folded"]]
            name = head["code"] + (": " + " ".join(folded) if folded else "")
            if head["level"] != "info":
                found.append(name)
        self.assertEqual((found, returncode), (list(heads), code))
        return document


class ServiceReport(CheckCase):
    """What the event service has published, and check knows from there alone."""

    CONDITION = {
        "code": "VD_BLOCK_LOST", "level": "critical",
        "object": {"kind": "vd", "address": "a0/vd0", "name": "DATA", "serial": None},
        "sentence": "DATA (a0/vd0): block 7 is lost", "folded": [], "stale": False,
        "next_step": {"text": "Restore the file", "command": None}}

    def publish(self, age=0, **members):
        report = {"schema": "hxraidsvc-status/1", "written_at": int(time.time()) - age,
                  "interval_s": 3600.0, "once": False, "conditions": [self.CONDITION], **members}
        file = self.root / "run" / "hxraid" / "status.json"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(json.dumps(report))
        return file

    def codes(self):
        return [each["code"] for each in self.document()[0]["conditions"]]

    def test_adds_what_only_events_or_a_memory_can_tell(self):
        self.assertEqual(self.codes(), ["NOT_WATCHED"])
        self.publish()
        self.assertEqual(self.codes(), ["VD_BLOCK_LOST"])
        run = self.run_words("check")
        self.assertEqual(run.returncode, 2)
        self.assertTrue(run.stdout.startswith("CRITICAL: DATA (a0/vd0): block 7 is lost | "))
        self.assertIn("VD_BLOCK_LOST", self.run_words("overview", "-o", "json").stdout)

    def test_adds_nothing_that_check_sees_itself(self):
        # A disk that has been replaced since the last round is not told any more.
        self.publish(conditions=[{**self.CONDITION, "code": "DISK_FAILED", "level": "warning"}])
        self.assertEqual(self.codes(), [])

    def test_that_is_old_adds_nothing_and_is_told(self):
        self.publish(age=3 * 3600 + 600)
        self.assertEqual(self.codes(), ["SERVICE_STALE", "NOT_WATCHED"])
        self.publish(age=3 * 3600 + 600, once=True)
        self.assertEqual(self.codes(), ["NOT_WATCHED"])

    def test_of_another_adapter_is_left_out(self):
        self.publish(conditions=[{**self.CONDITION, "object": {
            **self.CONDITION["object"], "address": "a3/vd0"}}])
        self.assertEqual(self.codes(), [])

    def test_that_cannot_be_read_is_none(self):
        for text in ("", "{", "[]", "null", '{"schema":"hxraidsvc-status/2"}',
                     '{"schema":"hxraidsvc-status/1"}'):
            with self.subTest(text=text):
                self.publish().write_text(text)
                self.assertEqual(self.codes(), ["NOT_WATCHED"])
        for broken in ({"conditions": [7]}, {"conditions": [{"code": 7}]}, {"written_at": "now"}):
            with self.subTest(broken=broken):
                self.publish(**broken)
                self.assertEqual(self.codes(), ["NOT_WATCHED"])
        self.publish(conditions=[{**self.CONDITION, "code": "NO_SUCH_CODE"}])
        self.assertEqual(self.codes(), [])


class WorkedExample(CheckCase):
    def test_a_lost_disk_is_told_by_its_effect_its_cause_and_its_hindrance(self):
        self.happen(DATA, "disk fail a0/pd5")
        run = self.run_words("check")
        first, *more = run.stdout.splitlines()
        said, data = first.split(" | ")
        self.assertEqual(said, "CRITICAL: DATA (a0/vd0) has no redundancy left: a0/pd5 failed; "
                               "no spare fits")
        self.assertTrue(data.startswith("vds=1 vds_offline=0;;0 vds_unprotected=1;;0 "
                                        "vds_reduced=0;0 disks=8 disks_failed=1;0 "), data)
        self.assertIn(" a0_vd0_survives=0;1:; ", data)
        for item in data.split(" "):
            self.assertTrue(ITEM.fullmatch(item), item)
        self.assertEqual([re.sub(r"QD-\w+", "SERIAL", line) for line in more[:3]], [
            "[critical] VD_NO_REDUNDANCY a0/vd0 DATA",
            "  DISK_FAILED a0/pd5 (SERIAL, phy 5); SPARE_NONE: a0/pd7 (free, 1.8 TiB) would fit",
            "  -> vexorctl task start a0/vd0 --kind rebuild --disk a0/pd7     or replace a0/pd5",
        ])
        self.assertEqual((run.stderr, run.returncode), ("", 2))

    def test_the_document_has_overall_counts_and_the_condition(self):
        self.happen(DATA, "disk fail a0/pd5")
        document = self.expect(2, "VD_NO_REDUNDANCY: DISK_FAILED SPARE_NONE")
        self.assertEqual(document["overall"], "critical")
        self.assertEqual(document["counts"]["critical"], 1)
        self.assertEqual(document["machine"], {"adapters": 1, "virtual_disks": 1, "disks": 8,
                                               "spares": 0})
        head = document["conditions"][0]
        self.assertEqual(head["object"], {"kind": "vd", "address": "a0/vd0", "name": "DATA",
                                          "serial": None})
        self.assertEqual(head["cause"], [{"code": "DISK_FAILED", "address": "a0/pd5"}])
        self.assertEqual(head["hindrance"], "SPARE_NONE")
        self.assertEqual(head["next_step"], {
            "text": "Rebuild onto a0/pd7, or replace a0/pd5",
            "command": ["vexorctl", "task", "start", "a0/vd0", "--kind", "rebuild", "--disk",
                        "a0/pd7"]})
        self.assertIsNone(head["since"])  # nobody has watched

    def test_its_next_step_mends_it(self):
        self.happen(DATA, "disk fail a0/pd5")
        command = self.document()[0]["conditions"][0]["next_step"]["command"]
        self.happen(" ".join(command))
        self.expect(1, "VD_REBUILDING_UNPROTECTED", "DISK_FAILED")
        self.happen("+20h")
        self.expect(1, "DISK_FAILED")


# Steps, and what check says then: the exit code and the heads. The last one is the clear.
STORIES = {
    "a rebuild that is paused and stopped": [
        ([DATA, "disk fail a0/pd5", "disk replace a0/pd5", "+5m"], 1, "VD_REBUILDING_UNPROTECTED"),
        (["pause a0/vd0"], 2, "VD_NO_REDUNDANCY: REBUILD_PAUSED"),
        (["resume a0/vd0"], 1, "VD_REBUILDING_UNPROTECTED"),
        (["abort a0/vd0"], 2, "VD_NO_REDUNDANCY: REBUILD_ABORTED"),
        (["vexorctl task start a0/vd0 --kind rebuild --disk a0/pd5", "+20h"], 0),
    ],
    "RAID 6": [
        (["create vd a0 name=DATA raid=6 disks=4,5,6,7 size=200GiB init=none",
          "disk fail a0/pd4"], 1, "VD_REDUNDANCY_REDUCED: DISK_FAILED SPARE_NONE"),
        (["disk replace a0/pd4"], 1, "VD_REBUILDING"),
        (["+20h"], 0),
    ],
    "an offline virtual disk": [
        ([DATA, "disk fail a0/pd4", "disk remove a0/pd5"], 2,
         "VD_OFFLINE: DISK_FAILED DISK_MISSING"),
    ],
    "automatic rebuild": [
        ([DATA, "set a0 auto_rebuild=0", "spare a0/pd7", "disk fail a0/pd5"], 2,
         "VD_NO_REDUNDANCY: AUTO_REBUILD_OFF DISK_FAILED"),
        (["set a0 auto_rebuild=1"], 1, "VD_REBUILDING_UNPROTECTED", "DISK_FAILED"),
    ],
    "a spare that is too small": [
        (["create vd a0 name=BIG raid=1 disks=4,5 size=1000GiB init=none", "spare a0/pd0"], 1,
         "SPARE_TOO_SMALL"),
        (["disk fail a0/pd4"], 2, "VD_NO_REDUNDANCY: SPARE_TOO_SMALL DISK_FAILED SPARE_NONE"),
    ],
    "a disk that was set offline": [
        (["create vd a0 name=DATA raid=6 disks=4,5,6,7 size=200GiB init=none",
          "make a0/pd4 offline"], 1, "VD_REDUNDANCY_REDUCED: DISK_OFFLINE SPARE_NONE"),
    ],
    "a disk that announces its failure": [
        (["smart trip a0/pd4"], 1, "DISK_PREDICTED_FAILURE"),
        (["disk replace a0/pd4"], 0),
    ],
    "a disk group": [
        (["create dg a0 name=G raid=5 disks=4,5,6", "disk fail a0/pd4"], 1,
         "DISK_FAILED", "DG_DEGRADED"),
    ],
    "the battery": [
        ([DATA, "battery remove a0"], 1, "BATTERY_REMOVED: CACHE_FORCED_WRITE_THROUGH"),
        (["battery replace a0"], 0),
        (["battery charge a0 10"], 1, "BATTERY_LOW: CACHE_FORCED_WRITE_THROUGH"),
        (["+12h"], 0),
        (["battery temperature a0 71"], 1, "BATTERY_TEMPERATURE: CACHE_FORCED_WRITE_THROUGH"),
        (["battery temperature a0 29"], 0),
        (["vexorctl battery set a0 --use off"], 1, "BATTERY_OFF: CACHE_FORCED_WRITE_THROUGH"),
        (["vexorctl battery set a0 --use on"], 0),
    ],
    "the flash": [
        (["vexorctl flash erase a0 --image bios"], 1, "FLASH_IMAGE_DAMAGED"),
        (["vexorctl flash erase a0 --image firmware"], 2, "FLASH_FIRMWARE_DAMAGED",
         "FLASH_IMAGE_DAMAGED"),
    ],
}


class Stories(CheckCase):
    pass


def _story(steps):
    def test(self):
        for each, code, *heads in steps:
            self.happen(*each)
            self.expect(code, *heads)
    return test


for _name, _steps in STORIES.items():
    setattr(Stories, "test_" + _name.replace(" ", "_"), _story(_steps))


class DefaultMachine(CheckCase):
    topology = "default"

    def test_a_cache_without_a_battery_is_told(self):
        self.happen("create vd a1 name=WB raid=1 disks=3,4 size=20GiB cache=write_back")
        self.expect(1, "CACHE_UNPROTECTED")
        self.happen("vexorctl vd set a1/vd1 --cache read_ahead")
        self.expect(0)

    def test_elements_of_an_enclosure_are_named(self):
        for step in ("psu a0/enc0/el0 fail", "fan a0/enc0/el2 0", "temp a0/enc0/el5 60"):
            self.machine.hxsimctl(*step.split())
        document = self.expect(2, "ENC_ELEMENT_CRITICAL", "ENC_ELEMENT_CRITICAL",
                               "ENC_ELEMENT_WARNING")
        sentences = [each["sentence"] for each in document["conditions"]]
        self.assertIn("power supply a0/enc0/el0 reports critical", sentences)
        self.assertIn("fan a0/enc0/el2 reports critical: 0 rpm", sentences)


    def test_a_disk_is_told_by_its_serial_number_and_its_bay(self):
        disks = json.loads(self.run_words("disk", "list", "a0", "-o", "json").stdout)["items"]
        disk = next(each for each in disks if each["enclosure"] == "a0/enc0")
        self.machine.hxsimctl("disk", "fail", disk["address"])
        label = f'{disk["address"]} ({disk["serial"]}, enc0 phy {disk["phy"]})'
        self.assertIn(label, self.run_words("check").stdout)

    def test_a_media_patrol_is_information(self):
        self.happen("start media_patrol a1/pd2")
        document, code = self.document()
        heads = [(each["code"], each["object"]["address"]) for each in document["conditions"]]
        self.assertIn(("ACTIVITY_RUNNING", "a1/pd2"), heads)
        self.assertEqual(code, 0)


class Unreachable(CheckCase):
    def test_a_query_that_fails_is_unknown_and_what_it_counts_is_null(self):
        self.machine.hxsimctl("inject", "--call", "HX_LD_GetInfo", "--code", "7")
        document = self.expect(3, "VDS_UNREADABLE")
        self.assertIsNone(document["machine"]["virtual_disks"])
        run = self.run_words("check")
        self.assertTrue(run.stdout.startswith("UNKNOWN: virtual disks of a0 cannot be read: "
                                              "HX_LD_GetInfo 7"), run.stdout)
        self.assertNotIn("vds=", run.stdout)

    def test_an_unread_list_of_virtual_disks_beats_a_failed_disk_and_that_an_unread_battery(self):
        self.happen("disk fail a0/pd5")
        self.machine.hxsimctl("inject", "--call", "HX_LD_GetInfo", "--code", "7")
        self.expect(3, "VDS_UNREADABLE", "DISK_FAILED")
        self.machine.hxsimctl("inject", "clear")
        self.machine.hxsimctl("inject", "--call", "HX_BBU_GetInfo", "--code", "7")
        self.expect(1, "DISK_FAILED", "BATTERY_UNREADABLE")

    def test_a_controller_that_cannot_be_opened_is_no_empty_machine(self):
        self.environment["HXSIM_STATE"] = str(self.root)  # a folder
        run = self.run_words("check")
        self.assertTrue(run.stdout.startswith("UNKNOWN: the controller cannot be reached: "),
                        run.stdout)
        self.assertEqual(run.returncode, 3)
        document, returncode = self.document()
        self.assertEqual((document["overall"], returncode), ("unknown", 3))
        self.assertEqual(document["conditions"][0]["code"], "CONTROLLER_UNREACHABLE")
        self.assertEqual(set(document["machine"].values()), {None})

    def test_wrong_usage_is_one_line_and_unknown(self):
        for words in (["--bogus"], ["nonsense"], ["--timeout", "soon"], ["--timeout", "0"],
                      ["--adapter", "x"], ["-o", "neat"]):
            with self.subTest(words=words):
                run = self.run_words("check", *words)
                self.assertRegex(run.stdout, r"\AUNKNOWN: .*\n\Z")
                self.assertEqual(run.returncode, 3)

    def test_a_broken_configuration_is_unknown(self):
        (self.root / "vexorapi.ini").write_text("<config>")
        run = self.run_words("check")
        self.assertRegex(run.stdout, r"\AUNKNOWN: .*vexorapi\.ini: configuration malformed")
        self.assertEqual(run.returncode, 3)
        (self.root / "etc/vexorapi").mkdir(parents=True, exist_ok=True)

    def test_an_adapter_that_is_not_there_is_unknown(self):
        run = self.run_words("check", "a9")
        self.assertIn("there is no adapter a9", run.stdout)
        self.assertEqual(run.returncode, 3)

    def test_a_target_that_is_no_adapter_is_not_taken_for_all_of_them(self):
        for target in ("a0/pd1", "name:DATA", "serial:none"):
            with self.subTest(target=target):
                run = self.run_words("check", target)
                self.assertTrue(run.stdout.startswith("UNKNOWN: "), run.stdout)
                self.assertEqual(run.returncode, 3)

    def test_names_from_outside_stay_on_their_line(self):
        self.happen(DATA.replace("name=DATA", "name=a|b"), "disk fail a0/pd5")
        first = self.run_words("check").stdout.splitlines()[0]
        self.assertEqual(first.count("|"), 1)
        self.assertTrue(first.startswith("CRITICAL: a?b (a0/vd0) "), first)

    def test_a_controller_that_does_not_answer_in_time_is_unknown(self):
        lock = sqlite3.connect(self.machine.state, isolation_level=None)
        self.addCleanup(lock.close)
        lock.execute("BEGIN EXCLUSIVE")
        run = self.run_words("check", "--timeout", "1s")
        self.assertEqual((run.stdout, run.stderr, run.returncode),
                         ("UNKNOWN: the controller did not answer in time\n", "", 3))

    def test_time_enough_is_no_news(self):
        run = self.run_words("check", "--timeout", "60s", "--honour-silences")
        self.assertEqual(run.returncode, 0)


if __name__ == "__main__":
    vexorctl_machine.run_tests("__main__", "VEXORCTL")

#!/usr/bin/env python3
"""vexorctl check over the virtual controller: what happens to the machine is told as the condition that
it is, with its exit code, and is gone when it is mended.

usage: vexorctl_check_test.py VEXORCTL [TEST]...
"""

import json
import os
import re
import sqlite3
import struct
import subprocess
import time

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, schema

DATA = "create vd a0 name=DATA raid=5 disks=4,5,6 size=200GiB init=none cache=write_back"
ITEM = re.compile(r"[a-z0-9_]+=-?[0-9]+%?(;(~|-?[0-9]+)?:?(-?[0-9]+)?){0,2};?")


class CheckCase(VexorctlCase):
    topology = "small"

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

    def happen(self, *steps):
        """Steps of a scenario, or commands of vexorctl."""
        for step in steps:
            if step.startswith("vexorctl "):
                run = self.run_words(*step.split()[1:], "--yes")
                self.assertEqual(run.returncode, 0, (step, run.stderr))
            else:
                self.machine_story(step)

    def machine_story(self, text):
        path = self.root / "story"
        path.write_text(text + "\n")
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
        for broken in ({"conditions": [7]}, {"conditions": [{"code": 7}]}, {"written_at": "now"},
                       {"store": {"next": "?"}}):
            with self.subTest(broken=broken):
                self.publish(**broken)
                self.assertEqual(self.codes(), ["NOT_WATCHED"])
        self.publish(conditions=[{**self.CONDITION, "code": "NO_SUCH_CODE"}])
        self.assertEqual(self.codes(), [])


    def report_of(self, code, level, address, kind="vd", **members):
        return {**self.CONDITION, "code": code, "level": level, "sentence": f"{address}: {code}",
                "object": {"kind": kind, "address": address, "name": None, "serial": None},
                **members}

    def test_adds_a_free_disk_and_a_battery_that_memory_alone_misses(self):
        self.happen("disk remove a0/pd7", "battery remove a0")
        self.publish(conditions=[
            self.report_of("DISK_MISSING", "warning", "a0/pd7", "disk"),
            self.report_of("DISK_MISSING", "warning", "a0/pd6", "disk"),
            self.report_of("BATTERY_REMOVED", "warning", "a0", "battery")])
        self.expect(1, "DISK_MISSING", "BATTERY_REMOVED")
        self.assertIn("a0/pd7: DISK_MISSING", self.run_words("check").stdout)

    def test_adds_what_this_look_cannot_read_as_it_was_last_seen(self):
        self.machine.hxsimctl("inject", "--call", "HX_LD_GetInfo", "--code", "7")
        self.publish(conditions=[self.report_of("VD_OFFLINE", "critical", "a0/vd0",
                                                last_seen="2026-11-22T02:31:00Z")])
        document = self.expect(2, "VD_OFFLINE", "VDS_UNREADABLE")
        self.assertTrue(document["conditions"][0]["stale"])
        self.assertIn("a0/vd0: VD_OFFLINE; last seen 2026-11-22 02:31:00 UTC",
                      self.run_words("check").stdout)

    def test_tells_that_a_rebuild_stands_still(self):
        self.happen(DATA, "disk fail a0/pd5", "disk replace a0/pd5", "+5m")
        self.expect(1, "VD_REBUILDING_UNPROTECTED")
        stalled = self.report_of("REBUILD_STALLED", "warning", "a0/vd0",
                                 sentence="the rebuild has not moved for 31 min")
        stalled["object"]["name"] = "DATA"
        self.publish(conditions=[stalled])
        document = self.expect(2, "VD_NO_REDUNDANCY: REBUILD_STALLED")
        head = document["conditions"][0]
        self.assertEqual(head["hindrance"], "REBUILD_STALLED")
        self.assertTrue(head["sentence"].endswith("; the rebuild has not moved for 31 min"))

    def test_lends_times_acknowledgements_and_silences(self):
        self.happen("smart trip a0/pd4")
        disk = self.document()[0]["conditions"][0]["object"]
        self.publish(conditions=[{
            **self.CONDITION, "code": "DISK_PREDICTED_FAILURE", "level": "warning", "object": disk,
            "since": "2026-11-22T02:31:20Z", "since_is": "event",
            "first_seen": "2026-11-22T02:31:21Z", "last_seen": "2026-11-22T02:41:20Z",
            "acknowledged": {"by": "jo", "at": "2026-11-22T03:00:00Z", "note": None},
            "silenced_until": "2099-01-01T00:00:00Z"}])
        document = self.expect(1, "DISK_PREDICTED_FAILURE")
        head = document["conditions"][0]
        self.assertEqual((head["since"], head["since_is"]), ("2026-11-22T02:31:20Z", "event"))
        self.assertEqual(head["acknowledged"]["by"], "jo")
        run = self.run_words("check")
        self.assertIn("; 1 silenced | ", run.stdout)
        self.assertIn(", since 2026-11-22 02:31:20 UTC", run.stdout)
        run = self.run_words("check", "--honour-silences")
        self.assertEqual(run.returncode, 0)
        self.assertIn("; 1 silenced | ", run.stdout)


class EventStore(CheckCase):
    """Check looks at the store's file itself, whether a service has reported or not."""

    def store(self, content=None):
        path = self.root / "opt/kestrel/raid/db/vx_hx_raid.ev"
        path.parent.mkdir(parents=True, exist_ok=True)
        if content is not None:
            path.write_bytes(content)
        return path

    def head(self, count, capacity, start, end):
        return struct.pack("<32s5I", b"Ombra Event File v0.1", count, capacity, start, end,
                           start) + bytes(60)

    def test_that_is_damaged_is_told(self):
        for content in (b"", b"random bytes" * 100, self.head(7, 5, 0, 7), self.head(3, 5, 0, 4),
                        self.head(0, 0, 0, 0), self.head(2, 5, 9, 11)):
            with self.subTest(content=content[:40]):
                path = self.store(content)
                document = self.expect(1, "STORE_DAMAGED")
                head = document["conditions"][0]
                self.assertIn(str(path), head["sentence"])
                self.assertEqual(head["next_step"]["text"],
                                 "Move it aside; the service makes a new one")
        self.assertIn("the event store is damaged", self.run_words("overview").stdout)

    def test_that_is_good_or_not_there_yet_is_no_news(self):
        self.store()
        self.expect(0)
        for content in (self.head(0, 5, 0, 0), self.head(5, 5, 2, 1), self.head(3, 5, 0, 3)):
            with self.subTest(content=content[:60]):
                self.store(content)
                self.expect(0)

    def test_that_cannot_be_read_is_unknown(self):
        path = self.store()
        path.mkdir()
        document = self.expect(3, "STORE_UNREADABLE")
        self.assertIn(f"{path}: Is a directory", document["conditions"][0]["sentence"])

    def test_that_had_events_and_is_gone_is_told(self):
        self.publish(age=3 * 3600 + 600, conditions=[],
                              store={"first": 0, "next": 12})
        document = self.expect(1, "SERVICE_STALE", "STORE_UNREADABLE")
        head = document["conditions"][1]
        self.assertIn("No such file or directory", head["sentence"])
        self.assertIn("install -d -m 0755 " + str(self.store().parent), head["next_step"]["text"])

    def test_is_looked_at_again_after_the_service_has(self):
        store = {"kind": "store", "address": None, "name": "the event store", "serial": None}
        report = {**self.CONDITION, "code": "STORE_DAMAGED", "level": "warning",
                  "sentence": "the event store is damaged", "object": store}
        self.publish(conditions=[report])
        self.expect(1, "STORE_DAMAGED")  # there is nothing to look at
        self.store(self.head(3, 5, 0, 3))
        self.expect(0)
        self.store(b"")
        self.expect(1, "STORE_DAMAGED")


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
        (["disk insert a0/pd5"], 2, "VD_NO_REDUNDANCY: DISK_FAILED SPARE_NONE"),
    ],
    "a virtual disk that was set offline": [
        ([DATA, "disk fail a0/pd4", "make a0/pd5 offline"], 2,
         "VD_OFFLINE: DISK_FAILED DISK_OFFLINE"),
    ],
    "RAID 10": [
        (["create vd a0 name=DATA raid=10 disks=4,5,6,7 size=200GiB init=none",
          "disk fail a0/pd4"], 2, "VD_NO_REDUNDANCY: DISK_FAILED SPARE_NONE"),
        (["disk replace a0/pd4", "+20h"], 0),
    ],
    "a member that is missing at boot": [
        ([DATA, "disk remove a0/pd4", "power-cut"], 2,
         "VD_NO_REDUNDANCY: DISK_MISSING SPARE_NONE"),
        (["disk insert a0/pd4", "+20h"], 0),
        (["disk remove a0/pd4", "disk remove a0/pd5", "disk remove a0/pd6", "power-cut"], 2,
         "VD_OFFLINE: DISK_MISSING DISK_MISSING DISK_MISSING"),
    ],
    "a foreign disk": [
        (["disk replace a0/pd4 --foreign"], 1, "DISK_FOREIGN"),
        (["vexorctl disk wipe a0/pd4"], 0),
    ],
    "a migration that is paused": [
        ([DATA, "migrate vd a0/vd0 raid=5 disks=4,5,6,7", "pause a0/vd0"], 1, "ACTIVITY_PAUSED"),
        (["resume a0/vd0"], 0),
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
        (["make a0/pd4 online"], 1, "VD_REBUILDING"),
    ],
    "a disk that announces its failure": [
        (["smart trip a0/pd4"], 1, "DISK_PREDICTED_FAILURE"),
        (["disk replace a0/pd4"], 0),
    ],
    "a disk group": [
        (["create dg a0 name=G raid=5 disks=4,5,6", "disk fail a0/pd4"], 1,
         "DISK_FAILED", "DG_DEGRADED"),
        (["disk replace a0/pd4", "+20h"], 0),
    ],
    "the battery": [
        ([DATA, "battery remove a0"], 1, "BATTERY_REMOVED: CACHE_FORCED_WRITE_THROUGH"),
        (["battery replace a0"], 0),
        (["battery charge a0 10"], 1, "BATTERY_LOW: CACHE_FORCED_WRITE_THROUGH"),
        (["+12h"], 0),
        (["battery temperature a0 71"], 1, "BATTERY_TEMPERATURE: CACHE_FORCED_WRITE_THROUGH"),
        (["battery temperature a0 29"], 0),
        (["battery voltage a0 5000"], 1, "BATTERY_VOLTAGE: CACHE_FORCED_WRITE_THROUGH"),
        (["battery voltage a0 4012"], 0),
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
    def test_what_is_information(self):
        for steps, *codes in (
                (["vexorctl disk set a0/pd4 --smart off"], "DISK_SMART_OFF"),
                (["vexorctl disk set a0/pd4 --smart on", "set a0 auto_rebuild=0"],
                 "AUTO_REBUILD_DISABLED"),
                (["set a0 auto_rebuild=1", "relearn a0"], "BATTERY_RELEARNING")):
            with self.subTest(steps=steps):
                self.happen(*steps)
                document = self.expect(0)
                self.assertEqual([each["code"] for each in document["conditions"]],
                                 [*codes, "NOT_WATCHED"])


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


    def test_a_shelf_that_goes_takes_its_virtual_disks_along(self):
        self.happen("enclosure unplug a0/enc0")
        document, code = self.document()
        self.assertEqual(code, 2)
        heads = {(each["code"], each["object"]["address"]) for each in document["conditions"]}
        self.assertIn(("VD_OFFLINE", "a0/vd0"), heads)
        self.happen("enclosure plug a0/enc0")
        document, code = self.document()
        self.assertNotIn("VD_OFFLINE", [each["code"] for each in document["conditions"]])

    def test_states_of_elements_are_told(self):
        for state, *heads in (("unrecoverable", "ENC_ELEMENT_CRITICAL"),
                              ("unknown", "ELEMENT_STATE_UNKNOWN"), ("not_available",),
                              ("not_installed",), ("ok",)):
            with self.subTest(state=state):
                self.machine.hxsimctl("element", "a0/enc0/el5", state)
                self.expect({"unrecoverable": 2, "unknown": 3}.get(state, 0), *heads)

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


# What happens between two rounds of the service, and the heads that check has from its report then.
WATCHED = {
    "lost blocks": (["event a0/vd0 LD_INCONSISTENT_LBA 0,800000"], 2, "VD_BLOCK_LOST"),
    "time-outs": (["repeat 3", "event a0/pd3 HD_TIMEOUT", "end"], 1, "DISK_TIMEOUTS"),
    "two time-outs": (["repeat 2", "event a0/pd3 HD_TIMEOUT", "end"], 0),
    "read errors": (["repeat 5", "event a0/pd3 HD_RW_ERROR", "end"], 1, "DISK_MEDIA_ERRORS"),
    "a table of remaps": (["event a0/pd3 BAD_BLOCK_TBL_80_FULL"], 1, "DISK_REMAP_NEARLY_FULL"),
    "a full table of remaps": (["event a0/pd3 BAD_BLOCK_TBL_80_FULL",
                                "event a0/pd3 BAD_BLOCK_TBL_FULL"], 1, "DISK_REMAP_FULL"),
    "a failed media patrol": (["event a0/pd3 HD_MP_ERROR"], 1, "ACTIVITY_FAILED"),
    "a charger": (["event a0 BAT_CHARGER_PROBLEM_DETECTED"], 1, "BATTERY_CHARGER"),
    "a memory error": (["event a0 MISC_MUTLI_BIT_ECC_ERR 1,2,1"], 2, "ADAPTER_MEMORY_FAILED"),
    "corrected memory errors": (["repeat 10", "event a0 MISC_SINGLE_BIT_ECC_ERR", "end"], 1,
                                "ADAPTER_MEMORY_ERRORS"),
    "a lost configuration": (["event a0 MISC_PREVIOUS_CONFIG_MISSING_AT_BOOT"], 2,
                             "ADAPTER_CONFIG_LOST"),
    "inconsistent stripes": (["event a0/vd0 LD_FOUND_ERROR 3"], 1, "VD_INCONSISTENT"),
    "repaired stripes": (["event a0/vd0 LD_FOUND_ERROR 3", "event a0/vd0 LD_FIXED"], 0),
    "a rebuild that failed": (["disk fail a0/pd5", "disk replace a0/pd5", "+10m disk fail a0/pd5"],
                              2, "VD_NO_REDUNDANCY: REBUILD_FAILED DISK_FAILED SPARE_NONE"),
    "lost events": (["repeat 300", "disk fail a0/pd7", "disk replace a0/pd7", "end"], 1,
                    "EVENTS_LOST"),
}


class Watched(CheckCase):
    """What only events and memory tell: the service looks before and after, and check looks then."""

    def setUp(self):
        super().setUp()
        with open(self.vexorctl, "rb") as program:
            is_32_bit = program.read(5) == b"\x7fELF\x01"
        if is_32_bit:
            self.skipTest("the event service is built for 64 bits alone")
        settings = self.root / "etc/hxraid/hxraidsvc.conf"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text('[collect]\ninterval = "1h"\n')  # a report is fresh for that long
        (self.root / "opt/kestrel/raid/db").mkdir(parents=True, exist_ok=True)
        self.happen("create vd a0 name=DATA raid=5 disks=4,5,6 size=200GiB init=quick", "+20h")
        self.look()

    def look(self):
        subprocess.run([os.path.join(vexorctl_machine.PROGRAMS, "hxraidsvc"), "--once"],
                       env=self.environment, capture_output=True, check=True)


    def test_a_replacement_that_is_too_small(self):
        self.happen("disk fail a0/pd5", "disk replace a0/pd5 --size 20GiB")
        self.look()
        document = self.expect(2, "VD_NO_REDUNDANCY: REPLACEMENT_TOO_SMALL SPARE_NONE")
        self.assertIn("a0/pd5", document["conditions"][0]["sentence"])
        self.happen("disk replace a0/pd5 --size 1800GiB")
        self.look()
        document, _ = self.document()
        self.assertNotIn("REPLACEMENT_TOO_SMALL", str(document["conditions"]))


def _watched(steps, code, *heads):
    def test(self):
        self.expect(0)
        self.machine_story("\n".join(steps))
        self.look()
        self.expect(code, *heads)
    return test


for _name, _case in WATCHED.items():
    setattr(Watched, "test_" + _name.replace(" ", "_").replace("-", "_"), _watched(*_case))


class Unreachable(CheckCase):
    def test_a_query_that_fails_is_unknown_and_what_it_counts_is_null(self):
        self.machine.hxsimctl("inject", "--call", "HX_LD_GetInfo", "--code", "7")
        document = self.expect(3, "VDS_UNREADABLE")
        self.assertIsNone(document["machine"]["virtual_disks"])
        run = self.run_words("check")
        self.assertTrue(run.stdout.startswith("UNKNOWN: virtual disks of a0 cannot be read: "
                                              "HX_LD_GetInfo 7"), run.stdout)
        self.assertNotIn("vds=", run.stdout)

    def test_each_query_has_its_row(self):
        for call, row in {"HX_Adapter_GetInfo": "ADAPTER_UNREADABLE",
                          "HX_BLK_GetInfo": "VDS_UNREADABLE",
                          "HX_PD_GetHDInfo_Ext": "DISKS_UNREADABLE",
                          "HX_ENC_GetEnclosureInfo": "ENCLOSURES_UNREADABLE",
                          "HX_PD_GetSmartStatus": "SMART_UNREADABLE",
                          "HX_DG_GetInfo": "GROUPS_UNREADABLE",
                          "HX_Adapter_GetConfig": "SETTINGS_UNREADABLE"}.items():
            with self.subTest(call=call):
                self.machine.hxsimctl("inject", "--call", call, "--code", "7")
                self.expect(3, row)
                self.machine.hxsimctl("inject", "clear")
                self.expect(0)

    def test_broken_firmware_is_one_line(self):
        self.machine.hxsimctl("inject", "--hostile")
        document, returncode = self.document()
        self.assertNotEqual(returncode, 0)
        unknown = [each["code"] for each in document["conditions"] if each["level"] == "unknown"]
        self.assertEqual(unknown, ["ANSWER_IMPLAUSIBLE"])
        self.machine.hxsimctl("inject", "clear")
        self.expect(0)

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
        self.assertEqual(run.stdout, "UNKNOWN: a9: there is no adapter a9; there are 1\n")
        self.assertEqual(run.returncode, 3)

    def test_an_output_that_takes_nothing_is_unknown(self):
        for words in (["check"], ["check", "-o", "json"], ["check", "--bogus"]):
            with self.subTest(words=words), open("/dev/full", "w") as full:
                run = subprocess.run([os.path.join(vexorctl_machine.PROGRAMS, "vexorctl"), *words],
                                     stdout=full, stderr=subprocess.PIPE, text=True,
                                     env=self.environment, check=False)
                self.assertEqual((run.returncode, run.stderr),
                                 (3, "vexorctl: standard output: No space left on device\n"))

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

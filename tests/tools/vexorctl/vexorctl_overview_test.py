#!/usr/bin/env python3
"""vexorctl overview, risk, help and version, and lists of the disks of a virtual disk, disk group or
enclosure, over the virtual controller.

usage: vexorctl_overview_test.py VEXORCTL [TEST]...
"""

import json
import pathlib
import re

import vexorctl_machine
from vexorctl_machine import SCHEMA, VERSION, VexorctlCase, schema

SCREENS = pathlib.Path(__file__).resolve().parent / "data" / "screens"
DATA = "create vd a0 name=DATA raid=5 disks=4,5,6 size=200GiB init=none"


class ScreenCase(VexorctlCase):
    def happen(self, *steps):
        for step in steps:
            path = self.root / "story"
            path.write_text(step + "\n")
            self.machine.hxsimctl("scenario", "run", path)

    def screen(self, *words, code=0):
        run = self.run_words(*words)
        self.assertEqual((run.stderr, run.returncode), ("", code))
        for line in run.stdout.splitlines():
            self.assertLessEqual(len(line), 80, line)
        return run.stdout

    def expect_screen(self, name, text):
        self.assertEqual(text, (SCREENS / name).read_text())


class Overview(ScreenCase):
    def test_the_default_machine_is_on_one_screen_of_80_columns(self):
        self.expect_screen("overview-default.txt", self.screen("overview"))

    def test_vexorctl_alone_is_the_overview(self):
        self.assertEqual(self.screen(), self.screen("overview"))
        run = self.run_words("-o", "json")
        self.assertEqual(json.loads(run.stdout)["command"], "overview")

    def test_one_adapter_is_shown_alone(self):
        text = self.screen("overview", "a1")
        self.assertIn("a1/vd0", text)
        self.assertNotIn("a0", text)

    def test_what_cannot_be_read_is_no_zero(self):
        self.machine.hxsimctl("inject", "--call", "HX_LD_GetInfo", "--code", "7")
        run = self.run_words("overview")
        self.assertRegex(run.stdout, r"\na1 +VC04-\w+ +\S+ +\? +8 ")
        self.assertIn("\n[unknown] virtual disks of a0 cannot be read: HX_LD_GetInfo 7", run.stdout)
        self.assertIn("HX_LD_GetInfo", run.stderr)
        self.assertEqual(run.returncode, 1)

    def test_elements_are_counted_by_their_states_the_bad_ones_first(self):
        self.happen("psu a0/enc0/el0 fail")
        self.assertRegex(self.screen("overview"), r"\na0/enc0 .* el0 critical, 11 ok\n")
        self.machine.hxsimctl("inject", "--call", "HX_ENC_GetElementInfo", "--code", "7")
        self.assertRegex(self.run_words("overview").stdout, r"\na0/enc0 .* \?\n")

    def test_what_redundancy_is_left_is_not_known_without_the_disks(self):
        self.machine.hxsimctl("inject", "--call", "HX_PD_GetHDInfo_Ext", "--code", "7")
        self.assertRegex(self.run_words("overview").stdout,
                         r"\na0/vd0 +DATABASE +optimal +raid5 +\? +768 GiB ")

    def test_a_controller_that_cannot_be_opened_is_no_empty_screen(self):
        self.environment["HXSIM_STATE"] = str(self.root)  # a folder
        run = self.run_words()
        self.assertEqual((run.stdout, run.returncode), ("", 5))
        self.assertIn("vexorctl: ", run.stderr)

    def test_json_has_the_objects_and_the_conditions(self):
        document = json.loads(self.run_words("overview", "-o", "json").stdout)
        schema(SCHEMA).validate(document)
        self.assertEqual(document["overall"], "ok")
        self.assertEqual(document["machine"]["disks"], 24)
        kinds = [item["kind"] for item in document["items"]]
        self.assertEqual({kind: kinds.count(kind) for kind in kinds},
                         {"adapter": 2, "enclosure": 1, "disk": 24, "dg": 1, "vd": 3,
                          "condition": 1})


class SmallOverview(ScreenCase):
    topology = "small"

    def test_a_lost_disk_leads_what_needs_attention(self):
        self.happen(DATA, "disk fail a0/pd5")
        self.expect_screen("overview-lost-disk.txt", self.screen("overview"))

    def test_a_rebuild_is_an_activity(self):
        self.happen(DATA, "disk fail a0/pd5", "disk replace a0/pd5", "+5m")
        self.assertRegex(self.screen("overview"),
                         r"\nACTIVITY ON +NAME .*\na0/vd0 +DATA +rebuild +running +\d+%\n")

    def test_names_from_outside_stay_on_their_line(self):
        self.happen(DATA.replace("name=DATA", "name=a\x1b[2J"))
        self.assertNotIn("\x1b", self.screen("overview"))

    def test_eight_conditions_are_shown_and_the_rest_is_counted(self):
        for disk in range(8):
            self.happen(f"smart trip a0/pd{disk}")
        for disk in range(2):
            self.happen(f"disk fail a0/pd{disk}")
        self.happen("battery temperature a0 71")
        text = self.screen("overview")
        attention = text.split("\nNeeds attention:\n")[1]
        self.assertEqual(len(re.findall(r"^\[", attention, re.M)), 8)
        self.assertTrue(attention.endswith("and 1 more: vexorctl check\n"), attention)


class Risk(ScreenCase):
    topology = "small"

    def risk(self, *words):
        run = self.run_words("risk", *words, "-o", "json")
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        return document["items"][0], run.returncode

    def test_a_good_virtual_disk_is_not_at_risk(self):
        self.happen(DATA, "spare a0/pd7")
        run = self.run_words("risk")
        self.assertEqual(
            run.stdout, "DATA (a0/vd0) survives 1 failed disk; a0/pd7 would step in; how long the "
                        "rebuild of 100 GiB takes is not known: none was measured\n")
        self.assertEqual((run.stderr, run.returncode), ("", 0))

    def test_a_lost_disk_is_exit_code_9(self):
        self.happen(DATA, "disk fail a0/pd5")
        item, code = self.risk()
        self.assertEqual(code, 9)
        self.assertEqual((item["survives"], item["at_risk"]), (0, True))
        self.assertEqual((item["lost"], item["must_not_fail"]),
                         (["a0/pd5"], ["a0/pd4", "a0/pd6"]))
        self.assertEqual((item["spare"], item["no_spare_reason"], item["free_disk"]),
                         (None, "there is none", "a0/pd7"))
        self.assertIsNone(item["exposure_seconds"])

    def test_raid_10_tells_which_disks_may_still_fail(self):
        self.happen("create vd a0 name=DATA raid=10 disks=4,5,6,7 size=200GiB init=none",
                    "disk fail a0/pd4")
        item, code = self.risk("name:DATA")
        self.assertEqual(code, 9)
        self.assertEqual((item["must_not_fail"], item["may_fail"]),
                         (["a0/pd5"], ["a0/pd6", "a0/pd7"]))

    def test_the_window_is_that_of_a_rebuild_that_was_measured(self):
        self.happen(DATA, "disk fail a0/pd5", "disk replace a0/pd5", "+20h")
        self.collect()
        item, code = self.risk()
        self.assertEqual(code, 0)
        self.assertGreater(item["exposure_seconds"], 60)
        events = json.loads(self.run_words("event", "list", "-o", "json").stdout)["items"]
        times = [each["time"] for each in events
                 if re.search("rebuild of virtual disk a0/vd0 (has started|is complete)",
                              each["text"])]
        self.assertEqual(len(times), 2)
        minutes = [int(each[11:13]) * 60 + int(each[14:16]) for each in times]
        self.assertAlmostEqual(item["exposure_seconds"] / 60, (minutes[1] - minutes[0]) % 1440,
                               delta=1)

    def test_a_rebuild_that_was_paused_measures_nothing(self):
        self.happen(DATA, "disk fail a0/pd5", "disk replace a0/pd5", "+5m", "pause a0/vd0", "+1h",
                    "resume a0/vd0", "+20h")
        self.collect()
        self.assertIsNone(self.risk()[0]["exposure_seconds"])

    def test_weak_members_are_named(self):
        self.happen(DATA, "smart trip a0/pd4")
        item, code = self.risk()
        self.assertEqual((item["weak_disks"], code), (["a0/pd4"], 0))
        self.assertIn("; a0/pd4 announces its failure", item["sentence"])

    def test_disks_that_cannot_be_read_leave_it_unknown(self):
        self.happen(DATA)
        self.machine.hxsimctl("inject", "--call", "HX_PD_GetHDInfo_Ext", "--code", "7")
        item, code = self.risk()
        self.assertIsNone(item["survives"])
        self.assertEqual(code, 1)

    def test_one_that_is_not_there_is_exit_code_3(self):
        self.assertEqual(self.run_words("risk", "a0/vd7").returncode, 3)


class DisksOf(VexorctlCase):
    def disks(self, *targets, code=0):
        run = self.run_words("disk", "list", *targets, "--columns", "address", "--no-header")
        self.assertEqual(run.returncode, code, run.stderr)
        return run.stdout.split()

    def test_a_virtual_disk_means_the_disks_that_it_lies_on(self):
        wanted = [f"a0/pd{i}" for i in range(4, 9)]
        self.assertEqual(self.disks("a0/vd2"), wanted)
        self.assertEqual(self.disks("name:ARCHIVE"), wanted)

    def test_a_disk_group_means_its_members_and_spares(self):
        document = json.loads(self.run_words("dg", "list", "a0/dg0", "-o", "json").stdout)
        group = document["items"][0]
        self.assertGreater(len(group["spares"]), 0)
        self.assertEqual(sorted(self.disks("a0/dg0")), sorted(group["disks"] + group["spares"]))

    def test_an_enclosure_means_the_disks_in_it(self):
        document = json.loads(self.run_words("disk", "list", "a0", "-o", "json").stdout)
        wanted = [each["address"] for each in document["items"]
                  if each["enclosure"] == "a0/enc0"]
        self.assertGreater(len(wanted), 0)
        self.assertEqual(self.disks("a0/enc0"), wanted)

    def test_several_targets_are_joined(self):
        self.assertEqual(self.disks("a1/vd0", "a1/pd7"), ["a1/pd0", "a1/pd1", "a1/pd7"])

    def test_one_that_is_not_there_is_told(self):
        run = self.run_words("disk", "list", "a0/vd9")
        self.assertEqual((run.stdout, run.stderr, run.returncode),
                         ("", "vexorctl: a0/vd9: there is no such virtual disk\n", 3))


class Words(VexorctlCase):
    def test_help_is_what_the_option_prints(self):
        for words in ([], ["disk"], ["disk", "list"], ["check"]):
            with self.subTest(words=words):
                self.assertEqual(self.run_words("help", *words).stdout,
                                 self.run_words(*words, "--help").stdout)
        self.assertEqual(self.run_words("disk", "help").stdout,
                         self.run_words("disk", "--help").stdout)

    def test_help_of_what_is_not_there_is_wrong_usage(self):
        run = self.run_words("help", "dsik")
        self.assertEqual((run.stdout, run.returncode), ("", 2))
        self.assertIn('there is no "dsik"', run.stderr)
        self.assertEqual(self.run_words("help", "check", "all").returncode, 2)

    def test_version_is_a_word(self):
        run = self.run_words("version")
        self.assertEqual((run.stdout, run.returncode), (f"vexorctl {VERSION}\n", 0))


if __name__ == "__main__":
    vexorctl_machine.run_tests("__main__", "VEXORCTL")

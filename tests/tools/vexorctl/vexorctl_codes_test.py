#!/usr/bin/env python3
"""What the codes of a controller mean is used for the controllers that have them only: our own, known
by its identity, and one that the administrator has described in a file. The codes of any other are
numbers.

usage: vexorctl_codes_test.py VEXORCTL SCRIPTED_LIBRARY_FOLDER WRITE_MANUAL [TEST]...
"""

import json
import subprocess
import unittest

import jsonschema

import vexorctl_machine
from vexorctl_machine import SCHEMA, TREE, VexorctlCase, schema
from vexorctl_script import VIRTUAL_CONTROLLER, Script

CODES_SCHEMA = TREE / "docs" / "vexorctl-codes.schema.json"

# Set from the command line.
SCRIPTED_LIBRARY = ""
WRITE_MANUAL = ""

OTHER = "another controller library"
CODES = {
    "schema": "vexorctl-codes/1",
    "controller": OTHER,
    "refusals": [{"code": 9, "name": "gone", "sentence": "It is not there.", "kind": "no_object"}],
    "states": [{"code": 7, "name": "optimal"}, {"code": 8, "name": "degraded"}],
    "disk_bits": [{"code": 1, "name": "failed"}, {"code": 2, "name": "online"}],
    "disk_actions": [{"code": 70, "name": "offline"}],
    "activities": [{"code": 0, "name": "none"}, {"code": 5, "name": "rebuild"}],
    "element_states": [{"code": 1, "name": "ok"}],
}


class Scripted(VexorctlCase):
    """One adapter with a virtual disk and a disk, of a controller that the test names."""

    controller = OTHER

    def setUp(self):
        super().setUp()
        self.script = Script(self.root / "results", self.controller)
        self.environment.update(self.script.environment(SCRIPTED_LIBRARY))
        self.script.answer("VX_HX_EVT_GetChangeCounters", "<RetVal>0</RetVal><ChangeCounters>"
                           "<Whatever_Change>1</Whatever_Change></ChangeCounters>")
        self.script.answer("HX_Adapter_GetInfo", "<RetVal>0</RetVal><Count>1</Count><AdapterInfo>"
                           "<img_health>1</img_health></AdapterInfo>")
        self.virtual_disk(7)
        self.disk(2)
        self.script.item("HX_PD_GetSmartStatus", 0, "<HD_SMART_Status><SmartThresholdExceeded>0"
                         "</SmartThresholdExceeded><HDID>3</HDID></HD_SMART_Status>")
        self.script.item("HX_LD_GetStatus", 0, "<Status><Bga>5</Bga><BgaPercentage>40"
                         "</BgaPercentage><BgaState>1</BgaState><LDID>0</LDID></Status>")

    def virtual_disk(self, state):
        self.script.item("HX_LD_GetInfo", 0, f"<LDInfo><ID>0</ID><DGID>255</DGID><Status>{state}"
                         "</Status><RaidMode>5</RaidMode><Size>2048</Size><Name>v</Name></LDInfo>")

    def disk(self, status):
        self.script.item("HX_PD_GetHDInfo_Ext", 0, "<HD_Info><Link><Self><DevID>3</DevID></Self>"
                         f"</Link><Status>{status}</Status><Size>2048</Size></HD_Info>")

    def write(self, codes, name="codes.json"):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(codes if isinstance(codes, str) else json.dumps(codes))
        return str(path)

    def items(self, *words):
        """The items and the errors of a document."""
        document = json.loads(self.run_words(*words, "-o", "json").stdout)
        schema(SCHEMA).validate(document)
        return document["items"], document["errors"]


class Ours(Scripted):
    controller = VIRTUAL_CONTROLLER

    def test_codes_have_our_names_sentences_and_exit_codes(self):
        self.virtual_disk(4)
        (item,), _ = self.items("vd", "list")
        self.assertEqual(item["state"], {"code": 4, "name": "degraded"})
        self.assertEqual(item["activity"], {"code": 5, "name": "init_foreground"})
        self.script.answer("HX_BBU_ActRelearn", "<RetVal>212</RetVal>")
        self.script.answer("HX_BBU_GetInfo", "<RetVal>0</RetVal><BBU_Info/>")
        run = self.run_words("battery", "relearn", "a0", "--yes")
        self.assertEqual((run.stderr.splitlines()[-1], run.returncode),
                         ("vexorctl: a0: refused: The adapter has no battery. (no_battery, code "
                          "212)", 3))

    def test_a_file_does_not_change_them_and_has_to_be_one_all_the_same(self):
        codes = {**CODES, "controller": self.controller}
        (item,), _ = self.items("vd", "list", "--codes", self.write(codes))
        self.assertEqual(item["state"], {"code": 7, "name": None})
        run = self.run_words("vd", "list", "--codes", self.write("{"))
        self.assertEqual(run.returncode, 2)
        self.write("{", "etc/vexorapi/codes.json")  # nobody needs it
        self.assertEqual(self.items("vd", "list")[0][0]["name"], "v")


class Unknown(Scripted):
    """Nobody has said what its codes mean."""

    def test_codes_are_numbers(self):
        (item,), _ = self.items("vd", "list")
        self.assertEqual(item["state"], {"code": 7, "name": None})
        self.assertEqual(item["activity"], {"code": 5, "name": None})
        self.assertEqual(item["level"], {"code": 5, "name": "raid5"})  # the interface's
        (item,), _ = self.items("disk", "list")
        self.assertEqual((item["state"], item["status"]), ("2", {"code": 2, "names": ["2"]}))
        run = self.run_words("task", "list", "--no-header", "--columns", "address,activity,state")
        self.assertEqual(run.stdout, "a0/vd0  5  1\n")

    def test_a_refusal_is_its_number_and_means_no_more_than_that(self):
        self.script.answer("HX_BBU_GetInfo", "<RetVal>205</RetVal>")
        run = self.run_words("battery", "list", "-o", "json")
        self.assertEqual(run.returncode, 1)
        (error,) = json.loads(run.stdout)["errors"]
        self.assertEqual((error["code"], error["name"], error["message"]),
                         (205, None, "refused: code 205"))

    def test_check_says_that_it_does_not_know(self):
        # Where one of a disk's lists is refused, that is the reason which is told.
        for function in ("HX_PD_GetHDRaidStatus", "HX_PD_GetBGAStatus", "HX_PD_GetFreeSpaceInfo"):
            self.script.answer(function, "<RetVal>0</RetVal><numReturned>0</numReturned>")
        run = self.run_words("check")
        self.assertEqual(run.returncode, 3)
        self.assertTrue(run.stdout.startswith("UNKNOWN: "), run.stdout)
        self.assertIn("a0/pd3: what its state 2 means is not known", run.stdout)
        self.assertIn("v (a0/vd0) has a state without a name (7)", run.stdout)

    def test_what_needs_a_code_is_refused_and_nothing_is_sent(self):
        log = self.root / "calls"
        self.environment["STANDIN_LOG"] = str(log)
        for words, sent in (
            (["disk", "set", "a0/pd3", "--state", "offline"], "HX_PD_SetHDStatus"),
            (["disk", "locate", "a0/pd3"], "HX_LocateArrayDevice"),
            (["task", "abort", "a0/vd0"], "HX_LD_BGAControl"),
            (["task", "start", "a0/vd0", "--kind", "fix"], "HX_LD_StartConsistencyCheck"),
            (["vd", "set", "a0/vd0", "--cache", "write_back"], "HX_LD_SetConfig"),
            (["flash", "erase", "a0", "--image", "bios"], "HX_Flash_Erase"),
        ):
            with self.subTest(words=words):
                run = self.run_words(*words, "--yes")
                self.assertIn("the codes of this controller are not known; describe them in a "
                              "file (see --codes)", run.stderr)
                self.assertIn(run.returncode, (1, 2))
                self.assertNotIn(f"<{sent} ", log.read_text())

    def test_which_disks_are_free_is_not_known(self):
        run = self.run_words("vd", "create", "--raid", "0", "--disks", "1")
        self.assertIn("; which disks are free is not known: ", run.stderr)
        self.assertEqual(run.returncode, 1)


class Described(Scripted):
    """The administrator has said what its codes mean."""

    def expect_names(self, *more):
        (item,), _ = self.items("vd", "list", *more)
        self.assertEqual(item["state"], {"code": 7, "name": "optimal"})
        self.assertEqual(item["activity"], {"code": 5, "name": "rebuild"})
        self.assertEqual(item["activity_state"], {"code": 1, "name": None})
        (item,), _ = self.items("disk", "list", *more)
        self.assertEqual(item["status"], {"code": 2, "names": ["online"]})

    def test_by_an_option(self):
        self.expect_names("--codes", self.write(CODES))

    def test_by_the_file_of_the_host(self):
        self.write(CODES, "etc/vexorapi/codes.json")
        self.expect_names()

    def test_for_any_controller_where_it_names_none(self):
        codes = dict(CODES)
        del codes["controller"]
        self.expect_names("--codes", self.write(codes))

    def test_refusals_have_sentences_and_exit_codes(self):
        self.script.answer("HX_BBU_GetInfo", "<RetVal>0</RetVal><BBU_Info/>")
        self.script.answer("HX_BBU_ActRelearn", "<RetVal>9</RetVal>")
        run = self.run_words("battery", "relearn", "a0", "--yes", "--codes", self.write(CODES))
        self.assertEqual(run.returncode, 3)
        self.assertIn("refused: It is not there. (gone, code 9)\n", run.stderr)

    def test_raw_commands_use_the_file_of_the_host(self):
        self.write(CODES, "etc/vexorapi/codes.json")
        self.script.answer("HX_BBU_ActRelearn", "<RetVal>9</RetVal>")
        run = self.run_words("call", "HX_BBU_ActRelearn", "AdapterID=0")
        self.assertIn("answered It is not there. (gone, code 9)\n", run.stderr)

    def test_check_goes_by_the_names(self):
        codes = self.write(CODES)
        self.virtual_disk(8)
        self.disk(3)
        run = self.run_words("check", "-o", "jsonl", "--codes", codes)
        found = [json.loads(line) for line in run.stdout.splitlines()]
        self.assertIn(("critical", "VD_NO_REDUNDANCY", "a0/vd0"),
                      [(each.get("level"), each.get("condition"), each.get("address"))
                       for each in found])
        self.assertIn(("warning", "DISK_FAILED", "a0/pd3"),
                      [(each.get("level"), each.get("condition"), each.get("address"))
                       for each in found])
        self.assertEqual(run.returncode, 2)

    def test_a_state_that_only_the_file_knows_is_not_taken_for_well(self):
        codes = {**CODES, "states": [{"code": 7, "name": "dreaming"}]}
        run = self.run_words("check", "--codes", self.write(codes))
        self.assertIn("v (a0/vd0) has a state without a name (dreaming)", run.stdout)
        self.assertEqual(run.returncode, 3)

    def test_names_become_the_codes_of_this_controller(self):
        run = self.run_words("disk", "set", "a0/pd3", "--state", "offline", "--dry-run", "--codes",
                             self.write(CODES))
        self.assertIn("<Action>70</Action>", run.stdout)


class BrokenFiles(Scripted):
    BROKEN = (
        ("", "codes: is not JSON: line 1"),
        ('{\n"schema": "vexorctl-codes/1",\n"states": [}', "codes: is not JSON: line 3"),
        ("[]", "codes: has to be a JSON object"),
        ({}, 'codes: "schema" has to be "vexorctl-codes/1"'),
        ({"schema": "vexorctl-codes/2"}, 'codes: "schema" has to be "vexorctl-codes/1"'),
        ({"schema": "vexorctl-codes/1", "status": []}, 'codes: the key "status" is not known'),
        ('{"schema": "vexorctl-codes/1", "states": [], "states": []}',
         'codes: "states" stands there twice'),
        ({"states": {}}, "codes: states: has to be an array"),
        ({"states": [7]}, "codes: states, row 1: has to be an object"),
        ({"states": [{"code": "7", "name": "a"}]},
         'codes: states, row 1: "code" has to be a whole number from 0 to 4294967295'),
        ({"states": [{"code": -1, "name": "a"}]},
         'codes: states, row 1: "code" has to be a whole number from 0 to 4294967295'),
        ({"refusals": [{"code": 256, "name": "a", "sentence": "A."}]},
         'codes: refusals, row 1: "code" has to be a whole number from 1 to 255'),
        ({"states": [{"code": 7}]}, 'codes: states, row 1: "name" has to be a text'),
        ({"states": [{"code": 7, "name": "Is Good"}]},
         'codes: states, row 1: "Is Good" is no name: lower case, digits, "_" and "." only'),
        ({"states": [{"code": 7, "name": "a"}, {"code": 7, "name": "b"}]},
         "codes: states, row 2: the code 7 stands there twice"),
        ({"states": [{"code": 7, "name": "a"}, {"code": 8, "name": "a"}]},
         'codes: states, row 2: the name "a" stands there twice'),
        ({"states": [{"code": 7, "name": "a", "sentence": "A."}]},
         'codes: states, row 1: the key "sentence" is not known'),
        ({"disk_bits": [{"code": 3, "name": "a"}]}, "codes: disk_bits, row 1: 3 is not one bit"),
        ({"refusals": [{"code": 7, "name": "a"}]},
         'codes: refusals, row 1: "sentence" has to be a text'),
        ({"refusals": [{"code": 7, "name": "a", "sentence": "A.", "kind": "bad"}]},
         'codes: refusals, row 1: "kind" cannot be "bad"; it is one of request, no_object, '
         "unavailable"),
    )

    def test_each_is_told_with_its_place_and_reason(self):
        for codes, reason in self.BROKEN:
            if isinstance(codes, dict) and codes and "schema" not in codes:
                codes = {"schema": "vexorctl-codes/1", **codes}
            with self.subTest(reason=reason):
                path = self.write(codes)
                run = self.run_words("vd", "list", "--codes", path)
                self.assertEqual((run.stderr, run.stdout, run.returncode),
                                 (f"vexorctl: {path}: {reason}\n", "", 2))

    def test_the_schema_refuses_them_too(self):
        schema(CODES_SCHEMA).validate(CODES)
        for codes, reason in self.BROKEN:
            if isinstance(codes, str) or "twice" in reason or "bit" in reason:
                continue  # what a schema cannot say
            with self.subTest(reason=reason):
                if codes and "schema" not in codes:
                    codes = {"schema": "vexorctl-codes/1", **codes}
                with self.assertRaises(jsonschema.ValidationError):
                    schema(CODES_SCHEMA).validate(codes)

    def test_a_file_that_is_not_there_or_is_for_another_controller(self):
        absent = str(self.root / "absent.json")
        run = self.run_words("vd", "list", "--codes", absent)
        self.assertEqual((run.stderr, run.returncode),
                         (f"vexorctl: {absent}: codes cannot be read: No such file or directory\n",
                          2))
        path = self.write({**CODES, "controller": "a third one"})
        run = self.run_words("vd", "list", "--codes", path)
        self.assertEqual((run.stderr, run.returncode),
                         (f'vexorctl: {path}: the codes are those of "a third one"; the controller '
                          f'that answers is "{OTHER}"\n', 2))

    def test_the_file_of_the_host_is_configuration(self):
        path = self.write("{", "etc/vexorapi/codes.json")
        run = self.run_words("vd", "list", "-o", "json")
        self.assertEqual(run.returncode, 5)
        self.assertEqual(run.stderr, f"vexorctl: {path}: codes: is not JSON: line 1\n")
        self.assertEqual(json.loads(run.stdout)["errors"][0]["message"],
                         "codes: is not JSON: line 1")
        self.write({**CODES, "controller": "a third one"}, "etc/vexorapi/codes.json")
        self.assertEqual(self.items("vd", "list")[0][0]["state"], {"code": 7, "name": None})


class Written(unittest.TestCase):
    def test_the_schema_is_what_the_reader_says(self):
        written = subprocess.run([WRITE_MANUAL, "codes-schema"], text=True, capture_output=True,
                                 check=True, timeout=60).stdout
        self.assertEqual(CODES_SCHEMA.read_text(), written)


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL", "SCRIPTED_LIBRARY", "WRITE_MANUAL")

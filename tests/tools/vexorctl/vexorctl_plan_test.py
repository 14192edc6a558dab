#!/usr/bin/env python3
"""Plans: what --dry-run says a change will do, plans as files, and vexorctl apply.

usage: vexorctl_plan_test.py VEXORCTL [TEST]...
"""

import json
import os

import vexorctl_machine
from vexorctl_machine import VexorctlCase, schema

PLAN_SCHEMA = vexorctl_machine.TREE / "docs" / "vexorctl-plan.schema.json"


class PlanCase(VexorctlCase):
    def lines(self, *words, code=0):
        """What --dry-run shows of a change, without the commands to the library."""
        run = self.run_words(*words, "--dry-run")
        self.assertEqual((run.stderr, run.returncode), ("", code), run.stdout)
        return [line.strip() for line in run.stdout.splitlines() if not line.startswith("<")]

    def do(self, *words):
        run = self.run_words(*words, "--yes")
        self.assertEqual((run.stderr, run.returncode), ("", 0), words)
        return run

    def machine_now(self):
        return self.machine.hxsimctl("show")


class Effects(PlanCase):
    def test_a_member_that_goes_takes_redundancy(self):
        self.assertIn("a0/vd0 (DATABASE) survives 1 failed disk now, no failed disk afterwards",
                      self.lines("disk", "set", "a0/pd0", "--state", "offline"))

    def test_the_spare_that_steps_in_is_named(self):
        said = self.lines("disk", "set", "a0/pd0", "--state", "offline")
        self.assertIn("a0/pd10 steps in for it, and a0/vd0 (DATABASE) is rebuilt", said)

    def test_a_member_that_cannot_be_spared_is_refused_without_force(self):
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        before = self.machine_now()
        said = self.lines("disk", "set", "a1/pd1", "--state", "offline", code=1)
        self.assertIn("a1/vd0 (MIRROR) goes offline, all of it: it survives no failed disk now", said)
        self.assertIn("this would be refused: a1/vd0 (MIRROR) could not be used any more; --force does "
                      "it all the same", said)
        run = self.run_words("disk", "set", "a1/pd1", "--state", "offline", "--yes")
        self.assertEqual((run.stderr, run.returncode),
                         ("vexorctl: a1/pd1: a1/vd0 (MIRROR) could not be used any more; --force does "
                          "it all the same. Nothing was done\n", 1))
        self.assertEqual(self.machine_now(), before)
        self.do("disk", "set", "a1/pd1", "--state", "offline", "--force")
        self.assertEqual(self.run_words("vd", "list", "a1/vd0", "--columns", "state",
                                        "--no-header").stdout, "offline\n")

    def test_wiping_says_that_all_of_a_virtual_disk_is_lost(self):
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        self.assertIn("all data of a1/vd0 (MIRROR) is lost: RAID 1 does not survive the loss of so "
                      "many of its disks", self.lines("disk", "wipe", "a1/pd1", "--force"))

    def test_wiping_a_member_says_that_it_would_be_refused(self):
        self.assertIn("this would be refused: it carries blocks of a1/vd0; --force wipes it all the "
                      "same", self.lines("disk", "wipe", "a1/pd1", code=1))

    def test_what_spares_do_is_told(self):
        self.assertIn("for a lost disk of a1/vd0 (MIRROR) steps in: no spare now, a1/pd3 afterwards",
                      self.lines("disk", "spare", "a1/pd3"))
        self.do("disk", "spare", "a1/pd3")
        self.assertIn("for a lost disk of a1/vd0 (MIRROR) steps in: a1/pd3 now, no spare afterwards",
                      self.lines("disk", "unspare", "a1/pd3"))
        self.assertIn("this would be refused: it is global_spare, and a spare is made of a free disk",
                      self.lines("disk", "spare", "a1/pd3", code=1))

    def test_a_migration_keeps_the_size_and_tells_what_it_survives(self):
        self.do("vd", "create", "a1/pd3", "a1/pd4", "--raid", "1", "--size", "20GiB", "--name", "small",
                "--init", "none")
        words = ("vd", "migrate", "a1/vd1", "--raid", "0", "--to", "a1/pd3,a1/pd4,a1/pd5")
        said = self.lines(*words)
        self.assertIn("resulting size: 20 GiB", said)
        self.assertIn("a1/vd1 (small) survives 1 failed disk now, no failed disk afterwards", said)
        self.do(*words)
        self.machine.hxsimctl("clock", "advance", "30d")
        self.assertEqual(self.run_words("vd", "list", "a1/vd1", "--columns", "level,size_bytes",
                                        "--no-header").stdout.split(), ["raid0", "20", "GiB"])

    def test_what_a_virtual_disk_can_grow_to_is_what_is_free_behind_it(self):
        self.do("dg", "create", "a0/pd11", "a0/pd12", "--raid", "1", "--name", "group")
        made = []
        for name in ("first", "second"):
            run = self.do("vd", "create", "--dg", "name:group", "--size", "10GiB", "--name", name,
                          "--init", "none", "-o", "json")
            made.append(json.loads(run.stdout)["items"][0]["address"])
        # Between the first and the second there is nothing; behind the second all the rest.
        self.assertIn("resulting size: 10 GiB", self.lines("vd", "modify", made[0], "--size", "max"))
        run = self.run_words("vd", "modify", made[0], "--size", "30GiB", "--dry-run")
        self.assertEqual(run.returncode, 1)
        self.assertIn("--size: 30GiB is more than the most there, 10 GiB (what is free behind it on its "
                      "disks counts, not all that its disk group has left)", run.stderr)
        (said,) = [each for each in self.lines("vd", "modify", made[1], "--size", "max", "--bytes")
                   if each.startswith("resulting size: ")]
        self.do("vd", "modify", made[1], "--size", "max")
        self.assertEqual(self.run_words("vd", "list", made[1], "--columns", "size_bytes", "--no-header",
                                        "--bytes").stdout.strip(), said.removeprefix("resulting size: "))

    def test_a_virtual_disk_cannot_become_smaller(self):
        self.assertIn("this would be refused: it has 768 GiB, and this controller makes none smaller",
                      self.lines("vd", "modify", "a0/vd0", "--size", "1GiB", code=1))

    def test_the_size_is_what_the_controller_makes_of_it(self):
        for round_, size in ((), "10 GiB"), (("--round", "10_gib"), "10 GiB"):
            words = ("vd", "create", "a1/pd3", "a1/pd4", "a1/pd5", "a1/pd6", "--raid", "5", "--size",
                     "15GiB" if round_ else "10GiB", "--init", "none", *round_)
            run = self.run_words(*words, "--dry-run", "-o", "json")
            planned = json.loads(run.stdout)["items"][0]["size_bytes"]
            self.do(*words)
            shown = self.run_words("vd", "show", "a1/vd1", "-o", "json")
            self.assertEqual(json.loads(shown.stdout)["items"][0]["size_bytes"], planned)
            self.assertIn("resulting size: " + size, self.run_words(*words, "--dry-run").stdout)
            self.do("vd", "delete", "a1/vd1")

    def test_quick_creation_tells_disks_level_and_size(self):
        self.do("disk", "spare", "a1/pd2")  # the one with a boot record
        said = self.lines("vd", "quick-create", "--adapter", "1")
        run = self.run_words("vd", "quick-create", "--adapter", "1", "--yes")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        run = self.run_words("vd", "list", "a1/vd1", "-o", "json", "--bytes")
        (made,) = json.loads(run.stdout)["items"]
        self.assertIn("disks: " + ", ".join(made["disks"]), said)
        level = made["level"] if isinstance(made["level"], str) else made["level"]["name"]
        self.assertIn("level: RAID " + level.removeprefix("raid"), said)
        (size,) = [each for each in self.lines("vd", "quick-create", "--adapter", "1", "--bytes", code=1)
                   if each.startswith("this would be refused: ")]
        self.assertEqual(size, "this would be refused: no disk of a1 is free")

    def test_quick_creation_does_not_guess_what_holds_an_operating_system(self):
        said = self.lines("vd", "quick-create", "--adapter", "1")
        self.assertIn("taken unless they hold an operating system, which is not known: a1/pd2, with "
                      "all their data", said)
        self.assertIn("so the level and the size are not known", said)

    def test_a_new_virtual_disk_tells_what_it_will_survive(self):
        self.assertIn("NEW_VD will survive 1 failed disk",
                      self.lines("vd", "create", "a1/pd3", "a1/pd4", "a1/pd5", "--raid", "5"))
        self.assertIn("a virtual disk on it will survive 1 failed disk",
                      self.lines("dg", "create", "a0/pd13", "a0/pd14", "--raid", "1"))

    def test_documents_hold_effects_and_refusals(self):
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        run = self.run_words("disk", "set", "a1/pd1", "--state", "offline", "--dry-run", "-o", "json")
        self.assertEqual(run.returncode, 1)
        (item,) = json.loads(run.stdout)["items"]
        self.assertEqual(item["refusals"],
                         ["a1/vd0 (MIRROR) could not be used any more; --force does it all the same"])
        self.assertIn("a1/vd0 (MIRROR) goes offline, all of it: it survives no failed disk now",
                      item["effects"])


    def test_a_setting_that_keeps_spares_away_says_so(self):
        self.do("disk", "spare", "a1/pd3")
        expected = "for a lost disk of a1/vd0 (MIRROR) steps in: a1/pd3 now, no spare afterwards"
        self.assertIn(expected, self.lines("adapter", "set", "a1", "--auto-rebuild", "off"))
        said = self.lines("vd", "set", "a1/vd0", "--auto-rebuild", "off")
        self.assertIn(expected, said)
        self.assertIn("automatic rebuild: on -> off", said)

    def test_what_an_abort_leaves_is_told(self):
        self.machine.hxsimctl("disk", "fail", "a0/pd0")
        said = self.lines("task", "abort", "a0/vd0")
        self.assertIn("ended: rebuild", said)
        self.assertIn("what is lost stays lost: its redundancy does not come back", said)

    def test_without_its_battery_a_write_back_cache_is_not_safe(self):
        self.do("vd", "set", "a0/vd0", "--cache", "write_back")
        for words in (("battery", "relearn", "a0"), ("battery", "set", "a0", "--use", "off"),
                      ("battery", "power", "a0", "--action", "discharge")):
            self.assertTrue(any(each.startswith("without a charged battery the write-back cache of ")
                                and "a0/vd0" in each for each in self.lines(*words)), words)
        self.assertFalse(any("write-back" in each for each in
                             self.lines("battery", "power", "a0", "--action", "charge")))


class Refusals(PlanCase):
    def test_blanks_around_a_name_are_refused_and_not_dropped(self):
        for name in (" data", "data ", " "):
            run = self.run_words("vd", "set", "a1/vd0", "--name", name, "--yes")
            self.assertEqual((run.stderr, run.returncode),
                             (f'vexorctl: --name: "{name}" begins or ends with a blank, which the library '
                              "drops (see vexorctl vd set --help)\n", 2))
        self.do("vd", "set", "a1/vd0", "--name", "a  b")
        self.assertEqual(json.loads(self.run_words("vd", "list", "a1/vd0", "-o", "json").stdout)
                         ["items"][0]["name"], "a  b")

    def test_help_tells_the_rules_of_the_levels(self):
        for noun in ("vd", "dg"):
            said = " ".join(self.run_words(noun, "create", "--help").stdout.split())
            self.assertIn("RAID 0 takes 1 disk or more, RAID 1 exactly 2, RAID 1E an odd number from 3, "
                          "RAID 5 and 6 take 3 or more, RAID 10 an even number from 4, RAID 50 and 60 "
                          "legs of 3 or more each", said)

    def test_a_check_of_what_was_never_initialised_says_so(self):
        self.do("vd", "create", "a1/pd3", "a1/pd4", "--raid", "1", "--init", "none")
        run = self.run_words("task", "start", "a1/vd1", "--kind", "check", "--yes")
        self.assertEqual(run.returncode, 1)
        self.assertIn("it is optimal, so it has not been initialised: see vexorctl task start a1/vd1 "
                      "--kind init-background", run.stderr)
        self.machine.hxsimctl("disk", "fail", "a1/pd3")
        run = self.run_words("task", "start", "a1/vd1", "--kind", "check", "--yes")
        self.assertEqual(run.returncode, 1)
        self.assertNotIn("initialised", run.stderr)

    def test_a_rebuild_tells_what_it_restores(self):
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        said = self.lines("task", "start", "a1/vd0", "--kind", "rebuild", "--disk", "a1/pd3")
        self.assertIn("what is on a1/pd3 will be lost", said)
        self.assertIn("a1/vd0 (MIRROR) survives no failed disk now, 1 failed disk afterwards", said)


class PlanFiles(PlanCase):
    def plan(self, *words, name="plan.json"):
        run = self.run_words(*words, "--plan", name)
        self.assertEqual((run.stderr, run.returncode), ("", 0), words)
        return json.loads((self.root / name).read_text())

    def write(self, document, name="plan.json"):
        text = document if isinstance(document, str) else json.dumps(document)
        (self.root / name).write_text(text)

    def refused(self, code, complaint, *words):
        """apply changes nothing."""
        before = self.machine_now()
        run = self.run_words("apply", "plan.json", *(words or ("--yes",)))
        self.assertEqual(run.returncode, code, (run.stderr, run.stdout))
        self.assertIn(complaint, run.stderr)
        self.assertEqual(self.machine_now(), before)
        return run

    def test_a_plan_is_a_document_of_its_schema_and_changes_nothing(self):
        before = self.machine_now()
        run = self.run_words("vd", "delete", "a1/vd0", "--plan", "first.json")
        self.assertTrue(run.stdout.endswith(
            "The plan is in first.json; vexorctl apply carries it out.\n"), run.stdout)
        document = self.plan("vd", "delete", "a1/vd0")
        self.assertEqual(self.machine_now(), before)
        schema(PLAN_SCHEMA).validate(document)
        self.assertEqual(document["command"], ["vd", "delete", "--", "a1/vd0"])
        self.assertIn("all data on it will be lost", document["effects"])
        self.assertEqual({each["object"] for each in document["objects"]},
                         {"a1", "a1/vd0", "a1/pd0", "a1/pd1"})
        facts = {each["fact"]: each["value"] for each in document["objects"][-1]["facts"]}
        self.assertEqual(facts["name"], '"MIRROR"')
        self.assertEqual(len(document["functions"]), 1)

    def test_apply_does_what_was_planned(self):
        self.plan("vd", "delete", "a1/vd0")
        run = self.run_words("apply", "plan.json", "--yes", "-o", "json")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        (item,) = json.loads(run.stdout)["items"]
        self.assertEqual((item["action"], item["address"]), ("vd delete", "a1/vd0"))
        self.assertEqual(self.run_words("vd", "list", "a1", "--no-header").stdout, "")
        self.refused(8, "a1/vd0: there is no such virtual disk")

    def test_apply_shows_the_plan_and_asks(self):
        self.plan("adapter", "set", "a0", "--rebuild-rate", "80")
        said, code = self.terminal(["apply", "plan.json"], "no")
        self.assertEqual(code, 8, said)
        self.assertIn(b"Planned on ", said)
        self.assertIn(b"Type apply to go on: ", said)
        self.plan("vd", "delete", "a1/vd0", name="other.json")
        said, code = self.terminal(["apply", "other.json"], "MIRROR")
        self.assertEqual(code, 0, said)

    def test_dry_run_tells_whether_it_still_holds(self):
        self.plan("vd", "delete", "a1/vd0")
        before = self.machine_now()
        run = self.run_words("apply", "plan.json", "--dry-run")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertIn("Delete virtual disk a1/vd0 (MIRROR", run.stdout)
        self.assertEqual(self.machine_now(), before)
        self.do("vd", "set", "a1/vd0", "--name", "OTHER")
        self.refused(8, 'a1/vd0: its name was "MIRROR" and is "OTHER"', "--dry-run")

    def test_what_has_changed_since_is_named(self):
        self.plan("vd", "delete", "a1/vd0")
        self.do("vd", "delete", "a1/vd0")
        self.do("vd", "create", "a1/pd0", "a1/pd1", "--raid", "1", "--name", "OTHER", "--init", "none")
        self.refused(8, 'a1/vd0: its name was "MIRROR" and is "OTHER"')

    def test_a_disk_of_the_same_number_is_not_the_same(self):
        self.plan("disk", "wipe", "a0/pd12")
        self.machine.hxsimctl("disk", "replace", "a0/pd12")
        self.refused(8, "a0/pd12: its serial number was ")

    def test_disks_that_were_picked_are_not_picked_again(self):
        document = self.plan("vd", "create", "--adapter", "1", "--raid", "1", "--disks", "2")
        picked = [each["object"] for each in document["objects"] if "/pd" in each["object"]]
        self.assertEqual(len(picked), 2)
        self.do("disk", "spare", picked[0])
        run = self.refused(8, f"{picked[0]}: its state was free and is global_spare")
        self.assertNotIn("picking again", run.stderr)

    def test_effects_that_would_be_others_are_refused(self):
        self.plan("disk", "spare", "a1/pd3")
        self.do("adapter", "set", "a1", "--auto-rebuild", "off")
        self.refused(8, "not what the plan was made for: ")

    def test_a_plan_of_another_machine_is_refused(self):
        document = self.plan("vd", "delete", "a1/vd0")
        self.write({**document, "host": "elsewhere"})
        self.refused(8, "it was made on elsewhere, and this is ")

    def test_a_plan_of_another_controller_is_refused(self):
        self.plan("adapter", "mute", "a0")
        self.machine = vexorctl_machine.Machine(vexorctl_machine.PROGRAMS, self.machine.state, "small")
        self.refused(8, "a0: its serial number was ")

    def test_a_size_that_was_edited_is_named(self):
        document = self.plan("vd", "create", "--adapter", "1", "--raid", "5", "--disks", "3",
                             "--size", "10GiB", "--name", "sized")
        (self.root / "plan.json").write_text(json.dumps({**document, "size_bytes": 512}))
        run = self.run_words("apply", "plan.json", "--yes")
        self.assertEqual((run.returncode, run.stderr), (8,
            "vexorctl: not what the plan was made for: the resulting size would be 10737418240 "
            "bytes, and in the plan it is 512 bytes; nothing was done\n"))

    def test_a_file_that_was_edited_is_refused(self):
        document = self.plan("vd", "delete", "a1/vd0")
        edits = (
            ({"functions": [document["functions"][0].replace("<LD_ID>0<", "<LD_ID>1<")]},
             8, "other commands would be sent: "),
            ({"effects": ["nothing is lost"]}, 8, "its effects would be others: "),
            ({"what": "Rename a1/vd0"}, 8, "its effects would be others: "),
            ({"size_bytes": 1024}, 8, "the resulting size would be not told, and in the plan it is 1024 bytes; nothing"),
            ({"objects": []}, 8, "is concerned, too"),
            ({"objects": [{**each, "facts": []} for each in document["objects"]]},
             8, "is not what this vexorctl reads"),
            ({"command": ["vd", "delete", "--", "a0/vd0"]}, 8, "a1/vd0 is not there, or not concerned, any more"),
            ({"command": ["vd", "list"]}, 2, "holds no command that vexorctl plans"),
            ({"command": ["apply", "plan.json"]}, 2, "holds no command that vexorctl plans"),
            ({"command": ["call", "HX_LD_Delete"]}, 2, "holds no command that vexorctl plans"),
            ({"command": ["vd", "delete", "--yes", "--", "a1/vd0"]}, 2,
             "holds no command that vexorctl plans"),
            ({"command": ["vd", "delete", "--nonsense", "--", "a1/vd0"]}, 2,
             "holds no command that vexorctl plans"),
            ({"command": []}, 2, "plan.json names no command"),
            ({"command": "vd delete a1/vd0"}, 2, '"command" has to be a list'),
            ({"command": [1]}, 2, '"command" has to be a list of texts'),
            ({"schema": "vexorctl-plan/2"}, 2, "is no plan of the form vexorctl-plan/1"),
            ({"extra": 1}, 2, 'has the key "extra", which is not known'),
            ({"size_bytes": -1}, 2, '"size_bytes" has to be a whole number or null'),
            ({"host": None}, 2, '"host" has to be a text'),
        )
        for edit, code, complaint in edits:
            with self.subTest(edit=edit):
                self.write({**document, **edit})
                self.refused(code, complaint)
        del document["effects"]
        self.write(document)
        self.refused(2, 'lacks the key "effects"')

    def test_a_file_that_is_no_plan_is_refused(self):
        text = json.dumps(self.plan("vd", "delete", "a1/vd0"))
        for broken, complaint in (
                (text[:-40], "is not JSON: line 1"),
                ("", "is not JSON: line 1"),
                ("[]", "is no plan of vexorctl"),
                ("{}", "is no plan of vexorctl"),
                ('{"effects": ["harmless"], ' + text[1:], 'has the key "effects" twice'),
                ("[" * 100000, "is nested too deeply"),
                (" " * (5 << 20), "File too large")):
            with self.subTest(broken=broken[:40]):
                self.write(broken)
                self.refused(2, complaint)
        (self.root / "plan.json").unlink()
        os.mkfifo(self.root / "plan.json")
        self.refused(2, "plan.json: ")

    def test_a_file_that_is_there_is_kept(self):
        self.plan("vd", "delete", "a1/vd0")
        before = (self.root / "plan.json").read_text()
        run = self.run_words("vd", "delete", "a0/vd0", "--plan", "plan.json")
        self.assertEqual((run.stderr, run.returncode),
                         ("vexorctl: plan.json: File exists; the plan was not written\n", 2))
        self.assertEqual((self.root / "plan.json").read_text(), before)
        self.assertEqual(sorted(each.name for each in self.root.glob("*plan*")), ["plan.json"])

    def test_what_would_be_refused_is_not_written(self):
        run = self.run_words("disk", "wipe", "a1/pd1", "--plan", "plan.json")
        self.assertEqual(run.returncode, 1)
        self.assertIn("this would be refused: ", run.stdout)
        self.assertFalse((self.root / "plan.json").exists())

    def test_the_second_look_is_taken_too(self):
        self.plan("vd", "delete", "a1/vd0")

        def rename(_):
            self.do("vd", "set", "a1/vd0", "--name", "OTHER")

        said, code = self.terminal(["apply", "plan.json"], "MIRROR", rename)
        self.assertEqual(code, 8)
        self.assertIn(b'a1/vd0: its name was "MIRROR" and is "OTHER"', said)

    def test_texts_of_the_file_do_not_reach_the_terminal_as_they_are(self):
        document = self.plan("vd", "delete", "a1/vd0")
        self.write({**document, "host": "x\x1b[2Jy"})
        run = self.refused(8, "it was made on x")
        self.assertNotIn("\x1b", run.stderr)


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL")

#!/usr/bin/env python3
"""What vexorctl's documents tell of redundancy, spares, places, lights and activities, over a fresh virtual
controller.

usage: vexorctl_facts_test.py VEXORCTL [TEST]...
"""

import json

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, schema

VEXORCTL = ""


class Facts(VexorctlCase):
    def items(self, *words):
        run = self.run_words(*words, "-o", "json")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        return document["items"]

    def item(self, *words):
        (item,) = self.items(*words)
        return item

    def redundancy(self, disk):
        item = self.item("vd", "show", disk)
        return item["redundancy"], item["failures_tolerated"]

    def change(self, *words):
        run = self.run_words(*words, "--yes")
        self.assertEqual(run.returncode, 0, (words, run.stderr))

    def test_a_virtual_disk_tells_what_it_still_survives(self):
        self.change("adapter", "set", "a0", "--auto-rebuild", "off")
        self.assertEqual(self.redundancy("a0/vd2"), ("full", 2))
        for failed, told in (("a0/pd4", ("reduced", 1)), ("a0/pd5", ("exhausted", 0)),
                             ("a0/pd6", ("lost", 0))):
            self.machine.hxsimctl("disk", "fail", failed)
            self.assertEqual(self.redundancy("a0/vd2"), told)

    def test_a_level_without_redundancy_has_none_to_lose(self):
        self.change("vd", "create", "a0/pd12", "--raid", "0", "--size", "10GiB", "--name", "fast")
        self.assertEqual(self.redundancy("name:fast"), ("none", 0))

    def test_members_stand_in_their_order_with_their_state_and_pair(self):
        self.assertEqual(self.item("vd", "show", "a1/vd0")["members"], [
            {"position": 0, "disk": "a1/pd0", "state": "optimal", "leg": 0},
            {"position": 1, "disk": "a1/pd1", "state": "optimal", "leg": 0}])
        self.machine.hxsimctl("disk", "fail", "a0/pd4")
        self.machine.hxsimctl("clock", "advance", "1m")
        first, second = self.item("vd", "show", "a0/vd2")["members"][:2]
        self.assertEqual(first, {"position": 0, "disk": "a0/pd9", "state": "rebuilding",
                                 "leg": None})  # the spare
        self.assertEqual(second, {"position": 1, "disk": "a0/pd5", "state": "optimal", "leg": None})

    def test_mirrored_pairs_are_told_apart(self):
        self.change("vd", "create", "a1/pd3", "a1/pd4", "a1/pd5", "a1/pd6", "--raid", "10",
                    "--size", "10GiB", "--name", "pairs")
        members = self.item("vd", "show", "name:pairs")["members"]
        self.assertEqual([member["leg"] for member in members], [0, 0, 1, 1])

    def test_a_spare_tells_where_it_fits_and_why_not_elsewhere(self):
        self.assertEqual(
            [(each["vd"], each["fit"]) for each in self.item("disk", "show", "a0/pd10")["spare_for"]],
            [("a0/vd0", "fits"), ("a0/vd2", "other_group")])
        self.assertIsNone(self.item("disk", "show", "a0/pd11")["spare_for"])
        self.change("vd", "delete", "a0/vd2")
        self.change("vd", "create", "a0/pd4", "a0/pd5", "--raid", "1", "--name", "large")
        self.change("disk", "spare", "a0/pd11")
        fits = {each["vd"]: each for each in self.item("disk", "show", "a0/pd11")["spare_for"]}
        large = self.item("vd", "show", "name:large")["address"]
        self.assertEqual(fits[large]["fit"], "too_small")
        self.assertGreater(fits[large]["needed_bytes"],
                           self.item("disk", "show", "a0/pd11")["size_bytes"])

    def test_a_failed_spare_fits_nowhere(self):
        self.machine.hxsimctl("disk", "fail", "a0/pd9")
        fits = self.item("disk", "show", "a0/pd9")["spare_for"]
        self.assertEqual({each["fit"] for each in fits}, {"broken"})

    def test_a_copybacks_target_is_not_rebuilding(self):
        self.change("adapter", "set", "a0", "--copyback", "on")
        self.machine.hxsimctl("disk", "fail", "a0/pd4")
        self.machine.hxsimctl("clock", "advance", "1m")
        self.assertEqual(self.item("disk", "show", "a0/pd9")["state"], "rebuilding")
        self.machine.hxsimctl("clock", "advance", "30d")
        self.machine.hxsimctl("disk", "replace", "a0/pd4")
        self.machine.hxsimctl("clock", "advance", "1m")
        self.assertEqual(self.item("task", "list")["activity"]["name"], "copyback")
        self.assertEqual(self.item("disk", "show", "a0/pd4")["state"], "copyback_target")
        self.assertEqual(self.redundancy("a0/vd2"), ("full", 2))

    def test_a_task_tells_its_speed_its_end_and_what_it_is_for(self):
        self.machine.wait_for_a_whole_second()
        self.machine.hxsimctl("disk", "fail", "a0/pd1")
        self.machine.hxsimctl("clock", "advance", "20m")
        # Nobody has collected the events: neither 0 nor soon.
        task = self.item("task", "list")
        for key in ("start_time", "seconds_left", "rate_bytes_per_second"):
            self.assertIsNone(task[key])
        self.assertEqual((task["purpose"], task["targets"]),
                         ("restores what is lost to a0/pd10", ["a0/pd10"]))
        self.collect()
        task = self.item("task", "list")
        # 20 % of 256 GiB in 748 seconds, and 68 % are left.
        self.assertEqual(task["seconds_left"], 2544)
        self.assertAlmostEqual(task["rate_bytes_per_second"], (256 << 30) / 5 / 748, delta=100000)
        disk = self.item("vd", "show", "a0/vd0")
        self.assertEqual((disk["activity_seconds_left"], disk["activity_rate_bytes_per_second"]),
                         (task["seconds_left"], task["rate_bytes_per_second"]))
        self.change("task", "pause", "a0/vd0")
        for key, document in (("seconds_left", self.item("task", "list")),
                              ("activity_seconds_left", self.item("vd", "show", "a0/vd0"))):
            self.assertIsNone(document[key])
        self.assertIn(" paused       32%     -     -\n", self.run_words("task", "list").stdout)

    def test_what_waits_is_paused_or_has_failed_says_why_and_what_now(self):
        def told():
            return [(each["address"], each["activity"]["name"], each["standing"], each["cause"],
                     each["next_step"]) for each in self.items("task", "list")]

        self.machine.hxsimctl("disk", "fail", "a0/pd1")  # the spare a0/pd10 steps in
        self.change("task", "start", "a0/pd0", "--kind", "media-patrol")
        self.assertEqual(told(), [
            ("a0/vd0", "rebuild", "running", None, None),
            ("a0/pd0", "media_patrol", "queued", "the rebuild of a0/vd0 runs on the same disks",
             "Wait: it goes on by itself")])
        self.change("task", "pause", "a0/vd0")
        self.assertEqual(told()[0], ("a0/vd0", "rebuild", "paused", "somebody has paused it",
                                     "vexorctl task resume a0/vd0"))
        table = self.run_words("task", "list").stdout.splitlines()
        self.assertIn("a0/vd0 rebuild: somebody has paused it", table)
        self.assertIn("  -> vexorctl task resume a0/vd0", table)
        self.change("task", "resume", "a0/vd0")
        # Its source is lost, too.
        self.machine.hxsimctl("disk", "fail", "a0/pd0")
        # Nobody has collected the events: that it has failed is not known.
        self.assertEqual(self.items("task", "list"), [])
        self.collect()
        failed = told()
        self.assertEqual(failed[0], (
            "a0/vd0", "rebuild", "failed", "a0/pd0 failed", "vexorctl risk a0/vd0"))  # offline
        self.assertEqual(failed[1], ("a0/pd0", "media_patrol", "failed", "a0/pd0 failed",
                                     "Replace a0/pd0"))
        item = self.items("task", "list")[0]
        self.assertIsNone(item["state"])
        self.assertIsNotNone(item["start_time"])
        self.assertRegex(self.run_words("task", "list").stdout,
                         r"a0/vd0 +\S+ +rebuild +failed +\S+ +- +-\n")
        # What failed on a disk is past when another disk is there, and on a virtual disk when that is gone.
        self.machine.hxsimctl("disk", "replace", "a0/pd0")
        self.change("vd", "delete", "a0/vd0")
        self.collect()
        self.assertEqual(self.items("task", "list"), [])
        # The disk that is written is lost.
        self.machine.hxsimctl("disk", "fail", "a0/pd4")  # the spare a0/pd9 steps in
        self.machine.hxsimctl("disk", "fail", "a0/pd9")
        self.collect()
        self.assertEqual(told(), [(
            "a0/vd2", "rebuild", "failed", "a0/pd9 failed",
            "Replace a0/pd9, then vexorctl task start a0/vd2 --kind rebuild")])

    def test_a_groups_migration_has_the_pace_that_its_virtual_disks_tell(self):
        self.change("dg", "migrate", "a0/dg0", "--raid", "6", "--to",
                    "a0/pd0,a0/pd1,a0/pd2,a0/pd3,a0/pd11")
        self.machine.hxsimctl("clock", "advance", "40m")
        self.collect()
        task = self.item("task", "list")
        self.assertEqual(task["address"], "a0/dg0")
        self.assertGreater(task["seconds_left"], 0)
        self.assertGreater(task["rate_bytes_per_second"], 1 << 20)
        self.assertEqual(task["targets"], [])
        self.machine.hxsimctl("clock", "advance", f"{task['seconds_left'] + 120}s")
        self.assertEqual(self.items("task", "list"), [])

    def test_whether_a_virtual_disk_was_initialised_is_told_by_the_events(self):
        # What was there when the adapter was found may have been initialised before.
        self.machine.hxsimctl("clock", "advance", "1m")
        self.change("vd", "create", "a0/pd13", "a0/pd14", "--raid", "1", "--name", "never",
                    "--init", "none")
        self.change("vd", "create", "a0/pd16", "--raid", "0", "--name", "plain")
        self.assertIsNone(self.item("vd", "show", "name:never")["initialised"])
        self.collect()
        self.assertIs(self.item("vd", "show", "name:never")["initialised"], False)
        self.assertIsNone(self.item("vd", "show", "name:plain")["initialised"])
        table = self.run_words("vd", "list", "--columns", "name,initialised", "--no-header").stdout
        self.assertEqual(table.split(), ["DATABASE", "?", "never", "no", "ARCHIVE", "?", "plain",
                                         "-", "MIRROR", "?"])
        address = self.item("vd", "show", "name:never")["address"]
        self.change("task", "start", address, "--kind", "init-background")
        self.collect()
        self.assertIs(self.item("vd", "show", "name:never")["initialised"], False)
        self.machine.hxsimctl("clock", "advance", "30d")
        self.collect()
        self.assertIs(self.item("vd", "show", "name:never")["initialised"], True)

    def test_every_object_tells_how_well_it_is(self):
        def health(*words):
            return self.item(*words)["health"]

        self.assertEqual({health("disk", "show", "a0/pd1"), health("vd", "show", "a0/vd0"),
                          health("enclosure", "show", "a0/enc0"), health("battery", "show", "a0")},
                         {"ok"})
        self.machine.hxsimctl("disk", "fail", "a0/pd1")
        path = self.root / "story"
        path.write_text("psu a0/enc0/el0 fail\n")
        self.machine.hxsimctl("scenario", "run", path)
        self.assertEqual(health("disk", "show", "a0/pd1"), "warning")
        self.assertEqual(health("disk", "show", "a0/pd2"), "ok")
        self.assertIn(health("vd", "show", "a0/vd0"), ("warning", "critical"))
        self.assertEqual(health("vd", "show", "a0/vd2"), "ok")
        self.assertEqual(health("enclosure", "show", "a0/enc0"), "critical")

    def test_a_groups_migration_has_progress(self):
        self.change("dg", "migrate", "a0/dg0", "--raid", "6", "--to",
                    "a0/pd0,a0/pd1,a0/pd2,a0/pd3,a0/pd11")
        self.assertEqual(self.item("task", "list")["progress_ratio"], 0)
        self.machine.hxsimctl("clock", "advance", "40m")
        (task,) = self.items("task", "list")
        self.assertEqual(task["address"], "a0/dg0")
        self.assertGreater(task["progress_ratio"], 0)
        self.assertEqual(self.item("dg", "show", "a0/dg0")["progress_ratio"],
                         task["progress_ratio"])
        disk = self.item("disk", "show", "a0/pd0")
        self.assertEqual((disk["activity"]["name"], disk["progress_ratio"]),
                         ("migration", task["progress_ratio"]))
        self.assertEqual(self.item("disk", "show", "a0/pd10")["activity"]["name"], "none")
        self.machine.hxsimctl("clock", "advance", "30d")
        self.assertIsNone(self.item("dg", "show", "a0/dg0")["progress_ratio"])

    def test_a_disk_tells_its_bay_and_whether_its_light_is_on(self):
        disk = self.item("disk", "show", "a0/pd9")
        self.assertEqual((disk["enclosure"], disk["slot"], disk["locate_light"]),
                         ("a0/enc0", 13, False))
        self.change("disk", "locate", "a0/pd9")
        self.assertIs(self.item("disk", "show", "a0/pd9")["locate_light"], True)
        disk = self.item("disk", "show", "a1/pd0")
        self.assertEqual((disk["enclosure"], disk["slot"]), (None, None))

    def test_an_adapter_tells_its_stripe_sizes_and_how_well_it_is(self):
        adapter = self.item("adapter", "show", "a1")
        self.assertEqual(adapter["stripe_sizes"], [16 << 10, 32 << 10, 64 << 10])
        self.assertEqual(adapter["health"], "ok")
        self.assertIn("16 KiB, 32 KiB, 64 KiB", self.run_words("adapter", "show", "a1").stdout)


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL")

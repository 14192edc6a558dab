#!/usr/bin/env python3
"""Every verb of vexorctl that changes something, carried out over a fresh virtual controller: the
commands that it would send, what becomes of the machine, and a refusal.

usage: vexorctl_changes_test.py VEXORCTL [TEST]...
"""

import csv
import io
import json
import os
import pathlib
import re
import resource
import signal
import subprocess
import time
import unittest

import vexorctl_machine
from vexorctl_machine import VexorctlCase


def function(name, *fields):
    """The text of a command; each field is "Name=value"."""
    children = "".join("<{0}>{1}</{0}>".format(*field.split("=", 1)) for field in fields)
    return f'<{name} type="function">{children}</{name}>'


class Changes(VexorctlCase):
    def plan(self, *words):
        """The commands that --dry-run shows; nothing is changed."""
        run = self.run_words(*words, "--dry-run")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        return [line for line in run.stdout.splitlines() if line.startswith("<")]

    def do(self, *words):
        """Carries it out and returns the printed (address, task); "" for one that there is not."""
        run = self.run_words(*words, "--yes", "-o", "json")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        item = json.loads(run.stdout)["items"][0]
        return item["address"] or "", item["task"] or ""

    def refused(self, code, name, *words):
        """It ends with the exit code 1; the document tells the controller's code."""
        run = self.run_words(*words, "--yes", "-o", "json")
        self.assertEqual(run.returncode, 1, run.stderr)
        document = json.loads(run.stdout)
        self.assertEqual(document["items"], [])
        self.assertEqual((document["errors"][0]["code"], document["errors"][0]["name"]),
                         (code, name))
        self.assertEqual(run.stderr, f"vexorctl: {document['errors'][0]['message']}\n")
        return run.stderr

    def rows(self, command, columns):
        run = self.run_words(*command.split(), "--columns", columns, "--no-header", "-o", "csv")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        return [",".join(cell.replace(",", " ") for cell in row)
                for row in csv.reader(io.StringIO(run.stdout))]


class Adapter(Changes):
    def test_set_changes_what_is_named_and_keeps_the_rest(self):
        before = self.rows("adapter show a0", "all")[0].split(",")
        (command,) = self.plan("adapter", "set", "a0", "--rebuild-rate", "80", "--alarm", "off")
        self.assertTrue(command.startswith(
            '<HX_Adapter_SetConfig type="function"><AdapterID>0</AdapterID>'), command)
        self.assertIn("<AlarmOn>0</AlarmOn>", command)
        self.assertIn("<RebuildRate>80</RebuildRate>", command)
        self.assertEqual(self.do("adapter", "set", "a0", "--rebuild-rate", "80", "--alarm", "off"),
                         ("a0", ""))
        after = self.rows("adapter show a0", "all")[0].split(",")
        changed = [(old, new) for old, new in zip(before, after) if old != new]
        self.assertEqual(sorted(changed), [("70", "80"), ("true", "false")])

    def test_set_of_a_rate_that_cannot_be_is_wrong_use(self):
        run = self.run_words("adapter", "set", "a0", "--rebuild-rate", "101")
        self.assertEqual(
            (run.stderr, run.returncode),
            ('vexorctl: --rebuild-rate takes a whole number up to 100, not "101" '
             "(see vexorctl adapter set --help)\n", 2))

    def test_mute_silences_the_alarm(self):
        self.machine.hxsimctl("psu", "a0/enc0/el0", "fail")
        self.assertIn("alarm sounding", self.machine.hxsimctl("show"))
        self.assertEqual(self.plan("adapter", "mute", "a0"),
                         [function("HX_AdapterMute", "AdapterID=0")])
        self.do("adapter", "mute", "a0")
        self.assertIn("alarm muted", self.machine.hxsimctl("show"))

    def test_mute_of_an_adapter_that_is_not_there(self):
        self.assertEqual(self.run_words("adapter", "mute", "a5").returncode, 3)


class Disk(Changes):
    def test_locate_switches_the_light(self):
        self.assertEqual(self.plan("disk", "locate", "a0/pd3"), [
            function("HX_LocateArrayDevice", "AdapterID=0", "deviceType=4", "deviceId=3",
                     "ledStatus=1")])
        self.do("disk", "locate", "serial:6TW0D304")
        self.assertEqual(self.rows("disk list a0/pd3", "locate_light_code"), ["1"])
        self.do("disk", "locate", "a0/pd3", "--off")
        self.assertEqual(self.rows("disk list a0/pd3", "locate_light_code"), ["0"])

    def test_locate_of_what_is_no_disk_is_wrong_use(self):
        run = self.run_words("disk", "locate", "a0/enc0")
        self.assertEqual(
            (run.stderr, run.returncode),
            ("vexorctl: a0/enc0 is the address of an enclosure; say with --slot which disk "
             "(see vexorctl disk locate --help)\n", 2))

    def test_spare_and_unspare(self):
        self.assertEqual(self.plan("disk", "spare", "a0/pd11"),
                         [function("HX_PD_FreeHD2GlobalSpare", "AdapterID=0", "HD_ID=11")])
        self.do("disk", "spare", "a0/pd11")
        self.assertEqual(self.rows("disk list a0/pd11", "state"), ["global_spare"])
        self.refused(249, "no_change", "disk", "spare", "a0/pd11")
        self.assertEqual(self.plan("disk", "unspare", "a0/pd11"),
                         [function("HX_PD_Spare2FreeHD", "AdapterID=0", "HD_ID=11")])
        self.do("disk", "unspare", "a0/pd11")
        self.assertEqual(self.rows("disk list a0/pd11", "state"), ["free"])
        self.refused(232, "disk_not_spare", "disk", "unspare", "a0/pd11")

    def test_spare_for_one_disk_group(self):
        self.assertEqual(
            self.plan("disk", "spare", "a0/pd11", "--dg", "name:GROUP_A"),
            [function("HX_PD_FreeHD2DGSpare", "AdapterID=0", "HD_ID=11", "DG_ID=0")])
        self.do("disk", "spare", "a0/pd11", "--dg", "a0/dg0")
        self.assertEqual(self.rows("disk list a0/pd11", "state,dg"), ["group_spare,a0/dg0"])
        self.assertEqual(self.rows("dg list a0/dg0", "spares"), ["a0/pd10 a0/pd11"])

    def test_set_changes_state_and_settings(self):
        self.assertEqual(
            self.plan("disk", "set", "a0/pd0", "--state", "offline"),
            [function("HX_PD_SetHDStatus", "AdapterID=0", "HD_ID=0", "Action=2")])
        self.do("disk", "set", "a0/pd0", "--state", "offline")
        self.assertEqual(self.rows("disk list a0/pd0", "state"), ["offline"])
        self.do("disk", "set", "a0/pd12", "--write-cache", "off", "--smart", "off")
        self.assertEqual(self.rows("disk list a0/pd12", "write_cache,smart_on"), ["false,false"])
        self.refused(249, "no_change", "disk", "set", "a0/pd1", "--state", "online")

    def test_wipe_needs_force_where_virtual_disks_lie(self):
        run = self.run_words("disk", "wipe", "a0/pd1", "--dry-run")
        self.assertEqual((run.stderr, run.returncode), ("", 1))
        self.assertIn(function("HX_PD_WipeHDMDD", "AdapterID=0", "HD_ID=1", "Force=0"), run.stdout)
        self.refused(250, "holds_virtual_disks", "disk", "wipe", "a0/pd1")
        self.do("disk", "wipe", "a0/pd1", "--force")
        self.assertEqual(self.rows("vd list a0/vd0", "state"), ["degraded"])

    def test_wipe_shows_what_is_lost_and_asks_for_the_address(self):
        said, code = self.terminal(["disk", "wipe", "a0/pd1"], "a0/pd2")
        self.assertIn(b"Wipe the configuration off a0/pd1 (TW600S10, serial 6TW0D21F, 558.91 GiB, "
                      b"configured)", said)
        self.assertIn(b"what it holds of a0/vd0 will be lost", said)
        self.assertIn(b"Type a0/pd1 to go on: ", said)
        self.assertEqual(code, 8)


class VirtualDisk(Changes):
    def test_create_names_the_new_object_and_its_task(self):
        self.assertEqual(
            self.plan("vd", "create", "a1/pd3", "a1/pd4", "--raid", "1", "--size", "10GiB",
                      "--name", "data1", "--cache", "write_back,read_ahead", "--init",
                      "background"),
            [function("HX_LD_Create", "AdapterID=1", "RaidMode=1", "HDCount=2", "RoundingScheme=0",
                      "SubLDCount=0", "NumParityDisk=0", "StripeBlockSize=64", "CachePolicy=5",
                      "InitializationOption=2", "HDIDs=3 4", "Name=data1", "SectorCoefficient=1",
                      "Size=20971520")])
        self.assertEqual(self.do("vd", "create", "a1/pd3", "a1/pd4", "--raid", "1", "--size",
                                 "10GiB", "--name", "data1"), ("a1/vd1", "a1/vd1"))
        self.assertEqual(self.rows("vd list name:data1", "address,level,size_bytes,disks"),
                         ["a1/vd1,raid1,10737418240,a1/pd3 a1/pd4"])

    def test_create_without_initialisation_names_no_task(self):
        self.assertEqual(self.do("vd", "create", "a1/pd3", "a1/pd4", "--raid", "1", "--size",
                                 "10GiB", "--init", "none"), ("a1/vd1", ""))
        self.assertEqual(self.rows("task list", "address"), [])

    def test_create_takes_the_smallest_disks_that_suffice(self):
        for size, ids in (("10GiB", "11 12"), ("838GiB", "11 12"), ("1000GiB", "13 14"),
                          ("max", "13 14"), ("1%", "13 14")):
            with self.subTest(size=size):
                (command,) = self.plan("vd", "create", "--adapter", "0", "--raid", "1", "--disks",
                                       "2", "--size", size)
                self.assertIn(f"<HDIDs>{ids}</HDIDs>", command)
        (command,) = self.plan("vd", "create", "--adapter", "0", "--raid", "0", "--disks", "1",
                               "--size", "10GiB")
        self.assertIn("<HDIDs>16</HDIDs>", command)

    def test_a_number_of_disks_that_the_level_cannot_take_is_refused_with_its_rule(self):
        for raid, disks, rule in (
            ("1", 3, "RAID 1 takes exactly 2 disks; 3 were given"),
            ("5", 2, "RAID 5 takes 3 disks or more; 2 were given"),
            ("1e", 4, "RAID 1e takes an odd number of disks from 3; 4 were given"),
            ("10", 3, "RAID 10 takes an even number of disks from 4; 3 were given"),
            ("50", 5, "RAID 50 takes 2 legs of 3 disks or more each, all of the same number; "
                      "5 were given"),
        ):
            said = self.refused(223, "bad_disk_count", "vd", "create", "--adapter", "0", "--raid",
                                raid, "--disks", disks)
            self.assertIn(f"vexorctl: {rule} (a0/pd", said)

    def test_create_mixes_links_only_where_it_has_to(self):
        (command,) = self.plan("vd", "create", "--adapter", "0", "--raid", "0", "--disks", "3")
        self.assertIn("<HDIDs>16 13 14</HDIDs>", command)
        (command,) = self.plan("vd", "create", "--adapter", "0", "--raid", "0", "--disks", "5")
        self.assertIn("<HDIDs>16 11 12 13 14</HDIDs>", command)

    def test_create_explains_a_refusal_with_what_is_free_here_and_on_other_adapters(self):
        alternatives = (
            "; free on a1: a1/pd3, a1/pd4, a1/pd5, a1/pd6, a1/pd7 (465.73 GiB each), "
            "a1/pd2 (465.73 GiB, holds a boot record); "
            "free on a0: a0/pd11, a0/pd12 (838.33 GiB each) and 3 more; with room beside virtual "
            "disks on a0: 5 disks\n")
        said = self.refused(219, "bad_level", "vd", "create", "a1/pd3", "a1/pd4", "a1/pd5",
                            "a1/pd6", "--raid", "6")
        self.assertEqual(said, "vexorctl: RAID 6 over a1/pd3, a1/pd4, a1/pd5, a1/pd6: refused: The "
                               "adapter does not offer that RAID level. (bad_level, code 219)"
                               + alternatives)
        for words, reason in (
            (["--disks", "6"], "6 disks are needed and a1 has 5 free without a boot record"),
            (["--disks", "3", "--size", "1TiB"],
             "--size: no 3 free disks of a1 give 1TiB; the most is 931.46 GiB"),
        ):
            run = self.run_words("vd", "create", "--adapter", "1", "--raid", "5", *words)
            self.assertEqual((run.stderr, run.returncode),
                             (f"vexorctl: {reason}{alternatives}", 1))

    def test_create_over_an_operating_system_is_refused(self):
        self.refused(218, "holds_system", "vd", "create", "a1/pd2", "a1/pd3", "--raid", "1")

    def test_create_on_a_disk_group_takes_its_first_empty_slot(self):
        (command,) = self.plan("vd", "create", "--dg", "a0/dg0", "--size", "100GiB", "--name",
                               "data2")
        self.assertEqual(command, function(
            "HX_LD_Create_OnDG", "AdapterID=0", "DGID=0", "Name=data2", "StripeBlockSize=0",
            "Size=209715200", "RoundingScheme=0", "CachePolicy=4", "DGSlotNum=1",
            "InitializationOption=0", "SectorCoefficient=1"))
        self.assertEqual(self.do("vd", "create", "--dg", "name:GROUP_A", "--size", "100GiB",
                                 "--name", "data2"), ("a0/vd1", "a0/vd1"))
        self.assertEqual(self.rows("dg list", "vds"), ["a0/vd0 a0/vd1"])
        self.refused(239, "slot_taken", "vd", "create", "--dg", "a0/dg0", "--slot", "1", "--size",
                     "1GiB")

    def test_quick_create_leaves_the_choice_to_the_library(self):
        self.assertEqual(self.plan("vd", "quick-create", "--adapter", "0"),
                         [function("HX_LD_QuickCreate", "AdapterID=0", "Type=1")])
        self.assertEqual(self.do("vd", "quick-create", "--adapter", "0"), ("a0/vd1", "a0/vd1"))
        self.assertEqual(self.rows("vd list a0/vd1", "name,level,disk_count"), ["NEW_VD,raid6,5"])
        run = self.run_words("vd", "quick-create", "--adapter", "0", "--yes")
        self.assertEqual(run.returncode, 1)

    def test_quick_create_asks_for_the_adapter(self):
        said, code = self.terminal(["vd", "quick-create", "--adapter", "0"], "a0")
        self.assertIn(b"all free disks of the adapter are taken", said)
        self.assertEqual(code, 0)

    def test_delete_takes_the_boot_records_too_unless_they_are_kept(self):
        self.assertEqual(self.plan("vd", "delete", "a0/vd2", "--keep-boot-record"), [
            function("HX_LD_Delete", "AdapterID=0", "LD_ID=2", "deleteMBR=0")])
        self.assertEqual(self.do("vd", "delete", "name:ARCHIVE"), ("a0/vd2", ""))
        self.assertEqual(self.rows("vd list a0", "name"), ["DATABASE"])
        run = self.run_words("vd", "delete", "a0/vd2", "--yes")
        self.assertEqual((run.stderr, run.returncode),
                         ("vexorctl: a0/vd2: there is no such virtual disk\n", 3))

    def test_delete_goes_on_when_the_name_is_typed(self):
        said, code = self.terminal(["vd", "delete", "a0/vd2"], "ARCHIVE")
        self.assertIn(b"its disks: a0/pd4, a0/pd5, a0/pd6, a0/pd7, a0/pd8", said)
        self.assertEqual(code, 0)
        self.assertEqual(self.rows("vd list a0", "name"), ["DATABASE"])

    def test_set_keeps_what_is_not_named(self):
        self.assertEqual(
            self.plan("vd", "set", "a0/vd2", "--name", "OLD"),
            [function("HX_LD_SetConfig", "AdapterID=0", "LD_ID=2", "CacheMode=5", "AutoRebuildOn=1",
                      "Status=1", "LDID=2", "Name=OLD")])
        self.do("vd", "set", "a0/vd2", "--cache", "none", "--auto-rebuild", "off")
        self.assertEqual(self.rows("vd list a0/vd2", "name,cache,auto_rebuild"),
                         ["ARCHIVE,,false"])
        run = self.run_words("vd", "set", "a0/vd2", "--name", "0123456789ABCDEF")
        self.assertEqual(run.returncode, 2)

    def test_modify_keeps_the_cache(self):
        self.do("vd", "create", "--dg", "a0/dg0", "--size", "10GiB", "--name", "data2", "--init",
                "none")
        self.assertEqual(self.plan("vd", "modify", "a0/vd1", "--size", "20GiB", "--name", "more"), [
            function("HX_LD_Modify_OnDG", "AdapterID=0", "VDID=1", "DGID=0", "Name=more",
                     "RaidMode=5", "SubVDCount=0", "NumParityDisk=1", "StripeBlockSize=128",
                     "Size=41943040", "CachePolicy=4", "SectorCoefficient=1")])
        self.do("vd", "modify", "a0/vd1", "--size", "20GiB", "--name", "more")
        self.assertEqual(self.rows("vd list a0/vd1", "name,size_bytes,cache"),
                         ["more,21475098624,read_ahead"])
        self.refused(227, "too_small", "vd", "modify", "a0/vd1", "--size", "15GiB")

    def test_modify_in_the_plain_way_switches_the_cache_off(self):
        (command,) = self.plan("vd", "modify", "a0/vd0", "--name", "DB", "--plain")
        self.assertTrue(command.startswith('<HX_CreateOrModify_VD type="function">'), command)
        self.do("vd", "modify", "a0/vd0", "--name", "DB", "--plain")
        self.assertEqual(self.rows("vd list a0/vd0", "name,cache"), ["DB,"])

    def test_modify_of_one_that_lies_on_no_disk_group(self):
        run = self.run_words("vd", "modify", "a0/vd2", "--name", "X")
        self.assertEqual(
            (run.stderr, run.returncode),
            ("vexorctl: a0/vd2: it lies on no disk group; see vexorctl vd migrate and vd set\n", 1))

    def test_migrate_shows_the_new_size_and_starts_a_task(self):
        words = ["vd", "migrate", "a1/vd0", "--raid", "5", "--to", "a1/pd0,a1/pd1,a1/pd3"]
        self.assertEqual(self.plan(*words), [
            function("HX_LD_StartMigration", "AdapterID=1", "LDID=0", "RaidMode=5", "HDCount=3",
                     "HDIDs=0 1 3")])
        self.assertIn("resulting size: 279.43 GiB", self.run_words(*words, "--dry-run").stdout)
        self.assertEqual(self.do(*words), ("a1/vd0", "a1/vd0"))
        self.assertEqual(self.rows("task list", "address,activity,state"),
                         ["a1/vd0,migration,running"])
        self.refused(240, "busy", *words)
        self.machine.hxsimctl("clock", "advance", "5d")
        self.assertEqual(self.rows("vd list a1/vd0", "level,disks"), ["raid5,a1/pd0 a1/pd1 a1/pd3"])

    def test_import_of_what_is_not_foreign(self):
        self.refused(244, "not_foreign", "vd", "import", "a1/vd0")


class ForeignDisks(Changes):
    topology = vexorctl_machine.TREE / "tests/tools/vexorctl/data/machines/foreign.json"

    def test_import_takes_a_foreign_virtual_disk_over(self):
        self.assertEqual(self.rows("vd list", "name,state"), ["OTHERS,foreign"])
        self.assertEqual(self.plan("vd", "import", "a0/vd0"),
                         [function("HX_LD_Import", "AdapterID=0", "LD_ID=0")])
        self.assertEqual(self.do("vd", "import", "name:OTHERS"), ("a0/vd0", ""))
        self.assertEqual(self.rows("vd list", "name,state"), ["OTHERS,optimal"])
        self.assertEqual(self.rows("disk list", "state"), ["configured"] * 2)


class DiskGroup(Changes):
    def test_create_shows_the_disks_and_the_size(self):
        words = ["dg", "create", "a0/pd13", "a0/pd14", "--raid", "1", "--name", "G2"]
        self.assertEqual(self.plan(*words), [
            function("HX_DG_Create", "AdapterID=0", "Name=G2", "RaidMode=1", "SubVDCount=0",
                     "NumParityDisk=0", "StripeBlockSize=64", "Size=0", "BlockSize=512",
                     "InitializationOption=0", "PDCount=2", "PDIDs=13 14")])
        self.assertEqual(self.do(*words), ("a0/dg1", ""))
        self.assertEqual(self.rows("dg list name:G2", "level,disks"), ["raid1,a0/pd13 a0/pd14"])
        said = self.refused(225, "disk_taken", *words)
        self.assertIn("; free on a0: a0/pd11, a0/pd12 (838.33 GiB each), a0/pd16 (465.73 GiB); "
                      "with room", said)

    def test_set_keeps_what_is_not_named(self):
        self.assertEqual(
            self.plan("dg", "set", "a0/dg0", "--name", "FAST"),
            [function("HX_DG_SetConfig", "AdapterID=0", "DG_ID=0", "DGID=0", "WriteCacheOn=0",
                      "Name=FAST")])
        self.do("dg", "set", "a0/dg0", "--name", "FAST", "--write-cache", "on")
        self.assertEqual(self.rows("dg list", "name,write_cache"), ["FAST,true"])
        self.assertEqual(self.run_words("dg", "set", "a0/dg0").returncode, 2)

    def test_modify_adds_disks(self):
        words = ["dg", "modify", "a0/dg0", "--add", "a0/pd11"]
        self.assertEqual(self.plan(*words), [
            function("HX_DG_Modify", "AdapterID=0", "DGID=0", "Name=GROUP_A", "RaidMode=5",
                     "SubVDCount=0", "NumParityDisk=1", "StripeBlockSize=128", "Size=0",
                     "BlockSize=512", "PDCount=5", "PDIDs=0 1 2 3 11")])
        self.do(*words)
        self.machine.hxsimctl("clock", "advance", "10d")
        self.assertEqual(self.rows("dg list", "disks"), ["a0/pd0 a0/pd1 a0/pd2 a0/pd3 a0/pd11"])
        self.refused(225, "disk_taken", "dg", "modify", "a0/dg0", "--add", "a0/pd4")

    def test_migrate_starts_a_task(self):
        words = ["dg", "migrate", "a0/dg0", "--raid", "6", "--to",
                 "a0/pd0,a0/pd1,a0/pd2,a0/pd3,a0/pd11"]
        self.assertEqual(self.plan(*words), [
            function("HX_DG_StartMigration", "AdapterID=0", "DGID=0", "RaidMode=6",
                     "NumParityDisk=2", "PDCount=5", "PDIDs=0 1 2 3 11")])
        self.assertEqual(self.do(*words), ("a0/dg0", "a0/dg0"))
        self.refused(240, "busy", *words)
        self.machine.hxsimctl("clock", "advance", "10d")
        self.assertEqual(self.rows("dg list", "level,activity"), ["raid6,none"])

    def test_delete_names_the_virtual_disks_that_are_lost(self):
        said, code = self.terminal(["dg", "delete", "a0/dg0"], "GROUP_A")
        self.assertIn(b"virtual disk a0/vd0 (DATABASE, 768 GiB) lies on it and will be lost "
                      b"with all its data", said)
        self.assertEqual(code, 0)
        self.assertEqual(self.rows("vd list a0", "name"), ["ARCHIVE"])
        self.assertEqual(self.run_words("dg", "delete", "a0/dg0", "--yes").returncode, 3)


class BootRecords(Changes):
    """Disks with a boot record and no operating system, on an adapter that makes disk groups."""

    topology = vexorctl_machine.TREE / "tests/tools/vexorctl/data/machines/boot-records.json"

    def test_creating_over_data_asks_for_the_name(self):
        for noun, name in (("vd", "data1"), ("dg", "group1")):
            with self.subTest(noun=noun):
                words = [noun, "create", "a0/pd0", "a0/pd1", "--raid", "1", "--name", name]
                run = self.run_words(*words)
                self.assertEqual(
                    (run.stderr, run.returncode),
                    ("vexorctl: not confirmed: there is no terminal to ask; say --yes, or "
                     "--dry-run to see the plan\n", 8))
                said, code = self.terminal(words, "no")
                self.assertIn(b"the data on a0/pd0 will be lost", said)
                self.assertIn(f"Type {name} to go on: ".encode(), said)
                self.assertEqual(code, 8)
        self.assertEqual(self.do("vd", "create", "a0/pd0", "a0/pd1", "--raid", "1")[0], "a0/vd0")

    def test_disks_with_data_are_never_picked(self):
        (command,) = self.plan("vd", "create", "--raid", "1", "--disks", "2")
        self.assertIn("<HDIDs>2 3</HDIDs>", command)
        run = self.run_words("vd", "create", "--raid", "1", "--disks", "3")
        self.assertEqual(
            run.stderr, "vexorctl: 3 disks are needed and a0 has 2 free without a boot record; "
                        "free on a0: a0/pd2, a0/pd3 (558.88 GiB each), a0/pd0, a0/pd1 (558.88 GiB "
                        "each, holds a boot record)\n")


class Tasks(Changes):
    def test_each_kind_starts_by_its_function(self):
        for words, command in (
            (["a0/vd2", "--kind", "check"],
             function("HX_LD_StartConsistencyCheck", "AdapterID=0", "LD_ID=2", "Type=0")),
            (["a0/vd2", "--kind", "fix"],
             function("HX_LD_StartConsistencyCheck", "AdapterID=0", "LD_ID=2", "Type=1")),
            (["a0/vd2", "--kind", "init-quick"],
             function("HX_LD_StartINIT", "AdapterID=0", "LD_ID=2", "Init_Type=0")),
            (["a0/vd2", "--kind", "init-foreground"],
             function("HX_LD_StartINIT", "AdapterID=0", "LD_ID=2", "Init_Type=1")),
            (["a0/vd2", "--kind", "init-background"],
             function("HX_LD_StartINIT", "AdapterID=0", "LD_ID=2", "Init_Type=2")),
            (["a0/pd3", "--kind", "media-patrol"],
             function("HX_PD_StartMediaPatrol", "AdapterID=0", "HD_ID=3")),
            (["a0/pd3", "--kind", "data-scrub"],
             function("HX_PD_StartDataScrub", "AdapterID=0", "HD_ID=3")),
        ):
            with self.subTest(words=words):
                self.assertEqual(self.plan("task", "start", *words), [command])
                self.assertEqual(self.do("task", "start", *words), (words[0], words[0]))
                self.assertEqual(self.rows("task list", "address"), [words[0]])
                self.refused(240, "busy", "task", "start", *words)
                self.do("task", "abort", words[0])
                self.assertEqual(self.rows("task list", "address"), [])

    def test_init_asks_and_check_does_not(self):
        said, code = self.terminal(["task", "start", "a0/vd2", "--kind", "init-quick"], "no")
        self.assertIn(b"all data on a0/vd2 will be lost", said)
        self.assertEqual(code, 8)
        self.assertEqual(self.run_words("task", "start", "a0/vd2", "--kind", "check").returncode, 0)

    def test_a_rebuild_of_a_virtual_disk_starts_by_hand(self):
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        words = ["task", "start", "a1/vd0", "--kind", "rebuild", "--disk", "a1/pd3"]
        self.assertEqual(self.plan(*words), [
            function("HX_LD_StartRebuild", "AdapterID=1", "LD_ID=0", "Rebuild_HD_ID=3")])
        self.assertEqual(self.do(*words), ("a1/vd0", "a1/vd0"))
        self.machine.hxsimctl("clock", "advance", "1d")
        self.assertEqual(self.rows("vd list a1", "state,disks"), ["optimal,a1/pd3 a1/pd1"])
        self.assertEqual(self.run_words(*words).returncode, 1)

    def test_a_rebuild_of_a_disk_group_is_its_virtual_disks_task(self):
        for disk in ("a0/pd9", "a0/pd10"):
            self.do("disk", "unspare", disk)
        self.machine.hxsimctl("disk", "fail", "a0/pd1")
        words = ["task", "start", "a0/dg0", "--kind", "rebuild", "--disk", "a0/pd10"]
        self.assertEqual(self.plan(*words), [
            function("HX_LD_DG_StartRebuild", "AdapterID=0", "ID=0", "RebuildType=1", "PDCount=1",
                     "PDIDs=10")])
        self.assertEqual(self.do(*words), ("a0/dg0", "a0/dg0"))
        self.assertEqual(self.rows("task list", "address,activity"), ["a0/vd0,rebuild"])
        run = self.run_words("task", "wait", "a0/dg0", "--timeout", "1s")
        self.assertEqual((run.stderr, run.returncode),
                         ("vexorctl: a0/vd0: the wait timed out; the task goes on\n", 7))
        self.machine.hxsimctl("clock", "advance", "1d")
        self.assertEqual(self.run_words("task", "wait", "a0/dg0").returncode, 0)

    def test_pause_resume_and_abort_by_the_kind_of_object(self):
        for address, kind, name, number in (
            ("a0/vd2", "check", "LD", 2), ("a0/pd4", "media-patrol", "PD", 4),
        ):
            self.do("task", "start", address, "--kind", kind)
            field = "HD_ID" if name == "PD" else "LD_ID"
            action = "Action" if name == "PD" else "Actions"
            for verb, code, state in (("pause", 1, "paused"), ("resume", 2, "running")):
                with self.subTest(address=address, verb=verb):
                    self.assertEqual(self.plan("task", verb, address), [
                        function(f"HX_{name}_BGAControl", "AdapterID=0", f"{field}={number}",
                                 f"{action}={code}")])
                    self.do("task", verb, address)
                    self.assertEqual(self.rows("task list", "address,state"),
                                     [f"{address},{state}"])
                    self.refused(249, "no_change", "task", verb, address)
            self.do("task", "abort", address)
            self.refused(241, "no_activity", "task", "abort", address)

    def test_a_migration_of_a_disk_group_is_paused_there(self):
        self.do("dg", "migrate", "a0/dg0", "--raid", "6", "--to",
                "a0/pd0,a0/pd1,a0/pd2,a0/pd3,a0/pd11")
        self.assertEqual(self.plan("task", "pause", "a0/dg0"), [
            function("HX_DG_BGAControl", "AdapterID=0", "DG_ID=0", "Actions=1")])
        self.do("task", "pause", "a0/dg0")
        self.assertEqual(self.rows("task list", "address,state"), ["a0/dg0,paused"])

    def test_pause_all_pauses_the_virtual_disks_of_one_adapter(self):
        self.do("task", "start", "a0/vd0", "--kind", "check")
        self.do("task", "start", "a0/vd2", "--kind", "check")
        self.do("task", "start", "a1/vd0", "--kind", "check")
        self.assertEqual(self.plan("task", "pause-all", "a0"),
                         [function("HX_LD_PauseAll", "AdapterID=0")])
        self.do("task", "pause-all", "a0")
        self.assertEqual(self.rows("task list", "address,state"),
                         ["a0/vd0,paused", "a0/vd2,paused", "a1/vd0,running"])

    def test_wait_ends_with_the_task(self):
        self.machine.hxsimctl("clock", "speed", "20000")
        run = self.run_words("vd", "create", "--adapter", "1", "--raid", "5", "--disks", "3",
                             "--size", "100GiB", "--init", "foreground", "--wait")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertEqual(self.rows("task list", "address"), [])

    def test_a_wait_with_a_limit_ends_at_it(self):
        run = self.run_words("task", "start", "a0/vd2", "--kind", "check", "--wait=1s")
        self.assertEqual((run.stderr, run.returncode),
                         ("vexorctl: a0/vd2: the wait timed out; the task goes on\n", 7))
        self.assertEqual(self.rows("task list", "address"), ["a0/vd2"])

    def test_watch_draws_percent_rate_and_time_left_on_a_terminal(self):
        self.do("task", "start", "a0/vd2", "--kind", "check")

        def advance(*_):
            self.machine.hxsimctl("clock", "advance", "3h")
        shown = (0, 30, 61, 92)
        said, code = vexorctl_machine.on_terminal(
            [self.vexorctl, "task", "watch"], self.environment, self.root,
            [(f"] {percent}%".encode(), advance) for percent in shown])
        self.assertEqual(code, 0)
        bars = [int(bar) for bar in
                re.findall(rb"\r\x1b\[Ka0/vd2 check \[#*\.*\] (\d+)%", said)]
        self.assertEqual(bars, sorted(bars))
        self.assertEqual(sorted(set(bars)), list(shown))
        self.assertRegex(said, rb"\d+% \d+\.\d%/s, \d:\d\d:\d\d left")
        self.assertTrue(said.endswith(b"\r\x1b[K"), said)

    def test_a_rebuild_that_was_lost_while_it_was_waited_for_is_no_success(self):
        self.machine.hxsimctl("disk", "fail", "a0/pd1")
        said, code = self.terminal(
            ["task", "wait", "a0/vd0"], until=b"0%",
            meanwhile=lambda pid: self.machine.hxsimctl("disk", "fail", "a0/pd2"))
        self.assertIn(b"vexorctl: a0/vd0: the rebuild has ended, and it is offline", said)
        self.assertEqual(code, 1)

    def wait_while_watched(self, meanwhile, task):
        """`task wait` beside the event service, while something happens."""
        service = os.path.join(vexorctl_machine.PROGRAMS, "hxraidsvc")
        if not os.path.exists(service):
            self.skipTest("built without the event service")
        with subprocess.Popen([service, "--foreground"], env=self.environment,
                              stderr=subprocess.DEVNULL) as process:
            try:
                end = time.monotonic() + 120
                while not (self.root / "run/hxraid/status.json").exists():
                    self.assertLess(time.monotonic(), end, "the service never got ready")
                    time.sleep(0.02)
                return self.terminal(["task", "wait", task], until=b"0%",
                                     meanwhile=lambda pid: meanwhile())
            finally:
                process.terminate()

    def test_an_initialisation_that_was_aborted_while_it_was_waited_for_is_no_success(self):
        self.do("vd", "create", "--adapter", "1", "--raid", "5", "--disks", "3", "--size", "100GiB",
                "--init", "foreground")
        said, code = self.wait_while_watched(
            lambda: self.do("task", "abort", "a1/vd1"), "a1/vd1")
        self.assertIn(b"vexorctl: a1/vd1: the init foreground was aborted; what happened: "
                      b"vexorctl timeline a1/vd1\r\n", said)
        self.assertEqual(code, 1)

    def test_a_check_that_has_found_errors_while_it_was_waited_for_is_no_success(self):
        self.do("vd", "create", "--adapter", "1", "--raid", "5", "--disks", "3", "--size", "100GiB",
                "--init", "quick", "--cache", "write_back")
        self.machine.hxsimctl("clock", "advance", "3h")
        self.machine.hxsimctl("power-cut")
        self.do("task", "start", "a1/vd1", "--kind", "check")
        said, code = self.wait_while_watched(
            lambda: self.machine.hxsimctl("clock", "advance", "48h"), "a1/vd1")
        self.assertRegex(said, rb"vexorctl: a1/vd1: the check has found (1 stripe|\d+ stripes) that "
                               rb"disagrees?; to repair it, when a backup is there: vexorctl task "
                               rb"start a1/vd1 --kind fix\r\n")
        self.assertEqual(code, 1)

    def test_a_check_that_has_found_nothing_is_one(self):
        self.do("task", "start", "a0/vd2", "--kind", "check")
        said, code = self.wait_while_watched(
            lambda: self.machine.hxsimctl("clock", "advance", "48h"), "a0/vd2")
        self.assertNotIn(b"vexorctl: ", said)
        self.assertEqual(code, 0)

    def test_ctrl_c_leaves_the_task_running(self):
        self.do("task", "start", "a0/vd2", "--kind", "check")
        said, code = self.terminal(
            ["task", "watch", "a0/vd2"], until=b"0%",
            meanwhile=lambda pid: os.kill(pid, signal.SIGINT))
        self.assertIn(b"vexorctl: a0/vd2: interrupted; the task goes on", said)
        self.assertEqual(code, 130)
        self.assertEqual(self.rows("task list", "address,state"), ["a0/vd2,running"])


class Battery(Changes):
    def test_set_sends_a_call_for_each_kind_of_setting(self):
        words = ["battery", "set", "a0", "--max-temperature", "45", "--use", "off", "--capacity",
                 "900"]
        self.assertEqual(self.plan(*words), [
            function("HX_BBU_SetThreshold", "AdapterID=0", "tempLowerBound=5", "tempUpperBound=45",
                     "volLowerBound=3600", "volUpperBound=4250"),
            function("HX_BBU_SetStatus", "AdapterID=0", "status=0"),
            function("HX_BBU_SetMaxCapacity", "maxCapacity=900", "BBU_ID=0")])
        self.do(*words)
        self.assertEqual(self.rows("battery list a0", "min_temperature_celsius,"
                                                      "max_temperature_celsius"), ["5,45"])
        self.assertIn("switched_off", self.rows("battery list a0", "status")[0])
        run = self.run_words("battery", "set", "a1", "--use", "on")
        self.assertEqual((run.stderr, run.returncode),
                         ("vexorctl: a1: the adapter has no battery\n", 3))

    def test_relearn_starts_a_cycle(self):
        self.assertEqual(self.plan("battery", "relearn", "a0"),
                         [function("HX_BBU_ActRelearn", "AdapterID=0")])
        self.do("battery", "relearn", "a0")
        self.assertIn("relearning", self.rows("battery list a0", "status")[0])
        self.refused(240, "busy", "battery", "relearn", "a0")

    def test_power_charges_and_discharges(self):
        self.assertEqual(self.plan("battery", "power", "a0", "--action", "discharge"),
                         [function("HX_BBU_ChangePower", "AdapterID=0", "action=2")])
        self.do("battery", "power", "a0", "--action", "discharge")
        self.assertIn("discharging", self.rows("battery list a0", "status")[0])
        self.assertEqual(self.run_words("battery", "power", "a0").returncode, 2)


class Flash(Changes):
    def test_an_image_is_saved_erased_and_written_back(self):
        self.assertEqual(self.plan("flash", "save", "a0", "--image", "bios", "--file", "bios.rom"), [
            function("HX_Flash_Option", "Actions=240", "AdapterID=0", "Type=1",
                     "filepath=bios.rom")])
        self.do("flash", "save", "a0", "--image", "bios", "--file", "bios.rom")
        self.assertEqual(self.rows("flash show bios.rom", "version"), ["3.1.0.27"])
        self.assertEqual(self.plan("flash", "erase", "a0", "--image", "bios"),
                         [function("HX_Flash_Erase", "AdapterID=0", "Page=1")])
        self.do("flash", "erase", "a0", "--image", "bios")
        self.assertEqual(self.rows("flash list a0", "image,healthy")[0], "bios,false")
        self.do("flash", "update", "a0", "--image", "bios", "--file", "bios.rom")
        self.assertEqual(self.rows("flash list a0", "image,version,healthy")[0],
                         "bios,3.1.0.27,true")
        self.refused(248, "not_erased", "flash", "update", "a0", "--image", "bios", "--file",
                     "bios.rom", "--no-erase")

    def test_update_shows_the_versions_and_the_pieces_and_asks(self):
        self.do("flash", "save", "a0", "--image", "bios", "--file", "bios.rom")
        said, code = self.terminal(["flash", "update", "a0", "--image", "bios", "--file",
                                    "bios.rom"], "a1")
        said = said.replace(b"\r", b"")
        self.assertIn(b"installed version: 3.1.0.27\n  version in the file: 3.1.0.27\n"
                      b"  40960 bytes in 2 pieces\n", said)
        self.assertIn(b"Type a0 to go on: ", said)
        self.assertEqual(code, 8)

    def test_any_other_image_goes_there_and_comes_back_whole(self):
        image = bytes(n * 7 % 251 for n in range(100000))
        (self.root / "fw.bin").write_bytes(image)
        run = self.run_words("flash", "update", "a0", "--image", "firmware", "--file", "fw.bin",
                             "--dry-run")
        self.assertIn("version in the file: not told: only files of BIOS images tell theirs",
                      run.stdout)
        self.do("flash", "update", "a0", "--image", "firmware", "--file", "fw.bin")
        self.do("flash", "save", "a0", "--image", "firmware", "--file", "back.bin")
        self.assertEqual((self.root / "back.bin").read_bytes(), image)

    def save(self, *options, image="bios", file="bios.rom"):
        return self.run_words("flash", "save", "a0", "--image", image, "--file", file, *options)

    def update(self, *options, file="bios.rom"):
        return self.run_words("flash", "update", "a0", "--image", "bios", "--file", file, "--yes",
                              *options)

    def test_a_file_that_is_there_is_replaced_only_by_force(self):
        file = self.root / "bios.rom"
        file.write_bytes(b"precious" * 10000)
        for options in ((), ("--dry-run",)):
            run = self.save(*options)
            self.assertEqual((run.stderr, run.returncode),
                             ("vexorctl: bios.rom: is there already; --force replaces it\n", 1))
        self.assertEqual(file.read_bytes(), b"precious" * 10000)
        run = self.save("--force")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertEqual(len(file.read_bytes()), 40960)  # no tail of the longer one

    def test_a_file_that_is_replaced_keeps_its_mode(self):
        file = self.root / "bios.rom"
        for mode in (0o600, 0o640):
            file.write_bytes(b"old")
            file.chmod(mode)
            self.assertEqual(self.save("--force").returncode, 0)
            self.assertEqual(file.stat().st_mode & 0o777, mode)

    def test_a_link_is_replaced_and_its_target_stays(self):
        (self.root / "target").write_bytes(b"theirs")
        (self.root / "bios.rom").symlink_to("target")
        self.assertEqual(self.save().returncode, 1)
        self.assertEqual(self.save("--force").returncode, 0)
        self.assertFalse((self.root / "bios.rom").is_symlink())
        self.assertEqual((self.root / "target").read_bytes(), b"theirs")

    def test_an_image_that_does_not_fit_leaves_the_old_file(self):
        def cut_files():
            resource.setrlimit(resource.RLIMIT_FSIZE, (65536, 65536))

        (self.root / "fw.bin").write_bytes(bytes(n % 251 for n in range(200000)))
        self.do("flash", "update", "a0", "--image", "firmware", "--file", "fw.bin")
        folder = self.root / "saved"
        folder.mkdir()
        (folder / "old.bin").write_bytes(b"old")
        for name in ("old.bin", "new.bin"):
            run = subprocess.run(
                [self.vexorctl, "flash", "save", "a0", "--image", "firmware", "--file",
                 str(folder / name), "--force"],
                cwd=self.root, env=self.environment, text=True, capture_output=True, timeout=60,
                check=False, preexec_fn=cut_files, restore_signals=False)  # SIGXFSZ stays ignored
            self.assertEqual((run.stderr, run.returncode),
                             (f"vexorctl: {folder / name}: cannot be written: File too large; "
                              "nothing was saved\n", 1))
        self.assertEqual(os.listdir(folder), ["old.bin"])
        self.assertEqual((folder / "old.bin").read_bytes(), b"old")

    def test_a_large_image_is_saved_whole(self):
        image = bytes(n * n % 253 for n in range(1500000))
        (self.root / "fw.bin").write_bytes(image)
        self.do("flash", "update", "a0", "--image", "firmware", "--file", "fw.bin")
        self.assertEqual(self.save(image="firmware", file="back.bin").returncode, 0)
        self.assertEqual((self.root / "back.bin").read_bytes(), image)

    def test_an_image_that_is_not_what_it_claims_is_refused(self):
        self.save()
        good = (self.root / "bios.rom").read_bytes()
        other = bytearray(good)
        other[34] += 1
        other[100] -= 1
        for name, image, complaint in (
                ("text", b"not an image" * 10, "does not begin with 55 AA, as BIOS images do"),
                ("short", good[:60], "has 60 bytes, and the header of a BIOS image 64"),
                ("cut", good[:-512], "says that it has 40960 bytes, and has 40448"),
                ("tail", good + b"tail", "says that it has 40960 bytes, and has 40964"),
                ("bit", good[:99] + bytes([good[99] ^ 4]) + good[100:],
                 "is damaged: the sum of its bytes is not 0"),
                ("other", bytes(other), "is for FAC0:0002, and a0 is FAC0:0001")):
            with self.subTest(name):
                (self.root / name).write_bytes(image)
                run = self.update(file=name)
                self.assertEqual((run.stderr, run.returncode),
                                 (f"vexorctl: {name} {complaint}; nothing was erased or written. "
                                  "--force writes it all the same\n", 2))
                self.assertEqual(self.rows("flash list a0", "image,healthy")[0], "bios,true")
        run = self.update("--force", file="bit")
        self.assertTrue(run.stderr.startswith(
            "vexorctl: a0: bit was written, but cannot be read back: "), run.stderr)
        self.assertEqual(run.returncode, 1)

    def test_what_was_written_is_read_back_and_compared(self):
        self.save()
        self.machine.hxsimctl("inject", "--call", "HX_Flash_Bin", "--hostile", "--after", "2")
        run = self.update()
        self.assertTrue(run.stderr.startswith("vexorctl: a0: bios.rom was written, but "),
                        run.stderr)
        self.assertIn("; the image in the flash is not to be relied on: write it again\n",
                      run.stderr)
        self.assertEqual((run.stdout, run.returncode), ("", 1))

    def test_what_the_flash_holds_is_told_when_writing_fails(self):
        self.save()
        self.machine.hxsimctl("inject", "--call", "HX_Flash_Bin", "--code", "240", "--after", "1")
        run = self.update()
        self.assertIn("; the installed image is erased and the new one is not whole: write it "
                      "again before the adapter is started\n", run.stderr)
        self.assertEqual(run.returncode, 1)

    def test_the_version_of_a_file_that_is_no_image_is_not_shown(self):
        (self.root / "text").write_bytes(b"not an image" * 10)
        run = self.run_words("flash", "show", "text")
        self.assertEqual((run.stdout, run.stderr, run.returncode), (
            "", "vexorctl: text: is no BIOS image: it does not begin with 55 AA, as BIOS images "
                "do\n", 2))
        self.save()
        (self.root / "cut").write_bytes((self.root / "bios.rom").read_bytes()[:-512])
        run = self.run_words("flash", "show", "cut", "--columns", "version", "--no-header")
        self.assertEqual((run.stdout, run.stderr, run.returncode), (
            "Version  3.1.0.27\n", "vexorctl: cut: the image says that it has 40960 bytes, and has "
                           "40448\n", 1))

    def test_what_cannot_be_sent_erases_nothing(self):
        (self.root / "empty").write_bytes(b"")
        for name in ("empty", "absent", "."):
            run = self.run_words("flash", "update", "a0", "--image", "firmware", "--file", name,
                                 "--yes")
            self.assertEqual(run.returncode, 2, run.stderr)
        self.assertEqual(self.rows("flash list a0", "image,healthy")[1], "firmware,true")


class Users(Changes):
    def test_logon_tells_the_group_and_refuses_a_wrong_password(self):
        run = self.run_words("user", "logon", "admin", "-o", "json", stdin="raid & roll\n")
        self.assertEqual(json.loads(run.stdout)["items"],
                         [{"name": "admin", "domain": None, "group": "Administrator"}])
        run = self.run_words("user", "logon", "admin", stdin="wrong\n")
        self.assertEqual(
            (run.stderr, run.returncode),
            ('vexorctl: "admin" may not log on: wrong password, or no such user (code 3)\n', 4))

    def test_a_terminal_is_asked_for_the_password_and_shows_nothing_of_it(self):
        said, code = self.terminal(["user", "logon", "admin", "--domain", "X"], "raid & roll",
                                   until=b"Password: ")
        self.assertIn(b"Password: ", said)
        self.assertNotIn(b"roll", said)
        self.assertIn(b"Administrator", said)
        self.assertEqual(code, 0)

    def test_show_tells_the_group_of_oneself_and_of_others(self):
        self.assertEqual(self.rows("user show", "name,group"), ["root,Administrator"])
        self.assertEqual(self.rows("user show admin", "name,group"), ["admin,Administrator"])
        run = self.run_words("user", "show", "nobody-at-all")
        self.assertEqual((run.stderr, run.returncode),
                         ('vexorctl: there is no user "nobody-at-all"\n', 3))


class Small(VexorctlCase):
    """What an administrator meets beside the changes themselves."""

    def lights(self):
        run = self.run_words("disk", "list", "-o", "json", "--columns", "address,locate_light_code")
        return [each["address"] for each in json.loads(run.stdout)["items"]
                if each["locate_light_code"]]

    def test_ctrl_c_at_a_prompt_ends_the_line_and_nothing_is_changed(self):
        said, code = vexorctl_machine.on_terminal(
            [self.vexorctl, "vd", "delete", "a0/vd2"], self.environment, self.root,
            [(b"to go on: ", lambda _, master: os.write(master, b"\x03"))])
        self.assertTrue(said.endswith(b"\r\nvexorctl: interrupted; nothing was changed\r\n"), said)
        self.assertEqual(code, 130)
        self.assertIn("a0/vd2", self.run_words("vd", "list").stdout)

    def test_the_disks_of_a_virtual_disk_are_located(self):
        run = self.run_words("disk", "locate", "a0/vd2")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertEqual(self.lights(), [f"a0/pd{i}" for i in range(4, 9)])
        self.run_words("disk", "locate", "name:ARCHIVE", "--off")
        self.assertEqual(self.lights(), [])

    def test_the_disk_in_a_slot_is_located(self):
        run = self.run_words("disk", "locate", "a0/enc0", "--slot", "5")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertEqual(self.lights(), ["a0/pd1"])
        run = self.run_words("disk", "locate", "a0/enc0", "--slot", "50")
        self.assertEqual((run.stderr, run.returncode), (
            "vexorctl: a0/enc0: no disk is in slot 50, and only a disk has a light\n", 3))

    def test_a_light_goes_out_after_its_time(self):
        run = self.run_words("disk", "locate", "a0/pd3", "--for", "10ms")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertEqual(self.lights(), [])
        run = self.run_words("disk", "locate", "a0/pd3", "--for", "1h", "--off")
        self.assertEqual(run.returncode, 2)

    def test_a_light_goes_out_at_an_interrupt(self):
        process = subprocess.Popen(
            [self.vexorctl, "disk", "locate", "a0/pd3", "--for", "1h"], env=self.environment,
            cwd=self.root, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        vexorctl_machine.interrupt(process)
        _, err = process.communicate(timeout=60)
        self.assertEqual((err, process.returncode), ("", 130))
        self.assertEqual(self.lights(), [])

    def test_bounds_of_a_battery_that_cross_are_told(self):
        run = self.run_words("battery", "set", "a0", "--min-temperature", "60", "--dry-run")
        self.assertIn("--min-temperature 60 is not below --max-temperature 50: every value will be "
                      "reported", run.stdout)
        run = self.run_words("battery", "set", "a0", "--min-temperature", "60")
        self.assertIn("vexorctl: a0: warning: --min-temperature 60 is not below", run.stderr)
        run = self.run_words("battery", "set", "a0", "--min-temperature", "10")
        self.assertEqual((run.stderr, run.returncode), ("", 0))

    def test_a_size_may_be_written_as_other_tools_have_it(self):
        def size(text):
            run = self.run_words("vd", "create", "a1/pd3", "--raid", "0", "--size", text,
                                 "--dry-run")
            return re.findall("resulting size: (.*)", run.stdout), run.stderr
        self.assertEqual(size("10G"), (["10 GiB"], ""))
        self.assertEqual(size("MAX")[0], ["465.73 GiB"])
        self.assertIn("a number alone counts bytes: write 10GiB, 10GB or 10s for sectors",
                      size("10")[1])


class Completeness(unittest.TestCase):
    """Every verb that changes something has a test above, on a machine that does it."""

    def test_every_changing_verb_is_carried_out_here(self):
        source = pathlib.Path(__file__).read_text()
        tree = vexorctl_machine.TREE / "tools" / "vexorctl" / "nouns"
        changing = set()
        for path in tree.glob("noun_*.cpp"):
            for row in path.read_text().split("{.noun = ")[1:]:
                if ".changes = true" in row:
                    noun, verb = re.findall(r'^"([\w-]+)",\s*\.verb = "([\w-]+)"', row)[0]
                    changing.add((noun, verb))
        self.assertGreater(len(changing), 30)
        # Its own tests stand with those of the other events; the other two are run in a loop.
        changing -= {("event", "reset"), ("task", "pause"), ("task", "resume")}
        words = re.sub(r'[\s\["\]]+', " ", source)
        for noun, verb in sorted(changing):
            self.assertRegex(words, rf"{noun} ?, {verb} ?,", (noun, verb))


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL")

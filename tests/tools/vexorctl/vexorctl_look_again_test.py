#!/usr/bin/env python3
"""The second look: another process changes what a plan was made of before it is carried out.

One vexorctl changes something at a time. The test takes that turn itself, so that the vexorctl under
test has made its plan and waits; then another process changes the machine, and the test lets go.

usage: vexorctl_look_again_test.py VEXORCTL [TEST]...
"""

import concurrent.futures
import contextlib
import fcntl
import json
import os
import pathlib
import subprocess
import time
import unittest

import vexorctl_machine
from vexorctl_machine import VexorctlCase

FREE_DISK_TAKEN = 'its state was free and is global_spare'

# What is planned, what another process does meanwhile, and the difference that is named.
ROWS = (
    ("adapter set a0 --rebuild-rate 80", "adapter set a0 --alarm off",
     "a0: its settings have changed"),
    ("adapter mute a0", "adapter set a0 --alarm off", "a0: its settings have changed"),
    ("disk set a0/pd12 --smart off", "disk set a0/pd12 --write-cache off",
     "a0/pd12: its settings have changed"),
    ("disk set a0/pd0 --state offline", "vd set a0/vd0 --name OTHER",
     'a0/vd0: its name was "DATABASE" and is "OTHER"'),
    ("disk spare a0/pd11", "vd create a0/pd11 --raid 0 --name OTHER",
     "a0/pd11: its state was free and is configured"),
    ("disk spare a0/pd11 --dg a0/dg0", "dg set a0/dg0 --name OTHER",
     'a0/dg0: its name was "GROUP_A" and is "OTHER"'),
    ("disk unspare a0/pd10", "disk unspare a0/pd10",
     "a0/pd10: its state was group_spare and is free"),
    ("disk wipe a0/pd4 --force", "vd delete a0/vd2",
     "a0/pd4: its state was configured and is free"),
    ("disk locate a0/pd12", "disk spare a0/pd12", "a0/pd12: " + FREE_DISK_TAKEN),
    ("vd create a1/pd3 a1/pd4 --raid 1", "disk spare a1/pd4", "a1/pd4: " + FREE_DISK_TAKEN),
    ("vd create --dg a0/dg0 --size 10GiB", "vd create --dg a0/dg0 --size 1GiB",
     "a0/dg0: its free space was "),
    ("vd quick-create --adapter 0", "disk spare a0/pd11", "a0/pd11: " + FREE_DISK_TAKEN),
    ("vd delete a0/vd2", "vd set a0/vd2 --name OTHER",
     'a0/vd2: its name was "ARCHIVE" and is "OTHER"'),
    ("vd set a0/vd2 --name MINE", "vd set a0/vd2 --cache none",
     "a0/vd2: its settings have changed"),
    ("vd modify a0/vd0 --name MINE", "vd create --dg a0/dg0 --size 1GiB",
     "a0/dg0: its free space was "),
    ("vd migrate a1/vd0 --raid 5 --to a1/pd0,a1/pd1,a1/pd3", "disk spare a1/pd3",
     "a1/pd3: " + FREE_DISK_TAKEN),
    ("dg create a0/pd13 a0/pd14 --raid 1", "disk spare a0/pd14", "a0/pd14: " + FREE_DISK_TAKEN),
    ("dg delete a0/dg0", "vd set a0/vd0 --name OTHER",
     'a0/vd0: its name was "DATABASE" and is "OTHER"'),
    ("dg set a0/dg0 --name MINE", "dg set a0/dg0 --write-cache on",
     "a0/dg0: its settings have changed"),
    ("dg modify a0/dg0 --add a0/pd11", "disk spare a0/pd11", "a0/pd11: " + FREE_DISK_TAKEN),
    ("dg migrate a0/dg0 --raid 6 --to a0/pd0,a0/pd1,a0/pd2,a0/pd3,a0/pd11", "disk spare a0/pd11",
     "a0/pd11: " + FREE_DISK_TAKEN),
    ("task start a0/vd0 --kind check", "vd set a0/vd0 --name OTHER",
     'a0/vd0: its name was "DATABASE" and is "OTHER"'),
    ("task start a0/vd2 --kind init-quick", "vd delete a0/vd2", "a0/vd2 is not there any more"),
    ("task pause-all a0", "adapter set a0 --alarm off", "a0: its settings have changed"),
    ("battery set a0 --max-temperature 50", "battery set a0 --max-temperature 48",
     "the battery of a0: its highest temperature was "),
    ("battery relearn a0", "battery set a0 --max-temperature 48",
     "the battery of a0: its highest temperature was "),
    ("battery power a0 --action discharge", "battery set a0 --max-temperature 48",
     "the battery of a0: its highest temperature was "),
    ("flash save a0 --image bios --file saved.img", "adapter set a0 --alarm off",
     "a0: its settings have changed"),
    ("flash erase a0 --image firmware", "adapter set a0 --alarm off",
     "a0: its settings have changed"),
)

# Those whose machine has to be made first: a test each.
OTHERS = {"vd import", "task pause", "task resume", "task abort", "flash update", "event reset"}


class LookAgainCase(VexorctlCase):
    @contextlib.contextmanager
    def our_turn(self):
        """Nobody changes anything while the test has the turn."""
        lock = self.root / "run" / "vexorctl.lock"
        lock.parent.mkdir(exist_ok=True)
        with open(lock, "w", encoding="ascii") as held:
            fcntl.flock(held, fcntl.LOCK_EX)
            yield lock

    def wait_for_plan(self, process, lock):
        """Until the program has opened the lock: it has made its plan."""
        folder = pathlib.Path(f"/proc/{process.pid}/fd")
        end = time.monotonic() + 60
        while time.monotonic() < end and process.poll() is None:
            with contextlib.suppress(OSError):
                if any(os.readlink(each) == str(lock.resolve()) for each in folder.iterdir()):
                    return
            time.sleep(0.002)
        process.kill()
        self.fail("it never came to its act: " + "".join(map(str, process.communicate())))

    def other(self, *words):
        """Another vexorctl, which takes turns with others only."""
        folder = self.root / "other"
        (folder / "opt/kestrel/raid/db").mkdir(parents=True, exist_ok=True)
        run = subprocess.run([self.vexorctl, *words, "--yes"], text=True, capture_output=True,
                             env={**self.environment, "VEXORAPI_ROOT": str(folder)},
                             timeout=60, check=False)
        self.assertEqual((run.stderr, run.returncode), ("", 0), words)

    def meanwhile(self, words, change):
        """Runs the command; between its look and its act `change` happens. It has to change nothing.
        Returns its run."""
        with self.our_turn() as lock:
            process = subprocess.Popen([self.vexorctl, *words, "--yes"], cwd=self.root,
                                       env=self.environment, text=True,
                                       stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                       stderr=subprocess.PIPE)
            self.wait_for_plan(process, lock)
            change()
            before = self.machine.hxsimctl("show")
        said, complaint = process.communicate(timeout=60)
        self.assertEqual(self.machine.hxsimctl("show"), before, words)
        return subprocess.CompletedProcess(words, process.returncode, said, complaint)

    def expect_refused(self, words, change, difference):
        run = self.meanwhile(words, change)
        self.assertEqual(run.returncode, 8, (words, run.stderr))
        self.assertIn(difference, run.stderr, words)
        self.assertTrue(run.stderr.endswith("; nothing was done\n"), run.stderr)
        self.assertEqual(run.stdout, "", words)


class SecondLook(LookAgainCase):
    def test_every_verb_is_refused_when_its_object_has_changed(self):
        for words, meanwhile, difference in ROWS:
            with self.subTest(words=words):
                self.machine = vexorctl_machine.Machine(
                    vexorctl_machine.PROGRAMS, self.root / "machine.db", self.topology)
                self.expect_refused(words.split(), lambda: self.other(*meanwhile.split()),
                                    difference)

    def test_every_verb_that_changes_something_has_its_row(self):
        def changes(command):
            return "--dry-run" in self.run_words(*command, "--help").stdout

        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            commands = [each for each in self.commands() if each[1]]
            found = {" ".join(each)
                     for each, yes in zip(commands, pool.map(changes, commands)) if yes}
        rows = {" ".join(words.split()[:2]) for words, _, _ in ROWS}
        self.assertEqual(found, rows | OTHERS)

    def test_tasks_are_controlled_only_while_they_are_the_same(self):
        self.run_words("task", "start", "a0/vd2", "--kind", "check", "--yes")
        self.expect_refused(["task", "pause", "a0/vd2"],
                            lambda: self.other("task", "abort", "a0/vd2"),
                            "a0/vd2: its activity was ")
        self.run_words("task", "start", "a0/vd2", "--kind", "check", "--yes")
        self.run_words("task", "pause", "a0/vd2", "--yes")
        for verb in ("resume", "abort"):
            self.expect_refused(["task", verb, "a0/vd2"],
                                lambda name=verb: self.other("vd", "set", "a0/vd2", "--name", name),
                                f'is "{verb}"')

    def test_an_image_that_was_replaced_is_not_written(self):
        self.assertEqual(self.run_words("flash", "save", "a0", "--image", "bios", "--file",
                                        "new.img").returncode, 0)
        image = self.root / "new.img"

        def replace():
            image.write_bytes(image.read_bytes() + b"more")
        self.expect_refused(["flash", "update", "a0", "--image", "bios", "--file", "new.img"],
                            replace, "new.img: its size was ")

    def test_events_that_came_since_are_not_lost(self):
        self.collect()

        def happen():
            self.machine.hxsimctl("disk", "fail", "a0/pd12")
            self.collect()
        self.expect_refused(["event", "reset"], happen, "the event store: its number of events was ")

    def test_a_disk_of_the_same_number_is_not_the_same_disk(self):
        self.expect_refused(["disk", "wipe", "a0/pd12"],
                            lambda: self.machine.hxsimctl("disk", "replace", "a0/pd12"),
                            "a0/pd12: its serial number was ")

    def test_a_disk_that_has_come_is_not_taken_unasked(self):
        self.machine.hxsimctl("disk", "remove", "a0/pd11")
        self.expect_refused(["vd", "quick-create", "--adapter", "0"],
                            lambda: self.machine.hxsimctl("disk", "insert", "a0/pd11"), "a0/pd11")

    def test_another_virtual_disk_of_the_same_number_survives_the_question(self):
        def swap(_):
            self.other("vd", "delete", "a1/vd0")
            self.other("vd", "create", "a1/pd0", "a1/pd1", "--raid", "1", "--name", "OTHER",
                       "--init", "none")

        said, code = self.terminal(["vd", "delete", "a1/vd0"], "MIRROR", swap)
        self.assertEqual(code, 8)
        self.assertIn(b'a1/vd0: its name was "MIRROR" and is "OTHER"', said)
        run = self.run_words("vd", "list", "a1", "--columns", "name", "--no-header")
        self.assertEqual(run.stdout.split(), ["OTHER"])

    def test_documents_tell_the_difference_too(self):
        run = self.meanwhile(["vd", "delete", "a0/vd2", "-o", "json"],
                             lambda: self.other("vd", "set", "a0/vd2", "--name", "OTHER"))
        self.assertEqual(run.returncode, 8)
        (error,) = json.loads(run.stdout)["errors"]
        self.assertIn('its name was "ARCHIVE" and is "OTHER"', error["message"])

    def test_what_others_change_is_nobodys_business(self):
        with self.our_turn() as lock:
            process = subprocess.Popen([self.vexorctl, "vd", "delete", "a0/vd2", "--yes"],
                                       cwd=self.root, env=self.environment, text=True,
                                       stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
            self.wait_for_plan(process, lock)
            self.other("vd", "set", "a0/vd0", "--name", "OTHER")
            self.other("disk", "spare", "a0/pd11")
        process.communicate(timeout=60)
        self.assertEqual(process.returncode, 0)


class Import(LookAgainCase):
    topology = vexorctl_machine.TREE / "tests/tools/vexorctl/data/machines/foreign.json"

    def test_a_foreign_virtual_disk_is_imported_only_while_it_is_one(self):
        self.expect_refused(["vd", "import", "a0/vd0"], lambda: self.other("vd", "import", "a0/vd0"),
                            "a0/vd0: its state was foreign and is optimal")


class Parallel(LookAgainCase):
    def test_six_that_pick_a_disk_each_never_pick_the_same(self):
        # All six have picked the same disk before the first of them may take it.
        with self.our_turn() as lock:
            runs = [subprocess.Popen(
                [self.vexorctl, "vd", "create", "--adapter", "1", "--raid", "0", "--disks", "1",
                 "--size", "10GiB", "--name", f"n{number}", "--init", "none", "-o", "json"],
                cwd=self.root, env=self.environment, text=True, stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE, stderr=subprocess.PIPE) for number in range(6)]
            for run in runs:
                self.wait_for_plan(run, lock)
        ends = [(run.communicate(timeout=120), run.returncode) for run in runs]
        # Five disks are free.
        self.assertEqual(sorted(code for _, code in ends), [0] * 5 + [8], ends)
        told = [json.loads(said)["items"][0]["address"] for (said, _), code in ends if code == 0]
        self.assertEqual(sorted(told), [f"a1/vd{number}" for number in range(1, 6)])
        run = self.run_words("vd", "list", "a1", "--columns", "disks", "--no-header")
        self.assertEqual(sorted(run.stdout.split()),
                         ["a1/pd0-1", *(f"a1/pd{number}" for number in range(3, 8))])


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL")

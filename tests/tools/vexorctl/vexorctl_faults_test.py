#!/usr/bin/env python3
"""The tools on a machine that runs out of room.

usage: vexorctl_faults_test.py VEXORCTL FAULTS_LIBRARY [TEST]...
"""

import json
import os
import subprocess

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, failing_allocation, full_disk, schema

# Set from the command line.
FAULTS_LIBRARY = ""


class FullDisk(VexorctlCase):
    def setUp(self):
        super().setUp()
        self.environment.update(full_disk(FAULTS_LIBRARY, self.root))

    def test_a_controller_that_cannot_be_opened_for_it_is_told(self):
        run = self.run_words("vd", "list", "-o", "json")
        self.assertEqual(run.returncode, 5, run.stderr)
        self.assertTrue(run.stderr.startswith("vexorctl: the controller could not be opened: " +
                                              str(self.machine.state)), run.stderr)
        self.assertIn("No space left on device", run.stderr)
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        self.assertEqual(document["errors"][0]["name"], "not_initialized")
        self.assertIn("No space left on device", document["errors"][0]["message"])


class FullDiskOfAFile(VexorctlCase):
    """The file goes to a disk that is full; the machine is on another one."""

    def test_an_image_is_not_saved_and_the_old_file_stays(self):
        folder = self.root / "full"
        folder.mkdir()
        (folder / "old.rom").write_bytes(b"old")
        self.environment.update(full_disk(FAULTS_LIBRARY, folder))
        for name in ("old.rom", "new.rom"):
            run = self.run_words("flash", "save", "a0", "--image", "bios", "--file", folder / name,
                                 "--force")
            self.assertEqual((run.stderr, run.returncode),
                             (f"vexorctl: {folder / name}: cannot be written: No space left on "
                              "device; nothing was saved\n", 1))
        self.assertEqual(os.listdir(folder), ["old.rom"])
        self.assertEqual((folder / "old.rom").read_bytes(), b"old")


class NoMemory(VexorctlCase):
    """Memory runs out at one allocation, or from one on: whatever is said is the whole answer, or a
    sentence and no success."""

    EVERY = 60    # of the first allocations each one, and then
    SAMPLES = 40  # so many of the rest

    def run_without(self, number, program, *words):
        command = [os.path.join(os.path.dirname(self.vexorctl), program), *words]
        environment = {**self.environment,
                       **failing_allocation(FAULTS_LIBRARY, number, self.root / "count")}
        return subprocess.run(command, cwd=self.root, env=environment, text=True,
                              capture_output=True, timeout=60, check=False)

    def sweep(self, program, *words):
        def run(number):
            return self.run_without(number, program, *words)

        whole = run(0)
        self.assertEqual((whole.returncode, whole.stderr), (0, ""))
        count = int((self.root / "count").read_text())
        self.assertGreater(count, 100)
        step = max(1, (count - self.EVERY) // self.SAMPLES)
        numbers = [*range(1, self.EVERY + 1), *range(self.EVERY + 1, count + 1, step)]
        for number in numbers:
            for text in (f"{number}", f"{number}+"):
                with self.subTest(allocation=text, of=count):
                    done = run(text)
                    if done.returncode == 0:
                        self.assertEqual((done.stdout, done.stderr), (whole.stdout, ""))
                        continue
                    # The library does not tell a lost result from one that did not fit.
                    self.assertIn(done.returncode, (1, 5, 6), done.stderr)
                    self.assertRegex(done.stderr, rf"{program}: .*memory")

    def test_vexorctl_disk_list(self):
        self.sweep("vexorctl", "disk", "list")

    def test_vexorctl_check_which_monitoring_takes_for_unknown(self):
        whole = self.run_without(0, "vexorctl", "check")
        count = int((self.root / "count").read_text())
        ends = set()
        for number in (*range(1, 10), *range(10, count + 1, count // 15)):
            for text in (f"{number}", f"{number}+"):
                with self.subTest(allocation=text, of=count):
                    done = self.run_without(text, "vexorctl", "check")
                    ends.add(done.returncode)
                    if done.returncode != 3:
                        self.assertEqual((done.returncode, done.stdout, done.stderr),
                                         (whole.returncode, whole.stdout, ""))
                        continue
                    self.assertTrue(done.stdout.startswith("UNKNOWN: "), done.stdout)
        self.assertIn(3, ends)

    def test_hxsimctl_show(self):
        self.sweep("hxsimctl", "show")


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL", "FAULTS_LIBRARY")

#!/usr/bin/env python3
"""The tools under faults: every call to the system fails, alone and with all that follow, and the
program says so or does what it always does.

usage: program_faults_test.py VEXORCTL HXSIMCTL CHECK_IN FAULTS_LIBRARY [TEST]...

With FAULTS=all in the environment each call fails; with FAULTS=30 so many of each kind and error, chosen
evenly; else two.
"""

import concurrent.futures
import errno
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
TIME = re.compile(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d")
SHORT = 10000  # kFaultShort
MOST = os.environ.get("FAULTS", "2")

# Number in enum FaultKind, name, errors, and whether with all that follow: whoever tries an interrupted
# call again would never end.
KINDS = (
    (1, "allocation", (errno.ENOMEM,), True),
    (2, "open", (errno.EMFILE, errno.EACCES), True),
    (3, "read", (errno.EIO, SHORT), True),
    (3, "interrupted read", (errno.EINTR,), False),
    (4, "write", (errno.ENOSPC, errno.EIO, SHORT), True),
    (4, "interrupted write", (errno.EINTR,), False),
    (5, "fsync", (errno.EIO,), True),
    (6, "ftruncate", (errno.EIO,), True),
    (7, "rename", (errno.ENOSPC,), True),
    (8, "mmap", (errno.ENOMEM,), True),
    (9, "lock", (errno.EIO,), True),
    (10, "time", (errno.EINVAL,), True),
)

# Their documented exit codes for what is not wrong with the words themselves.
EXITS = {"vexorctl": (1, 2, 3, 4, 5, 6, 8), "hxsimctl": (1, 2, 3, 5)}

class Programs(unittest.TestCase):
    vexorctl = hxsimctl = check_in = library = ""
    faults = 0

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="program-faults-")
        cls.template = pathlib.Path(cls.folder.name) / "template"
        shutil.copytree(TREE / "examples" / "root", cls.template)
        (cls.template / "opt/kestrel/raid/db").mkdir(parents=True)
        environment = cls.environment_of(cls.template)
        for words in ((cls.hxsimctl, "init"), (cls.hxsimctl, "clock", "freeze"), (cls.check_in, "2")):
            subprocess.run(words, env=environment, check=True, stdout=subprocess.DEVNULL)

    @classmethod
    def tearDownClass(cls):
        print(f"{cls.faults} faults", file=sys.stderr)
        cls.folder.cleanup()

    @staticmethod
    def environment_of(root):
        environment = {**os.environ, "VEXORAPI_ROOT": str(root), "HXSIM_STATE": str(root / "machine.db"),
                       "TZ": "UTC"}
        environment.pop("NO_COLOR", None)
        return environment

    def once(self, program, words, fault):
        """One run on a machine of its own: what it said, and what is there afterwards."""
        with tempfile.TemporaryDirectory(prefix="run-", dir=self.folder.name) as folder:
            root = pathlib.Path(folder) / "root"
            shutil.copytree(self.template, root)
            environment = self.environment_of(root)
            faulty = {**environment, **{f"FAULT_{name}": str(value) for name, value in fault.items()},
                      "FAULT_COUNT": str(root / "count"), "LD_PRELOAD": self.library}
            done = subprocess.run([program, *words], cwd=root, env=faulty, stdin=subprocess.DEVNULL,
                                  text=True, errors="replace", capture_output=True, timeout=60, check=False)
            shown = subprocess.run([self.hxsimctl, "show"], env=environment, text=True,
                                   capture_output=True, timeout=60, check=False)
            sound = subprocess.run([self.hxsimctl, "check"], env=environment, text=True,
                                   capture_output=True, timeout=60, check=False)
            saved = root / "saved.rom"
            left = (shown.returncode, TIME.sub("TIME", shown.stdout), shown.stderr.replace(str(root), "ROOT"), sound.returncode,
                    saved.read_bytes() if saved.exists() else None)
            count = int((root / "count").read_text()) if (root / "count").exists() else 0
            stray = [name for name in os.listdir(root) if name.startswith("saved.rom") and name != "saved.rom"]
        return done, left, count, stray

    @staticmethod
    def differences(left, usual):
        return str([one if not isinstance(one, str) else [
            line for line in one.splitlines() if line not in other.splitlines()]
            for one, other in zip(left, usual) if one != other])[:300]

    def judge(self, name, usual, untouched, run):
        """What is wrong with a run under a fault; empty when nothing is."""
        (usual_done, usual_left), (done, left, _, stray) = usual, run
        if stray:
            return f"left behind: {stray}"
        if done.returncode == usual_done.returncode:
            if done.stdout != usual_done.stdout:
                return f"the usual exit, and another output: {done.stdout[:500]!r} {done.stderr[:300]!r}"
            if left != usual_left:
                return f"the usual exit, and another state: {self.differences(left, usual_left)}"
            return ""
        if done.returncode not in EXITS[name]:
            return f"ends with {done.returncode}: {done.stderr[:500]!r}"
        if left not in (untouched, usual_left):
            return f"neither done nor undone: exit {done.returncode}, {done.stderr[:300]!r}, {self.differences(left, usual_left)}"
        return ""

    def sweep(self, name, *words, says=None):
        """One of `says` stands in what a failing run says; "NAME: " where nothing is given."""
        program = getattr(self, name)
        untouched = self.once("/bin/true", (), {})[1]
        complaints = []
        jobs = []
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            counts = {}
            for kind, *_ in KINDS:
                if kind not in counts:
                    done, left, counts[kind], _ = self.once(program, words, {"KIND": kind, "AT": 0})
                    self.assertEqual(done.stderr, "")
                    usual = (done, left)
            for kind, kind_name, errors, always_too in KINDS:
                step = 1 if MOST == "all" else max(1, -(-counts[kind] // int(MOST)))
                for error in errors:
                    for at in range(1, counts[kind] + 1, step):
                        for always in (0, 1) if always_too else (0,):
                            fault = {"KIND": kind, "AT": at, "ALWAYS": always, "ERROR": error}
                            jobs.append((kind_name, kind, fault, pool.submit(self.once, program, words, fault)))
            for kind_name, kind, fault, job in jobs:
                run = job.result()
                complaint = self.judge(name, usual, untouched, run)
                # A sentence is there, unless it could not be written.
                if not complaint and run[0].returncode != usual[0].returncode and kind != 4 and \
                        not any(each in run[0].stdout + run[0].stderr for each in says or [name + ": "]):
                    complaint = f"ends with {run[0].returncode} and says {run[0].stderr[:300]!r}"
                if complaint:
                    complaints.append(f"{kind_name} {fault['AT']} of {counts[kind]}"
                                      f"{' and all that follow' if fault['ALWAYS'] else ''}, "
                                      f"error {fault['ERROR']}: {complaint}")
        type(self).faults += len(jobs)
        self.assertGreater(len(jobs), 10)
        if complaints:
            self.fail("\n".join(complaints[:20]))


class Vexorctl(Programs):
    def test_disk_list(self):
        self.sweep("vexorctl", "disk", "list")

    def test_virtual_disk_list_as_json(self):
        self.sweep("vexorctl", "vd", "list", "-o", "json")

    def test_event_list(self):
        self.sweep("vexorctl", "event", "list")

    def test_check(self):
        self.sweep("vexorctl", "check", says=["UNKNOWN: ", "vexorctl: not enough memory"])

    def test_virtual_disk_creation(self):
        self.sweep("vexorctl", "vd", "create", "--adapter", "0", "--disks", "2", "--raid", "1", "--size",
                   "10GiB", "--init", "none", "--name", "faults", "--yes")

    def test_saving_an_image(self):
        self.sweep("vexorctl", "flash", "save", "a0", "--image", "bios", "--file", "saved.rom")


class Hxsimctl(Programs):
    def test_show(self):
        self.sweep("hxsimctl", "show")

    def test_check(self):
        self.sweep("hxsimctl", "check")

    def test_making_a_machine(self):
        self.sweep("hxsimctl", "init", "--force", "--topology", "small")

    def test_a_disk_that_fails(self):
        self.sweep("hxsimctl", "disk", "fail", "a0/pd4")

    def test_a_step_of_the_clock(self):
        self.sweep("hxsimctl", "clock", "advance", "1h")

    def test_a_battery_that_is_taken_out(self):
        self.sweep("hxsimctl", "battery", "remove", "a0")


if __name__ == "__main__":
    if len(sys.argv) < 5:
        sys.exit(__doc__)
    Programs.vexorctl, Programs.hxsimctl, Programs.check_in, Programs.library = map(
        os.path.abspath, sys.argv[1:5])
    del Programs  # it has no tests of its own
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]], verbosity=2)

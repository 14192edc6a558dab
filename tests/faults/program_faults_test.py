#!/usr/bin/env python3
"""The tools under faults: every call to the system fails, alone and with all that follow, and the
program says so or does what it always does. And the tools killed: before each call that changes a file,
and within each write; what is left is as before or as it was to become, and they go on from there.

usage: program_faults_test.py VEXORCTL HXSIMCTL CHECK_IN FAULTS_LIBRARY [TEST]...

With FAULTS=all in the environment each call fails; with FAULTS=30 so many of each kind and error, chosen
evenly; else two.
"""

import concurrent.futures
import errno
import json
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
SHORT, KILL = 10000, 10001  # kFaultShort, kFaultKill
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

# What changes files, and the bytes that a write has moved when the process ends: none, one, the head of a
# frame in the log of changes, a sector, part of a page.
CHANGES = {4: (0, 1, 24, 512, 3000), 5: (0,), 6: (0,), 7: (0,)}

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

    def steps(self, count, most=None):
        """The numbers of the calls that fail, of so many."""
        return range(1, count + 1, 1 if MOST == "all" else max(1, -(-count // int(most or MOST))))

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
            stray = [name for name in os.listdir(root) if name.startswith(".new-")]
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
                for error in errors:
                    for at in self.steps(counts[kind]):
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
        # Levels that cannot be read are a warning of their own, beside a machine that was seen.
        self.sweep("vexorctl", "check", says=["UNKNOWN: ", "SERVICE_CONFIG_REJECTED"])

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


class Killed(Programs):
    def run_in(self, root, program, words, fault):
        environment = {**self.environment_of(root), "LD_PRELOAD": self.library,
                       "FAULT_COUNT": str(root / "count"),
                       **{f"FAULT_{name}": str(value) for name, value in fault.items()}}
        return subprocess.run([program, *words], cwd=root, env=environment, stdin=subprocess.DEVNULL,
                              text=True, capture_output=True, timeout=60, check=False)

    def state_of(self, root):
        """What the machine is, and whether it is sound."""
        shown = self.run_in(root, self.hxsimctl, ("show",), {})
        checked = self.run_in(root, self.hxsimctl, ("check",), {})
        return (shown.returncode, TIME.sub("TIME", shown.stdout), checked.returncode, checked.stdout)

    def machine(self):
        folder = tempfile.TemporaryDirectory(prefix="run-", dir=self.folder.name)
        root = pathlib.Path(folder.name) / "root"
        shutil.copytree(self.template, root)
        return folder, root

    def kills(self, program, words):
        """Each fault that ends the program."""
        for kind, cuts in CHANGES.items():
            folder, root = self.machine()
            with folder:
                self.run_in(root, program, words, {"KIND": kind})
                count = int((root / "count").read_text())
            for at in self.steps(count):
                for cut in cuts:
                    yield {"KIND": kind, "AT": at, "ERROR": KILL, "CUT": cut}

    def sweep(self, program, *words):
        def usual(*commands):
            folder, root = self.machine()
            with folder:
                for command in commands:
                    self.assertEqual(self.run_in(root, *command, {}).returncode, 0)
                return self.state_of(root)

        untouched, done = usual(), usual((program, words))

        def kill(fault):
            folder, root = self.machine()
            with folder:
                ended = self.run_in(root, program, words, fault)
                if ended.returncode != -9:
                    return f"{fault}: ends with {ended.returncode} {ended.stderr[:300]}"
                left = self.state_of(root)
                if left not in (untouched, done):
                    return f"{fault}: neither done nor undone: {left[3]} {left[1][:500]}"
                if left == untouched:
                    again = self.run_in(root, program, words, {})
                    if again.returncode != 0 or self.state_of(root) != done:
                        return f"{fault}: does not go on: {again.stderr[:300]}"
            return ""

        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            complaints = list(pool.map(kill, list(self.kills(program, words))))
        type(self).faults += len(complaints)
        self.assertGreater(len(complaints), 5)
        if any(complaints):
            self.fail("\n".join([each for each in complaints if each][:10]))

    def test_while_a_disk_fails(self):
        self.sweep(self.hxsimctl, "disk", "fail", "a0/pd4")

    def test_while_time_passes(self):
        self.sweep(self.hxsimctl, "clock", "advance", "1h")

    def test_while_a_machine_is_made(self):
        self.sweep(self.hxsimctl, "init", "--force", "--topology", "small")

    def test_while_a_virtual_disk_is_made(self):
        self.sweep(self.vexorctl, "vd", "create", "--adapter", "0", "--disks", "2", "--raid", "1", "--size",
                   "10GiB", "--init", "none", "--name", "faults", "--yes")

    def test_while_the_cursor_of_a_follower_moves(self):
        """Events are repeated then, and none is lost."""
        words = ("event", "follow", "--cursor", "cursor", "--from-start", "--count", "3", "--columns", "sequence",
                 "-o", "jsonl")

        def numbers(run):
            return [json.loads(line)["sequence"] for line in run.stdout.splitlines()]

        for runs_before in (0, 1):
            for fault in self.kills(self.vexorctl, words):
                type(self).faults += 1
                with self.subTest(runs_before=runs_before, **fault):
                    folder, root = self.machine()
                    with folder:
                        first = 3 * runs_before
                        for _ in range(runs_before):
                            self.run_in(root, self.vexorctl, words, {})
                        ended = self.run_in(root, self.vexorctl, words, fault)
                        self.assertEqual(ended.returncode, -9, ended.stderr)
                        after = self.run_in(root, self.vexorctl, words, {})
                        self.assertEqual((after.returncode, after.stderr), (0, ""))
                        told = numbers(ended) if ended.stdout.endswith("\n") else []
                        self.assertEqual(numbers(after)[0] % 3, 0)
                        self.assertLessEqual(numbers(after)[0], first + len(told))
                        self.assertGreaterEqual(numbers(after)[0], first)


if __name__ == "__main__":
    if len(sys.argv) < 5:
        sys.exit(__doc__)
    Programs.vexorctl, Programs.hxsimctl, Programs.check_in, Programs.library = map(
        os.path.abspath, sys.argv[1:5])
    del Programs  # it has no tests of its own
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]], verbosity=2)

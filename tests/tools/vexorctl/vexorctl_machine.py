"""A virtual controller of a test's own: a state file in a temporary folder, its clock frozen; and
vexorctl, run as a program over it.

What time it is, and how far an activity has come, changes only when a test says so.
"""

import contextlib
import datetime
import functools
import json
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import jsonschema

TREE = pathlib.Path(__file__).resolve().parents[3]
VERSION = re.search(r"project\(.* VERSION ([0-9.]+)", (TREE / "CMakeLists.txt").read_text())[1]

# Of what vexorctl prints with --output json.
SCHEMA = TREE / "docs" / "vexorctl.schema.json"

# The folder of vexorctl, hxsimctl and check_in: set by run_tests.
PROGRAMS = ""


def _hxsimctl(programs, state, *words):
    return subprocess.run(
        [os.path.join(programs, "hxsimctl"), *map(str, words)], text=True, capture_output=True,
        env={**os.environ, "HXSIM_STATE": str(state)}, timeout=120, check=True).stdout


@functools.lru_cache(maxsize=None)
def _template(programs, topology):
    folder = tempfile.TemporaryDirectory(prefix="vexorctl-machine-")
    state = pathlib.Path(folder.name) / "machine.db"
    _hxsimctl(programs, state, "init", "--topology", topology)
    _hxsimctl(programs, state, "clock", "freeze")
    return folder, state  # the folder goes with the cache, at the end of the program


@functools.lru_cache(maxsize=None)
def schema(path):
    """A validator by the schema in that file, which is checked once: jsonschema.validate would check it
    each time, and that takes half a second for the schema of vexorctl's documents."""
    text = json.loads(pathlib.Path(path).read_text())
    validator = jsonschema.validators.validator_for(text)
    validator.check_schema(text)
    return validator(text)


# In seconds. Nothing is expected to take that long: a test that waits for a state in vain ends then.
PATIENCE = 120


def status_of(process, field):
    """A field of what the kernel tells of a process."""
    text = pathlib.Path(f"/proc/{process.pid}/status").read_text()
    return re.search(rf"^{field}:\s*(\w+)", text, re.M)[1]


def wait_until(condition, what):
    """Fails when the condition is not met in the end."""
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"in vain: {what}")
        time.sleep(0.01)


def interrupt(process):
    """Sends SIGINT to a program, once it catches it."""
    try:
        wait_until(lambda: int(status_of(process, "SigCgt"), 16) & 1 << (signal.SIGINT - 1),
                   "the program was to catch SIGINT")
    except AssertionError:
        process.kill()
        raise
    process.send_signal(signal.SIGINT)


@contextlib.contextmanager
def stopped(process):
    """The program does nothing meanwhile, however long it takes."""
    process.send_signal(signal.SIGSTOP)
    wait_until(lambda: status_of(process, "State") == "T", "the program was to stop")
    try:
        yield
    finally:
        process.send_signal(signal.SIGCONT)


def on_terminal(words, environment, folder=None, steps=()):
    """Runs the program on a pseudo-terminal. Each step is a text and what is done, with the process
    and the terminal, as soon as the text was said behind the one of the step before.

    Returns all that was said, as bytes, and the exit code.
    """
    pid, master = pty.fork()
    if pid == 0:
        try:
            if folder:
                os.chdir(folder)
            os.execve(words[0], words, environment)
        finally:
            os._exit(127)  # it is no second run of the tests
    said = b""
    end = time.monotonic() + PATIENCE
    seen = done = 0
    try:
        for wanted, act in steps:
            while (at := said.find(wanted, seen)) < 0:
                if time.monotonic() > end:
                    os.kill(pid, signal.SIGKILL)
                if select.select([master], [], [], 0.2)[0]:
                    said += os.read(master, 4096)
            seen = at + len(wanted)
            act(pid, master)
            done += 1
        while chunk := os.read(master, 4096):
            said += chunk
    except OSError:
        pass
    _, status = os.waitpid(pid, 0)
    os.close(master)
    if done < len(steps):
        raise AssertionError(f"it never said {steps[done][0]}: {said}")
    return said, os.waitstatus_to_exitcode(status)


def run_tests(module, *names):
    """Runs a module's tests. Its first arguments become its globals of these names, as paths; the
    first of them is vexorctl."""
    global PROGRAMS
    if len(sys.argv) <= len(names):
        sys.exit(sys.modules[module].__doc__)
    for name, path in zip(names, sys.argv[1:]):
        setattr(sys.modules[module], name, os.path.abspath(path))
    PROGRAMS = os.path.dirname(os.path.abspath(sys.argv[1]))
    unittest.main(module, argv=[sys.argv[0], *sys.argv[1 + len(names):]], verbosity=2)


def full_disk(faults, folder):
    """The environment of a program that finds no room below the folder; `faults` is the library of
    tests/support/faults.c."""
    return {"LD_PRELOAD": str(faults), "FAULTS_FULL_DISK": str(folder)}


def failing_allocation(faults, number, count_file=None):
    """The environment of a program whose allocation of that number fails; "7+" is the seventh and
    all that follow. The number of allocations goes to `count_file`."""
    environment = {"LD_PRELOAD": str(faults), "FAULTS_ALLOCATION": str(number)}
    if count_file:
        environment["FAULTS_COUNT"] = str(count_file)
    return environment


class Machine:
    """A fresh machine; `programs` is the folder of hxsimctl, `topology` a name or a file."""

    def __init__(self, programs, state, topology="default"):
        self.programs = str(programs)
        self.state = pathlib.Path(state)
        shutil.copyfile(_template(self.programs, str(topology))[1], self.state)

    def hxsimctl(self, *words):
        return _hxsimctl(self.programs, self.state, *words)

    def wait_for_a_whole_second(self):
        """Events have whole seconds: what is computed of their times is the same every time only when
        the machine's clock stands at the start of one."""
        now = re.match(r"(\S+) (\S+) UTC", self.hxsimctl("clock", "show"))
        then = datetime.datetime.fromisoformat(f"{now[1]}T{now[2]}") + datetime.timedelta(seconds=1)
        self.hxsimctl("clock", "advance", then.isoformat() + "Z")


class VexorctlCase(unittest.TestCase):
    """A temporary root with users and an empty folder for events, and a fresh machine."""

    maxDiff = None
    topology = "default"

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="vexorctl-")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        shutil.copytree(TREE / "examples" / "root", self.root, dirs_exist_ok=True)
        (self.root / "opt/kestrel/raid/db").mkdir(parents=True)
        self.vexorctl = os.path.join(PROGRAMS, "vexorctl")
        self.environment = {
            # The locale is for the shells that programs run: some complain of one that is not there.
            **os.environ, "VEXORAPI_ROOT": str(self.root), "TZ": "UTC", "LC_ALL": "C.UTF-8",
            "HXSIM_STATE": str(self.root / "machine.db"),
            "PATH": PROGRAMS + os.pathsep + os.environ["PATH"],
        }
        self.environment.pop("NO_COLOR", None)
        self.machine = Machine(PROGRAMS, self.root / "machine.db", self.topology)

    def collect(self):
        """Moves the adapters' events into the store, as the event service does."""
        subprocess.run([os.path.join(PROGRAMS, "check_in"), "2"], env=self.environment,
                       stdout=subprocess.DEVNULL, check=True)

    def run_words(self, *words, stdin=None):
        source = {"input": stdin} if stdin is not None else {"stdin": subprocess.DEVNULL}
        return subprocess.run([self.vexorctl, *map(str, words)], cwd=self.root,
                              env=self.environment, text=True, errors="surrogateescape",
                              capture_output=True, timeout=60, check=False, **source)

    def commands(self):
        """Every (noun, verb) of the tree; the verb is empty for a noun that is a command."""
        top = self.run_words("--help").stdout
        nouns = re.findall(r"^  ([\w-]+)(?:  +\S|$)", top.split("Nouns:")[1].split("\n\n")[0], re.MULTILINE)
        for noun in nouns:
            text = self.run_words(noun, "--help").stdout
            if "\nVerbs:\n" not in text:
                yield noun, ""
                continue
            section = text.split("\nVerbs:\n")[1].split("\n\n")[0]
            for verb in re.findall(r"^  ([\w-]+)  +\S", section, re.MULTILINE):
                yield noun, verb

    def terminal(self, words, answer=None, meanwhile=None, until=b"to go on: "):
        """Runs on a pseudo-terminal; waits for `until`, lets `meanwhile` happen, and answers.

        Returns all that was said, as bytes, and the exit code.
        """
        def act(pid, master):
            if meanwhile:
                meanwhile(pid)
            if answer is not None:
                os.write(master, answer.encode() + b"\n")

        steps = [(until, act)] if meanwhile or answer is not None else []
        return on_terminal([self.vexorctl, *map(str, words)], self.environment, self.root, steps)

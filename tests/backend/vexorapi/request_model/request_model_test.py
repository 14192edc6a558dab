#!/usr/bin/env python3
"""Random commands go to the library and to a model of it, which shares no code with it: what is
returned, the bytes of the result, what is left of the caller's buffer, every call that the controller
sees with its arguments, and the image files written are the same on both sides.

usage: request_model_test.py DRIVER [--count N] [--seed S]
       request_model_test.py DRIVER --self-check

The seed is drawn, unless it is given, and printed. On the first difference the command, both answers
and the first byte that differs are printed, with the command line that repeats it, and the test fails.
With --self-check one rule of the model after the other is made wrong, and each must be noticed.
"""

import argparse
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import time

import model_events
import model_functions
import model_records
from model_commands import IMAGE_SIZES, Commands
from model_events import Store
from model_functions import Controller, Host, Model

WHOLE = 524288  # a buffer that every result fits

USERS = {b"root": b"secret", b"alice": b"secret", b"bob": b"secret", b"carol": None, b"dave": None}
HASH = "$1$abcdefgh$cHJi5PXp/ki/ktXzqlk6I1"  # of "secret"

CAPACITY = 300  # of the event store: small, so that it wraps

UNTOUCHED, HOLDS_TEXT = 0, 1


# What the driver runs under, from the command line.
UNDER = []
VALGRIND = ("--quiet", "--leak-check=full", "--errors-for-leak-kinds=definite,indirect,possible",
            "--error-exitcode=99")


class Difference(Exception):
    """The library and the model came to different answers."""


class Driver:
    """The library, behind request_model_driver.cpp."""

    def __init__(self, program, root):
        environment = dict(os.environ, VEXORAPI_ROOT=root)
        self.process = subprocess.Popen(
            [*UNDER, os.path.abspath(program)], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            env=environment, cwd=root)
        names = self._read().decode().split()
        self.numbers = {name: number for number, name in enumerate(names)}

    def _read(self):
        length = self.process.stdout.read(4)
        if len(length) < 4:
            raise Difference(f"the library has ended with {self.process.wait()}")
        return self.process.stdout.read(struct.unpack("<I", length)[0])

    def request(self, head, answers=None):
        """The bytes of a request."""
        request = bytearray(head)
        if answers is not None:
            request += struct.pack("<H", len(answers))
            for name, code, parts in answers:
                request += struct.pack("<BBB", self.numbers[name], code, len(parts))
                for part in parts:
                    request += struct.pack("<I", len(part)) + part
        return struct.pack("<I", len(request)) + request

    def ask(self, requests):
        """Carries out a batch. Of each request: what was returned, what became of the buffer, the
        result, the calls."""
        batch = b"".join(requests)
        self.process.stdin.write(struct.pack("<I", len(batch)) + batch)
        self.process.stdin.flush()
        replies = self._read()
        found = []
        at = 0
        while at < len(replies):
            returned, buffer, length = struct.unpack_from("<iBI", replies, at + 4)
            text = replies[at + 13:at + 13 + length]
            end = at + 4 + struct.unpack_from("<I", replies, at)[0]
            found.append((returned, buffer, text, replies[at + 17 + length:end].decode()))
            at = end
        return found

    def close(self):
        self.process.stdin.close()
        self.process.stdout.close()
        return self.process.wait()


def first_difference(ours, theirs):
    for place, (mine, other) in enumerate(zip(ours, theirs)):
        if mine != other:
            return place
    return min(len(ours), len(theirs))


def compare(what, predicted, found):
    if predicted == found:
        return
    if isinstance(predicted, (bytes, bytearray, str)):
        at = first_difference(predicted, found)
        around = slice(max(0, at - 60), at + 60)
        raise Difference(f"{what} differs at byte {at} of {len(predicted)} predicted and "
                         f"{len(found)} found:\n  predicted ...{predicted[around]!r}\n"
                         f"  found     ...{found[around]!r}")
    raise Difference(f"{what}: {predicted} was predicted, {found} found")


class Run:
    """One process of the library beside one model, over any number of commands."""

    def __init__(self, program, seed):
        self.rng = random.Random(seed)
        self.directory = tempfile.TemporaryDirectory(prefix="vexorapi-model-")
        self.root = pathlib.Path(self.directory.name)
        files = self._furnish(seed)
        service = (2, 1, 0, 35) if seed % 2 else (1, 0, 0, 7)
        host = Host(USERS, {b"alice"}, service)
        host.without_shadow = {b"dave"}
        self.store = Store(CAPACITY)
        self.model = Model(host, self.store, files)
        self.commands = Commands(self.rng, sorted(USERS))
        self.driver = Driver(program, self.directory.name)

    def _furnish(self, seed):
        """The files that the library finds: users, configuration, version, and images, which are
        returned."""
        rng = random.Random(seed ^ 0x5EED)
        for folder in ("etc", "opt/kestrel/raid/db"):
            (self.root / folder).mkdir(parents=True)
        passwd = [f"{name.decode()}:x:{100 + place}:100::/:/bin/sh"
                  for place, name in enumerate(sorted(USERS))]
        (self.root / "etc/passwd").write_text("\n".join(passwd) + "\n")
        shadow = [f"{name.decode()}:{HASH if password else '*'}:1::::::"
                  for name, password in sorted(USERS.items()) if name != b"dave"]
        (self.root / "etc/shadow").write_text("\n".join(shadow) + "\n")
        (self.root / "etc/group").write_text("users:x:100:bob\nroot:x:0:alice\n")
        (self.root / "vexorapi.ini").write_text(
            f'<c><EventLogConfig type="config" MaxNumOfEvent="{CAPACITY}"/></c>')
        if seed % 2:
            (self.root / "hxraidver.dat").write_text("2.1.0.35\n")
        files = {f"image{size}": bytearray(rng.randbytes(size)) for size in IMAGE_SIZES}
        for number in range(4):
            header = bytearray(rng.randbytes(64 if number else 63))
            if number == 1:
                header[6:14] = b"3\0001\0000\00012"
            files[f"bios{number}"] = header
        for name, data in files.items():
            (self.root / name).write_bytes(data)
        return files

    def batch(self, size):
        """That many commands, now and then a check-in, on both sides."""
        made = [self._make() for _ in range(size)]
        found = self.driver.ask([request for _, request, _ in made])
        for (what, _, predicted), answer in zip(made, found):
            try:
                for part, mine, other in zip(PARTS, predicted, answer):
                    compare(part, mine, other)
            except Difference as difference:
                raise Difference(f"{difference}\ncommand: {what!r}") from None
        for name, data in self.model.files.items():
            compare(f"the file {name}", bytes(data), (self.root / name).read_bytes())

    def _make(self):
        """What it is, the request, and the reply that it should have."""
        dice = self.rng.random()
        if dice < 0.02:
            return self._check_in()
        if dice < 0.025:
            extent = "{} {}".format(*self.store.extent()).encode()
            return "VX_EvGetInfo", self.driver.request(b"I"), (0, UNTOUCHED, extent, "")
        return self._command()

    def _check_in(self):
        adapters = self.rng.choice((0, 1, 2, 4, 5, 255))
        answers = self.commands.polls()
        controller = Controller(answers)
        self.store.check_in(adapters, controller)
        request = self.driver.request(struct.pack("<cB", b"E", adapters), answers)
        return "a check-in", request, (0, UNTOUCHED, b"", controller.calls())

    def _command(self):
        command, name = self.commands.command()
        answers = self.commands.answers(name)
        room, flags = WHOLE, self.rng.choice((0,) * 200 + (1, 2, 3))
        if not command or flags:
            reply = (0, UNTOUCHED, b"", "")
        else:
            well_formed, document, calls = self.model.answer(command, answers)
            room = self._room_for(document)
            reply = (*self.deliver(room, well_formed, document), calls)
        head = struct.pack("<cIBI", b"C", room, flags, len(command)) + command
        return command, self.driver.request(head, answers), reply

    def _room_for(self, document):
        rng = self.rng
        if rng.random() < 0.8:
            return WHOLE
        # With no room at all nothing is carried out; the model has done so already.
        if document is None:
            return rng.choice((1, 2))
        length = len(document)
        return max(1, rng.choice((length - 1, length, length + 1, length + 2, 1,
                                  rng.randrange(2000))))

    @staticmethod
    def deliver(room, well_formed, document):
        """What is returned, what becomes of the buffer, and the text in it."""
        if not well_formed:
            return 0, UNTOUCHED, b""
        if document is None:
            return 0, HOLDS_TEXT, b""
        if len(document) >= room:
            return 1, HOLDS_TEXT, b""
        return 1, HOLDS_TEXT, document[:-1].split(b"\0", 1)[0]

    def close(self):
        status = self.driver.close()
        if status != 0:
            raise Difference(f"the library has ended with {status}")


PARTS = ("the returned value", "the state of the buffer", "the result", "the list of calls")

PER_RUN = 2000  # commands of one process; each process has a seed of its own
PER_BATCH = 50


def run(program, seed, count):
    """Returns None, or what differs."""
    begin = time.monotonic()
    done = 0
    while done < count:
        run_seed = seed + done // PER_RUN
        part = Run(program, run_seed)
        number = min(PER_RUN, count - done)
        first = 0
        try:
            for first in range(0, number, PER_BATCH):
                part.batch(min(PER_BATCH, number - first))
            part.close()
        except Difference as difference:
            return (f"seed {run_seed}, behind command {first}: {difference}\n"
                    f"repeat it with: {sys.argv[0]} {program} --seed {run_seed} --count {PER_RUN}")
        finally:
            part.directory.cleanup()
        done += number
        if done % 100000 == 0:
            print(f"{done} commands, {time.monotonic() - begin:.0f} s", flush=True)
    print(f"{count} commands from seed {seed}: the same on both sides, "
          f"{time.monotonic() - begin:.1f} s")
    return None


# Rules of the model, each of which must show when it is another: module, name, and the wrong value.
# What a name stands for is replaced, for one run.
WRONG_RULES = (
    (model_functions, "TEXT_ROOM", 2046),
    (model_functions, "HANDLED_LEVELS", 4),
    (model_functions, "MOST_DECLARATIONS", 255),
    (model_functions, "REMAP_RECORDS", 149),
    (model_functions, "ALL_ADAPTERS", 254),
    (model_functions, "PIECE", 32767),
    (model_functions, "LEVELS", model_functions.LEVELS[:-2]),
    (model_functions, "number_in", lambda digits, bits=32: int(digits)),
    (model_functions, "as_signed16", int),
    (model_records, "CAPACITY", 524288),
    (model_records, "PORTS", 7),
    (model_events, "EVENTS_PER_POLL", 49),
    (model_events, "signed", int),
    (model_events, "WHATEVER", 0),
    (Run, "deliver", staticmethod(
        lambda *reply, right=Run.deliver: right(reply[0] + 1, *reply[1:]))),
)


def self_check(program, seed):
    """Whether each wrong rule is noticed."""
    failures = 0
    for module, name, wrong in WRONG_RULES:
        right = vars(module)[name]
        setattr(module, name, wrong)
        found = run(program, seed, 40000)
        setattr(module, name, right)
        print("ok  " if found else "FAIL", name, (found or "").split("\n")[0][:100], flush=True)
        failures += not found
    return failures


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("driver")
    parser.add_argument("--count", type=int, default=20000)
    parser.add_argument("--seed", type=int)
    parser.add_argument("--self-check", action="store_true")
    parser.add_argument("--valgrind", metavar="PROGRAM")
    options = parser.parse_args()
    # The time of "adapter found" is local: a zone that differs from UTC shows it.
    os.environ["TZ"] = "XYZ-3:30"
    time.tzset()
    if options.valgrind:
        UNDER[:] = [options.valgrind, *VALGRIND]
    seed = options.seed
    if seed is None:
        seed = random.SystemRandom().randrange(1 << 31)
    print(f"seed {seed}", flush=True)
    if options.self_check:
        sys.exit(1 if self_check(options.driver, seed) else 0)
    found = run(options.driver, seed, options.count)
    if found:
        print(found)
        sys.exit(1)


if __name__ == "__main__":
    main()

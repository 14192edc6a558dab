#!/usr/bin/env python3
"""vexorctl event list over a store of several pages: nothing is lost between two of them, and a long
list is never held as a whole.

usage: vexorctl_many_events_test.py VEXORCTL [TEST]...
"""
import fcntl
import json
import os
import pathlib
import re
import struct
import subprocess
import unittest

import vexorctl_machine
from vexorctl_machine import VexorctlCase

EVENTS = 12000
FIRST = 700
RING = 15001


def slot(number):
    """A slot of the ring; every hundredth event's text is longer than the others."""
    code = 37 if number % 100 == 0 else 1
    event = struct.pack("<HHIHBBI16x16s16x", 2, code, 1700000000 + 7 * number, number % 16,
                        3 if number % 5 == 0 else 2, 0, number, b"")
    assert len(event) == 64
    return struct.pack("<HHI", 0x0101, 0, 0) + event + bytes(120)


class ManyEvents(VexorctlCase):
    def setUp(self):
        super().setUp()
        start, end = FIRST % RING, (FIRST + EVENTS) % RING
        head = b"Ombra Event File v0.1".ljust(32, b"\0")
        head += struct.pack("<IIIII", EVENTS, RING - 1, start, end, FIRST)
        with open(self.root / "opt/kestrel/raid/db/vx_hx_raid.ev", "wb") as file:
            file.write(head.ljust(512, b"\0"))
            file.write(bytes(192 * start))
            file.writelines(slot(number) for number in range(FIRST, FIRST + EVENTS))

    def printed(self, *words):
        done = self.run_words("event", "list", *words)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def numbers(self, *words):
        return [json.loads(line)["sequence"]
                for line in self.printed("-o", "jsonl", *words).splitlines()]

    def test_are_each_listed_once_in_order(self):
        self.assertEqual(self.numbers(), list(range(FIRST, FIRST + EVENTS)))

    def test_are_the_newest_with_last(self):
        self.assertEqual(self.numbers("--last", "3000"),
                         list(range(FIRST + EVENTS - 3000, FIRST + EVENTS)))

    def test_are_the_newest_that_pass_with_last_and_a_filter(self):
        graver = [number for number in range(FIRST, FIRST + EVENTS) if number % 5 == 0]
        self.assertEqual(self.numbers("--last", "700", "--severity", "warning+"), graver[-700:])

    def test_stand_in_one_table_whose_columns_do_not_move(self):
        for format_ in "table", "wide":
            lines = self.printed("-o", format_).splitlines()
            self.assertEqual(len(lines), 1 + EVENTS)
            self.assertEqual(len([line for line in lines if line.startswith("NUMBER")]), 1)
            at = lines[0].index("EVENT")
            for line in lines[1:]:
                self.assertEqual(line[at - 2:at], "  ")
                self.assertRegex(line[at:], r"^\S.*[^ ]$")

    def test_have_one_heading_as_csv_and_a_blank_line_between_two_as_a_list(self):
        lines = self.printed("-o", "csv", "--columns", "sequence,code").splitlines()
        self.assertEqual([lines[0], len(lines)], ["sequence,code", 1 + EVENTS])
        text = self.printed("-o", "list", "--columns", "sequence")
        self.assertEqual(text.split("\n\n")[0], f"Number  {FIRST}")
        self.assertEqual(text.count("\n\n"), EVENTS - 1)

    @unittest.skipIf("VEXORAPI_SANITIZED" in os.environ, "a sanitizer's memory is more than ours")
    def test_are_never_held_all_at_once(self):
        def most_memory(*words):
            """In KiB. It is asked for while the program waits with its next piece of output: what the
            kernel tells of an ended process begins with the memory of the one that started it."""
            process = subprocess.Popen([self.vexorctl, "event", "list", *words], cwd=self.root,
                                       env=self.environment, stdout=subprocess.PIPE, bufsize=0)
            fcntl.fcntl(process.stdout, fcntl.F_SETPIPE_SZ, 4096)
            most = 0
            while process.stdout.read(4096):
                status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
                if found := re.search(r"^VmHWM:\s*(\d+) kB$", status, re.M):
                    most = max(most, int(found[1]))
            process.stdout.close()
            self.assertEqual(process.wait(), 0)
            self.assertGreater(most, 0)
            return most

        # What is held is a page of 2000 events; all of them would take five times as much.
        for words in ([], ["-o", "jsonl"]):
            with self.subTest(words=words):
                page = most_memory("--last", "2000", *words)
                self.assertLess(most_memory(*words), page + 2048)


if __name__ == "__main__":
    vexorctl_machine.run_tests("__main__", "VEXORCTL")

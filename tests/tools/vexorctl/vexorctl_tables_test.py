#!/usr/bin/env python3
"""Tables and lists of vexorctl for people: what fits where, over the virtual controller.

usage: vexorctl_tables_test.py VEXORCTL [TEST]...
"""

import fcntl
import os
import pty
import struct
import subprocess
import termios

import vexorctl_machine
from vexorctl_machine import VexorctlCase

LISTS = ["overview -o table", "adapter list", "enclosure list", "enclosure elements",
         "enclosure expanders", "enclosure multipliers", "disk list", "disk blocks", "vd list",
         "dg list", "task list", "battery list", "flash list", "counters show", "risk -o table",
         "user show root"]


class Tables(VexorctlCase):
    def wide(self, columns, *words):
        """What is printed on a terminal that is so wide, without colours."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 40, columns, 0, 0))
        process = subprocess.Popen([self.vexorctl, *words], cwd=self.root, stdout=slave,
                                   stdin=subprocess.DEVNULL,
                                   env={**self.environment, "NO_COLOR": "1"})
        os.close(slave)
        said = b""
        try:
            while chunk := os.read(master, 4096):
                said += chunk
        except OSError:
            pass
        os.close(master)
        self.assertEqual(process.wait(timeout=60), 0)
        return said.decode().replace("\r\n", "\n")

    def test_every_default_table_fits_80_columns_in_a_pipe(self):
        for words in LISTS:
            with self.subTest(words=words):
                run = self.run_words(*words.split())
                self.assertEqual(run.returncode, 0, run.stderr)
                for line in run.stdout.splitlines():
                    self.assertLessEqual(len(line), 80, line)

    def test_a_terminal_shows_as_many_columns_as_fit(self):
        narrow, usual, broad = (self.wide(each, "disk", "list") for each in (40, 80, 200))
        for columns, text in ((40, narrow), (80, usual), (200, broad)):
            self.assertLessEqual(max(map(len, text.splitlines())), columns)
        self.assertEqual(usual, self.run_words("disk", "list").stdout)
        self.assertTrue(narrow.startswith("ADDRESS  STATE"), narrow)
        self.assertNotIn("SERIAL", narrow)
        self.assertIn("SMART ALARM", broad.splitlines()[0])

    def test_what_columns_name_is_shown_however_narrow_it_is(self):
        text = self.wide(40, "disk", "list", "--columns", "address,model,serial,wwn")
        self.assertIn("WWN", text.splitlines()[0])

    def test_the_overview_follows_the_terminal(self):
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        attention = {}
        for columns in (60, 200):
            text = self.wide(columns, "overview")
            self.assertLessEqual(max(map(len, text.splitlines())), columns, text)
            attention[columns] = text.split("\nNeeds attention:\n")[1]
        self.assertGreater(max(map(len, attention[200].splitlines())), 80)
        self.assertEqual(attention[60].split(), attention[200].split())

    def test_neighbours_are_one_range_for_people_and_a_list_for_scripts(self):
        def disks(*options):
            return self.run_words("vd", "list", "a0", "--columns", "disks", "--no-header",
                                  *options).stdout.splitlines()

        self.assertEqual(disks(), ["a0/pd0-3", "a0/pd4-8"])
        self.assertEqual(disks("-o", "csv"),
                         ['"a0/pd0,a0/pd1,a0/pd2,a0/pd3"',
                          '"a0/pd4,a0/pd5,a0/pd6,a0/pd7,a0/pd8"'])
        # What is no address is no range.
        run = self.run_words("adapter", "list", "a1", "--columns", "levels", "--no-header")
        self.assertEqual(run.stdout, "raid0,raid1,raid10,raid5\n")

    def test_what_does_not_follow_each_other_is_no_range(self):
        self.run_words("vd", "create", "a1/pd7", "a1/pd3", "a1/pd4", "--raid", "5", "--size",
                       "10GiB", "--name", "x", "--yes")
        run = self.run_words("vd", "list", "name:x", "--columns", "disks", "--no-header")
        self.assertEqual(run.stdout, "a1/pd7,3-4\n")

    def test_a_list_has_labels_and_not_keys(self):
        run = self.run_words("disk", "list", "a0/pd0", "-o", "list", "--columns",
                             "size_bytes,smart_alarm,wwn,parent_id")
        self.assertEqual([line.split("  ")[0] for line in run.stdout.splitlines()],
                         ["Size", "SMART alarm", "WWN", "Parent ID"])


if __name__ == "__main__":
    vexorctl_machine.run_tests("__main__", "VEXORCTL")

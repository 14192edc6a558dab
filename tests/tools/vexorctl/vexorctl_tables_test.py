#!/usr/bin/env python3
"""Tables and lists of vexorctl for people: what fits where, over the virtual controller.

usage: vexorctl_tables_test.py VEXORCTL [TEST]...
"""

import fcntl
import os
import pathlib
import pty
import re
import select
import signal
import struct
import subprocess
import termios
import time

import vexorctl_machine
from vexorctl_machine import TREE, VexorctlCase

LISTS = ["overview -o table", "adapter list", "enclosure list", "enclosure elements",
         "enclosure expanders", "enclosure multipliers", "disk list", "disk blocks", "vd list",
         "dg list", "task list", "battery list", "flash list", "counters show", "risk -o table",
         "user show root"]


class WideCase(VexorctlCase):
    def wide(self, columns, *words, code=0):
        """What is printed on a terminal that is so wide, without colours."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 40, columns, 0, 0))
        process = subprocess.Popen([self.vexorctl, *words], cwd=self.root, stdout=slave,
                                   stderr=slave, stdin=subprocess.DEVNULL,
                                   env={**self.environment, "NO_COLOR": "1"})
        os.close(slave)
        said = b""
        try:
            while chunk := os.read(master, 4096):
                said += chunk
        except OSError:
            pass
        os.close(master)
        self.assertIn(process.wait(timeout=60), (0, code), said)
        return said.decode().replace("\r\n", "\n")


class Tables(WideCase):
    def test_every_default_table_fits_80_columns_in_a_pipe(self):
        for words in LISTS:
            with self.subTest(words=words):
                run = self.run_words(*words.split())
                self.assertEqual(run.returncode, 0, run.stderr)
                for line in run.stdout.splitlines():
                    self.assertLessEqual(len(line), 80, line)

    def test_a_range_that_is_shown_can_be_typed(self):
        disks = self.run_words("disk", "list", "a0/pd1-3", "-o", "jsonl", "--columns", "address")
        self.assertEqual(re.findall(r'"(a0/pd\d+)"', disks.stdout), ["a0/pd1", "a0/pd2", "a0/pd3"])
        self.assertEqual(disks.returncode, 0, disks.stderr)
        backwards = self.run_words("disk", "list", "a0/pd3-1")
        self.assertEqual((backwards.returncode, backwards.stdout), (2, ""))
        self.assertIn('"a0/pd3-1" runs backwards', backwards.stderr)

    def test_a_terminal_shows_as_many_columns_as_fit(self):
        narrow, usual, broad = (self.wide(each, "disk", "list") for each in (40, 80, 200))
        for columns, text in ((40, narrow), (80, usual), (200, broad)):
            self.assertLessEqual(max(map(len, text.splitlines())), columns)
        self.assertEqual(usual, self.run_words("disk", "list").stdout)
        self.assertTrue(narrow.startswith("ADDRESS  STATE"), narrow)
        self.assertNotIn("SERIAL", narrow)
        self.assertIn("SMART ALARM", broad.splitlines()[0])

    def test_how_far_an_activity_is_has_room_before_what_was_long_ago(self):
        whole = self.wide(80, "vd", "list").splitlines()
        self.assertEqual(whole[0].split()[-4:], ["INIT", "DISKS", "ACTIVITY", "DONE"])
        head = self.wide(max(map(len, whole)) - 1, "vd", "list").splitlines()[0].split()
        self.assertEqual(head[-3:], ["DISKS", "ACTIVITY", "DONE"])
        self.assertNotIn("INIT", head)

    def test_the_text_of_a_row_goes_on_in_the_next_line(self):
        self.run_words("task", "start", "a0/vd0", "--kind", "check")
        self.collect()
        wanted = self.run_words("event", "list", "--last", "1", "--columns", "text", "--no-header")
        for columns in (40, 60, 80):
            lines = self.wide(columns, "event", "list", "--last", "1").splitlines()
            self.assertLessEqual(max(map(len, lines)), columns, lines)
            start = lines[0].index("EVENT")
            self.assertEqual(" ".join(line[start:] for line in lines[1:]) + "\n", wanted.stdout)
            self.assertTrue(all(line[:start].isspace() for line in lines[2:]), lines)
        self.assertEqual(len(lines), 3)

    def test_a_word_that_is_wider_than_its_column_is_broken(self):
        self.run_words("task", "start", "a0/vd0", "--kind", "check")
        self.collect()
        lines = self.wide(40, "event", "list", "--last", "1", "--raw").splitlines()
        self.assertLessEqual(max(map(len, lines)), 40, lines)
        start = lines[0].index("EVENT")
        wanted = self.run_words("event", "list", "--last", "1", "--raw", "--columns", "text",
                                "--no-header").stdout
        self.assertEqual("".join(line[start:] for line in lines[1:]) + "\n", wanted)

    def test_sentences_follow_the_terminal_and_are_a_line_each_in_a_pipe(self):
        piped = self.run_words("risk").stdout
        self.assertEqual(len(piped.splitlines()), 3)
        text = self.wide(60, "risk")
        self.assertLessEqual(max(map(len, text.splitlines())), 60)
        self.assertEqual(text.split(), piped.split())

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


class Terminal:
    """What stands on a terminal of that width after what was written to it."""

    def __init__(self, columns):
        self.columns, self.rows, self.row, self.column = columns, [""], 0, 0

    def write(self, text):
        for control, lines, character in re.findall(r"\x1b\[(\d*)([A-Za-z])|(.)", text, re.S):
            if lines:
                self.control(lines, int(control or 1))
            elif character == "\r":
                self.column = 0
            elif character == "\n":
                self.down()
            else:
                if self.column == self.columns:
                    self.column = 0
                    self.down()
                line = self.rows[self.row].ljust(self.column)
                self.rows[self.row] = line[:self.column] + character + line[self.column + 1:]
                self.column += 1

    def control(self, letter, count):
        if letter == "A":
            self.row = max(self.row - count, 0)
        elif letter == "K":
            self.rows[self.row] = self.rows[self.row][:self.column]
        elif letter == "J":
            self.rows[self.row] = self.rows[self.row][:self.column]
            del self.rows[self.row + 1:]
        else:
            raise AssertionError(f"unknown control {letter}")

    def down(self):
        self.row += 1
        if self.row == len(self.rows):
            self.rows.append("")


OVER = "vexorctl: a0/vd0: the wait timed out; the task goes on"
INTERRUPTED = "vexorctl: a0/vd0: interrupted; the task goes on"


def interrupt(process, _):
    process.send_signal(signal.SIGINT)


class Watching(WideCase):
    # What each drawing begins with, and what takes the last one away: back to the first line.
    START = re.compile(r"(?:\x1b\[\d+A\r|(?<![\nA])\r)(?=\x1b\[[JK])")

    def parts(self, said):
        starts = [match.start() for match in self.START.finditer(said)]
        return [said[start:end] for start, end in zip(starts, starts[1:] + [len(said)])]

    def watch(self, columns, *words, steps=()):
        """Runs task watch on a terminal. Each step is a condition and what is done, with the process
        and the terminal, as soon as the drawings meet it. Returns the drawings, of which the last one
        takes the others away and says why, and how it ended."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 40, columns, 0, 0))
        process = subprocess.Popen([self.vexorctl, "task", "watch", *words], cwd=self.root,
                                   stdout=slave, stderr=slave, stdin=subprocess.DEVNULL,
                                   env=self.environment)
        said = ""
        left = list(steps)
        end = time.monotonic() + vexorctl_machine.PATIENCE
        while process.poll() is None or select.select([master], [], [], 0)[0]:
            if time.monotonic() > end:
                process.kill()
            if not select.select([master], [], [], 0.05)[0]:
                continue
            said += os.read(master, 65536).decode()
            # The last one may not have been written to its end.
            if left and left[0][0](self.parts(said)[:-1]):
                left.pop(0)[1](process, slave)
        os.close(slave)
        os.close(master)
        self.assertEqual(left, [], said)
        return self.parts(said), process.returncode

    def start(self, *addresses):
        for address in addresses:
            run = self.run_words("task", "start", address, "--kind", "check")
            self.assertEqual(run.returncode, 0, run.stderr)

    def test_all_are_shown_a_line_each_at_every_width(self):
        self.start("a0/vd0", "a0/vd2", "a1/vd0")
        for columns in (40, 60, 80, 200):
            with self.subTest(columns=columns):
                said, code = self.watch(columns, steps=[(lambda drawn: len(drawn) > 2, interrupt)])
                self.assertEqual(code, 130)
                terminal = Terminal(columns)
                for text in said[:-1]:
                    terminal.write(text)
                    self.assertEqual([line.split(" [")[0] for line in terminal.rows],
                                     ["a0/vd0 check", "a0/vd2 check", "a1/vd0 check"])
                    self.assertLess(max(map(len, terminal.rows)), columns)
                    self.assertTrue(all(line.endswith("] 0%") for line in terminal.rows))
                terminal.write(said[-1])
                self.assertEqual("".join(terminal.rows), INTERRUPTED)

    def test_what_was_drawn_is_taken_away_when_the_time_is_over(self):
        self.start("a0/vd0", "a0/vd2")
        said, code = self.watch(60, "--timeout", "1s")
        self.assertEqual(code, 7)
        self.assertGreater(len(said), 1)
        terminal = Terminal(60)
        terminal.write("".join(said))
        self.assertEqual("".join(terminal.rows), OVER)

    def test_another_width_holds_from_the_next_drawing_on(self):
        self.start("a0/vd0", "a0/vd2")

        def widest(text):
            return max(len(line) for line in re.sub(r"\x1b\[\d*[A-Z]", "", text).split("\r"))

        def make_narrower(_, slave):
            fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 40, 42, 0, 0))

        said, code = self.watch(80, steps=[
            (lambda drawn: len(drawn) > 2, make_narrower),
            (lambda drawn: [widest(each) < 42 for each in drawn[-2:]] == [True, True], interrupt)])
        self.assertEqual(code, 130)
        for each in said[:3]:
            self.assertGreater(widest(each), 42)

    def test_what_is_paused_is_told_with_the_command_that_resumes_it(self):
        self.start("a0/vd0", "a0/vd2")
        self.machine.hxsimctl("clock", "advance", "1h")
        self.run_words("task", "pause-all", "a0")
        for words in (["watch"], ["wait"], ["wait", "--timeout", "120s"]):
            run = self.run_words("task", *words)
            self.assertRegex(run.stderr, r"\Avexorctl: a0/vd0: paused at \d+ %; to let it go on: "
                                         r"vexorctl task resume a0/vd0\n"
                                         r"vexorctl: a0/vd2: paused at \d+ %; to let it go on: "
                                         r"vexorctl task resume a0/vd2\n\Z")
            self.assertEqual((run.stdout, run.returncode), ("", 7))

    def test_the_migration_of_a_group_has_its_progress(self):
        run = self.run_words("dg", "migrate", "a0/dg0", "--raid", "6", "--to",
                             "a0/pd0,a0/pd1,a0/pd2,a0/pd3,a0/pd11", "--yes")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.machine.hxsimctl("clock", "advance", "40m")
        percent = self.run_words("task", "list", "--columns", "progress_ratio",
                                 "--no-header").stdout.strip()
        said, _ = self.watch(80, "--timeout", "1s")
        self.assertRegex(said[0], rf"a0/dg0 migration \[#*\.+\] {percent}")


class Screens(WideCase):
    """docs/screens.md: each "scenario" makes a machine, and what is printed follows its command."""

    def machine_of(self, steps):
        topology = re.search(r'^# on the machine "(\w+)"$', steps, re.M)[1]
        self.machine = vexorctl_machine.Machine(self.machine.programs, self.machine.state, topology)
        self.machine.wait_for_a_whole_second()
        for step in steps.splitlines()[1:]:
            path = self.root / "story"
            path.write_text(step + "\n")
            self.machine.hxsimctl("scenario", "run", path)
        self.collect()

    def printed(self, document):
        """The document with what the commands print now."""
        lines, columns, steps, inside = [], 0, "", ""
        for line in document.splitlines(keepends=True):
            if width := re.fullmatch(r"(\d+) columns:\n", line):
                columns = int(width[1])
            if line.startswith("```"):
                if inside == "scenario":
                    self.machine_of(steps)
                inside, steps = line[3:].strip(), ""
            elif inside == "scenario":
                steps += line
            elif inside == "console":
                if not line.startswith("$ "):
                    continue
                words = line[2:].split()[1:]
                code = {"check": 2, "risk": 9}.get(words[0], 0) if words else 0
                line += self.wide(columns, *words, code=code)
                for each in line.splitlines()[1:]:
                    if words != ["check"]:
                        self.assertLessEqual(len(each), columns, each)
            lines.append(line)
        return "".join(lines)

    def test_every_screen_is_what_is_printed(self):
        document = pathlib.Path(os.environ.get("VEXORCTL_SCREENS", TREE / "docs" / "screens.md"))
        text = document.read_text()
        printed = self.printed(text)
        if "VEXORCTL_SCREENS" in os.environ:
            document.write_text(printed)
        self.assertGreater(text.count("\n$ vexorctl"), 5)
        self.assertEqual(printed, text)


if __name__ == "__main__":
    vexorctl_machine.run_tests("__main__", "VEXORCTL")

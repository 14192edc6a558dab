"""Text that vexorctl reads and shows: times as people type them, and names that hold more than
letters.

Usage: vexorctl_text_test.py VEXORCTL
"""

import csv
import io
import json
import os
import re
import unicodedata
import xml.etree.ElementTree

import vexorctl_machine

VEXORCTL = ""

# What no terminal may be given: C0 but for line ends, DEL, C1, and what changes the direction.
HARMFUL = re.compile("[\x00-\x09\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")

HOSTILE_MODEL = "QUORLAN\u009b31m \u202etxt"
HOSTILE_NAMES = ["C1\u009b2J", "bidi\u2067ok", "日本語", "e\u0301le\u0301ment"]


def columns_of(text):
    """The columns that a terminal needs, told by Python's own tables."""
    wide = sum(unicodedata.east_asian_width(char) in "WF" for char in text)
    combining = sum(unicodedata.combining(char) != 0 for char in text)
    return len(text) + wide - combining


class Since(vexorctl_machine.VexorctlCase):
    def setUp(self):
        super().setUp()
        self.collect()

    def events(self, *words):
        run = self.run_words("event", "list", "-o", "json", *words)
        self.assertEqual(run.returncode, 0, run.stderr)
        return json.loads(run.stdout)["items"]

    def refused(self, text):
        run = self.run_words("event", "list", "--since", text)
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        return run.stderr

    def test_takes_the_times_that_the_tool_itself_prints(self):
        for zone in "UTC", "CET-1CEST,M3.5.0,M10.5.0/3", "NST3:30":
            self.environment["TZ"] = zone
            everything = self.events()
            for style in [], ["--utc"]:
                newest = self.events(*style)[-1]["time"]
                with self.subTest(newest):
                    self.assertEqual(self.events("--since", newest),
                                     [e for e in everything
                                      if e["time"] == everything[-1]["time"]])

    def test_takes_a_time_to_the_second_and_not_one_more(self):
        newest = self.events("--utc")[-1]["time"]
        second = int(newest[-3:-1])
        if second < 59:
            later = f"{newest[:-3]}{second + 1:02}Z"
            self.assertEqual(self.events("--since", later), [])
        self.assertNotEqual(self.events("--since", newest), [])

    def test_takes_durations_of_several_units(self):
        everything = self.events()
        for text in "2h30m", "90s", "1w", "1w2d3h4m5s6ms", "106751991167d", "3600":
            self.assertEqual(self.events("--since", text), everything)

    def test_takes_dates_with_and_without_time_and_offset(self):
        everything = self.events()
        for text in ("2020-02-29", "2020-02-29T12:00", "2020-02-29T12:00:00",
                     "2020-02-29T12:00:00Z", "2020-02-29T12:00:00+01:00",
                     "2020-02-29T12:00:00-0530", "2020-02-29 12:00:00", "1960-01-01"):
            self.assertEqual(self.events("--since", text), everything)
        self.assertEqual(self.events("--since", "9999-12-31T23:59:59Z"), [])

    def test_names_what_is_impossible_in_a_time(self):
        for text, reason in (
                ("2026-13-45", "there is no month 13"),
                ("2026-02-30", "there is no day 30 in month 2 of 2026, which has 28 days"),
                ("2026-01-31T24:00:00", "there is no hour 24; the last is 23")):
            self.assertEqual(self.refused(text),
                             f'vexorctl: --since: "{text}" is no time: {reason} '
                             "(see vexorctl event list --help)\n")

    def test_says_what_it_takes_when_it_is_given_something_else(self):
        self.assertEqual(
            self.refused("yesterday"),
            'vexorctl: --since: "yesterday" is neither a duration such as 2h30m, 90s or 1w nor a '
            "time such as 2026-01-31 or 2026-01-31T12:00:00+01:00 (see vexorctl event list "
            "--help)\n")
        self.assertIn("is too long a duration", self.refused("99999999999999999999w"))


class Durations(vexorctl_machine.VexorctlCase):
    def test_of_several_units_limit_how_long_is_waited(self):
        self.machine.hxsimctl("disk", "fail", "a0/pd0")
        self.assertEqual(self.run_words("task", "wait", "--timeout", "0s100ms").returncode, 7)

    def test_are_refused_with_the_name_of_their_option(self):
        run = self.run_words("task", "wait", "--timeout", "soon")
        self.assertEqual((run.returncode, run.stderr),
                         (2, 'vexorctl: --timeout: "soon" is no duration; write one such as 2h30m, '
                             "90s or 1w (see vexorctl task wait --help)\n"))


    def test_are_the_interval_at_which_events_are_looked_for(self):
        self.collect()
        for text in "1", "10ms", "1m30s", "1d":
            run = self.run_words("event", "follow", "--from-start", "--once", "--interval", text)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
        for text, complaint in (("25h", "the longest interval is 1d, not 25h"),
                                ("often", '"often" is no duration; write one such as 2h30m, 90s or '
                                          "1w")):
            run = self.run_words("event", "follow", "--once", "--interval", text)
            self.assertEqual((run.returncode, run.stderr),
                             (2, f"vexorctl: --interval: {complaint} (see vexorctl event follow "
                                 "--help)\n"))


class Sizes(vexorctl_machine.VexorctlCase):
    def commands_for(self, size):
        run = self.run_words("vd", "create", "--adapter", "1", "--raid", "0", "--disks", "1",
                             "--size", size, "--dry-run")
        self.assertEqual(run.returncode, 0, run.stderr)
        return re.search("<Size>([0-9]+)</Size>", run.stdout).group(1)

    def test_are_counted_in_sectors_too(self):
        self.assertEqual(self.commands_for("2097152s"), self.commands_for("1GiB"))

    def test_are_refused_with_the_name_of_their_option(self):
        for size, complaint in (
                ("much", '"much" is no size; write one such as 10GiB, 20GB, 50% of the most, or '
                         "max"),
                ("0%", 'a share is from 1% to 100%, not "0%"'),
                ("511", '"511" is less than a sector, which has 512 bytes; a number alone counts '
                        "bytes: write 511GiB, 511GB or 511s for sectors")):
            run = self.run_words("vd", "create", "--raid", "0", "--disks", "1", "--size", size)
            self.assertEqual((run.returncode, run.stderr),
                             (2, f"vexorctl: --size: {complaint} (see vexorctl vd create "
                                 "--help)\n"))


class Formulas(vexorctl_machine.VexorctlCase):
    """Names that a spreadsheet would calculate."""

    NAMES = ["=1+1", "+a", "-2-3", "@SUM(A1)", "-7", "a=b", "-", "=A1,x"]

    def setUp(self):
        super().setUp()
        story = self.root / "story.txt"
        story.write_text("".join(
            f'create vd a0 raid=0 disks=0 size=1GiB init=none name="{name}"\n' for name in self.NAMES))
        self.machine.hxsimctl("init", "--force", "--topology", "small")
        self.machine.hxsimctl("scenario", "run", story)

    def csv(self, *options):
        run = self.run_words("vd", "list", "a0", "--columns", "name", "-o", "csv", "--no-header", *options)
        self.assertEqual(run.returncode, 0, run.stderr)
        return run.stdout.splitlines()

    def test_are_written_as_they_are(self):
        self.assertEqual(self.csv(),
                         ["=1+1", "+a", "-2-3", "@SUM(A1)", "-7", "a=b", "-", '"=A1,x"'])

    def test_become_texts_with_the_option_and_numbers_stay(self):
        self.assertEqual(self.csv("--no-formulas"),
                         ["'=1+1", "'+a", "'-2-3", "'@SUM(A1)", "-7", "a=b", "'-", "\"'=A1,x\""])


class HostileNames(vexorctl_machine.VexorctlCase):
    """A machine whose disks and virtual disks are called what nobody would call them."""

    def setUp(self):
        super().setUp()
        topology = json.loads(
            (vexorctl_machine.TREE / "controllers/virtual/topology/topologies/small.json")
            .read_text(encoding="utf-8"))
        topology["disk_models"][1]["name"] = HOSTILE_MODEL
        for disks in topology["adapters"][0]["disks"]:
            if disks["model"].startswith("QUORLAN"):
                disks["model"] = HOSTILE_MODEL
        file = self.root / "hostile.json"
        file.write_text(json.dumps(topology), encoding="utf-8")
        self.machine = vexorctl_machine.Machine(vexorctl_machine.PROGRAMS,
                                                self.root / "machine.db", file)
        story = self.root / "story.txt"
        story.write_text("".join(
            f'create vd a0 raid=0 disks={disk} size=1GiB init=none name="{name}"\n'
            for disk, name in enumerate(HOSTILE_NAMES)), encoding="utf-8")
        self.machine.hxsimctl("scenario", "run", story)

    def names(self, format_):
        run = self.run_words("vd", "list", "--columns", "name", "-o", format_)
        self.assertEqual(run.returncode, 0, run.stderr)
        return run.stdout

    def assert_harmless(self, text):
        self.assertIsNone(HARMFUL.search(text), ascii(text))
        self.assertIn("?", text)

    def test_are_harmless_in_every_format_for_people(self):
        for format_ in "table", "wide", "list":
            for words in ("vd", "list"), ("disk", "list"), ("disk", "show", "a0/pd4"):
                with self.subTest(format_ + " " + " ".join(words)):
                    run = self.run_words(*words, "-o", format_, "--columns", "all")
                    self.assertEqual(run.returncode, 0, run.stderr)
                    self.assert_harmless(run.stdout.replace("\n", ""))

    def test_stand_in_straight_columns(self):
        lines = self.run_words("vd", "list").stdout.splitlines()
        starts = {columns_of(line[:re.search(" (STATE|optimal) ", line).start()])
                  for line in lines}
        self.assertEqual(len(starts), 1, lines)
        self.assertIn("日本語", lines[3])
        self.assertIn("e\u0301le\u0301ment", lines[4])

    def test_stay_as_they_are_in_the_formats_for_programs(self):
        items = json.loads(self.names("json"))["items"]
        self.assertEqual([item["name"] for item in items], HOSTILE_NAMES)
        lines = self.names("jsonl").splitlines()
        self.assertEqual([json.loads(line)["name"] for line in lines], HOSTILE_NAMES)
        rows = list(csv.DictReader(io.StringIO(self.names("csv"))))
        self.assertEqual([row["name"] for row in rows], HOSTILE_NAMES)
        tree = xml.etree.ElementTree.fromstring(self.names("xml"))
        self.assertEqual([item.findtext("name") for item in tree.findall("item")], HOSTILE_NAMES)

    def test_are_harmless_in_plans(self):
        run = self.run_words("vd", "create", "--raid", "0", "--disks", "1", "--size", "max",
                             "--name", "new\u2066", "--dry-run")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assert_harmless(run.stdout.replace("\n", ""))
        run = self.run_words("vd", "delete", "a0/vd1", "--dry-run")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assert_harmless(run.stdout.replace("\n", ""))

    def test_are_harmless_in_questions_and_are_confirmed_as_they_are_shown(self):
        said, code = self.terminal(["vd", "delete", "a0/vd0"], answer="C1?2J")
        text = said.decode("utf-8")
        self.assertIn("Type C1?2J to go on: ", text)
        self.assertNotIn("\u009b", text)
        self.assertEqual(code, 0, text)
        said, code = self.terminal(["vd", "delete", "a0/vd1"], answer="bidi\u2067ok")
        self.assertEqual(code, 0, said)

    def test_are_harmless_in_complaints(self):
        run = self.run_words("vd", "show", "name:\u009b31m\u202e\x1b[2J")
        self.assertEqual(run.returncode, 3)
        self.assert_harmless(run.stderr.replace("\n", ""))
        run = self.run_words("vd", "delete", "name:\u009b31m\u202e")
        self.assertEqual(run.returncode, 3)
        self.assert_harmless(run.stderr.replace("\n", ""))

    def test_that_could_not_be_completed_harmlessly_are_not_offered(self):
        run = self.run_words("completion", "candidates", "--", "vd", "show", "name:")
        self.assertEqual(run.stdout.splitlines(), ["name:日本語", "name:e\u0301le\u0301ment"])

    def test_of_bytes_that_are_not_utf8_reach_no_terminal(self):
        name = os.fsdecode(b"name:\xff\x9b31m\xe6\x97")
        self.environment["PYTHONIOENCODING"] = "utf-8"
        run = self.run_words("vd", "show", name)
        self.assertEqual(run.returncode, 3)
        self.assertEqual(run.stderr, "vexorctl: name:??31m?: there is no such vd; see vexorctl vd "
                                     "list\n")

    def test_of_bytes_that_are_not_utf8_leave_documents_valid(self):
        name = os.fsdecode(b"name:\xff")
        for format_ in "json", "jsonl", "xml":
            with self.subTest(format_):
                run = self.run_words("vd", "show", name, "-o", format_)
                self.assertIn("\ufffd", run.stdout)
                if format_ == "xml":
                    xml.etree.ElementTree.fromstring(run.stdout)


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL")

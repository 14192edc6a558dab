#!/usr/bin/env python3
"""Every noun and verb of vexorctl, run as a program over a fresh virtual controller.

Golden files in data/vexorctl-output hold what is printed, format by format; run with --write to
write them anew.

usage: vexorctl_commands_test.py VEXORCTL CHECK_IN WRITE_MANUAL [--write] [TEST]...
"""

import csv
import io
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
import xml.etree.ElementTree

import jsonschema

from vexorctl_machine import Machine

HERE = pathlib.Path(__file__).resolve().parent
TREE = HERE.parent
GOLDEN = HERE / "data" / "vexorctl-output"
SCHEMA = TREE / "docs" / "vexorctl.schema.json"
MANUAL = TREE / "docs" / "vexorctl.md"
FORMATS = ["table", "wide", "list", "json", "jsonl", "csv", "xml"]

# What is listed in every format.
LISTS = [
    "adapter list", "enclosure list", "enclosure elements", "enclosure expanders",
    "enclosure multipliers", "disk list", "disk blocks", "disk remapped a0/pd3", "vd list",
    "dg list", "task list", "battery list", "flash list", "user show root", "check",
    "disk show a0/pd0", "vd show name:MIRROR", "vd delete a0/vd2 --dry-run",
]

VEXORCTL = ""
CHECK_IN = ""
WRITE_MANUAL = ""
WRITE = False


class Base(unittest.TestCase):
    maxDiff = None
    topology = "default"

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="vexorctl-commands-")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        shutil.copytree(TREE / "examples" / "root", self.root, dirs_exist_ok=True)
        (self.root / "opt/kestrel/raid/db").mkdir(parents=True)
        self.environment = {
            **os.environ, "VEXORAPI_ROOT": str(self.root), "TZ": "UTC",
            "HXSIM_STATE": str(self.root / "machine.db"),
            "PATH": os.path.dirname(VEXORCTL) + os.pathsep + os.environ["PATH"],
        }
        self.environment.pop("NO_COLOR", None)
        self.machine = Machine(os.path.dirname(VEXORCTL), self.root / "machine.db", self.topology)

    def collect(self):
        subprocess.run([CHECK_IN, "2"], env=self.environment, stdout=subprocess.DEVNULL, check=True)

    def run_words(self, *words, **more):
        return subprocess.run([VEXORCTL, *words], cwd=self.root, env=self.environment, text=True,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=60,
                              check=False, **more)

    def commands(self):
        """Every (noun, verb) of the tree; the verb is empty for a noun that is a command."""
        top = self.run_words("--help").stdout
        nouns = re.findall(r"^  (\w+)  +\S", top.split("Nouns:")[1].split("\n\n")[0], re.MULTILINE)
        for noun in nouns:
            text = self.run_words(noun, "--help").stdout
            if "\nVerbs:\n" not in text:
                yield noun, ""
                continue
            section = text.split("\nVerbs:\n")[1].split("\n\n")[0]
            for verb in re.findall(r"^  ([\w-]+)  +\S", section, re.MULTILINE):
                yield noun, verb


class Output(Base):
    def test_every_list_in_every_format_is_its_golden_file(self):
        self.collect()
        for command in LISTS:
            for form in FORMATS:
                with self.subTest(command=command, form=form):
                    run = self.run_words(*command.split(), "-o", form)
                    self.assertEqual((run.returncode, run.stderr), (0, ""))
                    name = re.sub(r"[^\w-]+", "-", command) + "." + form
                    if WRITE:
                        GOLDEN.mkdir(exist_ok=True)
                        (GOLDEN / name).write_text(run.stdout)
                    self.assertEqual(run.stdout, (GOLDEN / name).read_text())

    def test_every_golden_json_is_valid_by_the_schema(self):
        schema = json.loads(SCHEMA.read_text())
        files = sorted(GOLDEN.glob("*.json"))
        self.assertEqual(len(files), len(LISTS))
        for path in files:
            with self.subTest(file=path.name):
                document = json.loads(path.read_text())
                jsonschema.validate(document, schema)
                document["items"].append({"address": 5})
                with self.assertRaises(jsonschema.ValidationError):
                    jsonschema.validate({**document, "command": "disk list"}, schema)

    def test_a_field_visible_in_one_format_is_in_all_of_them(self):
        for command in LISTS:
            with self.subTest(command=command):
                text = {form: (GOLDEN / (re.sub(r"[^\w-]+", "-", command) + "." + form)).read_text()
                        for form in FORMATS}
                items = json.loads(text["json"])["items"]
                if not items:
                    continue
                keys = list(items[0])
                self.assertEqual(keys, list(json.loads(text["jsonl"].splitlines()[0])))
                self.assertEqual(keys, next(csv.reader(io.StringIO(text["csv"]))))
                self.assertEqual(
                    keys, [line.split()[0] for line in text["list"].split("\n\n")[0].splitlines()])
                known = [key for key in keys if items[0][key] is not None]
                item = xml.etree.ElementTree.fromstring(text["xml"]).find("item")
                self.assertEqual(known, [element.tag for element in item])

    def test_an_unknown_column_is_wrong_usage(self):
        for option in ("--columns", "--sort"):
            run = self.run_words("vd", "list", f"{option}=nothing")
            self.assertEqual(run.returncode, 2)
            self.assertIn('there is no column "nothing"; the columns are address, name', run.stderr)

    def test_sort_counts_as_people_do_and_a_dash_reverses(self):
        run = self.run_words("disk", "list", "a0", "--columns=address", "--no-header",
                             "--sort=-address")
        numbers = [int(address[len("a0/pd"):]) for address in run.stdout.split()]
        self.assertIn(10, numbers)
        self.assertEqual(numbers, sorted(numbers, reverse=True))

    def test_sizes_are_gib_bytes_or_gb(self):
        for options, size in (([], "768.00 GiB"), (["--bytes"], "824633720832"),
                              (["--si"], "824.63 GB")):
            run = self.run_words("vd", "list", "a0/vd0", "--columns=size_bytes", "--no-header",
                                 *options)
            self.assertEqual(run.stdout, size + "\n")

    def test_an_empty_list_is_a_success(self):
        run = self.run_words("dg", "list", "a1", "-o", "json")
        self.assertEqual(json.loads(run.stdout)["items"], [])
        self.assertEqual(run.returncode, 0)


class Codes(Base):
    def expect(self, code, error, *words):
        run = self.run_words(*words)
        self.assertEqual((run.stderr, run.returncode), (f"vexorctl: {error}\n", code))
        return run

    def test_1_a_part_that_fails_hides_nothing(self):
        run = self.run_words("battery", "list", "a0", "a1", "-o", "json")
        self.assertEqual(run.returncode, 1)
        document = json.loads(run.stdout)
        self.assertEqual([item["address"] for item in document["items"]], ["a0"])
        self.assertEqual(document["errors"][0]["address"], "a1")
        self.assertEqual(document["errors"][0]["name"], "no_battery")

    def test_3_no_such_object(self):
        self.expect(3, "a0/vd9: there is no such vd; see vexorctl vd list", "vd", "show", "a0/vd9")
        self.expect(3, "a7: there is no adapter a7; there are 2", "disk", "list", "a7")
        self.expect(3, "a0/pd99: there is no such disk", "disk", "locate", "a0/pd99")

    def test_4_not_permitted(self):
        run = subprocess.run([VEXORCTL, "user", "logon", "root"], input="wrong\n", text=True,
                             env=self.environment, capture_output=True, timeout=60, check=False)
        self.assertEqual(run.returncode, 4)
        self.assertIn('"root" may not log on', run.stderr)

    def test_5_an_event_store_that_cannot_be_read(self):
        self.expect(5, "the event store cannot be read; the event service makes it when it stores "
                       "the first event", "event", "list")

    def test_6_declined(self):
        path = self.root / "command.xml"
        path.write_text("<HX_Nothing type='function'/>")
        self.assertEqual(self.run_words("xml", str(path)).returncode, 6)

    def test_8_not_confirmed_without_a_terminal(self):
        self.expect(8, "not confirmed: there is no terminal to ask; say --yes, or --dry-run to see "
                       "the plan", "vd", "delete", "a0/vd2")

    def test_130_interrupted(self):
        self.collect()
        process = subprocess.Popen([VEXORCTL, "event", "follow"], env=self.environment,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        time.sleep(0.5)
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=20)
        self.assertEqual(process.returncode, 130)


class WrongUse(Base):
    def test_every_command_answers_wrong_use_with_code_2_and_one_line(self):
        for noun, verb in self.commands():
            with self.subTest(noun=noun, verb=verb):
                words = [noun] + ([verb] if verb else [])
                run = self.run_words(*words, "--no-such-option")
                self.assertEqual(run.returncode, 2)
                self.assertEqual(run.stdout, "")
                self.assertEqual(run.stderr.count("\n"), 1)
                self.assertTrue(run.stderr.endswith(f"(see vexorctl {' '.join(words)} --help)\n"))

    def test_what_is_no_address_is_told_with_the_grammar(self):
        for text in ("a", "pd1", "a0/", "a0/xx1", "a0/pd", "a0/pd1/el2", "a0/enc0/el", "a-1",
                     "a99999999999", "name:", "serial:", "A0", "a0/pd1x", "a0 "):
            with self.subTest(text=text):
                run = self.run_words("disk", "list", text)
                self.assertEqual(run.returncode, 2)
                self.assertIn(f'"{text}" is no address; say a0, a0/pd12', run.stderr)

    def test_verbs_take_no_prefixes(self):
        self.assertEqual(self.run_words("disk", "lis").returncode, 2)
        self.assertEqual(self.run_words("dis", "list").returncode, 2)

    def test_a_write_needs_the_adapter_where_there_are_several(self):
        run = self.run_words("vd", "create", "--raid", "5", "--disks", "3")
        self.assertEqual(run.returncode, 2)
        self.assertIn("there are 2 adapters; say which with --adapter", run.stderr)


class Examples(Base):
    def test_every_example_of_every_help_runs(self):
        self.collect()
        (self.root / "password").write_text("raid & roll\n")
        (self.root / "bios.rom").write_bytes(b"\0" * 6 + bytes([3, 0, 1, 0, 0, 0, 27, 0]) +
                                             b"\0" * 50)
        (self.root / "examples").symlink_to(TREE / "examples")
        count = 0
        for noun, verb in self.commands():
            text = self.run_words(noun, *([verb] if verb else []), "--help").stdout
            examples = re.findall(r"^  (vexorctl .*)$",
                                  text.split("\nExamples:\n")[1].split("\n\n")[0], re.MULTILINE)
            self.assertEqual(len(examples), 2, (noun, verb))
            for example in examples:
                with self.subTest(example=example):
                    run = subprocess.run(["sh", "-c", example], cwd=self.root, text=True,
                                         env=self.environment, stdin=subprocess.DEVNULL,
                                         capture_output=True, timeout=60, check=False)
                    self.assertEqual((run.stderr, run.returncode), ("", 0))
                    count += 1
        self.assertGreater(count, 100)


class Plans(Base):
    def test_a_dry_run_shows_the_command_and_the_size_and_changes_nothing(self):
        before = self.run_words("vd", "list", "-o", "json").stdout
        run = self.run_words("vd", "create", "--adapter", "1", "--raid", "5", "--disks", "4",
                             "--name", "data1", "--dry-run")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn("Create a RAID 5 virtual disk called data1 on\n", run.stdout)
        self.assertIn("resulting size: ", run.stdout)
        self.assertRegex(run.stdout, r'<HX_LD_Create type="function"><AdapterID>1</AdapterID>'
                                     r"<RaidMode>5</RaidMode><HDCount>4</HDCount>")
        self.assertEqual(self.run_words("vd", "list", "-o", "json").stdout, before)

    def test_a_virtual_disk_of_no_disks_is_wrong_use(self):
        run = self.run_words("vd", "create", "--adapter", "0", "--raid", "0", "--disks", "0")
        self.assertEqual(
            (run.stderr, run.returncode),
            ("vexorctl: no disks: a virtual disk needs one at least "
             "(see vexorctl vd create --help)\n", 2))

    def test_disks_of_one_link_are_picked_where_there_is_a_choice(self):
        run = self.run_words("vd", "create", "--adapter", "0", "--raid", "1", "--disks", "2",
                             "--dry-run")
        models = set(re.findall(r"^  a0/pd\d+ \((\w+),", run.stdout, re.MULTILINE))
        self.assertEqual(len(models), 1, run.stdout)

    def test_too_few_disks_are_told_with_those_that_are_free(self):
        run = self.run_words("vd", "create", "--adapter", "1", "--raid", "5", "--disks", "100")
        self.assertEqual(run.returncode, 1)
        self.assertIn("100 disks are needed and a1 has ", run.stderr)
        self.assertIn("a1/pd2 (", run.stderr)

    def test_a_size_too_large_is_told_with_the_most(self):
        run = self.run_words("vd", "create", "--adapter", "1", "--raid", "5", "--disks", "3",
                             "--size", "100TiB", "--dry-run")
        self.assertEqual(run.returncode, 1)
        self.assertIn("--size: 100TiB is more than the most there, ", run.stderr)

    def terminal(self, words, answer, meanwhile=None):
        """Runs with a pseudo-terminal, waits for the question and answers it."""
        pid, master = pty.fork()
        if pid == 0:
            os.execve(VEXORCTL, [VEXORCTL, *words], self.environment)
        said = b""
        end = time.monotonic() + 20
        while b"to go on: " not in said and time.monotonic() < end:
            if select.select([master], [], [], 0.2)[0]:
                said += os.read(master, 4096)
        if meanwhile:
            meanwhile()
        os.write(master, answer.encode() + b"\n")
        try:
            while chunk := os.read(master, 4096):
                said += chunk
        except OSError:
            pass
        _, status = os.waitpid(pid, 0)
        os.close(master)
        return said.decode(), os.waitstatus_to_exitcode(status)

    def test_deleting_asks_for_the_name_and_another_answer_is_no(self):
        said, code = self.terminal(["vd", "delete", "a0/vd2"], "yes")
        self.assertIn("Delete virtual disk a0/vd2 (ARCHIVE, raid6, 3072.00 GiB)", said)
        self.assertIn("all data on it will be lost", said)
        self.assertIn("Type ARCHIVE to go on: ", said)
        self.assertIn("not confirmed; nothing was changed", said)
        self.assertEqual(code, 8)

    def test_a_change_between_look_and_act_is_refused(self):
        said, code = self.terminal(["vd", "delete", "a0/vd2"], "ARCHIVE", self.collect)
        self.assertIn("something has changed since the plan was made", said)
        self.assertEqual(code, 8)


class Terminal(Base):
    def on_terminal(self, **more):
        pid, master = pty.fork()
        if pid == 0:
            os.execve(VEXORCTL, [VEXORCTL, "vd", "list", "--columns", "state"],
                      {**self.environment, **more})
        said = b""
        try:
            while chunk := os.read(master, 4096):
                said += chunk
        except OSError:
            pass
        os.waitpid(pid, 0)
        os.close(master)
        return said

    def test_states_are_coloured_on_a_terminal_unless_no_color_says_otherwise(self):
        self.assertIn(b"\x1b[32moptimal\x1b[0m", self.on_terminal())
        self.assertNotIn(b"\x1b", self.on_terminal(NO_COLOR="1"))
        self.assertNotIn("\x1b", self.run_words("vd", "list").stdout)


class Events(Base):
    def follow(self, *words):
        return self.run_words("event", "follow", "--once", "-o", "jsonl", *words)

    def test_every_key_that_the_library_writes_has_a_text(self):
        source = (TREE / "backend/vexorapi/vxevent_text.cpp").read_text()
        keys = set(re.findall(r'"(EVT_(?:CODE_)?\w+)\|', source))
        steps = re.findall(r'\{\d, "([A-Z_]+)\|', source.split("kSteps[]")[1].split("};")[0])
        activities = re.findall(r'"([A-Z_]+)_"', source.split("kActivities[]")[1].split("};")[0])
        self.assertEqual((len(steps), len(activities)), (10, 8))
        keys |= {f"EVT_CODE_LD_{activity}_{step}" for activity in activities for step in steps}
        self.assertGreater(len(keys), 180)
        listed = json.loads(self.run_words("event", "keys", "-o", "json").stdout)["items"]
        self.assertEqual(keys, {item["key"] for item in listed})

    def test_last_takes_the_newest_and_raw_shows_the_key(self):
        self.collect()
        run = self.run_words("event", "list", "--last", "1", "--raw", "--columns", "sequence,text",
                             "--no-header")
        self.assertRegex(run.stdout, r"^\d+  EVT_CODE_\w+\|")

    def test_filters_take_severity_adapter_class_and_time(self):
        self.collect()
        def items(*words):
            return json.loads(self.run_words("event", "list", "-o", "json", *words).stdout)["items"]
        everything = items()
        self.assertEqual(items("--since", "1h"), everything)
        self.assertEqual(items("--severity", "fatal"), [])
        self.assertEqual(items("--adapter", "1"), [e for e in everything if e["adapter"] == 1])
        self.assertEqual(items("--class", "disk"),
                         [e for e in everything if e["class"]["name"] == "disk"])

    def test_a_cursor_goes_on_where_it_ended(self):
        self.collect()
        first = self.follow("--cursor", "cursor", "--from-start", "--count", "3")
        self.assertEqual([json.loads(l)["sequence"] for l in first.stdout.splitlines()], [0, 1, 2])
        second = self.follow("--cursor", "cursor", "--count", "2")
        self.assertEqual([json.loads(l)["sequence"] for l in second.stdout.splitlines()], [3, 4])
        self.assertEqual([p.name for p in self.root.glob("cursor*")], ["cursor"])

    def test_a_reset_of_the_store_is_told(self):
        self.collect()
        self.follow("--cursor", "cursor", "--from-start")
        self.assertEqual(self.run_words("event", "reset", "--yes").returncode, 0)
        run = self.follow("--cursor", "cursor")
        self.assertEqual(run.stderr,
                         "vexorctl: event follow: the event store was reset; going on with "
                         "event 0\n")

    def test_overwritten_events_are_counted(self):
        (self.root / "vexorapi.ini").write_text(
            '<config><EventLogConfig type="config" MaxNumOfEvent="10" '
            f'Filename="{self.root}/opt/kestrel/raid/db/vx_hx_raid.ev"/></config>')
        self.collect()
        (self.root / "cursor").write_text("vexorctl-cursor 1 2 x\n")
        run = self.follow("--cursor", "cursor")
        events = [json.loads(l)["sequence"] for l in run.stdout.splitlines()]
        self.assertEqual(run.stderr, f"vexorctl: event follow: {events[0] - 2} events were lost: "
                                     "they were overwritten before they could be read\n")


class Completion(Base):
    def candidates(self, *words):
        return self.run_words("completion", "candidates", "--", *words).stdout.split()

    def test_offers_nouns_verbs_options_choices_keys_and_objects(self):
        self.assertEqual(self.candidates("di"), ["disk"])
        self.assertIn("list", self.candidates("disk", ""))
        self.assertEqual(self.candidates("disk", "list", "--col"), ["--columns"])
        self.assertEqual(self.candidates("disk", "list", "-o", "js"), ["json", "jsonl"])
        self.assertEqual(self.candidates("vd", "list", "--columns", "name,st"),
                         ["name,state", "name,stripe_bytes"])
        self.assertEqual(self.candidates("vd", "show", "name:A"), ["name:ARCHIVE"])
        self.assertEqual(self.candidates("call", "HX_LD_Delete", "LD"), ["LD_ID="])

    def test_is_silent_on_errors(self):
        (self.root / "vexorapi.ini").write_text("<broken")
        run = self.run_words("completion", "candidates", "--", "vd", "show", "")
        self.assertEqual((run.stdout, run.stderr, run.returncode), ("", "", 0))

    def test_the_scripts_are_read_by_their_shells(self):
        for shell in ("bash", "zsh"):
            if shutil.which(shell):
                with self.subTest(shell=shell):
                    text = self.run_words("completion", shell).stdout
                    run = subprocess.run([shell, "-n"], input=text, text=True, capture_output=True,
                                         check=False, timeout=60)
                    self.assertEqual((run.stderr, run.returncode), ("", 0))


class Written(Base):
    """What is made from the command tree is up to date."""

    def written(self, what):
        return subprocess.run([WRITE_MANUAL, what], env=self.environment, text=True,
                              capture_output=True, check=True, timeout=60).stdout

    def test_the_schema_is_what_the_tree_says(self):
        self.assertEqual(SCHEMA.read_text(), self.written("schema"))

    def test_the_table_of_functions_is_in_the_manual_and_names_all_79(self):
        table = self.written("functions")
        self.assertIn(table.rstrip("\n"), MANUAL.read_text())
        self.assertEqual(len(re.findall(r"^\| `\w+` \| `", table, re.MULTILINE)), 79)
        self.assertNotIn("| `call` |", table)

    def test_there_is_a_page_for_the_program_and_for_each_noun(self):
        folder = self.root / "man"
        folder.mkdir()
        subprocess.run([WRITE_MANUAL, "man", str(folder)], env=self.environment, check=True)
        nouns = {noun for noun, _ in self.commands()}
        self.assertEqual({path.name for path in folder.iterdir()},
                         {"vexorctl.1"} | {f"vexorctl-{noun}.1" for noun in nouns})


def main():
    global VEXORCTL, CHECK_IN, WRITE_MANUAL, WRITE
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    VEXORCTL, CHECK_IN, WRITE_MANUAL = map(os.path.abspath, sys.argv[1:4])
    rest = sys.argv[4:]
    WRITE = "--write" in rest
    unittest.main(argv=[sys.argv[0], *[word for word in rest if word != "--write"]], verbosity=2)


if __name__ == "__main__":
    main()

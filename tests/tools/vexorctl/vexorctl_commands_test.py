#!/usr/bin/env python3
"""Every noun and verb of vexorctl, run as a program over a fresh virtual controller.

Golden files in data/output hold what is printed, format by format; run with --write to
write them anew.

usage: vexorctl_commands_test.py VEXORCTL CHECK_IN WRITE_MANUAL [--write] [TEST]...
"""

import csv
import io
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import time
import xml.etree.ElementTree

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, on_terminal, schema

HERE = pathlib.Path(__file__).resolve().parent
TREE = HERE.parents[2]
GOLDEN = HERE / "data" / "output"
MANUAL = TREE / "docs" / "vexorctl.md"
FORMATS = ["table", "wide", "list", "json", "jsonl", "csv", "xml"]

# What is listed in every format.
LISTS = [
    "adapter list", "enclosure list", "enclosure elements", "enclosure expanders",
    "enclosure multipliers", "disk list", "disk blocks", "disk remapped a0/pd3", "vd list",
    "dg list", "task list", "battery list", "flash list", "user show root", "check",
    "overview", "risk", "timeline",
    "disk show a0/pd0", "vd show name:MIRROR", "vd delete a0/vd2 --dry-run",
    "vd create --adapter 1 --raid 5 --disks 3 --dry-run", "counters show", "event keys",
    "event list --last 4", "event list --last 4 --raw",
]

TIME = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\+00:00")


def dated_alike(text):
    """Golden files are older than any machine."""
    return TIME.sub("2026-01-31T12:00:00+00:00", text)

VEXORCTL = ""
CHECK_IN = ""
WRITE_MANUAL = ""
WRITE = False


class Output(VexorctlCase):
    def test_every_list_in_every_format_is_its_golden_file(self):
        self.collect()
        for command in LISTS:
            for form in FORMATS:
                with self.subTest(command=command, form=form):
                    run = self.run_words(*command.split(), "-o", form)
                    self.assertEqual((run.returncode, run.stderr), (0, ""))
                    name = re.sub(r"[^\w-]+", "-", command) + "." + form
                    printed = dated_alike(run.stdout)
                    if WRITE:
                        GOLDEN.mkdir(exist_ok=True)
                        (GOLDEN / name).write_text(printed)
                    self.assertEqual(printed, (GOLDEN / name).read_text())

    def test_a_field_visible_in_one_format_is_in_all_of_them(self):
        self.collect()
        for command in LISTS:
            with self.subTest(command=command):
                text = {form: (GOLDEN / (re.sub(r"[^\w-]+", "-", command) + "." + form)).read_text()
                        for form in FORMATS}
                items = json.loads(text["json"])["items"]
                if not items:
                    continue
                keys = list(items[0])
                self.assertEqual(["schema", "command", *keys],
                                 list(json.loads(text["jsonl"].splitlines()[0])))
                self.assertEqual(keys, next(csv.reader(io.StringIO(text["csv"]))))
                labels = [re.split("  +", line)[0]
                          for line in text["list"].split("\n\n")[0].splitlines()]
                header = re.split("  +", text["wide"].splitlines()[0].strip())
                self.assertEqual([label.upper() for label in labels], [h.upper() for h in header])
                self.assertEqual((len(labels), len(set(labels))), (len(keys), len(keys)))
                turned = self.run_words(*command.split(), "-o", "list",
                                        "--columns", ",".join(reversed(keys))).stdout
                self.assertEqual([re.split("  +", line)[0]
                                  for line in turned.split("\n\n")[0].splitlines()],
                                 labels[::-1])  # so each label is that of the key in its place
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
        for options, size in (([], "768 GiB"), (["--bytes"], "824633720832"),
                              (["--si"], "824.63 GB")):
            run = self.run_words("vd", "list", "a0/vd0", "--columns=size_bytes", "--no-header",
                                 *options)
            self.assertEqual(run.stdout, size + "\n")

    def test_an_empty_list_is_a_success(self):
        run = self.run_words("dg", "list", "a1", "-o", "json")
        self.assertEqual(json.loads(run.stdout)["items"], [])
        self.assertEqual(run.returncode, 0)


class Xml(VexorctlCase):
    """A document is well-formed and gives back every text, whatever a user typed."""

    def error(self, target):
        run = self.run_words("vd", "show", target, "-o", "xml")
        self.assertEqual(run.returncode, 3, run.stderr)
        return xml.etree.ElementTree.fromstring(run.stdout).find("error").get("address")

    def test_values_of_attributes_come_back_as_they_were(self):
        for name in ('a"b', "a'b", "a&b", "a<b>c", "]]>", "&quot;", '" name="x', "\u00e4\u20ac",
                     "two\nlines\tand a tab"):
            with self.subTest(name=name):
                self.assertEqual(self.error("name:" + name), "name:" + name)

    def test_what_xml_cannot_hold_is_replaced(self):
        for name, shown in (("a\x01b", "a?b"), ("a\x7fb", "a\x7fb"), ("a\udcffb", "a\ufffdb"),
                            ("a\ufffeb", "a\ufffdb"), ("a\udce2\udc82", "a\ufffd"),
                            ("a\udcc0\udcafb", "a\ufffd\ufffdb")):
            with self.subTest(name=name):
                self.assertEqual(self.error("name:" + name), "name:" + shown)


class Config(VexorctlCase):
    def settings(self):
        run = self.run_words("config", "show", "-o", "csv", "--no-header")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        return {name: (value, source) for name, value, source in csv.reader(io.StringIO(run.stdout))}

    def test_what_the_file_does_not_say_has_its_default(self):
        settings = self.settings()
        self.assertEqual(settings["vexorctl_version"], (vexorctl_machine.VERSION, ""))
        self.assertEqual(settings["EventLogConfig.MaxNumOfEvent"], ("50000", "default"))
        self.assertEqual(settings["DebugLogConfig.LogEnable"], ("0", "default"))
        self.assertEqual(sum(source == "default" for _, source in settings.values()), 8)

    def test_what_the_file_says_holds(self):
        (self.root / "vexorapi.ini").write_text(
            '<config><EventLogConfig type="config" LogEnable="1" MaxNumOfEvent="10" '
            'Filename=""/></config>')
        settings = self.settings()
        self.assertEqual(settings["EventLogConfig.MaxNumOfEvent"], ("10", "file"))
        self.assertEqual(settings["EventLogConfig.LogEnable"], ("1", "file"))
        self.assertEqual(sum(source == "default" for _, source in settings.values()), 5)


class Controllers(VexorctlCase):
    """Which controller library is used, and who chose it."""

    def setUp(self):
        super().setUp()
        self.library = pathlib.Path(self.vexorctl).resolve().parents[1] / "lib" / "libhxraid.so"
        self.other = self.library.parent / "linuxmd" / "libhxraid.so"

    def used(self, *words):
        run = self.run_words(*words, "config", "show", "-o", "csv", "--no-header")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        rows = {name: (value, by) for name, value, by in csv.reader(io.StringIO(run.stdout))}
        return rows["controller_library"]

    def test_the_loader_takes_one_where_nobody_chooses(self):
        self.assertEqual(self.used(), (str(self.library), "loader"))
        self.environment["VEXORAPI_CONTROLLER"] = ""
        self.assertEqual(self.used(), (str(self.library), "loader"))
        self.environment["LD_LIBRARY_PATH"] = f"/nowhere:{self.other.parent}"
        self.assertEqual(self.used(), (str(self.other), "LD_LIBRARY_PATH"))

    def test_an_option_chooses_and_goes_before_the_environment(self):
        self.assertEqual(self.used("--controller", "linuxmd"), (str(self.other), "--controller"))
        self.environment["VEXORAPI_CONTROLLER"] = "linuxmd"
        self.assertEqual(self.used(), (str(self.other), "VEXORAPI_CONTROLLER"))
        self.assertEqual(self.used("--controller=virtual"), (str(self.library), "loader"))

    def test_it_goes_before_the_folders_of_the_loader(self):
        self.environment["LD_LIBRARY_PATH"] = str(self.other.parent)
        self.assertEqual(self.used("--controller", "virtual"), (str(self.library), "--controller"))

    def test_a_path_is_of_a_library_or_of_its_folder(self):
        for path in (self.other, self.other.parent):
            self.assertEqual(self.used("--controller", str(path))[0], str(self.other))

    def test_every_command_takes_it(self):
        answer = self.run_words("call", "HX_API_Version", "--controller", "linuxmd")
        self.assertIn("linuxmd", answer.stdout)
        self.assertEqual((answer.stderr, answer.returncode), ("", 0))

    def test_what_it_starts_is_not_told_who_chose(self):
        self.environment["VEXORAPI_CONTROLLER"] = "linuxmd"
        tape = self.root / "tape"
        run = self.run_words("tape", "record", str(tape), "--", self.vexorctl, "adapter", "list")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertIn("call HX_Adapter_GetCount", tape.read_text())

    def test_a_controller_that_is_not_there_is_an_error(self):
        for name, code, text in (
            ("linuxdm", 2, 'there is no controller "linuxdm"; say virtual, linuxmd, or the path of a libhxraid.so'),
            ("", 2, 'there is no controller ""'),
            ("/nowhere", 5, "/nowhere: there is no libhxraid.so"),
            (str(self.root), 5, "there is no libhxraid.so"),
        ):
            with self.subTest(name=name):
                run = self.run_words("--controller", name, "vd", "list")
                self.assertEqual((run.stdout, run.returncode), ("", code))
                self.assertIn(text, run.stderr)
        run = self.run_words("--controller", "/nowhere", "check")
        self.assertEqual(run.returncode, 3)
        self.assertTrue(run.stdout.startswith("UNKNOWN: "), run.stdout)


class Refusals(VexorctlCase):
    def said(self, code, *words):
        run = self.run_words(*words)
        self.assertEqual(run.returncode, code, run.stderr)
        return run.stderr.splitlines()[-1]

    def test_a_slip_of_the_fingers_gets_the_nearest_word(self):
        for words, nearest in (
            (["dsik", "list"], "disk"), (["disk", "lst"], "list"),
            (["vd", "list", "--colums", "name"], "--columns"),
            (["vd", "list", "--outptu=json"], "--output"),
        ):
            self.assertIn(f'; did you mean "{nearest}"? (see vexorctl', self.said(2, *words))
        for words in (["everything"], ["vd", "xx"], ["vd", "list", "--nothing-like-it"]):
            self.assertNotIn("did you mean", self.said(2, *words))

    def test_a_name_gets_the_nearest_name(self):
        self.assertTrue(self.said(3, "vd", "show", "name:ARCHIVX").endswith(
            '; see vexorctl vd list; did you mean "ARCHIVE"?'))
        self.assertTrue(self.said(3, "disk", "show", "serial:6TW0D2lA").endswith(
            '; did you mean "6TW0D21A"?'))
        self.assertTrue(self.said(3, "vd", "show", "name:OTHER").endswith("; see vexorctl vd list"))

    def test_the_address_of_something_else_gets_its_command(self):
        for words, rest in (
            (["vd", "show", "a0/pd0"], "a disk; see vexorctl disk show a0/pd0"),
            (["dg", "show", "a0/vd0"], "a virtual disk; see vexorctl vd show a0/vd0"),
            (["vd", "list", "a0/enc0"], "an enclosure; see vexorctl enclosure list a0/enc0"),
        ):
            self.assertEqual(self.said(3, *words),
                             f"vexorctl: {words[-1]}: this is the address of {rest}")


class Codes(VexorctlCase):
    def setUp(self):
        super().setUp()
        self.store = self.root / "opt/kestrel/raid/db/vx_hx_raid.ev"

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

    def test_5_no_events_were_stored_yet(self):
        self.expect(5, f"the event store {self.store} is not there (No such file or directory): no "
                       "events have been stored yet, or it was removed; the event service makes it "
                       "when it stores an event",
                    "event", "list")

    def test_5_the_folder_of_the_event_store_is_missing(self):
        self.store.parent.rmdir()
        self.expect(5, f"the event store {self.store} has no folder: {self.store.parent}: No such "
                       "file or directory; create it, as with install -d",
                    "event", "list")

    def test_5_an_event_store_that_may_not_be_read(self):
        self.collect()
        self.store.chmod(0)
        user = {}
        if os.geteuid() == 0:  # permissions hold back everybody else
            for folder in (self.root, *self.root.rglob("*")):
                if folder.is_dir():
                    folder.chmod(0o777)
            (self.root / "machine.db").chmod(0o666)
            user = {"user": 65534, "group": 65534, "extra_groups": []}
        run = subprocess.run([VEXORCTL, "event", "list"], cwd="/", env=self.environment, text=True,
                             capture_output=True, timeout=60, check=False, **user)
        self.assertEqual((run.stderr, run.returncode), (
            f"vexorctl: the event store {self.store} may not be read: Permission denied; ask as "
            "its owner, or let your group read it\n", 5))

    def test_5_an_event_store_that_is_damaged(self):
        anew = "; move it aside, and the event service makes a new one"
        for bytes_there, reason in (
                (b"", "it has 0 bytes, and its head 112"),
                (b"short", "it has 5 bytes, and its head 112"),
                (b"x" * 1000, 'it does not begin with "Ombra Event File v0.1"')):
            with self.subTest(reason):
                self.store.write_bytes(bytes_there)
                self.expect(5, f"the event store {self.store} is damaged: {reason}{anew}", "event",
                            "list")

    def test_5_an_event_store_that_is_a_folder(self):
        self.store.mkdir()
        self.expect(5, f"the event store {self.store} cannot be read: Is a directory", "event",
                    "list")

    def test_5_the_configured_event_store_is_the_one_that_is_told(self):
        (self.root / "vexorapi.ini").write_text(
            f'<c><EventLogConfig type="config" Filename="{self.root}/mine/events"/></c>')
        self.expect(5, f"the event store {self.root}/mine/events has no folder: {self.root}/mine: "
                       "No such file or directory; create it, as with install -d",
                    "event", "list")

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
        vexorctl_machine.interrupt(process)
        process.communicate(timeout=vexorctl_machine.PATIENCE)
        self.assertEqual(process.returncode, 130)


class EarlyEnd(VexorctlCase):
    """What ends a command early stands in the document that was asked for."""

    def test_a_refusal_is_an_error_of_the_document(self):
        run = self.run_words("disk", "spare", "a0/pd0", "--yes", "-o", "json")
        self.assertEqual(run.returncode, 1)
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        self.assertEqual((document["command"], document["items"]), ("disk spare", []))
        (error,) = document["errors"]
        self.assertEqual((error["address"], error["function"], error["name"]),
                         ("a0/pd0", "HX_PD_FreeHD2GlobalSpare", "disk_in_use"))
        self.assertEqual(run.stderr, f"vexorctl: {error['message']}\n")

    def test_what_is_not_there_and_what_is_unavailable_are_too(self):
        for words, code in (
            (["vd", "delete", "a0/vd9"], 3), (["event", "list"], 5), (["user", "show", "nix"], 3),
            (["vd", "delete", "a0/vd2"], 8),
        ):
            with self.subTest(words=words):
                run = self.run_words(*words, "-o", "json")
                self.assertEqual(run.returncode, code)
                document = json.loads(run.stdout)
                self.assertEqual(document["items"], [])
                self.assertEqual(run.stderr,
                                 f"vexorctl: {document['errors'][0]['message']}\n")
        run = self.run_words("event", "list", "-o", "jsonl")
        self.assertIn("no events have been stored yet", json.loads(run.stdout)["error"]["message"])
        run = self.run_words("event", "list", "-o", "xml")
        root = xml.etree.ElementTree.fromstring(run.stdout)
        self.assertIn("no events have been stored yet", root.find("error").text)

    def test_a_configuration_that_cannot_be_read_is_too(self):
        (self.root / "vexorapi.ini").write_text("<broken")
        run = self.run_words("adapter", "list", "-o", "json")
        self.assertEqual(run.returncode, 5)
        self.assertIn("malformed", json.loads(run.stdout)["errors"][0]["message"])

    def test_tables_and_wrong_use_print_no_document(self):
        self.assertEqual(self.run_words("vd", "delete", "a0/vd9").stdout, "")
        run = self.run_words("vd", "list", "-o", "json", "--columns", "nothing")
        self.assertEqual((run.stdout, run.returncode), ("", 2))


class WrongUse(VexorctlCase):
    def test_every_command_answers_wrong_use_with_code_2_and_one_line(self):
        for noun, verb in self.commands():
            if noun == "check":
                continue  # a monitoring plugin: vexorctl_check_test.py
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

    def test_an_option_without_a_value_takes_none(self):
        for word in ("--no-header=x", "--no-header=true", "--no-header="):
            with self.subTest(word=word):
                run = self.run_words("vd", "list", word)
                self.assertEqual((run.returncode, run.stdout), (2, ""))
                self.assertEqual(run.stderr, "vexorctl: --no-header takes no value "
                                             "(see vexorctl vd list --help)\n")
        run = self.run_words("check", "--honour-silences=x")  # a plugin's code for "unknown"
        self.assertEqual(run.returncode, 3)
        self.assertIn("--honour-silences takes no value", run.stdout)

    def test_a_condition_is_no_object_of_an_alert(self):
        for verb in (("ack",), ("silence", "--for", "1h")):
            with self.subTest(verb=verb):
                run = self.run_words("alert", verb[0], "DISK_FAILED", *verb[1:])
                self.assertEqual((run.returncode, run.stdout), (2, ""))
                self.assertIn("DISK_FAILED is a condition and no object; write --code DISK_FAILED",
                              run.stderr)

    def test_verbs_take_no_prefixes(self):
        self.assertEqual(self.run_words("disk", "lis").returncode, 2)
        self.assertEqual(self.run_words("dis", "list").returncode, 2)

    def test_a_write_needs_the_adapter_where_there_are_several(self):
        run = self.run_words("vd", "create", "--raid", "5", "--disks", "3")
        self.assertEqual(run.returncode, 2)
        self.assertIn("there are 2 adapters; say which with --adapter", run.stderr)


class Examples(VexorctlCase):
    def test_every_example_of_every_help_runs(self):
        self.collect()
        (self.root / "password").write_text("raid & roll\n")
        image = bytearray(512)  # a whole BIOS image for these adapters
        image[:14] = b"\x55\xaa\x01\0\0\0" + bytes([3, 0, 1, 0, 0, 0, 27, 0])
        image[32:36] = b"\xc0\xfa\x01\x00"
        image[-1] = -sum(image) % 256
        (self.root / "bios.rom").write_bytes(image)
        (self.root / "examples").symlink_to(TREE / "examples")
        count = 0
        for noun, verb in self.commands():
            text = self.run_words(noun, *([verb] if verb else []), "--help").stdout
            examples = re.findall(r"^  (vexorctl .*)$",
                                  text.split("\nExamples:\n")[1].split("\n\n")[0], re.MULTILINE)
            self.assertEqual(len(examples), 2, (noun, verb))
            if noun == "apply":
                self.run_words("adapter", "mute", "a0", "--plan", "plan.json")
            for example in examples:
                with self.subTest(example=example):
                    run = subprocess.run(["sh", "-c", example], cwd=self.root, text=True,
                                         env=self.environment, stdin=subprocess.DEVNULL,
                                         capture_output=True, timeout=60, check=False)
                    if noun == "alert":  # no event service runs here
                        self.assertEqual(run.returncode, 5)
                        self.assertTrue(run.stderr.startswith(
                            "vexorctl: the event service cannot be asked: "), run.stderr)
                        continue
                    # A plan that would be refused says so.
                    is_refused = "--dry-run" in example and "would be refused: " in run.stdout
                    self.assertEqual((run.stderr, run.returncode), ("", 1 if is_refused else 0))
                    count += 1
        self.assertGreater(count, 100)


class Plans(VexorctlCase):
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
        self.assertIn("--size: no 3 free disks of a1 give 100TiB; the most is 931.46 GiB",
                      run.stderr)
        run = self.run_words("vd", "create", "a1/pd3", "a1/pd4", "--raid", "1", "--size", "100TiB",
                             "--dry-run")
        self.assertEqual(run.returncode, 1)
        self.assertIn("--size: 100TiB is more than the most there, 465.73 GiB; free on a1: ",
                      run.stderr)

    def test_deleting_asks_for_the_name_and_another_answer_is_no(self):
        said, code = self.terminal(["vd", "delete", "a0/vd2"], "yes")
        self.assertIn(b"Delete virtual disk a0/vd2 (ARCHIVE, raid6, 3 TiB)", said)
        self.assertIn(b"all data on it will be lost", said)
        self.assertIn(b"Type ARCHIVE to go on: ", said)
        self.assertIn(b"not confirmed; nothing was changed", said)
        self.assertEqual(code, 8)


class Terminal(VexorctlCase):
    def on_terminal(self, **more):
        return on_terminal([VEXORCTL, "vd", "list", "--columns", "state"],
                           {**self.environment, **more})[0]

    def test_states_are_coloured_on_a_terminal_unless_no_color_says_otherwise(self):
        self.assertIn(b"\x1b[32moptimal\x1b[0m", self.on_terminal())
        self.assertNotIn(b"\x1b", self.on_terminal(NO_COLOR="1"))
        self.assertNotIn("\x1b", self.run_words("vd", "list").stdout)


class Events(VexorctlCase):
    def follow(self, *words):
        return self.run_words("event", "follow", "--once", "-o", "jsonl", *words)

    def sequences(self, run):
        """The numbers of the events in the stream, without the records of gaps."""
        lines = [json.loads(line) for line in run.stdout.splitlines()]
        return [line["sequence"] for line in lines if "record" not in line]

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
                         "vexorctl: event follow: the event store was reset, and what it held "
                         "behind event 31 is lost; how many events that were cannot be told; going "
                         "on with event 0\n")
        self.assertEqual(self.sequences(run), [])

    def many_events(self, at_least):
        """Stores so many, or a few more."""
        (self.root / "story").write_text(
            "repeat 100\ndisk remove a0/pd11\ndisk insert a0/pd11\nend\n")
        stored = 0
        while stored < at_least:
            self.machine.hxsimctl("scenario", "run", self.root / "story")
            self.collect()
            stored = int(self.run_words("event", "list", "--last", "1", "--columns", "sequence",
                                        "--no-header").stdout) + 1
        return stored

    def test_more_events_than_a_result_holds_are_read_in_smaller_pages(self):
        stored = self.many_events(2500)
        self.assertEqual(self.run_words(
            "call", "VX_HX_EVT_GetEvents", "n=2000", "s=0", "e=1999").returncode, 6)
        run = self.follow("--from-start")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertEqual([json.loads(line)["sequence"] for line in run.stdout.splitlines()],
                         list(range(stored)))
        run = self.run_words("event", "list", "-o", "jsonl", "--columns", "sequence")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertEqual([json.loads(line)["sequence"] for line in run.stdout.splitlines()],
                         list(range(stored)))

    def following(self, *words):
        """event follow in the background, once it has seen the store as it is."""
        process = subprocess.Popen(
            [VEXORCTL, "event", "follow", "-o", "jsonl", "--columns", "sequence,text", "--cursor",
             "cursor", *words],
            cwd=self.root, env=self.environment, text=True, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        vexorctl_machine.wait_until((self.root / "cursor").exists, "it was to write its cursor")
        return process

    def test_events_are_shown_as_they_come(self):
        self.collect()
        process = self.following()
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        self.collect()
        texts = [json.loads(process.stdout.readline())["text"] for _ in range(2)]
        self.assertEqual(texts, [
            "Disk a1/pd0 was set down: it takes part in nothing any more",
            "Virtual disk a1/vd0 is degraded: no redundancy is left"])
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=vexorctl_machine.PATIENCE)
        self.assertEqual((out, err, process.returncode), ("", "", 130))
        self.assertRegex((self.root / "cursor").read_text(), r"^vexorctl-cursor 1 34 \S+\n$")

    def test_a_reset_behind_the_back_of_who_follows_is_told(self):
        self.collect()
        process = self.following()
        with vexorctl_machine.stopped(process):
            self.assertEqual(self.run_words("event", "reset", "--yes").returncode, 0)
            self.many_events(60)  # more than there were
        self.assertEqual(json.loads(process.stdout.readline())["record"], "gap")
        self.assertEqual(json.loads(process.stdout.readline())["sequence"], 0)
        process.send_signal(signal.SIGINT)
        _, err = process.communicate(timeout=vexorctl_machine.PATIENCE)
        self.assertIn("vexorctl: event follow: the event store was reset, and what it held behind "
                      "event 31 is lost; how many events that were cannot be told; ", err)

    def test_events_overwritten_behind_the_back_of_who_follows_are_counted(self):
        (self.root / "vexorapi.ini").write_text(
            '<config><EventLogConfig type="config" MaxNumOfEvent="10" '
            f'Filename="{self.root}/opt/kestrel/raid/db/vx_hx_raid.ev"/></config>')
        self.collect()
        process = self.following()
        with vexorctl_machine.stopped(process):
            self.many_events(100)
        lost = json.loads(process.stdout.readline())["lost"]
        process.send_signal(signal.SIGINT)
        _, err = process.communicate(timeout=vexorctl_machine.PATIENCE)
        self.assertIn(f"{lost} events were lost: they were overwritten", err)

    def test_reset_asks_for_the_word_and_counts_what_is_lost(self):
        self.collect()
        self.assertEqual(self.run_words("event", "reset").returncode, 8)
        said, code = self.terminal(["event", "reset"], "events")
        self.assertIn(b"32 stored events will be lost", said)
        self.assertEqual(code, 0)
        self.assertEqual(self.run_words("event", "list", "--no-header").stdout, "")
        run = self.run_words("event", "reset", "--dry-run")
        self.assertIn('<VX_HX_EVT_Reset type="function"></VX_HX_EVT_Reset>', run.stdout)

    def test_overwritten_events_are_counted(self):
        (self.root / "vexorapi.ini").write_text(
            '<config><EventLogConfig type="config" MaxNumOfEvent="10" '
            f'Filename="{self.root}/opt/kestrel/raid/db/vx_hx_raid.ev"/></config>')
        self.collect()
        (self.root / "cursor").write_text("vexorctl-cursor 1 2 x\n")
        run = self.follow("--cursor", "cursor")
        events = self.sequences(run)
        self.assertEqual(run.stderr, f"vexorctl: event follow: {events[0] - 2} events were lost: "
                                     "they were overwritten before they could be read\n")


class Completion(VexorctlCase):
    def test_fish_shows_what_each_fixed_value_means(self):
        for words in (["vd", "create", "--raid="], ["vd", "create", "--init="],
                      ["vd", "create", "--round="], ["vd", "set", "--cache="],
                      ["vd", "set", "--auto-rebuild="], ["task", "start", "--kind="],
                      ["disk", "set", "--state="], ["battery", "power", "--action="],
                      ["flash", "save", "--image="], ["vd", "list", "--output="]):
            lines = self.run_words("completion", "candidates", "--for", "fish", "--",
                                   *words).stdout.splitlines()
            self.assertEqual(lines.pop(0), "words")  # and no files
            self.assertGreater(len(lines), 1, words)
            for line in lines:
                self.assertRegex(line, r"^\S+\t\S", words)

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
                                         env=self.environment, check=False, timeout=60)
                    self.assertEqual((run.stderr, run.returncode), ("", 0))


class Written(VexorctlCase):
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


if __name__ == "__main__":
    WRITE = "--write" in sys.argv
    sys.argv = [word for word in sys.argv if word != "--write"]
    vexorctl_machine.run_tests(__name__, "VEXORCTL", "CHECK_IN", "WRITE_MANUAL")

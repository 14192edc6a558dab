#!/usr/bin/env python3
"""What a result cannot carry: names that vexorctl refuses, and lists that go on behind an item
that cannot be read.

usage: vexorctl_unreadable_test.py VEXORCTL SCRIPTED_LIBRARY_FOLDER [TEST]...
"""

import json
import os
import re
import resource
import sqlite3
import subprocess
import unittest
import xml.etree.ElementTree

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, schema
from vexorctl_script import Script


# Set from the command line.
SCRIPTED_LIBRARY = ""

NOBODY = 65534

CANNOT_CARRY = ", which the library's results cannot carry"
REFUSED_NAMES = (
    ("a]]>b", 'holds "]]>"' + CANNOT_CARRY),
    ("a\nb", "holds a control character" + CANNOT_CARRY),
    ("a\x7fb", "holds a control character" + CANNOT_CARRY),
    ("a\u0085b", "holds a control character" + CANNOT_CARRY),
    ("a\ufffeb", "is not UTF-8, or holds a character that XML 1.0 forbids: the library's results "
                 "cannot carry it"),
    ("a\udcffb", "is not UTF-8, or holds a character that XML 1.0 forbids: the library's results "
                 "cannot carry it"),
    ("0123456789ABCDEF", "has 16 bytes; a name has at most 15"),
    ("12345678901234\u00e4", "has 16 bytes; a name has at most 15"),
)
REFUSED_GROUP_NAMES = (
    ("R&D", 'holds "<" or "&", which the library\'s results cannot carry in the name of a disk '
            "group"),
    ("a<b", 'holds "<" or "&", which the library\'s results cannot carry in the name of a disk '
            "group"),
)


class Names(VexorctlCase):
    NAMING = (
        ["vd", "create", "a1/pd3", "a1/pd4", "--raid", "1"],
        ["vd", "create", "--dg", "a0/dg0", "--size", "1GiB"],
        ["vd", "set", "a0/vd2"],
        ["vd", "modify", "a0/vd0"],
        ["dg", "create", "a0/pd13", "a0/pd14", "--raid", "1"],
        ["dg", "set", "a0/dg0"],
        ["dg", "modify", "a0/dg0"],
    )

    def test_what_a_result_cannot_carry_is_refused_by_every_option_that_sets_a_name(self):
        helps = {tuple(words): self.run_words(*words, "--help").stdout for words in self.commands()}
        named = {words for words, text in helps.items() if "--name NAME" in text}
        self.assertEqual(named, {tuple(words[:2]) for words in self.NAMING})
        for words in self.NAMING:
            names = REFUSED_NAMES + (REFUSED_GROUP_NAMES if words[0] == "dg" else ())
            for name, reason in names:
                with self.subTest(words=words, name=name):
                    run = self.run_words(*words, "--name", name, "--yes")
                    self.assertEqual(run.returncode, 2, run.stderr)
                    self.assertIn(f'" {reason} (see vexorctl {words[0]} {words[1]} --help)\n',
                                  run.stderr)
                    self.assertTrue(run.stderr.startswith('vexorctl: --name: "'), run.stderr)

    def test_what_a_result_carries_is_taken_and_comes_back(self):
        for name in ("a]]b", "R&D <1>", "\u00e4\u20ac\U0001f4be x", "123456789012345", "]]"):
            with self.subTest(name=name):
                run = self.run_words("vd", "set", "a0/vd2", "--name", name, "--yes")
                self.assertEqual((run.stderr, run.returncode), ("", 0))
                run = self.run_words("vd", "list", "a0/vd2", "-o", "json")
                self.assertEqual(json.loads(run.stdout)["items"][0]["name"], name)
        for name in ("a]]b", "a>b", "\u00e4\u20ac"):
            with self.subTest(group=name):
                run = self.run_words("dg", "set", "a0/dg0", "--name", name, "--yes")
                self.assertEqual((run.stderr, run.returncode), ("", 0))
                run = self.run_words("dg", "list", "-o", "json")
                self.assertEqual((run.stderr, run.returncode), ("", 0))
                self.assertEqual(json.loads(run.stdout)["items"][0]["name"], name)


class OneItem(VexorctlCase):
    """Another program has given a virtual disk a name that looks like the elements of the result."""

    ERROR = re.compile(r"^vexorctl: a0: (HX_\w+): the item at index 0( \(ID 0\))? was left out: "
                       r"the result is not well-formed: line \d+: not well-formed "
                       r"\(invalid token\)$")

    def setUp(self):
        super().setUp()
        run = self.run_words("call", "HX_LD_SetConfig", "AdapterID=0", "LD_ID=0", "CacheMode=4",
                             "AutoRebuildOn=1", "LDID=0", "Name=]]></Name><")
        self.assertEqual(run.returncode, 0, run.stderr)

    def expect_errors(self, text, *functions):
        found = [self.ERROR.match(line) for line in text.splitlines()]
        self.assertTrue(all(found) and found, text)
        self.assertEqual([match.group(1) for match in found], list(functions))

    def test_a_list_goes_on_behind_it_and_reports_it(self):
        run = self.run_words("vd", "list", "--columns", "address,name", "--no-header")
        self.assertEqual(run.stdout, "a0/vd2  ARCHIVE\na1/vd0  MIRROR\n")
        self.expect_errors(run.stderr, "HX_LD_GetInfo", "HX_LD_GetConfig")
        self.assertIn("HX_LD_GetInfo: the item at index 0 (ID 0)", run.stderr)
        self.assertEqual(run.returncode, 1)

    def test_every_document_has_it_among_its_errors(self):
        run = self.run_words("vd", "list", "-o", "json")
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        self.assertEqual([item["address"] for item in document["items"]], ["a0/vd2", "a1/vd0"])
        self.assertEqual([(e["address"], e["function"], e["name"]) for e in document["errors"]],
                         [("a0", "HX_LD_GetInfo", "unreadable"),
                          ("a0", "HX_LD_GetConfig", "unreadable")])
        root = xml.etree.ElementTree.fromstring(self.run_words("vd", "list", "-o", "xml").stdout)
        self.assertEqual(len(root.findall("error")), 2)

    def test_check_does_not_call_it_healthy(self):
        run = self.run_words("check")
        self.assertTrue(run.stdout.startswith("UNKNOWN: a0 answers what cannot be: HX_LD_GetInfo: "
                                              "the item at index 0 (ID 0) was left out: "),
                        run.stdout)
        self.assertEqual(run.returncode, 3)

    def test_tasks_go_on_without_its_name(self):
        self.run_words("task", "start", "a0/vd2", "--kind", "check", "--yes")
        run = self.run_words("task", "list", "--columns", "address,name", "--no-header")
        self.assertEqual((run.stdout, run.returncode), ("a0/vd2  ARCHIVE\n", 1))
        self.expect_errors(run.stderr, "HX_LD_GetInfo")


class Texts(VexorctlCase):
    """Texts with bytes that XML forbids, or with its own signs: they are read, and forbidden bytes
    are marked by U+FFFD."""

    def expect(self, *words, shown):
        run = self.run_words(*words, "-o", "json")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertIn(shown, [value for item in json.loads(run.stdout)["items"]
                              for value in item.values()])

    def rename(self, table, column, text, key):
        """Another program writes the machine's rows."""
        with sqlite3.connect(self.machine.state) as database:
            changed = database.execute(f"UPDATE {table} SET {column} = ? WHERE adapter = 0 AND id = ?",
                                       (text, key)).rowcount
        self.assertEqual(changed, 1)

    TEXTS = (("a]]>b", "a]]>b"), ("]]>", "]]>"), ("R&D", "R&D"), ("a<b>c", "a<b>c"))

    def expect_mended(self, noun, address):
        run = self.run_words(noun, "set", address, "--name", "MENDED", "--yes")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.expect(noun, "list", shown="MENDED")

    def expect_read_and_mended(self, noun, address, *call):
        """`call` gives the object a name, which it ends with."""
        for name, shown in self.TEXTS:
            with self.subTest(name=name):
                run = self.run_words("call", *call, f"Name={name}")
                self.assertEqual(run.returncode, 0, run.stderr)
                self.expect(noun, "list", shown=shown)
                self.expect_mended(noun, address)

    def test_names_of_virtual_disks_are_read_and_can_be_mended(self):
        self.expect_read_and_mended("vd", "a0/vd0", "HX_LD_SetConfig", "AdapterID=0", "LD_ID=0",
                                    "CacheMode=4", "AutoRebuildOn=1", "LDID=0")

    def test_names_of_disk_groups_are_read_and_can_be_mended(self):
        self.expect_read_and_mended("dg", "a0/dg0", "HX_DG_SetConfig", "AdapterID=0", "DG_ID=0",
                                    "DGID=0")

    def test_a_forbidden_byte_in_a_name_is_marked_and_can_be_mended(self):
        for byte in ("\x01", "\x1b"):
            with self.subTest(byte=byte):
                self.rename("virtual_disk", "name", f"x{byte}y", 2)
                self.expect("vd", "list", shown="x\ufffdy")
                self.expect_mended("vd", "a0/vd2")

    def test_a_model_with_a_control_character_hides_no_disk(self):
        self.rename("disk", "model", "TW\x01600", 0)
        self.expect("disk", "list", shown="TW\ufffd600")
        run = self.run_words("disk", "list", "a0", "--columns", "address", "--no-header")
        self.assertEqual(len(run.stdout.splitlines()), 16)

    def test_an_event_with_any_serial_number_is_read(self):
        results = Script(self.root / "results")
        self.environment.update(results.environment(SCRIPTED_LIBRARY))
        for serial, shown in ((b"S\x1b[2J", "S\ufffd[2J"), (b"S]]>", "S]]>"), (b"S&T", "S&T"),
                              (b"S<T", "S<T"), (b"S\xffT", "S\ufffdT")):
            with self.subTest(serial=serial):
                (results.folder / "VX_HX_EVT_GetEvents").write_bytes(
                    b'<VX_HX_EVT_GetEvents type="function"><RetVal type="U8">0</RetVal>'
                    b'<n type="U32">1</n><s type="U32">0</s><e type="U32">0</e>'
                    b'<Event type="struct Event"><Class type="U16">0</Class>'
                    b'<Code type="U16">9</Code><TimeStamp type="U32">5</TimeStamp>'
                    b'<DeviceID type="U16">0</DeviceID><Severity type="U8">2</Severity>'
                    b'<AdapterID type="U8">0</AdapterID><SenseDataLength type="U8">0'
                    b'</SenseDataLength><Event type="string">Thu Jan  1 00:00:05 1970 '
                    b"EVT_CODE_ADAPTER_FOUND|[INFO]|0|" + serial + b"| \n</Event></Event>"
                    b"</VX_HX_EVT_GetEvents>")
                run = self.run_words("event", "list", "-o", "json")
                self.assertEqual((run.stderr, run.returncode), ("", 0))
                (item,) = json.loads(run.stdout)["items"]
                self.assertEqual(item["values"], ["0", shown])


class DiskThatGoes(VexorctlCase):
    """A disk is pulled out between the list of disks and what is asked about them."""

    def test_is_left_out_and_the_others_are_listed(self):
        self.machine.hxsimctl("inject", "--call", "HX_PD_GetMBRInfo", "--code", "205",
                              "--times", "1")
        run = self.run_words("disk", "list", "a0", "--columns", "address", "--no-header")
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        self.assertEqual(len(run.stdout.splitlines()), 16)

    def test_that_the_adapter_still_lists_is_an_error(self):
        self.machine.hxsimctl("inject", "--call", "HX_PD_GetMBRInfo", "--code", "205")
        run = self.run_words("disk", "list", "a0", "--columns", "address", "--no-header")
        self.assertIn("a0: HX_PD_GetMBRInfo: refused: ", run.stderr)
        self.assertEqual((len(run.stdout.splitlines()), run.returncode), (16, 1))


class ManyItems(VexorctlCase):
    """More items than a page holds, some of which cannot be read."""

    COUNT = 300
    BROKEN = (0, 5, 127, 128, 299)

    def setUp(self):
        super().setUp()
        self.results = Script(self.root / "results")
        self.environment.update(self.results.environment(SCRIPTED_LIBRARY),
                                STANDIN_LOG=str(self.root / "calls"))

    def script(self, number, name):
        self.results.item(
            "HX_LD_GetInfo", number,
            f"<LDInfo><ID>{number}</ID><Status>1</Status><Name><![CDATA[{name}]]></Name></LDInfo>")

    def test_the_pages_behind_are_asked_for_and_every_one_left_out_is_told(self):
        for number in range(self.COUNT):
            self.script(number, "]]></Name><" if number in self.BROKEN else f"n{number}")
        run = self.run_words("vd", "list", "-o", "json")
        document = json.loads(run.stdout)
        self.assertEqual([item["name"] for item in document["items"]],
                         [f"n{n}" for n in range(self.COUNT) if n not in self.BROKEN])
        self.assertEqual([e["message"].split(" was left out")[0] for e in document["errors"]],
                         [f"the item at index {n} (ID {n})" for n in self.BROKEN])
        self.assertEqual(run.returncode, 1)
        calls = (self.root / "calls").read_text().count("<HX_LD_GetInfo ")
        self.assertLess(calls, 80)

    def test_an_item_whose_id_was_not_read_is_told_by_its_index(self):
        self.script(0, "first")
        self.results.item("HX_LD_GetInfo", 1, "<LDInfo><ID>1\x01</ID></LDInfo>")
        self.script(2, "last")
        run = self.run_words("vd", "list", "--columns", "name", "--no-header")
        self.assertEqual(run.stdout, "first\nlast\n")
        self.assertIn("a0: HX_LD_GetInfo: the item at index 1 was left out: it has no ID", run.stderr)

    def test_a_list_whose_header_cannot_be_read_ends(self):
        self.results.whole("HX_LD_GetInfo", 
            '<HX_LD_GetInfo type="function"><RetVal type="U8">0</RetVal><RequestHeader>\x01')
        run = self.run_words("vd", "list", "--no-header")
        self.assertEqual((run.stdout, run.returncode), ("", 1))
        self.assertEqual(run.stderr, "vexorctl: a0: HX_LD_GetInfo: the result is not well-formed: "
                                     "line 1: not well-formed (invalid token)\n")


class Closed(VexorctlCase):
    """A controller that could not be opened is not an empty machine."""

    VERBS = ("adapter list", "disk list", "disk show a0/pd0", "disk blocks", "vd list",
             "vd show name:DATABASE", "dg list", "enclosure list", "task list",
             "battery list", "flash list", "vd delete a0/vd0 --yes",
             "vd create --raid 0 --disks 1 --adapter 0 --yes")

    def run_as_user(self, *words, setup=None):
        """Runs vexorctl as somebody whom permissions hold back, which root is not."""
        user = {}
        if os.geteuid() == 0:
            for folder in (self.root, *self.root.rglob("*")):
                if folder.is_dir():
                    folder.chmod(0o755)
            user = {"user": NOBODY, "group": NOBODY, "extra_groups": []}
        return subprocess.run([self.vexorctl, *words], cwd="/", env=self.environment, text=True,
                              capture_output=True, timeout=60, check=False, preexec_fn=setup, **user)

    def expect_reason(self, run, *parts):
        """The command ended with 5; its message and its document name the file and the cause."""
        self.assertEqual(run.returncode, 5, run.stderr)
        self.assertTrue(run.stderr.startswith("vexorctl: the controller could not be opened: " +
                                              str(self.machine.state)), run.stderr)
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        self.assertEqual(document["items"], [])
        error = document["errors"][0]
        self.assertEqual((error["code"], error["name"]), (200, "not_initialized"))
        for part in parts:
            self.assertIn(part, run.stderr)
            self.assertIn(part, error["message"])

    def test_a_damaged_state_file_is_told_by_every_verb(self):
        self.machine.state.write_bytes(b"This is no database." * 500)
        for words in self.VERBS:
            with self.subTest(words=words):
                self.expect_reason(self.run_words(*words.split(), "-o", "json"),
                                   "is damaged", "file is not a database", "hxsimctl init")

    def test_a_read_makes_no_machine_where_one_is_named_that_is_not_there(self):
        self.machine.state = self.root / "typo" / "machine.db"
        self.environment["HXSIM_STATE"] = str(self.machine.state)
        for words in self.VERBS:
            with self.subTest(words=words):
                self.expect_reason(self.run_words(*words.split(), "-o", "json"),
                                   ": there is no machine",
                                   f'make one with "hxsimctl init --state {self.machine.state}"')
                self.assertFalse(self.machine.state.parent.exists())

    def test_an_empty_file_that_is_named_is_no_machine_either(self):
        self.machine.state.write_bytes(b"")
        self.expect_reason(self.run_words("vd", "list", "-o", "json"), ": there is no machine")
        self.assertEqual(self.machine.state.read_bytes(), b"")

    def test_without_a_name_the_built_in_machine_is_made(self):
        del self.environment["HXSIM_STATE"]
        run = self.run_words("adapter", "list", "-o", "json")
        self.assertEqual((run.returncode, len(json.loads(run.stdout)["items"])), (0, 2), run.stderr)
        self.assertTrue((self.root / "var/lib/vexorapi/hxsim.db").exists())

    def test_a_file_that_may_not_be_read_is_told(self):
        self.machine.state.chmod(0)
        self.expect_reason(self.run_as_user("vd", "list", "-o", "json"),
                           "cannot be opened", "Permission denied")

    def test_a_file_that_may_only_be_read_is_told(self):
        self.machine.state.chmod(0o444)
        for folder in (0o777, 0o555):  # its log can be put beside it, or nothing can
            with self.subTest(folder=oct(folder)):
                self.root.chmod(folder)
                self.addCleanup(self.root.chmod, 0o755)
                self.expect_reason(self.run_as_user("vd", "list", "-o", "json"),
                                   "make it writable")

    # The sanitizer looks whether an address can be read by opening a pipe.
    @unittest.skipIf("VEXORAPI_SANITIZED" in os.environ, "sanitizers take descriptors themselves")
    def test_too_few_descriptors_are_told(self):
        def four():
            resource.setrlimit(resource.RLIMIT_NOFILE, (4, 4))

        self.machine.state.chmod(0o666)
        self.expect_reason(self.run_as_user("vd", "list", "-o", "json", setup=four),
                           "Too many open files")

    def test_a_state_file_that_broke_since_is_told(self):
        with sqlite3.connect(self.machine.state) as database:
            database.execute("UPDATE block SET start = 5 WHERE adapter = 1 AND id = 0")
        run = self.run_words("vd", "list", "-o", "json")
        self.expect_reason(run, "is damaged: a1/pd0 has sectors 0 to 4 in no block")


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL", "SCRIPTED_LIBRARY")

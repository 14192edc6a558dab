#!/usr/bin/env python3
"""vexorctl tape: what a command has asked of the controller is played back without one.

data/tapes has machines as tapes, each with what vexorctl printed over it; run with --write to record
them anew from the virtual controller.

usage: vexorctl_tape_test.py VEXORCTL [--write] [TEST]...
"""

import json
import os
import pathlib
import stat
import sys

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, schema

TAPES = pathlib.Path(__file__).resolve().parent / "data" / "tapes"
DEGRADED = TAPES / "degraded.tape"
# What is asked of the degraded machine, and what it prints.
QUESTIONS = ["adapter list", "disk list", "dg list", "vd list -o wide", "task list -o wide",
             "enclosure list -o wide", "battery list", "risk"]

VEXORCTL = ""
WRITE = False


class Tape(VexorctlCase):
    topology = "small"

    def setUp(self):
        super().setUp()
        self.tape = self.root / "machine.tape"

    def record(self, *words, options=()):
        return self.run_words("tape", "record", *options, self.tape, "--", self.vexorctl, *words)

    def replay(self, *words, tape=None):
        """Without a machine: one that would be asked all the same could not answer."""
        machine = self.environment.pop("HXSIM_STATE")
        self.environment["HXSIM_STATE"] = str(self.root / "there/is/none")
        try:
            return self.run_words("tape", "replay", tape or self.tape, "--", self.vexorctl, *words)
        finally:
            self.environment["HXSIM_STATE"] = machine

    def test_what_was_recorded_is_printed_again_without_a_controller(self):
        recorded = self.record("disk", "list", "-o", "json")
        self.assertEqual((recorded.returncode, recorded.stderr), (0, ""))
        self.assertEqual(recorded.stdout, self.run_words("disk", "list", "-o", "json").stdout)
        played = self.replay("disk", "list", "-o", "json")
        self.assertEqual((played.returncode, played.stderr), (0, ""))
        self.assertEqual(played.stdout, recorded.stdout)

    def test_the_tape_of_a_degraded_machine_gives_what_it_gave(self):
        if WRITE:
            self.write_degraded()
        for question in QUESTIONS:
            with self.subTest(question=question):
                run = self.replay(*question.split(), tape=DEGRADED)
                self.assertEqual(run.stderr, "")
                printed = TAPES / ("degraded-" + question.replace(" ", "-") + ".txt")
                if WRITE:
                    printed.write_text(run.stdout)
                self.assertEqual(run.stdout, printed.read_text())
        self.assertEqual(self.replay("risk", tape=DEGRADED).returncode, 9)
        self.assertIn("degraded", (TAPES / "degraded-vd-list--o-wide.txt").read_text())

    def write_degraded(self):
        self.run_words("vd", "create", "--adapter", "0", "--raid", "5", "--disks", "3",
                       "--size", "10G", "--name", "DATA", "--yes")
        self.machine.hxsimctl("disk", "fail", "a0/pd1")
        script = "; ".join(f'"$0" {question}' for question in QUESTIONS)
        run = self.run_words("tape", "record", "--force", "--anonymous", DEGRADED, "--", "sh", "-c",
                             script, self.vexorctl)
        self.assertEqual(run.stderr, "")

    def test_processes_of_one_run_go_on_where_the_last_one_stopped(self):
        script = '"$0" vd list --no-header; "$0" vd create --adapter 0 --raid 1 --disks 2 ' \
                 '--size 10G --name MIRROR --yes >/dev/null; "$0" vd list --no-header'
        run = self.run_words("tape", "record", self.tape, "--", "sh", "-c", script, self.vexorctl)
        self.assertRegex(run.stdout, r"^a0/vd0 +MIRROR ")
        again = self.run_words("tape", "replay", self.tape, "--", "sh", "-c", script, self.vexorctl)
        self.assertEqual((again.stdout, again.stderr, again.returncode), (run.stdout, "", 0))

    def test_a_change_reaches_nothing_real(self):
        self.run_words("vd", "create", "--adapter", "0", "--raid", "1", "--disks", "2", "--size",
                       "10G", "--name", "MIRROR", "--yes")
        before = self.run_words("vd", "list", "-o", "json").stdout
        self.record("vd", "list")
        run = self.run_words("tape", "replay", self.tape, "--", self.vexorctl, "call",
                             "HX_LD_Delete", "AdapterID=0", "LD_ID=0")
        self.assertEqual(run.returncode, 11)
        self.assertIn("no answer to HX_LD_Delete 00000000", run.stderr)
        self.assertEqual(before, self.run_words("vd", "list", "-o", "json").stdout)

    def test_what_the_tape_does_not_answer_is_named_at_the_end(self):
        self.record("adapter", "list")
        run = self.replay("battery", "list")
        self.assertEqual(run.returncode, 11)
        self.assertIn(f"vexorctl: {self.tape}: no answer to HX_BBU_GetInfo 00\n", run.stderr)
        run = self.replay("version")
        self.assertEqual((run.returncode, run.stderr),
                         (5, f"vexorctl: {self.tape}: the command asked nothing of the tape\n"))

    def test_an_anonymous_tape_has_no_serial_number_address_or_name(self):
        self.run_words("vd", "create", "--adapter", "0", "--raid", "1", "--disks", "2", "--size",
                       "10G", "--name", "PAYROLL", "--yes")
        questions = ("disk list -o json", "vd list -o json", "adapter list -o json")
        script = "; ".join(f'"$0" {question}' for question in questions)
        documents = self.run_words("tape", "record", "--anonymous", self.tape, "--", "sh", "-c",
                                   script, self.vexorctl).stdout
        tape = self.tape.read_text()
        values = {"PAYROLL"}
        for text in documents.replace("}\n{", "}\0{").split("\0"):
            for item in json.loads(text)["items"]:
                values.update(item[key] for key in ("serial", "wwn") if item.get(key))
        self.assertGreater(len(values), 16)
        for value in values:
            for form in (value.encode().hex(), value.lower()):
                self.assertNotIn(form, tape)
        played = self.replay("disk", "list", "-o", "json")
        self.assertEqual((played.returncode, played.stderr), (0, ""))
        serials = {item["serial"] for item in json.loads(played.stdout)["items"]}
        self.assertEqual(len(serials), 8)
        self.assertFalse(serials & values)

    def test_a_tape_is_its_owners_and_replaces_nothing_unasked(self):
        self.record("adapter", "list")
        self.assertEqual(stat.S_IMODE(self.tape.stat().st_mode), 0o600)
        before = self.tape.read_text()
        run = self.record("disk", "list")
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        self.assertIn("is there already; --force replaces it", run.stderr)
        self.assertEqual(before, self.tape.read_text())
        self.assertEqual(self.record("disk", "list", options=["--force"]).returncode, 0)
        self.assertNotEqual(before, self.tape.read_text())

    def test_the_exit_code_is_the_commands_unless_nothing_was_recorded(self):
        self.assertEqual(self.record("vd", "show", "a0/vd9").returncode, 3)
        self.tape.unlink()
        run = self.run_words("tape", "record", self.tape, "--", "true")
        self.assertEqual(run.returncode, 5)
        self.assertIn("nothing was recorded", run.stderr)
        run = self.run_words("tape", "record", self.tape, "--", "there-is-no-such-program")
        self.assertEqual(run.returncode, 2)
        self.assertIn("there-is-no-such-program cannot be started", run.stderr)
        self.assertFalse(self.tape.exists())  # the next attempt needs no --force
        self.assertEqual(self.run_words("tape", "record", self.tape).returncode, 2)

    def test_a_tape_that_is_there_goes_only_when_another_was_recorded(self):
        self.record("adapter", "list")
        self.tape.chmod(0o644)
        before, files = self.tape.read_text(), sorted(self.root.iterdir())
        for program, code in (("there-is-no-such-program", 2), ("true", 5)):
            with self.subTest(program=program):
                run = self.run_words("tape", "record", "--force", self.tape, "--", program)
                self.assertEqual(run.returncode, code, run.stderr)
                self.assertEqual(self.tape.read_text(), before)
                self.assertEqual(sorted(self.root.iterdir()), files)
        self.assertEqual(self.record("disk", "list", options=["--force"]).returncode, 0)
        self.assertNotEqual(self.tape.read_text(), before)
        self.assertEqual(stat.S_IMODE(self.tape.stat().st_mode), 0o600)
        self.assertEqual(sorted(self.root.iterdir()), files)

    def test_a_tape_that_is_none_runs_nothing(self):
        for text, complaint in (("", "it is no tape"), ("vexorapi-tape 2\n", "another version"),
                                (DEGRADED.read_text()[:-1], "has no end")):
            with self.subTest(complaint=complaint):
                self.tape.write_text(text)
                run = self.run_words("tape", "replay", self.tape, "--", "touch", self.root / "ran")
                self.assertEqual(run.returncode, 2)
                self.assertIn(complaint, run.stderr)
                self.assertFalse((self.root / "ran").exists())

    def test_show_lists_the_calls(self):
        self.record("adapter", "list")
        run = self.run_words("tape", "show", self.tape, "-o", "json")
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        self.assertEqual(document["items"][0],
                         {"number": 1, "function": "HX_API_Initialize", "status": 0,
                          "answer_length": 0, "request": None})
        self.assertIn({"number": 3, "function": "HX_Adapter_GetInfo", "status": 0,
                       "answer_length": 257, "request": "00"}, document["items"])


if __name__ == "__main__":
    WRITE = "--write" in sys.argv
    sys.argv = [word for word in sys.argv if word != "--write"]
    os.umask(0o022)
    vexorctl_machine.run_tests("__main__", "VEXORCTL")

#!/usr/bin/env python3
"""status.json is what its schema says, and the schema refuses what is not.

usage: hxraidsvc_status_test.py HXRAIDSVC
"""

import copy
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import jsonschema

TREE = pathlib.Path(__file__).resolve().parents[2]
SERVICE = sys.argv.pop(1)
PROGRAMS = os.path.dirname(SERVICE)
PATIENCE = 120  # seconds
SCHEMA = TREE / "docs" / "hxraidsvc-status.schema.json"


def run(*command, environment=None):
    return subprocess.run(command, text=True, capture_output=True, check=True, timeout=PATIENCE,
                          env=environment).stdout


def mutants(value, schema, root):
    """Copies of the value that the schema must refuse, each with a name: without a member, or with
    one of another type."""
    while "$ref" in schema:
        schema = root["$defs"][schema["$ref"].rsplit("/", 1)[1]]
    if value is None:
        return
    if "anyOf" in schema:
        schema = schema["anyOf"][0]
    if isinstance(value, list) and value:
        for name, mutant in mutants(value[0], schema["items"], root):
            yield f"[0]{name}", [mutant, *value[1:]]
    if not isinstance(value, dict) or "properties" not in schema:
        return
    for member in value:
        without = copy.copy(value)
        del without[member]
        yield f".{member} is missing", without
        yield f".{member} is of another type", {**value, member: [[]]}
        for name, mutant in mutants(value[member], schema["properties"][member], root):
            yield f".{member}{name}", {**value, member: mutant}


class Status(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory(prefix="hxraidsvc-status-") as folder:
            root = pathlib.Path(folder) / "root"
            root.mkdir()
            environment = {**os.environ, "VEXORAPI_ROOT": str(root),
                           "HXSIM_STATE": str(pathlib.Path(folder) / "machine.db")}
            hxsimctl = os.path.join(PROGRAMS, "hxsimctl")
            for words in (["init", "--seed", "7"], ["disk", "fail", "a0/pd1"]):
                run(hxsimctl, *words, environment=environment)
            run(SERVICE, "--once", environment=environment)
            cls.text = (root / "run" / "hxraid" / "status.json").read_text()
        cls.status = json.loads(cls.text)
        cls.schema = json.loads(SCHEMA.read_text())
        jsonschema.Draft202012Validator.check_schema(cls.schema)
        cls.validator = jsonschema.Draft202012Validator(cls.schema)

    def test_is_what_its_schema_says(self):
        complaints = [f"{each.json_path}: {each.message}"
                      for each in self.validator.iter_errors(self.status)]
        self.assertEqual(complaints, [])

    def test_has_everything_that_a_reader_wants(self):
        self.assertIn("a0", [each["address"] for each in self.status["adapters"]])
        self.assertRegex(self.status["versions"]["adapters"][0]["firmware"], r"^\d+(\.\d+){3}$")
        self.assertEqual(len(self.status["counters"]), 15)
        self.assertGreater(self.status["counters"]["any"], 0)
        self.assertEqual(len(self.status["events"]), 5)
        last = self.status["events"][-1]["number"]
        self.assertEqual(last + 1, self.status["store"]["next"])
        tasks = [(each["activity"], each["state"]) for each in self.status["tasks"]]
        self.assertIn(("rebuild", "running"), tasks)
        self.assertIn("VD_REBUILDING_UNPROTECTED",
                      [each["code"] for each in self.status["conditions"]])

    def test_without_a_member_or_with_one_of_another_type_is_refused(self):
        names = 0
        for name, mutant in mutants(self.status, self.schema, self.schema):
            with self.subTest(name):
                self.assertFalse(self.validator.is_valid(mutant))
            names += 1
        self.assertGreater(names, 150)

    def test_has_the_schema_that_its_tables_make(self):
        written = run(os.path.join(PROGRAMS, "write_service_files"), "schema")
        self.assertEqual(SCHEMA.read_text(), written, "write it anew: write_service_files schema")


if __name__ == "__main__":
    unittest.main()

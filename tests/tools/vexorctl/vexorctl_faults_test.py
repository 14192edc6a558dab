#!/usr/bin/env python3
"""The tools on a machine that runs out of room.

usage: vexorctl_faults_test.py VEXORCTL FAULTS_LIBRARY [TEST]...
"""

import json

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, full_disk, schema

# Set from the command line.
FAULTS_LIBRARY = ""


class FullDisk(VexorctlCase):
    def setUp(self):
        super().setUp()
        self.environment.update(full_disk(FAULTS_LIBRARY, self.root))

    def test_a_controller_that_cannot_be_opened_for_it_is_told(self):
        run = self.run_words("vd", "list", "-o", "json")
        self.assertEqual(run.returncode, 5, run.stderr)
        self.assertTrue(run.stderr.startswith("vexorctl: the controller could not be opened: " +
                                              str(self.machine.state)), run.stderr)
        self.assertIn("No space left on device", run.stderr)
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        self.assertEqual(document["errors"][0]["name"], "not_initialized")
        self.assertIn("No space left on device", document["errors"][0]["message"])


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL", "FAULTS_LIBRARY")

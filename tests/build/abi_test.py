#!/usr/bin/env python3
"""The public interfaces are those that are recorded, and scripts/abi notices each kind of change.

usage: abi_test.py TREE
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(sys.argv[1])
VEXORAPI, HXRAID = "backend/vexorapi/vexorapi.h", "backend/hxraid/hxraid.h"


def check(tree):
    done = subprocess.run([tree / "scripts/abi", "check"], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=300, check=False)
    return done.returncode, done.stdout


class Interfaces(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.tree = pathlib.Path(self.folder.name)
        for name in ("scripts/abi", VEXORAPI, HXRAID):
            (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(TREE / name, self.tree / name)
        shutil.copytree(TREE / "abi", self.tree / "abi")

    def tearDown(self):
        self.folder.cleanup()

    def change(self, header, old, new):
        text = (self.tree / header).read_text()
        self.assertIn(old, text)
        (self.tree / header).write_text(text.replace(old, new, 1))

    def refuses(self, says):
        code, text = check(self.tree)
        self.assertEqual(code, 1, text)
        self.assertIn(says, text)

    def test_are_as_recorded(self):
        code, text = check(TREE)
        self.assertEqual(code, 0, text)

    def test_a_function_more_asks_for_a_minor_version(self):
        self.change(VEXORAPI, "/** Closes the service log.",
                    "VEXORAPI_EXPORT int VX_More(void) VEXORAPI_NOEXCEPT;\n\n/** Closes the service log.")
        self.refuses(f"{VEXORAPI}: it has changed and its version has not")
        self.change(VEXORAPI, "VERSION_MINOR 2", "VERSION_MINOR 3")
        self.assertEqual(check(self.tree)[0], 0)

    def test_another_parameter_asks_for_a_major_version(self):
        self.change(VEXORAPI, "VX_EvFile_CheckIn(uint8_t", "VX_EvFile_CheckIn(uint16_t")
        self.change(VEXORAPI, "VERSION_MINOR 2", "VERSION_MINOR 3")
        self.refuses(f"{VEXORAPI}: compiled programs would break")

    def test_no_version_allows_another_layout_of_a_record(self):
        self.change(HXRAID, "#define HX_MAX_DG_SPARES 8 ", "#define HX_MAX_DG_SPARES 16 ")
        text = (self.tree / HXRAID).read_text()
        # The header refuses it by itself, too.
        (self.tree / HXRAID).write_text(
            text.replace("#include <assert.h>", "#define static_assert(...)\n"))
        self.change(HXRAID, "#define HXRAID_VERSION 1", "#define HXRAID_VERSION 2")
        self.refuses(f"{HXRAID}: compiled programs would break")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

#!/usr/bin/env python3
"""The C program of README.md, compiled and run by the very lines that stand there.

usage: readme_program_test.py TREE BUILD LIBDIR COMPILER [OPTION]...

The lines run in a temporary folder that looks like the tree: BUILD stands in it as build/release, and
`cc` is the compiler of this build. LIBDIR is the folder of libraries below the prefix. SYSTEM_LIBRARIES in the
environment is the folder of the system's libraries, where neither compiler nor loader looks there by itself.
"""

import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

TREE, BUILD, LIBDIR = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
COMPILER = sys.argv[4:]


def section():
    return (TREE / "README.md").read_text().split("## A program\n")[1].split("\n## ")[0]


def blocks(text, language):
    return re.findall(rf"^```{language}\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)


class ReadmeProgram(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.top = pathlib.Path(self.folder.name)
        (self.top / "backend").symlink_to(TREE / "backend")
        (self.top / "build").mkdir()
        (self.top / "build/release").symlink_to(BUILD)
        (self.top / "bin").mkdir()
        compiler = self.top / "bin/cc"
        compiler.write_text(f'#!/bin/sh\nexec {shlex.join(COMPILER)} "$@"\n')
        compiler.chmod(0o755)
        (program,) = blocks(section(), "c")
        (self.top / "adapters.c").write_text(program)
        self.environment = {
            **os.environ, "PATH": f"{self.top}/bin:{os.environ['PATH']}", "HOME": str(self.top),
            "VEXORAPI_ROOT": str(self.top / "root"), "HXSIM_STATE": ":memory:",
        }
        self.environment.pop("LD_LIBRARY_PATH", None)
        if "SYSTEM_LIBRARIES" in os.environ:
            self.environment["LD_LIBRARY_PATH"] = os.environ["SYSTEM_LIBRARIES"]

    def tearDown(self):
        self.folder.cleanup()

    def replay(self, block):
        commands = [step.split("\n", 1) for step in re.split(r"^\$ ", block, flags=re.MULTILINE)[1:]]
        self.assertGreater(len(commands), 1)
        for command, expected in commands:
            command = command.replace('"$HOME/vexorapi/lib"', f'"$HOME/vexorapi/{LIBDIR}"')
            done = subprocess.run(["sh", "-c", command], cwd=self.top, env=self.environment,
                                  text=True, capture_output=True, timeout=300, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, ""), command)
            self.assertEqual(done.stdout, expected, command)

    def test_compiles_and_runs_against_the_build_folder(self):
        self.replay(blocks(section(), "console")[0])

    def test_compiles_and_runs_against_an_installed_library(self):
        self.replay(blocks(section(), "console")[1])

    def test_compiles_without_a_warning(self):
        subprocess.run(["cc", "-Wall", "-Wextra", "-Werror", "-fsyntax-only", "-Ibackend/vexorapi",
                        "adapters.c"], cwd=self.top, env=self.environment, timeout=60, check=True)

    def test_says_why_when_the_library_declines(self):
        program = (self.top / "adapters.c").read_text().replace("HX_Adapter_GetCount", "No_Such")
        (self.top / "adapters.c").write_text(program)
        compiled = blocks(section(), "console")[0].split("\n")[0].removeprefix("$ ")
        subprocess.run(["sh", "-c", compiled], cwd=self.top, env=self.environment, timeout=60,
                       check=True)
        done = subprocess.run(["./adapters"], cwd=self.top, env=self.environment, text=True,
                              capture_output=True, timeout=60, check=False)
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertIn("declined", done.stderr)

    def test_the_folders_that_readme_names_after_installing_are_there(self):
        prefix = self.top / "prefix"
        subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL, timeout=300)
        table = (TREE / "README.md").read_text().split("| below the prefix | what |\n|---|---|\n")[1]
        rows = table.split("\n\n")[0].splitlines()
        self.assertGreater(len(rows), 5)
        for row in rows:
            # The 32-bit build has no service.
            if "hxraidsvc" in row and not (BUILD / "bin" / "hxraidsvc").exists():
                continue
            # Neither has it a PHP, nor has every machine.
            if "PHP" in row and not (BUILD / "lib/php/vexorapi.so").exists():
                continue
            # The page of Cockpit is made only where npm is to be asked.
            if "VEXORAPI_CONSOLE" in row and not (BUILD / "console").exists():
                continue
            for path in re.findall(r"`([^`]+)`", row.split("|")[1]):
                path = re.sub(r"^lib/(?!tmpfiles|php|python3)", f"{LIBDIR}/", path)
                self.assertTrue((prefix / path).exists(), path)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

#!/usr/bin/env python3
"""What cmake --install leaves: the listed files by component, and a library that programs can be built with.

usage: install_test.py CMAKE BUILD LIBDIR VERSION C_COMPILER CXX_COMPILER

files.txt lists each component's files below the prefix, with LIBDIR for the folder of libraries, VERSION for
the project's version and CONFIG for the build's type. BUILD is a build tree in which everything is built.
"""

import fnmatch
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent
CMAKE, BUILD, LIBDIR, VERSION, C_COMPILER, CXX_COMPILER = sys.argv[1:]
PREFIX = "/usr"
COUNT = '<HX_Adapter_GetCount type="function">\n  <RetVal type="U8">2</RetVal>\n</HX_Adapter_GetCount>\n'


def listed():
    """The paths of each component."""
    components = {}
    for line in (HERE / "files.txt").read_text().splitlines():
        if line.startswith("["):
            paths = components.setdefault(line.strip("[]"), set())
        elif line and not line.startswith("#"):
            paths.add(line.replace("LIBDIR", LIBDIR).replace("VERSION", VERSION))
    if not (pathlib.Path(BUILD) / "lib/php/vexorapi.so").exists():
        components["php"].clear()
    return components


def files_below(folder):
    found = {str(path.relative_to(folder)) for path in folder.rglob("*")
             if path.is_symlink() or not path.is_dir()}
    return {re.sub(r"(/vexorapi-targets)-\w+\.cmake$", r"\1-CONFIG.cmake", path) for path in found}


def expected(paths, found):
    """The listed paths, with those that were found in the place of each pattern that they match."""
    result = set()
    for path in paths:
        result |= set(fnmatch.filter(found, path)) or {path}
    return result


def run(*command, **options):
    done = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          timeout=300, check=False, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


def install(folder, *options):
    run(CMAKE, "--install", BUILD, "--prefix", PREFIX, *options,
        env={**os.environ, "DESTDIR": str(folder)})
    return pathlib.Path(folder) / PREFIX.lstrip("/")


class Components(unittest.TestCase):
    def test_have_exactly_the_listed_files(self):
        for component, paths in listed().items():
            with self.subTest(component=component), tempfile.TemporaryDirectory() as folder:
                found = files_below(install(folder, "--component", component))
                self.assertEqual(sorted(found), sorted(expected(paths, found)))


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.top = pathlib.Path(cls.scratch.name)
        cls.root = cls.top / "root"
        cls.prefix = install(cls.root)
        cls.environment = {
            **os.environ,
            "LD_LIBRARY_PATH": str(cls.prefix / LIBDIR),
            "PKG_CONFIG_LIBDIR": str(cls.prefix / LIBDIR / "pkgconfig"),
            "PKG_CONFIG_SYSROOT_DIR": str(cls.root),
            "VEXORAPI_ROOT": str(cls.top / "machine"),
            "HXSIM_STATE": ":memory:",
        }

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def answers(self, program):
        self.assertEqual(run(program, env=self.environment), COUNT)

    def flags(self, *options):
        return run("pkg-config", *options, "vexorapi", env=self.environment).split()

    def compiled(self, *command):
        program = self.top / "program"
        run(*command, "-Wall", "-Wextra", "-Wpedantic", "-Werror", str(HERE / "program.c"),
            "-o", str(program), *self.flags("--cflags", "--libs"), env=self.environment)
        return program

    def cmake(self, version):
        build = self.top / f"consumer{version}"
        text = run(CMAKE, "-S", str(HERE / "cmake_consumer"), "-B", str(build),
                   f"-DVERSION_ASKED={version}", f"-DCMAKE_PREFIX_PATH={self.prefix}",
                   f"-DCMAKE_C_COMPILER={C_COMPILER}", env=self.environment)
        self.assertIn(f"found version {VERSION}\n", text)
        run(CMAKE, "--build", str(build), env=self.environment)
        self.answers(str(build / "consumer"))

    def test_all_components_are_installed_without_naming_one(self):
        everything = set().union(*listed().values())
        found = files_below(self.prefix)
        self.assertEqual(sorted(found), sorted(expected(everything, found)))

    def test_a_c99_program_by_pkg_config(self):
        self.answers(self.compiled(C_COMPILER, "-std=c99"))

    def test_a_cpp20_program_by_pkg_config(self):
        self.answers(self.compiled(CXX_COMPILER, "-std=c++20", "-x", "c++"))

    def test_pkg_config_knows_the_version(self):
        self.assertEqual(self.flags("--modversion"), [VERSION])

    def test_a_cmake_program_that_asks_for_no_version(self):
        self.cmake("")

    def test_a_cmake_program_that_asks_for_this_version(self):
        self.cmake(".".join(VERSION.split(".")[:2]))

    def test_a_cmake_program_that_asks_for_another_major_version_is_refused(self):
        major = int(VERSION.split(".", maxsplit=1)[0])
        with self.assertRaisesRegex(AssertionError, f"version: {re.escape(VERSION)}"):
            self.cmake(f"{major + 1}.0")

    def test_files_that_name_folders_name_those_below_the_prefix(self):
        unit = self.prefix / "lib/systemd/system/hxraidsvc.service"
        self.assertIn(f"\nExecStart={PREFIX}/sbin/hxraidsvc\n", unit.read_text())
        self.assertIn(f"\nlibdir={PREFIX}/{LIBDIR}\n",
                      "\n" + (self.prefix / LIBDIR / "pkgconfig/vexorapi.pc").read_text())

    def test_the_completions_are_those_that_the_program_prints(self):
        for shell, path in (("bash", "share/bash-completion/completions/vexorctl"),
                            ("zsh", "share/zsh/site-functions/_vexorctl"),
                            ("fish", "share/fish/vendor_completions.d/vexorctl.fish")):
            with self.subTest(shell=shell):
                printed = run(str(self.prefix / "bin/vexorctl"), "completion", shell,
                              env=self.environment)
                self.assertEqual((self.prefix / path).read_text(), printed)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

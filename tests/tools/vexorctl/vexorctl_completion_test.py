#!/usr/bin/env python3
"""Completion in the real shells, on a pseudo-terminal: the names of objects are data, whatever they
hold.

usage: vexorctl_completion_test.py VEXORCTL [TEST]...
"""

import os
import pty
import select
import shutil
import time
import unittest

import vexorctl_machine
from vexorctl_machine import VexorctlCase

SHELLS = {
    "bash": (["bash", "--norc", "--noprofile", "-i"], "source <(vexorctl completion bash)"),
    "zsh": (["zsh", "-f", "-i"],
            "autoload -Uz compinit; compinit -u -D; source <(vexorctl completion zsh)"),
    "fish": (["fish", "--no-config", "-i"], "vexorctl completion fish | source"),
}
NAMES = ("two words", "$(touch OUT)", "`touch OUT`", "a;touch OUT", "it's \"so\"", "x:y:z",
         "-dash", "größe", "a&b|c>OUT", "*", "#~!?{}[]<>")


class Shell:
    """A shell that waits at its prompt; what is typed ends with a line that it says itself."""

    def __init__(self, name, environment, folder):
        words, script = SHELLS[name]
        self.said = b""
        self.pid, self.master = pty.fork()
        if self.pid == 0:
            os.chdir(folder)
            os.execvpe(words[0], words, {**environment, "TERM": "xterm", "HOME": str(folder)})
        self.lines = 0
        self.type(script)

    def type(self, text):
        """Types a line and waits until the shell has done it."""
        self.lines += 1
        mark = f"<{self.lines * 7}>".encode()
        os.write(self.master, text.encode() + f"\necho '<'{self.lines * 7}'>'\n".encode())
        end = time.monotonic() + 60
        while mark not in self.said and time.monotonic() < end:
            if select.select([self.master], [], [], 0.2)[0]:
                try:
                    self.said += os.read(self.master, 65536)
                except OSError:
                    break
        if mark not in self.said:
            raise AssertionError(self.said[-2000:].decode(errors="replace"))

    def close(self):
        os.close(self.master)
        os.waitpid(self.pid, 0)


class Completion(VexorctlCase):
    def setUp(self):
        super().setUp()
        for disk in ("a0/vd0", "a1/vd0"):
            self.run_words("vd", "delete", disk, "--yes")

    def completes(self, shell, typed, expected, rest="--columns name --no-header -o csv"):
        """What is typed, completed by a tab, is the word that is meant."""
        got = self.root / "got"
        got.unlink(missing_ok=True)
        shell.type(f"vexorctl {typed}\t {rest} >{got} 2>&1")
        self.assertEqual(got.read_text(), expected, shell.said[-1000:])

    def names_are_data(self, name):
        if shutil.which(name) is None:
            self.fail(f"{name} is missing: scripts/bootstrap installs it")
        shell = Shell(name, self.environment, self.root)
        self.addCleanup(shell.close)
        for each in NAMES:
            with self.subTest(name=each):
                run = self.run_words("vd", "set", "a0/vd2", f"--name={each}", "--yes")
                self.assertEqual((run.stderr, run.returncode), ("", 0))
                self.completes(shell, "vd show name:", each.replace('it\'s "so"',
                                                                    '"it\'s ""so"""') + "\n")
                self.assertFalse((self.root / "OUT").exists(), each)
        self.completes(shell, "disk show serial:9TW01K55", "9TW01K55\n",
                       "--columns serial --no-header -o csv")
        self.completes(shell, "disk show serial:9TW01K5D", "9TW01K5D\n",
                       "--columns serial --no-header -o csv")

    def test_names_are_data_in_bash(self):
        self.names_are_data("bash")

    def test_names_are_data_in_zsh(self):
        self.names_are_data("zsh")

    def test_names_are_data_in_fish(self):
        self.names_are_data("fish")

    def candidates(self, *words, shell="bash"):
        run = self.run_words("completion", "candidates", "--for", shell, "--", *words)
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        return run.stdout.splitlines()[1:]

    def test_every_option_with_a_fixed_set_of_values_offers_them(self):
        self.assertEqual(self.candidates("event", "list", "--severity", "maj"), ["major", "major+"])
        self.assertEqual(self.candidates("event", "follow", "--severity=fa"),
                         ["--severity=fatal", "--severity=fatal+"])
        self.assertEqual(self.candidates("event", "list", "--class", "bat"), ["battery"])
        self.assertEqual(self.candidates("vd", "create", "--cache", ""),
                         ["write_back", "read_ahead", "none"])
        self.assertEqual(self.candidates("vd", "set", "a0/vd2", "--cache", "write_back,r"),
                         ["write_back,read_ahead"])
        self.assertEqual(self.candidates("vd", "list", "--sort", "-na"), ["-name"])
        self.assertEqual(self.candidates("vd", "list", "--columns", "name,na"), [])
        self.assertEqual(self.candidates("vd", "list", "--columns=address,na"),
                         ["--columns=address,name"])
        self.assertEqual(self.candidates("disk", "spare", "a0/pd11", "--dg", "a0/"), ["a0/dg0"])
        self.assertEqual(self.candidates("vd", "create", "--adapter", ""), ["0", "1"])
        self.assertEqual(self.candidates("vd", "create", "--size", ""), ["max"])
        self.assertEqual(self.candidates("vd", "create", "--name", ""), [])

    def test_fish_gets_descriptions(self):
        self.assertEqual(self.candidates("dis", shell="fish"), ["disk\tPhysical disks"])
        self.assertEqual(self.candidates("vd", "show", "name:A", shell="fish"),
                         ["name:ARCHIVE\ta0/vd2"])
        self.assertEqual(self.candidates("disk", "locate", "a0/pd1", "--o", shell="fish"),
                         ["--off\tSwitch the light off",
                          "--output\x09How objects are printed"])

    def test_lists_and_files_are_completed_in_each_shell(self):
        (self.root / "one-file.xml").write_text('<HX_Adapter_GetCount type="function"><No>1</No></HX_Adapter_GetCount>')
        linted = self.run_words("xml", "lint", "one-file.xml").stdout
        self.assertNotEqual(linted, "")
        refused = self.run_words("vd", "show", "one-f").stderr
        for name in ("bash", "zsh", "fish"):
            shell = Shell(name, self.environment, self.root)
            self.addCleanup(shell.close)
            with self.subTest(shell=name):
                self.completes(shell, "vd show a0/vd2 --columns address,na", "a0/vd2,ARCHIVE\n",
                               "--no-header -o csv")
                self.completes(shell, "xml lint one-f", linted, "")
                self.completes(shell, "vd show one-f", refused, "")

    def test_files_are_offered_only_where_one_is_wanted(self):
        def wants(*words):
            run = self.run_words("completion", "candidates", "--for", "bash", "--", *words)
            return run.stdout.splitlines()[0]
        self.assertEqual(wants("flash", "update", "a0", "--file", ""), "files")
        self.assertEqual(wants("vd", "list", "--codes", ""), "files")
        self.assertEqual(wants("vd", "show", ""), "words")
        self.assertEqual(wants("vd", "create", "--name", ""), "words")

    def test_a_word_in_quotes_gets_only_what_needs_none(self):
        self.run_words("vd", "set", "a0/vd2", "--name", "$(id)", "--yes")
        run = self.run_words("completion", "candidates", "--for", "bash", "--", "vd", "show", '"')
        self.assertEqual(run.stdout.split(), ["words", "a0/vd2"])


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL")

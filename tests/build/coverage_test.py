#!/usr/bin/env python3
"""scripts/coverage counts what was reached, leaves out what is tagged, and fails when it should.

usage: coverage_test.py SCRIPT COMPILER [OPTION]...
"""

import pathlib
import subprocess
import sys
import tempfile
import types
import unittest

SCRIPT, COMPILER = sys.argv[1], sys.argv[2:]
coverage = types.ModuleType("coverage")
exec(compile(pathlib.Path(SCRIPT).read_text(), SCRIPT, "exec"), coverage.__dict__)

SOURCE = """#include <stdlib.h>
int Sign(int number) {
    if (number < 0) return -1;
    return number > 0;
}
int main(int count, char** words) {
    int sum = 0;
    for (int i = 1; i < count; ++i) sum += Sign(atoi(words[i]));
    if (sum > 100)
        abort();TAG
    return 0;
}
"""


class Coverage(unittest.TestCase):
    def measure(self, words, tag="", *options, mapped=False):
        """The script's exit status and output over one program, run with these words."""
        with tempfile.TemporaryDirectory() as directory:
            tree = pathlib.Path(directory).resolve()
            objects = tree / "build" / "backend"
            objects.mkdir(parents=True)
            (tree / "backend").mkdir()
            source = tree / "backend" / "sign.c"
            source.write_text(SOURCE.replace("TAG", tag))
            subprocess.run([*COMPILER, "--coverage", "-O0", *([f"-ffile-prefix-map={tree}=."] if mapped else []),
                            "-c", source, "-o", "sign.o"], check=True, cwd=objects)
            subprocess.run([*COMPILER, "--coverage", "sign.o", "-o", "sign"], check=True,
                           cwd=objects)
            if words is not None:
                subprocess.run([objects / "sign", *words], check=True)
            result = subprocess.run(
                [SCRIPT, "--source", tree, "--build", tree / "build", *options], check=False,
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            return result.returncode, result.stdout

    def test_counts_the_lines_and_branches_that_were_reached(self):
        status, output = self.measure(["1", "-1"])
        self.assertIn("8/9   88.9 %", output)
        self.assertIn("5/6", output)
        self.assertEqual(1, status)

    def test_finds_sources_whose_names_are_relative_to_the_tree(self):
        self.assertIn("8/9   88.9 %", self.measure(["1", "-1"], mapped=True)[1])

    def joined(self, branches, line, in_header):
        source = coverage.Source()
        source.branches = branches
        source.join_copies([line], in_header)
        return source.branches

    def test_counts_a_condition_once_however_often_it_is_inlined(self):
        copies = {(1, 8): [3, 0, 0, 1, 0, 2, 1, 0]}
        line = "    return a > 5 && b > 5;"
        self.assertEqual({(1, 4): [3, 2, 1, 1]}, self.joined(dict(copies), line, True))
        self.assertEqual(copies, self.joined(dict(copies), line, False))

    def test_counts_a_condition_once_in_all_instances_of_a_template(self):
        self.assertEqual({(1, 2): [1, 1]},
                         self.joined({(1, 2): [0, 1], (1, 4): [1, 0, 0, 0]}, "    if (a) {", False))

    def test_leaves_out_the_conditions_of_what_is_defaulted(self):
        source = "struct A { int a, b; bool operator==(const A&) const = default; };\n"
        self.assertIsNotNone(coverage.NO_CONDITION.search(source.rstrip()))
        self.assertIsNotNone(coverage.NO_CONDITION.search("    });"))
        self.assertIsNone(coverage.NO_CONDITION.search("    } while (number > 0);"))

    def test_passes_a_gate_that_is_reached(self):
        self.assertEqual(0, self.measure(["1", "-1"], "", "--lines", "88", "--branches", "80")[0])

    def test_fails_a_gate_for_lines_or_for_branches(self):
        for gate in (("89", "80"), ("88", "84")):
            status, output = self.measure(["1", "-1"], "", "--lines", gate[0], "--branches", gate[1])
            self.assertEqual(1, status)
            self.assertIn("below the gate", output)

    def test_leaves_out_what_is_tagged_with_a_reason(self):
        _, output = self.measure(["1", "-1"], "  // unreachable: nobody gives so many")
        self.assertIn("8/8  100.0 %", output)

    def test_refuses_a_tag_without_a_reason(self):
        self.assertIn("gives no reason", self.measure(["1", "-1"], "  // unreachable")[1])

    def test_refuses_a_tag_where_everything_was_reached(self):
        status, output = self.measure(["1"], "\n    // unreachable: it is the end")
        self.assertIn("the line was reached", output)
        self.assertEqual(1, status)

    def test_shows_what_was_not_reached(self):
        _, output = self.measure(["1"], "", "--holes", "backend/sign.c")
        self.assertRegex(output, r"\b3 .* of  ?\d  .*number < 0")
        self.assertRegex(output, r"10 never .*abort")

    def test_says_when_no_test_has_run(self):
        status, output = self.measure(None)
        self.assertIn("no test has run", output)
        self.assertEqual(1, status)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

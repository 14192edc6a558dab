#!/usr/bin/env python3
"""Every example of docs/xml-api.md, sent as the page says, gives the result that stands there.

usage: xml_api_examples_test.py TREE FOLDER_OF_PROGRAMS

The page's own words are the preconditions: a new machine of the default topology for each example, a copy
of examples/root as the root, the event store that docs/event-store.md shows byte by byte, the top of the
tree as the current folder, and the commands under "Before it".
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

TREE, PROGRAMS = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
PAGE = (TREE / "docs/xml-api.md").read_text()
FUNCTIONS = PAGE[PAGE.index("## The controller's functions"):PAGE.index("## The records")]


def event_store():
    """The bytes of the dump in docs/event-store.md, in which "*" stands for lines like the one before."""
    page = (TREE / "docs/event-store.md").read_text()
    dump = next(block for block in re.findall(r"^```\n(.*?)^```$", page, re.DOTALL | re.MULTILINE)
                if block.startswith("00000000"))
    content, line, repeats = b"", b"", False
    for row in dump.splitlines():
        if row == "*":
            repeats = True
            continue
        offset = int(row[:8], 16)
        while repeats and len(content) < offset:
            content += line
        assert len(content) == offset, row
        repeats = False
        line = bytes.fromhex(row[8:].split("|")[0])
        content += line
    return content


def examples():
    """(function, how its machine is made, its commands in order, the last one's result)."""
    for title, text in re.findall(r"^### (\w+)\n(.*?)(?=^### |^## |\Z)", FUNCTIONS,
                                  re.DOTALL | re.MULTILINE):
        *commands, result = re.findall(r"^```xml\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)
        machine = re.findall(r"^```sh\n(.*)\n```$", text, re.MULTILINE)
        before = len(commands) > 1 or bool(machine)
        assert commands and before == ("\nBefore it:\n" in text and "\nThen:\n" in text), title
        yield title, machine, commands, result


class XmlApiExamples(unittest.TestCase):
    def replay(self, machine, commands):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder) / "root"
            shutil.copytree(TREE / "examples/root", root)
            database = root / "opt/kestrel/raid/db"
            database.mkdir(parents=True)
            (database / "vx_hx_raid.ev").write_bytes(event_store())
            names = []
            for number, command in enumerate(commands):
                names.append(f"{folder}/{number}.xml")
                pathlib.Path(names[-1]).write_text(command)
            environment = {**os.environ, "VEXORAPI_ROOT": str(root),
                           "PATH": f"{PROGRAMS}:{os.environ['PATH']}",
                           "HXSIM_STATE": f"{folder}/machine.db" if machine else ":memory:"}
            for line in machine:
                subprocess.run(line.split(), cwd=TREE, env=environment, timeout=60, check=True)
            return subprocess.run([PROGRAMS / "vexorctl", "xml", *names], cwd=TREE,
                                  env=environment, text=True, capture_output=True, timeout=120,
                                  check=False)

    def test_each_gives_the_result_that_stands_below_it(self):
        count = 0
        for function, machine, commands, result in examples():
            with self.subTest(function=function):
                done = self.replay(machine, commands)
                results = [match[0] for match in
                           re.finditer(r"^<(\w+) type=\"function\">\n.*?^</\1>\n", done.stdout,
                                       re.DOTALL | re.MULTILINE)]
                self.assertEqual("".join(results), done.stdout, done.stderr)
                self.assertEqual(len(results), len(commands), done.stderr)
                self.assertEqual(results[-1], result)
            count += 1
        self.assertEqual(count, 79)

    def test_each_succeeds(self):
        others = [function for function, _, _, result in examples()
                  if not re.search(r'<RetVal type="U8">0<', result)]
        # Their results have no code.
        self.assertEqual(others, ["HX_API_Version", "HX_Adapter_GetCount",
                                  "VX_HX_EVT_GetChangeCounters", "VX_HX_EVT_Reset"])

    def test_what_must_be_sent_before_is_needed(self):
        needed = 0
        for function, machine, commands, result in examples():
            if len(commands) == 1 and not machine or function == "HX_LD_PauseAll":  # never refused
                continue
            with self.subTest(function=function):
                self.assertNotIn(result.strip(), self.replay([], commands[-1:]).stdout)
            needed += 1
        self.assertGreater(needed, 5)


class XmlApiMeanings(unittest.TestCase):
    def test_every_field_has_its_meaning_and_its_values(self):
        rows = re.findall(r"^\| `.*$", PAGE, re.MULTILINE)
        self.assertGreater(len(rows), 500)
        for row in rows:
            _, name, kind, meaning, values, _ = row.split("|")
            self.assertTrue(meaning.strip(), row)
            self.assertTrue(values.strip() or "struct [" in kind, row)

    def test_every_link_leads_to_a_heading_of_the_page(self):
        headings = {title.lower().replace(" ", "-")
                    for title in re.findall(r"^#+ (.*)$", PAGE, re.MULTILINE)}
        for link in set(re.findall(r"\]\(#([^)]*)\)", PAGE)):
            self.assertIn(link, headings)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

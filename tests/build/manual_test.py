#!/usr/bin/env python3
"""The manual pages: mandoc finds nothing in them, and they tell all that the sources know.

usage: manual_test.py TREE FOLDER_OF_PROGRAMS FOLDER_OF_VEXORCTL_PAGES

Without mandoc its part is skipped, and fails where the variable CI is set; scripts/bootstrap installs it.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

TREE, PROGRAMS = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
WRITTEN = sorted(pathlib.Path(sys.argv[3]).glob("*.[1-9]"))  # by a program, while building
PAGES = sorted((TREE / "docs/man").glob("*.[1-9]")) + WRITTEN

SECTIONS = {
    "1": ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "ENVIRONMENT", "FILES", "EXIT STATUS",
          "EXAMPLES", "SEE ALSO"],
    "3": ["NAME", "SYNOPSIS", "DESCRIPTION", "RETURN VALUES", "ENVIRONMENT", "FILES", "EXAMPLES",
          "SEE ALSO"],
    "5": ["NAME", "SYNOPSIS", "DESCRIPTION", "EXAMPLES", "SEE ALSO"],
    "7": ["NAME", "DESCRIPTION", "ENVIRONMENT", "FILES", "SEE ALSO"],
    "8": ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "ENVIRONMENT", "FILES", "EXIT STATUS",
          "EXAMPLES", "SEE ALSO"],
}
# It describes states and no program.
SECTIONS_OF_PAGES = {"hxraid-conditions.7": ["NAME", "DESCRIPTION", "CONDITIONS", "SEE ALSO"]}


def text_of(name):
    return (TREE / "docs/man" / name).read_text()


def words_of(name):
    """What of the page is no macro's name."""
    return set(re.findall(r"[\w.-]+", text_of(name).replace("\\&", "")))


def run(*command, **options):
    return subprocess.run(list(map(str, command)), text=True, capture_output=True, timeout=60,
                          check=False, **options)


def lint(page):
    """What mandoc says of a page, but for manuals that are not installed on this machine."""
    done = run("mandoc", "-T", "lint", "-W", "style", page)
    return [line for line in (done.stdout + done.stderr).splitlines()
            if "referenced manual not found" not in line]


@unittest.skipUnless(shutil.which("mandoc") or os.environ.get("CI"),
                     "mandoc is not installed; scripts/bootstrap installs it")
class Lint(unittest.TestCase):
    def test_finds_nothing_in_any_page(self):
        self.assertGreater(len(PAGES) - len(WRITTEN), 6)
        self.assertGreater(len(WRITTEN), 16)
        for page in PAGES:
            with self.subTest(page=page.name):
                self.assertEqual(lint(page), [])

    def test_finds_what_is_wrong(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder) / "wrong.1"
            page.write_text(text_of("hxsimctl.1").replace(".Sh FILES", ".Sh FILES\n.Xy z"))
            self.assertTrue(lint(page))


class Pages(unittest.TestCase):
    def test_have_their_sections_once(self):
        for page in PAGES:
            with self.subTest(page=page.name):
                found = re.findall(r"^\.Sh (.*)$", page.read_text(), re.MULTILINE)
                self.assertEqual(len(found), len(set(found)))
                needed = SECTIONS_OF_PAGES.get(page.name, SECTIONS[page.suffix[1:]])
                self.assertEqual([name for name in found if name in needed], needed)

    def test_refer_to_pages_that_there_are(self):
        own = {page.name for page in PAGES}
        for page in PAGES:
            for name, section in re.findall(r"\bXr (\S+) (\d)", page.read_text()):
                with self.subTest(page=page.name, other=name):
                    self.assertIn(f"{name}.{section}", own)

    def test_are_all_installed_in_the_folder_of_their_section(self):
        # The folder follows from the page's name there.
        listed = (TREE / "cmake/Install.cmake").read_text()
        for page in set(PAGES) - set(WRITTEN):
            self.assertRegex(listed, rf"vexor_install_manual\([^)]* {re.escape(page.name)}[ )]")


class Vexorctl(unittest.TestCase):
    def test_has_every_verb_and_every_option_of_the_help(self):
        for page in WRITTEN:
            noun = page.stem.partition("-")[2]
            text = page.read_text()
            help_text = run(PROGRAMS / "vexorctl", *noun.split(), "--help").stdout
            verbs = re.findall(r"^  ([\w-]+) ", (help_text + "\n\n").split("\nVerbs:\n")[-1]
                               .split("\n\n")[0], re.MULTILINE) if "\nVerbs:\n" in help_text else []
            for words in [[noun, verb] for verb in verbs] or [[noun]] if noun else []:
                with self.subTest(page=page.name, words=words):
                    self.assertIn(f"\n.Ss {' '.join(words)}\n", text)
                    options = run(PROGRAMS / "vexorctl", *words, "--help").stdout
                    for option in re.findall(r"^  (?:-\w, )?-(-[\w-]+)", options, re.MULTILINE):
                        self.assertRegex(text, rf"(?m)^\.It Fl (?:\w , )?{option}( |$)")

    def test_has_the_exit_codes_of_each_noun(self):
        pages = {page.stem: page.read_text() for page in WRITTEN}

        def codes(name):
            part = pages[name].split(".Sh EXIT STATUS\n")[1].split(".Sh ")[0]
            return re.findall(r"^\.It (\d+)$", part, re.MULTILINE)

        text = run(PROGRAMS / "vexorctl", "--help").stdout.split("Exit codes:\n")[1]
        usual = re.findall(r"^ +(\d+) ", text, re.MULTILINE)
        self.assertEqual(codes("vexorctl"), usual)
        self.assertEqual(codes("vexorctl-disk"), usual)
        self.assertEqual(codes("vexorctl-check"), ["0", "1", "2", "3"])
        self.assertEqual(codes("vexorctl-risk"), [*usual, "9"])
        self.assertEqual(codes("vexorctl-tape"), [*usual, "11"])


class Hxsimctl(unittest.TestCase):
    def commands(self, *words):
        """Every command of the tree with its help."""
        text = run(PROGRAMS / "hxsimctl", *words, "--help").stdout
        yield words, text
        if "\nSubcommands:\n" in text:
            part = text.split("\nSubcommands:\n")[1].split("\n\n")[0]
            for name in re.findall(r"^  ([\w-]+)", part, re.MULTILINE):
                yield from self.commands(*words, name)

    def test_has_every_command_and_every_option_of_the_help(self):
        page = text_of("hxsimctl.1")
        known = set()
        for words, text in self.commands():
            if words and "\nSubcommands:\n" not in text:
                self.assertRegex(page, rf"(?m)^\.It Nm Cm {' '.join(words)}(?: |$)")
            for names in re.findall(r"^  ((?:-\w,)?--[\w-]+)", text, re.MULTILINE):
                known.update(names.split(","))
        self.assertGreater(len(known), 12)
        listed = re.split(r"^\.Sh ", page, flags=re.MULTILINE)
        options = next(section for section in listed if section.startswith("OPTIONS"))
        told = set()
        for item in re.findall(r"^\.It Fl (.*?)(?: Ar .*)?$", options, re.MULTILINE):
            told.update("-" + name.strip() for name in item.split(","))
        self.assertEqual(told, known)

    def test_has_the_exit_codes_of_the_help(self):
        text = run(PROGRAMS / "hxsimctl", "--help").stdout.split("Exit codes:\n")[1]
        page = text_of("hxsimctl.1").split(".Sh EXIT STATUS\n")[1].split("\n.Sh ")[0]
        self.assertEqual(re.findall(r"^\.It (\d+)$", page, re.MULTILINE),
                         re.findall(r"^ +(\d+) ", text, re.MULTILINE))

    def test_shows_examples_of_files_that_are_taken(self):
        def example(name):
            block = text_of(name).split(".Sh EXAMPLES\n")[1]
            return re.search(r"^\.Bd -literal\n(.*?)^\.Ed", block, re.DOTALL | re.MULTILINE)[1]

        with tempfile.TemporaryDirectory() as folder:
            for name in ("hxsim-topology.5", "hxsim-scenario.5"):
                (pathlib.Path(folder) / name).write_text(example(name))
            environment = {**os.environ, "HXSIM_STATE": f"{folder}/machine.db"}
            for words in (("init", "--topology", f"{folder}/hxsim-topology.5"),
                          ("init", "--force", "--topology", "small"),
                          ("scenario", "run", f"{folder}/hxsim-scenario.5")):
                done = run(PROGRAMS / "hxsimctl", *words, env=environment)
                self.assertEqual((done.returncode, done.stderr), (0, ""), words)


class Library(unittest.TestCase):
    def test_has_every_function_that_is_exported_and_no_other(self):
        exported = set(re.findall(r"^\w+$", (TREE / "tests/build/exports.txt").read_text(),
                                  re.MULTILINE))
        self.assertGreater(len(exported), 10)
        page = text_of("libvexorapi.3")
        synopsis = page.split(".Sh SYNOPSIS\n")[1].split("\n.Sh ")[0]
        self.assertEqual(set(re.findall(r"^\.Fn (\w+)", synopsis, re.MULTILINE)), exported)
        names = page.split(".Sh NAME\n")[1].split("\n.Sh ")[0]
        self.assertEqual(set(re.findall(r"^\.Nm (\w+)", names, re.MULTILINE)),
                         exported | {"libvexorapi"})


class Formats(unittest.TestCase):
    def test_of_the_configuration_have_every_setting(self):
        source = (TREE / "backend/vexorapi/vx_cfg_parse.cpp").read_text()
        sections = re.findall(r"constexpr std::tuple k(\w+)\{(.*?)\};", source, re.DOTALL)
        self.assertEqual(len(sections), 3)
        page = text_of("vexorapi.ini.5")
        for section, rows in sections:
            told = page.split(f".Ss {section}\n")[1].split("\n.El\n")[0]
            self.assertEqual(re.findall(r"^\.It Ic (\w+)$", told, re.MULTILINE),
                             re.findall(r'Attribute\("(\w+)"', rows))

    def test_of_the_event_store_are_those_of_the_document(self):
        document = (TREE / "docs/event-store.md").read_text()
        rows = set(re.findall(r"^\| (\d+) \| (\d+) \| `(\w+)`", document, re.MULTILINE))
        rows.discard(("8", "64", "data"))  # which the page shows field by field
        page = text_of("vexorapi-events.5")
        self.assertEqual(set(re.findall(r"^\.It (\d+) Ta (\d+) Ta Va (\w+)", page, re.MULTILINE)), rows)
        header = (TREE / "backend/vexorapi/vxevent_file.h").read_text()
        record = header.split("struct VX_HX_ChangeCounters {")[1].split("};")[0]
        self.assertEqual(re.findall(r"\.Va (\w+_Change)", page), re.findall(r"(\w+_Change);", record))

    def test_of_codes_have_every_kind_that_the_schema_has(self):
        schema = json.loads((TREE / "docs/vexorctl-codes.schema.json").read_text())
        told = re.findall(r"^\.It Ic (\w+)", text_of("vexorctl-codes.5"), re.MULTILINE)
        self.assertEqual(told, list(schema["properties"]))

    def test_of_topologies_have_every_member(self):
        folder = TREE / "controllers/virtual/topology"
        sources = "".join(path.read_text() for path in sorted(folder.glob("hxsim_topology*.cpp")))
        columns = (folder / "hxsim_topology_columns.h").read_text()
        members = set(re.findall(r'(?:Take\w*|NeedCode|ForEach\w*|Find)(?:<\w+>)?\((?:\w+, )?"(\w+)"',
                                 re.sub(r"\n *", "", sources)))
        members |= set(re.findall(r'Col\("(\w+)"', columns))
        # Members of records of the interface, which the page names by the record.
        records = (TREE / "backend/hxraid/hxraid.h").read_text()
        for record in ("Adapter_Info", "Adapter_Config_V2"):
            text = records.split(f"typedef struct {record} {{")[1].split("}")[0]
            members -= set(re.findall(r"(\w+)(?:\[\w+\])*;", text)) - {"v_atapi_disable"}
        self.assertGreater(len(members), 60)
        self.assertEqual(members - words_of("hxsim-topology.5"), set())

    def test_of_scenarios_have_every_step(self):
        source = (TREE / "tools/hxsimctl/call_steps.cpp").read_text()
        steps = set(re.findall(r'^    \{"(\w+)", Parse', source, re.MULTILINE))
        steps |= set(re.findall(r'^    \{"(\w+)", &Adapter_Config_V2', source, re.MULTILINE))
        expected = (TREE / "tools/hxsimctl/expectation_steps.cpp").read_text()
        steps |= set(re.findall(r'\{"(\w+)", Expect', expected))
        self.assertGreater(len(steps), 30)
        self.assertEqual(steps - words_of("hxsim-scenario.5"), set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

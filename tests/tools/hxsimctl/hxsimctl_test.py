"""hxsimctl as a program: the examples of its manual, the scenarios that ship, what it refuses.

Usage: hxsimctl_test.py HXSIMCTL SOURCE_FOLDER
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

PROGRAM = ""
SOURCE = pathlib.Path()
TIME = re.compile(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d UTC")


def console_blocks(text):
    """The (command, output) pairs of a manual's console blocks."""
    examples = []
    for block in text.split("```console\n")[1:]:
        for line in block.split("```")[0].splitlines(keepends=True):
            if line.startswith("$ "):
                examples.append([line[2:], ""])
            else:
                examples[-1][1] += line
    return examples


class InFolder(unittest.TestCase):
    """Runs commands in a temporary folder with the examples and a state file of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        shutil.copytree(SOURCE / "examples", self.folder / "examples")
        self.state = "hxsim.db"  # in the folder
        self.environment = {
            **os.environ,
            "HXSIM_STATE": self.state,
            "PATH": f"{pathlib.Path(PROGRAM).parent}:{os.environ['PATH']}",
        }

    def shell(self, command):
        """What the command prints on both outputs."""
        return subprocess.run(
            command, shell=True, cwd=self.folder, env=self.environment, text=True,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60, check=False).stdout

    def run_program(self, *arguments):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, env=self.environment,
                              text=True, capture_output=True, timeout=60, check=False)

    def expect(self, code, *arguments):
        """Runs the program, which ends with that code, and returns what it says."""
        done = self.run_program(*arguments)
        self.assertEqual(done.returncode, code, done.stderr)
        return done.stdout if code == 0 else done.stderr

    def run_scenario(self, text, code):
        (self.folder / "story.txt").write_text(text, encoding="utf-8")
        return self.expect(code, "scenario", "run", "story.txt")


class Manual(InFolder):
    def test_every_example_prints_what_the_manual_says(self):
        manual = (SOURCE / "docs/virtual-controller.md").read_text(encoding="utf-8")
        examples = console_blocks(manual)
        self.assertGreater(len(examples), 20)
        for command, output in examples:
            with self.subTest(command):
                # The day is today's.
                self.assertEqual(TIME.sub("<time>", self.shell(command)),
                                 TIME.sub("<time>", output))

    def test_every_topology_in_it_can_be_made(self):
        manual = (SOURCE / "docs/virtual-controller.md").read_text(encoding="utf-8")
        blocks = [each.split("```")[0] for each in manual.split("```json\n")[1:]]
        self.assertTrue(blocks)
        for block in blocks:
            (self.folder / "topology.json").write_text(block, encoding="utf-8")
            self.expect(0, "init", "--force", "--topology", "topology.json")
            self.expect(0, "check")


class NoMachine(InFolder):
    """A state file that is named and not there, which may be a misspelt one."""

    def test_nothing_but_init_makes_it(self):
        (self.folder / "story.txt").write_text("disk fail a0/pd0\n", encoding="utf-8")
        state = self.folder / "typo" / "hxsim.db"
        for words in ("show", "check", "clock freeze", "disk fail a0/pd0", "inject list",
                      "scenario run story.txt"):
            with self.subTest(words):
                said = self.expect(5, "--state", str(state), *words.split())
                self.assertEqual(said, f"hxsimctl: {state}: there is no machine; make one with "
                                       f'"hxsimctl init --state {state}", or name another file in '
                                       "HXSIM_STATE.\n")
                self.assertFalse(state.parent.exists())
        self.expect(0, "--state", str(state), "init")
        self.expect(0, "--state", str(state), "show")

    def test_an_empty_file_is_none_either(self):
        (self.folder / self.state).write_bytes(b"")
        self.assertIn(": there is no machine; ", self.expect(5, "show"))
        self.assertEqual((self.folder / self.state).read_bytes(), b"")


    def test_force_does_not_follow_a_link(self):
        self.expect(0, "init", "--topology", "small")
        (self.folder / self.state).rename(self.folder / "theirs.db")
        (self.folder / self.state).symlink_to("theirs.db")
        self.assertIn("is a link, and a machine is made in no file behind one; ",
                      self.expect(5, "init", "--force"))
        self.assertEqual(self.run_program("show", "--state", "theirs.db").stdout.splitlines()[0],
                         self.run_program("show").stdout.splitlines()[0])


class Scenarios(InFolder):
    def test_every_scenario_that_ships_runs_and_leaves_a_sound_machine(self):
        files = sorted((SOURCE / "examples/scenarios").glob("*.txt"))
        self.assertEqual(len(files), 8)
        for file in files:
            with self.subTest(file.name):
                self.expect(0, "init", "--force", "--topology", "small")
                self.assertEqual(self.expect(0, "scenario", "run", str(file)), "")
                self.expect(0, "check")

    def test_the_first_failed_expectation_is_told_with_its_line(self):
        self.expect(0, "init", "--topology", "small")
        said = self.run_scenario("# a comment\n+1s disk fail a0/pd0\n\n"
                                 "expect disk a0/pd0 free\nexpect disk a0/pd1 failed\n", 1)
        self.assertEqual(
            said, "hxsimctl: story.txt:4: a0/pd0 is failed; free was expected\n")

    def test_what_is_misspelt_is_told_before_anything_happens(self):
        self.expect(0, "init", "--topology", "small")
        for line, complaint in [
            ("disk brake a0/pd0", "story.txt:2: "),
            ("frobnicate", 'story.txt:2: "frobnicate" is no step; '),
            ("expect disk a0/pd0 fine", 'story.txt:2: "fine" is no state of a disk; take one of '),
            ("expect event a0 LD_EXPLODED", 'story.txt:2: "LD_EXPLODED" is the key of no event; '),
            ("+3x disk fail a0/pd0", 'story.txt:2: "3x" is no duration; '),
            ("create vd a0 raid=7 disks=0,1", 'story.txt:2: "raid7" is no RAID level; '),
            ("create vd a0 raid=5 disk=0", 'story.txt:2: "disk=0" is nothing that can be set; '),
            ("refused so create vd a0 raid=0 disks=0", 'story.txt:2: "so" is no name of '),
            ('create vd a0 raid=0 disks=0 name="A', "story.txt:2: a quote has no end; "),
            ("repeat 3", "story.txt:2: repeat has no end; "),
            ("end", "story.txt:2: end without repeat; "),
            ("clock freeze", 'story.txt:2: "clock" is no step; '),
            ("disk replace a0/pd0 --size much", 'story.txt:2: "much" is no size; '),
            ("delete disk a0/dg0", 'story.txt:2: "disk" cannot be deleted; '),
            ("migrate group a0/dg0 raid=5", 'story.txt:2: "group" cannot be migrated; '),
            ("start check a0/vd0 a0/pd5", 'story.txt:2: "a0/pd5" is one word too many; '),
        ]:
            with self.subTest(line):
                said = self.run_scenario(f"disk fail a0/pd0\n{line}\n", 2)
                self.assertTrue(said.startswith("hxsimctl: " + complaint), said)
        self.assertIn("a0/pd0: free", self.expect(0, "show"))

    def test_objects_are_found_by_name_and_serial_number_when_a_step_is_done(self):
        self.expect(0, "init", "--topology", "small")
        serial = re.search("a0/pd5: .* serial (\\S+)", self.expect(0, "show")).group(1)
        self.run_scenario(
            "create vd a0 name=DATA raid=5 disks=0,1,2 size=1GiB init=none\n"
            "create dg a0 name=GROUP raid=0 disks=4,6\n"
            "create vd name:GROUP name=INSIDE size=1GiB init=none\n"
            "expect vd name:DATA optimal\n"
            "disk fail a0/pd0\n"
            "expect vd name:DATA degraded\n"
            "expect level name:DATA raid5\n"
            f"start rebuild name:DATA serial:{serial}\n"
            "+1ms expect activity name:DATA rebuild running\n"
            "pause name:DATA\n"
            "expect activity a0/vd0 rebuild paused\n"
            f"expect disk serial:{serial} rebuilding\n"
            "delete vd name:INSIDE\n"
            "expect vd name:INSIDE gone\n"
            "expect vd a0/vd9 gone\n", 0)
        self.expect(0, "smart", "trip", f"serial:{serial}")
        self.assertIn(f"{serial}, SMART threshold exceeded", self.expect(0, "show"))

    def test_a_name_that_none_or_several_have_is_told(self):
        self.expect(0, "init", "--topology", "small")
        self.run_scenario("create vd a0 name=TWIN raid=0 disks=0 size=1GiB init=none\n"
                          "create vd a0 name=TWIN raid=0 disks=1 size=1GiB init=none\n", 0)
        self.assertEqual(self.run_scenario("delete vd name:NOBODY\n", 3),
                         "hxsimctl: story.txt:1: name:NOBODY: the machine has no such virtual disk; "
                         "hxsimctl show lists what there is\n")
        self.assertEqual(self.run_scenario("delete vd name:TWIN\n", 2),
                         "hxsimctl: story.txt:1: name:TWIN means several: a0/vd0, a0/vd1; give an "
                         "address\n")
        self.assertEqual(self.expect(3, "disk", "fail", "serial:NOBODY"),
                         "hxsimctl: serial:NOBODY: the machine has no such disk; hxsimctl show "
                         "lists what there is\n")
        self.assertEqual(self.expect(2, "disk", "fail", "a0/vd0"),
                         "hxsimctl: a0/vd0 is the address of a virtual disk; a disk is needed "
                         "(see hxsimctl --help)\n")

    def test_sizes_are_written_as_in_vexorctl(self):
        for size, sectors in [("1GiB", 2097152), ("2097152s", 2097152), ("1073741824", 2097152),
                              ("0.5GiB", 1048576), ("2GB", 3906304)]:
            with self.subTest(size):
                self.expect(0, "init", "--force", "--topology", "small")
                self.run_scenario(
                    f"create vd a0 raid=0 disks=0 stripe=64 size={size} init=none\n"
                    f"expect size a0/vd0 {sectors}s\n", 0)

    def test_a_share_is_of_the_largest_size(self):
        self.expect(0, "init", "--topology", "small")
        self.run_scenario("create vd a0 raid=0 disks=0 size=max init=none\n"
                          "create vd a0 raid=0 disks=1 init=none\n"
                          "create vd a0 raid=0 disks=2 size=50% init=none\n"
                          "create dg a0 raid=0 disks=4,5\n"
                          "create vd a0/dg0 size=25% init=none\n"
                          "create vd a0/dg0 size=max slot=1 init=none\n", 0)
        sizes = re.findall(r"a0/vd\d: .* (\d+\.\d) [GT]iB", self.expect(0, "show"))
        self.assertEqual(sizes, ["931.5", "2.7", "558.9", "558.9", "279.4"])

    def test_a_scenario_is_read_from_standard_input(self):
        self.expect(0, "init", "--topology", "small")
        done = subprocess.run([PROGRAM, "scenario", "run", "-"], cwd=self.folder,
                              env=self.environment, text=True, capture_output=True, timeout=60,
                              check=False, input="expect disk a0/pd0 free\n\nexpect disk a0/pd0 failed\n")
        self.assertEqual((done.returncode, done.stderr),
                         (1, "hxsimctl: -:3: a0/pd0 is free; failed was expected\n"))

    def test_a_refusal_other_than_the_expected_one_ends_it(self):
        self.expect(0, "init", "--topology", "small")
        said = self.run_scenario("refused no_space create vd a0 raid=5 disks=0,0,1\n", 1)
        self.assertEqual(
            said, "hxsimctl: story.txt:1: HX_LD_Create was refused with 224 (disk_repeated): A disk "
            "is named twice. It was to be refused with no_space.\n")
        said = self.run_scenario("refused no_space create vd a0 raid=5 disks=0,1,2\n", 1)
        self.assertEqual(
            said, "hxsimctl: story.txt:1: it was carried out; it was to be refused with "
            "no_space.\n")

    def test_the_clock_goes_on_afterwards_as_it_did(self):
        self.expect(0, "init", "--topology", "small")
        self.expect(0, "clock", "speed", "600")
        self.run_scenario("+1h\nexpect disk a0/pd0 free\n", 0)
        self.assertIn(", 600 times as fast", self.expect(0, "clock", "show"))
        self.run_scenario("expect disk a0/pd0 failed\n", 1)
        self.assertIn(", 600 times as fast", self.expect(0, "clock", "show"))

    def test_an_injected_fault_hits_the_calls_that_it_is_meant_for(self):
        self.expect(0, "init", "--topology", "small")
        self.run_scenario(
            "inject --call HX_LD_Create --code 226 --times 2 --after 1\n"
            "create vd a0 raid=0 disks=0 size=1GiB init=none\n"
            "refused no_space create vd a0 raid=0 disks=0 size=1GiB init=none\n"
            "spare a0/pd7\n"
            "refused no_space create vd a0 raid=0 disks=0 size=1GiB init=none\n"
            "create vd a0 raid=0 disks=0 size=1GiB init=none\n"
            "expect vd a0/vd1 optimal\n"
            "expect vd a0/vd2 gone\n", 0)

    def test_verbose_prints_each_step_with_its_time(self):
        self.expect(0, "init", "--topology", "small")
        (self.folder / "story.txt").write_text(
            "+90s disk fail a0/pd0\n# nothing\nexpect disk a0/pd0 failed\n", encoding="utf-8")
        self.assertEqual(
            self.expect(0, "scenario", "run", "story.txt", "--verbose"),
            "1m30s disk fail a0/pd0\n1m30s expect disk a0/pd0 failed\n")

    def test_time_does_not_go_back(self):
        self.expect(0, "init", "--topology", "small")
        said = self.run_scenario("+2h\nat 1h disk fail a0/pd0\n", 1)
        self.assertEqual(said, "hxsimctl: story.txt:2: at 1h is over; 2h have passed. Put the step "
                         "further up\n")


class Commands(InFolder):
    def test_a_machine_is_not_made_over_another(self):
        self.expect(0, "init", "--topology", "small", "--seed", "7")
        before = self.expect(0, "show").splitlines()[2:]
        said = self.expect(1, "init")
        self.assertEqual(said, f"hxsimctl: {self.state}: there is a machine already; --force "
                         "replaces it, --state names another file\n")
        self.assertEqual(self.expect(0, "show").splitlines()[2:], before)

    def test_the_same_seed_makes_the_same_machine(self):
        trees = []
        for file, seed in [("one.db", "7"), ("two.db", "7"), ("three.db", "8")]:
            self.expect(0, "init", "--topology", "small", "--seed", seed, "--state", file)
            trees.append(self.expect(0, "show", "--state", file).splitlines()[2:])
        self.assertEqual(trees[0], trees[1])
        self.assertNotEqual(trees[0], trees[2])

    def test_the_tree_has_every_disk_of_every_adapter(self):
        self.expect(0, "init")
        tree = self.expect(0, "show")
        self.assertEqual(len(re.findall(r"^ +a0/pd\d+: ", tree, re.MULTILINE)), 16)
        self.assertEqual(len(re.findall(r"^ +a1/pd\d+: ", tree, re.MULTILINE)), 8)
        self.assertIn('\n  a0/dg0: optimal, raid5 "GROUP_A" on pd0 pd1 pd2 pd3\n'
                      '    a0/vd0: optimal, raid5 "DATABASE", 768.0 GiB\n', tree)

    def test_exit_codes_tell_what_went_wrong(self):
        self.expect(0, "init", "--topology", "small")
        self.expect(1, "disk", "insert", "a0/pd0")
        self.expect(2, "disk", "explode", "a0/pd0")
        self.expect(2, "disk", "fail", "pd0")
        self.expect(2, "battery", "charge", "a0", "101")
        self.expect(2, "init", "--topology", "no such file", "--force")
        self.expect(2, "inject", "--call", "HX_LD_GetNothing", "--code", "7")
        self.expect(2, "inject", "--call", "HX_LD_GetInfo")
        self.expect(2, "inject", "--code", "0")
        self.expect(3, "disk", "fail", "a0/pd99")
        self.expect(3, "disk", "fail", "a7/pd0")
        self.expect(3, "fan", "a0/enc0/el3", "0")
        self.expect(3, "inject", "clear", "5")
        (self.folder / "text.db").write_text("no database", encoding="utf-8")
        self.expect(5, "show", "--state", "text.db")

    def test_an_enclosure_goes_and_comes_back_with_its_disks(self):
        self.expect(0, "init", "--topology", "default")
        self.expect(0, "clock", "freeze")
        self.run_scenario("enclosure unplug a0/enc0\nexpect event a0 EXPANDER_PLUG_OUT\n"
                          "expect event a0 HD_OFFLINE 0\nexpect vd a0/vd0 offline\n", 0)
        self.expect(1, "enclosure", "unplug", "a0/enc0")
        self.run_scenario("enclosure plug a0/enc0\nexpect event a0 EXPANDER_PLUG_IN\n"
                          "expect event a0 HD_ONLINE 0\n", 0)
        self.expect(1, "enclosure", "plug", "a0/enc0")
        self.expect(3, "enclosure", "plug", "a0/enc7")
        self.expect(0, "check")

    def test_an_element_has_the_state_that_it_is_given(self):
        self.expect(0, "init", "--topology", "default")
        for state in ("unknown", "not_installed", "unrecoverable", "ok"):
            self.run_scenario(f"element a0/enc0/el5 {state}\n"
                              f"expect element a0/enc0/el5 {state}\n", 0)
        self.expect(0, "temp", "a0/enc0/el5", "60")
        self.run_scenario("element a0/enc0/el5 ok\nexpect element a0/enc0/el5 noncritical\n", 0)
        self.expect(2, "element", "a0/enc0/el5", "tired")

    def test_a_rebuild_stands_still_while_the_clock_runs_on(self):
        self.expect(0, "init", "--topology", "small")
        self.expect(0, "clock", "freeze")
        self.run_scenario("create vd a0 raid=5 disks=4,5,6 size=200GiB init=none\n"
                          "disk fail a0/pd5\ndisk replace a0/pd5\nset a0 rebuild_rate=100\n"
                          "+500s stall a0/vd0\nexpect activity a0/vd0 rebuild running 48%\n"
                          "+10h expect activity a0/vd0 rebuild running 48%\n"
                          "set a0 rebuild_rate=99\n+2h expect vd a0/vd0 optimal\n", 0)
        self.expect(1, "stall", "a0/vd0")

    def test_an_event_is_told_and_nothing_else_happens(self):
        self.expect(0, "init", "--topology", "small")
        self.run_scenario("event a0/pd3 HD_TIMEOUT\nexpect event a0 HD_TIMEOUT 3\n"
                          "event a0 BAT_CHARGER_PROBLEM_DETECTED 1,2\n"
                          "expect event a0 BAT_CHARGER_PROBLEM_DETECTED\n", 0)
        self.expect(2, "event", "a0/pd3", "HD_NONE")
        self.expect(2, "event", "a0", "HD_TIMEOUT")
        self.expect(2, "event", "a0/pd3", "HD_TIMEOUT", "1,2,3,4,5")
        self.expect(3, "event", "a0/pd99", "HD_TIMEOUT")

    def test_time_ends_with_the_year_9999(self):
        self.expect(0, "init", "--topology", "small")
        said = self.run_scenario("repeat 100\n+36500d\nend\n", 1)
        self.assertEqual(said, "hxsimctl: story.txt:2: no clock goes beyond the year 9999; let less "
                         "time pass\n")
        self.expect(1, "clock", "advance", "36500d")
        self.expect(0, "clock", "show")

    def test_the_clock_advances_by_a_duration_or_until_a_time(self):
        self.environment["TZ"] = "CET-1CEST,M3.5.0,M10.5.0/3"
        self.expect(0, "init", "--topology", "small")
        self.expect(0, "clock", "freeze")
        for word, shown in [("2031-01-31", "2031-01-30 23:00:00 UTC"),
                            ("2h30m", "2031-01-31 01:30:00 UTC"),
                            ("90", "2031-01-31 01:31:30 UTC"),
                            ("2031-01-31 01:31:30 UTC", "2031-01-31 01:31:30 UTC"),
                            ("2031-01-31T12:00:00+0100", "2031-01-31 11:00:00 UTC"),
                            ("1w1ms", "2031-02-07 11:00:00 UTC")]:
            with self.subTest(word):
                self.expect(0, "clock", "advance", word)
                self.assertEqual(self.expect(0, "clock", "show"), shown + ", frozen\n")
        self.assertEqual(self.expect(1, "clock", "advance", "2031-02-07T11:00:00Z"),
                         "hxsimctl: it is 2031-02-07 11:00:00 UTC already, and time does not go "
                         "back; write a later time\n")

    def test_times_that_do_not_exist_and_long_ones_are_refused(self):
        self.expect(0, "init", "--topology", "small")
        for word, complaint in [
                ("2031-13-45", '"2031-13-45" is no time: there is no month 13'),
                ("2031-02-30", '"2031-02-30" is no time: there is no day 30 in month 2 of 2031, '
                               "which has 28 days"),
                ("36501d", "36501d are too long; let at most 36500 days pass at once"),
                ("99999999999999999999w", '"99999999999999999999w" is too long a duration; the '
                                          "longest that can be counted is 106751991167d")]:
            self.assertEqual(self.expect(2, "clock", "advance", word),
                             f"hxsimctl: {complaint} (see hxsimctl --help)\n")

    def test_nothing_that_a_machine_is_called_reaches_the_terminal_unseen(self):
        topology = json.loads((SOURCE / "controllers/virtual/topology/topologies/small.json")
                              .read_text(encoding="utf-8"))
        topology["name"] = "small\u009b"
        model = "QUORLAN\x1b[2J \u202etxt"
        topology["disk_models"][1]["name"] = model
        topology["adapters"][0]["disks"][1]["model"] = model
        (self.folder / "hostile.json").write_text(json.dumps(topology), encoding="utf-8")
        self.expect(0, "init", "--topology", "hostile.json")
        (self.folder / "story.txt").write_bytes(
            b'create vd a0 raid=0 disks=0 size=1GiB init=none name="A\xc2\x9b31m"\n'
            b'create vd a0 raid=0 disks=1 size=1GiB init=none name="B\xff\xe2\x80\xae\xe6\x97"\n'
            b'create vd a0 raid=0 disks=2 size=1GiB init=none name="\xe6\x97\xa5\xe6\x9c\xac"\n')
        said = self.expect(0, "scenario", "run", "--verbose", "story.txt")
        self.assertIn('name=B???\n', said)
        tree = self.expect(0, "show")
        self.assertIn("topology small?, seed 1\n", tree)
        self.assertIn("a0/pd4: free, QUORLAN?[2J ?txt, 1.8 TiB", tree)
        self.assertIn('raid0 "A?31m"', tree)
        self.assertIn('raid0 "B???"', tree)
        self.assertIn('raid0 "\u65e5\u672c"', tree)
        complaint = self.expect(3, "disk", "fail", "serial:\u009b2J")
        self.assertTrue(complaint.startswith("hxsimctl: serial:?2J: the machine has no such disk"))

    def test_an_output_that_cannot_be_written_is_told(self):
        self.expect(0, "init", "--topology", "small")
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = subprocess.run([PROGRAM, "show"], cwd=self.folder, env=self.environment,
                                  stdout=full, stderr=subprocess.PIPE, text=True, timeout=60,
                                  check=False)
        self.assertEqual(done.returncode, 5)
        self.assertIn("standard output cannot be written", done.stderr)


if __name__ == "__main__":
    PROGRAM = str(pathlib.Path(sys.argv[1]).resolve())
    SOURCE = pathlib.Path(sys.argv[2]).resolve()
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])

"""vexorctl xml lint: what it says of a command is what the library does with it.

A list of disks echoes how many were asked for, so that each claim about a number can be held against
the library's own answer.

Usage: vexorctl_lint_test.py VEXORCTL
"""

import json
import re
import xml.etree.ElementTree

import vexorctl_machine

VEXORCTL = ""

# The children of a list of disks, what lint says of them (line 1 is the root's), and how many disks the
# library then asks for; None where the sentence is not about that number.
CASES = [
    ("<numRequested>3</numRequested>", [], 3),
    ("<numRequested>65538</numRequested>",
     ['numRequested: "65538" does not fit 16 bits; it is cut to 2'], 2),
    ("<numRequested>99999999999999999999</numRequested>",
     ['numRequested: "99999999999999999999" does not fit 16 bits; it is cut to 65535',
      "numRequested: 65535 records or more than 32767 list nothing"], 65535),
    ("<numRequested>4294967299</numRequested>",  # 32 bits and 3: saturates, and is no 3
     ['numRequested: "4294967299" does not fit 16 bits; it is cut to 65535',
      "numRequested: 65535 records or more than 32767 list nothing"], 65535),
    ("<numRequested>-2</numRequested>", ['numRequested: "-2" is read as 2'], 2),
    ("<numRequested>0x5</numRequested>",
     ['numRequested: "0x5" is read as 0',
      "numRequested: holds 2 numbers; the first one counts"], 0),
    ("<numRequested>2.5</numRequested>",
     ['numRequested: "2.5" is read as 2',
      "numRequested: holds 2 numbers; the first one counts"], 2),
    ("<numRequested>4 7 9</numRequested>",
     ["numRequested: holds 3 numbers; the first one counts"], 4),
    ("<numRequested>two</numRequested>",
     ['numRequested: "two" holds no digit; the field stays as it was'], 0),
    ("<numRequested>3</numRequested><numRequested>two</numRequested>",
     ["numRequested: comes again; what came before is overwritten",
      'numRequested: "two" holds no digit; the field stays as it was'], 3),
    ("<numRequested/>",
     ["numRequested: is empty; the field stays as if it were not there"], 0),
    ("<numRequested>3</numRequested><numRequested/>",
     ["numRequested: is empty; what came before stays"], 3),
    ("<numRequested>3</numRequested><numRequested>4</numRequested>",
     ["numRequested: comes again; what came before is overwritten"], 4),
    ("<numrequested>3</numrequested>",
     ["numrequested: is no parameter of HX_PD_GetHDInfo and is ignored; did you mean numRequested?"],
     0),
    ("<Colour>3</Colour>", ["Colour: is no parameter of HX_PD_GetHDInfo and is ignored"], 0),
    ("<a><numRequested>3</numRequested></a>",
     ["numRequested: stands within a; it counts all the same",
      "a: is no parameter of HX_PD_GetHDInfo and is ignored"], 3),
    ("<a><b><numRequested>3</numRequested></b></a>",
     ["numRequested: stands within b; it counts all the same",
      "b: is no parameter of HX_PD_GetHDInfo and is ignored",
      "a: is no parameter of HX_PD_GetHDInfo and is ignored"], 3),
    ("<a><b><c><numRequested>3</numRequested></c></b></a>",
     ["numRequested: stands 4 levels below the root and is ignored",
      "c: is no parameter of HX_PD_GetHDInfo and is ignored",
      "b: is no parameter of HX_PD_GetHDInfo and is ignored",
      "a: is no parameter of HX_PD_GetHDInfo and is ignored"], 0),
    ("<numRequested>8<a>3</a></numRequested>",
     ['numRequested: the text "8" stands in no parameter and is ignored',
      "a: is no parameter of HX_PD_GetHDInfo and is ignored",
      "numRequested: holds other elements; what follows the last one's start tag counts"], 3),
    ("<numRequested><a>3</a>4</numRequested>",
     ["a: is no parameter of HX_PD_GetHDInfo and is ignored",
      "numRequested: holds other elements; what follows the last one's start tag counts"], 34),
    ("7<numRequested>3</numRequested>5",
     ['HX_PD_GetHDInfo: the text "7" stands in no parameter and is ignored',
      'HX_PD_GetHDInfo: the text "5" stands in no parameter and is ignored'], 3),
    ("<numRequested>" + 2046 * " " + "35</numRequested>",
     ["numRequested: has 2048 characters; the first 2047 are looked at"], 3),
    ("<numRequested>32767</numRequested>", None, 32767),
    ("<numRequested>32768</numRequested>",
     ["numRequested: 32768 records or more than 32767 list nothing"], 32768),
]


class Lint(vexorctl_machine.VexorctlCase):
    def lint(self, text, *words):
        path = self.root / "command.xml"
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return self.run_words("xml", "lint", str(path), *words)

    def findings(self, text):
        run = self.lint(text)
        self.assertEqual(run.stderr, "")
        prefix = str(self.root / "command.xml") + ":"
        lines = run.stdout.splitlines()
        self.assertTrue(all(line.startswith(prefix) for line in lines), run.stdout)
        return [line.removeprefix(prefix) for line in lines], run.returncode

    def answer(self, command):
        path = self.root / "sent.xml"
        path.write_text(command)
        return xml.etree.ElementTree.fromstring(self.run_words("xml", str(path)).stdout)

    def test_it_says_what_the_library_does(self):
        for children, sentences, asked in CASES:
            with self.subTest(children[:80]):
                command = ('<HX_PD_GetHDInfo type="function"><requestType>1</requestType>'
                           f"{children}</HX_PD_GetHDInfo>")
                found, code = self.findings(command)
                if sentences is not None:
                    self.assertEqual(found, ["1: " + each for each in sentences])
                    self.assertEqual(code, 1 if sentences else 0)
                answer = self.answer(command)
                self.assertEqual(answer.findtext("RequestHeader/numRequested"), str(asked))
                if asked > 32767:
                    self.assertEqual(answer.findtext("RequestHeader/numReturned"), "0")

    def test_no_fewer_bytes_than_it_says_hold_a_record(self):
        found, _ = self.findings('<HX_PD_GetHDInfo type="function"><numRequested>32767</numRequested>'
                                 "</HX_PD_GetHDInfo>")
        said = re.fullmatch(r"1: numRequested: at most (\d+) records fit in a result; of 32767 the rest "
                            "would be left out", found[0])
        self.assertIsNotNone(said, found)
        path = self.root / "list.xml"
        path.write_text('<HX_PD_GetHDInfo type="function"><requestType>1</requestType>'
                        "<numRequested>2</numRequested></HX_PD_GetHDInfo>")
        result = self.run_words("xml", str(path)).stdout
        records = re.findall(r"^  <HD_Info .*?^  </HD_Info>\n", result, re.M | re.S)
        self.assertEqual(len(records), 2)
        for record in records:
            self.assertLess(int(said[1]), 2 * 524287 // len(record))
            self.assertGreaterEqual(int(said[1]), 524287 // len(record))

    def test_lists_and_texts_are_held_against_their_fields(self):
        numbers = " ".join(map(str, range(9)))
        self.assertEqual(
            self.findings(f'<HX_Adapter_SetConfig type="function"><port_phy_ctrl>{numbers}'
                          "</port_phy_ctrl></HX_Adapter_SetConfig>"),
            (["1: port_phy_ctrl: holds 9 numbers; the first 8 count"], 1))
        self.assertEqual(
            self.findings('<HX_Adapter_SetConfig type="function"><port_phy_ctrl>1,2;300'
                          "</port_phy_ctrl></HX_Adapter_SetConfig>"),
            (['1: port_phy_ctrl: "1,2;300" is read as 1 2 44',
              '1: port_phy_ctrl: "300" does not fit 8 bits; it is cut to 44'], 1))
        name = "é" * 8
        self.assertEqual(
            self.findings(f'<HX_LD_SetConfig type="function"><Name>{name}</Name></HX_LD_SetConfig>'),
            (["1: Name: has 16 bytes; the field holds 15, and the rest is cut off"], 1))
        user = "u" * 128
        self.assertEqual(
            self.findings(f'<HX_GetUserGroup type="function"><lpszUsername>{user}</lpszUsername>'
                          "</HX_GetUserGroup>"),
            (["1: lpszUsername: has 128 bytes; the field holds 127, and a longer text is refused"], 1))
        for accepted in (
                '<HX_Adapter_SetConfig type="function"><port_phy_ctrl>1, 2\n3</port_phy_ctrl>'
                "</HX_Adapter_SetConfig>",
                '<HX_LD_SetConfig type="function"><Name>123456789012345</Name></HX_LD_SetConfig>',
                f'<HX_GetUserGroup type="function"><lpszUsername>{user[1:]}</lpszUsername>'
                "</HX_GetUserGroup>"):
            self.assertEqual(self.findings(accepted), ([], 0))

    def test_a_command_that_is_not_taken_ends_with_6(self):
        for text, sentence in [
                ("", "1: the command is empty"),
                ("<HX_Adapter_GetCount", "1: unclosed token"),
                ("\n<a>\n</b>", "3: mismatched tag"),
                ('<HX_Adapter_GetCount type="function"/>\n\0', "2: there is a NUL byte, where the "
                                                               "library stops reading"),
                ("<!DOCTYPE a [" + "".join(f'<!ENTITY b{i} "c">' for i in range(257)) + "]><a/>",
                 "1: the document type has more than 256 declarations"),
                ("<HX_Adapter_GetCount/>", '1: HX_Adapter_GetCount: the attribute type="function" is '
                                           "missing"),
                ('<HX_Adapter_GetCuont type="function"/>',
                 "1: HX_Adapter_GetCuont: no function is named so; did you mean HX_Adapter_GetCount?"),
                ('<Elsewhere type="function"><AdapterID/></Elsewhere>',
                 "1: Elsewhere: no function is named so"),
        ]:
            with self.subTest(text[:60]):
                self.assertEqual(self.findings(text), ([sentence], 6))
                if text and "\0" not in text:
                    sent = self.root / "sent.xml"
                    sent.write_text(text)
                    self.assertEqual(self.run_words("xml", str(sent)).returncode, 6)

    def test_examples_have_nothing_to_be_found(self):
        folder = vexorctl_machine.TREE / "examples" / "commands"
        files = sorted(map(str, folder.glob("*.xml")))
        self.assertGreater(len(files), 40)
        run = self.run_words("xml", "lint", *files)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "", ""))

    def test_it_needs_no_controller_and_prints_documents(self):
        self.environment["HXSIM_STATE"] = "/no/such/machine.db"
        run = self.lint('<HX_AdapterMute type="function">\n<AdapterID>256</AdapterID>\n'
                        "</HX_AdapterMute>", "-o", "json")
        self.assertEqual((run.returncode, run.stderr), (1, ""))
        document = json.loads(run.stdout)
        vexorctl_machine.schema(vexorctl_machine.SCHEMA).validate(document)
        self.assertEqual(document["items"], [{
            "file": str(self.root / "command.xml"), "line": 2, "element": "AdapterID",
            "finding": "number-cut", "sentence": '"256" does not fit 8 bits; it is cut to 0'}])

    def test_what_a_text_holds_reaches_no_terminal(self):
        found, code = self.findings('<HX_AdapterMute type="function"><AdapterID>\u009b2J</AdapterID>'
                                    "</HX_AdapterMute>")
        self.assertEqual((found, code), (['1: AdapterID: "?2J" is read as 2'], 1))

    def test_a_file_that_cannot_be_read_ends_with_2(self):
        run = self.run_words("xml", "lint", "/no/such.xml")
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        self.assertEqual(run.stderr, "vexorctl: /no/such.xml: No such file or directory\n")

    def test_a_file_called_lint_can_be_sent(self):
        (self.root / "lint").write_text('<HX_Adapter_GetCount type="function"/>')
        run = self.run_words("xml", str(self.root) + "/./lint")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn("<RetVal", run.stdout)


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL")

#!/usr/bin/env python3
"""vexorctl does what its help says: run as a program over the virtual controller.

Each test has a temporary root. Two libraries of the tests' own take part: one that fails as the
real library cannot be made to fail, and another controller library. Each is put first with
LD_LIBRARY_PATH.

usage: vexorctl_test.py VEXORCTL FAILING_LIBRARY_FOLDER OTHER_CONTROLLER_FOLDER [TEST]...
"""

import datetime
import functools
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import unittest

import vexorctl_machine
from vexorctl_machine import VERSION, Machine, on_terminal
from vexorctl_script import Script

HERE = pathlib.Path(__file__).resolve().parent
TREE = HERE.parents[2]
EXAMPLES = TREE / "examples" / "commands"
MANUAL = TREE / "docs" / "vexorctl.md"
RESULTS = HERE / "data" / "results"

VERSION_COMMAND = '<HX_API_Version type="function"/>'
VERSION_RESULT = (
    '<HX_API_Version type="function">\n'
    f'  <RetVal type="string">{VERSION} (virtual controller)</RetVal>\n'
    "</HX_API_Version>\n"
)
COUNT_RESULT = (
    '<HX_Adapter_GetCount type="function">\n'
    '  <RetVal type="U8">2</RetVal>\n'
    "</HX_Adapter_GetCount>\n"
)
SEE_HELP = " (see vexorctl --help)\n"
SEE_CALL_HELP = " (see vexorctl call --help)\n"

# Set from the command line.
VEXORCTL = ""
FAILING_LIBRARY = ""
OTHER_CONTROLLER = ""


class Run:
    """What one run of vexorctl printed and returned."""

    def __init__(self, root, arguments, stdin=b"", stdout=subprocess.PIPE, **environment):
        clean = {k: v for k, v in os.environ.items() if k != "LD_LIBRARY_PATH"}
        process = subprocess.run(
            [VEXORCTL, *arguments],
            input=stdin,
            stdout=stdout,
            stderr=subprocess.PIPE,
            cwd=root,
            env={**clean, "VEXORAPI_ROOT": str(root),
                 "HXSIM_STATE": str(pathlib.Path(root) / "machine.db"), **environment},
            timeout=60,
            check=False,
        )
        self.out = (process.stdout or b"").decode()
        self.err = process.stderr.decode()
        self.code = process.returncode


class VexorctlTest(unittest.TestCase):
    """A temporary folder that is the root of the file system and the working directory."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="vexorctl-test-")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.machine = Machine(os.path.dirname(VEXORCTL), self.root / "machine.db")

    def write(self, name, content):
        path = self.root / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return name

    def vexorctl(self, *arguments, **more):
        return Run(self.root, arguments, **more)

    def expect(self, run, code, out, err):
        self.assertEqual(run.out, out)
        self.assertEqual(run.err, err)
        self.assertEqual(run.code, code)

    def xml(self, command, **more):
        """Sends the text from a file called command.xml."""
        return self.vexorctl("xml", self.write("command.xml", command), **more)

    def over_failing_library(self, way, *arguments, **more):
        return self.vexorctl(*arguments, STANDIN=way, LD_LIBRARY_PATH=FAILING_LIBRARY, **more)

    def answered(self, result, *arguments, **more):
        """Runs over a library that has this result for every command."""
        return self.over_failing_library("", *arguments, STANDIN_RESULT=result, **more)


class Xml(VexorctlTest):
    def test_every_example_has_its_literal_result(self):
        names = sorted(path.name for path in EXAMPLES.iterdir())
        self.assertEqual(names, sorted(path.name for path in RESULTS.iterdir()))
        self.assertGreaterEqual(len(names), 5)
        shutil.copytree(EXAMPLES.parent / "root", self.root, dirs_exist_ok=True)
        (self.root / "build").mkdir()  # where the tree has a folder for what is made
        for name in names:
            with self.subTest(example=name):
                run = self.vexorctl("xml", str(EXAMPLES / name))
                result = (RESULTS / name).read_text().replace("@PROJECT_VERSION@", VERSION)
                self.expect(run, 0, result, "")

    def test_without_a_file_reads_standard_input(self):
        run = self.vexorctl("xml", stdin=VERSION_COMMAND.encode())
        self.expect(run, 0, VERSION_RESULT, "")

    def test_a_dash_is_standard_input(self):
        run = self.vexorctl("xml", "-", stdin=VERSION_COMMAND.encode())
        self.expect(run, 0, VERSION_RESULT, "")

    def test_several_files_run_in_order(self):
        self.write("version.xml", VERSION_COMMAND)
        self.write("count.xml", '<HX_Adapter_GetCount type="function"/>')
        run = self.vexorctl("xml", "version.xml", "count.xml", "version.xml")
        self.expect(run, 0, VERSION_RESULT + COUNT_RESULT + VERSION_RESULT, "")

    def test_files_may_have_the_names_of_commands_options_and_lists(self):
        names = ["call", "xml", "++", "[a,b]", "x[b]", "-h", "--", "\x01"]
        for name in names:
            self.write(name, VERSION_COMMAND)
        run = self.vexorctl("xml", *names[:5], names[7], "--", *names[5:7])
        self.expect(run, 0, VERSION_RESULT * 8, "")

    def test_a_byte_order_mark_and_another_encoding_are_left_to_the_parser(self):
        run = self.xml(b"\xef\xbb\xbf" + VERSION_COMMAND.encode())
        self.expect(run, 0, VERSION_RESULT, "")
        latin1 = '<?xml version="1.0" encoding="ISO-8859-1"?><!-- \xe9 -->' + VERSION_COMMAND
        self.expect(self.xml(latin1.encode("latin-1")), 0, VERSION_RESULT, "")

    def test_an_unknown_function_is_declined(self):
        run = self.xml('<hx_api_version type="function"/>')
        self.expect(
            run,
            6,
            "",
            'vexorctl: command.xml: declined: no function is named "hx_api_version"; '
            "check the root element's name, letter case included\n",
        )

    def test_a_root_without_the_type_of_a_function_is_declined(self):
        for attribute in ("", ' type="struct"', ' Type="function"', ' type="Function"'):
            with self.subTest(attribute=attribute):
                self.expect(
                    self.xml(f"<HX_API_Version{attribute}/>"),
                    6,
                    "",
                    'vexorctl: command.xml: declined: check the root element "HX_API_Version": '
                    'it lacks the attribute type="function"\n',
                )

    def test_a_malformed_command_is_told_with_its_line_and_reason(self):
        for command, where in (
            ('<HX_Adapter_GetInfo type="function">\n<AdapterID>\n</HX_Adapter_GetInfo>\n',
             "3: mismatched tag"),
            (" \n\n", "3: no element found"),
            (VERSION_COMMAND + "\n" + VERSION_COMMAND, "2: junk after document element"),
            ("<a>\n&b;</a>", "2: undefined entity"),
            (b"<a>\xff</a>", "1: not well-formed (invalid token)"),
        ):
            with self.subTest(command=command):
                self.expect(
                    self.xml(command), 6, "", f"vexorctl: command.xml: malformed: {where}\n"
                )

    def test_standard_input_is_called_so(self):
        run = self.vexorctl("xml", "-", stdin=b"<a>")
        self.expect(run, 6, "", "vexorctl: standard input: malformed: 1: no element found\n")

    def test_an_empty_command_is_called_so(self):
        self.expect(self.xml(""), 6, "", "vexorctl: command.xml: empty command\n")

    def test_a_nul_byte_is_refused_wherever_it_stands(self):
        for command, line in (
            (VERSION_COMMAND.encode() + b"\0", 1),
            (VERSION_COMMAND.encode() + b"\n\n\0garbage", 3),
            (VERSION_COMMAND.encode("utf-16"), 1),
            (b"\0", 1),
        ):
            with self.subTest(command=command):
                self.expect(
                    self.xml(command),
                    6,
                    "",
                    f"vexorctl: command.xml: malformed: {line}: "
                    "NUL byte, where the library would stop reading\n",
                )

    def test_256_declarations_are_taken_and_257_are_not(self):
        def declaring(count, form):
            items = "".join(form.format(number) for number in range(count))
            return f"<!DOCTYPE HX_API_Version [{items}]>{VERSION_COMMAND}"

        for form in (
            "<!ENTITY e{} 'x'>",
            "<!ELEMENT e{} ANY>",
            "<!ATTLIST e{} a CDATA #IMPLIED>",
            "<!NOTATION e{} SYSTEM 'x'>",
        ):
            with self.subTest(form=form):
                self.expect(self.xml(declaring(256, form)), 0, VERSION_RESULT, "")
                self.expect(
                    self.xml(declaring(257, form)),
                    6,
                    "",
                    "vexorctl: command.xml: document type with more than 256 declarations\n",
                )

    def test_a_chain_of_entities_ends_with_a_message(self):
        chain = "<!ENTITY e0 'x'>" + "".join(
            f"<!ENTITY e{number + 1} '&e{number};'>" for number in range(50000)
        )
        run = self.xml(f"<!DOCTYPE a [{chain}]><a>&e50000;</a>")
        self.expect(
            run,
            6,
            "",
            "vexorctl: command.xml: document type with more than 256 declarations\n",
        )

    def test_a_file_that_cannot_be_read_is_wrong_usage(self):
        for name, reason in (
            ("absent.xml", "absent.xml: No such file or directory"),
            (".", ".: Is a directory"),
            ("", '"": No such file or directory'),
            ("a\nb", "a?b: No such file or directory"),
        ):
            with self.subTest(name=name):
                self.expect(self.vexorctl("xml", name), 2, "", f"vexorctl: {reason}\n")

    def test_a_refusal_prints_the_result_and_says_so(self):
        run = self.xml('<HX_Adapter_GetInfo type="function"><AdapterID>2</AdapterID>'
                       "</HX_Adapter_GetInfo>")
        self.expect(
            run,
            1,
            '<HX_Adapter_GetInfo type="function">\n'
            '  <RetVal type="U8">201</RetVal>\n'
            '  <Count type="U8">0</Count>\n'
            "</HX_Adapter_GetInfo>\n",
            "vexorctl: command.xml: refused: HX_Adapter_GetInfo answered "
            "No adapter has that number. (no_adapter, code 201)\n",
        )

    def test_a_lost_result_is_told(self):
        self.expect(
            self.answered("", "call", "HX_API_Version"),
            6,
            "",
            "vexorctl: HX_API_Version: result did not fit, or there was no memory for it\n",
        )

    def expect_cut(self, status, complaint):
        cut = f'<X type="function">\n  <RetVal type="U8">{status}</RetVal>\n  <Item>'
        self.expect(self.answered(cut, "call", "HX_API_Version"), 6, cut + "\n", complaint)

    def test_a_result_that_was_cut_is_printed_and_told(self):
        self.expect_cut(
            0, "vexorctl: HX_API_Version: result is not well-formed: 3: no element found\n")

    def test_a_refusal_in_a_cut_result_is_told_too(self):
        self.expect_cut(
            7, "vexorctl: HX_API_Version: refused: X answered code 7\n"
               "vexorctl: HX_API_Version: result is not well-formed: 3: no element found\n")

    def test_the_largest_result_is_printed_whole(self):
        run = self.over_failing_library("largest result", "call", "HX_API_Version")
        self.expect(run, 0, "<Large>" + " " * (524287 - 15) + "</Large>\n", "")

    def test_a_well_formed_command_that_is_not_read_means_no_memory(self):
        self.write("command.xml", "<a/>")
        self.expect(
            self.over_failing_library("no memory", "xml", "command.xml"),
            5,
            "",
            "vexorctl: command.xml: not enough memory\n",
        )


class SeveralCommands(VexorctlTest):
    def setUp(self):
        super().setUp()
        self.write("done", VERSION_COMMAND)
        self.write("refused", '<HX_Adapter_GetInfo type="function"><AdapterID>9</AdapterID>'
                              "</HX_Adapter_GetInfo>")
        self.write("malformed", "<a>")

    def test_the_most_serious_exit_code_counts_in_any_order(self):
        for names, code in (
            (("done", "done"), 0),
            (("done", "refused"), 1),
            (("refused", "malformed"), 6),
            (("malformed", "unreadable"), 2),
            (("refused", "unreadable"), 2),
            (("done", "refused", "malformed", "unreadable"), 2),
        ):
            with self.subTest(names=names):
                self.assertEqual(self.vexorctl("xml", *names).code, code)
                self.assertEqual(self.vexorctl("xml", *reversed(names)).code, code)

    def test_a_failing_one_hides_none_of_the_others(self):
        run = self.vexorctl("xml", "unreadable", "done", "malformed", "done")
        self.expect(
            run,
            2,
            VERSION_RESULT * 2,
            "vexorctl: unreadable: No such file or directory\n"
            "vexorctl: malformed: malformed: 1: no element found\n",
        )

    def test_results_and_failures_stay_in_order_where_they_go_to_one_place(self):
        script = 'exec "$0" xml done malformed refused unreadable done 2>&1'
        process = subprocess.run(
            ["sh", "-c", script, VEXORCTL],
            stdout=subprocess.PIPE,
            cwd=self.root,
            env={**os.environ, "VEXORAPI_ROOT": str(self.root)},
            timeout=60,
            check=False,
        )
        self.assertEqual(
            process.stdout.decode(),
            VERSION_RESULT
            + "vexorctl: malformed: malformed: 1: no element found\n"
            + '<HX_Adapter_GetInfo type="function">\n'
            + '  <RetVal type="U8">201</RetVal>\n'
            + '  <Count type="U8">0</Count>\n'
            + "</HX_Adapter_GetInfo>\n"
            + "vexorctl: refused: refused: HX_Adapter_GetInfo answered "
            "No adapter has that number. (no_adapter, code 201)\n"
            + "vexorctl: unreadable: No such file or directory\n"
            + VERSION_RESULT,
        )

    def test_the_library_is_initialised_before_the_first_and_shut_down_after_the_last(self):
        log = self.root / "calls"
        self.write("one", "<one/>")
        self.write("two", "<two/>")
        self.answered("<X/>", "xml", "one", "unreadable", "two", STANDIN_LOG=str(log))
        self.assertEqual(
            log.read_text(),
            "vexorApiInit(, 0)\n"
            "vexorApi(<one/>, 524288)\n"
            "vexorApi(<two/>, 524288)\n"
            "vexorApiShutdown(, 0)\n",
        )


class Call(VexorctlTest):
    def sent(self, *arguments):
        """The command's text as the library received it."""
        log = self.root / "commands"
        self.write(
            "vexorapi.ini",
            '<config><XmlWrapperLogConfig type="config" InLogEnable="1" OutLogEnable="0" '
            f'Filename="{log}"/></config>',
        )
        self.vexorctl("call", *arguments)
        # Of a command that is refused the controller is asked who it is.
        text = log.read_bytes().decode().split("\nXMLCmd = <HX_API_Version ")[0].rstrip("\n")
        self.assertTrue(text.startswith("XMLCmd = "), text)
        return text[len("XMLCmd = "):]

    def test_prints_the_result(self):
        run = self.vexorctl("call", "HX_Adapter_GetInfo", "AdapterID=0")
        self.expect(run, 0, (RESULTS / "adapter-info.xml").read_text(), "")

    def test_255_asks_every_adapter(self):
        run = self.vexorctl("call", "HX_Adapter_GetInfo", "AdapterID=255")
        self.expect(run, 0, (RESULTS / "adapter-info-all.xml").read_text(), "")

    def test_without_fields_sends_the_name_alone(self):
        self.assertEqual(
            self.sent("HX_API_Version"), '<HX_API_Version type="function"></HX_API_Version>'
        )

    def test_sends_the_fields_in_order_repeated_ones_too(self):
        self.assertEqual(
            self.sent("HX_LD_Delete", "LD_ID=1", "AdapterID=2", "LD_ID=3"),
            '<HX_LD_Delete type="function"><LD_ID>1</LD_ID><AdapterID>2</AdapterID>'
            "<LD_ID>3</LD_ID></HX_LD_Delete>",
        )

    def test_takes_all_behind_the_first_equals_sign_as_the_value(self):
        self.assertEqual(
            self.sent("HX_DG_Create", "AdapterID=", "Name=b==", "PDIDs= 3 4 "),
            '<HX_DG_Create type="function"><AdapterID></AdapterID><Name>b==</Name>'
            "<PDIDs> 3 4 </PDIDs></HX_DG_Create>",
        )

    def test_escapes_what_would_be_markup(self):
        self.assertEqual(
            self.sent("HX_GetUserGroup", "lpszUsername=</a><b>&amp;]]>\"'"),
            '<HX_GetUserGroup type="function"><lpszUsername>&lt;/a&gt;&lt;b&gt;&amp;amp;]]&gt;'
            "\"'</lpszUsername></HX_GetUserGroup>",
        )

    def test_keeps_line_ends_and_other_letters(self):
        self.assertEqual(
            self.sent("HX_GetUserGroup", "lpszUsername=1\r\n\t2\u00fc\u20ac"),
            '<HX_GetUserGroup type="function"><lpszUsername>1&#13;\n\t2\u00fc\u20ac'
            "</lpszUsername></HX_GetUserGroup>",
        )

    def expect_wrong(self, complaint, *arguments):
        """Nothing is sent, and one line says what is wrong."""
        log = self.root / "calls"
        run = self.answered("<X/>", "call", *arguments, STANDIN_LOG=str(log))
        self.expect(run, 2, "", f"vexorctl: {complaint}{SEE_CALL_HELP}")
        self.assertFalse(log.exists())

    def test_an_unknown_function_is_told_before_anything_is_sent(self):
        for name in ("HX_Nothing", "hx_api_version", "", "a b", "-a", "a/><b"):
            with self.subTest(name=name):
                self.expect_wrong(
                    f'no function is named "{name}", letter case included', "--", name
                )

    def test_an_unknown_field_is_told_with_those_that_there_are(self):
        self.expect_wrong(
            'HX_LD_Delete has no field "HD_ID"; its fields: AdapterID, LD_ID, deleteMBR',
            "HX_LD_Delete", "AdapterID=0", "HD_ID=1",
        )
        self.expect_wrong(
            'HX_API_Version has no field ""; its fields: none', "HX_API_Version", "=5"
        )

    def test_a_number_too_large_for_its_width_is_told(self):
        for field, most in (("AdapterID", 255), ("LD_ID", 65535)):
            self.vexorctl("call", "HX_LD_Delete", f"{field}={most}")
            self.expect_wrong(
                f"{field}: {most + 1} is too large; the most is {most}",
                "HX_LD_Delete", f"{field}={most + 1}",
            )
        self.expect_wrong(
            "Size: 18446744073709551616 is too large; the most is 18446744073709551615",
            "HX_LD_Create", "Size=18446744073709551616",
        )

    def test_what_is_no_number_is_told(self):
        for value in ("x", "1x", "-1", "1,2", "0x10"):
            with self.subTest(value=value):
                self.expect_wrong(
                    f'AdapterID: "{value}" is no number', "HX_LD_Delete", f"AdapterID={value}"
                )

    def test_a_list_too_long_is_told(self):
        self.expect_wrong(
            "HDIDs: 129 numbers; the most is 128", "HX_LD_Create", "HDIDs=" + "1 " * 129
        )
        self.expect_wrong(
            "AdapterID: 2 numbers; the most is 1", "HX_LD_Create", "AdapterID=1 2"
        )

    def test_a_text_too_long_is_told(self):
        self.expect_wrong(
            "Name: the text has 16 characters; the most is 15",
            "HX_DG_Create", "Name=0123456789ABCDEF",
        )

    def test_a_refusal_is_told_under_the_functions_name(self):
        run = self.vexorctl("call", "HX_Adapter_GetInfo", "AdapterID=7")
        self.assertEqual(run.code, 1)
        self.assertEqual(
            run.err,
            "vexorctl: HX_Adapter_GetInfo: refused: HX_Adapter_GetInfo answered "
            "No adapter has that number. (no_adapter, code 201)\n",
        )

    def test_a_field_without_an_equals_sign_is_wrong_usage(self):
        self.expect_wrong(
            '"AdapterID" is not of the form field=value', "HX_LD_Delete", "LD_ID=1", "AdapterID"
        )

    def test_a_value_that_xml_cannot_hold_is_wrong_usage(self):
        for value in (b"\x01", b"a\x1b[0m", b"\xff", b"\xc3", b"\xed\xa0\x80", b"\xef\xbf\xbe"):
            with self.subTest(value=value):
                self.expect_wrong(
                    'the value of "Name" cannot be sent: '
                    "it is not UTF-8 or holds control characters",
                    "HX_DG_Create", b"Name=" + value,
                )


class RetVal(VexorctlTest):
    """Which results count as a refusal."""

    def test_a_version_text_is_no_status(self):
        self.assertEqual(self.vexorctl("call", "HX_API_Version").code, 0)

    def test_a_number_of_adapters_is_no_status(self):
        self.expect(self.vexorctl("call", "HX_Adapter_GetCount"), 0, COUNT_RESULT, "")

    def test_the_change_counters_constant_is_no_status(self):
        result = (
            '<VX_HX_EVT_GetChangeCounters type="function">\n'
            '  <RetVal type="U8">1</RetVal>\n'
            "</VX_HX_EVT_GetChangeCounters>"
        )
        run = self.answered(result, "call", "VX_HX_EVT_GetChangeCounters")
        self.expect(run, 0, result + "\n", "")

    def test_any_other_number_is_a_status(self):
        for status in ("1", "42", "255"):
            with self.subTest(status=status):
                result = f'<X type="function">\n  <RetVal type="U8">{status}</RetVal>\n</X>'
                self.expect(
                    self.answered(result, "call", "HX_API_Version"),
                    1,
                    result + "\n",
                    f"vexorctl: HX_API_Version: refused: X answered code {status}\n",
                )

    def test_a_number_in_a_text_is_no_status(self):
        result = '<X type="function"><RetVal type="string">7</RetVal></X>'
        self.expect(self.answered(result, "call", "HX_API_Version"), 0, result + "\n", "")

    def test_a_retval_deeper_in_the_result_is_no_status(self):
        result = '<X type="function"><Y><RetVal type="U8">7</RetVal></Y></X>'
        self.expect(self.answered(result, "call", "HX_API_Version"), 0, result + "\n", "")

    def test_a_result_without_one_is_a_success(self):
        result = '<X type="function">\n</X>'
        self.expect(self.answered(result, "call", "HX_API_Version"), 0, result + "\n", "")

    def test_zero_is_success(self):
        run = self.vexorctl("call", "VX_Module_GetInfo")
        self.expect(run, 0, (RESULTS / "module-info.xml").read_text(), "")


EXIT_CODES = (
    "\nExit codes:\n"
    "  0  done\n"
    "  1  the controller refused, or only a part could be done\n"
    "  2  wrong usage, or a file that cannot be read\n"
    "  3  no such object\n"
    "  4  not permitted\n"
    "  5  the library, the controller, the configuration, the event store or\n"
    "     standard output cannot be used\n"
    "  6  the command was declined or malformed, or its result did not fit\n"
    "  7  the wait timed out and the work goes on, or the work is paused\n"
    "  8  not confirmed, or something changed between look and act\n"
    "  10  events were lost before event follow could show them\n"
    "  130  interrupted\n"
)


class Usage(VexorctlTest):
    def test_help_at_every_level_ends_with_every_exit_code(self):
        for arguments in (["--help"], ["-h"], ["xml", "--help"], ["call", "--help"],
                          ["disk", "--help"], ["disk", "list", "--help"]):
            with self.subTest(arguments=arguments):
                run = self.vexorctl(*arguments)
                self.assertIn("Usage:", run.out)
                self.assertTrue(run.out.endswith(EXIT_CODES), run.out)
                self.assertEqual((run.code, run.err), (0, ""))

    def test_help_of_check_and_risk_tells_their_own_exit_codes(self):
        run = self.vexorctl("check", "--help")
        self.assertTrue(run.out.endswith(
            "Exit codes:\n  0  OK\n  1  WARNING\n  2  CRITICAL\n"
            "  3  UNKNOWN, also for wrong usage and for what cannot be used: library,\n"
            "     configuration, controller\n"), run.out)
        run = self.vexorctl("risk", "--help")
        self.assertTrue(run.out.endswith(
            EXIT_CODES + "  9  the next failure of a disk may lose data\n"), run.out)

    def test_version_prints_one_line(self):
        self.expect(self.vexorctl("--version"), 0, f"vexorctl {VERSION}\n", "")

    def test_wrong_usage_is_one_line_and_runs_nothing(self):
        self.write("command", VERSION_COMMAND)
        for arguments, complaint in (
            (["xlm"], 'there is no "xlm"; say one of overview, adapter, enclosure, disk, vd, dg, '
                      "task, battery, flash, event, alert, user, counters, config, apply, check, risk, "
                      "timeline, call, xml, tape, support-bundle, completion, help, version; did you mean "
                      f'"xml"?{SEE_HELP}'),
            (["--verbose"], f"there is no option --verbose{SEE_HELP}"),
            (["xml", "command", "-x"],
             "The following argument was not expected: -x (see vexorctl xml --help)\n"),
            (["call"], "NAME [field=value] is missing: vexorctl call NAME [field=value]..."
                       f" [OPTION...]{SEE_CALL_HELP}"),
            (["call", "HX_API_Version", "--now"],
             f"The following argument was not expected: --now{SEE_CALL_HELP}"),
            (["disk", "list", "-o"],
             "--output needs a value (see vexorctl disk list --help)\n"),
            (["disk", "list", "-o", "yaml"],
             '--output cannot be "yaml"; say one of: table wide list json jsonl csv xml '
             "(see vexorctl disk list --help)\n"),
            (["counters"], "a verb is missing; say one of show (see vexorctl counters --help)\n"),
            (["counters", "list"],
             'counters has no verb "list"; say one of show (see vexorctl counters --help)\n'),
        ):
            with self.subTest(arguments=arguments):
                self.expect(self.vexorctl(*arguments), 2, "", f"vexorctl: {complaint}")


class Unavailable(VexorctlTest):
    def expect_configuration(self, complaint):
        self.write("command", VERSION_COMMAND)
        self.expect(
            self.vexorctl("xml", "command"),
            5,
            "",
            f"vexorctl: {self.root}/vexorapi.ini: configuration {complaint}\n",
        )

    def test_a_malformed_configuration_is_refused_with_its_line_and_reason(self):
        self.write("vexorapi.ini", "<config>\n  <EventLogConfig>\n</config>\n")
        self.expect_configuration("malformed: 3: mismatched tag")

    def test_a_configuration_of_65536_bytes_is_too_large(self):
        self.write("vexorapi.ini", "<config/>" + " " * (65536 - 9))
        self.expect_configuration("too large: more than 65535 bytes")

    def test_a_configuration_of_65535_bytes_is_not(self):
        self.write("vexorapi.ini", "<config/>" + " " * (65535 - 9))
        self.assertEqual(self.vexorctl("call", "HX_API_Version").code, 0)

    def test_a_configuration_with_257_declarations_is_refused(self):
        items = "".join(f"<!ENTITY e{number} 'x'>" for number in range(257))
        self.write("vexorapi.ini", f"<!DOCTYPE config [{items}]><config/>")
        self.expect_configuration("with more than 256 declarations in its document type")

    def test_a_configuration_that_is_a_folder_cannot_be_read(self):
        (self.root / "vexorapi.ini").mkdir()
        self.expect_configuration("cannot be read: Is a directory")

    def test_a_configuration_that_is_a_fifo_cannot_be_read_and_never_blocks(self):
        os.mkfifo(self.root / "vexorapi.ini")
        self.expect_configuration("cannot be read: Not a regular file")

    def test_a_configuration_that_is_a_loop_of_links_cannot_be_read(self):
        (self.root / "vexorapi.ini").symlink_to("vexorapi.ini")
        self.expect_configuration("cannot be read: Too many levels of symbolic links")

    @unittest.skipIf(os.geteuid() == 0, "root reads every file")
    def test_a_configuration_without_permission_cannot_be_read(self):
        self.write("vexorapi.ini", "<config/>")
        (self.root / "vexorapi.ini").chmod(0)
        self.expect_configuration("cannot be read: Permission denied")

    def test_an_absent_or_empty_configuration_is_none(self):
        self.assertEqual(self.vexorctl("call", "HX_API_Version").code, 0)
        self.write("vexorapi.ini", "")
        self.assertEqual(self.vexorctl("call", "HX_API_Version").code, 0)

    def test_a_library_that_does_not_start_is_told_and_nothing_is_sent(self):
        log = self.root / "calls"
        run = self.over_failing_library("no start", "call", "HX_API_Version", STANDIN_LOG=str(log))
        self.expect(run, 5, "", "vexorctl: the library cannot be initialised\n")
        self.assertEqual(log.read_text(), "vexorApiInit(, 0)\n")

    def test_full_standard_output_ends_the_run_before_the_next_command(self):
        log = self.root / "calls"
        self.write("command", "<a/>")
        with open("/dev/full", "wb") as full:
            run = self.answered(
                "<X/>", "xml", "command", "command", stdout=full, STANDIN_LOG=str(log)
            )
        self.expect(run, 5, "", "vexorctl: standard output: No space left on device\n")
        self.assertEqual(log.read_text().count("vexorApi(<a/>"), 1)
        self.assertTrue(log.read_text().endswith("vexorApiShutdown(, 0)\n"))

    def test_help_into_full_standard_output_fails(self):
        with open("/dev/full", "wb") as full:
            run = self.vexorctl("--help", stdout=full)
        self.expect(run, 5, "", "vexorctl: standard output: No space left on device\n")


# Every command gets this answer: one adapter, on which virtual disk 0 is rebuilt, 40 percent done.
REBUILDING = (
    '<HX_Adapter_GetCount type="function"><RetVal type="U8">1</RetVal>'
    "<RequestHeader><nextStartingIndex>65535</nextStartingIndex></RequestHeader>"
    "<Status><LDID>0</LDID><Bga>{activity}</Bga><BgaState>1</BgaState>"
    "<BgaPercentage>40</BgaPercentage></Status></HX_Adapter_GetCount>"
)


class Waiting(VexorctlTest):
    def scripted(self, activity):
        script = Script(self.root / "results")
        return {**script.environment(FAILING_LIBRARY),
                "STANDIN_RESULT": REBUILDING.format(activity=activity)}

    def environment(self, activity=6):
        return {**os.environ, "VEXORAPI_ROOT": str(self.root), **self.scripted(activity)}

    def test_a_wait_that_times_out_ends_with_code_7_and_draws_nothing_in_a_pipe(self):
        self.expect(
            self.answered(REBUILDING.format(activity=6), "task", "wait", "--timeout", "1s"),
            7,
            "",
            "vexorctl: a0/vd0: the wait timed out; the task goes on\n",
        )

    def test_ctrl_c_ends_the_waiting_and_says_that_the_task_goes_on(self):
        process = subprocess.Popen([VEXORCTL, "task", "watch"], env=self.environment(),
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        vexorctl_machine.interrupt(process)
        out, err = process.communicate(timeout=vexorctl_machine.PATIENCE)
        self.assertEqual(err, b"vexorctl: a0/vd0: interrupted; the task goes on\n")
        self.assertEqual((out, process.returncode), (b"", 130))

    def test_a_terminal_shows_a_bar(self):
        said, code = on_terminal([VEXORCTL, "task", "watch", "--timeout", "1s"],
                                 self.environment())
        self.assertIn(b"\r\x1b[Ka0/vd0 rebuild [############..................] 40%", said)
        self.assertTrue(said.endswith(
            b"\r\x1b[Kvexorctl: a0/vd0: the wait timed out; the task goes on\r\n"), said)
        self.assertEqual(code, 7)

    def test_a_code_without_a_name_is_shown_as_its_number(self):
        scripted = self.scripted(activity=99)
        run = self.vexorctl("task", "list", "--no-header", "--columns", "activity,state",
                            **scripted)
        self.expect(run, 0, "99  running\n", "")
        run = self.vexorctl("task", "list", "-o", "jsonl", "--columns", "activity", **scripted)
        self.expect(run, 0, '{"schema":"vexorctl/1","command":"task list","partial":true,'
                    '"activity":{"code":99,"name":null}}\n', "")


class Transfer(VexorctlTest):
    """An image goes piece by piece to a controller that takes each when it is told to, and whose codes
    stand in a file."""

    def setUp(self):
        super().setUp()
        (self.root / "etc/vexorapi").mkdir(parents=True)
        self.write("etc/vexorapi/codes.json", json.dumps(
            {"schema": "vexorctl-codes/1", "controller": "another controller library",
             "images": [{"code": 2, "name": "firmware"}]}))

    def update(self, at_second=lambda pid: None):
        """On a terminal; the next piece goes as soon as the one before was shown."""
        (self.root / "image").write_bytes(b"x" * (5 * 32768 + 1))
        pieces = self.root / "pieces"
        os.mkfifo(pieces)
        leave = os.open(pieces, os.O_RDWR)
        self.addCleanup(os.close, leave)

        def let_go(pid, _, piece):
            if piece == 2:
                at_second(pid)
            os.write(leave, b" ")

        steps = [(f"% piece {piece} of 6".encode(), functools.partial(let_go, piece=piece))
                 for piece in range(1, 7)]
        arguments = ["flash", "update", "a2", "--image", "firmware", "--file", "image", "--yes"]
        return on_terminal([VEXORCTL, *arguments], {
            **os.environ, "VEXORAPI_ROOT": str(self.root), "LD_LIBRARY_PATH": OTHER_CONTROLLER,
            "STANDIN_PIECES": str(pieces),
        }, self.root, steps)

    def test_a_terminal_shows_how_many_pieces_have_gone(self):
        said, code = self.update()
        self.assertEqual(code, 0, said)
        self.assertIn(b"a2 flash update [###############...............] 50% piece 3 of 6", said)
        self.assertNotIn(b"\x1b", said.split(b"ADDRESS")[1])

    def test_ctrl_c_does_not_cut_an_image_in_half(self):
        said, code = self.update(lambda pid: os.kill(pid, signal.SIGINT))
        self.assertEqual(code, 0, said)

    def test_a_pipe_shows_nothing_of_it(self):
        self.write("image", b"x" * (2 * 32768))
        run = self.vexorctl("flash", "update", "a2", "--image", "firmware", "--file", "image",
                            "--yes", LD_LIBRARY_PATH=OTHER_CONTROLLER)
        self.expect(run, 0, "ADDRESS  ACTION        TASK\na2       flash update  -\n", "")


class LoadOrder(VexorctlTest):
    """A controller library that is found first takes the virtual one's place."""

    def other(self, *arguments):
        return self.vexorctl("call", *arguments, LD_LIBRARY_PATH=OTHER_CONTROLLER)

    def test_the_other_library_answers(self):
        self.expect(
            self.other("HX_API_Version"),
            0,
            '<HX_API_Version type="function">\n'
            '  <RetVal type="string">another controller library</RetVal>\n'
            "</HX_API_Version>\n",
            "",
        )

    def test_the_other_library_refuses_with_its_own_code(self):
        run = self.other("HX_Adapter_GetInfo", "AdapterID=0")
        self.assertEqual(run.code, 1)
        self.assertEqual(
            run.err,
            "vexorctl: HX_Adapter_GetInfo: refused: HX_Adapter_GetInfo answered code 9\n",
        )


def transcript(text):
    """The (command, output) pairs of a page's console blocks."""
    pairs = []
    for block in text.split("```console\n")[1:]:
        for line in block.split("```")[0].splitlines(keepends=True):
            if line.startswith("$ "):
                pairs.append((line[2:].rstrip("\n"), ""))
            else:
                pairs[-1] = (pairs[-1][0], pairs[-1][1] + line)
    return pairs


class Times:
    """Takes times out of a text and keeps the seconds since the first one: when a page was written
    does not matter, what lies between two times does, and so do durations."""

    DURATION = re.compile(r"(?<= for )(?:(\d+)h)?(?:(\d+)m)?(\d+)s\b")
    FORM = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(?:Z|[+-]\d\d:\d\d)")

    def __init__(self):
        self.first = None

    def taken_out(self, text):
        """The text without its times, and these."""
        times = [datetime.datetime.fromisoformat(time.replace("Z", "+00:00"))
                 for time in self.FORM.findall(text)]
        if times and self.first is None:
            self.first = times[0]
        seconds = [(t - self.first).total_seconds() for t in times]
        for parts in self.DURATION.findall(text):
            hours, minutes, rest = (int(part or 0) for part in parts)
            seconds.append(3600 * hours + 60 * minutes + rest)
        return self.DURATION.sub("<duration>", self.FORM.sub("<time>", text)), seconds


class Manual(VexorctlTest):
    def replay(self, text):
        pairs = transcript(text)
        path = os.path.dirname(VEXORCTL) + os.pathsep + os.environ["PATH"]
        shutil.copytree(TREE / "examples", self.root / "examples")
        (self.root / "opt/kestrel/raid/db").mkdir(parents=True)
        written, printed = Times(), Times()
        for command, output in pairs:
            with self.subTest(command=command):
                process = subprocess.run(
                    ["sh", "-c", f"exec 2>&1\n{command}"],
                    stdin=subprocess.DEVNULL,
                    stdout=subprocess.PIPE,
                    cwd=self.root,
                    env={**os.environ, "PATH": path, "VEXORAPI_ROOT": str(self.root),
                         "HXSIM_STATE": str(self.machine.state), "TZ": "UTC"},
                    timeout=60,
                    check=False,
                )
                expected, expected_times = written.taken_out(output)
                actual, actual_times = printed.taken_out(process.stdout.decode())
                self.assertEqual(actual, expected)
                # The clock stood still within a second, and times are told in whole ones.
                for one, other in zip(actual_times, expected_times):
                    self.assertLessEqual(abs(one - other), 1)
        return len(pairs)

    def test_every_command_in_the_manual_prints_what_stands_below_it(self):
        self.assertGreaterEqual(self.replay(MANUAL.read_text()), 40)

    def test_every_command_of_the_session_in_the_readme_prints_what_stands_below_it(self):
        text = (TREE / "README.md").read_text().split("## A session\n")[1].split("\n## ")[0]
        self.machine.state.unlink()  # it begins with making one
        self.assertGreaterEqual(self.replay(text), 20)

    def test_the_manual_has_one_line_for_each_exit_code(self):
        rows = re.findall(r"^\| (\d+) \|", MANUAL.read_text(), re.MULTILINE)
        codes = re.findall(r"^  (\d+)  ", self.vexorctl("--help").out, re.MULTILINE)
        self.assertEqual(rows, codes)


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL", "FAILING_LIBRARY", "OTHER_CONTROLLER")

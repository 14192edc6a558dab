#!/usr/bin/env python3
"""The Python package over the library and the virtual controller, in one process.

usage: python_calls_test.py TREE

The library's folder is in LD_LIBRARY_PATH.
"""

import asyncio
import ctypes
import os
import pathlib
import re
import shutil
import sys
import tempfile
import threading
import unittest

TREE = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(TREE / "bindings/python"))

import vexorapi  # noqa: E402
from vexorapi import _shapes, functions  # noqa: E402
from vexorapi._repair import repaired  # noqa: E402

SCRATCH = tempfile.TemporaryDirectory()
ROOT = pathlib.Path(SCRATCH.name) / "root"
STORE = ROOT / "opt/kestrel/raid/db"


def setUpModule():
    shutil.copytree(TREE / "examples/root", ROOT)
    STORE.mkdir(parents=True)
    os.environ["VEXORAPI_ROOT"] = str(ROOT)
    os.environ["HXSIM_STATE"] = ":memory:"


def tearDownModule():
    SCRATCH.cleanup()


class WithMachine(unittest.TestCase):
    """A new machine and an empty store for each test."""

    def setUp(self):
        for file in STORE.iterdir():
            file.unlink()
        self.next_disk = 0
        self.client = vexorapi.Client()
        self.addCleanup(self.client.close)

    def check_in(self):
        ctypes.CDLL("libvexorapi.so.1").VX_EvFile_CheckIn(2)

    def make_event(self):
        """At least one event is in the store afterwards that was not there before."""
        before = self.stored()
        self.client.HX_PD_StartMediaPatrol(AdapterID=0, HD_ID=self.next_disk)
        self.next_disk += 1
        self.check_in()
        self.assertGreater(self.stored(), before)

    def stored(self):
        return self.client.VX_HX_EVT_GetEvents().n


class Results(WithMachine):
    def test_a_number(self):
        self.assertEqual(self.client.HX_Adapter_GetCount().RetVal, 2)

    def test_a_record_has_numbers_texts_arrays_and_records(self):
        disk = self.client.HX_PD_GetHDInfo(AdapterID=0, numRequested=1).HD_Info[0]
        self.assertEqual((disk.Model, disk.Size, disk.Link.Parent.DevType),
                         ("TW600S10", 1172123568, 2))
        self.assertEqual(disk.WWN, (80, 164, 133, 131, 0, 0, 0, 0))

    def test_a_truth_value(self):
        smart = self.client.HX_PD_GetSmartStatus(AdapterID=0, numRequested=1).HD_SMART_Status[0]
        self.assertIs(smart.SmartThresholdExceeded, False)

    def test_ports_are_numbered(self):
        adapter = self.client.HX_Adapter_GetInfo(AdapterID=0).AdapterInfo[0]
        self.assertEqual(len(adapter.PortSasAddress), 8)
        self.assertEqual(adapter.PortSasAddress[7], (80, 164, 133, 128, 0, 0, 0, 8))

    def test_a_list_of_one_and_one_of_none_are_lists(self):
        self.assertEqual(len(self.client.HX_Adapter_GetInfo(AdapterID=1).AdapterInfo), 1)
        self.assertEqual(self.client.HX_PD_GetPMInfo(AdapterID=0).PM_Info, ())

    def test_a_whole_list_comes_page_by_page(self):
        disks = list(self.client.every(self.client.HX_PD_GetHDInfo, AdapterID=0, numRequested=5))
        self.assertEqual([disk.Link.Self.DevID for disk in disks], [*range(15), 16])

    def test_what_has_no_result_returns_none(self):
        self.assertIsNone(self.client.HX_AdapterMute(AdapterID=0))

    def test_hostile_texts_come_back_as_they_were_given(self):
        for name in ("a<&>\"]]>b", "&amp;", "zwei Wörter", "</Name>"):
            with self.subTest(name=name):
                self.client.HX_LD_SetConfig(AdapterID=0, LD_ID=0, CacheMode=5, Name=name)
                disks = self.client.HX_LD_GetInfo(AdapterID=0).LDInfo
                self.assertEqual(disks[0].Name, name)

    def test_the_raw_result_is_the_librarys_text(self):
        self.assertEqual(
            self.client.raw('<HX_Adapter_GetCount type="function"/>'),
            b'<HX_Adapter_GetCount type="function">\n  <RetVal type="U8">2</RetVal>\n'
            b"</HX_Adapter_GetCount>")


class Shapes(unittest.TestCase):
    def test_every_result_of_the_reference_is_read(self):
        page = (TREE / "docs/xml-api.md").read_text()
        read = 0
        for name, row in functions.FUNCTIONS.items():
            text = re.findall(rf'^<{name} type="function">\n.*?^</{name}>$', page,
                              re.DOTALL | re.MULTILINE)[-1]
            if row.result is not None:
                with self.subTest(function=name):
                    _shapes.read(name, row.result, _shapes.parsed(name, text.encode()))
                    read += 1
        self.assertGreater(read, 30)

    def test_a_hexadecimal_number(self):
        text = (b'<VX_BIOS_Version type="struct VX_BIOS_Version"><VenID type="U16">1af4</VenID>'
                b"</VX_BIOS_Version>")
        element = _shapes.parsed("HX_BIOS_Version", text).find("VenID")
        self.assertEqual(_shapes.hexadecimal(element), 0x1AF4)

    def test_a_missing_element_is_not_zero(self):
        text = b'<VX_HX_EVT_GetEvents type="function"><RetVal type="U8">0</RetVal></VX_HX_EVT_GetEvents>'
        with self.assertRaisesRegex(vexorapi.Unreadable, "has no n"):
            _shapes.read("VX_HX_EVT_GetEvents", functions.FUNCTIONS["VX_HX_EVT_GetEvents"].result,
                         _shapes.parsed("VX_HX_EVT_GetEvents", text))

    def test_an_element_of_a_later_library_is_passed_over(self):
        text = (b'<Version_Info type="struct Version_Info"><VerMajor type="U16">1</VerMajor>'
                b'<Later type="U8">9</Later><VerMinor type="U16">2</VerMinor>'
                b'<VerOEM type="U16">3</VerOEM><VerBuild type="U16">4</VerBuild></Version_Info>')
        shape = vexorapi.records.Version_Info_2_Shape
        self.assertEqual(shape.read(_shapes.parsed("f", text)), (1, 2, 3, 4))

    def test_bytes_that_xml_forbids_are_marked(self):
        text = b'<f type="function">\n  <Name type="string"><![CDATA[a\xff\x01b]]></Name>\n</f>'
        self.assertEqual(_shapes.parsed("f", text).findtext("Name"), "a��b")

    def test_markup_in_a_bare_text_is_text(self):
        text = b'<f type="function">\n  <Name type="string">a<b>&c</b></Name>\n</f>'
        self.assertEqual(_shapes.parsed("f", text).findtext("Name"), "a<b>&c</b>")

    def test_a_result_that_was_cut_is_told(self):
        with self.assertRaises(vexorapi.DoesNotFit):
            _shapes.parsed("f", b'<f type="function">\n  <Name type="string"><![CDATA[a')

    def test_the_repair_of_a_result_without_texts_changes_nothing(self):
        text = b'<f type="function">\n  <n type="U8">1</n>\n</f>'
        self.assertEqual(repaired(text), text)


class Refusals(WithMachine):
    def test_a_refusal_has_code_name_and_sentence(self):
        with self.assertRaises(vexorapi.Refused) as caught:
            self.client.HX_LD_Delete(AdapterID=0, LD_ID=77)
        refused = caught.exception
        self.assertEqual((refused.code, refused.name), (207, "no_virtual_disk"))
        self.assertEqual(str(refused), "HX_LD_Delete was refused with code 207: "
                         "The adapter has no virtual disk with that ID.")

    def test_an_unknown_function_names_the_nearest(self):
        with self.assertRaises(vexorapi.UnknownFunction) as caught:
            self.client.call("hx_pd_gethdinf")
        self.assertEqual(caught.exception.nearest, "HX_PD_GetHDInfo")
        with self.assertRaises(vexorapi.UnknownFunction) as caught:
            self.client.call("Frobnicate")
        self.assertIsNone(caught.exception.nearest)

    def test_an_unknown_parameter_names_the_nearest(self):
        with self.assertRaises(vexorapi.UnknownParameter) as caught:
            self.client.call("HX_LD_Delete", {"LDID": 1})
        self.assertEqual(caught.exception.nearest, "LD_ID")

    def test_values_that_do_not_fit_are_refused_before_the_call(self):
        for name, parameters in (
                ("HX_LD_Delete", {"AdapterID": 256}), ("HX_LD_Delete", {"AdapterID": -1}),
                ("HX_LD_Delete", {"AdapterID": "0"}), ("HX_LD_Delete", {"AdapterID": 0.0}),
                ("HX_LD_Create", {"Name": "x" * 16}), ("HX_LD_Create", {"Name": "a\0b"}),
                ("HX_LD_Create", {"Name": b"a"}), ("HX_LD_Create", {"Name": "\ud800"}),
                ("HX_LD_Create", {"HDIDs": range(129)}), ("HX_LD_Create", {"HDIDs": 3}),
                ("HX_LD_Create", {"HDIDs": [65536]}), ("HX_LD_Create", {"HDIDs": "1 2"})):
            with self.subTest(name=name, parameters=parameters), \
                    self.assertRaises(vexorapi.ParameterError):
                self.client.call(name, parameters)

    def test_a_command_that_names_no_function_is_declined(self):
        for command in ("<Nothing/>", "no XML", "", "<a>\0</a>"):
            with self.subTest(command=command), self.assertRaises(vexorapi.Declined):
                self.client.raw(command)

    def test_a_closed_client_refuses(self):
        self.client.close()
        self.client.close()
        with self.assertRaisesRegex(vexorapi.Error, "closed"):
            self.client.HX_Adapter_GetCount()


class Logon(WithMachine):
    def test_the_right_password_tells_the_group(self):
        self.assertIs(self.client.logon("admin", "raid & roll"), vexorapi.Group.ADMINISTRATOR)

    def test_a_wrong_password_raises_also_for_an_administrator(self):
        with self.assertRaises(vexorapi.LogonFailed) as caught:
            self.client.logon("admin", "raid")
        self.assertEqual(caught.exception.code, 3)

    def test_no_message_repeats_a_password(self):
        with self.assertRaises(vexorapi.ParameterError) as caught:
            self.client.logon("admin", "secret" * 30)
        self.assertNotIn("secret", str(caught.exception))


class Events(WithMachine):
    def test_events_are_numbered_from_the_oldest(self):
        self.make_event()
        self.make_event()
        events = list(self.client.events())
        self.assertEqual([event.number for event in events], list(range(len(events))))
        self.assertGreaterEqual(len(events), 2)
        self.assertEqual(list(self.client.events(1)), events[1:])
        self.assertEqual(list(self.client.events(len(events))), [])

    def test_following_goes_on_with_what_comes_later(self):
        self.make_event()
        known = len(list(self.client.events()))
        following = self.client.events(known, follow=0.01)
        self.make_event()
        self.assertEqual(next(following).number, known)

    def test_a_store_that_cannot_be_read_is_not_empty(self):
        with self.assertRaises(vexorapi.StoreUnreadable):
            list(self.client.events())

    def test_counters_count(self):
        self.make_event()
        before = self.client.counters()
        self.make_event()
        self.assertGreater(self.client.counters().Whatever_Change, before.Whatever_Change)


class Processes(WithMachine):
    def test_threads_take_turns(self):
        answered = {0: [], 1: []}

        def call(adapter):
            for _ in range(20):
                disks = self.client.HX_PD_GetHDInfo(AdapterID=adapter, numRequested=1).HD_Info
                answered[adapter] += [disk.AdapterID for disk in disks]

        threads = [threading.Thread(target=call, args=(i % 2,)) for i in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(answered, {0: [0] * 40, 1: [1] * 40})

    def test_a_forked_process_goes_on_calling(self):
        child = os.fork()
        if child == 0:
            count = 0
            try:
                count = self.client.HX_Adapter_GetCount().RetVal
            finally:
                os._exit(count)
        _, status = os.waitpid(child, 0)
        self.assertEqual(os.waitstatus_to_exitcode(status), 2)
        self.assertEqual(self.client.HX_Adapter_GetCount().RetVal, 2)

    def test_clients_share_the_library_until_the_last_is_closed(self):
        with vexorapi.Client() as other:
            self.client.HX_LD_SetConfig(AdapterID=0, LD_ID=0, CacheMode=5, Name="shared")
            self.assertEqual(other.HX_LD_GetInfo(AdapterID=0).LDInfo[0].Name, "shared")
        self.assertEqual(self.client.HX_LD_GetInfo(AdapterID=0).LDInfo[0].Name, "shared")

    def test_asyncio(self):
        async def ask():
            async with vexorapi.AsyncClient() as client:
                answers = await asyncio.gather(*(
                    client.run(vexorapi.Client.HX_PD_GetHDInfo, AdapterID=i % 2, numRequested=1)
                    for i in range(6)))
                events = [event async for event in client.events()]
            return [answer.HD_Info[0].AdapterID for answer in answers], len(events)

        self.make_event()
        adapters, events = asyncio.run(ask())
        self.assertEqual(adapters, [0, 1, 0, 1, 0, 1])
        self.assertGreater(events, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

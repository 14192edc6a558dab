#!/usr/bin/env python3
"""Every field of every record that the nouns show: vexorctl is run over recorded results of the virtual
controller from which that one field is missing.

What the field was shown in becomes unknown, and nothing else changes. A field that is shown nowhere
stands in LEFT_OUT, with the reason. So a field that a record gets is noticed until it has a column or a
reason, and so is one that loses its column.

usage: vexorctl_unknown_test.py VEXORCTL SCRIPTED_LIBRARY_FOLDER [TEST]...
"""

import functools
import json
import re
import xml.etree.ElementTree as ElementTree

import vexorctl_machine
from vexorctl_machine import VexorctlCase
from vexorctl_script import Script

# Set from the command line.
SCRIPTED_LIBRARY = ""

COMMANDS = [
    "adapter list", "battery list", "config show", "counters show", "dg list", "disk blocks",
    "disk list", "disk remapped a0/pd3", "enclosure elements", "enclosure expanders",
    "enclosure list", "enclosure multipliers", "event list", "flash list", "task list",
    "user show", "vd list",
]

# What no field tells, but a row of events (vexorctl_facts_test.py).
TOLD_BY_EVENTS = {"task list": {"Left", "Rate", "Since"}, "vd list": {"Init", "Left", "Rate"}}

# Not taken away: how a page was asked for, which only says where the next one starts; and the version,
# which says whose codes these are (vexorctl_codes_test.py).
PAGE = "RequestHeader/"
VERSION = ("HX_API_Version", "RetVal")

# Why a field is shown by no command: by the reason, and by the function whose result has the field.
_LINK_OF_A_DEVICE = ("Link/Parent/EnclosureID", "Link/Parent/PhyCnt", "Link/Parent/SAS_Address",
                     "Link/Self/DevType", "Link/Self/PhyCnt", "Link/Self/PhyID")
_LINK = (*_LINK_OF_A_DEVICE, "Link/Parent/PhyID")
LEFT_OUT_BY_REASON = {
    "it repeats what was asked for": {
        "HX_Adapter_GetInfo": ("Count",),
        "HX_Adapter_GetConfig": ("Count",),
        "HX_ENC_GetElementInfo": ("Count",),
        "HX_ENC_GetElementConfig": ("Count",),
        "HX_PD_GetMBRInfo": ("MBRInfo/HDCount", "MBRInfo/HDIDs"),
        "HX_PD_GetRCT": ("HD_ID", "n", "s", "e"),
        "VX_HX_EVT_GetChangeCounters": ("RetVal",),
        "VX_HX_EVT_GetEvents": ("e",),
    },
    "the address shows it": {
        "HX_DG_GetInfo": ("DG_Info/AdapterID",),
        "HX_ENC_GetElementConfig": ("EncElement_Config/EnclosureID",),
        "HX_ENC_GetElementInfo": ("EncElementType_Info/EnclosureID",),
        "HX_ENC_GetEnclosureInfo": ("Enclosure_Info/AdapterID",
                                    "Enclosure_Info/Link/Self/EnclosureID"),
        "HX_LD_GetInfo": ("LDInfo/AdapterID",),
        "HX_PD_GetExpanderInfo": ("ExpanderInfo/AdapterID",),
        "HX_PD_GetFreeSpaceInfo": ("HD_Info/AdapterID",),
        "HX_PD_GetHDInfo_Ext": ("HD_Info/AdapterID",),
        "HX_PD_GetPMInfo": ("PM_Info/AdapterID",),
    },
    "another field that is shown tells the same": {
        "HX_Adapter_GetInfo": ("AdapterInfo/MaxHD",),
        "HX_DG_GetConfig": ("DG_Config/Name",),
        "HX_ENC_GetElementConfig": ("EncElement_Config/Status", "EncElement_Config/Type"),
        "HX_LD_GetConfig": ("LDConfig/CacheMode", "LDConfig/Name", "LDConfig/Status"),
        "HX_LD_GetInfo": ("LDInfo/BGAStatus",),
        "HX_LD_GetStatus": ("Status/Status",),
        "HX_PD_GetBGAStatus": ("HD_BGA_Status/Status",),
        "HX_PD_GetHDRaidStatus": ("Status/Status",),
    },
    "it says how a device is cabled, of which only the parent and the own address are shown": {
        "HX_ENC_GetEnclosureInfo": tuple(f"Enclosure_Info/{path}" for path in _LINK),
        "HX_PD_GetExpanderInfo": tuple(f"ExpanderInfo/{path}" for path in _LINK),
        "HX_PD_GetHDInfo_Ext": tuple(f"HD_Info/{path}" for path in _LINK_OF_A_DEVICE),
        "HX_PD_GetPMInfo": (*(f"PM_Info/{path}" for path in _LINK),
                            "PM_Info/Link/Self/EnclosureID", "PM_Info/Link/Self/SAS_Address"),
    },
    "it means nothing to whoever manages disks": {
        "HX_Adapter_GetInfo": tuple(f"AdapterInfo/PortSasAddress{port}" for port in range(8)),
        "HX_BLK_GetHDBlock": ("Info/Type",),
        "HX_DG_GetInfo": ("DG_Info/VDSlotCount", "DG_Info/VDSlotSize"),
        "HX_ENC_GetElementInfo": tuple(f"EncElementType_Info/{name}" for name in (
            "Character1", "HotSwap", "Mode", "Remind", "TempWarn")),
    },
}
LEFT_OUT = {(function, path) for functions in LEFT_OUT_BY_REASON.values()
            for function, paths in functions.items() for path in paths}


def paths_of(element, above=""):
    """The paths of an element's fields that hold a value, once each."""
    found = []
    for child in element:
        inner = (paths_of(child, f"{above}{child.tag}/") if len(child) else
                 [above + child.tag])
        found += [path for path in inner if path not in found]
    return found


def without(text, path):
    """The result without the elements of that path."""
    root = ElementTree.fromstring(text)
    *owners, name = path.split("/")
    parents = [root]
    for owner in owners:
        parents = [child for parent in parents for child in parent.findall(owner)]
    for parent in parents:
        for child in parent.findall(name):
            parent.remove(child)
    return ElementTree.tostring(root, encoding="unicode")


class Recording:
    """The results that commands get from the virtual controller, by function and adapter."""

    def __init__(self):
        self.results = {}
        self.functions = {}  # of each command: what it calls

    def record(self, case, command):
        log = case.root / "commands"
        ini = case.root / "vexorapi.ini"
        log.unlink(missing_ok=True)
        ini.write_text('<config><XmlWrapperLogConfig type="config" InLogEnable="1" '
                       f'OutLogEnable="0" Filename="{log}"/></config>')
        run = case.run_words(*command.split(), "-o", "json")
        case.assertEqual(run.stderr, "", command)
        ini.unlink()
        self.functions[command] = set()
        for text in re.findall(r"^XMLCmd = (.*)$", log.read_text(), re.MULTILINE):
            key = self._key(text)
            self.functions[command].add(key[0])
            # Of the events all are asked for last.
            if key not in self.results or key[0] == "VX_HX_EVT_GetEvents":
                self.results[key] = case.run_words("xml", stdin=text).stdout

    @staticmethod
    def _key(text):
        adapter = re.search(r"<AdapterID>(\d+)<", text)
        return re.match(r"<(\w+)", text)[1], int(adapter[1]) if adapter else None

    def paths(self):
        """Every (function, path) of a field."""
        found = []
        for (function, _), text in self.results.items():
            for path in paths_of(ElementTree.fromstring(text)):
                field = (function, path)
                if field not in found and field != VERSION and not path.startswith(PAGE):
                    found.append(field)
        return found


class BusyMachine(VexorctlCase):
    """The machine that is recorded: something goes on everywhere on it."""

    def setUp(self):
        """A sector is remapped, activities run on a disk, a virtual disk and a disk group, the
        battery is discharged, and there are events."""
        super().setUp()
        self.machine.hxsimctl("disk", "damage", "a0/pd3", "4096")
        for words in (["task", "start", "a0/pd3", "--kind", "media-patrol"],
                      ["battery", "power", "a0", "--action", "discharge"]):
            self.change(*words)
        self.machine.hxsimctl("clock", "advance", "20d")
        for words in (["task", "start", "a0/pd4", "--kind", "media-patrol"],
                      ["task", "start", "a1/vd0", "--kind", "check"],
                      ["dg", "migrate", "a0/dg0", "--raid", "6", "--to",
                       "a0/pd0,a0/pd1,a0/pd2,a0/pd3,a0/pd11"],
                      ["battery", "power", "a0", "--action", "discharge"]):
            self.change(*words)
        self.collect()

    def change(self, *words):
        run = self.run_words(*words, "--yes")
        self.assertEqual(run.returncode, 0, (words, run.stderr))


@functools.lru_cache(maxsize=None)
def recorded():
    """All results of the busy machine."""
    machine = BusyMachine("run_words")
    machine.setUp()
    recording = Recording()
    for command in [*COMMANDS, "check"]:
        recording.record(machine, command)
    machine.doCleanups()
    return recording


class Recorded(VexorctlCase):
    """vexorctl runs over the recorded results."""

    def setUp(self):
        super().setUp()
        self.recording = recorded()
        self.script = Script(self.root / "results")
        for (function, adapter), text in self.recording.results.items():
            self.script.whole(function, text, adapter)
        self.environment.update(self.script.environment(SCRIPTED_LIBRARY))

    def removed(self, function, path):
        """The field is not there while the block runs."""
        return _Removed(self, function, path)

    def shown(self, command):
        """What a command shows: its items in the list format, its errors, and its exit code."""
        run = self.run_words(*command.split(), "-o", "list")
        items = [dict(re.match(r"(.+?)  +(.*)", line).groups() for line in item.splitlines())
                 for item in run.stdout.split("\n\n") if item.strip()]
        if command in TOLD_BY_EVENTS:
            items = [{key: value for key, value in item.items()
                      if key not in TOLD_BY_EVENTS[command]} for item in items]
        return items, run.stderr, run.returncode


class _Removed:
    def __init__(self, case, function, path):
        self.case, self.function, self.path = case, function, path

    def __enter__(self):
        self._write(lambda text: without(text, self.path))

    def __exit__(self, *_):
        self._write(lambda text: text)

    def _write(self, change):
        for (function, adapter), text in self.case.recording.results.items():
            if function == self.function:
                self.case.script.whole(function, change(text), adapter)


class Fields(Recorded):
    def test_one_that_is_missing_is_unknown_where_it_was_shown(self):
        recording = self.recording
        whole = {command: self.shown(command) for command in COMMANDS}
        for command, (items, errors, code) in whole.items():
            self.assertEqual((errors, code), ("", 0), command)
            self.assertTrue(items, command)
            self.assertNotIn("?", [value for item in items for value in item.values()], command)
        not_shown = set()
        for function, path in recording.paths():
            is_shown = False
            for command in COMMANDS:
                if function not in recording.functions[command]:
                    continue
                with self.subTest(function=function, path=path, command=command):
                    with self.removed(function, path):
                        items, errors, code = self.shown(command)
                    if (items, errors, code) != whole[command]:
                        is_shown = True
                        self.expect_unknown(whole[command][0], items, errors, code)
            if not is_shown:
                not_shown.add((function, path))
        self.assertEqual(not_shown, LEFT_OUT)

    def expect_unknown(self, before, items, errors, code):
        """Where nothing is reported, values have become unknown and nothing else has happened."""
        if errors:
            self.assertNotEqual(code, 0)
            return
        self.assertEqual((len(items), code), (len(before), 0))
        for old, new in zip(before, items):
            for key, value in new.items():
                kept = ".*".join(re.escape(part) for part in value.split("?"))
                self.assertRegex(old[key], f"^{kept}$", key)

    def test_what_is_unknown_is_null_in_json_and_empty_in_csv(self):
        with self.removed("HX_LD_GetInfo", "LDInfo/Status"):
            words = ["vd", "list", "--columns", "address,state", "--no-header"]
            self.assertEqual(self.run_words(*words).stdout.splitlines()[0], "a0/vd0  ?")
            self.assertEqual(self.run_words(*words, "-o", "csv").stdout.splitlines()[0], "a0/vd0,")
            item = json.loads(self.run_words(*words, "-o", "jsonl").stdout.splitlines()[0])
            self.assertEqual(item, {"schema": "vexorctl/1", "command": "vd list", "partial": True,
                                    "address": "a0/vd0", "state": None})
            run = self.run_words(*words, "-o", "xml")
            self.assertIsNone(ElementTree.fromstring(run.stdout).find("item/state"))


# What check goes by. That a list's items have IDs and that it goes on to its end is not among it.
CHECKED = {
    ("HX_Adapter_GetInfo", "AdapterInfo/img_health"), ("HX_PD_GetHDInfo_Ext", "HD_Info/Status"),
    ("HX_PD_GetSmartStatus", "HD_SMART_Status/SmartThresholdExceeded"),
    ("HX_LD_GetInfo", "LDInfo/Status"), ("HX_DG_GetInfo", "DG_Info/Status"),
    ("HX_BBU_GetInfo", "BBU_Info/status"),
    ("HX_ENC_GetElementInfo", "EncElementType_Info/Status"),
}


class Check(Recorded):
    def setUp(self):
        super().setUp()
        self.whole = self.run_words("check")

    def test_what_it_did_not_see_is_not_well(self):
        noticed = set()
        for function, path in self.recording.paths():
            if function not in self.recording.functions["check"]:
                continue
            with self.subTest(function=function, path=path):
                with self.removed(function, path):
                    run = self.run_words("check")
                # What only the long output or the performance data show is left out there.
                if run.stdout.split(" | ")[0] == self.whole.stdout.split(" | ")[0]:
                    self.assertEqual(run.returncode, self.whole.returncode)
                    continue
                noticed.add((function, path))
                if run.returncode == 5:
                    continue
                self.assertIn(run.returncode, (2, 3), run.stdout)
                self.assertRegex(run.stdout, r"is not known|was left out|not tell|not say|not go")
        self.assertLessEqual(CHECKED, noticed)

    def test_every_list_that_cannot_be_read_is_told(self):
        for (function, adapter), text in self.recording.results.items():
            with self.subTest(function=function, adapter=adapter):
                self.script.whole(function, "<broken", adapter)
                run = self.run_words("check")
                self.script.whole(function, text, adapter)
                looks = function in self.recording.functions["check"]
                self.assertEqual(run.stdout != self.whole.stdout, looks, run.stdout)


class Changes(Recorded):
    """A command that sets several things at once sends back what it was not told to change. What it
    does not know it cannot send."""

    def expect_refused(self, function, path, *words):
        with self.removed(function, path), self.subTest(words=words, path=path):
            run = self.run_words(*words, "--yes")
            self.assertEqual(run.returncode, 1, run.stdout)
            self.assertRegex(run.stderr, r"cannot be read.*nothing was done|is not known.*nothing "
                                         r"was done|are not known; nothing was done")

    def test_what_would_be_overwritten_unseen_is_refused(self):
        for function, record, fields, words in (
            ("HX_LD_GetConfig", "LDConfig", ["AutoRebuildOn", "CacheMode", "Status"],
             ["vd", "set", "a0/vd2", "--name", "x"]),
            ("HX_LD_GetConfig", "LDConfig", ["Name"], ["vd", "set", "a0/vd2", "--cache", "none"]),
            ("HX_LD_GetInfo", "LDInfo", ["RaidMode", "Size", "StripeBlockSize"],
             ["vd", "modify", "a0/vd0", "--name", "x"]),
            ("HX_DG_GetConfig", "DG_Config", ["WriteCacheOn"], ["dg", "set", "a0/dg0", "--name",
                                                                "x"]),
            ("HX_DG_GetInfo", "DG_Info", ["PDIDs", "PDCount", "BlockSize"],
             ["dg", "modify", "a0/dg0", "--name", "x"]),
            ("HX_PD_GetConfig", "Config", ["SMARTOn", "Online", "DriveSpeed"],
             ["disk", "set", "a0/pd3", "--write-cache", "on"]),
            ("HX_Adapter_GetConfig", "AdapterInfo", ["AlarmOn", "ModuleConsolidate",
                                                     "port_phy_ctrl"],
             ["adapter", "set", "a0", "--copyback", "on"]),
            ("HX_BBU_GetInfo", "BBU_Info", ["temp_lowerbound", "volt_upperbound"],
             ["battery", "set", "a0", "--max-temperature", "50"]),
        ):
            for field in fields:
                self.expect_refused(function, f"{record}/{field}", *words)

    def test_a_disk_whose_boot_record_is_not_known_is_not_picked(self):
        with self.removed("HX_PD_GetMBRInfo", "MBRInfo/hasMBR"):
            run = self.run_words("vd", "create", "--adapter", "1", "--raid", "0", "--disks", "1")
        self.assertEqual(run.returncode, 1)
        self.assertIn("a1 has 0 free without a boot record", run.stderr)
        self.assertIn("may hold a boot record", run.stderr)


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL", "SCRIPTED_LIBRARY")

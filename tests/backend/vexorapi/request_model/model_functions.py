"""The functions as the model knows them: what each takes from a command, what it asks of the
controller, and what it answers.

Written from docs/xml-api.md and hxraid.h. The model answers a command with what vexorApi returns, the
document that it would write, and the calls that the controller would see.
"""

import re
import struct
import zlib
from xml.parsers import expat

from model_events import MOST_LISTED, text_of_event
from model_records import (LAYOUTS, Document, layout, open_pieces, scalar_pieces, struct_pieces,
                           write_event, write_record)

ALL_ADAPTERS = 255
NEW_ID = 65535
LIST_COMPLETE = 65535
TEXT_ROOM = 2047         # bytes of an element's text that are kept
HANDLED_LEVELS = 3       # below the root
MOST_DECLARATIONS = 256  # of a document type
REMAP_RECORDS = 150
PIECE = 32768
MOST_PIECES = 65536
MOST_PAGES = 65536

HEADER_FIELDS = ("version requestType startingIndexOrId numRequested numReturned "
                 "nextStartingIndex")
PHYSICAL = "Name RaidMode SubVDCount NumParityDisk StripeBlockSize Size BlockSize " \
           "InitializationOption"
DISK_GROUP = PHYSICAL + " PDCount PDIDs"
MAX_SIZE = "RaidMode HDCount RoundingScheme SubLDCount NumParityDisk StripeBlockSize CachePolicy " \
           "InitializationOption HDIDs Name Size"

# By function: the children that are numbers or texts of the request itself ("name:bits", or
# "name:text" with the room of a text that must not be cut), and the record whose fields the other
# children fill.
PARAMETERS = {
    "HX_API_Version": "",
    "HX_Adapter_GetCount": "",
    "HX_Adapter_GetInfo": "AdapterID:8",
    "HX_Adapter_SetConfig":
        "AdapterID:8 | Adapter_Config_V2 AlarmOn AutoRebuildOn BGARate PollSMARTStatus "
        "MediaPatrolRate CopyBack SyncRate InitRate RebuildRate MigrationRate CopybackRate "
        "InterruptCoalescing ModuleConsolidate v_atapi_disable port_phy_ctrl",
    "HX_Adapter_GetConfig": "AdapterID:8",
    "HX_AdapterMute": "AdapterID:8",
    "HX_LocateArrayDevice": "AdapterID:8 deviceType:8 deviceId:16 ledStatus:8",
    "HX_ENC_GetElementInfo": "AdapterID:8 ENC_ID:16",
    "HX_ENC_GetElementConfig": "AdapterID:8 ENC_ID:16",
    "HX_PD_GetRCT": "AdapterID:8 HD_ID:16 n:32 s:32 e:32",
    "HX_PD_SetConfig":
        "AdapterID:8 HD_ID:16 | HD_Config WriteCacheOn SMARTOn Online DriveSpeed HDID",
    "HX_PD_WipeHDMDD": "AdapterID:8 HD_ID:16 Force:8",
    "HX_PD_SetHDStatus": "AdapterID:8 HD_ID:16 Action:8",
    "HX_PD_FreeHD2GlobalSpare": "AdapterID:8 HD_ID:16",
    "HX_PD_Spare2FreeHD": "AdapterID:8 HD_ID:16",
    "HX_PD_FreeHD2DGSpare": "AdapterID:8 HD_ID:16 DG_ID:16",
    "HX_PD_StartMediaPatrol": "AdapterID:8 HD_ID:16",
    "HX_PD_StartDataScrub": "AdapterID:8 HD_ID:16",
    "HX_PD_BGAControl": "AdapterID:8 HD_ID:16 Action:8",
    "HX_PD_GetMBRInfo": "AdapterID:8 | HD_MBR_Info HDCount HDIDs",
    "HX_LD_GetTargetLDInfo": "AdapterID:8 LD_ID:16",
    "HX_DG_Create": "AdapterID:8 | CreateOrModify_DG_Param " + DISK_GROUP,
    "HX_DG_GetSizeOnly": "AdapterID:8 | CreateOrModify_DG_Param DGID " + DISK_GROUP,
    "HX_DG_Modify": "AdapterID:8 | CreateOrModify_DG_Param DGID " + DISK_GROUP,
    "HX_DG_Delete": "AdapterID:8 DG_ID:16",
    "HX_CreateOrModify_VD": "AdapterID:8 | CreateOrModify_VD_Param VDID DGID " + PHYSICAL,
    "HX_LD_DG_StartRebuild": "AdapterID:8 | LD_DG_Rebuild_Param ID RebuildType PDCount PDIDs",
    "HX_DG_StartMigration":
        "AdapterID:8 | CreateOrModify_DG_Param DGID RaidMode NumParityDisk PDCount PDIDs",
    "HX_DG_BGAControl": "AdapterID:8 DG_ID:16 Actions:8",
    "HX_DG_SetConfig": "AdapterID:8 DG_ID:16 | DG_Config DGID WriteCacheOn Name",
    "HX_LogonUser": "lpszUsername:text128 lpszDomain:text128 lpszPassword:text128",
    "HX_GetUserGroup": "lpszUsername:text128 lpszDomain:text128",
    "HX_GetUserName": "",
    "HX_Flash_Option": "Actions:8 AdapterID:8 Type:8 filepath:text256",
    "HX_Flash_Erase": "AdapterID:8 Page:8",
    "HX_BIOS_Version": "filepath:text256",
    "HX_BBU_GetInfo": "AdapterID:8",
    "HX_BBU_SetMaxCapacity": "maxCapacity:16 BBU_ID:8",
    "HX_BBU_ActRelearn": "AdapterID:8",
    "HX_BBU_SetThreshold":
        "AdapterID:8 tempLowerBound:16 tempUpperBound:16 volLowerBound:16 volUpperBound:16",
    "HX_BBU_ChangePower": "AdapterID:8 action:8",
    "HX_BBU_SetStatus": "AdapterID:8 status:8",
    "HX_LD_Delete": "AdapterID:8 LD_ID:16 deleteMBR:8",
    "HX_LD_Create": "AdapterID:8 | Create_LD_Param SectorCoefficient " + MAX_SIZE,
    "HX_LD_QuickCreate": "AdapterID:8 Type:8",
    "HX_LD_Create_OnDG":
        "AdapterID:8 | CreateOrModify_VD_Param DGID Name StripeBlockSize Size RoundingScheme "
        "CachePolicy DGSlotNum InitializationOption SectorCoefficient",
    "HX_LD_Modify_OnDG":
        "AdapterID:8 | CreateOrModify_VD_Param VDID DGID Name RaidMode SubVDCount NumParityDisk "
        "StripeBlockSize Size RoundingScheme CachePolicy InitializationOption SectorCoefficient "
        "BlockSize",
    "HX_LD_GetMaxSize": "AdapterID:8 | Create_LD_Param " + MAX_SIZE,
    "HX_LD_PauseAll": "AdapterID:8",
    "HX_LD_SetConfig":
        "AdapterID:8 LD_ID:16 | LD_Config CacheMode AutoRebuildOn Status LDID Name",
    "HX_LD_StartRebuild": "AdapterID:8 LD_ID:16 Rebuild_HD_ID:16",
    "HX_LD_StartConsistencyCheck": "AdapterID:8 LD_ID:16 Type:8",
    "HX_LD_StartINIT": "AdapterID:8 LD_ID:16 Init_Type:8",
    "HX_LD_StartMigration": "AdapterID:8 | Create_LD_Param LDID RaidMode HDCount HDIDs",
    "HX_LD_GetMigratedLdSize": "AdapterID:8 | Create_LD_Param LDID RaidMode HDCount HDIDs",
    "HX_LD_BGAControl": "AdapterID:8 LD_ID:16 Actions:8",
    "HX_LD_Import": "AdapterID:8 LD_ID:16",
    "VX_Module_GetInfo": "",
    "VX_HX_EVT_GetChangeCounters": "",
    "VX_HX_EVT_GetEvents": "n:32 s:32 e:32 Lang:16",
    "VX_HX_EVT_Reset": "",
}

# The lists: function, its element, the record of an item, the most items of a page, and how many
# bytes of the page are cleared before each call (0: all).
LISTS = {
    "HX_PD_GetHDInfo": ("HD_Info", "HD_Info", 128, 0),
    "HX_PD_GetHDInfo_Ext": ("HD_Info", "HD_Info", 128, 0),
    "HX_PD_GetExpanderInfo": ("ExpanderInfo", "Exp_Info", 16, 0),
    "HX_PD_GetPMInfo": ("PM_Info", "PM_Info", 8, 0),
    "HX_PD_GetFreeSpaceInfo": ("HD_Info", "HD_FreeSpaceInfo", 128, 0),
    "HX_PD_GetConfig": ("Config", "HD_Config", 128, 0),
    "HX_PD_GetBGAStatus": ("HD_BGA_Status", "HD_BGA_Status", 128, 0),
    "HX_PD_GetSmartStatus": ("HD_SMART_Status", "HD_SMART_Status", 128, 0),
    "HX_PD_GetHDRaidStatus": ("Status", "HD_RAID_Status", 128, 0),
    "HX_PD_GetSpareInfo": ("Status", "HD_RAID_Status", 128, 0),
    "HX_BLK_GetInfo": ("blockInfo", "Block_Info", 512, 0),
    "HX_BLK_GetHDBlock": ("Info", "HD_Block_Info", 512, 512),
    "HX_LD_GetInfo": ("LDInfo", "LD_Info", 32, 0),
    "HX_LD_GetStatus": ("Status", "LD_Status", 32, 0),
    "HX_LD_GetConfig": ("LDConfig", "LD_Config", 32, 0),
    "HX_DG_GetInfo": ("DG_Info", "DG_Info", 64, 0),
    "HX_DG_GetConfig": ("DG_Config", "DG_Config", 64, 0),
    "HX_ENC_GetEnclosureInfo": ("Enclosure_Info", "Enclosure_Info", 32, 0),
}
for _name in LISTS:
    PARAMETERS[_name] = "AdapterID:8 | RequestHeader " + HEADER_FIELDS
assert len(PARAMETERS) == 79

# The calls that go to the controller as they stand: the fields in order, "&" for the record.
PLAIN = {
    "HX_AdapterMute": "AdapterID",
    "HX_LocateArrayDevice": "AdapterID deviceType deviceId ledStatus",
    "HX_PD_SetConfig": "AdapterID HD_ID &",
    "HX_PD_WipeHDMDD": "AdapterID HD_ID Force",
    "HX_PD_SetHDStatus": "AdapterID HD_ID Action",
    "HX_PD_FreeHD2GlobalSpare": "AdapterID HD_ID",
    "HX_PD_Spare2FreeHD": "AdapterID HD_ID",
    "HX_PD_FreeHD2DGSpare": "AdapterID HD_ID DG_ID",
    "HX_PD_StartMediaPatrol": "AdapterID HD_ID",
    "HX_PD_StartDataScrub": "AdapterID HD_ID",
    "HX_PD_BGAControl": "AdapterID HD_ID Action",
    "HX_DG_Delete": "AdapterID DG_ID",
    "HX_CreateOrModify_VD": "AdapterID &",
    "HX_LD_DG_StartRebuild": "AdapterID &",
    "HX_DG_BGAControl": "AdapterID DG_ID Actions",
    "HX_BBU_ChangePower": "AdapterID action",
    "HX_BBU_SetStatus": "AdapterID status",
    "HX_LD_Delete": "AdapterID LD_ID deleteMBR",
    "HX_LD_Create": "AdapterID &",
    "HX_LD_PauseAll": "AdapterID",
    "HX_LD_SetConfig": "AdapterID LD_ID &",
    "HX_LD_StartRebuild": "AdapterID LD_ID Rebuild_HD_ID",
    "HX_LD_StartConsistencyCheck": "AdapterID LD_ID Type",
    "HX_LD_StartINIT": "AdapterID LD_ID Init_Type",
    "HX_LD_StartMigration": "AdapterID &",
    "HX_LD_BGAControl": "AdapterID LD_ID Actions",
    "HX_LD_Import": "AdapterID LD_ID",
    "HX_Flash_Erase": "AdapterID Page",
}


class Fields:
    """How the children of one function are stored."""

    def __init__(self, text):
        loose, _, inner = text.partition("|")
        self.loose = dict(word.split(":") for word in loose.split())
        words = inner.split()
        self.record = words[0] if words else None
        self.inner = words[1:]
        self.kinds = {name: self._kind(name) for name in (*self.loose, *self.inner)}

    def _kind(self, name):
        """("number", bits), ("text", bytes), ("whole", bytes) or ("numbers", how many)."""
        if name in self.loose:
            kind = self.loose[name]
            if name == "Lang":
                return "text", 16
            return ("whole", int(kind[4:])) if kind.startswith("text") else ("number", int(kind))
        _, count, letter = layout(self.record).places[name]
        if letter == "s":
            form = dict(word.split(":") for word in LAYOUTS[self.record].split())[name]
            return "text", int(form[:-1])
        return ("numbers", count) if count > 1 else ("number", 8 * struct.calcsize(letter))


FUNCTIONS = {name: Fields(text) for name, text in PARAMETERS.items()}

NUMBER = re.compile(rb"[0-9]+")


def number_in(digits, bits=32):
    """A number as the scanner reads it: all ones when it does not fit."""
    return min(int(digits), (1 << bits) - 1)


class Request:
    """The children of one command, as they were stored."""

    def __init__(self, name):
        self.name = name
        self.fields = FUNCTIONS[name]
        self.values = {}
        for field, kind in self.fields.loose.items():
            self.values[field] = b"" if kind.startswith("text") else 0
        self.shape = layout(self.fields.record) if self.fields.record else None
        self.record = bytearray(self.shape.size) if self.shape else None

    def __getattr__(self, name):
        return self.values[name]

    def store(self, name, text):
        if text == b"" or name == self.name:
            return
        if name in self.fields.loose:
            kind, size = self.fields.kinds[name]
            if kind == "whole":
                # None: longer than the field, which refuses it.
                self.values[name] = text if len(text) < size else None
            elif kind == "number":
                found = NUMBER.search(text)
                if found:
                    self.values[name] = number_in(found[0]) & (1 << size) - 1
        elif name in self.fields.inner:
            self._store_inner(name, text)

    def _store_inner(self, name, text):
        offset = self.shape.offsets[name]
        _, count, letter = self.shape.places[name]
        if letter == "s":
            size = self.fields.kinds[name][1]
            kept = text[:size - 1] + b"\0"
            self.record[offset:offset + len(kept)] = kept
            return
        bits = 8 * struct.calcsize(letter)
        for place, digits in enumerate(NUMBER.findall(text)[:count]):
            number = number_in(digits, max(bits, 32)) & (1 << bits) - 1
            struct.pack_into("<" + letter, self.record, offset + place * bits // 8, number)

    def get(self, field):
        return struct.unpack_from("<" + self.shape.places[field][2], self.record,
                                  self.shape.offsets[field])[0]

    def set(self, field, value):
        struct.pack_into("<" + self.shape.places[field][2], self.record,
                         self.shape.offsets[field], value)


# ---- Commands -----------------------------------------------------------------------------------


class Refused(Exception):
    """The text is not taken for a document."""


# The encodings that a document may name.
ENCODINGS = {"utf-8", "utf-16", "iso-8859-1", "us-ascii", "utf-16be", "utf-16le"}


class Parse:
    """One command: the request that it makes, or None, and whether it is well-formed."""

    def __init__(self, command):
        self.depth = 0
        self.text = bytearray()
        self.request = None
        self.declarations = 0
        parser = expat.ParserCreate()
        parser.buffer_text = False
        parser.StartElementHandler = self._start
        parser.EndElementHandler = self._end
        parser.CharacterDataHandler = self._data
        parser.XmlDeclHandler = self._declared
        parser.StartDoctypeDeclHandler = self._doctype
        self.parser = parser
        try:
            parser.Parse(command, True)
            self.well_formed = True
        except (expat.ExpatError, Refused):
            self.well_formed = False
        finally:
            self.parser = None

    def _declared(self, _version, encoding, _standalone):
        if encoding is not None and encoding.lower() not in ENCODINGS:
            raise Refused

    def _doctype(self, *_):
        self.parser.EntityDeclHandler = self._count
        self.parser.ElementDeclHandler = self._count
        self.parser.AttlistDeclHandler = self._count
        self.parser.NotationDeclHandler = self._count

    def _count(self, *_):
        self.declarations += 1
        if self.declarations > MOST_DECLARATIONS:
            raise Refused

    def _start(self, name, attributes):
        self.text.clear()
        if self.depth == 0 and attributes.get("type") == "function" and name in FUNCTIONS:
            self.request = Request(name)
        self.depth += 1

    def _end(self, name):
        self.depth -= 1
        if self.request and 1 <= self.depth <= HANDLED_LEVELS:
            self.request.store(name, bytes(self.text))

    def _data(self, text):
        room = TEXT_ROOM - len(self.text)
        if room > 0:
            self.text += text.encode()[:room]


# ---- The controller -----------------------------------------------------------------------------


class Controller:
    """Plays the answers of one request and notes its calls, as the driver does."""

    def __init__(self, answers):
        self.left = {}
        for name, code, parts in answers:
            self.left.setdefault(name, []).append((code, parts))
        self.lines = []

    def call(self, name, *arguments):
        """The code, and the parts that the answer writes."""
        self.lines.append(" ".join([name, *map(str, arguments)]))
        answers = self.left.get(name)
        return answers.pop(0) if answers else (0, None)

    def number(self, name, *arguments):
        return self.call(name, *arguments)[0]

    def sent(self, name, *arguments):
        """The same for a call that gets the last argument's bytes and may change them."""
        *numbers, record = arguments
        return self._changed(self.call(name, *numbers, record.hex()), record)

    @staticmethod
    def _changed(answer, record):
        code, parts = answer
        if parts:
            changed = parts[-1][:len(record)]
            record[:len(changed)] = changed
        return code

    def page(self, name, adapter, header, room):
        """A call for a page: header and room (bytearrays) are what the caller has."""
        size = layout(PAGES[name]).size
        requested, = struct.unpack_from("<H", header, 4)
        sum_of_room = zlib.crc32(memoryview(room)[:requested * size])
        code, parts = self.call(name, adapter, f"{header.hex()}:{sum_of_room}")
        if parts is None:
            struct.pack_into("<HH", header, 6, 0, LIST_COMPLETE)
        elif parts:
            header[:4], header[6:] = parts[0][:4], parts[0][6:16]
            items = parts[0][16:16 + requested * size]
            room[:len(items)] = items
        return code

    def adapter(self, adapter):
        """An Adapter_Info, zeros where the controller writes nothing."""
        info = bytearray(256)
        _, parts = self.call("HX_Adapter_GetInfo", adapter, "&", "&")
        if parts and len(parts) > 1:
            info[:len(parts[1])] = parts[1][:256]
        return info

    def calls(self):
        return "".join(line + "\n" for line in self.lines)


PAGES = {name: row[1] for name, row in LISTS.items() if name != "HX_PD_GetSpareInfo"}


# ---- What the functions do ----------------------------------------------------------------------


class Result:
    """The result of one function, as it is put together."""

    def __init__(self, name):
        self.name = name
        self.document = Document()
        self.document.pieces(open_pieces(0, name.encode(), b' type="function"', 1))

    def scalar(self, name, kind, value):
        self.document.scalar(1, name, kind, value)

    def record(self, record, element, data, offset=0):
        write_record(self.document, record, element, 1, data, offset)

    def close(self):
        self.document.pieces([b"</" + self.name.encode() + b">\n"])
        return self.document.bytes()


USER_GROUPS = {1: b"Administrator", 2: b"ValidUser"}


class Host:
    """What the library finds on its machine: the users, and the event service's version."""

    def __init__(self, users, administrators, service):
        self.users = users                    # by name: the password, or None: none is right
        self.administrators = administrators  # the listed members of the group root
        self.without_shadow = set()
        self.service = service                # version numbers

    def group_of(self, user):
        return 1 if user == b"root" or user in self.administrators else 2

    def log_on(self, user, password):
        if not user or user not in self.users or user in self.without_shadow:
            return 2, 3
        right = password is not None and self.users[user] == password
        return 0 if right else 3, self.group_of(user)

    def group(self, user):
        return self.group_of(user) if user and user in self.users else 3


class Model:
    """A process that serves commands."""

    def __init__(self, host, store, files):
        self.host = host
        self.store = store
        self.files = files  # in the folder where the library runs: name and bytes

    def answer(self, command, answers):
        """(well-formed, document or None, calls)"""
        parse = Parse(command)
        if not parse.well_formed:
            return False, None, ""
        if parse.request is None:
            return True, None, ""
        controller = Controller(answers)
        document = self.serve(parse.request, controller)
        return True, document, controller.calls()

    def serve(self, request, controller):
        name = request.name
        if name in LISTS:
            return collect(request, controller)
        result = Result(name)
        if name in PLAIN:
            result.scalar("RetVal", "U8", plain_call(request, controller))
        else:
            getattr(self, name)(request, controller, result)
        return result.close()

    # The library and its adapters

    def HX_API_Version(self, _request, controller, result):
        _, parts = controller.call("HX_API_Version")
        result.scalar("RetVal", "string", parts[0].split(b"\0", 1)[0][:127] if parts else b"")

    def HX_Adapter_GetCount(self, _request, controller, result):
        result.scalar("RetVal", "U8", controller.number("HX_Adapter_GetCount"))

    def _adapters(self, request, controller, result, record, element, follow, query):
        """One adapter, or all of them; query(adapter) returns code, count and the items' bytes."""
        size = layout(record).size
        items = bytearray(size * 513)
        if request.AdapterID != ALL_ADAPTERS:
            code, count, brought = query(request.AdapterID)
            items[:len(brought)] = brought
            total = count or 0
        else:
            code, total, adapter, count = 0, 0, 0, 0
            while adapter < controller.number("HX_Adapter_GetCount"):
                code, told, brought = query(adapter)
                count = count if told is None else told
                at = size * total if follow else 0
                items[at:at + len(brought)] = brought
                total = (total + count) & 255
                adapter = (adapter + 1) & 255
        result.scalar("RetVal", "U8", code)
        result.scalar("Count", "U8", total)
        for place in range(total):
            result.record(record, element, items, place * size)

    def HX_Adapter_GetInfo(self, request, controller, result):
        def query(adapter):
            code, parts = controller.call("HX_Adapter_GetInfo", adapter, "&", "&")
            return code, first_byte(parts, 0), part(parts, 1)[:256]
        self._adapters(request, controller, result, "Adapter_Info", "AdapterInfo", True, query)

    def HX_Adapter_GetConfig(self, request, controller, result):
        def query(adapter):
            code, parts = controller.call("HX_Adapter_GetConfig", adapter, "&", "&")
            return code, first_byte(parts, 0), part(parts, 1)[:32]
        self._adapters(request, controller, result, "Adapter_Config_V2", "AdapterInfo", False,
                       query)

    def HX_ENC_GetElementInfo(self, request, controller, result):
        self._elements(request, controller, result, "EncElementType_Info")

    def HX_ENC_GetElementConfig(self, request, controller, result):
        self._elements(request, controller, result, "EncElement_Config")

    def _elements(self, request, controller, result, record):
        def query(adapter):
            code, parts = controller.call(request.name, adapter, request.ENC_ID, "&", "&")
            return code, first_byte(parts, 1), part(parts, 0)[:255 * 16]
        self._adapters(request, controller, result, record, record, True, query)

    def HX_Adapter_SetConfig(self, request, controller, result):
        current = bytearray(32)
        _, parts = controller.call("HX_Adapter_GetConfig", request.AdapterID, "&", "&")
        brought = part(parts, 1)[:32]
        current[:len(brought)] = brought
        features = layout("Adapter_Info").field(controller.adapter(request.AdapterID), "Features")
        for bit, rate in ((0x01, "RebuildRate"), (0x02, "InitRate"), (0x04, "SyncRate"),
                          (0x08, "MigrationRate"), (0x10, "MediaPatrolRate"),
                          (0x40, "CopybackRate")):
            if not features & bit:
                request.set(rate, layout("Adapter_Config_V2").field(current, rate))
        result.scalar("RetVal", "U8", controller.sent(
            "HX_Adapter_SetConfig", request.AdapterID, request.record))

    # Disks

    def HX_PD_GetRCT(self, request, controller, result):
        first, number, last = request.s, request.n, request.e
        code, parts = controller.call("HX_PD_RCT_GetCount", request.AdapterID, request.HD_ID, "&")
        total = struct.unpack("<I", part(parts, 0))[0] if parts else 0
        records = bytearray(16 * REMAP_RECORDS)
        if code == 0:
            number = min(number, total, REMAP_RECORDS)
            if first + number > total:
                first = total - number
            if last > total:
                last = (total - 1) & 0xFFFFFFFF
            code, parts = controller.call("HX_PD_GetRCT", request.AdapterID, request.HD_ID, "&",
                                          total)
            table = bytearray(16 * total)
            brought = part(parts, 0)[:len(table)]
            table[:len(brought)] = brought
            if code == 0:
                records[:16 * number] = table[16 * first:16 * (first + number)]
        result.scalar("RetVal", "U8", code)
        result.scalar("HD_ID", "U16", request.HD_ID)
        for name, value in (("Count", total), ("n", number), ("s", first), ("e", last)):
            result.scalar(name, "U32", value)
        for place in range(min(number, REMAP_RECORDS)):
            result.record("RCT_Record", "Record", records, 16 * place)

    def HX_PD_GetMBRInfo(self, request, controller, result):
        result.scalar("RetVal", "U8", controller.sent(
            "HX_PD_GetMBRInfo", request.AdapterID, request.record))
        result.record("HD_MBR_Info", "MBRInfo", request.record)

    # Virtual disks

    def HX_LD_GetTargetLDInfo(self, request, controller, result):
        code, parts = controller.call("HX_LD_GetTargetLDInfo", request.AdapterID, request.LD_ID,
                                      "&")
        info = bytearray(312)
        brought = part(parts, 0)[:312]
        info[:len(brought)] = brought
        result.scalar("RetVal", "U8", code)
        result.record("LD_Info", "LDInfo", info)

    def HX_LD_GetMaxSize(self, request, controller, result):
        result.scalar("RetVal", "U8", controller.sent(
            request.name, request.AdapterID, request.record))
        result.record("Create_LD_Param", "CreateLDParam", request.record)

    HX_LD_GetMigratedLdSize = HX_LD_GetMaxSize

    def HX_LD_QuickCreate(self, request, controller, result):
        result.scalar("RetVal", "U8", quick_create(request.AdapterID, request.Type, controller))

    # Disk groups

    def HX_DG_Create(self, request, controller, result):
        request.set("DGID", NEW_ID)
        self._disk_group(request, controller, result, 0)
        result.record("DG_Create", "CreateOrModifyDGParam", request.record)

    def HX_DG_GetSizeOnly(self, request, controller, result):
        self._disk_group(request, controller, result, 1)
        result.record("DG_Size", "CreateOrModify_DG_Param", request.record)

    def HX_DG_Modify(self, request, controller, result):
        self._disk_group(request, controller, result, 0)

    @staticmethod
    def _disk_group(request, controller, result, size_only):
        answer = controller.call("HX_CreateOrModify_DG", request.AdapterID, request.record.hex(),
                                 size_only)
        result.scalar("RetVal", "U8", controller._changed(answer, request.record))

    @staticmethod
    def _read_group(request, controller):
        header = bytearray(struct.pack("<BBHHHH6x", 0, 2, request.get("DGID"), 1, 0, 0))
        group = bytearray(688)
        controller.page("HX_DG_GetInfo", request.AdapterID, header, group)
        return group

    def HX_DG_StartMigration(self, request, controller, result):
        group = self._read_group(request, controller)
        for name in ("BlockSize", "StripeBlockSize"):
            request.set(name, layout("DG_Info").field(group, name))
        result.scalar("RetVal", "U8", controller.sent(
            request.name, request.AdapterID, request.record))

    def HX_LD_Create_OnDG(self, request, controller, result):
        group = self._read_group(request, controller)
        request.set("VDID", NEW_ID)
        for name in ("RaidMode", "NumParityDisk", "BlockSize", "SubVDCount"):
            request.set(name, layout("DG_Info").field(group, name))
        if request.get("StripeBlockSize") == 0:
            request.set("StripeBlockSize", layout("DG_Info").field(group, "StripeBlockSize"))
        self.HX_LD_Modify_OnDG(request, controller, result)

    def HX_LD_Modify_OnDG(self, request, controller, result):
        result.scalar("RetVal", "U8", controller.sent(
            "HX_CreateOrModify_VD", request.AdapterID, request.record))

    def HX_DG_SetConfig(self, request, controller, result):
        header = bytearray(struct.pack("<BBHHHH6x", 0, 2, request.DG_ID, 1, 0, 0))
        code = controller.page("HX_DG_GetConfig", request.AdapterID, header, bytearray(32))
        if code != 0:
            result.scalar("RetVal", "U8", 1)
            return
        result.scalar("RetVal", "U8", controller.sent(
            "HX_DG_SetConfig", request.AdapterID, request.DG_ID, request.record))

    # Users

    def HX_LogonUser(self, request, _controller, result):
        code, group = self.host.log_on(request.lpszUsername, request.lpszPassword)
        self._group(result, code, group)

    def HX_GetUserGroup(self, request, _controller, result):
        self._group(result, 0, self.host.group(request.lpszUsername))

    @staticmethod
    def _group(result, code, group):
        result.scalar("RetVal", "U8", code)
        result.scalar("UserGroup", "string", USER_GROUPS.get(group, b"UnknownUser"))

    def HX_GetUserName(self, _request, _controller, result):
        result.scalar("RetVal", "U8", 0)
        result.scalar("UserName", "string", b"root")
        result.scalar("DomainName", "string", b"")

    # Flash and battery

    def HX_Flash_Option(self, request, controller, result):
        result.scalar("RetVal", "U8", self._flash(request, controller))

    def _flash(self, request, controller):
        if request.filepath is None:
            return 1
        path = request.filepath.decode()
        if request.Actions == 15:
            return self._send(request, controller, path)
        if request.Actions == 240:
            return self._receive(request, controller, path)
        return 0

    def _send(self, request, controller, path):
        if path not in self.files:
            return 1
        image = bytes(self.files[path])
        for number in range(MOST_PIECES):
            data = image[number * PIECE:(number + 1) * PIECE]
            if not data:
                return 1
            last = 1 if (number + 1) * PIECE >= len(image) else 0
            code = controller.number("HX_Flash_Bin", request.AdapterID, 15, request.Type,
                                     f"{number}/{last}/{len(data)}/{zlib.crc32(data)}")
            if code != 0 or last:
                return code
        return 1

    def _receive(self, request, controller, path):
        if not path or "/" in path:
            return 1  # there are no other folders
        # The file is not cut: what it held beyond the image stays.
        image = self.files.setdefault(path, bytearray())
        at = 0
        for number in range(MOST_PIECES):
            code, parts = controller.call("HX_Flash_Bin", request.AdapterID, 240, request.Type,
                                          f"{number}/0/0/0")
            if code != 0:
                return code
            piece = bytearray(12 + PIECE)
            brought = part(parts, 0)[:len(piece)]
            piece[:len(brought)] = brought
            length = min(struct.unpack_from("<I", piece)[0], PIECE)
            image[at:at + length] = piece[12:12 + length]
            at += length
            if piece[6] != 0:
                return code
        return 1

    def HX_BIOS_Version(self, request, _controller, result):
        path = (request.filepath or b"").decode()
        header = self.files.get(path, b"")[:64]
        code, version, identifiers = 1, (0, 0, 0, 0), (0, 0)
        if len(header) == 64:
            code = 0
            identifiers = struct.unpack_from("<HH", header, 32)
            if header[6] < ord("0"):
                version = struct.unpack_from("<HHHH", header, 6)
            else:
                version = tuple(value & 0xFFFF for value in (
                    header[6] - 48, header[8] - 48, header[10] - 48,
                    10 * header[12] + header[13] - 528))
        result.scalar("RetVal", "U8", code)
        inner = []
        for name, value in zip(("VerMajor", "VerMinor", "VerOEM", "VerBuild"), version):
            inner += scalar_pieces(3, name, "U16", b"%d" % value)
        whole = struct_pieces(2, "BIOSVersion", "Version_Info", inner)
        for name, value in zip(("VenID", "DevID"), identifiers):
            whole += scalar_pieces(2, name, "U16", b"%x" % value)
        result.document.pieces(struct_pieces(1, "BIOSInfo", "VX_BIOS_Version", whole))

    def HX_BBU_GetInfo(self, request, controller, result):
        code, parts = controller.call("HX_BBU_GetInfo", request.AdapterID, "&")
        info = bytearray(64)
        brought = part(parts, 0)[:64]
        info[:len(brought)] = brought
        result.scalar("RetVal", "U8", code)
        result.record("BBU_Info", "BBU_Info", info)

    def HX_BBU_SetMaxCapacity(self, _request, _controller, result):
        result.scalar("RetVal", "U8", 0)

    def HX_BBU_ActRelearn(self, request, controller, result):
        result.scalar("RetVal", "U8", controller.number(
            "HX_BBU_ChangePower", request.AdapterID, 0))

    def HX_BBU_SetThreshold(self, request, controller, result):
        controller.call(request.name, request.AdapterID, 1, request.tempLowerBound,
                        request.tempUpperBound)
        result.scalar("RetVal", "U8", controller.number(
            request.name, request.AdapterID, 2, request.volLowerBound, request.volUpperBound))

    # The library's own

    def VX_Module_GetInfo(self, _request, _controller, result):
        result.scalar("RetVal", "U8", 0)
        for module, version in (("product", (1, 0, 0, 16)), ("php_vexorapi", (1, 0, 0, 14)),
                                ("vexorapi", (1, 2, 0, 2)), ("hxraidsvc", self.host.service)):
            inner = []
            for name, value in zip(("Major", "Minor", "OEM", "Build"), version):
                inner += scalar_pieces(2, name, "U32", b"%d" % value)
            result.document.pieces(struct_pieces(1, module, "VX_VER_INFO", inner))

    def VX_HX_EVT_GetChangeCounters(self, _request, _controller, result):
        result.scalar("RetVal", "U8", 1)
        result.record("ChangeCounters", "ChangeCounters", self.store.change_counters())

    def VX_HX_EVT_GetEvents(self, request, _controller, result):
        asked = request.n
        number, first, last, events = self.store.query(min(asked, MOST_LISTED), request.s,
                                                       request.e)
        result.scalar("RetVal", "U8", 0)
        for name, value in (("n", number), ("s", first), ("e", last)):
            result.scalar(name, "U32", value)
        if asked != 0:
            for event in events:
                write_event(result.document, event, text_of_event(event))

    def VX_HX_EVT_Reset(self, _request, _controller, _result):
        self.store.reset()


def part(parts, place):
    return parts[place] if parts and place < len(parts) else b""


def first_byte(parts, place):
    """A count that an answer writes, None when it writes none."""
    found = part(parts, place)
    return found[0] if found else None


def plain_call(request, controller):
    arguments = []
    for name in PLAIN[request.name].split():
        arguments.append(request.record if name == "&" else request.values[name])
    if request.record is None:
        return controller.number(request.name, *arguments)
    return controller.sent(request.name, *arguments)


# ---- Lists --------------------------------------------------------------------------------------


def as_signed16(number):
    return number - 65536 if number >= 32768 else number


def collect(request, controller):
    element, record, limit, cleared = LISTS[request.name]
    size = layout(record).size
    header = request.record
    requested = request.get("numRequested")
    kibibytes = 0
    if request.AdapterID != ALL_ADAPTERS:
        info = controller.adapter(request.AdapterID)
        kibibytes = layout("Adapter_Info").field(info, "MaxBufferSize")
    page = (kibibytes * 1024 // size if kibibytes else limit) & 0xFFFF
    request.set("numRequested", min(requested, page, limit))
    room = bytearray(limit * size)
    items = bytearray()
    collected, wanted, code = 0, as_signed16(requested), 0
    while request.get("nextStartingIndex") != LIST_COMPLETE and wanted >= 1:
        blank = cleared or len(room)
        room[:blank] = bytes(blank)
        code = fetch(request, controller, header, room)
        if code != 0:
            break
        returned = request.get("numReturned")
        if returned == 0 or returned > wanted or returned > limit:
            break
        items += room[:returned * size]
        collected += returned
        wanted -= returned
        if request.get("nextStartingIndex") != LIST_COMPLETE:
            request.set("numRequested", min(requested - collected, page, limit))
        request.set("startingIndexOrId", request.get("nextStartingIndex"))
    request.set("numReturned", collected)
    request.set("numRequested", requested)
    result = Result(request.name)
    result.scalar("RetVal", "U8", code)
    result.record("RequestHeader", "RequestHeader", header)
    for place in range(collected):
        result.record(record, element, items, place * size)
    return result.close()


def fetch(request, controller, header, room):
    name = request.name
    if name == "HX_PD_GetSpareInfo":
        name = "HX_PD_GetHDRaidStatus"
    if name == "HX_PD_GetHDInfo":
        code = controller.page("HX_PD_GetHDInfo_Ext", request.AdapterID, header, room)
        if code == 0:
            return code
    return controller.page(name, request.AdapterID, header, room)


# ---- Quick creation -----------------------------------------------------------------------------

# The best level first: bit of LogicalDriverMode, level, fewest disks, and which numbers it takes.
LEVELS = (
    (0x0100, 0x60, 6, "even"), (0x0040, 0x50, 6, "even"), (0x0004, 0x10, 4, "even"),
    (0x0020, 0x06, 3, "any"), (0x0008, 0x11, 3, "odd"), (0x0010, 0x05, 3, "any"),
    (0x0002, 0x01, 2, "exact"), (0x0001, 0x00, 1, "any"),
)


def quick_create(adapter, kind, controller):
    header = bytearray(struct.pack("<BBHHHH6x", 0, 1, 0, 128, 0, 0))
    room = bytearray(128 * 8)
    controller.page("HX_PD_GetHDRaidStatus", adapter, header, room)
    returned = min(struct.unpack_from("<H", header, 6)[0], 128)
    disks = []
    for place in range(returned):
        disk, status = struct.unpack_from("<H2xB", room, 8 * place)
        if not status & (0x04 | 0x08 | 0x40 | 0x80) and is_free(adapter, disk, controller):
            disks.append(disk)
    mode = layout("Adapter_Info").field(controller.adapter(adapter), "LogicalDriverMode")
    count, level = choose_level(mode, kind, len(disks))
    param = Request("HX_LD_Create")
    for name, value in (("StripeBlockSize", 64), ("CachePolicy", 4), ("SectorCoefficient", 1),
                        ("HDCount", count), ("RaidMode", level),
                        ("NumParityDisk", 4 if level == 0x60 else 2)):
        param.set(name, value)
    param.store("Name", b"NEW_VD")
    if disks:
        param.store("HDIDs", b" ".join(b"%d" % disk for disk in disks))
    return controller.sent("HX_LD_Create", adapter, param.record)


def choose_level(mode, kind, disks):
    """How many disks are taken, and the level."""
    if kind and disks >= 2:
        for bit, level, fewest, takes in LEVELS:
            if not mode & bit or disks < fewest:
                continue
            if takes == "exact":
                return fewest, level
            if takes == "any" or (disks % 2 == 1) == (takes == "odd"):
                return disks, level
    return disks, 0


def is_free(adapter, disk, controller):
    header = bytearray(struct.pack("<BBHHHH6x", 0, 1, 0, 512, 0, 0))
    room = bytearray(512 * 32)
    for _ in range(MOST_PAGES):
        room[:] = bytes(len(room))
        status = controller.page("HX_BLK_GetInfo", adapter, header, room)
        returned, following = struct.unpack_from("<HH", header, 6)
        if status == 0:
            for place in range(min(returned, 512)):
                found, owner = struct.unpack_from("<H2xH", room, 32 * place + 2)
                if found == disk and owner != 255:
                    status = 73
                    break
        struct.pack_into("<H", header, 2, following)
        if following == LIST_COMPLETE:
            break
    if controller.number("HX_DiskHasOS", adapter, 1, 1, disk) != 0:
        status = 159
    return status == 0

# Written by the program tools/xmlapi from the library's rows: change those, then run
# `xmlapi docs`. A test fails when this file is out of date.
"""The functions of the library, under their names.

A result is a named tuple; a list in it is a tuple of records. "Codes" name a table of the XML
interface's reference, docs/xml-api.md.
"""

from __future__ import annotations

from collections.abc import Sequence
from typing import NamedTuple

from . import records
from ._shapes import PAGE, Asking, Function, Kind, Parameter, Shape, each, number, text


class HX_API_Version_Result(NamedTuple):
    """What HX_API_Version answers.

    RetVal: the version of the controller library; text
    """

    RetVal: str


HX_API_Version_Result_Shape = Shape(HX_API_Version_Result, (
    ("RetVal", text),
))


class HX_Adapter_GetCount_Result(NamedTuple):
    """What HX_Adapter_GetCount answers.

    RetVal: how many adapters there are; no code; 0 to 255; they are numbered from 0 (U8)
    """

    RetVal: int


HX_Adapter_GetCount_Result_Shape = Shape(HX_Adapter_GetCount_Result, (
    ("RetVal", number),
))


class HX_Adapter_GetInfo_Result(NamedTuple):
    """What HX_Adapter_GetInfo answers.

    Count: how many records follow; 0 to 255 (U8)
    AdapterInfo: an adapter
    """

    Count: int
    AdapterInfo: tuple[records.Adapter_Info, ...]


HX_Adapter_GetInfo_Result_Shape = Shape(HX_Adapter_GetInfo_Result, (
    ("Count", number),
    ("AdapterInfo", each(records.Adapter_Info_Shape)),
))


class HX_Adapter_GetConfig_Result(NamedTuple):
    """What HX_Adapter_GetConfig answers.

    Count: how many records follow; 0 to 255 (U8)
    AdapterInfo: the settings of an adapter
    """

    Count: int
    AdapterInfo: tuple[records.Adapter_Config_V2, ...]


HX_Adapter_GetConfig_Result_Shape = Shape(HX_Adapter_GetConfig_Result, (
    ("Count", number),
    ("AdapterInfo", each(records.Adapter_Config_V2_Shape)),
))


class HX_PD_GetHDInfo_Result(NamedTuple):
    """What HX_PD_GetHDInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    HD_Info: a disk
    """

    RequestHeader: records.RequestHeader
    HD_Info: tuple[records.HD_Info, ...]

    @property
    def records(self) -> tuple[records.HD_Info, ...]:
        """The entries of this page."""
        return self.HD_Info


HX_PD_GetHDInfo_Result_Shape = Shape(HX_PD_GetHDInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("HD_Info", each(records.HD_Info_Shape)),
))


class HX_PD_GetHDInfo_Ext_Result(NamedTuple):
    """What HX_PD_GetHDInfo_Ext answers.

    RequestHeader: how the list was asked for, and where it goes on
    HD_Info: a disk
    """

    RequestHeader: records.RequestHeader
    HD_Info: tuple[records.HD_Info, ...]

    @property
    def records(self) -> tuple[records.HD_Info, ...]:
        """The entries of this page."""
        return self.HD_Info


HX_PD_GetHDInfo_Ext_Result_Shape = Shape(HX_PD_GetHDInfo_Ext_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("HD_Info", each(records.HD_Info_Shape)),
))


class HX_PD_GetExpanderInfo_Result(NamedTuple):
    """What HX_PD_GetExpanderInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    ExpanderInfo: an expander
    """

    RequestHeader: records.RequestHeader
    ExpanderInfo: tuple[records.Exp_Info, ...]

    @property
    def records(self) -> tuple[records.Exp_Info, ...]:
        """The entries of this page."""
        return self.ExpanderInfo


HX_PD_GetExpanderInfo_Result_Shape = Shape(HX_PD_GetExpanderInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("ExpanderInfo", each(records.Exp_Info_Shape)),
))


class HX_PD_GetPMInfo_Result(NamedTuple):
    """What HX_PD_GetPMInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    PM_Info: a SATA port multiplier
    """

    RequestHeader: records.RequestHeader
    PM_Info: tuple[records.PM_Info, ...]

    @property
    def records(self) -> tuple[records.PM_Info, ...]:
        """The entries of this page."""
        return self.PM_Info


HX_PD_GetPMInfo_Result_Shape = Shape(HX_PD_GetPMInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("PM_Info", each(records.PM_Info_Shape)),
))


class HX_PD_GetFreeSpaceInfo_Result(NamedTuple):
    """What HX_PD_GetFreeSpaceInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    HD_Info: what is left of a disk
    """

    RequestHeader: records.RequestHeader
    HD_Info: tuple[records.HD_FreeSpaceInfo, ...]

    @property
    def records(self) -> tuple[records.HD_FreeSpaceInfo, ...]:
        """The entries of this page."""
        return self.HD_Info


HX_PD_GetFreeSpaceInfo_Result_Shape = Shape(HX_PD_GetFreeSpaceInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("HD_Info", each(records.HD_FreeSpaceInfo_Shape)),
))


class HX_PD_GetConfig_Result(NamedTuple):
    """What HX_PD_GetConfig answers.

    RequestHeader: how the list was asked for, and where it goes on
    Config: the settings of a disk
    """

    RequestHeader: records.RequestHeader
    Config: tuple[records.HD_Config, ...]

    @property
    def records(self) -> tuple[records.HD_Config, ...]:
        """The entries of this page."""
        return self.Config


HX_PD_GetConfig_Result_Shape = Shape(HX_PD_GetConfig_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("Config", each(records.HD_Config_Shape)),
))


class HX_PD_GetSmartStatus_Result(NamedTuple):
    """What HX_PD_GetSmartStatus answers.

    RequestHeader: how the list was asked for, and where it goes on
    HD_SMART_Status: the SMART state of a disk
    """

    RequestHeader: records.RequestHeader
    HD_SMART_Status: tuple[records.HD_SMART_Status, ...]

    @property
    def records(self) -> tuple[records.HD_SMART_Status, ...]:
        """The entries of this page."""
        return self.HD_SMART_Status


HX_PD_GetSmartStatus_Result_Shape = Shape(HX_PD_GetSmartStatus_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("HD_SMART_Status", each(records.HD_SMART_Status_Shape)),
))


class HX_PD_GetRCT_Result(NamedTuple):
    """What HX_PD_GetRCT answers.

    HD_ID: the disk; an ID, 0 to 65534 (U16)
    Count: how many entries the disk's remap table has; entries (U32)
    n: how many entries are wanted; in the result, how many follow; 0 to 150 (U32)
    s: the first entry, counted from 0; earlier where fewer than n follow it; an index (U32)
    e: the last entry; n and s decide what is listed; an index (U32)
    Record: a run of remapped sectors
    """

    HD_ID: int
    Count: int
    n: int
    s: int
    e: int
    Record: tuple[records.RCT_Record, ...]


HX_PD_GetRCT_Result_Shape = Shape(HX_PD_GetRCT_Result, (
    ("HD_ID", number),
    ("Count", number),
    ("n", number),
    ("s", number),
    ("e", number),
    ("Record", each(records.RCT_Record_Shape)),
))


class HX_ENC_GetEnclosureInfo_Result(NamedTuple):
    """What HX_ENC_GetEnclosureInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    Enclosure_Info: an enclosure
    """

    RequestHeader: records.RequestHeader
    Enclosure_Info: tuple[records.Enclosure_Info, ...]

    @property
    def records(self) -> tuple[records.Enclosure_Info, ...]:
        """The entries of this page."""
        return self.Enclosure_Info


HX_ENC_GetEnclosureInfo_Result_Shape = Shape(HX_ENC_GetEnclosureInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("Enclosure_Info", each(records.Enclosure_Info_Shape)),
))


class HX_ENC_GetElementInfo_Result(NamedTuple):
    """What HX_ENC_GetElementInfo answers.

    Count: how many records follow; 0 to 255 (U8)
    EncElementType_Info: the state of an element
    """

    Count: int
    EncElementType_Info: tuple[records.EncElementType_Info, ...]


HX_ENC_GetElementInfo_Result_Shape = Shape(HX_ENC_GetElementInfo_Result, (
    ("Count", number),
    ("EncElementType_Info", each(records.EncElementType_Info_Shape)),
))


class HX_ENC_GetElementConfig_Result(NamedTuple):
    """What HX_ENC_GetElementConfig answers.

    Count: how many records follow; 0 to 255 (U8)
    EncElement_Config: the thresholds of an element
    """

    Count: int
    EncElement_Config: tuple[records.EncElement_Config, ...]


HX_ENC_GetElementConfig_Result_Shape = Shape(HX_ENC_GetElementConfig_Result, (
    ("Count", number),
    ("EncElement_Config", each(records.EncElement_Config_Shape)),
))


class HX_PD_GetHDRaidStatus_Result(NamedTuple):
    """What HX_PD_GetHDRaidStatus answers.

    RequestHeader: how the list was asked for, and where it goes on
    Status: the part that a disk plays
    """

    RequestHeader: records.RequestHeader
    Status: tuple[records.HD_RAID_Status, ...]

    @property
    def records(self) -> tuple[records.HD_RAID_Status, ...]:
        """The entries of this page."""
        return self.Status


HX_PD_GetHDRaidStatus_Result_Shape = Shape(HX_PD_GetHDRaidStatus_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("Status", each(records.HD_RAID_Status_Shape)),
))


class HX_PD_GetMBRInfo_Result(NamedTuple):
    """What HX_PD_GetMBRInfo answers.

    MBRInfo: which of the disks have a master boot record
    """

    MBRInfo: records.HD_MBR_Info


HX_PD_GetMBRInfo_Result_Shape = Shape(HX_PD_GetMBRInfo_Result, (
    ("MBRInfo", records.HD_MBR_Info_Shape.read),
))


class HX_BLK_GetInfo_Result(NamedTuple):
    """What HX_BLK_GetInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    blockInfo: a block: a run of sectors of one disk
    """

    RequestHeader: records.RequestHeader
    blockInfo: tuple[records.Block_Info, ...]

    @property
    def records(self) -> tuple[records.Block_Info, ...]:
        """The entries of this page."""
        return self.blockInfo


HX_BLK_GetInfo_Result_Shape = Shape(HX_BLK_GetInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("blockInfo", each(records.Block_Info_Shape)),
))


class HX_BLK_GetHDBlock_Result(NamedTuple):
    """What HX_BLK_GetHDBlock answers.

    RequestHeader: how the list was asked for, and where it goes on
    Info: the blocks of a disk
    """

    RequestHeader: records.RequestHeader
    Info: tuple[records.HD_Block_Info, ...]

    @property
    def records(self) -> tuple[records.HD_Block_Info, ...]:
        """The entries of this page."""
        return self.Info


HX_BLK_GetHDBlock_Result_Shape = Shape(HX_BLK_GetHDBlock_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("Info", each(records.HD_Block_Info_Shape)),
))


class HX_LD_GetInfo_Result(NamedTuple):
    """What HX_LD_GetInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    LDInfo: a virtual disk
    """

    RequestHeader: records.RequestHeader
    LDInfo: tuple[records.LD_Info, ...]

    @property
    def records(self) -> tuple[records.LD_Info, ...]:
        """The entries of this page."""
        return self.LDInfo


HX_LD_GetInfo_Result_Shape = Shape(HX_LD_GetInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("LDInfo", each(records.LD_Info_Shape)),
))


class HX_LD_GetTargetLDInfo_Result(NamedTuple):
    """What HX_LD_GetTargetLDInfo answers.

    LDInfo: a virtual disk
    """

    LDInfo: records.LD_Info


HX_LD_GetTargetLDInfo_Result_Shape = Shape(HX_LD_GetTargetLDInfo_Result, (
    ("LDInfo", records.LD_Info_Shape.read),
))


class HX_LD_GetMaxSize_Result(NamedTuple):
    """What HX_LD_GetMaxSize answers.

    CreateLDParam: the command as it was carried out, with the size
    """

    CreateLDParam: records.Create_LD_Param


HX_LD_GetMaxSize_Result_Shape = Shape(HX_LD_GetMaxSize_Result, (
    ("CreateLDParam", records.Create_LD_Param_Shape.read),
))


class HX_LD_GetStatus_Result(NamedTuple):
    """What HX_LD_GetStatus answers.

    RequestHeader: how the list was asked for, and where it goes on
    Status: what a virtual disk is doing
    """

    RequestHeader: records.RequestHeader
    Status: tuple[records.LD_Status, ...]

    @property
    def records(self) -> tuple[records.LD_Status, ...]:
        """The entries of this page."""
        return self.Status


HX_LD_GetStatus_Result_Shape = Shape(HX_LD_GetStatus_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("Status", each(records.LD_Status_Shape)),
))


class HX_LD_GetConfig_Result(NamedTuple):
    """What HX_LD_GetConfig answers.

    RequestHeader: how the list was asked for, and where it goes on
    LDConfig: the settings of a virtual disk
    """

    RequestHeader: records.RequestHeader
    LDConfig: tuple[records.LD_Config, ...]

    @property
    def records(self) -> tuple[records.LD_Config, ...]:
        """The entries of this page."""
        return self.LDConfig


HX_LD_GetConfig_Result_Shape = Shape(HX_LD_GetConfig_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("LDConfig", each(records.LD_Config_Shape)),
))


class HX_LD_GetMigratedLdSize_Result(NamedTuple):
    """What HX_LD_GetMigratedLdSize answers.

    CreateLDParam: the command as it was carried out, with the size
    """

    CreateLDParam: records.Create_LD_Param


HX_LD_GetMigratedLdSize_Result_Shape = Shape(HX_LD_GetMigratedLdSize_Result, (
    ("CreateLDParam", records.Create_LD_Param_Shape.read),
))


class HX_LogonUser_Result(NamedTuple):
    """What HX_LogonUser answers.

    RetVal: whether the password is right; 0 right, 2 no such user in the shadow file, 3 wrong (U8)
    UserGroup: what the user may do: root and the members of the group root administrate;
      Administrator, ValidUser or UnknownUser
    """

    RetVal: int
    UserGroup: str


HX_LogonUser_Result_Shape = Shape(HX_LogonUser_Result, (
    ("RetVal", number),
    ("UserGroup", text),
))


class HX_GetUserName_Result(NamedTuple):
    """What HX_GetUserName answers.

    RetVal: no code; 0 (U8)
    UserName: always root
    DomainName: always empty
    """

    RetVal: int
    UserName: str
    DomainName: str


HX_GetUserName_Result_Shape = Shape(HX_GetUserName_Result, (
    ("RetVal", number),
    ("UserName", text),
    ("DomainName", text),
))


class HX_GetUserGroup_Result(NamedTuple):
    """What HX_GetUserGroup answers.

    RetVal: whether there is a group root; 0 yes, 1 no (U8)
    UserGroup: what the user may do: root and the members of the group root administrate;
      Administrator, ValidUser or UnknownUser
    """

    RetVal: int
    UserGroup: str


HX_GetUserGroup_Result_Shape = Shape(HX_GetUserGroup_Result, (
    ("RetVal", number),
    ("UserGroup", text),
))


class HX_DG_Create_Result(NamedTuple):
    """What HX_DG_Create answers.

    CreateOrModifyDGParam: the disk group that was made
    """

    CreateOrModifyDGParam: records.CreateOrModify_DG_Param


HX_DG_Create_Result_Shape = Shape(HX_DG_Create_Result, (
    ("CreateOrModifyDGParam", records.CreateOrModify_DG_Param_Shape.read),
))


class HX_DG_GetSizeOnly_Result(NamedTuple):
    """What HX_DG_GetSizeOnly answers.

    CreateOrModify_DG_Param: the size that it would have
    """

    CreateOrModify_DG_Param: records.CreateOrModify_DG_Param_2


HX_DG_GetSizeOnly_Result_Shape = Shape(HX_DG_GetSizeOnly_Result, (
    ("CreateOrModify_DG_Param", records.CreateOrModify_DG_Param_2_Shape.read),
))


class HX_DG_GetInfo_Result(NamedTuple):
    """What HX_DG_GetInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    DG_Info: a disk group
    """

    RequestHeader: records.RequestHeader
    DG_Info: tuple[records.DG_Info, ...]

    @property
    def records(self) -> tuple[records.DG_Info, ...]:
        """The entries of this page."""
        return self.DG_Info


HX_DG_GetInfo_Result_Shape = Shape(HX_DG_GetInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("DG_Info", each(records.DG_Info_Shape)),
))


class HX_DG_GetConfig_Result(NamedTuple):
    """What HX_DG_GetConfig answers.

    RequestHeader: how the list was asked for, and where it goes on
    DG_Config: the settings of a disk group
    """

    RequestHeader: records.RequestHeader
    DG_Config: tuple[records.DG_Config, ...]

    @property
    def records(self) -> tuple[records.DG_Config, ...]:
        """The entries of this page."""
        return self.DG_Config


HX_DG_GetConfig_Result_Shape = Shape(HX_DG_GetConfig_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("DG_Config", each(records.DG_Config_Shape)),
))


class HX_BIOS_Version_Result(NamedTuple):
    """What HX_BIOS_Version answers.

    RetVal: 1 when the file cannot be read or is shorter than 64 bytes; 0 or 1 (U8)
    BIOSInfo: what the image's header says
    """

    RetVal: int
    BIOSInfo: records.VX_BIOS_Version


HX_BIOS_Version_Result_Shape = Shape(HX_BIOS_Version_Result, (
    ("RetVal", number),
    ("BIOSInfo", records.VX_BIOS_Version_Shape.read),
))


class HX_BBU_GetInfo_Result(NamedTuple):
    """What HX_BBU_GetInfo answers.

    BBU_Info: the battery
    """

    BBU_Info: records.BBU_Info


HX_BBU_GetInfo_Result_Shape = Shape(HX_BBU_GetInfo_Result, (
    ("BBU_Info", records.BBU_Info_Shape.read),
))


class HX_PD_GetSpareInfo_Result(NamedTuple):
    """What HX_PD_GetSpareInfo answers.

    RequestHeader: how the list was asked for, and where it goes on
    Status: the part that a disk plays; every disk is listed
    """

    RequestHeader: records.RequestHeader
    Status: tuple[records.HD_RAID_Status, ...]

    @property
    def records(self) -> tuple[records.HD_RAID_Status, ...]:
        """The entries of this page."""
        return self.Status


HX_PD_GetSpareInfo_Result_Shape = Shape(HX_PD_GetSpareInfo_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("Status", each(records.HD_RAID_Status_Shape)),
))


class HX_PD_GetBGAStatus_Result(NamedTuple):
    """What HX_PD_GetBGAStatus answers.

    RequestHeader: how the list was asked for, and where it goes on
    HD_BGA_Status: the background activity of a disk
    """

    RequestHeader: records.RequestHeader
    HD_BGA_Status: tuple[records.HD_BGA_Status, ...]

    @property
    def records(self) -> tuple[records.HD_BGA_Status, ...]:
        """The entries of this page."""
        return self.HD_BGA_Status


HX_PD_GetBGAStatus_Result_Shape = Shape(HX_PD_GetBGAStatus_Result, (
    ("RequestHeader", records.RequestHeader_Shape.read),
    ("HD_BGA_Status", each(records.HD_BGA_Status_Shape)),
))


class VX_Module_GetInfo_Result(NamedTuple):
    """What VX_Module_GetInfo answers.

    RetVal: no code; 0 (U8)
    product: version of the product
    php_vexorapi: version of the front end's language module
    vexorapi: version of this library
    hxraidsvc: version of the event service; zeros where its version file cannot be read
    """

    RetVal: int
    product: records.VX_VER_INFO
    php_vexorapi: records.VX_VER_INFO
    vexorapi: records.VX_VER_INFO
    hxraidsvc: records.VX_VER_INFO


VX_Module_GetInfo_Result_Shape = Shape(VX_Module_GetInfo_Result, (
    ("RetVal", number),
    ("product", records.VX_VER_INFO_Shape.read),
    ("php_vexorapi", records.VX_VER_INFO_Shape.read),
    ("vexorapi", records.VX_VER_INFO_Shape.read),
    ("hxraidsvc", records.VX_VER_INFO_Shape.read),
))


class VX_HX_EVT_GetChangeCounters_Result(NamedTuple):
    """What VX_HX_EVT_GetChangeCounters answers.

    RetVal: no code; 1 (U8)
    ChangeCounters: how often each kind of object has changed
    """

    RetVal: int
    ChangeCounters: records.VX_HX_ChangeCounters


VX_HX_EVT_GetChangeCounters_Result_Shape = Shape(VX_HX_EVT_GetChangeCounters_Result, (
    ("RetVal", number),
    ("ChangeCounters", records.VX_HX_ChangeCounters_Shape.read),
))


class VX_HX_EVT_GetEvents_Result(NamedTuple):
    """What VX_HX_EVT_GetEvents answers.

    RetVal: no code; 0 (U8)
    n: how many events are wanted, 0 to ask for the extent; in the result, how many there are; 0 to
      2000 (U32)
    s: the first event, by the store's own number; a number; 4294967295: the newest n up to e (U32)
    e: the last event; a number; not looked at unless s is 4294967295 (U32)
    Event: an event, the oldest first; none where n was 0
    """

    RetVal: int
    n: int
    s: int
    e: int
    Event: tuple[records.Event, ...]


VX_HX_EVT_GetEvents_Result_Shape = Shape(VX_HX_EVT_GetEvents_Result, (
    ("RetVal", number),
    ("n", number),
    ("s", number),
    ("e", number),
    ("Event", each(records.Event_Shape)),
))


FUNCTIONS = {
    "HX_API_Version": Function(
        "HX_API_Version", False, HX_API_Version_Result_Shape, ()),
    "HX_Adapter_GetCount": Function(
        "HX_Adapter_GetCount", False, HX_Adapter_GetCount_Result_Shape, ()),
    "HX_Adapter_GetInfo": Function(
        "HX_Adapter_GetInfo", True, HX_Adapter_GetInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
        )),
    "HX_Adapter_SetConfig": Function(
        "HX_Adapter_SetConfig", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("AlarmOn", Kind.NUMBER, 8, 1),
            Parameter("AutoRebuildOn", Kind.NUMBER, 8, 1),
            Parameter("BGARate", Kind.NUMBER, 8, 1),
            Parameter("PollSMARTStatus", Kind.NUMBER, 8, 1),
            Parameter("MediaPatrolRate", Kind.NUMBER, 8, 1),
            Parameter("CopyBack", Kind.NUMBER, 8, 1),
            Parameter("SyncRate", Kind.NUMBER, 8, 1),
            Parameter("InitRate", Kind.NUMBER, 8, 1),
            Parameter("RebuildRate", Kind.NUMBER, 8, 1),
            Parameter("MigrationRate", Kind.NUMBER, 8, 1),
            Parameter("CopybackRate", Kind.NUMBER, 8, 1),
            Parameter("InterruptCoalescing", Kind.NUMBER, 8, 1),
            Parameter("ModuleConsolidate", Kind.NUMBER, 8, 1),
            Parameter("v_atapi_disable", Kind.NUMBER, 8, 1),
            Parameter("port_phy_ctrl", Kind.NUMBERS, 8, 8),
        )),
    "HX_Adapter_GetConfig": Function(
        "HX_Adapter_GetConfig", True, HX_Adapter_GetConfig_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
        )),
    "HX_AdapterMute": Function(
        "HX_AdapterMute", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
        )),
    "HX_PD_GetHDInfo": Function(
        "HX_PD_GetHDInfo", True, HX_PD_GetHDInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetHDInfo_Ext": Function(
        "HX_PD_GetHDInfo_Ext", True, HX_PD_GetHDInfo_Ext_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetExpanderInfo": Function(
        "HX_PD_GetExpanderInfo", True, HX_PD_GetExpanderInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetPMInfo": Function(
        "HX_PD_GetPMInfo", True, HX_PD_GetPMInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetFreeSpaceInfo": Function(
        "HX_PD_GetFreeSpaceInfo", True, HX_PD_GetFreeSpaceInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetConfig": Function(
        "HX_PD_GetConfig", True, HX_PD_GetConfig_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetSmartStatus": Function(
        "HX_PD_GetSmartStatus", True, HX_PD_GetSmartStatus_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetRCT": Function(
        "HX_PD_GetRCT", True, HX_PD_GetRCT_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
            Parameter("n", Kind.NUMBER, 32, 1),
            Parameter("s", Kind.NUMBER, 32, 1),
            Parameter("e", Kind.NUMBER, 32, 1),
        )),
    "HX_PD_SetConfig": Function(
        "HX_PD_SetConfig", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
            Parameter("WriteCacheOn", Kind.NUMBER, 8, 1),
            Parameter("SMARTOn", Kind.NUMBER, 8, 1),
            Parameter("Online", Kind.NUMBER, 8, 1),
            Parameter("DriveSpeed", Kind.NUMBER, 8, 1),
            Parameter("HDID", Kind.NUMBER, 16, 1),
        )),
    "HX_LocateArrayDevice": Function(
        "HX_LocateArrayDevice", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("deviceType", Kind.NUMBER, 8, 1),
            Parameter("deviceId", Kind.NUMBER, 16, 1),
            Parameter("ledStatus", Kind.NUMBER, 8, 1),
        )),
    "HX_ENC_GetEnclosureInfo": Function(
        "HX_ENC_GetEnclosureInfo", True, HX_ENC_GetEnclosureInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_ENC_GetElementInfo": Function(
        "HX_ENC_GetElementInfo", True, HX_ENC_GetElementInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("ENC_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_ENC_GetElementConfig": Function(
        "HX_ENC_GetElementConfig", True, HX_ENC_GetElementConfig_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("ENC_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_WipeHDMDD": Function(
        "HX_PD_WipeHDMDD", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
            Parameter("Force", Kind.NUMBER, 8, 1),
        )),
    "HX_PD_SetHDStatus": Function(
        "HX_PD_SetHDStatus", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
            Parameter("Action", Kind.NUMBER, 8, 1),
        )),
    "HX_PD_FreeHD2GlobalSpare": Function(
        "HX_PD_FreeHD2GlobalSpare", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_Spare2FreeHD": Function(
        "HX_PD_Spare2FreeHD", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetHDRaidStatus": Function(
        "HX_PD_GetHDRaidStatus", True, HX_PD_GetHDRaidStatus_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetMBRInfo": Function(
        "HX_PD_GetMBRInfo", True, HX_PD_GetMBRInfo_Result_Shape, (
            Parameter("HDCount", Kind.NUMBER, 8, 1),
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HDIDs", Kind.NUMBERS, 16, 128),
        )),
    "HX_BLK_GetInfo": Function(
        "HX_BLK_GetInfo", True, HX_BLK_GetInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_BLK_GetHDBlock": Function(
        "HX_BLK_GetHDBlock", True, HX_BLK_GetHDBlock_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_LD_GetInfo": Function(
        "HX_LD_GetInfo", True, HX_LD_GetInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_LD_GetTargetLDInfo": Function(
        "HX_LD_GetTargetLDInfo", True, HX_LD_GetTargetLDInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LD_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_LD_Delete": Function(
        "HX_LD_Delete", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LD_ID", Kind.NUMBER, 16, 1),
            Parameter("deleteMBR", Kind.NUMBER, 8, 1),
        )),
    "HX_LD_Create": Function(
        "HX_LD_Create", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("HDCount", Kind.NUMBER, 8, 1),
            Parameter("RoundingScheme", Kind.NUMBER, 8, 1),
            Parameter("SubLDCount", Kind.NUMBER, 8, 1),
            Parameter("NumParityDisk", Kind.NUMBER, 8, 1),
            Parameter("StripeBlockSize", Kind.NUMBER, 16, 1),
            Parameter("CachePolicy", Kind.NUMBER, 8, 1),
            Parameter("InitializationOption", Kind.NUMBER, 8, 1),
            Parameter("SectorCoefficient", Kind.NUMBER, 8, 1),
            Parameter("HDIDs", Kind.NUMBERS, 16, 128),
            Parameter("Name", Kind.TEXT, 8, 15),
            Parameter("Size", Kind.NUMBER, 64, 1),
        )),
    "HX_LD_QuickCreate": Function(
        "HX_LD_QuickCreate", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("Type", Kind.NUMBER, 8, 1),
        )),
    "HX_LD_GetMaxSize": Function(
        "HX_LD_GetMaxSize", True, HX_LD_GetMaxSize_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("HDCount", Kind.NUMBER, 8, 1),
            Parameter("RoundingScheme", Kind.NUMBER, 8, 1),
            Parameter("SubLDCount", Kind.NUMBER, 8, 1),
            Parameter("NumParityDisk", Kind.NUMBER, 8, 1),
            Parameter("StripeBlockSize", Kind.NUMBER, 16, 1),
            Parameter("CachePolicy", Kind.NUMBER, 8, 1),
            Parameter("InitializationOption", Kind.NUMBER, 8, 1),
            Parameter("HDIDs", Kind.NUMBERS, 16, 128),
            Parameter("Name", Kind.TEXT, 8, 15),
            Parameter("Size", Kind.NUMBER, 64, 1),
        )),
    "HX_LD_PauseAll": Function(
        "HX_LD_PauseAll", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
        )),
    "HX_LD_GetStatus": Function(
        "HX_LD_GetStatus", True, HX_LD_GetStatus_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_LD_GetConfig": Function(
        "HX_LD_GetConfig", True, HX_LD_GetConfig_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_LD_SetConfig": Function(
        "HX_LD_SetConfig", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LD_ID", Kind.NUMBER, 16, 1),
            Parameter("CacheMode", Kind.NUMBER, 8, 1),
            Parameter("AutoRebuildOn", Kind.NUMBER, 8, 1),
            Parameter("Status", Kind.NUMBER, 8, 1),
            Parameter("LDID", Kind.NUMBER, 16, 1),
            Parameter("Name", Kind.TEXT, 8, 15),
        )),
    "HX_LD_StartRebuild": Function(
        "HX_LD_StartRebuild", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LD_ID", Kind.NUMBER, 16, 1),
            Parameter("Rebuild_HD_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_LD_StartConsistencyCheck": Function(
        "HX_LD_StartConsistencyCheck", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LD_ID", Kind.NUMBER, 16, 1),
            Parameter("Type", Kind.NUMBER, 8, 1),
        )),
    "HX_LD_StartINIT": Function(
        "HX_LD_StartINIT", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LD_ID", Kind.NUMBER, 16, 1),
            Parameter("Init_Type", Kind.NUMBER, 8, 1),
        )),
    "HX_LD_StartMigration": Function(
        "HX_LD_StartMigration", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LDID", Kind.NUMBER, 16, 1),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("HDCount", Kind.NUMBER, 8, 1),
            Parameter("HDIDs", Kind.NUMBERS, 16, 128),
        )),
    "HX_LD_GetMigratedLdSize": Function(
        "HX_LD_GetMigratedLdSize", True, HX_LD_GetMigratedLdSize_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LDID", Kind.NUMBER, 16, 1),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("HDCount", Kind.NUMBER, 8, 1),
            Parameter("HDIDs", Kind.NUMBERS, 16, 128),
        )),
    "HX_LD_BGAControl": Function(
        "HX_LD_BGAControl", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LD_ID", Kind.NUMBER, 16, 1),
            Parameter("Actions", Kind.NUMBER, 8, 1),
        )),
    "HX_LD_Import": Function(
        "HX_LD_Import", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("LD_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_Flash_Erase": Function(
        "HX_Flash_Erase", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("Page", Kind.NUMBER, 8, 1),
        )),
    "HX_LogonUser": Function(
        "HX_LogonUser", False, HX_LogonUser_Result_Shape, (
            Parameter("lpszUsername", Kind.TEXT, 8, 127),
            Parameter("lpszDomain", Kind.TEXT, 8, 127),
            Parameter("lpszPassword", Kind.TEXT, 8, 127),
        )),
    "HX_GetUserName": Function(
        "HX_GetUserName", False, HX_GetUserName_Result_Shape, ()),
    "HX_GetUserGroup": Function(
        "HX_GetUserGroup", False, HX_GetUserGroup_Result_Shape, (
            Parameter("lpszUsername", Kind.TEXT, 8, 127),
            Parameter("lpszDomain", Kind.TEXT, 8, 127),
        )),
    "HX_DG_Create": Function(
        "HX_DG_Create", True, HX_DG_Create_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("Name", Kind.TEXT, 8, 15),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("SubVDCount", Kind.NUMBER, 8, 1),
            Parameter("NumParityDisk", Kind.NUMBER, 8, 1),
            Parameter("StripeBlockSize", Kind.NUMBER, 16, 1),
            Parameter("Size", Kind.NUMBER, 64, 1),
            Parameter("BlockSize", Kind.NUMBER, 32, 1),
            Parameter("InitializationOption", Kind.NUMBER, 8, 1),
            Parameter("PDCount", Kind.NUMBER, 8, 1),
            Parameter("PDIDs", Kind.NUMBERS, 16, 128),
        )),
    "HX_DG_GetSizeOnly": Function(
        "HX_DG_GetSizeOnly", True, HX_DG_GetSizeOnly_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("DGID", Kind.NUMBER, 16, 1),
            Parameter("Name", Kind.TEXT, 8, 15),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("SubVDCount", Kind.NUMBER, 8, 1),
            Parameter("NumParityDisk", Kind.NUMBER, 8, 1),
            Parameter("StripeBlockSize", Kind.NUMBER, 16, 1),
            Parameter("Size", Kind.NUMBER, 64, 1),
            Parameter("BlockSize", Kind.NUMBER, 32, 1),
            Parameter("InitializationOption", Kind.NUMBER, 8, 1),
            Parameter("PDCount", Kind.NUMBER, 8, 1),
            Parameter("PDIDs", Kind.NUMBERS, 16, 128),
        )),
    "HX_DG_Modify": Function(
        "HX_DG_Modify", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("DGID", Kind.NUMBER, 16, 1),
            Parameter("Name", Kind.TEXT, 8, 15),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("SubVDCount", Kind.NUMBER, 8, 1),
            Parameter("NumParityDisk", Kind.NUMBER, 8, 1),
            Parameter("StripeBlockSize", Kind.NUMBER, 16, 1),
            Parameter("Size", Kind.NUMBER, 64, 1),
            Parameter("BlockSize", Kind.NUMBER, 32, 1),
            Parameter("InitializationOption", Kind.NUMBER, 8, 1),
            Parameter("PDCount", Kind.NUMBER, 8, 1),
            Parameter("PDIDs", Kind.NUMBERS, 16, 128),
        )),
    "HX_DG_GetInfo": Function(
        "HX_DG_GetInfo", True, HX_DG_GetInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_DG_Delete": Function(
        "HX_DG_Delete", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("DG_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_CreateOrModify_VD": Function(
        "HX_CreateOrModify_VD", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("VDID", Kind.NUMBER, 16, 1),
            Parameter("DGID", Kind.NUMBER, 16, 1),
            Parameter("Name", Kind.TEXT, 8, 15),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("SubVDCount", Kind.NUMBER, 8, 1),
            Parameter("NumParityDisk", Kind.NUMBER, 8, 1),
            Parameter("StripeBlockSize", Kind.NUMBER, 16, 1),
            Parameter("Size", Kind.NUMBER, 64, 1),
            Parameter("BlockSize", Kind.NUMBER, 32, 1),
            Parameter("InitializationOption", Kind.NUMBER, 8, 1),
        )),
    "HX_LD_DG_StartRebuild": Function(
        "HX_LD_DG_StartRebuild", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("ID", Kind.NUMBER, 16, 1),
            Parameter("RebuildType", Kind.NUMBER, 8, 1),
            Parameter("PDCount", Kind.NUMBER, 8, 1),
            Parameter("PDIDs", Kind.NUMBERS, 16, 128),
        )),
    "HX_DG_StartMigration": Function(
        "HX_DG_StartMigration", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("DGID", Kind.NUMBER, 16, 1),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("NumParityDisk", Kind.NUMBER, 8, 1),
            Parameter("PDCount", Kind.NUMBER, 8, 1),
            Parameter("PDIDs", Kind.NUMBERS, 16, 128),
        )),
    "HX_DG_BGAControl": Function(
        "HX_DG_BGAControl", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("DG_ID", Kind.NUMBER, 16, 1),
            Parameter("Actions", Kind.NUMBER, 8, 1),
        )),
    "HX_DG_GetConfig": Function(
        "HX_DG_GetConfig", True, HX_DG_GetConfig_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_DG_SetConfig": Function(
        "HX_DG_SetConfig", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("DG_ID", Kind.NUMBER, 16, 1),
            Parameter("DGID", Kind.NUMBER, 16, 1),
            Parameter("WriteCacheOn", Kind.NUMBER, 8, 1),
            Parameter("Name", Kind.TEXT, 8, 15),
        )),
    "HX_Flash_Option": Function(
        "HX_Flash_Option", True, None, (
            Parameter("Actions", Kind.NUMBER, 8, 1),
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("Type", Kind.NUMBER, 8, 1),
            Parameter("filepath", Kind.TEXT, 8, 255),
        )),
    "HX_BIOS_Version": Function(
        "HX_BIOS_Version", False, HX_BIOS_Version_Result_Shape, (
            Parameter("filepath", Kind.TEXT, 8, 255),
        )),
    "HX_PD_FreeHD2DGSpare": Function(
        "HX_PD_FreeHD2DGSpare", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
            Parameter("DG_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_BBU_GetInfo": Function(
        "HX_BBU_GetInfo", True, HX_BBU_GetInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
        )),
    "HX_BBU_SetThreshold": Function(
        "HX_BBU_SetThreshold", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("tempLowerBound", Kind.NUMBER, 16, 1),
            Parameter("tempUpperBound", Kind.NUMBER, 16, 1),
            Parameter("volLowerBound", Kind.NUMBER, 16, 1),
            Parameter("volUpperBound", Kind.NUMBER, 16, 1),
        )),
    "HX_BBU_ChangePower": Function(
        "HX_BBU_ChangePower", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("action", Kind.NUMBER, 8, 1),
        )),
    "HX_BBU_SetStatus": Function(
        "HX_BBU_SetStatus", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("status", Kind.NUMBER, 8, 1),
        )),
    "HX_BBU_SetMaxCapacity": Function(
        "HX_BBU_SetMaxCapacity", True, None, (
            Parameter("maxCapacity", Kind.NUMBER, 16, 1),
            Parameter("BBU_ID", Kind.NUMBER, 8, 1),
        )),
    "HX_BBU_ActRelearn": Function(
        "HX_BBU_ActRelearn", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
        )),
    "HX_PD_StartDataScrub": Function(
        "HX_PD_StartDataScrub", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
        )),
    "HX_LD_Create_OnDG": Function(
        "HX_LD_Create_OnDG", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("DGID", Kind.NUMBER, 16, 1),
            Parameter("Name", Kind.TEXT, 8, 15),
            Parameter("StripeBlockSize", Kind.NUMBER, 16, 1),
            Parameter("Size", Kind.NUMBER, 64, 1),
            Parameter("RoundingScheme", Kind.NUMBER, 8, 1),
            Parameter("CachePolicy", Kind.NUMBER, 8, 1),
            Parameter("DGSlotNum", Kind.NUMBER, 8, 1),
            Parameter("InitializationOption", Kind.NUMBER, 8, 1),
            Parameter("SectorCoefficient", Kind.NUMBER, 8, 1),
        )),
    "HX_LD_Modify_OnDG": Function(
        "HX_LD_Modify_OnDG", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("VDID", Kind.NUMBER, 16, 1),
            Parameter("DGID", Kind.NUMBER, 16, 1),
            Parameter("Name", Kind.TEXT, 8, 15),
            Parameter("RaidMode", Kind.NUMBER, 8, 1),
            Parameter("SubVDCount", Kind.NUMBER, 8, 1),
            Parameter("NumParityDisk", Kind.NUMBER, 8, 1),
            Parameter("StripeBlockSize", Kind.NUMBER, 16, 1),
            Parameter("Size", Kind.NUMBER, 64, 1),
            Parameter("RoundingScheme", Kind.NUMBER, 8, 1),
            Parameter("CachePolicy", Kind.NUMBER, 8, 1),
            Parameter("InitializationOption", Kind.NUMBER, 8, 1),
            Parameter("SectorCoefficient", Kind.NUMBER, 8, 1),
            Parameter("BlockSize", Kind.NUMBER, 32, 1),
        )),
    "HX_PD_GetSpareInfo": Function(
        "HX_PD_GetSpareInfo", True, HX_PD_GetSpareInfo_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_GetBGAStatus": Function(
        "HX_PD_GetBGAStatus", True, HX_PD_GetBGAStatus_Result_Shape, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("requestType", Kind.NUMBER, 8, 1),
            Parameter("startingIndexOrId", Kind.NUMBER, 16, 1),
            Parameter("numRequested", Kind.NUMBER, 16, 1),
        )),
    "HX_PD_BGAControl": Function(
        "HX_PD_BGAControl", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
            Parameter("Action", Kind.NUMBER, 8, 1),
        )),
    "HX_PD_StartMediaPatrol": Function(
        "HX_PD_StartMediaPatrol", True, None, (
            Parameter("AdapterID", Kind.NUMBER, 8, 1),
            Parameter("HD_ID", Kind.NUMBER, 16, 1),
        )),
    "VX_Module_GetInfo": Function(
        "VX_Module_GetInfo", False, VX_Module_GetInfo_Result_Shape, ()),
    "VX_HX_EVT_GetChangeCounters": Function(
        "VX_HX_EVT_GetChangeCounters", False, VX_HX_EVT_GetChangeCounters_Result_Shape, ()),
    "VX_HX_EVT_GetEvents": Function(
        "VX_HX_EVT_GetEvents", False, VX_HX_EVT_GetEvents_Result_Shape, (
            Parameter("n", Kind.NUMBER, 32, 1),
            Parameter("s", Kind.NUMBER, 32, 1),
            Parameter("e", Kind.NUMBER, 32, 1),
            Parameter("Lang", Kind.TEXT, 8, 15),
        )),
    "VX_HX_EVT_Reset": Function(
        "VX_HX_EVT_Reset", False, None, ()),
}


class Functions(Asking):
    """A method for each function of the library.

    Parameters that are left out are 0 or empty, as the library has them.
    """

    def HX_API_Version(
        self,
    ) -> HX_API_Version_Result:
        """Calls HX_API_Version and returns what it answers.
        """
        answer: HX_API_Version_Result = self._ask(FUNCTIONS["HX_API_Version"], {})
        return answer

    def HX_Adapter_GetCount(
        self,
    ) -> HX_Adapter_GetCount_Result:
        """Calls HX_Adapter_GetCount and returns what it answers.
        """
        answer: HX_Adapter_GetCount_Result = self._ask(FUNCTIONS["HX_Adapter_GetCount"], {})
        return answer

    def HX_Adapter_GetInfo(
        self,
        *,
        AdapterID: int = 0,
    ) -> HX_Adapter_GetInfo_Result:
        """Calls HX_Adapter_GetInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's; 255 every adapter (8 bits)
        """
        answer: HX_Adapter_GetInfo_Result = self._ask(FUNCTIONS["HX_Adapter_GetInfo"], {
            "AdapterID": AdapterID,
        })
        return answer

    def HX_Adapter_SetConfig(
        self,
        *,
        AdapterID: int = 0,
        AlarmOn: int = 0,
        AutoRebuildOn: int = 0,
        BGARate: int = 0,
        PollSMARTStatus: int = 0,
        MediaPatrolRate: int = 0,
        CopyBack: int = 0,
        SyncRate: int = 0,
        InitRate: int = 0,
        RebuildRate: int = 0,
        MigrationRate: int = 0,
        CopybackRate: int = 0,
        InterruptCoalescing: int = 0,
        ModuleConsolidate: int = 0,
        v_atapi_disable: int = 0,
        port_phy_ctrl: Sequence[int] = (),
    ) -> None:
        """Calls HX_Adapter_SetConfig.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        AlarmOn: whether the alarm may sound; 0 off, 1 on (8 bits)
        AutoRebuildOn: whether a hot spare steps in by itself; 0 off, 1 on (8 bits)
        BGARate: the controller's time for activities without a rate of their own; percent, 0 to 100
          (8 bits)
        PollSMARTStatus: whether disks are asked for their SMART state; 0 off, 1 on (8 bits)
        MediaPatrolRate: the controller's time for media patrols; percent, 0 to 100 (8 bits)
        CopyBack: whether data is copied back to a disk that replaces a lost one; 0 off, 1 on (8
          bits)
        SyncRate: the controller's time for consistency checks; percent, 0 to 100 (8 bits)
        InitRate: the controller's time for initialisations; percent, 0 to 100 (8 bits)
        RebuildRate: the controller's time for rebuilds; percent, 0 to 100 (8 bits)
        MigrationRate: the controller's time for migrations; percent, 0 to 100 (8 bits)
        CopybackRate: the controller's time for copybacks; percent, 0 to 100 (8 bits)
        InterruptCoalescing: whether interrupts are joined; 0 off, 1 on (8 bits)
        ModuleConsolidate: whether modules are consolidated; 0 off, 1 on (8 bits)
        v_atapi_disable: whether the virtual ATAPI device is off; 0 it is on, 1 it is off (8 bits)
        port_phy_ctrl: how each port's phys are driven; a code of the controller; the virtual one
          keeps it (at most 8, 8 bits each)
        """
        self._ask(FUNCTIONS["HX_Adapter_SetConfig"], {
            "AdapterID": AdapterID,
            "AlarmOn": AlarmOn,
            "AutoRebuildOn": AutoRebuildOn,
            "BGARate": BGARate,
            "PollSMARTStatus": PollSMARTStatus,
            "MediaPatrolRate": MediaPatrolRate,
            "CopyBack": CopyBack,
            "SyncRate": SyncRate,
            "InitRate": InitRate,
            "RebuildRate": RebuildRate,
            "MigrationRate": MigrationRate,
            "CopybackRate": CopybackRate,
            "InterruptCoalescing": InterruptCoalescing,
            "ModuleConsolidate": ModuleConsolidate,
            "v_atapi_disable": v_atapi_disable,
            "port_phy_ctrl": port_phy_ctrl,
        })

    def HX_Adapter_GetConfig(
        self,
        *,
        AdapterID: int = 0,
    ) -> HX_Adapter_GetConfig_Result:
        """Calls HX_Adapter_GetConfig and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's; 255 every adapter (8 bits)
        """
        answer: HX_Adapter_GetConfig_Result = self._ask(FUNCTIONS["HX_Adapter_GetConfig"], {
            "AdapterID": AdapterID,
        })
        return answer

    def HX_AdapterMute(
        self,
        *,
        AdapterID: int = 0,
    ) -> None:
        """Calls HX_AdapterMute.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        """
        self._ask(FUNCTIONS["HX_AdapterMute"], {
            "AdapterID": AdapterID,
        })

    def HX_PD_GetHDInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetHDInfo_Result:
        """Calls HX_PD_GetHDInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetHDInfo_Result = self._ask(FUNCTIONS["HX_PD_GetHDInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetHDInfo_Ext(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetHDInfo_Ext_Result:
        """Calls HX_PD_GetHDInfo_Ext and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetHDInfo_Ext_Result = self._ask(FUNCTIONS["HX_PD_GetHDInfo_Ext"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetExpanderInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetExpanderInfo_Result:
        """Calls HX_PD_GetExpanderInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetExpanderInfo_Result = self._ask(FUNCTIONS["HX_PD_GetExpanderInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetPMInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetPMInfo_Result:
        """Calls HX_PD_GetPMInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetPMInfo_Result = self._ask(FUNCTIONS["HX_PD_GetPMInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetFreeSpaceInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetFreeSpaceInfo_Result:
        """Calls HX_PD_GetFreeSpaceInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetFreeSpaceInfo_Result = self._ask(FUNCTIONS["HX_PD_GetFreeSpaceInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetConfig(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetConfig_Result:
        """Calls HX_PD_GetConfig and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetConfig_Result = self._ask(FUNCTIONS["HX_PD_GetConfig"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetSmartStatus(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetSmartStatus_Result:
        """Calls HX_PD_GetSmartStatus and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetSmartStatus_Result = self._ask(FUNCTIONS["HX_PD_GetSmartStatus"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetRCT(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
        n: int = 0,
        s: int = 0,
        e: int = 0,
    ) -> HX_PD_GetRCT_Result:
        """Calls HX_PD_GetRCT and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        n: how many entries are wanted; in the result, how many follow; 0 to 150 (32 bits)
        s: the first entry, counted from 0; earlier where fewer than n follow it; an index (32 bits)
        e: the last entry; n and s decide what is listed; an index (32 bits)
        """
        answer: HX_PD_GetRCT_Result = self._ask(FUNCTIONS["HX_PD_GetRCT"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
            "n": n,
            "s": s,
            "e": e,
        })
        return answer

    def HX_PD_SetConfig(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
        WriteCacheOn: int = 0,
        SMARTOn: int = 0,
        Online: int = 0,
        DriveSpeed: int = 0,
        HDID: int = 0,
    ) -> None:
        """Calls HX_PD_SetConfig.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        WriteCacheOn: whether the disk's own write cache is on; 0 off, 1 on (8 bits)
        SMARTOn: whether its SMART state is looked at; 0 off, 1 on (8 bits)
        Online: whether it is online; 0 no, 1 yes (8 bits)
        DriveSpeed: passed on; the virtual controller does not look at it; codes: "Link speeds" (8
          bits)
        HDID: passed on; HD_ID says which disk is set; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_PD_SetConfig"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
            "WriteCacheOn": WriteCacheOn,
            "SMARTOn": SMARTOn,
            "Online": Online,
            "DriveSpeed": DriveSpeed,
            "HDID": HDID,
        })

    def HX_LocateArrayDevice(
        self,
        *,
        AdapterID: int = 0,
        deviceType: int = 0,
        deviceId: int = 0,
        ledStatus: int = 0,
    ) -> None:
        """Calls HX_LocateArrayDevice.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        deviceType: what kind of device; codes: "Devices" (8 bits)
        deviceId: which device of that kind; an ID, 0 to 65534 (16 bits)
        ledStatus: its locate light; 0 off, 1 on (8 bits)
        """
        self._ask(FUNCTIONS["HX_LocateArrayDevice"], {
            "AdapterID": AdapterID,
            "deviceType": deviceType,
            "deviceId": deviceId,
            "ledStatus": ledStatus,
        })

    def HX_ENC_GetEnclosureInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_ENC_GetEnclosureInfo_Result:
        """Calls HX_ENC_GetEnclosureInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_ENC_GetEnclosureInfo_Result = self._ask(FUNCTIONS["HX_ENC_GetEnclosureInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_ENC_GetElementInfo(
        self,
        *,
        AdapterID: int = 0,
        ENC_ID: int = 0,
    ) -> HX_ENC_GetElementInfo_Result:
        """Calls HX_ENC_GetElementInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's; 255 every adapter (8 bits)
        ENC_ID: the enclosure; an ID, 0 to 65534 (16 bits)
        """
        answer: HX_ENC_GetElementInfo_Result = self._ask(FUNCTIONS["HX_ENC_GetElementInfo"], {
            "AdapterID": AdapterID,
            "ENC_ID": ENC_ID,
        })
        return answer

    def HX_ENC_GetElementConfig(
        self,
        *,
        AdapterID: int = 0,
        ENC_ID: int = 0,
    ) -> HX_ENC_GetElementConfig_Result:
        """Calls HX_ENC_GetElementConfig and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's; 255 every adapter (8 bits)
        ENC_ID: the enclosure; an ID, 0 to 65534 (16 bits)
        """
        answer: HX_ENC_GetElementConfig_Result = self._ask(FUNCTIONS["HX_ENC_GetElementConfig"], {
            "AdapterID": AdapterID,
            "ENC_ID": ENC_ID,
        })
        return answer

    def HX_PD_WipeHDMDD(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
        Force: int = 0,
    ) -> None:
        """Calls HX_PD_WipeHDMDD.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        Force: whether to wipe a disk that is in use, too; 0 no, 1 yes (8 bits)
        """
        self._ask(FUNCTIONS["HX_PD_WipeHDMDD"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
            "Force": Force,
        })

    def HX_PD_SetHDStatus(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
        Action: int = 0,
    ) -> None:
        """Calls HX_PD_SetHDStatus.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        Action: what the disk is to become; codes: "What becomes of disks" (8 bits)
        """
        self._ask(FUNCTIONS["HX_PD_SetHDStatus"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
            "Action": Action,
        })

    def HX_PD_FreeHD2GlobalSpare(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
    ) -> None:
        """Calls HX_PD_FreeHD2GlobalSpare.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_PD_FreeHD2GlobalSpare"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
        })

    def HX_PD_Spare2FreeHD(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
    ) -> None:
        """Calls HX_PD_Spare2FreeHD.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_PD_Spare2FreeHD"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
        })

    def HX_PD_GetHDRaidStatus(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetHDRaidStatus_Result:
        """Calls HX_PD_GetHDRaidStatus and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetHDRaidStatus_Result = self._ask(FUNCTIONS["HX_PD_GetHDRaidStatus"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetMBRInfo(
        self,
        *,
        HDCount: int = 0,
        AdapterID: int = 0,
        HDIDs: Sequence[int] = (),
    ) -> HX_PD_GetMBRInfo_Result:
        """Calls HX_PD_GetMBRInfo and returns what it answers.

        HDCount: how many of HDIDs count; disks, 0 to 128 (8 bits)
        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        """
        answer: HX_PD_GetMBRInfo_Result = self._ask(FUNCTIONS["HX_PD_GetMBRInfo"], {
            "HDCount": HDCount,
            "AdapterID": AdapterID,
            "HDIDs": HDIDs,
        })
        return answer

    def HX_BLK_GetInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_BLK_GetInfo_Result:
        """Calls HX_BLK_GetInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_BLK_GetInfo_Result = self._ask(FUNCTIONS["HX_BLK_GetInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_BLK_GetHDBlock(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_BLK_GetHDBlock_Result:
        """Calls HX_BLK_GetHDBlock and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_BLK_GetHDBlock_Result = self._ask(FUNCTIONS["HX_BLK_GetHDBlock"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_LD_GetInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_LD_GetInfo_Result:
        """Calls HX_LD_GetInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_LD_GetInfo_Result = self._ask(FUNCTIONS["HX_LD_GetInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_LD_GetTargetLDInfo(
        self,
        *,
        AdapterID: int = 0,
        LD_ID: int = 0,
    ) -> HX_LD_GetTargetLDInfo_Result:
        """Calls HX_LD_GetTargetLDInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LD_ID: the virtual disk; an ID, 0 to 65534 (16 bits)
        """
        answer: HX_LD_GetTargetLDInfo_Result = self._ask(FUNCTIONS["HX_LD_GetTargetLDInfo"], {
            "AdapterID": AdapterID,
            "LD_ID": LD_ID,
        })
        return answer

    def HX_LD_Delete(
        self,
        *,
        AdapterID: int = 0,
        LD_ID: int = 0,
        deleteMBR: int = 0,
    ) -> None:
        """Calls HX_LD_Delete.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LD_ID: the virtual disk; an ID, 0 to 65534 (16 bits)
        deleteMBR: whether its master boot record is erased first; 0 no, 1 yes (8 bits)
        """
        self._ask(FUNCTIONS["HX_LD_Delete"], {
            "AdapterID": AdapterID,
            "LD_ID": LD_ID,
            "deleteMBR": deleteMBR,
        })

    def HX_LD_Create(
        self,
        *,
        AdapterID: int = 0,
        RaidMode: int = 0,
        HDCount: int = 0,
        RoundingScheme: int = 0,
        SubLDCount: int = 0,
        NumParityDisk: int = 0,
        StripeBlockSize: int = 0,
        CachePolicy: int = 0,
        InitializationOption: int = 0,
        SectorCoefficient: int = 0,
        HDIDs: Sequence[int] = (),
        Name: str = "",
        Size: int = 0,
    ) -> None:
        """Calls HX_LD_Create.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        HDCount: how many of HDIDs count; disks, 0 to 128 (8 bits)
        RoundingScheme: how the size is rounded down; codes: "Roundings" (8 bits)
        SubLDCount: the legs of a level such as 50; legs; 0 where the level has none (8 bits)
        NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the
          level (8 bits)
        StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that
          StripeSizeSupported of Adapter_Info has (16 bits)
        CachePolicy: the cache to begin with; bits; codes: "Bits of the cache" (8 bits)
        InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (8
          bits)
        SectorCoefficient: how large a sector is for the host; sectors of 512 bytes in one of the
          host's; 1 is usual (8 bits)
        HDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        Size: how large it is to be; sectors of 512 bytes; 0: as many as fit (64 bits)
        """
        self._ask(FUNCTIONS["HX_LD_Create"], {
            "AdapterID": AdapterID,
            "RaidMode": RaidMode,
            "HDCount": HDCount,
            "RoundingScheme": RoundingScheme,
            "SubLDCount": SubLDCount,
            "NumParityDisk": NumParityDisk,
            "StripeBlockSize": StripeBlockSize,
            "CachePolicy": CachePolicy,
            "InitializationOption": InitializationOption,
            "SectorCoefficient": SectorCoefficient,
            "HDIDs": HDIDs,
            "Name": Name,
            "Size": Size,
        })

    def HX_LD_QuickCreate(
        self,
        *,
        AdapterID: int = 0,
        Type: int = 0,
    ) -> None:
        """Calls HX_LD_QuickCreate.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        Type: which level is chosen for all free disks; 0 RAID 0; else the best level that they
          allow (8 bits)
        """
        self._ask(FUNCTIONS["HX_LD_QuickCreate"], {
            "AdapterID": AdapterID,
            "Type": Type,
        })

    def HX_LD_GetMaxSize(
        self,
        *,
        AdapterID: int = 0,
        RaidMode: int = 0,
        HDCount: int = 0,
        RoundingScheme: int = 0,
        SubLDCount: int = 0,
        NumParityDisk: int = 0,
        StripeBlockSize: int = 0,
        CachePolicy: int = 0,
        InitializationOption: int = 0,
        HDIDs: Sequence[int] = (),
        Name: str = "",
        Size: int = 0,
    ) -> HX_LD_GetMaxSize_Result:
        """Calls HX_LD_GetMaxSize and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        HDCount: how many of HDIDs count; disks, 0 to 128 (8 bits)
        RoundingScheme: how the size is rounded down; codes: "Roundings" (8 bits)
        SubLDCount: the legs of a level such as 50; legs; 0 where the level has none (8 bits)
        NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the
          level (8 bits)
        StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that
          StripeSizeSupported of Adapter_Info has (16 bits)
        CachePolicy: the cache to begin with; bits; codes: "Bits of the cache" (8 bits)
        InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (8
          bits)
        HDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        Size: how large it is to be; sectors of 512 bytes; 0: as many as fit (64 bits)
        """
        answer: HX_LD_GetMaxSize_Result = self._ask(FUNCTIONS["HX_LD_GetMaxSize"], {
            "AdapterID": AdapterID,
            "RaidMode": RaidMode,
            "HDCount": HDCount,
            "RoundingScheme": RoundingScheme,
            "SubLDCount": SubLDCount,
            "NumParityDisk": NumParityDisk,
            "StripeBlockSize": StripeBlockSize,
            "CachePolicy": CachePolicy,
            "InitializationOption": InitializationOption,
            "HDIDs": HDIDs,
            "Name": Name,
            "Size": Size,
        })
        return answer

    def HX_LD_PauseAll(
        self,
        *,
        AdapterID: int = 0,
    ) -> None:
        """Calls HX_LD_PauseAll.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        """
        self._ask(FUNCTIONS["HX_LD_PauseAll"], {
            "AdapterID": AdapterID,
        })

    def HX_LD_GetStatus(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_LD_GetStatus_Result:
        """Calls HX_LD_GetStatus and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_LD_GetStatus_Result = self._ask(FUNCTIONS["HX_LD_GetStatus"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_LD_GetConfig(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_LD_GetConfig_Result:
        """Calls HX_LD_GetConfig and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_LD_GetConfig_Result = self._ask(FUNCTIONS["HX_LD_GetConfig"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_LD_SetConfig(
        self,
        *,
        AdapterID: int = 0,
        LD_ID: int = 0,
        CacheMode: int = 0,
        AutoRebuildOn: int = 0,
        Status: int = 0,
        LDID: int = 0,
        Name: str = "",
    ) -> None:
        """Calls HX_LD_SetConfig.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LD_ID: the virtual disk; an ID, 0 to 65534 (16 bits)
        CacheMode: the cache as it is set and as it works; bits; codes: "Bits of the cache" (8 bits)
        AutoRebuildOn: whether a hot spare steps in for its members; 0 off, 1 on (8 bits)
        Status: passed on; the virtual controller does not look at it; codes: "States" (8 bits)
        LDID: passed on; LD_ID says which virtual disk is set; an ID, 0 to 65534 (16 bits)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        """
        self._ask(FUNCTIONS["HX_LD_SetConfig"], {
            "AdapterID": AdapterID,
            "LD_ID": LD_ID,
            "CacheMode": CacheMode,
            "AutoRebuildOn": AutoRebuildOn,
            "Status": Status,
            "LDID": LDID,
            "Name": Name,
        })

    def HX_LD_StartRebuild(
        self,
        *,
        AdapterID: int = 0,
        LD_ID: int = 0,
        Rebuild_HD_ID: int = 0,
    ) -> None:
        """Calls HX_LD_StartRebuild.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LD_ID: the virtual disk; an ID, 0 to 65534 (16 bits)
        Rebuild_HD_ID: the disk that takes the lost one's place; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_LD_StartRebuild"], {
            "AdapterID": AdapterID,
            "LD_ID": LD_ID,
            "Rebuild_HD_ID": Rebuild_HD_ID,
        })

    def HX_LD_StartConsistencyCheck(
        self,
        *,
        AdapterID: int = 0,
        LD_ID: int = 0,
        Type: int = 0,
    ) -> None:
        """Calls HX_LD_StartConsistencyCheck.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LD_ID: the virtual disk; an ID, 0 to 65534 (16 bits)
        Type: whether what disagrees is mended; codes: "Consistency checks" (8 bits)
        """
        self._ask(FUNCTIONS["HX_LD_StartConsistencyCheck"], {
            "AdapterID": AdapterID,
            "LD_ID": LD_ID,
            "Type": Type,
        })

    def HX_LD_StartINIT(
        self,
        *,
        AdapterID: int = 0,
        LD_ID: int = 0,
        Init_Type: int = 0,
    ) -> None:
        """Calls HX_LD_StartINIT.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LD_ID: the virtual disk; an ID, 0 to 65534 (16 bits)
        Init_Type: how it is initialised; none is not taken; codes: "Initialisations" (8 bits)
        """
        self._ask(FUNCTIONS["HX_LD_StartINIT"], {
            "AdapterID": AdapterID,
            "LD_ID": LD_ID,
            "Init_Type": Init_Type,
        })

    def HX_LD_StartMigration(
        self,
        *,
        AdapterID: int = 0,
        LDID: int = 0,
        RaidMode: int = 0,
        HDCount: int = 0,
        HDIDs: Sequence[int] = (),
    ) -> None:
        """Calls HX_LD_StartMigration.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LDID: the virtual disk; an ID, 0 to 65534 (16 bits)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        HDCount: how many of HDIDs count; disks, 0 to 128 (8 bits)
        HDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        """
        self._ask(FUNCTIONS["HX_LD_StartMigration"], {
            "AdapterID": AdapterID,
            "LDID": LDID,
            "RaidMode": RaidMode,
            "HDCount": HDCount,
            "HDIDs": HDIDs,
        })

    def HX_LD_GetMigratedLdSize(
        self,
        *,
        AdapterID: int = 0,
        LDID: int = 0,
        RaidMode: int = 0,
        HDCount: int = 0,
        HDIDs: Sequence[int] = (),
    ) -> HX_LD_GetMigratedLdSize_Result:
        """Calls HX_LD_GetMigratedLdSize and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LDID: the virtual disk; an ID, 0 to 65534 (16 bits)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        HDCount: how many of HDIDs count; disks, 0 to 128 (8 bits)
        HDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        """
        answer: HX_LD_GetMigratedLdSize_Result = self._ask(FUNCTIONS["HX_LD_GetMigratedLdSize"], {
            "AdapterID": AdapterID,
            "LDID": LDID,
            "RaidMode": RaidMode,
            "HDCount": HDCount,
            "HDIDs": HDIDs,
        })
        return answer

    def HX_LD_BGAControl(
        self,
        *,
        AdapterID: int = 0,
        LD_ID: int = 0,
        Actions: int = 0,
    ) -> None:
        """Calls HX_LD_BGAControl.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LD_ID: the virtual disk; an ID, 0 to 65534 (16 bits)
        Actions: what becomes of the activity; codes: "Control of activities" (8 bits)
        """
        self._ask(FUNCTIONS["HX_LD_BGAControl"], {
            "AdapterID": AdapterID,
            "LD_ID": LD_ID,
            "Actions": Actions,
        })

    def HX_LD_Import(
        self,
        *,
        AdapterID: int = 0,
        LD_ID: int = 0,
    ) -> None:
        """Calls HX_LD_Import.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        LD_ID: the virtual disk; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_LD_Import"], {
            "AdapterID": AdapterID,
            "LD_ID": LD_ID,
        })

    def HX_Flash_Erase(
        self,
        *,
        AdapterID: int = 0,
        Page: int = 0,
    ) -> None:
        """Calls HX_Flash_Erase.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        Page: the image that is erased; codes: "Images in the flash" (8 bits)
        """
        self._ask(FUNCTIONS["HX_Flash_Erase"], {
            "AdapterID": AdapterID,
            "Page": Page,
        })

    def HX_LogonUser(
        self,
        *,
        lpszUsername: str = "",
        lpszDomain: str = "",
        lpszPassword: str = "",
    ) -> HX_LogonUser_Result:
        """Calls HX_LogonUser and returns what it answers.

        lpszUsername: the user's name (at most 127 bytes)
        lpszDomain: taken, and not looked at (at most 127 bytes)
        lpszPassword: the user's password (at most 127 bytes)
        """
        answer: HX_LogonUser_Result = self._ask(FUNCTIONS["HX_LogonUser"], {
            "lpszUsername": lpszUsername,
            "lpszDomain": lpszDomain,
            "lpszPassword": lpszPassword,
        })
        return answer

    def HX_GetUserName(
        self,
    ) -> HX_GetUserName_Result:
        """Calls HX_GetUserName and returns what it answers.
        """
        answer: HX_GetUserName_Result = self._ask(FUNCTIONS["HX_GetUserName"], {})
        return answer

    def HX_GetUserGroup(
        self,
        *,
        lpszUsername: str = "",
        lpszDomain: str = "",
    ) -> HX_GetUserGroup_Result:
        """Calls HX_GetUserGroup and returns what it answers.

        lpszUsername: the user's name (at most 127 bytes)
        lpszDomain: taken, and not looked at (at most 127 bytes)
        """
        answer: HX_GetUserGroup_Result = self._ask(FUNCTIONS["HX_GetUserGroup"], {
            "lpszUsername": lpszUsername,
            "lpszDomain": lpszDomain,
        })
        return answer

    def HX_DG_Create(
        self,
        *,
        AdapterID: int = 0,
        Name: str = "",
        RaidMode: int = 0,
        SubVDCount: int = 0,
        NumParityDisk: int = 0,
        StripeBlockSize: int = 0,
        Size: int = 0,
        BlockSize: int = 0,
        InitializationOption: int = 0,
        PDCount: int = 0,
        PDIDs: Sequence[int] = (),
    ) -> HX_DG_Create_Result:
        """Calls HX_DG_Create and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        SubVDCount: the legs of a level such as 50; legs; 0 where the level has none (8 bits)
        NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the
          level (8 bits)
        StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that
          StripeSizeSupported of Adapter_Info has (16 bits)
        Size: how large it is to be; sectors of 512 bytes; 0: as many as fit (64 bits)
        BlockSize: how large a sector of the disks is; bytes, 512; 0 means 512 (32 bits)
        InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (8
          bits)
        PDCount: how many of PDIDs count; disks, 0 to 128 (8 bits)
        PDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        """
        answer: HX_DG_Create_Result = self._ask(FUNCTIONS["HX_DG_Create"], {
            "AdapterID": AdapterID,
            "Name": Name,
            "RaidMode": RaidMode,
            "SubVDCount": SubVDCount,
            "NumParityDisk": NumParityDisk,
            "StripeBlockSize": StripeBlockSize,
            "Size": Size,
            "BlockSize": BlockSize,
            "InitializationOption": InitializationOption,
            "PDCount": PDCount,
            "PDIDs": PDIDs,
        })
        return answer

    def HX_DG_GetSizeOnly(
        self,
        *,
        AdapterID: int = 0,
        DGID: int = 0,
        Name: str = "",
        RaidMode: int = 0,
        SubVDCount: int = 0,
        NumParityDisk: int = 0,
        StripeBlockSize: int = 0,
        Size: int = 0,
        BlockSize: int = 0,
        InitializationOption: int = 0,
        PDCount: int = 0,
        PDIDs: Sequence[int] = (),
    ) -> HX_DG_GetSizeOnly_Result:
        """Calls HX_DG_GetSizeOnly and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        DGID: the disk group; an ID, 0 to 65534; 65535 in HX_DG_GetSizeOnly: a new one (16 bits)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        SubVDCount: the legs of a level such as 50; legs; 0 where the level has none (8 bits)
        NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the
          level (8 bits)
        StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that
          StripeSizeSupported of Adapter_Info has (16 bits)
        Size: how large it is to be; sectors of 512 bytes; 0: as many as fit (64 bits)
        BlockSize: how large a sector of the disks is; bytes, 512; 0 means 512 (32 bits)
        InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (8
          bits)
        PDCount: how many of PDIDs count; disks, 0 to 128 (8 bits)
        PDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        """
        answer: HX_DG_GetSizeOnly_Result = self._ask(FUNCTIONS["HX_DG_GetSizeOnly"], {
            "AdapterID": AdapterID,
            "DGID": DGID,
            "Name": Name,
            "RaidMode": RaidMode,
            "SubVDCount": SubVDCount,
            "NumParityDisk": NumParityDisk,
            "StripeBlockSize": StripeBlockSize,
            "Size": Size,
            "BlockSize": BlockSize,
            "InitializationOption": InitializationOption,
            "PDCount": PDCount,
            "PDIDs": PDIDs,
        })
        return answer

    def HX_DG_Modify(
        self,
        *,
        AdapterID: int = 0,
        DGID: int = 0,
        Name: str = "",
        RaidMode: int = 0,
        SubVDCount: int = 0,
        NumParityDisk: int = 0,
        StripeBlockSize: int = 0,
        Size: int = 0,
        BlockSize: int = 0,
        InitializationOption: int = 0,
        PDCount: int = 0,
        PDIDs: Sequence[int] = (),
    ) -> None:
        """Calls HX_DG_Modify.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        DGID: the disk group; an ID, 0 to 65534; 65535 in HX_DG_GetSizeOnly: a new one (16 bits)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        SubVDCount: the legs of a level such as 50; legs; 0 where the level has none (8 bits)
        NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the
          level (8 bits)
        StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that
          StripeSizeSupported of Adapter_Info has (16 bits)
        Size: how large it is to be; sectors of 512 bytes; 0: as many as fit (64 bits)
        BlockSize: how large a sector of the disks is; bytes, 512; 0 means 512 (32 bits)
        InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (8
          bits)
        PDCount: how many of PDIDs count; disks, 0 to 128 (8 bits)
        PDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        """
        self._ask(FUNCTIONS["HX_DG_Modify"], {
            "AdapterID": AdapterID,
            "DGID": DGID,
            "Name": Name,
            "RaidMode": RaidMode,
            "SubVDCount": SubVDCount,
            "NumParityDisk": NumParityDisk,
            "StripeBlockSize": StripeBlockSize,
            "Size": Size,
            "BlockSize": BlockSize,
            "InitializationOption": InitializationOption,
            "PDCount": PDCount,
            "PDIDs": PDIDs,
        })

    def HX_DG_GetInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_DG_GetInfo_Result:
        """Calls HX_DG_GetInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_DG_GetInfo_Result = self._ask(FUNCTIONS["HX_DG_GetInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_DG_Delete(
        self,
        *,
        AdapterID: int = 0,
        DG_ID: int = 0,
    ) -> None:
        """Calls HX_DG_Delete.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        DG_ID: the disk group; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_DG_Delete"], {
            "AdapterID": AdapterID,
            "DG_ID": DG_ID,
        })

    def HX_CreateOrModify_VD(
        self,
        *,
        AdapterID: int = 0,
        VDID: int = 0,
        DGID: int = 0,
        Name: str = "",
        RaidMode: int = 0,
        SubVDCount: int = 0,
        NumParityDisk: int = 0,
        StripeBlockSize: int = 0,
        Size: int = 0,
        BlockSize: int = 0,
        InitializationOption: int = 0,
    ) -> None:
        """Calls HX_CreateOrModify_VD.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        VDID: the virtual disk; an ID, 0 to 65534; 65535 makes a new one (16 bits)
        DGID: the disk group; an ID, 0 to 65534; 65535 in HX_DG_GetSizeOnly: a new one (16 bits)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        SubVDCount: the legs of a level such as 50; legs; 0 where the level has none (8 bits)
        NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the
          level (8 bits)
        StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that
          StripeSizeSupported of Adapter_Info has (16 bits)
        Size: how large it is to be; sectors of 512 bytes; 0: as many as fit (64 bits)
        BlockSize: how large a sector of the disks is; bytes, 512; 0 means 512 (32 bits)
        InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (8
          bits)
        """
        self._ask(FUNCTIONS["HX_CreateOrModify_VD"], {
            "AdapterID": AdapterID,
            "VDID": VDID,
            "DGID": DGID,
            "Name": Name,
            "RaidMode": RaidMode,
            "SubVDCount": SubVDCount,
            "NumParityDisk": NumParityDisk,
            "StripeBlockSize": StripeBlockSize,
            "Size": Size,
            "BlockSize": BlockSize,
            "InitializationOption": InitializationOption,
        })

    def HX_LD_DG_StartRebuild(
        self,
        *,
        AdapterID: int = 0,
        ID: int = 0,
        RebuildType: int = 0,
        PDCount: int = 0,
        PDIDs: Sequence[int] = (),
    ) -> None:
        """Calls HX_LD_DG_StartRebuild.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        ID: the virtual disk or disk group; an ID, 0 to 65534 (16 bits)
        RebuildType: which of the two; codes: "What is rebuilt" (8 bits)
        PDCount: how many of PDIDs count; disks, 0 to 128 (8 bits)
        PDIDs: the disks that take the places of the lost ones; an ID, 0 to 65534 (at most 128, 16
          bits each)
        """
        self._ask(FUNCTIONS["HX_LD_DG_StartRebuild"], {
            "AdapterID": AdapterID,
            "ID": ID,
            "RebuildType": RebuildType,
            "PDCount": PDCount,
            "PDIDs": PDIDs,
        })

    def HX_DG_StartMigration(
        self,
        *,
        AdapterID: int = 0,
        DGID: int = 0,
        RaidMode: int = 0,
        NumParityDisk: int = 0,
        PDCount: int = 0,
        PDIDs: Sequence[int] = (),
    ) -> None:
        """Calls HX_DG_StartMigration.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        DGID: the disk group; an ID, 0 to 65534; 65535 in HX_DG_GetSizeOnly: a new one (16 bits)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the
          level (8 bits)
        PDCount: how many of PDIDs count; disks, 0 to 128 (8 bits)
        PDIDs: the disks, in the order of the members; an ID, 0 to 65534 (at most 128, 16 bits each)
        """
        self._ask(FUNCTIONS["HX_DG_StartMigration"], {
            "AdapterID": AdapterID,
            "DGID": DGID,
            "RaidMode": RaidMode,
            "NumParityDisk": NumParityDisk,
            "PDCount": PDCount,
            "PDIDs": PDIDs,
        })

    def HX_DG_BGAControl(
        self,
        *,
        AdapterID: int = 0,
        DG_ID: int = 0,
        Actions: int = 0,
    ) -> None:
        """Calls HX_DG_BGAControl.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        DG_ID: the disk group; an ID, 0 to 65534 (16 bits)
        Actions: what becomes of the activity; codes: "Control of activities" (8 bits)
        """
        self._ask(FUNCTIONS["HX_DG_BGAControl"], {
            "AdapterID": AdapterID,
            "DG_ID": DG_ID,
            "Actions": Actions,
        })

    def HX_DG_GetConfig(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_DG_GetConfig_Result:
        """Calls HX_DG_GetConfig and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_DG_GetConfig_Result = self._ask(FUNCTIONS["HX_DG_GetConfig"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_DG_SetConfig(
        self,
        *,
        AdapterID: int = 0,
        DG_ID: int = 0,
        DGID: int = 0,
        WriteCacheOn: int = 0,
        Name: str = "",
    ) -> None:
        """Calls HX_DG_SetConfig.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        DG_ID: the disk group; an ID, 0 to 65534 (16 bits)
        DGID: passed on; DG_ID says which disk group is set; an ID, 0 to 65534 (16 bits)
        WriteCacheOn: whether its disks' own write caches are on; 0 off, 1 on (8 bits)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        """
        self._ask(FUNCTIONS["HX_DG_SetConfig"], {
            "AdapterID": AdapterID,
            "DG_ID": DG_ID,
            "DGID": DGID,
            "WriteCacheOn": WriteCacheOn,
            "Name": Name,
        })

    def HX_Flash_Option(
        self,
        *,
        Actions: int = 0,
        AdapterID: int = 0,
        Type: int = 0,
        filepath: str = "",
    ) -> None:
        """Calls HX_Flash_Option.

        Actions: which way the image goes; 15 from the file to the adapter, 240 from the adapter to
          the file; else nothing is done (8 bits)
        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        Type: the image; codes: "Images in the flash" (8 bits)
        filepath: the image's file; one that is written is made with mode 0644 (at most 255 bytes)
        """
        self._ask(FUNCTIONS["HX_Flash_Option"], {
            "Actions": Actions,
            "AdapterID": AdapterID,
            "Type": Type,
            "filepath": filepath,
        })

    def HX_BIOS_Version(
        self,
        *,
        filepath: str = "",
    ) -> HX_BIOS_Version_Result:
        """Calls HX_BIOS_Version and returns what it answers.

        filepath: the image's file, of which 64 bytes are read (at most 255 bytes)
        """
        answer: HX_BIOS_Version_Result = self._ask(FUNCTIONS["HX_BIOS_Version"], {
            "filepath": filepath,
        })
        return answer

    def HX_PD_FreeHD2DGSpare(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
        DG_ID: int = 0,
    ) -> None:
        """Calls HX_PD_FreeHD2DGSpare.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        DG_ID: the disk group; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_PD_FreeHD2DGSpare"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
            "DG_ID": DG_ID,
        })

    def HX_BBU_GetInfo(
        self,
        *,
        AdapterID: int = 0,
    ) -> HX_BBU_GetInfo_Result:
        """Calls HX_BBU_GetInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        """
        answer: HX_BBU_GetInfo_Result = self._ask(FUNCTIONS["HX_BBU_GetInfo"], {
            "AdapterID": AdapterID,
        })
        return answer

    def HX_BBU_SetThreshold(
        self,
        *,
        AdapterID: int = 0,
        tempLowerBound: int = 0,
        tempUpperBound: int = 0,
        volLowerBound: int = 0,
        volUpperBound: int = 0,
    ) -> None:
        """Calls HX_BBU_SetThreshold.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        tempLowerBound: it is reported below it; degrees Celsius (16 bits)
        tempUpperBound: it is reported above it; degrees Celsius (16 bits)
        volLowerBound: it is reported below it; millivolts (16 bits)
        volUpperBound: it is reported above it; millivolts (16 bits)
        """
        self._ask(FUNCTIONS["HX_BBU_SetThreshold"], {
            "AdapterID": AdapterID,
            "tempLowerBound": tempLowerBound,
            "tempUpperBound": tempUpperBound,
            "volLowerBound": volLowerBound,
            "volUpperBound": volUpperBound,
        })

    def HX_BBU_ChangePower(
        self,
        *,
        AdapterID: int = 0,
        action: int = 0,
    ) -> None:
        """Calls HX_BBU_ChangePower.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        action: what the battery is to do; codes: "What the battery does" (8 bits)
        """
        self._ask(FUNCTIONS["HX_BBU_ChangePower"], {
            "AdapterID": AdapterID,
            "action": action,
        })

    def HX_BBU_SetStatus(
        self,
        *,
        AdapterID: int = 0,
        status: int = 0,
    ) -> None:
        """Calls HX_BBU_SetStatus.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        status: whether the battery is used; 0 off, 1 on (8 bits)
        """
        self._ask(FUNCTIONS["HX_BBU_SetStatus"], {
            "AdapterID": AdapterID,
            "status": status,
        })

    def HX_BBU_SetMaxCapacity(
        self,
        *,
        maxCapacity: int = 0,
        BBU_ID: int = 0,
    ) -> None:
        """Calls HX_BBU_SetMaxCapacity.

        maxCapacity: taken, and not passed on; mAh (16 bits)
        BBU_ID: taken, and not passed on; 0 to 255 (8 bits)
        """
        self._ask(FUNCTIONS["HX_BBU_SetMaxCapacity"], {
            "maxCapacity": maxCapacity,
            "BBU_ID": BBU_ID,
        })

    def HX_BBU_ActRelearn(
        self,
        *,
        AdapterID: int = 0,
    ) -> None:
        """Calls HX_BBU_ActRelearn.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        """
        self._ask(FUNCTIONS["HX_BBU_ActRelearn"], {
            "AdapterID": AdapterID,
        })

    def HX_PD_StartDataScrub(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
    ) -> None:
        """Calls HX_PD_StartDataScrub.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_PD_StartDataScrub"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
        })

    def HX_LD_Create_OnDG(
        self,
        *,
        AdapterID: int = 0,
        DGID: int = 0,
        Name: str = "",
        StripeBlockSize: int = 0,
        Size: int = 0,
        RoundingScheme: int = 0,
        CachePolicy: int = 0,
        DGSlotNum: int = 0,
        InitializationOption: int = 0,
        SectorCoefficient: int = 0,
    ) -> None:
        """Calls HX_LD_Create_OnDG.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        DGID: the disk group; an ID, 0 to 65534; 65535 in HX_DG_GetSizeOnly: a new one (16 bits)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        StripeBlockSize: what of a stripe lies on one disk; KiB; 0: that of the disk group (16 bits)
        Size: how large it is to be; sectors of 512 bytes; 0: as many as fit (64 bits)
        RoundingScheme: how the size is rounded down; codes: "Roundings" (8 bits)
        CachePolicy: the cache to begin with; bits; codes: "Bits of the cache" (8 bits)
        DGSlotNum: the slot of the disk group; 0 to 31 (8 bits)
        InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (8
          bits)
        SectorCoefficient: how large a sector is for the host; sectors of 512 bytes in one of the
          host's; 1 is usual (8 bits)
        """
        self._ask(FUNCTIONS["HX_LD_Create_OnDG"], {
            "AdapterID": AdapterID,
            "DGID": DGID,
            "Name": Name,
            "StripeBlockSize": StripeBlockSize,
            "Size": Size,
            "RoundingScheme": RoundingScheme,
            "CachePolicy": CachePolicy,
            "DGSlotNum": DGSlotNum,
            "InitializationOption": InitializationOption,
            "SectorCoefficient": SectorCoefficient,
        })

    def HX_LD_Modify_OnDG(
        self,
        *,
        AdapterID: int = 0,
        VDID: int = 0,
        DGID: int = 0,
        Name: str = "",
        RaidMode: int = 0,
        SubVDCount: int = 0,
        NumParityDisk: int = 0,
        StripeBlockSize: int = 0,
        Size: int = 0,
        RoundingScheme: int = 0,
        CachePolicy: int = 0,
        InitializationOption: int = 0,
        SectorCoefficient: int = 0,
        BlockSize: int = 0,
    ) -> None:
        """Calls HX_LD_Modify_OnDG.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        VDID: the virtual disk; an ID, 0 to 65534; 65535 makes a new one (16 bits)
        DGID: the disk group; an ID, 0 to 65534; 65535 in HX_DG_GetSizeOnly: a new one (16 bits)
        Name: the name that administrators give; at most 15 bytes (at most 15 bytes)
        RaidMode: the RAID level; codes: "RAID levels" (8 bits)
        SubVDCount: the legs of a level such as 50; legs; 0 where the level has none (8 bits)
        NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the
          level (8 bits)
        StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that
          StripeSizeSupported of Adapter_Info has (16 bits)
        Size: how large it is to be; sectors of 512 bytes; 0: as many as fit (64 bits)
        RoundingScheme: how the size is rounded down; codes: "Roundings" (8 bits)
        CachePolicy: the cache to begin with; bits; codes: "Bits of the cache" (8 bits)
        InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (8
          bits)
        SectorCoefficient: how large a sector is for the host; sectors of 512 bytes in one of the
          host's; 1 is usual (8 bits)
        BlockSize: how large a sector of the disks is; bytes, 512; 0 means 512 (32 bits)
        """
        self._ask(FUNCTIONS["HX_LD_Modify_OnDG"], {
            "AdapterID": AdapterID,
            "VDID": VDID,
            "DGID": DGID,
            "Name": Name,
            "RaidMode": RaidMode,
            "SubVDCount": SubVDCount,
            "NumParityDisk": NumParityDisk,
            "StripeBlockSize": StripeBlockSize,
            "Size": Size,
            "RoundingScheme": RoundingScheme,
            "CachePolicy": CachePolicy,
            "InitializationOption": InitializationOption,
            "SectorCoefficient": SectorCoefficient,
            "BlockSize": BlockSize,
        })

    def HX_PD_GetSpareInfo(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetSpareInfo_Result:
        """Calls HX_PD_GetSpareInfo and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetSpareInfo_Result = self._ask(FUNCTIONS["HX_PD_GetSpareInfo"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_GetBGAStatus(
        self,
        *,
        AdapterID: int = 0,
        requestType: int = 1,
        startingIndexOrId: int = 0,
        numRequested: int = PAGE,
    ) -> HX_PD_GetBGAStatus_Result:
        """Calls HX_PD_GetBGAStatus and returns what it answers.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (8
          bits)
        startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (16 bits)
        numRequested: how many entries are wanted; 0 to 32767 (16 bits)
        """
        answer: HX_PD_GetBGAStatus_Result = self._ask(FUNCTIONS["HX_PD_GetBGAStatus"], {
            "AdapterID": AdapterID,
            "requestType": requestType,
            "startingIndexOrId": startingIndexOrId,
            "numRequested": numRequested,
        })
        return answer

    def HX_PD_BGAControl(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
        Action: int = 0,
    ) -> None:
        """Calls HX_PD_BGAControl.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        Action: what becomes of the disk's activity; codes: "Control of activities" (8 bits)
        """
        self._ask(FUNCTIONS["HX_PD_BGAControl"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
            "Action": Action,
        })

    def HX_PD_StartMediaPatrol(
        self,
        *,
        AdapterID: int = 0,
        HD_ID: int = 0,
    ) -> None:
        """Calls HX_PD_StartMediaPatrol.

        AdapterID: the adapter; below HX_Adapter_GetCount's (8 bits)
        HD_ID: the disk; an ID, 0 to 65534 (16 bits)
        """
        self._ask(FUNCTIONS["HX_PD_StartMediaPatrol"], {
            "AdapterID": AdapterID,
            "HD_ID": HD_ID,
        })

    def VX_Module_GetInfo(
        self,
    ) -> VX_Module_GetInfo_Result:
        """Calls VX_Module_GetInfo and returns what it answers.
        """
        answer: VX_Module_GetInfo_Result = self._ask(FUNCTIONS["VX_Module_GetInfo"], {})
        return answer

    def VX_HX_EVT_GetChangeCounters(
        self,
    ) -> VX_HX_EVT_GetChangeCounters_Result:
        """Calls VX_HX_EVT_GetChangeCounters and returns what it answers.
        """
        answer: VX_HX_EVT_GetChangeCounters_Result = self._ask(FUNCTIONS["VX_HX_EVT_GetChangeCounters"], {})
        return answer

    def VX_HX_EVT_GetEvents(
        self,
        *,
        n: int = 0,
        s: int = 0,
        e: int = 0,
        Lang: str = "",
    ) -> VX_HX_EVT_GetEvents_Result:
        """Calls VX_HX_EVT_GetEvents and returns what it answers.

        n: how many events are wanted, 0 to ask for the extent; in the result, how many there are; 0
          to 2000 (32 bits)
        s: the first event, by the store's own number; a number; 4294967295: the newest n up to e
          (32 bits)
        e: the last event; a number; not looked at unless s is 4294967295 (32 bits)
        Lang: taken, and not looked at: texts are English (at most 15 bytes)
        """
        answer: VX_HX_EVT_GetEvents_Result = self._ask(FUNCTIONS["VX_HX_EVT_GetEvents"], {
            "n": n,
            "s": s,
            "e": e,
            "Lang": Lang,
        })
        return answer

    def VX_HX_EVT_Reset(
        self,
    ) -> None:
        """Calls VX_HX_EVT_Reset.
        """
        self._ask(FUNCTIONS["VX_HX_EVT_Reset"], {})


# What the status of these controllers means; others have codes of their own.
CONTROLLERS = (
    " (virtual controller)",
    " (linuxmd)",
)
REFUSALS = {
    200: ("not_initialized", "The controller library is not open."),
    201: ("no_adapter", "No adapter has that number."),
    202: ("not_supported", "This adapter does not have that function."),
    203: ("null_address", "An address that the call needs is null."),
    204: ("bad_request_type", "A list is asked for by index (1) or by ID (2) only."),
    205: ("no_disk", "The adapter has no disk with that ID."),
    206: ("no_block", "The adapter has no block with that ID."),
    207: ("no_virtual_disk", "The adapter has no virtual disk with that ID."),
    208: ("no_disk_group", "The adapter has no disk group with that ID."),
    209: ("no_enclosure", "The adapter has no enclosure with that ID."),
    210: ("no_expander", "The adapter has no expander with that ID."),
    211: ("no_port_multiplier", "The adapter has no port multiplier with that ID."),
    212: ("no_battery", "The adapter has no battery."),
    213: ("no_image", "The adapter's flash has no readable image of that type."),
    214: ("no_piece", "The image ends before the piece of that number."),
    215: ("bad_action", "The call knows no such action, kind or state."),
    216: ("bad_count", "A count is larger than what there is, or than its record."),
    217: ("no_light", "No device of that kind has a light that can be switched."),
    218: ("holds_system", "One of the disks holds an operating system."),
    219: ("bad_level", "The adapter does not offer that RAID level."),
    220: ("bad_stripe_size", "The adapter does not offer that stripe size."),
    221: ("bad_rounding", "No rounding scheme has that code."),
    222: ("bad_sector_size", "Sectors are of 512 bytes and of no other size."),
    223: ("bad_disk_count", "The level cannot be made of so many disks or legs, or the adapter does not join so many."),
    224: ("disk_repeated", "A disk is named twice."),
    225: ("disk_taken", "A disk is a spare or serves a disk group, or carries blocks where a whole disk is needed."),
    226: ("no_space", "Not enough is left on one of the disks."),
    227: ("too_small", "What there is already would not fit into the result."),
    228: ("on_disk_group", "The virtual disk lies on a disk group, whose level and disks it has."),
    229: ("no_state", "The machine's state file cannot be opened, read or written."),
    230: ("no_memory", "Memory has run out."),
    231: ("disk_not_ready", "A disk is missing, failed, offline or from another controller."),
    232: ("disk_not_spare", "The disk is not a spare."),
    233: ("disk_in_use", "The disk serves a virtual disk or a disk group."),
    234: ("too_many_blocks", "A disk has as many blocks as it can have."),
    235: ("too_many_virtual_disks", "The adapter or the disk group has as many virtual disks as it can have."),
    236: ("too_many_disk_groups", "The adapter has as many disk groups as it can have."),
    237: ("too_many_spares", "The disk group has as many spares as it can have."),
    238: ("bad_slot", "The disk group has no slot with that number."),
    239: ("slot_taken", "A virtual disk lies in that slot already."),
    240: ("busy", "Another activity runs there; abort it or wait for its end."),
    241: ("no_activity", "No activity runs there."),
    242: ("wrong_state", "The state that it is in does not allow that."),
    243: ("not_redundant", "The level keeps no redundancy."),
    244: ("not_foreign", "The virtual disk belongs to this controller already."),
    245: ("bad_value", "A setting is outside its range."),
    246: ("bad_image", "The image is damaged or was made for another adapter."),
    247: ("bad_piece", "The piece is too long, or is not the next one."),
    248: ("not_erased", "The flash has to be erased before it is written."),
    249: ("no_change", "That is how it is already."),
    250: ("holds_virtual_disks", "The disk carries blocks of a virtual disk; force is needed to wipe it."),
    251: ("no_permission", "Only root may change that."),
    252: ("tool_failed", "A program that the controller needs has failed; the service log has its message."),
    253: ("held", "The device is in use: a file system, a volume manager or another program holds it."),
    254: ("unsettled", "The controller's rules undo each other without an end; report this error of the controller."),
    255: ("not_on_tape", "The tape that is played back has no answer to that call, or no further one."),
}

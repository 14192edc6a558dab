# Written by the program tools/xmlapi from the library's rows: change those, then run
# `xmlapi docs`. A test fails when this file is out of date.
"""The records of the library's results, under their names.

Records are named tuples. Numbers are int, truth values bool, texts str, arrays tuples of int; a
record inside a record has its own type. "Codes" name a table of the XML interface's reference,
docs/xml-api.md.
"""

from __future__ import annotations

from typing import NamedTuple

from ._shapes import Shape, data, flag, hexadecimal, number, numbers, ports, text


class Version_Info(NamedTuple):
    """The record Version_Info.

    VerMajor: major version; a number (U32)
    VerMinor: minor version; a number (U32)
    VerOEM: revision; OEM number of a driver; a number (U32)
    VerBuild: build; a number (U32)
    """

    VerMajor: int
    VerMinor: int
    VerOEM: int
    VerBuild: int


Version_Info_Shape = Shape(Version_Info, (
    ("VerMajor", number),
    ("VerMinor", number),
    ("VerOEM", number),
    ("VerBuild", number),
))


class Version_Info_2(NamedTuple):
    """The record Version_Info.

    VerMajor: major version; a number (U16)
    VerMinor: minor version; a number (U16)
    VerOEM: revision; OEM number of a driver; a number (U16)
    VerBuild: build; a number (U16)
    """

    VerMajor: int
    VerMinor: int
    VerOEM: int
    VerBuild: int


Version_Info_2_Shape = Shape(Version_Info_2, (
    ("VerMajor", number),
    ("VerMinor", number),
    ("VerOEM", number),
    ("VerBuild", number),
))


class Adapter_Info(NamedTuple):
    """The record Adapter_Info.

    DriverVersion: version of the driver
    BIOSVersion: version of the BIOS image
    FirmwareVersion: version of the firmware image
    BootLoaderVersion: version of the boot loader image
    SystemIOBusNumber: PCI bus; a number (U32)
    SlotNumber: PCI slot; a number (U32)
    InterruptLevel: interrupt line; a number (U32)
    InterruptVector: interrupt vector; a number (U32)
    VenID: PCI vendor ID; decimal (U16)
    SubVenID: PCI subsystem vendor ID; decimal (U16)
    DevID: PCI device ID; decimal (U16)
    SubDevID: PCI subsystem ID; decimal (U16)
    RevisionID: PCI revision; a number (U8)
    MaxPDPerVD: the most disks of a virtual disk; disks (U8)
    StripeSizeSupported: stripe sizes that can be chosen; bits: bit n for 2^n KiB, so that the bit's
      value is the size (U16)
    AdvancedFeatures: what else it can do; bits of the controller (U32)
    MaxPDPerDG: the most disks of a disk group; disks (U8)
    MaxVDPerDG: the most virtual disks on a disk group; virtual disks (U8)
    MaxParityDisks: the most parity disks of a virtual disk; disks (U8)
    PortCount: how many ports it has; ports; addresses are told of 8 at most (U8)
    PortSupportType: what the ports take; bits of the controller; of the virtual one 0x01 SAS, 0x02
      SATA (U8)
    Features: rates that can be set; bits; codes: "Bits of rates" (U8)
    AlarmSupport: whether it has an alarm (BOOL)
    MaxBlockPerPD: the most blocks of a disk; blocks (U8)
    MaxHD: the most disks, where 255 suffices; disks (U8)
    MaxHD_Ext: the most disks; disks (U16)
    MaxExpander: the most expanders; expanders (U8)
    MaxPM: the most port multipliers; port multipliers (U8)
    MaxLogicalDrive: the most virtual disks; virtual disks (U8)
    LogicalDriverMode: RAID levels that it offers; bits; codes: "Bits of RAID levels" (U16)
    DiskGroupSupport: whether it has disk groups (BOOL)
    WWN: world wide name; 8 bytes, the most significant first (8 of U8)
    MaxBufferSize: what one call can move; KiB; 0 no limit (U16)
    SerialNo: serial number; text; empty when it begins with 0
    PortSasAddress: SAS address of the port, for each port that there is; 8 bytes, the most
      significant first (at most 8 ports)
    img_health: whether all of the flash is sound (BOOL)
    autoload_img_health: whether the autoload image is sound (BOOL)
    boot_loader_img_health: whether the boot loader image is sound (BOOL)
    firmware_img_health: whether the firmware image is sound (BOOL)
    boot_rom_img_health: whether the BIOS image is sound (BOOL)
    hba_info_img_health: whether the page of adapter data is sound (BOOL)
    """

    DriverVersion: Version_Info
    BIOSVersion: Version_Info_2
    FirmwareVersion: Version_Info_2
    BootLoaderVersion: Version_Info_2
    SystemIOBusNumber: int
    SlotNumber: int
    InterruptLevel: int
    InterruptVector: int
    VenID: int
    SubVenID: int
    DevID: int
    SubDevID: int
    RevisionID: int
    MaxPDPerVD: int
    StripeSizeSupported: int
    AdvancedFeatures: int
    MaxPDPerDG: int
    MaxVDPerDG: int
    MaxParityDisks: int
    PortCount: int
    PortSupportType: int
    Features: int
    AlarmSupport: bool
    MaxBlockPerPD: int
    MaxHD: int
    MaxHD_Ext: int
    MaxExpander: int
    MaxPM: int
    MaxLogicalDrive: int
    LogicalDriverMode: int
    DiskGroupSupport: bool
    WWN: tuple[int, ...]
    MaxBufferSize: int
    SerialNo: str
    PortSasAddress: tuple[tuple[int, ...], ...]
    img_health: bool
    autoload_img_health: bool
    boot_loader_img_health: bool
    firmware_img_health: bool
    boot_rom_img_health: bool
    hba_info_img_health: bool


Adapter_Info_Shape = Shape(Adapter_Info, (
    ("DriverVersion", Version_Info_Shape.read),
    ("BIOSVersion", Version_Info_2_Shape.read),
    ("FirmwareVersion", Version_Info_2_Shape.read),
    ("BootLoaderVersion", Version_Info_2_Shape.read),
    ("SystemIOBusNumber", number),
    ("SlotNumber", number),
    ("InterruptLevel", number),
    ("InterruptVector", number),
    ("VenID", number),
    ("SubVenID", number),
    ("DevID", number),
    ("SubDevID", number),
    ("RevisionID", number),
    ("MaxPDPerVD", number),
    ("StripeSizeSupported", number),
    ("AdvancedFeatures", number),
    ("MaxPDPerDG", number),
    ("MaxVDPerDG", number),
    ("MaxParityDisks", number),
    ("PortCount", number),
    ("PortSupportType", number),
    ("Features", number),
    ("AlarmSupport", flag),
    ("MaxBlockPerPD", number),
    ("MaxHD", number),
    ("MaxHD_Ext", number),
    ("MaxExpander", number),
    ("MaxPM", number),
    ("MaxLogicalDrive", number),
    ("LogicalDriverMode", number),
    ("DiskGroupSupport", flag),
    ("WWN", numbers),
    ("MaxBufferSize", number),
    ("SerialNo", text),
    ("PortSasAddress", ports),
    ("img_health", flag),
    ("autoload_img_health", flag),
    ("boot_loader_img_health", flag),
    ("firmware_img_health", flag),
    ("boot_rom_img_health", flag),
    ("hba_info_img_health", flag),
))


class Adapter_Config_V2(NamedTuple):
    """The record Adapter_Config_V2.

    AlarmOn: whether the alarm may sound; 0 off, 1 on (BOOL)
    AutoRebuildOn: whether a hot spare steps in by itself (BOOL)
    BGARate: the controller's time for activities without a rate of their own; percent, 0 to 100
      (U8)
    SyncRate: the controller's time for consistency checks; percent, 0 to 100 (U8)
    InitRate: the controller's time for initialisations; percent, 0 to 100 (U8)
    RebuildRate: the controller's time for rebuilds; percent, 0 to 100 (U8)
    MigrationRate: the controller's time for migrations; percent, 0 to 100 (U8)
    CopybackRate: the controller's time for copybacks; percent, 0 to 100 (U8)
    PollSMARTStatus: whether disks are asked for their SMART state; 0 off, 1 on (U8)
    MediaPatrolRate: the controller's time for media patrols; percent, 0 to 100 (U8)
    CopyBack: whether data is copied back to a disk that replaces a lost one; 0 off, 1 on (U8)
    InterruptCoalescing: whether interrupts are joined; 0 off, 1 on (U8)
    ModuleConsolidate: whether modules are consolidated; 0 off, 1 on (U8)
    v_atapi_disable: whether the virtual ATAPI device is off; 0 it is on, 1 it is off (BOOL)
    port_phy_ctrl: how each port's phys are driven; a code of the controller; the virtual one keeps
      it (8 of U8)
    """

    AlarmOn: bool
    AutoRebuildOn: bool
    BGARate: int
    SyncRate: int
    InitRate: int
    RebuildRate: int
    MigrationRate: int
    CopybackRate: int
    PollSMARTStatus: int
    MediaPatrolRate: int
    CopyBack: int
    InterruptCoalescing: int
    ModuleConsolidate: int
    v_atapi_disable: bool
    port_phy_ctrl: tuple[int, ...]


Adapter_Config_V2_Shape = Shape(Adapter_Config_V2, (
    ("AlarmOn", flag),
    ("AutoRebuildOn", flag),
    ("BGARate", number),
    ("SyncRate", number),
    ("InitRate", number),
    ("RebuildRate", number),
    ("MigrationRate", number),
    ("CopybackRate", number),
    ("PollSMARTStatus", number),
    ("MediaPatrolRate", number),
    ("CopyBack", number),
    ("InterruptCoalescing", number),
    ("ModuleConsolidate", number),
    ("v_atapi_disable", flag),
    ("port_phy_ctrl", numbers),
))


class RequestHeader(NamedTuple):
    """The record RequestHeader.

    version: version of this header; 0 (U8)
    requestType: how the list is asked for; 1 from an index on, 2 the one entry of an ID (U8)
    startingIndexOrId: the first entry wanted, or the ID; 0 to 65535 (U16)
    numRequested: how many entries are wanted; 0 to 32767 (U16)
    numReturned: how many entries follow; not looked at in a command; 0 to 65535 (U16)
    nextStartingIndex: where the next page begins; not looked at in a command; 0 to 65534; 65535
      when nothing follows (U16)
    """

    version: int
    requestType: int
    startingIndexOrId: int
    numRequested: int
    numReturned: int
    nextStartingIndex: int


RequestHeader_Shape = Shape(RequestHeader, (
    ("version", number),
    ("requestType", number),
    ("startingIndexOrId", number),
    ("numRequested", number),
    ("numReturned", number),
    ("nextStartingIndex", number),
))


class Link_Endpoint(NamedTuple):
    """The record Link_Endpoint.

    DevID: number among the devices of its type; the ID of what this record is of; 0 to 65535 (U16)
    DevType: what the device is; codes: "Devices" (U8)
    PhyCnt: how many of PhyID count; phys, 0 to 8 (U8)
    PhyID: the link's phys; numbers of phys (8 of U8)
    SAS_Address: SAS address; 8 bytes, the most significant first (8 of U8)
    EnclosureID: the enclosure that it sits in; an ID; 65535 none (U16)
    """

    DevID: int
    DevType: int
    PhyCnt: int
    PhyID: tuple[int, ...]
    SAS_Address: tuple[int, ...]
    EnclosureID: int


Link_Endpoint_Shape = Shape(Link_Endpoint, (
    ("DevID", number),
    ("DevType", number),
    ("PhyCnt", number),
    ("PhyID", numbers),
    ("SAS_Address", numbers),
    ("EnclosureID", number),
))


class Link_Entity(NamedTuple):
    """The record Link_Entity.

    Parent: the end that it hangs on
    Self: the device's own end
    """

    Parent: Link_Endpoint
    Self: Link_Endpoint


Link_Entity_Shape = Shape(Link_Entity, (
    ("Parent", Link_Endpoint_Shape.read),
    ("Self", Link_Endpoint_Shape.read),
))


class HD_Info(NamedTuple):
    """The record HD_Info.

    Link: the device, and what it hangs on
    AdapterID: the adapter; below HX_Adapter_GetCount's (U8)
    Status: its state; bits; codes: "Bits of disk states" (U8)
    HDType: the same as ConnectionType and DeviceType, as older adapters tell it; bits 0 to 2
      connection, 3 optical, 4 tape, 5 enclosure (U8)
    PIOMode: highest PIO mode; number of the mode (U8)
    MDMAMode: highest multiword DMA mode; number of the mode (U8)
    UDMAMode: highest Ultra DMA mode; number of the mode (U8)
    ConnectionType: how it is connected; codes: "Connections" (U8)
    DeviceType: SCSI peripheral device type; 0 disk, 1 tape, 5 optical, 13 enclosure (U8)
    CanLogicalUsed: whether a virtual disk can be made of it; 0 no, 1 yes (U8)
    FeatureSupport: what it can do; bits; codes: "Bits of disk features" (U32)
    CurrentPIOMode: PIO mode in use; number of the mode (U8)
    CurrentMDMAMode: multiword DMA mode in use; number of the mode (U8)
    CurrentUDMAMode: Ultra DMA mode in use; number of the mode (U8)
    Model: model, without the maker
    SerialNo: serial number
    FWVersion: version of its firmware
    WWN: world wide name; 8 bytes, the most significant first (8 of U8)
    Size: how large it is; sectors of 512 bytes (U64)
    ActivityLEDStatus: activity light; 0 off, 1 on (U8)
    LocateLEDStatus: locate light; 0 off, 1 on (U8)
    ErrorLEDStatus: error light; 0 off, 1 on (U8)
    """

    Link: Link_Entity
    AdapterID: int
    Status: int
    HDType: int
    PIOMode: int
    MDMAMode: int
    UDMAMode: int
    ConnectionType: int
    DeviceType: int
    CanLogicalUsed: int
    FeatureSupport: int
    CurrentPIOMode: int
    CurrentMDMAMode: int
    CurrentUDMAMode: int
    Model: str
    SerialNo: str
    FWVersion: str
    WWN: tuple[int, ...]
    Size: int
    ActivityLEDStatus: int
    LocateLEDStatus: int
    ErrorLEDStatus: int


HD_Info_Shape = Shape(HD_Info, (
    ("Link", Link_Entity_Shape.read),
    ("AdapterID", number),
    ("Status", number),
    ("HDType", number),
    ("PIOMode", number),
    ("MDMAMode", number),
    ("UDMAMode", number),
    ("ConnectionType", number),
    ("DeviceType", number),
    ("CanLogicalUsed", number),
    ("FeatureSupport", number),
    ("CurrentPIOMode", number),
    ("CurrentMDMAMode", number),
    ("CurrentUDMAMode", number),
    ("Model", text),
    ("SerialNo", text),
    ("FWVersion", text),
    ("WWN", numbers),
    ("Size", number),
    ("ActivityLEDStatus", number),
    ("LocateLEDStatus", number),
    ("ErrorLEDStatus", number),
))


class Exp_Info(NamedTuple):
    """The record Exp_Info.

    Link: the device, and what it hangs on
    AdapterID: the adapter; below HX_Adapter_GetCount's (U8)
    Configuring: whether it is changing its own routing (BOOL)
    RouteTableConfigurable: whether its route table can be set (BOOL)
    PhyCount: how many phys it has; phys (U8)
    ExpChangeCount: how often its topology has changed; 0 to 65535; wraps (U16)
    MaxRouteIndexes: the most routes of a phy; routes (U16)
    VendorID: maker
    ProductID: product
    ProductRev: revision of the product
    ComponentVendorID: maker of the component
    ComponentID: the component; the maker's number (HX_U16)
    ComponentRevisionID: revision of the component; the maker's number (HX_U8)
    """

    Link: Link_Entity
    AdapterID: int
    Configuring: bool
    RouteTableConfigurable: bool
    PhyCount: int
    ExpChangeCount: int
    MaxRouteIndexes: int
    VendorID: str
    ProductID: str
    ProductRev: str
    ComponentVendorID: str
    ComponentID: int
    ComponentRevisionID: int


Exp_Info_Shape = Shape(Exp_Info, (
    ("Link", Link_Entity_Shape.read),
    ("AdapterID", number),
    ("Configuring", flag),
    ("RouteTableConfigurable", flag),
    ("PhyCount", number),
    ("ExpChangeCount", number),
    ("MaxRouteIndexes", number),
    ("VendorID", text),
    ("ProductID", text),
    ("ProductRev", text),
    ("ComponentVendorID", text),
    ("ComponentID", number),
    ("ComponentRevisionID", number),
))


class PM_Info(NamedTuple):
    """The record PM_Info.

    Link: the device, and what it hangs on
    AdapterID: the adapter; below HX_Adapter_GetCount's (U8)
    ProductRevision: revision of the product; the maker's number (U8)
    PMSpecRevision: revisions of the standard that it meets; bits, as its register GSCR[1] has them
      (U8)
    NumberOfPorts: how many ports it has; ports, 0 to 15 (U8)
    VendorId: maker; PCI vendor ID (U16)
    DeviceId: product; the maker's number (U16)
    """

    Link: Link_Entity
    AdapterID: int
    ProductRevision: int
    PMSpecRevision: int
    NumberOfPorts: int
    VendorId: int
    DeviceId: int


PM_Info_Shape = Shape(PM_Info, (
    ("Link", Link_Entity_Shape.read),
    ("AdapterID", number),
    ("ProductRevision", number),
    ("PMSpecRevision", number),
    ("NumberOfPorts", number),
    ("VendorId", number),
    ("DeviceId", number),
))


class HD_FreeSpaceInfo(NamedTuple):
    """The record HD_FreeSpaceInfo.

    ID: the disk; an ID, 0 to 65534 (U16)
    AdapterID: the adapter; below HX_Adapter_GetCount's (U8)
    isFixed: whether the disk is not removable (BOOL)
    Size: what is free of it; sectors of 512 bytes (U64)
    """

    ID: int
    AdapterID: int
    isFixed: bool
    Size: int


HD_FreeSpaceInfo_Shape = Shape(HD_FreeSpaceInfo, (
    ("ID", number),
    ("AdapterID", number),
    ("isFixed", flag),
    ("Size", number),
))


class HD_Config(NamedTuple):
    """The record HD_Config.

    WriteCacheOn: whether the disk's own write cache is on (BOOL)
    SMARTOn: whether its SMART state is looked at (BOOL)
    Online: whether it is online (BOOL)
    DriveSpeed: speed of its link; codes: "Link speeds" (U8)
    HDID: the disk; an ID, 0 to 65534 (U16)
    """

    WriteCacheOn: bool
    SMARTOn: bool
    Online: bool
    DriveSpeed: int
    HDID: int


HD_Config_Shape = Shape(HD_Config, (
    ("WriteCacheOn", flag),
    ("SMARTOn", flag),
    ("Online", flag),
    ("DriveSpeed", number),
    ("HDID", number),
))


class HD_SMART_Status(NamedTuple):
    """The record HD_SMART_Status.

    SmartThresholdExceeded: whether the disk announces its failure (BOOL)
    HDID: the disk; an ID, 0 to 65534 (U16)
    """

    SmartThresholdExceeded: bool
    HDID: int


HD_SMART_Status_Shape = Shape(HD_SMART_Status, (
    ("SmartThresholdExceeded", flag),
    ("HDID", number),
))


class RCT_Record(NamedTuple):
    """The record RCT_Record.

    lba: the first sector; number of the sector (U64)
    sec: how many sectors; sectors of 512 bytes (U32)
    flag: why they were remapped; codes: "Reasons for remapping" (U8)
    """

    lba: int
    sec: int
    flag: int


RCT_Record_Shape = Shape(RCT_Record, (
    ("lba", number),
    ("sec", number),
    ("flag", number),
))


class Enclosure_Info(NamedTuple):
    """The record Enclosure_Info.

    Link: the device, and what it hangs on
    AdapterID: the adapter; below HX_Adapter_GetCount's (U8)
    Status: its state; codes: "States of enclosures and elements" (U8)
    LogicalID: SES enclosure logical identifier; 16 hexadecimal digits
    VendorID: maker
    ProductID: product
    RevisionLevel: revision of the product
    ExpanderCount: how many of ExpanderIDs count; expanders, 0 to 8 (U8)
    ExpanderIDs: its expanders; an ID, 0 to 65534 (8 of U16)
    """

    Link: Link_Entity
    AdapterID: int
    Status: int
    LogicalID: str
    VendorID: str
    ProductID: str
    RevisionLevel: str
    ExpanderCount: int
    ExpanderIDs: tuple[int, ...]


Enclosure_Info_Shape = Shape(Enclosure_Info, (
    ("Link", Link_Entity_Shape.read),
    ("AdapterID", number),
    ("Status", number),
    ("LogicalID", text),
    ("VendorID", text),
    ("ProductID", text),
    ("RevisionLevel", text),
    ("ExpanderCount", number),
    ("ExpanderIDs", numbers),
))


class EncElementType_Info(NamedTuple):
    """The record EncElementType_Info.

    EnclosureID: the enclosure; an ID, 0 to 65534 (U16)
    Status: its SES status code; codes: "States of enclosures and elements" (U8)
    ElementID: the element: its number within the enclosure; 0 to 255 (U8)
    Type: what the element is; codes: "Elements of enclosures" (U8)
    TempWarn: power supply: temperature warning; 0 no, 1 yes (U16)
    HotSwap: power supply: can be exchanged under power; 0 no, 1 yes (U8)
    DCOverCurrent: power supply: too much current; 0 no, 1 yes (U8)
    DCOverVoltage: power supply: voltage too high; 0 no, 1 yes (U8)
    DCUnderVoltage: power supply: voltage too low; 0 no, 1 yes (U8)
    CurSpeedcode: fan: SES speed code; 0 stopped, 1 lowest to 7 highest (U16)
    CurSpeed: fan: speed; turns per minute (U16)
    OTFailure: temperature sensor: far too hot; 0 no, 1 yes (U8)
    OTWarning: temperature sensor: too hot; 0 no, 1 yes (U8)
    UTFailure: temperature sensor: far too cold; 0 no, 1 yes (U8)
    UTWarning: temperature sensor: too cold; 0 no, 1 yes (U8)
    Temperature: temperature sensor: what it measures; degrees Celsius plus 20; 0 unknown (U8)
    Unlocked: door: not locked; 0 no, 1 yes (U8)
    Mute: alarm: silenced; 0 no, 1 yes (U8)
    Remind: alarm: sounds from time to time; 0 no, 1 yes (U8)
    Character1: alarm: tone; the SES tone control bits (U8)
    Mode: alarm: mode; as the SES element has it (U8)
    WarnOver: voltage sensor: high; 0 no, 1 yes (U8)
    WarnUnder: voltage sensor: low; 0 no, 1 yes (U8)
    CritOver: voltage sensor: far too high; 0 no, 1 yes (U8)
    CritUnder: voltage sensor: far too low; 0 no, 1 yes (U8)
    Voltage: voltage sensor: what it measures; units of 10 millivolts (U16)
    """

    EnclosureID: int
    Status: int
    ElementID: int
    Type: int
    TempWarn: int
    HotSwap: int
    DCOverCurrent: int
    DCOverVoltage: int
    DCUnderVoltage: int
    CurSpeedcode: int
    CurSpeed: int
    OTFailure: int
    OTWarning: int
    UTFailure: int
    UTWarning: int
    Temperature: int
    Unlocked: int
    Mute: int
    Remind: int
    Character1: int
    Mode: int
    WarnOver: int
    WarnUnder: int
    CritOver: int
    CritUnder: int
    Voltage: int


EncElementType_Info_Shape = Shape(EncElementType_Info, (
    ("EnclosureID", number),
    ("Status", number),
    ("ElementID", number),
    ("Type", number),
    ("TempWarn", number),
    ("HotSwap", number),
    ("DCOverCurrent", number),
    ("DCOverVoltage", number),
    ("DCUnderVoltage", number),
    ("CurSpeedcode", number),
    ("CurSpeed", number),
    ("OTFailure", number),
    ("OTWarning", number),
    ("UTFailure", number),
    ("UTWarning", number),
    ("Temperature", number),
    ("Unlocked", number),
    ("Mute", number),
    ("Remind", number),
    ("Character1", number),
    ("Mode", number),
    ("WarnOver", number),
    ("WarnUnder", number),
    ("CritOver", number),
    ("CritUnder", number),
    ("Voltage", number),
))


class EncElement_Config(NamedTuple):
    """The record EncElement_Config.

    EnclosureID: the enclosure; an ID, 0 to 65534 (U16)
    Status: its SES status code; codes: "States of enclosures and elements" (U8)
    ElementID: the element: its number within the enclosure; 0 to 255 (U8)
    Type: what the element is; codes: "Elements of enclosures" (U8)
    highCriticalThreshold: critical above it; degrees Celsius plus 20 of a temperature sensor; half
      percents of the nominal value of a voltage sensor (U8)
    highWarningThreshold: a warning above it; degrees Celsius plus 20 of a temperature sensor; half
      percents of the nominal value of a voltage sensor (U8)
    lowCriticalThreshold: critical below it; degrees Celsius plus 20 of a temperature sensor; half
      percents of the nominal value of a voltage sensor (U8)
    lowWarningThreshold: a warning below it; degrees Celsius plus 20 of a temperature sensor; half
      percents of the nominal value of a voltage sensor (U8)
    """

    EnclosureID: int
    Status: int
    ElementID: int
    Type: int
    highCriticalThreshold: int
    highWarningThreshold: int
    lowCriticalThreshold: int
    lowWarningThreshold: int


EncElement_Config_Shape = Shape(EncElement_Config, (
    ("EnclosureID", number),
    ("Status", number),
    ("ElementID", number),
    ("Type", number),
    ("highCriticalThreshold", number),
    ("highWarningThreshold", number),
    ("lowCriticalThreshold", number),
    ("lowWarningThreshold", number),
))


class HD_RAID_Status(NamedTuple):
    """The record HD_RAID_Status.

    HDID: the disk; an ID, 0 to 65534 (U16)
    LDID: the disk group, or else the virtual disk, that it serves; an ID; 65535 none (U16)
    Status: its state; bits; codes: "Bits of disk states" (U8)
    """

    HDID: int
    LDID: int
    Status: int


HD_RAID_Status_Shape = Shape(HD_RAID_Status, (
    ("HDID", number),
    ("LDID", number),
    ("Status", number),
))


class HD_MBR_Info(NamedTuple):
    """The record HD_MBR_Info.

    HDCount: how many of HDIDs count; disks, 0 to 128 (U8)
    HDIDs: the disks, in the order of the members; an ID, 0 to 65534 (128 of U16)
    hasMBR: for each of HDIDs, whether it has a master boot record (128 of BOOL)
    """

    HDCount: int
    HDIDs: tuple[int, ...]
    hasMBR: tuple[int, ...]


HD_MBR_Info_Shape = Shape(HD_MBR_Info, (
    ("HDCount", number),
    ("HDIDs", numbers),
    ("hasMBR", numbers),
))


class Block_Info(NamedTuple):
    """The record Block_Info.

    ID: the block; an ID, 0 to 65534 (U16)
    HDID: the disk; an ID, 0 to 65534 (U16)
    Flags: what it is there for; bits; codes: "Bits of blocks" (U16)
    LDID: its virtual disk; an ID; 255 none (U16)
    Status: its state; codes: "States" (U8)
    StartLBA: its first sector on the disk; number of the sector (U64)
    Size: how large it is; sectors of 512 bytes (U64)
    """

    ID: int
    HDID: int
    Flags: int
    LDID: int
    Status: int
    StartLBA: int
    Size: int


Block_Info_Shape = Shape(Block_Info, (
    ("ID", number),
    ("HDID", number),
    ("Flags", number),
    ("LDID", number),
    ("Status", number),
    ("StartLBA", number),
    ("Size", number),
))


class HD_Block_Info(NamedTuple):
    """The record HD_Block_Info.

    ID: the disk; an ID, 0 to 65534 (U16)
    Type: what the device is; codes: "Devices" (U8)
    BlockIDs: the blocks on it; IDs; 65535 where there is none (16 of U16)
    """

    ID: int
    Type: int
    BlockIDs: tuple[int, ...]


HD_Block_Info_Shape = Shape(HD_Block_Info, (
    ("ID", number),
    ("Type", number),
    ("BlockIDs", numbers),
))


class LD_Info(NamedTuple):
    """The record LD_Info.

    ID: the virtual disk; an ID, 0 to 65534 (U16)
    AdapterID: the adapter; below HX_Adapter_GetCount's (U8)
    DGID: its disk group; an ID; 255 none (U8)
    Status: its state; codes: "States" (U8)
    BGAStatus: its background activity; codes: "Activities" (U8)
    StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that StripeSizeSupported
      of Adapter_Info has (U16)
    RaidMode: the RAID level; codes: "RAID levels" (U8)
    HDCount: how many members it has: how many of BlockIDs count; disks, 0 to 128 (U8)
    CacheMode: the cache as it is set and as it works; bits; codes: "Bits of the cache" (U8)
    SectorCoefficient: how large a sector is for the host; sectors of 512 bytes in one of the
      host's; 1 is usual (U8)
    Size: how large it is; sectors of 512 bytes (U64)
    Name: the name that administrators give; at most 15 bytes
    BlockIDs: the blocks that it is made of, in the order of the members; an ID, 0 to 65534 (128 of
      U16)
    SubLDCount: the legs of a level such as 50; legs; 0 where the level has none (U8)
    NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the level
      (U8)
    """

    ID: int
    AdapterID: int
    DGID: int
    Status: int
    BGAStatus: int
    StripeBlockSize: int
    RaidMode: int
    HDCount: int
    CacheMode: int
    SectorCoefficient: int
    Size: int
    Name: str
    BlockIDs: tuple[int, ...]
    SubLDCount: int
    NumParityDisk: int


LD_Info_Shape = Shape(LD_Info, (
    ("ID", number),
    ("AdapterID", number),
    ("DGID", number),
    ("Status", number),
    ("BGAStatus", number),
    ("StripeBlockSize", number),
    ("RaidMode", number),
    ("HDCount", number),
    ("CacheMode", number),
    ("SectorCoefficient", number),
    ("Size", number),
    ("Name", text),
    ("BlockIDs", numbers),
    ("SubLDCount", number),
    ("NumParityDisk", number),
))


class Create_LD_Param(NamedTuple):
    """The record Create_LD_Param.

    RaidMode: the RAID level; codes: "RAID levels" (U8)
    HDCount: how many of HDIDs count; disks, 0 to 128 (U8)
    RoundingScheme: how the size is rounded down; codes: "Roundings" (U8)
    SubLDCount: the legs of a level such as 50; legs; 0 where the level has none (U8)
    StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that StripeSizeSupported
      of Adapter_Info has (U16)
    NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the level
      (U8)
    CachePolicy: the cache to begin with; bits; codes: "Bits of the cache" (U8)
    InitializationOption: how the new virtual disk is initialised; codes: "Initialisations" (U8)
    SectorCoefficient: how large a sector is for the host; sectors of 512 bytes in one of the
      host's; 1 is usual (U8)
    HDIDs: the disks, in the order of the members; an ID, 0 to 65534 (128 of U16)
    Name: the name that administrators give; at most 15 bytes
    Size: the size that was found; sectors of 512 bytes (U64)
    """

    RaidMode: int
    HDCount: int
    RoundingScheme: int
    SubLDCount: int
    StripeBlockSize: int
    NumParityDisk: int
    CachePolicy: int
    InitializationOption: int
    SectorCoefficient: int
    HDIDs: tuple[int, ...]
    Name: str
    Size: int


Create_LD_Param_Shape = Shape(Create_LD_Param, (
    ("RaidMode", number),
    ("HDCount", number),
    ("RoundingScheme", number),
    ("SubLDCount", number),
    ("StripeBlockSize", number),
    ("NumParityDisk", number),
    ("CachePolicy", number),
    ("InitializationOption", number),
    ("SectorCoefficient", number),
    ("HDIDs", numbers),
    ("Name", text),
    ("Size", number),
))


class LD_Status(NamedTuple):
    """The record LD_Status.

    Status: its state; codes: "States" (U8)
    Bga: its background activity; codes: "Activities" (U8)
    BgaPercentage: how far the activity is; percent, 0 to 100 (U16)
    BgaState: state of the activity; codes: "States of activities" (U8)
    LDID: the virtual disk; an ID, 0 to 65534 (U16)
    """

    Status: int
    Bga: int
    BgaPercentage: int
    BgaState: int
    LDID: int


LD_Status_Shape = Shape(LD_Status, (
    ("Status", number),
    ("Bga", number),
    ("BgaPercentage", number),
    ("BgaState", number),
    ("LDID", number),
))


class LD_Config(NamedTuple):
    """The record LD_Config.

    CacheMode: the cache as it is set and as it works; bits; codes: "Bits of the cache" (U8)
    AutoRebuildOn: whether a hot spare steps in for its members (BOOL)
    Status: its state; codes: "States" (U8)
    LDID: the virtual disk; an ID, 0 to 65534 (U16)
    Name: the name that administrators give; at most 15 bytes
    """

    CacheMode: int
    AutoRebuildOn: bool
    Status: int
    LDID: int
    Name: str


LD_Config_Shape = Shape(LD_Config, (
    ("CacheMode", number),
    ("AutoRebuildOn", flag),
    ("Status", number),
    ("LDID", number),
    ("Name", text),
))


class CreateOrModify_DG_Param(NamedTuple):
    """The record CreateOrModify_DG_Param.

    DGID: the new disk group; an ID, 0 to 65534 (HX_U16)
    """

    DGID: int


CreateOrModify_DG_Param_Shape = Shape(CreateOrModify_DG_Param, (
    ("DGID", number),
))


class CreateOrModify_DG_Param_2(NamedTuple):
    """The record CreateOrModify_DG_Param.

    Size: the size of the disk group; sectors of 512 bytes (U64)
    """

    Size: int


CreateOrModify_DG_Param_2_Shape = Shape(CreateOrModify_DG_Param_2, (
    ("Size", number),
))


class DG_Info(NamedTuple):
    """The record DG_Info.

    DGID: the disk group; an ID, 0 to 65534; 65535 in HX_DG_GetSizeOnly: a new one (HX_U16)
    Name: the name that administrators give; at most 15 bytes
    RaidMode: the RAID level; codes: "RAID levels" (HX_U8)
    SubVDCount: the legs of a level such as 50; legs; 0 where the level has none (HX_U8)
    NumParityDisk: disks whose room holds parity; disks; the virtual controller goes by the level
      (HX_U8)
    AdapterID: the adapter; below HX_Adapter_GetCount's (HX_U8)
    StripeBlockSize: what of a stripe lies on one disk; KiB, a power of two that StripeSizeSupported
      of Adapter_Info has (HX_U16)
    BlockSize: how large a sector of the disks is; bytes, 512; 0 means 512 (HX_U32)
    TotalManagedSpace: how large it is; sectors of 512 bytes (U64)
    RemainingManagedSpace: what is free of it; sectors of 512 bytes (U64)
    SmallestAvailablePDSize: what its smallest disk has; sectors of 512 bytes (U64)
    Status: its state; codes: "States" (HX_U8)
    PDCount: how many of PDIDs count; disks, 0 to 128 (HX_U8)
    PDIDs: the disks, in the order of the members; an ID, 0 to 65534 (128 of HX_U16)
    VDSlotCount: how many slots are in use; slots, 0 to 32 (HX_U8)
    VDSlotSize: how large each slot is; sectors of 512 bytes (32 of U64)
    VDIDs: the virtual disk of each slot; IDs; 65535 where there is none (32 of HX_U16)
    SparePDCount: how many of SparePDIDs count; disks, 0 to 8 (HX_U8)
    SparePDIDs: its hot spares; an ID, 0 to 65534 (8 of HX_U16)
    BgaType: its background activity; codes: "Activities" (HX_U16)
    BgaState: state of the activity; codes: "States of activities" (HX_U8)
    """

    DGID: int
    Name: str
    RaidMode: int
    SubVDCount: int
    NumParityDisk: int
    AdapterID: int
    StripeBlockSize: int
    BlockSize: int
    TotalManagedSpace: int
    RemainingManagedSpace: int
    SmallestAvailablePDSize: int
    Status: int
    PDCount: int
    PDIDs: tuple[int, ...]
    VDSlotCount: int
    VDSlotSize: tuple[int, ...]
    VDIDs: tuple[int, ...]
    SparePDCount: int
    SparePDIDs: tuple[int, ...]
    BgaType: int
    BgaState: int


DG_Info_Shape = Shape(DG_Info, (
    ("DGID", number),
    ("Name", text),
    ("RaidMode", number),
    ("SubVDCount", number),
    ("NumParityDisk", number),
    ("AdapterID", number),
    ("StripeBlockSize", number),
    ("BlockSize", number),
    ("TotalManagedSpace", number),
    ("RemainingManagedSpace", number),
    ("SmallestAvailablePDSize", number),
    ("Status", number),
    ("PDCount", number),
    ("PDIDs", numbers),
    ("VDSlotCount", number),
    ("VDSlotSize", numbers),
    ("VDIDs", numbers),
    ("SparePDCount", number),
    ("SparePDIDs", numbers),
    ("BgaType", number),
    ("BgaState", number),
))


class DG_Config(NamedTuple):
    """The record DG_Config.

    DGID: the disk group; an ID, 0 to 65534; 65535 in HX_DG_GetSizeOnly: a new one (HX_U16)
    WriteCacheOn: whether its disks' own write caches are on; 0 off, 1 on (HX_BOOLEAN)
    Name: the name that administrators give; at most 15 bytes
    """

    DGID: int
    WriteCacheOn: int
    Name: str


DG_Config_Shape = Shape(DG_Config, (
    ("DGID", number),
    ("WriteCacheOn", number),
    ("Name", text),
))


class VX_BIOS_Version(NamedTuple):
    """The record VX_BIOS_Version.

    BIOSVersion: version of the BIOS image
    VenID: PCI subsystem vendor ID that the image is made for; hexadecimal (U16)
    DevID: PCI subsystem ID that the image is made for; hexadecimal (U16)
    """

    BIOSVersion: Version_Info_2
    VenID: int
    DevID: int


VX_BIOS_Version_Shape = Shape(VX_BIOS_Version, (
    ("BIOSVersion", Version_Info_2_Shape.read),
    ("VenID", hexadecimal),
    ("DevID", hexadecimal),
))


class BBU_Info(NamedTuple):
    """The record BBU_Info.

    status: its state; bits; codes: "Bits of the battery" (U32)
    prev_status: the state before the last change; bits; codes: "Bits of the battery" (U32)
    voltage: its voltage; millivolts (U16)
    supportMaxCapacity: the highest maxCapacity that can be set; mAh (U16)
    supportMinCapacity: the lowest maxCapacity that can be set; mAh (U16)
    maxCapacity: what it holds when full; mAh (U16)
    curCapacity: what is left; mAh (U16)
    time_to_empty: time until it is empty; minutes; 65535: it is not discharging (U16)
    time_to_full: time until it is full; minutes; 65535: it is not charging (U16)
    recharge_cycle: how often it has been charged; cycles (U16)
    featureSupport: what it can do; bits; codes: "Bits of battery features" (U16)
    temperature: its temperature; degrees Celsius (U16)
    volt_lowerbound: it is reported below it; millivolts (U16)
    volt_upperbound: it is reported above it; millivolts (U16)
    temp_lowerbound: it is reported below it; degrees Celsius (U16)
    temp_upperbound: it is reported above it; degrees Celsius (U16)
    percentage: its charge; percent, 0 to 100 (U8)
    percent_to_charge: the charge below which it is charged; percent, 0 to 100 (U8)
    flags: more of its state; bits of the controller (U8)
    """

    status: int
    prev_status: int
    voltage: int
    supportMaxCapacity: int
    supportMinCapacity: int
    maxCapacity: int
    curCapacity: int
    time_to_empty: int
    time_to_full: int
    recharge_cycle: int
    featureSupport: int
    temperature: int
    volt_lowerbound: int
    volt_upperbound: int
    temp_lowerbound: int
    temp_upperbound: int
    percentage: int
    percent_to_charge: int
    flags: int


BBU_Info_Shape = Shape(BBU_Info, (
    ("status", number),
    ("prev_status", number),
    ("voltage", number),
    ("supportMaxCapacity", number),
    ("supportMinCapacity", number),
    ("maxCapacity", number),
    ("curCapacity", number),
    ("time_to_empty", number),
    ("time_to_full", number),
    ("recharge_cycle", number),
    ("featureSupport", number),
    ("temperature", number),
    ("volt_lowerbound", number),
    ("volt_upperbound", number),
    ("temp_lowerbound", number),
    ("temp_upperbound", number),
    ("percentage", number),
    ("percent_to_charge", number),
    ("flags", number),
))


class HD_BGA_Status(NamedTuple):
    """The record HD_BGA_Status.

    HDID: the disk; an ID, 0 to 65534 (U16)
    Percentage: how far the activity is; percent, 0 to 100 (U16)
    Bga: the activity; codes: "Activities" (U8)
    Status: state of the disk; bits; codes: "Bits of disk states" (U8)
    BgaStatus: state of the activity; codes: "States of activities" (U8)
    """

    HDID: int
    Percentage: int
    Bga: int
    Status: int
    BgaStatus: int


HD_BGA_Status_Shape = Shape(HD_BGA_Status, (
    ("HDID", number),
    ("Percentage", number),
    ("Bga", number),
    ("Status", number),
    ("BgaStatus", number),
))


class VX_VER_INFO(NamedTuple):
    """The record VX_VER_INFO.

    Major: major version; a number (U32)
    Minor: minor version; a number (U32)
    OEM: OEM number; a number (U32)
    Build: build; a number (U32)
    """

    Major: int
    Minor: int
    OEM: int
    Build: int


VX_VER_INFO_Shape = Shape(VX_VER_INFO, (
    ("Major", number),
    ("Minor", number),
    ("OEM", number),
    ("Build", number),
))


class VX_HX_ChangeCounters(NamedTuple):
    """The record VX_HX_ChangeCounters.

    Whatever_Change: any event; 0 to 4294967295; wraps (U32)
    Adapter_Change: adapters; 0 to 4294967295; wraps (U32)
    LD_Change: virtual disks; 0 to 4294967295; wraps (U32)
    HD_Change: disks; 0 to 4294967295; wraps (U32)
    PM_Change: port multipliers; 0 to 4294967295; wraps (U32)
    Expander_Change: expanders; 0 to 4294967295; wraps (U32)
    MDD_Change: metadata of the controller; 0 to 4294967295; wraps (U32)
    BSL_Change: bad sectors; 0 to 4294967295; wraps (U32)
    SAS_Change: SAS links; 0 to 4294967295; wraps (U32)
    ENCL_Change: enclosures; 0 to 4294967295; wraps (U32)
    BAT_Change: batteries; 0 to 4294967295; wraps (U32)
    FLASH_Change: flash; 0 to 4294967295; wraps (U32)
    CACHE_Change: caches; 0 to 4294967295; wraps (U32)
    MISC_Change: anything else; 0 to 4294967295; wraps (U32)
    ARRAY_Change: disk groups; 0 to 4294967295; wraps (U32)
    """

    Whatever_Change: int
    Adapter_Change: int
    LD_Change: int
    HD_Change: int
    PM_Change: int
    Expander_Change: int
    MDD_Change: int
    BSL_Change: int
    SAS_Change: int
    ENCL_Change: int
    BAT_Change: int
    FLASH_Change: int
    CACHE_Change: int
    MISC_Change: int
    ARRAY_Change: int


VX_HX_ChangeCounters_Shape = Shape(VX_HX_ChangeCounters, (
    ("Whatever_Change", number),
    ("Adapter_Change", number),
    ("LD_Change", number),
    ("HD_Change", number),
    ("PM_Change", number),
    ("Expander_Change", number),
    ("MDD_Change", number),
    ("BSL_Change", number),
    ("SAS_Change", number),
    ("ENCL_Change", number),
    ("BAT_Change", number),
    ("FLASH_Change", number),
    ("CACHE_Change", number),
    ("MISC_Change", number),
    ("ARRAY_Change", number),
))


class Event(NamedTuple):
    """The record Event.

    Class: what kind of object it tells of; codes: "Classes of events" (U16)
    Code: what has happened, within the class; codes: "Events" (U16)
    TimeStamp: when; seconds since 1 January 1970, UTC (U32)
    DeviceID: which object of the class; an ID (U16)
    Severity: how grave it is; codes: "Severities" (U8)
    AdapterID: the adapter; below HX_Adapter_GetCount's (U8)
    Params: what else the event tells; four numbers, by class and code (4 of U32)
    SenseDataLength: how many bytes of SenseData there are; bytes, 0 to 30 (U8)
    SenseData: SCSI sense data, or a text, by class and code; bytes (at most 30)
    Event: the event as one line: time, key, severity and values between bars
    """

    Class: int
    Code: int
    TimeStamp: int
    DeviceID: int
    Severity: int
    AdapterID: int
    Params: tuple[int, ...]
    SenseDataLength: int
    SenseData: bytes
    Event: str


Event_Shape = Shape(Event, (
    ("Class", number),
    ("Code", number),
    ("TimeStamp", number),
    ("DeviceID", number),
    ("Severity", number),
    ("AdapterID", number),
    ("Params", numbers),
    ("SenseDataLength", number),
    ("SenseData", data),
    ("Event", text),
))

"""The controller library's records as the model knows them: where their fields lie, and which elements
a result has for them.

Written from hxraid.h (the offsets) and docs/xml-api.md (the elements). A record's elements become a
list of pieces, because the document takes or drops a piece as a whole: an indentation of two blanks,
the beginning of a tag, its attributes, its end, a value, an end tag, a line end.
"""

import struct

# Fields in order, each "name:format"; the format is struct's, or the name of another record. "|"
# starts again at the record's first byte, for fields that lie over each other.
LAYOUTS = {
    "RequestHeader": "version:B requestType:B startingIndexOrId:H numRequested:H numReturned:H "
                     "nextStartingIndex:H _:6x",
    "Version_Info": "VerMajor:I VerMinor:I VerOEM:I VerBuild:I",
    "Version_Info_CIM": "VerMajor:H VerMinor:H VerOEM:H VerBuild:H",
    "Link_Endpoint": "DevID:H DevType:B PhyCnt:B PhyID:8B SAS_Address:8B EnclosureID:H _:2x",
    "Link_Entity": "Parent:Link_Endpoint Self:Link_Endpoint",
    "Adapter_Info":
        "DriverVersion:Version_Info BIOSVersion:Version_Info_CIM FirmwareVersion:Version_Info_CIM "
        "BootLoaderVersion:Version_Info_CIM SystemIOBusNumber:I SlotNumber:I InterruptLevel:I "
        "InterruptVector:I VenID:H SubVenID:H DevID:H SubDevID:H RevisionID:B MaxPDPerVD:B "
        "StripeSizeSupported:H AdvancedFeatures:I MaxPDPerDG:B MaxVDPerDG:B MaxParityDisks:B "
        "PortCount:B PortSupportType:B Features:B AlarmSupport:B MaxBlockPerPD:B MaxHD:B _:x "
        "MaxHD_Ext:H MaxExpander:B MaxPM:B MaxLogicalDrive:B _:x LogicalDriverMode:H "
        "DiskGroupSupport:B WWN:8B _:x MaxBufferSize:H SerialNo:20s PortSasAddress0:8B "
        "PortSasAddress1:8B PortSasAddress2:8B PortSasAddress3:8B PortSasAddress4:8B "
        "PortSasAddress5:8B PortSasAddress6:8B PortSasAddress7:8B img_health:B "
        "autoload_img_health:B boot_loader_img_health:B firmware_img_health:B "
        "boot_rom_img_health:B hba_info_img_health:B _:64x",
    "Adapter_Config_V2":
        "AlarmOn:B AutoRebuildOn:B BGARate:B SyncRate:B InitRate:B RebuildRate:B MigrationRate:B "
        "CopybackRate:B PollSMARTStatus:B MediaPatrolRate:B CopyBack:B InterruptCoalescing:B "
        "ModuleConsolidate:B v_atapi_disable:B port_phy_ctrl:8B _:10x",
    "HD_Info":
        "Link:Link_Entity AdapterID:B Status:B HDType:B PIOMode:B MDMAMode:B UDMAMode:B "
        "ConnectionType:B DeviceType:B FeatureSupport:I CurrentPIOMode:B CurrentMDMAMode:B "
        "CurrentUDMAMode:B _:x Model:40s SerialNo:20s FWVersion:8s WWN:8B _:4x Size:Q "
        "ActivityLEDStatus:B LocateLEDStatus:B ErrorLEDStatus:B _:93x",
    "Exp_Info":
        "Link:Link_Entity AdapterID:B Configuring:B RouteTableConfigurable:B PhyCount:B "
        "ExpChangeCount:H MaxRouteIndexes:H VendorID:9s ProductID:17s ProductRev:5s "
        "ComponentVendorID:9s ComponentID:H ComponentRevisionID:B _:33x",
    "PM_Info":
        "Link:Link_Entity AdapterID:B ProductRevision:B PMSpecRevision:B NumberOfPorts:B "
        "VendorId:H DeviceId:H _:24x",
    "HD_FreeSpaceInfo": "ID:H AdapterID:B isFixed:B _:4x Size:Q",
    "HD_Config": "WriteCacheOn:B SMARTOn:B Online:B DriveSpeed:B HDID:H _:2x",
    "HD_BGA_Status": "HDID:H Percentage:H Bga:B Status:B BgaStatus:B _:57x",
    "HD_SMART_Status": "SmartThresholdExceeded:B _:x HDID:H _:4x",
    "HD_RAID_Status": "HDID:H LDID:H Status:B _:3x",
    "HD_MBR_Info": "HDCount:B _:x HDIDs:128H hasMBR:128B",
    "RCT_Record": "lba:Q sec:I flag:B _:3x",
    "Block_Info":
        "ID:H HDID:H Flags:H LDID:H Status:B _:x BlockSize:H ReservedSpaceForMigration:I "
        "StartLBA:Q Size:Q",
    "HD_Block_Info": "ID:H Type:B _:x BlockIDs:16H _:4x",
    "LD_Info":
        "ID:H AdapterID:B DGID:B Status:B BGAStatus:B StripeBlockSize:H RaidMode:B HDCount:B "
        "CacheMode:B SectorCoefficient:B _:4x Size:Q Name:16s BlockIDs:128H SubLDCount:B "
        "NumParityDisk:B _:14x",
    "LD_Status": "Status:B Bga:B BgaPercentage:H BgaState:B _:x LDID:H",
    "LD_Config": "CacheMode:B AutoRebuildOn:B Status:B _:x LDID:H Name:16s _:2x",
    "Create_LD_Param":
        "RaidMode:B HDCount:B RoundingScheme:B SubLDCount:B StripeBlockSize:H NumParityDisk:B "
        "CachePolicy:B InitializationOption:B SectorCoefficient:B LDID:H SpecifiedBlkSeq:B _:3x "
        "HDIDs:128H Name:16s Size:Q _:216x",
    "DG_Info":
        "DGID:H _:2x Name:16s RaidMode:B SubVDCount:B NumParityDisk:B AdapterID:B _:2x "
        "StripeBlockSize:H BlockSize:I TotalManagedSpace:Q RemainingManagedSpace:Q "
        "SmallestAvailablePDSize:Q Status:B _:2x PDCount:B PDIDs:128H _:3x VDSlotCount:B "
        "VDSlotSize:32Q VDIDs:32H SparePDCount:B _:x SparePDIDs:8H BgaType:H BgaState:B _:27x",
    "DG_Config": "DGID:H WriteCacheOn:B Name:16s _:13x",
    "CreateOrModify_DG_Param":
        "DGID:H _:2x Name:16s RaidMode:B SubVDCount:B NumParityDisk:B _:7x StripeBlockSize:H "
        "Size:Q BlockSize:I InitializationOption:B _:2x PDCount:B PDIDs:128H _:128x",
    "CreateOrModify_VD_Param":
        "VDID:H DGID:H Name:16s RaidMode:B SubVDCount:B NumParityDisk:B DGSlotNum:B _:6x "
        "StripeBlockSize:H Size:Q RoundingScheme:B CachePolicy:B InitializationOption:B "
        "SectorCoefficient:B BlockSize:I _:256x",
    "LD_DG_Rebuild_Param": "ID:H RebuildType:B PDCount:B PDIDs:128H",
    "Enclosure_Info":
        "Link:Link_Entity AdapterID:B Status:B LogicalID:17s VendorID:9s ProductID:17s "
        "RevisionLevel:5s ExpanderCount:B _:x ExpanderIDs:8H _:36x",
    "EncElementType_Info":
        "EnclosureID:H Status:B ElementID:B Type:B _:x TempWarn:H HotSwap:B DCOverCurrent:B "
        "DCOverVoltage:B DCUnderVoltage:B _:4x"
        " | _:6x CurSpeedcode:H CurSpeed:H _:6x"
        " | _:6x OTFailure:B OTWarning:B UTFailure:B UTWarning:B Temperature:B _:5x"
        " | _:6x Unlocked:B _:9x"
        " | _:6x Mute:B Remind:B Character1:B Mode:B _:6x"
        " | _:6x WarnOver:B WarnUnder:B CritOver:B CritUnder:B Voltage:H _:4x",
    "EncElement_Config":
        "EnclosureID:H Status:B ElementID:B Type:B highCriticalThreshold:B "
        "highWarningThreshold:B lowCriticalThreshold:B lowWarningThreshold:B _:7x",
    "BBU_Info":
        "status:I prev_status:I voltage:H supportMaxCapacity:H supportMinCapacity:H maxCapacity:H "
        "curCapacity:H time_to_empty:H time_to_full:H recharge_cycle:H featureSupport:H "
        "temperature:H volt_lowerbound:H volt_upperbound:H temp_lowerbound:H temp_upperbound:H "
        "percentage:B percent_to_charge:B flags:B _:25x",
    "Event":
        "Class:H Code:H TimeStamp:I DeviceID:H Severity:B AdapterID:B SequenceNo:I Params:4I "
        "SenseDataLength:B _:x SenseData:30B",
    "ChangeCounters":
        "Adapter_Change:I HD_Change:I MDD_Change:I LD_Change:I BSL_Change:I Expander_Change:I "
        "PM_Change:I SAS_Change:I ENCL_Change:I BAT_Change:I FLASH_Change:I Whatever_Change:I "
        "CACHE_Change:I MISC_Change:I ARRAY_Change:I",
}

# Elements in order, each "name:type", "name:record" for a record within, or "name:type*width" for an
# array. "text" is a string in CDATA, "bare" one without.
ELEMENTS = {
    "RequestHeader": "version:U8 requestType:U8 startingIndexOrId:U16 numRequested:U16 "
                     "numReturned:U16 nextStartingIndex:U16",
    "Version_Info": "VerMajor:U32 VerMinor:U32 VerOEM:U32 VerBuild:U32",
    "Version_Info_CIM": "VerMajor:U16 VerMinor:U16 VerOEM:U16 VerBuild:U16",
    "Link_Endpoint": "DevID:U16 DevType:U8 PhyCnt:U8 PhyID:U8*8 SAS_Address:U8*8 EnclosureID:U16",
    "Link_Entity": "Parent:Link_Endpoint Self:Link_Endpoint",
    "Adapter_Info":
        "DriverVersion:Version_Info BIOSVersion:Version_Info_CIM FirmwareVersion:Version_Info_CIM "
        "BootLoaderVersion:Version_Info_CIM SystemIOBusNumber:U32 SlotNumber:U32 "
        "InterruptLevel:U32 InterruptVector:U32 VenID:U16 SubVenID:U16 DevID:U16 SubDevID:U16 "
        "RevisionID:U8 MaxPDPerVD:U8 StripeSizeSupported:U16 AdvancedFeatures:U32 MaxPDPerDG:U8 "
        "MaxVDPerDG:U8 MaxParityDisks:U8 PortCount:U8 PortSupportType:U8 Features:U8 "
        "AlarmSupport:BOOL MaxBlockPerPD:U8 MaxHD:U8 MaxHD_Ext:U16 MaxExpander:U8 MaxPM:U8 "
        "MaxLogicalDrive:U8 LogicalDriverMode:U16 DiskGroupSupport:BOOL WWN:U8*8 "
        "MaxBufferSize:U16 SerialNo:text PortSasAddress0:U8*8 PortSasAddress1:U8*8 "
        "PortSasAddress2:U8*8 PortSasAddress3:U8*8 PortSasAddress4:U8*8 PortSasAddress5:U8*8 "
        "PortSasAddress6:U8*8 PortSasAddress7:U8*8 img_health:BOOL autoload_img_health:BOOL "
        "boot_loader_img_health:BOOL firmware_img_health:BOOL boot_rom_img_health:BOOL "
        "hba_info_img_health:BOOL",
    "Adapter_Config_V2":
        "AlarmOn:BOOL AutoRebuildOn:BOOL BGARate:U8 SyncRate:U8 InitRate:U8 RebuildRate:U8 "
        "MigrationRate:U8 CopybackRate:U8 PollSMARTStatus:U8 MediaPatrolRate:U8 CopyBack:U8 "
        "InterruptCoalescing:U8 ModuleConsolidate:U8 v_atapi_disable:BOOL port_phy_ctrl:U8*8",
    "HD_Info":
        "Link:Link_Entity AdapterID:U8 Status:U8 HDType:U8 PIOMode:U8 MDMAMode:U8 UDMAMode:U8 "
        "ConnectionType:U8 DeviceType:U8 CanLogicalUsed:U8 FeatureSupport:U32 CurrentPIOMode:U8 "
        "CurrentMDMAMode:U8 CurrentUDMAMode:U8 Model:text SerialNo:text FWVersion:text WWN:U8*8 "
        "Size:U64 ActivityLEDStatus:U8 LocateLEDStatus:U8 ErrorLEDStatus:U8",
    "Exp_Info":
        "Link:Link_Entity AdapterID:U8 Configuring:BOOL RouteTableConfigurable:BOOL PhyCount:U8 "
        "ExpChangeCount:U16 MaxRouteIndexes:U16 VendorID:text ProductID:text ProductRev:text "
        "ComponentVendorID:text ComponentID:HX_U16 ComponentRevisionID:HX_U8",
    "PM_Info":
        "Link:Link_Entity AdapterID:U8 ProductRevision:U8 PMSpecRevision:U8 NumberOfPorts:U8 "
        "VendorId:U16 DeviceId:U16",
    "HD_FreeSpaceInfo": "ID:U16 AdapterID:U8 isFixed:BOOL Size:U64",
    "HD_Config": "WriteCacheOn:BOOL SMARTOn:BOOL Online:BOOL DriveSpeed:U8 HDID:U16",
    "HD_BGA_Status": "HDID:U16 Percentage:U16 Bga:U8 Status:U8 BgaStatus:U8",
    "HD_SMART_Status": "SmartThresholdExceeded:BOOL HDID:U16",
    "HD_RAID_Status": "HDID:U16 LDID:U16 Status:U8",
    "HD_MBR_Info": "HDCount:U8 HDIDs:U16*128 hasMBR:BOOL*128",
    "RCT_Record": "lba:U64 sec:U32 flag:U8",
    "Block_Info": "ID:U16 HDID:U16 Flags:U16 LDID:U16 Status:U8 StartLBA:U64 Size:U64",
    "HD_Block_Info": "ID:U16 Type:U8 BlockIDs:U16*16",
    "LD_Info":
        "ID:U16 AdapterID:U8 DGID:U8 Status:U8 BGAStatus:U8 StripeBlockSize:U16 RaidMode:U8 "
        "HDCount:U8 CacheMode:U8 SectorCoefficient:U8 Size:U64 Name:text BlockIDs:U16*128 "
        "SubLDCount:U8 NumParityDisk:U8",
    "LD_Status": "Status:U8 Bga:U8 BgaPercentage:U16 BgaState:U8 LDID:U16",
    "LD_Config": "CacheMode:U8 AutoRebuildOn:BOOL Status:U8 LDID:U16 Name:text",
    "Create_LD_Param":
        "RaidMode:U8 HDCount:U8 RoundingScheme:U8 SubLDCount:U8 StripeBlockSize:U16 "
        "NumParityDisk:U8 CachePolicy:U8 InitializationOption:U8 SectorCoefficient:U8 "
        "HDIDs:U16*128 Name:text Size:U64",
    "DG_Info":
        "DGID:HX_U16 Name:text RaidMode:HX_U8 SubVDCount:HX_U8 NumParityDisk:HX_U8 "
        "AdapterID:HX_U8 StripeBlockSize:HX_U16 BlockSize:HX_U32 TotalManagedSpace:U64 "
        "RemainingManagedSpace:U64 SmallestAvailablePDSize:U64 Status:HX_U8 PDCount:HX_U8 "
        "PDIDs:HX_U16*128 VDSlotCount:HX_U8 VDSlotSize:U64*32 VDIDs:HX_U16*32 "
        "SparePDCount:HX_U8 SparePDIDs:HX_U16*8 BgaType:HX_U16 BgaState:HX_U8",
    "DG_Config": "DGID:HX_U16 WriteCacheOn:HX_BOOLEAN Name:bare",
    "Enclosure_Info":
        "Link:Link_Entity AdapterID:U8 Status:U8 LogicalID:text VendorID:text ProductID:text "
        "RevisionLevel:text ExpanderCount:U8 ExpanderIDs:U16*8",
    "EncElementType_Info":
        "EnclosureID:U16 Status:U8 ElementID:U8 Type:U8 TempWarn:U16 HotSwap:U8 DCOverCurrent:U8 "
        "DCOverVoltage:U8 DCUnderVoltage:U8 CurSpeedcode:U16 CurSpeed:U16 OTFailure:U8 "
        "OTWarning:U8 UTFailure:U8 UTWarning:U8 Temperature:U8 Unlocked:U8 Mute:U8 Remind:U8 "
        "Character1:U8 Mode:U8 WarnOver:U8 WarnUnder:U8 CritOver:U8 CritUnder:U8 Voltage:U16",
    "EncElement_Config":
        "EnclosureID:U16 Status:U8 ElementID:U8 Type:U8 highCriticalThreshold:U8 "
        "highWarningThreshold:U8 lowCriticalThreshold:U8 lowWarningThreshold:U8",
    "BBU_Info":
        "status:U32 prev_status:U32 voltage:U16 supportMaxCapacity:U16 supportMinCapacity:U16 "
        "maxCapacity:U16 curCapacity:U16 time_to_empty:U16 time_to_full:U16 recharge_cycle:U16 "
        "featureSupport:U16 temperature:U16 volt_lowerbound:U16 volt_upperbound:U16 "
        "temp_lowerbound:U16 temp_upperbound:U16 percentage:U8 percent_to_charge:U8 flags:U8",
    "Event":
        "Class:U16 Code:U16 TimeStamp:U32 DeviceID:U16 Severity:U8 AdapterID:U8 Params:U32*4 "
        "SenseDataLength:U8 SenseData:U8*30 Event:bare",
    "ChangeCounters":
        "Whatever_Change:U32 Adapter_Change:U32 LD_Change:U32 HD_Change:U32 PM_Change:U32 "
        "Expander_Change:U32 MDD_Change:U32 BSL_Change:U32 SAS_Change:U32 ENCL_Change:U32 "
        "BAT_Change:U32 FLASH_Change:U32 CACHE_Change:U32 MISC_Change:U32 ARRAY_Change:U32",
    # Records that a result shows a part of, under a record's type.
    "DG_Create": "DGID:HX_U16",
    "DG_Size": "Size:U64",
}
LAYOUTS["DG_Create"] = LAYOUTS["DG_Size"] = LAYOUTS["CreateOrModify_DG_Param"]

# The type that an element of the record tells, where it is not the record's own name.
TYPES = {
    "Version_Info_CIM": "Version_Info",
    "ChangeCounters": "VX_HX_ChangeCounters",
    "DG_Create": "CreateOrModify_DG_Param",
    "DG_Size": "CreateOrModify_DG_Param",
}


class Layout:
    """The fields of one record: packs and unpacks its bytes."""

    def __init__(self, name):
        self.structs = []
        self.places = {}  # field: (index of its first value, number of values, format letter)
        self.offsets = {}  # field: offset of its first byte
        count = 0
        for group in LAYOUTS[name].split("|"):
            formats = []
            for field, form in _flat(group):
                self.offsets[field] = struct.calcsize("<" + "".join(formats))
                formats.append(form)
                number, letter = int(form[:-1] or 1), form[-1]
                values = {"x": 0, "s": 1}.get(letter, number)
                if values:
                    self.places[field] = (count, values, letter)
                count += values
            self.structs.append(struct.Struct("<" + "".join(formats)))
        self.size = self.structs[0].size
        assert all(part.size == self.size for part in self.structs), name

    def unpack(self, record):
        values = []
        for part in self.structs:
            values += part.unpack(record)
        return values

    def field(self, record, name):
        return self.unpack(record)[self.places[name][0]]


def _flat(group, prefix=""):
    for word in group.split():
        name, form = word.split(":")
        if form in LAYOUTS:
            yield from _flat(LAYOUTS[form], f"{prefix}{name}.")
        else:
            yield prefix + name, form


_layouts = {}


def layout(name):
    if name not in _layouts:
        _layouts[name] = Layout(name)
    return _layouts[name]


# ---- Texts --------------------------------------------------------------------------------------


def text_of(field):
    """A fixed field's text: up to its NUL, or all of it."""
    return field.split(b"\0", 1)[0]


def trimmed(field):
    """A disk's text: without the blanks at its end."""
    return text_of(field).rstrip(b" ")


def model_of(field):
    """A disk's model: without its first word, when it has more than one."""
    text = trimmed(field)
    return text.split(b" ", 1)[1] if b" " in text else text


def serial_of(field):
    """An adapter's serial number: none when it begins with "0"."""
    return b"" if field[:1] == b"0" else text_of(field)


# ---- Pieces -------------------------------------------------------------------------------------

INDENT = b"  "


def open_pieces(depth, name, attributes, line_end):
    return [INDENT] * depth + [b"<" + name, attributes, b">"] + [b"\n"] * line_end


def scalar_pieces(depth, name, kind, value):
    name = name.encode()
    attributes = b' type="%s"' % kind.encode()
    return open_pieces(depth, name, attributes, 0) + [value, b"</" + name + b">\n"]


def array_pieces(depth, name, kind, items):
    name = name.encode()
    attributes = b' type="%s" width="%d"' % (kind.encode(), len(items))
    return (open_pieces(depth, name, attributes, 1) + [INDENT] * (depth + 1) + items + [b"\n"] +
            [INDENT] * depth + [b"</" + name + b">\n"])


def struct_pieces(depth, name, kind, inner):
    name = name.encode()
    attributes = b' type="struct %s"' % kind.encode()
    return (open_pieces(depth, name, attributes, 1) + inner + [INDENT] * depth +
            [b"</" + name + b">\n"])


class Template:
    """The pieces of one record at one depth, with "%d" and "%b" for what differs."""

    def __init__(self, record, element, depth, leave_out=(), widths=None):
        self.indices = []
        self.texts = []  # (place among the values, what makes the text of it)
        self.layout = layout(record)
        self.leave_out = leave_out
        self.widths = widths or {}
        inner = self._inner(record, depth + 1, "")
        self.pieces = struct_pieces(depth, element, TYPES.get(record, record), inner)
        self.whole = b"".join(self.pieces)
        self.takes = [b"%" in piece for piece in self.pieces]

    def _inner(self, record, depth, prefix):
        pieces = []
        for word in ELEMENTS[record].split():
            name, kind = word.split(":")
            if name in self.leave_out:
                continue
            if kind in LAYOUTS:
                within = self._inner(kind, depth + 1, f"{prefix}{name}.")
                pieces += struct_pieces(depth, name, TYPES.get(kind, kind), within)
                continue
            index = self.layout.places.get(prefix + name, (prefix + name, 1, ""))[0]
            if kind in ("text", "bare"):
                cleaner = CLEANERS.get((record, name), text_of)
                if not isinstance(index, str):
                    self.texts.append((len(self.indices), cleaner))
                self.indices.append(index)
                form = b"<![CDATA[%b]]>" if kind == "text" else b"%b"
                pieces += scalar_pieces(depth, name, "string", form)
            elif "*" in kind:
                kind, width = kind.split("*")
                width = self.widths.get(name, int(width))
                self.indices += range(index, index + width)
                # The sizes of a disk group's slots end in a blank, the last one's, too.
                last = b"%d " if name == "VDSlotSize" else b"%d"
                pieces += array_pieces(depth, name, kind, [b"%d "] * (width - 1) + [last])
            else:
                self.indices.append(index)
                pieces += scalar_pieces(depth, name, kind, b"%d")
        return pieces

    def write(self, document, values):
        """Appends the record; values has each value of the layout, and by name what is computed."""
        chosen = [values[index] for index in self.indices]
        for place, cleaner in self.texts:
            chosen[place] = cleaner(chosen[place])
        document.add(self.whole % tuple(chosen), self.split, chosen)

    def split(self, chosen):
        """The single pieces of what was written with these values."""
        values = iter(chosen)
        return [piece % next(values) if takes else piece
                for piece, takes in zip(self.pieces, self.takes)]


# The texts that are not written as they stand in their field.
CLEANERS = {
    ("HD_Info", "Model"): model_of,
    ("HD_Info", "SerialNo"): trimmed,
    ("HD_Info", "FWVersion"): trimmed,
    ("Adapter_Info", "SerialNo"): serial_of,
}


class Values(list):
    """A record's values, and by name those that are computed."""

    def __init__(self, values, **computed):
        super().__init__(values)
        self.computed = computed

    def __getitem__(self, index):
        return self.computed[index] if isinstance(index, str) else super().__getitem__(index)


# ---- Documents ----------------------------------------------------------------------------------

CAPACITY = 524287


class Document:
    """A result. Records and single elements are appended whole; when the document comes out longer than
    the library's, it is put together once more from its pieces, without those that do not fit."""

    def __init__(self):
        self.parts = []  # (bytes, function that splits them, its argument)

    def add(self, whole, split, argument):
        self.parts.append((whole, split, argument))

    def pieces(self, pieces):
        self.parts.append((b"".join(pieces), list, pieces))

    def scalar(self, depth, name, kind, value):
        if not isinstance(value, bytes):
            value = b"%d" % value
        self.pieces(scalar_pieces(depth, name, kind, value))

    def bytes(self):
        whole = b"".join(part[0] for part in self.parts)
        if len(whole) <= CAPACITY:
            return whole
        kept = bytearray()
        for _, split, argument in self.parts:
            for piece in split(argument):
                if len(kept) + len(piece) <= CAPACITY:
                    kept += piece
        return bytes(kept)


# ---- Records ------------------------------------------------------------------------------------

_templates = {}


def template(record, element, depth, leave_out=(), widths=()):
    key = (record, element, depth, leave_out, widths)
    if key not in _templates:
        _templates[key] = Template(record, element, depth, leave_out, dict(widths))
    return _templates[key]


PORTS = 8


def write_record(document, record, element, depth, data, offset=0):
    """Appends the elements of the record that lies at that offset in the data."""
    shape = layout(record)
    values = shape.unpack(data[offset:offset + shape.size])
    leave_out, widths = (), ()
    at = shape.places
    if record == "Adapter_Info":
        ports = min(values[at["PortCount"][0]], PORTS)
        leave_out = tuple(f"PortSasAddress{port}" for port in range(ports, PORTS))
        support = at["DiskGroupSupport"][0]
        values[support] = 1 if values[support] else 0
    elif record == "HD_Info":
        values = complete_disk(values, at)
    template(record, element, depth, leave_out, widths).write(document, values)


def complete_disk(values, at):
    """What a disk does not say itself follows from its type."""
    connection, device = at["ConnectionType"][0], at["DeviceType"][0]
    kind = values[at["HDType"][0]]
    if values[connection] == 0:
        for bit, bits in ((0, 1 << 2 | 1 << 0), (1, 1 << 3 | 1 << 0), (2, 1 << 1 | 1 << 2)):
            if kind & 1 << bit:
                values[connection] = bits
                break
    if values[device] == 0:
        for bit, code in ((4, 1), (5, 13), (3, 5)):
            if kind & 1 << bit:
                values[device] = code
                break
    return Values(values, CanLogicalUsed=1 if values[device] == 0 else 0)


def write_event(document, data, text):
    shape = layout("Event")
    values = Values(shape.unpack(data), Event=text)
    length = min(values[shape.places["SenseDataLength"][0]], 30)
    if length == 0:
        chosen = template("Event", "Event", 1, ("SenseData",))
    else:
        chosen = template("Event", "Event", 1, (), (("SenseData", length),))
    chosen.write(document, values)

// vexorctl disk ...
#include <algorithm>
#include <map>
#include <utility>

#include "codes/activity.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/state.h"
#include "codes/virtual_disk.h"
#include "common/address.h"
#include "model/ask_controller.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/result_tree.h"
#include "nouns/find_object.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

constexpr std::uint64_t kNone = 65535;

Cell OwnerCell(const Disk& disk) {
    const Value* const owner = disk.raid.Find("LDID");
    if (owner == nullptr) return Unknown();
    if (owner->Number("") == kNone) return TextCell("");
    return TextCell(Address{.adapter = disk.address.adapter,
                            .kind = ObjectKind::kVirtualDisk,
                            .id = static_cast<unsigned>(owner->Number(""))}
                        .Text());
}

Cell GroupCell(const Disk& disk) {
    if (!disk.group) return TextCell("");
    return TextCell(
        Address{.adapter = disk.address.adapter, .kind = ObjectKind::kDiskGroup, .id = *disk.group}
            .Text());
}

Cell EnclosureCell(const Disk& disk) {
    const std::uint64_t enclosure = disk.info.Number("Link/Self/EnclosureID");
    if (disk.info.Find("Link") == nullptr || enclosure == kNone) return TextCell("");
    return TextCell(Address{.adapter = disk.address.adapter,
                            .kind = ObjectKind::kEnclosure,
                            .id = static_cast<unsigned>(enclosure)}
                        .Text());
}

Cell PhyCell(const Disk& disk) {
    const std::vector<std::uint64_t> phys = disk.info.Numbers("Link/Parent/PhyID");
    return phys.empty() ? Unknown() : NumberCell(phys.front());
}

Cell ProgressCell(const Disk& disk) {
    if (disk.activity.Number("Bga") == 0) return Unknown();
    return RatioCell(static_cast<double>(disk.activity.Number("Percentage")) / 100);
}

using enum Kind;
using enum Place;

constexpr Column<Disk> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "Its address"},
     [](const Disk& it) { return TextCell(it.address.Text()); }},
    {{"state", "STATE", kText, kTable, "Its state in one word"},
     [](const Disk& it) { return TextCell(DiskState(it)); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"},
     [](const Disk& it) { return SectorsAt(it.info, "Size"); }},
    {{"free_bytes", "FREE", kBytes, kTable, "What is free for new virtual disks"},
     [](const Disk& it) { return SectorsAt(it.free_space, "Size"); }},
    {{"vd", "VD", kText, kTable, "The virtual disk that it serves"},
     [](const Disk& it) { return OwnerCell(it); }},
    {{"dg", "DG", kText, kTable, "The disk group that it serves"},
     [](const Disk& it) { return GroupCell(it); }},
    {{"model", "MODEL", kText, kTable, "Its model"},
     [](const Disk& it) { return TextAt(it.info, "Model"); }},
    {{"serial", "SERIAL", kText, kTable, "Its serial number"},
     [](const Disk& it) { return TextAt(it.info, "SerialNo"); }},
    {{"connection", "LINK", kCode, kTable, "How it is connected"},
     [](const Disk& it) {
         return CodeAt(it.info, "ConnectionType", hxcodes::kConnectionTypeNames);
     }},
    {{"enclosure", "ENCLOSURE", kText, kTable, "The enclosure that it is in"},
     [](const Disk& it) { return EnclosureCell(it); }},
    {{"phy", "PHY", kNumber, kTable, "The phy of its parent to which it is connected"},
     [](const Disk& it) { return PhyCell(it); }},
    {{"smart_alarm", "SMART ALARM", kBool, kTable, "Whether a SMART threshold is exceeded"},
     [](const Disk& it) { return NumberAt(it.smart, "SmartThresholdExceeded"); }},
    {{"status", "STATUS", kBits, kWide, "Its state as bits"},
     [](const Disk& it) { return BitsAt(it.info, "Status", hxcodes::kDiskBits); }},
    {{"firmware_version", "FIRMWARE", kText, kWide, "The version of its firmware"},
     [](const Disk& it) { return TextAt(it.info, "FWVersion"); }},
    {{"wwn", "WWN", kText, kWide, "Its world wide name"},
     [](const Disk& it) { return WwnAt(it.info, "WWN"); }},
    {{"sas_address", "SAS ADDRESS", kText, kWide, "Its SAS address"},
     [](const Disk& it) { return WwnAt(it.info, "Link/Self/SAS_Address"); }},
    {{"parent", "PARENT", kCode, kWide, "The kind of device that it is connected to"},
     [](const Disk& it) { return CodeAt(it.info, "Link/Parent/DevType", hxcodes::kDeviceNames); }},
    {{"parent_id", "PARENT ID", kNumber, kWide, "The number of that device"},
     [](const Disk& it) { return NumberAt(it.info, "Link/Parent/DevID"); }},
    {{"features", "FEATURES", kBits, kWide, "What it can do"},
     [](const Disk& it) { return BitsAt(it.info, "FeatureSupport", hxcodes::kDiskFeatureBits); }},
    {{"type_code", "TYPE", kNumber, kWide, "Its type, as bits of the controller"},
     [](const Disk& it) { return NumberAt(it.info, "HDType"); }},
    {{"device_type_code", "DEVICE TYPE", kNumber, kWide, "Its kind, a code of the controller"},
     [](const Disk& it) { return NumberAt(it.info, "DeviceType"); }},
    {{"usable", "USABLE", kBool, kWide, "Whether virtual disks can be made of it"},
     [](const Disk& it) { return NumberAt(it.info, "CanLogicalUsed"); }},
    {{"fixed", "FIXED", kBool, kWide, "Whether it is not removable"},
     [](const Disk& it) { return NumberAt(it.free_space, "isFixed"); }},
    {{"boot_record", "BOOT RECORD", kBool, kWide, "Whether it holds a boot record"},
     [](const Disk& it) { return it.boot_record ? NumberCell(*it.boot_record) : Unknown(); }},
    {{"write_cache", "WRITE CACHE", kBool, kWide, "Setting: its write cache is on"},
     [](const Disk& it) { return NumberAt(it.config, "WriteCacheOn"); }},
    {{"smart_on", "SMART ON", kBool, kWide, "Setting: SMART is on"},
     [](const Disk& it) { return NumberAt(it.config, "SMARTOn"); }},
    {{"online", "ONLINE", kBool, kWide, "Setting: it is online"},
     [](const Disk& it) { return NumberAt(it.config, "Online"); }},
    {{"link_speed", "SPEED", kCode, kWide, "The speed of its link"},
     [](const Disk& it) { return CodeAt(it.config, "DriveSpeed", hxcodes::kLinkSpeedNames); }},
    {{"activity", "ACTIVITY", kCode, kWide, "What is going on in the background"},
     [](const Disk& it) { return CodeAt(it.activity, "Bga", hxcodes::kActivityNames); }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How that stands"},
     [](const Disk& it) { return CodeAt(it.activity, "BgaStatus", hxcodes::kActivityStateNames); }},
    {{"progress_ratio", "PROGRESS", kRatio, kWide, "How far it is"},
     [](const Disk& it) { return ProgressCell(it); }},
    {{"locate_light_code", "LOCATE", kNumber, kWide, "The locate light, a code of the controller"},
     [](const Disk& it) { return NumberAt(it.info, "LocateLEDStatus"); }},
    {{"activity_light_code", "ACTIVITY LIGHT", kNumber, kWide,
      "The activity light, a code of the controller"},
     [](const Disk& it) { return NumberAt(it.info, "ActivityLEDStatus"); }},
    {{"error_light_code", "ERROR LIGHT", kNumber, kWide,
      "The error light, a code of the controller"},
     [](const Disk& it) { return NumberAt(it.info, "ErrorLEDStatus"); }},
    {{"pio_mode", "PIO", kNumber, kWide, "The highest PIO mode"},
     [](const Disk& it) { return NumberAt(it.info, "PIOMode"); }},
    {{"mdma_mode", "MDMA", kNumber, kWide, "The highest multiword DMA mode"},
     [](const Disk& it) { return NumberAt(it.info, "MDMAMode"); }},
    {{"udma_mode", "UDMA", kNumber, kWide, "The highest ultra DMA mode"},
     [](const Disk& it) { return NumberAt(it.info, "UDMAMode"); }},
    {{"current_pio_mode", "PIO NOW", kNumber, kWide, "The PIO mode in use"},
     [](const Disk& it) { return NumberAt(it.info, "CurrentPIOMode"); }},
    {{"current_mdma_mode", "MDMA NOW", kNumber, kWide, "The multiword DMA mode in use"},
     [](const Disk& it) { return NumberAt(it.info, "CurrentMDMAMode"); }},
    {{"current_udma_mode", "UDMA NOW", kNumber, kWide, "The ultra DMA mode in use"},
     [](const Disk& it) { return NumberAt(it.info, "CurrentUDMAMode"); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListDisks(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    std::vector<Disk> disks = LoadDisks(invocation.controller());
    if (invocation.Has("--free")) {
        std::erase_if(disks, [](const Disk& disk) { return DiskState(disk) != "free"; });
    }
    if (invocation.Has("--spare")) {
        std::erase_if(disks, [](const Disk& disk) { return !DiskState(disk).ends_with("_spare"); });
    }
    Tabulate(report, kColumns, disks);
    return Show(invocation, std::move(report), invocation.row().verb == "show" ? "list" : "table");
}

// ---- Blocks -----------------------------------------------------------------------------------

struct Block {
    Address disk;
    Value info;
};

constexpr Column<Block> kBlockColumns[] = {
    {{"address", "DISK", kText, kTable, "The address of the disk it lies on"},
     [](const Block& it) { return TextCell(it.disk.Text()); }},
    {{"block", "BLOCK", kNumber, kTable, "Its number on the adapter"},
     [](const Block& it) { return NumberAt(it.info, "ID"); }},
    {{"start_lba", "START", kNumber, kTable, "Its first sector"},
     [](const Block& it) { return NumberAt(it.info, "StartLBA"); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"},
     [](const Block& it) { return SectorsAt(it.info, "Size"); }},
    {{"vd", "VD", kText, kTable, "The virtual disk it belongs to"},
     [](const Block& it) {
         const std::uint64_t owner = it.info.Number("LDID");
         if (owner == 255 || owner == kNone) return TextCell("");
         return TextCell(Address{.adapter = it.disk.adapter,
                                 .kind = ObjectKind::kVirtualDisk,
                                 .id = static_cast<unsigned>(owner)}
                             .Text());
     }},
    {{"state", "STATE", kCode, kTable, "Its state"},
     [](const Block& it) { return CodeAt(it.info, "Status", hxcodes::kStateNames); }},
    {{"flags", "FLAGS", kBits, kTable, "What it is there for"},
     [](const Block& it) { return BitsAt(it.info, "Flags", hxcodes::kBlockBits); }},
};

std::vector<ColumnInfo> BlockColumns() { return InfoOf(kBlockColumns); }

// A disk without blocks is no fault: the targets are looked up, not searched for in the list.
bool IsWanted(const std::vector<Address>& wanted, const Address& disk) {
    return wanted.empty() || std::ranges::any_of(wanted, [&](const Address& each) {
               return each.kind == ObjectKind::kAdapter ? each.adapter == disk.adapter
                                                        : each == disk;
           });
}

Exit ListBlocks(Invocation& invocation) {
    Controller& controller = invocation.controller();
    std::vector<Address> wanted;
    for (const std::string& target : invocation.targets()) {
        const Selector selector = ParseSelector(target);
        const bool is_adapter = selector.form == Selector::Form::kAddress &&
                                selector.address.kind == ObjectKind::kAdapter;
        wanted.push_back(
            FindObject(invocation, is_adapter ? ObjectKind::kAdapter : ObjectKind::kDisk, target));
    }
    SelectAdapters(invocation);
    std::vector<Block> blocks;
    for (const unsigned adapter : controller.Selected()) {
        std::map<std::uint64_t, Value> by_id;
        for (Value& block : controller.List(adapter, {"HX_BLK_GetInfo", "blockInfo", "ID"})) {
            const std::uint64_t id = block.Number("ID");
            by_id.emplace(id, std::move(block));
        }
        for (const Value& disk : controller.List(adapter, {"HX_BLK_GetHDBlock", "Info", "ID"})) {
            const Address address{.adapter = adapter,
                                  .kind = ObjectKind::kDisk,
                                  .id = static_cast<unsigned>(disk.Number("ID"))};
            if (!IsWanted(wanted, address)) continue;
            for (const std::uint64_t id : disk.Numbers("BlockIDs")) {
                const auto found = by_id.find(id);
                if (id != kNone && found != by_id.end()) blocks.push_back({address, found->second});
            }
        }
    }
    Report report;
    Tabulate(report, kBlockColumns, blocks);
    return Present(invocation, std::move(report), "table");
}

// ---- Remapped sectors -------------------------------------------------------------------------

struct Remapped {
    Address disk;
    Value record;
};

constexpr Column<Remapped> kRemappedColumns[] = {
    {{"address", "DISK", kText, kTable, "The address of the disk"},
     [](const Remapped& it) { return TextCell(it.disk.Text()); }},
    {{"lba", "LBA", kNumber, kTable, "The first of the sectors"},
     [](const Remapped& it) { return NumberAt(it.record, "lba"); }},
    {{"sectors", "SECTORS", kNumber, kTable, "Their number"},
     [](const Remapped& it) { return NumberAt(it.record, "sec"); }},
    {{"reason", "REASON", kCode, kTable, "Why they have been remapped"},
     [](const Remapped& it) { return CodeAt(it.record, "flag", hxcodes::kRemapReasonNames); }},
};

std::vector<ColumnInfo> RemappedColumns() { return InfoOf(kRemappedColumns); }

Exit ListRemapped(Invocation& invocation) {
    constexpr std::uint64_t kPage = 1000;
    const Address address = FindTarget(invocation, ObjectKind::kDisk);
    Controller& controller = invocation.controller();
    std::vector<Remapped> all;
    for (std::uint64_t start = 0;;) {
        const auto page =
            controller.Get(address.Text(), {"HX_PD_GetRCT",
                                            {{"AdapterID", std::to_string(address.adapter)},
                                             {"HD_ID", std::to_string(address.id)},
                                             {"n", std::to_string(kPage)},
                                             {"s", std::to_string(start)},
                                             {"e", std::to_string(start + kPage - 1)}}});
        if (!page) break;
        const std::size_t before = all.size();
        for (const Value& child : page->children) {
            if (child.name == "Record") all.push_back({address, child});
        }
        start += all.size() - before;
        if (all.size() == before || start >= page->Number("Count")) break;
    }
    Report report;
    Tabulate(report, kRemappedColumns, all);
    return Present(invocation, std::move(report), "table");
}

// ---- Changes ----------------------------------------------------------------------------------

// What a person knows a disk by.
std::string Described(const Disk& disk) {
    return disk.address.Text() + " (" + disk.info.Text("Model") + ", serial " +
           disk.info.Text("SerialNo") + ", " + SizeText(512 * disk.info.Number("Size"), {}) + ", " +
           DiskState(disk) + ")";
}

Disk FindDisk(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kDisk);
    for (Disk& disk : LoadDisks(invocation.controller())) {
        if (disk.address == address) return std::move(disk);
    }
    throw Failure(Exit::kNoObject, address.Text() + ": there is no such disk any more");
}

Change ChangeOf(const Disk& disk, std::string what, std::string_view function) {
    return {.what = std::move(what) + " " + Described(disk),
            .losses = {},
            .confirm = {},
            .commands = {{function, AddressFields(disk.address, "HD_ID")}},
            .address = disk.address.Text(),
            .size_bytes = {}};
}

Exit LocateDisk(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kDisk);
    const bool off = invocation.Has("--off");
    return CarryOut(
        invocation,
        {.what = "Switch the locate light of " + address.Text() + (off ? " off" : " on"),
         .losses = {},
         .confirm = {},
         .commands = {{"HX_LocateArrayDevice",
                       {{"AdapterID", std::to_string(address.adapter)},
                        {"deviceType", std::to_string(hxcodes::Device::kDisk)},
                        {"deviceId", std::to_string(address.id)},
                        {"ledStatus", off ? "0" : "1"}}}},
         .address = address.Text(),
         .size_bytes = {}});
}

Exit SpareDisk(Invocation& invocation) {
    const std::string* const group = invocation.Get("--dg");
    const Disk disk = FindDisk(invocation);
    if (group == nullptr) {
        return CarryOut(invocation, ChangeOf(disk, "Make a spare of", "HX_PD_FreeHD2GlobalSpare"));
    }
    const Address owner = FindObject(invocation, ObjectKind::kDiskGroup, *group);
    if (owner.adapter != disk.address.adapter) {
        throw UsageError(owner.Text() + " and " + disk.address.Text() + " are on two adapters");
    }
    Change change =
        ChangeOf(disk, "Make a spare of " + owner.Text() + " of", "HX_PD_FreeHD2DGSpare");
    change.commands.front().fields.emplace_back("DG_ID", std::to_string(owner.id));
    return CarryOut(invocation, change);
}

Exit UnspareDisk(Invocation& invocation) {
    return CarryOut(invocation, ChangeOf(FindDisk(invocation), "Make a spare no more of",
                                         "HX_PD_Spare2FreeHD"));
}

Exit WipeDisk(Invocation& invocation) {
    const Disk disk = FindDisk(invocation);
    Change change = ChangeOf(disk, "Wipe the configuration off", "HX_PD_WipeHDMDD");
    change.commands.front().fields.emplace_back("Force", invocation.Has("--force") ? "1" : "0");
    const std::string owner = OwnerCell(disk).text;
    if (!owner.empty()) change.losses.push_back("its part of " + owner + " will be lost");
    if (disk.boot_record.value_or(false)) change.losses.emplace_back("it holds a boot record");
    change.losses.emplace_back("what the disk knows of virtual disks and spares will be lost");
    change.confirm = disk.address.Text();
    return CarryOut(invocation, change);
}

// Its state and its settings are two calls; only what was named is sent.
Exit SetDisk(Invocation& invocation) {
    const Disk disk = FindDisk(invocation);
    Change change = ChangeOf(disk, "Set", "HX_PD_SetConfig");
    change.commands.clear();
    if (invocation.Has("--state")) {
        Fields fields = AddressFields(disk.address, "HD_ID");
        fields.emplace_back("Action", CodeOption(invocation, "--state", hxcodes::kDiskActionNames));
        change.commands.push_back({"HX_PD_SetHDStatus", std::move(fields)});
        change.losses.push_back("state: " + DiskState(disk) + " -> " +
                                invocation.Get("--state", ""));
        if (invocation.Get("--state", "") != "online") change.confirm = disk.address.Text();
    }
    if (invocation.Has("--write-cache") || invocation.Has("--smart")) {
        Fields fields = AddressFields(disk.address, "HD_ID");
        fields.emplace_back("WriteCacheOn", SwitchOption(invocation, "--write-cache",
                                                         disk.config.Number("WriteCacheOn")));
        fields.emplace_back("SMARTOn",
                            SwitchOption(invocation, "--smart", disk.config.Number("SMARTOn")));
        fields.emplace_back("Online", disk.config.Text("Online"));
        fields.emplace_back("DriveSpeed", disk.config.Text("DriveSpeed"));
        fields.emplace_back("HDID", std::to_string(disk.address.id));
        change.commands.push_back({"HX_PD_SetConfig", std::move(fields)});
    }
    if (change.commands.empty()) throw UsageError("no setting was named");
    return CarryOut(invocation, change);
}

constexpr OptionRow kLocateOptions[] = {{"--off", "", "Switch the light off"}};
constexpr OptionRow kSpareOptions[] = {
    {"--dg", "DG", "Only for this disk group; otherwise for all of the adapter"},
};
constexpr OptionRow kWipeOptions[] = {
    {"--force", "", "Even when it carries blocks of a virtual disk"},
};
constexpr OptionRow kSetOptions[] = {
    {"--state", "STATE", "What the disk is to become", "online offline free"},
    {"--write-cache", "ON", "Its write cache", "on off"},
    {"--smart", "ON", "SMART", "on off"},
};

constexpr OptionRow kListOptions[] = {
    {"--adapter", "NUMBER", "Only those of this adapter"},
    {"--free", "", "Only those that new virtual disks can be made of"},
    {"--spare", "", "Only spares"},
};
constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr std::string_view kListFunctions =
    "HX_PD_GetHDInfo_Ext HX_PD_GetHDInfo HX_PD_GetConfig HX_PD_GetSmartStatus "
    "HX_PD_GetHDRaidStatus "
    "HX_PD_GetBGAStatus HX_PD_GetFreeSpaceInfo HX_PD_GetMBRInfo HX_PD_GetSpareInfo HX_DG_GetInfo";

constexpr CommandRow kCommands[] = {
    {.noun = "disk",
     .verb = "list",
     .summary = "List the disks",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kListOptions,
     .functions = kListFunctions,
     .examples = {"vexorctl disk list", "vexorctl disk list --free --sort=-size_bytes"},
     .run = ListDisks,
     .columns = Columns},
    {.noun = "disk",
     .verb = "show",
     .summary = "Show all about disks",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kAdapterOption,
     .functions = kListFunctions,
     .examples = {"vexorctl disk show a0/pd3", "vexorctl disk show serial:6TW0D21A -o json"},
     .run = ListDisks,
     .columns = Columns},
    {.noun = "disk",
     .verb = "blocks",
     .summary = "List the blocks that disks carry",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kAdapterOption,
     .functions = "HX_BLK_GetInfo HX_BLK_GetHDBlock",
     .examples = {"vexorctl disk blocks a0/pd0", "vexorctl disk blocks --bytes --no-header"},
     .run = ListBlocks,
     .columns = BlockColumns},
    {.noun = "disk",
     .verb = "remapped",
     .summary = "List the sectors of a disk that have been remapped",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .functions = "HX_PD_GetRCT",
     .examples = {"vexorctl disk remapped a0/pd3", "vexorctl disk remapped a0/pd3 -o csv"},
     .run = ListRemapped,
     .columns = RemappedColumns},
    {.noun = "disk",
     .verb = "set",
     .summary = "Change the state or the settings of a disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kSetOptions,
     .functions = "HX_PD_SetHDStatus HX_PD_SetConfig HX_PD_GetConfig",
     .examples = {"vexorctl disk set a0/pd3 --write-cache on --dry-run",
                  "vexorctl disk set a0/pd3 --state offline --dry-run"},
     .run = SetDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "disk",
     .verb = "spare",
     .summary = "Make a free disk a spare",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kSpareOptions,
     .functions = "HX_PD_FreeHD2GlobalSpare HX_PD_FreeHD2DGSpare",
     .examples = {"vexorctl disk spare a0/pd11 --dry-run",
                  "vexorctl disk spare a0/pd11 --dg a0/dg0 --dry-run"},
     .run = SpareDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "disk",
     .verb = "unspare",
     .summary = "Make a spare a free disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .functions = "HX_PD_Spare2FreeHD",
     .examples = {"vexorctl disk unspare a0/pd9 --dry-run",
                  "vexorctl disk unspare a0/pd9 --dry-run -o json"},
     .run = UnspareDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "disk",
     .verb = "wipe",
     .summary = "Take the configuration off a disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kWipeOptions,
     .functions = "HX_PD_WipeHDMDD",
     .examples = {"vexorctl disk wipe a0/pd11 --dry-run",
                  "vexorctl disk wipe a0/pd11 --force --dry-run"},
     .run = WipeDisk,
     .columns = ChangeColumns,
     .note = "It asks for the address of the disk.",
     .changes = true},
    {.noun = "disk",
     .verb = "locate",
     .summary = "Switch the locate light of a disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kLocateOptions,
     .functions = "HX_LocateArrayDevice",
     .examples = {"vexorctl disk locate a0/pd3", "vexorctl disk locate a0/pd3 --off"},
     .run = LocateDisk,
     .columns = ChangeColumns,
     .changes = true},
};

}  // namespace

std::span<const CommandRow> DiskCommands() { return kCommands; }

}  // namespace vexorctl

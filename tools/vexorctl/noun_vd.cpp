// vexorctl vd ...
#include <algorithm>
#include <map>
#include <utility>

#include "command.h"
#include "failure.h"
#include "hxraid_codes.h"
#include "objects.h"
#include "output.h"
#include "target.h"

namespace {

constexpr unsigned kNoGroup = 255;

Cell DisksCell(const VirtualDisk& disk) {
    std::vector<std::string> texts;
    for (const std::uint64_t id : disk.disks) {
        texts.push_back(Address{.adapter = disk.address.adapter,
                                .kind = ObjectKind::kDisk,
                                .id = static_cast<unsigned>(id)}
                            .Text());
    }
    return TextsCell(std::move(texts));
}

Cell GroupCell(const VirtualDisk& disk) {
    const std::uint64_t group = disk.info.Number("DGID");
    if (disk.info.Find("DGID") == nullptr) return Unknown();
    if (group == kNoGroup) return TextCell("");
    return TextCell(Address{.adapter = disk.address.adapter,
                            .kind = ObjectKind::kDiskGroup,
                            .id = static_cast<unsigned>(group)}
                        .Text());
}

Cell ProgressCell(const VirtualDisk& disk) {
    if (disk.status.Number("Bga") == 0) return Unknown();
    return RatioCell(static_cast<double>(disk.status.Number("BgaPercentage")) / 100);
}

Cell StripeCell(const Value& info) {
    return info.Find("StripeBlockSize") == nullptr
               ? Unknown()
               : NumberCell(1024 * info.Number("StripeBlockSize"));
}

Cell SectorCell(const Value& info) {
    return info.Find("SectorCoefficient") == nullptr
               ? Unknown()
               : NumberCell(512 * info.Number("SectorCoefficient"));
}

using enum Kind;
using enum Place;

constexpr Column<VirtualDisk> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "Its address"},
     [](const VirtualDisk& it) { return TextCell(it.address.Text()); }},
    {{"name", "NAME", kText, kTable, "Its name"},
     [](const VirtualDisk& it) { return TextAt(it.info, "Name"); }},
    {{"state", "STATE", kCode, kTable, "Its state"},
     [](const VirtualDisk& it) { return CodeAt(it.info, "Status", kHxsimStateNames); }},
    {{"level", "LEVEL", kCode, kTable, "Its RAID level"},
     [](const VirtualDisk& it) { return CodeAt(it.info, "RaidMode", kHxsimLevelNames); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"},
     [](const VirtualDisk& it) { return SectorsAt(it.info, "Size"); }},
    {{"disks", "DISKS", kTexts, kTable, "The disks that it lies on"},
     [](const VirtualDisk& it) { return DisksCell(it); }},
    {{"dg", "DG", kText, kTable, "The disk group that it lies on"},
     [](const VirtualDisk& it) { return GroupCell(it); }},
    {{"cache", "CACHE", kBits, kTable, "Its cache"},
     [](const VirtualDisk& it) { return BitsAt(it.info, "CacheMode", kHxsimCacheBits); }},
    {{"activity", "ACTIVITY", kCode, kTable, "What is going on in the background"},
     [](const VirtualDisk& it) { return CodeAt(it.status, "Bga", kHxsimActivityNames); }},
    {{"progress_ratio", "PROGRESS", kRatio, kTable, "How far that is"},
     [](const VirtualDisk& it) { return ProgressCell(it); }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How it stands"},
     [](const VirtualDisk& it) { return CodeAt(it.status, "BgaState", kHxsimActivityStateNames); }},
    {{"stripe_bytes", "STRIPE", kBytes, kWide, "Its stripe size"},
     [](const VirtualDisk& it) { return StripeCell(it.info); }},
    {{"disk_count", "DISK COUNT", kNumber, kWide, "The number of its disks"},
     [](const VirtualDisk& it) { return NumberAt(it.info, "HDCount"); }},
    {{"leg_count", "LEGS", kNumber, kWide, "The number of its legs; 0 for a level without"},
     [](const VirtualDisk& it) { return NumberAt(it.info, "SubLDCount"); }},
    {{"parity_disks", "PARITY", kNumber, kWide, "The number of its parity disks"},
     [](const VirtualDisk& it) { return NumberAt(it.info, "NumParityDisk"); }},
    {{"sector_bytes", "SECTOR", kNumber, kWide, "The size of its sectors"},
     [](const VirtualDisk& it) { return SectorCell(it.info); }},
    {{"auto_rebuild", "AUTO REBUILD", kBool, kWide, "Setting: a spare is taken at once"},
     [](const VirtualDisk& it) { return NumberAt(it.config, "AutoRebuildOn"); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListVirtualDisks(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(report, kColumns, LoadVirtualDisks(invocation.controller()));
    return Show(invocation, std::move(report), invocation.row().verb == "show" ? "list" : "table");
}

// VD-COMMANDS

constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr std::string_view kListFunctions =
    "HX_LD_GetInfo HX_LD_GetTargetLDInfo HX_LD_GetConfig HX_LD_GetStatus HX_BLK_GetInfo";

constexpr CommandRow kCommands[] = {
    {.noun = "vd",
     .verb = "list",
     .summary = "List the virtual disks",
     .target = Target::kVirtualDisk,
     .arity = Arity::kAny,
     .target_name = "VD",
     .options = kAdapterOption,
     .functions = kListFunctions,
     .examples = {"vexorctl vd list", "vexorctl vd list a0 --columns name,state,size_bytes --si"},
     .run = ListVirtualDisks,
     .columns = Columns},
    {.noun = "vd",
     .verb = "show",
     .summary = "Show all about virtual disks",
     .target = Target::kVirtualDisk,
     .arity = Arity::kAny,
     .target_name = "VD",
     .options = kAdapterOption,
     .functions = kListFunctions,
     .examples = {"vexorctl vd show a0/vd0", "vexorctl vd show name:ARCHIVE -o json"},
     .run = ListVirtualDisks,
     .columns = Columns},
    // VD-ROWS
};

}  // namespace

std::vector<VirtualDisk> LoadVirtualDisks(Controller& controller) {
    std::vector<VirtualDisk> all;
    for (const unsigned adapter : controller.Selected()) {
        std::vector<Value> infos = controller.List(adapter, "HX_LD_GetInfo", "LDInfo");
        if (infos.empty()) continue;
        std::map<std::uint64_t, Value> configs;
        for (Value& config : controller.List(adapter, "HX_LD_GetConfig", "LDConfig")) {
            const std::uint64_t id = config.Number("LDID");
            configs.insert_or_assign(id, std::move(config));
        }
        std::map<std::uint64_t, Value> states;
        for (Value& state : controller.List(adapter, "HX_LD_GetStatus", "Status")) {
            const std::uint64_t id = state.Number("LDID");
            states.insert_or_assign(id, std::move(state));
        }
        std::map<std::uint64_t, std::uint64_t> disk_of_block;
        for (const Value& block : controller.List(adapter, "HX_BLK_GetInfo", "blockInfo")) {
            disk_of_block.insert_or_assign(block.Number("ID"), block.Number("HDID"));
        }
        for (Value& info : infos) {
            const std::uint64_t id = info.Number("ID");
            VirtualDisk disk;
            disk.address = {.adapter = adapter,
                            .kind = ObjectKind::kVirtualDisk,
                            .id = static_cast<unsigned>(id)};
            std::vector<std::uint64_t> blocks = info.Numbers("BlockIDs");
            blocks.resize(std::min<std::size_t>(blocks.size(), info.Number("HDCount")));
            for (const std::uint64_t block : blocks) {
                const auto found = disk_of_block.find(block);
                if (found != disk_of_block.end()) disk.disks.push_back(found->second);
            }
            disk.info = std::move(info);
            disk.config = std::move(configs[id]);
            disk.status = std::move(states[id]);
            all.push_back(std::move(disk));
        }
    }
    return all;
}

std::span<const CommandRow> VirtualDiskCommands() { return kCommands; }

// vexorctl dg ...
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

constexpr std::uint64_t kNone = 65535;

Cell AddressesCell(const DiskGroup& group, std::string_view field, std::uint64_t count,
                   ObjectKind kind) {
    if (group.info.Find(field) == nullptr) return Unknown();
    std::vector<std::uint64_t> ids = group.info.Numbers(field);
    ids.resize(std::min<std::size_t>(ids.size(), count));
    std::vector<std::string> texts;
    for (const std::uint64_t id : ids) {
        if (id == kNone) continue;
        texts.push_back(
            Address{.adapter = group.address.adapter, .kind = kind, .id = static_cast<unsigned>(id)}
                .Text());
    }
    return TextsCell(std::move(texts));
}

Cell StripeCell(const Value& info) {
    return info.Find("StripeBlockSize") == nullptr
               ? Unknown()
               : NumberCell(1024 * info.Number("StripeBlockSize"));
}

using enum Kind;
using enum Place;

constexpr Column<DiskGroup> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "Its address"},
     [](const DiskGroup& it) { return TextCell(it.address.Text()); }},
    {{"name", "NAME", kText, kTable, "Its name"},
     [](const DiskGroup& it) { return TextAt(it.info, "Name"); }},
    {{"state", "STATE", kCode, kTable, "Its state"},
     [](const DiskGroup& it) { return CodeAt(it.info, "Status", kHxsimStateNames); }},
    {{"level", "LEVEL", kCode, kTable, "Its RAID level"},
     [](const DiskGroup& it) { return CodeAt(it.info, "RaidMode", kHxsimLevelNames); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "What virtual disks can take of it in all"},
     [](const DiskGroup& it) { return SectorsAt(it.info, "TotalManagedSpace"); }},
    {{"free_bytes", "FREE", kBytes, kTable, "What new virtual disks can take"},
     [](const DiskGroup& it) { return SectorsAt(it.info, "RemainingManagedSpace"); }},
    {{"disks", "DISKS", kTexts, kTable, "Its disks"},
     [](const DiskGroup& it) {
         return AddressesCell(it, "PDIDs", it.info.Number("PDCount"), ObjectKind::kDisk);
     }},
    {{"spares", "SPARES", kTexts, kTable, "Its spares"},
     [](const DiskGroup& it) {
         return AddressesCell(it, "SparePDIDs", it.info.Number("SparePDCount"), ObjectKind::kDisk);
     }},
    {{"vds", "VDS", kTexts, kTable, "The virtual disks on it"},
     [](const DiskGroup& it) {
         return AddressesCell(it, "VDIDs", it.info.Number("VDSlotCount"), ObjectKind::kVirtualDisk);
     }},
    {{"activity", "ACTIVITY", kCode, kTable, "What is going on in the background"},
     [](const DiskGroup& it) { return CodeAt(it.info, "BgaType", kHxsimActivityNames); }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How that stands"},
     [](const DiskGroup& it) { return CodeAt(it.info, "BgaState", kHxsimActivityStateNames); }},
    {{"smallest_disk_free_bytes", "SMALLEST", kBytes, kWide,
      "The room on the smallest of its disks"},
     [](const DiskGroup& it) { return SectorsAt(it.info, "SmallestAvailablePDSize"); }},
    {{"stripe_bytes", "STRIPE", kBytes, kWide, "Its stripe size"},
     [](const DiskGroup& it) { return StripeCell(it.info); }},
    {{"leg_count", "LEGS", kNumber, kWide, "The number of its legs; 0 for a level without"},
     [](const DiskGroup& it) { return NumberAt(it.info, "SubVDCount"); }},
    {{"parity_disks", "PARITY", kNumber, kWide, "The number of its parity disks"},
     [](const DiskGroup& it) { return NumberAt(it.info, "NumParityDisk"); }},
    {{"sector_bytes", "SECTOR", kNumber, kWide, "The size of its sectors"},
     [](const DiskGroup& it) { return NumberAt(it.info, "BlockSize"); }},
    {{"write_cache", "WRITE CACHE", kBool, kWide, "Setting: the write cache of its disks is on"},
     [](const DiskGroup& it) { return NumberAt(it.config, "WriteCacheOn"); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListDiskGroups(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(report, kColumns, LoadDiskGroups(invocation.controller()));
    return Show(invocation, std::move(report), invocation.row().verb == "show" ? "list" : "table");
}

// DG-COMMANDS

constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr CommandRow kCommands[] = {
    {.noun = "dg",
     .verb = "list",
     .summary = "List the disk groups",
     .target = Target::kDiskGroup,
     .arity = Arity::kAny,
     .target_name = "DG",
     .options = kAdapterOption,
     .functions = "HX_DG_GetInfo HX_DG_GetConfig",
     .examples = {"vexorctl dg list", "vexorctl dg list -o jsonl"},
     .run = ListDiskGroups,
     .columns = Columns},
    {.noun = "dg",
     .verb = "show",
     .summary = "Show all about disk groups",
     .target = Target::kDiskGroup,
     .arity = Arity::kAny,
     .target_name = "DG",
     .options = kAdapterOption,
     .functions = "HX_DG_GetInfo HX_DG_GetConfig",
     .examples = {"vexorctl dg show a0/dg0", "vexorctl dg show name:GROUP_A --bytes"},
     .run = ListDiskGroups,
     .columns = Columns},
    // DG-ROWS
};

}  // namespace

std::vector<DiskGroup> LoadDiskGroups(Controller& controller) {
    std::vector<DiskGroup> groups;
    for (const unsigned adapter : controller.Selected()) {
        std::vector<Value> infos = controller.List(adapter, "HX_DG_GetInfo", "DG_Info");
        if (infos.empty()) continue;
        std::map<std::uint64_t, Value> configs;
        for (Value& config : controller.List(adapter, "HX_DG_GetConfig", "DG_Config")) {
            const std::uint64_t id = config.Number("DGID");
            configs.insert_or_assign(id, std::move(config));
        }
        for (Value& info : infos) {
            const std::uint64_t id = info.Number("DGID");
            DiskGroup group;
            group.address = {.adapter = adapter,
                             .kind = ObjectKind::kDiskGroup,
                             .id = static_cast<unsigned>(id)};
            group.info = std::move(info);
            group.config = std::move(configs[id]);
            groups.push_back(std::move(group));
        }
    }
    return groups;
}

std::span<const CommandRow> DiskGroupCommands() { return kCommands; }

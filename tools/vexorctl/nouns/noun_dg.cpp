// vexorctl dg ...
#include <algorithm>
#include <utility>

#include "codes/activity.h"
#include "codes/level.h"
#include "codes/state.h"
#include "common/address.h"
#include "model/ask_controller.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/object_name.h"
#include "model/result_tree.h"
#include "model/virtual_disks.h"
#include "nouns/choose_disks.h"
#include "nouns/creation_options.h"
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

Cell AddressesCell(const DiskGroup& group, std::string_view field, std::uint64_t count,
                   ObjectKind kind) {
    if (group.info.Find(field) == nullptr) return Unknown();
    std::vector<std::string> texts;
    for (const std::uint64_t id : group.info.Numbers(field, count)) {
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
     [](const DiskGroup& it) { return CodeAt(it.info, "Status", hxcodes::kStateNames); }},
    {{"level", "LEVEL", kCode, kTable, "Its RAID level"},
     [](const DiskGroup& it) { return CodeAt(it.info, "RaidMode", hxcodes::kLevelNames); }},
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
         return AddressesCell(it, "VDIDs", HX_MAX_VD_SLOTS, ObjectKind::kVirtualDisk);
     }},
    {{"activity", "ACTIVITY", kCode, kTable, "What is going on in the background"},
     [](const DiskGroup& it) { return CodeAt(it.info, "BgaType", hxcodes::kActivityNames); }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How that stands"},
     [](const DiskGroup& it) { return CodeAt(it.info, "BgaState", hxcodes::kActivityStateNames); }},
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

// ---- Changes ----------------------------------------------------------------------------------

DiskGroup FindDiskGroup(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kDiskGroup);
    for (DiskGroup& group : LoadDiskGroups(invocation.controller())) {
        if (group.address == address) return std::move(group);
    }
    throw Failure(Exit::kNoObject, address.Text() + ": there is no such disk group any more");
}

std::string Described(const DiskGroup& group) {
    return group.address.Text() + " (" + group.info.Text("Name") + ", " +
           SizeText(512 * group.info.Number("TotalManagedSpace"), {}) + ")";
}

std::string ConfirmName(const DiskGroup& group) {
    const std::string name = group.info.Text("Name");
    return name.empty() ? group.address.Text() : name;
}

std::string Joined(std::span<const Disk> disks) {
    std::string text;
    for (const Disk& disk : disks) {
        text.append(text.empty() ? "" : ", ").append(disk.address.Text());
    }
    return text;
}

Exit CreateDiskGroup(Invocation& invocation) {
    const LevelRow& level = LevelOption(invocation);
    const std::vector<Disk> disks = NamedDisks(invocation, invocation.targets());
    // Disks that were unplugged between two looks.
    if (disks.empty()) throw UsageError("no disks: a disk group needs one at least");
    const unsigned adapter = disks.front().address.adapter;
    const std::string name = NameOption(invocation, NameMarkup::kBare, "NEW_DG");
    const Fields fields{
        {"AdapterID", std::to_string(adapter)},
        {"Name", name},
        {"RaidMode", std::string(level.code)},
        {"SubVDCount", std::to_string(invocation.Number("--legs", 255).value_or(0))},
        {"NumParityDisk", std::to_string(level.parity)},
        {"StripeBlockSize", StripeOption(invocation, "64")},
        {"Size", "0"},
        {"BlockSize", "512"},
        {"InitializationOption", "0"},
        {"PDCount", std::to_string(disks.size())},
        {"PDIDs", Ids(disks)}};
    Fields asking = fields;
    asking.insert(asking.begin() + 1, {"DGID", std::to_string(kNone)});
    const Command look{"HX_DG_GetSizeOnly", std::move(asking)};
    const Answer size = invocation.controller().Ask(look);
    if (size.exit != Exit::kDone) {
        throw Failure(size.exit,
                      "RAID " + std::string(level.name) + " over " + Joined(disks) + ": " +
                          size.complaint + Alternatives(invocation, adapter),
                      FaultOf(look, size));
    }
    std::vector<Address> before;
    for (const DiskGroup& group : LoadDiskGroups(invocation.controller())) {
        before.push_back(group.address);
    }
    Change change{
        .what = "Create a RAID " + std::string(level.name) + " disk group called " + name + " on",
        .losses = {},
        .confirm = {},
        .commands = {{"HX_DG_Create", fields}},
        .address = {},
        .size_bytes = 512 * size.result.Number("CreateOrModify_DG_Param/Size"),
        .find = [&invocation, before] {
            for (const DiskGroup& group : LoadDiskGroups(invocation.controller())) {
                if (std::ranges::find(before, group.address) == before.end()) {
                    return group.address.Text();
                }
            }
            return std::string();
        }};
    AddDisks(change, disks, name);
    return CarryOut(invocation, change);
}

std::vector<std::string> DisksOf(const DiskGroup& group) {
    return AddressesCell(group, "PDIDs", group.info.Number("PDCount"), ObjectKind::kDisk).texts;
}

std::string JoinedDisks(const DiskGroup& group) {
    std::string text;
    for (const std::string& disk : DisksOf(group)) {
        text.append(text.empty() ? "" : ", ").append(disk);
    }
    return text;
}

Exit DeleteDiskGroup(Invocation& invocation) {
    const DiskGroup group = FindDiskGroup(invocation);
    Change change{.what = "Delete disk group " + Described(group),
                  .losses = {},
                  .confirm = ConfirmName(group),
                  .commands = {{"HX_DG_Delete", AddressFields(group.address, "DG_ID")}},
                  .address = group.address.Text(),
                  .size_bytes = {}};
    for (const VirtualDisk& disk : LoadVirtualDisks(invocation.controller())) {
        if (disk.address.adapter != group.address.adapter ||
            disk.info.Number("DGID") != group.address.id) {
            continue;
        }
        change.losses.push_back("virtual disk " + disk.address.Text() + " (" +
                                disk.info.Text("Name") + ", " +
                                SizeText(512 * disk.info.Number("Size"), {}) +
                                ") lies on it and will be lost with all its data");
    }
    change.losses.push_back("its disks: " + JoinedDisks(group));
    return CarryOut(invocation, change);
}

// What is not named stays; a group without a name cannot be told from one whose name stays.
Exit SetDiskGroup(Invocation& invocation) {
    const DiskGroup group = FindDiskGroup(invocation);
    if (!invocation.Has("--name") && !invocation.Has("--write-cache")) {
        throw UsageError("no setting was named");
    }
    Fields fields = AddressFields(group.address, "DG_ID");
    fields.emplace_back("DGID", std::to_string(group.address.id));
    fields.emplace_back("WriteCacheOn", SwitchOption(invocation, "--write-cache",
                                                     group.config.Number("WriteCacheOn")));
    fields.emplace_back("Name", NameOption(invocation, NameMarkup::kBare, group.info.Text("Name")));
    return CarryOut(invocation, {.what = "Set disk group " + Described(group),
                                 .losses = {},
                                 .confirm = {},
                                 .commands = {{"HX_DG_SetConfig", std::move(fields)}},
                                 .address = group.address.Text(),
                                 .size_bytes = {}});
}

// Adds the disks to those that the group has.
Exit ModifyDiskGroup(Invocation& invocation) {
    const DiskGroup group = FindDiskGroup(invocation);
    const std::vector<std::string> typed = SplitList(invocation.Get("--add", ""));
    std::vector<std::string> members = DisksOf(group);
    members.insert(members.end(), typed.begin(), typed.end());
    const std::vector<Disk> disks = NamedDisks(invocation, members);
    if (typed.empty() && !invocation.Has("--name")) throw UsageError("no change was named");
    const Fields fields{
        {"AdapterID", std::to_string(group.address.adapter)},
        {"DGID", std::to_string(group.address.id)},
        {"Name", NameOption(invocation, NameMarkup::kBare, group.info.Text("Name"))},
        {"RaidMode", group.info.Text("RaidMode")},
        {"SubVDCount", group.info.Text("SubVDCount")},
        {"NumParityDisk", group.info.Text("NumParityDisk")},
        {"StripeBlockSize", group.info.Text("StripeBlockSize")},
        {"Size", "0"},
        {"BlockSize", group.info.Text("BlockSize")},
        {"PDCount", std::to_string(disks.size())},
        {"PDIDs", Ids(disks)}};
    Change change{.what = "Modify disk group " + Described(group) + " on",
                  .losses = {},
                  .confirm = ConfirmName(group),
                  .commands = {{"HX_DG_Modify", fields}},
                  .address = group.address.Text(),
                  .size_bytes = {},
                  .starts_task = true};
    AddDisks(change, disks, ConfirmName(group));
    return CarryOut(invocation, change);
}

Exit MigrateDiskGroup(Invocation& invocation) {
    const DiskGroup group = FindDiskGroup(invocation);
    const LevelRow& level = LevelOption(invocation);
    std::vector<std::string> typed = SplitList(invocation.Get("--to", ""));
    if (typed.empty()) typed = DisksOf(group);
    const std::vector<Disk> disks = NamedDisks(invocation, typed);
    Fields fields = AddressFields(group.address, "DGID");
    fields.emplace_back("RaidMode", level.code);
    fields.emplace_back("NumParityDisk", std::to_string(level.parity));
    fields.emplace_back("PDCount", std::to_string(disks.size()));
    fields.emplace_back("PDIDs", Ids(disks));
    Change change{.what = "Migrate disk group " + Described(group) + " to RAID " +
                          std::string(level.name) + " on",
                  .losses = {},
                  .confirm = ConfirmName(group),
                  .commands = {{"HX_DG_StartMigration", std::move(fields)}},
                  .address = group.address.Text(),
                  .size_bytes = {},
                  .starts_task = true};
    AddDisks(change, disks, ConfirmName(group));
    return CarryOut(invocation, change);
}

constexpr OptionRow kCreateOptions[] = {
    {"--raid", "LEVEL", "The RAID level", kLevelNames},
    {"--name", "NAME", "Its name, of at most 15 bytes"},
    {"--stripe", "SIZE", "Its stripe size, as in 64KiB"},
    {"--legs", "COUNT", "Of RAID 50 and 60: the number of legs"},
};
constexpr OptionRow kSetOptions[] = {
    {"--name", "NAME", "Its name, of at most 15 bytes"},
    {"--write-cache", "ON", "The write cache of its disks", "on off"},
};
constexpr OptionRow kModifyOptions[] = {
    {"--add", "DISKS", "The disks to add, between commas"},
    {"--name", "NAME", "Its name, of at most 15 bytes"},
};
constexpr OptionRow kMigrateOptions[] = {
    {"--raid", "LEVEL", "The new RAID level", kLevelNames},
    {"--to", "DISKS", "The disks it is to have, between commas; those it has when not given"},
    kWaitOption,
};

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
    {.noun = "dg",
     .verb = "create",
     .summary = "Create a disk group",
     .target = Target::kDisk,
     .arity = Arity::kMany,
     .target_name = "DISK",
     .options = kCreateOptions,
     .functions = "HX_DG_GetSizeOnly HX_DG_Create",
     .examples = {"vexorctl dg create a0/pd11 a0/pd12 a0/pd13 --raid 5 --name group1 --dry-run",
                  "vexorctl dg create a0/pd11 a0/pd12 --raid 1 --dry-run"},
     .run = CreateDiskGroup,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "dg",
     .verb = "delete",
     .summary = "Delete a disk group",
     .target = Target::kDiskGroup,
     .arity = Arity::kOne,
     .target_name = "DG",
     .functions = "HX_DG_Delete",
     .examples = {"vexorctl dg delete a0/dg0 --dry-run",
                  "vexorctl dg delete name:GROUP_A --dry-run -o json"},
     .run = DeleteDiskGroup,
     .columns = ChangeColumns,
     .note = "It asks for the name of the disk group.",
     .changes = true},
    {.noun = "dg",
     .verb = "set",
     .summary = "Change settings of a disk group; those not named stay",
     .target = Target::kDiskGroup,
     .arity = Arity::kOne,
     .target_name = "DG",
     .options = kSetOptions,
     .functions = "HX_DG_GetConfig HX_DG_SetConfig",
     .examples = {"vexorctl dg set a0/dg0 --name FAST --dry-run",
                  "vexorctl dg set a0/dg0 --write-cache on --dry-run"},
     .run = SetDiskGroup,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "dg",
     .verb = "modify",
     .summary = "Add disks to a disk group",
     .target = Target::kDiskGroup,
     .arity = Arity::kOne,
     .target_name = "DG",
     .options = kModifyOptions,
     .functions = "HX_DG_Modify",
     .examples = {"vexorctl dg modify a0/dg0 --add a0/pd11 --dry-run",
                  "vexorctl dg modify a0/dg0 --name FAST --dry-run"},
     .run = ModifyDiskGroup,
     .columns = ChangeColumns,
     .note = "It asks for the name of the disk group.",
     .changes = true},
    {.noun = "dg",
     .verb = "migrate",
     .summary = "Move a disk group to another level or other disks",
     .target = Target::kDiskGroup,
     .arity = Arity::kOne,
     .target_name = "DG",
     .options = kMigrateOptions,
     .functions = "HX_DG_StartMigration",
     .examples = {"vexorctl dg migrate a0/dg0 --raid 6 --dry-run",
                  "vexorctl dg migrate a0/dg0 --raid 5 --to a0/pd0,a0/pd1,a0/pd2,a0/pd3 --dry-run"},
     .run = MigrateDiskGroup,
     .columns = ChangeColumns,
     .note =
         "It returns at once; --wait waits for the end. It asks for the name of the disk group.",
     .changes = true},
};

}  // namespace

std::span<const CommandRow> DiskGroupCommands() { return kCommands; }

}  // namespace vexorctl

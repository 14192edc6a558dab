// vexorctl dg ...
#include <algorithm>
#include <utility>

#include "codes/code_table.h"
#include "codes/level.h"
#include "common/address.h"
#include "common/size.h"
#include "conditions/hxc_answers.h"
#include "hxraid.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_record.h"
#include "model/object_name.h"
#include "model/virtual_disks.h"
#include "nouns/choose_disks.h"
#include "nouns/creation_options.h"
#include "nouns/find_object.h"
#include "nouns/foresee.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::dg_noun {

namespace {

namespace hxc = hxconditions;
using fields::DG_Config;
using fields::DG_Info;
using hxcodes::CodeTable;

constexpr std::uint64_t kNoVirtualDisk = 65535;

Cell AddressesCell(const DiskGroup& group, ObjectKind kind,
                   std::optional<std::vector<std::uint64_t>> ids) {
    if (!ids) return Unknown();
    std::erase(*ids, kNoVirtualDisk);
    return TextsCell(AddressTexts(group.address.adapter, kind, *ids));
}

using enum Kind;
using enum Place;

constexpr Column<DiskGroup> kColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "Its address"},
     [](const DiskGroup& it) { return TextCell(it.address.Text()); }},
    {{"name", "NAME", kText, kTable, "Its name"},
     [](const DiskGroup& it) { return FieldCell(it.info, DG_Info::Name); }},
    {{"state", "STATE", kCode, kTable, "Its state", &CodeTable::states},
     [](const DiskGroup& it) { return FieldCell(it.info, DG_Info::Status); }},
    {{"level", "LEVEL", kCode, kTable, "Its RAID level", &CodeTable::levels},
     [](const DiskGroup& it) { return FieldCell(it.info, DG_Info::RaidMode); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "What virtual disks can take of it in all"},
     [](const DiskGroup& it) { return SectorsAt(it.info, DG_Info::TotalManagedSpace); }},
    {{"free_bytes", "FREE", kBytes, kTable, "What new virtual disks can take"},
     [](const DiskGroup& it) { return SectorsAt(it.info, DG_Info::RemainingManagedSpace); }},
    {{"disks", "DISKS", kAddresses, kTable, "Its disks"},
     [](const DiskGroup& it) {
         return AddressesCell(it, ObjectKind::kDisk, DisksOf(it.info.view()));
     }},
    {{"spares", "SPARES", kAddresses, kTable, "Its spares"},
     [](const DiskGroup& it) {
         return AddressesCell(it, ObjectKind::kDisk, SparesOf(it.info.view()));
     }},
    {{"vds", "VDS", kAddresses, kWide, "The virtual disks on it"},
     [](const DiskGroup& it) {
         return AddressesCell(it, ObjectKind::kVirtualDisk, it.info[DG_Info::VDIDs]);
     }},
    {{"activity", "ACTIVITY", kCode, kWide, "What is going on in the background",
      &CodeTable::activities},
     [](const DiskGroup& it) { return FieldCell(it.info, DG_Info::BgaType); }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How that stands",
      &CodeTable::activity_states},
     [](const DiskGroup& it) { return FieldCell(it.info, DG_Info::BgaState); }},
    {{"progress_ratio", "PROGRESS", kRatio, kWide, "How far it is, as its disks tell"},
     [](const DiskGroup& it) {
         const auto kind = it.info[DG_Info::BgaType];
         if (!kind) return Unknown();
         return *kind == 0 ? None() : PercentCell(it.percent);
     }},
    {{"smallest_disk_free_bytes", "SMALLEST", kBytes, kWide,
      "The room on the smallest of its disks"},
     [](const DiskGroup& it) { return SectorsAt(it.info, DG_Info::SmallestAvailablePDSize); }},
    {{"stripe_bytes", "STRIPE", kBytes, kWide, "Its stripe size"},
     [](const DiskGroup& it) { return ScaledAt(it.info, DG_Info::StripeBlockSize, 1024); }},
    {{"leg_count", "LEGS", kNumber, kWide, "The number of its legs; 0 for a level without"},
     [](const DiskGroup& it) { return FieldCell(it.info, DG_Info::SubVDCount); }},
    {{"parity_disks", "PARITY", kNumber, kWide, "The number of its parity disks"},
     [](const DiskGroup& it) { return FieldCell(it.info, DG_Info::NumParityDisk); }},
    {{"sector_bytes", "SECTOR", kNumber, kWide, "The size of its sectors"},
     [](const DiskGroup& it) { return FieldCell(it.info, DG_Info::BlockSize); }},
    {{"write_cache", "WRITE CACHE", kBool, kWide, "Setting: the write cache of its disks is on"},
     [](const DiskGroup& it) { return FieldCell(it.config, DG_Config::WriteCacheOn); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListDiskGroups(Invocation& invocation) {
    SelectAdapters(invocation);
    return Show(invocation,
                Tabulated(invocation, kColumns, LoadDiskGroups(invocation.controller())));
}

// ---- Changes ----------------------------------------------------------------------------------

DiskGroup FindDiskGroup(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kDiskGroup);
    return TakeObject(LoadDiskGroups(invocation.controller()), address);
}

std::string Described(const DiskGroup& group) {
    return group.address.Text() + " (" + Shown(group.info[DG_Info::Name]) + ", " +
           SectorsText(group.info[DG_Info::TotalManagedSpace]) + ")";
}

std::string ConfirmName(const DiskGroup& group) {
    const std::string name = group.info[DG_Info::Name].value_or("");
    return name.empty() ? group.address.Text() : name;
}

// A change of the disk group by one command. Callers add losses and a question where they need
// them.
Change ChangeOf(const DiskGroup& group, const std::string& what, Command command) {
    return {.what = what + " disk group " + Described(group),
            .commands = {std::move(command)},
            .address = group.address.Text()};
}

// All virtual disks on the group get that level and these disks.
Alteration LayOutOn(const DiskGroup& group, std::uint64_t level, std::uint64_t legs,
                    std::span<const Disk> disks) {
    return [id = group.address.id, level, legs, ids = IdsOf(disks)](hxc::Adapter& adapter) {
        for (hxc::VirtualDisk& each : adapter.virtual_disks) {
            if (each.group != id) continue;
            LayOut(each, static_cast<unsigned>(level), static_cast<unsigned>(legs), ids);
        }
    };
}

// The parameters that the request for a new disk group shares with the question for its size.
template <class Function>
void AddCreation(Request<Function>& request, const Invocation& invocation,
                 const hxcodes::LevelRow& level, std::span<const Disk> disks,
                 const std::string& name) {
    request.Add({Function::Name, name});
    request.Add({Function::RaidMode, hxcodes::NumberOf(level.code)});
    request.Add({Function::SubVDCount, invocation.Number("--legs", 255).value_or(0)});
    request.Add({Function::NumParityDisk, hxcodes::ParityDisks(level, 0)});
    request.Add({Function::StripeBlockSize, StripeOption(invocation).value_or(64)});
    request.Add({Function::Size, 0});
    request.Add({Function::BlockSize, kSectorBytes});
    request.Add({Function::InitializationOption, 0});
    request.Add({Function::PDCount, disks.size()});
    request.Add({Function::PDIDs, Ids(disks)});
}

Exit CreateDiskGroup(Invocation& invocation) {
    using Look = calls::HX_DG_GetSizeOnly;
    using Function = calls::HX_DG_Create;
    const hxcodes::LevelRow& level = LevelOption(invocation);
    const std::vector<Disk> disks = NamedDisks(invocation, invocation.targets());
    // The disks may have been unplugged since they were looked up.
    if (disks.empty()) throw UsageError("no disks: a disk group needs one at least");
    const unsigned adapter = disks.front().address.adapter;
    const std::string name = NameOption(invocation, NameMarkup::kBare).value_or("NEW_DG");
    Request<Look> look{{Look::AdapterID, adapter}, {Look::DGID, HX_NEW_ID}};
    AddCreation(look, invocation, level, disks, name);
    const auto answer = invocation.controller().Ask(look);
    const auto size =
        answer[Look::Result::CreateOrModify_DG_Param][fields::CreateOrModify_DG_Param::Size];
    if (answer.exit != Exit::kDone || !size) {
        throw Refused(invocation, adapter, SubjectOf(invocation, level, disks), look, answer);
    }
    Request<Function> request{{Function::AdapterID, adapter}};
    AddCreation(request, invocation, level, disks, name);
    Change change{
        .what = "Create a RAID " + std::string(level.number) + " disk group called " + name + " on",
        .commands = {std::move(request)},
        .size_bytes = kSectorBytes * *size,
        .created = &AddressesOf<&LoadDiskGroups>};
    AddDisks(change, disks, name);
    const auto legs = static_cast<unsigned>(invocation.Number("--legs", 255).value_or(0));
    change.alters = [&, legs](hxc::Adapter& altered) {
        AddVirtualDisk(altered, "a virtual disk on it", hxcodes::NumberOf(level.code), legs,
                       IdsOf(disks));
    };
    return CarryOut(invocation, change);
}

Exit DeleteDiskGroup(Invocation& invocation) {
    using fields::LD_Info;
    const DiskGroup group = FindDiskGroup(invocation);
    Change change =
        ChangeOf(group, "Delete", RequestFor(group.address, calls::HX_DG_Delete::DG_ID));
    change.confirm = ConfirmName(group);
    for (const VirtualDisk& disk : LoadVirtualDisks(invocation.controller())) {
        const auto owner = disk.info[LD_Info::DGID];
        if (disk.address.adapter != group.address.adapter ||
            owner.value_or(group.address.id) != group.address.id) {
            continue;
        }
        change.losses.push_back(
            "virtual disk " + disk.address.Text() + " (" + Shown(disk.info[LD_Info::Name]) + ", " +
            SectorsText(disk.info[LD_Info::Size]) + ") " + (owner ? "lies" : "may lie") +
            " on it and will be lost with all its data");
    }
    const auto disks = DisksOf(group.info.view());
    change.losses.push_back(
        "its disks: " +
        (disks ? Joined(AddressTexts(group.address.adapter, ObjectKind::kDisk, *disks), ", ")
               : std::string("not known")));
    const auto spares = SparesOf(group.info.view());
    if (!spares) change.losses.emplace_back("its spares: not known");
    if (spares && !spares->empty()) {
        change.losses.push_back(
            "spares of nothing afterwards: " +
            Joined(AddressTexts(group.address.adapter, ObjectKind::kDisk, *spares), ", "));
    }
    return CarryOut(invocation, change);
}

std::string NameOrKept(const Invocation& invocation, const DiskGroup& group) {
    const auto name = NameOption(invocation, NameMarkup::kBare);
    return name ? *name : Kept(group.info, DG_Info::Name, group.address);
}

// The library sets name and write cache together, so the one that was not named is sent back as it
// is.
Exit SetDiskGroup(Invocation& invocation) {
    using Function = calls::HX_DG_SetConfig;
    const DiskGroup group = FindDiskGroup(invocation);
    if (!invocation.Has("--name") && !invocation.Has("--write-cache")) {
        throw UsageError("no setting was named");
    }
    const auto write_cache = SwitchOption(invocation, "--write-cache");
    auto request = RequestFor(group.address, Function::DG_ID);
    request.Add({Function::DGID, group.address.id});
    request.Add(
        {Function::WriteCacheOn,
         write_cache ? *write_cache : Kept(group.config, DG_Config::WriteCacheOn, group.address)});
    request.Add({Function::Name, NameOrKept(invocation, group)});
    Change change = ChangeOf(group, "Set", std::move(request));
    if (const std::string* const name = invocation.Get("--name")) {
        change.losses.push_back("name: " + Shown(group.info[DG_Info::Name]) + " -> " + *name);
    }
    if (const std::string* const cache = invocation.Get("--write-cache")) {
        const auto now = group.config[DG_Config::WriteCacheOn];
        change.losses.push_back(std::string("write cache: ") +
                                (!now        ? "?"
                                 : *now != 0 ? "on"
                                             : "off") +
                                " -> " + *cache);
    }
    return CarryOut(invocation, change);
}

// What virtual disks can take of the group afterwards, as the controller computes it; or that it
// refuses.
void TellSpace(Invocation& invocation, const DiskGroup& group, std::uint64_t level,
               std::uint64_t legs, std::uint64_t parity, std::span<const Disk> disks,
               Change& change) {
    using Look = calls::HX_DG_GetSizeOnly;
    Controller& controller = invocation.controller();
    const auto answer = controller.Ask(
        Request<Look>{{Look::AdapterID, group.address.adapter},
                      {Look::DGID, group.address.id},
                      {Look::Name, group.info[DG_Info::Name].value_or("")},
                      {Look::RaidMode, level},
                      {Look::SubVDCount, legs},
                      {Look::NumParityDisk, parity},
                      {Look::StripeBlockSize, group.info[DG_Info::StripeBlockSize].value_or(0)},
                      {Look::Size, 0},
                      {Look::BlockSize, group.info[DG_Info::BlockSize].value_or(kSectorBytes)},
                      {Look::InitializationOption, 0},
                      {Look::PDCount, disks.size()},
                      {Look::PDIDs, Ids(disks)}});
    TellAnsweredSize(
        answer,
        answer[Look::Result::CreateOrModify_DG_Param][fields::CreateOrModify_DG_Param::Size],
        change);
}

// Adds the disks to those that the group has.
Exit ModifyDiskGroup(Invocation& invocation) {
    using Function = calls::HX_DG_Modify;
    const DiskGroup group = FindDiskGroup(invocation);
    const std::vector<std::string> typed = SplitList(invocation.Get("--add", ""));
    std::vector<std::string> members = KnownDisks(group.address, DisksOf(group.info.view()));
    members.insert(members.end(), typed.begin(), typed.end());
    const std::vector<Disk> disks = NamedDisks(invocation, members);
    if (typed.empty() && !invocation.Has("--name")) throw UsageError("no change was named");
    const auto kept = [&](auto field) { return Kept(group.info, field, group.address); };
    Change change =
        ChangeOf(group, "Modify",
                 Request<Function>{{Function::AdapterID, group.address.adapter},
                                   {Function::DGID, group.address.id},
                                   {Function::Name, NameOrKept(invocation, group)},
                                   {Function::RaidMode, kept(DG_Info::RaidMode)},
                                   {Function::SubVDCount, kept(DG_Info::SubVDCount)},
                                   {Function::NumParityDisk, kept(DG_Info::NumParityDisk)},
                                   {Function::StripeBlockSize, kept(DG_Info::StripeBlockSize)},
                                   {Function::Size, 0},
                                   {Function::BlockSize, kept(DG_Info::BlockSize)},
                                   {Function::PDCount, disks.size()},
                                   {Function::PDIDs, Ids(disks)}});
    change.what += " on";
    change.confirm = ConfirmName(group);
    change.starts_task = true;
    AddDisks(change, disks, ConfirmName(group));
    if (!typed.empty()) {
        const std::uint64_t level = kept(DG_Info::RaidMode);
        const std::uint64_t legs = kept(DG_Info::SubVDCount);
        change.alters = LayOutOn(group, level, legs, disks);
        TellSpace(invocation, group, level, legs, kept(DG_Info::NumParityDisk), disks, change);
    }
    return CarryOut(invocation, change);
}

Exit MigrateDiskGroup(Invocation& invocation) {
    using Function = calls::HX_DG_StartMigration;
    const DiskGroup group = FindDiskGroup(invocation);
    const hxcodes::LevelRow& level = LevelOption(invocation);
    std::vector<std::string> typed = SplitList(invocation.Get("--to", ""));
    if (typed.empty()) typed = KnownDisks(group.address, DisksOf(group.info.view()));
    const std::vector<Disk> disks = NamedDisks(invocation, typed);
    auto request = RequestFor(group.address, Function::DGID);
    request.Add({Function::RaidMode, hxcodes::NumberOf(level.code)});
    request.Add({Function::NumParityDisk, hxcodes::ParityDisks(level, 0)});
    request.Add({Function::PDCount, disks.size()});
    request.Add({Function::PDIDs, Ids(disks)});
    Change change = ChangeOf(group, "Migrate", std::move(request));
    change.what += " to RAID " + std::string(level.number) + " on";
    change.confirm = ConfirmName(group);
    change.starts_task = true;
    AddDisks(change, disks, ConfirmName(group));
    const std::uint64_t code = hxcodes::NumberOf(level.code);
    const std::uint64_t legs =
        group.info[DG_Info::RaidMode] == code ? group.info[DG_Info::SubVDCount].value_or(0) : 0;
    change.alters = LayOutOn(group, code, legs, disks);
    TellSpace(invocation, group, code, legs, hxcodes::ParityDisks(level, 0), disks, change);
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
     .functions = kNamesOf<calls::HX_DG_GetInfo, calls::HX_DG_GetConfig>,
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
     .functions = kNamesOf<calls::HX_DG_GetInfo, calls::HX_DG_GetConfig>,
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
     .functions = kNamesOf<calls::HX_DG_GetSizeOnly, calls::HX_DG_Create>,
     .examples = {"vexorctl dg create a0/pd11 a0/pd12 a0/pd13 --raid 5 --name group1 --dry-run",
                  "vexorctl dg create a0/pd11 a0/pd12 --raid 1 --dry-run"},
     .run = CreateDiskGroup,
     .columns = ChangeColumns,
     .note =
         "RAID 0 takes 1 disk or more, RAID 1 exactly 2, RAID 1E an odd number from 3, RAID 5 and "
         "6 take 3 or more, RAID 10 an even number from 4, RAID 50 and 60 legs of 3 or more each, "
         "all of the same number.",
     .changes = true},
    {.noun = "dg",
     .verb = "delete",
     .summary = "Delete a disk group",
     .target = Target::kDiskGroup,
     .arity = Arity::kOne,
     .target_name = "DG",
     .functions = kNamesOf<calls::HX_DG_Delete>,
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
     .functions = kNamesOf<calls::HX_DG_GetConfig, calls::HX_DG_SetConfig>,
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
     .functions = kNamesOf<calls::HX_DG_Modify>,
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
     .functions = kNamesOf<calls::HX_DG_StartMigration>,
     .examples = {"vexorctl dg migrate a0/dg0 --raid 6 --to "
                  "a0/pd0,a0/pd1,a0/pd2,a0/pd3,a0/pd11 --dry-run",
                  "vexorctl dg migrate a0/dg0 --raid 5 --to a0/pd0,a0/pd1,a0/pd2,a0/pd3 --dry-run"},
     .run = MigrateDiskGroup,
     .columns = ChangeColumns,
     .note =
         "It returns at once; --wait waits for the end. It asks for the name of the disk group.",
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::dg_noun

// vexorctl vd ...
#include <algorithm>
#include <span>
#include <utility>

#include "codes/activity.h"
#include "codes/level.h"
#include "codes/state.h"
#include "codes/virtual_disk.h"
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
     [](const VirtualDisk& it) { return CodeAt(it.info, "Status", hxcodes::kStateNames); }},
    {{"level", "LEVEL", kCode, kTable, "Its RAID level"},
     [](const VirtualDisk& it) { return CodeAt(it.info, "RaidMode", hxcodes::kLevelNames); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"},
     [](const VirtualDisk& it) { return SectorsAt(it.info, "Size"); }},
    {{"disks", "DISKS", kTexts, kTable, "The disks that it lies on"},
     [](const VirtualDisk& it) { return DisksCell(it); }},
    {{"dg", "DG", kText, kTable, "The disk group that it lies on"},
     [](const VirtualDisk& it) { return GroupCell(it); }},
    {{"cache", "CACHE", kBits, kWide, "Its cache"},
     [](const VirtualDisk& it) { return BitsAt(it.info, "CacheMode", hxcodes::kCacheBits); }},
    {{"activity", "ACTIVITY", kCode, kTable, "What is going on in the background"},
     [](const VirtualDisk& it) { return CodeAt(it.status, "Bga", hxcodes::kActivityNames); }},
    {{"progress_ratio", "PROGRESS", kRatio, kTable, "How far that is"},
     [](const VirtualDisk& it) { return ProgressCell(it); }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How it stands"},
     [](const VirtualDisk& it) {
         return CodeAt(it.status, "BgaState", hxcodes::kActivityStateNames);
     }},
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

// ---- Changes ----------------------------------------------------------------------------------

VirtualDisk FindVirtualDisk(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kVirtualDisk);
    for (VirtualDisk& disk : LoadVirtualDisks(invocation.controller())) {
        if (disk.address == address) return std::move(disk);
    }
    throw Failure(Exit::kNoObject, address.Text() + ": there is no such virtual disk any more");
}

std::string Described(const VirtualDisk& disk) {
    std::string text =
        disk.address.Text() + " (" + disk.info.Text("Name") + ", " +
        std::string(hxcodes::NameOf(hxcodes::kLevelNames,
                                    static_cast<HX_U32>(disk.info.Number("RaidMode")))) +
        ", " + SizeText(512 * disk.info.Number("Size"), {}) + ")";
    return text;
}

// What has to be typed before it is destroyed: its name, or its address when it has none.
std::string ConfirmName(const VirtualDisk& disk) {
    const std::string name = disk.info.Text("Name");
    return name.empty() ? disk.address.Text() : name;
}

std::string Joined(const std::vector<std::string>& addresses) {
    std::string text;
    for (const std::string& address : addresses) {
        text.append(text.empty() ? "" : ", ").append(address);
    }
    return text;
}

std::string JoinedAddresses(std::span<const Disk> disks) {
    std::vector<std::string> addresses;
    for (const Disk& disk : disks) addresses.push_back(disk.address.Text());
    return Joined(addresses);
}

Exit DeleteVirtualDisk(Invocation& invocation) {
    const VirtualDisk disk = FindVirtualDisk(invocation);
    Fields fields = AddressFields(disk.address, "LD_ID");
    fields.emplace_back("deleteMBR", invocation.Has("--keep-boot-record") ? "0" : "1");
    return CarryOut(invocation, {.what = "Delete virtual disk " + Described(disk),
                                 .losses = {"all data on it will be lost",
                                            "its disks: " + Joined(DisksCell(disk).texts)},
                                 .confirm = ConfirmName(disk),
                                 .commands = {{"HX_LD_Delete", std::move(fields)}},
                                 .address = disk.address.Text(),
                                 .size_bytes = {}});
}

Exit ImportVirtualDisk(Invocation& invocation) {
    const VirtualDisk disk = FindVirtualDisk(invocation);
    return CarryOut(invocation,
                    {.what = "Import virtual disk " + Described(disk),
                     .losses = {},
                     .confirm = {},
                     .commands = {{"HX_LD_Import", AddressFields(disk.address, "LD_ID")}},
                     .address = disk.address.Text(),
                     .size_bytes = {}});
}

// Several names of bits between commas.
std::string CacheOption(const std::string& text) {
    std::uint64_t bits = 0;
    std::string_view rest = text;
    while (!rest.empty() && rest != "none") {
        const std::size_t comma = rest.find(',');
        const hxcodes::Named* const row =
            hxcodes::FindName(hxcodes::kCacheBits, rest.substr(0, comma));
        if (row == nullptr || row->code == hxcodes::CacheBit::kForcedWriteThrough) {
            throw UsageError("--cache cannot be \"" + text +
                             "\"; say write_back, read_ahead, both with a comma, or none");
        }
        bits |= row->code;
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    return std::to_string(bits);
}

// What the controller itself forces is nothing that can be asked for.
std::string CacheThatStays(const VirtualDisk& disk) {
    return std::to_string(disk.config.Number("CacheMode") &
                          ~std::uint64_t{hxcodes::CacheBit::kForcedWriteThrough});
}

// The library sets all of them at once: those that are not named stay as they are.
Exit SetVirtualDisk(Invocation& invocation) {
    const VirtualDisk disk = FindVirtualDisk(invocation);
    if (!invocation.Has("--name") && !invocation.Has("--cache") &&
        !invocation.Has("--auto-rebuild")) {
        throw UsageError("no setting was named");
    }
    Fields fields = AddressFields(disk.address, "LD_ID");
    const std::string* const cache = invocation.Get("--cache");
    fields.emplace_back("CacheMode", cache != nullptr ? CacheOption(*cache) : CacheThatStays(disk));
    fields.emplace_back("AutoRebuildOn", SwitchOption(invocation, "--auto-rebuild",
                                                      disk.config.Number("AutoRebuildOn")));
    fields.emplace_back("Status", disk.config.Text("Status"));
    fields.emplace_back("LDID", std::to_string(disk.address.id));
    fields.emplace_back("Name",
                        NameOption(invocation, NameMarkup::kCData, disk.config.Text("Name")));
    return CarryOut(invocation, {.what = "Set virtual disk " + Described(disk),
                                 .losses = {},
                                 .confirm = {},
                                 .commands = {{"HX_LD_SetConfig", std::move(fields)}},
                                 .address = disk.address.Text(),
                                 .size_bytes = {}});
}

// ---- create -----------------------------------------------------------------------------------

std::function<std::string()> NewestFinder(Invocation& invocation) {
    std::vector<Address> before;
    for (const VirtualDisk& disk : LoadVirtualDisks(invocation.controller())) {
        before.push_back(disk.address);
    }
    return [&invocation, before] {
        for (const VirtualDisk& disk : LoadVirtualDisks(invocation.controller())) {
            if (std::ranges::find(before, disk.address) == before.end()) return disk.address.Text();
        }
        return std::string();
    };
}

// The first slot of the group that no virtual disk has.
std::uint64_t SlotOption(const Invocation& invocation, const DiskGroup& group) {
    if (const auto slot = invocation.Number("--slot", 255)) return *slot;
    const std::vector<std::uint64_t> slots = group.info.Numbers("VDIDs");
    const auto empty = std::ranges::find(slots, std::uint64_t{HX_NEW_ID});
    return empty == slots.end() ? 0 : static_cast<std::uint64_t>(empty - slots.begin());
}

Exit CreateOnGroup(Invocation& invocation, const std::string& typed) {
    const Address address = FindObject(invocation, ObjectKind::kDiskGroup, typed);
    DiskGroup owner;
    std::string others;
    for (DiskGroup& group : LoadDiskGroups(invocation.controller())) {
        if (group.address == address) {
            owner = std::move(group);
        } else {
            others += "; free on " + group.address.Text() + ": " +
                      SizeText(512 * group.info.Number("RemainingManagedSpace"), {});
        }
    }
    const std::uint64_t most = owner.info.Number("RemainingManagedSpace");
    const std::uint64_t sectors = SizeOption(invocation).Of(most, others);
    const std::string name = NameOption(invocation, NameMarkup::kCData, "NEW_VD");
    Fields fields{
        {"AdapterID", std::to_string(address.adapter)},
        {"DGID", std::to_string(address.id)},
        {"Name", name},
        {"StripeBlockSize", StripeOption(invocation, "0")},
        {"Size", std::to_string(sectors)},
        {"RoundingScheme", "0"},
        {"CachePolicy", CacheOption(invocation.Get("--cache", "read_ahead"))},
        {"DGSlotNum", std::to_string(SlotOption(invocation, owner))},
        {"InitializationOption",
         invocation.Has("--init") ? CodeOption(invocation, "--init", hxcodes::kInitNames) : "0"},
        {"SectorCoefficient", "1"}};
    return CarryOut(invocation,
                    {.what = "Create a virtual disk called " + name + " on " + address.Text(),
                     .losses = {},
                     .confirm = {},
                     .commands = {{"HX_LD_Create_OnDG", std::move(fields)}},
                     .address = {},
                     .size_bytes = 512 * sectors,
                     .starts_task = true,
                     .find = NewestFinder(invocation)});
}

Exit CreateVirtualDisk(Invocation& invocation) {
    if (const std::string* const group = invocation.Get("--dg")) {
        return CreateOnGroup(invocation, *group);
    }
    const LevelRow& level = LevelOption(invocation);
    const auto count = invocation.Number("--disks", 128);
    if (invocation.targets().empty() && !count) {
        throw UsageError("no disks: name them, or say --disks and how many");
    }
    if (!invocation.targets().empty() && count) {
        throw UsageError("either name the disks or say how many with --disks");
    }
    const SizeWish size = SizeOption(invocation);
    const std::string name = NameOption(invocation, NameMarkup::kCData, "NEW_VD");
    Controller& controller = invocation.controller();
    const Fields settings{
        {"RoundingScheme", invocation.Has("--round")
                               ? CodeOption(invocation, "--round", hxcodes::kRoundingNames)
                               : "0"},
        {"SubLDCount", std::to_string(invocation.Number("--legs", 255).value_or(0))},
        {"NumParityDisk", std::to_string(level.parity)},
        {"StripeBlockSize", StripeOption(invocation, "64")},
        {"CachePolicy", CacheOption(invocation.Get("--cache", "read_ahead"))},
        {"InitializationOption",
         invocation.Has("--init") ? CodeOption(invocation, "--init", hxcodes::kInitNames) : "0"}};
    const auto fields_for = [&](std::span<const Disk> disks) {
        Fields fields{{"AdapterID", std::to_string(disks.front().address.adapter)},
                      {"RaidMode", std::string(level.code)},
                      {"HDCount", std::to_string(disks.size())}};
        fields.insert(fields.end(), settings.begin(), settings.end());
        fields.emplace_back("HDIDs", Ids(disks));
        fields.emplace_back("Name", name);
        return fields;
    };
    const auto room = [&](std::span<const Disk> disks) -> std::optional<std::uint64_t> {
        const Answer most = controller.Ask({"HX_LD_GetMaxSize", fields_for(disks)});
        if (most.exit != Exit::kDone) return std::nullopt;
        return most.result.Number("CreateLDParam/Size");
    };
    const std::vector<Disk> disks =
        count ? PickDisks(invocation, static_cast<std::size_t>(*count), size, room)
              : NamedDisks(invocation, invocation.targets());
    // --disks 0, or disks that were unplugged between two looks.
    if (disks.empty()) throw UsageError("no disks: a virtual disk needs one at least");
    const unsigned adapter = disks.front().address.adapter;
    Fields fields = fields_for(disks);
    const Command asking{"HX_LD_GetMaxSize", fields};
    const Answer most = controller.Ask(asking);
    if (most.exit != Exit::kDone) {
        throw Failure(most.exit,
                      "RAID " + std::string(level.name) + " over " + JoinedAddresses(disks) + ": " +
                          most.complaint + Alternatives(invocation, adapter),
                      FaultOf(asking, most));
    }
    const std::uint64_t most_sectors = most.result.Number("CreateLDParam/Size");
    const bool too_large = size.sectors.value_or(0) > most_sectors;
    const std::uint64_t sectors =
        size.Of(most_sectors, too_large ? Alternatives(invocation, adapter) : std::string());
    fields.emplace_back("SectorCoefficient", "1");
    fields.emplace_back("Size", std::to_string(sectors));
    Change change{
        .what = "Create a RAID " + std::string(level.name) + " virtual disk called " + name + " on",
        .losses = {},
        .confirm = {},
        .commands = {{"HX_LD_Create", std::move(fields)}},
        .address = {},
        .size_bytes = 512 * sectors,
        .starts_task = true,
        .find = NewestFinder(invocation)};
    AddDisks(change, disks, name);
    return CarryOut(invocation, change);
}

Exit QuickCreate(Invocation& invocation) {
    const unsigned adapter = FindAdapter(invocation);
    const bool redundant = !invocation.Has("--plain");
    return CarryOut(
        invocation,
        {.what = "Create one virtual disk over all free disks of a" + std::to_string(adapter) +
                 (redundant ? ", with redundancy" : ", without redundancy"),
         .losses = {"all free disks of the adapter are taken"},
         .confirm = "a" + std::to_string(adapter),
         .commands = {{"HX_LD_QuickCreate",
                       {{"AdapterID", std::to_string(adapter)}, {"Type", redundant ? "1" : "0"}}}},
         .address = {},
         .size_bytes = {},
         .starts_task = true,
         .find = NewestFinder(invocation)});
}

Exit MigrateVirtualDisk(Invocation& invocation) {
    const VirtualDisk disk = FindVirtualDisk(invocation);
    const LevelRow& level = LevelOption(invocation);
    std::vector<std::string> typed = SplitList(invocation.Get("--to", ""));
    if (typed.empty()) typed = DisksCell(disk).texts;
    const std::vector<Disk> disks = NamedDisks(invocation, typed);
    Fields fields = AddressFields(disk.address, "LDID");
    fields.emplace_back("RaidMode", level.code);
    fields.emplace_back("HDCount", std::to_string(disks.size()));
    fields.emplace_back("HDIDs", Ids(disks));
    const Command asking{"HX_LD_GetMigratedLdSize", fields};
    const Answer size = invocation.controller().Ask(asking);
    if (size.exit != Exit::kDone) {
        throw Failure(size.exit,
                      disk.address.Text() + ": " + size.complaint +
                          Alternatives(invocation, disk.address.adapter),
                      FaultOf(asking, size));
    }
    Change change{.what = "Migrate virtual disk " + Described(disk) + " to RAID " +
                          std::string(level.name) + " on",
                  .losses = {},
                  .confirm = ConfirmName(disk),
                  .commands = {{"HX_LD_StartMigration", std::move(fields)}},
                  .address = disk.address.Text(),
                  .size_bytes = 512 * size.result.Number("CreateLDParam/Size"),
                  .starts_task = true};
    AddDisks(change, disks, ConfirmName(disk));
    return CarryOut(invocation, change);
}

// Of a virtual disk on a disk group: what is not named stays.
Exit ModifyVirtualDisk(Invocation& invocation) {
    const VirtualDisk disk = FindVirtualDisk(invocation);
    if (!invocation.Has("--size") && !invocation.Has("--name") && !invocation.Has("--cache")) {
        throw UsageError("no change was named");
    }
    if (invocation.Has("--plain") && invocation.Has("--cache")) {
        throw UsageError("--plain knows no --cache");
    }
    if (disk.info.Number("DGID") == kNoGroup) {
        throw Failure(Exit::kRefused, disk.address.Text() +
                                          ": it lies on no disk group; see "
                                          "vexorctl vd migrate and vd set");
    }
    std::uint64_t room = disk.info.Number("Size");
    for (const DiskGroup& group : LoadDiskGroups(invocation.controller())) {
        if (group.address.adapter == disk.address.adapter &&
            group.address.id == disk.info.Number("DGID")) {
            room += group.info.Number("RemainingManagedSpace");
        }
    }
    const std::uint64_t sectors =
        invocation.Has("--size") ? SizeOption(invocation).Of(room) : disk.info.Number("Size");
    Fields fields{{"AdapterID", std::to_string(disk.address.adapter)},
                  {"VDID", std::to_string(disk.address.id)},
                  {"DGID", disk.info.Text("DGID")},
                  {"Name", NameOption(invocation, NameMarkup::kCData, disk.info.Text("Name"))},
                  {"RaidMode", disk.info.Text("RaidMode")},
                  {"SubVDCount", disk.info.Text("SubLDCount")},
                  {"NumParityDisk", disk.info.Text("NumParityDisk")},
                  {"StripeBlockSize", disk.info.Text("StripeBlockSize")},
                  {"Size", std::to_string(sectors)}};
    const bool plain = invocation.Has("--plain");
    std::vector<std::string> changes;
    if (plain) {
        changes.emplace_back("its cache will be off");
    } else {
        const std::string* const cache = invocation.Get("--cache");
        fields.emplace_back("CachePolicy",
                            cache != nullptr ? CacheOption(*cache) : CacheThatStays(disk));
        fields.emplace_back("SectorCoefficient", disk.info.Text("SectorCoefficient"));
    }
    const bool smaller = sectors < disk.info.Number("Size");
    if (smaller) changes.emplace_back("what lies behind its new end will be lost");
    return CarryOut(
        invocation,
        {.what = "Modify virtual disk " + Described(disk),
         .losses = std::move(changes),
         .confirm = smaller ? ConfirmName(disk) : std::string(),
         .commands = {{plain ? "HX_CreateOrModify_VD" : "HX_LD_Modify_OnDG", std::move(fields)}},
         .address = disk.address.Text(),
         .size_bytes = 512 * sectors});
}

constexpr std::string_view kInitNames = "quick foreground background none";
constexpr OptionRow kCreateOptions[] = {
    {"--raid", "LEVEL", "The RAID level", kLevelNames},
    {"--disks", "COUNT", "Pick so many free disks"},
    {"--dg", "DG", "On this disk group, whose level and disks it gets"},
    {"--adapter", "NUMBER", "Pick the disks on this adapter"},
    {"--size", "SIZE", "10GiB, 20GB, 50% of the most, or max; max when not given"},
    {"--name", "NAME", "Its name, of at most 15 bytes"},
    {"--stripe", "SIZE", "Its stripe size, as in 64KiB"},
    {"--cache", "MODES", "write_back, read_ahead, both with a comma, or none"},
    {"--init", "KIND", "How it is initialised", kInitNames},
    {"--legs", "COUNT", "Of RAID 50 and 60: the number of legs"},
    {"--round", "SCHEME", "How the size is rounded down", "stripe 1_gib 10_gib"},
    {"--slot", "NUMBER", "Its slot on the disk group"},
    kWaitOption,
};
constexpr OptionRow kQuickOptions[] = {
    {"--adapter", "NUMBER", "The adapter"},
    {"--plain", "", "Without redundancy"},
    kWaitOption,
};
constexpr OptionRow kDeleteOptions[] = {
    {"--keep-boot-record", "", "Leave the boot record on the disks"},
};
constexpr OptionRow kSetOptions[] = {
    {"--name", "NAME", "Its name, of at most 15 bytes"},
    {"--cache", "MODES", "write_back, read_ahead, both with a comma, or none"},
    {"--auto-rebuild", "ON", "A spare is taken at once", "on off"},
};
constexpr OptionRow kMigrateOptions[] = {
    {"--raid", "LEVEL", "The new RAID level", kLevelNames},
    {"--to", "DISKS", "The disks it is to lie on, between commas; those it has when not given"},
    kWaitOption,
};
constexpr OptionRow kModifyOptions[] = {
    {"--size", "SIZE", "10GiB, 20GB, 50% of the most, or max"},
    {"--name", "NAME", "Its name, of at most 15 bytes"},
    {"--cache", "MODES", "write_back, read_ahead, both with a comma, or none"},
    {"--plain", "", "With the function that knows no cache and switches it off"},
};

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
    {.noun = "vd",
     .verb = "create",
     .summary = "Create a virtual disk",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kCreateOptions,
     .functions = "HX_LD_GetMaxSize HX_LD_Create HX_LD_Create_OnDG",
     .examples =
         {"vexorctl vd create --adapter 1 --raid 5 --disks 4 --size max --name data1 --dry-run",
          "vexorctl vd create --dg a0/dg0 --size 10GiB --name data2 --dry-run"},
     .run = CreateVirtualDisk,
     .columns = ChangeColumns,
     .note = "Name the disks, or say how many to pick: free ones of about the same size, the "
             "smallest that suffice for the --size, or those that give the most. When a disk holds "
             "data it asks for the name of the virtual disk. Where it cannot be made, it tells "
             "which disks are free, on the other adapters too.",
     .changes = true},
    {.noun = "vd",
     .verb = "quick-create",
     .summary = "Create one virtual disk over all free disks",
     .target = Target::kNone,
     .arity = Arity::kNone,
     .target_name = "",
     .options = kQuickOptions,
     .functions = "HX_LD_QuickCreate",
     .examples = {"vexorctl vd quick-create --adapter 1 --dry-run",
                  "vexorctl vd quick-create --adapter 1 --plain --dry-run"},
     .run = QuickCreate,
     .columns = ChangeColumns,
     .note = "The library chooses level and disks. It asks for the address of the adapter.",
     .changes = true},
    {.noun = "vd",
     .verb = "delete",
     .summary = "Delete a virtual disk",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .options = kDeleteOptions,
     .functions = "HX_LD_Delete",
     .examples = {"vexorctl vd delete a0/vd2 --dry-run",
                  "vexorctl vd delete name:ARCHIVE --dry-run -o json"},
     .run = DeleteVirtualDisk,
     .columns = ChangeColumns,
     .note = "It asks for the name of the virtual disk.",
     .changes = true},
    {.noun = "vd",
     .verb = "set",
     .summary = "Change settings of a virtual disk; those not named stay",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .options = kSetOptions,
     .functions = "HX_LD_GetConfig HX_LD_SetConfig",
     .examples = {"vexorctl vd set a0/vd0 --name DB2 --dry-run",
                  "vexorctl vd set a0/vd0 --cache write_back,read_ahead --dry-run"},
     .run = SetVirtualDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "vd",
     .verb = "modify",
     .summary = "Change the size or the name of a virtual disk on a disk group",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .options = kModifyOptions,
     .functions = "HX_LD_Modify_OnDG HX_CreateOrModify_VD",
     .examples = {"vexorctl vd modify a0/vd0 --size max --dry-run",
                  "vexorctl vd modify a0/vd0 --name DB2 --dry-run"},
     .run = ModifyVirtualDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "vd",
     .verb = "migrate",
     .summary = "Move a virtual disk to another level or other disks",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .options = kMigrateOptions,
     .functions = "HX_LD_GetMigratedLdSize HX_LD_StartMigration",
     .examples =
         {"vexorctl vd migrate a1/vd0 --raid 5 --to a1/pd0,a1/pd1,a1/pd3 --dry-run",
          "vexorctl vd migrate a1/vd0 --raid 10 --to a1/pd0,a1/pd1,a1/pd3,a1/pd4 --dry-run"},
     .run = MigrateVirtualDisk,
     .columns = ChangeColumns,
     .note =
         "It returns at once; --wait waits for the end. It asks for the name of the virtual disk.",
     .changes = true},
    {.noun = "vd",
     .verb = "import",
     .summary = "Take over a virtual disk that another controller has made",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .functions = "HX_LD_Import",
     .examples = {"vexorctl vd import a0/vd0 --dry-run",
                  "vexorctl vd import name:ARCHIVE --dry-run"},
     .run = ImportVirtualDisk,
     .columns = ChangeColumns,
     .changes = true},
};

}  // namespace

std::span<const CommandRow> VirtualDiskCommands() { return kCommands; }

}  // namespace vexorctl

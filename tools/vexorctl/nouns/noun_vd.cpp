// vexorctl vd ...
#include <algorithm>
#include <span>
#include <utility>

#include "codes/code_table.h"
#include "codes/level.h"
#include "codes/named.h"
#include "codes/state.h"
#include "common/address.h"
#include "common/size.h"
#include "conditions/hxc_answers.h"
#include "conditions/hxc_redundancy.h"
#include "hxraid.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/group_room.h"
#include "model/health_answers.h"
#include "model/library_record.h"
#include "model/object_name.h"
#include "model/virtual_disks.h"
#include "nouns/choose_disks.h"
#include "nouns/creation_options.h"
#include "nouns/find_object.h"
#include "nouns/foresee.h"
#include "nouns/look_again.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "nouns/quick_creation.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::vd_noun {

namespace {

namespace hxc = hxconditions;
using fields::LD_Config;
using fields::LD_Info;
using fields::LD_Status;
using hxcodes::CodeTable;

Cell DisksCell(const VirtualDisk& disk) {
    if (!disk.disks) return Unknown();
    return TextsCell(AddressTexts(disk.address.adapter, ObjectKind::kDisk, *disk.disks));
}

Cell GroupCell(const VirtualDisk& disk) {
    const auto group = disk.info[LD_Info::DGID];
    if (!group) return Unknown();
    if (*group == kNoDiskGroup) return None();
    return TextCell(Address{.adapter = disk.address.adapter,
                            .kind = ObjectKind::kDiskGroup,
                            .id = static_cast<unsigned>(*group)}
                        .Text());
}

using enum Kind;
using enum Place;

// With what follows from the states of its disks and blocks.
struct ShownDisk : VirtualDisk {
    std::optional<hxc::Protection> protection;
    std::optional<std::uint64_t> survives;
    Cell members;
};

std::vector<std::string_view> StateWords() {
    std::vector<std::string_view> words;
    for (const hxcodes::Named& row : hxcodes::kStateNames) words.push_back(row.name);
    return words;
}

Cell StateCell(std::optional<unsigned> state) {
    return state ? TextCell(std::string(hxcodes::NameOf(hxcodes::kStateNames, *state))) : Unknown();
}

constexpr ColumnInfo kMemberColumns[] = {
    Always({"position", "POSITION", kNumber, kWide, "Its number, from 0"}),
    {"disk", "DISK", kReference, kWide, "The disk; none where it is lost"},
    OneOf(StateWords, {"state", "STATE", kWord, kWide, "The state of the block on it"}),
    {"leg", "LEG", kNumber, kWide, "The leg or mirrored pair, from 0; none without"},
};

std::vector<std::string_view> ProtectionWords() {
    using enum hxc::Protection;
    return {hxc::NameOf(kNone), hxc::NameOf(kFull), hxc::NameOf(kReduced), hxc::NameOf(kExhausted),
            hxc::NameOf(kLost)};
}

Cell MembersCell(const hxc::VirtualDisk& disk, unsigned adapter) {
    const bool is_level_known = hxcodes::FindCode(hxcodes::kLevels, disk.level) != nullptr;
    if (disk.members.empty() || !is_level_known) return Unknown();
    const std::vector<std::optional<unsigned>> legs = hxc::LegsOfMembers(disk);
    std::vector<std::vector<Cell>> items;
    for (std::size_t i = 0; i < disk.members.size(); ++i) {
        const hxc::Member& member = disk.members[i];
        items.push_back(
            {NumberCell(i),
             member.disk ? TextCell(Address{
                               .adapter = adapter, .kind = ObjectKind::kDisk, .id = *member.disk}
                                        .Text())
                         : None(),
             member.disk ? StateCell(member.state) : None(),
             legs[i] ? NumberCell(*legs[i]) : None()});
    }
    return ItemsCell(std::move(items));
}

std::vector<ShownDisk> WithMembers(Controller& controller, std::vector<VirtualDisk> disks) {
    const hxc::Answers answers = AnswersFor(controller, disks);
    std::vector<ShownDisk> shown;
    for (VirtualDisk& each : disks) {
        ShownDisk& disk = shown.emplace_back();
        static_cast<VirtualDisk&>(disk) = std::move(each);
        const hxc::VirtualDisk* const seen = VirtualDiskIn(answers, disk.address);
        if (seen == nullptr) continue;
        const hxc::Adapter& adapter = *AdapterIn(answers, disk.address.adapter);
        disk.protection = hxc::ProtectionOf(adapter, *seen);
        disk.survives = hxc::SurvivesOf(adapter, *seen);
        disk.members = MembersCell(*seen, disk.address.adapter);
    }
    return shown;
}

constexpr Column<ShownDisk> kColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "Its address"},
     [](const ShownDisk& it) { return TextCell(it.address.Text()); }},
    {{"name", "NAME", kText, kTable, "Its name"},
     [](const ShownDisk& it) { return FieldCell(it.info, LD_Info::Name); }},
    {{"state", "STATE", kCode, kTable, "Its state", &CodeTable::states},
     [](const ShownDisk& it) { return FieldCell(it.info, LD_Info::Status); }},
    {{"level", "LEVEL", kCode, kTable, "Its RAID level", &CodeTable::levels},
     [](const ShownDisk& it) { return FieldCell(it.info, LD_Info::RaidMode); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"},
     [](const ShownDisk& it) { return SectorsAt(it.info, LD_Info::Size); }},
    {{"disks", "DISKS", kAddresses, kTable, "The disks that it lies on"},
     [](const ShownDisk& it) { return DisksCell(it); }},
    {{"dg", "DG", kReference, kWide, "The disk group that it lies on"},
     [](const ShownDisk& it) { return GroupCell(it); }},
    {{"cache", "CACHE", kBits, kWide, "Its cache", &CodeTable::cache_bits},
     [](const ShownDisk& it) { return FieldCell(it.info, LD_Info::CacheMode); }},
    {{"activity", "ACTIVITY", kCode, kTable, "What is going on in the background",
      &CodeTable::activities},
     [](const ShownDisk& it) { return FieldCell(it.status, LD_Status::Bga); }},
    {{"progress_ratio", "PROGRESS", kRatio, kTable, "How far that is"},
     [](const ShownDisk& it) {
         return ProgressAt(it.status, LD_Status::Bga, LD_Status::BgaPercentage);
     }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How it stands",
      &CodeTable::activity_states},
     [](const ShownDisk& it) { return FieldCell(it.status, LD_Status::BgaState); }},
    {OneOf(ProtectionWords,
           {"redundancy", "REDUNDANCY", kWord, kWide,
            "What is left of it: full, reduced (any one more disk may fail), exhausted (not any "
            "disk may), lost, or none by its level"}),
     [](const ShownDisk& it) {
         return it.protection ? TextCell(std::string(hxc::NameOf(*it.protection))) : Unknown();
     }},
    {{"failures_tolerated", "TOLERATES", kNumber, kWide, "How many disks, whichever, may fail"},
     [](const ShownDisk& it) { return NumberCell(it.survives); }},
    {{"stripe_bytes", "STRIPE", kBytes, kWide, "Its stripe size"},
     [](const ShownDisk& it) { return ScaledAt(it.info, LD_Info::StripeBlockSize, 1024); }},
    {{"disk_count", "DISK COUNT", kNumber, kWide, "The number of its disks"},
     [](const ShownDisk& it) { return FieldCell(it.info, LD_Info::HDCount); }},
    {{"leg_count", "LEGS", kNumber, kWide, "The number of its legs; 0 for a level without"},
     [](const ShownDisk& it) { return FieldCell(it.info, LD_Info::SubLDCount); }},
    {{"parity_disks", "PARITY", kNumber, kWide, "The number of its parity disks"},
     [](const ShownDisk& it) { return FieldCell(it.info, LD_Info::NumParityDisk); }},
    {{"sector_bytes", "SECTOR", kNumber, kWide, "The size of its sectors"},
     [](const ShownDisk& it) {
         return ScaledAt(it.info, LD_Info::SectorCoefficient, kSectorBytes);
     }},
    {{"auto_rebuild", "AUTO REBUILD", kBool, kWide, "Setting: a spare is taken at once"},
     [](const ShownDisk& it) { return FieldCell(it.config, LD_Config::AutoRebuildOn); }},
    {Of(kMemberColumns, {"members", "MEMBERS", kItems, kWide,
                         "Its positions: the disk, the state of what it holds there, and the leg "
                         "or mirrored pair"}),
     [](const ShownDisk& it) { return it.members; }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListVirtualDisks(Invocation& invocation) {
    SelectAdapters(invocation);
    return Show(invocation, Tabulated(invocation, kColumns,
                                      WithMembers(invocation.controller(),
                                                  LoadVirtualDisks(invocation.controller()))));
}

// ---- Changes ----------------------------------------------------------------------------------

VirtualDisk FindVirtualDisk(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kVirtualDisk);
    return TakeObject(LoadVirtualDisks(invocation.controller()), address);
}

std::string LevelText(const VirtualDisk& disk) {
    const auto code = disk.info[LD_Info::RaidMode];
    if (!code) return "level unknown";
    const std::string_view name = hxcodes::NameOf(hxcodes::kLevels, *code);
    return name.empty() ? "level " + std::to_string(*code) : std::string(name);
}

std::string Described(const VirtualDisk& disk) {
    return disk.address.Text() + " (" + Shown(disk.info[LD_Info::Name]) + ", " + LevelText(disk) +
           ", " + SectorsText(disk.info[LD_Info::Size]) + ")";
}

// What the user has to type before it is destroyed: its name, or its address when it has none.
std::string ConfirmName(const VirtualDisk& disk) {
    const std::string name = disk.info[LD_Info::Name].value_or("");
    return name.empty() ? disk.address.Text() : name;
}

std::string DisksText(const VirtualDisk& disk) {
    return disk.disks ? Joined(DisksCell(disk).texts, ", ") : "not known";
}

unsigned CodeOf(const hxcodes::LevelRow& level) { return hxcodes::NumberOf(level.code); }

// The virtual disk's state in a word, where it is known.
std::string_view StateOf(Invocation& invocation, const VirtualDisk& disk) {
    const auto code = disk.info[LD_Info::Status];
    if (!code) return {};
    return hxcodes::NameOf(invocation.controller().codes().table().states, *code);
}
constexpr std::string_view kForeignState = "foreign";

// A change of the virtual disk by one command. Callers add losses and a question where they need
// them.
Change ChangeOf(const VirtualDisk& disk, const std::string& what, Command command) {
    return {.what = what + " virtual disk " + Described(disk),
            .losses = {},
            .confirm = {},
            .commands = {std::move(command)},
            .address = disk.address.Text(),
            .size_bytes = {}};
}

Exit DeleteVirtualDisk(Invocation& invocation) {
    using Function = calls::HX_LD_Delete;
    const VirtualDisk disk = FindVirtualDisk(invocation);
    auto request = RequestFor(disk.address, Function::LD_ID);
    request.Add({Function::deleteMBR, invocation.Has("--keep-boot-record") ? 0 : 1});
    Change change = ChangeOf(disk, "Delete", std::move(request));
    change.losses = {"all data on it will be lost", "its disks: " + DisksText(disk)};
    change.confirm = ConfirmName(disk);
    if (StateOf(invocation, disk) == kForeignState) {
        change.refusals.emplace_back("it is foreign; see vexorctl vd import and disk wipe");
    }
    return CarryOut(invocation, change);
}

Exit ImportVirtualDisk(Invocation& invocation) {
    const VirtualDisk disk = FindVirtualDisk(invocation);
    Change change = ChangeOf(disk, "Import", RequestFor(disk.address, calls::HX_LD_Import::LD_ID));
    const std::string_view state = StateOf(invocation, disk);
    if (!state.empty() && state != kForeignState) {
        change.refusals.push_back("it is " + std::string(state) + " and not foreign");
    }
    change.alters = [id = disk.address.id](hxc::Adapter& adapter) { ImportDisks(adapter, id); };
    return CarryOut(invocation, change);
}

// The cache modes that can be set. forced_write_through is the controller's own.
constexpr std::string_view kCacheModes[] = {"write_back", "read_ahead"};

// Names of bits, which commas separate.
std::uint64_t CacheOption(Controller& controller, const std::string& text) {
    std::uint64_t bits = 0;
    std::string_view rest = text;
    while (!rest.empty() && rest != "none") {
        const std::size_t comma = rest.find(',');
        const std::string_view name = rest.substr(0, comma);
        if (std::ranges::find(kCacheModes, name) == std::end(kCacheModes)) {
            throw UsageError("--cache cannot be \"" + text +
                             "\"; say write_back, read_ahead, both with a comma, or none");
        }
        bits |= CodeNamed(controller, &CodeTable::cache_bits, name);
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    return bits;
}

// The cache mode of a new virtual disk: that of --cache, else read-ahead, or 0 where the
// controller's codes are unknown.
std::uint64_t NewCache(Invocation& invocation) {
    Controller& controller = invocation.controller();
    if (const std::string* const cache = invocation.Get("--cache")) {
        return CacheOption(controller, *cache);
    }
    return controller.codes().AreKnown() ? CacheOption(controller, "read_ahead") : 0;
}

// The cache mode of an existing virtual disk: that of --cache, else the present one without the bit
// that cannot be set. Bits without a name are kept.
std::uint64_t CacheOrKept(Invocation& invocation, const VirtualDisk& disk) {
    Controller& controller = invocation.controller();
    if (const std::string* const cache = invocation.Get("--cache")) {
        return CacheOption(controller, *cache);
    }
    const auto* const forced =
        hxcodes::FindName(controller.codes().table().cache_bits, "forced_write_through");
    const std::uint64_t mode = Kept(disk.config, LD_Config::CacheMode, disk.address);
    return forced == nullptr ? mode : mode & ~std::uint64_t{forced->code};
}

template <class Field>
std::string NameOrKept(Invocation& invocation, const VirtualDisk& disk, const auto& record,
                       Field field) {
    const auto name = NameOption(invocation, NameMarkup::kCData);
    return name ? *name : Kept(record, field, disk.address);
}

std::string CacheText(Invocation& invocation, std::uint64_t bits) {
    std::string text;
    for (const hxcodes::Named& row : invocation.controller().codes().table().cache_bits) {
        if ((bits & row.code) != 0) text.append(text.empty() ? "" : ",").append(row.name);
    }
    return text.empty() ? "none" : text;
}

// What it is now and what it will be, of each setting that was named.
void TellSettings(Invocation& invocation, const VirtualDisk& disk, Change& change) {
    const auto tell = [&](std::string_view what, const std::string& now, const std::string& then) {
        change.losses.emplace_back(what).append(": ").append(now).append(" -> ").append(then);
    };
    if (const std::string* const name = invocation.Get("--name")) {
        tell("name", Shown(disk.info[LD_Info::Name]), *name);
    }
    if (const std::string* const cache = invocation.Get("--cache")) {
        const auto now = disk.config[LD_Config::CacheMode];
        tell("cache", now ? CacheText(invocation, *now) : "?",
             CacheText(invocation, CacheOption(invocation.controller(), *cache)));
    }
    if (const std::string* const automatic = invocation.Get("--auto-rebuild")) {
        const auto now = disk.config[LD_Config::AutoRebuildOn];
        tell("automatic rebuild", !now ? "?" : *now != 0 ? "on" : "off", *automatic);
    }
}

// The library sets all settings at once, so those that were not named are sent back as they are.
Exit SetVirtualDisk(Invocation& invocation) {
    using Function = calls::HX_LD_SetConfig;
    const VirtualDisk disk = FindVirtualDisk(invocation);
    if (!invocation.Has("--name") && !invocation.Has("--cache") &&
        !invocation.Has("--auto-rebuild")) {
        throw UsageError("no setting was named");
    }
    const auto auto_rebuild = SwitchOption(invocation, "--auto-rebuild");
    auto request = RequestFor(disk.address, Function::LD_ID);
    request.Add({Function::CacheMode, CacheOrKept(invocation, disk)});
    request.Add(
        {Function::AutoRebuildOn,
         auto_rebuild ? *auto_rebuild : Kept(disk.config, LD_Config::AutoRebuildOn, disk.address)});
    request.Add({Function::Status, Kept(disk.config, LD_Config::Status, disk.address)});
    request.Add({Function::LDID, disk.address.id});
    request.Add({Function::Name, NameOrKept(invocation, disk, disk.config, LD_Config::Name)});
    Change change = ChangeOf(disk, "Set", std::move(request));
    TellSettings(invocation, disk, change);
    if (auto_rebuild) {
        change.alters = [id = disk.address.id, auto_rebuild](hxc::Adapter& adapter) {
            if (hxc::VirtualDisk* const found = FindIn(adapter, id)) {
                found->auto_rebuild = *auto_rebuild != 0;
            }
        };
    }
    return CarryOut(invocation, change);
}

// ---- create -----------------------------------------------------------------------------------

// The first slot of the group that no virtual disk has.
std::uint64_t SlotOption(const Invocation& invocation, const DiskGroup& group) {
    if (const auto slot = invocation.Number("--slot", 255)) return *slot;
    const auto slots = Kept(group.info, fields::DG_Info::VDIDs, group.address);
    const auto empty = std::ranges::find(slots, std::uint64_t{HX_NEW_ID});
    return empty == slots.end() ? 0 : static_cast<std::uint64_t>(empty - slots.begin());
}

// 0 leaves the choice to the controller.
std::uint64_t CodeOrNone(Invocation& invocation, std::string_view option, CodeNames names) {
    return invocation.Has(option) ? CodeOption(invocation, option, names) : 0;
}

// The size that results when so much is asked for; null where the controller's way of rounding is
// not known and something is to be rounded.
std::optional<std::uint64_t> SectorsResulting(Invocation& invocation, const Striping& striping,
                                              std::uint64_t sectors) {
    constexpr std::uint64_t kGiB = (std::uint64_t{1} << 30U) / kSectorBytes;
    const std::string round = invocation.Get("--round", "stripe");
    const std::uint64_t unit = round == "10_gib" ? 10 * kGiB : round == "1_gib" ? kGiB : 1;
    const std::uint64_t whole = InWholeStripes(striping, sectors);
    const std::uint64_t rounded = whole - whole % unit;
    if (invocation.controller().codes().AreOurs() || rounded == sectors) return rounded;
    return std::nullopt;
}

void TellSize(Change& change, std::optional<std::uint64_t> resulting, std::uint64_t asked) {
    if (resulting) {
        change.size_bytes = kSectorBytes * *resulting;
    } else {
        change.losses.push_back("the resulting size is not known: the controller rounds " +
                                SectorsText(asked));
    }
}

// How virtual disks on the group lie, with a stripe size of their own or with the group's.
std::optional<Striping> StripingOn(const DiskGroup& group,
                                   std::optional<std::uint64_t> stripe_kib) {
    using fields::DG_Info;
    const auto code = group.info[DG_Info::RaidMode];
    const auto disks = DisksOf(group.info.view());
    const auto legs = group.info[DG_Info::SubVDCount];
    if (!stripe_kib) stripe_kib = group.info[DG_Info::StripeBlockSize];
    const hxcodes::LevelRow* const level =
        code ? hxcodes::FindCode(hxcodes::kLevels, *code) : nullptr;
    if (level == nullptr || !disks || !legs || !stripe_kib) return std::nullopt;
    return Striping{level, static_cast<unsigned>(disks->size()), static_cast<unsigned>(*legs),
                    *stripe_kib};
}

// A virtual disk on a group has the group's level and disks.
Alteration AddOn(const DiskGroup& group, const std::string& title) {
    const auto level = group.info[fields::DG_Info::RaidMode];
    const auto disks = DisksOf(group.info.view());
    if (!level || !disks) return nullptr;
    const auto legs = static_cast<unsigned>(group.info[fields::DG_Info::SubVDCount].value_or(0));
    return [=, code = static_cast<unsigned>(*level),
            ids = std::vector<unsigned>(disks->begin(), disks->end())](hxc::Adapter& adapter) {
        AddVirtualDisk(adapter, title, code, legs, ids);
    };
}

Exit CreateOnGroup(Invocation& invocation, const std::string& typed) {
    using Function = calls::HX_LD_Create_OnDG;
    using fields::DG_Info;
    const Address address = FindObject(invocation, ObjectKind::kDiskGroup, typed);
    const std::vector<DiskGroup> groups = LoadDiskGroups(invocation.controller());
    std::string others;
    for (const DiskGroup& group : groups) {
        if (group.address == address) continue;
        others += "; free on " + group.address.Text() + ": " +
                  SectorsText(group.info[DG_Info::RemainingManagedSpace]);
    }
    const DiskGroup owner = TakeObject(groups, address);
    const std::uint64_t sectors =
        SizeOption(invocation)
            .Of(Kept(owner.info, DG_Info::RemainingManagedSpace, address), others);
    const std::string name = NameOption(invocation, NameMarkup::kCData).value_or("NEW_VD");
    const Request<Function> request{
        {Function::AdapterID, address.adapter},
        {Function::DGID, address.id},
        {Function::Name, name},
        {Function::StripeBlockSize, StripeOption(invocation).value_or(0)},
        {Function::Size, sectors},
        {Function::RoundingScheme, 0},
        {Function::CachePolicy, NewCache(invocation)},
        {Function::DGSlotNum, SlotOption(invocation, owner)},
        {Function::InitializationOption, CodeOrNone(invocation, "--init", &CodeTable::inits)},
        {Function::SectorCoefficient, 1}};
    Change change{.what = "Create a virtual disk called " + name + " on " + address.Text(),
                  .losses = {},
                  .confirm = {},
                  .commands = {request},
                  .address = {},
                  .size_bytes = {},
                  .starts_task = true,
                  .created = &AddressesOf<&LoadVirtualDisks>,
                  .alters = AddOn(owner, name)};
    const auto striping = StripingOn(owner, StripeOption(invocation));
    const bool is_most = sectors == owner.info[DG_Info::RemainingManagedSpace];
    TellSize(change,
             is_most    ? sectors
             : striping ? SectorsResulting(invocation, *striping, sectors)
                        : std::nullopt,
             sectors);
    return CarryOut(invocation, change);
}

// The parameters that the request for a new virtual disk shares with the question for its size.
template <class Function>
Request<Function> CreationRequest(Invocation& invocation, const hxcodes::LevelRow& level,
                                  std::span<const Disk> disks, const std::string& name) {
    return {{Function::AdapterID, disks.front().address.adapter},
            {Function::RaidMode, hxcodes::NumberOf(level.code)},
            {Function::HDCount, disks.size()},
            {Function::RoundingScheme, CodeOrNone(invocation, "--round", &CodeTable::roundings)},
            {Function::SubLDCount, invocation.Number("--legs", 255).value_or(0)},
            {Function::NumParityDisk, hxcodes::ParityDisks(level, 0)},
            {Function::StripeBlockSize, StripeOption(invocation).value_or(64)},
            {Function::CachePolicy, NewCache(invocation)},
            {Function::InitializationOption, CodeOrNone(invocation, "--init", &CodeTable::inits)},
            {Function::HDIDs, Ids(disks)},
            {Function::Name, name}};
}

Exit CreateOnDisks(Invocation& invocation) {
    using Look = calls::HX_LD_GetMaxSize;
    using Function = calls::HX_LD_Create;
    const hxcodes::LevelRow& level = LevelOption(invocation);
    const auto count = invocation.Number("--disks", 128);
    if (invocation.targets().empty() && !count) {
        throw UsageError("no disks: name them, or say --disks and how many");
    }
    if (!invocation.targets().empty() && count) {
        throw UsageError("either name the disks or say how many with --disks");
    }
    const SizeWish size = SizeOption(invocation);
    const std::string name = NameOption(invocation, NameMarkup::kCData).value_or("NEW_VD");
    Controller& controller = invocation.controller();
    const auto ask = [&](std::span<const Disk> disks) {
        return controller.Ask(CreationRequest<Look>(invocation, level, disks, name));
    };
    const auto room_of = [](const AnswerTo<Look>& answer) {
        return answer[Look::Result::CreateLDParam][fields::Create_LD_Param::Size];
    };
    const auto room = [&](std::span<const Disk> disks) -> std::optional<std::uint64_t> {
        const auto most = ask(disks);
        return most.exit == Exit::kDone ? room_of(most) : std::nullopt;
    };
    const std::vector<Disk> disks =
        count ? PickDisks(invocation, static_cast<std::size_t>(*count), size, room)
              : NamedDisks(invocation, invocation.targets());
    // After --disks 0, or when the disks were unplugged since they were looked up.
    if (disks.empty()) throw UsageError("no disks: a virtual disk needs one at least");
    const unsigned adapter = disks.front().address.adapter;
    const auto most = ask(disks);
    const auto most_sectors = room_of(most);
    if (most.exit != Exit::kDone || !most_sectors) {
        throw Refused(invocation, adapter, SubjectOf(invocation, level, disks), {Look::kName},
                      most);
    }
    const bool too_large = size.sectors.value_or(0) > *most_sectors;
    const std::uint64_t sectors =
        size.Of(*most_sectors, too_large ? Alternatives(invocation, adapter) : std::string());
    auto request = CreationRequest<Function>(invocation, level, disks, name);
    request.Add({Function::SectorCoefficient, 1});
    request.Add({Function::Size, sectors});
    Change change{.what = "Create a RAID " + std::string(level.number) + " virtual disk called " +
                          name + " on",
                  .losses = {},
                  .confirm = {},
                  .commands = {std::move(request)},
                  .address = {},
                  .size_bytes = {},
                  .starts_task = true,
                  .created = &AddressesOf<&LoadVirtualDisks>};
    AddDisks(change, disks, name);
    const auto legs = static_cast<unsigned>(invocation.Number("--legs", 255).value_or(0));
    const Striping striping{&level, static_cast<unsigned>(disks.size()), legs,
                            StripeOption(invocation).value_or(64)};
    // The most is what the controller itself has said.
    TellSize(change,
             sectors == *most_sectors ? sectors : SectorsResulting(invocation, striping, sectors),
             sectors);
    change.alters = [&, legs](hxc::Adapter& altered) {
        AddVirtualDisk(altered, name, CodeOf(level), legs, IdsOf(disks));
    };
    return CarryOut(invocation, change);
}

// Disks that were picked and that somebody else has taken since are no reason to give up: others
// may do. Disks that were named are.
Exit CreateVirtualDisk(Invocation& invocation) {
    if (const std::string* const group = invocation.Get("--dg")) {
        return CreateOnGroup(invocation, *group);
    }
    const bool is_fixed = !invocation.targets().empty() || invocation.review() != nullptr;
    if (is_fixed) return CreateOnDisks(invocation);
    constexpr int kPicks = 16;
    std::optional<Outdated> lost;
    for (int pick = 0; pick < kPicks; ++pick) {
        try {
            return CreateOnDisks(invocation);
        } catch (const Outdated& outdated) {
            ReportFailure("", std::string(outdated.what()) + "; picking again");
            lost = outdated;
            invocation.controller().RememberSightings();
        } catch (const Failure& failure) {
            if (!lost) throw;
            throw Outdated(lost->exit, std::string(lost->what()) + "; then " + failure.what());
        }
    }
    throw *lost;
}

Exit QuickCreate(Invocation& invocation) {
    using Function = calls::HX_LD_QuickCreate;
    const unsigned adapter = FindAdapter(invocation);
    const bool redundant = !invocation.Has("--plain");
    Change change{.what = "Create one virtual disk over all free disks of a" +
                          std::to_string(adapter) +
                          (redundant ? ", with redundancy" : ", without redundancy"),
                  .losses = {"all free disks of the adapter are taken"},
                  .confirm = "a" + std::to_string(adapter),
                  .commands = {Request<Function>{{Function::AdapterID, adapter},
                                                 {Function::Type, redundant ? 1 : 0}}},
                  .address = {},
                  .size_bytes = {},
                  .starts_task = true,
                  .created = &AddressesOf<&LoadVirtualDisks>,
                  .takes_every_disk = true};
    TellQuickCreation(invocation.controller(), {.adapter = adapter}, redundant, change);
    return CarryOut(invocation, change);
}

// The parameters that the request for a migration shares with the question for the resulting size.
template <class Function>
Request<Function> MigrationRequest(const VirtualDisk& disk, const hxcodes::LevelRow& level,
                                   std::span<const Disk> disks) {
    auto request = RequestFor(disk.address, Function::LDID);
    request.Add({Function::RaidMode, hxcodes::NumberOf(level.code)});
    request.Add({Function::HDCount, disks.size()});
    request.Add({Function::HDIDs, Ids(disks)});
    return request;
}

Exit MigrateVirtualDisk(Invocation& invocation) {
    using Look = calls::HX_LD_GetMigratedLdSize;
    const VirtualDisk disk = FindVirtualDisk(invocation);
    const hxcodes::LevelRow& level = LevelOption(invocation);
    std::vector<std::string> typed = SplitList(invocation.Get("--to", ""));
    if (typed.empty()) typed = KnownDisks(disk.address, disk.disks);
    const std::vector<Disk> disks = NamedDisks(invocation, typed);
    const auto answer = invocation.controller().Ask(MigrationRequest<Look>(disk, level, disks));
    const auto size = answer[Look::Result::CreateLDParam][fields::Create_LD_Param::Size];
    if (answer.exit != Exit::kDone || !size) {
        throw Refused(invocation, disk.address.adapter, disk.address.Text(), {Look::kName}, answer);
    }
    Change change = ChangeOf(disk, "Migrate",
                             MigrationRequest<calls::HX_LD_StartMigration>(disk, level, disks));
    change.what += " to RAID " + std::string(level.number) + " on";
    change.confirm = ConfirmName(disk);
    // The controller answers with what it could be at most; the command names no size, which leaves
    // it as large as it is.
    const std::uint64_t kept = Kept(disk.info, LD_Info::Size, disk.address);
    change.size_bytes = kSectorBytes * kept;
    if (*size < kept) {
        change.refusals.push_back("no more than " + SectorsText(*size) + " would fit, and it has " +
                                  SectorsText(kept));
    }
    change.starts_task = true;
    AddDisks(change, disks, ConfirmName(disk));
    const bool same_level = disk.info[LD_Info::RaidMode] == CodeOf(level);
    const auto legs =
        same_level ? static_cast<unsigned>(disk.info[LD_Info::SubLDCount].value_or(0)) : 0U;
    change.alters = [&, legs](hxc::Adapter& altered) {
        hxc::VirtualDisk* const found = FindIn(altered, disk.address.id);
        if (found != nullptr) LayOut(*found, CodeOf(level), legs, IdsOf(disks));
    };
    return CarryOut(invocation, change);
}

// What the virtual disk can grow to. Its group may have more left: that lies elsewhere.
std::optional<std::uint64_t> MostOf(Invocation& invocation, const VirtualDisk& disk,
                                    const Striping& striping) {
    const auto runs = LoadRuns(invocation.controller(), disk.address.adapter);
    if (!runs) return std::nullopt;
    return MostInPlace(*runs, disk.address.id, striping);
}

// The size that is asked for, and what results from it.
std::uint64_t SectorsToModify(Invocation& invocation, const VirtualDisk& disk, std::uint64_t before,
                              Change& change) {
    const SizeWish wish = SizeOption(invocation);
    const auto code = disk.info[LD_Info::RaidMode];
    const hxcodes::LevelRow* const level =
        code ? hxcodes::FindCode(hxcodes::kLevels, *code) : nullptr;
    const auto count = disk.info[LD_Info::HDCount];
    std::optional<std::uint64_t> most;
    Striping striping{level, static_cast<unsigned>(count.value_or(0)),
                      static_cast<unsigned>(disk.info[LD_Info::SubLDCount].value_or(0)),
                      disk.info[LD_Info::StripeBlockSize].value_or(0)};
    if (level != nullptr && count) most = MostOf(invocation, disk, striping);
    if (!most && !wish.sectors) {
        throw Failure(Exit::kRefused, disk.address.Text() +
                                          ": what is possible is not known; say a size. Nothing "
                                          "was done");
    }
    // A group that is not known to have room is asked for what was typed.
    const std::uint64_t sectors =
        wish.Of(most.value_or(UINT64_MAX),
                " (what is free behind it on its disks counts, not all that "
                "its disk group has left)");
    if (sectors == most || sectors <= before) {
        TellSize(change, sectors, sectors);
    } else if (most) {
        TellSize(change, SectorsResulting(invocation, striping, sectors), sectors);
    } else {
        change.losses.emplace_back("the resulting size is not known");
    }
    return sectors;
}

// The parameters that both functions for modifying a virtual disk take. What was not named is sent
// back as it is.
template <class Function>
Request<Function> ModificationRequest(Invocation& invocation, const VirtualDisk& disk,
                                      std::uint64_t sectors) {
    const auto kept = [&](auto field) { return Kept(disk.info, field, disk.address); };
    return {{Function::AdapterID, disk.address.adapter},
            {Function::VDID, disk.address.id},
            {Function::DGID, kept(LD_Info::DGID)},
            {Function::Name, NameOrKept(invocation, disk, disk.info, LD_Info::Name)},
            {Function::RaidMode, kept(LD_Info::RaidMode)},
            {Function::SubVDCount, kept(LD_Info::SubLDCount)},
            {Function::NumParityDisk, kept(LD_Info::NumParityDisk)},
            {Function::StripeBlockSize, kept(LD_Info::StripeBlockSize)},
            {Function::Size, sectors}};
}

// Of a virtual disk on a disk group.
Exit ModifyVirtualDisk(Invocation& invocation) {
    using Function = calls::HX_LD_Modify_OnDG;
    using Plain = calls::HX_CreateOrModify_VD;
    const VirtualDisk disk = FindVirtualDisk(invocation);
    if (!invocation.Has("--size") && !invocation.Has("--name") && !invocation.Has("--cache")) {
        throw UsageError("no change was named");
    }
    const bool plain = invocation.Has("--plain");
    if (plain && invocation.Has("--cache")) throw UsageError("--plain knows no --cache");
    if (disk.info[LD_Info::DGID] == kNoDiskGroup) {
        throw Failure(Exit::kRefused, disk.address.Text() +
                                          ": it lies on no disk group; see "
                                          "vexorctl vd migrate and vd set");
    }
    const std::uint64_t before = Kept(disk.info, LD_Info::Size, disk.address);
    Change change = ChangeOf(disk, "Modify", {});
    const std::uint64_t sectors =
        invocation.Has("--size") ? SectorsToModify(invocation, disk, before, change) : before;
    if (plain) {
        change.losses.emplace_back("its cache will be off");
        change.commands = {ModificationRequest<Plain>(invocation, disk, sectors)};
    } else {
        auto request = ModificationRequest<Function>(invocation, disk, sectors);
        request.Add({Function::CachePolicy, CacheOrKept(invocation, disk)});
        request.Add({Function::SectorCoefficient,
                     Kept(disk.info, LD_Info::SectorCoefficient, disk.address)});
        change.commands = {std::move(request)};
    }
    if (sectors < before) {
        change.losses.emplace_back("what lies behind its new end will be lost");
        change.confirm = ConfirmName(disk);
        if (invocation.controller().codes().AreOurs()) {
            change.refusals.push_back("it has " + SectorsText(before) +
                                      ", and this controller makes none smaller");
        }
    }
    if (!invocation.Has("--size")) change.size_bytes = kSectorBytes * before;
    return CarryOut(invocation, change);
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

constexpr const auto& kListFunctions =
    kNamesOf<calls::HX_LD_GetInfo, calls::HX_LD_GetTargetLDInfo, calls::HX_LD_GetConfig,
             calls::HX_LD_GetStatus, calls::HX_BLK_GetInfo, calls::HX_PD_GetHDInfo_Ext>;

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
     .functions = kNamesOf<calls::HX_LD_GetMaxSize, calls::HX_LD_Create, calls::HX_LD_Create_OnDG>,
     .examples =
         {"vexorctl vd create --adapter 1 --raid 5 --disks 4 --size max --name data1 --dry-run",
          "vexorctl vd create --dg a0/dg0 --size 10GiB --name data2 --dry-run"},
     .run = CreateVirtualDisk,
     .columns = ChangeColumns,
     .note =
         "Name the disks, or say how many to pick: free ones of about the same size, the "
         "smallest that suffice for the --size, or those that give the most. When a disk holds "
         "data it asks for the name of the virtual disk. Where it cannot be made, it tells "
         "which disks are free, on the other adapters too. RAID 0 takes 1 disk or more, "
         "RAID 1 exactly 2, RAID 1E an odd number from 3, RAID 5 and 6 take 3 or more, RAID 10 "
         "an even number from 4, RAID 50 and 60 legs of 3 or more each, all of the same number.",
     .changes = true},
    {.noun = "vd",
     .verb = "quick-create",
     .summary = "Create one virtual disk over all free disks",
     .target = Target::kNone,
     .arity = Arity::kNone,
     .target_name = "",
     .options = kQuickOptions,
     .functions = kNamesOf<calls::HX_LD_QuickCreate>,
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
     .functions = kNamesOf<calls::HX_LD_Delete>,
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
     .functions = kNamesOf<calls::HX_LD_GetConfig, calls::HX_LD_SetConfig>,
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
     .functions = kNamesOf<calls::HX_LD_Modify_OnDG, calls::HX_CreateOrModify_VD>,
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
     .functions = kNamesOf<calls::HX_LD_GetMigratedLdSize, calls::HX_LD_StartMigration>,
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
     .functions = kNamesOf<calls::HX_LD_Import>,
     .examples = {"vexorctl vd import a0/vd0 --dry-run",
                  "vexorctl vd import name:ARCHIVE --dry-run"},
     .run = ImportVirtualDisk,
     .columns = ChangeColumns,
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::vd_noun

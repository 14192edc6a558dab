#include "nouns/vd_show.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/activity.h"
#include "codes/code_table.h"
#include "codes/level.h"
#include "codes/named.h"
#include "codes/state.h"
#include "common/address.h"
#include "common/size.h"
#include "conditions/hxc_answers.h"
#include "conditions/hxc_redundancy.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/event_history.h"
#include "model/exit_code.h"
#include "model/health_answers.h"
#include "model/initialisations.h"
#include "model/object_health.h"
#include "model/task_pace.h"
#include "model/tasks.h"
#include "model/virtual_disks.h"
#include "nouns/find_object.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
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
    std::optional<std::string_view> health;
    Cell initialised;
    TaskPace pace;
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

bool HasActivity(const VirtualDisk& disk) { return disk.status[LD_Status::Bga].value_or(0) != 0; }

// Whether its redundancy was ever made. No record of the controller tells.
Cell InitialisedCell(const VirtualDisk& disk, const Initialisations& initialised,
                     const CodeTable& codes) {
    const auto level = disk.info[LD_Info::RaidMode];
    if (!level || hxcodes::FindCode(hxcodes::kLevels, *level) == nullptr) return Unknown();
    if (!hxc::IsRedundant(static_cast<unsigned>(*level))) return None();
    const auto activity = disk.status[LD_Status::Bga];
    if (!activity) return Unknown();
    const auto* const row =
        hxcodes::FindName(hxcodes::kActivities, hxcodes::NameOf(codes.activities, *activity));
    const bool runs = row != nullptr && row->effect == hxcodes::Effect::kInitialises;
    const auto is = initialised.Of(disk.address.Text(), runs);
    return is ? NumberCell(*is ? 1 : 0) : Unknown();
}

// The paces of the activities that run on virtual disks, by their addresses.
std::map<std::string, TaskPace> PacesOf(Controller& controller, const History& history,
                                        const std::vector<VirtualDisk>& disks) {
    std::vector<Task> tasks;
    for (const VirtualDisk& each : disks) {
        if (!HasActivity(each)) continue;
        Task& task = tasks.emplace_back();
        task.address = each.address;
        task.activity = *each.status[LD_Status::Bga];
        task.state = each.status[LD_Status::BgaState];
        task.percent = each.status[LD_Status::BgaPercentage];
        task.virtual_disks = {each.address.id};
    }
    TellPace(controller, history.periods, tasks);
    std::map<std::string, TaskPace> paces;
    for (Task& task : tasks) paces.emplace(task.address.Text(), std::move(task.pace));
    return paces;
}

// None unless it runs.
Cell PaceCell(const ShownDisk& it, std::optional<std::uint64_t> value) {
    const auto activity = it.status[LD_Status::Bga];
    const auto state = it.status[LD_Status::BgaState];
    if (!activity || (HasActivity(it) && !state)) return Unknown();
    const bool runs =
        HasActivity(it) && *state == hxcodes::NumberOf(hxcodes::ActivityState::kRunning);
    return runs ? NumberCell(value) : None();
}

std::vector<ShownDisk> WithMembers(Controller& controller, std::vector<VirtualDisk> disks) {
    const hxc::Answers answers = AnswersFor(controller, disks);
    const ObjectHealth health(answers);
    const History history = disks.empty() ? History() : KnownHistory(controller);
    std::map<std::string, TaskPace> paces = PacesOf(controller, history, disks);
    std::vector<ShownDisk> shown;
    for (VirtualDisk& each : disks) {
        ShownDisk& disk = shown.emplace_back();
        static_cast<VirtualDisk&>(disk) = std::move(each);
        disk.health = health.OfVirtualDisk(disk.address);
        disk.initialised = InitialisedCell(disk, history.initialised, controller.codes().table());
        disk.pace = paces[disk.address.Text()];
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
    {{"initialised", "INIT", kBool, kIfRoom,
      "Whether its redundancy was ever made, as the stored events tell; none without redundancy"},
     [](const ShownDisk& it) { return it.initialised; }},
    {{"disks", "DISKS", kAddresses, kTable, "The disks that it lies on"},
     [](const ShownDisk& it) { return DisksCell(it); }},
    {{"dg", "DG", kReference, kWide, "The disk group that it lies on"},
     [](const ShownDisk& it) { return GroupCell(it); }},
    {{"cache", "CACHE", kBits, kWide, "Its cache", &CodeTable::cache_bits},
     [](const ShownDisk& it) { return FieldCell(it.info, LD_Info::CacheMode); }},
    {{"activity", "ACTIVITY", kCode, kTable, "What is going on in the background",
      &CodeTable::activities},
     [](const ShownDisk& it) { return FieldCell(it.status, LD_Status::Bga); }},
    {{"progress_ratio", "DONE", kRatio, kTable, "How far that is"},
     [](const ShownDisk& it) {
         return ProgressAt(it.status, LD_Status::Bga, LD_Status::BgaPercentage);
     }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How it stands",
      &CodeTable::activity_states},
     [](const ShownDisk& it) { return FieldCell(it.status, LD_Status::BgaState); }},
    {{"activity_seconds_left", "LEFT", kSeconds, kWide,
      "How long it will run still, at the speed that it had between its last events; none unless "
      "it runs"},
     [](const ShownDisk& it) { return PaceCell(it, it.pace.seconds_left); }},
    {{"activity_rate_bytes_per_second", "RATE", kRate, kWide,
      "That speed, on each disk; none unless it runs"},
     [](const ShownDisk& it) { return PaceCell(it, it.pace.bytes_per_second); }},
    {OneOf(HealthWords, {"health", "HEALTH", kWord, kWide,
                         "How well it is, by its own conditions; check tells which"}),
     [](const ShownDisk& it) { return it.health ? TextCell(std::string(*it.health)) : Unknown(); }},
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

}  // namespace

std::vector<ColumnInfo> VirtualDiskColumns() { return InfoOf(kColumns); }

Exit ListVirtualDisks(Invocation& invocation) {
    SelectAdapters(invocation);
    return Show(invocation, Tabulated(invocation, kColumns,
                                      WithMembers(invocation.controller(),
                                                  LoadVirtualDisks(invocation.controller()))));
}

}  // namespace vexorctl::vd_noun

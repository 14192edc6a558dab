// States and activities, derived from MD's attributes.
#include "rules/hxmd_state.h"

#include <algorithm>
#include <vector>

#include "codes/disk.h"
#include "codes/level.h"

namespace hxmd {
namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::DiskBit;
using hxcodes::Level;
using hxcodes::NumberOf;
using hxcodes::State;

// A limit above MD's own: an attribute may contain any number.
constexpr std::uint64_t kMostSlots = 1024;

bool IsRunning(const Array& array) {
    return array.state == ArrayState::kRunning || array.state == ArrayState::kReadAuto;
}

// ---- Redundancy ----

// raid10's layout: the number of near copies in the low byte, of far copies in the next one.
std::uint64_t CopiesOf(const Array& array) {
    const std::uint64_t layout = array.layout.value_or(0);
    const std::uint64_t near = std::max<std::uint64_t>(layout & 0xFF, 1);
    const std::uint64_t far = std::max<std::uint64_t>(layout >> 8 & 0xFF, 1);
    return near * far;
}
std::uint64_t NearCopiesOf(const Array& array) {
    return std::max<std::uint64_t>(array.layout.value_or(0) & 0xFF, 1);
}

// Tells for each place whether a member holds its content.
std::vector<bool> FilledSlots(const Array& array) {
    std::vector<bool> filled(SlotCount(array));
    for (const Member& member : array.members) {
        if (member.slot && *member.slot < filled.size() && HasContent(member)) {
            filled[static_cast<std::size_t>(*member.slot)] = true;
        }
    }
    return filled;
}

// The number of further losses at which content would be lost: 1 means no redundancy is left, 0
// that content is lost already.
std::uint64_t FewestLeft(const Array& array, const std::vector<bool>& filled) {
    const auto count = filled.size();
    const auto there = static_cast<std::uint64_t>(std::ranges::count(filled, true));
    const std::uint64_t missing = count - there;
    switch (array.level.value_or(NumberOf(Level::kRaid0))) {
        case NumberOf(Level::kRaid1):
            return there;
        case kRaid4:
        case NumberOf(Level::kRaid5):
            return missing > 1 ? 0 : 2 - missing;
        case NumberOf(Level::kRaid6):
            return missing > 2 ? 0 : 3 - missing;
        case NumberOf(Level::kRaid10): {
            // The copies of a chunk lie on consecutive slots; the next chunk starts after the near
            // copies.
            const std::uint64_t copies = std::min<std::uint64_t>(CopiesOf(array), count);
            std::uint64_t fewest = copies;
            for (std::uint64_t chunk = 0; chunk < count; ++chunk) {
                std::uint64_t left = 0;
                for (std::uint64_t copy = 0; copy < copies; ++copy) {
                    const std::uint64_t slot = (chunk * NearCopiesOf(array) + copy) % count;
                    left += filled[static_cast<std::size_t>(slot)] ? 1U : 0U;
                }
                fewest = std::min(fewest, left);
            }
            return fewest;
        }
        default:
            return missing == 0 ? 1 : 0;
    }
}

// ---- Places of activities ----

HX_U16 Percent(std::uint64_t done, std::uint64_t total) {
    if (total == 0) return 0;
    constexpr std::uint64_t kMost = UINT64_MAX / 100;
    if (done > kMost) return 100;
    return static_cast<HX_U16>(std::min<std::uint64_t>(done * 100 / total, 100));
}

std::uint64_t ComponentSectors(const Array& array) {
    return array.component_kib.value_or(0) / 512 * 1024 + array.component_kib.value_or(0) % 512 * 2;
}

// The progress of the member that is filled least; none when no member is being filled.
Number LeastFilled(const Array& array) {
    Number least;
    for (const Member& member : array.members) {
        if (!IsFilling(member)) continue;
        const std::uint64_t place = member.recovery_start.value_or(0);
        least = std::min(least.value_or(UINT64_MAX), place);
    }
    return least;
}

bool IsCopyback(const Array& array) {
    return std::ranges::any_of(array.members, [](const Member& member) {
        return member.state && member.state->replacement && !member.state->in_sync;
    });
}

ActivityCode Filling(const Array& array) {
    return IsCopyback(array) ? ActivityKind::kCopyback : ActivityKind::kRebuild;
}

// The activity that was paused, recognised by the progress attribute that is not at its end.
Activity Frozen(const Array& array) {
    Activity activity;
    activity.state = ActivityState::kPaused;
    if (const Number place = LeastFilled(array)) {
        activity.kind = Filling(array);
        activity.percent = Percent(*place, ComponentSectors(array));
    } else if (array.reshape_position) {
        activity.kind = ActivityKind::kMigration;
        activity.percent = Percent(*array.reshape_position, array.sectors.value_or(0));
    } else if (array.resync_start) {
        activity.kind = ActivityKind::kFix;
        activity.percent = Percent(*array.resync_start, ComponentSectors(array));
    } else {
        return {};
    }
    return activity;
}

bool IsCheckOrRepair(const std::optional<SyncAction>& action) {
    return action == SyncAction::kCheck || action == SyncAction::kRepair;
}

// A check is paused by stopping it and keeping its place in sync_min.
Activity PausedCheck(const Array& array) {
    const bool copies = array.level == NumberOf(Level::kRaid10);
    const std::uint64_t total = copies ? array.sectors.value_or(0) : ComponentSectors(array);
    const auto kind =
        array.paused == SyncAction::kCheck ? ActivityKind::kCheck : ActivityKind::kFix;
    return {kind, ActivityState::kPaused, Percent(array.sync_min.value_or(0), total)};
}

ActivityCode KindOf(const Array& array) {
    switch (array.action.value_or(SyncAction::kIdle)) {
        case SyncAction::kRecover:
            // MD looks for a spare after a failure, and says so for a moment where there is none.
            if (!LeastFilled(array) && FilledCount(array) < SlotCount(array)) break;
            return Filling(array);
        case SyncAction::kResync:
        case SyncAction::kRepair:
            return ActivityKind::kFix;
        case SyncAction::kCheck:
            return ActivityKind::kCheck;
        case SyncAction::kReshape:
            return ActivityKind::kMigration;
        case SyncAction::kFrozen:
        case SyncAction::kIdle:
        case SyncAction::kUnknown:
            break;
    }
    return ActivityKind::kNone;
}

// ---- Disks ----

bool IsOnline(const Disk& disk) {
    if (!disk.present) return false;
    const std::string state = disk.state.value_or("running");
    return state == "running" || state == "live";
}

// Whether the disk may hold something. A disk that udev has not examined does not count as free.
bool IsOccupied(const Disk& disk) {
    return !disk.content.known || disk.content.anything || !disk.partitions.empty() || disk.held ||
           disk.twice || disk.read_only.value_or(0) != 0;
}

template <class Bit>
void Add(Role& role, Bit bit) {
    role.bits = static_cast<HX_U8>(role.bits | hxcodes::NumberOf(bit));
}

// Adds the disk's role as this member of this array.
void Serve(Role& role, const Disk& disk, const Array& array, const Member& member) {
    if (role.serves == kNoId) role.serves = array.id;
    if (IsSpare(array, member)) {
        Add(role, DiskBit::kGroupSpare);
        return;
    }
    Add(role, DiskBit::kConfigured);
    if (IsFilling(member) && IsRunning(array)) Add(role, DiskBit::kRebuilding);
    role.failed = role.failed || (disk.present && member.state && member.state->faulty);
}

}  // namespace

std::size_t SlotCount(const Array& array) {
    if (!array.disks) return 0;
    return static_cast<std::size_t>(
        std::min(std::max(array.disks->now, array.disks->before), kMostSlots));
}

bool HasContent(const Member& member) {
    return member.present && member.state && member.state->in_sync && !member.state->faulty;
}

bool IsFilling(const Member& member) {
    return member.present && member.state && member.slot && !member.state->in_sync &&
           !member.state->faulty;
}

// Only of a running array: in an incomplete one every member reports "spare".
bool IsSpare(const Array& array, const Member& member) {
    return IsRunning(array) && member.present && member.state && member.state->spare &&
           !member.state->faulty && !member.slot;
}

Number LevelOf(const Array& array) {
    if (array.level != NumberOf(Level::kRaid10)) return array.level;
    const bool odd = SlotCount(array) % 2 != 0;
    return odd && CopiesOf(array) == 2 && NearCopiesOf(array) == 2 ? kRaid1e : *array.level;
}

HX_U8 ParityDisks(const Array& array) {
    switch (array.level.value_or(NumberOf(Level::kRaid0))) {
        case kRaid4:
        case NumberOf(Level::kRaid5):
            return 1;
        case NumberOf(Level::kRaid6):
            return 2;
        default:
            return 0;
    }
}

std::size_t FilledCount(const Array& array) {
    return static_cast<std::size_t>(std::ranges::count(FilledSlots(array), true));
}

bool SurvivesLossOf(const Array& array, const Member& member) {
    if (!IsRunning(array) || array.level == NumberOf(Level::kRaid0)) return false;
    if (!HasContent(member) || !member.slot) return true;
    // Before the first synchronisation has ended there is no redundancy.
    if (array.resync_start) return false;
    std::vector<bool> filled = FilledSlots(array);
    if (*member.slot >= filled.size()) return true;
    filled[static_cast<std::size_t>(*member.slot)] = false;
    return FewestLeft(array, filled) > 0;
}

StateCode StateOf(const Array& array) {
    if (!IsRunning(array)) return State::kOffline;
    const std::vector<bool> filled = FilledSlots(array);
    if (filled.empty()) return State::kOffline;
    const bool complete = std::ranges::find(filled, false) == filled.end();
    if (complete) return State::kOptimal;
    const std::uint64_t left = FewestLeft(array, filled);
    if (left == 0) return State::kOffline;
    // Until the first synchronisation has ended there is no redundancy.
    if (left == 1 || array.resync_start) return State::kDegraded;
    return State::kPartiallyOptimal;
}

StateCode StateOf(const Member& member) {
    if (!member.present || !member.state || member.state->faulty) return State::kOffline;
    if (!member.state->in_sync) return State::kRebuilding;
    return member.state->want_replacement ? State::kDegraded : State::kOptimal;
}

Activity ActivityOf(const Array& array) {
    if (!IsRunning(array)) return {};
    if (array.action == SyncAction::kFrozen) return Frozen(array);
    Activity activity;
    activity.kind = KindOf(array);
    if (array.action == SyncAction::kIdle && IsCheckOrRepair(array.paused))
        return PausedCheck(array);
    if (activity.kind == ActivityKind::kNone) {
        if (array.state != ArrayState::kReadAuto || !array.resync_start) return {};
        activity.kind = ActivityKind::kFix;
        activity.state = ActivityState::kAutoPaused;
        activity.percent = Percent(*array.resync_start, ComponentSectors(array));
        return activity;
    }
    const Completed completed = array.completed.value_or(Completed{});
    activity.state = completed.delayed ? ActivityState::kAutoPaused : ActivityState::kRunning;
    activity.percent = Percent(completed.done, completed.total);
    return activity;
}

Role RoleOf(const Machine& machine, const Disk& disk, bool global_spare) {
    Role role;
    for (const Array& array : machine.arrays) {
        for (const Member& member : array.members) {
            if (member.disk == disk.id && disk.id != kNoId) Serve(role, disk, array, member);
        }
    }
    if (role.failed) Add(role, DiskBit::kFailed);
    Add(role, IsOnline(disk) ? DiskBit::kOnline : DiskBit::kUnavailable);
    const bool occupied = !disk.present || IsOccupied(disk);
    if (global_spare) {
        Add(role, DiskBit::kGlobalSpare);
    } else if (role.serves == kNoId && occupied) {
        Add(role, DiskBit::kConfigured);
    }
    return role;
}

}  // namespace hxmd

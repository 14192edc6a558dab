// The comparison of two looks, and the queue of events.
#include "rules/hxmd_changes.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "codes/disk.h"
#include "rules/hxmd_state.h"

namespace hxmd {
namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::EventKind;
using hxcodes::NumberOf;
using hxcodes::State;
using hxcodes::Step;

// The capacity of MD's bad-block log of one member, and the number of rows that is reported as
// nearly full.
constexpr std::uint64_t kLogRows = 512;
constexpr std::uint64_t kLogNearlyFull = kLogRows * 8 / 10;

// Corrected errors are reported again at this count and at each doubling.
constexpr std::uint64_t kManyErrors = 20;

constexpr HX_U16 kProgressSteps[] = {80, 60, 40, 20};  // percent

using Happenings = std::vector<Happening>;

template <class Rows>
auto Find(const Rows& rows, HX_U16 id) -> decltype(rows.data()) {
    const auto found = std::ranges::find_if(rows, [&](const auto& row) { return row.id == id; });
    return found == rows.end() ? nullptr : &*found;
}

void Tell(Happenings& told, EventKind kind, HX_U16 device, HX_U32 value = 0) {
    told.push_back({kind, device, {value, 0, 0, 0}});
}

// ---- The picture ----

HX_U8 WriteCache(const Disk& disk) {
    if (!disk.write_cache) return 0;
    return *disk.write_cache == "write back" ? 2 : 1;
}

SeenDisk PictureOf(const Machine& machine, const Kept& kept, HX_U16 id) {
    SeenDisk seen;
    seen.id = id;
    const Disk* const disk = Find(machine.disks, id);
    const bool spare = std::ranges::find(kept.spares, id, &KeptSpare::disk) != kept.spares.end();
    if (disk != nullptr) {
        const Role role = RoleOf(machine, *disk, spare);
        constexpr auto kSpareBits = static_cast<HX_U8>(NumberOf(hxcodes::DiskBit::kGlobalSpare) |
                                                       NumberOf(hxcodes::DiskBit::kGroupSpare));
        seen.present = disk->present ? 1 : 0;
        seen.failed = role.failed ? 1 : 0;
        seen.spare = (role.bits & kSpareBits) != 0 ? 1 : 0;
        seen.serves = role.serves;
        seen.write_cache = WriteCache(*disk);
    }
    const auto smart = std::ranges::find(kept.smart, id, &KeptSmart::disk);
    seen.smart_failed = smart != kept.smart.end() && smart->passed == 0 ? 1 : 0;
    for (const Array& array : machine.arrays) {
        for (const Member& member : array.members) {
            if (member.disk != id) continue;
            seen.errors += member.errors.value_or(0);
            seen.bad_blocks += member.bad_blocks.value_or(0) + member.unacknowledged.value_or(0);
        }
    }
    return seen;
}

SeenArray PictureOf(const Array& array) {
    SeenArray seen;
    const Activity activity = ActivityOf(array);
    seen.id = array.id;
    seen.present = 1;
    seen.state = NumberOf(StateOf(array));
    seen.activity = NumberOf(activity.kind);
    seen.activity_state = NumberOf(activity.state);
    seen.percent = activity.percent;
    seen.in_sync = !array.resync_start && !array.reshape_position ? 1 : 0;
    seen.at_start = array.sync_min.value_or(0) == 0 ? 1 : 0;
    seen.last_action = static_cast<HX_U8>(array.last_action.value_or(SyncAction::kUnknown));
    seen.read_ahead = array.read_ahead_kib.value_or(0) != 0 ? 1 : 0;
    seen.mismatches = array.mismatches.value_or(0);
    return seen;
}

// ---- Disks ----

bool IsCopyback(const Seen& seen, HX_U16 array) {
    const SeenArray* const row = Find(seen.arrays, array);
    return row != nullptr && row->activity == NumberOf(ActivityKind::kCopyback);
}

void CompareErrors(const SeenDisk& before, const SeenDisk& now, Happenings& told) {
    if (now.errors > before.errors) {
        Tell(told, EventKind::kDiskErrorFixed, now.id);
        std::uint64_t many = kManyErrors;
        while (many <= before.errors && many < UINT64_MAX / 2) many *= 2;
        if (now.errors >= many) Tell(told, EventKind::kDiskReadWriteError, now.id);
    }
    const auto reached = [&](std::uint64_t rows) {
        return before.bad_blocks < rows && now.bad_blocks >= rows;
    };
    if (reached(kLogNearlyFull)) Tell(told, EventKind::kRemapTable80Full, now.id);
    if (reached(kLogRows)) Tell(told, EventKind::kRemapTableFull, now.id);
}

void Compare(const Seen& all_before, const SeenDisk& before, const SeenDisk& now, Since since,
             Happenings& told) {
    if (before.present != 0 && now.present == 0) {
        Tell(told,
             since == Since::kReboot ? EventKind::kDiskMissingAtBoot : EventKind::kDiskOffline,
             now.id);
    }
    if (before.present == 0 && now.present != 0) Tell(told, EventKind::kDiskOnline, now.id);
    // After a copyback MD marks the old disk as faulty although it has not failed.
    if (before.failed == 0 && now.failed != 0 && !IsCopyback(all_before, now.serves)) {
        Tell(told, EventKind::kDiskSetDown, now.id);
    }
    CompareErrors(before, now, told);
    if (before.smart_failed == 0 && now.smart_failed != 0) {
        Tell(told, EventKind::kSmartThresholdOver, now.id);
    }
    if (before.write_cache != 0 && now.write_cache != 0 && before.write_cache != now.write_cache) {
        Tell(told, EventKind::kDiskCacheModeChanged, now.id);
    }
}

// ---- Arrays ----

/// A state that no code stands for is told as the worst one.
EventKind KindOfState(HX_U8 number) {
    switch (hxcodes::ToCode<State>(number).value_or(State::kOffline)) {
        case State::kOptimal:
            return EventKind::kVirtualDiskOnline;
        case State::kPartiallyOptimal:
            return EventKind::kVirtualDiskPartiallyOptimal;
        case State::kDegraded:
            return EventKind::kVirtualDiskDegraded;
        case State::kRebuilding:  // a block's state, never an array's
        case State::kForeign:     // not running
        case State::kOffline:
            break;
    }
    return EventKind::kVirtualDiskOffline;
}

bool IsOptimal(const SeenArray& array) { return array.state == NumberOf(State::kOptimal); }
bool Runs(const SeenArray& array) { return array.activity != NumberOf(ActivityKind::kNone); }

void TellStep(Happenings& told, HX_U8 activity, Step step, HX_U16 array, HX_U32 value = 0) {
    const auto kind = hxcodes::EventOf(static_cast<ActivityCode>(activity), step);
    if (kind) Tell(told, *kind, array, value);
}

bool IsCheckOrFix(HX_U8 activity) {
    return activity == NumberOf(ActivityKind::kCheck) || activity == NumberOf(ActivityKind::kFix);
}

// Whether the content of a place has moved to another disk.
bool HasOtherDisk(const Seen& before, const Seen& now, HX_U16 array) {
    return std::ranges::any_of(now.slots, [&](const SeenSlot& slot) {
        if (slot.array != array) return false;
        const auto same = std::ranges::find_if(before.slots, [&](const SeenSlot& each) {
            return each.array == array && each.slot == slot.slot;
        });
        return same == before.slots.end() || same->disk != slot.disk;
    });
}

Step EndOf(const SeenArray& before, const SeenArray& now) {
    const bool fills = before.activity == NumberOf(ActivityKind::kRebuild) ||
                       before.activity == NumberOf(ActivityKind::kCopyback);
    const bool at_end =
        fills ? IsOptimal(now) || now.state < before.state : now.in_sync != 0 && now.at_start != 0;
    // The array's state got worse: it has lost a disk meanwhile.
    if (now.state > before.state) return Step::kError;
    return at_end ? Step::kComplete : Step::kAbort;
}

void TellMismatches(Happenings& told, HX_U8 activity, const SeenArray& now) {
    if (now.mismatches == 0) return;
    const bool fixed = activity == NumberOf(ActivityKind::kFix);
    const auto count = static_cast<HX_U32>(std::min<std::uint64_t>(now.mismatches, UINT32_MAX));
    Tell(told, fixed ? EventKind::kErrorsFixed : EventKind::kErrorsFound, now.id,
         fixed ? 0 : count);
}

struct Transition {
    ActivityStateCode from;
    ActivityStateCode to;
    Step step;
};
constexpr Transition kTransitions[] = {
    {ActivityState::kRunning, ActivityState::kPaused, Step::kPause},
    {ActivityState::kAutoPaused, ActivityState::kPaused, Step::kPause},
    {ActivityState::kPaused, ActivityState::kRunning, Step::kResume},
    {ActivityState::kPaused, ActivityState::kAutoPaused, Step::kAutoPaused},
    {ActivityState::kRunning, ActivityState::kAutoPaused, Step::kAutoPaused},
    {ActivityState::kAutoPaused, ActivityState::kRunning, Step::kAutoResume},
};

void CompareRunning(const SeenArray& before, const SeenArray& now, Happenings& told) {
    for (const Transition& each : kTransitions) {
        if (before.activity_state == NumberOf(each.from) &&
            now.activity_state == NumberOf(each.to)) {
            TellStep(told, now.activity, each.step, now.id);
        }
    }
    for (const HX_U16 percent : kProgressSteps) {
        if (before.percent >= percent || now.percent < percent) continue;
        TellStep(told, now.activity, Step::kProgress, now.id, percent);
        break;
    }
}

// Reports activities that started and ended between two looks, as far as their results show them.
void TellUnseen(const SeenArray& before, const SeenArray& now, bool other_disk, Happenings& told) {
    if (other_disk) {
        constexpr HX_U8 kRebuild = NumberOf(ActivityKind::kRebuild);
        if (IsOptimal(before)) Tell(told, EventKind::kVirtualDiskDegraded, now.id);
        TellStep(told, kRebuild, Step::kStart, now.id);
        TellStep(told, kRebuild, Step::kComplete, now.id);
        if (IsOptimal(before)) Tell(told, EventKind::kVirtualDiskOnline, now.id);
        return;
    }
    if (before.last_action == now.last_action && before.mismatches == now.mismatches) return;
    const bool check = now.last_action == static_cast<HX_U8>(SyncAction::kCheck);
    const bool repair = now.last_action == static_cast<HX_U8>(SyncAction::kRepair);
    if (!check && !repair) return;
    const HX_U8 activity = NumberOf(check ? ActivityKind::kCheck : ActivityKind::kFix);
    TellStep(told, activity, Step::kStart, now.id);
    TellStep(told, activity, now.at_start != 0 ? Step::kComplete : Step::kAbort, now.id);
    TellMismatches(told, activity, now);
}

void CompareActivity(const SeenArray& before, const SeenArray& now, Happenings& told) {
    if (before.activity == now.activity) {
        if (Runs(now)) CompareRunning(before, now, told);
        return;
    }
    if (Runs(before)) {
        const Step end = EndOf(before, now);
        TellStep(told, before.activity, end, now.id);
        if (end == Step::kComplete && IsCheckOrFix(before.activity)) {
            TellMismatches(told, before.activity, now);
        }
    }
    if (Runs(now)) TellStep(told, now.activity, Step::kStart, now.id);
}

// A better state is reported after the activity's end that caused it, a worse state before the
// start of the rebuild that it caused.
void Compare(const SeenArray& before, const SeenArray& now, bool other_disk, Since since,
             Happenings& told) {
    if (now.present == 0) {
        if (before.present == 0) return;
        Tell(told,
             since == Since::kReboot ? EventKind::kVirtualDiskMissingAtBoot
                                     : EventKind::kVirtualDiskOffline,
             now.id);
        return;
    }
    const bool better = now.state < before.state;
    const bool worse = now.state > before.state;
    if (worse && since == Since::kReboot) Tell(told, EventKind::kVirtualDiskMissesDisks, now.id);
    if (worse) Tell(told, KindOfState(now.state), now.id);
    if (Runs(before) || Runs(now)) {
        CompareActivity(before, now, told);
    } else if (before.present != 0) {
        TellUnseen(before, now, other_disk && IsOptimal(now), told);
    }
    if (better) Tell(told, KindOfState(now.state), now.id);
    if (before.present != 0 && before.read_ahead != now.read_ahead) {
        Tell(told, EventKind::kCacheModeChanged, now.id);
    }
}

void TellNewArray(const SeenArray& now, Happenings& told) {
    Tell(told, EventKind::kVirtualDiskCreated, now.id);
    if (!IsOptimal(now)) Tell(told, KindOfState(now.state), now.id);
    if (Runs(now)) TellStep(told, now.activity, Step::kStart, now.id);
}

// ---- The queue ----

Event EventOf(const Happening& happening, std::int64_t now, std::uint64_t number) {
    Event event{};
    event.Class = hxcodes::ClassOf(happening.kind);
    event.Code = hxcodes::CodeOf(happening.kind);
    event.Severity = NumberOf(hxcodes::SeverityOf(happening.kind));
    event.TimeStamp = static_cast<HX_U32>(std::clamp<std::int64_t>(now, 0, UINT32_MAX));
    event.DeviceID = happening.device;
    event.SequenceNo = static_cast<HX_U32>(number);
    std::ranges::copy(happening.params, event.Params);
    return event;
}

Event Unpack(const QueuedEvent& queued) {
    Event event{};
    std::memcpy(&event, queued.bytes.data(), std::min(queued.bytes.size(), sizeof event));
    return event;
}

void Pack(QueuedEvent& queued, const Event& event) {
    queued.bytes.assign(reinterpret_cast<const char*>(&event), sizeof event);
}

bool TellsOfLoss(const Event& event) {
    return event.Class == hxcodes::ClassOf(EventKind::kEventError) &&
           event.Code == hxcodes::CodeOf(EventKind::kEventError);
}

// The row that reports lost events takes the place and the number of the last of them.
void MakeRoom(Kept& kept, std::int64_t now) {
    std::vector<QueuedEvent>& queue = kept.events;
    if (queue.size() < kMostEvents) return;
    const Event first = Unpack(queue.front());
    const bool told = TellsOfLoss(first);
    const std::size_t dropped = queue.size() - kMostEvents + 2;  // room for the new event and the
                                                                 // report
    const HX_U32 lost =
        (told ? first.Params[2] : 0) + static_cast<HX_U32>(told ? dropped - 1 : dropped);
    queue.erase(queue.begin(), queue.begin() + static_cast<std::ptrdiff_t>(dropped - 1));
    const Happening loss{EventKind::kEventError, 0, {0, 0, lost, 0}};
    Pack(queue.front(), EventOf(loss, now, queue.front().number));
}

}  // namespace

Seen Picture(const Machine& machine, const Kept& kept) {
    Seen seen;
    for (const KeptDisk& disk : kept.known_disks) {
        seen.disks.push_back(PictureOf(machine, kept, disk.id));
    }
    for (const KeptArray& known : kept.known_arrays) {
        const Array* const array = Find(machine.arrays, known.id);
        if (array == nullptr) {
            seen.arrays.push_back({.id = known.id, .state = NumberOf(State::kOffline)});
            continue;
        }
        seen.arrays.push_back(PictureOf(*array));
        for (const Member& member : array->members) {
            if (!member.slot || !HasContent(member) || member.disk == kNoId) continue;
            const auto slot = static_cast<HX_U16>(std::min<std::uint64_t>(*member.slot, kNoId));
            seen.slots.push_back({array->id, slot, member.disk});
        }
    }
    return seen;
}

std::vector<Happening> Complaints(const Seen& now) {
    Happenings told;
    for (const SeenDisk& disk : now.disks) {
        if (disk.present == 0) Tell(told, EventKind::kDiskOffline, disk.id);
        if (disk.failed != 0) Tell(told, EventKind::kDiskSetDown, disk.id);
        if (disk.smart_failed != 0) Tell(told, EventKind::kSmartThresholdOver, disk.id);
    }
    for (const SeenArray& array : now.arrays) {
        if (!IsOptimal(array)) Tell(told, KindOfState(array.state), array.id);
    }
    return told;
}

std::vector<Happening> Differences(const Seen& before, const Seen& now, Since since) {
    Happenings told;
    for (const SeenDisk& disk : now.disks) {
        const SeenDisk* const old = Find(before.disks, disk.id);
        if (old != nullptr) Compare(before, *old, disk, since, told);
    }
    for (const SeenArray& array : now.arrays) {
        const SeenArray* const old = Find(before.arrays, array.id);
        if (old == nullptr) {
            TellNewArray(array, told);
        } else {
            Compare(*old, array, HasOtherDisk(before, now, array.id), since, told);
        }
    }
    for (const SeenDisk& disk : now.disks) {
        const SeenDisk* const old = Find(before.disks, disk.id);
        const bool was_spare = old != nullptr && old->spare != 0;
        if (was_spare == (disk.spare != 0)) continue;
        Tell(told, was_spare ? EventKind::kSpareRemoved : EventKind::kSpareAssigned, disk.id);
    }
    return told;
}

void Queue(Kept& kept, const Happening& happening, std::int64_t now, std::string_view text) {
    if (kept.look.empty()) kept.look.emplace_back();
    MakeRoom(kept, now);
    QueuedEvent& queued = kept.events.emplace_back();
    queued.number = kept.look[0].next_event++;
    Event event = EventOf(happening, now, queued.number);
    text = text.substr(0, sizeof event.SenseData);
    event.SenseDataLength = static_cast<HX_U8>(text.size());
    std::ranges::copy(text, event.SenseData);
    Pack(queued, event);
}

void QueueDeletion(Kept& kept, HX_U16 array, std::int64_t now) {
    const auto seen = std::ranges::find(kept.arrays, array, &SeenArray::id);
    if (seen == kept.arrays.end() || seen->present == 0) return;
    seen->present = 0;
    Queue(kept, {EventKind::kVirtualDiskDeleted, array}, now);
}

HX_U8 Take(Kept& kept, HX_U8 max, Event* events) {
    const auto count = static_cast<HX_U8>(std::min<std::size_t>(kept.events.size(), max));
    for (HX_U8 i = 0; i < count; ++i) events[i] = Unpack(kept.events[i]);
    kept.events.erase(kept.events.begin(), kept.events.begin() + count);
    return count;
}

}  // namespace hxmd

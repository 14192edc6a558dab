// The machine brought up to now: whatever was due happens, in the order of its time.
#include <algorithm>
#include <optional>
#include <tuple>

#include "model/hxsim_redundancy.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_battery.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_migration.h"
#include "rules/hxsim_remap.h"
#include "rules/hxsim_repair.h"

namespace hxsim {
namespace {

constexpr HX_U8 kProgressStep = 20;  // percent between two progress events

// Sectors after which the activity next has something to tell.
Sectors NextMark(const Activity& activity) {
    const unsigned percent = activity.announced + kProgressStep;
    if (percent >= 100) return activity.total;
    // Split, so that no product leaves 64 bits.
    return activity.total / 100 * percent + (activity.total % 100 * percent + 99) / 100;
}

Time NextTransitionOf(const Activity& activity) {
    if (activity.state != HXSIM_ACTIVITY_RUNNING) return kNever;
    const Sectors mark = NextMark(activity);
    if (mark <= activity.done) return activity.since;
    const Sectors left = mark - activity.done;
    const std::uint64_t speed = std::max<std::uint64_t>(activity.speed, 1);
    const std::uint64_t seconds = left / speed;
    if (seconds > static_cast<std::uint64_t>(kNever - activity.since) / 1000 - 1) return kNever;
    const std::uint64_t rest = (left % speed * 1000 + speed - 1) / speed;
    return activity.since + static_cast<Time>(seconds * 1000 + rest);
}

// What happens next: of two at the same time, what stands first here.
struct Due {
    Time at = kNever;
    std::size_t adapter = 0;
    bool battery = false;
    HX_U16 activity = 0;

    friend bool operator<(const Due& a, const Due& b) {
        return std::tie(a.at, a.adapter, a.battery, a.activity) <
               std::tie(b.at, b.adapter, b.battery, b.activity);
    }
};

Due NextDue(const Machine& machine) {
    Due next;
    for (std::size_t i = 0; i < machine.adapters.size(); ++i) {
        const Adapter& adapter = machine.adapters[i];
        for (const Activity& each : adapter.activities) {
            next = std::min(next, Due{NextTransitionOf(each), i, false, each.id});
        }
        for (const Battery& each : adapter.batteries) {
            next = std::min(next, Due{NextTransition(each), i, true, 0});
        }
    }
    return next;
}

// ---- What completion brings about ----

void FinishInitialisation(Adapter& adapter, HX_U16 id) {
    VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr) return;
    virtual_disk->initialised = true;
    virtual_disk->errors = 0;
}

// Every sector of the virtual disk has been read.
void MeetDamage(Adapter& adapter, Time now, HX_U16 virtual_disk) {
    for (const Block& block : adapter.blocks) {
        if (block.virtual_disk == virtual_disk && !block.target) {
            RemapDamage(adapter, now, block.disk, block.start, block.sectors);
        }
    }
}

void FinishCheck(Adapter& adapter, Time now, HX_U16 id) {
    MeetDamage(adapter, now, id);
    const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr || virtual_disk->errors == 0) return;
    Queue(adapter, now, kErrorsFound, id, {virtual_disk->errors});
}

void FinishFix(Adapter& adapter, Time now, HX_U16 id) {
    MeetDamage(adapter, now, id);
    VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr || virtual_disk->errors == 0) return;
    Queue(adapter, now, kErrorsFixed, id, {virtual_disk->errors});
    virtual_disk->errors = 0;
}

// A scrub tells of damage and leaves it as it is.
void FinishScrub(Adapter& adapter, Time now, HX_U16 disk) {
    const Remap* first = nullptr;
    HX_U32 count = 0;
    for (const Remap& each : adapter.remaps) {
        if (each.disk != disk || each.reason != kNotRemapped) continue;
        if (first == nullptr) first = &each;
        ++count;
    }
    if (first == nullptr) return;
    const auto high = static_cast<HX_U32>(first->lba >> 32);
    Queue(adapter, now, kScrubError, disk, {count, high, static_cast<HX_U32>(first->lba)});
}

void TakeEffect(Adapter& adapter, Time now, const Activity& activity) {
    switch (activity.kind) {
        case HXSIM_ACTIVITY_CHECK:
            return FinishCheck(adapter, now, activity.owner);
        case HXSIM_ACTIVITY_FIX:
            return FinishFix(adapter, now, activity.owner);
        case HXSIM_ACTIVITY_INIT_QUICK:
        case HXSIM_ACTIVITY_INIT_BACK:
        case HXSIM_ACTIVITY_INIT_FORE:
            return FinishInitialisation(adapter, activity.owner);
        case HXSIM_ACTIVITY_REBUILD:
            return FinishRebuild(adapter, now, activity.owner);
        case HXSIM_ACTIVITY_MIGRATION:
            return CompleteMigration(adapter, activity);
        case HXSIM_ACTIVITY_COPYBACK:
            return FinishCopyback(adapter, activity);
        case HXSIM_ACTIVITY_MEDIA_PATROL:
            RemapDamage(adapter, now, activity.owner, 0, UINT64_MAX);
            return;
        case HXSIM_ACTIVITY_DATA_SCRUB:
            return FinishScrub(adapter, now, activity.owner);
        default:
            return;
    }
}

// Lets an activity announce its progress, or come to its end.
void TakeStep(Adapter& adapter, Time now, HX_U16 id) {
    Activity* const activity = Find(adapter.activities, id);
    if (NextMark(*activity) < activity->total) {
        activity->announced = static_cast<HX_U8>(activity->announced + kProgressStep);
        Announce(adapter, now, *activity, Step::kProgress, activity->announced);
        return;
    }
    const Activity complete = *activity;
    adapter.activities.erase(adapter.activities.begin() + (activity - adapter.activities.data()));
    TakeEffect(adapter, now, complete);
    Announce(adapter, now, complete, Step::kComplete);
}

}  // namespace

Time NextTransition(const Machine& machine) { return NextDue(machine).at; }

void Advance(Machine& machine, Time now) {
    for (Due due = NextDue(machine); due.at <= now && due.at != kNever; due = NextDue(machine)) {
        Adapter& adapter = machine.adapters[due.adapter];
        if (due.battery) {
            AdvanceBattery(adapter, due.at);
        } else {
            TakeStep(adapter, due.at, due.activity);
        }
        Settle(adapter, due.at);
    }
}

}  // namespace hxsim

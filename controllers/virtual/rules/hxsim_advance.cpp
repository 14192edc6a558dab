// Brings the machine up to now: performs the transitions that are due, in order of time.
#include "rules/hxsim_advance.h"

#include <algorithm>
#include <cstddef>
#include <tuple>

#include "model/hxsim_codes.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_activity_end.h"
#include "rules/hxsim_battery.h"
#include "rules/hxsim_settle.h"

namespace hxsim {
namespace {

constexpr HX_U8 kProgressStep = 20;  // percent between two progress events

// The number of done sectors at which the activity's next event is due.
Sectors NextMark(const Activity& activity) {
    const unsigned percent = activity.announced + kProgressStep;
    if (percent >= 100) return activity.total;
    // Split, so that no product overflows 64 bits.
    return activity.total / 100 * percent + (activity.total % 100 * percent + 99) / 100;
}

Time NextTransitionOf(const Activity& activity) {
    if (activity.state != ActivityState::kRunning) return kNever;
    const Sectors mark = NextMark(activity);
    if (mark <= activity.done) return activity.since;
    const Sectors left = mark - activity.done;
    const std::uint64_t speed = std::max<std::uint64_t>(activity.speed, 1);
    const std::uint64_t seconds = left / speed;
    if (seconds > static_cast<std::uint64_t>(kNever - activity.since) / 1000 - 1) return kNever;
    const std::uint64_t rest = (left % speed * 1000 + speed - 1) / speed;
    return activity.since + static_cast<Time>(seconds * 1000 + rest);
}

// The next transition. Of two at the same time the lower in the order of the members comes first.
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

// Announces an activity's progress, or completes it.
void TakeStep(Adapter& adapter, Time now, HX_U16 id) {
    Activity* const activity = Find(adapter.activities, id);
    if (NextMark(*activity) < activity->total) {
        activity->announced = static_cast<HX_U8>(activity->announced + kProgressStep);
        Announce(adapter, now, *activity, Step::kProgress, activity->announced);
        return;
    }
    Complete(adapter, now, id);
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

#include "model/timeline.h"

#include <algorithm>
#include <iterator>

#include "codes/activity.h"
#include "codes/event.h"

namespace vexorctl {

namespace {

using hxcodes::EventKind;
using hxcodes::Step;

// What begins and ends the states of an object that is not well. A kind that is empty ends them.
struct StateRow {
    EventKind event;
    std::string_view kind;
};
constexpr StateRow kStates[] = {
    {EventKind::kVirtualDiskOffline, "offline"},
    {EventKind::kVirtualDiskOnline, ""},
    {EventKind::kVirtualDiskDegraded, "degraded"},
    {EventKind::kVirtualDiskPartiallyOptimal, "partially_optimal"},
    {EventKind::kDiskOffline, "missing"},
    {EventKind::kDiskOnline, ""},
    {EventKind::kDiskSetDown, "failed"},
    {EventKind::kDiskSetFree, ""},
};

constexpr std::string_view kNotOptimal = "not_optimal";  // in which way is not stored
constexpr std::string_view kEventsLost = "events_lost";
constexpr std::string_view kCheckKind =
    hxcodes::NameOf(hxcodes::kActivityNames, hxcodes::NumberOf(hxcodes::ActivityKind::kCheck));
constexpr std::string_view kRebuildKind =
    hxcodes::NameOf(hxcodes::kActivityNames, hxcodes::NumberOf(hxcodes::ActivityKind::kRebuild));

void Close(Period& period, const Happening& event, PeriodEnd how) {
    period.end = event.time;
    period.last_event = event.number;
    period.how = how;
}

// The first progress after a pause begins a stretch: how far it was at the pause is not told.
void TakeProgress(Period& period, const Mark& mark) {
    if (!period.stretch) {
        period.stretch = mark;
        return;
    }
    period.from = period.stretch;
    period.to = mark;
}

bool IsOpen(const Period& period) { return period.how == PeriodEnd::kOpen; }

}  // namespace

std::vector<std::string_view> PeriodKinds() {
    std::vector<std::string_view> kinds;
    for (const hxcodes::ActivityRow& row : hxcodes::kActivities) {
        if (row.events) kinds.push_back(row.name);
    }
    for (const StateRow& row : kStates) {
        if (!row.kind.empty()) kinds.push_back(row.kind);
    }
    kinds.insert(kinds.end(), {kNotOptimal, kEventsLost});
    return kinds;
}

std::optional<double> PercentPerSecond(const Period& period) {
    if (!period.from || !period.to) return std::nullopt;
    if (period.to->time <= period.from->time || period.to->percent <= period.from->percent) {
        return std::nullopt;
    }
    return static_cast<double>(period.to->percent - period.from->percent) /
           static_cast<double>(period.to->time - period.from->time);
}

Period* Timeline::FindOpen(std::string_view object, std::string_view kind) {
    const auto found = std::ranges::find_if(periods_, [&](const Period& each) {
        return IsOpen(each) && each.object == object && each.kind == kind;
    });
    return found == periods_.end() ? nullptr : &*found;
}

Period& Timeline::Begin(const Happening& event, std::string_view kind, bool is_activity,
                        bool is_start) {
    Period& period = periods_.emplace_back();
    period.object = event.object;
    period.kind = kind;
    period.is_activity = is_activity;
    period.adapter = event.facts.adapter;
    if (is_start) period.start = event.time;
    period.first_event = period.last_event = event.number;
    return period;
}

bool Timeline::CloseAll(const Happening& event, bool activities, PeriodEnd how) {
    bool closed = false;
    for (Period& each : periods_) {
        if (!IsOpen(each) || each.object != event.object) continue;
        if (each.is_activity && !activities) continue;
        Close(each, event, how);
        closed = true;
    }
    return closed;
}

void Timeline::LeaveBehind(std::string_view object, std::string_view kind) {
    for (Period& each : periods_) {
        if (each.object != object || IsOpen(each)) continue;
        each.is_past = each.is_past || kind.empty() || each.kind == kind;
    }
}

void Timeline::TakeStep(const Happening& event, const hxcodes::ActivityRow& activity) {
    const Step step = hxcodes::StepOf(activity, event.facts.kind).code;
    Period* period = FindOpen(event.object, activity.name);
    if (step == Step::kStart && period != nullptr) {
        // When it ended, no event tells.
        period->how = PeriodEnd::kReplaced;
        period = nullptr;
    }
    if (period == nullptr) {
        period = &Begin(event, activity.name, true, step == Step::kStart);
    }
    period->last_event = event.number;
    switch (step) {
        case Step::kStart:
            period->is_paused = false;
            period->stretch = Mark{.time = event.time, .percent = 0};
            break;
        case Step::kRestart:
        case Step::kResume:
        case Step::kAutoResume:
            period->is_paused = false;
            period->stretch.reset();
            break;
        case Step::kPause:
        case Step::kAutoPaused:
            period->is_paused = true;
            period->stretch.reset();
            break;
        case Step::kProgress:
            period->is_paused = false;
            period->percent = event.facts.params[0];
            TakeProgress(*period, {.time = event.time, .percent = event.facts.params[0]});
            break;
        case Step::kAbort:
            Close(*period, event, PeriodEnd::kAborted);
            break;
        case Step::kComplete:
            period->percent = 100;
            Close(*period, event, PeriodEnd::kComplete);
            break;
        case Step::kError:
            Close(*period, event, PeriodEnd::kFailed);
            break;
    }
}

void Timeline::TakeState(const Happening& event, std::string_view kind, bool begins) {
    if (begins && FindOpen(event.object, kind) != nullptr) return;
    const bool closed =
        CloseAll(event, false, begins ? PeriodEnd::kChanged : PeriodEnd::kRecovered);
    if (begins) {
        Begin(event, kind, false, true);
    } else if (!closed && is_cut_ && event.facts.kind == EventKind::kVirtualDiskOnline) {
        // Only what was not optimal is announced to be online.
        Close(Begin(event, kNotOptimal, false, false), event, PeriodEnd::kRecovered);
    }
}

void Timeline::Take(const Happening& event) {
    const EventKind kind = event.facts.kind;
    if (kind == EventKind::kEventError) {
        for (Period& each : periods_) {
            if (!IsOpen(each) || each.adapter != event.facts.adapter) continue;
            each.has_gap = true;
            each.stretch.reset();  // a pause may be among them
        }
        Period& gap = Begin(event, kEventsLost, false, true);
        gap.lost = event.facts.params[2];
        Close(gap, event, PeriodEnd::kLost);
        return;
    }
    if (kind == EventKind::kVirtualDiskDeleted || kind == EventKind::kVirtualDiskCreated) {
        // Another one has the number from here on.
        CloseAll(event, true, PeriodEnd::kDeleted);
        LeaveBehind(event.object, {});
        return;
    }
    // A disk comes online as another one in the place of a lost one.
    if (kind == EventKind::kDiskOnline) LeaveBehind(event.object, {});
    if (kind == EventKind::kVirtualDiskOnline) LeaveBehind(event.object, kRebuildKind);
    if (const hxcodes::ActivityRow* const activity = hxcodes::ActivityOf(kind)) {
        TakeStep(event, *activity);
        return;
    }
    if (kind == EventKind::kErrorsFound) {
        Period* const check = FindOpen(event.object, kCheckKind);
        if (check != nullptr) check->errors = event.facts.params[0];
        return;
    }
    const auto* const row = std::ranges::find(kStates, kind, &StateRow::event);
    if (row != std::end(kStates)) TakeState(event, row->kind, !row->kind.empty());
}

std::vector<Period> Timeline::Periods() const { return periods_; }

}  // namespace vexorctl

// What lasted: activities of disks and virtual disks, and the times in which they were not well,
// made of the events that tell of their beginnings and ends.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "codes/event_sentence.h"

namespace vexorctl {

/// How a period has ended.
enum class PeriodEnd {
    kOpen,       // no event tells of its end
    kComplete,   // the activity
    kAborted,    // the activity
    kFailed,     // the activity
    kRecovered,  // the state
    kChanged,    // the state: another one followed
    kDeleted,    // the object is gone
    kReplaced,   // another of its kind began without an event of its end
    kLost,       // no period, but a place where the adapter has lost events
};

/// How far an activity was at an event's time.
struct Mark {
    std::uint64_t time = 0;
    std::uint64_t percent = 0;
};

struct Period {
    std::string object;     // its address
    std::string_view kind;  // "rebuild", "degraded", ...
    bool is_activity = false;
    unsigned adapter = 0;
    std::optional<std::uint64_t>
        start{};  // seconds since 1970; null: before the events that are kept
    std::optional<std::uint64_t> end{};  // null while it is open, and where no event tells it
    std::uint64_t first_event = 0;       // the numbers of the first and last event that tell of it
    std::uint64_t last_event = 0;
    PeriodEnd how = PeriodEnd::kOpen;
    bool is_paused = false;                  // as the last event says
    std::optional<std::uint64_t> percent{};  // the last that was told
    std::optional<std::uint64_t> errors{};   // of a check: how many it has found, when any
    bool has_gap = false;                    // events were lost while it lasted
    // The object has become well since, or another one has its address: the end tells nothing of
    // how it is now.
    bool is_past = false;
    // The first and last point of the latest stretch in which it ran without a pause, where two are
    // known: its speed is measured between them.
    std::optional<Mark> from{}, to{};
    std::optional<Mark> stretch{};  // where the stretch that goes on began
    std::uint64_t lost = 0;         // of kLost: how many
};

/// How fast the activity has gone; null where no two points of one stretch are known.
std::optional<double> PercentPerSecond(const Period& period);

/// One event, as the timeline takes it.
struct Happening {
    std::uint64_t number = 0;
    hxcodes::EventFacts facts;
    std::uint64_t time = 0;
    std::string object;
};

/// Takes the events in the order of their numbers.
class Timeline {
public:
    /// With `is_cut`, there were events before the first one that it takes.
    explicit Timeline(bool is_cut) : is_cut_(is_cut) {}

    void Take(const Happening& event);
    /// In the order of their first events.
    std::vector<Period> Periods() const;

private:
    void TakeStep(const Happening& event, const hxcodes::ActivityRow& activity);
    void TakeState(const Happening& event, std::string_view kind, bool begins);
    Period& Begin(const Happening& event, std::string_view kind, bool is_activity, bool is_start);
    Period* FindOpen(std::string_view object, std::string_view kind);
    bool CloseAll(const Happening& event, bool activities, PeriodEnd how);
    // Marks what ended before; `kind` is the only one meant, or empty.
    void LeaveBehind(std::string_view object, std::string_view kind);

    bool is_cut_;
    std::vector<Period> periods_;
};

/// Every word that Period::kind can be.
std::vector<std::string_view> PeriodKinds();

}  // namespace vexorctl

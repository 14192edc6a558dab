// The core: one look at the machine and what was remembered make what is remembered now, and what
// has to be told. No clock is read and nothing is kept anywhere else.
#pragma once

#include <string>
#include <vector>

#include "conditions/hxc_overview.h"
#include "conditions/hxc_state.h"

namespace hxconditions {

enum class Change : std::uint8_t {
    kRaised,
    kWorse,
    kBetter,
    kCleared,
    kPassed,  // raised and gone between two looks
};
std::string_view NameOf(Change change);

struct Message {
    Change change = Change::kRaised;
    Condition condition;        // as it is, or as it was when it is cleared
    std::optional<Code> was;    // kWorse, kBetter
    std::int64_t lasted_s = 0;  // kCleared, kPassed
    std::string reason;         // kCleared: "replaced", "acknowledged", or empty
};

struct Look {
    State state;
    std::vector<Message> messages;
    Overview overview;
};

/// The state is what the last look has returned, or a new one; the events are those that the
/// service has collected since.
Look LookAt(State state, const Answers& answers, const std::vector<Event>& events, const Now& now,
            const Settings& settings);

/// One look without memory: what is wrong by itself, at once. Rows that need memory or events are
/// not looked at.
Overview LookOnce(const Answers& answers, const Now& now, const Settings& settings);

}  // namespace hxconditions

// The core: computes the new state and the messages from the old state and one look at the machine.
// It reads no clock and keeps no other data.
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
    kPassed,  // started and ended between two looks
};
std::string_view NameOf(Change change);

struct Message {
    Change change = Change::kRaised;
    Condition condition;        // the current one, or the last one when cleared
    std::optional<Code> was;    // kWorse, kBetter
    std::int64_t lasted_s = 0;  // kCleared, kPassed
    std::string reason;         // kCleared: "replaced", "acknowledged", or empty
};

struct Look {
    State state;
    std::vector<Message> messages;
    Overview overview;
};

/// `state` is the result of the last look, or a new one; `events` are those collected since then.
Look LookAt(State state, const Answers& answers, const std::vector<Event>& events, const Now& now,
            const Settings& settings);

/// One look without memory or damping. Rows that need memory or events are skipped. `movement`
/// tells which activities stand still; without it all of them move.
Overview LookOnce(const Answers& answers, const Now& now, const Settings& settings,
                  const Movement* movement = nullptr);

}  // namespace hxconditions

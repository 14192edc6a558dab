// The state of the conditions as text, for the state file.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "conditions/hxc_state.h"
#include "service/hxs_tally.h"

namespace hxservice {

/// The text is no state of this version.
struct StateTextError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Changes with each change of the state's members: a text of another number cannot be read.
inline constexpr int kStateVersion = 2;

std::string StateText(const hxconditions::State& state);

/// Throws StateTextError.
hxconditions::State ParseState(std::string_view text);

std::string EventCountsText(const EventCounts& counts);

/// Throws StateTextError.
EventCounts ParseEventCounts(std::string_view text);

}  // namespace hxservice

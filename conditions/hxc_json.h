// Conditions as JSON: of vexorctl check, of the event service's report, and of what its sinks send.
#pragma once

#include <string>

#include "conditions/hxc_look.h"
#include "conditions/hxc_overview.h"

namespace hxconditions {

/// An object with "overall", "counts" (of conditions), "machine" (counts of things, null where they
/// could not be read) and "conditions", the worst first. Texts that are not UTF-8 get U+FFFD.
std::string OverviewJson(const Overview& overview, const Counts& counts);

/// One condition, with the folded ones in it.
std::string ConditionJson(const Condition& condition);

/// The condition of a message, with "change" and, where they are known, "was" and "lasted_s".
std::string MessageJson(const Message& message);

}  // namespace hxconditions

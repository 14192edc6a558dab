// Conditions as JSON, for vexorctl check, the event service's report and its sinks.
#pragma once

#include <string>

#include "conditions/hxc_look.h"
#include "conditions/hxc_overview.h"

namespace hxconditions {

/// An object with "overall", "counts" (of conditions), "machine" (counts of objects, null when they
/// could not be read) and "conditions", the worst first. Invalid UTF-8 is replaced by U+FFFD.
std::string OverviewJson(const Overview& overview, const Counts& counts);

/// One condition with its folded conditions.
std::string ConditionJson(const Condition& condition);

/// JSON Schema of what OverviewJson and ConditionJson write. The first refers to the second as
/// "#/$defs/condition".
std::string OverviewSchema();
std::string ConditionSchema();

/// The condition of a message, with "change" and, when known, "was" and "lasted_s".
std::string MessageJson(const Message& message);

}  // namespace hxconditions

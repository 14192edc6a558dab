// The file of the event store, looked at for the reason why the library cannot read it: the library
// answers all reasons alike.
#pragma once

#include <optional>
#include <string>

#include "conditions/hxc_answers.h"

namespace vexorctl {

/// Where the library looks for the event file. Throws Unavailable for a broken configuration.
std::string EventStorePath();

/// Whether a file is at that path, readable or not.
bool IsEventStoreThere(const std::string& path);

/// The event store as its file shows it: good, damaged or unreadable, and not looked at where no
/// file is, because the first event makes it. Throws Unavailable for a broken configuration.
hxconditions::Store LookAtEventStore();

/// Why there is no event store at that path, with the cause and what to do; null when there is one.
std::optional<std::string> WhyNoEventStore(const std::string& path);

}  // namespace vexorctl

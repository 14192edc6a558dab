// The file of the event store, looked at for the reason why the library cannot read it: the library
// answers all reasons alike.
#pragma once

#include <optional>
#include <string>

namespace vexorctl {

/// Where the library looks for the event file. Throws Unavailable for a broken configuration.
std::string EventStorePath();

/// Whether a file is at that path, readable or not.
bool IsEventStoreThere(const std::string& path);

/// Why there is no event store at that path, with the cause and what to do; null when there is one.
std::optional<std::string> WhyNoEventStore(const std::string& path);

}  // namespace vexorctl

// What one look at the machine finds, with what the event service has last published besides.
#pragma once

#include <cstdint>
#include <optional>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_overview.h"

namespace vexorctl {

/// The conditions of one look, and of the event store's file. A fresh report of the event service
/// adds those that rest on its memory, on events or on itself, those that this look could not read,
/// and the times, acknowledgements and silences of the others; of adapters, of those that were
/// asked. Without one the look says that nobody watches, or for how long the service has been
/// silent. A report that cannot be read is none.
hxconditions::Overview LookWithService(hxconditions::Answers answers, std::int64_t now);

/// The time of the last report of the event service that watches here; null where none watches. It
/// changes with each round.
std::optional<std::int64_t> LastReportOfService(std::int64_t now);

}  // namespace vexorctl

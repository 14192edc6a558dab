// The steps of scenarios that call the library: for activities, disks and the adapter. For
// creating, migrating and deleting see creation_steps.h.
#pragma once

#include <string_view>

#include "step_values.h"
#include "story.h"

namespace hxsimctl {

/// Whether the word starts a step that calls the library.
bool IsCall(std::string_view word);

/// Parses a step; its first word must satisfy IsCall. Throws UsageError.
Step ParseCall(const Words& words);

}  // namespace hxsimctl

// The steps of scenarios that call the library, as any program does: about activities, disks and
// the adapter. Those that create, migrate and delete stand in creation_steps.h.
#pragma once

#include <string_view>

#include "step_values.h"
#include "story.h"

namespace hxsimctl {

/// Whether a word begins a step that calls the library.
bool IsCall(std::string_view word);

/// The step that the words say; the first of them is such a word. Throws UsageError.
Step ParseCall(const Words& words);

}  // namespace hxsimctl

// The targets of commands that are about whole adapters.
#pragma once

#include "shell/invocation.h"

namespace vexorctl {

/// Selects the adapters that the targets and --adapter name; all of them where there are none.
/// Throws UsageError for a target that is no adapter, Failure with Exit::kNoObject for one that is
/// not there.
void SelectTargets(Invocation& invocation);

}  // namespace vexorctl

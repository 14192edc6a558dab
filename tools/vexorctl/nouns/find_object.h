// From what was typed to the one object that a command works on.
#pragma once

#include "common/address.h"
#include "shell/invocation.h"

namespace vexorctl {

/// The address of the command's target of that kind, which is there. A name or a serial number is
/// looked up. Throws UsageError for an address of another kind or a name that several objects have,
/// Failure with Exit::kNoObject for what is not there.
Address FindTarget(Invocation& invocation, ObjectKind kind, std::size_t which = 0);

/// The same for any typed text.
Address FindObject(Invocation& invocation, ObjectKind kind, const std::string& typed);

/// The adapter that the command works on: the one of --adapter, or the only one there is. Throws
/// UsageError when there are several and none was named.
unsigned FindAdapter(Invocation& invocation);

}  // namespace vexorctl

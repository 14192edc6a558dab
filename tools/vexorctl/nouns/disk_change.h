// vexorctl disk locate, spare, unspare, wipe, set: what is done to a disk.
#pragma once

#include "model/exit_code.h"
#include "shell/invocation.h"

namespace vexorctl::disk_noun {

Exit LocateDisk(Invocation& invocation);
Exit SpareDisk(Invocation& invocation);
Exit UnspareDisk(Invocation& invocation);
Exit WipeDisk(Invocation& invocation);
Exit SetDisk(Invocation& invocation);

}  // namespace vexorctl::disk_noun

// vexorctl vd delete, set, modify, migrate, import: what becomes of a virtual disk that is there.
#pragma once

#include "model/exit_code.h"
#include "shell/invocation.h"

namespace vexorctl::vd_noun {

Exit DeleteVirtualDisk(Invocation& invocation);
Exit ImportVirtualDisk(Invocation& invocation);
Exit SetVirtualDisk(Invocation& invocation);
Exit MigrateVirtualDisk(Invocation& invocation);
Exit ModifyVirtualDisk(Invocation& invocation);

}  // namespace vexorctl::vd_noun

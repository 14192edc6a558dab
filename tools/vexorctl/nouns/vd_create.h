// vexorctl vd create, vd quick-create.
#pragma once

#include "model/exit_code.h"
#include "shell/invocation.h"

namespace vexorctl::vd_noun {

Exit CreateVirtualDisk(Invocation& invocation);
Exit QuickCreate(Invocation& invocation);

}  // namespace vexorctl::vd_noun

// vexorctl vd list, vd show.
#pragma once

#include <vector>

#include "model/exit_code.h"
#include "output/cell.h"
#include "shell/invocation.h"

namespace vexorctl::vd_noun {

std::vector<ColumnInfo> VirtualDiskColumns();
Exit ListVirtualDisks(Invocation& invocation);

}  // namespace vexorctl::vd_noun

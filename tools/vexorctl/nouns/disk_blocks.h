// vexorctl disk blocks, disk remapped: what is on a disk.
#pragma once

#include <vector>

#include "model/exit_code.h"
#include "output/cell.h"
#include "shell/invocation.h"

namespace vexorctl::disk_noun {

std::vector<ColumnInfo> BlockColumns();
Exit ListBlocks(Invocation& invocation);

std::vector<ColumnInfo> RemappedColumns();
Exit ListRemapped(Invocation& invocation);

}  // namespace vexorctl::disk_noun

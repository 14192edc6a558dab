// vexorctl disk list, disk show.
#pragma once

#include <vector>

#include "model/disks.h"
#include "model/exit_code.h"
#include "output/cell.h"
#include "shell/invocation.h"

namespace vexorctl::disk_noun {

/// The virtual disk that the disk serves, as lists show it.
Cell OwnerCell(const Disk& disk);

std::vector<ColumnInfo> DiskColumns();
Exit ListDisks(Invocation& invocation);

}  // namespace vexorctl::disk_noun

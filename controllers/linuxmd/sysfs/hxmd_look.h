// A look at the machine: everything that sysfs tells of disks, arrays and enclosures.
#pragma once

#include <optional>

#include "model/hxmd_machine.h"
#include "sysfs/hxmd_folder.h"

namespace hxmd {

/// Whether the kernel has MD, or can load it.
bool HasMd();

/// Reads the machine below the root prefix. Objects have no IDs yet. None without sysfs.
std::optional<Machine> Look();

}  // namespace hxmd

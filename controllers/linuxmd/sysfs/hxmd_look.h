// A look at the machine: reads disks, arrays and enclosures from sysfs.
#pragma once

#include <optional>
#include <string>

#include "model/hxmd_machine.h"

namespace hxmd {

/// Whether the kernel has MD, or can load it.
bool HasMd();

/// Whether sysfs is mounted.
bool HasDisks();

/// The first line of a file below the root prefix; empty when there is none. `folder` begins with
/// "/".
std::string LineOf(const char* folder, const std::string& file);

/// Reads the machine below the root prefix. Objects have no IDs yet. None without sysfs.
std::optional<Machine> Look();

}  // namespace hxmd

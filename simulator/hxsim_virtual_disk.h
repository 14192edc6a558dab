// The virtual disks of the virtual controller.
#ifndef HXSIM_VIRTUAL_DISK_H
#define HXSIM_VIRTUAL_DISK_H

#include <cstdint>

#include "hxsim_machine.h"

namespace hxsim {

/// Sectors of data.
std::uint64_t SizeOf(const VirtualDisk& virtual_disk);

}  // namespace hxsim

#endif

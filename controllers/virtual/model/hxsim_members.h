// The virtual disks of a disk group.
#pragma once

#include <vector>

#include "model/hxsim_machine.h"

namespace hxsim {

/// The virtual disks that lie on a disk group, in the order of their IDs.
std::vector<const VirtualDisk*> MembersOf(const Adapter& adapter, HX_U16 group);

}  // namespace hxsim

// The virtual disks of a disk group.
#include "model/hxsim_members.h"

namespace hxsim {

std::vector<const VirtualDisk*> MembersOf(const Adapter& adapter, HX_U16 group) {
    std::vector<const VirtualDisk*> members;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group == group) members.push_back(&each);
    }
    return members;
}

}  // namespace hxsim

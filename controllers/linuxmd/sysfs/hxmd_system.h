// Which devices the running system lies on.
#pragma once

#include <set>
#include <string>

namespace hxmd {

struct SystemDevices {
    std::set<std::string> names;  // the kernel's: disks, partitions and what lies between
    bool complete = true;         // false: a file system of the system's could not be followed
};

/// Follows the file systems at /, /boot, /boot/efi, /usr and /var and the swap areas down to their
/// disks.
SystemDevices FindSystem();

}  // namespace hxmd

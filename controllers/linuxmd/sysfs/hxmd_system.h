// The devices that hold the running system.
#pragma once

#include <set>
#include <string>

namespace hxmd {

struct SystemDevices {
    std::set<std::string> names;  // kernel names: disks, partitions and devices between
    bool complete = true;         // false: a system file system could not be traced
};

/// Traces the file systems at /, /boot, /boot/efi, /usr and /var and the swap areas down to their
/// disks.
SystemDevices FindSystem();

/// The same for all mounted file systems. Whatever cannot be traced is left out, because most file
/// systems have no device.
SystemDevices FindUsed();

}  // namespace hxmd

// The virtual disks, with their settings, activities and member disks.
#pragma once

#include <cstdint>
#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/result_tree.h"

namespace vexorctl {

// A record that could not be had is empty: its fields are unknown.
struct VirtualDisk {
    Address address;
    Value info;
    Value config;
    Value status;
    std::vector<std::uint64_t> disks;
};

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<VirtualDisk> LoadVirtualDisks(Controller& controller);

}  // namespace vexorctl

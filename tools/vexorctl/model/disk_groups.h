// The disk groups, with their settings.
#pragma once

#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/result_tree.h"

namespace vexorctl {

// A record that could not be had is empty: its fields are unknown.
struct DiskGroup {
    Address address;
    Value info;
    Value config;
};

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<DiskGroup> LoadDiskGroups(Controller& controller);

}  // namespace vexorctl

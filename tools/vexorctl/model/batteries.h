// The batteries of the adapters' caches.
#pragma once

#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/result_tree.h"

namespace vexorctl {

// A record that could not be had is empty: its fields are unknown.
struct Battery {
    Address address;  // the adapter's
    Value info;
};

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<Battery> LoadBatteries(Controller& controller);

}  // namespace vexorctl

// The enclosures, and their elements with the thresholds.
#pragma once

#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/result_tree.h"

namespace vexorctl {

// A record that could not be had is empty: its fields are unknown.
struct Enclosure {
    Address address;
    Value info;
};

struct Element {
    Address address;
    Value info;
    Value config;
};

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<Enclosure> LoadEnclosures(Controller& controller);
/// The elements of all of them.
std::vector<Element> LoadElements(Controller& controller);

}  // namespace vexorctl

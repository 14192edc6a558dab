// The batteries of the adapters' caches.
#pragma once

#include <string>
#include <vector>

#include "common/address.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/library_record.h"

namespace vexorctl {

struct Battery {
    Address address;  // the adapter's
    Record<fields::BBU_Info> info;
};

/// What sightings call it.
std::string BatteryName(const Address& adapter);

/// Those of the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<Battery> LoadBatteries(Controller& controller);

}  // namespace vexorctl

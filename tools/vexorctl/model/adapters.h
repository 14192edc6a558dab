// The adapters, with their settings.
#pragma once

#include <vector>

#include "common/address.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/library_record.h"

namespace vexorctl {

struct Adapter {
    Address address;
    Record<fields::Adapter_Info> info;
    Record<fields::Adapter_Config_V2> config;
};

/// Those that the controller has selected. What cannot be read is noted as a fault; an adapter
/// whose own record cannot be read is left out.
std::vector<Adapter> LoadAdapters(Controller& controller);

}  // namespace vexorctl

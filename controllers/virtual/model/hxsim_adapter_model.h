// The adapter models that a topology can choose: invented ones, with their factory settings.
#pragma once

#include <string_view>

#include "hxraid.h"

namespace hxsim {

struct AdapterModel {
    std::string_view name;     // as topologies call it
    Adapter_Info info;         // without what differs by adapter: names and numbers
    Adapter_Config_V2 config;  // a rate that cannot be set on the model is fixed at this value
};

/// The model of that name; null when there is none.
const AdapterModel* FindAdapterModel(std::string_view name);

/// The names of the models, worded for an error message.
inline constexpr std::string_view kAdapterModelNames = "\"large\" or \"small\"";

}  // namespace hxsim

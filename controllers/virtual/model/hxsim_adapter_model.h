// The adapters that there are to choose from: invented models, and how they are set when new.
#pragma once

#include <string_view>

#include "hxraid.h"

namespace hxsim {

struct AdapterModel {
    std::string_view name;     // as topologies call it
    Adapter_Info info;         // without what belongs to the single adapter: names and numbers
    Adapter_Config_V2 config;  // a rate that the model does not let be set is what it always is
};

/// The model of that name; null when there is none.
const AdapterModel* FindAdapterModel(std::string_view name);

/// The names, as a sentence lists them.
inline constexpr std::string_view kAdapterModelNames = "\"large\" or \"small\"";

}  // namespace hxsim

// The JSON schema of status.json.
#pragma once

#include <string>

namespace hxservice {

std::string StatusSchema();

}  // namespace hxservice

// A dashboard for Grafana over the service's metrics.
#pragma once

#include <string>

namespace hxservice {

std::string Dashboard();

}  // namespace hxservice

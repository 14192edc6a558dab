// Tries the sinks without the service's loop.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "service/hxs_deliverer.h"
#include "service/hxs_loop.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

struct Trial {
    std::string sink;
    std::string kind;
    std::string error;  // empty: delivered
};

/// Sends a test letter through that sink, or through all when none is named, and tells each result
/// as it comes. A signal that ends the service ends it: what has not ended then has failed. Throws
/// vexortools::Failure when there is no such sink.
void TrySinks(const std::vector<SinkSettings>& sinks, const std::string& only, Deliverer& deliverer,
              Outside& outside, const std::function<void(const Trial&)>& tell);

}  // namespace hxservice

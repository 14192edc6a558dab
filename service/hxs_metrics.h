// What the service measures, as metrics for Prometheus.
#pragma once

#include <string>

#include "service/hxs_snapshot.h"

namespace hxservice {

/// All metrics of the snapshot in Prometheus's text format. What could not be read has no series.
std::string MetricsText(const Snapshot& snapshot);

}  // namespace hxservice

// What Prometheus and Alertmanager are given: rules, made from the table of conditions.
#pragma once

#include <string>

namespace hxservice {

/// A rule for each condition that is more than information, and those for the service itself.
std::string AlertRules();

/// Sums that dashboards and a Prometheus above others ask for again and again.
std::string RecordingRules();

}  // namespace hxservice

// What the service publishes after each round: status.json.
#pragma once

#include <cstddef>
#include <string>

#include "service/hxs_snapshot.h"

namespace hxservice {

/// The longest text. Conditions that have no room are counted.
inline constexpr std::size_t kLongestStatus = 64000;

std::string StatusText(const Snapshot& snapshot);

}  // namespace hxservice

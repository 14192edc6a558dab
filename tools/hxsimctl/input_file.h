// The files that commands are given: topologies and scenarios.
#pragma once

#include <string>

namespace hxsimctl {

/// All of a file, or of standard input for "-". Throws UsageError, which ends with what to name
/// instead.
std::string ReadInput(const std::string& path, const std::string& otherwise);

}  // namespace hxsimctl

// Reads input files of commands: topologies and scenarios.
#pragma once

#include <string>

namespace hxsimctl {

/// The content of a file, or of standard input for "-". Throws UsageError, which ends with
/// `otherwise`, the advice what to name instead.
std::string ReadInput(const std::string& path, const std::string& otherwise);

}  // namespace hxsimctl

// Writes whole files, in one step.
#pragma once

#include <string>
#include <string_view>

namespace vexortools {

/// Puts a file with that content in the place of the one at `path`, or where there is none. Whoever
/// reads it sees the old content or the new, never a part, and after a crash of the machine it is
/// one of the two. Only the owner may read the new file. Throws FileError; then the old one stays.
void ReplaceFile(const std::string& path, std::string_view content);

}  // namespace vexortools

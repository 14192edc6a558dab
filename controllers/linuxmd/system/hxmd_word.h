// Single words into attributes of sysfs.
#pragma once

#include <string>

namespace hxmd {

/// Writes the word into an attribute of a block device ("md127/md/sync_action"). Returns 0, or the
/// kernel's reason as an errno.
[[nodiscard]] int WriteWord(const std::string& attribute, const std::string& word);

}  // namespace hxmd

// The one adapter: the machine itself.
#pragma once

#include <string>

namespace hxmd {

/// A letter and digits that stay with the installed system; empty when it has no machine ID. The
/// machine ID itself is not told.
std::string SerialNumber();

}  // namespace hxmd

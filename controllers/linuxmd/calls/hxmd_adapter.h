// The only adapter: the machine itself.
#pragma once

#include <string>

namespace hxmd {

/// The adapter's serial number: a letter and digits that identify the installed system; empty
/// without a machine ID. A hash, so that the machine ID itself stays private.
std::string SerialNumber();

}  // namespace hxmd

// How a controller is known that has the codes of this folder.
#pragma once

#include <string_view>

namespace hxcodes {

/// The end of the text that HX_API_Version gives for the virtual controller. It is the one thing
/// that a controller library says of itself before there is an adapter; what adapters say (vendor,
/// device) is set by whoever describes the machine.
inline constexpr std::string_view kVirtualController = " (virtual controller)";

/// The same for the controller over the kernel's own arrays.
inline constexpr std::string_view kLinuxMd = " (linuxmd)";

}  // namespace hxcodes

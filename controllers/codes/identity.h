// How to recognise a controller that has the codes of this folder.
#pragma once

#include <string_view>

namespace hxcodes {

/// The end of the virtual controller's HX_API_Version. Only this text identifies the library
/// itself: the vendor and device of its adapters can be chosen by the topology.
inline constexpr std::string_view kVirtualController = " (virtual controller)";

/// The same for the controller of Linux software RAID.
inline constexpr std::string_view kLinuxMd = " (linuxmd)";

}  // namespace hxcodes

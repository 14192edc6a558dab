// BIOS images: option ROMs that name the adapter that they are for.
#pragma once

#include <string>
#include <string_view>

#include "hxraid.h"

namespace hxsim {

/// The BIOS image that an adapter has when it is made: an option ROM with its BIOS version and its
/// subsystem IDs. A healthy BIOS image without data in a machine's rows is this one.
std::string SampleBios(const Adapter_Info& info);

/// Whether a BIOS image is whole and was made for that adapter: its signature, its length, the sum
/// of its bytes and its subsystem IDs are right.
bool IsBiosFor(const Adapter_Info& info, std::string_view image);

/// The version that a BIOS image names. The image has a header.
Version_Info_CIM VersionOf(std::string_view image);

}  // namespace hxsim

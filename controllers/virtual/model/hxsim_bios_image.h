// BIOS images: option ROMs that name the adapter they were built for.
#pragma once

#include <string>
#include <string_view>

#include "hxraid.h"

namespace hxsim {

/// The BIOS image of a new adapter: an option ROM with its BIOS version and its subsystem IDs. A
/// healthy BIOS image whose row has no data stands for this image.
std::string SampleBios(const Adapter_Info& info);

/// Whether a BIOS image is complete and was built for that adapter: checks signature, length, byte
/// sum and subsystem IDs.
bool IsBiosFor(const Adapter_Info& info, std::string_view image);

/// The version that a BIOS image names. Precondition: the image has a complete header.
Version_Info_CIM VersionOf(std::string_view image);

}  // namespace hxsim

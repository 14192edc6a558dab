// The images in an adapter's flash.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// Type of HX_Flash_Bin and Page of HX_Flash_Erase.
enum class Image : HX_U8 {
    kBios = 1,
    kFirmware = 2,
    kBootLoader = 3,
    kAutoload = 4,
    kHbaInfo = 5,
};
inline constexpr Named kImageNames[] = {
    {Image::kBios, "bios"},
    {Image::kFirmware, "firmware"},
    {Image::kBootLoader, "boot_loader"},
    {Image::kAutoload, "autoload"},
    {Image::kHbaInfo, "hba_info"},
};
static_assert(IsTable(kImageNames));
constexpr const auto& TableOf(Image) { return kImageNames; }

}  // namespace hxcodes

// Kinds of devices and their links.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// DevType of a Link_Endpoint, Type of an HD_Block_Info and deviceType of HX_LocateArrayDevice.
enum class Device : HX_U8 {
    kAdapter = 1,
    kExpander = 2,
    kPortMultiplier = 3,
    kDisk = 4,
    kEnclosure = 5,
};
inline constexpr Named kDeviceNames[] = {
    {Device::kAdapter, "adapter"},
    {Device::kExpander, "expander"},
    {Device::kPortMultiplier, "port_multiplier"},
    {Device::kDisk, "disk"},
    {Device::kEnclosure, "enclosure"},
};
static_assert(IsTable(kDeviceNames));
constexpr const auto& TableOf(Device) { return kDeviceNames; }

/// How a disk is connected: ConnectionType of HD_Info. Bit 0x01 is ATA commands, 0x02 SCSI
/// commands, 0x04 a serial link; from 0x10 on each kind has its own bit.
enum class ConnectionType : HX_U8 {
    kSata = 0x05,
    kSas = 0x06,
    kNvme = 0x10,
    kVirtio = 0x20,
    kUsb = 0x40,
    kOther = 0x80,
};
inline constexpr Named kConnectionTypeNames[] = {
    {ConnectionType::kSata, "sata"}, {ConnectionType::kSas, "sas"},
    {ConnectionType::kNvme, "nvme"}, {ConnectionType::kVirtio, "virtio"},
    {ConnectionType::kUsb, "usb"},   {ConnectionType::kOther, "other"},
};
static_assert(IsTable(kConnectionTypeNames));
constexpr const auto& TableOf(ConnectionType) { return kConnectionTypeNames; }

/// HDType of HD_Info, the older form from which callers derive ConnectionType.
enum class DiskType : HX_U8 {
    kSata = 0x01,
    kSas = 0x04,
};
inline constexpr Named kDiskTypeNames[] = {
    {DiskType::kSata, "sata"},
    {DiskType::kSas, "sas"},
};
static_assert(IsTable(kDiskTypeNames));
constexpr const auto& TableOf(DiskType) { return kDiskTypeNames; }

/// The speed of a link: DriveSpeed of HD_Config. The codes are those of SAS link rates.
enum class LinkSpeed : HX_U8 {
    k1_5Gbit = 0x08,
    k3Gbit = 0x09,
    k6Gbit = 0x0A,
    k12Gbit = 0x0B,
};
inline constexpr Named kLinkSpeedNames[] = {
    {LinkSpeed::k1_5Gbit, "1.5_gbit"},
    {LinkSpeed::k3Gbit, "3_gbit"},
    {LinkSpeed::k6Gbit, "6_gbit"},
    {LinkSpeed::k12Gbit, "12_gbit"},
};
static_assert(IsTable(kLinkSpeedNames));
constexpr const auto& TableOf(LinkSpeed) { return kLinkSpeedNames; }

}  // namespace hxcodes

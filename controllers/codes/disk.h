// Disks: state, features and actions.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// The state of a disk, as bits: Status of HD_Info, HD_RAID_Status and HD_BGA_Status. Callers test
/// the bits 0x04, 0x08, 0x40 and 0x80 to find disks that are not free.
enum class DiskBit : HX_U8 {
    kOnline = 0x01,
    kForeign = 0x02,     // carries the metadata of another controller
    kConfigured = 0x04,  // carries blocks of a virtual disk, or serves a disk group
    kGlobalSpare = 0x08,
    kRebuilding = 0x10,  // carries a block that is being rebuilt or copied back to
    kFailed = 0x20,
    kGroupSpare = 0x40,
    kUnavailable = 0x80,  // missing, failed, offline or foreign
};
inline constexpr Named kDiskBits[] = {
    {DiskBit::kOnline, "online"},          {DiskBit::kForeign, "foreign"},
    {DiskBit::kConfigured, "configured"},  {DiskBit::kGlobalSpare, "global_spare"},
    {DiskBit::kRebuilding, "rebuilding"},  {DiskBit::kFailed, "failed"},
    {DiskBit::kGroupSpare, "group_spare"}, {DiskBit::kUnavailable, "unavailable"},
};
static_assert(IsTableOfBits(kDiskBits));
constexpr const auto& TableOf(DiskBit) { return kDiskBits; }
template <>
inline constexpr bool kAreBits<DiskBit> = true;

/// One word for a disk's state: the first row whose bits are all set.
struct DiskWord {
    HX_U8 bits;
    std::string_view name;
};
inline constexpr DiskWord kDiskWords[] = {
    {NumberOf(DiskBit::kFailed), "failed"},
    {NumberOf(DiskBit::kForeign), "foreign"},
    {DiskBit::kUnavailable | DiskBit::kOnline, "offline"},
    {NumberOf(DiskBit::kUnavailable), "missing"},
    {NumberOf(DiskBit::kRebuilding), "rebuilding"},
    {NumberOf(DiskBit::kGlobalSpare), "global_spare"},
    {NumberOf(DiskBit::kGroupSpare), "group_spare"},
    {NumberOf(DiskBit::kConfigured), "configured"},
    {0, "free"},
};
constexpr std::string_view DiskWordOf(std::uint64_t status) {
    const DiskWord* word = kDiskWords;
    while ((status & word->bits) != word->bits) ++word;  // the last row's bits are always set
    return word->name;
}
static_assert(kDiskWords[std::size(kDiskWords) - 1].bits == 0);

/// A disk's features, as bits: FeatureSupport of HD_Info.
enum class DiskFeature : HX_U32 {
    kSmart = 0x01,
    kWriteCache = 0x02,
    kQueueing = 0x04,
};
inline constexpr Named kDiskFeatureBits[] = {
    {DiskFeature::kSmart, "smart"},
    {DiskFeature::kWriteCache, "write_cache"},
    {DiskFeature::kQueueing, "queueing"},
};
static_assert(IsTableOfBits(kDiskFeatureBits));
constexpr const auto& TableOf(DiskFeature) { return kDiskFeatureBits; }
template <>
inline constexpr bool kAreBits<DiskFeature> = true;

/// The new state of a disk: Action of HX_PD_SetHDStatus.
enum class DiskAction : HX_U8 {
    kOnline = 1,
    kOffline = 2,
    kFree = 3,  // removes a failed or foreign disk's configuration
};
inline constexpr Named kDiskActionNames[] = {
    {DiskAction::kOnline, "online"},
    {DiskAction::kOffline, "offline"},
    {DiskAction::kFree, "free"},
};
static_assert(IsTable(kDiskActionNames));
constexpr const auto& TableOf(DiskAction) { return kDiskActionNames; }

/// The reason for a remap: flag of RCT_Record.
enum class RemapReason : HX_U8 {
    kReadError = 1,
    kWriteError = 2,
};
inline constexpr Named kRemapReasonNames[] = {
    {RemapReason::kReadError, "read_error"},
    {RemapReason::kWriteError, "write_error"},
};
static_assert(IsTable(kRemapReasonNames));
constexpr const auto& TableOf(RemapReason) { return kRemapReasonNames; }

}  // namespace hxcodes

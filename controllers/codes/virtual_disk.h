// Virtual disks: the use of their blocks, their cache, and the rounding of their size.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// The use of a block, as bits: Flags of Block_Info.
enum class BlockBit : HX_U16 {
    kUsed = 0x0001,     // by its virtual disk
    kOfGroup = 0x0002,  // it lies on a disk of a disk group
    kTarget = 0x0004,   // a migration or a copyback writes it
};
inline constexpr Named kBlockBits[] = {
    {BlockBit::kUsed, "used"},
    {BlockBit::kOfGroup, "of_group"},
    {BlockBit::kTarget, "target"},
};
static_assert(IsTableOfBits(kBlockBits));
constexpr const auto& TableOf(BlockBit) { return kBlockBits; }
template <>
inline constexpr bool kAreBits<BlockBit> = true;

/// The cache of a virtual disk, as bits: CacheMode and CachePolicy.
enum class CacheBit : HX_U8 {
    kWriteBack = 0x01,  // else write-through
    kReadAhead = 0x04,
    kForcedWriteThrough = 0x80,  // the battery does not allow write-back; a caller cannot set it
};
inline constexpr Named kCacheBits[] = {
    {CacheBit::kWriteBack, "write_back"},
    {CacheBit::kReadAhead, "read_ahead"},
    {CacheBit::kForcedWriteThrough, "forced_write_through"},
};
static_assert(IsTableOfBits(kCacheBits));
constexpr const auto& TableOf(CacheBit) { return kCacheBits; }
template <>
inline constexpr bool kAreBits<CacheBit> = true;

/// How the size of a virtual disk is rounded down: RoundingScheme.
enum class Rounding : HX_U8 {
    kToStripe = 0,  // only to whole stripes, which always applies
    kTo1GiB = 1,
    kTo10GiB = 2,
};
inline constexpr Named kRoundingNames[] = {
    {Rounding::kToStripe, "stripe"},
    {Rounding::kTo1GiB, "1_gib"},
    {Rounding::kTo10GiB, "10_gib"},
};
static_assert(IsTable(kRoundingNames));
constexpr const auto& TableOf(Rounding) { return kRoundingNames; }

}  // namespace hxcodes

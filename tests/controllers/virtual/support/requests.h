// What is asked for when virtual disks and disk groups are made, for tests of the objects and of
// the library.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "codes/activity.h"
#include "hxraid.h"

using Ids = std::vector<HX_U16>;

/// A virtual disk wanted on disks of its own, as large as fits and without an initialisation.
inline Create_LD_Param WantedOn(HX_U8 level, const Ids& disks, std::uint64_t size = 0) {
    Create_LD_Param param{};
    param.RaidMode = level;
    param.HDCount = static_cast<HX_U8>(disks.size());
    std::ranges::copy(disks, param.HDIDs);
    param.NumParityDisk = 2;  // as callers send it for every level
    param.InitializationOption = NumberOf(hxcodes::Init::kNone);
    param.SectorCoefficient = 1;
    param.Size.value = size;
    return param;
}

/// A disk group wanted, or changed.
inline CreateOrModify_DG_Param GroupOn(HX_U16 id, HX_U8 level, const Ids& disks) {
    CreateOrModify_DG_Param param{};
    param.DGID = id;
    param.RaidMode = level;
    param.PDCount = static_cast<HX_U8>(disks.size());
    std::ranges::copy(disks, param.PDIDs);
    return param;
}

/// A virtual disk wanted in a slot of a disk group.
inline CreateOrModify_VD_Param InSlot(HX_U16 group, HX_U8 level, HX_U8 slot,
                                      std::uint64_t size = 0) {
    CreateOrModify_VD_Param param{};
    param.VDID = HX_NEW_ID;
    param.DGID = group;
    param.RaidMode = level;
    param.DGSlotNum = slot;
    param.InitializationOption = NumberOf(hxcodes::Init::kNone);
    param.Size.value = size;
    return param;
}

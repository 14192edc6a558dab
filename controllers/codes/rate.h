// The rates of background activities: their share of the controller's time.
#pragma once

#include "codes/named.h"

namespace hxcodes {

enum class Rate : HX_U8 {
    kGeneral,  // for activities without their own rate
    kSync,
    kInit,
    kRebuild,
    kMigration,
    kCopyback,
    kMediaPatrol,
};

struct RateRow {
    Rate code;
    std::string_view name;
    HX_U8 Adapter_Config_V2::*setting;  // in percent
    HX_U8 feature;  // the bit of Adapter_Info::Features that permits setting it; 0: always
                    // permitted
};
inline constexpr RateRow kRates[] = {
    {Rate::kGeneral, "general", &Adapter_Config_V2::BGARate, 0},
    {Rate::kSync, "sync", &Adapter_Config_V2::SyncRate, 0x04},
    {Rate::kInit, "init", &Adapter_Config_V2::InitRate, 0x02},
    {Rate::kRebuild, "rebuild", &Adapter_Config_V2::RebuildRate, 0x01},
    {Rate::kMigration, "migration", &Adapter_Config_V2::MigrationRate, 0x08},
    {Rate::kCopyback, "copyback", &Adapter_Config_V2::CopybackRate, 0x40},
    {Rate::kMediaPatrol, "media_patrol", &Adapter_Config_V2::MediaPatrolRate, 0x10},
};
static_assert(IsTable(kRates));
constexpr const auto& TableOf(Rate) { return kRates; }

/// Features of Adapter_Info, bit by bit.
inline constexpr auto kRateBits = NamesBy<kRates, &RateRow::feature>();
static_assert(IsTableOfBits(kRateBits));

}  // namespace hxcodes

// The state of a block, a virtual disk or a disk group.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// Status of Block_Info, LD_Info, LD_Status, LD_Config and DG_Info. A higher code is a worse state.
enum class State : HX_U8 {
    kOptimal = 1,
    kPartiallyOptimal = 2,  // positions are lost; some redundancy is left
    kRebuilding = 3,        // a block: its content is being restored
    kDegraded = 4,          // positions are lost; no redundancy is left
    kOffline = 5,           // data is lost: more losses than redundancy covers
    kForeign = 6,           // made by another controller and not imported
};
inline constexpr Named kStateNames[] = {
    {State::kOptimal, "optimal"},       {State::kPartiallyOptimal, "partially_optimal"},
    {State::kRebuilding, "rebuilding"}, {State::kDegraded, "degraded"},
    {State::kOffline, "offline"},       {State::kForeign, "foreign"},
};
static_assert(IsTable(kStateNames));
constexpr const auto& TableOf(State) { return kStateNames; }

}  // namespace hxcodes

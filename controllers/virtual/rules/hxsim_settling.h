// What the settling rules know about the change that they settle (hxsim_settle.h).
#pragma once

#include <set>

#include "model/hxsim_machine.h"

namespace hxsim {

struct Settling {
    Adapter& adapter;
    const Time now;
    bool new_alarm_cause = false;  // a virtual disk has just become degraded or offline
    std::set<HX_U16> losses{};     // virtual disks that have just lost a block
};

}  // namespace hxsim

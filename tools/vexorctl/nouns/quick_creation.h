// What the library's quick creation would take, found with its own rule.
#pragma once

#include "common/address.h"
#include "model/ask_controller.h"
#include "nouns/plan_and_act.h"

namespace vexorctl {

/// Adds to the plan the disks, the level and the size of the virtual disk that HX_LD_QuickCreate
/// would make on the adapter; or that they are not known, and why.
void TellQuickCreation(Controller& controller, const Address& adapter, bool redundant,
                       Change& change);

}  // namespace vexorctl

// The consequences of a change.
#pragma once

#include <span>
#include <stdexcept>
#include <string_view>

#include "model/hxsim_machine.h"
#include "rules/hxsim_settling.h"

namespace hxsim {

/// A rule that draws one kind of consequence. `apply` returns whether it has changed anything that
/// another rule may draw consequences from.
struct SettlingRule {
    std::string_view name;
    bool (*apply)(Settling& settling);
};

/// The rules have gone round and round without an end; what() names those that undo each other. The
/// adapter is half changed: discard it. A call answers it with Status::kUnsettled.
struct UnsettledError : std::logic_error {
    using std::logic_error::logic_error;
};

/// Draws the consequences of whatever has just changed, until nothing follows any more: blocks of
/// disks that are no longer ready fall out of date where the array can do without them, states are
/// computed and changes of state announced, activities that cannot go on end or pause, spares step
/// in, rebuilds and copybacks start, paused ones resume. Called after every change. Throws
/// UnsettledError.
void Settle(Adapter& adapter, Time now);

/// The same with other rules, for tests.
void Settle(Adapter& adapter, Time now, std::span<const SettlingRule> rules);

}  // namespace hxsim

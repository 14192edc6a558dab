// The consequences of a change.
#pragma once

#include <span>
#include <stdexcept>
#include <string_view>

#include "model/hxsim_machine.h"
#include "rules/hxsim_settling.h"

namespace hxsim {

/// A rule for one kind of consequence. `apply` returns whether it has changed anything that other
/// rules depend on.
struct SettlingRule {
    std::string_view name;
    bool (*apply)(Settling& settling);
};

/// The rules never came to rest; what() names those that undo each other. The adapter is half
/// changed: discard it. A call answers with Status::kUnsettled.
struct UnsettledError : std::logic_error {
    using std::logic_error::logic_error;
};

/// Applies the rules after a change until none of them changes anything more: blocks on disks that
/// are no longer ready fall out of date where the array stays usable without them, states are
/// computed and their changes announced, activities that cannot continue end or pause, spares step
/// in, rebuilds and copybacks start, paused activities resume. Call it after every change. Throws
/// UnsettledError.
void Settle(Adapter& adapter, Time now);

/// The same with given rules, for tests.
void Settle(Adapter& adapter, Time now, std::span<const SettlingRule> rules);

}  // namespace hxsim

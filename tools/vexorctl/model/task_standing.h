// How a background activity stands, why it does not run and what to do: activities that have failed
// among them, which the controller does not list any more but the stored events tell.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "codes/code_table.h"
#include "model/ask_controller.h"
#include "model/tasks.h"
#include "model/timeline.h"

namespace vexorctl {

/// One of Standings; empty when the controller's code has no name.
std::string_view StandingOf(const Task& task, const hxcodes::CodeTable& codes);
std::vector<std::string_view> Standings();

/// The activities that ended in failure by the last that the events tell of them, on objects that
/// are listed still, of the adapters that the controller has selected. `running` are those that the
/// controller lists: what runs again has not failed.
std::vector<Task> LoadFailedTasks(Controller& controller, std::span<const Period> periods,
                                  std::span<const Task> running);

/// Fills in the cause and the next step of each that does not run; TellPace comes before it. What
/// cannot be read is no fault: the cause is not known then.
void TellCauses(Controller& controller, std::vector<Task>& tasks);

}  // namespace vexorctl

// How fast the background activities go, since when and how long still: the controller's records do
// not tell, but the events of their steps do.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/ask_controller.h"
#include "model/tasks.h"
#include "model/timeline.h"

namespace vexorctl {

/// The pace of the task by the period that the events tell of it: the last one of `activity` at one
/// of `objects` that has no end. The events of a disk group's task are those of its virtual disks.
/// `sectors` is what it has to go over on each disk. A period that was further than the task is now
/// is that of an earlier one, whose end has not been collected.
TaskPace PaceOf(const Task& task, std::string_view activity, std::span<const std::string> objects,
                std::span<const Period> periods, std::optional<std::uint64_t> sectors);

/// Fills in the pace of each. What cannot be read is no fault: what follows from it is not known.
void TellPace(Controller& controller, std::vector<Task>& tasks);
/// The same by periods that were read already.
void TellPace(Controller& controller, std::span<const Period> periods, std::vector<Task>& tasks);

}  // namespace vexorctl

// Waiting for background activities, with a bar on a terminal.
#pragma once

#include <string>
#include <vector>

#include "common/duration.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "shell/invocation.h"

namespace vexorctl {

inline constexpr Duration kForever = Duration::max();

/// The time that --wait or --timeout gives; kForever without a value. Throws UsageError.
Duration TimeoutOf(const Invocation& invocation, std::string_view option = "--wait");

/// Whether a task runs at the address.
bool HasTask(Controller& controller, const std::string& address);

/// Waits until no task runs at the address. kWaiting when the time is over, kInterrupted after
/// Ctrl-C; the task goes on in both cases, and one line says so. kWaiting, too, when somebody has
/// paused it: the line has the command that resumes it.
Exit WaitForTask(Invocation& invocation, const std::string& address, Duration timeout);

/// The same for several; an empty list means all that run now.
Exit WaitForTasks(Invocation& invocation, std::vector<std::string> addresses, Duration timeout);

}  // namespace vexorctl

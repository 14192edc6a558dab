// Waiting for background activities, with a bar on a terminal.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "shell/invocation.h"

namespace vexorctl {

inline constexpr std::uint64_t kForever = UINT64_MAX;

/// The seconds of --wait or --timeout; kForever without a value. Throws UsageError.
std::uint64_t TimeoutOf(const Invocation& invocation, std::string_view option = "--wait");

/// Whether a task runs at the address.
bool HasTask(Controller& controller, const std::string& address);

/// Waits until no task runs at the address. kWaiting when the time is over, kInterrupted after
/// Ctrl-C; the task goes on in both cases, and one line says so.
Exit WaitForTask(Invocation& invocation, const std::string& address, std::uint64_t seconds);

/// The same for several; an empty list means all that run now.
Exit WaitForTasks(Invocation& invocation, std::vector<std::string> addresses,
                  std::uint64_t seconds);

}  // namespace vexorctl

// One command through the library, with everything that is said about it.
#pragma once

#include <string>
#include <string_view>

#include "model/ask_controller.h"
#include "model/exit_code.h"

namespace vexorctl {

/// Sends the command, prints its result, and reports its failure in one line that begins with the
/// subject (the file's or the function's name). Throws OutputError and std::bad_alloc.
Exit RunCommand(Controller& controller, std::string_view subject, const std::string& command);

}  // namespace vexorctl

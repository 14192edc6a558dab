// How wide the terminal is that standard output goes to.
#pragma once

#include <cstddef>
#include <optional>

namespace vexorctl {

/// In columns; null where the output goes to no terminal, or to one that does not tell.
std::optional<std::size_t> TerminalWidth();

}  // namespace vexorctl

// How large the terminal is that a stream goes to.
#pragma once

#include <cstddef>
#include <optional>

namespace vexorctl {

struct TerminalSize {
    std::size_t columns;
    std::size_t rows;
};

/// Null where the descriptor is no terminal, or one that does not tell.
std::optional<TerminalSize> SizeOfTerminal(int descriptor);

/// The columns of the terminal that standard output goes to.
std::optional<std::size_t> TerminalWidth();

}  // namespace vexorctl

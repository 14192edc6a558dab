#include "output/terminal_width.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace vexorctl {

std::optional<TerminalSize> SizeOfTerminal(int descriptor) {
    winsize size{};
    const bool is_terminal = isatty(descriptor) == 1;
    if (!is_terminal || ioctl(descriptor, TIOCGWINSZ, &size) != 0) return std::nullopt;
    if (size.ws_col == 0 || size.ws_row == 0) return std::nullopt;
    return TerminalSize{size.ws_col, size.ws_row};
}

std::optional<std::size_t> TerminalWidth() {
    const std::optional<TerminalSize> size = SizeOfTerminal(STDOUT_FILENO);
    return size ? std::optional(size->columns) : std::nullopt;
}

}  // namespace vexorctl

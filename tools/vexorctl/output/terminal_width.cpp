#include "output/terminal_width.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace vexorctl {

std::optional<std::size_t> TerminalWidth() {
    winsize size{};
    const bool is_terminal = isatty(STDOUT_FILENO) == 1;
    if (!is_terminal || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) return std::nullopt;
    return size.ws_col == 0 ? std::nullopt : std::optional<std::size_t>(size.ws_col);
}

}  // namespace vexorctl

#include "output/progress_bar.h"

#include <algorithm>

#include "common/terminal_text.h"

namespace vexorctl {

std::string BarText(const std::string& label, std::uint64_t percent) {
    constexpr std::uint64_t kWidth = 30;
    percent = std::min<std::uint64_t>(percent, 100);
    const auto filled = static_cast<std::size_t>(percent * kWidth / 100);
    return kClearLine + vexortools::Printable(label) + " [" + std::string(filled, '#') +
           std::string(static_cast<std::size_t>(kWidth) - filled, '.') + "] " +
           std::to_string(percent) + "%";
}

}  // namespace vexorctl

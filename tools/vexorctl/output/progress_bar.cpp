#include "output/progress_bar.h"

#include <algorithm>

#include "common/terminal_text.h"

namespace vexorctl {

std::string ProgressBar(std::uint64_t percent, std::size_t places) {
    const std::size_t filled =
        static_cast<std::size_t>(std::min<std::uint64_t>(percent, 100)) * places / 100;
    return "[" + std::string(filled, '#') + std::string(places - filled, '.') + "]";
}

std::string BarText(const std::string& label, std::uint64_t percent) {
    constexpr std::size_t kPlaces = 30;
    percent = std::min<std::uint64_t>(percent, 100);
    return kClearLine + vexortools::Printable(label) + " " + ProgressBar(percent, kPlaces) + " " +
           std::to_string(percent) + "%";
}

}  // namespace vexorctl

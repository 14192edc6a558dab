#include "output/label.h"

#include <algorithm>
#include <cctype>

namespace vexorctl {

namespace {

// What is written so wherever it stands.
constexpr std::string_view kFixed[] = {
    "BIOS", "DG",  "ID",    "IRQ",  "LBA", "MDMA", "OK",  "PCI", "PHY",
    "PIO",  "SAS", "SMART", "UDMA", "VD",  "VDs",  "WWN", "mAh", "rpm",
};

char Lower(char letter) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
}

bool IsAlike(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, {}, Lower, Lower);
}

}  // namespace

std::string LabelOf(std::string_view header) {
    std::string label;
    while (!header.empty()) {
        const std::string_view word = header.substr(0, header.find(' '));
        header.remove_prefix(std::min(word.size() + 1, header.size()));
        const bool first = label.empty();
        if (!first) label += ' ';
        const auto* const fixed = std::ranges::find_if(
            kFixed, [&](std::string_view each) { return IsAlike(each, word); });
        if (fixed != std::end(kFixed)) {
            label += *fixed;
            continue;
        }
        for (const char each : word) label += Lower(each);
        if (!first) continue;
        label.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(label.front())));
    }
    return label;
}

}  // namespace vexorctl

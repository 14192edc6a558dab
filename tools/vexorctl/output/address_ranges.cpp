#include "output/address_ranges.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace vexorctl {

namespace {

// "a0/pd12" in two: "a0/pd" and 12. A text without a number has no end.
struct Parts {
    std::string_view begin;
    std::string_view digits;
    unsigned number = 0;

    bool Precedes(const Parts& next) const {
        return !digits.empty() && !next.digits.empty() && begin == next.begin &&
               number + 1 == next.number;
    }
};

Parts PartsOf(std::string_view address) {
    const std::size_t last = address.find_last_not_of("0123456789");
    const std::size_t length = last == std::string_view::npos ? 0 : last + 1;
    Parts parts{.begin = address.substr(0, length), .digits = address.substr(length)};
    std::from_chars(parts.digits.data(), parts.digits.data() + parts.digits.size(), parts.number);
    return parts;
}

// "a0/", and something behind it.
bool IsAddress(std::string_view text) {
    if (!text.starts_with('a')) return false;
    const std::size_t slash = text.find_first_not_of("0123456789", 1);
    return slash > 1 && slash < text.size() && text[slash] == '/' && slash + 1 < text.size();
}

}  // namespace

bool AreAddresses(const std::vector<std::string>& texts) {
    return std::ranges::all_of(texts, IsAddress);
}

std::string AddressRanges(const std::vector<std::string>& addresses) {
    std::string text;
    std::string_view begin;
    for (std::size_t first = 0; first < addresses.size();) {
        std::size_t last = first;
        while (last + 1 < addresses.size() &&
               PartsOf(addresses[last]).Precedes(PartsOf(addresses[last + 1]))) {
            ++last;
        }
        const Parts parts = PartsOf(addresses[first]);
        if (first != 0) text += ',';
        if (first == 0 || parts.begin != begin || parts.digits.empty()) text += parts.begin;
        begin = parts.begin;
        text += parts.digits;
        if (last != first) text.append("-").append(PartsOf(addresses[last]).digits);
        first = last + 1;
    }
    return text;
}

}  // namespace vexorctl

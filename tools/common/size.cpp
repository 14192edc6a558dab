#include "common/size.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string>

#include "common/failure.h"

namespace vexortools {

namespace {

struct SizeUnit {
    std::string_view name;
    std::uint64_t bytes;
};
constexpr SizeUnit kSizeUnits[] = {
    {"", 1},
    {"B", 1},
    {"KB", 1000},
    {"MB", 1000000},
    {"GB", 1000000000},
    {"TB", 1000000000000},
    {"KiB", 1024},
    {"MiB", 1024 * 1024},
    {"GiB", 1024 * 1024 * 1024},
    {"TiB", std::uint64_t{1} << 40},
    // As other tools for storage have it: a letter alone counts in 1024.
    {"K", 1024},
    {"M", 1024 * 1024},
    {"G", 1024 * 1024 * 1024},
    {"T", std::uint64_t{1} << 40},
    {"s", kSectorBytes},
};

// One byte less than 8 EiB, so that no sum of two sizes overflows 64 bits.
constexpr std::uint64_t kLargest = INT64_MAX;

constexpr std::string_view kDigits = "0123456789";

std::string_view TakeDigits(std::string_view& text) {
    const std::string_view digits =
        text.substr(0, std::min(text.find_first_not_of(kDigits), text.size()));
    text.remove_prefix(digits.size());
    return digits;
}

[[noreturn]] void ThrowTooLarge(std::string_view text) {
    throw UsageError(Quoted(text) + " is too large a size; write one of less than " +
                     std::to_string((kLargest >> 40) + 1) + "TiB");
}

// Converts DIGITS of a unit to bytes with integers: floating point would lose digits.
std::uint64_t WholeUnits(std::string_view digits, const SizeUnit& unit, std::string_view text) {
    std::uint64_t number = 0;
    if (digits.empty()) return 0;
    const auto [stop, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || number > kLargest / unit.bytes) ThrowTooLarge(text);
    return number * unit.bytes;
}

std::uint64_t PartOfUnit(std::string_view digits, const SizeUnit& unit) {
    double part = 0;
    double place = 1;
    for (const char digit : digits) part += (digit - '0') * (place /= 10);
    return static_cast<std::uint64_t>(std::llround(part * static_cast<double>(unit.bytes)));
}

bool IsSameWord(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, [](unsigned char left, unsigned char right) {
        return std::tolower(left) == std::tolower(right);
    });
}

// Null when the text is no size.
std::optional<std::uint64_t> ReadSize(std::string_view text) {
    std::string_view rest = text;
    const std::string_view whole = TakeDigits(rest);
    std::string_view part;
    if (rest.starts_with('.')) {
        rest.remove_prefix(1);
        part = TakeDigits(rest);
    }
    const auto* const unit = std::ranges::find_if(
        kSizeUnits, [&](const SizeUnit& each) { return IsSameWord(each.name, rest); });
    if (unit == std::end(kSizeUnits) || (whole.empty() && part.empty())) return std::nullopt;
    const std::uint64_t bytes = WholeUnits(whole, *unit, text) + PartOfUnit(part, *unit);
    if (bytes > kLargest) ThrowTooLarge(text);
    return bytes;
}

unsigned ParsePercent(std::string_view text) {
    const char* const sign = text.data() + text.size() - 1;
    unsigned percent = 0;
    const auto [stop, error] = std::from_chars(text.data(), sign, percent);
    if (error != std::errc() || stop != sign || percent == 0 || percent > 100) {
        throw UsageError("a share is from 1% to 100%, not " + Quoted(text));
    }
    return percent;
}

}  // namespace

std::uint64_t ParseSize(std::string_view text) {
    if (const std::optional<std::uint64_t> bytes = ReadSize(text)) return *bytes;
    throw UsageError(Quoted(text) +
                     " is no size; write one such as 10GiB, 20GB, 1.5TiB, 4096s (sectors) or "
                     "1000000 (bytes)");
}

SizeOrShare ParseSizeOrShare(std::string_view text) {
    SizeOrShare wish;
    if (IsSameWord(text, "max")) return wish;
    if (text.ends_with('%')) {
        wish.percent = ParsePercent(text);
        return wish;
    }
    wish.bytes = ReadSize(text);
    if (!wish.bytes) {
        throw UsageError(Quoted(text) +
                         " is no size; write one such as 10GiB, 20GB, 50% of the most, or max");
    }
    if (*wish.bytes == 0) {
        throw UsageError(Quoted(text) + " is nothing; the least is 1s, a sector of " +
                         std::to_string(kSectorBytes) + " bytes");
    }
    if (*wish.bytes < kSectorBytes) {
        const bool is_number = text.find_first_not_of(kDigits) == std::string_view::npos;
        throw UsageError(Quoted(text) + " is less than a sector, which has " +
                         std::to_string(kSectorBytes) + " bytes" +
                         (is_number ? "; a number alone counts bytes: write " + std::string(text) +
                                          "GiB, " + std::string(text) + "GB or " +
                                          std::string(text) + "s for sectors"
                                    : ""));
    }
    return wish;
}

}  // namespace vexortools

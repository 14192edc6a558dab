#include "output/cell_text.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <utility>

#include "common/duration.h"
#include "common/size.h"
#include "common/timestamp.h"
#include "output/address_ranges.h"

namespace vexorctl {

namespace {

// Two digits behind the point, unless they are zeros.
std::string Scaled(double size, const char* unit) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.2f", size);
    std::string number(text);
    number.erase(number.find_last_not_of('0') + 1);
    if (number.ends_with('.')) number.pop_back();
    return number + " " + unit;
}

// Days are told to the hour and hours to the minute: what is left is an estimate.
std::string RoundedDuration(std::uint64_t seconds) {
    constexpr std::uint64_t kMinute = 60, kHour = 3600, kDay = 86400;
    constexpr std::uint64_t kMost = 1000000 * kDay;
    seconds = std::min(seconds, kMost);
    const std::uint64_t unit = seconds >= kDay ? kHour : seconds >= kHour ? kMinute : 1;
    const std::uint64_t whole = seconds / unit * unit;
    return vexortools::DurationText(std::chrono::seconds(static_cast<std::int64_t>(whole)));
}

}  // namespace

std::string Joined(const std::vector<std::string>& texts, std::string_view between) {
    std::string all;
    for (const std::string& text : texts) {
        if (!all.empty()) all += between;
        all += text;
    }
    return all;
}

std::string SizeText(std::uint64_t bytes, const Style& style) {
    if (style.bytes) return std::to_string(bytes);
    if (bytes == 0) return "0";
    constexpr const char* kBinary[] = {"B", "KiB", "MiB", "GiB", "TiB", "PiB"};
    constexpr const char* kDecimal[] = {"B", "kB", "MB", "GB", "TB", "PB"};
    const double step = style.si ? 1000 : 1024;
    double size = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (size >= step && unit + 1 < std::size(kBinary)) {
        size /= step;
        ++unit;
    }
    return Scaled(size, style.si ? kDecimal[unit] : kBinary[unit]);
}

std::string SectorsText(std::optional<std::uint64_t> sectors) {
    return sectors ? SizeText(*sectors * vexortools::kSectorBytes, {})
                   : std::string("size unknown");
}

std::string Shown(const std::optional<std::string>& text) { return text.value_or("?"); }

std::string CellText(const ColumnInfo& column, const Cell& cell, const Style& style) {
    if (cell.state == Cell::State::kUnknown) return "?";
    if (cell.state == Cell::State::kNone) return {};
    switch (column.kind) {
        case Kind::kText:
        case Kind::kAddress:
        case Kind::kReference:
        case Kind::kHex:
        case Kind::kWord:
            return cell.text;
        case Kind::kNumber:
            return std::to_string(cell.number);
        case Kind::kBool:
            return cell.number != 0 ? "yes" : "no";
        case Kind::kBytes:
            return SizeText(cell.number, style);
        case Kind::kRate:
            return SizeText(cell.number, style) + (style.bytes ? "" : "/s");
        case Kind::kSeconds:
            return RoundedDuration(cell.number);
        case Kind::kRatio: {
            char text[32];
            std::snprintf(text, sizeof(text), "%.0f%%", 100 * cell.ratio);
            return text;
        }
        case Kind::kTime:
            return vexortools::TimeText(static_cast<std::int64_t>(cell.number), style.utc);
        case Kind::kCode:
            return cell.text.empty() ? std::to_string(cell.number) : cell.text;
        case Kind::kTexts:
        case Kind::kAddresses:
            if (AreAddresses(cell.texts)) return AddressRanges(cell.texts);
            [[fallthrough]];
        case Kind::kBits:
            return Joined(cell.texts, ",");
        case Kind::kSentences:
            return Joined(cell.texts, "; ");
        case Kind::kNumbers:
        case Kind::kSizes: {
            const bool are_sizes = column.kind == Kind::kSizes;
            std::vector<std::string> texts;
            for (const std::uint64_t number : cell.numbers) {
                texts.push_back(are_sizes ? SizeText(number, style) : std::to_string(number));
            }
            return Joined(texts, are_sizes ? ", " : ",");
        }
        case Kind::kItems: {
            std::vector<std::string> texts;
            for (const std::vector<Cell>& item : cell.items) {
                std::vector<std::string> parts;
                for (std::size_t i = 0; i < item.size(); ++i) {
                    std::string part = CellText(column.parts[i], item[i], style);
                    if (!part.empty()) parts.push_back(std::move(part));
                }
                texts.push_back(Joined(parts, " "));
            }
            return Joined(texts, ", ");
        }
    }
    return {};
}

std::string PlainText(const ColumnInfo& column, const Cell& cell, const Style& style) {
    if (!cell.IsKnown()) return {};
    if (column.kind == Kind::kSizes) {
        std::vector<std::string> texts;
        for (const std::uint64_t size : cell.numbers) texts.push_back(std::to_string(size));
        return Joined(texts, ",");
    }
    if (column.kind == Kind::kBytes || column.kind == Kind::kRate ||
        column.kind == Kind::kSeconds) {
        return std::to_string(cell.number);
    }
    if (column.kind == Kind::kSentences) return Joined(cell.texts, "\n");
    if (IsTexts(column.kind)) return Joined(cell.texts, ",");
    if (column.kind == Kind::kBool) return cell.number != 0 ? "true" : "false";
    if (column.kind == Kind::kRatio) {
        char text[32];
        std::snprintf(text, sizeof(text), "%g", cell.ratio);
        return text;
    }
    if (column.kind == Kind::kItems) {
        std::vector<std::string> texts;
        for (const std::vector<Cell>& item : cell.items) {
            std::vector<std::string> parts;
            for (std::size_t i = 0; i < item.size(); ++i) {
                parts.push_back(PlainText(column.parts[i], item[i], style));
            }
            texts.push_back(Joined(parts, ":"));
        }
        return Joined(texts, ",");
    }
    return CellText(column, cell, style);
}

}  // namespace vexorctl

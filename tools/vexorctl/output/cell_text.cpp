#include "output/cell_text.h"

#include <cstdio>

#include "common/size.h"
#include "common/timestamp.h"

namespace vexorctl {

namespace {

std::string Scaled(std::uint64_t number, double unit, const char* name) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.2f %s", static_cast<double>(number) / unit, name);
    return text;
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
    // Stripes, not disks: in GiB they would all be 0.00.
    if (bytes != 0 && bytes < 1024 * 1024) return std::to_string(bytes / 1024) + " KiB";
    if (style.si) return Scaled(bytes, 1e9, "GB");
    return Scaled(bytes, 1024.0 * 1024 * 1024, "GiB");
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
            return cell.text;
        case Kind::kNumber:
            return std::to_string(cell.number);
        case Kind::kBool:
            return cell.number != 0 ? "yes" : "no";
        case Kind::kBytes:
            return SizeText(cell.number, style);
        case Kind::kRatio: {
            char text[32];
            std::snprintf(text, sizeof(text), "%.0f%%", 100 * cell.ratio);
            return text;
        }
        case Kind::kTime:
            return vexortools::TimeText(static_cast<std::int64_t>(cell.number), style.utc);
        case Kind::kCode:
            return cell.text.empty() ? std::to_string(cell.number) : cell.text;
        case Kind::kBits:
        case Kind::kTexts:
            return Joined(cell.texts, ",");
        case Kind::kNumbers: {
            std::vector<std::string> texts;
            for (const std::uint64_t number : cell.numbers) texts.push_back(std::to_string(number));
            return Joined(texts, ",");
        }
    }
    return {};
}

std::string PlainText(const ColumnInfo& column, const Cell& cell, const Style& style) {
    if (!cell.IsKnown()) return {};
    if (column.kind == Kind::kBytes) return std::to_string(cell.number);
    if (column.kind == Kind::kBool) return cell.number != 0 ? "true" : "false";
    if (column.kind == Kind::kRatio) {
        char text[32];
        std::snprintf(text, sizeof(text), "%g", cell.ratio);
        return text;
    }
    return CellText(column, cell, style);
}

}  // namespace vexorctl

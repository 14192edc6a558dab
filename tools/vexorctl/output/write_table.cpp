#include "output/write_table.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "common/terminal_text.h"
#include "output/cell.h"
#include "output/label.h"

namespace vexorctl {

namespace {

using vexortools::DisplayWidth;
using vexortools::Printable;

bool IsRightAligned(Kind kind) {
    return kind == Kind::kNumber || kind == Kind::kBytes || kind == Kind::kRatio;
}

struct StateColour {
    std::string_view name;
    std::string_view colour;
};
constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kYellow = "\x1b[33m";
constexpr std::string_view kGreen = "\x1b[32m";
constexpr std::string_view kPlain = "\x1b[0m";
constexpr StateColour kStateColours[] = {
    {"optimal", kGreen},   {"ok", kGreen},           {"partially_optimal", kYellow},
    {"degraded", kYellow}, {"rebuilding", kYellow},  {"foreign", kYellow},
    {"warning", kYellow},  {"noncritical", kYellow}, {"missing", kRed},
    {"failed", kRed},      {"offline", kRed},        {"critical", kRed},
    {"fatal", kRed},       {"major", kRed},          {"unrecoverable", kRed},
};

std::string_view ColourOf(std::string_view text) {
    for (const StateColour& row : kStateColours) {
        if (row.name == text) return row.colour;
    }
    return {};
}

// A row's cells as tables show them; an empty one as a dash.
std::vector<std::string> LineOf(const Report& report, const std::vector<Cell>& row,
                                const Style& style) {
    std::vector<std::string> line;
    for (std::size_t i = 0; i < row.size(); ++i) {
        line.push_back(Printable(CellText(report.columns[i], row[i], style)));
        if (line.back().empty()) line.back() = "-";
    }
    return line;
}

std::size_t WidthOf(const Report& report, std::size_t column, const Style& style) {
    std::size_t width = style.header ? DisplayWidth(report.columns[column].header) : 1;
    for (const std::vector<Cell>& row : report.rows) {
        width = std::max(
            width, DisplayWidth(Printable(CellText(report.columns[column], row[column], style))));
    }
    return width;
}

}  // namespace

std::vector<std::size_t> ColumnsThatFit(const Report& report, const Style& style,
                                        std::size_t width) {
    constexpr std::size_t kBetween = 2;
    std::vector<bool> taken(report.columns.size(), false);
    std::size_t used = 0;
    std::size_t count = 0;
    const auto take = [&](Place place) {
        for (std::size_t i = 0; i < taken.size(); ++i) {
            if (report.columns[i].place != place) continue;
            const std::size_t more = WidthOf(report, i, style) + (count == 0 ? 0 : kBetween);
            if (count != 0 && used + more > width) return false;
            taken[i] = true;
            used += more;
            ++count;
        }
        return true;
    };
    if (take(Place::kTable)) take(Place::kWide);
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < taken.size(); ++i) {
        if (taken[i]) chosen.push_back(i);
    }
    return chosen;
}

void WriteTable(const Report& report, const Style& style, bool header, std::string& out) {
    const std::size_t count = report.columns.size();
    std::vector<std::vector<std::string>> texts;
    std::vector<std::size_t> widths(count, 0);
    if (header) {
        for (std::size_t i = 0; i < count; ++i) widths[i] = DisplayWidth(report.columns[i].header);
    }
    texts.reserve(report.rows.size());
    for (const std::vector<Cell>& row : report.rows) {
        texts.push_back(LineOf(report, row, style));
        for (std::size_t i = 0; i < count; ++i) {
            widths[i] = std::max(widths[i], DisplayWidth(texts.back()[i]));
        }
    }
    const auto append = [&](std::size_t i, std::string_view text, std::string_view colour) {
        const std::string blanks(widths[i] - DisplayWidth(text), ' ');
        const bool right = IsRightAligned(report.columns[i].kind);
        if (i != 0) out += "  ";
        if (right) out += blanks;
        out.append(colour).append(text);
        if (!colour.empty()) out += kPlain;
        if (!right && i + 1 != count) out += blanks;
    };
    if (header) {
        for (std::size_t i = 0; i < count; ++i) append(i, report.columns[i].header, {});
        out += '\n';
    }
    for (const std::vector<std::string>& line : texts) {
        for (std::size_t i = 0; i < count; ++i) {
            append(i, line[i], style.colour ? ColourOf(line[i]) : std::string_view());
        }
        out += '\n';
    }
}

void WriteList(const Report& report, const Style& style, bool first, std::string& out) {
    std::size_t width = 0;
    std::vector<std::string> labels;
    for (const ColumnInfo& column : report.columns) {
        labels.push_back(LabelOf(column.header));
        width = std::max(width, labels.back().size());
    }
    for (const std::vector<Cell>& row : report.rows) {
        if (!first) out += '\n';
        first = false;
        for (std::size_t i = 0; i < row.size(); ++i) {
            std::string text = Printable(CellText(report.columns[i], row[i], style));
            if (text.empty()) text = "-";
            out.append(labels[i]).append(width - labels[i].size(), ' ');
            out.append("  ").append(text).append("\n");
        }
    }
}

}  // namespace vexorctl

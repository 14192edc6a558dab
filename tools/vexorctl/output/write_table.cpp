#include "output/write_table.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "common/terminal_text.h"
#include "output/cell.h"
#include "output/label.h"
#include "output/wrapped_text.h"

namespace vexorctl {

namespace {

using vexortools::DisplayWidth;
using vexortools::Printable;

bool IsRightAligned(Kind kind) {
    return kind == Kind::kNumber || kind == Kind::kBytes || kind == Kind::kRatio ||
           kind == Kind::kRate || kind == Kind::kSeconds;
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

// A cell as tables show it; an empty one as a dash. It has no line end.
std::string TextOf(const ColumnInfo& column, const Cell& cell, const Style& style) {
    std::string text = Printable(CellText(column, cell, style));
    if (text.empty()) text = "-";
    return text;
}

std::size_t WidthOf(const Report& report, std::size_t column, const Style& style) {
    std::size_t width = style.header ? DisplayWidth(report.columns[column].header) : 1;
    for (const std::vector<Cell>& row : report.rows) {
        width = std::max(
            width, DisplayWidth(Printable(CellText(report.columns[column], row[column], style))));
    }
    return width;
}

constexpr std::size_t kBetween = 2;             // blanks between two columns
constexpr std::size_t kNarrowestSentence = 24;  // less is no fun to read

// Lines of a table whose columns are so wide.
class TableLines {
public:
    TableLines(const std::vector<ColumnInfo>& columns, const Style& style,
               std::vector<std::size_t> widths)
        : columns_(columns), style_(style), widths_(std::move(widths)) {
        for (std::size_t i = 0; i + 1 < widths_.size(); ++i) before_ += widths_[i] + kBetween;
    }

    void Append(std::string& out, const std::vector<std::string>& line, bool colour) const {
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (i != 0) out.append(kBetween, ' ');
            const bool last = i + 1 == line.size();
            if (last && GoesOn(line[i])) {
                const std::string lines = Wrapped(std::string(before_, ' '), line[i], style_.width);
                out.append(lines, before_, lines.size() - before_ - 1);
            } else {
                AppendCell(out, i, line[i], colour ? ColourOf(line[i]) : std::string_view());
            }
        }
        out += '\n';
    }

private:
    // Whether it is a sentence that the terminal has no room for on this line.
    bool GoesOn(std::string_view text) const {
        return columns_.back().place == Place::kSentence &&
               before_ + kNarrowestSentence <= style_.width &&
               before_ + DisplayWidth(text) > style_.width;
    }

    void AppendCell(std::string& out, std::size_t i, std::string_view text,
                    std::string_view colour) const {
        const std::string blanks(widths_[i] - DisplayWidth(text), ' ');
        const bool right = IsRightAligned(columns_[i].kind);
        if (right) out += blanks;
        out.append(colour).append(text);
        if (!colour.empty()) out += kPlain;
        if (!right && i + 1 != widths_.size()) out += blanks;
    }

    const std::vector<ColumnInfo>& columns_;
    const Style& style_;
    std::vector<std::size_t> widths_;
    std::size_t before_ = 0;  // the columns of the terminal before the last one of the table
};

}  // namespace

std::vector<std::size_t> ColumnsThatFit(const Report& report, const Style& style) {
    std::vector<bool> taken(report.columns.size(), false);
    std::size_t used = 0;
    std::size_t count = 0;
    const auto take_one = [&](std::size_t column, std::size_t its_width) {
        const std::size_t more = its_width + (count == 0 ? 0 : kBetween);
        if (count != 0 && used + more > style.width) return false;
        taken[column] = true;
        used += more;
        ++count;
        return true;
    };
    const auto sentence = static_cast<std::size_t>(
        std::ranges::find(report.columns, Place::kSentence, &ColumnInfo::place) -
        report.columns.begin());
    const std::size_t width = sentence == taken.size() ? 0 : WidthOf(report, sentence, style);
    const std::size_t least = std::min(width, kNarrowestSentence);
    if (sentence != taken.size()) take_one(sentence, least);
    const auto take = [&](Place place) {
        for (std::size_t i = 0; i < taken.size(); ++i) {
            if (report.columns[i].place != place || taken[i]) continue;
            if (!take_one(i, WidthOf(report, i, style))) return false;
        }
        return true;
    };
    if (take(Place::kTable) && take(Place::kIfRoom)) {
        used += width - least;  // all of it is worth more than further columns
        take(Place::kWide);
    }
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < taken.size(); ++i) {
        if (taken[i]) chosen.push_back(i);
    }
    return chosen;
}

void GrowingTable::Add(const Report& piece, const Style& style) {
    columns_ = piece.columns;
    widths_.resize(columns_.size(), 0);
    std::string& texts = texts_.emplace_back();
    for (const std::vector<Cell>& row : piece.rows) {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const std::string text = TextOf(columns_[i], row[i], style);
            widths_[i] = std::max(widths_[i], DisplayWidth(text));
            texts.append(text).append("\n");
        }
    }
}

void GrowingTable::Write(const Style& style, bool header,
                         const std::function<void(std::string_view)>& take) const {
    std::vector<std::string> line;
    for (const ColumnInfo& column : columns_) line.emplace_back(column.header);
    std::vector<std::size_t> widths = widths_;
    for (std::size_t i = 0; header && i < widths.size(); ++i) {
        widths[i] = std::max(widths[i], DisplayWidth(line[i]));
    }
    const TableLines lines(columns_, style, std::move(widths));
    std::string out;
    if (header) lines.Append(out, line, false);
    for (const std::string_view texts : texts_) {
        for (std::size_t at = 0; at < texts.size();) {
            for (std::string& text : line) {
                const std::size_t end = texts.find('\n', at);
                text.assign(texts, at, end - at);
                at = end + 1;
            }
            lines.Append(out, line, style.colour);
        }
        take(out);
        out.clear();
    }
}

void WriteTable(const Report& report, const Style& style, bool header, std::string& out) {
    GrowingTable table;
    table.Add(report, style);
    table.Write(style, header, [&out](std::string_view text) { out += text; });
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
            const std::string text = TextOf(report.columns[i], row[i], style);
            out.append(labels[i]).append(width - labels[i].size(), ' ');
            out.append("  ").append(text).append("\n");
        }
    }
}

}  // namespace vexorctl

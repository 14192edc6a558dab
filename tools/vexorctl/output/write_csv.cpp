#include "output/write_csv.h"

#include <cstddef>
#include <string_view>
#include <vector>

#include "common/utf8.h"
#include "output/cell.h"

namespace vexorctl {

namespace {

void AppendCsv(std::string& out, std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        out += text;
        return;
    }
    out += '"';
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    out += '"';
}

// What spreadsheets calculate, or run, when they open the file. A negative number is none.
bool IsFormula(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789.";
    if (text.empty() || std::string_view("=+-@\t\r").find(text.front()) == std::string_view::npos) {
        return false;
    }
    return text.front() != '-' || text.size() == 1 ||
           text.find_first_not_of(kDigits, 1) != std::string_view::npos;
}

}  // namespace

void WriteCsv(const Report& report, const Style& style, bool header, std::string& out) {
    const auto line = [&](auto field) {
        for (std::size_t i = 0; i < report.columns.size(); ++i) {
            if (i != 0) out += ',';
            std::string text = vexortools::ValidUtf8(field(i));
            if (!style.formulas && IsFormula(text)) text.insert(text.begin(), '\'');
            AppendCsv(out, text);
        }
        out += '\n';
    };
    if (header) line([&](std::size_t i) { return std::string(report.columns[i].key); });
    for (const std::vector<Cell>& row : report.rows) {
        line([&](std::size_t i) { return PlainText(report.columns[i], row[i], style); });
    }
}

}  // namespace vexorctl

#include "output/write_xml.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "model/fault.h"
#include "model/xml_text.h"
#include "output/cell.h"

namespace vexorctl {

namespace {

void AppendCells(std::string& out, std::span<const ColumnInfo> columns,
                 const std::vector<Cell>& cells, const Style& style, const std::string& indent) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (!cells[i].IsKnown()) continue;
        const ColumnInfo& column = columns[i];
        out += indent;
        if (column.kind == Kind::kItems) {
            AppendXmlStart(out, column.key, {});
            out += '\n';
            for (const std::vector<Cell>& item : cells[i].items) {
                out += indent + "  <item>\n";
                AppendCells(out, column.parts, item, style, indent + "    ");
                out += indent + "  </item>\n";
            }
            out.append(indent).append("</").append(column.key).append(">\n");
            continue;
        }
        XmlAttributeList attributes;
        if (column.kind == Kind::kCode || column.kind == Kind::kBits) {
            attributes.emplace_back("code", std::to_string(cells[i].number));
        }
        AppendXmlElement(out, column.key, XmlSafe(PlainText(column, cells[i], style)), attributes);
        out += '\n';
    }
}

}  // namespace

std::string XmlDocument(const Report& report, const Style& style) {
    std::string out;
    AppendXmlStart(out, "vexorctl", {{"schema", "vexorctl/1"}, {"command", report.command}});
    out += '\n';
    for (const std::vector<Cell>& row : report.rows) {
        out += "  <item>\n";
        AppendCells(out, report.columns, row, style, "    ");
        out += "  </item>\n";
    }
    for (const Fault& fault : report.faults) {
        XmlAttributeList attributes;
        if (!fault.address.empty()) attributes.emplace_back("address", XmlSafe(fault.address));
        if (!fault.function.empty()) attributes.emplace_back("function", XmlSafe(fault.function));
        if (fault.code != 0) attributes.emplace_back("code", std::to_string(fault.code));
        if (!fault.name.empty()) attributes.emplace_back("name", XmlSafe(fault.name));
        out += "  ";
        AppendXmlElement(out, "error", XmlSafe(fault.message), attributes);
        out += '\n';
    }
    return out + "</vexorctl>\n";
}

}  // namespace vexorctl

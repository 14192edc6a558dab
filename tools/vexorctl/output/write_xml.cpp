#include "output/write_xml.h"

#include <cstddef>
#include <vector>

#include "model/fault.h"
#include "model/xml_text.h"
#include "output/cell.h"

namespace vexorctl {

std::string XmlDocument(const Report& report, const Style& style) {
    std::string out;
    AppendXmlStart(out, "vexorctl", {{"schema", "vexorctl/1"}, {"command", report.command}});
    out += '\n';
    for (const std::vector<Cell>& row : report.rows) {
        out += "  <item>\n";
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (!row[i].IsKnown()) continue;
            const ColumnInfo& column = report.columns[i];
            XmlAttributeList attributes;
            if (column.kind == Kind::kCode || column.kind == Kind::kBits) {
                attributes.emplace_back("code", std::to_string(row[i].number));
            }
            out += "    ";
            AppendXmlElement(out, column.key, XmlSafe(PlainText(column, row[i], style)),
                             attributes);
            out += '\n';
        }
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

#include "output/write_json.h"

#include <nlohmann/json.hpp>
#include <span>
#include <utility>
#include <vector>

#include "common/timestamp.h"
#include "output/cell.h"

namespace vexorctl {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kSchema = "vexorctl/1";

Json ObjectJson(std::span<const ColumnInfo> columns, const std::vector<Cell>& cells,
                const Style& style);

Json CellJson(const ColumnInfo& column, const Cell& cell, const Style& style) {
    if (!cell.IsKnown()) return nullptr;
    switch (column.kind) {
        case Kind::kText:
        case Kind::kAddress:
        case Kind::kReference:
        case Kind::kHex:
        case Kind::kWord:
            return cell.text;
        case Kind::kNumber:
        case Kind::kBytes:
        case Kind::kRate:
        case Kind::kSeconds:
            return cell.number;
        case Kind::kBool:
            return cell.number != 0;
        case Kind::kRatio:
            return cell.ratio;
        case Kind::kTime:
            return vexortools::TimeText(static_cast<std::int64_t>(cell.number), style.utc);
        case Kind::kCode:
            return {{"code", cell.number},
                    {"name", cell.text.empty() ? Json(nullptr) : Json(cell.text)}};
        case Kind::kBits:
            return {{"code", cell.number}, {"names", cell.texts}};
        case Kind::kTexts:
        case Kind::kSentences:
        case Kind::kAddresses:
            return cell.texts;
        case Kind::kNumbers:
        case Kind::kSizes:
            return cell.numbers;
        case Kind::kItems: {
            Json items = Json::array();
            for (const std::vector<Cell>& item : cell.items) {
                items.push_back(ObjectJson(column.parts, item, style));
            }
            return items;
        }
    }
    return nullptr;
}

Json ObjectJson(std::span<const ColumnInfo> columns, const std::vector<Cell>& cells,
                const Style& style) {
    Json object = Json::object();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        object[std::string(columns[i].key)] = CellJson(columns[i], cells[i], style);
    }
    return object;
}

// What every document and every line begins with.
Json Begun(const std::string& command, bool partial) {
    Json json = {{"schema", kSchema}, {"command", command}};
    if (partial) json["partial"] = true;
    return json;
}

Json FaultJson(const Fault& fault) {
    const auto text = [](const std::string& value) {
        return value.empty() ? Json(nullptr) : Json(value);
    };
    return {{"address", text(fault.address)},
            {"function", text(fault.function)},
            {"code", fault.code == 0 ? Json(nullptr) : Json(fault.code)},
            {"name", text(fault.name)},
            {"message", fault.message}};
}

// The texts of a controller need not be UTF-8; what is not is replaced, so that the document is.
std::string Dump(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string JsonDocument(const Report& report, const Style& style) {
    Json items = Json::array();
    for (std::size_t row = 0; row < report.rows.size(); ++row) {
        items.push_back(ObjectJson(report.columns, report.rows[row], style));
    }
    Json errors = Json::array();
    for (const Fault& fault : report.faults) errors.push_back(FaultJson(fault));
    Json document = Begun(report.command, report.partial);
    document["items"] = std::move(items);
    document["errors"] = std::move(errors);
    if (!report.more.empty()) document.update(Json::parse(report.more));
    return Dump(document, 2);
}

std::string JsonLine(const Report& report, std::size_t row, const Style& style) {
    Json line = Begun(report.command, report.partial);
    line.update(ObjectJson(report.columns, report.rows[row], style));
    return Dump(line, -1);
}

std::string JsonFaultLine(const std::string& command, const Fault& fault) {
    Json line = Begun(command, false);
    line["error"] = FaultJson(fault);
    return Dump(line, -1);
}

}  // namespace vexorctl

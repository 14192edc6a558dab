#include "output/write_json.h"

#include <nlohmann/json.hpp>

#include "common/timestamp.h"
#include "output/cell.h"

namespace vexorctl {

namespace {

using Json = nlohmann::ordered_json;

Json CellJson(const ColumnInfo& column, const Cell& cell, const Style& style) {
    if (!cell.IsKnown()) return nullptr;
    switch (column.kind) {
        case Kind::kText:
            return cell.text;
        case Kind::kNumber:
        case Kind::kBytes:
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
            return cell.texts;
        case Kind::kNumbers:
            return cell.numbers;
    }
    return nullptr;
}

Json RowJson(const Report& report, std::size_t row, const Style& style) {
    Json object = Json::object();
    for (std::size_t i = 0; i < report.columns.size(); ++i) {
        object[std::string(report.columns[i].key)] =
            CellJson(report.columns[i], report.rows[row][i], style);
    }
    return object;
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
        items.push_back(RowJson(report, row, style));
    }
    Json errors = Json::array();
    for (const Fault& fault : report.faults) errors.push_back(FaultJson(fault));
    Json document = {{"schema", "vexorctl/1"},
                     {"command", report.command},
                     {"items", items},
                     {"errors", errors}};
    if (!report.more.empty()) document.update(Json::parse(report.more));
    return Dump(document, 2);
}

std::string JsonLine(const Report& report, std::size_t row, const Style& style) {
    return Dump(RowJson(report, row, style), -1);
}

std::string JsonFaultLine(const Fault& fault) { return Dump({{"error", FaultJson(fault)}}, -1); }

}  // namespace vexorctl

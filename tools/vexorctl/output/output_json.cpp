#include "output/output_json.h"

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

Json CellJson(const ColumnInfo& column, const Cell& cell, const Style& style) {
    if (!cell.known) return nullptr;
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
            return TimeText(cell.number, style.utc);
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

// ---- Schema -----------------------------------------------------------------------------------

Json Typed(const char* type) { return {{"type", type}}; }

Json KindSchema(Kind kind) {
    Json count = {{"type", "integer"}, {"minimum", 0}};
    switch (kind) {
        case Kind::kText:
            return Typed("string");
        case Kind::kNumber:
        case Kind::kBytes:
            return count;
        case Kind::kBool:
            return Typed("boolean");
        case Kind::kRatio:
            return {{"type", "number"}, {"minimum", 0}, {"maximum", 1}};
        case Kind::kTime:
            return {{"type", "string"},
                    {"pattern",
                     "^[0-9]{4,}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}"
                     "(Z|[+-][0-9]{2}:[0-9]{2})$"}};
        case Kind::kCode:
            return {{"type", "object"},
                    {"properties", {{"code", count}, {"name", {{"type", {"string", "null"}}}}}},
                    {"required", {"code", "name"}}};
        case Kind::kBits:
            return {{"type", "object"},
                    {"properties",
                     {{"code", count}, {"names", {{"type", "array"}, {"items", Typed("string")}}}}},
                    {"required", {"code", "names"}}};
        case Kind::kTexts:
            return {{"type", "array"}, {"items", Typed("string")}};
        case Kind::kNumbers:
            return {{"type", "array"}, {"items", count}};
    }
    return {};
}

Json ItemSchema(const std::vector<ColumnInfo>& columns) {
    Json properties = Json::object();
    for (const ColumnInfo& column : columns) {
        properties[std::string(column.key)] = {
            {"description", std::string(column.help)},
            {"anyOf", Json::array({KindSchema(column.kind), Typed("null")})}};
    }
    return {{"type", "object"}, {"properties", properties}};
}

}  // namespace

std::string JsonDocument(const Report& report, const Style& style) {
    Json items = Json::array();
    for (std::size_t row = 0; row < report.rows.size(); ++row) {
        items.push_back(RowJson(report, row, style));
    }
    Json errors = Json::array();
    for (const Fault& fault : report.faults) errors.push_back(FaultJson(fault));
    return Dump({{"schema", "vexorctl/1"},
                 {"command", report.command},
                 {"items", items},
                 {"errors", errors}},
                2);
}

std::string JsonLine(const Report& report, std::size_t row, const Style& style) {
    return Dump(RowJson(report, row, style), -1);
}

std::string JsonFaultLine(const Fault& fault) { return Dump({{"error", FaultJson(fault)}}, -1); }

std::string JsonSchema() {
    const Json nullable = {{"type", {"string", "null"}}};
    const Json error = {
        {"type", "object"},
        {"properties",
         {{"address", nullable},
          {"function", nullable},
          {"code", {{"type", {"integer", "null"}}}},
          {"name", nullable},
          {"message", Typed("string")}}},
        {"required", {"address", "function", "code", "name", "message"}},
    };
    Json commands = Json::array();
    Json rules = Json::array();
    for (const NounRow& noun : Nouns()) {
        for (const CommandRow& command : noun.commands) {
            if (command.columns == nullptr) continue;
            commands.push_back(command.Name());
            rules.push_back(
                {{"if", {{"properties", {{"command", {{"const", command.Name()}}}}}}},
                 {"then",
                  {{"properties",
                    {{"items", {{"type", "array"}, {"items", ItemSchema(command.columns())}}}}}}}});
        }
    }
    return Dump({{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                 {"title", "What vexorctl prints with --output json"},
                 {"type", "object"},
                 {"properties",
                  {{"schema", {{"const", "vexorctl/1"}}},
                   {"command", {{"enum", commands}}},
                   {"items", Typed("array")},
                   {"errors", {{"type", "array"}, {"items", error}}}}},
                 {"required", {"schema", "command", "items", "errors"}},
                 {"allOf", rules}},
                2);
}

#include "generate/json_schema.h"

#include <nlohmann/json.hpp>
#include <vector>

#include "output/cell.h"

namespace vexorctl {

namespace {

using Json = nlohmann::ordered_json;

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

std::string JsonSchema(std::span<const NounRow> nouns) {
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
    for (const NounRow& noun : nouns) {
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
    return Json({{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                 {"title", "What vexorctl prints with --output json"},
                 {"type", "object"},
                 {"properties",
                  {{"schema", {{"const", "vexorctl/1"}}},
                   {"command", {{"enum", commands}}},
                   {"items", Typed("array")},
                   {"errors", {{"type", "array"}, {"items", error}}}}},
                 {"required", {"schema", "command", "items", "errors"}},
                 {"allOf", rules}})
        .dump(2);
}

}  // namespace vexorctl

#include "generate/json_schema.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "codes/code_table.h"
#include "conditions/hxc_json.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"

namespace vexorctl {

namespace {

using Json = nlohmann::ordered_json;

// Whose names a schema can list: those of the controllers that vexorctl knows itself.
std::span<const hxcodes::Named> NamesOf(const ColumnInfo& column) {
    return column.names == nullptr ? std::span<const hxcodes::Named>()
                                   : hxcodes::OwnCodes().*column.names;
}

Json Typed(const char* type) { return {{"type", type}}; }

Json Ref(const std::string& name) { return {{"$ref", "#/$defs/" + name}}; }

Json OrNull(const Json& schema) { return {{"anyOf", Json::array({schema, Typed("null")})}}; }

Json ListOf(const Json& items) { return {{"type", "array"}, {"items", items}}; }

// A name of the table, or one that a file of codes has given to another controller's code.
Json NameSchema(const ColumnInfo& column) {
    const std::span<const hxcodes::Named> names = NamesOf(column);
    if (names.empty()) return {{"type", "string"}, {"minLength", 1}};
    Json known = Json::array();
    for (const hxcodes::Named& row : names) known.push_back(std::string(row.name));
    return {{"anyOf", Json::array({{{"enum", known}}, Ref("foreign_name")})}};
}

Json ItemSchema(std::span<const ColumnInfo> columns);

Json KindSchema(const ColumnInfo& column) {
    switch (column.kind) {
        case Kind::kText:
            return Ref("text");
        case Kind::kAddress:
        case Kind::kReference:
            return Ref("address");
        case Kind::kHex:
            return Ref("hex");
        case Kind::kWord: {
            Json words = Json::array();
            for (const std::string_view word : column.words()) words.push_back(std::string(word));
            // What has no word stands there as its number, unless the words are vexorctl's own.
            if (column.always) return {{"enum", words}};
            return {{"anyOf", Json::array({{{"enum", words}}, Ref("unnamed")})}};
        }
        case Kind::kNumber:
        case Kind::kRate:
        case Kind::kSeconds:
            return Ref("number");
        case Kind::kBytes:
            return Ref("bytes");
        case Kind::kBool:
            return Typed("boolean");
        case Kind::kRatio:
            return Ref("ratio");
        case Kind::kTime:
            return Ref("time");
        case Kind::kCode:
            return {{"type", "object"},
                    {"properties", {{"code", Ref("number")}, {"name", OrNull(NameSchema(column))}}},
                    {"required", {"code", "name"}}};
        case Kind::kBits: {
            const Json name = {{"anyOf", Json::array({NameSchema(column), Ref("unnamed")})}};
            return {{"type", "object"},
                    {"properties", {{"code", Ref("number")}, {"names", ListOf(name)}}},
                    {"required", {"code", "names"}}};
        }
        case Kind::kTexts:
        case Kind::kSentences:
            return ListOf(Typed("string"));
        case Kind::kAddresses:
            return ListOf(Ref("address"));
        case Kind::kNumbers:
            return ListOf(Ref("number"));
        case Kind::kSizes:
            return ListOf(Ref("bytes"));
        case Kind::kItems:
            return ListOf(ItemSchema(column.parts));
    }
    return {};
}

Json PropertiesOf(std::span<const ColumnInfo> columns) {
    Json properties = Json::object();
    for (const ColumnInfo& column : columns) {
        Json& property = properties[std::string(column.key)];
        property["description"] = std::string(column.help);
        const bool always = column.always || column.kind == Kind::kAddress;
        property.update(always ? KindSchema(column) : OrNull(KindSchema(column)));
    }
    return properties;
}

Json KeysOf(std::span<const ColumnInfo> columns) {
    Json keys = Json::array();
    for (const ColumnInfo& column : columns) keys.push_back(std::string(column.key));
    return keys;
}

Json ItemSchema(std::span<const ColumnInfo> columns) {
    return {
        {"type", "object"}, {"properties", PropertiesOf(columns)}, {"required", KeysOf(columns)}};
}

// What several columns share.
Json CommonSchemas() {
    const Json text_or_null = OrNull(Ref("text"));
    return {
        {"text", {{"type", "string"}, {"minLength", 1}}},
        {"number", {{"type", "integer"}, {"minimum", 0}}},
        {"bytes", {{"type", "integer"}, {"minimum", 0}, {"multipleOf", 512}}},
        {"ratio", {{"type", "number"}, {"minimum", 0}, {"maximum", 1}}},
        {"hex", {{"type", "string"}, {"pattern", "^([0-9A-F]{2})+$"}}},
        {"address",
         {{"type", "string"}, {"pattern", "^a[0-9]+(/(pd|vd|dg|enc)[0-9]+(/el[0-9]+)?)?$"}}},
        {"time",
         {{"type", "string"},
          {"format", "date-time"},
          {"pattern",
           "^[0-9]{4,}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}"
           "(Z|[+-][0-9]{2}:[0-9]{2})$"}}},
        {"unnamed",
         {{"description", "A code or bit that has no name, as its number"},
          {"type", "string"},
          {"pattern", "^[0-9]+$"}}},
        {"foreign_name",
         {{"description", "A name that only a file of codes has, for a controller of its own"},
          {"type", "string"},
          {"pattern", "^x_[a-z0-9_.]+$"}}},
        {"error",
         {{"type", "object"},
          {"properties",
           {{"address", text_or_null},
            {"function", text_or_null},
            {"code", OrNull(Typed("integer"))},
            {"name", text_or_null},
            {"message", Ref("text")}}},
          {"required", {"address", "function", "code", "name", "message"}}}},
    };
}

// What is printed by several commands: its name, its columns, and the commands.
struct ObjectRow {
    std::string name;
    std::vector<ColumnInfo> (*columns)();
    std::vector<std::string> commands;
};

std::string NameOf(const CommandRow& command) {
    if (command.columns == &ChangeColumns) return "change";
    const bool is_whole = command.verb.empty() || command.verb == "list" || command.verb == "show";
    const std::string noun(command.noun);
    return is_whole && !(command.noun == "flash" && command.verb == "show")
               ? noun
               : noun + "_" + std::string(command.verb);
}

std::vector<ObjectRow> ObjectsOf(std::span<const NounRow> nouns) {
    std::vector<ObjectRow> objects;
    for (const NounRow& noun : nouns) {
        for (const CommandRow& command : noun.commands) {
            const auto found = std::ranges::find(objects, command.columns, &ObjectRow::columns);
            if (found != objects.end()) {
                found->commands.push_back(command.Name());
            } else {
                objects.push_back({command.columns == nullptr ? "" : NameOf(command),
                                   command.columns,
                                   {command.Name()}});
            }
        }
    }
    return objects;
}

// "then" for the documents or lines of the commands.
Json WhenCommand(const std::vector<std::string>& commands, const Json& then) {
    return {{"if", {{"properties", {{"command", {{"enum", commands}}}}}}}, {"then", then}};
}

// The keys that --columns has named are enough where the document says that these are all.
Json WholeOrPartial(const std::string& name, const auto& place) {
    return {{"if", {{"required", {"partial"}}}},
            {"then", place(Ref(name + ".keys"))},
            {"else", place(Ref(name))}};
}

Json Envelope(const Json& commands) {
    return {{"schema", {{"const", "vexorctl/1"}}},
            {"command", {{"enum", commands}}},
            {"partial",
             {{"description", "Only the keys that --columns names are there"}, {"const", true}}}};
}

// The line that stands where events are missing.
Json GapSchema() {
    const Json number = {{"type", {"integer", "null"}}, {"minimum", 0}};
    return {{"type", "object"},
            {"description", "Events that event follow could not show"},
            {"properties",
             {{"command", {{"const", "event follow"}}},
              {"record", {{"const", "gap"}}},
              {"reason", {{"enum", {"overwritten", "reset", "overflow"}}}},
              {"lost", number},
              {"after", number},
              {"next", {{"type", "integer"}, {"minimum", 0}}},
              {"adapter", number}}},
            {"required", {"record", "reason", "lost", "after", "next", "adapter"}}};
}

}  // namespace

std::string JsonSchema(std::span<const NounRow> nouns) {
    Json commands = Json::array();
    Json definitions = CommonSchemas();
    Json documents = Json::array();
    Json lines = Json::array();
    for (const ObjectRow& object : ObjectsOf(nouns)) {
        for (const std::string& command : object.commands) commands.push_back(command);
        if (object.columns == nullptr) {
            // These print a document only when they end early.
            documents.push_back(
                WhenCommand(object.commands, {{"properties", {{"items", {{"maxItems", 0}}}}}}));
            lines.push_back(WhenCommand(object.commands, {{"required", {"error"}}}));
            continue;
        }
        const std::vector<ColumnInfo> columns = object.columns();
        definitions[object.name + ".keys"] = {{"type", "object"},
                                              {"properties", PropertiesOf(columns)}};
        definitions[object.name] = {{"$ref", "#/$defs/" + object.name + ".keys"},
                                    {"required", KeysOf(columns)}};
        documents.push_back(
            WhenCommand(object.commands, WholeOrPartial(object.name, [](const Json& item) {
                            return Json{{"properties", {{"items", {{"items", item}}}}}};
                        })));
        lines.push_back(WhenCommand(
            object.commands, WholeOrPartial(object.name, [](const Json& item) { return item; })));
    }
    definitions["condition"] = Json::parse(hxconditions::ConditionSchema());
    // A command that ends early has not looked at anything.
    documents.push_back(
        {{"if",
          {{"properties",
            {{"command", {{"enum", {"check", "overview"}}}}, {"errors", {{"maxItems", 0}}}}}}},
         {"then", Json::parse(hxconditions::OverviewSchema())}});
    Json document_keys = Envelope(commands);
    document_keys["items"] = Typed("array");
    document_keys["errors"] = ListOf(Ref("error"));
    Json line_keys = Envelope(commands);
    line_keys["error"] = Ref("error");
    definitions["document"] = {{"type", "object"},
                               {"properties", document_keys},
                               {"required", {"schema", "command", "items", "errors"}},
                               {"allOf", documents}};
    definitions["gap"] = GapSchema();
    definitions["line"] = {
        {"type", "object"},
        {"properties", line_keys},
        {"required", {"schema", "command"}},
        {"if", {{"required", {"record"}}}},
        {"then", Ref("gap")},
        {"else", {{"if", {{"required", {"error"}}}}, {"else", {{"allOf", lines}}}}}};
    return Json({{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                 {"$id", "urn:vexorctl:schema:1"},
                 {"title", "What vexorctl prints with --output json, and each line of jsonl"},
                 {"if", {{"required", {"items"}}}},
                 {"then", Ref("document")},
                 {"else", Ref("line")},
                 {"$defs", definitions}})
        .dump(2);
}

}  // namespace vexorctl

// Conditions as JSON. Unknown members are null instead of left out.
#include "conditions/hxc_json.h"

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

namespace hxconditions {

namespace {

using Json = nlohmann::ordered_json;

Json TextOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

Json TimeOrNull(std::int64_t seconds) { return seconds == 0 ? Json() : Json(IsoTimeText(seconds)); }

template <class Number>
Json NumberOrNull(const std::optional<Number>& number) {
    return number ? Json(*number) : Json();
}

Json CausesAsJson(const Condition& condition) {
    Json causes = Json::array();
    for (const Cause& cause : condition.causes) {
        Json each;
        each["code"] = RowOf(cause.code).name;
        each["address"] = TextOrNull(cause.address);
        causes.push_back(std::move(each));
    }
    return causes;
}

Json JsonOf(const Condition& condition);

// ---- Schemas of members ------------------------------------------------------------------------

Json OneOfSchema(Json words) { return {{"enum", std::move(words)}}; }
Json TextSchema() { return {{"type", "string"}, {"minLength", 1}}; }
Json FlagSchema() { return {{"type", "boolean"}}; }
Json NumberSchema() { return {{"type", "integer"}, {"minimum", 0}}; }
Json OrNullSchema(Json schema) { return {{"anyOf", {std::move(schema), {{"type", "null"}}}}}; }
Json TextsSchema() {
    return OrNullSchema({{"type", "array"}, {"minItems", 1}, {"items", {{"type", "string"}}}});
}
Json TimeSchema() {
    return OrNullSchema({{"type", "string"},
                         {"format", "date-time"},
                         {"pattern", "^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z$"}});
}
Json AddressSchema() {
    return OrNullSchema(
        {{"type", "string"}, {"pattern", "^a[0-9]+(/(pd|vd|dg|enc)[0-9]+(/el[0-9]+)?)?$"}});
}
Json ListSchema(Json items) { return {{"type", "array"}, {"items", std::move(items)}}; }
Json ObjectSchema(const Json& properties) {
    Json required = Json::array();
    for (const auto& member : properties.items()) required.push_back(member.key());
    return {{"type", "object"}, {"properties", properties}, {"required", required}};
}

Json Codes() {
    Json codes = Json::array();
    for (const Row& row : Rows()) codes.push_back(row.name);
    return OneOfSchema(codes);
}
Json Levels() {
    return OneOfSchema({NameOf(Level::kCritical), NameOf(Level::kUnknown), NameOf(Level::kWarning),
                        NameOf(Level::kInfo)});
}
Json Kinds() {
    Json kinds = Json::array();
    for (unsigned i = 0; i <= static_cast<unsigned>(Kind::kSink); ++i) {
        kinds.push_back(NameOf(static_cast<Kind>(i)));
    }
    return OneOfSchema(kinds);
}

// ---- Members of a condition
// ----------------------------------------------------------------------

Json ObjectJson(const Condition& condition) {
    const Object& object = condition.object;
    return {{"kind", NameOf(object.kind)},
            {"address", TextOrNull(object.address)},
            {"name", TextOrNull(object.name)},
            {"serial", TextOrNull(object.serial)}};
}

Json SinceIsJson(const Condition& condition) {
    if (condition.since == 0) return nullptr;
    return condition.since_is == SinceIs::kEvent ? "event" : "at_or_before";
}

Json AcknowledgedJson(const Condition& condition) {
    const auto& ack = condition.acknowledged;
    if (!ack) return nullptr;
    return {{"by", ack->by}, {"at", IsoTimeText(ack->at)}, {"note", TextOrNull(ack->note)}};
}

Json FoldedJson(const Condition& condition) {
    Json folded = Json::array();
    for (const Condition& each : condition.folded) folded.push_back(JsonOf(each));
    return folded;
}

// One member: how it is written, and what the schema says of it.
struct MemberRow {
    const char* name;
    Json (*get)(const Condition&);
    Json (*schema)();
};
constexpr MemberRow kMemberRows[] = {
    {"code", [](const Condition& it) { return Json(RowOf(it.code).name); }, Codes},
    {"level", [](const Condition& it) { return Json(NameOf(it.level)); }, Levels},
    {"level_set_here", [](const Condition& it) { return Json(it.level_is_set_here); }, FlagSchema},
    {"rank", [](const Condition& it) { return Json(RowOf(it.code).rank); }, NumberSchema},
    {"object", ObjectJson,
     [] {
         return ObjectSchema({{"kind", Kinds()},
                              {"address", AddressSchema()},
                              {"name", OrNullSchema(TextSchema())},
                              {"serial", OrNullSchema(TextSchema())}});
     }},
    {"since", [](const Condition& it) { return TimeOrNull(it.since); }, TimeSchema},
    {"since_is", SinceIsJson,
     [] {
         return OneOfSchema({"event", "at_or_before", nullptr});
     }},
    {"first_seen", [](const Condition& it) { return TimeOrNull(it.first_seen); }, TimeSchema},
    {"last_seen", [](const Condition& it) { return TimeOrNull(it.last_seen); }, TimeSchema},
    {"sentence", [](const Condition& it) { return Json(it.sentence); }, TextSchema},
    {"cause", CausesAsJson,
     [] {
         return ListSchema(ObjectSchema({{"code", Codes()}, {"address", AddressSchema()}}));
     }},
    {"hindrance",
     [](const Condition& it) { return it.hindrance ? Json(RowOf(*it.hindrance).name) : Json(); },
     [] { return OrNullSchema(Codes()); }},
    {"next_step",
     [](const Condition& it) {
         return Json{{"text", TextOrNull(it.next_step)},
                     {"command", it.command.empty() ? Json() : Json(it.command)}};
     },
     [] {
         return ObjectSchema({{"text", OrNullSchema(TextSchema())}, {"command", TextsSchema()}});
     }},
    {"count", [](const Condition& it) { return Json(it.count); }, NumberSchema},
    {"stale", [](const Condition& it) { return Json(it.is_stale); }, FlagSchema},
    {"flapping", [](const Condition& it) { return Json(it.is_flapping); }, FlagSchema},
    {"acknowledged", AcknowledgedJson,
     [] {
         return OrNullSchema(ObjectSchema(
             {{"by", TextSchema()}, {"at", TimeSchema()}, {"note", OrNullSchema(TextSchema())}}));
     }},
    {"silenced_until",
     [](const Condition& it) { return TimeOrNull(it.silenced_until.value_or(0)); }, TimeSchema},
    {"doc", [](const Condition& it) { return Json(ManualOf(RowOf(it.code))); }, TextSchema},
    {"folded", FoldedJson,
     [] {
         return ListSchema({{"$ref", "#/$defs/condition"}});
     }},
};

Json JsonOf(const Condition& condition) {
    Json json;
    for (const MemberRow& member : kMemberRows) json[member.name] = member.get(condition);
    return json;
}

std::string TextOf(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string OverviewJson(const Overview& overview, const Counts& counts) {
    Json json;
    json["overall"] = OverallNameOf(overview.overall);
    json["counts"]["critical"] = overview.critical;
    json["counts"]["unknown"] = overview.unknown;
    json["counts"]["warning"] = overview.warning;
    json["counts"]["info"] = overview.info;
    json["counts"]["acknowledged"] = overview.acknowledged;
    json["counts"]["silenced"] = overview.silenced;
    json["counts"]["switched_off"] = overview.off;
    json["machine"]["adapters"] = NumberOrNull(counts.adapters);
    json["machine"]["virtual_disks"] = NumberOrNull(counts.virtual_disks);
    json["machine"]["disks"] = NumberOrNull(counts.disks);
    json["machine"]["spares"] = NumberOrNull(counts.spares);
    json["conditions"] = Json::array();
    for (const Condition& head : overview.heads) json["conditions"].push_back(JsonOf(head));
    return TextOf(json);
}

std::string ConditionSchema() {
    Json properties;
    for (const MemberRow& member : kMemberRows) properties[member.name] = member.schema();
    return TextOf(ObjectSchema(properties));
}

std::string OverviewSchema() {
    const auto counts = [](const Json& schema, std::initializer_list<const char*> names) {
        Json properties;
        for (const char* name : names) properties[name] = schema;
        return ObjectSchema(properties);
    };
    return TextOf(ObjectSchema(
        {{"overall", OneOfSchema({"ok", "warning", "critical", "unknown"})},
         {"counts", counts(NumberSchema(), {"critical", "unknown", "warning", "info",
                                            "acknowledged", "silenced", "switched_off"})},
         {"machine",
          counts(OrNullSchema(NumberSchema()), {"adapters", "virtual_disks", "disks", "spares"})},
         {"conditions", ListSchema({{"$ref", "#/$defs/condition"}})}}));
}

std::string ConditionJson(const Condition& condition) { return TextOf(JsonOf(condition)); }

std::string MessageJson(const Message& message) {
    Json json = JsonOf(message.condition);
    json["change"] = NameOf(message.change);
    json["was"] = message.was ? Json(RowOf(*message.was).name) : Json();
    const bool over = message.change == Change::kCleared || message.change == Change::kPassed;
    json["lasted_s"] = over ? Json(message.lasted_s) : Json();
    json["reason"] = TextOrNull(message.reason);
    return TextOf(json);
}

}  // namespace hxconditions

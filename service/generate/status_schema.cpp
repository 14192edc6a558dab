#include "service/generate/status_schema.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "codes/activity.h"
#include "codes/named.h"
#include "conditions/hxc_json.h"
#include "conditions/hxc_rows.h"

namespace hxservice {

namespace {

using SchemaJson = nlohmann::ordered_json;

SchemaJson Described(SchemaJson schema, const char* description) {
    schema["description"] = description;
    return schema;
}
SchemaJson Text() { return {{"type", "string"}, {"minLength", 1}}; }
SchemaJson Number() { return {{"type", "integer"}, {"minimum", 0}}; }
SchemaJson Flag() { return {{"type", "boolean"}}; }
SchemaJson Date() {
    return {{"type", "string"},
            {"format", "date-time"},
            {"pattern", "^[0-9]{4,}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z$"}};
}
SchemaJson Address(const char* pattern) { return {{"type", "string"}, {"pattern", pattern}}; }
SchemaJson AdapterAddress() { return Address("^a[0-9]+$"); }
SchemaJson OrNull(SchemaJson schema) {
    return {{"anyOf", SchemaJson::array({std::move(schema), {{"type", "null"}}})}};
}
SchemaJson ListOf(SchemaJson items, std::size_t most) {
    return {{"type", "array"}, {"maxItems", most}, {"items", std::move(items)}};
}
SchemaJson ObjectOf(const SchemaJson& properties) {
    SchemaJson required = SchemaJson::array();
    for (const auto& member : properties.items()) required.push_back(member.key());
    return {{"type", "object"}, {"properties", properties}, {"required", required}};
}
template <class Rows>
SchemaJson OneOf(const Rows& rows) {
    SchemaJson names = SchemaJson::array();
    for (const auto& row : rows) names.push_back(row.name);
    return {{"enum", names}};
}
SchemaJson KindOfObject() {
    SchemaJson names = SchemaJson::array();
    for (unsigned kind = 0; kind <= static_cast<unsigned>(hxconditions::Kind::kSink); ++kind) {
        names.push_back(hxconditions::NameOf(static_cast<hxconditions::Kind>(kind)));
    }
    return {{"enum", names}};
}

SchemaJson Versions() {
    return ObjectOf({{"service", Text()},
                     {"adapters", ListOf(ObjectOf({{"adapter", AdapterAddress()},
                                                   {"firmware", OrNull(Text())},
                                                   {"driver", OrNull(Text())},
                                                   {"bios", OrNull(Text())}}),
                                         16)}});
}

SchemaJson Tasks() {
    const SchemaJson object = ObjectOf({{"kind", KindOfObject()},
                                        {"address", Address("^a[0-9]+/(pd|vd|dg)[0-9]+$")},
                                        {"name", OrNull(Text())},
                                        {"serial", OrNull(Text())}});
    return ListOf(
        ObjectOf({{"object", object},
                  {"activity", OrNull(OneOf(hxcodes::kActivityNames))},
                  {"state", OrNull(OneOf(hxcodes::kActivityStateNames))},
                  {"percent", OrNull({{"type", "integer"}, {"minimum", 0}, {"maximum", 100}})},
                  {"first_seen", Date()},
                  {"percent_per_hour", OrNull({{"type", "number"}, {"minimum", 0}})},
                  {"seconds_left", OrNull(Number())}}),
        40);
}

SchemaJson Adapters() {
    return ListOf(ObjectOf({{"address", AdapterAddress()},
                            {"serial", OrNull(Text())},
                            {"readable", Flag()},
                            {"virtual_disks", OrNull(Number())},
                            {"disks", OrNull(Number())},
                            {"disk_groups", OrNull(Number())},
                            {"enclosures", OrNull(Number())},
                            {"battery_percent", OrNull(Number())}}),
                  16);
}

SchemaJson Events() {
    return ListOf(ObjectOf({{"number", Number()},
                            {"time", Described(Date(), "By the controller's clock")},
                            {"adapter", AdapterAddress()},
                            {"class", Text()},
                            {"code", Number()},
                            {"severity", Text()},
                            {"text", Text()}}),
                  5);
}

SchemaJson Deliveries() {
    return ListOf(ObjectOf({{"sink", Text()},
                            {"failing", Flag()},
                            {"error", OrNull(Text())},
                            {"waiting", Number()},
                            {"given_up", Number()}}),
                  20);
}

}  // namespace

std::string StatusSchema() {
    SchemaJson properties = {
        {"schema", {{"const", "hxraidsvc-status/1"}}},
        {"version", Described(Text(), "Of the service")},
        {"written_at", Described(Number(), "Seconds since 1970, by this machine's clock")},
        {"written", Date()},
        {"looked_at", Described(OrNull(Date()), "When the machine was looked at last")},
        {"interval_s", {{"type", "number"}, {"exclusiveMinimum", 0}}},
        {"once", Described(Flag(), "No next round follows by itself")},
        {"collecting", Described(Flag(), "Whether the last check-in could be made")},
        {"collection", Described(Text(), "How it ended, for people")},
        {"versions", Versions()},
        {"store", ObjectOf({{"first", Number()}, {"next", Number()}, {"lost", Number()}})},
    };
    const SchemaJson overview = SchemaJson::parse(hxconditions::OverviewSchema());
    for (const auto& member : overview["properties"].items()) {
        if (member.key() != "conditions") properties[member.key()] = member.value();
    }
    properties["adapters"] = Adapters();
    properties["tasks"] = Tasks();
    properties["tasks_left_out"] = Number();
    properties["counters"] =
        Described({{"type", "object"}, {"additionalProperties", OrNull(Number())}},
                  "The library's counters of changes: any difference means a change");
    properties["events"] = Described(Events(), "The last five, the oldest first");
    properties["deliveries"] = Described(Deliveries(), "Those that fail or gave alerts up");
    properties["left_out"] = Described(Number(), "Conditions that had no room");
    properties["conditions"] = Described(overview["properties"]["conditions"], "The worst first");
    SchemaJson schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                         {"$id", "urn:hxraidsvc:status:1"},
                         {"title", "What hxraidsvc publishes after each round: status.json"}};
    schema.update(ObjectOf(properties));
    schema["$defs"]["condition"] = SchemaJson::parse(hxconditions::ConditionSchema());
    return schema.dump(2) + "\n";
}

}  // namespace hxservice

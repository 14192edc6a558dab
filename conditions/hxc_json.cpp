// Conditions as JSON. Unknown members are null instead of left out.
#include "conditions/hxc_json.h"

#include <nlohmann/json.hpp>
#include <optional>

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

Json JsonOf(const Condition& condition) {
    const Row& row = RowOf(condition.code);
    Json json;
    json["code"] = row.name;
    json["level"] = NameOf(condition.level);
    json["level_set_here"] = condition.level_is_set_here;
    json["rank"] = row.rank;
    json["object"]["kind"] = NameOf(condition.object.kind);
    json["object"]["address"] = TextOrNull(condition.object.address);
    json["object"]["name"] = TextOrNull(condition.object.name);
    json["object"]["serial"] = TextOrNull(condition.object.serial);
    json["since"] = TimeOrNull(condition.since);
    json["since_is"] = condition.since == 0                    ? Json()
                       : condition.since_is == SinceIs::kEvent ? Json("event")
                                                               : Json("at_or_before");
    json["first_seen"] = TimeOrNull(condition.first_seen);
    json["last_seen"] = TimeOrNull(condition.last_seen);
    json["sentence"] = condition.sentence;
    json["cause"] = CausesAsJson(condition);
    json["hindrance"] = condition.hindrance ? Json(RowOf(*condition.hindrance).name) : Json();
    json["next_step"]["text"] = condition.next_step;
    json["next_step"]["command"] = condition.command.empty() ? Json() : Json(condition.command);
    json["count"] = condition.count;
    json["stale"] = condition.is_stale;
    json["flapping"] = condition.is_flapping;
    json["acknowledged"] = Json();
    if (const auto& ack = condition.acknowledged) {
        json["acknowledged"]["by"] = ack->by;
        json["acknowledged"]["at"] = IsoTimeText(ack->at);
        json["acknowledged"]["note"] = TextOrNull(ack->note);
    }
    json["silenced_until"] = TimeOrNull(condition.silenced_until.value_or(0));
    json["doc"] = "conditions(7)#" + std::string(row.name);
    json["folded"] = Json::array();
    for (const Condition& each : condition.folded) json["folded"].push_back(JsonOf(each));
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
    json["machine"]["adapters"] = NumberOrNull(counts.adapters);
    json["machine"]["virtual_disks"] = NumberOrNull(counts.virtual_disks);
    json["machine"]["disks"] = NumberOrNull(counts.disks);
    json["machine"]["spares"] = NumberOrNull(counts.spares);
    json["conditions"] = Json::array();
    for (const Condition& head : overview.heads) json["conditions"].push_back(JsonOf(head));
    return TextOf(json);
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

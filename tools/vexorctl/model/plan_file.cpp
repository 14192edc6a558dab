#include "model/plan_file.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

namespace vexorctl {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kFormat = "vexorctl-plan/1";
constexpr int kDeepest = 5;  // of brackets: the facts of an object

constexpr const char* kSchemaKey = "schema";
constexpr const char* kMadeBy = "made_by";
constexpr const char* kMadeAt = "made_at";
constexpr const char* kHost = "host";
constexpr const char* kCommand = "command";
constexpr const char* kWhat = "what";
constexpr const char* kEffects = "effects";
constexpr const char* kSize = "size_bytes";
constexpr const char* kFunctions = "functions";
constexpr const char* kObjects = "objects";
constexpr const char* kObject = "object";
constexpr const char* kFacts = "facts";
constexpr const char* kFact = "fact";
constexpr const char* kValue = "value";

// The parser would silently keep the last of two equal keys, while a reader may see the first.
class Watch {
public:
    bool operator()(int depth, Json::parse_event_t event, const Json& parsed) {
        if (depth > kDeepest) throw PlanFileError("is nested too deeply");
        if (event == Json::parse_event_t::object_start) keys_.emplace_back();
        if (event == Json::parse_event_t::object_end) keys_.pop_back();
        if (event == Json::parse_event_t::key &&
            !keys_.back().insert(parsed.get<std::string>()).second) {
            throw PlanFileError("has the key \"" + parsed.get<std::string>() + "\" twice");
        }
        return true;
    }

private:
    std::vector<std::set<std::string>> keys_;
};

Json ParsePlan(const std::string& text) {
    try {
        return Json::parse(text, [watch = Watch()](int depth, Json::parse_event_t event,
                                                   const Json& parsed) mutable {
            return watch(depth, event, parsed);
        });
    } catch (const Json::parse_error& error) {
        const auto end =
            text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
        throw PlanFileError("is not JSON: line " +
                            std::to_string(1 + std::count(text.begin(), end, '\n')));
    }
}

// An object of exactly these keys.
void CheckPlanKeys(const Json& object, std::initializer_list<std::string_view> keys,
                   const std::string& where) {
    if (!object.is_object()) throw PlanFileError(where + "has to be an object");
    for (const auto& [key, value] : object.items()) {
        if (std::ranges::find(keys, key) == keys.end()) {
            throw PlanFileError(std::string(where)
                                    .append("has the key \"")
                                    .append(key)
                                    .append("\", which is not known"));
        }
    }
    for (const std::string_view key : keys) {
        if (!object.contains(key)) {
            throw PlanFileError(where + "lacks the key \"" + std::string(key) + "\"");
        }
    }
}

std::string TextAt(const Json& object, const char* key) {
    const Json& value = object.at(key);
    if (!value.is_string()) throw PlanFileError("\"" + std::string(key) + "\" has to be a text");
    return value.get<std::string>();
}

const Json& ListAt(const Json& object, const char* key) {
    const Json& value = object.at(key);
    if (!value.is_array()) throw PlanFileError("\"" + std::string(key) + "\" has to be a list");
    return value;
}

std::vector<std::string> TextsAt(const Json& object, const char* key) {
    std::vector<std::string> texts;
    for (const Json& each : ListAt(object, key)) {
        if (!each.is_string()) {
            throw PlanFileError("\"" + std::string(key) + "\" has to be a list of texts");
        }
        texts.push_back(each.get<std::string>());
    }
    return texts;
}

std::optional<std::uint64_t> SizeAt(const Json& object) {
    const Json& value = object.at(kSize);
    if (value.is_null()) return std::nullopt;
    if (!value.is_number_unsigned()) {
        throw PlanFileError("\"" + std::string(kSize) + "\" has to be a whole number or null");
    }
    return value.get<std::uint64_t>();
}

std::map<std::string, Fingerprint> ObjectsAt(const Json& object) {
    std::map<std::string, Fingerprint> objects;
    for (const Json& each : ListAt(object, kObjects)) {
        CheckPlanKeys(each, {kObject, kFacts}, "an object ");
        Fingerprint fingerprint;
        for (const Json& fact : ListAt(each, kFacts)) {
            CheckPlanKeys(fact, {kFact, kValue}, "a fact ");
            fingerprint.emplace_back(TextAt(fact, kFact), TextAt(fact, kValue));
        }
        const std::string name = TextAt(each, kObject);
        if (!objects.emplace(name, std::move(fingerprint)).second) {
            throw PlanFileError("has the object \"" + name + "\" twice");
        }
    }
    return objects;
}

}  // namespace

std::string WritePlan(const PlanFile& plan) {
    Json objects = Json::array();
    for (const auto& [name, fingerprint] : plan.objects) {
        Json facts = Json::array();
        for (const auto& [fact, value] : fingerprint) {
            facts.push_back(Json{{kFact, fact}, {kValue, value}});
        }
        objects.push_back(Json{{kObject, name}, {kFacts, std::move(facts)}});
    }
    const Json document = {
        {kSchemaKey, kFormat},        {kMadeBy, plan.made_by},
        {kMadeAt, plan.made_at},      {kHost, plan.host},
        {kCommand, plan.words},       {kWhat, plan.what},
        {kEffects, plan.effects},     {kSize, plan.size_bytes ? Json(*plan.size_bytes) : Json()},
        {kFunctions, plan.functions}, {kObjects, std::move(objects)},
    };
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

PlanFile ReadPlan(const std::string& text) {
    const Json document = ParsePlan(text);
    if (!document.is_object() || !document.contains(kSchemaKey)) {
        throw PlanFileError("is no plan of vexorctl");
    }
    if (const std::string format = TextAt(document, kSchemaKey); format != kFormat) {
        throw PlanFileError("is no plan of the form " + std::string(kFormat) + " but \"" + format +
                            "\"");
    }
    CheckPlanKeys(document,
                  {kSchemaKey, kMadeBy, kMadeAt, kHost, kCommand, kWhat, kEffects, kSize,
                   kFunctions, kObjects},
                  "");
    PlanFile plan;
    plan.made_by = TextAt(document, kMadeBy);
    plan.made_at = TextAt(document, kMadeAt);
    plan.host = TextAt(document, kHost);
    plan.words = TextsAt(document, kCommand);
    plan.what = TextAt(document, kWhat);
    plan.effects = TextsAt(document, kEffects);
    plan.size_bytes = SizeAt(document);
    plan.functions = TextsAt(document, kFunctions);
    plan.objects = ObjectsAt(document);
    if (plan.words.empty()) throw PlanFileError("names no command");
    return plan;
}

}  // namespace vexorctl

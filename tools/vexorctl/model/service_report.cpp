#include "model/service_report.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/address.h"
#include "common/failure.h"
#include "common/read_file.h"
#include "conditions/hxc_look.h"
#include "conditions/hxc_object.h"
#include "conditions/hxc_rows.h"

namespace vexorctl {

namespace {

namespace hxc = hxconditions;
using Json = nlohmann::ordered_json;

constexpr char kReport[] = "/run/hxraid/status.json";
constexpr std::size_t kMostReportBytes = std::size_t{1} << 20;

constexpr double kRoundsOfSilence = 3;
constexpr double kLeastSilence = 30;  // seconds; a round may take as long

std::optional<Json> ReadReport() {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    const std::string path = std::string(root == nullptr ? "" : root) + kReport;
    try {
        Json report = Json::parse(
            vexortools::ReadFile(path.c_str(), vexortools::FileKind::kRegular, kMostReportBytes));
        if (report.at("schema") == "hxraidsvc-status/1") return report;
    } catch (const vexortools::FileError&) {
        return std::nullopt;
    } catch (const Json::exception&) {
        return std::nullopt;
    }
    return std::nullopt;
}

bool IsOfServiceAlone(const hxc::Row& row) {
    return row.needs != hxc::Needs::kLook || row.kind == hxc::Kind::kStore ||
           row.kind == hxc::Kind::kService || row.kind == hxc::Kind::kSink;
}

std::string TextOf(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found == json.end() || !found->is_string() ? "" : found->get<std::string>();
}

hxc::Object ObjectOf(const Json& json, const hxc::Row& row) {
    hxc::Object object;
    object.kind = row.kind;
    object.address = TextOf(json, "address");
    object.name = TextOf(json, "name");
    object.serial = TextOf(json, "serial");
    if (object.address.empty()) return object;
    try {
        const vexortools::Address address = vexortools::ParseSelector(object.address).address;
        object.adapter = address.adapter;
        object.id = address.id;
        object.element = address.element;
    } catch (const vexortools::UsageError&) {
        object.address.clear();
    }
    return object;
}

std::optional<hxc::Level> LevelOf(std::string_view name, const hxc::Row& row) {
    for (const hxc::Level level : {hxc::LevelOf(row), hxc::Level::kCritical, hxc::Level::kUnknown,
                                   hxc::Level::kWarning, hxc::Level::kInfo}) {
        if (hxc::NameOf(level) == name) return level;
    }
    return std::nullopt;
}

std::optional<hxc::Condition> ConditionOf(const Json& json) {
    const auto code = hxc::FindRow(json.at("code").get<std::string>());
    if (!code || !IsOfServiceAlone(hxc::RowOf(*code))) return std::nullopt;
    const hxc::Row& row = hxc::RowOf(*code);
    const auto level = LevelOf(json.at("level").get<std::string>(), row);
    if (!level) return std::nullopt;
    hxc::Condition condition;
    condition.code = *code;
    condition.level = *level;
    condition.object = ObjectOf(json.at("object"), row);
    condition.sentence = json.at("sentence").get<std::string>();
    condition.next_step = TextOf(json.at("next_step"), "text");
    const Json& command = json.at("next_step").at("command");
    if (command.is_array()) condition.command = command.get<std::vector<std::string>>();
    condition.is_stale = json.at("stale").get<bool>();
    return condition;
}

void TakeConditions(const Json& list, std::vector<hxc::Condition>& conditions) {
    for (const Json& each : list) {
        if (const auto condition = ConditionOf(each)) conditions.push_back(*condition);
        TakeConditions(each.at("folded"), conditions);
    }
}

bool IsAsked(const hxc::Condition& condition, const hxc::Answers& answers) {
    return condition.object.adapter == hxc::kNoNumber ||
           answers.machine.result != hxc::Query::Result::kRead ||
           std::ranges::find(answers.adapters, condition.object.adapter, &hxc::Adapter::number) !=
               answers.adapters.end();
}

// Fills in whether a service watches. Returns what it alone knows.
std::vector<hxc::Condition> TakeReport(const Json& report, hxc::Answers& answers,
                                       std::int64_t now) {
    const auto age = static_cast<double>(now - report.at("written_at").get<std::int64_t>());
    const double limit =
        std::max(kLeastSilence, kRoundsOfSilence * report.at("interval_s").get<double>());
    std::vector<hxc::Condition> conditions;
    if (std::abs(age) <= limit) {
        TakeConditions(report.at("conditions"), conditions);
        answers.service.is_here = true;
    } else if (age > 0 && !report.at("once").get<bool>()) {
        // Rounds that somebody makes one by one have no next one that could be late.
        answers.service.silent_for_s = static_cast<std::int64_t>(age);
    }
    return conditions;
}

}  // namespace

hxc::Overview LookWithService(hxc::Answers answers, std::int64_t now) {
    std::vector<hxc::Condition> conditions;
    if (const std::optional<Json> report = ReadReport()) {
        try {
            conditions = TakeReport(*report, answers, now);
        } catch (const Json::exception&) {
            conditions.clear();
        }
    }
    std::erase_if(conditions, [&](const hxc::Condition& each) { return !IsAsked(each, answers); });
    const hxc::Now clocks{.real = now, .boot = 0, .boot_id = ""};
    return hxc::WithHeads(hxc::LookOnce(answers, clocks, {}), conditions);
}

}  // namespace vexorctl

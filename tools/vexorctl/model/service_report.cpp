#include "model/service_report.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/address.h"
#include "common/failure.h"
#include "common/read_file.h"
#include "common/timestamp.h"
#include "conditions/hxc_find_arrays.h"
#include "conditions/hxc_look.h"
#include "conditions/hxc_object.h"
#include "conditions/hxc_redundancy.h"
#include "conditions/hxc_rows.h"
#include "conditions/hxc_text.h"
#include "conditions/hxc_things.h"
#include "model/condition_levels.h"
#include "model/event_store_file.h"
#include "model/library_session.h"

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

// What memory knows, too, of something that is not listed any more: nothing that a look could see
// stands for it.
bool IsMissed(const hxc::Condition& condition, const hxc::Answers& answers) {
    const auto adapter =
        std::ranges::find(answers.adapters, condition.object.adapter, &hxc::Adapter::number);
    if (adapter == answers.adapters.end()) return false;
    const hxc::Disk* const disk = hxc::FindDisk(*adapter, condition.object.id);
    if (condition.code == hxc::Code::kDiskMissing) return disk == nullptr;
    if (condition.code == hxc::Code::kBatteryRemoved) return !adapter->battery;
    return condition.code == hxc::Code::kReplacementTooSmall && disk != nullptr &&
           disk->serial == condition.object.serial;
}

// Whether this look has read what the condition rests on, so that it knows better.
bool IsSeen(const hxc::Condition& condition, const hxc::Answers& answers) {
    const hxc::Things things(answers, {});
    hxc::Object object = condition.object;
    if (const hxc::Adapter* const adapter = things.FindAdapter(object.adapter)) {
        object.adapter_identity = things.Of(*adapter).identity;
    }
    return things.IsRead(object, hxc::RowOf(condition.code).rests_on);
}

bool IsTold(const hxc::Overview& overview, const hxc::Condition& condition) {
    const auto same = [&](const hxc::Condition& each) {
        return each.code == condition.code && each.object.kind == condition.object.kind &&
               each.object.address == condition.object.address;
    };
    return std::ranges::any_of(overview.heads, [&](const hxc::Condition& head) {
        return same(head) || std::ranges::any_of(head.folded, same);
    });
}

std::string TextOf(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found == json.end() || !found->is_string() ? "" : found->get<std::string>();
}

// 0 where there is none.
std::int64_t TimeOf(const Json& json, const char* name) {
    const std::string text = TextOf(json, name);
    if (text.empty()) return 0;
    try {
        return std::chrono::floor<std::chrono::seconds>(vexortools::ParseTime(text))
            .time_since_epoch()
            .count();
    } catch (const vexortools::UsageError&) {
        return 0;
    }
}

std::string LabelOf(const hxc::Object& object) {
    if (object.address.empty() || object.name.empty()) return object.address + object.name;
    return object.address + " " + object.name;
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
    if (!code) return std::nullopt;
    const hxc::Row& row = hxc::RowOf(*code);
    const auto level = LevelOf(json.at("level").get<std::string>(), row);
    if (!level) return std::nullopt;
    hxc::Condition condition;
    condition.code = *code;
    condition.level = *level;
    condition.level_is_set_here = *level != hxc::LevelOf(row);
    condition.object = ObjectOf(json.at("object"), row);
    condition.sentence = json.at("sentence").get<std::string>();
    condition.next_step = TextOf(json.at("next_step"), "text");
    const Json& command = json.at("next_step").at("command");
    if (command.is_array()) condition.command = command.get<std::vector<std::string>>();
    condition.is_stale = json.at("stale").get<bool>();
    condition.since = TimeOf(json, "since");
    condition.since_is =
        TextOf(json, "since_is") == "event" ? hxc::SinceIs::kEvent : hxc::SinceIs::kAtOrBefore;
    condition.first_seen = TimeOf(json, "first_seen");
    condition.last_seen = TimeOf(json, "last_seen");
    condition.label = LabelOf(condition.object);
    if (const auto ack = json.find("acknowledged"); ack != json.end() && ack->is_object()) {
        condition.acknowledged = hxc::Acknowledgement{
            .by = TextOf(*ack, "by"), .at = TimeOf(*ack, "at"), .note = TextOf(*ack, "note")};
    }
    const std::int64_t until = TimeOf(json, "silenced_until");
    if (until != 0) condition.silenced_until = until;
    return condition;
}

bool IsArrayState(hxc::Code code) { return hxc::RowOf(code).family == hxc::Family::kVirtualDisk; }

// What a fresh report tells.
struct Told {
    std::vector<hxc::Condition> conditions{};
    std::vector<std::string> heads{};  // for each, the virtual disk whose state it is folded into
    std::uint64_t events = 0;          // the number of the next event of the store
};

// Levels that the service may read and this program may not.
void TakeLevelsOf(const Told& told, hxc::Settings& settings) {
    for (const hxc::Condition& each : told.conditions) {
        if (each.level_is_set_here) settings.levels[each.code] = each.level;
    }
}

void TakeConditions(const Json& list, const std::string& head, Told& told) {
    for (const Json& each : list) {
        std::string own;
        if (const auto condition = ConditionOf(each)) {
            told.conditions.push_back(*condition);
            told.heads.push_back(head);
            if (IsArrayState(condition->code)) own = condition->object.address;
        }
        TakeConditions(each.at("folded"), own, told);
    }
}

bool IsAsked(const hxc::Condition& condition, const hxc::Answers& answers) {
    return condition.object.adapter == hxc::kNoNumber ||
           answers.machine.result != hxc::Query::Result::kRead ||
           std::ranges::find(answers.adapters, condition.object.adapter, &hxc::Adapter::number) !=
               answers.adapters.end();
}

// Seconds; below 0 when the clock was set back.
double AgeOf(const Json& report, std::int64_t now) {
    return static_cast<double>(now - report.at("written_at").get<std::int64_t>());
}

bool IsFresh(const Json& report, std::int64_t now) {
    const double limit =
        std::max(kLeastSilence, kRoundsOfSilence * report.at("interval_s").get<double>());
    return std::abs(AgeOf(report, now)) <= limit;
}

// Fills in whether a service watches.
Told TakeReport(const Json& report, hxc::Answers& answers, std::int64_t now) {
    const double age = AgeOf(report, now);
    Told told;
    const auto store = report.find("store");
    if (store != report.end()) told.events = store->at("next").get<std::uint64_t>();
    if (IsFresh(report, now)) {
        TakeConditions(report.at("conditions"), "", told);
        answers.service.is_here = true;
    } else if (age > 0 && !report.at("once").get<bool>()) {
        // Rounds that somebody makes one by one have no next one that could be late.
        answers.service.silent_for_s = static_cast<std::int64_t>(age);
    }
    return told;
}

// The store itself is looked at. A service that watches may read what others may not, so that its
// word is taken for a store that may not be read.
hxc::Store LookAtStore(const Told& told, bool is_watched) {
    hxc::Store store;
    try {
        store = LookAtEventStore();
    } catch (const Unavailable&) {
        return store;  // a broken configuration has been told by then
    }
    if (store.state == hxc::Store::State::kNotLooked && told.events != 0) {
        store.state = hxc::Store::State::kUnreadable;  // events have been stored there
    } else if (store.state == hxc::Store::State::kUnreadable && is_watched) {
        store.state = hxc::Store::State::kNotLooked;
    }
    return store;
}

bool IsOfStore(const hxc::Condition& condition) {
    return condition.code == hxc::Code::kStoreDamaged ||
           condition.code == hxc::Code::kStoreUnreadable;
}

// Whether the service alone has found it; one that this look has tried in vain to read becomes what
// was last seen.
bool TakeUp(hxc::Condition& condition, const hxc::Answers& answers) {
    const bool store_is_seen = answers.store.state != hxc::Store::State::kNotLooked;
    if (IsOfStore(condition) && store_is_seen) return false;
    if (IsOfServiceAlone(hxc::RowOf(condition.code)) || IsMissed(condition, answers)) return true;
    if (IsSeen(condition, answers)) return false;
    if (!condition.is_stale) {
        condition.sentence += "; last seen " + hxc::TimeText(condition.last_seen);
        condition.is_stale = true;
    }
    return true;
}

// The state of that virtual disk among the heads; null when it has none.
hxc::Condition* ArrayHead(hxc::Overview& overview, const std::string& address) {
    if (address.empty()) return nullptr;
    const auto head = std::ranges::find_if(overview.heads, [&](const hxc::Condition& each) {
        return IsArrayState(each.code) && each.object.address == address;
    });
    return head == overview.heads.end() ? nullptr : &*head;
}

// The virtual disk for whose lost position the disk is too small; empty where there is none.
std::string TooSmallFor(const hxc::Condition& condition, const hxc::Answers& answers) {
    const hxc::Things things(answers, {});
    const hxc::Adapter* const adapter = things.FindAdapter(condition.object.adapter);
    if (adapter == nullptr) return "";
    const hxc::Disk* const disk = hxc::FindDisk(*adapter, condition.object.id);
    for (const hxc::VirtualDisk& each : adapter->virtual_disks) {
        if (disk == nullptr) break;
        for (const unsigned position : hxc::RedundancyOf(each, adapter->disks).lost) {
            if (hxc::TooSmallFor(things, *adapter, each, position, *disk)) {
                return things.Of(*adapter, each).address;
            }
        }
    }
    return "";
}

// The look with what the service alone has found.
hxc::Overview WithService(hxc::Overview look, const Told& told, const hxc::Answers& answers) {
    std::vector<hxc::Condition> found;
    for (std::size_t i = 0; i < told.conditions.size(); ++i) {
        hxc::Condition condition = told.conditions[i];
        if (!IsAsked(condition, answers) || IsTold(look, condition)) continue;
        if (!TakeUp(condition, answers)) continue;
        const bool hinders = hxc::RowOf(condition.code).family == hxc::Family::kHindrance;
        const bool is_small = condition.code == hxc::Code::kReplacementTooSmall;
        const std::string array = is_small ? TooSmallFor(condition, answers) : told.heads[i];
        hxc::Condition* const head = hinders ? nullptr : ArrayHead(look, array);
        if (head == nullptr) {
            found.push_back(std::move(condition));
            continue;
        }
        head->sentence += "; " + condition.sentence;
        head->folded.push_back(std::move(condition));
        std::ranges::stable_sort(head->folded, hxc::ComesBefore);
    }
    return hxc::WithFound(std::move(look), found);
}

// By the service, which remembers how far activities were.
class ToldMovement : public hxc::Movement {
public:
    explicit ToldMovement(const std::vector<hxc::Condition>& told) : told_(told) {}
    bool Stands(const hxc::Object& object) const override {
        return std::ranges::any_of(told_, [&](const hxc::Condition& each) {
            return (each.code == hxc::Code::kRebuildStalled ||
                    each.code == hxc::Code::kActivityStalled) &&
                   each.object.address == object.address && each.object.name == object.name;
        });
    }

private:
    const std::vector<hxc::Condition>& told_;
};

}  // namespace

hxc::Overview LookWithService(hxc::Answers answers, std::int64_t now) {
    Told told;
    if (const std::optional<Json> report = ReadReport()) {
        try {
            told = TakeReport(*report, answers, now);
        } catch (const Json::exception&) {
            told = {};
        }
    }
    answers.store = LookAtStore(told, answers.service.is_here);
    ConditionLevels levels = ReadConditionLevels();
    if (levels.is_denied) TakeLevelsOf(told, levels.settings);
    if (!levels.complaint.empty()) {
        answers.service.rejected_configuration =
            levels.complaint + "; the levels that it sets are not used here";
    }
    const hxc::Now clocks{.real = now, .boot = 0, .boot_id = ""};
    const ToldMovement movement(told.conditions);
    hxc::Overview look = hxc::WithWatched(
        hxc::LookOnce(answers, clocks, levels.settings, &movement), told.conditions);
    return WithService(std::move(look), told, answers);
}

std::optional<std::int64_t> LastReportOfService(std::int64_t now) {
    const std::optional<Json> report = ReadReport();
    try {
        if (!report || report->at("once").get<bool>() || !IsFresh(*report, now)) {
            return std::nullopt;
        }
        return report->at("written_at").get<std::int64_t>();
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

}  // namespace vexorctl

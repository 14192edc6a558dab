#include "service/hxs_policy.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace hxservice {

namespace {

namespace hxc = hxconditions;

constexpr hxc::Ticks kDay = 86400;
constexpr std::string_view kRepeat = "repeat";

// A sink that cannot be reached is told by every other one.
bool IsWanted(const SinkSettings& sink, const hxc::Condition& condition) {
    const hxc::Object& object = condition.object;
    if (object.kind == hxc::Kind::kSink && object.name == sink.name) return false;
    return condition.level <= sink.level;
}

std::string ExplanationOf(const hxc::Condition& condition) {
    std::string text;
    for (const hxc::Cause& cause : condition.causes) {
        text += std::string(hxc::RowOf(cause.code).name) + " of " + cause.identity + ";";
    }
    if (condition.hindrance) text += std::string(hxc::RowOf(*condition.hindrance).name);
    return text;
}

void Note(Known& known, const hxc::Condition& condition, hxc::Ticks now) {
    known.code = hxc::RowOf(condition.code).name;
    known.address = condition.object.address;
    known.count = condition.count;
    known.explained = ExplanationOf(condition);
    known.told = now;
    known.delivered = 0;
}

std::optional<hxc::Ticks> RepeatAfter(Policy policy, unsigned repeats) {
    constexpr unsigned kMostDoublings = 10;
    switch (policy) {
        case Policy::kOnce:
            return std::nullopt;
        case Policy::kAlways:
        case Policy::kDaily:
            return kDay;
        case Policy::kDiminishing:
            return kDay << std::min(repeats, kMostDoublings);
    }
    return std::nullopt;
}

// The work for one sink and one look.
struct Round {
    const SinkSettings& sink;
    std::map<std::string, Known>& known;
    const hxc::Look& look;
    std::vector<Telling> tellings{};

    hxc::Ticks Now() const { return look.state.now; }

    void Tell(const std::string& key, std::string_view change, hxc::Message message) {
        tellings.push_back({key, change, std::move(message)});
    }

    void TakeMessage(const hxc::Message& message) {
        const std::string key = hxc::KeyOf(message.condition.code, message.condition.object);
        const auto old = known.find(key);
        const bool is_known = old != known.end();
        const bool is_wanted = IsWanted(sink, message.condition);
        switch (message.change) {
            case hxc::Change::kCleared:
                if (!is_known) return;
                known.erase(old);
                Tell(key, hxc::NameOf(message.change), message);
                return;
            case hxc::Change::kPassed:
                if (is_wanted) Tell(key, hxc::NameOf(message.change), message);
                return;
            case hxc::Change::kRaised:
            case hxc::Change::kWorse:
            case hxc::Change::kBetter:
                break;
        }
        // What it was told once it is told on, also below its level: else it would take the last
        // news for what still holds.
        if (!is_wanted && !is_known) return;
        Note(known[key], message.condition, Now());
        known[key].repeats = 0;
        Tell(key, hxc::NameOf(is_known ? message.change : hxc::Change::kRaised), message);
    }

    // The key changes when an object's identity becomes known.
    bool TakeOver(const std::string& key, const hxc::Condition& head) {
        const auto old = std::ranges::find_if(known, [&](const auto& each) {
            return !look.state.told.contains(each.first) &&
                   each.second.code == hxc::RowOf(head.code).name &&
                   each.second.address == head.object.address;
        });
        if (old == known.end()) return false;
        auto node = known.extract(old);
        node.key() = key;
        known.insert(std::move(node));
        return true;
    }

    void TakeHead(const hxc::Condition& head) {
        if (head.acknowledged || head.silenced_until) return;
        const std::string key = hxc::KeyOf(head.code, head.object);
        const bool is_known = known.contains(key) || TakeOver(key, head);
        const hxc::Message message{hxc::Change::kRaised, head, std::nullopt, 0, ""};
        if (!is_known) {
            if (!IsWanted(sink, head)) return;
            Note(known[key], head, Now());
            Tell(key, hxc::NameOf(hxc::Change::kRaised), message);
            return;
        }
        Known& told = known[key];
        if (!IsWanted(sink, head)) return;
        const auto after = RepeatAfter(sink.policy, told.repeats);
        const bool is_due = after && Now() - told.told >= *after;
        const bool is_explained_anew =
            sink.policy == Policy::kAlways && told.explained != ExplanationOf(head);
        if (!is_due && !is_explained_anew) return;
        Note(told, head, Now());
        if (is_due) ++told.repeats;
        Tell(key, kRepeat, message);
    }
};

}  // namespace

std::vector<Telling> TellingsFor(const SinkSettings& sink, std::map<std::string, Known>& known,
                                 const hxc::Look& look) {
    Round round{sink, known, look};
    for (const hxc::Message& message : look.messages) round.TakeMessage(message);
    for (const hxc::Condition& head : look.overview.heads) round.TakeHead(head);
    std::erase_if(known, [&](const auto& each) { return !look.state.told.contains(each.first); });
    return std::move(round.tellings);
}

}  // namespace hxservice

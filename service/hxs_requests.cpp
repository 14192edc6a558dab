#include "service/hxs_requests.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "conditions/hxc_json.h"
#include "conditions/hxc_text.h"

namespace hxservice {

namespace {

namespace hxc = hxconditions;
using RequestJson = nlohmann::ordered_json;

constexpr std::size_t kLongestNote = 500;
constexpr std::size_t kMostSilences = 200;

// The request cannot be met; what() says why.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::string TextOfField(const RequestJson& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || found->is_null()) return "";
    if (!found->is_string()) throw Refusal(std::string(name) + " must be a text");
    return found->get<std::string>();
}

bool FlagIn(const RequestJson& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end()) return false;
    if (!found->is_boolean()) throw Refusal(std::string(name) + " must be true or false");
    return found->get<bool>();
}

std::string NoteIn(const RequestJson& json) {
    return hxc::Shortened(hxc::Harmless(TextOfField(json, "note")), kLongestNote);
}

// Which conditions are meant: by code, by object, or by both.
struct Meant {
    std::optional<hxc::Code> code;
    std::string object;

    bool Has(const hxc::Object& each) const {
        return object == each.address || object == each.name || object == each.serial ||
               object == each.identity;
    }
    bool Has(const hxc::Held& held) const {
        return held.is_shown && (!code || *code == held.found.code) &&
               (object.empty() || Has(held.found.object));
    }
};

Meant MeantIn(const RequestJson& json) {
    Meant meant;
    const std::string code = TextOfField(json, "code");
    if (!code.empty()) {
        meant.code = hxc::FindRow(code);
        if (!meant.code) throw Refusal("there is no condition " + hxc::Harmless(code));
    }
    meant.object = TextOfField(json, "object");
    if (!meant.code && meant.object.empty()) throw Refusal("name a condition, an object, or both");
    return meant;
}

std::vector<hxc::Held*> Matching(const Meant& meant, hxc::State& state) {
    std::vector<hxc::Held*> found;
    for (hxc::Held& held : state.held) {
        if (meant.Has(held)) found.push_back(&held);
    }
    return found;
}

Refusal NothingLikeIt() {
    return Refusal("no condition that holds is meant; vexorctl alert list shows those that do");
}

RequestJson SilencesJson(const Desktop& desktop) {
    RequestJson silences = RequestJson::array();
    for (const hxc::Silence& each : desktop.state.silences) {
        RequestJson json;
        json["code"] = each.code ? RequestJson(hxc::RowOf(*each.code).name) : RequestJson();
        json["object"] = each.identity.empty() ? RequestJson() : RequestJson(each.identity);
        json["until"] = hxc::IsoTimeText(desktop.real + each.until - desktop.state.now);
        json["sticky"] = each.is_sticky;
        json["by"] = each.by;
        json["note"] = each.note;
        silences.push_back(std::move(json));
    }
    return silences;
}

RequestJson SinksJson(const Desktop& desktop) {
    RequestJson sinks = RequestJson::array();
    for (const SinkReport& each : desktop.alerts.Report()) {
        sinks.push_back({{"name", each.health.name},
                         {"kind", each.kind},
                         {"failing", each.health.is_failing},
                         {"error", each.health.error},
                         {"waiting", each.health.waiting},
                         {"given_up", each.health.given_up},
                         {"testing", each.is_testing},
                         {"tested", each.tested}});
    }
    return sinks;
}

RequestJson List(const Desktop& desktop) {
    RequestJson json;
    json["conditions"] = RequestJson::array();
    for (const hxc::Condition& head : desktop.overview.heads) {
        json["conditions"].push_back(RequestJson::parse(hxc::ConditionJson(head)));
    }
    json["silences"] = SilencesJson(desktop);
    json["sinks"] = SinksJson(desktop);
    return json;
}

RequestJson History(const Desktop& desktop) {
    RequestJson json;
    json["history"] = RequestJson::array();
    for (const HistoryEntry& each : desktop.alerts.Box().history) {
        json["history"].push_back(RequestJson::parse(each.text));
    }
    return json;
}

RequestJson Acknowledge(const RequestJson& request, const Caller& caller, const Desktop& desktop) {
    const Meant meant = MeantIn(request);
    const hxc::Acknowledgement ack{.by = caller.name, .at = desktop.real, .note = NoteIn(request)};
    std::vector<std::pair<hxc::Code, hxc::Object>> found;
    for (const hxc::Held* held : Matching(meant, desktop.state)) {
        found.emplace_back(held->found.code, held->found.object);
    }
    if (found.empty()) throw NothingLikeIt();
    RequestJson done = RequestJson::array();
    for (const auto& [code, object] : found) {
        hxc::Acknowledge(desktop.state, code, object.identity, ack);
        if (code == hxc::Code::kDeliveryDropped) desktop.alerts.ForgetGivenUp(object.name);
        done.push_back({{"code", hxc::RowOf(code).name}, {"object", hxc::TitleOf(object)}});
    }
    return {{"done", std::move(done)}};
}

RequestJson EndSilence(const RequestJson& request, const Desktop& desktop) {
    const std::string code = TextOfField(request, "code");
    const std::string object = TextOfField(request, "object");
    std::set<std::string> identities{object};
    for (const hxc::Held& held : desktop.state.held) {
        const hxc::Object& each = held.found.object;
        if (Meant{std::nullopt, object}.Has(each)) identities.insert(each.identity);
    }
    RequestJson done = RequestJson::array();
    std::erase_if(desktop.state.silences, [&](const hxc::Silence& silence) {
        const std::string its_code =
            silence.code ? std::string(hxc::RowOf(*silence.code).name) : std::string();
        const bool is_meant = (code.empty() || code == its_code) &&
                              (object.empty() || identities.contains(silence.identity));
        if (is_meant) done.push_back({{"code", its_code}, {"object", silence.identity}});
        return is_meant;
    });
    if (done.empty()) throw Refusal("there is no such silence");
    return {{"done", std::move(done)}};
}

RequestJson Silence(const RequestJson& request, const Caller& caller, const Desktop& desktop) {
    if (FlagIn(request, "end")) return EndSilence(request, desktop);
    const Meant meant = MeantIn(request);
    const auto seconds = request.find("seconds");
    if (seconds == request.end() || !seconds->is_number_integer() ||
        seconds->get<std::int64_t>() < 1 || seconds->get<std::int64_t>() > hxc::kLongestSilence) {
        throw Refusal("a silence needs an end, at most 90 days from now");
    }
    const bool is_sticky = FlagIn(request, "sticky");
    const std::vector<hxc::Held*> found = Matching(meant, desktop.state);
    // Without one it would end at once, and an object that is not known cannot be named.
    if (found.empty() && (!is_sticky || !meant.object.empty())) throw NothingLikeIt();
    std::set<std::string> identities;
    if (meant.object.empty()) {
        identities.emplace();
    } else {
        for (const hxc::Held* held : found) identities.insert(held->found.object.identity);
    }
    if (desktop.state.silences.size() + identities.size() > kMostSilences) {
        throw Refusal("there are too many silences; end some");
    }
    RequestJson done = RequestJson::array();
    for (const std::string& identity : identities) {
        hxc::Silences(desktop.state,
                      {.code = meant.code,
                       .identity = identity,
                       .is_sticky = is_sticky,
                       .by = caller.name,
                       .note = NoteIn(request)},
                      seconds->get<std::int64_t>());
        done.push_back(
            {{"code", meant.code ? hxc::RowOf(*meant.code).name : ""}, {"object", identity}});
    }
    return {{"done", std::move(done)}};
}

RequestJson Test(const RequestJson& request, const Desktop& desktop) {
    const std::vector<std::string> names = desktop.alerts.Test(TextOfField(request, "sink"));
    if (names.empty()) {
        throw Refusal("there is no such sink; hxraidsvc.conf(5) tells how to make one");
    }
    return {{"done", names}};
}

}  // namespace

std::string SavedAnswers(const Desktop& desktop) {
    RequestJson answers{{"schema", "hxraidsvc-alerts/1"}, {"as_of", desktop.real}};
    answers.update(List(desktop));
    answers.update(History(desktop));
    return answers.dump(-1, ' ', false, RequestJson::error_handler_t::replace) + "\n";
}

Reply ReplyTo(std::string_view request, const Caller& caller, const Desktop& desktop) {
    RequestJson reply;
    bool has_changed = false;
    try {
        const RequestJson json = RequestJson::parse(request);
        if (!json.is_object()) throw Refusal("a request is an object");
        const std::string what = TextOfField(json, "do");
        if (what == "list") {
            reply = List(desktop);
        } else if (what == "history") {
            reply = History(desktop);
        } else if (what != "ack" && what != "silence" && what != "test") {
            throw Refusal("there is no request " + hxc::Harmless(what));
        } else if (!caller.may_change) {
            throw Refusal("only root and members of the group hxraid may do that");
        } else if (what == "test") {
            reply = Test(json, desktop);
        } else {
            reply =
                what == "ack" ? Acknowledge(json, caller, desktop) : Silence(json, caller, desktop);
            has_changed = true;
        }
        reply["ok"] = true;
    } catch (const Refusal& refusal) {
        reply = {{"ok", false}, {"error", refusal.what()}};
    } catch (const RequestJson::exception&) {
        reply = {{"ok", false}, {"error", "the request is no JSON"}};
    }
    return {reply.dump(-1, ' ', false, RequestJson::error_handler_t::replace) + "\n", has_changed};
}

}  // namespace hxservice

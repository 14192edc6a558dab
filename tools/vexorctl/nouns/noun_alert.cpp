// vexorctl alert ...
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common/duration.h"
#include "common/timestamp.h"
#include "conditions/hxc_rows.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/service_socket.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/interrupt.h"
#include "shell/invocation.h"
#include "shell/option_value.h"
#include "shell/present.h"

namespace vexorctl::alert_noun {

namespace {

using AlertJson = nlohmann::ordered_json;
using enum Kind;
using enum Place;

// What is missing or of another type is unknown, null is none.
Cell TextOf(const AlertJson& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end()) return Unknown();
    if (found->is_null()) return None();
    return found->is_string() ? TextCell(found->get<std::string>()) : Unknown();
}
Cell NumberOf(const AlertJson& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || !found->is_number_unsigned()) return Unknown();
    return NumberCell(found->get<std::uint64_t>());
}
Cell FlagOf(const AlertJson& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || !found->is_boolean()) return Unknown();
    return NumberCell(found->get<bool>() ? 1 : 0);
}
const AlertJson& PartOf(const AlertJson& json, const char* name) {
    static const AlertJson kNone = AlertJson::object();
    const auto found = json.find(name);
    return found != json.end() && found->is_object() ? *found : kNone;
}

std::vector<AlertJson> RowsOf(const AlertJson& answer, const char* name) {
    const auto found = answer.find(name);
    if (found == answer.end() || !found->is_array()) {
        throw Failure(Exit::kUnavailable, "the event service gave no answer that can be read");
    }
    return {found->begin(), found->end()};
}

constexpr Column<AlertJson> kListColumns[] = {
    {{"level", "LEVEL", kText, kTable, "How grave it is"},
     [](const AlertJson& it) { return TextOf(it, "level"); }},
    {{"code", "CODE", kText, kTable, "Which condition it is; hxraid-conditions(7) describes it"},
     [](const AlertJson& it) { return TextOf(it, "code"); }},
    {{"address", "ADDRESS", kReference, kTable, "The object it is about"},
     [](const AlertJson& it) { return TextOf(PartOf(it, "object"), "address"); }},
    {{"text", "CONDITION", kText, kSentence, "What is wrong"},
     [](const AlertJson& it) { return TextOf(it, "sentence"); }},
    {{"acknowledged_by", "ACKNOWLEDGED BY", kText, kTable, "Who knows of it"},
     [](const AlertJson& it) {
         return it.contains("acknowledged") && it["acknowledged"].is_null()
                    ? None()
                    : TextOf(PartOf(it, "acknowledged"), "by");
     }},
    {{"silenced_until", "SILENCED UNTIL", kText, kTable, "When its silence ends"},
     [](const AlertJson& it) { return TextOf(it, "silenced_until"); }},
    {{"note", "NOTE", kText, kWide, "What whoever acknowledged it has said"},
     [](const AlertJson& it) {
         return it.contains("acknowledged") && it["acknowledged"].is_null()
                    ? None()
                    : TextOf(PartOf(it, "acknowledged"), "note");
     }},
    {{"name", "NAME", kText, kWide, "The name of the object"},
     [](const AlertJson& it) { return TextOf(PartOf(it, "object"), "name"); }},
    {{"since", "SINCE", kText, kWide, "Since when"},
     [](const AlertJson& it) { return TextOf(it, "since"); }},
    {{"stale", "STALE", kBool, kWide, "It could not be looked at again"},
     [](const AlertJson& it) { return FlagOf(it, "stale"); }},
    {{"flapping", "FLAPPING", kBool, kWide, "It comes and goes"},
     [](const AlertJson& it) { return FlagOf(it, "flapping"); }},
    {{"next_step", "NEXT STEP", kText, kWide, "What to do"},
     [](const AlertJson& it) { return TextOf(PartOf(it, "next_step"), "text"); }},
};
constexpr Column<AlertJson> kDoneColumns[] = {
    {{"code", "CODE", kText, kTable, "Which condition"},
     [](const AlertJson& it) { return TextOf(it, "code"); }},
    {{"object", "OBJECT", kText, kTable, "Of which object"},
     [](const AlertJson& it) { return TextOf(it, "object"); }},
};
constexpr Column<AlertJson> kTestColumns[] = {
    {{"name", "SINK", kText, kTable, "The name of the sink"},
     [](const AlertJson& it) { return TextOf(it, "name"); }},
    {{"kind", "KIND", kText, kTable, "How alerts are sent there"},
     [](const AlertJson& it) { return TextOf(it, "kind"); }},
    {{"result", "RESULT", kText, kSentence, "\"delivered\", or why not"},
     [](const AlertJson& it) { return TextOf(it, "tested"); }},
    {{"waiting", "WAITING", kNumber, kTable, "So many alerts wait"},
     [](const AlertJson& it) { return NumberOf(it, "waiting"); }},
    {{"given_up", "GIVEN UP", kNumber, kTable, "For so many alerts there was no room"},
     [](const AlertJson& it) { return NumberOf(it, "given_up"); }},
    {{"failing", "FAILING", kBool, kWide, "It fails again and again"},
     [](const AlertJson& it) { return FlagOf(it, "failing"); }},
    {{"error", "ERROR", kText, kWide, "Why the last delivery failed"},
     [](const AlertJson& it) { return TextOf(it, "error"); }},
};
constexpr Column<AlertJson> kHistoryColumns[] = {
    {{"time", "TIME", kTime, kTable, "When"},
     [](const AlertJson& it) { return NumberOf(it, "time"); }},
    {{"what", "WHAT", kText, kTable, "What changed, or what became of a delivery"},
     [](const AlertJson& it) { return TextOf(it, "what"); }},
    {{"level", "LEVEL", kText, kTable, "How grave it is"},
     [](const AlertJson& it) { return it.contains("level") ? TextOf(it, "level") : None(); }},
    {{"object", "OBJECT", kText, kTable, "The object, or the sink"},
     [](const AlertJson& it) { return TextOf(it, "object"); }},
    {{"text", "TEXT", kText, kSentence, "What was told, or why a delivery failed"},
     [](const AlertJson& it) { return TextOf(it, "text"); }},
    {{"code", "CODE", kText, kWide, "Which condition"},
     [](const AlertJson& it) { return it.contains("code") ? TextOf(it, "code") : None(); }},
    {{"alerts", "ALERTS", kNumber, kWide, "How many alerts were delivered"},
     [](const AlertJson& it) { return it.contains("alerts") ? NumberOf(it, "alerts") : None(); }},
};

std::vector<ColumnInfo> ListInfo() { return InfoOf(kListColumns); }
std::vector<ColumnInfo> DoneInfo() { return InfoOf(kDoneColumns); }
std::vector<ColumnInfo> TestInfo() { return InfoOf(kTestColumns); }
std::vector<ColumnInfo> HistoryInfo() { return InfoOf(kHistoryColumns); }

struct ServiceAnswer {
    AlertJson json;
    bool is_live = true;
};

// Without a running service its last answer is better than none, but it is not the present.
ServiceAnswer AskOrRecall(const char* what) {
    try {
        return {AskService({{"do", what}})};
    } catch (const Failure& failure) {
        if (failure.exit != Exit::kUnavailable) throw;
        AlertJson saved = RecallService();
        if (saved.is_null()) throw;
        std::fprintf(stderr, "vexorctl: %s\nvexorctl: what follows is from %s, when it ran last\n",
                     failure.what(),
                     vexortools::TimeText(saved["as_of"].get<std::int64_t>(), true).c_str());
        return {std::move(saved), false};
    }
}

Exit ExitOf(Exit shown, const ServiceAnswer& answer) {
    return answer.is_live ? shown : MoreSerious(shown, Exit::kUnavailable);
}

Exit ListAlerts(Invocation& invocation) {
    const ServiceAnswer answer = AskOrRecall("list");
    return ExitOf(
        Present(invocation, Tabulated(invocation, kListColumns, RowsOf(answer.json, "conditions"))),
        answer);
}

Exit ShowHistory(Invocation& invocation) {
    const ServiceAnswer answer = AskOrRecall("history");
    std::vector<AlertJson> rows = RowsOf(answer.json, "history");
    const auto last = invocation.Number("--last", UINT32_MAX);
    if (last && *last < rows.size()) {
        rows.erase(rows.begin(), rows.end() - static_cast<std::ptrdiff_t>(*last));
    }
    return ExitOf(Present(invocation, Tabulated(invocation, kHistoryColumns, rows)), answer);
}

AlertJson RequestOf(const Invocation& invocation, const char* what) {
    AlertJson request{{"do", what}};
    if (!invocation.targets().empty()) {
        const std::string& object = invocation.targets().front();
        if (hxconditions::FindRow(object)) {
            throw UsageError(object + " is a condition and no object; write --code " + object);
        }
        request["object"] = object;
    }
    if (const std::string* const code = invocation.Get("--code")) request["code"] = *code;
    if (const std::string* const note = invocation.Get("--note")) request["note"] = *note;
    if (!request.contains("object") && !request.contains("code")) {
        throw UsageError("name an object, a condition by --code, or both");
    }
    return request;
}

Exit PresentDone(Invocation& invocation, const AlertJson& request) {
    const AlertJson answer = AskService(request);
    return Present(invocation, Tabulated(invocation, kDoneColumns, RowsOf(answer, "done")));
}

Exit AcknowledgeAlerts(Invocation& invocation) {
    return PresentDone(invocation, RequestOf(invocation, "ack"));
}

Exit SilenceAlerts(Invocation& invocation) {
    AlertJson request = RequestOf(invocation, "silence");
    const std::string* const time = invocation.Get("--for");
    const bool is_end = invocation.Has("--end");
    if (is_end == (time != nullptr)) {
        throw UsageError("say for how long, --for 8h, or --end to end a silence");
    }
    request["end"] = is_end;
    request["sticky"] = invocation.Has("--sticky");
    if (time != nullptr) {
        const Duration duration = ReadOption("--for", *time, ParseDuration);
        if (duration < std::chrono::seconds(1) || duration > std::chrono::days(90)) {
            throw UsageError("--for must be from 1s to 90d");
        }
        request["seconds"] = std::chrono::duration_cast<std::chrono::seconds>(duration).count();
    }
    return PresentDone(invocation, request);
}

// The service tries the sinks while it goes on; it is asked until all have ended.
Exit TestSinks(Invocation& invocation) {
    constexpr auto kAskedAfter = std::chrono::milliseconds(200);
    AlertJson request{{"do", "test"}};
    if (!invocation.targets().empty()) request["sink"] = invocation.targets().front();
    const std::vector<AlertJson> names = RowsOf(AskService(request), "done");
    const WatchingInterrupts watching;
    for (;;) {
        std::vector<AlertJson> sinks = RowsOf(AskService({{"do", "list"}}), "sinks");
        std::erase_if(sinks, [&](const AlertJson& sink) {
            return std::ranges::find(names, sink.value("name", AlertJson())) == names.end();
        });
        const bool is_over = std::ranges::none_of(
            sinks, [](const AlertJson& sink) { return sink.value("testing", false); });
        if (is_over) {
            const bool is_good = std::ranges::all_of(sinks, [](const AlertJson& sink) {
                return sink.value("tested", "") == "delivered";
            });
            const Exit exit = Present(invocation, Tabulated(invocation, kTestColumns, sinks));
            return is_good ? exit : MoreSerious(exit, Exit::kRefused);
        }
        if (Interrupted()) throw Failure(Exit::kInterrupted, "interrupted");
        std::this_thread::sleep_for(kAskedAfter);
    }
}

constexpr OptionRow kAckOptions[] = {
    {"--code", "CODE", "Only this condition, such as DISK_FAILED"},
    {"--note", "TEXT", "What others should know"},
};
constexpr OptionRow kSilenceOptions[] = {
    {"--code", "CODE", "Only this condition, such as DISK_FAILED"},
    {"--for", "DURATION", "For how long, at most 90d"},
    {"--sticky", "", "Also when it gets worse, and beyond its end"},
    {"--note", "TEXT", "What others should know"},
    {"--end", "", "End the silences of that object and condition"},
};
constexpr OptionRow kHistoryOptions[] = {{"--last", "NUMBER", "Only the newest so many"}};

constexpr CommandRow kCommands[] = {
    {.noun = "alert",
     .verb = "list",
     .summary = "List what is wrong, acknowledged or silenced, as the event service sees it",
     .examples = {"vexorctl alert list", "vexorctl alert list -o json"},
     .run = ListAlerts,
     .columns = ListInfo,
     .note =
         "It is asked of the running event service, hxraidsvc(8), by its socket, which root "
         "and members of the group hxraid may use. So are all commands of this noun. While it does "
         "not run, list and history show what it saved last, say of when that is, and end with 5."},
    {.noun = "alert",
     .verb = "ack",
     .summary = "Acknowledge: listed still, but quiet until it gets worse or ends",
     .target = Target::kText,
     .arity = Arity::kOptional,
     .target_name = "OBJECT",
     .options = kAckOptions,
     .examples = {"vexorctl alert ack a0/pd5 --note ordered",
                  "vexorctl alert ack --code EVENTS_LOST"},
     .run = AcknowledgeAlerts,
     .columns = DoneInfo,
     .note = "Conditions that only events tell, such as EVENTS_LOST, end by it."},
    {.noun = "alert",
     .verb = "silence",
     .summary = "Send nothing of an object or condition for some time",
     .target = Target::kText,
     .arity = Arity::kOptional,
     .target_name = "OBJECT",
     .options = kSilenceOptions,
     .examples = {"vexorctl alert silence a0/vd0 --for 8h", "vexorctl alert silence a0/vd0 --end"},
     .run = SilenceAlerts,
     .columns = DoneInfo,
     .note = "A silence ends by itself: at its time, with the condition, and when that gets "
             "worse. With --sticky only at its time."},
    {.noun = "alert",
     .verb = "test",
     .summary = "Send a test through the sinks of the event service",
     .target = Target::kText,
     .arity = Arity::kOptional,
     .target_name = "SINK",
     .examples = {"vexorctl alert test", "vexorctl alert test pager -o json"},
     .run = TestSinks,
     .columns = TestInfo,
     .note = "It ends with 1 when a sink could not be reached."},
    {.noun = "alert",
     .verb = "history",
     .summary = "Show what was told, and what became of the deliveries",
     .options = kHistoryOptions,
     .examples = {"vexorctl alert history", "vexorctl alert history --last 10 -o jsonl"},
     .run = ShowHistory,
     .columns = HistoryInfo,
     .note = "The service keeps the newest 200 entries."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::alert_noun

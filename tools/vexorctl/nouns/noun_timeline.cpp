// vexorctl timeline: activities and bad times with their durations, from the event store.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/activity.h"
#include "common/address.h"
#include "common/duration.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/event_history.h"
#include "model/exit_code.h"
#include "model/library_record.h"
#include "model/tasks.h"
#include "model/timeline.h"
#include "nouns/find_object.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/option_value.h"
#include "shell/present.h"
#include "shell/time_option.h"

namespace vexorctl::timeline_noun {

namespace {

using enum Kind;
using enum Place;

// A period with what the controller says of it now.
struct Shown {
    Period period;
    bool is_running = false;  // the activity runs on, or is paused
};

struct EndRow {
    PeriodEnd how;
    std::string_view word;
    std::string_view phrase;  // behind the kind and the duration
};
constexpr EndRow kEnds[] = {
    {PeriodEnd::kOpen, "unknown", "no event of its end is stored"},
    {PeriodEnd::kComplete, "complete", "complete"},
    {PeriodEnd::kAborted, "aborted", "aborted"},
    {PeriodEnd::kFailed, "failed", "failed"},
    {PeriodEnd::kRecovered, "recovered", "then well again"},
    {PeriodEnd::kChanged, "changed", "then in another state"},
    {PeriodEnd::kDeleted, "deleted", "then deleted"},
    {PeriodEnd::kReplaced, "unknown", "it began anew, and no event of its end is stored"},
    {PeriodEnd::kLost, "lost", "what happened then is not known"},
};
constexpr std::string_view kRunning = "running", kPaused = "paused";

const EndRow& RowOf(PeriodEnd how) { return *std::ranges::find(kEnds, how, &EndRow::how); }

std::string_view OutcomeOf(const Shown& it) {
    if (it.is_running) return it.period.is_paused ? kPaused : kRunning;
    return RowOf(it.period.how).word;
}

std::vector<std::string_view> Outcomes() {
    std::vector<std::string_view> words{kRunning, kPaused};
    for (const EndRow& row : kEnds) {
        if (std::ranges::find(words, row.word) == words.end()) words.push_back(row.word);
    }
    return words;
}

std::optional<std::uint64_t> SecondsOf(const Period& period) {
    if (!period.start || !period.end || *period.end < *period.start) return std::nullopt;
    return *period.end - *period.start;
}

std::string WordsOf(std::string_view kind) {
    std::string text(kind);
    std::ranges::replace(text, '_', ' ');
    return text;
}

std::string SentenceOf(const Shown& it) {
    const Period& period = it.period;
    std::string text = WordsOf(period.kind);
    if (period.how == PeriodEnd::kLost) text += ": " + std::to_string(period.lost);
    const auto seconds = SecondsOf(period);
    if (seconds && period.how != PeriodEnd::kLost) {
        text += " for " + vexortools::DurationText(std::chrono::seconds(*seconds));
    }
    text += ", ";
    if (it.is_running) {
        text += OutcomeOf(it);
        if (period.percent) text += " at " + std::to_string(*period.percent) + " % or more";
    } else {
        text += RowOf(period.how).phrase;
    }
    if (!period.start) text += "; its beginning is not stored";
    if (period.has_gap) text += "; events were lost meanwhile";
    return text;
}

// Of what lasts still the end is none; of what has ended without an event it is unknown.
Cell EndCell(const Shown& it, std::optional<std::uint64_t> value) {
    return it.is_running ? None() : NumberCell(value);
}

constexpr Column<Shown> kColumns[] = {
    {{"start_time", "SINCE", kTime, kTable, "When it began; unknown when no event tells"},
     [](const Shown& it) { return NumberCell(it.period.start); }},
    {{"address", "ADDRESS", kAddress, kTable, "The object"},
     [](const Shown& it) { return TextCell(it.period.object); }},
    {Always({"text", "WHAT", kText, kSentence, "All of that in words"}),
     [](const Shown& it) { return TextCell(SentenceOf(it)); }},
    {Always(OneOf(PeriodKinds, {"kind", "KIND", kWord, kWide, "The activity or the state"})),
     [](const Shown& it) { return TextCell(std::string(it.period.kind)); }},
    {Always(
         OneOf(Outcomes, {"outcome", "OUTCOME", kWord, kWide, "How it ended, or that it lasts"})),
     [](const Shown& it) { return TextCell(std::string(OutcomeOf(it))); }},
    {{"end_time", "UNTIL", kTime, kWide, "When it ended"},
     [](const Shown& it) { return EndCell(it, it.period.end); }},
    {{"duration_seconds", "SECONDS", kNumber, kWide, "How long it lasted"},
     [](const Shown& it) { return EndCell(it, SecondsOf(it.period)); }},
    {{"progress_ratio", "PROGRESS", kRatio, kWide, "How far it was by the last event of it"},
     [](const Shown& it) { return it.period.percent ? PercentCell(it.period.percent) : None(); }},
    {Always({"has_gap", "GAP", kBool, kWide, "Whether events were lost while it lasted"}),
     [](const Shown& it) { return NumberCell(it.period.has_gap ? 1 : 0); }},
    {Always({"first_event", "FIRST", kNumber, kWide, "The number of the first event of it"}),
     [](const Shown& it) { return NumberCell(it.period.first_event); }},
    {Always({"last_event", "LAST", kNumber, kWide, "The number of the last event of it"}),
     [](const Shown& it) { return NumberCell(it.period.last_event); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// The objects that are meant: a whole adapter, one object, or all where none is named. What has
// gone has a timeline too, so that an address need not be that of an object that is there.
std::vector<std::string> WantedOnes(Invocation& invocation) {
    std::vector<std::string> wanted;
    for (const std::string& target : invocation.targets()) {
        const Selector selector = ParseSelector(target);
        switch (selector.form) {
            case Selector::Form::kAddress:
                wanted.push_back(selector.address.Text());
                break;
            case Selector::Form::kName:
                wanted.push_back(FindObject(invocation, ObjectKind::kVirtualDisk, target).Text());
                break;
            case Selector::Form::kSerial:
                wanted.push_back(FindObject(invocation, ObjectKind::kDisk, target).Text());
                break;
        }
    }
    return wanted;
}

bool IsWanted(const std::vector<std::string>& wanted, const Period& period) {
    return wanted.empty() || std::ranges::any_of(wanted, [&](const std::string& each) {
               return period.object == each || period.object.starts_with(each + "/");
           });
}

// Whether the activity runs now is the controller's to say: the event of its end may not have been
// collected yet, or was lost.
bool IsRunning(const std::vector<Task>& tasks, const Period& period) {
    return period.how == PeriodEnd::kOpen && std::ranges::any_of(tasks, [&](const Task& task) {
               const auto kind = hxcodes::ToCode<hxcodes::ActivityKind>(task.activity);
               return kind && task.address.Text() == period.object &&
                      hxcodes::RowOf(*kind).name == period.kind;
           });
}

// What ended before then, or is a gap of before, is left out; what lasted until then is not.
void LeaveOutEarlier(std::vector<Period>& periods, std::uint64_t since) {
    std::erase_if(periods, [&](const Period& each) {
        const auto last = each.end ? each.end : each.start;
        return each.how != PeriodEnd::kOpen && last && *last < since;
    });
}

Exit ShowTimeline(Invocation& invocation) {
    Controller& controller = invocation.controller();
    std::uint64_t since = 0;
    if (const std::string* const text = invocation.Get("--since")) {
        since = ReadOption("--since", *text, SecondsSince1970);
    }
    const std::vector<std::string> wanted = WantedOnes(invocation);
    std::vector<Period> periods = ReadHistory(controller).periods;
    std::erase_if(periods, [&](const Period& each) { return !IsWanted(wanted, each); });
    LeaveOutEarlier(periods, since);
    std::vector<Task> tasks;
    const bool asks = std::ranges::any_of(periods, [](const Period& each) {
        return each.is_activity && each.how == PeriodEnd::kOpen;
    });
    if (asks && controller.codes().AreKnown()) tasks = LoadTasks(controller, TaskDetail::kActivity);
    std::vector<Shown> shown;
    for (Period& each : periods) {
        const bool is_running = IsRunning(tasks, each);
        shown.push_back({std::move(each), is_running});
    }
    return Present(invocation, Tabulated(invocation, kColumns, shown), "table");
}

constexpr OptionRow kOptions[] = {
    {"--since", "TIME",
     "Only what lasted at or after 2h30m ago, or at or after 2026-01-31T12:00:00+01:00"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "timeline",
     .verb = "",
     .summary = "Show rebuilds, checks and bad times with their durations",
     .target = Target::kVirtualDisk,
     .arity = Arity::kAny,
     .target_name = "OBJECT",
     .options = kOptions,
     .functions = kNamesOf<calls::VX_HX_EVT_GetEvents, calls::HX_LD_GetStatus,
                           calls::HX_PD_GetBGAStatus, calls::HX_DG_GetInfo>,
     .examples = {"vexorctl timeline", "vexorctl timeline a0/vd0 -o json"},
     .run = ShowTimeline,
     .columns = Columns,
     .note =
         "It is made of the stored events alone, in the order in which things began. What the "
         "store does not hold is said: a beginning before the oldest event, an end that no event "
         "tells, events that an adapter has lost. An activity without an end is running only "
         "where the controller says so now. OBJECT is an adapter, disk or virtual disk; one that "
         "is gone has a timeline, too."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::timeline_noun

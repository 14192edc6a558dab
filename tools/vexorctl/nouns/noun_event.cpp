// vexorctl event ...
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <utility>

#include "codes/code_table.h"
#include "codes/event.h"
#include "codes/event_class.h"
#include "codes/named.h"
#include "common/duration.h"
#include "common/read_file.h"
#include "common/replace_file.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/event_catalogue.h"
#include "model/event_store.h"
#include "model/event_store_file.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_record.h"
#include "model/sightings.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/interrupt.h"
#include "shell/invocation.h"
#include "shell/option_value.h"
#include "shell/present.h"
#include "shell/time_option.h"

namespace vexorctl::event_noun {

namespace {

struct Shown {
    StoredEvent event;
    bool raw;
};

using fields::Event;
using hxcodes::CodeTable;

// An event without sense data has no element for it, and its length says so.
Cell SenseCell(const Record<Event>& record) {
    const auto bytes = record[Event::SenseData];
    if (bytes) return TextCell(HexBytes(*bytes));
    return record[Event::SenseDataLength] == 0 ? None() : Unknown();
}

Cell OfText(const StoredEvent& event, Cell cell) {
    return event.has_text ? std::move(cell) : Unknown();
}

using enum Kind;
using enum Place;

constexpr Column<Shown> kColumns[] = {
    {Always({"sequence", "NUMBER", kNumber, kTable, "Its number in the store"}),
     [](const Shown& it) { return NumberCell(it.event.sequence); }},
    {{"time", "TIME", kTime, kTable, "When it happened"},
     [](const Shown& it) { return FieldCell(it.event.record, Event::TimeStamp); }},
    {{"severity", "SEVERITY", kCode, kTable, "How grave it is", &CodeTable::severities},
     [](const Shown& it) { return FieldCell(it.event.record, Event::Severity); }},
    {{"address", "ADDRESS", kReference, kTable, "The object it is about"},
     [](const Shown& it) { return TextCell(it.event.object); }},
    {{"text", "EVENT", kText, kSentence, "What happened; with --raw its key and values"},
     [](const Shown& it) {
         return OfText(it.event, TextCell(it.raw ? it.event.Raw() : it.event.Text()));
     }},
    {{"class", "CLASS", kCode, kWide, "The kind of object it is about", &CodeTable::event_classes},
     [](const Shown& it) { return FieldCell(it.event.record, Event::Class); }},
    {{"code", "CODE", kNumber, kWide, "Its code, within its class"},
     [](const Shown& it) { return FieldCell(it.event.record, Event::Code); }},
    {{"adapter", "ADAPTER", kNumber, kWide, "The number of its adapter"},
     [](const Shown& it) { return FieldCell(it.event.record, Event::AdapterID); }},
    {{"device", "DEVICE", kNumber, kWide, "The number of its object"},
     [](const Shown& it) { return FieldCell(it.event.record, Event::DeviceID); }},
    {{"key", "KEY", kText, kWide, "The key of its text"},
     [](const Shown& it) { return OfText(it.event, TextCell(it.event.key)); }},
    {{"values", "VALUES", kTexts, kWide, "The values in its text"},
     [](const Shown& it) { return OfText(it.event, TextsCell(it.event.values)); }},
    {{"params", "PARAMS", kNumbers, kWide, "Its four parameters"},
     [](const Shown& it) { return FieldCell(it.event.record, Event::Params); }},
    {{"sense_data", "SENSE DATA", kHex, kWide, "The sense data that came with it, hexadecimal"},
     [](const Shown& it) { return SenseCell(it.event.record); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// ---- Filters ----------------------------------------------------------------------------------

struct Filter {
    std::uint64_t lowest = 0;
    std::uint64_t highest = 255;
    std::optional<std::uint64_t> adapter;
    std::optional<std::uint64_t> event_class;
    std::uint64_t since = 0;
    std::uint64_t until = UINT64_MAX;

    bool PassesAll() const {
        return lowest == 0 && highest == 255 && !adapter && !event_class && since == 0 &&
               until == UINT64_MAX;
    }

    // A field that is unknown does not hide its event.
    bool Passes(const StoredEvent& event) const {
        const auto severity = event.record[Event::Severity];
        const auto is = [&](NumberField<Event> field, std::optional<std::uint64_t> wanted) {
            return !wanted || event.record[field].value_or(*wanted) == *wanted;
        };
        const auto time = event.record[Event::TimeStamp].value_or(since);
        return severity.value_or(lowest) >= lowest && severity.value_or(highest) <= highest &&
               time >= since && time <= until && is(Event::AdapterID, adapter) &&
               is(Event::Class, event_class);
    }
};

std::string ListOfNames(std::span<const hxcodes::Named> rows) {
    std::string names;
    for (const hxcodes::Named& row : rows) names.append(names.empty() ? "" : ", ").append(row.name);
    return names;
}

Filter FilterOf(const Invocation& invocation) {
    Filter filter;
    if (const std::string* const text = invocation.Get("--severity")) {
        std::string name = *text;
        const bool upwards = name.ends_with('+');
        if (upwards) name.pop_back();
        const auto* const row = hxcodes::FindName(hxcodes::kSeverityNames, name);
        if (row == nullptr) {
            throw UsageError("--severity cannot be \"" + *text + "\"; say one of " +
                             ListOfNames(hxcodes::kSeverityNames) + ", or one of them and a +");
        }
        filter.lowest = row->code;
        if (!upwards) filter.highest = row->code;
    }
    if (const std::string* const text = invocation.Get("--class")) {
        const auto* const row = hxcodes::FindName(hxcodes::kEventClassNames, *text);
        if (row == nullptr) {
            throw UsageError("--class cannot be \"" + *text + "\"; say one of " +
                             ListOfNames(hxcodes::kEventClassNames));
        }
        filter.event_class = row->code;
    }
    if (const std::string* const text = invocation.Get("--since")) {
        filter.since = ReadOption("--since", *text, SecondsSince1970);
    }
    if (const std::string* const text = invocation.Get("--until")) {
        filter.until = ReadOption("--until", *text, SecondsSince1970);
        if (filter.until < filter.since) throw UsageError("--until is before --since");
    }
    filter.adapter = invocation.Number("--adapter", 254);
    return filter;
}

Report MakeReport(Invocation& invocation, std::vector<StoredEvent> events) {
    const bool raw = invocation.Has("--raw");
    std::vector<Shown> shown;
    shown.reserve(events.size());
    for (StoredEvent& event : events) shown.push_back({std::move(event), raw});
    return Tabulated(invocation, kColumns, shown);
}

// ---- list -------------------------------------------------------------------------------------

// The newest `count` of the events that pass: from the newest backwards, so that the last few of
// many cost one page.
std::vector<StoredEvent> NewestPassing(Controller& controller, const Extent& extent,
                                       const Filter& filter, std::uint64_t count) {
    std::vector<StoredEvent> events;
    std::uint64_t at_once = kEventsPerPage;
    for (std::uint64_t end = extent.next; end > extent.first && events.size() < count;) {
        const std::uint64_t begin = end - std::min(end - extent.first, at_once);
        std::vector<StoredEvent> older = ReadEvents(controller, begin, end - begin, at_once);
        std::erase_if(older, [&](const StoredEvent& event) { return !filter.Passes(event); });
        std::ranges::reverse(older);
        std::ranges::move(older, std::back_inserter(events));
        end = begin;
    }
    if (events.size() > count) events.resize(static_cast<std::size_t>(count));
    std::ranges::reverse(events);
    return events;
}

Exit ListEvents(Invocation& invocation) {
    const Filter filter = FilterOf(invocation);
    const auto last = invocation.Number("--last", UINT32_MAX);
    Controller& controller = invocation.controller();
    const Extent extent = AskExtent(controller);
    PiecewiseReport report(invocation);
    report.Add(MakeReport(invocation, {}));
    if (last && !filter.PassesAll()) {
        report.Add(MakeReport(invocation, NewestPassing(controller, extent, filter, *last)));
        return report.End();
    }
    std::uint64_t next =
        extent.next - std::min(extent.next - extent.first, last.value_or(UINT64_MAX));
    std::uint64_t at_once = kEventsPerPage;
    while (next < extent.next) {
        const std::uint64_t count = std::min(at_once, extent.next - next);
        std::vector<StoredEvent> events = ReadEvents(controller, next, count, at_once);
        next += count;
        // Of a store whose oldest were overwritten meanwhile, more may have come.
        if (!events.empty()) next = std::max(next, events.back().sequence + 1);
        std::erase_if(events, [&](const StoredEvent& event) {
            return event.sequence >= extent.next || !filter.Passes(event);
        });
        report.Add(MakeReport(invocation, std::move(events)));
    }
    return report.End();
}

// ---- follow -----------------------------------------------------------------------------------

// Where following goes on: the number of the next event, and the fingerprint of the one before it.
struct Cursor {
    std::uint64_t next = 0;
    std::string before;
};

constexpr std::string_view kCursorHead = "vexorctl-cursor 1 ";
constexpr std::size_t kMaxCursor = 4096;

std::optional<Cursor> ReadCursor(const std::string& path) {
    std::string text;
    try {
        text = ReadFile(path.c_str(), FileKind::kRegular, kMaxCursor);
    } catch (const FileError& failure) {
        if (failure.error == ENOENT) return std::nullopt;
        throw Failure(failure.error == EACCES ? Exit::kNotPermitted : Exit::kUsage,
                      path + ": " + failure.what());
    }
    Cursor cursor;
    const char* const end = text.data() + text.size();
    if (!text.starts_with(kCursorHead)) throw UsageError(path + " is no cursor file");
    const auto [stop, error] = std::from_chars(text.data() + kCursorHead.size(), end, cursor.next);
    if (error != std::errc() || stop == end || *stop != ' ') {
        throw UsageError(path + " is no cursor file");
    }
    cursor.before.assign(stop + 1, end);
    while (cursor.before.ends_with('\n')) cursor.before.pop_back();
    return cursor;
}

void WriteCursor(const std::string& path, const Cursor& cursor) {
    try {
        ReplaceFile(path, std::string(kCursorHead) + std::to_string(cursor.next) + " " +
                              cursor.before + "\n");
    } catch (const FileError& failure) {
        const bool is_denied = failure.error == EACCES || failure.error == EPERM;
        throw Failure(is_denied ? Exit::kNotPermitted : Exit::kUsage,
                      path + ": the cursor cannot be kept: " + failure.what());
    }
}

void Say(const std::string& message) { ReportFailure("event follow", message); }

// Events that cannot be shown. A record of it stands in the stream where they would stand.
struct Gap {
    std::string_view reason;
    std::optional<std::uint64_t> lost;     // how many; of a reset that cannot be told
    std::optional<std::uint64_t> after;    // the last number before it
    std::uint64_t next = 0;                // the number that the stream goes on with
    std::optional<std::uint64_t> adapter;  // the one that lost them; else the store has

    std::string JsonLine() const {
        const auto number = [](std::optional<std::uint64_t> value) {
            return value ? std::to_string(*value) : std::string("null");
        };
        return "{\"schema\":\"vexorctl/1\",\"command\":\"event "
               "follow\",\"record\":\"gap\",\"reason\":\"" +
               std::string(reason) + "\",\"lost\":" + number(lost) + ",\"after\":" + number(after) +
               ",\"next\":" + std::to_string(next) + ",\"adapter\":" + number(adapter) + "}\n";
    }
};

Gap Overwritten(std::uint64_t from, std::uint64_t next) {
    const std::uint64_t count = next - from;
    Say(std::to_string(count) +
        (count == 1 ? " event was lost: it was" : " events were lost: they were") +
        " overwritten before " + (count == 1 ? "it" : "they") + " could be read");
    return {.reason = "overwritten",
            .lost = count,
            .after = from == 0 ? std::nullopt : std::optional(from - 1),
            .next = next,
            .adapter = {}};
}

// What an adapter has lost before its events were collected; it tells that by an event.
std::optional<Gap> OverflowOf(const StoredEvent& event, const Filter& filter) {
    const auto adapter = event.record[Event::AdapterID];
    const auto kind =
        hxcodes::At(static_cast<HX_U16>(event.record[Event::Class].value_or(UINT16_MAX)),
                    static_cast<HX_U16>(event.record[Event::Code].value_or(0)));
    if (kind != hxcodes::NumberOf(hxcodes::EventKind::kEventError)) return std::nullopt;
    if (filter.adapter && adapter.value_or(*filter.adapter) != *filter.adapter) return std::nullopt;
    const auto params = event.record[Event::Params];
    return Gap{.reason = "overflow",
               .lost = params && params->size() > 2 ? std::optional((*params)[2]) : std::nullopt,
               .after = {},
               .next = event.sequence,
               .adapter = adapter};
}

// Brings the cursor up to the store as it is now: after a reset it starts at the oldest event, and
// overwritten entries are stepped over. Both are told.
std::optional<Gap> CatchUp(Controller& controller, const Extent& extent, Cursor& cursor) {
    bool reset = extent.next < cursor.next;
    if (!reset && cursor.next > extent.first) {
        std::uint64_t one = 1;
        const std::vector<StoredEvent> before = ReadEvents(controller, cursor.next - 1, 1, one);
        const std::string seen = before.empty() ? std::string() : before.front().Fingerprint();
        if (cursor.before.empty()) cursor.before = seen;  // nothing was read yet
        reset = seen != cursor.before;
    }
    if (!reset && cursor.next >= extent.first) return std::nullopt;
    const Cursor was = std::exchange(cursor, {extent.first, ""});
    if (!reset) return Overwritten(was.next, extent.first);
    Say("the event store was reset, and what it held behind event " + std::to_string(was.next - 1) +
        " is lost; how many events that were cannot be told; going on with event " +
        std::to_string(extent.first));
    return Gap{
        .reason = "reset", .lost = {}, .after = was.next - 1, .next = extent.first, .adapter = {}};
}

// The extent of the store; none while no file is there, `reason` then says what is in the way.
std::optional<Extent> AskExtentIfThere(Controller& controller, std::string& reason) {
    for (bool again = true;; again = false) {
        try {
            return AskExtent(controller);
        } catch (const Failure& failure) {
            const bool is_there = IsEventStoreThere(EventStorePath());
            if (failure.exit != Exit::kUnavailable || (is_there && !again)) throw;
            if (is_there) continue;  // it has come between the two looks
            reason = failure.what();
            return std::nullopt;
        }
    }
}

// One run of follow: what it shows, and how far it has come.
class Follower {
public:
    Follower(Invocation& invocation, const Style& style)
        : invocation_(invocation),
          style_(style),
          filter_(FilterOf(invocation)),
          most_(invocation.Number("--count", UINT32_MAX)),
          path_(invocation.Get("--cursor")),
          waits_(!invocation.Has("--once")) {
        if (path_ != nullptr) cursor_ = ReadCursor(*path_);
        LookAgain();
        if (!cursor_ && extent_ && !invocation.Has("--from-start")) cursor_ = {extent_->next, ""};
    }

    /// Shows all that there is now.
    void ShowNew() {
        if (!extent_) return;
        // Of a store that was not there when following began, everything is new.
        if (!cursor_) cursor_ = {extent_->first, ""};
        if (const auto gap = CatchUp(invocation_.controller(), *extent_, *cursor_)) Print(*gap);
        while (cursor_->next < extent_->next && !IsEnough() && !Interrupted() && ShowPage()) {
        }
        // Without any event to show, the cursor is kept all the same, so that the next run starts
        // here.
        if (first_) KeepCursor();
    }

    /// Asks for the extent again. Waits for a store that is not there, unless with --once.
    void LookAgain() {
        if (!waits_) {
            extent_ = AskExtent(invocation_.controller());
            return;
        }
        std::string reason;
        const bool was_there = extent_.has_value();
        extent_ = AskExtentIfThere(invocation_.controller(), reason);
        if (extent_ || (said_waiting_ && !was_there)) return;
        Say(was_there ? "the event store " + EventStorePath() +
                            " was there and is gone; waiting for the next one"
                      : reason + "; waiting for it");
        said_waiting_ = true;
    }

    bool IsEnough() const { return most_ && shown_ >= *most_; }

    Exit exit() const {
        const Exit exit = invocation_.controller().exit();
        return has_gap_ ? MoreSerious(exit, Exit::kEventsLost) : exit;
    }

private:
    // False when there was nothing to be read after all.
    bool ShowPage() {
        std::vector<StoredEvent> events =
            ReadEvents(invocation_.controller(), cursor_->next,
                       std::min(at_once_, extent_->next - cursor_->next), at_once_);
        if (events.empty()) return false;
        std::vector<StoredEvent> passing;
        const auto tell = [&](const Gap& gap) {
            Print(std::exchange(passing, {}));
            Print(gap);
        };
        for (StoredEvent& event : events) {
            if (IsEnough()) break;
            // Overwritten since the extent was asked for.
            if (event.sequence > cursor_->next) tell(Overwritten(cursor_->next, event.sequence));
            cursor_ = {event.sequence + 1, event.Fingerprint()};
            if (const auto gap = OverflowOf(event, filter_)) tell(*gap);
            if (!filter_.Passes(event)) continue;
            passing.push_back(std::move(event));
            ++shown_;
        }
        Print(std::move(passing));
        // The cursor is kept after the events were printed: a crash between the two repeats events
        // and loses none.
        KeepCursor();
        return true;
    }

    void Print(std::vector<StoredEvent> events) {
        Report report = MakeReport(invocation_, std::move(events));
        Arrange(invocation_, style_, report);
        PrintMore(report, style_, first_);
        first_ = false;
    }

    void Print(const Gap& gap) {
        has_gap_ = true;
        if (style_.format == "jsonl") PrintText(gap.JsonLine());
    }

    void KeepCursor() const {
        if (path_ != nullptr) WriteCursor(*path_, *cursor_);
    }

    Invocation& invocation_;
    const Style& style_;
    Filter filter_;
    std::optional<std::uint64_t> most_;
    const std::string* path_;
    bool waits_;
    std::optional<Extent> extent_;  // none while the store is not there
    std::optional<Cursor> cursor_;  // none before the store was there
    std::uint64_t shown_ = 0;
    std::uint64_t at_once_ = kEventsPerPage;
    bool first_ = true;  // nothing was printed yet, not even a heading
    bool has_gap_ = false;
    bool said_waiting_ = false;
};

Duration IntervalOf(const std::string& text) {
    const Duration interval = ParseDuration(text);
    if (interval > std::chrono::days(1))
        throw UsageError("the longest interval is 1d, not " + text);
    return interval;
}

Exit FollowEvents(Invocation& invocation) {
    const Style style = StyleOf(invocation, "table");
    if (!CanContinue(style)) {
        throw UsageError("events that go on coming cannot be one " + std::string(style.format) +
                         " document; say -o jsonl");
    }
    const Duration interval =
        ReadOption("--interval", invocation.Get("--interval", "1s"), IntervalOf);
    WatchForInterrupts();
    for (Follower follower(invocation, style);; follower.LookAgain()) {
        follower.ShowNew();
        if (Interrupted()) return Exit::kInterrupted;
        if (invocation.Has("--once") || follower.IsEnough()) return follower.exit();
        SleepMilliseconds(static_cast<unsigned>(interval.count()));
        if (Interrupted()) return Exit::kInterrupted;
    }
}

// ---- keys -------------------------------------------------------------------------------------

constexpr Column<EventPhrase> kKeyColumns[] = {
    {{"key", "KEY", kText, kTable, "The key as the store has it"},
     [](const EventPhrase& it) { return TextCell(it.key); }},
    {{"phrase", "TEXT", kText, kSentence, "Its text, with the places of its values"},
     [](const EventPhrase& it) { return TextCell(it.phrase); }},
};

std::vector<ColumnInfo> KeyColumns() { return InfoOf(kKeyColumns); }

Exit ListKeys(Invocation& invocation) {
    return Show(invocation, Tabulated(invocation, kKeyColumns, EventCatalogue()));
}

Exit ResetEvents(Invocation& invocation) {
    static constexpr char kStore[] = "the event store";
    Controller& controller = invocation.controller();
    const auto look = [&controller] {
        const Extent extent = AskExtent(controller);
        controller.sightings()->Note(
            kStore, {.facts = {NumberFact("oldest event", extent.first),
                               NumberFact("number of events", extent.next - extent.first)},
                     .related = {}});
        return extent;
    };
    const Extent extent = look();
    return CarryOut(invocation, {.what = "Reset the event store",
                                 .losses = {std::to_string(extent.next - extent.first) +
                                            " stored events will be lost"},
                                 .confirm = "events",
                                 .commands = {Request<calls::VX_HX_EVT_Reset>{}},
                                 .beside = kStore,
                                 .look_beside = look});
}

constexpr OptionRow kListOptions[] = {
    {"--last", "COUNT", "Only the newest so many"},
    {"--severity", "SEVERITY", "Only those of it; with a +, as in warning+, and of graver ones"},
    {"--adapter", "NUMBER", "Only those of this adapter"},
    {"--class", "CLASS", "Only those about one kind of object, as in virtual_disk"},
    {"--since", "TIME", "Only those since 2h30m ago, or since 2026-01-31T12:00:00+01:00"},
    {"--until", "TIME", "Only those until then, written like that of --since"},
    {"--raw", "", "Keys and values instead of readable texts"},
};

constexpr OptionRow kFollowOptions[] = {
    {"--cursor", "FILE", "Go on where the last run with this file ended, and keep it up to date"},
    {"--from-start", "", "Begin with the oldest event instead of the next one"},
    {"--once", "", "End when all events that are there have been shown"},
    {"--count", "COUNT", "End after so many events"},
    {"--interval", "DURATION", "How often to look for new events, such as 30s; 1s when not given"},
    {"--severity", "SEVERITY", "Only those of it; with a +, as in warning+, and of graver ones"},
    {"--adapter", "NUMBER", "Only those of this adapter"},
    {"--class", "CLASS", "Only those about one kind of object, as in virtual_disk"},
    {"--since", "TIME", "Only those since 2h30m ago, or since 2026-01-31T12:00:00+01:00"},
    {"--raw", "", "Keys and values instead of readable texts"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "event",
     .verb = "list",
     .summary = "List the stored events, the newest last",
     .options = kListOptions,
     .functions = kNamesOf<calls::VX_HX_EVT_GetEvents>,
     .examples = {"vexorctl event list --last 20 --severity warning+",
                  "vexorctl event list --adapter 0 --since 2h --raw"},
     .run = ListEvents,
     .columns = Columns},
    {.noun = "event",
     .verb = "follow",
     .summary = "Show events as they come",
     .options = kFollowOptions,
     .functions = kNamesOf<calls::VX_HX_EVT_GetEvents>,
     .examples = {"vexorctl event follow --from-start --once",
                  "vexorctl event follow --from-start --count 2 -o jsonl"},
     .run = FollowEvents,
     .columns = Columns,
     .note = "It waits for a store that is not there yet and then shows all of it. It tells when "
             "events were overwritten before they could be shown, how many, when the store was "
             "reset, and what an adapter has lost; with -o jsonl by a record in their place, with "
             "record \"gap\", the reason and the count. After that it ends with exit code 10. "
             "Ctrl-C ends it."},
    {.noun = "event",
     .verb = "keys",
     .summary = "List every key of events with its readable text",
     .examples = {"vexorctl event keys", "vexorctl event keys -o csv"},
     .run = ListKeys,
     .columns = KeyColumns},
    {.noun = "event",
     .verb = "reset",
     .summary = "Empty the event store",
     .target = Target::kNone,
     .arity = Arity::kNone,
     .target_name = "",
     .functions = kNamesOf<calls::VX_HX_EVT_Reset>,
     .examples = {"vexorctl event reset --dry-run", "vexorctl event reset --dry-run -o json"},
     .run = ResetEvents,
     .columns = ChangeColumns,
     .note = "It asks for the word \"events\".",
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::event_noun

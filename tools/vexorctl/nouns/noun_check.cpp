// vexorctl check: the health of everything, as a monitoring plugin tells it. What is wrong, how
// grave it is and in which words is the table of conditions' alone.
#include <unistd.h>
#include <csignal>
#include <ctime>

#include <string>
#include <string_view>
#include <vector>

#include "common/duration.h"
#include "common/terminal_text.h"
#include "conditions/hxc_check.h"
#include "conditions/hxc_json.h"
#include "conditions/hxc_overview.h"
#include "conditions/hxc_rows.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/health_answers.h"
#include "model/library_session.h"
#include "model/service_report.h"
#include "nouns/adapter_targets.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::check_noun {

namespace {

namespace hxc = hxconditions;
using hxc::Condition;
using enum Kind;
using enum Place;

// The levels are the codes 0 to 3, whatever these mean elsewhere.
constexpr int kUnknownExit = 3;

std::string CommandOf(const Condition& condition) {
    std::string text;
    for (const std::string& word : condition.command) text += (text.empty() ? "" : " ") + word;
    return text;
}

std::vector<std::string_view> LevelWords() {
    return {hxc::NameOf(hxc::Level::kCritical), hxc::NameOf(hxc::Level::kUnknown),
            hxc::NameOf(hxc::Level::kWarning), hxc::NameOf(hxc::Level::kInfo)};
}

std::vector<std::string_view> ConditionWords() {
    std::vector<std::string_view> words;
    for (const hxc::Row& row : hxc::Rows()) words.push_back(row.name);
    return words;
}

constexpr Column<Condition> kColumns[] = {
    {Always(OneOf(LevelWords, {"level", "LEVEL", kWord, kTable,
                               "How grave it is: critical, unknown, warning or info"})),
     [](const Condition& it) { return TextCell(std::string(hxc::NameOf(it.level))); }},
    {Always(OneOf(ConditionWords,
                  {"condition", "CONDITION", kWord, kTable, "The code of the condition"})),
     [](const Condition& it) { return TextCell(std::string(hxc::RowOf(it.code).name)); }},
    {{"address", "ADDRESS", kReference, kTable, "The object"},
     [](const Condition& it) { return TextCell(it.object.address); }},
    {{"name", "NAME", kText, kWide, "What the object is called"},
     [](const Condition& it) { return TextCell(it.object.name); }},
    {Always({"message", "MESSAGE", kText, kSentence, "What is wrong with it"}),
     [](const Condition& it) { return TextCell(it.sentence); }},
    {{"next_step", "NEXT STEP", kText, kWide, "What to do"},
     [](const Condition& it) { return TextCell(it.next_step); }},
    {{"next_command", "COMMAND", kText, kWide, "The command that does it"},
     [](const Condition& it) { return TextCell(CommandOf(it)); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

void EndAtAlarm(int) {
    constexpr std::string_view kText = "UNKNOWN: the controller did not answer in time\n";
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, kText.data(), kText.size());
    _exit(kUnknownExit);
}

// A controller that does not answer holds up the call, which nothing but a signal interrupts.
void LimitTime(const Invocation& invocation) {
    const std::string* const text = invocation.Get("--timeout");
    if (text == nullptr) return;
    const auto limit = std::chrono::ceil<std::chrono::seconds>(ParseDuration(*text));
    if (limit.count() <= 0) throw UsageError("--timeout must be longer than 0");
    std::signal(SIGALRM, EndAtAlarm);
    alarm(static_cast<unsigned>(limit.count()));
}

hxc::Answers Look(Invocation& invocation) {
    try {
        SelectTargets(invocation);
    } catch (const Failure& failure) {
        // An adapter that is not there tells nothing of the controller.
        if (failure.exit == Exit::kNoObject && !invocation.Has("--output")) throw;
        return UnreachableHealth(failure.exit, failure.what());
    } catch (const Unavailable& failure) {
        const std::string subject = failure.subject.empty() ? "" : failure.subject + ": ";
        return UnreachableHealth(Exit::kUnavailable, subject + failure.what());
    }
    return LoadHealth(invocation.controller());
}

void PrintLines(const hxc::Overview& overview, const hxc::Answers& answers) {
    const std::string first = hxc::FirstLine(overview, hxc::CountsOf(answers));
    std::string text = Printable(first) + " | " + hxc::PerformanceData(answers, overview) + "\n";
    for (const std::string& line : hxc::LongOutput(overview, first)) text += Printable(line) + "\n";
    PrintText(text);
}

// Other exit codes mean nothing to a monitoring system, not even where it cannot be told anything.
template <class Print>
Exit ExitOf(Print print) {
    try {
        return print();
    } catch (const OutputError& failure) {
        ReportFailure("standard output", failure.what());
        return static_cast<Exit>(kUnknownExit);
    }
}

Exit LookAndPrint(Invocation& invocation) {
    LimitTime(invocation);
    const hxc::Answers answers = Look(invocation);
    hxc::Overview overview = LookWithService(answers, std::time(nullptr));
    if (invocation.Has("--honour-silences")) overview = WithoutSilenced(std::move(overview));
    if (invocation.Has("--output")) {
        Report report = Tabulated(invocation, kColumns, overview.heads);
        report.more = hxc::OverviewJson(overview, hxc::CountsOf(answers));
        Present(invocation, std::move(report), "table");
    } else {
        PrintLines(overview, answers);
    }
    return static_cast<Exit>(hxc::ExitCodeOf(overview.overall));
}

Exit Check(Invocation& invocation) {
    return ExitOf([&] { return LookAndPrint(invocation); });
}

Exit CannotBegin(const std::string& reason) {
    return ExitOf([&] {
        PrintText("UNKNOWN: " + Printable(reason) + "\n");
        return static_cast<Exit>(kUnknownExit);
    });
}

constexpr OptionRow kOptions[] = {
    {"--adapter", "NUMBER", "Only this adapter"},
    {"--timeout", "TIMEOUT", "End with UNKNOWN after 10s or 2m"},
    {"--honour-silences", "", "Leave out what the event service was told to be silent about"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "check",
     .verb = "",
     .summary = "Tell the health of everything as a monitoring plugin",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .options = kOptions,
     .functions = kLookFunctions,
     .examples = {"vexorctl check --timeout 10s", "vexorctl check a0 -o json"},
     .run = Check,
     .columns = Columns,
     .note = "The first line begins with OK, WARNING, CRITICAL or UNKNOWN, names the gravest, and "
             "ends with performance data behind a bar; each condition follows on lines of its own, "
             "with what it takes up and what to do. The exit code is 0, 1, 2 or 3 accordingly, and "
             "3 for wrong usage and for a library, configuration or controller that cannot be "
             "used, too.",
     .cannot_begin = CannotBegin},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::check_noun

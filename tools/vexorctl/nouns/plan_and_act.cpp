#include "nouns/plan_and_act.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <utility>

#include "codes/code_table.h"
#include "codes/named.h"
#include "common/duration.h"
#include "common/number.h"
#include "common/replace_file.h"
#include "common/size.h"
#include "common/terminal_text.h"
#include "common/timestamp.h"
#include "common/turn.h"
#include "model/controller_codes.h"
#include "model/fault.h"
#include "model/plan_file.h"
#include "model/sightings.h"
#include "nouns/look_again.h"
#include "nouns/wait_for_tasks.h"
#include "output/cell_text.h"
#include "output/report.h"
#include "output/streams.h"
#include "output/terminal_width.h"
#include "output/wrapped_text.h"
#include "shell/interrupt.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

constexpr std::string_view kAdapterValue = "AdapterID";
constexpr std::uint64_t kMostAdapters = 254;

// A change with what is known of it before it is carried out.
struct Plan {
    const Change& change;
    Foreseen foreseen;
    std::vector<std::string> refusals;

    std::vector<std::string> Effects() const {
        std::vector<std::string> effects = change.losses;
        effects.insert(effects.end(), foreseen.effects.begin(), foreseen.effects.end());
        return effects;
    }
};

struct Done {
    const Plan* plan;
    std::string action;
    std::string address;
    std::string task;
    bool dry_run;
};

Cell CommandsCell(const Change& change) {
    std::vector<std::string> texts;
    for (const Command& command : change.commands) texts.push_back(CommandText(command));
    return TextsCell(std::move(texts));
}

using enum Kind;
using enum Place;

constexpr Column<Done> kColumns[] = {
    {{"address", "ADDRESS", kReference, kTable, "The address of the object"},
     [](const Done& it) { return TextCell(it.address); }},
    {Always({"action", "ACTION", kText, kTable, "The command"}),
     [](const Done& it) { return TextCell(it.action); }},
    {{"task", "TASK", kReference, kTable, "The address of the task that was started"},
     [](const Done& it) { return TextCell(it.task); }},
    {{"size_bytes", "SIZE", kBytes, kWide, "The resulting size"},
     [](const Done& it) {
         const auto& size = it.plan->change.size_bytes;
         return size ? NumberCell(*size) : None();
     }},
    {Always({"dry_run", "DRY RUN", kBool, kWide, "Whether nothing was changed"}),
     [](const Done& it) { return NumberCell(it.dry_run); }},
    {Always({"commands", "COMMANDS", kSentences, kWide, "The commands to the library"}),
     [](const Done& it) { return CommandsCell(it.plan->change); }},
    {Always({"effects", "EFFECTS", kSentences, kWide,
             "What is lost or changed by it, a sentence each"}),
     [](const Done& it) { return TextsCell(it.plan->Effects()); }},
    {Always({"refusals", "REFUSALS", kSentences, kWide,
             "Why it would be refused; empty when it would not be"}),
     [](const Done& it) { return TextsCell(it.plan->refusals); }},
};

// Of the adapter that the commands are for.
std::optional<unsigned> AdapterOf(const Change& change) {
    for (const Command& command : change.commands) {
        for (const auto& [name, value] : command.values) {
            if (name != kAdapterValue) continue;
            const auto number = vexortools::ReadNumber(value, kMostAdapters);
            if (number) return static_cast<unsigned>(*number);
        }
    }
    return std::nullopt;
}

Foreseen ForeseenOf(Controller& controller, const Change& change) {
    const auto adapter = AdapterOf(change);
    if (!change.alters || !adapter) return {};
    return Foresee(controller, *adapter, change.alters);
}

Plan PlanOf(Invocation& invocation, const Change& change) {
    Plan plan{change, ForeseenOf(invocation.controller(), change), change.refusals};
    if (change.needs_force && !invocation.Has("--force") && !plan.foreseen.unusable.empty()) {
        plan.refusals.push_back(Joined(plan.foreseen.unusable, ", ") +
                                " could not be used any more; --force does it all the same");
    }
    return plan;
}

std::string Line(std::string_view indent, const std::string& text) {
    const std::string line = std::string(indent) + Printable(text);
    const std::size_t width = TerminalWidth().value_or(std::string::npos);
    return line.size() <= width ? line + "\n" : Wrapped(indent, Printable(text), width);
}

std::string PlanText(const Plan& plan, const PlanReview* review, const Style& style) {
    std::string text;
    if (review != nullptr) {
        text += Line("", "Planned on " + review->plan.host + " at " + review->plan.made_at +
                             " with " + review->plan.made_by + ":");
    }
    text += Line("", plan.change.what);
    for (const std::string& effect : plan.Effects()) text += Line("  ", effect);
    if (plan.change.size_bytes) {
        text += "  resulting size: " + SizeText(*plan.change.size_bytes, style) + "\n";
    }
    for (const std::string& refusal : plan.refusals) {
        text += Line("  ", "this would be refused: " + refusal);
    }
    return text;
}

// Asks and waits for the answer. An interrupt ends the line on the terminal, too: the shell's
// prompt follows.
std::string Ask(const std::string& question) {
    std::string line;
    {
        const WatchingInterrupts watching;
        std::fwrite(question.data(), 1, question.size(), stderr);
        char c;
        while (line.size() < 256 && watching.Read(c) && c != '\n') line += c;
    }
    if (Interrupted()) {
        std::fputc('\n', stderr);
        throw Failure(Exit::kInterrupted, "interrupted; nothing was changed");
    }
    return line;
}

// What has to be typed. A plan that somebody else has made is shown in any case.
std::string WordToType(const Invocation& invocation, const Change& change) {
    if (!change.confirm.empty() || invocation.review() == nullptr) return change.confirm;
    return "apply";
}

void Confirm(const Invocation& invocation, const Plan& plan) {
    const std::string word = WordToType(invocation, plan.change);
    if (word.empty() || invocation.Has("--yes")) return;
    if (isatty(STDIN_FILENO) != 1) {
        throw Failure(Exit::kNotConfirmed,
                      "not confirmed: there is no terminal to ask; say --yes, or --dry-run to see "
                      "the plan");
    }
    // A name that cannot be typed is accepted in the form in which it was shown, too.
    const std::string shown = Printable(word);
    const std::string line = Ask(PlanText(plan, invocation.review(), StyleOf(invocation, "table")) +
                                 "Type " + shown + " to go on: ");
    if (line != word && line != shown) {
        throw Failure(Exit::kNotConfirmed, "not confirmed; nothing was changed");
    }
}

Exit PrintDone(Invocation& invocation, const Plan& plan, const std::string& address,
               const std::string& task, bool dry_run) {
    Report report;
    Tabulate(report, kColumns,
             std::vector<Done>{{&plan, invocation.row().Name(), address, task, dry_run}},
             hxcodes::NoCodes());
    report.command = invocation.row().Name();
    const Style style = StyleOf(invocation, "table");
    Arrange(invocation, style, report);
    report.faults = invocation.controller().faults();
    Print(report, style);
    return invocation.controller().exit();
}

// The address of the object that is there now and was not before; empty when there is none.
std::string Newcomer(const std::vector<Address>& before, const std::vector<Address>& now) {
    for (const Address& address : now) {
        if (std::ranges::find(before, address) == before.end()) return address.Text();
    }
    return {};
}

Exit ShowPlan(Invocation& invocation, const Plan& plan) {
    const Change& change = plan.change;
    const Exit refused = plan.refusals.empty() ? Exit::kDone : Exit::kRefused;
    if (invocation.Has("--output") || invocation.Has("--columns")) {
        const Exit exit = PrintDone(invocation, plan, change.address,
                                    change.starts_task ? change.address : std::string(), true);
        return MoreSerious(exit, refused);
    }
    std::string text = PlanText(plan, invocation.review(), StyleOf(invocation, "table"));
    for (const Command& command : change.commands) text += Printable(CommandText(command)) + "\n";
    const std::string* const path = invocation.Get("--plan");
    if (path != nullptr && plan.refusals.empty()) {
        text += Line("", "The plan is in " + *path + "; vexorctl apply carries it out.");
    }
    PrintText(text);
    return refused;
}

// ---- Plans as files ----

// The words that make this plan again.
std::vector<std::string> WordsOf(const Invocation& invocation) {
    const CommandRow& row = invocation.row();
    std::vector<std::string> words{std::string(row.noun)};
    if (!row.verb.empty()) words.emplace_back(row.verb);
    const auto add = [&](const OptionRow& option) {
        if (!invocation.Has(option.name)) return;
        const std::string* const value = invocation.Get(option.name);
        const bool has_value = value != nullptr && !value->empty();
        words.push_back(std::string(option.name) + (has_value ? "=" + *value : std::string()));
    };
    std::ranges::for_each(row.options, add);
    add(kCodesOption);
    if (!invocation.targets().empty()) words.emplace_back("--");
    words.insert(words.end(), invocation.targets().begin(), invocation.targets().end());
    return words;
}

std::string HostName() {
    char name[256] = {};
    // A name that is cut has no terminator.
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

PlanFile FileOf(Invocation& invocation, const Plan& plan, const SecondLook& look) {
    PlanFile file{.made_by = "vexorctl " VEXORCTL_VERSION,
                  .made_at = vexortools::TimeText(std::time(nullptr), true),
                  .host = HostName(),
                  .words = WordsOf(invocation),
                  .what = plan.change.what,
                  .effects = plan.Effects(),
                  .size_bytes = plan.change.size_bytes,
                  .functions = {},
                  .objects = {}};
    for (const Command& command : plan.change.commands) {
        file.functions.push_back(CommandText(command));
    }
    for (const std::string& object : look.objects()) {
        Fingerprint& fingerprint = file.objects[object];
        const Sighting* const sighting = invocation.controller().sightings()->First(object);
        if (sighting == nullptr) continue;
        for (const Fact& fact : sighting->facts) fingerprint.emplace_back(fact.label, fact.text);
    }
    return file;
}

// How an object of the plan differs from what it is now.
std::string DifferenceFromPlan(const Sightings& sightings, const std::string& object,
                               const Fingerprint& planned) {
    const Sighting* const now = sightings.First(object);
    if (now == nullptr)
        return planned.empty() ? "" : object + " is not there, or not concerned, any more";
    Sighting before = *now;
    bool is_alike = planned.size() == now->facts.size();
    for (std::size_t i = 0; is_alike && i < planned.size(); ++i) {
        is_alike = planned[i].first == now->facts[i].label;
        before.facts[i].text = planned[i].second;
    }
    if (!is_alike) return object + ": what the plan tells of it is not what this vexorctl reads";
    return sightings.DifferenceFrom(object, before);
}

// Throws Outdated unless the plan that was reviewed is the one that is made now.
void RequireSame(const PlanFile& reviewed, const PlanFile& made, const Sightings& sightings) {
    if (reviewed.host != made.host) {
        throw Outdated("it was made on " + reviewed.host + ", and this is " + made.host);
    }
    std::vector<std::string> differences;
    for (const auto& [object, fingerprint] : reviewed.objects) {
        std::string difference = DifferenceFromPlan(sightings, object, fingerprint);
        if (difference.empty() && !made.objects.contains(object)) {
            difference = object + " is not concerned any more";
        }
        if (!difference.empty()) differences.push_back(std::move(difference));
    }
    for (const auto& [object, fingerprint] : made.objects) {
        if (!reviewed.objects.contains(object)) {
            differences.push_back(object + " is concerned, too");
        }
    }
    if (differences.empty() && reviewed.functions != made.functions) {
        differences.push_back("other commands would be sent: " + Joined(made.functions, ", "));
    }
    if (differences.empty() && reviewed.size_bytes != made.size_bytes) {
        const auto text = [](const std::optional<std::uint64_t>& size) {
            return size ? std::to_string(*size) + " bytes" : std::string("not told");
        };
        differences.push_back("the resulting size would be " + text(made.size_bytes) +
                              ", and in the plan it is " + text(reviewed.size_bytes));
    }
    if (differences.empty() && (reviewed.what != made.what || reviewed.effects != made.effects ||
                                reviewed.objects != made.objects)) {
        differences.push_back("its effects would be others: " + made.what + ": " +
                              Joined(made.effects, ", "));
    }
    if (!differences.empty()) throw Outdated(Joined(differences, "; "));
}

// A file that is there is kept: somebody may have reviewed it.
void WritePlanFile(const std::string& path, const PlanFile& plan) {
    constexpr mode_t kMode = 0644;
    const std::string text = WritePlan(plan);
    try {
        if (text.size() > kMostPlanBytes) throw vexortools::FileError(EFBIG);
        const vexortools::NewFile file(path);
        std::ofstream stream(file.Path(), std::ios::binary);
        stream << text << std::flush;
        if (!stream) throw vexortools::FileError(EIO);
        stream.close();
        file.Put(vexortools::Existing::kKeep, kMode);
    } catch (const vexortools::FileError& error) {
        throw Failure(Exit::kUsage, path + ": " + error.what() + "; the plan was not written");
    }
}

}  // namespace

std::vector<ColumnInfo> ChangeColumns() { return InfoOf(kColumns); }

std::uint64_t CodeOption(Invocation& invocation, std::string_view option, CodeNames names) {
    const std::string text = invocation.Get(option, "");
    const auto rows = invocation.controller().codes().table().*names;
    if (const auto* const row = hxcodes::FindName(rows, text)) return row->code;
    unsigned code = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, code);
    if (!text.empty() && error == std::errc() && stop == end) return code;
    const std::string refused = std::string(option) + " cannot be \"" + text + "\"; ";
    if (rows.empty()) throw UsageError(refused + std::string(kCodesNotKnown));
    std::string known;
    for (const hxcodes::Named& row : rows) known.append(known.empty() ? "" : ", ").append(row.name);
    throw UsageError(refused + "say one of " + known);
}

std::uint64_t CodeNamed(Controller& controller, CodeNames names, std::string_view name) {
    const auto* const row = hxcodes::FindName(controller.codes().table().*names, name);
    if (row == nullptr) {
        throw Failure(Exit::kRefused, "the code of \"" + std::string(name) + "\" is needed, and " +
                                          std::string(kCodesNotKnown));
    }
    return row->code;
}

std::optional<unsigned> SwitchOption(const Invocation& invocation, std::string_view option) {
    const std::string* const text = invocation.Get(option);
    if (text == nullptr) return std::nullopt;
    return *text == "on" ? 1 : 0;
}

std::string ReasonOf(const Answer& refused) {
    constexpr std::string_view kPrefix = "refused: ";
    const std::string& text = refused.complaint;
    return text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : text;
}

void TellAnsweredSize(const Answer& answer, std::optional<std::uint64_t> sectors, Change& change) {
    if (answer.exit == Exit::kRefused) {
        change.refusals.push_back(ReasonOf(answer));
    } else if (answer.exit == Exit::kDone && sectors) {
        change.size_bytes = kSectorBytes * *sectors;
    } else {
        change.losses.emplace_back("the resulting size is not known");
    }
}

Exit CarryOut(Invocation& invocation, const Change& change) {
    constexpr std::chrono::minutes kPatience{1};
    Controller& controller = invocation.controller();
    std::optional<Duration> timeout;
    if (invocation.Has("--wait")) timeout = TimeoutOf(invocation);
    const Plan plan = PlanOf(invocation, change);
    PlanReview* const review = invocation.review();
    const std::string* const path = review == nullptr ? invocation.Get("--plan") : nullptr;
    const bool only_shown = invocation.Has("--dry-run");
    if (only_shown && review == nullptr && path == nullptr) return ShowPlan(invocation, plan);
    SecondLook look(controller, change);
    if (review != nullptr) {
        // What a file cannot hold is compared as a file would hold it.
        const PlanFile made = ReadPlan(WritePlan(FileOf(invocation, plan, look)));
        RequireSame(review->plan, made, *controller.sightings());
        review->is_met = true;
    }
    if (path != nullptr && plan.refusals.empty()) {
        WritePlanFile(*path, FileOf(invocation, plan, look));
    }
    if (only_shown || path != nullptr) return ShowPlan(invocation, plan);
    if (change.needs_force && !invocation.Has("--force") && !plan.foreseen.unusable.empty()) {
        throw Failure(Exit::kRefused,
                      change.address + ": " + plan.refusals.back() + ". Nothing was done");
    }
    Confirm(invocation, plan);
    std::optional<Turn> turn(kPatience);
    if (!turn->IsOurs()) {
        throw Failure(
            Exit::kNotConfirmed,
            "another vexorctl has been changing something for a minute; nothing was done");
    }
    look.Check();
    if (const Foreseen now = ForeseenOf(controller, change); now != plan.foreseen) {
        throw Outdated("its effects would be others: " + Joined(now.effects, ", "));
    }
    const std::vector<Address> before =
        change.created ? change.created(controller) : std::vector<Address>();
    const auto send = [&](const Command& command) {
        const Answer answer = controller.Ask(command);
        if (answer.exit == Exit::kDone) return;
        const std::string subject = change.address.empty() ? "" : change.address + ": ";
        Fault fault = controller.FaultOf(command, answer);
        fault.address = change.address;
        throw Failure(answer.exit, subject + answer.complaint, std::move(fault));
    };
    if (change.act) {
        change.act(send);
    } else {
        std::ranges::for_each(change.commands, send);
    }
    const std::string address =
        change.created ? Newcomer(before, change.created(controller)) : change.address;
    turn.reset();
    const bool started = change.starts_task && HasTask(controller, address);
    const Exit exit =
        PrintDone(invocation, plan, address, started ? address : std::string(), false);
    if (timeout && started) {
        return MoreSerious(exit, WaitForTask(invocation, address, *timeout));
    }
    return exit;
}

}  // namespace vexorctl

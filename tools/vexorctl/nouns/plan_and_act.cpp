#include "nouns/plan_and_act.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>

#include "codes/code_table.h"
#include "codes/named.h"
#include "common/duration.h"
#include "common/terminal_text.h"
#include "common/turn.h"
#include "model/controller_codes.h"
#include "model/fault.h"
#include "nouns/look_again.h"
#include "nouns/wait_for_tasks.h"
#include "output/cell_text.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

struct Done {
    const Change* change;
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
         return it.change->size_bytes ? NumberCell(*it.change->size_bytes) : None();
     }},
    {Always({"dry_run", "DRY RUN", kBool, kWide, "Whether nothing was changed"}),
     [](const Done& it) { return NumberCell(it.dry_run); }},
    {Always({"commands", "COMMANDS", kTexts, kWide, "The commands to the library"}),
     [](const Done& it) { return CommandsCell(*it.change); }},
};

std::string PlanText(const Change& change, const Style& style) {
    std::string text = Printable(change.what) + "\n";
    for (const std::string& loss : change.losses) text += "  " + Printable(loss) + "\n";
    if (change.size_bytes)
        text += "  resulting size: " + SizeText(*change.size_bytes, style) + "\n";
    return text;
}

std::string ReadLine() {
    std::string line;
    char c;
    while (line.size() < 256 && read(STDIN_FILENO, &c, 1) == 1 && c != '\n') line += c;
    return line;
}

void Confirm(const Invocation& invocation, const Change& change) {
    if (change.confirm.empty() || invocation.Has("--yes")) return;
    if (isatty(STDIN_FILENO) != 1) {
        throw Failure(Exit::kNotConfirmed,
                      "not confirmed: there is no terminal to ask; say --yes, or --dry-run to see "
                      "the plan");
    }
    // A name that cannot be typed is accepted in the form in which it was shown, too.
    const std::string shown = Printable(change.confirm);
    const std::string question =
        PlanText(change, StyleOf(invocation, "table")) + "Type " + shown + " to go on: ";
    std::fwrite(question.data(), 1, question.size(), stderr);
    const std::string line = ReadLine();
    if (line != change.confirm && line != shown) {
        throw Failure(Exit::kNotConfirmed, "not confirmed; nothing was changed");
    }
}

Exit PrintDone(Invocation& invocation, const Change& change, const std::string& address,
               const std::string& task, bool dry_run) {
    Report report;
    Tabulate(report, kColumns,
             std::vector<Done>{{&change, invocation.row().Name(), address, task, dry_run}},
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

Exit ShowPlan(Invocation& invocation, const Change& change) {
    if (invocation.Has("--output") || invocation.Has("--columns")) {
        return PrintDone(invocation, change, change.address,
                         change.starts_task ? change.address : std::string(), true);
    }
    std::string text = PlanText(change, StyleOf(invocation, "table"));
    for (const Command& command : change.commands) text += Printable(CommandText(command)) + "\n";
    PrintText(text);
    return Exit::kDone;
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

Exit CarryOut(Invocation& invocation, const Change& change) {
    constexpr std::chrono::minutes kPatience{1};
    Controller& controller = invocation.controller();
    std::optional<Duration> timeout;
    if (invocation.Has("--wait")) timeout = TimeoutOf(invocation);
    if (invocation.Has("--dry-run")) return ShowPlan(invocation, change);
    SecondLook look(controller, change);
    Confirm(invocation, change);
    std::optional<Turn> turn(kPatience);
    if (!turn->IsOurs()) {
        throw Failure(
            Exit::kNotConfirmed,
            "another vexorctl has been changing something for a minute; nothing was done");
    }
    look.Check();
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
        PrintDone(invocation, change, address, started ? address : std::string(), false);
    if (timeout && started) {
        return MoreSerious(exit, WaitForTask(invocation, address, *timeout));
    }
    return exit;
}

}  // namespace vexorctl

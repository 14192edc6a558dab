// vexorctl tape ...: calls of the controller library, recorded and played back.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/exit_code.h"
#include "model/failure.h"
#include "model/run_program.h"
#include "model/tape_run.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"
#include "tape/hxt_tape.h"

namespace vexorctl::tape_noun {

namespace {

constexpr auto kNotOnTape = static_cast<Exit>(11);  // kOwnExits has its meaning
constexpr std::size_t kMissesShown = 8;

using hxtape::Tape;

// The words behind the name of the tape. A program is not started without them: a shell that
// somebody forgot to name is none.
std::vector<std::string> CommandOf(const Invocation& invocation) {
    const std::vector<std::string>& words = invocation.targets();
    if (words.size() < 2) throw UsageError("the command is missing that is to run");
    return {words.begin() + 1, words.end()};
}

Exit Record(Invocation& invocation) {
    const std::string& path = invocation.targets().front();
    const std::vector<std::string> words = CommandOf(invocation);
    const bool anonymous = invocation.Has("--anonymous");
    const TapeRun run;
    NewTape recorded(path, anonymous, invocation.Has("--force"));
    const ProgramEnd end =
        RunProgram({.words = words, .environment = run.Recording(recorded.file(), anonymous)});
    if (const std::string trouble = run.Trouble(); !trouble.empty()) {
        recorded.Keep();  // what there is of it may help
        ReportFailure(path, trouble);
        return Exit::kUnavailable;
    }
    if (LoadTape(recorded.file()).calls.empty()) {
        ReportFailure(path,
                      "nothing was recorded: the command made no call of a controller "
                      "library that vexorctl could stand before");
        return Exit::kUnavailable;
    }
    recorded.Keep();
    return static_cast<Exit>(end.code);
}

void ReportMisses(const std::string& path, const std::vector<std::string>& missed) {
    for (std::size_t i = 0; i < std::min(missed.size(), kMissesShown); ++i) {
        ReportFailure(path, "no answer to " + missed[i]);
    }
    if (missed.size() > kMissesShown) {
        const std::size_t more = missed.size() - kMissesShown;
        ReportFailure(path, "no answer to " + std::to_string(more) + " more calls");
    }
}

Exit Replay(Invocation& invocation) {
    const std::string& path = invocation.targets().front();
    const std::vector<std::string> words = CommandOf(invocation);
    LoadTape(path);  // a tape that cannot be used is told before anything runs
    const TapeRun run;
    const ProgramEnd end = RunProgram({.words = words, .environment = run.Replaying(path)});
    if (!run.WasPlayed()) {
        ReportFailure(path, "the command asked nothing of the tape");
        return Exit::kUnavailable;
    }
    const std::vector<std::string> missed = run.Missed();
    ReportMisses(path, missed);
    return missed.empty() ? static_cast<Exit>(end.code) : kNotOnTape;
}

// ---- show ----

struct ShownCall {
    std::uint64_t number;
    const hxtape::TapeCall* call;
};

using enum Kind;
using enum Place;

constexpr Column<ShownCall> kColumns[] = {
    {Always({"number", "CALL", kNumber, kTable, "Its place on the tape, from 1"}),
     [](const ShownCall& it) { return NumberCell(it.number); }},
    {Always({"function", "FUNCTION", kText, kTable, "The function of the controller library"}),
     [](const ShownCall& it) { return TextCell(it.call->function); }},
    {Always({"status", "STATUS", kNumber, kTable, "What it returned; 0 is success, or a count"}),
     [](const ShownCall& it) { return NumberCell(it.call->status); }},
    {Always({"answer_length", "ANSWER", kNumber, kTable, "Bytes that it filled in"}),
     [](const ShownCall& it) { return NumberCell(it.call->answer.size()); }},
    {{"request", "REQUEST", kHex, kWide, "The bytes that it was asked with"},
     [](const ShownCall& it) {
         return it.call->request.empty() ? None() : TextCell(hxtape::HexOf(it.call->request));
     }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ShowTape(Invocation& invocation) {
    const Tape tape = LoadTape(invocation.targets().front());
    std::vector<ShownCall> calls;
    for (const hxtape::TapeCall& each : tape.calls) calls.push_back({calls.size() + 1, &each});
    Report report{.command = invocation.row().Name(), .columns = {}, .rows = {}, .faults = {}};
    Tabulate(report, kColumns, calls, hxcodes::NoCodes());
    return Present(invocation, std::move(report), "table");
}

constexpr OptionRow kRecordOptions[] = {
    {"--anonymous", "", "Pseudonyms instead of serial numbers, addresses and names"},
    {"--force", "", "Replace a file that is there"},
    kControllerOption,
};

constexpr CommandRow kCommands[] = {
    {.noun = "tape",
     .verb = "record",
     .summary = "Run a command and record its calls of the controller library",
     .target = Target::kFile,
     .arity = Arity::kMany,
     .target_name = "FILE -- COMMAND",
     .options = kRecordOptions,
     .examples = {"vexorctl tape record machine.tape -- vexorctl overview",
                  "vexorctl tape record --anonymous disks.tape -- vexorctl disk list a0"},
     .run = Record,
     .note = "The command, and what it starts, asks the controller as ever; what was asked and "
             "answered is appended to the file, which nobody else may read. The exit code is the "
             "command's own, or 5 when nothing or not all was recorded; without a call there is no "
             "tape, and one that --force is to replace stays. An anonymous tape has the "
             "same pseudonym for the same value all through; the key of them is stored nowhere. "
             "Reasons of refusals and the contents of the flash are left out of it. No call takes "
             "a password, so that no tape has one. vexorapi-tape(5) has the form of the file."},
    {.noun = "tape",
     .verb = "replay",
     .summary = "Run a command over the answers of a tape, without a controller",
     .target = Target::kFile,
     .arity = Arity::kMany,
     .target_name = "FILE -- COMMAND",
     .examples = {"vexorctl tape replay machine.tape -- vexorctl overview",
                  "vexorctl tape replay disks.tape -- vexorctl disk list a0"},
     .run = Replay,
     .note = "Each call gets the answers that the same call got on the tape, one after the other, "
             "and the last one again when it is only a question. A call that changes something is "
             "answered as often as it was recorded; nothing is sent anywhere. What the tape has no "
             "answer to is refused and named at the end, and the exit code is 11; otherwise it is "
             "the command's own. Events are read from the event store and not from the tape."},
    {.noun = "tape",
     .verb = "show",
     .summary = "List the calls of a tape",
     .target = Target::kFile,
     .arity = Arity::kOne,
     .target_name = "FILE",
     .examples = {"vexorctl tape show machine.tape", "vexorctl tape show machine.tape -o json"},
     .run = ShowTape,
     .columns = Columns},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::tape_noun

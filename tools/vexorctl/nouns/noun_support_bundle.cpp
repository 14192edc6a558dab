// vexorctl support-bundle: what somebody elsewhere needs to understand this machine, as one file.
#include <algorithm>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "model/exit_code.h"
#include "model/support_bundle.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::support_bundle_noun {

namespace {

using enum Kind;
using enum Place;

std::vector<std::string_view> StateWords() {
    return {WordOf(PartState::kIncluded), WordOf(PartState::kAbsent), WordOf(PartState::kLeftOut),
            WordOf(PartState::kUnread)};
}

constexpr Column<BundlePart> kColumns[] = {
    {Always({"file", "FILE", kText, kTable, "Its name in the archive"}),
     [](const BundlePart& it) { return TextCell(it.name); }},
    {Always(OneOf(StateWords, {"state", "STATE", kWord, kTable,
                               "Included, absent on this machine, left out, or unread"})),
     [](const BundlePart& it) { return TextCell(std::string(WordOf(it.state))); }},
    {{"length", "BYTES", kNumber, kTable, "Its bytes"},
     [](const BundlePart& it) { return it.bytes ? NumberCell(it.bytes) : None(); }},
    {{"source", "SOURCE", kText, kWide, "The command or the file that it is of"},
     [](const BundlePart& it) { return it.source.empty() ? None() : TextCell(it.source); }},
    {{"reason", "REASON", kText, kTable, "Why it is not whole"},
     [](const BundlePart& it) { return it.reason.empty() ? None() : TextCell(it.reason); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

std::string NewName() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    char text[64];
    std::strftime(text, sizeof text, "vexorapi-support-%Y%m%d-%H%M%S.tar.gz", &parts);
    return text;
}

Exit MakeBundle(Invocation& invocation) {
    const std::string path =
        invocation.targets().empty() ? NewName() : invocation.targets().front();
    const std::vector<BundlePart> parts =
        WriteBundle(path, invocation.Has("--anonymous"), invocation.Has("--force"));
    Report report{.command = invocation.row().Name(), .columns = {}, .rows = {}, .faults = {}};
    Tabulate(report, kColumns, parts, hxcodes::NoCodes());
    Present(invocation, std::move(report), "table");
    const auto unread = std::ranges::count(parts, PartState::kUnread, &BundlePart::state);
    if (unread == 0) return Exit::kDone;
    ReportFailure(path, std::to_string(unread) + (unread == 1 ? " part" : " parts") +
                            " of it could not be read");
    return Exit::kRefused;
}

constexpr OptionRow kOptions[] = {
    {"--anonymous", "", "Pseudonyms on the tape and in the lists; no store, configuration or logs"},
    {"--force", "", "Replace a file that is there"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "support-bundle",
     .verb = "",
     .summary = "Pack what is needed to understand this machine elsewhere",
     .target = Target::kFile,
     .arity = Arity::kOptional,
     .target_name = "FILE",
     .options = kOptions,
     .examples = {"vexorctl support-bundle machine.tar.gz",
                  "vexorctl support-bundle anonymous.tar.gz --anonymous -o json"},
     .run = MakeBundle,
     .columns = Columns,
     .note =
         "Nothing of the machine is changed. The archive has the lists of all objects and what "
         "check says, as JSON; the tape of their calls, for vexorctl tape replay; the event "
         "store, the configurations, the service's status and the logs, with stars instead of "
         "passwords; and the versions of program, library and kernel. It is there as a whole "
         "or not at all, is readable by its owner alone, and is read back. The table says what "
         "is in it; contents.txt in it says the same. When something could not be read the exit "
         "code is 1. Without a name it is called vexorapi-support- and the time in UTC. With "
         "--anonymous what could tell whose machine it is is left out or under pseudonyms."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::support_bundle_noun

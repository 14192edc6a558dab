// vexorctl risk: how near every virtual disk is to losing data.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "common/terminal_text.h"
#include "conditions/hxc_risk.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/health_answers.h"
#include "model/library_record.h"
#include "model/rebuild_rates.h"
#include "nouns/find_object.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "output/streams.h"
#include "output/terminal_width.h"
#include "output/wrapped_text.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::risk_noun {

namespace {

namespace hxc = hxconditions;
using hxc::Risk;
using enum Kind;
using enum Place;

// No command but this one ends with it: nothing has failed, but the next disk that does may take
// data along.
constexpr int kAtRiskExit = 9;

Cell TextOrNone(const std::optional<std::string>& text) { return text ? TextCell(*text) : None(); }

std::vector<std::string> PlacesOf(const Risk& risk) {
    std::vector<std::string> places;
    for (const hxc::SharedPlace& each : risk.shared) places.push_back(each.place);
    return places;
}

std::vector<std::string> WeakOf(const Risk& risk) {
    std::vector<std::string> disks;
    for (const hxc::WeakMember& each : risk.weak) disks.push_back(each.disk);
    return disks;
}

constexpr Column<Risk> kColumns[] = {
    {{"address", "VD", kAddress, kTable, "The address of the virtual disk"},
     [](const Risk& it) { return TextCell(it.address); }},
    {{"name", "NAME", kText, kTable, "Its name"}, [](const Risk& it) { return TextCell(it.name); }},
    {{"survives", "SURVIVES", kNumber, kTable, "How many disks, whichever, may fail"},
     [](const Risk& it) { return NumberCell(it.survives); }},
    {{"must_not_fail", "MUST NOT FAIL", kAddresses, kWide,
      "The disks whose failure loses data; empty while any disk may fail"},
     [](const Risk& it) { return TextsCell(it.needed); }},
    {{"may_fail", "MAY FAIL", kAddresses, kWide, "The disks of which any one may fail"},
     [](const Risk& it) { return TextsCell(it.may_fail); }},
    {{"lost", "LOST", kAddresses, kWide, "The disks that it has lost"},
     [](const Risk& it) { return TextsCell(it.lost); }},
    {{"rebuild_ratio", "REBUILD", kRatio, kTable, "How far its rebuild is, while one runs"},
     [](const Risk& it) { return it.is_rebuilding ? PercentCell(it.percent) : None(); }},
    {{"spare", "SPARE", kReference, kTable, "The spare that steps in"},
     [](const Risk& it) { return TextOrNone(it.spare); }},
    {{"no_spare_reason", "WHY NONE", kText, kWide, "Why no spare steps in"},
     [](const Risk& it) { return it.no_spare.empty() ? None() : TextCell(it.no_spare); }},
    {{"free_disk", "FREE DISK", kReference, kTable,
      "A free disk that would suffice, where no spare does"},
     [](const Risk& it) { return TextOrNone(it.free); }},
    {{"needed_bytes", "NEEDED", kBytes, kWide, "The size that a disk needs to replace a member"},
     [](const Risk& it) { return SectorsCell(it.needed_sectors); }},
    {{"exposure_seconds", "EXPOSED S", kNumber, kTable,
      "How long its rebuild takes, by the latest that was measured on its adapter"},
     [](const Risk& it) {
         if (!it.is_redundant) return None();
         return it.exposure_s ? NumberCell(static_cast<std::uint64_t>(*it.exposure_s)) : Unknown();
     }},
    {{"shared_places", "SHARED", kTexts, kWide,
      "The enclosures and expanders that take more of its disks along than it survives"},
     [](const Risk& it) { return TextsCell(PlacesOf(it)); }},
    {{"weak_disks", "WEAK", kTexts, kWide,
      "Its disks that announce their failure or have remapped sectors"},
     [](const Risk& it) { return TextsCell(WeakOf(it)); }},
    {Always({"at_risk", "AT RISK", kBool, kTable, "Whether a failure that comes next loses data"}),
     [](const Risk& it) { return NumberCell(IsAtRisk(it) ? 1 : 0); }},
    {Always({"sentence", "SENTENCE", kText, kWide, "All of that in words"}),
     [](const Risk& it) { return TextCell(it.sentence); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// Those that the targets name; all where there are no targets.
std::vector<Address> WantedOnes(Invocation& invocation) {
    Controller& controller = invocation.controller();
    std::vector<Address> wanted;
    for (const std::string& target : invocation.targets()) {
        controller.Select(controller.Adapters());  // a name may be on any
        const Selector selector = ParseSelector(target);
        const bool is_adapter = selector.form == Selector::Form::kAddress &&
                                selector.address.kind == ObjectKind::kAdapter;
        wanted.push_back(FindObject(
            invocation, is_adapter ? ObjectKind::kAdapter : ObjectKind::kVirtualDisk, target));
    }
    if (!wanted.empty()) controller.Select(controller.Adapters());
    return wanted;
}

bool IsWanted(const std::vector<Address>& wanted, const Risk& risk) {
    return wanted.empty() || std::ranges::any_of(wanted, [&](const Address& each) {
               if (each.adapter != risk.adapter) return false;
               return each.kind == ObjectKind::kAdapter || each.id == risk.id;
           });
}

Exit ShowRisks(Invocation& invocation) {
    const std::vector<Address> wanted = WantedOnes(invocation);
    SelectAdapters(invocation);
    Controller& controller = invocation.controller();
    MachineLook look = LookAtMachine(controller);
    TakeRemapped(controller, look.answers);
    std::vector<Risk> risks = RisksOf(look.answers, MeasureRebuilds(controller, look.answers));
    std::erase_if(risks, [&](const Risk& risk) { return !IsWanted(wanted, risk); });
    Exit exit = controller.exit();
    const bool as_rows = invocation.Has("--output") || invocation.Has("--columns") ||
                         invocation.Has("--sort") || invocation.Has("--no-header");
    if (as_rows) {
        exit = Present(invocation, Tabulated(invocation, kColumns, risks), "table");
    } else {
        std::string text;
        // A pipe gets one line for each, which other programs can search.
        const std::size_t width = TerminalWidth().value_or(std::string::npos);
        for (const Risk& risk : risks) {
            text += Wrapped("", vexortools::Printable(risk.sentence), width);
        }
        PrintText(text);
        ReportFaults(controller.faults());
    }
    if (std::ranges::any_of(risks, hxc::IsAtRisk)) return static_cast<Exit>(kAtRiskExit);
    const bool unknown =
        std::ranges::any_of(risks, [](const Risk& risk) { return !risk.survives.has_value(); });
    return unknown && exit == Exit::kDone ? Exit::kRefused : exit;
}

constexpr OptionRow kOptions[] = {
    {"--adapter", "NUMBER", "Only those of this adapter"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "risk",
     .verb = "",
     .summary = "Tell what every virtual disk still survives",
     .target = Target::kVirtualDisk,
     .arity = Arity::kAny,
     .target_name = "VD",
     .options = kOptions,
     .functions =
         kNamesOf<calls::HX_Adapter_GetInfo, calls::HX_Adapter_GetConfig,
                  calls::HX_PD_GetHDInfo_Ext, calls::HX_PD_GetConfig, calls::HX_PD_GetSmartStatus,
                  calls::HX_PD_GetRCT, calls::HX_PD_GetHDRaidStatus, calls::HX_PD_GetBGAStatus,
                  calls::HX_PD_GetFreeSpaceInfo, calls::HX_LD_GetInfo, calls::HX_LD_GetConfig,
                  calls::HX_LD_GetStatus, calls::HX_BLK_GetInfo, calls::HX_DG_GetInfo,
                  calls::VX_HX_EVT_GetEvents>,
     .examples = {"vexorctl risk", "vexorctl risk name:DATABASE -o json"},
     .run = ShowRisks,
     .columns = Columns,
     .note =
         "A sentence for each virtual disk: how many more disks may fail, which must not, which "
         "spare would step in or why none does, and how long the rebuild would take, by the "
         "latest rebuild of the same adapter that the event store tells of from its start to "
         "its end; what its disks have in common, and which of them are weak. The exit code is "
         "9 when a failure that comes next loses data of one of them, which it always does at a "
         "level without redundancy, and 1 when that of one is not known."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::risk_noun

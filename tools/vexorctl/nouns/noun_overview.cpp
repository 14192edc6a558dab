// vexorctl overview, and vexorctl alone: everything that there is on one screen.
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "conditions/hxc_json.h"
#include "conditions/hxc_overview.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/health_answers.h"
#include "model/library_record.h"
#include "model/service_report.h"
#include "nouns/adapter_targets.h"
#include "nouns/nouns.h"
#include "nouns/overview_screen.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::overview_noun {

namespace {

namespace hxc = hxconditions;
using hxcodes::CodeTable;
using enum Kind;
using enum Place;

// One object or condition: what all of them have in common.
struct Line {
    std::string kind;
    std::string address;  // empty: none
    Cell name;
    Cell state;
    Cell size;
    Cell detail;
};

std::vector<std::string_view> KindWords() {
    return {"adapter", "enclosure", "disk", "vd", "dg", "condition"};
}

constexpr Column<Line> kColumns[] = {
    {Always(OneOf(KindWords, {"kind", "KIND", kWord, kTable,
                              "What it is: adapter, enclosure, disk, vd, dg or condition"})),
     [](const Line& it) { return TextCell(it.kind); }},
    {{"address", "ADDRESS", kReference, kTable, "Its address"},
     [](const Line& it) { return it.address.empty() ? None() : TextCell(it.address); }},
    {{"name", "NAME", kText, kTable, "Its name, or its serial number"},
     [](const Line& it) { return it.name; }},
    {{"state", "STATE", kText, kTable, "Its state; of a condition, how grave it is"},
     [](const Line& it) { return it.state; }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"}, [](const Line& it) { return it.size; }},
    {{"detail", "DETAIL", kText, kWide,
      "The firmware of an adapter, the product of an enclosure, the model of a disk, the level of "
      "a "
      "virtual disk or disk group, the sentence of a condition"},
     [](const Line& it) { return it.detail; }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// The name of a code, or its number where it has none.
Cell NamedCell(std::span<const hxcodes::Named> names, std::optional<std::uint64_t> code) {
    if (!code) return Unknown();
    const std::string_view name = hxcodes::NameOf(names, *code);
    return TextCell(name.empty() ? std::to_string(*code) : std::string(name));
}

std::vector<Line> LinesOf(const MachineLook& look, const hxc::Overview& overview,
                          const CodeTable& codes) {
    std::vector<Line> lines;
    for (const Adapter& each : look.adapters) {
        using fields::Adapter_Info;
        lines.push_back({"adapter", each.address.Text(),
                         FieldCell(each.info, Adapter_Info::SerialNo), None(), None(),
                         TextCell(VersionText(each.info[Adapter_Info::FirmwareVersion]))});
    }
    for (const Enclosure& each : look.enclosures) {
        using fields::Enclosure_Info;
        lines.push_back({"enclosure", each.address.Text(),
                         FieldCell(each.info, Enclosure_Info::LogicalID),
                         NamedCell(codes.element_states, each.info[Enclosure_Info::Status]), None(),
                         FieldCell(each.info, Enclosure_Info::ProductID)});
    }
    for (const Disk& each : look.disks) {
        using fields::HD_Info;
        lines.push_back({"disk", each.address.Text(), FieldCell(each.info, HD_Info::SerialNo),
                         TextCell(each.state), SectorsAt(each.info, HD_Info::Size),
                         FieldCell(each.info, HD_Info::Model)});
    }
    // Disk groups and virtual disks differ in the name of the field of their size alone.
    const auto add_arrays = [&]<class Fields>(const char* kind, const auto& arrays, Fields,
                                              auto size) {
        for (const auto& each : arrays) {
            lines.push_back({kind, each.address.Text(), FieldCell(each.info, Fields::Name),
                             NamedCell(codes.states, each.info[Fields::Status]),
                             SectorsAt(each.info, size),
                             NamedCell(codes.levels, each.info[Fields::RaidMode])});
        }
    };
    add_arrays("dg", look.groups, fields::DG_Info(), fields::DG_Info::TotalManagedSpace);
    add_arrays("vd", look.virtual_disks, fields::LD_Info(), fields::LD_Info::Size);
    for (const hxc::Condition& each : overview.heads) {
        lines.push_back(
            {"condition", each.object.address, TextCell(std::string(hxc::RowOf(each.code).name)),
             TextCell(std::string(hxc::NameOf(each.level))), None(), TextCell(each.sentence)});
    }
    return lines;
}

Exit ShowOverview(Invocation& invocation) {
    SelectTargets(invocation);
    Controller& controller = invocation.controller();
    const MachineLook look = LookAtMachine(controller);
    const hxc::Overview overview = LookWithService(look.answers, std::time(nullptr));
    const CodeTable& codes = controller.codes().table();
    const bool as_rows = invocation.Has("--output") || invocation.Has("--columns") ||
                         invocation.Has("--sort") || invocation.Has("--no-header");
    if (as_rows) {
        Report report = Tabulated(invocation, kColumns, LinesOf(look, overview, codes));
        report.more = hxc::OverviewJson(overview, hxc::CountsOf(look.answers));
        return Present(invocation, std::move(report), "table");
    }
    Style style = StyleOf(invocation, "table");
    if (style.width == 0) style.width = kPipeWidth;
    PrintText(OverviewScreen(look, overview, codes, style));
    ReportFaults(controller.faults());
    return controller.exit();
}

constexpr OptionRow kOptions[] = {
    {"--adapter", "NUMBER", "Only this adapter"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "overview",
     .verb = "",
     .summary = "Show everything on one screen",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .options = kOptions,
     .functions = kLookFunctions,
     .examples = {"vexorctl overview", "vexorctl overview a0 -o json"},
     .run = ShowOverview,
     .columns = Columns,
     .note = "The screen has the adapters, the enclosures and what is in their bays, the virtual "
             "disks with how many more disks of each may fail, what goes on in the background, and "
             "what needs attention, the worst first and eight at most. It fits 80 columns in a "
             "pipe, and the width of a terminal. With --output, --columns, --sort or --no-header "
             "there is a row for each object and each condition instead; JSON has what check has, "
             "too. \"vexorctl\" without a command is the same as \"vexorctl overview\"."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::overview_noun

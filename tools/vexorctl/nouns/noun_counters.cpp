// vexorctl counters ...
#include <utility>

#include "model/exit_code.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

struct Counter {
    std::string name;
    std::uint64_t count;
};

// The elements of the library's record, and what we call them.
constexpr std::pair<const char*, const char*> kNames[] = {
    {"Whatever_Change", "any"},   {"Adapter_Change", "adapter"},    {"LD_Change", "virtual_disk"},
    {"HD_Change", "disk"},        {"PM_Change", "port_multiplier"}, {"Expander_Change", "expander"},
    {"MDD_Change", "metadata"},   {"BSL_Change", "bad_sectors"},    {"SAS_Change", "sas"},
    {"ENCL_Change", "enclosure"}, {"BAT_Change", "battery"},        {"FLASH_Change", "flash"},
    {"CACHE_Change", "cache"},    {"MISC_Change", "misc"},          {"ARRAY_Change", "disk_group"},
};

using enum Kind;
using enum Place;

constexpr Column<Counter> kColumns[] = {
    {{"counter", "COUNTER", kText, kTable, "The kind of object whose changes it counts"},
     [](const Counter& it) { return TextCell(it.name); }},
    {{"count", "COUNT", kNumber, kTable, "Any difference means a change; the amount means nothing"},
     [](const Counter& it) { return NumberCell(it.count); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ShowCounters(Invocation& invocation) {
    std::vector<Counter> counters;
    if (const auto result = invocation.controller().Get("", {"VX_HX_EVT_GetChangeCounters", {}})) {
        for (const auto& [element, name] : kNames) {
            counters.push_back({name, result->Number("ChangeCounters/" + std::string(element))});
        }
    }
    Report report;
    Tabulate(report, kColumns, counters);
    return Show(invocation, std::move(report), "table");
}

constexpr CommandRow kCommands[] = {
    {.noun = "counters",
     .verb = "show",
     .summary = "Show the change counters",
     .functions = "VX_HX_EVT_GetChangeCounters",
     .examples = {"vexorctl counters show", "vexorctl counters show -o json"},
     .run = ShowCounters,
     .columns = Columns},
};

}  // namespace

std::span<const CommandRow> CountersCommands() { return kCommands; }

}  // namespace vexorctl

// vexorctl counters ...
#include <utility>

#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/library_record.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::counters_noun {

namespace {

struct Counter {
    std::string name;
    std::optional<std::uint64_t> count;
};

// The fields of the library's record, and what we call them.
using Counters = fields::VX_HX_ChangeCounters;
constexpr std::pair<NumberField<Counters>, const char*> kNames[] = {
    {Counters::Whatever_Change, "any"},
    {Counters::Adapter_Change, "adapter"},
    {Counters::LD_Change, "virtual_disk"},
    {Counters::HD_Change, "disk"},
    {Counters::PM_Change, "port_multiplier"},
    {Counters::Expander_Change, "expander"},
    {Counters::MDD_Change, "metadata"},
    {Counters::BSL_Change, "bad_sectors"},
    {Counters::SAS_Change, "sas"},
    {Counters::ENCL_Change, "enclosure"},
    {Counters::BAT_Change, "battery"},
    {Counters::FLASH_Change, "flash"},
    {Counters::CACHE_Change, "cache"},
    {Counters::MISC_Change, "misc"},
    {Counters::ARRAY_Change, "disk_group"},
};

using enum Kind;
using enum Place;

std::vector<std::string_view> CounterWords() {
    std::vector<std::string_view> words;
    for (const auto& row : kNames) words.emplace_back(row.second);
    return words;
}

constexpr Column<Counter> kColumns[] = {
    {Always(OneOf(CounterWords, {"counter", "COUNTER", kWord, kTable,
                                 "The kind of object whose changes it counts"})),
     [](const Counter& it) { return TextCell(it.name); }},
    {{"count", "COUNT", kNumber, kTable, "Any difference means a change; the amount means nothing"},
     [](const Counter& it) { return NumberCell(it.count); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ShowCounters(Invocation& invocation) {
    std::vector<Counter> counters;
    using Function = calls::VX_HX_EVT_GetChangeCounters;
    if (const auto answer = invocation.controller().Get("", Request<Function>{})) {
        for (const auto& [field, name] : kNames) {
            counters.push_back({name, (*answer)[Function::Result::ChangeCounters][field]});
        }
    }
    return Show(invocation, Tabulated(invocation, kColumns, counters), "table");
}

constexpr CommandRow kCommands[] = {
    {.noun = "counters",
     .verb = "show",
     .summary = "Show the change counters",
     .functions = kNamesOf<calls::VX_HX_EVT_GetChangeCounters>,
     .examples = {"vexorctl counters show", "vexorctl counters show -o json"},
     .run = ShowCounters,
     .columns = Columns},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::counters_noun

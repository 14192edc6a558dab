// vexorctl battery ...
#include <utility>

#include "codes/battery.h"
#include "common/address.h"
#include "model/batteries.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/result_tree.h"
#include "nouns/find_object.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

constexpr hxcodes::Named kFeatureBits[] = {
    {hxcodes::BatteryFeature::kRelearn, "relearn"},
    {hxcodes::BatteryFeature::kThresholds, "thresholds"},
};

Cell PercentAt(const Value& value, std::string_view path) {
    return value.Find(path) == nullptr ? Unknown()
                                       : RatioCell(static_cast<double>(value.Number(path)) / 100);
}

// 65535 minutes: nothing is going on that could end.
Cell MinutesAt(const Value& value, std::string_view path) {
    return value.Number(path) == 65535 ? Unknown() : NumberAt(value, path);
}

using enum Kind;
using enum Place;

constexpr Column<Battery> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "The address of its adapter"},
     [](const Battery& it) { return TextCell(it.address.Text()); }},
    {{"status", "STATUS", kBits, kTable, "Its state as bits"},
     [](const Battery& it) { return BitsAt(it.info, "status", hxcodes::kBatteryBits); }},
    {{"charge_ratio", "CHARGE", kRatio, kTable, "How full it is"},
     [](const Battery& it) { return PercentAt(it.info, "percentage"); }},
    {{"temperature_celsius", "CELSIUS", kNumber, kTable, "Its temperature"},
     [](const Battery& it) { return NumberAt(it.info, "temperature"); }},
    {{"voltage_millivolts", "MILLIVOLTS", kNumber, kTable, "Its voltage"},
     [](const Battery& it) { return NumberAt(it.info, "voltage"); }},
    {{"capacity_mah", "MAH", kNumber, kTable, "What is left in it"},
     [](const Battery& it) { return NumberAt(it.info, "curCapacity"); }},
    {{"full_capacity_mah", "FULL MAH", kNumber, kTable, "What it holds when full"},
     [](const Battery& it) { return NumberAt(it.info, "maxCapacity"); }},
    {{"cycles", "CYCLES", kNumber, kTable, "Its charge cycles so far"},
     [](const Battery& it) { return NumberAt(it.info, "recharge_cycle"); }},
    {{"previous_status", "BEFORE", kBits, kWide, "Its state before the last change"},
     [](const Battery& it) { return BitsAt(it.info, "prev_status", hxcodes::kBatteryBits); }},
    {{"minutes_to_empty", "EMPTY IN", kNumber, kWide,
      "Minutes until it is empty, when it is discharging"},
     [](const Battery& it) { return MinutesAt(it.info, "time_to_empty"); }},
    {{"minutes_to_full", "FULL IN", kNumber, kWide,
      "Minutes until it is full, when it is charging"},
     [](const Battery& it) { return MinutesAt(it.info, "time_to_full"); }},
    {{"charge_below_ratio", "CHARGE BELOW", kRatio, kWide, "The charge below which it is charged"},
     [](const Battery& it) { return PercentAt(it.info, "percent_to_charge"); }},
    {{"min_temperature_celsius", "MIN CELSIUS", kNumber, kWide, "Setting: reported below this"},
     [](const Battery& it) { return NumberAt(it.info, "temp_lowerbound"); }},
    {{"max_temperature_celsius", "MAX CELSIUS", kNumber, kWide, "Setting: reported above this"},
     [](const Battery& it) { return NumberAt(it.info, "temp_upperbound"); }},
    {{"min_voltage_millivolts", "MIN MILLIVOLTS", kNumber, kWide, "Setting: reported below this"},
     [](const Battery& it) { return NumberAt(it.info, "volt_lowerbound"); }},
    {{"max_voltage_millivolts", "MAX MILLIVOLTS", kNumber, kWide, "Setting: reported above this"},
     [](const Battery& it) { return NumberAt(it.info, "volt_upperbound"); }},
    {{"min_capacity_mah", "MIN MAH", kNumber, kWide, "The lowest capacity that can be set"},
     [](const Battery& it) { return NumberAt(it.info, "supportMinCapacity"); }},
    {{"max_capacity_mah", "MAX MAH", kNumber, kWide, "The highest capacity that can be set"},
     [](const Battery& it) { return NumberAt(it.info, "supportMaxCapacity"); }},
    {{"features", "FEATURES", kBits, kWide, "What it can do"},
     [](const Battery& it) { return BitsAt(it.info, "featureSupport", kFeatureBits); }},
    {{"flags_code", "FLAGS", kNumber, kWide, "Further bits of the controller"},
     [](const Battery& it) { return NumberAt(it.info, "flags"); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListBatteries(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(report, kColumns, LoadBatteries(invocation.controller()));
    return Show(invocation, std::move(report), invocation.row().verb == "show" ? "list" : "table");
}

// ---- Changes ----------------------------------------------------------------------------------

Battery FindBattery(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kAdapter);
    std::vector<Battery> batteries = LoadBatteries(invocation.controller());
    if (batteries.empty()) {
        throw Failure(Exit::kNoObject, address.Text() + ": the adapter has no battery");
    }
    return std::move(batteries.front());
}

Change ChangeOf(const Battery& battery, std::string what, std::string_view function) {
    return {.what = std::move(what) + " the battery of " + battery.address.Text(),
            .losses = {},
            .confirm = {},
            .commands = {{function, {{"AdapterID", std::to_string(battery.address.adapter)}}}},
            .address = battery.address.Text(),
            .size_bytes = {}};
}

Exit RelearnBattery(Invocation& invocation) {
    return CarryOut(invocation, ChangeOf(FindBattery(invocation), "Start a relearn cycle of",
                                         "HX_BBU_ActRelearn"));
}

Exit PowerBattery(Invocation& invocation) {
    const Battery battery = FindBattery(invocation);
    if (!invocation.Has("--action")) throw UsageError("--action is missing: charge or discharge");
    Change change = ChangeOf(battery, "Change the power of", "HX_BBU_ChangePower");
    change.commands.front().fields.emplace_back(
        "action", CodeOption(invocation, "--action", hxcodes::kPowerNames));
    return CarryOut(invocation, change);
}

// The library takes both pairs of bounds in one call: those not named stay.
Exit SetBattery(Invocation& invocation) {
    const Battery battery = FindBattery(invocation);
    Change change = ChangeOf(battery, "Set", "HX_BBU_SetThreshold");
    struct Bound {
        const char* option;
        const char* request;
        const char* record;
    };
    constexpr Bound kBounds[] = {
        {"--min-temperature", "tempLowerBound", "temp_lowerbound"},
        {"--max-temperature", "tempUpperBound", "temp_upperbound"},
        {"--min-voltage", "volLowerBound", "volt_lowerbound"},
        {"--max-voltage", "volUpperBound", "volt_upperbound"},
    };
    bool bounds = false;
    for (const Bound& bound : kBounds) {
        const auto number = invocation.Number(bound.option, 65535);
        bounds = bounds || number;
        change.commands.front().fields.emplace_back(
            bound.request, std::to_string(number.value_or(battery.info.Number(bound.record))));
    }
    if (!bounds) change.commands.clear();
    const std::string adapter = std::to_string(battery.address.adapter);
    if (invocation.Has("--use")) {
        change.commands.push_back(
            {"HX_BBU_SetStatus",
             {{"AdapterID", adapter}, {"status", SwitchOption(invocation, "--use", 0)}}});
    }
    if (const auto capacity = invocation.Number("--capacity", 65535)) {
        change.commands.push_back(
            {"HX_BBU_SetMaxCapacity",
             {{"maxCapacity", std::to_string(*capacity)}, {"BBU_ID", adapter}}});
    }
    if (change.commands.empty()) throw UsageError("no setting was named");
    return CarryOut(invocation, change);
}

constexpr OptionRow kPowerOptions[] = {
    {"--action", "ACTION", "What it is to do", "relearn charge discharge"},
};
constexpr OptionRow kSetOptions[] = {
    {"--use", "ON", "Whether the adapter uses its battery", "on off"},
    {"--min-temperature", "CELSIUS", "It is reported below this"},
    {"--max-temperature", "CELSIUS", "It is reported above this"},
    {"--min-voltage", "MILLIVOLTS", "It is reported below this"},
    {"--max-voltage", "MILLIVOLTS", "It is reported above this"},
    {"--capacity", "MAH", "The capacity that counts as full"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "battery",
     .verb = "list",
     .summary = "List the batteries",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .functions = "HX_BBU_GetInfo",
     .examples = {"vexorctl battery list", "vexorctl battery list -o json"},
     .run = ListBatteries,
     .columns = Columns,
     .note = "An adapter has one battery or none; it goes by the adapter's address."},
    {.noun = "battery",
     .verb = "show",
     .summary = "Show all about batteries",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .functions = "HX_BBU_GetInfo",
     .examples = {"vexorctl battery show a0",
                  "vexorctl battery show a0 --columns charge_ratio,cycles"},
     .run = ListBatteries,
     .columns = Columns},
    {.noun = "battery",
     .verb = "set",
     .summary = "Change settings of a battery; those not named stay",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .options = kSetOptions,
     .functions = "HX_BBU_SetThreshold HX_BBU_SetStatus HX_BBU_SetMaxCapacity",
     .examples = {"vexorctl battery set a0 --max-temperature 45 --dry-run",
                  "vexorctl battery set a0 --use off --dry-run"},
     .run = SetBattery,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "battery",
     .verb = "relearn",
     .summary = "Start a relearn cycle of a battery",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .functions = "HX_BBU_ActRelearn",
     .examples = {"vexorctl battery relearn a0 --dry-run",
                  "vexorctl battery relearn a0 --dry-run -o json"},
     .run = RelearnBattery,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "battery",
     .verb = "power",
     .summary = "Charge or discharge a battery",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .options = kPowerOptions,
     .functions = "HX_BBU_ChangePower",
     .examples = {"vexorctl battery power a0 --action charge --dry-run",
                  "vexorctl battery power a0 --action discharge --dry-run"},
     .run = PowerBattery,
     .columns = ChangeColumns,
     .changes = true},
};

}  // namespace

std::span<const CommandRow> BatteryCommands() { return kCommands; }

}  // namespace vexorctl

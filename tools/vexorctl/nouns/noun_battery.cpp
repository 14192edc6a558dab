// vexorctl battery ...
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/code_table.h"
#include "codes/named.h"
#include "common/address.h"
#include "conditions/hxc_answers.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/batteries.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/health_answers.h"
#include "model/library_record.h"
#include "model/object_health.h"
#include "model/virtual_disks.h"
#include "nouns/find_object.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::battery_noun {

namespace {

using fields::BBU_Info;
using hxcodes::CodeTable;

// 65535 minutes means that the battery is neither charging nor discharging.
Cell MinutesAt(const Record<BBU_Info>& info, NumberField<BBU_Info> field) {
    return info[field] == 65535 ? None() : FieldCell(info, field);
}

using enum Kind;
using enum Place;

struct ShownBattery : Battery {
    std::optional<std::string_view> health;
};

constexpr Column<ShownBattery> kColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "The address of its adapter"},
     [](const ShownBattery& it) { return TextCell(it.address.Text()); }},
    {{"status", "STATUS", kBits, kTable, "Its state as bits", &CodeTable::battery_bits},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::status); }},
    {{"charge_ratio", "CHARGE", kRatio, kTable, "How full it is"},
     [](const ShownBattery& it) { return PercentAt(it.info, BBU_Info::percentage); }},
    {{"temperature_celsius", "CELSIUS", kNumber, kTable, "Its temperature"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::temperature); }},
    {{"voltage_millivolts", "MILLIVOLTS", kNumber, kWide, "Its voltage"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::voltage); }},
    {{"capacity_mah", "MAH", kNumber, kTable, "What is left in it"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::curCapacity); }},
    {{"full_capacity_mah", "FULL MAH", kNumber, kTable, "What it holds when full"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::maxCapacity); }},
    {{"cycles", "CYCLES", kNumber, kTable, "Its charge cycles so far"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::recharge_cycle); }},
    {{"previous_status", "BEFORE", kBits, kWide, "Its state before the last change",
      &CodeTable::battery_bits},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::prev_status); }},
    {{"minutes_to_empty", "EMPTY IN", kNumber, kWide,
      "Minutes until it is empty, when it is discharging"},
     [](const ShownBattery& it) { return MinutesAt(it.info, BBU_Info::time_to_empty); }},
    {{"minutes_to_full", "FULL IN", kNumber, kWide,
      "Minutes until it is full, when it is charging"},
     [](const ShownBattery& it) { return MinutesAt(it.info, BBU_Info::time_to_full); }},
    {{"charge_below_ratio", "CHARGE BELOW", kRatio, kWide, "The charge below which it is charged"},
     [](const ShownBattery& it) { return PercentAt(it.info, BBU_Info::percent_to_charge); }},
    {{"min_temperature_celsius", "MIN CELSIUS", kNumber, kWide, "Setting: reported below this"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::temp_lowerbound); }},
    {{"max_temperature_celsius", "MAX CELSIUS", kNumber, kWide, "Setting: reported above this"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::temp_upperbound); }},
    {{"min_voltage_millivolts", "MIN MILLIVOLTS", kNumber, kWide, "Setting: reported below this"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::volt_lowerbound); }},
    {{"max_voltage_millivolts", "MAX MILLIVOLTS", kNumber, kWide, "Setting: reported above this"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::volt_upperbound); }},
    {{"min_capacity_mah", "MIN MAH", kNumber, kWide, "The lowest capacity that can be set"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::supportMinCapacity); }},
    {{"max_capacity_mah", "MAX MAH", kNumber, kWide, "The highest capacity that can be set"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::supportMaxCapacity); }},
    {{"features", "FEATURES", kBits, kWide, "What it can do", &CodeTable::battery_features},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::featureSupport); }},
    {OneOf(HealthWords, {"health", "HEALTH", kWord, kWide,
                         "How well it is, by its own conditions; check tells which"}),
     [](const ShownBattery& it) {
         return it.health ? TextCell(std::string(*it.health)) : Unknown();
     }},
    {{"flags_code", "FLAGS", kNumber, kWide, "Further bits of the controller"},
     [](const ShownBattery& it) { return FieldCell(it.info, BBU_Info::flags); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListBatteries(Invocation& invocation) {
    SelectAdapters(invocation);
    std::vector<Battery> batteries = LoadBatteries(invocation.controller());
    const hxconditions::Answers answers = AnswersFor(invocation.controller(), batteries);
    const ObjectHealth health(answers);
    std::vector<ShownBattery> shown;
    for (Battery& each : batteries) {
        const auto is = health.OfBattery(each.address);
        shown.push_back({std::move(each), is});
    }
    return Show(invocation, Tabulated(invocation, kColumns, shown));
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

Change ChangeOf(const Battery& battery, const std::string& what, Command command) {
    return {.what = what + " the battery of " + battery.address.Text(),
            .commands = {std::move(command)},
            .address = battery.address.Text()};
}

// While the battery cannot hold it, the content of a write-back cache would be lost with the power.
void TellCaches(Invocation& invocation, const Battery& battery, Change& change) {
    Controller& controller = invocation.controller();
    const auto* const write_back =
        hxcodes::FindName(controller.codes().table().cache_bits, "write_back");
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    std::vector<std::string> cached;
    bool is_known = write_back != nullptr;
    for (const VirtualDisk& disk : LoadVirtualDisks(controller)) {
        const auto mode = disk.info[fields::LD_Info::CacheMode];
        if (disk.address.adapter != battery.address.adapter || !is_known) continue;
        if (!mode) is_known = false;
        if ((mode.value_or(0) & write_back->code) != 0) cached.push_back(disk.address.Text());
    }
    is_known = is_known && controller.faults().size() == faults;
    controller.TakeBack(faults, exit);
    if (!is_known) {
        change.losses.emplace_back("which virtual disks lose their write-back cache is not known");
    } else if (!cached.empty()) {
        change.losses.push_back("without a charged battery the write-back cache of " +
                                Joined(cached, ", ") + " is not safe, or is not used");
    }
}

template <class Function>
Request<Function> RequestTo(const Battery& battery) {
    return {{Function::AdapterID, battery.address.adapter}};
}

Exit RelearnBattery(Invocation& invocation) {
    const Battery battery = FindBattery(invocation);
    Change change =
        ChangeOf(battery, "Start a relearn cycle of", RequestTo<calls::HX_BBU_ActRelearn>(battery));
    TellCaches(invocation, battery, change);
    return CarryOut(invocation, change);
}

Exit PowerBattery(Invocation& invocation) {
    using Function = calls::HX_BBU_ChangePower;
    const Battery battery = FindBattery(invocation);
    if (!invocation.Has("--action")) throw UsageError("--action is missing: charge or discharge");
    auto request = RequestTo<Function>(battery);
    request.Add({Function::action, CodeOption(invocation, "--action", &CodeTable::powers)});
    Change change = ChangeOf(battery, "Change the power of", std::move(request));
    if (invocation.Get("--action", "") != "charge") TellCaches(invocation, battery, change);
    return CarryOut(invocation, change);
}

// A bound: its option, the parameter that sets it, and the field that tells what it is.
using SetThreshold = calls::HX_BBU_SetThreshold;
struct Bound {
    std::string_view option;
    Parameter<SetThreshold> parameter;
    NumberField<BBU_Info> field;
};
constexpr Bound kBounds[] = {
    {"--min-temperature", SetThreshold::tempLowerBound, BBU_Info::temp_lowerbound},
    {"--max-temperature", SetThreshold::tempUpperBound, BBU_Info::temp_upperbound},
    {"--min-voltage", SetThreshold::volLowerBound, BBU_Info::volt_lowerbound},
    {"--max-voltage", SetThreshold::volUpperBound, BBU_Info::volt_upperbound},
};

// The library sets both pairs of bounds in one call, so those that were not named are sent back as
// they are.
Request<SetThreshold> RequestBounds(const Invocation& invocation, const Battery& battery) {
    auto request = RequestTo<SetThreshold>(battery);
    for (const Bound& bound : kBounds) {
        const auto number = invocation.Number(bound.option, 65535);
        request.Add(
            {bound.parameter, number ? *number : Kept(battery.info, bound.field, battery.address)});
    }
    return request;
}

// Bounds that cross are told of: whatever the battery measures then is outside of them. The
// controller takes them all the same.
std::vector<std::string> CrossedBounds(const Invocation& invocation, const Battery& battery) {
    std::vector<std::string> crossed;
    const auto value = [&](const Bound& bound) {
        const auto number = invocation.Number(bound.option, 65535);
        return number ? number : battery.info[bound.field];
    };
    for (std::size_t i = 0; i < std::size(kBounds); i += 2) {
        const auto low = value(kBounds[i]);
        const auto high = value(kBounds[i + 1]);
        if (!low || !high || *low < *high) continue;
        crossed.push_back(std::string(kBounds[i].option) + " " + std::to_string(*low) +
                          " is not below " + std::string(kBounds[i + 1].option) + " " +
                          std::to_string(*high) + ": every value will be reported");
    }
    return crossed;
}

Exit SetBattery(Invocation& invocation) {
    using SetStatus = calls::HX_BBU_SetStatus;
    using SetCapacity = calls::HX_BBU_SetMaxCapacity;
    const Battery battery = FindBattery(invocation);
    Change change = ChangeOf(battery, "Set", {});
    change.commands.clear();
    if (std::ranges::any_of(kBounds,
                            [&](const Bound& bound) { return invocation.Has(bound.option); })) {
        change.commands.push_back(RequestBounds(invocation, battery));
        change.losses = CrossedBounds(invocation, battery);
        for (const std::string& each : change.losses) {
            ReportFailure(battery.address.Text(), "warning: " + each);
        }
    }
    if (const auto use = SwitchOption(invocation, "--use")) {
        auto request = RequestTo<SetStatus>(battery);
        request.Add({SetStatus::status, *use});
        if (*use == 0) TellCaches(invocation, battery, change);
        change.commands.push_back(std::move(request));
    }
    if (const auto capacity = invocation.Number("--capacity", 65535)) {
        change.commands.push_back(Request<SetCapacity>{
            {SetCapacity::maxCapacity, *capacity}, {SetCapacity::BBU_ID, battery.address.adapter}});
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
     .functions = kNamesOf<calls::HX_BBU_GetInfo>,
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
     .functions = kNamesOf<calls::HX_BBU_GetInfo>,
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
     .functions = kNamesOf<calls::HX_BBU_SetThreshold, calls::HX_BBU_SetStatus,
                           calls::HX_BBU_SetMaxCapacity>,
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
     .functions = kNamesOf<calls::HX_BBU_ActRelearn>,
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
     .functions = kNamesOf<calls::HX_BBU_ChangePower>,
     .examples = {"vexorctl battery power a0 --action charge --dry-run",
                  "vexorctl battery power a0 --action discharge --dry-run"},
     .run = PowerBattery,
     .columns = ChangeColumns,
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::battery_noun

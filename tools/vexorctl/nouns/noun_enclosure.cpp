// vexorctl enclosure ...
#include <utility>

#include "codes/device.h"
#include "codes/enclosure.h"
#include "common/address.h"
#include "model/ask_controller.h"
#include "model/enclosures.h"
#include "model/exit_code.h"
#include "model/result_tree.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

// Which of an element's fields mean something depends on its type; the record has all of them.
Cell Of(const Element& element, unsigned type, std::string_view field) {
    return element.info.Number("Type") == type ? NumberAt(element.info, field) : Unknown();
}

// A temperature comes as degrees plus 20, and 0 means that it is not known.
constexpr std::uint64_t kCelsiusOffset = 20;

Cell TemperatureCell(const Element& element) {
    const std::uint64_t raw = element.info.Number("Temperature");
    if (element.info.Number("Type") != HX_ELEMENT_TEMPERATURE || raw < kCelsiusOffset) {
        return Unknown();
    }
    return NumberCell(raw - kCelsiusOffset);
}

Cell VoltageCell(const Element& element) {
    return element.info.Number("Type") == HX_ELEMENT_VOLTAGE
               ? NumberCell(10 * element.info.Number("Voltage"))
               : Unknown();
}

Cell ThresholdCell(const Element& element, std::string_view field) {
    const std::uint64_t raw = element.config.Number(field);
    switch (element.info.Number("Type")) {
        case HX_ELEMENT_TEMPERATURE:
            return raw < kCelsiusOffset ? Unknown() : NumberCell(raw - kCelsiusOffset);
        case HX_ELEMENT_VOLTAGE:
            return NumberCell(raw);
        default:
            return Unknown();
    }
}

struct Problem {
    unsigned type;
    const char* field;
    const char* name;
};
constexpr Problem kProblems[] = {
    {HX_ELEMENT_POWER_SUPPLY, "DCOverCurrent", "over_current"},
    {HX_ELEMENT_POWER_SUPPLY, "DCOverVoltage", "over_voltage"},
    {HX_ELEMENT_POWER_SUPPLY, "DCUnderVoltage", "under_voltage"},
    {HX_ELEMENT_TEMPERATURE, "OTFailure", "too_hot"},
    {HX_ELEMENT_TEMPERATURE, "OTWarning", "hot"},
    {HX_ELEMENT_TEMPERATURE, "UTFailure", "too_cold"},
    {HX_ELEMENT_TEMPERATURE, "UTWarning", "cold"},
    {HX_ELEMENT_DOOR, "Unlocked", "unlocked"},
    {HX_ELEMENT_VOLTAGE, "CritOver", "far_too_high"},
    {HX_ELEMENT_VOLTAGE, "WarnOver", "too_high"},
    {HX_ELEMENT_VOLTAGE, "CritUnder", "far_too_low"},
    {HX_ELEMENT_VOLTAGE, "WarnUnder", "too_low"},
};

Cell ProblemsCell(const Element& element) {
    std::vector<std::string> problems;
    for (const Problem& problem : kProblems) {
        if (element.info.Number("Type") == problem.type &&
            element.info.Number(problem.field) != 0) {
            problems.emplace_back(problem.name);
        }
    }
    return TextsCell(std::move(problems));
}

// An expander or a port multiplier.
struct Linked {
    Address adapter;
    Value info;
};

using enum Kind;
using enum Place;

constexpr Column<Enclosure> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "Its address"},
     [](const Enclosure& it) { return TextCell(it.address.Text()); }},
    {{"state", "STATE", kCode, kTable, "Its state"},
     [](const Enclosure& it) { return CodeAt(it.info, "Status", hxcodes::kElementStatusNames); }},
    {{"vendor", "VENDOR", kText, kTable, "Its vendor"},
     [](const Enclosure& it) { return TextAt(it.info, "VendorID"); }},
    {{"product", "PRODUCT", kText, kTable, "Its product name"},
     [](const Enclosure& it) { return TextAt(it.info, "ProductID"); }},
    {{"revision", "REVISION", kText, kTable, "Its revision"},
     [](const Enclosure& it) { return TextAt(it.info, "RevisionLevel"); }},
    {{"logical_id", "LOGICAL ID", kText, kTable, "Its logical identifier"},
     [](const Enclosure& it) { return TextAt(it.info, "LogicalID"); }},
    {{"expanders", "EXPANDERS", kNumbers, kTable, "The numbers of its expanders"},
     [](const Enclosure& it) {
         return NumbersAt(it.info, "ExpanderIDs", it.info.Number("ExpanderCount"));
     }},
    {{"sas_address", "SAS ADDRESS", kText, kWide, "Its SAS address"},
     [](const Enclosure& it) { return WwnAt(it.info, "Link/Self/SAS_Address"); }},
    {{"parent", "PARENT", kCode, kWide, "The kind of device that it is connected to"},
     [](const Enclosure& it) {
         return CodeAt(it.info, "Link/Parent/DevType", hxcodes::kDeviceNames);
     }},
    {{"parent_id", "PARENT ID", kNumber, kWide, "The number of that device"},
     [](const Enclosure& it) { return NumberAt(it.info, "Link/Parent/DevID"); }},
};

constexpr Column<Element> kElementColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "Its address"},
     [](const Element& it) { return TextCell(it.address.Text()); }},
    {{"type", "TYPE", kCode, kTable, "What it is"},
     [](const Element& it) { return CodeAt(it.info, "Type", hxcodes::kElementTypeNames); }},
    {{"state", "STATE", kCode, kTable, "Its state"},
     [](const Element& it) { return CodeAt(it.info, "Status", hxcodes::kElementStatusNames); }},
    {{"temperature_celsius", "CELSIUS", kNumber, kTable, "The temperature of a sensor"},
     [](const Element& it) { return TemperatureCell(it); }},
    {{"speed_rpm", "RPM", kNumber, kTable, "The turns per minute of a fan"},
     [](const Element& it) { return Of(it, HX_ELEMENT_FAN, "CurSpeed"); }},
    {{"voltage_millivolts", "MILLIVOLTS", kNumber, kTable, "Of a voltage sensor"},
     [](const Element& it) { return VoltageCell(it); }},
    {{"problems", "PROBLEMS", kTexts, kTable, "What its flags complain about"},
     [](const Element& it) { return ProblemsCell(it); }},
    {{"high_critical", "HIGH CRITICAL", kNumber, kWide,
      "Its threshold: degrees Celsius of a temperature, half percents of a voltage"},
     [](const Element& it) { return ThresholdCell(it, "highCriticalThreshold"); }},
    {{"high_warning", "HIGH WARNING", kNumber, kWide, "The threshold below that"},
     [](const Element& it) { return ThresholdCell(it, "highWarningThreshold"); }},
    {{"low_warning", "LOW WARNING", kNumber, kWide, "The low threshold"},
     [](const Element& it) { return ThresholdCell(it, "lowWarningThreshold"); }},
    {{"low_critical", "LOW CRITICAL", kNumber, kWide, "The threshold below that"},
     [](const Element& it) { return ThresholdCell(it, "lowCriticalThreshold"); }},
    {{"speed_code", "SPEED CODE", kNumber, kWide, "The speed code of a fan"},
     [](const Element& it) { return Of(it, HX_ELEMENT_FAN, "CurSpeedcode"); }},
    {{"muted", "MUTED", kBool, kWide, "Whether an alarm is muted"},
     [](const Element& it) { return Of(it, HX_ELEMENT_ALARM, "Mute"); }},
};

constexpr Column<Linked> kExpanderColumns[] = {
    {{"address", "ADAPTER", kText, kTable, "The address of its adapter"},
     [](const Linked& it) { return TextCell(it.adapter.Text()); }},
    {{"id", "ID", kNumber, kTable, "Its number"},
     [](const Linked& it) { return NumberAt(it.info, "Link/Self/DevID"); }},
    {{"vendor", "VENDOR", kText, kTable, "Its vendor"},
     [](const Linked& it) { return TextAt(it.info, "VendorID"); }},
    {{"product", "PRODUCT", kText, kTable, "Its product name"},
     [](const Linked& it) { return TextAt(it.info, "ProductID"); }},
    {{"revision", "REVISION", kText, kTable, "Its revision"},
     [](const Linked& it) { return TextAt(it.info, "ProductRev"); }},
    {{"phy_count", "PHYS", kNumber, kTable, "The number of its phys"},
     [](const Linked& it) { return NumberAt(it.info, "PhyCount"); }},
    {{"sas_address", "SAS ADDRESS", kText, kTable, "Its SAS address"},
     [](const Linked& it) { return WwnAt(it.info, "Link/Self/SAS_Address"); }},
    {{"parent", "PARENT", kCode, kWide, "The kind of device that it is connected to"},
     [](const Linked& it) {
         return CodeAt(it.info, "Link/Parent/DevType", hxcodes::kDeviceNames);
     }},
    {{"parent_id", "PARENT ID", kNumber, kWide, "The number of that device"},
     [](const Linked& it) { return NumberAt(it.info, "Link/Parent/DevID"); }},
    {{"enclosure_id", "ENCLOSURE", kNumber, kWide, "The number of its enclosure; 65535 none"},
     [](const Linked& it) { return NumberAt(it.info, "Link/Self/EnclosureID"); }},
    {{"configuring", "CONFIGURING", kBool, kWide, "Whether it is configuring itself"},
     [](const Linked& it) { return NumberAt(it.info, "Configuring"); }},
    {{"routes_configurable", "ROUTES", kBool, kWide, "Whether its route table can be configured"},
     [](const Linked& it) { return NumberAt(it.info, "RouteTableConfigurable"); }},
    {{"max_route_indexes", "MAX ROUTES", kNumber, kWide, "The size of that table"},
     [](const Linked& it) { return NumberAt(it.info, "MaxRouteIndexes"); }},
    {{"change_count", "CHANGES", kNumber, kWide, "How often something has changed behind it"},
     [](const Linked& it) { return NumberAt(it.info, "ExpChangeCount"); }},
    {{"component_vendor", "COMPONENT VENDOR", kText, kWide, "The vendor of its chip"},
     [](const Linked& it) { return TextAt(it.info, "ComponentVendorID"); }},
    {{"component_id", "COMPONENT", kNumber, kWide, "The chip"},
     [](const Linked& it) { return NumberAt(it.info, "ComponentID"); }},
    {{"component_revision", "COMPONENT REV", kNumber, kWide, "The revision of the chip"},
     [](const Linked& it) { return NumberAt(it.info, "ComponentRevisionID"); }},
};

constexpr Column<Linked> kMultiplierColumns[] = {
    {{"address", "ADAPTER", kText, kTable, "The address of its adapter"},
     [](const Linked& it) { return TextCell(it.adapter.Text()); }},
    {{"id", "ID", kNumber, kTable, "Its number"},
     [](const Linked& it) { return NumberAt(it.info, "Link/Self/DevID"); }},
    {{"vendor_id", "VENDOR", kNumber, kTable, "Its vendor"},
     [](const Linked& it) { return NumberAt(it.info, "VendorId"); }},
    {{"device_id", "DEVICE", kNumber, kTable, "Its device number"},
     [](const Linked& it) { return NumberAt(it.info, "DeviceId"); }},
    {{"ports", "PORTS", kNumber, kTable, "The number of its ports"},
     [](const Linked& it) { return NumberAt(it.info, "NumberOfPorts"); }},
    {{"product_revision", "REVISION", kNumber, kWide, "Its revision"},
     [](const Linked& it) { return NumberAt(it.info, "ProductRevision"); }},
    {{"standard_revision", "STANDARD", kNumber, kWide,
      "The revision of the standard that it keeps, as bits"},
     [](const Linked& it) { return NumberAt(it.info, "PMSpecRevision"); }},
    {{"parent", "PARENT", kCode, kWide, "The kind of device that it is connected to"},
     [](const Linked& it) {
         return CodeAt(it.info, "Link/Parent/DevType", hxcodes::kDeviceNames);
     }},
    {{"parent_id", "PARENT ID", kNumber, kWide, "The number of that device"},
     [](const Linked& it) { return NumberAt(it.info, "Link/Parent/DevID"); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }
std::vector<ColumnInfo> ElementColumns() { return InfoOf(kElementColumns); }
std::vector<ColumnInfo> ExpanderColumns() { return InfoOf(kExpanderColumns); }
std::vector<ColumnInfo> MultiplierColumns() { return InfoOf(kMultiplierColumns); }

Exit ListEnclosures(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(report, kColumns, LoadEnclosures(invocation.controller()));
    return Show(invocation, std::move(report), invocation.row().verb == "show" ? "list" : "table");
}

Exit ListElements(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(report, kElementColumns, LoadElements(invocation.controller()));
    return Show(invocation, std::move(report), "table");
}

std::vector<Linked> LoadLinked(Controller& controller, const ListSource& source) {
    std::vector<Linked> all;
    for (const unsigned adapter : controller.Selected()) {
        for (Value& info : controller.List(adapter, source)) {
            all.push_back({{.adapter = adapter}, std::move(info)});
        }
    }
    return all;
}

Exit ListExpanders(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(report, kExpanderColumns,
             LoadLinked(invocation.controller(),
                        {"HX_PD_GetExpanderInfo", "ExpanderInfo", "Link/Self/DevID"}));
    return Show(invocation, std::move(report), "table");
}

Exit ListMultipliers(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(
        report, kMultiplierColumns,
        LoadLinked(invocation.controller(), {"HX_PD_GetPMInfo", "PM_Info", "Link/Self/DevID"}));
    return Show(invocation, std::move(report), "table");
}

constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr CommandRow kCommands[] = {
    {.noun = "enclosure",
     .verb = "list",
     .summary = "List the enclosures",
     .target = Target::kEnclosure,
     .arity = Arity::kAny,
     .target_name = "ENCLOSURE",
     .options = kAdapterOption,
     .functions = "HX_ENC_GetEnclosureInfo",
     .examples = {"vexorctl enclosure list", "vexorctl enclosure list a0 -o csv"},
     .run = ListEnclosures,
     .columns = Columns},
    {.noun = "enclosure",
     .verb = "show",
     .summary = "Show all about enclosures",
     .target = Target::kEnclosure,
     .arity = Arity::kAny,
     .target_name = "ENCLOSURE",
     .options = kAdapterOption,
     .functions = "HX_ENC_GetEnclosureInfo",
     .examples = {"vexorctl enclosure show a0/enc0", "vexorctl enclosure show a0/enc0 -o json"},
     .run = ListEnclosures,
     .columns = Columns},
    {.noun = "enclosure",
     .verb = "elements",
     .summary = "List fans, power supplies, sensors, with their thresholds",
     .target = Target::kElement,
     .arity = Arity::kAny,
     .target_name = "ELEMENT",
     .options = kAdapterOption,
     .functions = "HX_ENC_GetElementInfo HX_ENC_GetElementConfig",
     .examples = {"vexorctl enclosure elements a0/enc0",
                  "vexorctl enclosure elements a0/enc0/el3 -o list"},
     .run = ListElements,
     .columns = ElementColumns},
    {.noun = "enclosure",
     .verb = "expanders",
     .summary = "List the expanders",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .options = kAdapterOption,
     .functions = "HX_PD_GetExpanderInfo",
     .examples = {"vexorctl enclosure expanders", "vexorctl enclosure expanders a0 -o list"},
     .run = ListExpanders,
     .columns = ExpanderColumns},
    {.noun = "enclosure",
     .verb = "multipliers",
     .summary = "List the port multipliers",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .options = kAdapterOption,
     .functions = "HX_PD_GetPMInfo",
     .examples = {"vexorctl enclosure multipliers", "vexorctl enclosure multipliers a1"},
     .run = ListMultipliers,
     .columns = MultiplierColumns},
};

}  // namespace

std::span<const CommandRow> EnclosureCommands() { return kCommands; }

}  // namespace vexorctl

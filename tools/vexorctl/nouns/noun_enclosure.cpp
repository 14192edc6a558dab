// vexorctl enclosure ...
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/code_table.h"
#include "codes/enclosure.h"
#include "common/address.h"
#include "conditions/hxc_answers.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/enclosures.h"
#include "model/exit_code.h"
#include "model/health_answers.h"
#include "model/library_record.h"
#include "model/object_health.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::enclosure_noun {

namespace {

using fields::EncElement_Config;
using fields::EncElementType_Info;
using fields::Enclosure_Info;
using fields::Exp_Info;
using fields::Link_Endpoint;
using fields::Link_Entity;
using fields::PM_Info;
using hxcodes::CodeTable;
using hxcodes::ElementType;

// The record has the fields of every type of element; only those of its own type mean something.
template <class Make>
Cell OfType(const Element& element, ElementType type, Make make) {
    const auto is = element.info[EncElementType_Info::Type];
    if (!is) return Unknown();
    return *is == type ? make() : None();
}

Cell Of(const Element& element, ElementType type, NumberField<EncElementType_Info> field) {
    return OfType(element, type, [&] { return FieldCell(element.info, field); });
}

// A temperature comes as degrees plus 20; 0 means that the enclosure does not know it.
constexpr std::uint64_t kCelsiusOffset = 20;

Cell CelsiusCell(std::optional<std::uint64_t> raw) {
    if (!raw) return Unknown();
    return *raw < kCelsiusOffset ? None() : NumberCell(*raw - kCelsiusOffset);
}

Cell TemperatureCell(const Element& element) {
    return OfType(element, ElementType::kTemperature,
                  [&] { return CelsiusCell(element.info[EncElementType_Info::Temperature]); });
}

// Voltages come in tens of millivolts.
Cell VoltageCell(const Element& element) {
    return OfType(element, ElementType::kVoltage,
                  [&] { return ScaledAt(element.info, EncElementType_Info::Voltage, 10); });
}

Cell ThresholdCell(const Element& element, NumberField<EncElement_Config> field) {
    const auto type = element.info[EncElementType_Info::Type];
    if (!type) return Unknown();
    if (*type == ElementType::kTemperature) return CelsiusCell(element.config[field]);
    return *type == ElementType::kVoltage ? FieldCell(element.config, field) : None();
}

struct Problem {
    ElementType type;
    NumberField<EncElementType_Info> field;
    const char* name;
};
constexpr Problem kProblems[] = {
    {ElementType::kPowerSupply, EncElementType_Info::DCOverCurrent, "over_current"},
    {ElementType::kPowerSupply, EncElementType_Info::DCOverVoltage, "over_voltage"},
    {ElementType::kPowerSupply, EncElementType_Info::DCUnderVoltage, "under_voltage"},
    {ElementType::kTemperature, EncElementType_Info::OTFailure, "too_hot"},
    {ElementType::kTemperature, EncElementType_Info::OTWarning, "hot"},
    {ElementType::kTemperature, EncElementType_Info::UTFailure, "too_cold"},
    {ElementType::kTemperature, EncElementType_Info::UTWarning, "cold"},
    {ElementType::kDoor, EncElementType_Info::Unlocked, "unlocked"},
    {ElementType::kVoltage, EncElementType_Info::CritOver, "far_too_high"},
    {ElementType::kVoltage, EncElementType_Info::WarnOver, "too_high"},
    {ElementType::kVoltage, EncElementType_Info::CritUnder, "far_too_low"},
    {ElementType::kVoltage, EncElementType_Info::WarnUnder, "too_low"},
};

// Unknown when one of the flags that its type has is unknown.
Cell ProblemsCell(const Element& element) {
    const auto type = element.info[EncElementType_Info::Type];
    if (!type) return Unknown();
    std::vector<std::string> problems;
    for (const Problem& problem : kProblems) {
        if (*type != problem.type) continue;
        const auto flag = element.info[problem.field];
        if (!flag) return Unknown();
        if (*flag != 0) problems.emplace_back(problem.name);
    }
    return TextsCell(std::move(problems));
}

// An expander or a port multiplier.
template <class R>
struct Linked {
    Address adapter;
    Record<R> info;
};
using Expander = Linked<Exp_Info>;
using Multiplier = Linked<PM_Info>;

template <class R>
View<Link_Endpoint> SelfOf(const Record<R>& device) {
    return device[R::Link][Link_Entity::Self];
}
template <class R>
View<Link_Endpoint> ParentOf(const Record<R>& device) {
    return device[R::Link][Link_Entity::Parent];
}

using enum Kind;
using enum Place;

struct ShownEnclosure : Enclosure {
    std::optional<std::string_view> health;
};

constexpr Column<ShownEnclosure> kColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "Its address"},
     [](const ShownEnclosure& it) { return TextCell(it.address.Text()); }},
    {{"state", "STATE", kCode, kTable, "Its state", &CodeTable::element_states},
     [](const ShownEnclosure& it) { return FieldCell(it.info, Enclosure_Info::Status); }},
    {{"vendor", "VENDOR", kText, kTable, "Its vendor"},
     [](const ShownEnclosure& it) { return FieldCell(it.info, Enclosure_Info::VendorID); }},
    {{"product", "PRODUCT", kText, kTable, "Its product name"},
     [](const ShownEnclosure& it) { return FieldCell(it.info, Enclosure_Info::ProductID); }},
    {{"revision", "REVISION", kText, kTable, "Its revision"},
     [](const ShownEnclosure& it) { return FieldCell(it.info, Enclosure_Info::RevisionLevel); }},
    {{"logical_id", "LOGICAL ID", kText, kTable, "Its logical identifier"},
     [](const ShownEnclosure& it) { return FieldCell(it.info, Enclosure_Info::LogicalID); }},
    {{"expanders", "EXPANDERS", kNumbers, kTable, "The numbers of its expanders"},
     [](const ShownEnclosure& it) {
         return NumbersCell(FirstNumbers(it.info[Enclosure_Info::ExpanderIDs],
                                         it.info[Enclosure_Info::ExpanderCount]));
     }},
    {OneOf(HealthWords, {"health", "HEALTH", kWord, kWide,
                         "How well it and its elements are, by their own conditions; check tells "
                         "which"}),
     [](const ShownEnclosure& it) {
         return it.health ? TextCell(std::string(*it.health)) : Unknown();
     }},
    {{"sas_address", "SAS ADDRESS", kHex, kWide, "Its SAS address"},
     [](const ShownEnclosure& it) { return HexAt(SelfOf(it.info), Link_Endpoint::SAS_Address); }},
    {{"parent", "PARENT", kCode, kWide, "The kind of device that it is connected to",
      &CodeTable::devices},
     [](const ShownEnclosure& it) { return FieldCell(ParentOf(it.info), Link_Endpoint::DevType); }},
    {{"parent_id", "PARENT ID", kNumber, kWide, "The number of that device"},
     [](const ShownEnclosure& it) { return FieldCell(ParentOf(it.info), Link_Endpoint::DevID); }},
};

constexpr Column<Element> kElementColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "Its address"},
     [](const Element& it) { return TextCell(it.address.Text()); }},
    {{"type", "TYPE", kCode, kTable, "What it is", &CodeTable::element_types},
     [](const Element& it) { return FieldCell(it.info, EncElementType_Info::Type); }},
    {{"state", "STATE", kCode, kTable, "Its state", &CodeTable::element_states},
     [](const Element& it) { return FieldCell(it.info, EncElementType_Info::Status); }},
    {{"temperature_celsius", "CELSIUS", kNumber, kTable, "The temperature of a sensor"},
     [](const Element& it) { return TemperatureCell(it); }},
    {{"speed_rpm", "RPM", kNumber, kTable, "The turns per minute of a fan"},
     [](const Element& it) { return Of(it, ElementType::kFan, EncElementType_Info::CurSpeed); }},
    {{"voltage_millivolts", "MILLIVOLTS", kNumber, kTable, "Of a voltage sensor"},
     [](const Element& it) { return VoltageCell(it); }},
    {{"problems", "PROBLEMS", kTexts, kTable, "What its flags complain about"},
     [](const Element& it) { return ProblemsCell(it); }},
    {{"high_critical", "HIGH CRITICAL", kNumber, kWide,
      "Its threshold: degrees Celsius of a temperature, half percents of a voltage"},
     [](const Element& it) { return ThresholdCell(it, EncElement_Config::highCriticalThreshold); }},
    {{"high_warning", "HIGH WARNING", kNumber, kWide, "The threshold below that"},
     [](const Element& it) { return ThresholdCell(it, EncElement_Config::highWarningThreshold); }},
    {{"low_warning", "LOW WARNING", kNumber, kWide, "The low threshold"},
     [](const Element& it) { return ThresholdCell(it, EncElement_Config::lowWarningThreshold); }},
    {{"low_critical", "LOW CRITICAL", kNumber, kWide, "The threshold below that"},
     [](const Element& it) { return ThresholdCell(it, EncElement_Config::lowCriticalThreshold); }},
    {{"speed_code", "SPEED CODE", kNumber, kWide, "The speed code of a fan"},
     [](const Element& it) {
         return Of(it, ElementType::kFan, EncElementType_Info::CurSpeedcode);
     }},
    {{"muted", "MUTED", kBool, kWide, "Whether an alarm is muted"},
     [](const Element& it) { return Of(it, ElementType::kAlarm, EncElementType_Info::Mute); }},
};

constexpr Column<Expander> kExpanderColumns[] = {
    {{"address", "ADAPTER", kAddress, kTable, "The address of its adapter"},
     [](const Expander& it) { return TextCell(it.adapter.Text()); }},
    {{"id", "ID", kNumber, kTable, "Its number"},
     [](const Expander& it) { return FieldCell(SelfOf(it.info), Link_Endpoint::DevID); }},
    {{"vendor", "VENDOR", kText, kTable, "Its vendor"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::VendorID); }},
    {{"product", "PRODUCT", kText, kTable, "Its product name"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::ProductID); }},
    {{"revision", "REVISION", kText, kTable, "Its revision"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::ProductRev); }},
    {{"phy_count", "PHYS", kNumber, kTable, "The number of its phys"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::PhyCount); }},
    {{"sas_address", "SAS ADDRESS", kHex, kTable, "Its SAS address"},
     [](const Expander& it) { return HexAt(SelfOf(it.info), Link_Endpoint::SAS_Address); }},
    {{"parent", "PARENT", kCode, kWide, "The kind of device that it is connected to",
      &CodeTable::devices},
     [](const Expander& it) { return FieldCell(ParentOf(it.info), Link_Endpoint::DevType); }},
    {{"parent_id", "PARENT ID", kNumber, kWide, "The number of that device"},
     [](const Expander& it) { return FieldCell(ParentOf(it.info), Link_Endpoint::DevID); }},
    {{"enclosure_id", "ENCLOSURE", kNumber, kWide, "The number of its enclosure; 65535 none"},
     [](const Expander& it) { return FieldCell(SelfOf(it.info), Link_Endpoint::EnclosureID); }},
    {{"configuring", "CONFIGURING", kBool, kWide, "Whether it is configuring itself"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::Configuring); }},
    {{"routes_configurable", "ROUTES", kBool, kWide, "Whether its route table can be configured"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::RouteTableConfigurable); }},
    {{"max_route_indexes", "MAX ROUTES", kNumber, kWide, "The size of that table"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::MaxRouteIndexes); }},
    {{"change_count", "CHANGES", kNumber, kWide, "How often something has changed behind it"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::ExpChangeCount); }},
    {{"component_vendor", "COMPONENT VENDOR", kText, kWide, "The vendor of its chip"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::ComponentVendorID); }},
    {{"component_id", "COMPONENT", kNumber, kWide, "The chip"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::ComponentID); }},
    {{"component_revision", "COMPONENT REV", kNumber, kWide, "The revision of the chip"},
     [](const Expander& it) { return FieldCell(it.info, Exp_Info::ComponentRevisionID); }},
};

constexpr Column<Multiplier> kMultiplierColumns[] = {
    {{"address", "ADAPTER", kAddress, kTable, "The address of its adapter"},
     [](const Multiplier& it) { return TextCell(it.adapter.Text()); }},
    {{"id", "ID", kNumber, kTable, "Its number"},
     [](const Multiplier& it) { return FieldCell(SelfOf(it.info), Link_Endpoint::DevID); }},
    {{"vendor_id", "VENDOR", kNumber, kTable, "Its vendor"},
     [](const Multiplier& it) { return FieldCell(it.info, PM_Info::VendorId); }},
    {{"device_id", "DEVICE", kNumber, kTable, "Its device number"},
     [](const Multiplier& it) { return FieldCell(it.info, PM_Info::DeviceId); }},
    {{"ports", "PORTS", kNumber, kTable, "The number of its ports"},
     [](const Multiplier& it) { return FieldCell(it.info, PM_Info::NumberOfPorts); }},
    {{"product_revision", "REVISION", kNumber, kWide, "Its revision"},
     [](const Multiplier& it) { return FieldCell(it.info, PM_Info::ProductRevision); }},
    {{"standard_revision", "STANDARD", kNumber, kWide,
      "The revision of the standard that it keeps, as bits"},
     [](const Multiplier& it) { return FieldCell(it.info, PM_Info::PMSpecRevision); }},
    {{"parent", "PARENT", kCode, kWide, "The kind of device that it is connected to",
      &CodeTable::devices},
     [](const Multiplier& it) { return FieldCell(ParentOf(it.info), Link_Endpoint::DevType); }},
    {{"parent_id", "PARENT ID", kNumber, kWide, "The number of that device"},
     [](const Multiplier& it) { return FieldCell(ParentOf(it.info), Link_Endpoint::DevID); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }
std::vector<ColumnInfo> ElementColumns() { return InfoOf(kElementColumns); }
std::vector<ColumnInfo> ExpanderColumns() { return InfoOf(kExpanderColumns); }
std::vector<ColumnInfo> MultiplierColumns() { return InfoOf(kMultiplierColumns); }

Exit ListEnclosures(Invocation& invocation) {
    SelectAdapters(invocation);
    Controller& controller = invocation.controller();
    std::vector<Enclosure> enclosures = LoadEnclosures(controller);
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    const hxconditions::Answers answers =
        AnswersFor(controller, enclosures, LoadElements(controller, enclosures));
    controller.TakeBack(faults, exit);
    const ObjectHealth health(answers);
    std::vector<ShownEnclosure> shown;
    for (Enclosure& each : enclosures) {
        const auto is = health.OfEnclosure(each.address);
        shown.push_back({std::move(each), is});
    }
    return Show(invocation, Tabulated(invocation, kColumns, shown));
}

Exit ListElements(Invocation& invocation) {
    SelectAdapters(invocation);
    return Show(invocation,
                Tabulated(invocation, kElementColumns, LoadElements(invocation.controller())));
}

template <class R>
std::vector<Linked<R>> LoadLinked(Controller& controller, const ListSource<R>& source) {
    std::vector<Linked<R>> all;
    for (const unsigned adapter : controller.Selected()) {
        for (auto& [id, info] : controller.ReadList(adapter, source).items) {
            all.push_back({{.adapter = adapter}, std::move(info)});
        }
    }
    return all;
}

constexpr ListSource kExpanderList =
    ListOf(calls::HX_PD_GetExpanderInfo::Result::ExpanderInfo, &DeviceId<Exp_Info>);
constexpr ListSource kMultiplierList =
    ListOf(calls::HX_PD_GetPMInfo::Result::PM_Info, &DeviceId<PM_Info>);

Exit ListExpanders(Invocation& invocation) {
    SelectAdapters(invocation);
    return Show(invocation, Tabulated(invocation, kExpanderColumns,
                                      LoadLinked(invocation.controller(), kExpanderList)));
}

Exit ListMultipliers(Invocation& invocation) {
    SelectAdapters(invocation);
    return Show(invocation, Tabulated(invocation, kMultiplierColumns,
                                      LoadLinked(invocation.controller(), kMultiplierList)));
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
     .functions = kNamesOf<calls::HX_ENC_GetEnclosureInfo, calls::HX_ENC_GetElementInfo,
                           calls::HX_ENC_GetElementConfig>,
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
     .functions = kNamesOf<calls::HX_ENC_GetEnclosureInfo, calls::HX_ENC_GetElementInfo,
                           calls::HX_ENC_GetElementConfig>,
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
     .functions = kNamesOf<calls::HX_ENC_GetElementInfo, calls::HX_ENC_GetElementConfig>,
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
     .functions = kNamesOf<calls::HX_PD_GetExpanderInfo>,
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
     .functions = kNamesOf<calls::HX_PD_GetPMInfo>,
     .examples = {"vexorctl enclosure multipliers", "vexorctl enclosure multipliers a1"},
     .run = ListMultipliers,
     .columns = MultiplierColumns},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::enclosure_noun

// Walks the rows. Every kind of row has an overload here, so a new kind does not compile until it
// is described.
#include "describe.h"

#include <map>

#include "xml_rapi_functions.h"  // IWYU pragma: keep: the rows of records that it describes
#include "xml_vxapi_record_rows.h"

namespace {

// Request ----------------------------------------------------------------------------------------

template <class T>
Child DescribeField(const char* name) {
    if constexpr (std::is_array_v<T>) {
        using Item = std::remove_extent_t<T>;
        if constexpr (std::is_same_v<Item, char>) {
            return {name, Child::Kind::Text, 8, std::extent_v<T> - 1};
        } else {
            return {name, Child::Kind::Numbers, 8 * sizeof(Item), std::extent_v<T>};
        }
    } else {
        return {name, Child::Kind::Number, 8 * sizeof(T), 1};
    }
}

template <class R, class... Row>
void Describe(const Params<R, Row...>& params, std::vector<Child>& children);

template <class R, class T>
void Describe(const RequestParam<R, T>& row, std::vector<Child>& children) {
    children.push_back(DescribeField<T>(row.name.text));
}
template <class R, std::size_t n>
void Describe(const WholeTextRow<R, n>& row, std::vector<Child>& children) {
    children.push_back({row.name.text, Child::Kind::WholeText, 8, n - 1});
}
template <class R, class Inner, class... Row>
void Describe(const InnerParams<R, Inner, Row...>& row, std::vector<Child>& children) {
    Describe(row.params, children);
}
template <class R, class... Row>
void Describe(const Params<R, Row...>& params, std::vector<Child>& children) {
    params.rows.Apply([&](const Row&... row) { (Describe(row, children), ...); });
}

// Result -----------------------------------------------------------------------------------------

template <class Rows>
std::vector<Element> DescribeRows(const Rows& rows);

template <class R, class T, Form form>
Element Describe(const Column<R, T, form>& row) {
    const auto kind = form == Form::Hex ? Element::Kind::Hex : Element::Kind::Scalar;
    return {.name = row.name, .type = row.type, .kind = kind};
}
template <class R, class T, std::size_t n, LastBlank blank>
Element Describe(const ArrayColumn<R, T, n, blank>& row) {
    return {.name = row.name, .type = row.type, .kind = Element::Kind::Array, .width = n};
}
template <class R, class C, std::size_t n, class Cleaner, Markup markup>
Element Describe(const TextColumn<R, C, n, Cleaner, markup>& row) {
    return {.name = row.name, .type = "string"};
}
template <class R, class Value>
Element Describe(const ComputedByte<R, Value>& row) {
    return {.name = row.name, .type = "U8"};
}
Element Describe(const PortAddresses&) {
    return {.name = "PortSasAddress",
            .type = "U8",
            .kind = Element::Kind::Ports,
            .width = PortAddresses::kPorts};
}
Element Describe(const SenseDataRow&) {
    return {.name = "SenseData",
            .type = "U8",
            .kind = Element::Kind::Bytes,
            .width = sizeof(Event::SenseData)};
}
Element Describe(const EventTextRow&) { return {.name = "Event", .type = "string"}; }
template <class RecordRows>
Element DescribeRecord(const char* name, const RecordRows& record) {
    return {.name = name,
            .type = record.type,
            .kind = Element::Kind::Record,
            .children = DescribeRows(record.rows)};
}
template <const auto& kInner, class R, class Inner>
Element Describe(const Nested<kInner, R, Inner>& row) {
    return DescribeRecord(row.name, kInner);
}

template <class Rows>
std::vector<Element> DescribeRows(const Rows& rows) {
    return rows.Apply([](const auto&... row) { return std::vector<Element>{Describe(row)...}; });
}

// The list behind the rows.
void DescribeList(const NoList&, std::vector<Element>&) {}

template <const auto& kRecord, auto writer, class R, std::size_t room, class Number>
void DescribeList(const CountedList<kRecord, writer, R, room, Number>& list,
                  std::vector<Element>& elements) {
    elements.push_back(DescribeRecord(list.name, kRecord));
    elements.back().repeats = true;
}
template <const auto& kReply, class R>
void DescribeList(const CollectedList<kReply, R>&, std::vector<Element>& elements) {
    elements.push_back(DescribeRecord("RequestHeader", kRequestHeader_Entity_Info));
    elements.push_back(DescribeRecord(kReply.name, kReply.kRows));
    elements.back().repeats = true;
}
// The elements of the two value writers.
template <class R, class Inner>
void DescribeList(const UserValues<XML_RA_UserGroup_Value, R, Inner>&,
                  std::vector<Element>& elements) {
    elements.push_back({.name = "UserGroup", .type = "string"});
}
template <class R, class Inner>
void DescribeList(const UserValues<XML_RA_UserName_Value, R, Inner>&,
                  std::vector<Element>& elements) {
    for (Element& element : DescribeRows(kUserName_Value.rows)) elements.push_back(element);
}

template <const auto& kFunction>
FunctionText DescribeFunction() {
    FunctionText text{kFunction.name, false, {}, DescribeRows(kFunction.rows)};
    Describe(kFunction.params, text.children);
    DescribeList(kFunction.list, text.elements);
    for (const Element& element : text.elements) text.paged |= element.name == "RequestHeader";
    return text;
}

// Values that make the examples meaningful; every other child gets 0. FUNCTION.NAME takes
// precedence over NAME.
const std::map<std::string, std::string> kExampleValues = {
    {"Action", "1"},
    {"Actions", "1"},
    {"AlarmOn", "1"},
    {"AutoRebuildOn", "1"},
    {"BGARate", "50"},
    {"CachePolicy", "4"},
    {"CopyBack", "1"},
    {"CopybackRate", "40"},
    {"DriveSpeed", "10"},
    {"HDCount", "3"},
    {"HDIDs", "11 12 13"},
    {"HX_CreateOrModify_VD.VDID", "0"},
    {"HX_DG_GetSizeOnly.DGID", "65535"},
    {"HX_DG_Modify.PDCount", "4"},
    {"HX_DG_Modify.PDIDs", "0 1 2 3"},
    {"HX_DG_StartMigration.NumParityDisk", "2"},
    {"HX_DG_StartMigration.PDCount", "5"},
    {"HX_DG_StartMigration.PDIDs", "0 1 2 3 11"},
    {"HX_DG_StartMigration.RaidMode", "6"},
    {"HX_Flash_Option.Actions", "15"},
    {"HX_Flash_Option.Type", "1"},
    {"HX_LD_BGAControl.LD_ID", "2"},
    {"HX_LD_Create_OnDG.DGSlotNum", "1"},
    {"HX_LD_Create_OnDG.Size", "2097152"},
    {"HX_LD_DG_StartRebuild.PDCount", "1"},
    {"HX_LD_DG_StartRebuild.PDIDs", "11"},
    {"HX_LD_DG_StartRebuild.RebuildType", "1"},
    {"HX_LD_GetMigratedLdSize.AdapterID", "1"},
    {"HX_LD_GetMigratedLdSize.HDIDs", "0 1 3"},
    {"HX_LD_SetConfig.CacheMode", "5"},
    {"HX_LD_StartMigration.AdapterID", "1"},
    {"HX_LD_StartMigration.HDIDs", "0 1 3"},
    {"HX_LD_StartRebuild.LD_ID", "2"},
    {"HX_LD_StartRebuild.Rebuild_HD_ID", "9"},
    {"HX_PD_FreeHD2DGSpare.HD_ID", "11"},
    {"HX_PD_FreeHD2GlobalSpare.HD_ID", "13"},
    {"HX_PD_GetPMInfo.AdapterID", "1"},
    {"HX_PD_GetRCT.HD_ID", "6"},
    {"HX_PD_SetConfig.Online", "1"},
    {"HX_PD_SetConfig.SMARTOn", "1"},
    {"HX_PD_SetConfig.WriteCacheOn", "1"},
    {"HX_PD_SetHDStatus.Action", "2"},
    {"HX_PD_SetHDStatus.HD_ID", "13"},
    {"HX_PD_Spare2FreeHD.HD_ID", "9"},
    {"HX_PD_WipeHDMDD.HD_ID", "13"},
    {"InitRate", "50"},
    {"Lang", "en"},
    {"MediaPatrolRate", "20"},
    {"MigrationRate", "50"},
    {"Name", "data1"},
    {"NumParityDisk", "1"},
    {"PDCount", "3"},
    {"PDIDs", "11 12 13"},
    {"Page", "1"},
    {"PollSMARTStatus", "1"},
    {"RaidMode", "5"},
    {"RebuildRate", "70"},
    {"SectorCoefficient", "1"},
    {"StripeBlockSize", "64"},
    {"SubLDCount", "1"},
    {"SubVDCount", "1"},
    {"SyncRate", "30"},
    {"VX_HX_EVT_GetEvents.e", "4294967295"},
    {"VX_HX_EVT_GetEvents.s", "4294967295"},
    {"deviceType", "4"},
    {"e", "1"},
    {"filepath", "examples/sample-bios.bin"},
    {"lpszPassword", "raid &amp; roll"},
    {"lpszUsername", "admin"},
    {"ledStatus", "1"},
    {"n", "2"},
    {"numRequested", "1"},
    {"port_phy_ctrl", "0 0 0 0 0 0 0 0"},
    {"requestType", "1"},
    {"tempLowerBound", "5"},
    {"tempUpperBound", "55"},
    {"volLowerBound", "3500"},
    {"volUpperBound", "4300"},
};

// A command to send before a function's example.
struct Before {
    const char* example;
    const char* function;
    std::vector<std::pair<const char*, const char*>> children;
};
const Before kBefore[] = {
    {"HX_LD_StartRebuild", "HX_PD_Spare2FreeHD", {{"AdapterID", "0"}, {"HD_ID", "9"}}},
    {"HX_LD_StartRebuild",
     "HX_PD_SetHDStatus",
     {{"AdapterID", "0"}, {"HD_ID", "4"}, {"Action", "2"}}},
    {"HX_LD_DG_StartRebuild", "HX_PD_Spare2FreeHD", {{"AdapterID", "0"}, {"HD_ID", "10"}}},
    {"HX_LD_DG_StartRebuild", "HX_PD_Spare2FreeHD", {{"AdapterID", "0"}, {"HD_ID", "9"}}},
    {"HX_LD_DG_StartRebuild",
     "HX_PD_SetHDStatus",
     {{"AdapterID", "0"}, {"HD_ID", "0"}, {"Action", "2"}}},
    {"HX_LD_PauseAll", "HX_LD_StartConsistencyCheck", {{"AdapterID", "0"}, {"LD_ID", "2"}}},
    {"HX_LD_BGAControl", "HX_LD_StartConsistencyCheck", {{"AdapterID", "0"}, {"LD_ID", "2"}}},
    {"HX_DG_BGAControl", "HX_LD_StartConsistencyCheck", {{"AdapterID", "0"}, {"LD_ID", "0"}}},
    {"HX_PD_BGAControl", "HX_PD_StartMediaPatrol", {{"AdapterID", "0"}, {"HD_ID", "0"}}},
    {"HX_Flash_Option", "HX_Flash_Erase", {{"AdapterID", "0"}, {"Page", "1"}}},
};

std::string ExampleValue(const std::string& function, const std::string& child) {
    std::string full = function;
    full.append(".").append(child);
    for (const std::string& name : {full, child}) {
        const auto value = kExampleValues.find(name);
        if (value != kExampleValues.end()) return value->second;
    }
    return "0";
}

}  // namespace

std::vector<FunctionText> DescribeFunctions() {
#define DESCRIBE(function) DescribeFunction<k##function>(),
    return {VENDOR_FUNCTIONS(DESCRIBE)};
#undef DESCRIBE
}

std::vector<FunctionText> DescribeManagement() {
    const Element ret_val{.name = "RetVal", .type = "U8"};
    const auto number = [](const char* name) { return Element{.name = name, .type = "U32"}; };
    const auto param = [](const char* name) { return Child{name, Child::Kind::Number, 32, 1}; };
    Element events = DescribeRecord("Event", kEvent);
    events.repeats = true;
    return {
        {"VX_Module_GetInfo",
         false,
         {},
         {ret_val, DescribeRecord("product", kVerInfo), DescribeRecord("php_vexorapi", kVerInfo),
          DescribeRecord("vexorapi", kVerInfo), DescribeRecord("hxraidsvc", kVerInfo)}},
        {"VX_HX_EVT_GetChangeCounters",
         false,
         {},
         {ret_val, DescribeRecord("ChangeCounters", kChangeCounters)}},
        {"VX_HX_EVT_GetEvents",
         false,
         {param("n"), param("s"), param("e"),
          DescribeField<decltype(VX_HX_EVT_GetEvents::Lang)>("Lang")},
         {ret_val, number("n"), number("s"), number("e"), events}},
        {"VX_HX_EVT_Reset", false, {}, {}},
    };
}

std::string ExampleCommand(const FunctionText& function) {
    std::string command = "<" + function.name + " type=\"function\">\n";
    for (const Child& child : function.children) {
        // The request sets only part of the paging header; the reply fills the rest.
        if (function.paged && child.name != "AdapterID" && child.name != "requestType" &&
            child.name != "startingIndexOrId" && child.name != "numRequested") {
            continue;
        }
        if (child.name == "lpszDomain") continue;
        command.append("  <").append(child.name).append(">");
        command.append(ExampleValue(function.name, child.name));
        command.append("</").append(child.name).append(">\n");
    }
    return command + "</" + function.name + ">\n";
}

std::vector<std::string> CommandsBefore(const FunctionText& function) {
    std::vector<std::string> commands;
    for (const Before& before : kBefore) {
        if (before.example != function.name) continue;
        std::string command = "<" + std::string(before.function) + " type=\"function\">\n";
        for (const auto& [name, value] : before.children) {
            command.append("  <").append(name).append(">").append(value);
            command.append("</").append(name).append(">\n");
        }
        commands.push_back(command + "</" + before.function + ">\n");
    }
    return commands;
}

std::string TopologyFor(const FunctionText& function) {
    // No other one is about what the default machine lacks: a virtual disk of another controller.
    return function.name == "HX_LD_Import" ? "examples/topologies/foreign.json" : "";
}

// docs/xml-api.md.
#include "markdown.h"

#include <cctype>
#include <cstdio>
#include <span>
#include <stdexcept>
#include <string_view>

#include "codes/code_table.h"
#include "meanings.h"
#include "record_names.h"

namespace {

constexpr char kIntroduction[] =
    R"(<!-- Written by the program tools/xmlapi from the functions' rows: change those, then run
     `xmlapi docs`. A test fails when this page is out of date. -->

# The XML interface

One command in, one result out. A command is an XML element named after a function, with the
attribute `type="function"`; its parameters are child elements that hold decimal numbers or text. Every
child is optional, in any order, and may come twice (the last one counts): a missing or empty one leaves
its field 0 or empty. Attributes of children are not looked at, and an unknown child is ignored.

| kind | what the child holds |
|---|---|
| number, 8/16/32/64 bits | the first decimal number in the text; of a larger one the low bits; one that does not fit 32 bits (64 for a number of 64) counts as the largest that does |
| n numbers | up to n decimal numbers, separated by anything that is no digit; the rest of the array stays 0 |
| text, n characters | the text; a longer one is cut to n |
| whole text, n characters | the text; a longer one is refused as a whole |

A result repeats the function's name. Each element tells its type: `U8`, `U16`, `U32`, `U64` (decimal,
unsigned), `BOOL` (one byte), `string`, the same under the controller's own names (`HX_U8`, `HX_U16`,
`HX_U32`, `HX_BOOLEAN`), or `struct` and a record's name. An array has its `width` and all its items on
one line. Texts of the controller stand in CDATA sections. `RetVal` is the controller's code, 0 for
success. Sizes count 512-byte sectors.

The result is delivered without the line end behind its last tag. `docs/vexorapi-results.rng` is a
RELAX NG schema of every result.

**Lists** are paged: ask with `requestType` 1 (from an index on; 2 asks for the one entry with that ID),
`startingIndexOrId` and `numRequested`, take `numReturned` items, go on at
`nextStartingIndex` until it is 65535. The library collects as many of the controller's pages as
`numRequested` asks for (at most 32767).

**All adapters**: `AdapterID` 255 asks every adapter in HX_Adapter_GetInfo, HX_Adapter_GetConfig,
HX_ENC_GetElementInfo and HX_ENC_GetElementConfig.

The examples work as they stand: `vexorctl xml FILE...` sends the commands of files, one after the other. Each
begins with a new machine of the default topology (`HXSIM_STATE=:memory:` makes one for each process), with
`VEXORAPI_ROOT` naming a copy of `examples/root`, in whose event store lie the two events of
[event-store.md](event-store.md), and with the top of this tree as the current folder. Commands that have to
be sent before stand under "Before it"; `hxsimctl init` makes its machine in the file that `HXSIM_STATE` names
then.
)";

// The tables of codes, in the order of the page.
struct CodeList {
    Codes codes;
    const char* title;
    std::span<const hxcodes::Named> hxcodes::CodeTable::*
        names;  // null for those with a table of their own
    bool are_bits = false;
};
using hxcodes::CodeTable;
constexpr CodeList kCodeLists[] = {
    {Codes::kLevels, "RAID levels", &CodeTable::levels},
    {Codes::kLevelBits, "Bits of RAID levels", &CodeTable::level_bits, true},
    {Codes::kStates, "States", &CodeTable::states},
    {Codes::kActivities, "Activities", &CodeTable::activities},
    {Codes::kActivityStates, "States of activities", &CodeTable::activity_states},
    {Codes::kControls, "Control of activities", &CodeTable::controls},
    {Codes::kInits, "Initialisations", &CodeTable::inits},
    {Codes::kCheckTypes, "Consistency checks", &CodeTable::check_types},
    {Codes::kRebuildTypes, "What is rebuilt", &CodeTable::rebuild_types},
    {Codes::kRateBits, "Bits of rates", &CodeTable::rate_bits, true},
    {Codes::kDevices, "Devices", &CodeTable::devices},
    {Codes::kDiskBits, "Bits of disk states", &CodeTable::disk_bits, true},
    {Codes::kDiskFeatures, "Bits of disk features", &CodeTable::disk_features, true},
    {Codes::kDiskActions, "What becomes of disks", &CodeTable::disk_actions},
    {Codes::kConnections, "Connections", &CodeTable::connections},
    {Codes::kLinkSpeeds, "Link speeds", &CodeTable::link_speeds},
    {Codes::kRemapReasons, "Reasons for remapping", &CodeTable::remap_reasons},
    {Codes::kBlockBits, "Bits of blocks", &CodeTable::block_bits, true},
    {Codes::kCacheBits, "Bits of the cache", &CodeTable::cache_bits, true},
    {Codes::kRoundings, "Roundings", &CodeTable::roundings},
    {Codes::kElementTypes, "Elements of enclosures", &CodeTable::element_types},
    {Codes::kElementStates, "States of enclosures and elements", &CodeTable::element_states},
    {Codes::kBatteryBits, "Bits of the battery", &CodeTable::battery_bits, true},
    {Codes::kBatteryFeatures, "Bits of battery features", &CodeTable::battery_features, true},
    {Codes::kPowers, "What the battery does", &CodeTable::powers},
    {Codes::kImages, "Images in the flash", &CodeTable::images},
    {Codes::kEventClasses, "Classes of events", &CodeTable::event_classes},
    {Codes::kSeverities, "Severities", &CodeTable::severities},
    {Codes::kEvents, "Events", nullptr},
    {Codes::kRefusals, "Refusals", nullptr},
};

// The anchor that page renderers generate for a heading.
std::string Anchor(std::string_view heading) {
    std::string anchor;
    for (const char c : heading) {
        anchor += c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return anchor;
}

std::string LinkTo(std::string_view heading) {
    return "[" + std::string(heading) + "](#" + Anchor(heading) + ")";
}

std::string ValuesOf(const Meaning& meaning, std::string_view otherwise) {
    std::string values(meaning.values);
    if (meaning.codes != Codes::kNone) {
        if (!values.empty()) values += ": ";
        values += LinkTo(TitleOf(meaning.codes));
    }
    return values.empty() ? std::string(otherwise) : values;
}

std::string CodeTables() {
    const CodeTable& codes = hxcodes::OwnCodes();
    std::string text =
        "\n## The codes\n\nLevels, their bits, the bits of rates, elements of enclosures, classes "
        "of events "
        "and severities are the\ninterface's and hold for every controller. All others are the "
        "controller's own: below are those of the\nvirtual controller and of the one over the "
        "kernel's "
        "arrays, which `HX_API_Version` names. Bits are added up.\n";
    for (const CodeList& list : kCodeLists) {
        text += "\n### " + std::string(list.title) + "\n\n";
        if (list.codes == Codes::kEvents) {
            text +=
                "`{object}` is the object of `DeviceID`; `{1}`, `{2}`, ... are the values of the "
                "event's "
                "text, in their\norder. The severity is the virtual controller's.\n\n";
            text += "| class | code | severity | what has happened |\n|---|---|---|---|\n";
            for (const hxcodes::EventText& event : codes.events) {
                text += "| " + std::to_string(event.event_class) + " | " +
                        std::to_string(event.code) + " | " + std::to_string(event.severity) +
                        " | " + event.sentence + " |\n";
            }
            continue;
        }
        if (list.codes == Codes::kRefusals) {
            text += "| code | name | why |\n|---|---|---|\n";
            for (const hxcodes::RefusalText& refusal : codes.refusals) {
                text += "| " + std::to_string(refusal.code) + " | " + std::string(refusal.name) +
                        " | " + std::string(refusal.sentence) + " |\n";
            }
            continue;
        }
        text += list.are_bits ? "| bit | decimal | name |\n|---|---|---|\n"
                              : "| code | name |\n|---|---|\n";
        for (const hxcodes::Named& code : codes.*list.names) {
            char bit[16];
            std::snprintf(bit, sizeof bit, "0x%02X | ", static_cast<unsigned>(code.code));
            text += "| " + std::string(list.are_bits ? bit : "") + std::to_string(code.code) +
                    " | " + std::string(code.name) + " |\n";
        }
    }
    return text;
}

// The records, each once, in the order in which results name them. Two have the same name and
// differ in the widths of their fields: the second one's heading has a number.
class Records {
public:
    std::string LinkOf(const Element& record) { return LinkTo(names_.NameOf(record)); }

    // Tables of every linked record and of the records inside them.
    std::string Tables();

    std::string Table(std::string_view of, const std::vector<Element>& elements) {
        std::string text = "| element | type | meaning | values |\n|---|---|---|---|\n";
        for (const Element& element : elements) {
            const bool is_record = element.kind == Element::Kind::Record;
            const Meaning& meaning = MeaningOf(of, element);
            text += "| `" + element.name;
            if (element.kind == Element::Kind::Ports) {
                text += "0`, ... `" + element.name + std::to_string(element.width - 1);
            }
            text += "` | " + TypeOf(element) + " | " + std::string(meaning.text) + " | " +
                    ValuesOf(meaning, element.type == "BOOL" ? "0 or 1"
                                      : is_record            ? ""
                                                             : "text") +
                    " |\n";
        }
        return text;
    }

private:
    std::string TypeOf(const Element& element) {
        std::string type =
            element.kind == Element::Kind::Record ? "struct " + LinkOf(element) : element.type;
        if (element.kind == Element::Kind::Array) type += "[" + std::to_string(element.width) + "]";
        if (element.kind == Element::Kind::Ports) type += "[8]";
        if (element.kind == Element::Kind::Bytes) {
            type += "[], at most " + std::to_string(element.width) + " items, absent when none";
        }
        if (element.kind == Element::Kind::Hex) type += ", hexadecimal";
        if (element.repeats) type += ", any number of them";
        return type;
    }

    RecordNames names_;
};

std::string Records::Tables() {
    std::string text;
    // A table may name further records, so the list grows meanwhile.
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const auto [heading, record] = names_[i];
        const std::string type_name = RecordTypeName(record);
        text += "\n### " + heading + "\n\n";
        if (heading != type_name) {
            text += "Another record of the type name `" + record.type +
                    "`, with other widths; the element's name tells which it is.\n\n";
        }
        text += Table(type_name, record.children);
    }
    return text;
}

void ListFunction(const FunctionText& function, const std::string& result, Records& records,
                  std::string& text) {
    text += "\n### " + function.name + "\n\n";
    if (function.children.empty()) {
        text += "No parameters.\n\n";
    } else {
        text += "| child | kind | meaning | values |\n|---|---|---|---|\n";
        for (const Child& child : function.children) {
            const Meaning& meaning = MeaningOf(function.name, child);
            text += "| `" + child.name + "` | " + KindOf(child) + " | " +
                    std::string(meaning.text) + " | " + ValuesOf(meaning, "text") + " |\n";
        }
        text += "\n";
    }
    text += function.elements.empty()
                ? std::string("The result has no elements.\n")
                : "Result:\n\n" + records.Table(function.name, function.elements);
    const std::vector<std::string> before = CommandsBefore(function);
    const std::string topology = TopologyFor(function);
    const bool needs_more = !before.empty() || !topology.empty();
    if (needs_more) text += "\nBefore it:\n";
    if (!topology.empty()) text += "\n```sh\nhxsimctl init --topology " + topology + "\n```\n";
    for (const std::string& command : before) text += "\n```xml\n" + command + "```\n";
    if (needs_more) text += "\nThen:\n";
    text += "\n```xml\n" + ExampleCommand(function) + "```\n\n```xml\n" + result + "\n```\n";
}

}  // namespace

std::string KindOf(const Child& child) {
    switch (child.kind) {
        case Child::Kind::Number:
            return "number, " + std::to_string(child.bits) + " bits";
        case Child::Kind::Numbers:
            return std::to_string(child.count) + " numbers, " + std::to_string(child.bits) +
                   " bits each";
        case Child::Kind::Text:
            return "text, " + std::to_string(child.count) + " characters";
        case Child::Kind::WholeText:
            return "whole text, " + std::to_string(child.count) + " characters";
    }
    return {};
}

std::string_view TitleOf(Codes codes) {
    for (const CodeList& list : kCodeLists) {
        if (list.codes == codes) return list.title;
    }
    throw std::logic_error("a table of codes without a title");
}

std::string Markdown(const std::vector<Chapter>& chapters) {
    std::string text = kIntroduction;
    Records records;
    for (const Chapter& chapter : chapters) {
        text += "\n## " + chapter.title + "\n\n";
        for (const FunctionText& function : chapter.functions)
            text += "- " + LinkTo(function.name) + "\n";
        for (std::size_t i = 0; i < chapter.functions.size(); ++i) {
            ListFunction(chapter.functions[i], chapter.results[i], records, text);
        }
    }
    text += "\n## The records\n" + records.Tables() + CodeTables();
    for (const Meaning* const unused : UnusedMeanings()) {
        throw std::runtime_error(std::string(unused->of) + "." + std::string(unused->field) +
                                 " is nowhere; take its row out of tools/xmlapi/meanings.cpp");
    }
    return text;
}

// docs/xml-api.md.
#include "markdown.h"

#include <cctype>

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

The examples are what the virtual controller answers, each on a new machine of the default topology.
Where that machine gives a function nothing to do, the answer is the refusal's code.
)";

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

// The elements of a record, indented by their depth.
void ListElements(const std::vector<Element>& elements, int depth, std::string& text) {
    for (const Element& element : elements) {
        text += std::string(2 * static_cast<std::size_t>(depth), ' ') + "- `" + element.name;
        if (element.kind == Element::Kind::Ports)
            text += "0`, ... `" + element.name + std::to_string(element.width - 1);
        text += "` " + element.type;
        if (element.kind == Element::Kind::Array) text += "[" + std::to_string(element.width) + "]";
        if (element.kind == Element::Kind::Ports) text += "[8], one for each port";
        if (element.kind == Element::Kind::Bytes) {
            text += "[], at most " + std::to_string(element.width) + " items, absent when none";
        }
        if (element.kind == Element::Kind::Hex) text += ", hexadecimal";
        if (element.repeats) text += ", any number of them";
        text += "\n";
        ListElements(element.children, depth + 1, text);
    }
}

void ListFunction(const FunctionText& function, const std::string& result, std::string& text) {
    text += "\n### " + function.name + "\n\n";
    if (function.children.empty()) {
        text += "No parameters.\n\n";
    } else {
        text += "| child | kind |\n|---|---|\n";
        for (const Child& child : function.children) {
            text += "| `" + child.name + "` | " + KindOf(child) + " |\n";
        }
        text += "\n";
    }
    text += function.elements.empty() ? "The result has no elements.\n" : "Result:\n\n";
    ListElements(function.elements, 0, text);
    text += "\n```xml\n" + ExampleCommand(function) + "```\n\n```xml\n" + result + "\n```\n";
}

}  // namespace

std::string Markdown(const std::vector<Chapter>& chapters) {
    std::string text = kIntroduction;
    for (const Chapter& chapter : chapters) {
        text += "\n## " + chapter.title + "\n\n";
        for (const FunctionText& function : chapter.functions) {
            // The anchor that page renderers make of a heading: lower case.
            std::string anchor;
            for (const char c : function.name) {
                anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            }
            text += "- [" + function.name + "](#" + anchor + ")\n";
        }
        for (std::size_t i = 0; i < chapter.functions.size(); ++i) {
            ListFunction(chapter.functions[i], chapter.results[i], text);
        }
    }
    return text;
}

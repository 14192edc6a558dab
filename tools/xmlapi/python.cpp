// bindings/python/vexorapi/functions.py.
#include "python.h"

#include <algorithm>

#include "codes/code_table.h"
#include "codes/identity.h"
#include "meanings.h"
#include "record_names.h"
#include "words.h"

namespace {

constexpr std::size_t kLineWidth = 100;

constexpr const char* kWritten =
    R"py(# Written by the program tools/xmlapi from the library's rows: change those, then run
# `xmlapi docs`. A test fails when this file is out of date.
)py";

constexpr const char* kRecordsHead =
    R"py("""The records of the library's results, under their names.

Records are named tuples. Numbers are int, truth values bool, texts str, arrays tuples of int; a
record inside a record has its own type. "Codes" name a table of the XML interface's reference,
docs/xml-api.md.
"""

from __future__ import annotations

from typing import NamedTuple

from ._shapes import Shape, data, flag, hexadecimal, number, numbers, ports, text
)py";

constexpr const char* kFunctionsHead = R"py("""The functions of the library, under their names.

A result is a named tuple; a list in it is a tuple of records. "Codes" name a table of the XML
interface's reference, docs/xml-api.md.
"""

from __future__ import annotations

from collections.abc import Sequence
from typing import NamedTuple

from . import records
from ._shapes import PAGE, Asking, Function, Kind, Parameter, Shape, each, number, text
)py";

// Writes the records, or the functions, whose fields have the names of records.
class Writer {
public:
    Writer(RecordNames& records, std::string prefix)
        : records_(records), prefix_(std::move(prefix)) {}

    std::string TypeOf(const Element& element) const;
    std::string ReaderOf(const Element& element) const;
    std::string Class(const std::string& name, std::string_view of, const std::string& title,
                      const std::vector<Element>& elements, const std::string& members) const;

private:
    RecordNames& records_;
    std::string prefix_;  // of the module that has the records
};

std::string Writer::TypeOf(const Element& element) const {
    std::string type;
    switch (element.kind) {
        case Element::Kind::Scalar:
            type = element.type == "string" ? "str" : element.type == "BOOL" ? "bool" : "int";
            break;
        case Element::Kind::Hex:
            type = "int";
            break;
        case Element::Kind::Array:
            type = "tuple[int, ...]";
            break;
        case Element::Kind::Bytes:
            type = "bytes";
            break;
        case Element::Kind::Ports:
            type = "tuple[tuple[int, ...], ...]";
            break;
        case Element::Kind::Record:
            type = prefix_ + records_.NameOf(element);
            break;
    }
    return element.repeats ? "tuple[" + type + ", ...]" : type;
}

std::string Writer::ReaderOf(const Element& element) const {
    switch (element.kind) {
        case Element::Kind::Scalar:
            return element.type == "string" ? "text" : element.type == "BOOL" ? "flag" : "number";
        case Element::Kind::Hex:
            return "hexadecimal";
        case Element::Kind::Array:
            return "numbers";
        case Element::Kind::Bytes:
            return "data";
        case Element::Kind::Ports:
            return "ports";
        case Element::Kind::Record: {
            const std::string shape = prefix_ + records_.NameOf(element) + "_Shape";
            return element.repeats ? "each(" + shape + ")" : shape + ".read";
        }
    }
    return {};
}

std::string Field(std::string_view of, const Element& element) {
    std::string words = element.name + ": " + InWords(MeaningOf(of, element));
    if (element.kind == Element::Kind::Array) {
        words += " (" + std::to_string(element.width) + " of " + element.type + ")";
    } else if (element.kind == Element::Kind::Bytes) {
        words += " (at most " + std::to_string(element.width) + ")";
    } else if (element.kind == Element::Kind::Ports) {
        words += " (at most " + std::to_string(element.width) + " ports)";
    } else if (element.type != "string" && element.kind != Element::Kind::Record) {
        words += " (" + element.type + ")";
    }
    return Wrapped(words, "    ", kLineWidth);
}

// A record or the result of a function: its type, and the shape by which it is read.
std::string Writer::Class(const std::string& name, std::string_view of, const std::string& title,
                          const std::vector<Element>& elements, const std::string& members) const {
    std::string code = "\n\nclass " + name + "(NamedTuple):\n    \"\"\"" + title + "\n\n";
    for (const Element& element : elements) code += Field(of, element);
    code += "    \"\"\"\n\n";
    for (const Element& element : elements) {
        code += "    " + element.name + ": " + TypeOf(element) + "\n";
    }
    code += members + "\n\n" + name + "_Shape = Shape(" + name + ", (\n";
    for (const Element& element : elements) {
        code += "    (\"" + element.name + "\", " + ReaderOf(element) + "),\n";
    }
    return code + "))\n";
}

void NameRecords(const std::vector<Element>& elements, RecordNames& records) {
    for (const Element& element : elements) {
        if (element.kind != Element::Kind::Record) continue;
        // What is inside comes first, because the outer one names it.
        NameRecords(element.children, records);
        records.NameOf(element);
    }
}

const char* KindName(Child::Kind kind) {
    switch (kind) {
        case Child::Kind::Number:
            return "NUMBER";
        case Child::Kind::Numbers:
            return "NUMBERS";
        case Child::Kind::Text:
        case Child::Kind::WholeText:
            return "TEXT";
    }
    return "";
}

std::string ArgumentOf(const FunctionText& function, const Child& child) {
    switch (child.kind) {
        case Child::Kind::Number:
            // Without a request for a list there is none, and a page of this many always fits.
            if (function.paged && child.name == "requestType") return "int = 1";
            if (function.paged && child.name == "numRequested") return "int = PAGE";
            return "int = 0";
        case Child::Kind::Numbers:
            return "Sequence[int] = ()";
        case Child::Kind::Text:
        case Child::Kind::WholeText:
            return "str = \"\"";
    }
    return {};
}

std::string RoomOf(const Child& child) {
    std::string bits = std::to_string(child.bits) + " bits";
    switch (child.kind) {
        case Child::Kind::Number:
            return bits;
        case Child::Kind::Numbers:
            return "at most " + std::to_string(child.count) + ", " + bits + " each";
        case Child::Kind::Text:
        case Child::Kind::WholeText:
            return "at most " + std::to_string(child.count) + " bytes";
    }
    return {};
}

std::vector<Child> Asked(const FunctionText& function) {
    std::vector<Child> asked;
    for (const Child& child : function.children) {
        if (IsAsked(function, child)) asked.push_back(child);
    }
    return asked;
}

// A status is no part of the result: where it is not 0, there is none.
std::vector<Element> Answered(const FunctionText& function) {
    std::vector<Element> answered = function.elements;
    if (HasStatus(function)) {
        std::erase_if(answered, [](const Element& element) { return element.name == "RetVal"; });
    }
    return answered;
}

std::string ResultName(const FunctionText& function) { return function.name + "_Result"; }

std::string ListedBy(const FunctionText& function) {
    for (const Element& element : function.elements) {
        if (element.repeats) return element.name;
    }
    return {};
}

std::string Result(const FunctionText& function, const Writer& writer) {
    const std::vector<Element> answered = Answered(function);
    if (answered.empty()) return {};
    std::string members;
    if (function.paged) {
        for (const Element& element : answered) {
            if (!element.repeats) continue;
            members = "\n    @property\n    def records(self) -> " + writer.TypeOf(element) +
                      ":\n        \"\"\"The entries of this page.\"\"\"\n        return self." +
                      ListedBy(function) + "\n";
        }
    }
    return writer.Class(ResultName(function), function.name, "What " + function.name + " answers.",
                        answered, members);
}

std::string Row(const FunctionText& function) {
    std::string code = "    \"" + function.name + "\": Function(\n        \"" + function.name +
                       "\", " + (HasStatus(function) ? "True" : "False") + ", " +
                       (Answered(function).empty() ? "None" : ResultName(function) + "_Shape") +
                       ", (";
    for (const Child& child : Asked(function)) {
        code += "\n            Parameter(\"" + child.name + "\", Kind." + KindName(child.kind) +
                ", " + std::to_string(child.bits) + ", " + std::to_string(child.count) + "),";
    }
    return code + (Asked(function).empty() ? ")),\n" : "\n        )),\n");
}

std::string Method(const FunctionText& function) {
    const std::vector<Child> asked = Asked(function);
    const std::string result = Answered(function).empty() ? "None" : ResultName(function);
    std::string code = "\n    def " + function.name + "(\n        self,\n";
    if (!asked.empty()) code += "        *,\n";
    for (const Child& child : asked) {
        code += "        " + child.name + ": " + ArgumentOf(function, child) + ",\n";
    }
    code += "    ) -> " + result + ":\n        \"\"\"Calls " + function.name +
            (result == "None" ? "." : " and returns what it answers.") + "\n";
    if (!asked.empty()) code += "\n";
    for (const Child& child : asked) {
        code += Wrapped(child.name + ": " + InWords(MeaningOf(function.name, child)) + " (" +
                            RoomOf(child) + ")",
                        "        ", kLineWidth);
    }
    code += "        \"\"\"\n        ";
    if (result != "None") code += "answer: " + result + " = ";
    code += "self._ask(FUNCTIONS[\"" + function.name + "\"], {";
    for (const Child& child : asked) {
        code += "\n            \"" + child.name + "\": " + child.name + ",";
    }
    code += asked.empty() ? "})\n" : "\n        })\n";
    if (result != "None") code += "        return answer\n";
    return code;
}

std::string Refusals() {
    std::string code =
        "\n\n# What the status of these controllers means; others have codes of their own.\n"
        "CONTROLLERS = (\n";
    for (const std::string_view controller : {hxcodes::kVirtualController, hxcodes::kLinuxMd}) {
        code += "    \"" + std::string(controller) + "\",\n";
    }
    code += ")\nREFUSALS = {\n";
    for (const hxcodes::RefusalText& refusal : hxcodes::OwnCodes().refusals) {
        code += "    " + std::to_string(refusal.code) + ": (\"" + std::string(refusal.name) +
                "\", \"" + std::string(refusal.sentence) + "\"),\n";
    }
    return code + "}\n";
}

}  // namespace

Python PythonSources(const std::vector<Chapter>& chapters) {
    RecordNames names;
    const Writer writer(names, "records.");
    std::string results;
    std::string rows = "\n\nFUNCTIONS = {\n";
    std::string methods =
        "\n\nclass Functions(Asking):\n"
        "    \"\"\"A method for each function of the library.\n\n"
        "    Parameters that are left out are 0 or empty, as the library has them.\n"
        "    \"\"\"\n";
    for (const Chapter& chapter : chapters) {
        for (const FunctionText& function : chapter.functions) {
            NameRecords(function.elements, names);
            results += Result(function, writer);
            rows += Row(function);
            methods += Method(function);
        }
    }
    std::string records = std::string(kWritten) + kRecordsHead;
    const Writer own(names, "");
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto [name, record] = names[i];
        const std::string type_name = RecordTypeName(record);
        records += own.Class(name, type_name, "The record " + type_name + ".", record.children, "");
    }
    return {.records = records,
            .functions = std::string(kWritten) + kFunctionsHead + results + rows + "}\n" + methods +
                         Refusals()};
}

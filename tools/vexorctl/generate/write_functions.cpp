// Writes what the library's rows say of its functions as C++, to standard output, while vexorctl is
// built: so neither can say anything else than the library does.
//
// usage: write_functions table | fields
//   table   functions.cpp: the functions with their parameters, as data
//   fields  library_fields.h: a type for each function and each record, with a constant for each
//           parameter and field
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "describe.h"

namespace {

std::vector<FunctionText> AllFunctions() {
    std::vector<FunctionText> functions = DescribeFunctions();
    for (FunctionText& function : DescribeManagement()) functions.push_back(std::move(function));
    return functions;
}

// ---- The table --------------------------------------------------------------------------------

const char* KindName(Child::Kind kind) {
    switch (kind) {
        case Child::Kind::Number:
            return "kNumber";
        case Child::Kind::Numbers:
            return "kNumbers";
        case Child::Kind::Text:
            return "kText";
        case Child::Kind::WholeText:
            return "kWholeText";
    }
    return "";
}

// HX_API_Version answers a text in RetVal, not a status.
bool HasStatus(const FunctionText& function) {
    for (const Element& element : function.elements) {
        if (element.name == "RetVal") return element.type != "string";
    }
    return false;
}

// Without any digit or character of a value.
std::size_t LeastBytes(const Element& element, std::size_t depth) {
    constexpr std::size_t kIndentation = 2;
    const bool may_be_missing =
        element.kind == Element::Kind::Bytes || element.kind == Element::Kind::Ports;
    if (may_be_missing) return 0;
    const std::size_t tags =
        std::strlen("< type=\"\"></>\n") + 2 * element.name.size() + element.type.size();
    std::size_t bytes = kIndentation * depth + tags;
    for (const Element& child : element.children) bytes += LeastBytes(child, depth + 1);
    return bytes;
}

// The list of a function whose caller says how many records it wants, and the parameter that says
// it.
struct ListText {
    const char* wanted = "";
    std::size_t least_record = 0;
};
ListText ListOf(const FunctionText& function) {
    ListText list;
    for (const Child& child : function.children) {
        if (child.name == "numRequested" || child.name == "n") list.wanted = child.name.c_str();
    }
    for (const Element& element : function.elements) {
        if (element.repeats && *list.wanted != '\0') list.least_record = LeastBytes(element, 1);
    }
    return list;
}

void WriteTable(const std::vector<FunctionText>& functions) {
    std::puts(
        "#include \"model/library_functions.h\"\n\nnamespace vexorctl {\n\nnamespace {\n\n"
        "using enum FieldRow::Kind;\n\nconstexpr FieldRow kFields[] = {");
    for (const FunctionText& function : functions) {
        for (const Child& child : function.children) {
            std::printf("    {\"%s\", %s, %u, %zu},\n", child.name.c_str(), KindName(child.kind),
                        child.bits, child.count);
        }
    }
    std::puts("};\n\nconstexpr FunctionRow kFunctions[] = {");
    std::size_t first = 0;
    for (const FunctionText& function : functions) {
        const ListText list = ListOf(function);
        std::printf("    {\"%s\", {kFields + %zu, %zu}, %s, %s, \"%s\", %zu},\n",
                    function.name.c_str(), first, function.children.size(),
                    HasStatus(function) ? "true" : "false", function.paged ? "true" : "false",
                    list.wanted, list.least_record);
        first += function.children.size();
    }
    std::puts(
        "};\n\n}  // namespace\n\n"
        "std::span<const FunctionRow> Functions() { return kFunctions; }\n\n"
        "const FunctionRow* FindFunction(std::string_view name) {\n"
        "    for (const FunctionRow& row : kFunctions) {\n"
        "        if (row.name == name) return &row;\n"
        "    }\n"
        "    return nullptr;\n"
        "}\n\n}  // namespace vexorctl");
}

// ---- The fields -------------------------------------------------------------------------------

// "LD_Info" of "struct LD_Info".
std::string RecordName(const Element& element) {
    return element.type.substr(std::strlen("struct "));
}

// C++ allows no member with the name of its class.
std::string MemberName(const std::string& name, std::string_view owner) {
    return name == owner ? name + "_" : name;
}

std::string FieldType(const Element& element, const std::string& owner) {
    switch (element.kind) {
        case Element::Kind::Scalar:
            return (element.type == "string" ? "TextField<" : "NumberField<") + owner + ">";
        case Element::Kind::Hex:
            return "TextField<" + owner + ">";
        case Element::Kind::Array:
        case Element::Kind::Bytes:
        case Element::Kind::Ports:
            return "NumbersField<" + owner + ">";
        case Element::Kind::Record:
            return (element.repeats ? "ListField<" : "RecordField<") + owner +
                   ", fields::" + RecordName(element) + ">";
    }
    return {};
}

void WriteField(const Element& element, const std::string& owner, const char* indent) {
    const std::string type = FieldType(element, owner);
    const std::string member = MemberName(element.name, owner);
    if (element.kind != Element::Kind::Ports) {
        std::printf("%sstatic constexpr %s %s{\"%s\"};\n", indent, type.c_str(), member.c_str(),
                    element.name.c_str());
        return;
    }
    for (std::size_t port = 0; port < element.width; ++port) {
        std::printf("%sstatic constexpr %s %s%zu{\"%s%zu\"};\n", indent, type.c_str(),
                    member.c_str(), port, element.name.c_str(), port);
    }
}

// All records by name. Records of one name share one type, which has the fields of all of them.
// Inner records come first, because the outer ones use them.
struct Records {
    std::vector<std::string> order;
    std::map<std::string, std::vector<Element>> fields;

    void Add(const std::vector<Element>& elements) {
        for (const Element& element : elements) {
            if (element.kind != Element::Kind::Record) continue;
            Add(element.children);
            const std::string name = RecordName(element);
            if (!fields.contains(name)) order.push_back(name);
            for (const Element& child : element.children) AddField(fields[name], child);
        }
    }

private:
    static void AddField(std::vector<Element>& known, const Element& field) {
        for (const Element& each : known) {
            if (each.name == field.name) return;
        }
        known.push_back(field);
    }
};

void WriteFields(const std::vector<FunctionText>& functions) {
    std::puts(
        "// Written by write_functions while building, from the library's rows.\n#pragma once\n\n"
        "#include <string_view>\n\n#include \"model/library_record.h\"\n\n"
        "namespace vexorctl::fields {\n");
    Records records;
    for (const FunctionText& function : functions) records.Add(function.elements);
    for (const std::string& name : records.order) std::printf("struct %s;\n", name.c_str());
    for (const std::string& name : records.order) {
        std::printf("\nstruct %s {\n", name.c_str());
        for (const Element& field : records.fields[name]) WriteField(field, name, "    ");
        std::puts("};");
    }
    std::puts("\n}  // namespace vexorctl::fields\n\nnamespace vexorctl::calls {");
    for (const FunctionText& function : functions) {
        const std::string& name = function.name;
        std::printf("\nstruct %s {\n    static constexpr std::string_view kName = \"%s\";\n",
                    name.c_str(), name.c_str());
        for (const Child& child : function.children) {
            std::printf("    static constexpr Parameter<%s> %s{\"%s\"};\n", name.c_str(),
                        MemberName(child.name, name).c_str(), child.name.c_str());
        }
        std::printf("    struct Result {\n        using Function = %s;\n", name.c_str());
        for (const Element& element : function.elements) WriteField(element, "Result", "        ");
        std::puts("    };\n};");
    }
    std::puts("\n}  // namespace vexorctl::calls");
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc == 2 ? argv[1] : "";
    if (what == "table") {
        WriteTable(AllFunctions());
    } else if (what == "fields") {
        WriteFields(AllFunctions());
    } else {
        std::fputs("usage: write_functions table | fields\n", stderr);
        return 2;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}

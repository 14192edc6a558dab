// Writes the table of the library's functions and their fields as a C++ source, to standard output.
// It runs while vexorctl is built: so the table is always what the library's rows say.
#include <cstdio>

#include "describe.h"

namespace {

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

}  // namespace

int main() {
    std::vector<FunctionText> functions = DescribeFunctions();
    for (FunctionText& function : DescribeManagement()) functions.push_back(std::move(function));
    std::puts(
        "#include \"model/library_functions.h\"\n\nnamespace vexorctl {\n\nnamespace {\n\nusing "
        "enum FieldRow::Kind;\n\n"
        "constexpr FieldRow kFields[] = {");
    for (const FunctionText& function : functions) {
        for (const Child& child : function.children) {
            std::printf("    {\"%s\", %s, %u, %zu},\n", child.name.c_str(), KindName(child.kind),
                        child.bits, child.count);
        }
    }
    std::puts("};\n\nconstexpr FunctionRow kFunctions[] = {");
    std::size_t first = 0;
    for (const FunctionText& function : functions) {
        std::printf("    {\"%s\", {kFields + %zu, %zu}},\n", function.name.c_str(), first,
                    function.children.size());
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
    return std::fflush(stdout) == 0 ? 0 : 1;
}

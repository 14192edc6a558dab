// bindings/php/vexorapi_functions.cpp.
#include "php_tables.h"

#include <map>

#include "codes/code_table.h"
#include "codes/identity.h"
#include "record_names.h"
#include "words.h"

namespace {

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

const char* ParameterKind(Child::Kind kind) {
    switch (kind) {
        case Child::Kind::Number:
            return "kNumber";
        case Child::Kind::Numbers:
            return "kNumbers";
        case Child::Kind::Text:
        case Child::Kind::WholeText:
            return "kText";
    }
    return "";
}

const char* RowKind(const Element& element) {
    switch (element.kind) {
        case Element::Kind::Scalar:
            return element.type == "string" ? "kText"
                   : element.type == "BOOL" ? "kFlag"
                                            : "kNumber";
        case Element::Kind::Hex:
            return "kHexadecimal";
        case Element::Kind::Array:
            return "kNumbers";
        case Element::Kind::Bytes:
            return "kBytes";
        case Element::Kind::Ports:
            return "kPorts";
        case Element::Kind::Record:
            return element.repeats ? "kList" : "kRecord";
    }
    return "";
}

// The shapes and their rows, each record once, what is inside before what it is in.
class ShapeTable {
public:
    std::size_t Add(const std::vector<Element>& elements) {
        std::string rows;
        for (const Element& element : elements) {
            const bool is_record = element.kind == Element::Kind::Record;
            const std::size_t shape = is_record ? OfRecord(element) : 0;
            rows += "    {" + Quoted(element.name) + ", " + RowKind(element) + ", " +
                    std::to_string(shape) + "},\n";
        }
        rows_ += rows;
        shapes_ +=
            "    {" + std::to_string(row_count_) + ", " + std::to_string(elements.size()) + "},\n";
        row_count_ += elements.size();
        return shape_count_++;
    }

    const std::string& rows() const { return rows_; }
    const std::string& shapes() const { return shapes_; }

private:
    std::size_t OfRecord(const Element& record) {
        const std::string name = names_.NameOf(record);
        if (const auto known = records_.find(name); known != records_.end()) return known->second;
        const std::size_t shape = Add(record.children);
        records_[name] = shape;
        return shape;
    }

    RecordNames names_;
    std::map<std::string, std::size_t> records_;
    std::string rows_;
    std::string shapes_;
    std::size_t row_count_ = 0;
    std::size_t shape_count_ = 0;
};

}  // namespace

std::string PhpFunctions(const std::vector<Chapter>& chapters) {
    ShapeTable shapes;
    std::string parameters;
    std::string functions;
    std::size_t first = 0;
    for (const Chapter& chapter : chapters) {
        for (const FunctionText& function : chapter.functions) {
            const bool has_status = HasStatus(function);
            std::vector<Element> elements = function.elements;
            if (has_status) {
                std::erase_if(elements, [](const Element& each) { return each.name == "RetVal"; });
            }
            std::size_t count = 0;
            for (const Child& child : function.children) {
                if (!IsAsked(function, child)) continue;
                parameters += "    {" + Quoted(child.name) +
                              ", Parameter::Kind::" + ParameterKind(child.kind) + ", " +
                              std::to_string(child.bits) + ", " + std::to_string(child.count) +
                              "},\n";
                ++count;
            }
            functions += "    {" + Quoted(function.name) + ", " + (has_status ? "true" : "false") +
                         ", " + std::to_string(shapes.Add(elements)) + ", {kParameters + " +
                         std::to_string(first) + ", " + std::to_string(count) + "}},\n";
            first += count;
        }
    }
    std::string code =
        "// Written by the program tools/xmlapi from the library's rows: change those, then run\n"
        "// `xmlapi docs`. A test fails when this file is out of date.\n"
        "// clang-format off\n"
        "#include \"vexorapi_functions.h\"\n\n"
        "namespace vexorapi_php {\n\nnamespace {\n\nusing enum Row::Kind;\n\n"
        "constexpr Row kRows[] = {\n" +
        shapes.rows() + "};\n\nconstexpr Shape kShapes[] = {\n" + shapes.shapes() +
        "};\n\nconstexpr Parameter kParameters[] = {\n" + parameters +
        "};\n\nconstexpr Function kFunctions[] = {\n" + functions +
        "};\n\nconstexpr Refusal kRefusals[] = {\n";
    for (const hxcodes::RefusalText& refusal : hxcodes::OwnCodes().refusals) {
        code += "    {" + std::to_string(refusal.code) + ", " + Quoted(refusal.name) + ", " +
                Quoted(refusal.sentence) + "},\n";
    }
    code += "};\n\nconstexpr const char* kControllers[] = {\n";
    for (const std::string_view controller : {hxcodes::kVirtualController, hxcodes::kLinuxMd}) {
        code += "    " + Quoted(controller) + ",\n";
    }
    return code +
           "};\n\n}  // namespace\n\n"
           "std::span<const Row> Rows() { return kRows; }\n"
           "std::span<const Shape> Shapes() { return kShapes; }\n"
           "std::span<const Function> Functions() { return kFunctions; }\n"
           "std::span<const Refusal> Refusals() { return kRefusals; }\n"
           "std::span<const char* const> Controllers() { return kControllers; }\n\n"
           "}  // namespace vexorapi_php\n";
}

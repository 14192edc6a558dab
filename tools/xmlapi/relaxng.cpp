// docs/vexorapi-results.rng.
#include "relaxng.h"

#include <map>
#include <stdexcept>

namespace {

std::string Indent(int depth) { return std::string(2 * static_cast<std::size_t>(depth), ' '); }

// The XML Schema datatype of a number of the result grammar.
std::string Datatype(const Element& element) {
    static const std::map<std::string, std::string> kDatatypes = {
        {"U8", "unsignedByte"},   {"BOOL", "unsignedByte"},       {"HX_U8", "unsignedByte"},
        {"U16", "unsignedShort"}, {"HX_BOOLEAN", "unsignedByte"}, {"HX_U16", "unsignedShort"},
        {"U32", "unsignedInt"},   {"HX_U32", "unsignedInt"},      {"U64", "unsignedLong"},
    };
    const auto found = kDatatypes.find(element.type);
    if (found == kDatatypes.end()) throw std::runtime_error("no datatype for " + element.type);
    return found->second;
}

std::string Attribute(int depth, const std::string& name, const std::string& value) {
    return Indent(depth) + "<attribute name=\"" + name + "\"><value type=\"string\">" + value +
           "</value></attribute>\n";
}

class Schema {
public:
    void AddFunction(const FunctionText& function) {
        functions_ += Indent(1) + "<define name=\"" + function.name + "\">\n" + Indent(2) +
                      "<element name=\"" + function.name + "\">\n" +
                      Attribute(3, "type", "function") + Pattern(function.elements, 3) + Indent(2) +
                      "</element>\n" + Indent(1) + "</define>\n";
        choices_ += Indent(3) + "<ref name=\"" + function.name + "\"/>\n";
    }

    std::string Text() const {
        std::string text =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!-- Written by the program tools/xmlapi from the functions' rows: the grammar of "
            "every "
            "result. -->\n"
            "<grammar xmlns=\"http://relaxng.org/ns/structure/1.0\"\n"
            "         datatypeLibrary=\"http://www.w3.org/2001/XMLSchema-datatypes\">\n"
            "  <start>\n    <choice>\n" +
            choices_ + "    </choice>\n  </start>\n" + functions_;
        for (const auto& [content, name] : records_) {
            text += Indent(1) + "<define name=\"" + name + "\">\n" + content + Indent(1) +
                    "</define>\n";
        }
        return text + "</grammar>\n";
    }

private:
    std::string Pattern(const std::vector<Element>& elements, int depth) {
        std::string text;
        for (const Element& element : elements) {
            if (element.repeats) {
                text += Indent(depth) + "<zeroOrMore>\n" + Pattern(element, depth + 1) +
                        Indent(depth) + "</zeroOrMore>\n";
            } else {
                text += Pattern(element, depth);
            }
        }
        return text;
    }

    std::string Pattern(const Element& element, int depth) {
        switch (element.kind) {
            case Element::Kind::Ports:
                return Ports(element, depth);
            case Element::Kind::Bytes:
                return Bytes(element, depth);
            case Element::Kind::Record:
                return WithLine(element, "<ref name=\"" + RecordName(element) + "\"/>\n", depth);
            case Element::Kind::Array:
                return Whole(element, Items(element, element.width, depth + 1), depth);
            case Element::Kind::Hex:
                return WithLine(
                    element,
                    "<data type=\"string\"><param name=\"pattern\">[0-9a-f]{1,4}</param></data>\n",
                    depth);
            case Element::Kind::Scalar:
                return WithLine(element,
                                element.type == "string"
                                    ? "<text/>\n"
                                    : "<data type=\"" + Datatype(element) + "\"/>\n",
                                depth);
        }
        return {};
    }

    static std::string WithLine(const Element& element, const std::string& content, int depth) {
        return Whole(element, Indent(depth + 1) + content, depth);
    }

    static std::string Whole(const Element& element, const std::string& content, int depth) {
        return Indent(depth) + "<element name=\"" + element.name + "\">\n" +
               Attribute(depth + 1, "type", element.type) + content + Indent(depth) +
               "</element>\n";
    }

    static std::string Items(const Element& element, std::size_t width, int depth) {
        return Attribute(depth, "width", std::to_string(width)) + Indent(depth) +
               "<list><oneOrMore><data type=\"" + Datatype(element) + "\"/></oneOrMore></list>\n";
    }

    static std::string Bytes(const Element& element, int depth) {
        return Indent(depth) + "<optional>\n" + Indent(depth + 1) + "<element name=\"" +
               element.name + "\">\n" + Attribute(depth + 2, "type", element.type) +
               Indent(depth + 2) +
               "<attribute name=\"width\"><data type=\"unsignedByte\"/></attribute>\n" +
               Indent(depth + 2) + "<list><oneOrMore><data type=\"" + Datatype(element) +
               "\"/></oneOrMore></list>\n" + Indent(depth + 1) + "</element>\n" + Indent(depth) +
               "</optional>\n";
    }

    // Ports are numbered from 0 without gaps, so each is optional within the one before it.
    static std::string Ports(const Element& element, int depth) {
        std::string open;
        std::string close;
        for (std::size_t port = 0; port < element.width; ++port) {
            const int at = depth + static_cast<int>(port);
            open += Indent(at) + "<optional>\n" + Indent(at + 1) + "<element name=\"" +
                    element.name + std::to_string(port) + "\">\n" +
                    Attribute(at + 2, "type", element.type) + Items(element, 8, at + 2) +
                    Indent(at + 1) + "</element>\n";
            close = Indent(at) + "</optional>\n" + close;
        }
        return open + close;
    }

    // The name under which a record's content is defined. Two records share a type name and differ
    // in the widths of their fields, so a name is the type's, numbered from the second on.
    std::string RecordName(const Element& record) {
        const std::string content = Pattern(record.children, 2);
        if (const auto known = records_.find(content); known != records_.end()) {
            return known->second;
        }
        std::string name = record.type.substr(std::string("struct ").size());
        const int number = ++numbers_[name];
        if (number > 1) name += "_" + std::to_string(number);
        records_[content] = "struct." + name;
        return "struct." + name;
    }

    std::string functions_;
    std::string choices_;
    std::map<std::string, std::string> records_;  // content to name
    std::map<std::string, int> numbers_;
};

}  // namespace

std::string RelaxNg(const std::vector<Chapter>& chapters) {
    Schema schema;
    for (const Chapter& chapter : chapters) {
        for (const FunctionText& function : chapter.functions) schema.AddFunction(function);
    }
    return schema.Text();
}

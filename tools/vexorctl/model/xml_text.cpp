#include "model/xml_text.h"

#include <expat.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "common/utf8.h"

namespace vexorctl {

namespace {

using vexortools::TakeUtf8;
using vexortools::Utf8Character;

using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

// The parser is C: nothing may be thrown through it, so no callback allocates.
struct Inspector {
    XML_Parser parser;
    XmlInspection& found;
    unsigned declarations = 0;
    bool in_root = false;
};

void NoteElement(void* user_data, const XML_Char* name, const XML_Char** atts) {
    Inspector& inspector = *static_cast<Inspector*>(user_data);
    if (inspector.in_root) return;
    inspector.in_root = true;
    inspector.found.root.assign(name, std::min(std::strlen(name), kLongestName));
    for (; *atts != nullptr; atts += 2) {
        if (std::strcmp(atts[0], "type") == 0) {
            inspector.found.root_is_function = std::strcmp(atts[1], "function") == 0;
        }
    }
}

void CountDeclaration(void* user_data) {
    Inspector& inspector = *static_cast<Inspector*>(user_data);
    if (++inspector.declarations > kMaxDeclarations) {
        inspector.found.too_many_declarations = true;
        XML_StopParser(inspector.parser, XML_FALSE);
    }
}

void EntityDeclaration(void* user_data, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                       const XML_Char*, const XML_Char*, const XML_Char*) {
    CountDeclaration(user_data);
}

void ElementDeclaration(void* user_data, const XML_Char*, XML_Content* model) {
    XML_FreeContentModel(static_cast<Inspector*>(user_data)->parser, model);
    CountDeclaration(user_data);
}

void AttributeDeclaration(void* user_data, const XML_Char*, const XML_Char*, const XML_Char*,
                          const XML_Char*, int) {
    CountDeclaration(user_data);
}

void NotationDeclaration(void* user_data, const XML_Char*, const XML_Char*, const XML_Char*,
                         const XML_Char*) {
    CountDeclaration(user_data);
}

struct Collector {
    std::vector<std::pair<std::string, std::string>> attributes;
    unsigned depth = 0;
    bool out_of_memory = false;
};

void CollectAttributes(void* user_data, const XML_Char* name, const XML_Char** atts) {
    Collector& collector = *static_cast<Collector*>(user_data);
    if (++collector.depth != 2) return;
    try {
        for (; *atts != nullptr; atts += 2) {
            if (std::strcmp(atts[0], "type") == 0) continue;
            collector.attributes.emplace_back(std::string(name) + "." + atts[0], atts[1]);
        }
    } catch (...) {
        collector.out_of_memory = true;
    }
}

void LeaveElement(void* user_data, const XML_Char*) { --static_cast<Collector*>(user_data)->depth; }

// `special` are the characters that have to be written as references.
void AppendEscaped(std::string& out, std::string_view text, std::string_view special) {
    for (const char c : text) {
        if (special.find(c) == std::string_view::npos) {
            out += c;
            continue;
        }
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += "&#" + std::to_string(static_cast<unsigned char>(c)) + ";";
        }
    }
}

}  // namespace

XmlInspection InspectXml(std::string_view text) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    XmlInspection found;
    found.root.reserve(kLongestName);
    Inspector inspector{parser.get(), found};
    XML_SetUserData(parser.get(), &inspector);
    XML_SetStartElementHandler(parser.get(), NoteElement);
    XML_SetEntityDeclHandler(parser.get(), EntityDeclaration);
    XML_SetElementDeclHandler(parser.get(), ElementDeclaration);
    XML_SetAttlistDeclHandler(parser.get(), AttributeDeclaration);
    XML_SetNotationDeclHandler(parser.get(), NotationDeclaration);

    if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) ==
        XML_STATUS_OK) {
        found.well_formed = true;
        return found;
    }
    const XML_Error error = XML_GetErrorCode(parser.get());
    if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    found.line = XML_GetCurrentLineNumber(parser.get());
    found.reason = XML_ErrorString(error);
    return found;
}

bool IsXmlName(std::string_view text) {
    // Anything but a name between "<" and "/>" either is no XML or is not the whole root's name.
    if (text.size() > kLongestName) return false;
    const XmlInspection inspection = InspectXml("<" + std::string(text) + "/>");
    return inspection.well_formed && inspection.root == text;
}

void AppendXmlStart(std::string& out, std::string_view name, const XmlAttributeList& attributes) {
    out.append("<").append(name);
    for (const auto& [attribute, value] : attributes) {
        out.append(" ").append(attribute).append("=\"");
        // A parser reads a bare tab or line end in an attribute as a blank.
        AppendEscaped(out, value, "&<>\"\t\n\r");
        out += '"';
    }
    out += '>';
}

void AppendXmlElement(std::string& out, std::string_view name, std::string_view text,
                      const XmlAttributeList& attributes) {
    AppendXmlStart(out, name, attributes);
    // A parser reads a bare carriage return as a line feed.
    AppendEscaped(out, text, "&<>\r");
    out.append("</").append(name).append(">");
}

std::string XmlSafe(std::string_view text) {
    std::string safe;
    while (!text.empty()) {
        const Utf8Character character = TakeUtf8(text);
        const char32_t code = character.code;
        const bool is_blank = code == '\t' || code == '\n' || code == '\r';
        if (!character.is_valid || code == 0xFFFE || code == 0xFFFF) {
            safe += "\xEF\xBF\xBD";
        } else if (code < ' ' && !is_blank) {
            safe += '?';
        } else {
            safe += character.bytes;
        }
    }
    return safe;
}

std::vector<std::pair<std::string, std::string>> XmlAttributes(std::string_view text) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    Collector collector;
    XML_SetUserData(parser.get(), &collector);
    XML_SetElementHandler(parser.get(), CollectAttributes, LeaveElement);
    XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
    if (collector.out_of_memory) throw std::bad_alloc();
    return std::move(collector.attributes);
}

}  // namespace vexorctl

#include "model/xml_text.h"

#include <expat.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

namespace {

using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

// The parser is C: nothing may be thrown through it, so no callback allocates.
struct Inspector {
    XML_Parser parser;
    XmlInspection& found;
    unsigned declarations = 0;
    bool in_root = false;
};

void StartElement(void* user_data, const XML_Char* name, const XML_Char** atts) {
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

}  // namespace

XmlInspection InspectXml(std::string_view text) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    XmlInspection found;
    found.root.reserve(kLongestName);
    Inspector inspector{parser.get(), found};
    XML_SetUserData(parser.get(), &inspector);
    XML_SetStartElementHandler(parser.get(), StartElement);
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

void AppendXmlElement(std::string& out, std::string_view name, std::string_view text) {
    out.append("<").append(name).append(">");
    for (const char c : text) {
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
            case '\r':
                out += "&#13;";
                break;  // bare, it would be read as a line feed
            default:
                out += c;
        }
    }
    out.append("</").append(name).append(">");
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

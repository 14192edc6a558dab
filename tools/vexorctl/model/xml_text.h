// Looks into XML texts with the parser that the library itself uses, so that both agree on what is
// well-formed and what is a name.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vexorctl {

// The library stops a command with more declarations than this in its document type: chains of
// entities could overflow the stack of older parsers. It stops at the same place here.
inline constexpr unsigned kMaxDeclarations = 256;

// A name longer than this is cut, and is no name that an element should have.
inline constexpr std::size_t kLongestName = 1023;

/// What InspectXml finds. Of a text that is not well-formed, `line` and `reason` tell where and why
/// parsing ended.
struct XmlInspection {
    bool well_formed = false;
    bool too_many_declarations = false;  // stopped for that; not well_formed then
    unsigned long line = 0;              // counted from 1
    std::string reason;                  // the parser's own words
    std::string root;                    // the root element's name, cut to kLongestName
    bool root_is_function = false;       // its attribute type is "function"
};

/// Parses the text, which must not be longer than INT_MAX bytes.
/// Throws std::bad_alloc when the parser has no memory.
XmlInspection InspectXml(std::string_view text);

/// Whether an element may have this name, which is at most kLongestName bytes long.
bool IsXmlName(std::string_view text);

using XmlAttributeList = std::vector<std::pair<std::string_view, std::string>>;

/// Appends <name attribute="value">text</name>, escaped so that a parser gives back exactly the
/// text and the values. What XML cannot hold is the caller's to keep out.
void AppendXmlElement(std::string& out, std::string_view name, std::string_view text,
                      const XmlAttributeList& attributes = {});

/// Appends the start tag alone: <name attribute="value">.
void AppendXmlStart(std::string& out, std::string_view name, const XmlAttributeList& attributes);

/// The text with a "?" in the place of each control character that XML 1.0 cannot hold, and U+FFFD
/// in that of every other thing that it cannot: bytes that are not UTF-8, U+FFFE and U+FFFF.
std::string XmlSafe(std::string_view text);

/// The attributes of the root's children, but for "type", as ELEMENT.ATTRIBUTE with their values,
/// in order. The text must be well-formed, or empty. Throws std::bad_alloc.
std::vector<std::pair<std::string, std::string>> XmlAttributes(std::string_view text);

}  // namespace vexorctl

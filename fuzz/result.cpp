// vexorctl's reader of results, beside the parser's own view of the same bytes.
#include <expat.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "model/result_tree.h"
#include "model/xml_text.h"
#include "targets.h"

namespace {

using vexorctl::Value;
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

constexpr std::size_t kMostDeep = 66;

struct Count {
    std::size_t elements = 0, depth = 0, deepest = 0;
};

void Start(void* user_data, const XML_Char*, const XML_Char**) {
    Count& count = *static_cast<Count*>(user_data);
    ++count.elements;
    count.deepest = std::max(count.deepest, ++count.depth);
}
void End(void* user_data, const XML_Char*) { --static_cast<Count*>(user_data)->depth; }

// Whether the parser takes all of it, and how many elements it sees.
bool IsWellFormed(std::string_view text, Count& count) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    XML_SetUserData(parser.get(), &count);
    XML_SetElementHandler(parser.get(), Start, End);
    return XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) ==
           XML_STATUS_OK;
}

std::size_t Elements(const Value& value, std::size_t depth, std::size_t& deepest) {
    deepest = std::max(deepest, depth);
    std::size_t elements = 1;
    for (const Value& child : value.children) elements += Elements(child, depth + 1, deepest);
    return elements;
}

const char* LookAt(const Value& value) {
    const auto number = value.Number();
    const auto numbers = value.Numbers();
    if (number && (!numbers || numbers->size() != 1)) return "a number is no list of one";
    if (numbers && value.text.find_first_not_of("0123456789 \t\r\n") != std::string::npos) {
        return "numbers were read from something else";
    }
    for (const Value& child : value.children) {
        if (const char* const wrong = LookAt(child)) return wrong;
        if (value.Find(child.name) == nullptr) return "a child is not found";
    }
    return nullptr;
}

}  // namespace

const char* FuzzResult(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Count count;
    const bool well_formed = IsWellFormed(text, count);
    const vexorctl::ParsedResult parsed = vexorctl::ParseResult(text);
    std::size_t deepest = 0;
    const std::size_t elements = Elements(parsed.root, 1, deepest);
    if (deepest > kMostDeep) return "the tree is too deep for its destructor";
    if (well_formed && count.deepest <= 64) {
        if (!parsed.well_formed) return "a well-formed result was refused";
        if (elements != count.elements) return "elements were lost";
    }
    if (!parsed.well_formed && parsed.reason.empty()) return "a result was refused without reason";
    if (const char* const wrong = LookAt(parsed.root)) return wrong;

    // Any text at all can be put into a document and is read back.
    const std::string safe = vexorctl::XmlSafe(text);
    std::string document;
    vexorctl::AppendXmlElement(document, "r", "|" + safe + "|", {{"a", safe}});
    const vexorctl::ParsedResult read = vexorctl::ParseResult(document);
    if (!read.well_formed) return "a text that was made safe is not";
    return read.root.text == "|" + safe + "|" ? nullptr : "a text was read back otherwise";
}

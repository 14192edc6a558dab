#include "result.h"

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

namespace {

using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

// In these functions' results RetVal is a number, but a count and a constant instead of a status.
constexpr std::string_view kRetValIsNoStatus[] = {
    "HX_Adapter_GetCount",
    "VX_HX_EVT_GetChangeCounters",
};

constexpr std::size_t kLongestFunctionName = 63;

// The parser is C: nothing may be thrown through it, so no callback allocates.
struct Reader {
    ResultSummary& summary;
    unsigned depth = 0;      // elements open
    bool in_status = false;  // the element open is the root's RetVal
    char digits[11] = {};    // its text; an unsigned of 32 bits has ten digits at most
    std::size_t length = 0;
};

bool IsText(const XML_Char** atts) {
    for (; *atts != nullptr; atts += 2) {
        if (std::strcmp(atts[0], "type") == 0) return std::strcmp(atts[1], "string") == 0;
    }
    return false;
}

void StartElement(void* user_data, const XML_Char* name, const XML_Char** atts) {
    Reader& reader = *static_cast<Reader*>(user_data);
    if (reader.depth == 0) {
        reader.summary.function.assign(name, std::min(std::strlen(name), kLongestFunctionName));
    }
    reader.in_status = reader.depth == 1 && std::strcmp(name, "RetVal") == 0 && !IsText(atts);
    reader.length = 0;
    ++reader.depth;
}

void CharacterData(void* user_data, const XML_Char* text, int length) {
    Reader& reader = *static_cast<Reader*>(user_data);
    if (!reader.in_status) return;
    const std::size_t taken =
        std::min(static_cast<std::size_t>(length), sizeof(reader.digits) - reader.length);
    std::memcpy(reader.digits + reader.length, text, taken);
    reader.length += taken;
}

void EndElement(void* user_data, const XML_Char*) {
    Reader& reader = *static_cast<Reader*>(user_data);
    --reader.depth;
    if (!reader.in_status) return;
    reader.in_status = false;
    unsigned status;
    const char* const end = reader.digits + reader.length;
    const auto [stop, error] = std::from_chars(reader.digits, end, status);
    if (error == std::errc() && stop == end) reader.summary.status = status;
}

}  // namespace

ResultSummary Summarize(std::string_view result) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    ResultSummary summary;
    summary.function.reserve(kLongestFunctionName);
    Reader reader{summary};
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), StartElement, EndElement);
    XML_SetCharacterDataHandler(parser.get(), CharacterData);

    if (XML_Parse(parser.get(), result.data(), static_cast<int>(result.size()), XML_TRUE) ==
        XML_STATUS_OK) {
        summary.well_formed = true;
    } else {
        const XML_Error error = XML_GetErrorCode(parser.get());
        if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
        summary.line = XML_GetCurrentLineNumber(parser.get());
        summary.reason = XML_ErrorString(error);
    }
    if (std::ranges::find(kRetValIsNoStatus, summary.function) != std::end(kRetValIsNoStatus)) {
        summary.status.reset();
    }
    return summary;
}

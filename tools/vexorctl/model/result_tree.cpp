#include "model/result_tree.h"

#include <expat.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "model/result_repair.h"

namespace vexorctl {

namespace {

using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

constexpr std::string_view kBlanks = " \t\r\n";

// No result is nested deeper than four elements. A deeper one is cut off, because the destructor of
// Value is recursive.
constexpr std::size_t kMaxDepth = 64;

struct Builder {
    XML_Parser parser;
    Value document;            // its only child is the root
    std::vector<Value*> open;  // a parent grows only while its last child is closed
    bool out_of_memory = false;
};

// The parser is C: nothing may be thrown through it.
template <class Action>
void Guarded(Builder& builder, Action action) {
    if (builder.out_of_memory) return;
    try {
        action();
    } catch (...) {
        builder.out_of_memory = true;
        XML_StopParser(builder.parser, XML_FALSE);
    }
}

void StartElement(void* user_data, const XML_Char* name, const XML_Char** atts) {
    Builder& builder = *static_cast<Builder*>(user_data);
    if (builder.open.size() > kMaxDepth) {
        XML_StopParser(builder.parser, XML_FALSE);
        return;
    }
    Guarded(builder, [&] {
        Value& value = builder.open.back()->children.emplace_back();
        builder.open.push_back(&value);
        value.name = name;
        for (; *atts != nullptr; atts += 2) {
            if (std::strcmp(atts[0], "type") == 0) value.type = atts[1];
        }
    });
}

void CharacterData(void* user_data, const XML_Char* text, int length) {
    Builder& builder = *static_cast<Builder*>(user_data);
    Guarded(builder,
            [&] { builder.open.back()->text.append(text, static_cast<std::size_t>(length)); });
}

void EndElement(void* user_data, const XML_Char*) {
    Builder& builder = *static_cast<Builder*>(user_data);
    if (builder.out_of_memory) return;
    std::string& text = builder.open.back()->text;
    const std::size_t last = text.find_last_not_of(kBlanks);
    text.erase(last == std::string::npos ? 0 : last + 1);
    text.erase(0, text.find_first_not_of(kBlanks));
    builder.open.pop_back();
}

}  // namespace

const Value* Value::Find(std::string_view child) const {
    for (const Value& each : children) {
        if (each.name == child) return &each;
    }
    return nullptr;
}

std::optional<std::uint64_t> Value::Number() const {
    const auto numbers = Numbers();
    if (!numbers || numbers->size() != 1) return std::nullopt;
    return numbers->front();
}

std::optional<std::vector<std::uint64_t>> Value::Numbers() const {
    std::vector<std::uint64_t> numbers;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at < end) {
        std::uint64_t number = 0;
        const auto [stop, error] = std::from_chars(at, end, number);
        const bool ends = stop == end || kBlanks.find(*stop) != std::string_view::npos;
        if (error != std::errc() || !ends) return std::nullopt;
        numbers.push_back(number);
        at = stop;
        while (at < end && kBlanks.find(*at) != std::string_view::npos) ++at;
    }
    return numbers;
}

namespace {

ParsedResult Parse(std::string_view result) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    Builder builder{.parser = parser.get(), .document = {}, .open = {}};
    builder.open.push_back(&builder.document);
    XML_SetUserData(parser.get(), &builder);
    XML_SetElementHandler(parser.get(), StartElement, EndElement);
    XML_SetCharacterDataHandler(parser.get(), CharacterData);
    ParsedResult parsed;
    parsed.well_formed = XML_Parse(parser.get(), result.data(), static_cast<int>(result.size()),
                                   XML_TRUE) == XML_STATUS_OK;
    if (!parsed.well_formed) {
        const XML_Error error = XML_GetErrorCode(parser.get());
        if (builder.out_of_memory || error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
        // A number that was cut off would look like another number.
        for (Value* const open : builder.open) open->text.clear();
        parsed.line = XML_GetCurrentLineNumber(parser.get());
        parsed.reason = XML_ErrorString(error);
    }
    if (!builder.document.children.empty()) {
        parsed.root = std::move(builder.document.children.front());
    }
    return parsed;
}

}  // namespace

ParsedResult ParseResult(std::string_view result) {
    ParsedResult parsed = Parse(result);
    if (parsed.well_formed) return parsed;
    ParsedResult repaired = Parse(Repaired(result));
    return repaired.well_formed ? std::move(repaired) : std::move(parsed);
}

}  // namespace vexorctl

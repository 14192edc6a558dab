#include "output/record_cells.h"

#include <cstdio>

#include "codes/named.h"

namespace vexorctl {

namespace {

std::string HexBytes(const std::vector<std::uint64_t>& bytes) {
    std::string text;
    for (const std::uint64_t byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02X", static_cast<unsigned>(byte & 0xFF));
        text += digits;
    }
    return text;
}

const Value* Last(const Value& value, std::string_view path) {
    const Value* at = &value;
    while (at != nullptr && !path.empty()) {
        const std::size_t slash = path.find('/');
        at = at->Find(path.substr(0, slash));
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
    }
    return at;
}

}  // namespace

Cell NumberAt(const Value& value, std::string_view path) {
    const Value* const at = Last(value, path);
    return at == nullptr ? Unknown() : NumberCell(at->Number(""));
}

Cell SectorsAt(const Value& value, std::string_view path) {
    const Value* const at = Last(value, path);
    return at == nullptr ? Unknown() : SectorsCell(at->Number(""));
}

Cell TextAt(const Value& value, std::string_view path) {
    const Value* const at = Last(value, path);
    return at == nullptr ? Unknown() : TextCell(at->text);
}

Cell CodeAt(const Value& value, std::string_view path, std::span<const hxcodes::Named> names) {
    const Value* const at = Last(value, path);
    return at == nullptr ? Unknown() : CodeCell(names, at->Number(""));
}

Cell BitsAt(const Value& value, std::string_view path, std::span<const hxcodes::Named> names) {
    const Value* const at = Last(value, path);
    return at == nullptr ? Unknown() : BitsCell(names, at->Number(""));
}

Cell WwnAt(const Value& value, std::string_view path) {
    const Value* const at = Last(value, path);
    return at == nullptr ? Unknown() : TextCell(HexBytes(at->Numbers("")));
}

Cell VersionAt(const Value& value, std::string_view path) {
    const Value* const at = Last(value, path);
    if (at == nullptr) return Unknown();
    std::string text;
    for (const Value& part : at->children) text += (text.empty() ? "" : ".") + part.text;
    return TextCell(std::move(text));
}

Cell NumbersAt(const Value& value, std::string_view path, std::uint64_t count) {
    const Value* const at = Last(value, path);
    if (at == nullptr) return Unknown();
    return NumbersCell(at->Numbers("", count));
}

}  // namespace vexorctl

// A result of the library as a tree of its elements.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vexorctl {

struct Value {
    std::string name;
    std::string type;
    std::string text;  // of an element without children; blanks around it are cut
    std::vector<Value> children;

    /// The first child of that name; null when there is none.
    const Value* Find(std::string_view child) const;
    /// The text as a number; null when it is none.
    std::optional<std::uint64_t> Number() const;
    /// The text as numbers with blanks between them; null when it is anything else.
    std::optional<std::vector<std::uint64_t>> Numbers() const;
};

struct ParsedResult {
    Value root;
    bool well_formed = false;
    unsigned long line = 0;  // where and why reading ended, when it is not well-formed
    std::string reason;
};

/// Reads the result. One whose texts XML cannot carry is read with U+FFFD for each byte that is
/// forbidden, and is well-formed then. Of one that is not well-formed the tree holds what stands
/// before the break; elements that it cuts have no text. Throws std::bad_alloc.
ParsedResult ParseResult(std::string_view result);

}  // namespace vexorctl

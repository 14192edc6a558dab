// A result of the library as a tree of its elements.
#pragma once

#include <cstdint>
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
    /// The same by a path, as in "Link/Self/DevID"; 0, "" or nothing where the path ends early or
    /// the text is no number.
    std::uint64_t Number(std::string_view path) const;
    std::string Text(std::string_view path) const;
    std::vector<std::uint64_t> Numbers(std::string_view path) const;
    /// The same, the first `count` of them at most.
    std::vector<std::uint64_t> Numbers(std::string_view path, std::uint64_t count) const;

private:
    const Value* At(std::string_view path) const;
};

struct ParsedResult {
    Value root;
    bool well_formed = false;
    unsigned long line = 0;  // where and why reading ended, when it is not well-formed
    std::string reason;
};

/// Reads the result. Of one that is not well-formed the tree holds what stands before the break;
/// elements that it cuts have no text.
/// Throws std::bad_alloc.
ParsedResult ParseResult(std::string_view result);

}  // namespace vexorctl

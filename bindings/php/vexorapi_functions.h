// What the extension knows of the library's functions: rows that are written from the library's own
// ones (vexorapi_functions.cpp).
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace vexorapi_php {

// A parameter of a function.
struct Parameter {
    enum class Kind { kNumber, kNumbers, kText };
    const char* name;
    Kind kind;
    unsigned bits;     // of each number
    std::size_t most;  // numbers, or bytes of a text
};

// An element of a record.
struct Row {
    enum class Kind {
        kNumber,
        kHexadecimal,
        kFlag,
        kText,
        kNumbers,
        kBytes,   // left out when there are none
        kPorts,   // one for each port, with its number behind the name
        kRecord,  // of the shape `shape`
        kList,    // any number of such records
    };
    std::string_view name;  // with a NUL behind it
    Kind kind;
    std::size_t shape;
};

struct Function {
    const char* name;
    bool has_status;  // RetVal says why a call was refused, and is no part of the result
    std::size_t shape;
    std::span<const Parameter> parameters;
};

struct Refusal {
    unsigned code;
    const char* name;
    const char* sentence;
};

/// Every row of every shape: the rows of a shape follow one another.
std::span<const Row> Rows();
/// The place of a shape's rows among all.
struct Shape {
    std::size_t first;
    std::size_t count;
};
std::span<const Shape> Shapes();
std::span<const Function> Functions();

/// The codes of the controllers whose version ends with one of Controllers().
std::span<const Refusal> Refusals();
std::span<const char* const> Controllers();

}  // namespace vexorapi_php

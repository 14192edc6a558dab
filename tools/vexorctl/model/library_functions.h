// The functions of the library and the parameters of each, as the library's own rows have them. The
// table is written by the build, by write_functions.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace vexorctl {

struct FieldRow {
    enum class Kind { kNumber, kNumbers, kText, kWholeText };
    std::string_view name;
    Kind kind;
    unsigned bits;      // of each number
    std::size_t count;  // numbers, or characters of a text
};

struct FunctionRow {
    std::string_view name;
    std::span<const FieldRow> fields;
    bool has_status;                // its result has a RetVal that is a number
    bool is_paged;                  // it begins with a paging header
    std::string_view wanted_field;  // says how many records are wanted; empty: no list
    std::size_t least_record;       // no record of its list takes fewer bytes of a result
};

/// All of them: the controller's, then the management functions.
std::span<const FunctionRow> Functions();

/// The function of that name; null when there is none.
const FunctionRow* FindFunction(std::string_view name);

}  // namespace vexorctl

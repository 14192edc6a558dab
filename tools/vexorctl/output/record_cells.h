// Cells from the library's records: unknown where the record has no such element.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "model/result_tree.h"
#include "output/cell.h"

namespace vexorctl {

Cell NumberAt(const Value& value, std::string_view path);
Cell SectorsAt(const Value& value, std::string_view path);
Cell TextAt(const Value& value, std::string_view path);
Cell CodeAt(const Value& value, std::string_view path, std::span<const hxcodes::Named> names);
Cell BitsAt(const Value& value, std::string_view path, std::span<const hxcodes::Named> names);
/// Eight bytes as sixteen hexadecimal digits.
Cell WwnAt(const Value& value, std::string_view path);
/// "4.1.0.1350"
Cell VersionAt(const Value& value, std::string_view path);
/// The first `count` numbers of an array.
Cell NumbersAt(const Value& value, std::string_view path, std::uint64_t count);

}  // namespace vexorctl

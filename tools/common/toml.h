// Reads TOML into a flat list of values. toml++ does the work; its headers cost a compiler ten
// seconds, so only the source of this header includes them.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vexortools {

/// A value that is of no type below, such as a date.
struct OtherTomlValue {};
/// A table without keys.
struct EmptyTomlTable {};

struct TomlValue {
    std::string key;  // with the tables around it: "collect.interval"
    unsigned line = 0;
    std::variant<bool, std::int64_t, double, std::string, std::vector<std::string>, EmptyTomlTable,
                 OtherTomlValue>
        value;
};

/// The text is no TOML.
struct TomlError : std::runtime_error {
    TomlError(unsigned at, const std::string& reason) : std::runtime_error(reason), line(at) {}
    unsigned line;
};

/// All values, in the order of the text. Throws TomlError.
std::vector<TomlValue> ParseToml(std::string_view text);

}  // namespace vexortools

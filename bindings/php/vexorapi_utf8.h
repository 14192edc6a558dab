// UTF-8, as far as XML carries it.
#pragma once

#include <cstddef>
#include <string_view>

namespace vexorapi_php {

struct Utf8Character {
    std::size_t length;  // in bytes, at least 1
    bool is_allowed;     // it is a character, and XML can carry it
};

/// The first character of the text, which is not empty.
Utf8Character FirstCharacter(std::string_view text);

}  // namespace vexorapi_php

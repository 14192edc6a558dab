// What a condition is of: the thing itself, told apart from whatever else stands at its address.
#pragma once

#include <string>
#include <string_view>

#include "conditions/hxc_rows.h"

namespace hxconditions {

inline constexpr unsigned kNoNumber = 0xFFFFFFFF;

struct Object {
    Kind kind = Kind::kMachine;
    unsigned adapter = kNoNumber;
    unsigned id = 0;
    unsigned element = 0;
    std::string address;  // "a0/vd0"; empty where there is none
    std::string name;     // as it came from outside, harmless
    std::string serial;
    // Equal for the same thing wherever it is, for ever: made of what the thing itself says.
    std::string identity;
    // False where the thing says nothing of itself and the identity is only its address.
    bool is_known = true;
    std::string adapter_identity;

    bool operator==(const Object&) const = default;
};

/// "a0", "a0/vd1", ....
std::string AddressOf(unsigned adapter);
std::string AddressOf(unsigned adapter, Kind kind, unsigned id);

/// Whether both are the same thing, as far as it can be known.
bool IsSameThing(const Object& left, const Object& right);

/// Whether the second stands where the first did and is another thing.
bool IsReplacedBy(const Object& old, const Object& now);

/// "DATA (a0/vd0)", "a0/pd5", or the name alone where there is no address.
std::string TitleOf(const Object& object);

/// A text from outside: control characters, line ends and bars as "?", blanks at its ends gone.
std::string Harmless(std::string_view text);

}  // namespace hxconditions

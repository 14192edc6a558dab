// The object of a condition, distinguished from other objects that get the same address.
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
    std::string name;     // from outside, made harmless
    std::string serial;
    // Identifies the object permanently and wherever it is; made from its own data.
    std::string identity;
    // False when the object reports no identifying data and the identity is only its address.
    bool is_known = true;
    std::string adapter_identity;

    bool operator==(const Object&) const = default;
};

/// "a0", "a0/vd1", ....
std::string AddressOf(unsigned adapter);
std::string AddressOf(unsigned adapter, Kind kind, unsigned id);

/// Whether both are the same object, as far as can be known.
bool IsSameThing(const Object& left, const Object& right);

/// Whether a different object now has the address of the old one.
bool IsReplacedBy(const Object& old, const Object& now);

/// "DATA (a0/vd0)", "a0/pd5", or only the name when there is no address.
std::string TitleOf(const Object& object);

/// Makes a text from outside harmless: replaces control characters, line ends and "|" by "?", trims
/// blanks.
std::string Harmless(std::string_view text);

}  // namespace hxconditions

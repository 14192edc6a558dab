// The values of a JSON text, as a tree.
//
// The JSON library's own tree allocates in its destructor, so that a process without memory would
// end there; only its parser is used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace hxsim {

struct TopologyMember;

/// One value. A topology uses only whole numbers from 0 on; other numbers are not kept.
struct TopologyValue {
    struct OtherNumber {};
    using List = std::vector<TopologyValue>;
    using Object = std::vector<TopologyMember>;  // sorted by name, without duplicates

    std::variant<std::nullptr_t, bool, std::uint64_t, OtherNumber, std::string, List, Object> held;

    // Copied by Assign alone: g++ 12 destroys what was never made when the copy of a variant of
    // only such types throws.
    TopologyValue() = default;
    TopologyValue(TopologyValue&&) = default;
    TopologyValue& operator=(TopologyValue&&) = default;

    /// Null when the value is of another type.
    template <class Type>
    const Type* As() const {
        return std::get_if<Type>(&held);
    }
    /// The object's member; null when there is none of that name, or the value is no object.
    const TopologyValue* Find(std::string_view name) const;

    void Assign(const TopologyValue& other);
    /// Applies a patch: members of objects one by one, every other value as a whole. A null in the
    /// patch removes the member.
    void Merge(const TopologyValue& patch);
    void Erase(std::string_view name);
};

struct TopologyMember {
    std::string name;
    TopologyValue value;
};

/// Throws TopologyError when the text is no JSON.
TopologyValue ParseTopology(std::string_view text);

}  // namespace hxsim

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

/// One value. A number that is no whole one from 0 on is of no use to a topology, and not kept.
struct TopologyValue {
    struct OtherNumber {};
    using List = std::vector<TopologyValue>;
    using Object =
        std::vector<TopologyMember>;  // ordered by their names, each of which is there once

    std::variant<std::nullptr_t, bool, std::uint64_t, OtherNumber, std::string, List, Object> held;

    // Copied by Assign alone: g++ 12 destroys what was never made when the copy of a variant of
    // only such types throws.
    TopologyValue() = default;
    TopologyValue(TopologyValue&&) = default;
    TopologyValue& operator=(TopologyValue&&) = default;

    /// Nothing when it is of another type.
    template <class Type>
    const Type* As() const {
        return std::get_if<Type>(&held);
    }
    /// The object's member; nothing when it has none of that name, or is no object.
    const TopologyValue* Find(std::string_view name) const;

    void Assign(const TopologyValue& other);
    /// Takes what the patch names: members of objects one by one, everything else as a whole. What
    /// is null in the patch is taken away.
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

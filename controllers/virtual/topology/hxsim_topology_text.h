// The JSON text of a topology, read member by member.
//
// An unknown member is an error like a wrong value: it is most likely misspelt, and the machine
// would not be the intended one.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "codes/named.h"
#include "hxraid.h"
#include "topology/hxsim_topology_value.h"

namespace hxsim {

/// An object of the text; records which of its members were read.
class TopologyObject {
public:
    using Visit = std::function<void(TopologyObject& object)>;

    /// `where` is the object's place in the text; empty for the text itself.
    TopologyObject(const TopologyValue& object, std::string where);

    /// Throws the TopologyError that names the member and the expected value.
    [[noreturn]] void Refuse(std::string_view member, const std::string& expected) const;

    /// Reads the member. When it is left out, keeps the value and returns false.
    template <class Value>
    bool Take(const char* member, Value& value) {
        const TopologyValue* const found = Find(member);
        if (found == nullptr) return false;
        Read(*found, Where(member), value);
        return true;
    }
    template <class Value>
    void TakeNeeded(const char* member, Value& value, const std::string& expected = "a value") {
        Read(Need(member, expected), Where(member), value);
    }
    template <class Row, class... Columns>
    void TakeAll(const std::tuple<Columns...>& columns, Row& row) {
        std::apply([&](const Columns&... column) { (Take(column.name, row.*column.field), ...); },
                   columns);
    }

    /// Reads a code by its name.
    template <hxcodes::CodeEnum Code>
    void TakeCode(const char* member, Code& code) {
        const auto number = TakeNamed(member, hxcodes::NamesOf<Code>());
        if (number) code = static_cast<Code>(*number);
    }
    template <hxcodes::CodeEnum Code>
    Code NeedCode(const char* member, const std::string& expected) {
        return static_cast<Code>(NeedNamed(member, expected, hxcodes::NamesOf<Code>()));
    }
    /// Reads a list of codes by their names; nothing when it is left out.
    template <hxcodes::CodeEnum Code>
    std::optional<std::vector<Code>> TakeCodes(const char* member) {
        const auto numbers = TakeAllNamed(member, hxcodes::NamesOf<Code>());
        if (!numbers) return std::nullopt;
        std::vector<Code> codes;
        for (const HX_U32 number : *numbers) codes.push_back(static_cast<Code>(number));
        return codes;
    }

    /// A nested object, for which the caller calls Finish; nothing when it is left out.
    std::optional<TopologyObject> TakeObject(const char* member);
    TopologyObject NeedObject(const char* member, const std::string& expected);

    /// Visits each object of a list and calls its Finish.
    void ForEach(const char* member, const Visit& visit);
    /// The same for a required list of 1 to `most` objects. An object that is `like` an earlier one
    /// takes the members from there that it does not name itself; a null removes a member.
    void ForEachLike(const char* member, std::size_t most, const std::string& expected,
                     const Visit& visit);

    /// Refuses members that were never read, as unknown.
    void Finish() const;

private:
    static void Read(const TopologyValue& read, const std::string& where, bool& value);
    static void Read(const TopologyValue& read, const std::string& where, std::string& value);
    static void Read(const TopologyValue& read, const std::string& where, Version_Info& version);
    static void Read(const TopologyValue& read, const std::string& where,
                     Version_Info_CIM& version);
    static void Read(const TopologyValue& read, const std::string& where,
                     std::vector<HX_U16>& values);
    template <std::unsigned_integral Value>
    static void Read(const TopologyValue& read, const std::string& where, Value& value) {
        value = static_cast<Value>(Number(read, where, std::numeric_limits<Value>::max()));
    }
    static std::uint64_t Number(const TopologyValue& read, const std::string& where,
                                std::uint64_t most);
    template <class Version, class Part>
    static void ReadVersion(const TopologyValue& read, const std::string& where, Version& version,
                            std::initializer_list<Part Version::*> parts);

    using Names = std::span<const hxcodes::Named>;
    std::optional<HX_U32> TakeNamed(const char* member, Names names);
    HX_U32 NeedNamed(const char* member, const std::string& expected, Names names);
    std::optional<std::vector<HX_U32>> TakeAllNamed(const char* member, Names names);

    std::string Where(std::string_view member) const;
    const TopologyValue* Find(const char* member);
    const TopologyValue& Need(const char* member, const std::string& expected);

    const TopologyValue& object_;
    const std::string where_;
    std::set<std::string_view> known_;
};

/// A parsed text.
class TopologyText {
public:
    /// Throws TopologyError when the text is no JSON.
    explicit TopologyText(std::string_view text);

    TopologyObject Root() const;

private:
    const TopologyValue value_;
};

}  // namespace hxsim

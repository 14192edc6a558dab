// What the objects of a plan looked like when they were first read, and what they look like when
// they are read again. Their numbers do not tell: the next object of a kind gets the number of the
// one that went.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codes/named.h"
#include "common/address.h"
#include "model/result_tree.h"

namespace vexorctl {

/// One thing by which an object is known again; its text is "unknown" when it was not read.
struct Fact {
    std::string_view label;  // "name", as in "its name was"
    std::string text;
    bool is_shown = true;  // settings are compared, but there are too many of them to show
};

Fact TextFact(std::string_view label, const std::optional<std::string>& text);
Fact NumberFact(std::string_view label, std::optional<std::uint64_t> number);
Fact NumbersFact(std::string_view label, const std::optional<std::vector<std::uint64_t>>& numbers);
Fact SizeFact(std::string_view label, std::optional<std::uint64_t> sectors);
Fact CodeFact(std::string_view label, std::optional<std::uint64_t> code,
              std::span<const hxcodes::Named> names);
/// All fields of a record of settings.
Fact SettingsFact(const Value& record);

struct Sighting {
    std::vector<Fact> facts;
    std::vector<vexortools::Address> related;  // what changes with it
};

class Sightings {
public:
    /// Of an object, by its address or what else it is called. Of each look the first one stays.
    void Note(const std::string& object, Sighting sighting);

    /// Whatever is noted from here on is the second look.
    void LookAgain();

    /// At the first look; null when it was not seen.
    const Sighting* First(const std::string& object) const;

    /// How the object of the second look differs from that of the first, as in "a0/vd0: its name
    /// was data1 and is data2"; empty when it does not.
    std::string Difference(const std::string& object) const;

    /// The same of the first look and one that was made before it.
    std::string DifferenceFrom(const std::string& object, const Sighting& before) const;

    /// The objects that either look saw and whose names begin so.
    std::set<std::string> Objects(std::string_view prefix) const;

private:
    std::map<std::string, Sighting> first_;
    std::optional<std::map<std::string, Sighting>> again_;
};

}  // namespace vexorctl

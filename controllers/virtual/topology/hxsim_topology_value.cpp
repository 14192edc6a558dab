// The values of a JSON text, as a tree.
#include "topology/hxsim_topology_value.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "topology/hxsim_topology_error.h"

namespace hxsim {
namespace {

using Json = nlohmann::json;

// Does not limit the depth of the tree.
constexpr std::size_t kMostLevels = 32;

template <class Members>
auto PlaceOf(Members& members, std::string_view name) {
    return std::ranges::lower_bound(members, name, {}, &TopologyMember::name);
}

// The member of that name, added as a null when missing.
TopologyValue& MemberNamed(TopologyValue::Object& members, std::string_view name) {
    auto place = PlaceOf(members, name);
    if (place == members.end() || place->name != name) {
        place = members.insert(place, TopologyMember{std::string(name), {}});
    }
    return place->value;
}

// Builds the tree from the parser's calls; the parser sets the names of the functions.
class Builder {
public:
    explicit Builder(TopologyValue& root) : root_(root) {}

    bool null() { return Keep(nullptr); }
    bool boolean(bool value) { return Keep(value); }
    bool number_unsigned(Json::number_unsigned_t value) { return Keep(std::uint64_t{value}); }
    bool number_integer(Json::number_integer_t) { return Keep(TopologyValue::OtherNumber{}); }
    bool number_float(Json::number_float_t, const std::string&) {
        return Keep(TopologyValue::OtherNumber{});
    }
    bool string(std::string& value) { return Keep(std::move(value)); }
    bool binary(Json::binary_t&) { return false; }  // JSON texts have none
    bool start_object(std::size_t) { return Begin(TopologyValue::Object{}); }
    bool start_array(std::size_t) { return Begin(TopologyValue::List{}); }
    bool end_object() { return End(); }
    bool end_array() { return End(); }
    bool key(std::string& name) {
        name_ = std::move(name);
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const Json::exception& error) {
        // The parser's message begins with its own name in brackets.
        const std::string_view what = error.what();
        const std::size_t behind = what.find("] ");
        throw TopologyError(
            "Topology: no JSON text: " +
            std::string(behind == std::string_view::npos ? what : what.substr(behind + 2)));
    }

private:
    // The place for the next value. Of two members of one name the later one counts.
    TopologyValue& Next() {
        if (open_.empty()) return root_;
        if (auto* const list = std::get_if<TopologyValue::List>(&open_.back()->held)) {
            return list->emplace_back();
        }
        return MemberNamed(std::get<TopologyValue::Object>(open_.back()->held), name_);
    }
    template <class Value>
    bool Keep(Value value) {
        Next().held = std::move(value);
        return true;
    }
    template <class Values>
    bool Begin(Values values) {
        if (open_.size() == kMostLevels) {
            throw TopologyError("Topology: lists and objects stand in each other more than " +
                                std::to_string(kMostLevels) + " deep.");
        }
        TopologyValue& value = Next();
        value.held = std::move(values);
        open_.push_back(&value);  // nothing is added beside it before it ends
        return true;
    }
    bool End() {
        open_.pop_back();
        return true;
    }

    TopologyValue& root_;
    std::vector<TopologyValue*> open_;
    std::string name_;  // of the member that comes next
};

}  // namespace

const TopologyValue* TopologyValue::Find(std::string_view name) const {
    const Object* const members = As<Object>();
    if (members == nullptr) return nullptr;
    const auto place = PlaceOf(*members, name);
    return place != members->end() && place->name == name ? &place->value : nullptr;
}

void TopologyValue::Assign(const TopologyValue& other) {
    if (const List* const values = other.As<List>()) {
        List& list = held.emplace<List>();
        for (const TopologyValue& value : *values) list.emplace_back().Assign(value);
    } else if (const Object* const members = other.As<Object>()) {
        Object& object = held.emplace<Object>();
        for (const TopologyMember& member : *members) {
            object.push_back({member.name, {}});
            object.back().value.Assign(member.value);
        }
    } else if (const auto* const text = other.As<std::string>()) {
        held = std::string(*text);
    } else if (const auto* const number = other.As<std::uint64_t>()) {
        held = *number;
    } else if (const auto* const truth = other.As<bool>()) {
        held = *truth;
    } else if (other.As<OtherNumber>() != nullptr) {
        held = OtherNumber{};
    } else {
        held = nullptr;
    }
}

void TopologyValue::Merge(const TopologyValue& patch) {
    const Object* const members = patch.As<Object>();
    if (members == nullptr) {
        Assign(patch);
        return;
    }
    if (As<Object>() == nullptr) held = Object{};
    for (const TopologyMember& member : *members) {
        if (member.value.As<std::nullptr_t>() != nullptr) {
            Erase(member.name);
        } else {
            MemberNamed(std::get<Object>(held), member.name).Merge(member.value);
        }
    }
}

void TopologyValue::Erase(std::string_view name) {
    std::erase_if(std::get<Object>(held),
                  [&](const TopologyMember& member) { return member.name == name; });
}

TopologyValue ParseTopology(std::string_view text) {
    TopologyValue root;
    Builder builder(root);
    Json::sax_parse(text, &builder);
    return root;
}

}  // namespace hxsim

// The JSON text of a topology, read member by member.
#include "topology/hxsim_topology_text.h"

#include <initializer_list>
#include <nlohmann/json.hpp>

#include "topology/hxsim_topology_error.h"

namespace hxsim {
namespace {

using Json = nlohmann::json;

[[noreturn]] void RefuseAt(const std::string& where, const std::string& expected) {
    throw TopologyError("Topology: " + where + ": expected " + expected + '.');
}

std::string Listed(std::span<const hxcodes::Named> names) {
    std::string list;
    for (const hxcodes::Named& each : names) {
        list += (list.empty() ? "\"" : ", \"") + std::string(each.name) + '"';
    }
    return list;
}

// A code by its name.
HX_U32 CodeOf(const Json& json, const std::string& where, std::span<const hxcodes::Named> names) {
    const hxcodes::Named* const found =
        json.is_string() ? hxcodes::FindName(names, json.get_ref<const std::string&>()) : nullptr;
    if (found == nullptr) RefuseAt(where, "one of " + Listed(names));
    return found->code;
}

std::string PlaceIn(const std::string& list, std::size_t i) {
    return list + '[' + std::to_string(i) + ']';
}

// The object with the members that it does not name of the one that it is like.
Json WithLike(const Json& list, const std::string& where, std::size_t i) {
    const Json& own = list[i];
    if (!own.is_object() || !own.contains("like")) return own;
    const Json& like = own["like"];
    const bool earlier = like.is_number_unsigned() && like.get<std::uint64_t>() < i;
    if (!earlier) {
        RefuseAt(PlaceIn(where, i) + ".like", "the number of an adapter before this one");
    }
    Json whole = WithLike(list, where, like.get<std::size_t>());
    whole.merge_patch(own);
    whole.erase("like");
    return whole;
}

Json Parse(std::string_view text) {
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) {
        // The parser's own name stands in brackets before what it has to say.
        const std::string_view what = error.what();
        const std::size_t behind = what.find("] ");
        throw TopologyError(
            "Topology: no JSON text: " +
            std::string(behind == std::string_view::npos ? what : what.substr(behind + 2)));
    }
}

}  // namespace

// ---- Values ----

std::uint64_t TopologyObject::Number(const Json& json, const std::string& where,
                                     std::uint64_t most) {
    const bool fits = json.is_number_unsigned() && json.get<std::uint64_t>() <= most;
    if (!fits) RefuseAt(where, "a whole number from 0 to " + std::to_string(most));
    return json.get<std::uint64_t>();
}

void TopologyObject::Read(const Json& json, const std::string& where, bool& value) {
    if (!json.is_boolean()) RefuseAt(where, "true or false");
    value = json.get<bool>();
}

void TopologyObject::Read(const Json& json, const std::string& where, std::string& value) {
    if (!json.is_string()) RefuseAt(where, "a text");
    value = json.get<std::string>();
}

template <class Version, class Part>
void TopologyObject::ReadVersion(const Json& json, const std::string& where, Version& version,
                                 std::initializer_list<Part Version::*> parts) {
    if (!json.is_array() || json.size() != parts.size()) RefuseAt(where, "a list of four numbers");
    std::size_t i = 0;
    for (const auto part : parts) Read(json[i++], where, version.*part);
}
void TopologyObject::Read(const Json& json, const std::string& where, Version_Info& version) {
    ReadVersion(json, where, version,
                {&Version_Info::VerMajor, &Version_Info::VerMinor, &Version_Info::VerOEM,
                 &Version_Info::VerBuild});
}
void TopologyObject::Read(const Json& json, const std::string& where, Version_Info_CIM& version) {
    ReadVersion(json, where, version,
                {&Version_Info_CIM::MajorVersion, &Version_Info_CIM::MinorVersion,
                 &Version_Info_CIM::RevisionNumber, &Version_Info_CIM::BuildNumber});
}

void TopologyObject::Read(const Json& json, const std::string& where, std::vector<HX_U16>& values) {
    if (!json.is_array()) RefuseAt(where, "a list");
    values.clear();
    for (std::size_t i = 0; i < json.size(); ++i) {
        Read(json[i], PlaceIn(where, i), values.emplace_back());
    }
}

// ---- Objects ----

TopologyObject::TopologyObject(const Json& json, std::string where)
    : json_(json), where_(std::move(where)) {
    if (!json.is_object()) RefuseAt(where_, "an object");
}

std::string TopologyObject::Where(std::string_view member) const {
    return where_.empty() ? std::string(member) : where_ + '.' + std::string(member);
}

void TopologyObject::Refuse(std::string_view member, const std::string& expected) const {
    RefuseAt(Where(member), expected);
}

const Json* TopologyObject::Find(const char* member) {
    known_.insert(member);
    const auto found = json_.find(member);
    return found == json_.end() ? nullptr : &*found;
}

const Json& TopologyObject::Need(const char* member, const std::string& expected) {
    const Json* const found = Find(member);
    if (found == nullptr) Refuse(member, expected + "; it is left out");
    return *found;
}

std::optional<HX_U32> TopologyObject::TakeNamed(const char* member, Names names) {
    const Json* const found = Find(member);
    if (found == nullptr) return std::nullopt;
    return CodeOf(*found, Where(member), names);
}

HX_U32 TopologyObject::NeedNamed(const char* member, const std::string& expected, Names names) {
    return CodeOf(Need(member, expected), Where(member), names);
}

std::optional<std::vector<HX_U32>> TopologyObject::TakeAllNamed(const char* member, Names names) {
    const Json* const found = Find(member);
    if (found == nullptr) return std::nullopt;
    if (!found->is_array()) Refuse(member, "a list of " + Listed(names));
    std::vector<HX_U32> codes;
    for (const Json& each : *found) codes.push_back(CodeOf(each, Where(member), names));
    return codes;
}

std::optional<TopologyObject> TopologyObject::TakeObject(const char* member) {
    const Json* const found = Find(member);
    if (found == nullptr) return std::nullopt;
    return TopologyObject(*found, Where(member));
}

TopologyObject TopologyObject::NeedObject(const char* member, const std::string& expected) {
    return {Need(member, expected), Where(member)};
}

void TopologyObject::ForEach(const char* member, const Visit& visit) {
    const Json* const list = Find(member);
    if (list == nullptr) return;
    if (!list->is_array()) Refuse(member, "a list of objects");
    for (std::size_t i = 0; i < list->size(); ++i) {
        TopologyObject each((*list)[i], PlaceIn(Where(member), i));
        visit(each);
        each.Finish();
    }
}

void TopologyObject::ForEachLike(const char* member, std::size_t most, const std::string& expected,
                                 const Visit& visit) {
    const Json& list = Need(member, expected);
    if (!list.is_array() || list.empty() || list.size() > most) Refuse(member, expected);
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Json own = WithLike(list, Where(member), i);
        TopologyObject each(own, PlaceIn(Where(member), i));
        visit(each);
        each.Finish();
    }
}

void TopologyObject::Finish() const {
    for (const auto& [name, value] : json_.items()) {
        if (known_.contains(name)) continue;
        std::string members;
        for (const std::string_view each : known_) {
            members += (members.empty() ? "" : ", ") + std::string(each);
        }
        Refuse(name, "one of the members " + members);
    }
}

// ---- Texts ----

TopologyText::TopologyText(std::string_view text)
    : json_(std::make_unique<const Json>(Parse(text))) {}
TopologyText::~TopologyText() = default;

TopologyObject TopologyText::Root() const { return {*json_, ""}; }

}  // namespace hxsim

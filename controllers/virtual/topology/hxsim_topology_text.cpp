// The JSON text of a topology, read member by member.
#include "topology/hxsim_topology_text.h"

#include <initializer_list>

#include "topology/hxsim_topology_error.h"

namespace hxsim {
namespace {

using Values = TopologyValue::List;

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
HX_U32 CodeOf(const TopologyValue& value, const std::string& where,
              std::span<const hxcodes::Named> names) {
    const auto* const name = value.As<std::string>();
    const hxcodes::Named* const found = name != nullptr ? hxcodes::FindName(names, *name) : nullptr;
    if (found == nullptr) RefuseAt(where, "one of " + Listed(names));
    return found->code;
}

std::string PlaceIn(const std::string& list, std::size_t i) {
    return list + '[' + std::to_string(i) + ']';
}

// The object, with the members that it leaves out taken from the object that it is `like`.
TopologyValue WithLike(const Values& list, const std::string& where, std::size_t i) {
    const TopologyValue& own = list[i];
    const TopologyValue* const like = own.Find("like");
    if (like == nullptr) {
        TopologyValue same;
        same.Assign(own);
        return same;
    }
    const auto* const earlier = like->As<std::uint64_t>();
    if (earlier == nullptr || *earlier >= i) {
        RefuseAt(PlaceIn(where, i) + ".like", "the number of an adapter before this one");
    }
    TopologyValue whole = WithLike(list, where, static_cast<std::size_t>(*earlier));
    whole.Merge(own);
    whole.Erase("like");
    return whole;
}

}  // namespace

// ---- Values ----

std::uint64_t TopologyObject::Number(const TopologyValue& read, const std::string& where,
                                     std::uint64_t most) {
    const auto* const number = read.As<std::uint64_t>();
    if (number == nullptr || *number > most) {
        RefuseAt(where, "a whole number from 0 to " + std::to_string(most));
    }
    return *number;
}

void TopologyObject::Read(const TopologyValue& read, const std::string& where, bool& value) {
    const auto* const truth = read.As<bool>();
    if (truth == nullptr) RefuseAt(where, "true or false");
    value = *truth;
}

void TopologyObject::Read(const TopologyValue& read, const std::string& where, std::string& value) {
    const auto* const text = read.As<std::string>();
    if (text == nullptr) RefuseAt(where, "a text");
    value = *text;
}

template <class Version, class Part>
void TopologyObject::ReadVersion(const TopologyValue& read, const std::string& where,
                                 Version& version, std::initializer_list<Part Version::*> parts) {
    const Values* const list = read.As<Values>();
    if (list == nullptr || list->size() != parts.size()) {
        RefuseAt(where, "a list of four numbers");
    }
    std::size_t i = 0;
    for (const auto part : parts) Read((*list)[i++], where, version.*part);
}
void TopologyObject::Read(const TopologyValue& read, const std::string& where,
                          Version_Info& version) {
    ReadVersion(read, where, version,
                {&Version_Info::VerMajor, &Version_Info::VerMinor, &Version_Info::VerOEM,
                 &Version_Info::VerBuild});
}
void TopologyObject::Read(const TopologyValue& read, const std::string& where,
                          Version_Info_CIM& version) {
    ReadVersion(read, where, version,
                {&Version_Info_CIM::MajorVersion, &Version_Info_CIM::MinorVersion,
                 &Version_Info_CIM::RevisionNumber, &Version_Info_CIM::BuildNumber});
}

void TopologyObject::Read(const TopologyValue& read, const std::string& where,
                          std::vector<HX_U16>& values) {
    const Values* const list = read.As<Values>();
    if (list == nullptr) RefuseAt(where, "a list");
    values.clear();
    for (std::size_t i = 0; i < list->size(); ++i) {
        Read((*list)[i], PlaceIn(where, i), values.emplace_back());
    }
}

// ---- Objects ----

TopologyObject::TopologyObject(const TopologyValue& object, std::string where)
    : object_(object), where_(std::move(where)) {
    if (object.As<TopologyValue::Object>() == nullptr) RefuseAt(where_, "an object");
}

std::string TopologyObject::Where(std::string_view member) const {
    return where_.empty() ? std::string(member) : where_ + '.' + std::string(member);
}

void TopologyObject::Refuse(std::string_view member, const std::string& expected) const {
    RefuseAt(Where(member), expected);
}

const TopologyValue* TopologyObject::Find(const char* member) {
    known_.insert(member);
    return object_.Find(member);
}

const TopologyValue& TopologyObject::Need(const char* member, const std::string& expected) {
    const TopologyValue* const found = Find(member);
    if (found == nullptr) Refuse(member, expected + "; it is left out");
    return *found;
}

std::optional<HX_U32> TopologyObject::TakeNamed(const char* member, Names names) {
    const TopologyValue* const found = Find(member);
    if (found == nullptr) return std::nullopt;
    return CodeOf(*found, Where(member), names);
}

HX_U32 TopologyObject::NeedNamed(const char* member, const std::string& expected, Names names) {
    return CodeOf(Need(member, expected), Where(member), names);
}

std::optional<std::vector<HX_U32>> TopologyObject::TakeAllNamed(const char* member, Names names) {
    const TopologyValue* const found = Find(member);
    if (found == nullptr) return std::nullopt;
    const Values* const list = found->As<Values>();
    if (list == nullptr) Refuse(member, "a list of " + Listed(names));
    std::vector<HX_U32> codes;
    for (const TopologyValue& each : *list) codes.push_back(CodeOf(each, Where(member), names));
    return codes;
}

std::optional<TopologyObject> TopologyObject::TakeObject(const char* member) {
    const TopologyValue* const found = Find(member);
    if (found == nullptr) return std::nullopt;
    return TopologyObject(*found, Where(member));
}

TopologyObject TopologyObject::NeedObject(const char* member, const std::string& expected) {
    return {Need(member, expected), Where(member)};
}

void TopologyObject::ForEach(const char* member, const Visit& visit) {
    const TopologyValue* const found = Find(member);
    if (found == nullptr) return;
    const Values* const list = found->As<Values>();
    if (list == nullptr) Refuse(member, "a list of objects");
    for (std::size_t i = 0; i < list->size(); ++i) {
        TopologyObject each((*list)[i], PlaceIn(Where(member), i));
        visit(each);
        each.Finish();
    }
}

void TopologyObject::ForEachLike(const char* member, std::size_t most, const std::string& expected,
                                 const Visit& visit) {
    const Values* const list = Need(member, expected).As<Values>();
    if (list == nullptr || list->empty() || list->size() > most) Refuse(member, expected);
    for (std::size_t i = 0; i < list->size(); ++i) {
        const TopologyValue own = WithLike(*list, Where(member), i);
        TopologyObject each(own, PlaceIn(Where(member), i));
        visit(each);
        each.Finish();
    }
}

void TopologyObject::Finish() const {
    for (const auto& [name, value] : std::get<TopologyValue::Object>(object_.held)) {
        if (known_.contains(name)) continue;
        std::string members;
        for (const std::string_view each : known_) {
            members += (members.empty() ? "" : ", ") + std::string(each);
        }
        Refuse(name, "one of the members " + members);
    }
}

// ---- Texts ----

TopologyText::TopologyText(std::string_view text) : value_(ParseTopology(text)) {}

TopologyObject TopologyText::Root() const { return {value_, ""}; }

}  // namespace hxsim

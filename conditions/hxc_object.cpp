// Addresses, identities and titles of the objects of conditions.
#include "conditions/hxc_object.h"

#include <algorithm>

namespace hxconditions {

namespace {

bool IsHarmful(char each) {
    const auto byte = static_cast<unsigned char>(each);
    return byte < 0x20 || byte == 0x7F || each == '|';
}

}  // namespace

std::string AddressOf(unsigned adapter) { return "a" + std::to_string(adapter); }

std::string AddressOf(unsigned adapter, Kind kind, unsigned id) {
    const char* word = "";
    if (kind == Kind::kVirtualDisk) word = "/vd";
    if (kind == Kind::kDiskGroup) word = "/dg";
    if (kind == Kind::kDisk) word = "/pd";
    if (kind == Kind::kEnclosure) word = "/enc";
    return AddressOf(adapter) + word + std::to_string(id);
}

bool IsSameThing(const Object& left, const Object& right) {
    if (left.kind != right.kind) return false;
    if (left.identity == right.identity) return true;
    // An object without identifying data may still be the same one.
    return (!left.is_known || !right.is_known) && !left.address.empty() &&
           left.address == right.address;
}

bool IsReplacedBy(const Object& old, const Object& now) {
    return old.kind == now.kind && !old.address.empty() && old.address == now.address &&
           !IsSameThing(old, now);
}

std::string TitleOf(const Object& object) {
    if (object.name.empty()) return object.address;
    return object.address.empty() ? object.name : object.name + " (" + object.address + ")";
}

std::string Harmless(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.remove_suffix(1);
    std::string harmless(text);
    std::ranges::replace_if(harmless, IsHarmful, '?');
    return harmless;
}

}  // namespace hxconditions

#include "common/address.h"

#include <charconv>
#include <cstddef>
#include <iterator>

#include "common/failure.h"

namespace vexortools {

namespace {

struct KindRow {
    ObjectKind kind;
    std::string_view prefix;
    std::string_view name;
};
constexpr KindRow kKinds[] = {
    {ObjectKind::kAdapter, "a", "adapter"},
    {ObjectKind::kDisk, "pd", "disk"},
    {ObjectKind::kVirtualDisk, "vd", "virtual disk"},
    {ObjectKind::kDiskGroup, "dg", "disk group"},
    {ObjectKind::kEnclosure, "enc", "enclosure"},
    {ObjectKind::kElement, "el", "enclosure element"},
};
consteval bool ARowsPlaceIsItsKind() {
    for (std::size_t i = 0; i < std::size(kKinds); ++i) {
        if (static_cast<std::size_t>(kKinds[i].kind) != i) return false;
    }
    return true;
}
static_assert(ARowsPlaceIsItsKind());

// The library numbers adapters with 8 bits, where 255 means all of them, and objects with 16.
constexpr unsigned kMaxAdapter = 254;
constexpr unsigned kMaxId = 65534;

constexpr const KindRow& RowOf(ObjectKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

// Removes PREFIX and a number from the front of the text; false when it does not begin with them.
bool Take(std::string_view& text, ObjectKind kind, unsigned max, unsigned& number) {
    const std::string_view prefix = RowOf(kind).prefix;
    if (!text.starts_with(prefix)) return false;
    const char* const begin = text.data() + prefix.size();
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error != std::errc() || number > max || (stop != end && *stop != '/')) return false;
    text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
    return true;
}

bool ParseAddress(std::string_view text, Address& address) {
    if (!Take(text, ObjectKind::kAdapter, kMaxAdapter, address.adapter)) return false;
    if (text.empty()) return true;
    text.remove_prefix(1);
    for (const ObjectKind kind : {ObjectKind::kDisk, ObjectKind::kVirtualDisk,
                                  ObjectKind::kDiskGroup, ObjectKind::kEnclosure}) {
        if (!Take(text, kind, kMaxId, address.id)) continue;
        address.kind = kind;
        if (text.empty()) return true;
        if (kind != ObjectKind::kEnclosure) return false;
        text.remove_prefix(1);
        address.kind = ObjectKind::kElement;
        return Take(text, ObjectKind::kElement, kMaxId, address.element) && text.empty();
    }
    return false;
}

// The last number of a range, and the address that it begins with; false for any other text.
bool ParseRange(std::string_view text, Address& first, unsigned& last) {
    const std::size_t hyphen = text.rfind('-');
    if (hyphen == std::string_view::npos || !ParseAddress(text.substr(0, hyphen), first))
        return false;
    if (first.kind == ObjectKind::kAdapter || first.kind == ObjectKind::kElement) return false;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + hyphen + 1, end, last);
    return error == std::errc() && stop == end && last <= kMaxId;
}

// Whether the text is PREFIX followed by something, which `rest` receives.
bool IsCalled(std::string_view text, std::string_view prefix, std::string& rest) {
    if (!text.starts_with(prefix) || text.size() == prefix.size()) return false;
    rest = text.substr(prefix.size());
    return true;
}

}  // namespace

std::string Address::Text() const {
    std::string text = "a" + std::to_string(adapter);
    if (kind == ObjectKind::kAdapter) return text;
    const ObjectKind owner = kind == ObjectKind::kElement ? ObjectKind::kEnclosure : kind;
    text.append("/").append(RowOf(owner).prefix).append(std::to_string(id));
    if (kind == ObjectKind::kElement) {
        text.append("/").append(RowOf(kind).prefix).append(std::to_string(element));
    }
    return text;
}

std::string_view NameOf(ObjectKind kind) { return RowOf(kind).name; }

std::string NameWithArticle(ObjectKind kind) {
    const std::string_view name = NameOf(kind);
    const bool begins_with_vowel = name.find_first_of("aeiou") == 0;
    return (begins_with_vowel ? "an " : "a ") + std::string(name);
}

Selector ParseSelector(std::string_view text) {
    Selector selector;
    selector.typed = text;
    if (IsCalled(text, "name:", selector.text)) {
        selector.form = Selector::Form::kName;
    } else if (IsCalled(text, "serial:", selector.text)) {
        selector.form = Selector::Form::kSerial;
    } else if (!ParseAddress(text, selector.address)) {
        throw UsageError(Quoted(text) +
                         " is no address; say a0, a0/pd12, a0/vd1, a0/dg2, a0/enc0, a0/enc0/el3, "
                         "name:NAME or serial:NUMBER");
    }
    return selector;
}

Selector ParseSelector(std::string_view text, ObjectKind kind) {
    Selector selector = ParseSelector(text);
    if (selector.form == Selector::Form::kAddress && selector.address.kind != kind) {
        throw UsageError(selector.typed + " is the address of " +
                         NameWithArticle(selector.address.kind) + "; " + NameWithArticle(kind) +
                         " is needed");
    }
    return selector;
}

std::vector<std::string> WithRangesWritten(std::span<const std::string> texts) {
    std::vector<std::string> written;
    for (const std::string& text : texts) {
        Address address;
        unsigned last = 0;
        if (!ParseRange(text, address, last)) {
            written.push_back(text);
            continue;
        }
        if (last < address.id) {
            throw UsageError(Quoted(text) + " runs backwards; the lower number comes first");
        }
        if (last - address.id >= kMostInRange) {
            throw UsageError(Quoted(text) + " names more than " + std::to_string(kMostInRange) +
                             " objects");
        }
        for (; address.id <= last; ++address.id) written.push_back(address.Text());
    }
    return written;
}

}  // namespace vexortools

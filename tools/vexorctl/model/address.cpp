#include "model/address.h"

#include <charconv>

#include "model/failure.h"

namespace vexorctl {

namespace {

struct Segment {
    ObjectKind kind;
    std::string_view prefix;
    std::string_view name;
};
constexpr Segment kSegments[] = {
    {ObjectKind::kAdapter, "a", "adapter"},
    {ObjectKind::kDisk, "pd", "disk"},
    {ObjectKind::kVirtualDisk, "vd", "virtual disk"},
    {ObjectKind::kDiskGroup, "dg", "disk group"},
    {ObjectKind::kEnclosure, "enc", "enclosure"},
    {ObjectKind::kElement, "el", "enclosure element"},
};

// The library knows adapters by 8 bits, 255 meaning all of them, and objects by 16.
constexpr unsigned kMaxAdapter = 254;
constexpr unsigned kMaxId = 65534;

constexpr const Segment& SegmentOf(ObjectKind kind) {
    return kSegments[static_cast<std::size_t>(kind)];
}

// Takes PREFIX and a number off the front of the text; false when it does not begin so.
bool Take(std::string_view& text, ObjectKind kind, unsigned max, unsigned& number) {
    const std::string_view prefix = SegmentOf(kind).prefix;
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

}  // namespace

std::string Address::Text() const {
    std::string text = "a" + std::to_string(adapter);
    if (kind == ObjectKind::kAdapter) return text;
    const ObjectKind owner = kind == ObjectKind::kElement ? ObjectKind::kEnclosure : kind;
    text.append("/").append(SegmentOf(owner).prefix).append(std::to_string(id));
    if (kind == ObjectKind::kElement) text += "/el" + std::to_string(element);
    return text;
}

std::string_view NameOf(ObjectKind kind) { return SegmentOf(kind).name; }

Selector ParseSelector(std::string_view text) {
    Selector selector;
    selector.typed = text;
    if (text.starts_with("name:") && text.size() > 5) {
        selector.form = Selector::Form::kName;
        selector.text = text.substr(5);
    } else if (text.starts_with("serial:") && text.size() > 7) {
        selector.form = Selector::Form::kSerial;
        selector.text = text.substr(7);
    } else if (!ParseAddress(text, selector.address)) {
        throw UsageError("\"" + std::string(text) +
                         "\" is no address; say a0, a0/pd12, a0/vd1, a0/dg2, a0/enc0, a0/enc0/el3, "
                         "name:NAME or serial:NUMBER");
    }
    return selector;
}

}  // namespace vexorctl

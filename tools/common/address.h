// How people name an object of an adapter: by its address (a0, a0/pd12, a0/vd1, a0/dg2, a0/enc0,
// a0/enc0/el3), by its name (name:data1) or by its serial number (serial:5XW0PR1T).
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vexortools {

enum class ObjectKind { kAdapter, kDisk, kVirtualDisk, kDiskGroup, kEnclosure, kElement };

struct Address {
    unsigned adapter = 0;
    ObjectKind kind = ObjectKind::kAdapter;
    unsigned id = 0;       // of the disk, virtual disk, disk group or enclosure
    unsigned element = 0;  // of the enclosure

    std::string Text() const;
    bool operator==(const Address&) const = default;
};

/// "disk", "virtual disk", ... as in messages.
std::string_view NameOf(ObjectKind kind);

/// The same with its article: "an adapter".
std::string NameWithArticle(ObjectKind kind);

/// An object as the user named it; it may not exist.
struct Selector {
    enum class Form { kAddress, kName, kSerial };
    Form form = Form::kAddress;
    Address address;    // for kAddress
    std::string text;   // for kName and kSerial: the name or serial number
    std::string typed;  // the whole text as typed, for messages
};

/// Throws UsageError, with the grammar, for an invalid text.
Selector ParseSelector(std::string_view text);

/// The same for an object of that kind. Throws UsageError for an address of another kind as well;
/// for a name or serial number the kind is checked at the look-up.
Selector ParseSelector(std::string_view text, ObjectKind kind);

/// Writes each range of disks, virtual disks or disk groups as its addresses: "a0/pd4-6" becomes
/// a0/pd4, a0/pd5, a0/pd6. Every other text stays as it is. Throws UsageError for a range that runs
/// backwards or names more than kMostInRange objects.
std::vector<std::string> WithRangesWritten(std::span<const std::string> texts);
inline constexpr unsigned kMostInRange = 1024;

}  // namespace vexortools

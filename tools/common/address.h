// How people name an object of an adapter: by its address (a0, a0/pd12, a0/vd1, a0/dg2, a0/enc0,
// a0/enc0/el3), or by what it is called (name:data1, serial:5XW0PR1T).
#pragma once

#include <string>
#include <string_view>

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

/// An object as it was named, which is not known to exist.
struct Selector {
    enum class Form { kAddress, kName, kSerial };
    Form form = Form::kAddress;
    Address address;    // of kAddress
    std::string text;   // the name or the serial number, of the other two
    std::string typed;  // all of it, for messages
};

/// Throws UsageError, with the grammar, for what is none.
Selector ParseSelector(std::string_view text);

/// The same for an object of that kind. Throws UsageError for an address of another kind, too; of
/// which kind an object is that was named otherwise shows when it is looked up.
Selector ParseSelector(std::string_view text, ObjectKind kind);

}  // namespace vexortools

// The addresses of objects: a0, a0/pd12, a0/vd1, a0/dg2, a0/enc0, a0/enc0/el3; and the other ways
// to name one: name:data1 and serial:5XW0PR1T.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vexorctl {

enum class ObjectKind { kAdapter, kDisk, kVirtualDisk, kDiskGroup, kEnclosure, kElement };

struct Address {
    unsigned adapter = 0;
    ObjectKind kind = ObjectKind::kAdapter;
    unsigned id = 0;       // of the disk, virtual disk, disk group or enclosure
    unsigned element = 0;  // of an enclosure

    std::string Text() const;
    bool operator==(const Address&) const = default;
};

/// "disk", "virtual disk", ... as in messages.
std::string_view NameOf(ObjectKind kind);

struct Selector {
    enum class Form { kAddress, kName, kSerial };
    Form form = Form::kAddress;
    Address address;   // of kAddress
    std::string text;  // of the others; and as it was typed, for messages, in `typed`
    std::string typed;
};

/// Throws UsageError, with the grammar, for what is none.
Selector ParseSelector(std::string_view text);

}  // namespace vexorctl

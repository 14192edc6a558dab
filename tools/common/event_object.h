// Which kind of object an event is about, as people name objects.
#pragma once

#include "codes/event.h"
#include "common/address.h"

namespace vexortools {

/// The kind of object whose number is in DeviceID of an event; the adapter where such objects have
/// no addresses.
constexpr ObjectKind KindOf(hxcodes::Subject subject) {
    switch (subject) {
        case hxcodes::Subject::kOfVirtualDisk:
            return ObjectKind::kVirtualDisk;
        case hxcodes::Subject::kOfDisk:
            return ObjectKind::kDisk;
        case hxcodes::Subject::kOfEnclosure:
            return ObjectKind::kEnclosure;
        case hxcodes::Subject::kOfDiskGroup:
            return ObjectKind::kDiskGroup;
        case hxcodes::Subject::kOfAdapter:
        case hxcodes::Subject::kOfExpander:
        case hxcodes::Subject::kOfBattery:
        case hxcodes::Subject::kOfImage:
            break;
    }
    return ObjectKind::kAdapter;
}

}  // namespace vexortools

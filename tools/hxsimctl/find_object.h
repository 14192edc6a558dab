// Finds objects of the machine by address, name or serial number: a0/pd12, name:DATA,
// serial:6TW0B821SA.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/address.h"
#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsimctl {

using vexortools::ObjectKind;

/// An object as the user named it. Names and serial numbers are looked up only when the object is
/// needed.
struct Target {
    ObjectKind kind = ObjectKind::kAdapter;
    vexortools::Selector selector;
};

/// Parses an object of that kind. Throws UsageError.
Target ParseTarget(std::string_view word, ObjectKind kind);

/// Parses an object of any kind: an address includes the kind, a name means a virtual disk, a
/// serial number a disk. Throws UsageError.
Target ParseTarget(std::string_view word);

/// The numbers by which the machine and the library's calls know an object.
struct Object {
    ObjectKind kind = ObjectKind::kAdapter;
    HX_U8 adapter = 0;
    HX_U16 id = 0;       // of the disk, virtual disk, disk group or enclosure
    HX_U16 element = 0;  // of the enclosure
    std::string text;    // its address, for messages
};

/// The object of a target; null when no object has that name or serial number. An address is not
/// checked. Throws UsageError when several objects have the name or number.
std::optional<Object> FindObject(const hxsim::Machine& machine, const Target& target);

/// The same; throws NoObject instead of returning null.
Object NameObject(const hxsim::Machine& machine, const Target& target);

/// The same; throws NoObject also for an address without an object.
Object RequireObject(const hxsim::Machine& machine, const Target& target);

/// The adapter of an object. Both throw NoObject.
const hxsim::Adapter& AdapterAt(const hxsim::Machine& machine, const Object& object);
hxsim::Adapter& AdapterAt(hxsim::Machine& machine, const Object& object);

/// The element of an enclosure; null when the adapter has none.
const hxsim::Element* FindElement(const hxsim::Adapter& adapter, const Object& object);

}  // namespace hxsimctl

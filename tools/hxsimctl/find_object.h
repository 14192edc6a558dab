// Objects of the machine, as commands and steps name them: a0/pd12, name:DATA, serial:6TW0B821SA.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/address.h"
#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsimctl {

using vexortools::ObjectKind;

/// An object as it was named. A name or a serial number is looked up in the machine only when the
/// object is needed.
struct Target {
    ObjectKind kind = ObjectKind::kAdapter;
    vexortools::Selector selector;
};

/// An object of that kind. Throws UsageError.
Target ParseTarget(std::string_view word, ObjectKind kind);

/// An object of any kind that an address tells. A name means a virtual disk, a serial number a
/// disk. Throws UsageError.
Target ParseTarget(std::string_view word);

/// The numbers by which the machine and the library's calls know an object.
struct Object {
    ObjectKind kind = ObjectKind::kAdapter;
    HX_U8 adapter = 0;
    HX_U16 id = 0;       // of the disk, virtual disk, disk group or enclosure
    HX_U16 element = 0;  // of the enclosure
    std::string text;    // its address, for messages
};

/// The object that a target means; null when nothing has that name or serial number. The object of
/// an address is not looked for. Throws UsageError when several have the name or number.
std::optional<Object> FindObject(const hxsim::Machine& machine, const Target& target);

/// The same; throws NoObject where it would be null.
Object NameObject(const hxsim::Machine& machine, const Target& target);

/// The same; throws NoObject when the machine does not have what an address names, either.
Object RequireObject(const hxsim::Machine& machine, const Target& target);

/// The adapter that an object is on. Throw NoObject.
const hxsim::Adapter& AdapterAt(const hxsim::Machine& machine, const Object& object);
hxsim::Adapter& AdapterAt(hxsim::Machine& machine, const Object& object);

/// The element of an enclosure; null when the adapter has none.
const hxsim::Element* FindElement(const hxsim::Adapter& adapter, const Object& object);

}  // namespace hxsimctl

// From what was typed to the one object that a command works on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/address.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "shell/invocation.h"

namespace vexorctl {

/// The address of the command's target of that kind, which is there. A name or a serial number is
/// looked up. Throws UsageError for an address of another kind or a name that several objects have,
/// Failure with Exit::kNoObject for what is not there.
Address FindTarget(Invocation& invocation, ObjectKind kind, std::size_t which = 0);

/// The object of that address among those that were loaded after it was found. Throws Failure when
/// it has gone since.
template <class Object>
Object TakeObject(std::vector<Object> objects, const Address& address) {
    for (Object& object : objects) {
        if (object.address == address) return std::move(object);
    }
    throw Failure(Exit::kNoObject, address.Text() + ": there is no such " +
                                       std::string(NameOf(address.kind)) + " any more");
}

/// The addresses of objects of one kind on one adapter, by their numbers.
std::vector<std::string> AddressTexts(unsigned adapter, ObjectKind kind,
                                      const std::vector<std::uint64_t>& ids);

/// The same for any typed text.
Address FindObject(Invocation& invocation, ObjectKind kind, const std::string& typed);

/// The adapter that the command works on: the one of --adapter, or the only one there is. Throws
/// UsageError when there are several and none was named.
unsigned FindAdapter(Invocation& invocation);

}  // namespace vexorctl

// A step that makes one call about one object.
#pragma once

#include "find_object.h"
#include "story.h"

namespace hxsimctl {

/// A function of the library and how it is called about an object.
struct ObjectCall {
    const char* function;
    HX_U8 (*make)(const Object&);
};

/// The step that calls the library about the object that the target means by then.
Step CallAbout(const Target& target, const ObjectCall& call);

/// The object that a target means now. An address is not looked for: calls about what is not there
/// are for the library to refuse. Throws NoObject and UsageError.
Object ObjectNow(Story& story, const Target& target);

}  // namespace hxsimctl

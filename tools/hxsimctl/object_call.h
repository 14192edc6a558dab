// Steps that make one call about one object.
#pragma once

#include "find_object.h"
#include "story.h"

namespace hxsimctl {

/// A function of the library and its call for an object.
struct ObjectCall {
    const char* function;
    HX_U8 (*make)(const Object&);
};

/// The step that calls the library for the target, which is looked up when the step runs.
Step CallAbout(const Target& target, const ObjectCall& call);

/// The object of a target now. An address is not checked, so that the library refuses missing
/// objects itself. Throws NoObject and UsageError.
Object ObjectNow(Story& story, const Target& target);

}  // namespace hxsimctl

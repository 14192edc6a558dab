// Why a controller library of this project cannot be used. hxraid.h has codes for that, which name
// no file and no cause; people need both.
#pragma once

extern "C" {

/// What was in the way when HX_API_Initialize or a call last failed for its state file or for want
/// of memory, as a sentence for people with the file and the cause; empty when nothing was since
/// the library was opened. It is exported beside the functions of hxraid.h, and other makers'
/// libraries do not have it: look it up by its name.
[[gnu::visibility("default")]] const char* hx_trouble();

}  // extern "C"

namespace hxlibrary {

inline constexpr char kTroubleFunction[] = "hx_trouble";

/// Keeps the reason, as much of it as there is room for. Needs no memory.
void NoteTrouble(const char* reason);

}  // namespace hxlibrary

// The reason why a controller library of this project cannot be used, for people: the codes of
// hxraid.h name neither a file nor a cause.
#pragma once

extern "C" {

/// The reason of the last failure of HX_API_Initialize or a call because of the state file or
/// missing memory, as a sentence with the file and the cause; empty without a failure since the
/// library was opened. Other makers' libraries do not export it beside the functions of hxraid.h,
/// so look it up by its name.
[[gnu::visibility("default")]] const char* hx_trouble();

}  // extern "C"

namespace hxlibrary {

inline constexpr char kTroubleFunction[] = "hx_trouble";

/// Stores the reason, truncated to a fixed buffer; allocates nothing.
void NoteTrouble(const char* reason);

}  // namespace hxlibrary

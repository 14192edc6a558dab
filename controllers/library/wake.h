// Tells a program that waits when it is worth asking again: hxraid.h has nothing but questions.
#pragma once

extern "C" {

/// Opens a descriptor that becomes readable when another process changes the machine, or -1 where
/// that cannot be told. The caller polls it, reads nothing from it and closes it; then it opens
/// another one. What the caller's own process changes makes it readable, too, so that it is opened
/// after the last call. Other makers' libraries do not export it, so look it up by its name.
[[gnu::visibility("default")]] int hx_wake();

}  // extern "C"

namespace hxlibrary {

inline constexpr char kWakeFunction[] = "hx_wake";

}  // namespace hxlibrary

// The text of a controller's event, as the event file stores it and front ends show it.
#pragma once

#include <cstddef>
#include <ctime>

#include "hxraid.h"

inline constexpr std::size_t kEventTextSize = 512;  // room for an event's text, as callers give it

// The bytes of its buffer that VX_HX_EVT_Sprintf may write: the longest text, its NUL, and the
// bytes that the digit writers spill behind it.
inline constexpr std::size_t kLongestEventText = 112;

/// Renders the event as one line, its line end and a NUL included. `MsgBuf` has kEventTextSize
/// bytes, of which at most kLongestEventText are used. Returns the line's length.
int VX_HX_EVT_Sprintf(const Event* pevent, char* MsgBuf);

/// Writes a calendar time in asctime's form without its line end (24 characters, no NUL), or as
/// many question marks and blanks for a null pointer or a year of more than four digits. Returns
/// the end.
char* PutTimeText(char* at, const std::tm* time);

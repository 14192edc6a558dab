// The service log of the RAID event service, "/var/log/hxraidsvc.log", and the clock of its time
// stamps.
#pragma once

#include <cstddef>
#include <ctime>

// The three entry points of the log. vexorapi.h, the public header, declares and documents them for
// C; vexorapi.cpp includes both headers, so that the compiler compares them.
// NOLINTBEGIN(readability-redundant-declaration)
extern "C" {
[[gnu::visibility("default")]] int InitLog() noexcept;
[[gnu::visibility("default"), gnu::format(printf, 1, 2)]] int LogPrintf(const char* fmt,
                                                                        ...) noexcept;
[[gnu::visibility("default")]] int CloseLog() noexcept;
}
// NOLINTEND(readability-redundant-declaration)

// Room for a time as text: "Thu Jan  1 00:00:00 1970", a line end and a NUL.
inline constexpr std::size_t kTimeTextSize = 26;

/// Stores the current local time. Returns false, with `now` unspecified, when it has no calendar
/// date.
bool GetNow(std::tm& now);

/// Writes `time` as asctime does, line end included, or the first second of 1970 when the year has
/// more than four digits. Returns `text`.
const char* TimeToStr(const std::tm& time, char (&text)[kTimeTextSize]);

/// The current local time as TimeToStr writes it, in storage of the library that the next call
/// overwrites.
const char* NowToStr();

// Events: what is different between what the last look saw and what this one sees.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "codes/event.h"
#include "model/hxmd_kept.h"
#include "model/hxmd_machine.h"

namespace hxmd {

/// Something that has happened.
struct Happening {
    hxcodes::EventKind kind;
    HX_U16 device = 0;
    std::array<HX_U32, 4> params{};

    friend bool operator==(const Happening&, const Happening&) = default;
};

/// What is to be compared at the next look. The machine's objects have their numbers.
Seen Picture(const Machine& machine, const Kept& kept);

/// What is not well, as the first look tells it.
std::vector<Happening> Complaints(const Seen& now);

enum class Since : std::uint8_t { kLastLook, kReboot };

/// What has happened in between, in the order in which it must have: disks, members, arrays,
/// spares, settings.
std::vector<Happening> Differences(const Seen& before, const Seen& now, Since since);

// ---- The queue ----

/// The most events that wait; then the oldest give way to one that tells how many they were.
inline constexpr std::size_t kMostEvents = 512;

/// Puts an event behind those that wait. `text` goes into its sense data.
void Queue(Kept& kept, const Happening& happening, std::int64_t now, std::string_view text = {});

/// Takes the oldest events, at most `max`; returns how many.
HX_U8 Take(Kept& kept, HX_U8 max, Event* events);

}  // namespace hxmd

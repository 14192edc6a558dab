// Events from the differences between the last look and this one.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "codes/event.h"
#include "model/hxmd_kept.h"
#include "model/hxmd_machine.h"

namespace hxmd {

/// An event before it gets its time and number.
struct Happening {
    hxcodes::EventKind kind;
    HX_U16 device = 0;
    std::array<HX_U32, 4> params{};

    friend bool operator==(const Happening&, const Happening&) = default;
};

/// The state to compare with at the next look. Precondition: the machine's objects have their
/// numbers.
Seen Picture(const Machine& machine, const Kept& kept);

/// The problems that the first look reports.
std::vector<Happening> Complaints(const Seen& now);

enum class Since : std::uint8_t { kLastLook, kReboot };

/// The events between two looks, in the order in which they must have happened: disks, members,
/// arrays, spares, settings.
std::vector<Happening> Differences(const Seen& before, const Seen& now, Since since);

// ---- The queue ----

/// The capacity of the queue. When it is full, the oldest events are replaced by one event with
/// their number.
inline constexpr std::size_t kMostEvents = 512;

/// Appends an event to the queue. `text` goes into its sense data.
void Queue(Kept& kept, const Happening& happening, std::int64_t now, std::string_view text = {});

/// Queues the deletion of an array that the last look has found. The next look could not tell it
/// from an array whose disks have all left.
void QueueDeletion(Kept& kept, HX_U16 array, std::int64_t now);

/// Moves the oldest events, at most `max`, from the queue to `events`. Returns their number.
HX_U8 Take(Kept& kept, HX_U8 max, Event* events);

}  // namespace hxmd

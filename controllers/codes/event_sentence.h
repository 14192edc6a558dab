// What events of our own controllers say beyond the library's texts: their parameters name
// elements, images and disks, which the texts do not.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>

#include "codes/event.h"

namespace hxcodes {

using EventParams = std::array<HX_U32, 4>;

/// An event, as far as its sentence depends on it.
struct EventFacts {
    EventKind kind;
    unsigned adapter = 0;
    unsigned device = 0;
    EventParams params{};
};

/// The sentence; none where the row of its kind has it already, or where the parameters do not
/// tell.
std::optional<std::string> SentenceOf(const EventFacts& event);

/// The number of the element that an event of an enclosure is about; none for every other event.
std::optional<unsigned> ElementOf(const EventFacts& event);

/// The parameters of kVirtualDiskDegraded. `fatal` are the disks of which none may fail any more,
/// `harmless` the other good members. Params[0] holds how many there are, the fatal ones in its
/// lower half; the others hold up to six of the disks, two each, lower half first, the fatal ones
/// first.
EventParams ParamsOfDegraded(std::span<const HX_U16> fatal, std::span<const HX_U16> harmless);

}  // namespace hxcodes

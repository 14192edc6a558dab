// The event store, as the library answers for it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "codes/event_sentence.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/library_record.h"

namespace vexorctl {

struct StoredEvent {
    std::uint64_t sequence = 0;
    Record<fields::Event> record;
    std::string key;                    // "EVT_CODE_LD_CREATE"; empty for an event without a text
    std::vector<std::string> values;    // of its line, behind the severity
    std::optional<std::string> object;  // its address
    std::optional<hxcodes::EventFacts> facts{};  // null where a field of them is unknown
    std::optional<std::string> sentence{};  // that its parameters make, of a controller of ours

    bool has_text = false;  // the library's line was there

    std::string Text() const;  // readable, from the catalogue
    std::string Raw() const;   // the key and its values as the store has them
    /// Equal for the same event, and different for any other.
    std::string Fingerprint() const;
};

struct Extent {
    std::uint64_t first = 0;  // the oldest event's number
    std::uint64_t next = 0;   // the number that the next event will get
};

/// Asks for the extent. Throws Failure with Exit::kUnavailable for a store that cannot be read.
Extent AskExtent(Controller& controller);

/// The events from `first` on, `count` of them, or those that are there. `page` of them are asked
/// for at once; when a result was cut it becomes half as many, for the next call too. One event
/// that cannot be had is noted as a fault.
std::vector<StoredEvent> ReadEvents(Controller& controller, std::uint64_t first,
                                    std::uint64_t count, std::uint64_t& page);

/// How many events are asked for at once to begin with. A result holds about a thousand.
inline constexpr std::uint64_t kEventsPerPage = 2000;

}  // namespace vexorctl

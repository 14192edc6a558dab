// What the service asks of the library and the controller behind it.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "conditions/hxc_answers.h"
#include "descriptor.h"
#include "service/hxs_facts.h"

namespace hxservice {

/// The controller or the event store cannot be asked; what() says why.
struct SourceError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The events in the store, by their numbers there.
struct StoreExtent {
    std::uint64_t first = 0;  // the oldest event
    std::uint64_t next = 0;   // the number that the next event will get
};

struct StoredEvent {
    std::uint64_t number = 0;
    std::string severity;
    std::string text;
    hxconditions::Event event;
};

class Source {
public:
    virtual ~Source() = default;

    /// How many adapters there are. After a failure it opens the library again. Throws SourceError.
    virtual unsigned CountAdapters() = 0;

    /// Why the event store cannot take what so many adapters may send in one call each; null when
    /// it can. Nothing is taken from a controller.
    virtual std::optional<std::string> WhyStoreIsClosed(unsigned adapters) = 0;

    /// Moves the events of the first `adapters` adapters into the store.
    virtual void CheckIn(unsigned adapters) = 0;

    /// The store as its file shows it, without the library. Throws SourceError.
    virtual hxconditions::Store LookAtStore() = 0;

    /// A store that was never written is empty. Throws SourceError.
    virtual StoreExtent ReadExtent() = 0;

    /// The events from `first` to before `next` that can be read. Throws SourceError.
    virtual std::vector<StoredEvent> ReadEvents(std::uint64_t first, std::uint64_t next) = 0;

    /// The machine as it is now, with what could not be read and why. Nothing of the store and the
    /// service is filled in.
    virtual hxconditions::Answers LookAtMachine() = 0;

    /// What the last look has read besides. What could not be read is missing.
    virtual Facts FactsOfLastLook() = 0;

    /// Becomes readable when the machine may have changed from now on; none where the controller
    /// cannot tell that.
    virtual Descriptor WatchForChanges() = 0;
};

}  // namespace hxservice

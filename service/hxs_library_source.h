// The source that the library is, through its exported functions.
#pragma once

#include <optional>

#include "model/ask_controller.h"
#include "service/hxs_source.h"

namespace hxservice {

class LibrarySource : public Source {
public:
    unsigned CountAdapters() override;
    std::optional<std::string> WhyStoreIsClosed(unsigned adapters) override;
    void CheckIn(unsigned adapters) override;
    hxconditions::Store LookAtStore() override;
    StoreExtent ReadExtent() override;
    std::vector<StoredEvent> ReadEvents(std::uint64_t first, std::uint64_t next) override;
    hxconditions::Answers LookAtMachine() override;
    Facts FactsOfLastLook() override { return facts_; }
    Descriptor WatchForChanges() override;

private:
    vexorctl::Controller& Opened();
    void TakeCounters();

    // Closed after a failure, so that the next question opens the library again.
    std::optional<vexorctl::Controller> controller_;
    Facts facts_;
};

}  // namespace hxservice

// Sends letters to sinks, without waiting for the end.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "common/duration.h"
#include "service/hxs_journal.h"
#include "service/hxs_notice.h"
#include "service/hxs_process.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

/// How a delivery ended. `name` is the sink's.
using Delivery = JobEnd;

/// Why a delivery failed: its error, and the first line of what it said, which helps more than an
/// exit status alone.
std::string ReasonOf(const Delivery& delivery);

class Deliverer {
public:
    virtual ~Deliverer() = default;
    /// Begins to send a letter to a sink that is not being sent one.
    virtual void Start(const SinkSettings& sink, const Letter& letter,
                       vexortools::Duration now) = 0;
    virtual std::vector<Delivery> TakeEnded(vexortools::Duration now) = 0;
    /// When TakeEnded must be called at the latest.
    virtual std::optional<vexortools::Duration> Due() const = 0;
};

/// The real sinks.
class Sinks : public Deliverer {
public:
    /// The journal must outlive it.
    explicit Sinks(Journal& journal) : journal_(journal) {}

    void Start(const SinkSettings& sink, const Letter& letter, vexortools::Duration now) override;
    std::vector<Delivery> TakeEnded(vexortools::Duration now) override;
    std::optional<vexortools::Duration> Due() const override;

    /// Readable when TakeEnded has something to do.
    int Descriptor() const { return children_.Descriptor(); }

private:
    void WriteToJournal(const SinkSettings& sink, const Letter& letter);

    Journal& journal_;
    Children children_;
    std::set<std::string> webhooks_;  // the sinks at work that are webhooks
    std::vector<Delivery> written_;   // to the journal, which takes no time
};

}  // namespace hxservice

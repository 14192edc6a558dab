// Sends letters to sinks, without waiting for the end.
#pragma once

#include <optional>
#include <vector>

#include "common/duration.h"
#include "service/hxs_notice.h"
#include "service/hxs_process.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

/// How a delivery ended. `name` is the sink's.
using Delivery = JobEnd;

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
    void Start(const SinkSettings& sink, const Letter& letter, vexortools::Duration now) override;
    std::vector<Delivery> TakeEnded(vexortools::Duration now) override {
        return children_.TakeEnded(now);
    }
    std::optional<vexortools::Duration> Due() const override { return children_.Due(); }

    /// Readable when TakeEnded has something to do.
    int Descriptor() const { return children_.Descriptor(); }

private:
    Children children_;
};

}  // namespace hxservice

// Alerts: what every sink is told, when it is sent, and what becomes of it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "common/duration.h"
#include "conditions/hxc_answers.h"
#include "conditions/hxc_look.h"
#include "conditions/hxc_overview.h"
#include "service/hxs_deliverer.h"
#include "service/hxs_delivery_queue.h"
#include "service/hxs_log.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

/// A sink, as people see it.
struct SinkReport {
    hxconditions::Sink health;
    std::string kind;
    bool is_testing = false;
    std::string tested;  // how the last test ended: "delivered" or why not; empty: not tested
};

class Alerts {
public:
    /// The references must outlive it. `box` is what was kept.
    Alerts(Deliverer& deliverer, Log& log, std::string host, std::vector<SinkSettings> sinks,
           Outbox box);

    /// The sinks are others from now on. What waits for one that is gone is forgotten.
    void Configure(std::vector<SinkSettings> sinks);

    /// Takes up what a look found; what has to be told waits then. After events nothing is sent for
    /// 2 seconds, so that what follows from them is told in the same letter. Save Box() before
    /// Serve.
    void Take(const hxconditions::Look& look, const hxconditions::Counts& counts, bool has_events,
              vexortools::Duration now, std::int64_t real);

    /// Begins what is due and takes up what has ended. `save` saves Box(): before a delivery
    /// begins, so that after a crash it is known that it may have been made, and after its end.
    /// Returns true when a sink has begun or ceased to fail, so that a look is due.
    bool Serve(vexortools::Duration now, std::int64_t real, const std::function<void()>& save);

    /// When Serve has something to do.
    std::optional<vexortools::Duration> Due() const;

    /// Nothing waits for its time any more.
    void Hurry();
    /// Whether something is being sent.
    bool IsBusy() const;

    const Outbox& Box() const { return box_; }

    /// The sinks as the table of conditions sees them.
    std::vector<hxconditions::Sink> Health() const;
    std::vector<SinkReport> Report() const;
    /// Has Serve try that sink, or all when none is named. Returns their names.
    std::vector<std::string> Test(const std::string& sink);
    /// The alerts given up for a sink are acknowledged.
    void ForgetGivenUp(const std::string& sink);

private:
    // A sink at work, besides what is kept.
    struct Desk {
        SinkSettings settings;
        // Nothing is sent before: after a failure, and while events may have consequences.
        vexortools::Duration ready{0};
        vexortools::Duration gathered{0};
        bool is_busy = false;
        std::uint64_t last = 0;  // of the letter that is being sent
        std::uint64_t maybe_sent_before = 0;
        unsigned attempts_before = 0;
        bool was_failing = false;
        bool is_test_due = false;
        bool is_testing = false;
        std::string tested;
    };

    SinkQueue& QueueOf(const Desk& desk) { return box_.sinks[desk.settings.name]; }
    bool IsFailing(const SinkQueue& queue) const;
    void Put(Desk& desk, const hxconditions::Look& look);
    std::vector<Notice> NextOf(const Desk& desk) const;
    void Remember(const std::string& text);
    void RememberDelivery(const Desk& desk, std::int64_t real, std::string_view what,
                          std::uint64_t alerts, const std::string& error);
    void FinishTest(Desk& desk, const Delivery& delivery, std::int64_t real);
    void Finish(Desk& desk, const Delivery& delivery, vexortools::Duration now, std::int64_t real);

    Deliverer& deliverer_;
    Log& log_;
    std::string host_;
    std::vector<Desk> desks_;
    Outbox box_;
    hxconditions::Overview overview_;
    hxconditions::Counts counts_;
    hxconditions::Ticks ticks_ = 0;
};

}  // namespace hxservice

#include "service/hxs_alerts.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "service/hxs_policy.h"

namespace hxservice {

namespace {

using vexortools::Duration;

constexpr Duration kGathering = std::chrono::seconds(2);
constexpr std::size_t kMostInLetter = 50;
constexpr unsigned kFailuresThatCount = 3;
// What is refused is not taken before somebody has changed something.
constexpr Duration kAfterRefusal = std::chrono::minutes(10);
constexpr hxconditions::Ticks kFailingThatCounts = 300;  // seconds

// 1, 2, 4, ... seconds, at most 10 minutes.
Duration WaitAfter(unsigned failures) {
    constexpr Duration kMost = std::chrono::minutes(10);
    constexpr unsigned kDoublings = 10;
    const unsigned doublings = std::min(std::max(failures, 1U) - 1, kDoublings);
    return std::min<Duration>(std::chrono::seconds(1U << doublings), kMost);
}

// A share of the wait, so that many machines do not come back together: the same for one machine,
// sink and attempt.
Duration Jittered(Duration wait, const std::string& host, const std::string& sink,
                  unsigned failures) {
    constexpr std::size_t kSteps = 1000;
    const std::size_t step =
        std::hash<std::string>()(host + "/" + sink + "/" + std::to_string(failures)) % kSteps;
    return wait + wait * static_cast<Duration::rep>(step) / static_cast<Duration::rep>(4 * kSteps);
}

std::string Counted(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " alert" : " alerts");
}

}  // namespace

Alerts::Alerts(Deliverer& deliverer, Log& log, std::string host, std::vector<SinkSettings> sinks,
               Outbox box)
    : deliverer_(deliverer), log_(log), host_(std::move(host)), box_(std::move(box)) {
    Configure(std::move(sinks));
}

void Alerts::Configure(std::vector<SinkSettings> sinks) {
    std::vector<Desk> desks;
    for (SinkSettings& sink : sinks) {
        const auto old = std::ranges::find_if(
            desks_, [&](const Desk& desk) { return desk.settings.name == sink.name; });
        Desk& desk = desks.emplace_back(old == desks_.end() ? Desk() : *old);
        desk.settings = std::move(sink);
        desk.ready = Duration(0);  // new settings may work where the old ones did not
        desk.was_failing = IsFailing(QueueOf(desk));
    }
    desks_ = std::move(desks);
    std::erase_if(box_.sinks, [&](const auto& each) {
        return std::ranges::none_of(
            desks_, [&](const Desk& desk) { return desk.settings.name == each.first; });
    });
}

void Alerts::Put(Desk& desk, const hxconditions::Look& look) {
    SinkQueue& queue = QueueOf(desk);
    for (const Telling& telling : TellingsFor(desk.settings, queue.known, look)) {
        queue.waiting.push_back(
            {box_.next++, telling.key,
             NoticeText(telling.message, telling.change, host_, box_.was_lost)});
    }
    const auto most = static_cast<std::size_t>(desk.settings.queue);
    while (queue.waiting.size() > most) {
        // What is being sent may well arrive.
        const auto oldest = std::ranges::find_if(queue.waiting, [&](const Notice& notice) {
            return !desk.is_busy || notice.number > desk.last;
        });
        if (oldest == queue.waiting.end()) break;
        queue.waiting.erase(oldest);
        ++queue.given_up;
    }
}

void Alerts::Take(const hxconditions::Look& look, const hxconditions::Counts& counts,
                  bool has_events, Duration now, std::int64_t real) {
    ticks_ = look.state.now;
    overview_ = look.overview;
    counts_ = counts;
    for (const hxconditions::Message& message : look.messages) {
        Remember(HistoryText(message, real));
    }
    for (Desk& desk : desks_) {
        // Only the first waits: events that never end would put it off for ever.
        const bool is_first = QueueOf(desk).waiting.empty();
        Put(desk, look);
        if (is_first) desk.gathered = has_events ? now + kGathering : Duration(0);
    }
    box_.was_lost = false;
}

void Alerts::Remember(const std::string& text) {
    std::vector<HistoryEntry>& history = box_.history;
    history.push_back({history.empty() ? 1 : history.back().number + 1, text});
    if (history.size() > kMostHistory) history.erase(history.begin());
}

void Alerts::RememberDelivery(const Desk& desk, std::int64_t real, std::string_view what,
                              std::uint64_t alerts, const std::string& error) {
    Remember(HistoryText(desk.settings.name, what, alerts, error, real));
}

void Alerts::FinishTest(Desk& desk, const Delivery& delivery, std::int64_t real) {
    desk.is_busy = false;
    desk.is_testing = false;
    desk.tested = delivery.error.empty() ? "delivered" : ReasonOf(delivery);
    RememberDelivery(desk, real, delivery.error.empty() ? "tested" : "test failed", 0,
                     delivery.error.empty() ? "" : desk.tested);
}

std::vector<std::string> Alerts::Test(const std::string& sink) {
    std::vector<std::string> names;
    for (Desk& desk : desks_) {
        if (!sink.empty() && desk.settings.name != sink) continue;
        desk.is_test_due = true;
        desk.tested.clear();
        names.push_back(desk.settings.name);
    }
    return names;
}

std::vector<SinkReport> Alerts::Report() const {
    std::vector<SinkReport> reports;
    const std::vector<hxconditions::Sink> health = Health();
    for (std::size_t index = 0; index < desks_.size(); ++index) {
        const Desk& desk = desks_[index];
        reports.push_back(
            {.health = health[index],
             .kind = desk.settings.kind ? std::string(NameOf(*desk.settings.kind)) : "",
             .is_testing = desk.is_testing || desk.is_test_due,
             .tested = desk.tested});
    }
    return reports;
}

std::vector<Notice> Alerts::NextOf(const Desk& desk) const {
    const std::vector<Notice>& waiting = box_.sinks.at(desk.settings.name).waiting;
    const auto count = static_cast<std::ptrdiff_t>(std::min(waiting.size(), kMostInLetter));
    return {waiting.begin(), waiting.begin() + count};
}

bool Alerts::IsFailing(const SinkQueue& queue) const {
    if (queue.failures == 0) return false;
    return queue.failures >= kFailuresThatCount ||
           (queue.failing_since && ticks_ - *queue.failing_since >= kFailingThatCounts);
}

void Alerts::Finish(Desk& desk, const Delivery& delivery, Duration now, std::int64_t real) {
    SinkQueue& queue = QueueOf(desk);
    desk.is_busy = false;
    if (!delivery.error.empty()) {
        queue.error = ReasonOf(delivery);
        ++queue.failed_letters;
        if (queue.failures++ == 0) {
            queue.failing_since = ticks_;
            log_.Say("alerts cannot be delivered by " + desk.settings.name + ": " + queue.error);
            RememberDelivery(desk, real, "failed", queue.waiting.size(), queue.error);
        }
        if (!delivery.has_begun) {
            queue.maybe_sent = desk.maybe_sent_before;
            queue.attempts = desk.attempts_before;
        }
        if (delivery.is_refused) queue.failures = std::max(queue.failures, kFailuresThatCount);
        Duration wait = delivery.is_refused ? kAfterRefusal : WaitAfter(queue.failures);
        if (desk.settings.kind == SinkKind::kWebhook) {
            wait = Jittered(wait, host_, desk.settings.name, queue.failures);
        }
        desk.ready = now + std::max(wait, delivery.wait);
        return;
    }
    for (const Notice& notice : queue.waiting) {
        const auto known = queue.known.find(notice.key);
        if (notice.number <= desk.last && known != queue.known.end()) {
            known->second.delivered = real;
        }
    }
    const std::size_t delivered = std::erase_if(
        queue.waiting, [&](const Notice& notice) { return notice.number <= desk.last; });
    if (queue.failures != 0) {
        log_.Say("alerts are delivered by " + desk.settings.name + " again");
    }
    log_.Say(Counted(delivered) + " delivered by " + desk.settings.name);
    RememberDelivery(desk, real, "delivered", delivered, "");
    ++queue.delivered_letters;
    queue.failures = 0;
    queue.error.clear();
    queue.failing_since.reset();
    queue.attempts = 0;
}

bool Alerts::Serve(Duration now, std::int64_t real, const std::function<void()>& save) {
    bool has_changed = false;
    for (const Delivery& delivery : deliverer_.TakeEnded(now)) {
        const auto desk = std::ranges::find_if(
            desks_, [&](const Desk& each) { return each.settings.name == delivery.name; });
        if (desk == desks_.end() || !desk->is_busy) continue;
        if (desk->is_testing) {
            FinishTest(*desk, delivery, real);
        } else {
            Finish(*desk, delivery, now, real);
        }
        has_changed = true;
    }
    std::vector<std::pair<Desk*, Letter>> letters;
    for (Desk& desk : desks_) {
        SinkQueue& queue = QueueOf(desk);
        if (desk.is_test_due && !desk.is_busy) {
            desk.is_test_due = false;
            desk.is_busy = desk.is_testing = true;
            letters.emplace_back(
                &desk, TestLetterOf({.sink = desk.settings.name, .host = host_, .at = real}));
            continue;
        }
        const bool is_due = !queue.waiting.empty() && now >= std::max(desk.ready, desk.gathered);
        if (desk.is_busy || !is_due) continue;
        const std::vector<Notice> next = NextOf(desk);
        desk.is_busy = true;
        desk.last = next.back().number;
        desk.maybe_sent_before = queue.maybe_sent;
        desk.attempts_before = queue.attempts++;
        letters.emplace_back(&desk, LetterOf({.sink = desk.settings.name,
                                              .host = host_,
                                              .at = real,
                                              .attempt = queue.attempts,
                                              .maybe_sent = queue.maybe_sent},
                                             next, overview_, counts_));
        queue.maybe_sent = desk.last;
    }
    if (has_changed || !letters.empty()) save();
    for (const auto& [desk, letter] : letters) {
        deliverer_.Start(desk->settings, letter, now);
    }
    bool is_look_due = false;
    for (Desk& desk : desks_) {
        const bool is_failing = IsFailing(QueueOf(desk));
        is_look_due = is_look_due || is_failing != desk.was_failing;
        desk.was_failing = is_failing;
    }
    return is_look_due;
}

std::optional<Duration> Alerts::Due() const {
    std::optional<Duration> due = deliverer_.Due();
    for (const Desk& desk : desks_) {
        if (!desk.is_busy && desk.is_test_due) return Duration(0);
        if (desk.is_busy || box_.sinks.at(desk.settings.name).waiting.empty()) continue;
        const Duration next = std::max(desk.ready, desk.gathered);
        due = due ? std::min(*due, next) : next;
    }
    return due;
}

void Alerts::Hurry() {
    for (Desk& desk : desks_) desk.ready = desk.gathered = Duration(0);
}

bool Alerts::IsBusy() const { return std::ranges::any_of(desks_, &Desk::is_busy); }

std::vector<hxconditions::Sink> Alerts::Health() const {
    std::vector<hxconditions::Sink> sinks;
    for (const Desk& desk : desks_) {
        const SinkQueue& queue = box_.sinks.at(desk.settings.name);
        sinks.push_back({.name = desk.settings.name,
                         .is_failing = IsFailing(queue),
                         .error = queue.error,
                         .waiting = queue.waiting.size(),
                         .given_up = queue.given_up});
    }
    return sinks;
}

void Alerts::ForgetGivenUp(const std::string& sink) {
    const auto found = box_.sinks.find(sink);
    if (found != box_.sinks.end()) found->second.given_up = 0;
}

}  // namespace hxservice

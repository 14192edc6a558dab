#include "service/hxs_loop.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

#include "service/hxs_metrics.h"
#include "service/hxs_status.h"

namespace hxservice {

namespace {

// What follows from an event (a spare that steps in, a rebuild) is there by then, so that one more
// look tells all of it.
constexpr Duration kAfterEvents = std::chrono::seconds(2);

// A change is told while it is written.
constexpr Duration kUntilChanged = std::chrono::milliseconds(50);
// A machine that changes all the time does not keep the service busy.
constexpr Duration kBetweenChanges = std::chrono::milliseconds(500);

constexpr std::size_t kLongestHostName = 256;

}  // namespace

std::string HostName() {
    std::array<char, kLongestHostName> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) return "localhost";
    return name.data();
}

Loop::Loop(const Parts& parts, const Settings& settings, std::function<Settings()> read,
           Saved saved, const std::string& damage)
    : parts_(parts),
      settings_(settings),
      read_(std::move(read)),
      collector_(parts.source, parts.log, saved.place, std::move(saved.events)),
      watch_(parts.log, std::move(saved.state)),
      alerts_(parts.deliverer, parts.log, HostName(), settings.sinks, std::move(saved.alerts)) {
    self_.is_here = true;
    self_.state_was_damaged = !damage.empty();
    self_.state_damage = damage;
}

void Loop::Look(const News& news) {
    const hxconditions::Now now = parts_.outside.Clocks();
    answers_ = parts_.source.LookAtMachine();
    answers_.store = collector_.Store();
    answers_.store.events_lost = news.lost;
    answers_.store.was_reset = news.was_reset;
    answers_.service = self_;
    answers_.service.sinks = alerts_.Health();
    facts_ = parts_.source.FactsOfLastLook();
    looked_at_ = now.real;
    ++work_.looks;
    tasks_.Take(answers_, now);
    watch_.Look(answers_, news.events, now, settings_.conditions);
    alerts_.Take(watch_.Last(), watch_.Counts(), !news.events.empty(), parts_.outside.Now(),
                 now.real);
    Save();
    PlanNextLook(news);
}

// All in one transaction: after a crash an event is looked at again, or it was remembered and what
// it has changed waits to be told.
void Loop::Save() {
    const Desktop desktop{watch_.Edit(), watch_.Overview(), alerts_, parts_.outside.Clocks().real};
    parts_.keeper.Save({watch_.State(), collector_.Place(), alerts_.Box(),
                        collector_.Tally().Counts(), SavedAnswers(desktop)});
}

void Loop::ServeAlerts() {
    const bool is_look_due =
        alerts_.Serve(parts_.outside.Now(), parts_.outside.Clocks().real, [this] { Save(); });
    if (is_look_due) look_due_ = parts_.outside.Now();
}

void Loop::ServeCallers() {
    if (parts_.callers == nullptr) return;
    for (const Asked& asked : parts_.callers->TakeRequests(parts_.outside.Now())) {
        const Reply reply =
            ReplyTo(asked.request, asked.caller,
                    {watch_.Edit(), watch_.Overview(), alerts_, parts_.outside.Clocks().real});
        if (reply.has_changed) {
            Save();
            look_due_ = parts_.outside.Now();
        }
        parts_.callers->Answer(asked.from, reply.text);
    }
}

Duration Loop::WorkDue(Duration otherwise) const {
    Duration due = std::min(otherwise, alerts_.Due().value_or(otherwise));
    if (parts_.callers != nullptr) due = std::min(due, parts_.callers->Due().value_or(due));
    if (parts_.scrapers != nullptr) due = std::min(due, parts_.scrapers->Due().value_or(due));
    return due;
}

void Loop::PlanNextLook(const News& news) {
    const Duration now = parts_.outside.Now();
    if (!news.events.empty()) {
        look_due_ = now + kAfterEvents;
    } else if (watch_.IsPending()) {
        look_due_ = now + std::min(settings_.collect_interval, settings_.watch_interval);
    } else {
        look_due_ = now + settings_.watch_interval;
    }
}

Snapshot Loop::SnapshotOf(Rounds rounds, CheckIn how) {
    return {.written_at = parts_.outside.Clocks().real,
            .looked_at = looked_at_,
            .interval = settings_.collect_interval,
            .is_once = rounds == Rounds::kOnce,
            .version = HXRAIDSVC_VERSION,
            .collection = collector_.Status(),
            .is_collecting = how == CheckIn::kDone,
            .store = collector_.Extent(),
            .work = work_,
            .overview = watch_.Overview(),
            .counts = watch_.Counts(),
            .answers = answers_,
            .facts = facts_,
            .tasks = tasks_.Running(),
            .events = collector_.Tally(),
            .sinks = alerts_.Box().sinks};
}

CheckIn Loop::Round(Rounds rounds) {
    const Duration began = parts_.outside.Now();
    const bool was_closed = self_.rounds_without_check_in != 0;
    const CheckIn how = collector_.Collect();
    self_.rounds_without_check_in = how == CheckIn::kDone ? 0 : self_.rounds_without_check_in + 1;
    const bool is_closed = self_.rounds_without_check_in != 0;
    const News news = collector_.TakeNews();
    const bool has_news =
        !news.events.empty() || news.lost != 0 || news.was_reset || was_closed || is_closed;
    if (has_news || !look_due_ || began >= *look_due_) Look(news);
    const Snapshot snapshot = SnapshotOf(rounds, how);
    parts_.keeper.Publish(StatusText(snapshot));
    const std::string metrics = MetricsText(snapshot);
    parts_.keeper.PublishMetrics(metrics);
    if (parts_.scrapers != nullptr) parts_.scrapers->Publish(metrics);
    work_.last_round = parts_.outside.Now() - began;
    work_.in_rounds += work_.last_round;
    ++work_.rounds;
    const bool is_slow = work_.last_round > settings_.collect_interval;
    self_.slow_rounds = is_slow ? self_.slow_rounds + 1 : 0;
    return how;
}

void Loop::Reload() {
    parts_.manager.Reloading();
    try {
        settings_ = read_();
        alerts_.Configure(settings_.sinks);
        self_.rejected_configuration.clear();
        parts_.log.Say("the settings were read again");
    } catch (const SettingsError& error) {
        self_.rejected_configuration = std::string(error.what()) + "; the old settings hold";
        parts_.log.Say(self_.rejected_configuration);
    }
    look_due_.reset();  // what the settings say is looked at with the next round
    parts_.manager.Ready();
}

Duration Loop::Due(Duration ended) {
    const Duration next =
        ended + settings_.collect_interval + parts_.outside.Random(settings_.collect_jitter);
    return look_due_ ? std::min(next, *look_due_) : next;
}

bool Loop::WaitForNext() {
    const Duration ended = parts_.outside.Now();
    Duration due = Due(ended);
    // After the round, whose own calls change the machine.
    parts_.outside.WakeForChange(parts_.source.WatchForChanges());
    // A storm of signals does not put off the round: the time is looked at after each of them.
    do {
        parts_.manager.Alive();
        ServeCallers();
        if (parts_.scrapers != nullptr) parts_.scrapers->Serve(parts_.outside.Now());
        ServeAlerts();
        if (look_due_) due = std::min(due, *look_due_);
        const Duration left = std::max(WorkDue(due) - parts_.outside.Now(), Duration(0));
        switch (parts_.outside.Wait(std::min(left, parts_.manager.LongestSilence()))) {
            case Wake::kTime:
            case Wake::kWork:
                break;
            case Wake::kChanged:
                due = std::min(
                    due, std::max(parts_.outside.Now() + kUntilChanged, ended + kBetweenChanges));
                break;
            case Wake::kCheckNow:
                look_due_.reset();
                return true;
            case Wake::kReload:
                Reload();
                due = Due(ended);
                break;
            case Wake::kEnd:
                return false;
        }
    } while (parts_.outside.Now() < due);
    return true;
}

void Loop::Run() {
    Round(Rounds::kAgain);
    parts_.manager.Ready();
    parts_.manager.Tell(collector_.Status());
    while (WaitForNext()) {
        Round(Rounds::kAgain);
        parts_.manager.Tell(collector_.Status());
    }
    parts_.manager.Stopping();
    parts_.keeper.Withdraw();
}

CheckIn Loop::RunOnce() {
    const CheckIn how = Round(Rounds::kOnce);
    alerts_.Hurry();
    ServeAlerts();
    while (alerts_.IsBusy()) {
        const Duration now = parts_.outside.Now();
        const Duration left = std::max(alerts_.Due().value_or(now) - now, Duration(0));
        if (parts_.outside.Wait(left) == Wake::kEnd) break;
        ServeAlerts();
    }
    return how;
}

}  // namespace hxservice

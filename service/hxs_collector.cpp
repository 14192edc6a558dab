#include "service/hxs_collector.h"

#include <algorithm>
#include <utility>

namespace hxservice {

namespace {

// The library polls no more.
constexpr unsigned kMostAdapters = 4;

// Read at once, so that a full store needs little memory.
constexpr std::uint64_t kEventsPerPage = 500;

using State = hxconditions::Store::State;

std::string Counted(std::uint64_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

bool Collector::IsAnyAdapter(unsigned adapters) {
    if (adapters_ != adapters) {
        if (adapters != 0) log_.Say(Counted(adapters, "adapter", "adapters"));
        if (adapters > kMostAdapters) {
            log_.Say("events of the first " + std::to_string(kMostAdapters) +
                     " adapters alone can be collected");
        }
        adapters_ = adapters;
    }
    if (adapters == 0) controller_.Say("there is no adapter");
    return adapters != 0;
}

// Events that are taken from a controller and cannot be stored are lost, so that the store is
// tried first.
bool Collector::MayCheckIn(unsigned adapters) {
    const std::optional<std::string> reason = source_.WhyStoreIsClosed(adapters);
    if (reason) {
        const std::size_t end = std::min(reason->find(": "), reason->size());
        LookAtStore();
        store_state_.state = State::kNotWritable;
        store_state_.path = reason->substr(0, end);
        store_state_.reason = reason->substr(std::min(end + 2, reason->size()));
        store_.Say(*reason + ". No event is taken from a controller until it can be written");
    } else {
        store_.End();
    }
    return !reason;
}

void Collector::LookAtStore() {
    try {
        store_state_ = source_.LookAtStore();
    } catch (const SourceError& error) {
        store_state_ = {};
        store_state_.state = State::kUnreadable;
        store_state_.reason = error.what();
    }
}

// Events that were stored before the first look were told by whoever stored them.
void Collector::FollowStore(const StoreExtent& extent) {
    if (!place_) place_ = extent.next;
    if (told_ == 0 && tally_.Last().empty()) RememberLast(extent);
    if (extent.next < *place_) {
        log_.Say("the event store was reset: it ended at event " + std::to_string(*place_) +
                 " and ends at event " + std::to_string(extent.next));
        place_ = extent.first;
        tally_.ForgetLast();
        tally_.Lose(1);  // at least: how many went with the old store is not known
        news_.was_reset = true;
    }
}

void Collector::Lose(std::uint64_t events) {
    news_.lost += events;
    tally_.Lose(events);
}

// What was told before this process started, so that the last events are known at once.
void Collector::RememberLast(const StoreExtent& extent) {
    const std::uint64_t end = std::min(*place_, extent.next);
    const std::uint64_t first =
        std::max(extent.first, end - std::min<std::uint64_t>(end, EventTally::kLastEvents));
    if (first >= end) return;
    for (const StoredEvent& event : source_.ReadEvents(first, end)) tally_.Remember(event);
}

void Collector::TellEvents(const StoreExtent& extent) {
    if (extent.first > *place_) {
        Lose(extent.first - *place_);
        log_.Say(Counted(extent.first - *place_, "event was", "events were") +
                 " overwritten in the event store before this log could tell them");
        place_ = extent.first;
    }
    while (*place_ < extent.next) {
        const std::uint64_t end = std::min(extent.next, *place_ + kEventsPerPage);
        for (const StoredEvent& event : source_.ReadEvents(*place_, end)) {
            log_.Tell(event);
            tally_.Count(event);
            news_.events.push_back(event.event);
            ++told_;
        }
        place_ = end;
    }
}

News Collector::TakeNews() { return std::exchange(news_, {}); }

std::string Collector::Status() const {
    for (const Lasting* each : {&controller_, &store_, &events_}) {
        if (!each->Reason().empty()) return each->Reason();
    }
    return Counted(adapters_.value_or(0), "adapter", "adapters") + ", " +
           Counted(told_, "event", "events") + " collected since the start";
}

CheckIn Collector::Collect() {
    unsigned adapters = 0;
    try {
        adapters = source_.CountAdapters();
    } catch (const SourceError& error) {
        controller_.Say(error.what());
        adapters_.reset();
        return CheckIn::kUnreachable;
    }
    if (!IsAnyAdapter(adapters)) return CheckIn::kUnreachable;
    controller_.End();
    adapters = std::min(adapters, kMostAdapters);
    if (!MayCheckIn(adapters)) return CheckIn::kStoreClosed;
    LookAtStore();
    if (store_state_.state == State::kDamaged) {
        events_.Say("the event store " + store_state_.path + " is damaged: " + store_state_.reason +
                    "; move it aside, and the service makes a new one");
        return CheckIn::kStoreClosed;
    }
    try {
        FollowStore(source_.ReadExtent());
        source_.CheckIn(adapters);
        extent_ = source_.ReadExtent();
        TellEvents(extent_);
        events_.End();
        store_state_.state = State::kGood;
    } catch (const SourceError& error) {
        events_.Say(error.what());
        store_state_.state = State::kUnreadable;
        if (store_state_.reason.empty()) store_state_.reason = error.what();
        return CheckIn::kStoreClosed;
    }
    return CheckIn::kDone;
}

}  // namespace hxservice

#include "model/initialisations.h"

#include "codes/activity.h"
#include "codes/event.h"

namespace vexorctl {

namespace {

using hxcodes::EventKind;
using hxcodes::Step;

}  // namespace

void Initialisations::Take(const Happening& event) {
    const EventKind kind = event.facts.kind;
    const auto note = [&](Seen seen) {
        facts_.insert_or_assign(event.object, Fact{event.facts.adapter, seen});
    };
    if (kind == EventKind::kEventError) {
        std::erase_if(facts_,
                      [&](const auto& each) { return each.second.adapter == event.facts.adapter; });
        return;
    }
    if (kind == EventKind::kVirtualDiskDeleted) {
        facts_.erase(event.object);
        return;
    }
    if (kind == EventKind::kAdapterFound) found_.insert_or_assign(event.facts.adapter, event.time);
    if (kind == EventKind::kVirtualDiskCreated) {
        // An adapter that is found announces in that second what it has had before.
        const auto found = found_.find(event.facts.adapter);
        const bool is_announced = found != found_.end() && found->second == event.time;
        note(is_announced ? Seen::kNotTold : Seen::kNever);
        return;
    }
    const hxcodes::ActivityRow* const activity = hxcodes::ActivityOf(kind);
    if (activity == nullptr || activity->effect != hxcodes::Effect::kInitialises) return;
    const auto known = facts_.find(event.object);
    const bool is_done = known != facts_.end() && known->second.seen == Seen::kDone;
    switch (hxcodes::StepOf(*activity, kind).code) {
        case Step::kComplete:
            note(Seen::kDone);
            break;
        case Step::kAbort:
        case Step::kError:
            note(Seen::kNever);
            break;
        case Step::kStart:
        case Step::kRestart:
        case Step::kProgress:
        case Step::kResume:
        case Step::kAutoResume:
        case Step::kPause:
        case Step::kAutoPaused:
            // A background initialisation of what is valid makes it no worse.
            if (!is_done) note(Seen::kNotTold);
            break;
    }
}

std::optional<bool> Initialisations::Of(const std::string& object, bool runs) const {
    const auto found = facts_.find(object);
    const Seen seen = found == facts_.end() ? Seen::kNotTold : found->second.seen;
    if (seen == Seen::kDone) return true;
    if (seen == Seen::kNever || runs) return false;
    return std::nullopt;
}

}  // namespace vexorctl

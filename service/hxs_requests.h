// What people ask of the running service, by its socket: JSON in, JSON out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "conditions/hxc_overview.h"
#include "conditions/hxc_state.h"
#include "service/hxs_alerts.h"

namespace hxservice {

struct Caller {
    std::string name;  // of the user, for what is acknowledged and silenced
    bool may_change = false;
};

/// What requests read and change.
struct Desktop {
    hxconditions::State& state;
    const hxconditions::Overview& overview;
    Alerts& alerts;
    std::int64_t real;
};

struct Reply {
    std::string text;          // JSON: "ok", and "error" or what was asked for
    bool has_changed = false;  // save, and look at once
};

/// The answers to "list" and "history" in one, with the time: for those who ask while no service
/// runs.
std::string SavedAnswers(const Desktop& desktop);

/// Never throws for what a caller sends.
Reply ReplyTo(std::string_view request, const Caller& caller, const Desktop& desktop);

}  // namespace hxservice

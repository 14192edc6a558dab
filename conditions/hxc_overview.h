// The current conditions, sorted and folded: heads, worst first, each with the conditions that fold
// into it.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "conditions/hxc_state.h"

namespace hxconditions {

/// The user's settings.
struct Settings {
    std::map<Code, Level> levels;
    std::set<Code> off;  // told nowhere; only counted

    bool operator==(const Settings&) const = default;
};

struct Cause {
    Code code;
    std::string address;
    std::string identity;
};

struct Condition {
    Code code = Code::kNotWatched;
    Level level = Level::kInfo;
    bool level_is_set_here = false;
    Object object;
    std::int64_t since = 0;  // 0: not known
    SinceIs since_is = SinceIs::kAtOrBefore;
    std::int64_t first_seen = 0;
    std::int64_t last_seen = 0;
    std::string sentence;
    std::vector<Cause> causes;
    std::optional<Code> hindrance;
    std::string next_step;
    std::vector<std::string> command;
    std::string otherwise;  // the alternative: "replace a0/pd5"
    std::uint64_t count = 0;
    bool is_stale = false;
    bool is_flapping = false;
    std::optional<Acknowledgement> acknowledged;
    std::optional<std::int64_t> silenced_until;
    std::string detail;  // addition to a hindrance's name: "a0/pd7 (free, 1.8 TiB) would fit"
    std::string label;   // "a0/pd5 (QD-W17J22K63, phy 5)"
    std::optional<Event> event;
    std::vector<Condition> folded;
};

/// Counts of objects; null when they could not be counted.
struct Counts {
    std::optional<std::uint64_t> adapters, virtual_disks, disks, spares;
    std::optional<std::uint64_t> offline, unprotected, reduced, failed, missing, predicted;
};

struct Overview {
    std::vector<Condition> heads;
    std::optional<Level> overall;  // the worst of the heads; null when there is none
    // Numbers of heads by level; both kinds of unknown count as one.
    std::uint64_t critical = 0, unknown = 0, warning = 0, info = 0;
    std::uint64_t acknowledged = 0, silenced = 0;
    std::uint64_t off = 0;  // conditions that hold and are switched off here
    bool is_whole = true;   // silenced conditions are among the heads
};

/// `real` is the time by this machine's clock; `is_watched` tells that times of conditions are
/// known.
Overview OverviewOf(const State& state, const Settings& settings, std::int64_t real,
                    bool is_watched);

/// The overview without silenced conditions, which the exit code ignores; their count stays.
Overview WithoutSilenced(Overview overview);

/// The overview with what somebody else has found: each as a head in its place, or under the head
/// that it explains.
Overview WithFound(Overview overview, const std::vector<Condition>& found);

/// The overview with the times, acknowledgements and silences of those of its conditions that
/// somebody has watched.
Overview WithWatched(Overview overview, const std::vector<Condition>& watched);

Counts CountsOf(const Answers& answers);

/// The order of conditions: by rank, then by adapter, kind and number; silenced ones last.
bool ComesBefore(const Condition& left, const Condition& right);

}  // namespace hxconditions

// What is remembered from look to look. It is plain data: whoever keeps it writes it down whole,
// and a look that begins with what was written goes on as if nothing had been in between.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_finding.h"

namespace hxconditions {

/// Seconds since this machine was first watched. They run with the machine, not with its calendar,
/// and stand still while it is off.
using Ticks = std::int64_t;

struct Acknowledgement {
    std::string by;
    std::int64_t at = 0;
    std::string note;
};

enum class SinceIs : std::uint8_t {
    kEvent,       // the time that the controller told
    kAtOrBefore,  // it was so when it was first seen
};

/// A condition, from its first sign until it is cleared.
struct Held {
    Finding found{};
    bool is_from_memory = false;
    bool is_shown = false;  // it has held long enough
    bool is_stale = false;
    bool is_flapping = false;
    std::int64_t since = 0;
    SinceIs since_is = SinceIs::kAtOrBefore;
    std::int64_t first_seen = 0;
    std::int64_t last_seen = 0;
    Ticks began = 0;  // to hold
    std::uint32_t looks = 0;
    std::optional<Ticks> good_since;
    std::uint32_t good_looks = 0;
    std::vector<Ticks> hits;  // of what only events tell
    std::optional<Event> event;
    std::optional<Acknowledgement> acknowledged;
};

struct Silence {
    std::optional<Code> code{};  // of this code, of this thing, or of both
    std::string identity{};
    Ticks until = 0;
    bool is_sticky = false;  // stays when it gets worse, and when the condition ends
    std::string by{};
    std::string note{};
};

/// What consumers were last told of one thing and family.
struct Told {
    Finding found{};
    std::uint64_t count = 0;
    std::vector<std::string> causes;
    std::int64_t first_seen = 0;
    std::int64_t since = 0;
    SinceIs since_is = SinceIs::kAtOrBefore;
    Ticks began = 0;
};

struct SeenVirtualDisk {
    Object object;
    Ticks checked = 0;            // or first seen
    bool check_found = false;     // the check that runs has found stripes that disagree
    bool check_was_seen = false;  // from its start
};

struct SeenProgress {
    Activity activity;
    Ticks moved = 0;
};

struct SeenAdapter {
    Object object;
    std::size_t virtual_disks = 0;
};

struct SeenEnclosure {
    Object object;
    std::size_t disks = 0;
};

struct SeenLink {
    std::optional<unsigned> phys;
    std::optional<unsigned> speed;
};

struct SeenRemaps {
    Ticks at = 0;
    unsigned count = 0;
};

/// The inventory that rows of memory are found by; keys are identities.
struct Memory {
    KnownAdapters numbers;
    std::map<std::string, SeenAdapter> adapters;
    std::map<std::string, SeenVirtualDisk> virtual_disks;
    std::map<std::string, SeenProgress> progress;
    std::map<std::string, Object> batteries;
    std::map<std::string, Ticks> relearns;
    std::map<std::string, SeenEnclosure> enclosures;
    std::map<std::string, Object> elements;
    std::map<std::string, Object> free_disks;
    std::map<std::string, SeenLink> links;
    std::map<std::string, std::vector<SeenRemaps>> remaps;
    std::map<std::string, std::int64_t> clock_differences;  // seconds, of adapters
};

struct State {
    Ticks now = 0;
    std::int64_t boot = 0;  // by the clock of boot_id when it was `now`
    std::string boot_id;
    std::uint64_t looks = 0;
    std::optional<Ticks> started;  // this process, with its first look
    std::vector<Held> held;
    std::map<std::string, std::vector<Ticks>> raises;  // of the last hour, by key
    std::map<std::string, Told> told;
    std::vector<Silence> silences;
    Memory memory;
};

/// To be called once when a process begins with what another has written.
void NoteStart(State& state);

/// Acknowledges what is shown under that code on that thing: listed and quiet until it gets worse
/// or ends, or ended where the row says so. False when nothing is.
bool Acknowledge(State& state, Code code, const std::string& identity, const Acknowledgement& ack);

/// Whether acknowledging ends it: where its row says so, and for a free disk that is gone, for
/// nothing but the memory knows of it.
bool EndsByAcknowledgement(const Held& held);

/// At most 90 days, counted while the machine runs.
inline constexpr Ticks kLongestSilence = 90 * 86400;
void Silences(State& state, Silence silence, Ticks duration);

/// Of what a message is told once: the thing, and the family or the code.
std::string KeyOf(Code code, const Object& object);

}  // namespace hxconditions

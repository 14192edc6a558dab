// The state that is kept between looks. It is plain data: saved and loaded completely, it lets the
// next look continue as if nothing had happened in between.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_finding.h"

namespace hxconditions {

/// Seconds since this machine was first watched. They count only while the machine runs and ignore
/// changes of its clock.
using Ticks = std::int64_t;

struct Acknowledgement {
    std::string by;
    std::int64_t at = 0;
    std::string note;
};

enum class SinceIs : std::uint8_t {
    kEvent,       // the time that the controller reported
    kAtOrBefore,  // it held already when it was first seen
};

/// A condition, from its first sign until it is cleared.
struct Held {
    Finding found{};
    bool is_from_memory = false;
    bool is_shown = false;  // it has passed its damping
    bool is_stale = false;
    bool is_flapping = false;
    std::int64_t since = 0;
    SinceIs since_is = SinceIs::kAtOrBefore;
    std::int64_t first_seen = 0;
    std::int64_t last_seen = 0;
    Ticks began = 0;  // when it began to hold
    std::uint32_t looks = 0;
    std::optional<Ticks> good_since;
    std::uint32_t good_looks = 0;
    std::vector<Ticks> hits;  // for Needs::kEvents: times of the events
    std::optional<Event> event;
    std::optional<Acknowledgement> acknowledged;
};

struct Silence {
    std::optional<Code> code{};  // by code, by object, or by both
    std::string identity{};
    Ticks until = 0;
    bool is_sticky = false;  // continues when the condition gets worse or ends
    std::string by{};
    std::string note{};
};

/// The last report to consumers about one object and family.
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
    std::vector<Object> members{};  // the disk that last held valid data, by position
    Ticks checked = 0;              // the last check, or the first look
    bool check_found = false;       // the running check has found stripes that disagree
    bool check_was_seen = false;    // the running check was seen from its start
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

struct SeenFreeDisk {
    Object object;
    std::string enclosure;  // its address; empty: in none, or not known
};

struct SeenLink {
    std::optional<unsigned> phys;
    std::optional<unsigned> speed;
};

struct SeenRemaps {
    Ticks at = 0;
    unsigned count = 0;
};

/// The inventory with which rows that need memory are found; keys are identities.
struct Memory {
    KnownAdapters numbers;
    std::map<std::string, SeenAdapter> adapters;
    std::map<std::string, SeenVirtualDisk> virtual_disks;
    std::map<std::string, SeenProgress> progress;
    std::map<std::string, Object> batteries;
    std::map<std::string, Ticks> relearns;
    std::map<std::string, SeenEnclosure> enclosures;
    std::map<std::string, Object> elements;
    std::map<std::string, SeenFreeDisk> free_disks;
    std::map<std::string, SeenLink> links;
    std::map<std::string, std::vector<SeenRemaps>> remaps;
    std::map<std::string, std::int64_t> clock_differences;  // seconds, of adapters
};

struct State {
    Ticks now = 0;
    std::int64_t boot = 0;  // the boot clock (of boot_id) at the time `now`
    std::string boot_id;
    std::uint64_t looks = 0;
    std::optional<Ticks> started;  // time of this process's first look
    std::vector<Held> held;
    std::map<std::string, std::vector<Ticks>> raises;  // of the last hour, by key
    std::map<std::string, Told> told;
    std::vector<Silence> silences;
    Memory memory;
};

/// Call it once when a process starts with a state that another has saved.
void NoteStart(State& state);

/// Acknowledges the shown condition of that code on that object: it stays listed but quiet until it
/// gets worse or ends, or it ends at once where its row says so. False when there is none.
bool Acknowledge(State& state, Code code, const std::string& identity, const Acknowledgement& ack);

/// Whether an acknowledgement ends the condition: where its row says so, and for a missing free
/// disk, which only the memory knows.
bool EndsByAcknowledgement(const Held& held);

/// At most 90 days, counted while the machine runs.
inline constexpr Ticks kLongestSilence = 90 * 86400;
void Silences(State& state, Silence silence, Ticks duration);

/// The key by which messages are not repeated: the object, and the family or else the code.
std::string KeyOf(Code code, const Object& object);

}  // namespace hxconditions

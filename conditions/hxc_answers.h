// The answers of one look at a machine, filled in by the caller from any source. An unknown field
// is null, never zero, and a list is valid only when its query was read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace hxconditions {

/// The result of one query.
struct Query {
    enum class Result : std::uint8_t {
        kNotAsked,
        kRead,
        kUnsupported,  // the adapter does not support the call; counts as an answer
        kNone,         // the object does not exist, e.g. no battery; counts as an answer
        kFailed,
        kImplausible,  // the answer is impossible
        kDenied,       // no permission
    };
    Result result = Result::kNotAsked;
    std::string call;   // the call that did not succeed: "HX_LD_GetInfo"
    unsigned code = 0;  // the status that it returned
    std::string name;   // the code's name, if any: "busy"
    std::string what;   // kImplausible: what is wrong with the answer

    bool IsRead() const {
        return result == Result::kRead || result == Result::kUnsupported || result == Result::kNone;
    }
    bool Failed() const {
        return result == Result::kFailed || result == Result::kImplausible ||
               result == Result::kDenied;
    }
};

/// `kind` and `state` are codes of codes/activity.h.
struct Activity {
    unsigned kind = 0;
    unsigned state = 0;
    std::optional<unsigned> percent;
    std::optional<std::uint64_t> seconds_left;
};

/// A position of a virtual disk.
struct Member {
    std::optional<unsigned> disk;
    std::optional<unsigned> state;  // codes/state.h
    std::uint64_t sectors = 0;
};

struct VirtualDisk {
    unsigned id = 0;
    std::string name;
    std::uint64_t sectors = 0;
    unsigned level = 0;  // codes/level.h
    unsigned legs = 0;
    unsigned state = 0;             // codes/state.h
    std::string state_text;         // for a state without a code there: "7", "dreaming"
    std::optional<unsigned> cache;  // codes/virtual_disk.h
    std::optional<unsigned> group;
    std::vector<Member> members;
    std::optional<Activity> activity;
    std::optional<bool> auto_rebuild;
    bool is_unsynchronised = false;  // Linux RAID: its first synchronisation has not ended
};

struct Disk {
    unsigned id = 0;
    std::string serial;
    std::string wwn;
    unsigned status = 0;  // bits of codes/disk.h
    std::uint64_t sectors = 0;
    std::optional<std::uint64_t> free_sectors;
    std::optional<unsigned> group;  // of which it is a member or a spare
    std::optional<unsigned> enclosure;
    std::optional<unsigned> expander;  // to which it is connected
    std::string bay;                   // "slot 3", "enc0 phy 5"
    std::optional<bool> smart_alarm;
    std::optional<bool> smart_on;
    std::optional<bool> is_online;  // by its setting
    std::optional<unsigned> phys;
    std::optional<unsigned> speed;  // a higher code is a faster speed
    std::optional<unsigned> remapped;
    std::optional<Activity> activity;  // a media patrol or data scrub
};

struct DiskGroup {
    unsigned id = 0;
    std::string name;
    std::uint64_t sectors = 0;
    unsigned state = 0;
    std::vector<unsigned> disks;
    std::vector<unsigned> spares;
    std::optional<std::uint64_t> sectors_needed;  // by a disk that replaces a member
    std::optional<Activity> activity;
};

struct Element {
    unsigned id = 0;
    unsigned type = 0;           // codes/enclosure.h
    unsigned status = 0;         // codes/enclosure.h
    std::optional<int> reading;  // degrees Celsius, rpm or millivolts
    std::optional<int> low_critical, low_warning, high_warning, high_critical;
};

struct Enclosure {
    unsigned id = 0;
    std::string logical_id;
    std::vector<Element> elements;
};

struct Battery {
    unsigned status = 0;  // bits of codes/battery.h
    std::optional<unsigned> percent, percent_to_charge;
    std::optional<int> celsius, low_celsius, high_celsius;
    std::optional<unsigned> millivolts, low_millivolts, high_millivolts;
    std::optional<unsigned> capacity_mah, new_mah, cycles;
    std::optional<unsigned> minutes_to_full;
};

/// Whether the images of the flash are healthy.
struct Flash {
    std::optional<bool> all, autoload, boot_loader, firmware, bios, hba_info;
};

struct Adapter {
    unsigned number = 0;
    std::string serial;
    bool is_linux_raid = false;
    Query info;
    Flash flash;
    Query settings;
    std::optional<bool> auto_rebuild, poll_smart;
    Query virtual_disks_query;
    std::vector<VirtualDisk> virtual_disks;
    Query disks_query, smart;
    std::vector<Disk> disks;
    Query groups_query;
    std::vector<DiskGroup> groups;
    Query enclosures_query;
    std::vector<Enclosure> enclosures;
    Query battery_query;
    std::optional<Battery> battery;
    std::optional<std::int64_t> spares_collected_ago_s;  // Linux RAID: by the event service,
                                                         // seconds ago
};

/// The files in which the events are stored.
struct Store {
    enum class State : std::uint8_t {
        kNotLooked,
        kGood,
        kNotWritable,
        kUnreadable,  // not permitted, or missing although expected
        kDamaged,
    };
    State state = State::kNotLooked;
    std::string path;
    std::string folder;     // where the store's file belongs
    bool is_there = false;  // kUnreadable: there is something that may not be read
    std::string reason;
    std::uint64_t events_lost = 0;  // in a gap found by this look
    bool was_reset = false;         // since the last look: how many events went with it is unknown
};

/// A destination of alerts.
struct Sink {
    std::string name;
    bool is_failing = false;
    std::string error;
    std::uint64_t waiting = 0;
    std::uint64_t given_up = 0;
};

/// The event service, as known to itself or from its last report.
struct Service {
    bool is_here = false;  // the look is made by the service, so rows that need memory or events
                           // are checked
    std::optional<std::int64_t> silent_for_s;  // it has run here before; the age of its report
    std::string rejected_configuration;        // "FILE:LINE: WHAT"
    bool state_was_damaged = false;
    std::string state_damage;
    unsigned slow_rounds = 0;
    unsigned rounds_without_check_in = 0;
    std::vector<Sink> sinks;
};

struct Answers {
    Query machine;       // loading and opening the library and counting its adapters
    std::string reason;  // kFailed: the reason
    std::string advice;  // kFailed: what to do
    std::vector<Adapter> adapters;
    Store store;
    Service service;
};

/// An event as the controller reported it.
struct Event {
    unsigned adapter = 0;
    std::uint32_t sequence = 0;
    unsigned event_class = 0;
    unsigned code = 0;
    unsigned device = 0;
    std::int64_t time = 0;  // by the controller's clock
    std::uint32_t params[4] = {};
};

/// The clocks of this machine.
struct Now {
    std::int64_t real = 0;  // seconds since 1970, used only for dates
    std::int64_t boot = 0;  // seconds since the boot, including sleep; used for intervals
    std::string boot_id;
};

}  // namespace hxconditions

// The rows that the state file keeps between two looks: the numbers of objects, the settings, the
// result of the last look, and the events that were not fetched yet.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hxraid.h"
#include "model/hxmd_machine.h"

namespace hxmd {

// ---- Numbers ----

/// A disk keeps its number for ever.
struct KeptDisk {
    HX_U16 id = kNoId;
    std::string key;
    std::string model;
    std::string serial;
    std::uint64_t sectors = 0;
    friend bool operator==(const KeptDisk&, const KeptDisk&) = default;
};

struct KeptArray {
    HX_U16 id = kNoId;
    std::string uuid;
    std::string title;
    HX_U16 level = kNoId;  // 65535: never seen running
    HX_U16 places = 0;
    std::int64_t left = 0;  // time at which it was found missing; 0: present
    friend bool operator==(const KeptArray&, const KeptArray&) = default;
};

struct KeptBlock {
    HX_U16 id = kNoId;
    HX_U16 disk = kNoId;
    HX_U16 array = kNoId;
    HX_U16 slot = kNoId;
    std::uint64_t start = 0;  // first sector on the disk
    friend bool operator==(const KeptBlock&, const KeptBlock&) = default;
};

struct KeptEnclosure {
    HX_U16 id = kNoId;
    std::string key;
    friend bool operator==(const KeptEnclosure&, const KeptEnclosure&) = default;
};

// ---- Settings and measurements ----

/// A global spare.
struct KeptSpare {
    HX_U16 disk = kNoId;
    friend bool operator==(const KeptSpare&, const KeptSpare&) = default;
};

struct KeptSmart {
    HX_U16 disk = kNoId;
    std::int64_t at = 0;
    HX_U8 passed = 0;
    friend bool operator==(const KeptSmart&, const KeptSmart&) = default;
};

struct KeptSetting {
    std::string name;
    std::uint64_t value = 0;
    friend bool operator==(const KeptSetting&, const KeptSetting&) = default;
};

/// An activity that a caller has paused. It ends with the boot.
struct KeptPause {
    HX_U16 array = kNoId;
    HX_U8 action = 0;    // SyncAction
    HX_U16 members = 0;  // that had their content; when fewer are left, the pause is lifted
    std::string boot_id;
    friend bool operator==(const KeptPause&, const KeptPause&) = default;
};

/// One row: the boot of the last look and the next event's number.
struct KeptLook {
    std::string boot_id;
    std::uint64_t next_event = 1;
    friend bool operator==(const KeptLook&, const KeptLook&) = default;
};

// ---- The result of the last look ----

struct SeenDisk {
    HX_U16 id = kNoId;
    HX_U8 present = 0;
    HX_U8 failed = 0;
    HX_U8 spare = 0;
    HX_U8 write_cache = 0;  // 0 unknown, 1 write through, 2 write back
    HX_U8 smart_failed = 0;
    HX_U16 serves = kNoId;
    std::uint64_t errors = 0;      // that MD has corrected
    std::uint64_t bad_blocks = 0;  // rows of the log
    friend bool operator==(const SeenDisk&, const SeenDisk&) = default;
};

struct SeenArray {
    HX_U16 id = kNoId;
    HX_U8 present = 0;
    HX_U8 state = 0;
    HX_U8 activity = 0;
    HX_U8 activity_state = 0;
    HX_U16 percent = 0;
    HX_U8 in_sync = 0;      // no synchronisation or migration is due
    HX_U8 at_start = 0;     // no interrupted check is pending
    HX_U8 last_action = 0;  // SyncAction
    HX_U8 read_ahead = 0;
    std::uint64_t mismatches = 0;
    friend bool operator==(const SeenArray&, const SeenArray&) = default;
};

/// The disk that holds the content of an array's place.
struct SeenSlot {
    HX_U16 array = kNoId;
    HX_U16 slot = 0;
    HX_U16 disk = kNoId;
    friend bool operator==(const SeenSlot&, const SeenSlot&) = default;
};

struct Seen {
    std::vector<SeenDisk> disks;
    std::vector<SeenArray> arrays;
    std::vector<SeenSlot> slots;
};

/// An event and its bytes.
struct QueuedEvent {
    std::uint64_t number = 0;
    std::string bytes;
    friend bool operator==(const QueuedEvent&, const QueuedEvent&) = default;
};

struct Kept : Seen {
    std::vector<KeptDisk> known_disks;
    std::vector<KeptArray> known_arrays;
    std::vector<KeptBlock> known_blocks;
    std::vector<KeptEnclosure> known_enclosures;
    std::vector<KeptSpare> spares;
    std::vector<KeptSmart> smart;
    std::vector<KeptSetting> settings;
    std::vector<KeptPause> pauses;
    std::vector<KeptLook> look;  // empty before the first look
    std::vector<QueuedEvent> events;
};

}  // namespace hxmd

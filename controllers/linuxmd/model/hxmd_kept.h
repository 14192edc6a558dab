// What the state file keeps from one look to the next, as plain rows: who has which number, what
// was set, what the last look has seen, and the events that nobody has taken yet.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hxraid.h"
#include "model/hxmd_machine.h"

namespace hxmd {

// ---- Numbers ----

/// A disk keeps its number for good.
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
    HX_U16 level = kNoId;  // 65535: it was never seen running
    HX_U16 places = 0;
    std::int64_t left = 0;  // when it was seen to be gone; 0: it is there
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

/// A spare for every array.
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

/// One row: what is counted over all looks.
struct KeptLook {
    std::string boot_id;
    std::uint64_t next_event = 1;
    friend bool operator==(const KeptLook&, const KeptLook&) = default;
};

// ---- What the last look has seen ----

struct SeenDisk {
    HX_U16 id = kNoId;
    HX_U8 present = 0;
    HX_U8 failed = 0;
    HX_U8 spare = 0;
    HX_U8 write_cache = 0;  // 0 unknown, 1 write through, 2 write back
    HX_U8 smart_failed = 0;
    HX_U16 serves = kNoId;
    std::uint64_t errors = 0;      // that MD has mended
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
    HX_U8 at_start = 0;     // no check has ended before its time
    HX_U8 last_action = 0;  // SyncAction
    HX_U8 read_ahead = 0;
    std::uint64_t mismatches = 0;
    friend bool operator==(const SeenArray&, const SeenArray&) = default;
};

/// Whose content a place of an array holds.
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
    std::vector<KeptLook> look;  // none before the first one
    std::vector<QueuedEvent> events;
};

}  // namespace hxmd

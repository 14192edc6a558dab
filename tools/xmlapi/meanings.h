// The meaning of each field of commands and results: its text, unit, possible values and table of
// codes.
#pragma once

#include <string_view>
#include <vector>

#include "describe.h"

/// The tables of codes at the end of the page.
enum class Codes {
    kNone,
    kActivities,
    kActivityStates,
    kBatteryBits,
    kBatteryFeatures,
    kBlockBits,
    kCacheBits,
    kCheckTypes,
    kConnections,
    kControls,
    kDevices,
    kDiskActions,
    kDiskBits,
    kDiskFeatures,
    kElementStates,
    kElementTypes,
    kEventClasses,
    kEvents,
    kImages,
    kInits,
    kLevelBits,
    kLevels,
    kLinkSpeeds,
    kPowers,
    kRateBits,
    kRebuildTypes,
    kRefusals,
    kRemapReasons,
    kRoundings,
    kSeverities,
    kStates,
};

struct Meaning {
    std::string_view of;  // a record or a function; empty: every other field of that name
    std::string_view field;
    std::string_view text;
    // The unit and the range; empty where the type or the table of codes suffices.
    std::string_view values;
    Codes codes = Codes::kNone;
};

/// The meaning of a field of a record, or of a child or an element of a function. Throws
/// std::runtime_error, which names the field, when it or its values are missing.
const Meaning& MeaningOf(std::string_view of, const Element& element);
const Meaning& MeaningOf(std::string_view of, const Child& child);

/// The rows that MeaningOf has never returned: their fields no longer exist.
std::vector<const Meaning*> UnusedMeanings();

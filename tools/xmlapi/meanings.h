// What each field of a command and of a result means: its text, its unit, the values that it can
// have and the table of codes that names them.
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
    std::string_view
        of;  // a record or a function; empty for the field of that name everywhere else
    std::string_view field;
    std::string_view text;
    // The unit and the range; empty where the type or the table of codes says it all.
    std::string_view values;
    Codes codes = Codes::kNone;
};

/// The meaning of a field of a record, or of a child or an element of a function. Throws
/// std::runtime_error, which names it, when there is none or its values are not told.
const Meaning& MeaningOf(std::string_view of, const Element& element);
const Meaning& MeaningOf(std::string_view of, const Child& child);

/// The rows that MeaningOf has not given yet: what they told of is gone.
std::vector<const Meaning*> UnusedMeanings();

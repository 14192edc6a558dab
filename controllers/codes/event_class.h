// The classes and severities of events.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// Class of an Event. The codes are those of the library's event texts.
enum class EventClass : HX_U16 {
    kAdapter = 0,
    kVirtualDisk = 1,
    kDisk = 2,
    kPortMultiplier = 3,
    kExpander = 4,
    kMetadata = 5,
    kBadSectors = 6,
    kSas = 7,
    kEnclosure = 8,
    kBattery = 9,
    kFlash = 10,
    kCache = 11,
    kMisc = 12,
    kDiskGroup = 13,
};

struct EventClassRow {
    EventClass code;
    std::string_view name;
    // For events whose code has no text: the library's key and the sentence. Empty where the
    // library prints nothing.
    std::string_view unknown_key;
    std::string_view unknown_sentence;
};
inline constexpr EventClassRow kEventClasses[] = {
    {EventClass::kAdapter, "adapter", "EVT_Unknown_Adpt",
     "An adapter event of unknown code {1} (device {2})"},
    {EventClass::kVirtualDisk, "virtual_disk", "EVT_Unknown_LD",
     "A virtual disk event of unknown code {1} (device {2})"},
    {EventClass::kDisk, "disk", "EVT_Unknown_HD", "A disk event of unknown code {1} (device {2})"},
    {EventClass::kPortMultiplier, "port_multiplier", "", ""},
    {EventClass::kExpander, "expander", "EVT_Unknown_EXPANDER",
     "An expander event of unknown code {1}"},
    {EventClass::kMetadata, "metadata", "", ""},
    {EventClass::kBadSectors, "bad_sectors", "", ""},
    {EventClass::kSas, "sas", "EVT_Unknown_SAS", "A SAS event of code {1} (device {2})"},
    {EventClass::kEnclosure, "enclosure", "EVT_Unknown_ENCL",
     "An enclosure event of code {1} (device {2})"},
    {EventClass::kBattery, "battery", "EVT_Unknown_BAT", "A battery event of unknown code {1}"},
    {EventClass::kFlash, "flash", "EVT_Unknown_FLASH", "A flash event of code {1} (device {2})"},
    {EventClass::kCache, "cache", "EVT_Unknown_CACHE", "A cache event of code {1} (device {2})"},
    {EventClass::kMisc, "misc", "EVT_Unknown_MISC",
     "A miscellaneous event of unknown code {1} (device {2})"},
    {EventClass::kDiskGroup, "disk_group", "", ""},
};
static_assert(IsTable(kEventClasses));
constexpr const auto& TableOf(EventClass) { return kEventClasses; }
inline constexpr auto kEventClassNames = NamesFrom(kEventClasses);

/// The library's key for an event of an unknown class.
inline constexpr std::string_view kUnknownClassKey = "EVT_Unknown";
inline constexpr std::string_view kUnknownClassSentence =
    "An event of unknown class {1} on adapter {2}";

/// Severity of an Event.
enum class Severity : HX_U8 {
    kUnknown = 0,
    kOther = 1,
    kInfo = 2,
    kWarning = 3,
    kMinor = 4,
    kMajor = 5,
    kCritical = 6,
    kFatal = 7,
};
inline constexpr Named kSeverityNames[] = {
    {Severity::kUnknown, "unknown"},   {Severity::kOther, "other"}, {Severity::kInfo, "info"},
    {Severity::kWarning, "warning"},   {Severity::kMinor, "minor"}, {Severity::kMajor, "major"},
    {Severity::kCritical, "critical"}, {Severity::kFatal, "fatal"},
};
static_assert(IsTable(kSeverityNames));
constexpr const auto& TableOf(Severity) { return kSeverityNames; }

}  // namespace hxcodes

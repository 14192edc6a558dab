// Events: one row for each, with its key, its sentence and the conditions that it affects.
//
// Classes and codes are those of the library's event texts; a test compares the keys with them.
// Severities are our controllers' choice. The virtual controller sends most of these events; its
// charger, timers and memory do not fail, and its battery relearns only on request.
#pragma once

#include <algorithm>

#include "codes/activity.h"
#include "codes/event_class.h"

namespace hxcodes {

/// Class and code as one number.
constexpr HX_U32 At(HX_U16 event_class, HX_U16 code) { return HX_U32{event_class} << 16 | code; }
constexpr HX_U32 At(EventClass event_class, HX_U16 code) { return At(NumberOf(event_class), code); }

/// Kinds of events. The comments describe Params; without one they are zero.
enum class EventKind : HX_U32 {
    // Adapters.
    kSmartPollingOn = At(EventClass::kAdapter, 0),
    kSmartPollingOff = At(EventClass::kAdapter, 1),
    kAlarmOn = At(EventClass::kAdapter, 2),  // the alarm is switched on
    kAlarmOff = At(EventClass::kAdapter, 3),
    kAutoRebuildOn = At(EventClass::kAdapter, 4),
    kAutoRebuildOff = At(EventClass::kAdapter, 5),
    kMediaPatrolRateSet = At(EventClass::kAdapter, 6),
    kCopybackSetOn = At(EventClass::kAdapter, 7),
    kCopybackSetOff = At(EventClass::kAdapter, 8),
    kAdapterFound = At(EventClass::kAdapter, 9),    // the text is the adapter's serial number
    kEventError = At(EventClass::kAdapter, 65535),  // Params[2]: events lost
    // Virtual disks; the steps of their activities have codes from kActivities.
    kVirtualDiskOffline = At(EventClass::kVirtualDisk, 0),
    kVirtualDiskOnline = At(EventClass::kVirtualDisk, 1),
    kVirtualDiskCreated = At(EventClass::kVirtualDisk, 2),
    kVirtualDiskDeleted = At(EventClass::kVirtualDisk, 3),
    kVirtualDiskDegraded = At(EventClass::kVirtualDisk, 4),  // Params: ParamsOfDegraded
    kVirtualDiskPartiallyOptimal =
        At(EventClass::kVirtualDisk, 5),  // Params[0]: 1 when it was worse before
    kCacheModeChanged = At(EventClass::kVirtualDisk, 6),
    kErrorsFixed = At(EventClass::kVirtualDisk, 7),  // a fix has made redundancy agree
    kErrorsFound = At(EventClass::kVirtualDisk, 8),  // Params[0]: stripes that disagree
    kVirtualDiskImported =
        At(EventClass::kVirtualDisk, 9),  // Params[0]: its ID on the other controller
    kInconsistentAddress =
        At(EventClass::kVirtualDisk, 100),  // Params[0] and [1]: high and low half of the sector
    // Disks.
    kDiskOffline = At(EventClass::kDisk, 0),
    kDiskOnline = At(EventClass::kDisk, 1),
    kDiskSetDown = At(EventClass::kDisk, 2),  // the controller has given it up
    kDiskTimeout = At(EventClass::kDisk, 3),
    kDiskReadWriteError = At(EventClass::kDisk, 4),
    kDiskSmartEvent = At(EventClass::kDisk, 5),
    kDiskErrorFixed = At(EventClass::kDisk, 6),
    kSpareAssigned = At(EventClass::kDisk, 9),
    kSpareRemoved = At(EventClass::kDisk, 10),
    kSmartThresholdOver = At(EventClass::kDisk, 11),
    kSmartPollingFailed = At(EventClass::kDisk, 12),
    kRemapTable80Full = At(EventClass::kDisk, 13),
    kRemapTableFull = At(EventClass::kDisk, 14),
    kSectorReassigned = At(EventClass::kDisk, 15),
    kDiskCacheModeChanged = At(EventClass::kDisk, 16),
    kMediaPatrolStarted = At(EventClass::kDisk, 17),
    kMediaPatrolStartedAgain = At(EventClass::kDisk, 18),
    kMediaPatrolPaused = At(EventClass::kDisk, 19),
    kMediaPatrolResumed = At(EventClass::kDisk, 20),
    kMediaPatrolAborted = At(EventClass::kDisk, 21),
    kMediaPatrolCompleted = At(EventClass::kDisk, 22),
    kMediaPatrolProgress = At(EventClass::kDisk, 23),  // Params[0]: percent
    kMediaPatrolFailed = At(EventClass::kDisk, 24),
    kMediaPatrolAutoPaused = At(EventClass::kDisk, 25),
    kMediaPatrolAutoResumed = At(EventClass::kDisk, 26),
    kScrubError =
        At(EventClass::kDisk, 36),  // Params: error count, high and low half of the sector, 0
    kRemapAdded =
        At(EventClass::kDisk, 37),  // Params: high and low half of the sector, sectors, reason
    kRemapRemoved = At(EventClass::kDisk, 38),
    kDiskSetFree = At(EventClass::kDisk, 54),
    // Expanders.
    kExpanderPluggedIn = At(EventClass::kExpander, 0),
    kExpanderPluggedOut = At(EventClass::kExpander, 1),
    // Enclosures; the library has no texts for these.
    kElementCritical = At(EventClass::kEnclosure, 0),  // Params: element, type, reading
    kElementWarning = At(EventClass::kEnclosure, 1),   // Params: element, type, reading
    kElementOk = At(EventClass::kEnclosure, 2),        // Params: element, type, reading
    // The battery.
    kBatteryPresent = At(EventClass::kBattery, 0),
    kBatteryNotPresent = At(EventClass::kBattery, 1),
    kBatteryNewDetected = At(EventClass::kBattery, 2),
    kBatteryNeedsReplacement = At(EventClass::kBattery, 3),
    kBatteryReplaced = At(EventClass::kBattery, 4),
    kBatteryRemoved = At(EventClass::kBattery, 5),
    kBatteryRelearnStarted = At(EventClass::kBattery, 6),
    kBatteryRelearnInProgress = At(EventClass::kBattery, 7),
    kBatteryRelearnCompleted = At(EventClass::kBattery, 8),
    kBatteryRelearnTimedOut = At(EventClass::kBattery, 9),
    kBatteryRelearnPending = At(EventClass::kBattery, 10),
    kBatteryRelearnPostponed = At(EventClass::kBattery, 11),
    kBatteryRelearnIn4Days = At(EventClass::kBattery, 12),
    kBatteryRelearnIn2Days = At(EventClass::kBattery, 13),
    kBatteryRelearnIn1Day = At(EventClass::kBattery, 14),
    kBatteryRelearnIn5Hours = At(EventClass::kBattery, 15),
    kBatteryDischarging = At(EventClass::kBattery, 16),
    kBatteryStartedCharging = At(EventClass::kBattery, 17),
    kBatteryChargeComplete = At(EventClass::kBattery, 18),
    kBatteryChargerProblem = At(EventClass::kBattery, 19),
    kBatteryCapacityBelowThreshold = At(EventClass::kBattery, 20),
    kBatteryCapacityAboveThreshold = At(EventClass::kBattery, 21),
    kBatteryTemperatureLow = At(EventClass::kBattery, 22),
    kBatteryTemperatureNormal = At(EventClass::kBattery, 23),
    kBatteryTemperatureHigh = At(EventClass::kBattery, 24),
    kBatteryVoltageLow = At(EventClass::kBattery, 25),
    kBatteryVoltageNormal = At(EventClass::kBattery, 26),
    kBatteryVoltageHigh = At(EventClass::kBattery, 27),
    kBatteryForceWriteThrough = At(EventClass::kBattery, 28),
    kBatterySafeToUseWriteBack = At(EventClass::kBattery, 29),
    // Flash; the library has no texts for these.
    kFlashErased = At(EventClass::kFlash, 0),   // Params: image
    kFlashWritten = At(EventClass::kFlash, 1),  // Params: image, bytes
    kFlashDamaged = At(EventClass::kFlash, 2),  // Params: image
    // Miscellaneous.
    kBackgroundRateChanged = At(EventClass::kMisc, 1),  // Params[0]: percent, as of the other rates
    kMemoryErrorOfSeveralBits = At(EventClass::kMisc, 5),
    kMemoryErrorOfOneBit = At(EventClass::kMisc, 6),
    kShutdownCommand = At(EventClass::kMisc, 7),
    kDiskMissingAtBoot = At(EventClass::kMisc, 16),
    kVirtualDiskMissesDisks = At(EventClass::kMisc, 17),
    kVirtualDiskMissingAtBoot = At(EventClass::kMisc, 18),  // all of its disks are missing
    kPreviousConfigurationMissingAtBoot = At(EventClass::kMisc, 19),
    kDiskTooSmallForRebuild = At(EventClass::kMisc, 20),
    kDiskTooSmallForCopyback =
        At(EventClass::kMisc, 21),  // Params[0]: 1 when it replaces a lost member in its bay
    kSyncRateChanged = At(EventClass::kMisc, 22),
    kInitRateChanged = At(EventClass::kMisc, 23),
    kRebuildRateChanged = At(EventClass::kMisc, 24),
    kMigrationRateChanged = At(EventClass::kMisc, 25),
    kCopybackRateChanged = At(EventClass::kMisc, 26),
    kMediaPatrolRateChanged = At(EventClass::kMisc, 27),
    // Disk groups.
    kDiskGroupCreated = At(EventClass::kDiskGroup, 0),
    kDiskGroupDeleted = At(EventClass::kDiskGroup, 1),
};

constexpr EventKind KindOf(const Event& event) {
    return static_cast<EventKind>(HX_U32{event.Class} << 16 | event.Code);
}
constexpr HX_U16 ClassOf(EventKind kind) { return static_cast<HX_U16>(NumberOf(kind) >> 16); }
constexpr HX_U16 CodeOf(EventKind kind) { return static_cast<HX_U16>(NumberOf(kind) & 0xFFFF); }

/// The kind of object that DeviceID of an event refers to.
enum class Subject : HX_U8 {
    kOfAdapter,
    kOfVirtualDisk,
    kOfDisk,
    kOfExpander,
    kOfEnclosure,
    kOfBattery,  // an adapter has one; DeviceID is 0
    kOfImage,    // in the flash: Image
    kOfDiskGroup,
};

struct EventRow {
    EventKind code;
    Subject subject;
    Severity severity;
    // The library's key without its prefix, and the sentence for people. {object} stands for the
    // object's address, {1} for the number that every line has, {2} and so on for the values after
    // it. Both are empty where the library has no text.
    std::string_view key;
    std::string_view sentence;
    // The codes of the conditions that the event may start or end, separated by blanks. Whether
    // they hold is decided by reading the object: the event triggers that and gives the time.
    std::string_view raises = {};
    std::string_view clears = {};
};

inline constexpr std::string_view kEventKeyPrefix = "EVT_CODE_";

namespace event_rows {

using enum EventKind;
using enum Subject;
using enum Severity;

inline constexpr EventRow kEvents[] = {
    {kSmartPollingOn, kOfAdapter, kInfo, "SMART_FROM_OFF_TO_ON",
     "SMART polling of {object} was switched on"},
    {kSmartPollingOff, kOfAdapter, kInfo, "SMART_FROM_ON_TO_OFF",
     "SMART polling of {object} was switched off"},
    {kAlarmOn, kOfAdapter, kInfo, "ALARM_TURN_ON", "The alarm of {object} was switched on"},
    {kAlarmOff, kOfAdapter, kInfo, "ALARM_TURN_OFF", "The alarm of {object} was switched off"},
    {kAutoRebuildOn, kOfAdapter, kInfo, "AUTO_REBUILD_ON",
     "Automatic rebuild on {object} was switched on", "", "AUTO_REBUILD_OFF"},
    {kAutoRebuildOff, kOfAdapter, kInfo, "AUTO_REBUILD_OFF",
     "Automatic rebuild on {object} was switched off", "AUTO_REBUILD_OFF"},
    {kMediaPatrolRateSet, kOfAdapter, kInfo, "HD_MP_RATE_CHANGE",
     "The media patrol rate of {object} was changed"},
    {kCopybackSetOn, kOfAdapter, kInfo, "COPY_BACK_ON", "Copyback on {object} was switched on"},
    {kCopybackSetOff, kOfAdapter, kInfo, "COPY_BACK_OFF", "Copyback on {object} was switched off"},
    {kAdapterFound, kOfAdapter, kInfo, "ADAPTER_FOUND",
     "Adapter {object} was found, serial number {2}"},
    {kEventError, kOfAdapter, kWarning, "EVT_ERR",
     "Events of {object} were lost before they were collected: {2}", "EVENTS_LOST"},
    {kVirtualDiskOffline, kOfVirtualDisk, kCritical, "LD_OFFLINE",
     "Virtual disk {object} is offline", "VD_OFFLINE"},
    {kVirtualDiskOnline, kOfVirtualDisk, kInfo, "LD_ONLINE", "Virtual disk {object} is online", "",
     "VD_OFFLINE VD_NO_REDUNDANCY VD_REDUNDANCY_REDUCED"},
    {kVirtualDiskCreated, kOfVirtualDisk, kInfo, "LD_CREATE", "Virtual disk {object} was created",
     "VD_NOT_INITIALISED"},
    {kVirtualDiskDeleted, kOfVirtualDisk, kInfo, "LD_DELETE", "Virtual disk {object} was deleted",
     "", "VD_GONE VD_BLOCK_LOST VD_NOT_INITIALISED"},
    {kVirtualDiskDegraded, kOfVirtualDisk, kMajor, "LD_DEGRADE",
     "Virtual disk {object} is degraded", "VD_NO_REDUNDANCY"},
    {kVirtualDiskPartiallyOptimal, kOfVirtualDisk, kWarning, "LD_PARTIALLYOPTIMAL",
     "Virtual disk {object} is partially optimal: some redundancy is left",
     "VD_REDUNDANCY_REDUCED"},
    {kCacheModeChanged, kOfVirtualDisk, kInfo, "LD_CACHE_MODE_CHANGE",
     "The cache mode of virtual disk {object} was changed"},
    {kErrorsFixed, kOfVirtualDisk, kInfo, "LD_FIXED", "Virtual disk {object} was repaired", "",
     "VD_INCONSISTENT"},
    {kErrorsFound, kOfVirtualDisk, kWarning, "LD_FOUND_ERROR",
     "Errors were found on virtual disk {object}", "VD_INCONSISTENT"},
    {kVirtualDiskImported, kOfVirtualDisk, kInfo, "LD_IMPORTED",
     "Virtual disk {object} was imported (it was {2})", "", "VD_FOREIGN"},
    {kInconsistentAddress, kOfVirtualDisk, kWarning, "LD_INCONSISTENT_LBA",
     "Virtual disk {object} is inconsistent at block 0x{2}", "VD_BLOCK_LOST"},
    {kDiskOffline, kOfDisk, kMajor, "HD_OFFLINE", "Disk {object} is offline",
     "DISK_MISSING DISK_OFFLINE"},
    {kDiskOnline, kOfDisk, kInfo, "HD_ONLINE", "Disk {object} is online", "",
     "DISK_MISSING DISK_OFFLINE"},
    {kDiskSetDown, kOfDisk, kMajor, "HD_SETDOWN",
     "Disk {object} was set down: it takes part in nothing any more", "DISK_FAILED"},
    {kDiskTimeout, kOfDisk, kWarning, "HD_TIMEOUT", "Disk {object} did not answer in time",
     "DISK_TIMEOUTS"},
    {kDiskReadWriteError, kOfDisk, kWarning, "HD_RW_ERROR",
     "Disk {object} reported a read or write error", "DISK_MEDIA_ERRORS"},
    {kDiskSmartEvent, kOfDisk, kWarning, "HD_SMART", "Disk {object} reported a SMART event",
     "DISK_PREDICTED_FAILURE"},
    {kDiskErrorFixed, kOfDisk, kInfo, "HD_ERROR_FIXED", "An error on disk {object} was repaired"},
    {kSpareAssigned, kOfDisk, kInfo, "HD_ASSIGN_SPARE", "Disk {object} was made a spare"},
    {kSpareRemoved, kOfDisk, kInfo, "HD_REMOVE_SPARE", "Disk {object} is no spare any more"},
    {kSmartThresholdOver, kOfDisk, kMajor, "HD_SMART_THRESHOLD_OVER",
     "A SMART threshold of disk {object} is exceeded", "DISK_PREDICTED_FAILURE"},
    {kSmartPollingFailed, kOfDisk, kWarning, "HD_SMART_POLLING_FAIL",
     "The SMART state of disk {object} could not be read", "SMART_UNREADABLE"},
    {kRemapTable80Full, kOfDisk, kWarning, "BAD_BLOCK_TBL_80_FULL",
     "The bad block table of disk {object} is 80 percent full", "DISK_REMAP_NEARLY_FULL"},
    {kRemapTableFull, kOfDisk, kMajor, "BAD_BLOCK_TBL_FULL",
     "The bad block table of disk {object} is full", "DISK_REMAP_FULL"},
    {kSectorReassigned, kOfDisk, kInfo, "BAD_BLOCK_REASSIGNED",
     "A bad block of disk {object} was reassigned"},
    {kDiskCacheModeChanged, kOfDisk, kInfo, "HD_CACHE_MODE_CHANGE",
     "The cache mode of disk {object} was changed"},
    {kMediaPatrolStarted, kOfDisk, kInfo, "HD_MP_START",
     "A media patrol of disk {object} has started", "", "ACTIVITY_FAILED"},
    {kMediaPatrolStartedAgain, kOfDisk, kInfo, "HD_MP_RESTART",
     "A media patrol of disk {object} has started again", "", "ACTIVITY_FAILED"},
    {kMediaPatrolPaused, kOfDisk, kInfo, "HD_MP_PAUSE",
     "The media patrol of disk {object} was paused"},
    {kMediaPatrolResumed, kOfDisk, kInfo, "HD_MP_RESUME",
     "The media patrol of disk {object} was resumed"},
    {kMediaPatrolAborted, kOfDisk, kWarning, "HD_MP_ABORT",
     "The media patrol of disk {object} was aborted"},
    {kMediaPatrolCompleted, kOfDisk, kInfo, "HD_MP_COMPLETE",
     "The media patrol of disk {object} is complete", "", "ACTIVITY_FAILED"},
    {kMediaPatrolProgress, kOfDisk, kInfo, "HD_MP_PROGRESS",
     "The media patrol of disk {object} is {2} percent done"},
    {kMediaPatrolFailed, kOfDisk, kMajor, "HD_MP_ERROR",
     "The media patrol of disk {object} has failed", "ACTIVITY_FAILED"},
    {kMediaPatrolAutoPaused, kOfDisk, kInfo, "HD_MP_AUTO_PAUSED",
     "The media patrol of disk {object} gave way to something more urgent"},
    {kMediaPatrolAutoResumed, kOfDisk, kInfo, "HD_MP_AUTO_RESUME",
     "The media patrol of disk {object} goes on"},
    {kScrubError, kOfDisk, kWarning, "HD_SC_ERROR",
     "Disk {object} answered command 0x{2} with a sense code (0x{3} 0x{4} 0x{5})"},
    {kRemapAdded, kOfDisk, kInfo, "HD_RCT_ADD",
     "Sectors of disk {object} were remapped (0x{2} 0x{3}, {4}, 0x{5})"},
    {kRemapRemoved, kOfDisk, kInfo, "HD_RCT_REMOVE",
     "A remapping on disk {object} was taken back (0x{2} 0x{3}, {4}, 0x{5})"},
    {kDiskSetFree, kOfDisk, kInfo, "HD_SETFREE", "Disk {object} was set free"},
    {kExpanderPluggedIn, kOfExpander, kInfo, "EXPANDER_PLUG_IN", "Expander {1} was plugged in", "",
     "ENC_GONE"},
    {kExpanderPluggedOut, kOfExpander, kMajor, "EXPANDER_PLUG_OUT", "Expander {1} was unplugged",
     "ENC_GONE"},
    {kElementCritical, kOfEnclosure, kCritical, "", "", "ENC_ELEMENT_CRITICAL"},
    {kElementWarning, kOfEnclosure, kWarning, "", "", "ENC_ELEMENT_WARNING"},
    {kElementOk, kOfEnclosure, kInfo, "", "", "", "ENC_ELEMENT_CRITICAL ENC_ELEMENT_WARNING"},
    {kBatteryPresent, kOfBattery, kInfo, "BAT_PRESENT", "The battery of {object} is present", "",
     "BATTERY_REMOVED"},
    {kBatteryNotPresent, kOfBattery, kWarning, "BAT_NOT_PRESENT",
     "The battery of {object} is not present", "BATTERY_REMOVED"},
    {kBatteryNewDetected, kOfBattery, kInfo, "BAT_NEW_BAT_DETECTED",
     "A new battery was detected on {object}", "", "BATTERY_REMOVED"},
    {kBatteryNeedsReplacement, kOfBattery, kMajor, "BAT_NEED_REPLACE",
     "The battery of {object} needs to be replaced", "BATTERY_REPLACE"},
    {kBatteryReplaced, kOfBattery, kInfo, "BAT_REPLACED", "The battery of {object} was replaced",
     "", "BATTERY_REPLACE"},
    {kBatteryRemoved, kOfBattery, kMajor, "BAT_REMOVED", "The battery of {object} was removed",
     "BATTERY_REMOVED"},
    {kBatteryRelearnStarted, kOfBattery, kInfo, "BAT_RELEARN_STARTED",
     "A relearn cycle of the battery of {object} has started"},
    {kBatteryRelearnInProgress, kOfBattery, kInfo, "BAT_RELEARN_IN_PGRS",
     "A relearn cycle of the battery of {object} is in progress"},
    {kBatteryRelearnCompleted, kOfBattery, kInfo, "BAT_RELEARN_COMPLETED",
     "The relearn cycle of the battery of {object} is complete", "", "BATTERY_RELEARN_OVERDUE"},
    {kBatteryRelearnTimedOut, kOfBattery, kWarning, "BAT_RELEARN_TIMED_OUT",
     "The relearn cycle of the battery of {object} timed out", "BATTERY_RELEARN_OVERDUE"},
    {kBatteryRelearnPending, kOfBattery, kInfo, "BAT_RELEARN_PENDING",
     "A relearn cycle of the battery of {object} is pending"},
    {kBatteryRelearnPostponed, kOfBattery, kInfo, "BAT_RELEARN_POSTPONED",
     "The relearn cycle of the battery of {object} was postponed"},
    {kBatteryRelearnIn4Days, kOfBattery, kInfo, "BAT_START_IN_4_DAYS",
     "A relearn cycle of the battery of {object} starts in 4 days"},
    {kBatteryRelearnIn2Days, kOfBattery, kInfo, "BAT_START_IN_2_DAYS",
     "A relearn cycle of the battery of {object} starts in 2 days"},
    {kBatteryRelearnIn1Day, kOfBattery, kInfo, "BAT_START_IN_1_DAY",
     "A relearn cycle of the battery of {object} starts in 1 day"},
    {kBatteryRelearnIn5Hours, kOfBattery, kInfo, "BAT_START_IN_5_HOURS",
     "A relearn cycle of the battery of {object} starts in 5 hours"},
    {kBatteryDischarging, kOfBattery, kInfo, "BAT_DISCHARGING",
     "The battery of {object} is discharging"},
    {kBatteryStartedCharging, kOfBattery, kInfo, "BAT_STARTED_CHARGING",
     "The battery of {object} has started charging"},
    {kBatteryChargeComplete, kOfBattery, kInfo, "BAT_CHARGE_CMPLT",
     "The battery of {object} is charged", "", "BATTERY_CHARGER BATTERY_LOW"},
    {kBatteryChargerProblem, kOfBattery, kMajor, "BAT_CHARGER_PROBLEM_DETECTED",
     "The charger of the battery of {object} has a problem", "BATTERY_CHARGER"},
    {kBatteryCapacityBelowThreshold, kOfBattery, kWarning, "BAT_CAPACITY_BELOW_THRESHOLD",
     "The capacity of the battery of {object} is below its threshold", "BATTERY_LOW"},
    {kBatteryCapacityAboveThreshold, kOfBattery, kInfo, "BAT_CAPACITY_ABOVE_THRESHOLD",
     "The capacity of the battery of {object} is above its threshold", "", "BATTERY_LOW"},
    {kBatteryTemperatureLow, kOfBattery, kWarning, "BAT_TEMP_IS_LOW",
     "The battery of {object} is too cold", "BATTERY_TEMPERATURE"},
    {kBatteryTemperatureNormal, kOfBattery, kInfo, "BAT_TEMP_IS_NORMAL",
     "The temperature of the battery of {object} is normal", "", "BATTERY_TEMPERATURE"},
    {kBatteryTemperatureHigh, kOfBattery, kMajor, "BAT_TEMP_IS_HIGH",
     "The battery of {object} is too hot", "BATTERY_TEMPERATURE"},
    {kBatteryVoltageLow, kOfBattery, kWarning, "BAT_VOLTAGE_LOW",
     "The voltage of the battery of {object} is low", "BATTERY_VOLTAGE"},
    {kBatteryVoltageNormal, kOfBattery, kInfo, "BAT_VOLTAGE_NORMAL",
     "The voltage of the battery of {object} is normal", "", "BATTERY_VOLTAGE"},
    {kBatteryVoltageHigh, kOfBattery, kMajor, "BAT_VOLTAGE_HIGH",
     "The voltage of the battery of {object} is high", "BATTERY_VOLTAGE"},
    {kBatteryForceWriteThrough, kOfBattery, kWarning, "BAT_FORCE_WRITE_THROUGH",
     "The battery of {object} does not allow write-back caching", "CACHE_FORCED_WRITE_THROUGH"},
    {kBatterySafeToUseWriteBack, kOfBattery, kInfo, "BAT_SAFE_TO_USE_WRITE_BACK",
     "The battery of {object} allows write-back caching", "", "CACHE_FORCED_WRITE_THROUGH"},
    {kFlashErased, kOfImage, kWarning, "", ""},
    {kFlashWritten, kOfImage, kInfo, "", "", "", "FLASH_IMAGE_DAMAGED"},
    {kFlashDamaged, kOfImage, kCritical, "", "", "FLASH_IMAGE_DAMAGED"},
    {kBackgroundRateChanged, kOfAdapter, kInfo, "MISC_CHANGE_BACK_ACTIVITY_RATE",
     "The background rate was changed to {1} percent"},
    // Spelt MUTLI, as the library prints it.
    {kMemoryErrorOfSeveralBits, kOfAdapter, kCritical, "MISC_MUTLI_BIT_ECC_ERR",
     "A memory error of several bits that could not be corrected (syndrome {1}, address 0x{2}, "
     "count {3})",
     "ADAPTER_MEMORY_FAILED"},
    {kMemoryErrorOfOneBit, kOfAdapter, kWarning, "MISC_SINGLE_BIT_ECC_ERR",
     "A memory error of one bit was corrected ({1})", "ADAPTER_MEMORY_ERRORS"},
    {kShutdownCommand, kOfAdapter, kInfo, "MISC_GET_SHUTDOWN_CMD",
     "The controller was told to shut down"},
    {kDiskMissingAtBoot, kOfDisk, kMajor, "MISC_PD_MISSING_FROM_CONFIG_AT_BOOT",
     "Disk {object} of the configuration was missing at boot", "DISK_MISSING"},
    {kVirtualDiskMissesDisks, kOfVirtualDisk, kMajor, "MISC_VD_MISSING_DRIVES",
     "Virtual disk {object} misses disks", "VD_NO_REDUNDANCY"},
    {kVirtualDiskMissingAtBoot, kOfVirtualDisk, kMajor, "MISC_VD_MISSING_AT_BOOT",
     "Virtual disk {object} was missing at boot", "VD_OFFLINE"},
    {kPreviousConfigurationMissingAtBoot, kOfAdapter, kMajor,
     "MISC_PREVIOUS_CONFIG_MISSING_AT_BOOT", "The previous configuration was missing at boot",
     "ADAPTER_CONFIG_LOST"},
    {kDiskTooSmallForRebuild, kOfDisk, kWarning, "MISC_PD_TOO_SMALL_FOR_AUTOREBUILD",
     "Disk {object} is too small for an automatic rebuild", "SPARE_TOO_SMALL"},
    {kDiskTooSmallForCopyback, kOfDisk, kWarning, "MISC_PD_TOO_SMALL_FOR_COPYBACK",
     "Disk {object} is too small for a copyback", "REPLACEMENT_TOO_SMALL"},
    {kSyncRateChanged, kOfAdapter, kInfo, "MISC_CHANGE_SYNC_RATE",
     "The consistency check rate was changed to {1} percent"},
    {kInitRateChanged, kOfAdapter, kInfo, "MISC_CHANGE_INIT_RATE",
     "The initialisation rate was changed to {1} percent"},
    {kRebuildRateChanged, kOfAdapter, kInfo, "MISC_CHANGE_REBUILD_RATE",
     "The rebuild rate was changed to {1} percent"},
    {kMigrationRateChanged, kOfAdapter, kInfo, "MISC_CHANGE_MIGRATION_RATE",
     "The migration rate was changed to {1} percent"},
    {kCopybackRateChanged, kOfAdapter, kInfo, "MISC_CHANGE_COPYBACK_RATE",
     "The copyback rate was changed to {1} percent"},
    {kMediaPatrolRateChanged, kOfAdapter, kInfo, "MISC_CHANGE_MP_RATE",
     "The media patrol rate was changed to {1} percent"},
    {kDiskGroupCreated, kOfDiskGroup, kInfo, "ARRAY_CREATE", "Disk group {object} was created"},
    {kDiskGroupDeleted, kOfDiskGroup, kInfo, "ARRAY_DELETE", "Disk group {object} was deleted"},
};

}  // namespace event_rows

using event_rows::kEvents;

/// The text without a serial number of an event that has one with it in its row.
struct TextVariant {
    EventKind code;
    std::string_view key;
    std::string_view sentence;
};
inline constexpr TextVariant kTextVariants[] = {
    {EventKind::kAdapterFound, "ADAPTER_FOUND_NO_SERIAL",
     "Adapter {object} was found; it has no serial number"},
};

// ---- Steps of activities ----------------------------------------------------------------------

/// The part of a step in an activity's texts. Keys and sentences combine both: LD_CHECK_START, "The
/// consistency check of virtual disk {object} has started".
struct StepRow {
    Step code;
    Severity severity;
    std::string_view key;
    std::string_view phrase;
    std::string_view raises = {};
    std::string_view clears = {};
};
inline constexpr StepRow kSteps[] = {
    {Step::kStart, Severity::kInfo, "START", "has started", "", "ACTIVITY_FAILED"},
    {Step::kRestart, Severity::kInfo, "RESTART", "has started again", "", "ACTIVITY_FAILED"},
    {Step::kPause, Severity::kInfo, "PAUSE", "was paused", "ACTIVITY_PAUSED"},
    {Step::kResume, Severity::kInfo, "RESUME", "was resumed", "", "ACTIVITY_PAUSED"},
    {Step::kAbort, Severity::kWarning, "ABORT", "was aborted"},
    {Step::kComplete, Severity::kInfo, "COMPLETE", "is complete", "", "ACTIVITY_FAILED"},
    {Step::kProgress, Severity::kInfo, "PROGRESS", "is {2} percent done"},
    {Step::kError, Severity::kMajor, "ERROR", "has failed", "ACTIVITY_FAILED"},
    {Step::kAutoPaused, Severity::kInfo, "AUTO_PAUSED", "gave way to something more urgent"},
    {Step::kAutoResume, Severity::kInfo, "AUTO_RESUME", "goes on"},
};
static_assert(Ascends(kSteps) && std::size(kSteps) == kCodesPerActivity);

/// Steps of single activities whose conditions differ from those in kSteps, which these replace.
struct StepConditions {
    ActivityKind activity;
    Step step;
    std::string_view raises;
    std::string_view clears;
};
inline constexpr StepConditions kStepConditions[] = {
    {ActivityKind::kInitQuick, Step::kAbort, "VD_NOT_INITIALISED", ""},
    {ActivityKind::kInitQuick, Step::kComplete, "", "ACTIVITY_FAILED VD_NOT_INITIALISED"},
    {ActivityKind::kInitBackground, Step::kAbort, "VD_NOT_INITIALISED", ""},
    {ActivityKind::kInitBackground, Step::kComplete, "", "ACTIVITY_FAILED VD_NOT_INITIALISED"},
    {ActivityKind::kInitForeground, Step::kAbort, "VD_NOT_INITIALISED", ""},
    {ActivityKind::kInitForeground, Step::kComplete, "", "ACTIVITY_FAILED VD_NOT_INITIALISED"},
    {ActivityKind::kRebuild, Step::kStart, "", "REBUILD_FAILED REBUILD_ABORTED"},
    {ActivityKind::kRebuild, Step::kRestart, "", "REBUILD_FAILED REBUILD_ABORTED"},
    {ActivityKind::kRebuild, Step::kPause, "REBUILD_PAUSED", ""},
    {ActivityKind::kRebuild, Step::kResume, "", "REBUILD_PAUSED"},
    {ActivityKind::kRebuild, Step::kAbort, "REBUILD_ABORTED", ""},
    {ActivityKind::kRebuild, Step::kComplete, "", "REBUILD_FAILED REBUILD_ABORTED"},
    {ActivityKind::kRebuild, Step::kError, "REBUILD_FAILED", ""},
};

/// The event of an activity's step; none for an activity without events.
constexpr std::optional<EventKind> EventOf(ActivityKind activity, Step step) {
    const auto& events = RowOf(activity).events;
    if (!events) return std::nullopt;
    const HX_U16 code = static_cast<HX_U16>(events->first + NumberOf(step));
    return static_cast<EventKind>(At(events->type, code));
}

/// The activity to whose steps this kind of event belongs; null when there is none.
constexpr const ActivityRow* ActivityOf(EventKind kind) {
    for (const ActivityRow& row : kActivities) {
        if (!row.events || NumberOf(row.events->type) != ClassOf(kind)) continue;
        const int step = CodeOf(kind) - row.events->first;
        if (step >= 0 && step < kCodesPerActivity) return &row;
    }
    return nullptr;
}

/// The step that such an event reports.
constexpr const StepRow& StepOf(const ActivityRow& activity, EventKind kind) {
    return kSteps[CodeOf(kind) - activity.events->first];
}

constexpr Severity SeverityOf(EventKind kind) {
    if (HasCode(kEvents, NumberOf(kind))) return RowOf(kEvents, kind).severity;
    const ActivityRow* const activity = ActivityOf(kind);
    return activity == nullptr ? Severity::kUnknown : StepOf(*activity, kind).severity;
}

/// Whether an event of that kind and first parameter tells that a virtual disk was worse before.
constexpr bool IsBetter(EventKind kind, HX_U32 param) {
    return kind == EventKind::kVirtualDiskPartiallyOptimal && param == 1;
}

/// The severity of an event with that first parameter: what got better is no warning.
constexpr Severity SeverityOf(EventKind kind, HX_U32 param) {
    return IsBetter(kind, param) ? Severity::kInfo : SeverityOf(kind);
}

// ---- Checks of the rows -------------------------------------------------------------------------

static_assert(Ascends(kEvents), "codes ascend, and no two events have the same");

/// Whether every place in a sentence is {object} or {1} to {9}.
constexpr bool HasGoodPlaces(std::string_view sentence) {
    for (std::size_t open = sentence.find('{'); open != std::string_view::npos;
         open = sentence.find('{', open + 1)) {
        const std::string_view place = sentence.substr(open, sentence.find('}', open) - open);
        const bool number = place.size() == 2 && place[1] >= '1' && place[1] <= '9';
        if (!number && place != "{object") return false;
    }
    return true;
}
constexpr bool HasGoodTexts(const EventRow& row) {
    return row.key.empty() == row.sentence.empty() && HasGoodPlaces(row.sentence);
}
static_assert(std::ranges::all_of(kEvents, HasGoodTexts),
              "a key has its sentence, whose places can be filled");

/// Whether each step of each activity has exactly one text: by the rule, or by its own row.
consteval bool StepsHaveOneTextEach() {
    for (const ActivityRow& activity : kActivities) {
        for (const StepRow& step : kSteps) {
            const auto kind = EventOf(activity.code, step.code);
            if (!kind) continue;
            const bool listed = HasCode(kEvents, NumberOf(*kind));
            if (listed != activity.events->key.empty()) return false;
            if (listed && RowOf(kEvents, *kind).severity != step.severity) return false;
            if (ActivityOf(*kind) != &activity) return false;
        }
    }
    return true;
}
static_assert(StepsHaveOneTextEach(),
              "the codes of an activity's steps and those of other events do not meet");

/// The library composes the texts of virtual disks' activities by this rule.
constexpr bool FollowsRuleOfTexts(const ActivityRow& row) {
    if (row.runs_on != RunsOn::kVirtualDisk) return true;
    return row.events && row.events->first == 10 + kCodesPerActivity * NumberOf(row.code);
}
static_assert(std::ranges::all_of(kActivities, FollowsRuleOfTexts));

}  // namespace hxcodes

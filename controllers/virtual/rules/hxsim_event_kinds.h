// The events that the virtual controller sends: class, code and severity of each.
//
// Classes and codes are those of event texts; the severities are the virtual controller's choice.
// Texts that have no kind here tell of what cannot happen to it: its battery relearns when it is
// told to and never on a day of its own, its charger, timers and memory do not fail, it keeps no
// configuration but the one that is there, and nobody shuts it down.
#pragma once

#include "hxraid.h"

namespace hxsim {

/// A kind of event. What Params hold is said beside it; where nothing is said they are zero.
struct EventKind {
    HX_U16 type;  // class of the event
    HX_U16 code;
    HX_U8 severity;

    friend constexpr bool operator==(const EventKind&, const EventKind&) = default;
};

inline constexpr HX_U8 kInfo = 2, kWarning = 3, kMinor = 4, kMajor = 5, kCritical = 6;

// ---- Adapters (the device is the adapter) ----

inline constexpr EventKind kSmartPollingOn{0, 0, kInfo};
inline constexpr EventKind kSmartPollingOff{0, 1, kInfo};
inline constexpr EventKind kAlarmOn{0, 2, kInfo};  // the alarm may sound
inline constexpr EventKind kAlarmOff{0, 3, kInfo};
inline constexpr EventKind kAutoRebuildOn{0, 4, kInfo};
inline constexpr EventKind kAutoRebuildOff{0, 5, kInfo};
inline constexpr EventKind kCopybackSetOn{0, 7, kInfo};
inline constexpr EventKind kCopybackSetOff{0, 8, kInfo};
inline constexpr EventKind kAdapterFound{0, 9, kInfo};       // the text is its serial number
inline constexpr EventKind kEventError{0, 65535, kWarning};  // Params[2]: events lost

// ---- Virtual disks (the device is the virtual disk) ----

inline constexpr EventKind kVirtualDiskOffline{1, 0, kCritical};
inline constexpr EventKind kVirtualDiskOnline{1, 1, kInfo};
inline constexpr EventKind kVirtualDiskCreated{1, 2, kInfo};
inline constexpr EventKind kVirtualDiskDeleted{1, 3, kInfo};
inline constexpr EventKind kVirtualDiskDegraded{1, 4, kMajor};
inline constexpr EventKind kVirtualDiskPartiallyOptimal{1, 5, kWarning};
inline constexpr EventKind kCacheModeChanged{1, 6, kInfo};
inline constexpr EventKind kErrorsFixed{1, 7, kInfo};  // a check or fix has made redundancy agree
inline constexpr EventKind kErrorsFound{1, 8, kWarning};  // a check has met stripes that disagree
inline constexpr EventKind kVirtualDiskImported{
    1, 9, kInfo};  // Params[0]: its ID on the other controller
inline constexpr EventKind kInconsistentAddress{
    1, 100, kWarning};  // Params[0] and [1]: high and low half of the sector

/// The steps of an activity, as offsets from its first code.
enum class Step : HX_U16 {
    kStart = 0,
    kRestart = 1,
    kPause = 2,
    kResume = 3,
    kAbort = 4,
    kComplete = 5,
    kProgress = 6,  // Params[0]: percent
    kError = 7,
    kAutoPaused = 8,
    kAutoResume = 9,
};

constexpr HX_U8 SeverityOf(Step step) {
    return step == Step::kError ? kMajor : step == Step::kAbort ? kWarning : kInfo;
}

/// A step of a virtual disk's activity, an ActivityKind from ActivityKind::kCheck to
/// ActivityKind::kCopyback: ten codes each, from 20 on.
constexpr EventKind VirtualDiskStep(HX_U8 activity, Step step) {
    const auto code = static_cast<HX_U16>(10 + 10 * activity + static_cast<HX_U16>(step));
    return {1, code, SeverityOf(step)};
}

/// A step of a disk's media patrol; it has codes of its own, and a data scrub has none but
/// kScrubError.
constexpr EventKind MediaPatrolStep(Step step) {
    return {2, static_cast<HX_U16>(17 + static_cast<HX_U16>(step)), SeverityOf(step)};
}

// ---- Disks (the device is the disk) ----

inline constexpr EventKind kDiskOffline{2, 0, kMajor};
inline constexpr EventKind kDiskOnline{2, 1, kInfo};
inline constexpr EventKind kDiskSetDown{2, 2, kMajor};  // the controller has given it up
inline constexpr EventKind kDiskReadWriteError{2, 4, kWarning};
inline constexpr EventKind kDiskErrorFixed{2, 6, kInfo};
inline constexpr EventKind kSpareAssigned{2, 9, kInfo};
inline constexpr EventKind kSpareRemoved{2, 10, kInfo};
inline constexpr EventKind kSmartThresholdOver{2, 11, kMajor};
inline constexpr EventKind kRemapTable80Full{2, 13, kWarning};
inline constexpr EventKind kRemapTableFull{2, 14, kMajor};
inline constexpr EventKind kSectorReassigned{2, 15, kInfo};
inline constexpr EventKind kDiskCacheModeChanged{2, 16, kInfo};
inline constexpr EventKind kScrubError{
    2, 36, kWarning};  // Params: error count, high and low half of the sector, 0
inline constexpr EventKind kRemapAdded{
    2, 37, kInfo};  // Params: high and low half of the sector, sectors, reason
inline constexpr EventKind kDiskSetFree{2, 54, kInfo};

// ---- Expanders and disk groups (the device is the object) ----

inline constexpr EventKind kExpanderPluggedIn{4, 0, kInfo};
inline constexpr EventKind kDiskGroupCreated{13, 0, kInfo};
inline constexpr EventKind kDiskGroupDeleted{13, 1, kInfo};

// ---- Enclosures (the device is the enclosure; these have no text of their own) ----

inline constexpr EventKind kElementCritical{8, 0, kCritical};  // Params: element, type, reading
inline constexpr EventKind kElementWarning{8, 1, kWarning};    // Params: element, type, reading
inline constexpr EventKind kElementOk{8, 2, kInfo};            // Params: element, type, reading

// ---- Battery ----

inline constexpr EventKind kBatteryPresent{9, 0, kInfo};
inline constexpr EventKind kBatteryNotPresent{9, 1, kWarning};
inline constexpr EventKind kBatteryNewDetected{9, 2, kInfo};
inline constexpr EventKind kBatteryNeedsReplacement{9, 3, kMajor};
inline constexpr EventKind kBatteryReplaced{9, 4, kInfo};
inline constexpr EventKind kBatteryRemoved{9, 5, kMajor};
inline constexpr EventKind kBatteryRelearnStarted{9, 6, kInfo};
inline constexpr EventKind kBatteryRelearnInProgress{9, 7, kInfo};
inline constexpr EventKind kBatteryRelearnCompleted{9, 8, kInfo};
inline constexpr EventKind kBatteryDischarging{9, 16, kInfo};
inline constexpr EventKind kBatteryStartedCharging{9, 17, kInfo};
inline constexpr EventKind kBatteryChargeComplete{9, 18, kInfo};
inline constexpr EventKind kBatteryCapacityBelowThreshold{9, 20, kWarning};
inline constexpr EventKind kBatteryCapacityAboveThreshold{9, 21, kInfo};
inline constexpr EventKind kBatteryTemperatureLow{9, 22, kWarning};
inline constexpr EventKind kBatteryTemperatureNormal{9, 23, kInfo};
inline constexpr EventKind kBatteryTemperatureHigh{9, 24, kMajor};
inline constexpr EventKind kBatteryVoltageLow{9, 25, kWarning};
inline constexpr EventKind kBatteryVoltageNormal{9, 26, kInfo};
inline constexpr EventKind kBatteryVoltageHigh{9, 27, kMajor};
inline constexpr EventKind kBatteryForceWriteThrough{9, 28, kWarning};
inline constexpr EventKind kBatterySafeToUseWriteBack{9, 29, kInfo};

// ---- Flash (the device is the image; these have no text of their own) ----

inline constexpr EventKind kFlashErased{10, 0, kInfo};       // Params: image
inline constexpr EventKind kFlashWritten{10, 1, kInfo};      // Params: image, bytes
inline constexpr EventKind kFlashDamaged{10, 2, kCritical};  // Params: image

// ---- Miscellaneous ----

inline constexpr EventKind kBackgroundRateChanged{
    12, 1, kInfo};  // Params[0]: percent, as of the other rates
inline constexpr EventKind kSyncRateChanged{12, 22, kInfo};
inline constexpr EventKind kInitRateChanged{12, 23, kInfo};
inline constexpr EventKind kRebuildRateChanged{12, 24, kInfo};
inline constexpr EventKind kMigrationRateChanged{12, 25, kInfo};
inline constexpr EventKind kCopybackRateChanged{12, 26, kInfo};
inline constexpr EventKind kMediaPatrolRateChanged{12, 27, kInfo};
inline constexpr EventKind kDiskMissingAtBoot{12, 16, kMajor};  // the device is the disk
inline constexpr EventKind kVirtualDiskMissesDisks{12, 17,
                                                   kMajor};  // the device is the virtual disk
inline constexpr EventKind kVirtualDiskMissingAtBoot{
    12, 18, kMajor};  // not one of its disks is there; the device is the virtual disk
inline constexpr EventKind kDiskTooSmallForRebuild{12, 20, kWarning};   // the device is the disk
inline constexpr EventKind kDiskTooSmallForCopyback{12, 21, kWarning};  // the device is the disk

}  // namespace hxsim

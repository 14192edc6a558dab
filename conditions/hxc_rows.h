// The table of conditions: what can be wrong with a machine, its level, its texts and the next
// step. All consumers take these from here.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace hxconditions {

/// In the order of their ranks. The level of a code never changes: a worse or milder condition is
/// another code. A released name is never changed or reused.
enum class Code : std::uint8_t {
    // Critical.
    kVdOffline,
    kVdGone,
    kVdDirtyDegraded,
    kVdNoRedundancy,
    kVdBlockLost,
    kAdapterGone,
    kAdapterConfigLost,
    kAdapterMemoryFailed,
    kFlashFirmwareDamaged,
    kEncElementCritical,
    kEventsNotCollected,
    // Unknown: may hide something critical.
    kControllerUnreachable,
    kControllerDenied,
    kAdapterUnreadable,
    kVdsUnreadable,
    kDisksUnreadable,
    kEnclosuresUnreadable,
    kAnswerImplausible,
    kVdStateUnknown,
    // Warning.
    kVdRebuildingUnprotected,
    kVdRedundancyReduced,
    kVdRebuilding,
    kRebuildPaused,
    kRebuildStalled,
    kRebuildFailed,
    kRebuildAborted,
    kAutoRebuildOff,
    kSpareTooSmall,
    kSpareCollectorStopped,
    kDiskFailed,
    kDiskMissing,
    kDiskOffline,
    kDiskPredictedFailure,
    kDiskRemapFull,
    kDiskRemapNearlyFull,
    kDiskMediaErrors,
    kDiskTimeouts,
    kReplacementTooSmall,
    kEncGone,
    kDgOffline,
    kDgDegraded,
    kLinkReduced,
    kVdInconsistent,
    kVdNotInitialised,
    kVdForeign,
    kDiskForeign,
    kActivityFailed,
    kActivityStalled,
    kActivityPaused,
    kCacheUnprotected,
    kCacheForcedWriteThrough,
    kBatteryReplace,
    kBatteryRemoved,
    kBatteryOff,
    kBatteryTemperature,
    kBatteryVoltage,
    kBatteryCharger,
    kBatteryLow,
    kBatteryRelearnOverdue,
    kEncElementWarning,
    kEncElementRemoved,
    kFlashImageDamaged,
    kAdapterMemoryErrors,
    kEventsLost,
    kStoreDamaged,
    kServiceStale,
    kServiceConfigRejected,
    kServiceStateDamaged,
    kServiceSlow,
    kDeliveryFailing,
    kDeliveryDropped,
    // Unknown: hides at most a warning.
    kBatteryUnreadable,
    kSmartUnreadable,
    kGroupsUnreadable,
    kSettingsUnreadable,
    kElementStateUnknown,
    kStoreUnreadable,
    // Information.
    kBatteryRelearning,
    kActivityRunning,
    kSpareNone,
    kVdCheckOverdue,
    kDiskSmartOff,
    kAutoRebuildDisabled,
    kClockDiffers,
    kNotWatched,
};

/// A smaller value is worse. The two kinds of unknown have the same name and differ in what they
/// may hide.
enum class Level : std::uint8_t { kCritical, kUnknown, kWarning, kMinorUnknown, kInfo };

/// The kind of a condition's object. Conditions of equal rank are listed in this order.
enum class Kind : std::uint8_t {
    kMachine,
    kAdapter,
    kVirtualDisk,
    kDiskGroup,
    kDisk,
    kEnclosure,
    kElement,
    kBattery,
    kStore,
    kService,
    kSink,
};

/// Codes of one family exclude each other on an object: only the worst holds.
enum class Family : std::uint8_t {
    kNone,
    kVirtualDisk,
    kHindrance,  // prevents a rebuild; several may hold, but only the first is reported
    kDisk,
    kRemapTable,
    kElement,
    kDiskGroup,
    kCache,
};

/// The data that a row needs besides one look at the machine.
enum class Needs : std::uint8_t {
    kLook,    // nothing more
    kMemory,  // the results of earlier looks
    kEvents,  // events: it is known only from them
};

/// The answers on which a row depends: it is cleared only when all of them were read.
struct Source {
    enum Bit : std::uint16_t {
        kMachine = 0x0001,
        kInfo = 0x0002,
        kSettings = 0x0004,
        kVirtualDisks = 0x0008,
        kDisks = 0x0010,
        kSmart = 0x0020,
        kGroups = 0x0040,
        kEnclosures = 0x0080,
        kBattery = 0x0100,
        kStore = 0x0200,
        kService = 0x0400,
        kEvents = 0x0800,
    };
};

/// The head into which a condition folds as its cause, hindrance or consequence.
enum class Folds : std::uint8_t {
    kNever,
    kIntoVirtualDisk,  // of its member, disk group or rebuild
    kIntoBattery,      // of the same adapter
    kIntoUnreadable,   // of the same adapter: the condition that explains the failed query
};

/// How long a condition must hold before it is shown, or be absent before it is cleared.
struct Damping {
    std::uint32_t seconds = 0;
    std::uint32_t looks = 0;
};

struct Row {
    Code code;
    std::string_view name;
    std::uint16_t rank;
    Kind kind;
    Family family = Family::kNone;
    Needs needs = Needs::kLook;
    std::uint16_t rests_on;
    Folds folds = Folds::kNever;
    Damping up{};
    Damping down{};
    // For Needs::kEvents: the number of events within a time that raise the condition, and the time
    // after the last event at which it ends (0: it does not end by age).
    std::uint32_t hits = 1;
    std::uint32_t hits_within_s = 0;
    std::uint32_t age_s = 0;
    bool ends_by_ack = false;  // an acknowledgement ends it
    // In the sentence {o} is the object's name and address, {a} only its address.
    std::string_view sentence;
    std::string_view phrase = {};  // used in the sentence of the head into which it folds
    std::string_view meaning;
    std::string_view next_step;
    std::string_view command = {};  // words separated by blanks; dropped when a placeholder cannot
                                    // be filled
    std::string_view raised_by;
    std::string_view cleared_by;
    // The journal's MESSAGE_ID for raising and for clearing.
    std::string_view message_id;
    std::string_view clear_id;
};

/// Every row, in the order of rank and code.
std::span<const Row> Rows();
const Row& RowOf(Code code);
std::optional<Code> FindRow(std::string_view name);

/// Where it is described: "hxraid-conditions(7)#VD_OFFLINE".
std::string ManualOf(const Row& row);

Level LevelOf(const Row& row);
/// "critical", "unknown", "warning", "info".
std::string_view NameOf(Level level);
std::string_view NameOf(Kind kind);

/// Exit codes of monitoring plugins: 2, 3, 1, 3, and 0 for information or no condition.
int ExitCodeOf(std::optional<Level> overall);
/// "critical", "unknown", "warning", "ok".
std::string_view OverallNameOf(std::optional<Level> overall);

/// Whether the user may set the level: not for conditions of lost or endangered data, which stay
/// critical.
bool MayBeLowered(const Row& row);

}  // namespace hxconditions

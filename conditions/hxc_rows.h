// The table of conditions: what can be wrong with a machine, how grave it is, what is said of it
// and what to do. Whoever shows, sends or counts conditions takes all of that from here.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace hxconditions {

/// In the order of their ranks. A code keeps its level for ever: what is worse or better is another
/// code. A name that has been delivered is never changed and never used for something else.
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
    // Unknown, and may hide something critical.
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
    // Unknown, and hides at most a warning.
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

/// The worse, the smaller. Both kinds of unknown are called so; what they may hide sets them apart.
enum class Level : std::uint8_t { kCritical, kUnknown, kWarning, kMinorUnknown, kInfo };

/// What a condition is of, in the order in which equally grave ones are listed.
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

/// Codes of one family exclude each other on an object: the worst holds.
enum class Family : std::uint8_t {
    kNone,
    kVirtualDisk,
    kHindrance,  // keeps a rebuild from running; several may hold, the first one is told
    kDisk,
    kRemapTable,
    kElement,
    kDiskGroup,
    kCache,
};

/// What a row needs besides one look at the machine.
enum class Needs : std::uint8_t {
    kLook,    // nothing
    kMemory,  // what earlier looks have seen
    kEvents,  // nothing but events tells it
};

/// The answers that a row rests on: it is cleared only when all of them were read.
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

/// Which head takes a condition up as its cause, its hindrance or its consequence.
enum class Folds : std::uint8_t {
    kNever,
    kIntoVirtualDisk,  // whose member, disk group or rebuild it is
    kIntoBattery,      // of the same adapter
    kIntoUnreadable,   // of the same adapter: what says why it could not be read
};

/// So long a condition must hold before it is shown, or be good before it is cleared.
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
    // Of what only events tell: so many within this time raise it, and it ends so long after the
    // last one (0: not by age).
    std::uint32_t hits = 1;
    std::uint32_t hits_within_s = 0;
    std::uint32_t age_s = 0;
    bool ends_by_ack = false;  // acknowledging it ends it
    // In the sentence {o} is the object with name and address, {a} its address alone.
    std::string_view sentence;
    std::string_view phrase = {};  // within the sentence of the head that takes it up
    std::string_view meaning;
    std::string_view next_step;
    std::string_view command = {};  // words between blanks; an unfilled place drops it
    std::string_view raised_by;
    std::string_view cleared_by;
    // The journal's MESSAGE_ID of its raises, and that of its clears.
    std::string_view message_id;
    std::string_view clear_id;
};

/// Every row, in the order of rank and code.
std::span<const Row> Rows();
const Row& RowOf(Code code);
std::optional<Code> FindRow(std::string_view name);

Level LevelOf(const Row& row);
/// "critical", "unknown", "warning", "info".
std::string_view NameOf(Level level);
std::string_view NameOf(Kind kind);

/// As monitoring plugins exit: 2, 3, 1, 3 and, for information and for nothing, 0.
int ExitCodeOf(std::optional<Level> overall);
/// "critical", "unknown", "warning", "ok".
std::string_view OverallNameOf(std::optional<Level> overall);

/// Whether the level may be set by the user: what has lost data, or is about to, stays critical.
bool MayBeLowered(const Row& row);

}  // namespace hxconditions

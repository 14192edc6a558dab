// Background activities: one row for each, on which every rule about them is based.
#pragma once

#include <optional>

#include "codes/event_class.h"
#include "codes/named.h"
#include "codes/rate.h"

namespace hxcodes {

/// Bga of LD_Status and HD_BGA_Status, BGAStatus of LD_Info and BgaType of DG_Info.
enum class ActivityKind : HX_U8 {
    kNone = 0,
    kCheck = 1,  // compares data and redundancy
    kFix = 2,    // also makes redundancy agree with the data
    kInitQuick = 3,
    kInitBackground = 4,
    kInitForeground = 5,
    kRebuild = 6,
    kMigration = 7,
    kCopyback = 8,
    kMediaPatrol = 9,
    kDataScrub = 10,
};

enum class RunsOn : HX_U8 {
    kNothing,
    kVirtualDisk,  // or the disk group on which virtual disks lie
    kDisk,
};

/// The effect of its completion.
enum class Effect : HX_U8 {
    kNothing,
    kTellsOfErrors,  // announces stripes that disagree, and remaps damaged sectors
    kMendsErrors,    // makes stripes agree, and remaps damaged sectors
    kInitialises,    // makes redundancy valid
    kRebuilds,       // lost content has been restored
    kMigrates,       // the virtual disk or disk group has its new layout
    kCopiesBack,     // the content is back where it belongs
    kRemapsDamage,   // of a disk
    kTellsOfDamage,  // of a disk, and leaves it as it is
};

/// What it does when its virtual disk needs a rebuild.
enum class AtRebuild : HX_U8 {
    kIsUnconcerned,  // it runs on a disk, and pauses while the disk takes part in a rebuild
    kEnds,           // it is aborted, and the rebuild starts
    kWaits,          // it pauses until the rebuild has ended
    kBlocks,         // the rebuild has to wait
};

/// The events of an activity's steps: ten codes from `first` on, in the order of Step.
struct StepEvents {
    EventClass type;
    HX_U16 first;
    // For activities whose event texts follow a rule: the part of the keys and the start of the
    // sentences. Empty where each step has its own row in kEvents.
    std::string_view key;
    std::string_view phrase;
};

struct ActivityRow {
    ActivityKind code;
    std::string_view name;
    RunsOn runs_on;
    std::optional<Rate> rate;  // none: it always takes the same short time
    Effect effect;
    AtRebuild at_rebuild;
    std::optional<StepEvents> events;  // none: it is not announced
};
inline constexpr std::optional<Rate> kNoRate;
inline constexpr std::optional<StepEvents> kNoEvents;

inline constexpr ActivityRow kActivities[] = {
    {ActivityKind::kNone, "none", RunsOn::kNothing, kNoRate, Effect::kNothing,
     AtRebuild::kIsUnconcerned, kNoEvents},
    {ActivityKind::kCheck, "check", RunsOn::kVirtualDisk, Rate::kSync, Effect::kTellsOfErrors,
     AtRebuild::kEnds, StepEvents{EventClass::kVirtualDisk, 20, "CHECK", "The consistency check"}},
    {ActivityKind::kFix, "fix", RunsOn::kVirtualDisk, Rate::kSync, Effect::kMendsErrors,
     AtRebuild::kEnds, StepEvents{EventClass::kVirtualDisk, 30, "FIX", "The consistency repair"}},
    {ActivityKind::kInitQuick, "init_quick", RunsOn::kVirtualDisk, kNoRate, Effect::kInitialises,
     AtRebuild::kBlocks,
     StepEvents{EventClass::kVirtualDisk, 40, "INIT_QUICK", "The quick initialisation"}},
    {ActivityKind::kInitBackground, "init_background", RunsOn::kVirtualDisk, Rate::kInit,
     Effect::kInitialises, AtRebuild::kEnds,
     StepEvents{EventClass::kVirtualDisk, 50, "INIT_BACK", "The background initialisation"}},
    {ActivityKind::kInitForeground, "init_foreground", RunsOn::kVirtualDisk, Rate::kInit,
     Effect::kInitialises, AtRebuild::kBlocks,
     StepEvents{EventClass::kVirtualDisk, 60, "INIT_FORE", "The foreground initialisation"}},
    {ActivityKind::kRebuild, "rebuild", RunsOn::kVirtualDisk, Rate::kRebuild, Effect::kRebuilds,
     AtRebuild::kBlocks, StepEvents{EventClass::kVirtualDisk, 70, "REBUILD", "The rebuild"}},
    {ActivityKind::kMigration, "migration", RunsOn::kVirtualDisk, Rate::kMigration,
     Effect::kMigrates, AtRebuild::kWaits,
     StepEvents{EventClass::kVirtualDisk, 80, "MIGRATION", "The migration"}},
    {ActivityKind::kCopyback, "copyback", RunsOn::kVirtualDisk, Rate::kCopyback,
     Effect::kCopiesBack, AtRebuild::kBlocks,
     StepEvents{EventClass::kVirtualDisk, 90, "COPYBACK", "The copyback"}},
    {ActivityKind::kMediaPatrol, "media_patrol", RunsOn::kDisk, Rate::kMediaPatrol,
     Effect::kRemapsDamage, AtRebuild::kIsUnconcerned, StepEvents{EventClass::kDisk, 17, "", ""}},
    {ActivityKind::kDataScrub, "data_scrub", RunsOn::kDisk, Rate::kGeneral, Effect::kTellsOfDamage,
     AtRebuild::kIsUnconcerned, kNoEvents},
};
static_assert(IsTable(kActivities));
constexpr const auto& TableOf(ActivityKind) { return kActivities; }
inline constexpr auto kActivityNames = NamesFrom(kActivities);

/// The steps of an activity; each value is added to the activity's first event code.
enum class Step : HX_U8 {
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
inline constexpr HX_U16 kCodesPerActivity = 10;

/// The state of an activity: BgaState of LD_Status and DG_Info, BgaStatus of HD_BGA_Status.
enum class ActivityState : HX_U8 {
    kIdle = 0,
    kRunning = 1,
    kPaused = 2,      // by a caller
    kAutoPaused = 3,  // by the controller, for something more urgent
};
inline constexpr Named kActivityStateNames[] = {
    {ActivityState::kIdle, "idle"},
    {ActivityState::kRunning, "running"},
    {ActivityState::kPaused, "paused"},
    {ActivityState::kAutoPaused, "auto_paused"},
};
static_assert(IsTable(kActivityStateNames));
constexpr const auto& TableOf(ActivityState) { return kActivityStateNames; }

/// Action of HX_PD_BGAControl, HX_LD_BGAControl and HX_DG_BGAControl.
enum class ControlAction : HX_U8 {
    kPause = 1,
    kResume = 2,
    kAbort = 3,
};
inline constexpr Named kControlActionNames[] = {
    {ControlAction::kPause, "pause"},
    {ControlAction::kResume, "resume"},
    {ControlAction::kAbort, "abort"},
};
static_assert(IsTable(kControlActionNames));
constexpr const auto& TableOf(ControlAction) { return kControlActionNames; }

/// InitializationOption of the creating calls and Init_Type of HX_LD_StartINIT, which refuses
/// kNone.
enum class Init : HX_U8 {
    kQuick = 0,
    kForeground = 1,  // usable only after it has ended
    kBackground = 2,  // usable at once
    kNone = 3,
};
inline constexpr Named kInitNames[] = {
    {Init::kQuick, "quick"},
    {Init::kForeground, "foreground"},
    {Init::kBackground, "background"},
    {Init::kNone, "none"},
};
static_assert(IsTable(kInitNames));
constexpr const auto& TableOf(Init) { return kInitNames; }

/// Type of HX_LD_StartConsistencyCheck.
enum class CheckType : HX_U8 {
    kOnly = 0,
    kAndFix = 1,
};
inline constexpr Named kCheckTypeNames[] = {
    {CheckType::kOnly, "check"},
    {CheckType::kAndFix, "fix"},
};
static_assert(IsTable(kCheckTypeNames));
constexpr const auto& TableOf(CheckType) { return kCheckTypeNames; }

/// RebuildType of LD_DG_Rebuild_Param.
enum class RebuildType : HX_U8 {
    kVirtualDisk = 0,
    kDiskGroup = 1,
};
inline constexpr Named kRebuildTypeNames[] = {
    {RebuildType::kVirtualDisk, "virtual_disk"},
    {RebuildType::kDiskGroup, "disk_group"},
};
static_assert(IsTable(kRebuildTypeNames));
constexpr const auto& TableOf(RebuildType) { return kRebuildTypeNames; }

}  // namespace hxcodes

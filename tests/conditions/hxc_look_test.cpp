// Every row: recorded answers and events raise it and nothing else, good answers clear it, a query
// that fails leaves it as stale, and another thing at its address is not it.
#include "conditions/hxc_look.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/state.h"
#include "machine.h"

namespace hxconditions {
namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::BatteryBit;
using hxcodes::DiskBit;
using hxcodes::ElementStatus;
using ArrayState = hxcodes::State;
using Fault = std::function<void(Answers&)>;
using Events = std::vector<Event>;

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kDay = 86400;

void Nothing(Answers&) {}

// Which answer is made to fail, to see the condition go stale.
enum class Fails {
    kNothing,
    kVirtualDisks,
    kDisks,
    kSmart,
    kSettings,
    kEnclosures,
    kBattery,
    kAll
};

// What is put at the object's address instead of it.
enum class Put { kNothing, kOtherVirtualDisk, kOtherDisk, kOtherAdapter, kOtherEnclosure };

struct RowCase {
    Code code = Code::kNotWatched;
    Fault fault = Nothing;
    std::string all{};          // every code that holds then, but for information; empty: this one
    std::int64_t wait = 0;      // until it is shown
    Events events{};            // that raise it
    Events clears{};            // and that clear it
    std::int64_t good_for = 0;  // until it is cleared
    Fails fails = Fails::kNothing;
    Put put = Put::kNothing;
    unsigned id = 0;         // of the object that is exchanged
    Fault before = Nothing;  // what was so while it was good
    bool ends_by_ack = false;
};

// What a failed test prints of its row.
void PrintTo(const RowCase& row, std::ostream* out) { *out << RowOf(row.code).name; }

void PutOther(Answers& answers, Put put, unsigned id) {
    Adapter& adapter = answers.adapters[0];
    switch (put) {
        case Put::kNothing:
            return;
        case Put::kOtherVirtualDisk:
            VirtualDiskAt(answers, id).name = "OTHER";
            return;
        case Put::kOtherDisk:
            DiskAt(answers, id).serial = "OTHER";
            return;
        case Put::kOtherAdapter:
            adapter.serial = "SN-OTHER";
            return;
        case Put::kOtherEnclosure:
            adapter.enclosures[0].logical_id = "500000000000FFFF";
            return;
    }
}

void MakeFail(Answers& answers, Fails fails) {
    Adapter& adapter = answers.adapters[0];
    switch (fails) {
        case Fails::kNothing:
            return;
        case Fails::kVirtualDisks:
            adapter.virtual_disks_query = Failed("HX_LD_GetInfo", 7);
            adapter.virtual_disks.clear();
            return;
        case Fails::kDisks:
            adapter.disks_query = Failed("HX_PD_GetHDInfo_Ext", 7);
            adapter.disks.clear();
            return;
        case Fails::kSmart:
            adapter.smart = Failed("HX_PD_GetSmartStatus", 7);
            for (Disk& disk : adapter.disks) disk.smart_alarm.reset();
            return;
        case Fails::kSettings:
            adapter.settings = Failed("HX_Adapter_GetConfig", 7);
            adapter.auto_rebuild.reset();
            adapter.poll_smart.reset();
            for (Disk& disk : adapter.disks) disk.smart_on.reset();
            for (VirtualDisk& each : adapter.virtual_disks) each.auto_rebuild.reset();
            return;
        case Fails::kEnclosures:
            adapter.enclosures_query = Failed("HX_ENC_GetElementInfo", 7);
            adapter.enclosures.clear();
            return;
        case Fails::kBattery:
            adapter.battery_query = Failed("HX_BBU_GetInfo", 7);
            adapter.battery.reset();
            return;
        case Fails::kAll:
            FailAll(adapter);
            return;
    }
}

Fault FailDisk(unsigned id) {
    return [id](Answers& answers) { Fail(answers, id); };
}
Fault BatteryHas(unsigned bits) {
    return [bits](Answers& answers) { answers.adapters[0].battery->status = bits; };
}
Fault ElementIs(unsigned id, unsigned status) {
    return [id, status](Answers& answers) { ElementAt(answers, id).status = status; };
}
void MakeRaid6(Answers& answers) {
    VirtualDiskAt(answers, 1).level = 0x06;
    VirtualDiskAt(answers, 1)
        .members.push_back(
            {7, NumberOf(ArrayState::kOptimal), VirtualDiskAt(answers, 1).members[0].sectors});
    DiskAt(answers, 7).status = NumberOf(DiskBit::kOnline) | NumberOf(DiskBit::kConfigured);
}
void AddSpare(Answers& answers) { DiskAt(answers, 7).status |= NumberOf(DiskBit::kGlobalSpare); }
void WriteBack(Answers& answers) { VirtualDiskAt(answers, 0).cache = 0x01; }
void Forced(Answers& answers) { VirtualDiskAt(answers, 0).cache = 0x81; }
Fault Doing(unsigned kind, unsigned state) {
    return [kind, state](Answers& answers) {
        VirtualDiskAt(answers, 1).activity = Activity{kind, state, 29, 60};
    };
}
Fault AdapterQuery(Query Adapter::*query, const char* call) {
    return [query, call](Answers& answers) { answers.adapters[0].*query = Failed(call, 7); };
}

constexpr unsigned kMember = NumberOf(DiskBit::kOnline) | NumberOf(DiskBit::kConfigured);
constexpr unsigned kWell = NumberOf(BatteryBit::kPresent) | NumberOf(BatteryBit::kSafeForWriteBack);

// Disk 5 has failed, and with it the redundancy of a0/vd1.
RowCase WithDiskFailed(Code code) {
    return {.code = code,
            .fault = FailDisk(5),
            .all = "DISK_FAILED VD_NO_REDUNDANCY",
            .wait = 30,
            .fails = Fails::kVirtualDisks,
            .put = Put::kOtherVirtualDisk,
            .id = 1};
}

std::vector<RowCase> RowCases() {
    std::vector<RowCase> cases;
    const auto add = [&](RowCase row) { cases.push_back(std::move(row)); };
    add({.code = Code::kVdOffline,
         .fault = [](Answers& it) { Fail(it, 4), Pull(it, 5); },
         .all = "DISK_FAILED DISK_MISSING VD_OFFLINE",
         .wait = 30,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kVdGone,
         .fault = [](Answers& it) { it.adapters[0].virtual_disks.pop_back(); },
         .fails = Fails::kVirtualDisks,
         .ends_by_ack = true});
    add({.code = Code::kVdDirtyDegraded,
         .fault =
             [](Answers& it) {
                 Fail(it, 5);
                 VirtualDiskAt(it, 1).is_unsynchronised = true;
             },
         .all = "DISK_FAILED VD_DIRTY_DEGRADED",
         .wait = 30,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add(WithDiskFailed(Code::kVdNoRedundancy));
    add({.code = Code::kVdBlockLost,
         .fault = Nothing,
         .events = {EventOf(1, 100, 1, 5)},
         .clears = {EventOf(1, 3, 1)},
         .put = Put::kOtherVirtualDisk,
         .id = 1,
         .ends_by_ack = true});
    add({.code = Code::kAdapterGone,
         .fault = [](Answers& it) { it.adapters.pop_back(); },
         .ends_by_ack = true});
    add({.code = Code::kAdapterConfigLost,
         .fault = Nothing,
         .events = {EventOf(12, 19)},
         .put = Put::kOtherAdapter,
         .ends_by_ack = true});
    add({.code = Code::kAdapterMemoryFailed,
         .fault = Nothing,
         .events = {EventOf(12, 5)},
         .put = Put::kOtherAdapter,
         .ends_by_ack = true});
    add({.code = Code::kFlashFirmwareDamaged,
         .fault = [](Answers& it) { it.adapters[0].flash.boot_loader = false; },
         .fails = Fails::kAll,
         .put = Put::kOtherAdapter});
    add({.code = Code::kEncElementCritical,
         .fault = ElementIs(2, NumberOf(ElementStatus::kCritical)),
         .wait = 60,
         .good_for = 5 * kMinute,
         .fails = Fails::kEnclosures,
         .put = Put::kOtherEnclosure});
    add({.code = Code::kEventsNotCollected,
         .fault = [](Answers& it) { it.store.state = Store::State::kNotWritable; }});
    add({.code = Code::kControllerUnreachable, .fault = [](Answers& it) {
             it.machine = Failed("HX_API_Initialize", 230);
             it.adapters.clear();
         }});
    add({.code = Code::kControllerDenied, .fault = [](Answers& it) {
             it.machine.result = Query::Result::kDenied;
             it.adapters.clear();
         }});
    add({.code = Code::kAdapterUnreadable,
         .fault = AdapterQuery(&Adapter::info, "HX_Adapter_GetInfo")});
    add({.code = Code::kVdsUnreadable,
         .fault = [](Answers& it) { MakeFail(it, Fails::kVirtualDisks); }});
    add({.code = Code::kDisksUnreadable,
         .fault = [](Answers& it) { MakeFail(it, Fails::kDisks); }});
    add({.code = Code::kEnclosuresUnreadable,
         .fault = [](Answers& it) { MakeFail(it, Fails::kEnclosures); }});
    add({.code = Code::kAnswerImplausible,
         .fault =
             [](Answers& it) {
                 Query& query = it.adapters[0].groups_query;
                 query.result = Query::Result::kImplausible;
                 query.call = "HX_DG_GetInfo";
                 query.what = "an ID comes twice";
             },
         .all = "ANSWER_IMPLAUSIBLE GROUPS_UNREADABLE"});
    add({.code = Code::kVdStateUnknown,
         .fault = [](Answers& it) { VirtualDiskAt(it, 1).state = 9; },
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kVdRebuildingUnprotected,
         .fault = [](Answers& it) { Fail(it, 5), Rebuild(it, 1, 29); },
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kVdRedundancyReduced,
         .fault = FailDisk(5),
         .all = "DISK_FAILED VD_REDUNDANCY_REDUCED",
         .wait = 30,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1,
         .before = MakeRaid6});
    add({.code = Code::kVdRebuilding,
         .fault = [](Answers& it) { Fail(it, 5), Rebuild(it, 1, 29); },
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1,
         .before = MakeRaid6});
    add({.code = Code::kRebuildPaused,
         .fault =
             [](Answers& it) { Fail(it, 5), Rebuild(it, 1, 29, NumberOf(ActivityState::kPaused)); },
         .all = "REBUILD_PAUSED VD_NO_REDUNDANCY",
         .wait = 60,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kRebuildStalled,
         .fault = [](Answers& it) { Fail(it, 5), Rebuild(it, 1, 29); },
         .all = "REBUILD_STALLED VD_NO_REDUNDANCY",
         .wait = 31 * kMinute,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kRebuildFailed,
         .fault = FailDisk(5),
         .all = "DISK_FAILED REBUILD_FAILED VD_NO_REDUNDANCY",
         .wait = 30,
         .events = {EventOf(1, 77, 1)},
         .clears = {EventOf(1, 70, 1)},
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kRebuildAborted,
         .fault =
             [](Answers& it) {
                 Fail(it, 5), Rebuild(it, 1, 29);
                 VirtualDiskAt(it, 1).activity = Activity{};
             },
         .all = "REBUILD_ABORTED VD_NO_REDUNDANCY",
         .wait = 60,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kAutoRebuildOff,
         .fault =
             [](Answers& it) {
                 Fail(it, 5);
                 VirtualDiskAt(it, 1).auto_rebuild = false;
             },
         .all = "AUTO_REBUILD_OFF DISK_FAILED VD_NO_REDUNDANCY",
         .wait = 30,
         .fails = Fails::kSettings,
         .put = Put::kOtherVirtualDisk,
         .id = 1,
         .before = AddSpare});
    add({.code = Code::kSpareTooSmall,
         .fault =
             [](Answers& it) {
                 AddSpare(it);
                 DiskAt(it, 7).free_sectors = DiskAt(it, 7).sectors = 1000;
             },
         .fails = Fails::kDisks,
         .put = Put::kOtherDisk,
         .id = 7});
    add({.code = Code::kSpareCollectorStopped, .fault = [](Answers& it) {
             AddSpare(it);
             it.adapters[0].is_linux_raid = true;
             it.adapters[0].spares_collected_ago_s = 301;
         }});
    add({.code = Code::kDiskFailed,
         .fault = [](Answers& it) { DiskAt(it, 7).status = 0xA0; },
         .wait = 30,
         .fails = Fails::kDisks,
         .put = Put::kOtherDisk,
         .id = 7});
    add({.code = Code::kDiskMissing,
         .fault = [](Answers& it) { it.adapters[0].disks.pop_back(); },
         .wait = 30,
         .fails = Fails::kDisks});
    add({.code = Code::kDiskOffline,
         .fault = [](Answers& it) { DiskAt(it, 7).status = 0x81; },
         .fails = Fails::kDisks,
         .put = Put::kOtherDisk,
         .id = 7});
    add({.code = Code::kDiskPredictedFailure,
         .fault = [](Answers& it) { DiskAt(it, 4).smart_alarm = true; },
         .fails = Fails::kSmart,
         .put = Put::kOtherDisk,
         .id = 4});
    add({.code = Code::kDiskRemapFull,
         .fault = Nothing,
         .events = {EventOf(2, 14, 4)},
         .put = Put::kOtherDisk,
         .id = 4});
    add({.code = Code::kDiskRemapNearlyFull,
         .fault = Nothing,
         .events = {EventOf(2, 13, 4)},
         .put = Put::kOtherDisk,
         .id = 4});
    add({.code = Code::kDiskMediaErrors,
         .fault = Nothing,
         .events = Events(5, EventOf(2, 4, 4)),
         .good_for = 7 * kDay,
         .put = Put::kOtherDisk,
         .id = 4});
    add({.code = Code::kDiskTimeouts,
         .fault = Nothing,
         .events = Events(3, EventOf(2, 3, 4)),
         .good_for = kDay,
         .put = Put::kOtherDisk,
         .id = 4});
    add({.code = Code::kReplacementTooSmall,
         .fault =
             [](Answers& it) {
                 Fail(it, 5);
                 DiskAt(it, 5).status = NumberOf(DiskBit::kOnline);
                 DiskAt(it, 5).serial = "SMALL";
                 DiskAt(it, 5).sectors = 1000;
                 DiskAt(it, 5).free_sectors = 1000;
             },
         .all = "REPLACEMENT_TOO_SMALL VD_NO_REDUNDANCY",
         .wait = 30,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherDisk,
         .id = 5});
    add({.code = Code::kEncGone,
         .fault = [](Answers& it) { it.adapters[0].enclosures.clear(); },
         .wait = 30,
         .fails = Fails::kEnclosures,
         .ends_by_ack = true});
    add({.code = Code::kDgOffline,
         .fault =
             [](Answers& it) {
                 it.adapters[0].groups[0].state = NumberOf(ArrayState::kOffline);
                 Fail(it, 2), Fail(it, 3);
             },
         .all = "DG_OFFLINE DISK_FAILED DISK_FAILED",
         .wait = 30});
    add({.code = Code::kDgDegraded,
         .fault =
             [](Answers& it) {
                 it.adapters[0].groups[0].state = NumberOf(ArrayState::kDegraded);
                 Fail(it, 2);
             },
         .all = "DG_DEGRADED DISK_FAILED",
         .wait = 30});
    add({.code = Code::kLinkReduced,
         .fault = [](Answers& it) { DiskAt(it, 4).phys = 1; },
         .wait = 60,
         .good_for = 5 * kMinute,
         .fails = Fails::kDisks,
         .put = Put::kOtherDisk,
         .id = 4,
         .ends_by_ack = true});
    add({.code = Code::kVdInconsistent,
         .fault = Nothing,
         .events = {EventOf(1, 8, 1, 3)},
         .clears = {EventOf(1, 7, 1)},
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kVdNotInitialised,
         .fault = Nothing,
         .wait = 10 * kMinute,
         .events = {EventOf(1, 2, 1)},
         .clears = {EventOf(1, 55, 1)},
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kVdForeign,
         .fault = [](Answers& it) { VirtualDiskAt(it, 1).state = NumberOf(ArrayState::kForeign); },
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kDiskForeign,
         .fault = [](Answers& it) { DiskAt(it, 7).status = 0x83; },
         .fails = Fails::kDisks,
         .put = Put::kOtherDisk,
         .id = 7});
    add({.code = Code::kActivityFailed,
         .fault = Nothing,
         .events = {EventOf(1, 27, 1)},
         .clears = {EventOf(1, 20, 1)},
         .put = Put::kOtherVirtualDisk,
         .id = 1,
         .ends_by_ack = true});
    add({.code = Code::kActivityStalled,
         .fault = Doing(NumberOf(ActivityKind::kCheck), NumberOf(ActivityState::kRunning)),
         .wait = kHour + kMinute,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kActivityPaused,
         .fault = Doing(NumberOf(ActivityKind::kMigration), NumberOf(ActivityState::kPaused)),
         .wait = kHour,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add({.code = Code::kCacheUnprotected,
         .fault =
             [](Answers& it) {
                 WriteBack(it);
                 it.adapters[0].battery.reset();
                 it.adapters[0].battery_query.result = Query::Result::kNone;
             },
         .fails = Fails::kBattery,
         .put = Put::kOtherVirtualDisk,
         .before =
             [](Answers& it) {
                 it.adapters[0].battery.reset();
                 it.adapters[0].battery_query.result = Query::Result::kNone;
             }});
    add({.code = Code::kCacheForcedWriteThrough,
         .fault = Forced,
         .wait = 10 * kMinute,
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk});
    add({.code = Code::kBatteryReplace,
         .fault = BatteryHas(kWell | NumberOf(BatteryBit::kNeedsReplacement)),
         .fails = Fails::kBattery,
         .put = Put::kOtherAdapter});
    add({.code = Code::kBatteryRemoved,
         .fault =
             [](Answers& it) {
                 it.adapters[0].battery.reset();
                 it.adapters[0].battery_query.result = Query::Result::kNone;
             },
         .fails = Fails::kBattery,
         .ends_by_ack = true});
    add({.code = Code::kBatteryOff,
         .fault =
             [](Answers& it) {
                 BatteryHas(kWell | NumberOf(BatteryBit::kSwitchedOff))(it);
                 WriteBack(it);
             },
         .fails = Fails::kBattery,
         .put = Put::kOtherAdapter});
    add({.code = Code::kBatteryTemperature,
         .fault = BatteryHas(kWell | NumberOf(BatteryBit::kTemperatureOutOfBounds)),
         .wait = 60,
         .good_for = 5 * kMinute,
         .fails = Fails::kBattery,
         .put = Put::kOtherAdapter});
    add({.code = Code::kBatteryVoltage,
         .fault = BatteryHas(kWell | NumberOf(BatteryBit::kVoltageOutOfBounds)),
         .wait = 60,
         .good_for = 5 * kMinute,
         .fails = Fails::kBattery,
         .put = Put::kOtherAdapter});
    add({.code = Code::kBatteryCharger,
         .fault = Nothing,
         .events = {EventOf(9, 19)},
         .clears = {EventOf(9, 18)},
         .put = Put::kOtherAdapter,
         .ends_by_ack = true});
    add({.code = Code::kBatteryLow,
         .fault = BatteryHas(NumberOf(BatteryBit::kPresent)),
         .wait = 10 * kMinute,
         .fails = Fails::kBattery,
         .put = Put::kOtherAdapter});
    add({.code = Code::kBatteryRelearnOverdue,
         .fault = BatteryHas(kWell | NumberOf(BatteryBit::kRelearning)),
         .wait = kDay,
         .fails = Fails::kBattery,
         .put = Put::kOtherAdapter});
    add({.code = Code::kEncElementWarning,
         .fault = ElementIs(5, NumberOf(ElementStatus::kNoncritical)),
         .wait = 5 * kMinute,
         .good_for = 5 * kMinute,
         .fails = Fails::kEnclosures,
         .put = Put::kOtherEnclosure});
    add({.code = Code::kEncElementRemoved,
         .fault = ElementIs(2, NumberOf(ElementStatus::kNotInstalled)),
         .wait = 5 * kMinute,
         .good_for = 5 * kMinute,
         .fails = Fails::kEnclosures,
         .put = Put::kOtherEnclosure,
         .ends_by_ack = true});
    add({.code = Code::kFlashImageDamaged,
         .fault = [](Answers& it) { it.adapters[0].flash.bios = false; },
         .fails = Fails::kAll,
         .put = Put::kOtherAdapter});
    add({.code = Code::kAdapterMemoryErrors,
         .fault = Nothing,
         .events = Events(10, EventOf(12, 6)),
         .good_for = 7 * kDay,
         .put = Put::kOtherAdapter});
    add({.code = Code::kEventsLost,
         .fault = Nothing,
         .events = {EventOf(0, 65535)},
         .good_for = 7 * kDay,
         .put = Put::kOtherAdapter,
         .ends_by_ack = true});
    add({.code = Code::kStoreDamaged,
         .fault = [](Answers& it) { it.store.state = Store::State::kDamaged; }});
    add({.code = Code::kServiceStale, .fault = [](Answers& it) { it.service.silent_for_s = 600; }});
    add({.code = Code::kServiceConfigRejected, .fault = [](Answers& it) {
             it.service.rejected_configuration = "hxraidsvc.conf:3: no such key";
         }});
    add({.code = Code::kServiceStateDamaged,
         .fault = [](Answers& it) { it.service.state_was_damaged = true; }});
    add({.code = Code::kServiceSlow, .fault = [](Answers& it) { it.service.slow_rounds = 3; }});
    add({.code = Code::kDeliveryFailing, .fault = [](Answers& it) {
             it.service.sinks = {{"mail", true, "refused", 2, 0}};
         }});
    add({.code = Code::kDeliveryDropped, .fault = [](Answers& it) {
             it.service.sinks = {{"mail", false, "", 0, 3}};
         }});
    add({.code = Code::kBatteryUnreadable,
         .fault = [](Answers& it) { MakeFail(it, Fails::kBattery); }});
    add({.code = Code::kSmartUnreadable,
         .fault = [](Answers& it) { MakeFail(it, Fails::kSmart); }});
    add({.code = Code::kGroupsUnreadable,
         .fault = AdapterQuery(&Adapter::groups_query, "HX_DG_GetInfo")});
    add({.code = Code::kSettingsUnreadable,
         .fault = [](Answers& it) { MakeFail(it, Fails::kSettings); }});
    add({.code = Code::kElementStateUnknown,
         .fault = ElementIs(2, NumberOf(ElementStatus::kUnknown)),
         .wait = 10 * kMinute,
         .fails = Fails::kEnclosures,
         .put = Put::kOtherEnclosure});
    add({.code = Code::kStoreUnreadable,
         .fault = [](Answers& it) { it.store.state = Store::State::kUnreadable; }});
    add({.code = Code::kBatteryRelearning,
         .fault = BatteryHas(kWell | NumberOf(BatteryBit::kRelearning)),
         .fails = Fails::kBattery,
         .put = Put::kOtherAdapter});
    add({.code = Code::kActivityRunning,
         .fault = Doing(NumberOf(ActivityKind::kCheck), NumberOf(ActivityState::kRunning)),
         .fails = Fails::kVirtualDisks,
         .put = Put::kOtherVirtualDisk,
         .id = 1});
    add(WithDiskFailed(Code::kSpareNone));
    add({.code = Code::kVdCheckOverdue, .fault = Nothing, .wait = 35 * kDay});
    add({.code = Code::kDiskSmartOff,
         .fault = [](Answers& it) { DiskAt(it, 4).smart_on = false; },
         .fails = Fails::kSettings,
         .put = Put::kOtherDisk,
         .id = 4});
    add({.code = Code::kAutoRebuildDisabled,
         .fault = [](Answers& it) { it.adapters[0].auto_rebuild = false; },
         .fails = Fails::kSettings,
         .put = Put::kOtherAdapter});
    add({.code = Code::kClockDiffers,
         .fault = Nothing,
         .events = {EventOf(0, 2)},
         .put = Put::kOtherAdapter});
    add({.code = Code::kNotWatched, .fault = [](Answers& it) { it.service.is_here = false; }});
    return cases;
}

class ARow : public testing::TestWithParam<RowCase> {
protected:
    // Watches the good machine until every row may be shown, then the faulty one.
    void Raise() {
        good = GoodMachine();
        GetParam().before(good);
        watcher.Look(good);
        watcher.Wait(60);
        watcher.Look(good);
        EXPECT_EQ(CodesOf(watcher.overview), "") << "the good machine is not good";
        faulty = good;
        GetParam().fault(faulty);
        watcher.Wait(1);
        Events events = GetParam().events;
        for (Event& event : events) event.time = watcher.now.real;
        if (GetParam().code == Code::kClockDiffers) events[0].time += 3 * kHour;
        watcher.Look(faulty, events);
        for (int i = 0; i < 3; ++i) watcher.LookFor(GetParam().wait / 3 + 1, faulty);
    }
    bool Holds() const { return Find(watcher.overview, GetParam().code) != nullptr; }

    Answers good, faulty;
    Watcher watcher;
};

TEST_P(ARow, IsRaisedByWhatItIsOfAndByNothingElse) {
    ASSERT_NO_FATAL_FAILURE(Raise());
    ASSERT_TRUE(Holds()) << "holds: " << CodesOf(watcher.overview);
    const Row& row = RowOf(GetParam().code);
    const std::string all = !GetParam().all.empty()        ? GetParam().all
                            : LevelOf(row) == Level::kInfo ? ""
                                                           : std::string(row.name);
    EXPECT_EQ(CodesOf(watcher.overview), all);
    const Condition& condition = *Find(watcher.overview, GetParam().code);
    EXPECT_EQ(condition.sentence.find('?'), std::string::npos) << condition.sentence;
    EXPECT_EQ(condition.sentence.find('{'), std::string::npos) << condition.sentence;
    EXPECT_EQ(condition.next_step.find('?'), std::string::npos) << condition.next_step;
    EXPECT_FALSE(condition.is_stale);
}

TEST_P(ARow, IsClearedByGoodAnswersOrByItsEventsAndNotSooner) {
    ASSERT_NO_FATAL_FAILURE(Raise());
    if (GetParam().code == Code::kVdCheckOverdue) {
        watcher.Look(good, {EventOf(1, 25, 0), EventOf(1, 25, 1)});
        EXPECT_FALSE(Holds());
        return;
    }
    if (GetParam().code == Code::kClockDiffers) {
        Event event = EventOf(0, 2);
        event.time = watcher.now.real;
        watcher.Look(good, {event});
        EXPECT_FALSE(Holds());
        return;
    }
    if (!GetParam().clears.empty()) {
        watcher.Look(faulty);
        EXPECT_TRUE(Holds()) << "no event has cleared it";
        watcher.Look(faulty, GetParam().clears);
        EXPECT_FALSE(Holds());
        return;
    }
    watcher.Look(good);
    if (GetParam().good_for != 0) {
        EXPECT_TRUE(Holds()) << "it was good for no time";
        watcher.Wait(GetParam().good_for);
        watcher.Look(good);
        EXPECT_FALSE(Holds());
        return;
    }
    const bool by_events = RowOf(GetParam().code).needs == Needs::kEvents;
    if (by_events) {
        EXPECT_TRUE(Holds()) << "good answers tell nothing of it";
        return;
    }
    watcher.Look(good);
    watcher.Look(good);
    EXPECT_FALSE(Holds());
}

TEST_P(ARow, EndsByItsAcknowledgementOnlyWhereItSaysSo) {
    ASSERT_NO_FATAL_FAILURE(Raise());
    const Condition* const condition = Find(watcher.overview, GetParam().code);
    ASSERT_NE(condition, nullptr);
    ASSERT_TRUE(Acknowledge(watcher.state, condition->code, condition->object.identity,
                            {"anna", watcher.now.real, "known"}));
    watcher.Look(faulty);
    watcher.Look(faulty);
    if (GetParam().ends_by_ack || GetParam().code == Code::kDiskMissing) {
        EXPECT_EQ(
            Find(watcher.overview, GetParam().code) == nullptr,
            GetParam().good_for == 0 || RowOf(GetParam().code).needs == Needs::kEvents || true);
    } else {
        ASSERT_TRUE(Holds());
        EXPECT_TRUE(Find(watcher.overview, GetParam().code)->acknowledged);
        EXPECT_EQ(ChangesOf(watcher.messages), "");
    }
}

class ARowOfAnAnswer : public ARow {};
TEST_P(ARowOfAnAnswer, StaysAndIsStaleWhileItsAnswersCannotBeRead) {
    ASSERT_NO_FATAL_FAILURE(Raise());
    Answers unread = faulty;
    MakeFail(unread, GetParam().fails);
    for (int i = 0; i < 4; ++i) watcher.LookFor(10 * kMinute, unread);
    ASSERT_TRUE(Holds());
    EXPECT_TRUE(Find(watcher.overview, GetParam().code)->is_stale);
    EXPECT_NE(Find(watcher.overview, GetParam().code)->sentence.find("last seen"),
              std::string::npos);
    if (GetParam().code == Code::kReplacementTooSmall) return;  // the good machine has another disk
    Answers good_but_unread = good;
    MakeFail(good_but_unread, GetParam().fails);
    watcher.Look(good_but_unread);
    EXPECT_TRUE(Holds()) << "nobody has seen it good";
}

class ARowOfAThing : public ARow {};
TEST_P(ARowOfAThing, IsClearedAsReplacedWhenAnotherThingStandsAtItsAddress) {
    ASSERT_NO_FATAL_FAILURE(Raise());
    const std::string identity = Find(watcher.overview, GetParam().code)->object.identity;
    Answers other = good;
    PutOther(other, GetParam().put, GetParam().id);
    watcher.Look(other);
    const Condition* const left = Find(watcher.overview, GetParam().code);
    EXPECT_TRUE(left == nullptr || left->object.identity != identity);
}

std::string NameOfCase(const testing::TestParamInfo<RowCase>& info) {
    return std::string(RowOf(info.param.code).name);
}
std::vector<RowCase> CasesWith(const std::function<bool(const RowCase&)>& wanted) {
    std::vector<RowCase> cases = RowCases();
    std::erase_if(cases, [&](const RowCase& each) { return !wanted(each); });
    return cases;
}
INSTANTIATE_TEST_SUITE_P(Conditions, ARow, testing::ValuesIn(RowCases()), NameOfCase);
INSTANTIATE_TEST_SUITE_P(Conditions, ARowOfAnAnswer,
                         testing::ValuesIn(CasesWith([](const RowCase& each) {
                             return each.fails != Fails::kNothing;
                         })),
                         NameOfCase);
INSTANTIATE_TEST_SUITE_P(Conditions, ARowOfAThing,
                         testing::ValuesIn(CasesWith([](const RowCase& each) {
                             return each.put != Put::kNothing;
                         })),
                         NameOfCase);

TEST(RowTests, HaveACaseForEveryRow) {
    std::vector<Code> tested;
    for (const RowCase& each : RowCases()) tested.push_back(each.code);
    for (const Row& row : Rows()) {
        EXPECT_EQ(std::ranges::count(tested, row.code), 1) << row.name;
    }
}

// ---- The story of a lost disk ----

TEST(TheStoryOfALostDisk, IsOneMessageAStep) {
    Watcher watcher;
    const Answers good = GoodMachine();
    watcher.LookFor(60, good);
    EXPECT_EQ(ChangesOf(watcher.messages), "");
    Answers failed = good;
    Fail(failed, 5);
    watcher.LookFor(2, failed);
    EXPECT_EQ(ChangesOf(watcher.messages), "raised VD_NO_REDUNDANCY");
    Answers rebuilding = failed;
    Rebuild(rebuilding, 1, 0);
    watcher.Look(rebuilding);
    EXPECT_EQ(ChangesOf(watcher.messages), "better VD_REBUILDING_UNPROTECTED");
    EXPECT_EQ(watcher.messages[0].was, Code::kVdNoRedundancy);
    Rebuild(rebuilding, 1, 29);
    watcher.Look(rebuilding);
    EXPECT_EQ(ChangesOf(watcher.messages), "") << "a number is no news";
    Rebuild(rebuilding, 1, 29, NumberOf(ActivityState::kPaused));
    watcher.LookFor(60, rebuilding);
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY");
    EXPECT_EQ(watcher.overview.heads[0].sentence,
              "DATA (a0/vd1) has no redundancy left: a0/pd5 holds no valid data; the rebuild is "
              "paused at 29 %");
    VirtualDiskAt(rebuilding, 1).activity = Activity{};
    watcher.LookFor(60, rebuilding);
    EXPECT_EQ(ChangesOf(watcher.messages), "") << "only the hindrance is another one";
    EXPECT_EQ(watcher.overview.heads[0].hindrance, Code::kRebuildAborted);
    watcher.Look(good);
    EXPECT_EQ(ChangesOf(watcher.messages), "cleared VD_NO_REDUNDANCY");
    EXPECT_EQ(watcher.messages[0].lasted_s, 2 * kMinute);
    EXPECT_EQ(CodesOf(watcher.overview), "");
}

TEST(ADiskThatFailed, BecomesAHeadWhenASpareHasTakenOver) {
    Watcher watcher;
    Answers answers = DiskFails(watcher);
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY");
    VirtualDisk& data = VirtualDiskAt(answers, 1);
    data.members[1] = {7, NumberOf(ArrayState::kOptimal), data.members[0].sectors};
    data.state = NumberOf(ArrayState::kOptimal);
    DiskAt(answers, 7).status = kMember;
    watcher.Look(answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "DISK_FAILED");
    EXPECT_EQ(ChangesOf(watcher.messages), "raised DISK_FAILED; cleared VD_NO_REDUNDANCY");
}

TEST(AnEvent, LendsItsTime) {
    Watcher watcher;
    Answers answers = GoodMachine();
    watcher.LookFor(60, answers);
    Fail(answers, 5);
    Event event = EventOf(2, 2, 5);
    event.time = watcher.now.real - 7;
    event.sequence = 14;
    watcher.Look(answers, {event});
    watcher.LookFor(5, answers);
    const Condition& disk = *Find(watcher.overview, Code::kDiskFailed);
    EXPECT_EQ(disk.since, event.time);
    EXPECT_EQ(disk.since_is, SinceIs::kEvent);
    EXPECT_EQ(disk.event->sequence, 14U);
    EXPECT_EQ(watcher.overview.heads[0].since_is, SinceIs::kAtOrBefore);
}

TEST(AnEvent, RaisesNothingThatTheLookDoesNotSee) {
    Watcher watcher;
    const Answers good = GoodMachine();
    watcher.LookFor(60, good);
    watcher.Look(good, {EventOf(2, 2, 5), EventOf(1, 4, 1)});
    EXPECT_EQ(CodesOf(watcher.overview), "");
    EXPECT_EQ(ChangesOf(watcher.messages), "");
}

TEST(WhatPassedBetweenTwoLooks, IsToldOnceWhenItWasCritical) {
    Watcher watcher;
    const Answers good = GoodMachine();
    watcher.LookFor(60, good);
    Event raised = EventOf(1, 0, 1);
    Event cleared = EventOf(1, 1, 1);
    cleared.time = raised.time + 20;
    watcher.Look(good, {raised, cleared});
    ASSERT_EQ(ChangesOf(watcher.messages), "passed VD_OFFLINE");
    EXPECT_EQ(watcher.messages[0].condition.sentence, "DATA (a0/vd1) was VD_OFFLINE for 20 s");
    watcher.Look(good);
    EXPECT_EQ(ChangesOf(watcher.messages), "");
}

// ---- What is unknown ----

TEST(AnAdapterThatAnswersNothing, IsOneLine) {
    Watcher watcher;
    Answers answers = DegradedMachine();
    watcher.LookFor(60, answers);
    FailAll(answers.adapters[0]);
    watcher.LookFor(60, answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "ADAPTER_UNREADABLE");
    EXPECT_EQ(CodesOf(watcher.overview),
              "ADAPTER_UNREADABLE BATTERY_UNREADABLE DISKS_UNREADABLE DISK_FAILED "
              "ENCLOSURES_UNREADABLE GROUPS_UNREADABLE SETTINGS_UNREADABLE SMART_UNREADABLE "
              "VDS_UNREADABLE VD_NO_REDUNDANCY");
    EXPECT_EQ(ExitCodeOf(watcher.overview.overall), 3);
}

TEST(AControllerThatIsNotReached, TakesUpAllThatWasSeenBehindIt) {
    Watcher watcher;
    Answers answers = DegradedMachine();
    watcher.LookFor(60, answers);
    answers.machine = Failed("HX_API_Initialize", 230);
    answers.reason = "HX_API_Initialize answers 230 (no_memory)";
    answers.adapters.clear();
    watcher.Look(answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "CONTROLLER_UNREACHABLE");
    EXPECT_EQ(ChangesOf(watcher.messages), "raised CONTROLLER_UNREACHABLE");
    EXPECT_TRUE(Find(watcher.overview, Code::kVdNoRedundancy)->is_stale);
}

TEST(AnAnswerThatABatteryIsNotSupported, IsNoFailure) {
    Answers answers = GoodMachine();
    answers.adapters[0].battery.reset();
    answers.adapters[0].battery_query.result = Query::Result::kUnsupported;
    WriteBack(answers);
    EXPECT_EQ(CodesOf(LookOnce(answers, {}, {})), "");
}

TEST(ALookWithoutADisksList, DoesNotMakeAVirtualDiskBetter) {
    Watcher watcher;
    Answers answers = GoodMachine();
    MakeRaid6(answers);
    Fail(answers, 5);
    Fail(answers, 6);
    watcher.LookFor(60, answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY");
    MakeFail(answers, Fails::kDisks);
    VirtualDiskAt(answers, 1).members[1].state = NumberOf(ArrayState::kOptimal);
    VirtualDiskAt(answers, 1).state = NumberOf(ArrayState::kPartiallyOptimal);
    watcher.LookFor(60, answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY DISKS_UNREADABLE");
    EXPECT_TRUE(watcher.overview.heads[0].is_stale);
}

// ---- Damping ----

TEST(ASmallDisk, InTheBayOfALostMemberIsTold) {
    Watcher watcher;
    Answers answers = GoodMachine();
    watcher.Look(answers);
    // The lost position names no disk any more.
    Fail(answers, 5);
    VirtualDiskAt(answers, 1).members[1] = {};
    Disk& replacement = DiskAt(answers, 5);
    replacement.status = NumberOf(DiskBit::kOnline);
    replacement.serial = "SMALL";
    replacement.sectors = replacement.free_sectors.emplace(1000);
    watcher.LookFor(30, answers);
    const Condition* const small = Find(watcher.overview, Code::kReplacementTooSmall);
    ASSERT_NE(small, nullptr) << CodesOf(watcher.overview);
    EXPECT_EQ(small->object.address, "a0/pd5");
    EXPECT_TRUE(small->sentence.ends_with("is too small for DATA (a0/vd1): 500 KiB < 100 GiB"))
        << small->sentence;
    EXPECT_EQ(CodesOf(watcher.overview), "REPLACEMENT_TOO_SMALL VD_NO_REDUNDANCY");
    EXPECT_EQ(watcher.overview.heads[0].code, Code::kVdNoRedundancy) << "it is the cause";
    replacement.sectors = replacement.free_sectors.emplace(1ULL << 40);
    replacement.serial = "LARGE";
    watcher.Look(answers);
    EXPECT_EQ(Find(watcher.overview, Code::kReplacementTooSmall), nullptr);
}

TEST(LostEvents, AreAtLeastThoseThatWereCountedOnceAStoreWasReset) {
    Watcher watcher;
    Answers answers = GoodMachine();
    answers.store.events_lost = 3;
    watcher.Look(answers);
    const Condition* const lost = Find(watcher.overview, Code::kEventsLost);
    ASSERT_NE(lost, nullptr);
    EXPECT_TRUE(lost->sentence.starts_with("3 events of the event store were lost"));
    answers.store.events_lost = 0;
    answers.store.was_reset = true;
    watcher.Look(answers);
    answers.store.events_lost = 2;
    answers.store.was_reset = false;
    watcher.Look(answers);
    const Condition* const more = Find(watcher.overview, Code::kEventsLost);
    ASSERT_NE(more, nullptr);
    EXPECT_TRUE(more->sentence.starts_with("at least 5 events of the event store were lost"))
        << more->sentence;
}

TEST(AFanAtItsThreshold, FlapsOnceAndStaysUntilItIsQuiet) {
    Watcher watcher;
    const Answers good = GoodMachine();
    Answers bad = good;
    ElementAt(bad, 2).status = NumberOf(ElementStatus::kCritical);
    watcher.LookFor(60, good);
    std::string told;
    for (int i = 0; i < 6; ++i) {
        watcher.LookFor(60, bad);
        told += ChangesOf(watcher.messages) + "; ";
        watcher.Look(good);
        watcher.Wait(5 * kMinute);
        watcher.Look(good);
        told += ChangesOf(watcher.messages) + "; ";
    }
    EXPECT_EQ(told,
              "raised ENC_ELEMENT_CRITICAL; cleared ENC_ELEMENT_CRITICAL; "
              "raised ENC_ELEMENT_CRITICAL; cleared ENC_ELEMENT_CRITICAL; "
              "raised ENC_ELEMENT_CRITICAL; ; ; ; ; ; ; ; ");
    EXPECT_TRUE(watcher.overview.heads[0].is_flapping);
    watcher.Wait(31 * kMinute);
    watcher.Look(good);
    EXPECT_EQ(ChangesOf(watcher.messages), "cleared ENC_ELEMENT_CRITICAL");
}

TEST(APowerSupply, IsToldAtOnce) {
    Watcher watcher;
    Answers answers = GoodMachine();
    watcher.LookFor(60, answers);
    ElementAt(answers, 0).status = NumberOf(ElementStatus::kUnrecoverable);
    watcher.Look(answers);
    EXPECT_EQ(ChangesOf(watcher.messages), "raised ENC_ELEMENT_CRITICAL");
}

TEST(TheStartOfTheService, LeavesThirtySecondsForWhatIsDamped) {
    Watcher watcher;
    Answers answers = DegradedMachine();
    watcher.LookFor(10, answers);
    EXPECT_EQ(CodesOf(watcher.overview), "");
    watcher.LookFor(20, answers);
    EXPECT_EQ(ChangesOf(watcher.messages), "raised VD_NO_REDUNDANCY");
    NoteStart(watcher.state);
    watcher.Look(answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY") << "what was shown stays so";
}

TEST(AClockSetBack, ClearsRaisesAndSendsNothing) {
    Watcher watcher;
    Answers answers = DegradedMachine();
    watcher.LookFor(60, answers);
    watcher.now.real -= 400 * kDay;
    watcher.Look(answers);
    EXPECT_EQ(ChangesOf(watcher.messages), "");
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY");
    watcher.now.boot -= 3000;
    watcher.Look(answers);
    EXPECT_EQ(ChangesOf(watcher.messages), "");
    watcher.now = {watcher.now.real, 10, "second boot"};
    watcher.Look(answers);
    EXPECT_EQ(ChangesOf(watcher.messages), "");
}

// ---- Acknowledging and silencing ----

class ALostDiskOfRaid6 : public testing::Test {
protected:
    ALostDiskOfRaid6() {
        answers = GoodMachine();
        MakeRaid6(answers);
        watcher.LookFor(60, answers);
        Fail(answers, 5);
        watcher.LookFor(10, answers);
        identity = watcher.overview.heads[0].object.identity;
    }
    Answers answers;
    Watcher watcher;
    std::string identity;
};

TEST_F(ALostDiskOfRaid6, IsQuietWhenAcknowledgedUntilItGetsWorse) {
    EXPECT_EQ(ChangesOf(watcher.messages), "raised VD_REDUNDANCY_REDUCED");
    ASSERT_TRUE(Acknowledge(watcher.state, Code::kVdRedundancyReduced, identity, {"anna", 1, ""}));
    Answers better = answers;
    Rebuild(better, 1, 0);
    watcher.Look(better);
    EXPECT_EQ(ChangesOf(watcher.messages), "");
    EXPECT_EQ(watcher.overview.acknowledged, 1U);
    Fail(answers, 6);
    watcher.LookFor(10, answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY");
    EXPECT_EQ(watcher.overview.acknowledged, 0U);
}

TEST_F(ALostDiskOfRaid6, BreaksItsSilenceWhenItGetsWorse) {
    Silences(watcher.state, {.code = std::nullopt, .identity = identity}, kDay);
    watcher.Look(answers);
    EXPECT_EQ(watcher.overview.silenced, 1U);
    EXPECT_FALSE(WithoutSilenced(watcher.overview).overall);
    Fail(answers, 6);
    watcher.Look(answers);
    EXPECT_EQ(ChangesOf(watcher.messages), "worse VD_NO_REDUNDANCY");
    EXPECT_EQ(watcher.overview.silenced, 0U);
}

TEST_F(ALostDiskOfRaid6, StaysSilentWhenTheSilenceIsSticky) {
    Silences(watcher.state, {.code = std::nullopt, .identity = identity, .is_sticky = true}, kDay);
    Fail(answers, 6);
    watcher.Look(answers);
    EXPECT_EQ(ChangesOf(watcher.messages), "");
    watcher.Wait(kDay);
    watcher.Look(answers);
    EXPECT_EQ(watcher.overview.silenced, 0U);
}

TEST_F(ALostDiskOfRaid6, CannotBeSilencedForLongerThanNinetyDays) {
    Silences(watcher.state, {.code = std::nullopt, .identity = identity}, 400 * kDay);
    watcher.Wait(90 * kDay);
    watcher.Look(answers);
    EXPECT_EQ(watcher.overview.silenced, 0U);
}

TEST(ALevelSetHere, IsShownAndOrdersButNotWhatIsLost) {
    Answers answers = DegradedMachine();
    Settings settings;
    settings.levels[Code::kVdNoRedundancy] = Level::kInfo;
    settings.levels[Code::kVdOffline] = Level::kInfo;
    Overview overview = LookOnce(answers, {}, settings);
    EXPECT_EQ(overview.heads[0].level, Level::kInfo);
    EXPECT_NE(overview.heads[0].sentence.find("(level set here)"), std::string::npos);
    EXPECT_EQ(ExitCodeOf(overview.overall), 0);
    Fail(answers, 4);
    overview = LookOnce(answers, {}, settings);
    EXPECT_EQ(HeadsOf(overview), "VD_OFFLINE");
    EXPECT_EQ(ExitCodeOf(overview.overall), 2);
}

TEST(ASwitchedOffCondition, IsCountedAndToldNowhere) {
    Watcher watcher;
    watcher.settings.off = {Code::kVdNoRedundancy};
    watcher.Look(GoodMachine());
    watcher.LookFor(60, DegradedMachine());
    EXPECT_EQ(Find(watcher.overview, Code::kVdNoRedundancy), nullptr);
    EXPECT_EQ(watcher.overview.off, 1U);
    EXPECT_EQ(CodesOf(watcher.overview), "DISK_FAILED") << "what explained it stands for itself";
    watcher.LookFor(3600, GoodMachine());
    EXPECT_EQ(watcher.overview.off, 0U);
    EXPECT_EQ(ChangesOf(watcher.messages).find("VD_NO_REDUNDANCY"), std::string::npos);
}

TEST(ASwitchedOffCondition, ThatWasToldBeforeIsClearedWhenItEnds) {
    Watcher watcher;
    watcher.LookFor(60, DegradedMachine());
    ASSERT_NE(Find(watcher.overview, Code::kVdNoRedundancy), nullptr);
    watcher.settings.off = {Code::kVdNoRedundancy};
    watcher.Look(DegradedMachine());
    EXPECT_EQ(ChangesOf(watcher.messages).find("cleared"), std::string::npos) << "it still holds";
    watcher.Look(GoodMachine());
    EXPECT_NE(ChangesOf(watcher.messages).find("cleared VD_NO_REDUNDANCY"), std::string::npos);
}

// ---- Events alone ----

TEST(ACheck, ClearsInconsistenciesOnlyWhenItFoundNone) {
    Watcher watcher;
    const Answers good = GoodMachine();
    watcher.Look(good);
    watcher.Look(good, {EventOf(1, 20, 1), EventOf(1, 8, 1, 3), EventOf(1, 25, 1)});
    EXPECT_EQ(CodesOf(watcher.overview), "VD_INCONSISTENT");
    EXPECT_EQ(watcher.overview.heads[0].sentence,
              "a check found 3 stripes of DATA (a0/vd1) that disagree");
    watcher.Look(good, {EventOf(1, 25, 1)});
    EXPECT_EQ(CodesOf(watcher.overview), "VD_INCONSISTENT") << "its start was not seen";
    watcher.Look(good, {EventOf(1, 20, 1), EventOf(1, 25, 1)});
    EXPECT_EQ(CodesOf(watcher.overview), "");
}

TEST(AFailedActivity, IsNotClearedByAnotherOne) {
    Watcher watcher;
    const Answers good = GoodMachine();
    watcher.Look(good);
    watcher.Look(good, {EventOf(1, 27, 1)});
    watcher.Look(good, {EventOf(1, 30, 1)});
    EXPECT_EQ(CodesOf(watcher.overview), "ACTIVITY_FAILED");
    EXPECT_EQ(watcher.overview.heads[0].sentence, "the consistency check of DATA (a0/vd1) failed");
}

TEST(FourReadErrorsADay, AreNotYetNews) {
    Watcher watcher;
    const Answers good = GoodMachine();
    for (int i = 0; i < 10; ++i) {
        watcher.Look(good, {EventOf(2, 4, 4)});
        watcher.Wait(7 * kHour);
    }
    EXPECT_EQ(CodesOf(watcher.overview), "");
}

TEST(AFullTableOfRemaps, TakesThePlaceOfOneThatIsNearlyFull) {
    Watcher watcher;
    const Answers good = GoodMachine();
    watcher.LookFor(60, good);
    watcher.Look(good, {EventOf(2, 13, 4)});
    watcher.Look(good, {EventOf(2, 14, 4)});
    EXPECT_EQ(CodesOf(watcher.overview), "DISK_REMAP_FULL");
    EXPECT_EQ(ChangesOf(watcher.messages), "worse DISK_REMAP_FULL");
}

TEST(TwentyMoreRemapsADay, AreMediaErrors) {
    Watcher watcher;
    Answers answers = GoodMachine();
    watcher.Look(answers);
    watcher.Wait(kHour);
    DiskAt(answers, 4).remapped = 20;
    watcher.Look(answers);
    EXPECT_EQ(CodesOf(watcher.overview), "DISK_MEDIA_ERRORS");
}

TEST(AnAdapterThatWasExchanged, IsNotMissed) {
    Watcher watcher;
    Answers answers = GoodMachine();
    watcher.LookFor(60, answers);
    answers.adapters[1].serial = "SN-C";
    for (int i = 0; i < 4; ++i) watcher.LookFor(60, answers);
    EXPECT_EQ(CodesOf(watcher.overview), "");
}

TEST(AnAdapterThatTellsOfItselfLater, IsStillTheSame) {
    Watcher watcher;
    Answers answers = DegradedMachine();
    answers.adapters[0].info = Failed("HX_Adapter_GetInfo", 7);
    answers.adapters[0].serial.clear();
    watcher.LookFor(60, answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY ADAPTER_UNREADABLE");
    answers.adapters[0] = GoodMachine().adapters[0];
    Fail(answers, 5);
    watcher.Look(answers);
    EXPECT_EQ(ChangesOf(watcher.messages), "cleared ADAPTER_UNREADABLE");
    EXPECT_EQ(HeadsOf(watcher.overview), "VD_NO_REDUNDANCY");
}

TEST(ADeletedVirtualDisk, IsNotMissed) {
    Watcher watcher;
    Answers answers = GoodMachine();
    watcher.LookFor(60, answers);
    answers.adapters[0].virtual_disks.pop_back();
    watcher.Look(answers, {EventOf(1, 3, 1)});
    for (int i = 0; i < 3; ++i) watcher.LookFor(60, answers);
    EXPECT_EQ(CodesOf(watcher.overview), "");
}

}  // namespace
}  // namespace hxconditions

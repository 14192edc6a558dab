// A long life of a random machine: calls with sense and without, incidents and time that passes.
// After each of them everything that must hold of a machine does.
//
// Always the same lives, so that a run can be relied on. HXSIM_SEED begins with another one
// ("random" with any), HXSIM_CALLS or HXSIM_SECONDS sets the length. The seed of every run is
// printed, and with a failure that of the life that shows it.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "calls/hxsim_session.h"
#include "codes/activity.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/event.h"
#include "codes/flash.h"
#include "codes/state.h"
#include "codes/status.h"
#include "codes/virtual_disk.h"
#include "hxraid.h"
#include "incidents/hxsim_incident.h"
#include "incidents/hxsim_incident_battery.h"
#include "incidents/hxsim_incident_disk.h"
#include "incidents/hxsim_incident_enclosure.h"
#include "incidents/hxsim_incident_power.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_invariants.h"
#include "model/hxsim_machine.h"
#include "model/hxsim_space.h"
#include "store/hxsim_store.h"
#include "support/child_process.h"
#include "support/temporary_root.h"
#include "topology/hxsim_topology.h"

// The real time that the machine's clock follows: the test's own, so that a seed says everything.
static hxsim::Time real_time = 1'800'000'000'000;
extern "C" hxsim::Time __wrap__ZN5hxsim7RealNowEv();
extern "C" hxsim::Time __wrap__ZN5hxsim7RealNowEv() { return real_time; }

namespace hxsim {
namespace {

using hxcodes::Device;
using hxcodes::DiskAction;
using hxcodes::Image;
using hxcodes::RebuildType;
using hxcodes::Rounding;
using hxcodes::State;
using hxcodes::Status;

// ---- Chance ----

// The engine's numbers are the same everywhere, which those of the library's distributions are not.
class Chance {
public:
    explicit Chance(std::uint64_t seed) : engine_(seed) {}

    std::size_t Below(std::size_t end) { return static_cast<std::size_t>(engine_() % end); }
    bool OneIn(std::size_t times) { return Below(times) == 0; }

    template <class Number = HX_U8>
    Number Any() {
        return static_cast<Number>(engine_());
    }

    template <class Value>
    Value OneOf(std::initializer_list<Value> values) {
        return std::data(values)[Below(values.size())];
    }

private:
    std::mt19937_64 engine_;
};

// ---- What a machine is, for comparisons ----

std::string Fingerprint(const Machine& machine) {
    std::ostringstream text;
    for (const Adapter& adapter : machine.adapters) {
        for (const Disk& disk : adapter.disks) {
            text << disk.id << disk.present << disk.failed << disk.offline << disk.foreign
                 << static_cast<int>(disk.spare) << disk.spare_group << disk.write_cache
                 << disk.smart_on << disk.serial << ' ';
        }
        for (const Block& block : adapter.blocks) {
            text << block.id << ',' << block.disk << ',' << block.virtual_disk << ','
                 << int{block.position} << block.target << int{NumberOf(block.state)} << ','
                 << block.start << ' ';
        }
        for (const VirtualDisk& each : adapter.virtual_disks) {
            text << each.id << each.name << int{NumberOf(each.level)} << int{each.cache}
                 << each.auto_rebuild << each.size << each.initialised << each.errors << ' ';
        }
        for (const DiskGroup& group : adapter.disk_groups) {
            text << group.id << group.name << group.write_cache << ' ';
        }
        for (const Activity& activity : adapter.activities) {
            text << activity.id << ',' << int{NumberOf(activity.kind)}
                 << int{NumberOf(activity.state)} << activity.done << ' ';
        }
        text << adapter.alarm << adapter.muted << adapter.next_event << ',' << adapter.events.size()
             << '\n';
    }
    return text.str();
}

// The event that tells of a virtual disk's new state.
EventKind EventOf(State state) {
    switch (state) {
        case State::kOffline:
            return EventKind::kVirtualDiskOffline;
        case State::kDegraded:
            return EventKind::kVirtualDiskDegraded;
        case State::kPartiallyOptimal:
            return EventKind::kVirtualDiskPartiallyOptimal;
        case State::kOptimal:
        case State::kRebuilding:
        case State::kForeign:
            break;
    }
    return EventKind::kVirtualDiskOnline;
}

bool HasEvent(const Adapter& adapter, HX_U32 from, EventKind kind, HX_U16 device) {
    return std::ranges::any_of(adapter.events, [&](const QueuedEvent& queued) {
        return queued.number >= from && hxcodes::KindOf(queued.event) == kind &&
               queued.event.DeviceID == device;
    });
}

// Every change of a virtual disk that the queue still can tell of, it tells of.
void ExpectToldOf(const Adapter& before, const Adapter& after) {
    const bool lost = after.events.empty() || after.events.front().number > before.next_event;
    if (after.next_event != before.next_event && lost) return;
    const auto told = [&](EventKind kind, HX_U16 device) {
        return HasEvent(after, before.next_event, kind, device);
    };
    for (const VirtualDisk& now : after.virtual_disks) {
        const VirtualDisk* const then = Find(before.virtual_disks, now.id);
        if (then == nullptr) {
            EXPECT_TRUE(now.foreign || told(EventKind::kVirtualDiskCreated, now.id))
                << "created " << now.id;
        } else if (then->state == State::kForeign && now.state != State::kForeign) {
            EXPECT_TRUE(told(EventKind::kVirtualDiskImported, now.id) ||
                        told(EventKind::kVirtualDiskCreated, now.id))
                << "imported " << now.id;
        } else if (now.state != then->state && now.state != State::kForeign) {
            EXPECT_TRUE(told(EventOf(now.state), now.id) ||
                        told(EventKind::kVirtualDiskCreated, now.id))
                << "virtual disk " << now.id << " became " << int{NumberOf(now.state)};
        }
    }
    for (const VirtualDisk& then : before.virtual_disks) {
        if (Find(after.virtual_disks, then.id) != nullptr) continue;
        EXPECT_TRUE(then.foreign || told(EventKind::kVirtualDiskDeleted, then.id))
            << "deleted " << then.id;
    }
}

// ---- One life ----

class Life {
public:
    Life(std::uint64_t seed, std::string state)
        : chance_(seed), state_(std::move(state)), random_(seed) {}

    void Begin() {
        real_time = 1'800'000'000'000;
        Store::Create(state_, RandomMachine());
        setenv("HXSIM_STATE", state_.c_str(), 1);
        ASSERT_EQ(HX_API_Initialize(), HX_SUCCESS);
        before_ = Whole();
        ASSERT_EQ(Check(before_), std::vector<std::string>{});
    }

    void End() { HX_API_Finalize(); }

    // One call, incident or hour, and what must hold after it.
    void Step() {
        done_.str("");
        refused_ = false;
        Draw();
        history_.push_back(done_.str());
        if (history_.size() > kShown) history_.pop_front();
        const Machine after = Whole();
        ASSERT_EQ(Check(after), std::vector<std::string>{}) << History();
        ASSERT_EQ(after.adapters.size(), before_.adapters.size());
        if (refused_) {
            ++refusals_;
            ASSERT_EQ(Fingerprint(before_), Fingerprint(after)) << History();
        }
        for (std::size_t i = 0; i < after.adapters.size(); ++i) {
            ExpectToldOf(before_.adapters[i], after.adapters[i]);
        }
        ASSERT_FALSE(testing::Test::HasFailure()) << History();
        before_ = after;
        ++steps_;
    }

    int Steps() const { return steps_; }
    int Refusals() const { return refusals_; }
    const std::map<std::string, int>& Successes() const { return successes_; }

private:
    static constexpr std::size_t kShown = 25;

    Machine RandomMachine();
    void Draw();

    // The machine as the library has it.
    Machine Whole() {
        Machine machine;
        for (HX_U8 id = 0; id < AdapterCount(); ++id) {
            const HX_U8 status = Look("property", id, [&](const Adapter& adapter, Time) -> Status {
                machine.adapters.push_back(adapter);
                return Status::kSuccess;
            });
            EXPECT_EQ(status, HX_SUCCESS);
        }
        return machine;
    }

    std::string History() const {
        std::string text = "the last of " + std::to_string(steps_ + 1) + " steps:\n";
        for (const std::string& step : history_) text += "  " + step + '\n';
        return text;
    }

    // ---- Arguments: mostly of things that are there ----

    template <class Rows>
    HX_U16 IdOf(const Rows& rows) {
        if (chance_.OneIn(20)) return chance_.Any<HX_U16>();
        if (rows.empty()) return static_cast<HX_U16>(chance_.Below(4));
        return rows[chance_.Below(rows.size())].id;
    }
    const Adapter& Chosen() {
        return before_.adapters[adapter_ < before_.adapters.size() ? adapter_ : 0];
    }
    HX_U16 DiskId() { return Note("pd", IdOf(Chosen().disks)); }
    HX_U16 VirtualDiskId() { return Note("vd", IdOf(Chosen().virtual_disks)); }
    HX_U16 GroupId() { return Note("dg", IdOf(Chosen().disk_groups)); }
    HX_U16 EnclosureId() { return Note("enc", IdOf(Chosen().enclosures)); }
    HX_U8 Action() { return Note("action", static_cast<HX_U8>(chance_.Below(5))); }
    HX_U8 AnyLevel() {
        if (chance_.OneIn(20)) return chance_.Any();
        return chance_.OneOf<HX_U8>({0x00, 0x01, 0x05, 0x06, 0x10, 0x11, 0x50, 0x60});
    }
    Sectors Size() {
        if (chance_.OneIn(20)) return chance_.Any<std::uint64_t>();
        if (chance_.OneIn(3)) return 0;
        return chance_.Below(200) * 2097152 / 4;
    }
    HX_U8 Small(std::size_t end) {
        return chance_.OneIn(20) ? chance_.Any() : static_cast<HX_U8>(chance_.Below(end));
    }
    HX_U16 Stripe() {
        if (chance_.OneIn(20)) return chance_.Any<HX_U16>();
        return chance_.OneOf<HX_U16>({64, 64, 128, 256});
    }
    void Name(char (&name)[HX_NAME_SIZE]) {
        const std::uint64_t length = chance_.Below(HX_NAME_SIZE + 1);
        for (std::uint64_t i = 0; i < length; ++i) {
            name[i] = chance_.OneIn(30) ? static_cast<char>(chance_.Any())
                                        : static_cast<char>('A' + chance_.Below(26));
        }
    }
    // Disks that can be had, mostly; sometimes one twice, one that is none, or far too many.
    HX_U8 Disks(HX_U16 (&ids)[HX_MAX_HDS]) {
        const auto count =
            static_cast<HX_U8>(chance_.OneIn(50) ? chance_.Below(256) : 1 + chance_.Below(7));
        const std::size_t first = chance_.Below(Chosen().disks.size());
        done_ << " disks";
        for (std::size_t i = 0; i < count && i < HX_MAX_HDS; ++i) {
            ids[i] = chance_.OneIn(40) ? IdOf(Chosen().disks)
                                       : Chosen().disks[(first + i) % Chosen().disks.size()].id;
            done_ << ' ' << ids[i];
        }
        return Note("count", count);
    }

    template <class Number>
    Number Note(const char* name, Number number) {
        done_ << ' ' << name << '=' << +number;
        return number;
    }

    // ---- Calls ----

    struct Row {
        const char* name;
        int weight;
        std::function<HX_U8()> call;
    };

    template <class Request>
    HX_U8 List(HX_U8 (*call)(HX_U8, Request*), std::size_t record) {
        if (chance_.OneIn(50)) return call(adapter_, nullptr);
        const auto room = static_cast<HX_U16>(chance_.Below(20));
        std::vector<std::uint64_t> bytes((sizeof(Request) + room * record) / 8 + 2);
        auto* const request = reinterpret_cast<Request*>(bytes.data());
        request->header.requestType =
            static_cast<HX_U8>(chance_.OneIn(20) ? chance_.Any() : 1 + chance_.Below(2));
        request->header.startingIndexOrId =
            chance_.OneIn(10) ? chance_.Any<HX_U16>() : static_cast<HX_U16>(chance_.Below(20));
        request->header.numRequested = room;
        const HX_U8 status = call(adapter_, request);
        if (status == HX_SUCCESS) {
            EXPECT_LE(request->header.numReturned, room) << done_.str();
        }
        return status;
    }

    // ---- Arguments that make sense: without them hardly anything is ever carried out ----

    // Ready disks that have room: those that nothing lies on, or also those that are shared.
    std::vector<HX_U16> Usable(bool whole) {
        constexpr Sectors kRoom = 2 * 2097152;
        std::vector<HX_U16> disks;
        const std::size_t first = chance_.Below(Chosen().disks.size());
        for (std::size_t i = 0; i < Chosen().disks.size(); ++i) {
            const Disk& disk = Chosen().disks[(first + i) % Chosen().disks.size()];
            if (!IsReady(disk) || disk.spare != Spare::kNone || disk.has_system) continue;
            if (disk.spare_before != Spare::kNone || GroupOf(Chosen(), disk.id) != nullptr)
                continue;
            const Block* const free = LongestFree(Chosen(), disk.id);
            if (free == nullptr || free->sectors < kRoom) continue;
            if (whole && CarriesBlocks(Chosen(), disk.id)) continue;
            disks.push_back(disk.id);
        }
        return disks;
    }

    // A level that can be made of so many disks.
    HX_U8 LevelFor(std::size_t disks) {
        for (int i = 0; i < 20; ++i) {
            const LevelRow& level = hxcodes::kLevels[chance_.Below(std::size(hxcodes::kLevels))];
            if (CanBeMade(level, static_cast<unsigned>(disks), 0)) return NumberOf(level.code);
        }
        return 0x00;
    }

    // Disks and a level that go together; the number of the disks.
    HX_U8 Fitting(bool whole, HX_U16 (&ids)[HX_MAX_HDS], HX_U8& level) {
        std::vector<HX_U16> disks = Usable(whole);
        disks.resize(std::min<std::size_t>(disks.size(), 1 + chance_.Below(7)));
        std::ranges::copy(disks, ids);
        for (const HX_U16 disk : disks) done_ << ' ' << disk;
        level = Note("level", LevelFor(disks.size()));
        return Note("count", static_cast<HX_U8>(disks.size()));
    }

    HX_U16 StripeOf(HX_U16 otherwise) { return chance_.OneIn(10) ? Stripe() : otherwise; }

    // One of the rows that are so, where there are some, half of the time; else kNoId.
    template <class Rows, class Is>
    HX_U16 AnyThat(const Rows& rows, Is is) {
        if (chance_.OneIn(2)) return kNoId;
        const std::size_t first = rows.empty() ? 0 : chance_.Below(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const auto& row = rows[(first + i) % rows.size()];
            if (std::invoke(is, row)) return Note("id", row.id);
        }
        return kNoId;
    }

    // What an activity of that kind of object runs on, where there is one.
    HX_U16 BusyId(Owner of, HX_U16 otherwise) {
        for (const Activity& activity : Chosen().activities) {
            if (activity.of == of && chance_.OneIn(2)) return Note("busy", activity.owner);
        }
        if (of != Owner::kDiskGroup) return otherwise;
        for (const Activity& activity : Chosen().activities) {
            const VirtualDisk* const row = Find(Chosen().virtual_disks, activity.owner);
            if (activity.of != Owner::kVirtualDisk || row == nullptr || row->group == kNoId)
                continue;
            return Note("busy", row->group);
        }
        return otherwise;
    }

    Create_LD_Param VirtualDiskParam() {
        if (chance_.OneIn(4)) return StrangeVirtualDiskParam();
        Create_LD_Param param{};
        param.HDCount = Fitting(false, param.HDIDs, param.RaidMode);
        param.StripeBlockSize = StripeOf(64);
        param.CachePolicy = chance_.OneOf<HX_U8>({0, 1, 4, 5});
        param.InitializationOption = Note("init", static_cast<HX_U8>(chance_.Below(4)));
        param.SectorCoefficient = 1;
        Name(param.Name);
        param.Size.value = Note("size", (1 + chance_.Below(4)) * 2097152 / 2);
        return param;
    }

    Create_LD_Param StrangeVirtualDiskParam() {
        Create_LD_Param param{};
        param.RaidMode = Note("level", AnyLevel());
        param.HDCount = Disks(param.HDIDs);
        param.RoundingScheme = Small(3);
        param.SubLDCount = Note("legs", Small(4));
        param.StripeBlockSize = Note("stripe", Stripe());
        param.CachePolicy = chance_.OneOf<HX_U8>({0, 1, 4, 5, chance_.Any()});
        param.InitializationOption = Note("init", Small(4));
        param.SectorCoefficient = static_cast<HX_U8>(chance_.OneIn(20) ? chance_.Any() : 1);
        Name(param.Name);
        param.Size.value = Note("size", Size());
        return param;
    }

    // The disks that serve something, some more or some fewer.
    HX_U8 OtherDisks(Owner of, HX_U16 owner, HX_U16 (&ids)[HX_MAX_HDS]) {
        std::vector<HX_U16> disks;
        for (const Home& home : Chosen().homes) {
            if (home.of == of && home.owner == owner) disks.push_back(home.disk);
        }
        const std::size_t wanted = disks.size() + chance_.Below(3);
        for (const HX_U16 disk : Usable(of == Owner::kDiskGroup)) {
            if (disks.size() >= wanted) break;
            if (std::ranges::find(disks, disk) == disks.end()) disks.push_back(disk);
        }
        std::ranges::copy(disks, ids);
        for (const HX_U16 disk : disks) done_ << ' ' << disk;
        return Note("count", static_cast<HX_U8>(disks.size()));
    }

    Create_LD_Param MigrationParam() {
        Create_LD_Param param = VirtualDiskParam();
        param.LDID = VirtualDiskId();
        const VirtualDisk* const row = Find(Chosen().virtual_disks, param.LDID);
        if (row == nullptr || row->group != kNoId || chance_.OneIn(4)) return param;
        param.SubLDCount = 0;
        param.RoundingScheme = NumberOf(Rounding::kToStripe);
        param.StripeBlockSize = row->stripe_kib;
        param.SectorCoefficient = row->coefficient;
        param.CachePolicy = row->cache;
        param.Size.value = 0;
        std::ranges::fill(param.HDIDs, HX_U16{0});
        param.HDCount = OtherDisks(Owner::kVirtualDisk, row->id, param.HDIDs);
        param.RaidMode = Note("level", LevelFor(param.HDCount));
        return param;
    }

    CreateOrModify_DG_Param GroupMigrationParam() {
        CreateOrModify_DG_Param param = GroupParam();
        param.DGID = GroupId();
        const DiskGroup* const row = Find(Chosen().disk_groups, param.DGID);
        if (row == nullptr || chance_.OneIn(4)) return param;
        param.SubVDCount = 0;
        param.StripeBlockSize = row->stripe_kib;
        param.BlockSize = 512;
        param.Size.value = 0;
        std::ranges::fill(param.PDIDs, HX_U16{0});
        param.PDCount = OtherDisks(Owner::kDiskGroup, row->id, param.PDIDs);
        param.RaidMode = Note("level", LevelFor(param.PDCount));
        return param;
    }

    // A disk that nothing lies on, where there is one.
    HX_U16 EmptyDiskId() {
        for (const Disk& disk : Chosen().disks) {
            const bool used = std::ranges::any_of(Chosen().blocks, [&](const Block& block) {
                return block.disk == disk.id && block.virtual_disk != kNoVirtualDisk;
            });
            if (!used && IsReady(disk) && disk.spare == Spare::kNone && chance_.OneIn(2)) {
                return Note("pd", disk.id);
            }
        }
        return DiskId();
    }

    // A virtual disk that has lost something, where there is one.
    HX_U16 DamagedId() {
        for (const VirtualDisk& each : Chosen().virtual_disks) {
            if (each.state != State::kOptimal && chance_.OneIn(2)) return Note("vd", each.id);
        }
        return VirtualDiskId();
    }

    CreateOrModify_DG_Param GroupParam() {
        CreateOrModify_DG_Param param{};
        param.DGID = chance_.OneIn(2) ? HX_U16{HX_NEW_ID} : GroupId();
        Name(param.Name);
        param.RaidMode = Note("level", AnyLevel());
        param.SubVDCount = Note("legs", Small(4));
        param.StripeBlockSize = Note("stripe", Stripe());
        param.Size.value = chance_.OneIn(3) ? Size() : 0;
        param.BlockSize = chance_.OneIn(20) ? 4096 : 512;
        param.InitializationOption = Small(4);
        if (chance_.OneIn(4)) {
            param.PDCount = Disks(param.PDIDs);
            return param;
        }
        param.SubVDCount = 0;
        param.Size.value = 0;
        param.PDCount = Fitting(true, param.PDIDs, param.RaidMode);
        return param;
    }

    CreateOrModify_VD_Param MemberParam() {
        CreateOrModify_VD_Param param{};
        param.VDID = chance_.OneIn(4) ? VirtualDiskId() : HX_U16{HX_NEW_ID};
        param.DGID = GroupId();
        Name(param.Name);
        const DiskGroup* const group = Find(Chosen().disk_groups, param.DGID);
        param.RaidMode =
            group != nullptr && !chance_.OneIn(10) ? NumberOf(group->level) : AnyLevel();
        param.SubVDCount = group != nullptr ? group->legs : Small(4);
        param.DGSlotNum = Note("slot", Small(8));
        param.StripeBlockSize = group != nullptr ? group->stripe_kib : Stripe();
        param.Size.value = Note("size", Size());
        if (!chance_.OneIn(4)) param.Size.value = (1 + chance_.Below(4)) * 2097152;
        param.RoundingScheme = chance_.OneIn(4) ? Small(3) : NumberOf(Rounding::kToStripe);
        param.CachePolicy = chance_.OneOf<HX_U8>({0, 1, 4, 5, Small(6)});
        param.InitializationOption = Small(4);
        param.SectorCoefficient = 1;
        param.BlockSize = 512;
        return param;
    }

    HX_U8 Rebuild() {
        LD_DG_Rebuild_Param param{};
        param.RebuildType = Note("type", Small(2));
        param.ID = param.RebuildType == RebuildType::kVirtualDisk ? DamagedId() : GroupId();
        param.PDCount = chance_.OneIn(2) ? HX_U8{1} : HX_U8{0};
        if (param.PDCount == 1) {
            param.PDIDs[0] = EmptyDiskId();
        } else {
            param.PDCount = Disks(param.PDIDs);
        }
        return HX_LD_DG_StartRebuild(adapter_, &param);
    }

    HX_U8 SetAdapter() {
        Adapter_Config_V2 config{};
        HX_U8 count = 0;
        const HX_U8 status = HX_Adapter_GetConfig(adapter_, &count, &config);
        if (status != HX_SUCCESS) return status;
        HX_U8* const rates[] = {&config.BGARate,        &config.SyncRate,      &config.InitRate,
                                &config.RebuildRate,    &config.MigrationRate, &config.CopybackRate,
                                &config.MediaPatrolRate};
        *rates[chance_.Below(std::size(rates))] = Small(101);
        HX_U8* const flags[] = {&config.AlarmOn, &config.AutoRebuildOn, &config.CopyBack,
                                &config.PollSMARTStatus};
        *flags[chance_.Below(std::size(flags))] = static_cast<HX_U8>(!chance_.OneIn(2));
        return HX_Adapter_SetConfig(adapter_, &config);
    }

    HX_U8 SetVirtualDisk() {
        LD_Config config{};
        config.CacheMode = Small(6);
        config.AutoRebuildOn = static_cast<HX_U8>(!chance_.OneIn(4));
        config.LDID = VirtualDiskId();
        Name(config.Name);
        return HX_LD_SetConfig(adapter_, config.LDID, &config);
    }

    HX_U8 SetDisk() {
        HD_Config config{};
        config.WriteCacheOn = Small(2);
        config.SMARTOn = Small(2);
        config.Online = static_cast<HX_U8>(!chance_.OneIn(8));
        config.DriveSpeed = static_cast<HX_U8>(8 + chance_.Below(4));
        config.HDID = DiskId();
        return HX_PD_SetConfig(adapter_, config.HDID, &config);
    }

    HX_U8 SetGroup() {
        DG_Config config{};
        config.DGID = GroupId();
        config.WriteCacheOn = Small(2);
        Name(config.Name);
        return HX_DG_SetConfig(adapter_, config.DGID, &config);
    }

    HX_U8 RemapTable() {
        HX_U32 count = 0;
        const HX_U16 disk = DiskId();
        const HX_U8 status = HX_PD_RCT_GetCount(adapter_, disk, &count);
        if (status != HX_SUCCESS) return status;
        count += static_cast<HX_U32>(chance_.Below(2));
        std::vector<RCT_Record> records(count + 1);
        return HX_PD_GetRCT(adapter_, disk, records.data(), count);
    }

    HX_U8 Elements() {
        std::vector<EncElementType_Info> states(255);
        std::vector<EncElement_Config> thresholds(255);
        HX_U8 count = 0;
        const HX_U16 enclosure = EnclosureId();
        const HX_U8 status = HX_ENC_GetElementInfo(adapter_, enclosure, states.data(), &count);
        if (status != HX_SUCCESS) return status;
        return HX_ENC_GetElementConfig(adapter_, enclosure, thresholds.data(), &count);
    }

    HX_U8 BootRecords() {
        HD_MBR_Info info{};
        info.HDCount = Disks(info.HDIDs);
        const HX_U8 status = HX_PD_GetMBRInfo(adapter_, &info);
        if (status != HX_SUCCESS || info.HDCount > HX_MAX_HDS) return status;
        HX_DiskHasOS(adapter_, 1, info.HDCount, info.HDIDs);
        return status;
    }

    HX_U8 Flash() {
        const auto piece = std::make_unique<Flash_Data>();
        piece->PageNum = Small(4);
        piece->DataLength =
            static_cast<HX_U32>(chance_.OneIn(4) ? chance_.Any<HX_U32>() : chance_.Below(32769));
        piece->isLastPage = Small(2);
        std::memset(piece->Data, chance_.Any(), 4096);
        if (chance_.OneIn(2)) {
            // The only image that is there before one has been written, which an erased one is not.
            piece->PageNum = 0;
            return HX_Flash_Bin(adapter_, HX_FLASH_READ, NumberOf(Image::kBios), piece.get());
        }
        const HX_U8 action = chance_.OneOf<HX_U8>({HX_FLASH_READ, HX_FLASH_WRITE, chance_.Any()});
        return HX_Flash_Bin(adapter_, action, Small(6), piece.get());
    }

    HX_U8 TakeEvents() {
        std::vector<Event> events(256);
        HX_U8 count = 0;
        const HX_U8 max = chance_.Any();
        const HX_U8 status = HX_EVT_GetEvent(adapter_, max, &count, events.data());
        EXPECT_TRUE(status != HX_SUCCESS || count <= max) << done_.str();
        return status;
    }

    // ---- Incidents and time ----

    HX_U8 Happen(const std::function<Outcome(Adapter&, Time)>& incident) {
        return hxsim::Change("property", adapter_, [&](Adapter& adapter, Time now) -> Status {
            return incident(adapter, now) ? Status::kSuccess : Status::kWrongState;
        });
    }

    HX_U8 BreakDisk() {
        const HX_U16 disk = DiskId();
        const auto what = Note("what", chance_.Below(12));
        const Sectors sectors = chance_.OneIn(3) ? (5 + chance_.Below(60)) * 2097152 : 0;
        const Sectors lba = chance_.Any<std::uint64_t>() >> (chance_.OneIn(4) ? 0 : 35);
        return Happen([&](Adapter& adapter, Time now) {
            switch (what) {
                case 0:
                case 1:
                    return FailDisk(adapter, now, disk);
                case 2:
                case 3:
                    return RemoveDisk(adapter, now, disk);
                case 4:
                case 5:
                case 6:
                    return InsertDisk(adapter, now, disk);
                case 7:
                    return TripSmart(adapter, now, disk);
                case 8:
                    return DamageSector(adapter, now, disk, lba);
                case 9:
                    return ReplaceDisk(adapter, now, disk, random_, true);
                default:
                    return ReplaceDisk(adapter, now, disk, random_, false, sectors);
            }
        });
    }

    // Puts one of the disks right that are not, as somebody who looks after the machine does.
    HX_U8 MendDisk() {
        const std::size_t first = chance_.Below(Chosen().disks.size());
        for (std::size_t i = 0; i < Chosen().disks.size(); ++i) {
            const Disk& disk = Chosen().disks[(first + i) % Chosen().disks.size()];
            const HX_U16 id = disk.id;
            if (IsReady(disk) || (disk.foreign && !chance_.OneIn(20))) continue;
            Note("pd", id);
            if (disk.present && disk.offline && !disk.failed) {
                return HX_PD_SetHDStatus(adapter_, id, NumberOf(DiskAction::kOnline));
            }
            return Happen([&](Adapter& adapter, Time now) {
                return !disk.present && !disk.failed
                           ? InsertDisk(adapter, now, id)
                           : ReplaceDisk(adapter, now, id, random_, false);
            });
        }
        return PassTime();
    }

    HX_U8 BreakPart() {
        const auto what = Note("what", chance_.Below(9));
        const HX_U16 enclosure = EnclosureId();
        const auto element = static_cast<HX_U8>(chance_.Below(12));
        const auto value = static_cast<HX_U16>(chance_.Below(6000));
        return Happen([&](Adapter& adapter, Time now) {
            switch (what) {
                case 0:
                    return SetBatteryTemperature(adapter, now, value % 100);
                case 1:
                    return SetBatteryVoltage(adapter, now, value);
                case 2:
                    return SetBatteryCharge(adapter, now, static_cast<HX_U8>(value % 101));
                case 3:
                    return RemoveBattery(adapter, now);
                case 4:
                    return ReplaceBattery(adapter, now);
                case 5:
                    return SetFanSpeed(adapter, now, enclosure, element, value);
                case 6:
                    return SetTemperature(adapter, now, enclosure, element, value % 120);
                case 7:
                    return SetPowerSupply(adapter, now, enclosure, element, value % 2 == 0);
                default:
                    CutPower(adapter, now);
                    return Outcome{};
            }
        });
    }

    HX_U8 PassTime() {
        constexpr Time kSecond = 1000;
        const Time longest =
            chance_.OneOf<Time>({kSecond, 60 * kSecond, 3600 * kSecond, 100 * 3600 * kSecond});
        const auto passed = static_cast<Time>(chance_.Below(static_cast<std::size_t>(longest)));
        real_time += Note("ms", passed);
        return HX_SUCCESS;
    }

    Chance chance_;
    const std::string state_;
    std::uint64_t random_;  // for the serial numbers of disks that are put in
    HX_U8 adapter_ = 0;
    Machine before_;
    std::ostringstream done_;
    bool refused_ = false;
    std::deque<std::string> history_;
    int steps_ = 0;
    int refusals_ = 0;
    std::map<std::string, int> successes_;  // by call
};

// One adapter with an enclosure and a battery, or the default machine. Disks are of many sizes, and
// three of them come from another controller with a virtual disk on them.
Machine Life::RandomMachine() {
    const std::uint64_t seed = chance_.Any<std::uint64_t>() >> 1;
    if (chance_.OneIn(3)) return MakeMachine(BuiltInTopology("default"), seed, real_time);
    const char* const foreign_levels[] = {"raid0", "raid1e", "raid5", "raid6"};
    std::ostringstream text;
    text << R"({"name": "random", "disk_models": [)";
    constexpr std::size_t kModels = 4;
    for (std::uint64_t i = 0; i < kModels; ++i) {
        text << (i == 0 ? "" : ", ") << R"({"name": "MODEL)" << i << R"(", "serials": "M)" << i
             << R"(", "sectors": )" << 10 * 2097152 + chance_.Below(100) * 2097152 + i << '}';
    }
    text << R"(], "adapters": [{"model": "large", "battery": {}, "expanders": [{"at":)"
         << R"({"port": 0, "phys": 4}, "enclosure": 0, "phys": 25}], "enclosures": [{"at":)"
         << R"({"expander": 0, "phy": 24}, "elements": [{"type": "power_supply", "count": 2},)"
         << R"({"type": "fan", "rpm": 4200, "count": 2}, {"type": "temperature", "celsius": 30},)"
         << R"({"type": "alarm"}]}], "disks": [)";
    const std::uint64_t disks = 8 + chance_.Below(9);
    for (std::uint64_t i = 0; i < disks; ++i) {
        text << (i == 0 ? "" : ", ") << R"({"at": {"expander": 0, "phy": )" << 4 + i
             << R"(}, "slot": )" << i << R"(, "model": "MODEL)" << chance_.Below(kModels) << '"'
             << (i < 3 ? R"(, "foreign": true)" : "") << '}';
    }
    text << R"(], "virtual_disks": [{"name": "FOREIGN", "foreign": true, "level": ")"
         << foreign_levels[chance_.Below(std::size(foreign_levels))]
         << R"(", "disks": [0, 1, 2], "gib": 4}]}]})";
    return MakeMachine(text.str(), seed, real_time);
}

void Life::Draw() {
    const std::vector<Row> rows = {
        {"PassTime", 30, [&] { return PassTime(); }},
        {"BreakDisk", 10, [&] { return BreakDisk(); }},
        {"MendDisk", 14, [&] { return MendDisk(); }},
        {"BreakPart", 8, [&] { return BreakPart(); }},
        {"HX_LD_Create", 20,
         [&] {
             Create_LD_Param param = VirtualDiskParam();
             return HX_LD_Create(adapter_, chance_.OneIn(50) ? nullptr : &param);
         }},
        {"HX_LD_GetMaxSize", 3,
         [&] {
             Create_LD_Param param = VirtualDiskParam();
             return HX_LD_GetMaxSize(adapter_, &param);
         }},
        {"HX_LD_Delete", 6, [&] { return HX_LD_Delete(adapter_, VirtualDiskId(), Small(2)); }},
        {"HX_LD_Import", 3,
         [&] {
             const HX_U16 id = AnyThat(Chosen().virtual_disks, &VirtualDisk::foreign);
             return HX_LD_Import(adapter_, id == kNoId ? VirtualDiskId() : id);
         }},
        {"HX_LD_PauseAll", 1, [&] { return HX_LD_PauseAll(adapter_); }},
        {"HX_LD_StartRebuild", 12,
         [&] { return HX_LD_StartRebuild(adapter_, DamagedId(), EmptyDiskId()); }},
        {"HX_LD_StartConsistencyCheck", 4,
         [&] { return HX_LD_StartConsistencyCheck(adapter_, VirtualDiskId(), Small(2)); }},
        {"HX_LD_StartINIT", 4,
         [&] { return HX_LD_StartINIT(adapter_, VirtualDiskId(), Small(4)); }},
        {"HX_LD_StartMigration", 12,
         [&] {
             Create_LD_Param param = MigrationParam();
             return HX_LD_StartMigration(adapter_, &param);
         }},
        {"HX_LD_GetMigratedLdSize", 3,
         [&] {
             Create_LD_Param param = MigrationParam();
             return HX_LD_GetMigratedLdSize(adapter_, &param);
         }},
        {"HX_LD_BGAControl", 10,
         [&] {
             const HX_U16 id = BusyId(Owner::kVirtualDisk, VirtualDiskId());
             return HX_LD_BGAControl(adapter_, id, Action());
         }},
        {"HX_LD_SetConfig", 4, [&] { return SetVirtualDisk(); }},
        {"HX_CreateOrModify_DG", 10,
         [&] {
             CreateOrModify_DG_Param param = GroupParam();
             return HX_CreateOrModify_DG(adapter_, &param, Small(2));
         }},
        {"HX_CreateOrModify_VD", 12,
         [&] {
             CreateOrModify_VD_Param param = MemberParam();
             return HX_CreateOrModify_VD(adapter_, &param);
         }},
        {"HX_DG_Delete", 2, [&] { return HX_DG_Delete(adapter_, GroupId()); }},
        {"HX_DG_StartMigration", 6,
         [&] {
             CreateOrModify_DG_Param param = GroupMigrationParam();
             return HX_DG_StartMigration(adapter_, &param);
         }},
        {"HX_DG_BGAControl", 10,
         [&] {
             const HX_U16 id = BusyId(Owner::kDiskGroup, GroupId());
             return HX_DG_BGAControl(adapter_, id, static_cast<HX_U8>(1 + chance_.Below(3)));
         }},
        {"HX_DG_SetConfig", 1, [&] { return SetGroup(); }},
        {"HX_LD_DG_StartRebuild", 12, [&] { return Rebuild(); }},
        {"HX_PD_SetConfig", 3, [&] { return SetDisk(); }},
        {"HX_PD_WipeHDMDD", 3,
         [&] { return HX_PD_WipeHDMDD(adapter_, DiskId(), Note("force", Small(2))); }},
        {"HX_PD_SetHDStatus", 8, [&] { return HX_PD_SetHDStatus(adapter_, DiskId(), Action()); }},
        {"HX_PD_FreeHD2GlobalSpare", 5,
         [&] { return HX_PD_FreeHD2GlobalSpare(adapter_, DiskId()); }},
        {"HX_PD_FreeHD2DGSpare", 6,
         [&] {
             const HX_U16 disk = EmptyDiskId();
             return HX_PD_FreeHD2DGSpare(adapter_, disk, GroupId());
         }},
        {"HX_PD_Spare2FreeHD", 3,
         [&] {
             const HX_U16 id = AnyThat(Chosen().disks,
                                       [](const Disk& disk) { return disk.spare != Spare::kNone; });
             return HX_PD_Spare2FreeHD(adapter_, id == kNoId ? DiskId() : id);
         }},
        {"HX_PD_StartMediaPatrol", 3, [&] { return HX_PD_StartMediaPatrol(adapter_, DiskId()); }},
        {"HX_PD_HDMPCheck", 1, [&] { return HX_PD_HDMPCheck(adapter_, DiskId()); }},
        {"HX_PD_StartDataScrub", 3, [&] { return HX_PD_StartDataScrub(adapter_, DiskId()); }},
        {"HX_PD_BGAControl", 8,
         [&] {
             const HX_U16 id = BusyId(Owner::kDisk, DiskId());
             return HX_PD_BGAControl(adapter_, id, Action());
         }},
        {"HX_PD_GetMBRInfo", 1, [&] { return BootRecords(); }},
        {"HX_PD_GetRCT", 1, [&] { return RemapTable(); }},
        {"HX_Adapter_SetConfig", 8, [&] { return SetAdapter(); }},
        {"HX_AdapterMute", 1, [&] { return HX_AdapterMute(adapter_); }},
        {"HX_LocateArrayDevice", 2,
         [&] {
             const HX_U8 kind = chance_.OneIn(2) ? Small(6) : NumberOf(Device::kDisk);
             return HX_LocateArrayDevice(adapter_, kind, DiskId(), Small(3));
         }},
        {"HX_ENC_GetElementInfo", 1, [&] { return Elements(); }},
        {"HX_BBU_SetThreshold", 2,
         [&] {
             const HX_U8 kind = Small(4);
             const std::uint64_t unit = kind == HX_BBU_THRESHOLD_VOLTAGE ? 1000 : 10;
             return HX_BBU_SetThreshold(adapter_, kind,
                                        static_cast<HX_U16>(unit * chance_.Below(5)),
                                        static_cast<HX_U16>(unit * chance_.Below(8)));
         }},
        {"HX_BBU_ChangePower", 2, [&] { return HX_BBU_ChangePower(adapter_, Action()); }},
        {"HX_BBU_SetStatus", 1, [&] { return HX_BBU_SetStatus(adapter_, Small(3)); }},
        {"HX_BBU_GetInfo", 1,
         [&] {
             BBU_Info info{};
             return HX_BBU_GetInfo(adapter_, &info);
         }},
        {"HX_Flash_Erase", 1, [&] { return HX_Flash_Erase(adapter_, Small(7)); }},
        {"HX_Flash_Bin", 3, [&] { return Flash(); }},
        {"HX_EVT_GetEvent", 6, [&] { return TakeEvents(); }},
        {"HX_PD_GetHDInfo", 1, [&] { return List(HX_PD_GetHDInfo, sizeof(HD_Info)); }},
        {"HX_PD_GetHDInfo_Ext", 1, [&] { return List(HX_PD_GetHDInfo_Ext, sizeof(HD_Info)); }},
        {"HX_PD_GetExpanderInfo", 1, [&] { return List(HX_PD_GetExpanderInfo, sizeof(Exp_Info)); }},
        {"HX_PD_GetPMInfo", 1, [&] { return List(HX_PD_GetPMInfo, sizeof(PM_Info)); }},
        {"HX_PD_GetFreeSpaceInfo", 1,
         [&] { return List(HX_PD_GetFreeSpaceInfo, sizeof(HD_FreeSpaceInfo)); }},
        {"HX_PD_GetConfig", 1, [&] { return List(HX_PD_GetConfig, sizeof(HD_Config)); }},
        {"HX_PD_GetBGAStatus", 1, [&] { return List(HX_PD_GetBGAStatus, sizeof(HD_BGA_Status)); }},
        {"HX_PD_GetSmartStatus", 1,
         [&] { return List(HX_PD_GetSmartStatus, sizeof(HD_SMART_Status)); }},
        {"HX_PD_GetHDRaidStatus", 1,
         [&] { return List(HX_PD_GetHDRaidStatus, sizeof(HD_RAID_Status)); }},
        {"HX_BLK_GetInfo", 1, [&] { return List(HX_BLK_GetInfo, sizeof(Block_Info)); }},
        {"HX_BLK_GetHDBlock", 1, [&] { return List(HX_BLK_GetHDBlock, sizeof(HD_Block_Info)); }},
        {"HX_LD_GetInfo", 1, [&] { return List(HX_LD_GetInfo, sizeof(LD_Info)); }},
        {"HX_LD_GetStatus", 1, [&] { return List(HX_LD_GetStatus, sizeof(LD_Status)); }},
        {"HX_LD_GetConfig", 1, [&] { return List(HX_LD_GetConfig, sizeof(LD_Config)); }},
        {"HX_LD_GetTargetLDInfo", 1,
         [&] {
             LD_Info info{};
             return HX_LD_GetTargetLDInfo(adapter_, VirtualDiskId(), &info);
         }},
        {"HX_DG_GetInfo", 1, [&] { return List(HX_DG_GetInfo, sizeof(DG_Info)); }},
        {"HX_DG_GetConfig", 1, [&] { return List(HX_DG_GetConfig, sizeof(DG_Config)); }},
        {"HX_ENC_GetEnclosureInfo", 1,
         [&] { return List(HX_ENC_GetEnclosureInfo, sizeof(Enclosure_Info)); }},
        {"HX_Adapter_GetInfo", 1,
         [&] {
             Adapter_Info info{};
             HX_U8 count = 0;
             return HX_Adapter_GetInfo(adapter_, &count, &info);
         }},
    };

    int weights = 0;
    for (const Row& row : rows) weights += row.weight;
    auto drawn = static_cast<int>(chance_.Below(static_cast<std::size_t>(weights)));
    std::size_t place = 0;
    while (drawn >= rows[place].weight) drawn -= rows[place++].weight;

    // Most of the time adapter 0, which has most to lose.
    const std::size_t adapters = before_.adapters.size();
    adapter_ = static_cast<HX_U8>(chance_.OneIn(4) ? chance_.Below(adapters) : 0);
    if (chance_.OneIn(200)) adapter_ = chance_.Any();
    done_ << rows[place].name << " a" << int{adapter_};
    const HX_U8 status = rows[place].call();
    done_ << " -> " << int{status};
    refused_ = status != HX_SUCCESS;
    successes_[rows[place].name] += refused_ ? 0 : 1;
}

std::uint64_t NumberFrom(const char* name, std::uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

TEST(LongLife, StaysSoundWhateverHappensToIt) {
    constexpr std::uint64_t kLivesOf = 2000;  // calls; then another machine
    using std::chrono::steady_clock;
    // A sanitized build does less in the same time.
    const std::uint64_t calls = NumberFrom("HXSIM_CALLS", kSanitized ? 4000 : 20000);
    const std::chrono::seconds seconds(NumberFrom("HXSIM_SECONDS", 0));
    const char* const asked_seed = std::getenv("HXSIM_SEED");
    const bool is_random = asked_seed != nullptr && std::string_view(asked_seed) == "random";
    const std::uint64_t seed = is_random ? std::random_device{}() : NumberFrom("HXSIM_SEED", 1);
    RecordProperty("seed", std::to_string(seed));
    std::printf("HXSIM_SEED=%llu HXSIM_CALLS=%llu\n", static_cast<unsigned long long>(seed),
                static_cast<unsigned long long>(calls));

    std::map<std::string, int> successes;
    int refusals = 0;
    std::uint64_t done = 0;
    const auto end = steady_clock::now() + seconds;
    while (done < calls || steady_clock::now() < end) {
        const std::uint64_t length = done < calls ? std::min(kLivesOf, calls - done) : kLivesOf;
        SCOPED_TRACE("HXSIM_SEED=" + std::to_string(seed + done) +
                     " HXSIM_CALLS=" + std::to_string(length) + " repeats it");
        TemporaryRoot root;
        Life life(seed + done, root.Path("/hxsim.db"));
        ASSERT_NO_FATAL_FAILURE(life.Begin());
        for (std::uint64_t i = 0; i < length; ++i) ASSERT_NO_FATAL_FAILURE(life.Step());
        life.End();
        done += length;
        refusals += life.Refusals();
        for (const auto& [call, times] : life.Successes()) successes[call] += times;
    }
    std::printf("%llu calls\n", static_cast<unsigned long long>(done));
    // A life in which nothing is carried out, or everything, shows nothing.
    if (done < 20000) return;
    EXPECT_GT(refusals, 1000);
    for (const auto& [call, times] : successes) {
        EXPECT_GT(times, 0) << call << " was never carried out";
    }
}

}  // namespace
}  // namespace hxsim

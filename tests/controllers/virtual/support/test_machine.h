// The machines of the tests: made by hand, with what happens to them and what can be read off them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "calls/hxsim_disk_group_record.h"
#include "calls/hxsim_virtual_disk_record.h"
#include "controllers/virtual/support/requests.h"
#include "hxraid.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_advance.h"
#include "rules/hxsim_settle.h"

namespace hxsim {

/// Sectors that a rebuild at full speed goes over in a hundred seconds.
inline constexpr Sectors kHundredSeconds = 100 * kFullSpeed;

/// A disk that is there.
inline Disk& DiskIn(Adapter& adapter, HX_U16 id) { return *Find(adapter.disks, id); }

/// A machine of one adapter that offers everything, with every switch on and every rate at 100
/// percent. Its time is told in seconds since kStart, or is kNow where a test needs only one.
class TestMachine {
public:
    static constexpr Time kStart = 1'700'000'000'000;
    static constexpr Time kNow = kStart;
    /// 7812 stripes of 64 KiB (128 sectors each) and 64 sectors more, or 3906 of 128 KiB and 64.
    static constexpr Sectors kUsable = 1'000'000;

    /// With empty disks 0 to `disks` - 1, each with so many sectors to use.
    explicit TestMachine(unsigned disks = 0, Sectors usable = kUsable);

    Machine rows;

    Adapter& adapter() { return rows.adapters[0]; }
    Disk& disk(HX_U16 id) { return DiskIn(adapter(), id); }
    VirtualDisk& virtual_disk(HX_U16 id) { return *Find(adapter().virtual_disks, id); }
    DiskGroup& disk_group(HX_U16 id) { return *Find(adapter().disk_groups, id); }
    Battery& battery() { return adapter().batteries.at(0); }
    Element& element(HX_U8 number) { return adapter().elements.at(number); }
    Block* block(HX_U16 virtual_disk, HX_U8 position, bool target = false);
    Activity* activity(HX_U16 virtual_disk);

    // ---- Making it ----

    /// An empty disk behind the others. Returns its ID.
    HX_U16 AddDisk(Sectors usable = kUsable);
    void AddDisk(HX_U16 id, Sectors usable);

    /// An initialised virtual disk with a block of so many sectors at the first free place of each
    /// disk. Returns its ID.
    HX_U16 AddVirtualDisk(Level level, const Ids& disks, HX_U8 legs = 0,
                          Sectors sectors = kHundredSeconds);
    HX_U16 AddGroup(Level level, const Ids& disks, HX_U8 legs = 0);
    HX_U16 AddVirtualDiskTo(HX_U16 group, Sectors sectors = kHundredSeconds);

    void SetGlobalSpare(HX_U16 disk);
    void SetGroupSpare(HX_U16 disk, HX_U16 group);

    /// Enclosure 0 with these elements.
    static constexpr HX_U8 kFan = 0, kSensor = 1, kSupply = 2, kAlarm = 3, kVoltage = 4;
    void AddEnclosure();

    /// A full battery of 1000 mAh.
    void AddBattery();

    /// Disk 6, which is free, gets virtual disk 2 (RAID 0) of another controller.
    void BringForeign();

    /// Sound images of BIOS and firmware.
    void AddFlash();

    /// Virtual disk 0 (RAID 5, named ALONE) on disks 0 to 2, disk group 0 (RAID 1, GROUP) of disks
    /// 3 and 4 with virtual disk 1 (GROUPED), and disk 5 a global spare. Blocks are numbered disk
    /// by disk.
    void AddArrays();

    /// Numbers the blocks anew from 0 on, disk by disk in the order of their sectors.
    void RenumberBlocks();

    // ---- What happens to it ----

    /// Lets everything happen up to that second, and returns the time.
    Time At(Time second);
    /// Lets everything come to its end that runs.
    void Finish();

    /// Incidents, with their consequences.
    void Fail(Time second, HX_U16 disk);
    void PullOut(Time second, HX_U16 disk);
    void PutBack(Time second, HX_U16 disk);
    void Replace(Time second, HX_U16 disk, Sectors usable = 0);

    /// What a call does: work(adapter, now), which changes nothing when it refuses, and its
    /// consequences when it does not. Returns the status.
    template <class Work>
    Status Call(Time second, Work work) {
        const Time now = At(second);
        Adapter changed = adapter();
        const Status status = work(changed, now);
        if (status != Status::kSuccess) return status;
        adapter() = std::move(changed);
        Settle(adapter(), now);
        return status;
    }

    // Calls that start something, by the second in which they come.
    Status Initialise(Time second, HX_U16 virtual_disk, Init type);
    Status CheckConsistency(Time second, HX_U16 virtual_disk, CheckType type);
    Status Patrol(Time second, HX_U16 disk);
    Status Scrub(Time second, HX_U16 disk);
    Status Rebuild(Time second, HX_U16 virtual_disk, const Ids& disks);
    Status RebuildGroup(Time second, HX_U16 group, const Ids& disks);
    Status MigrateToRaid6(Time second, HX_U16 virtual_disk, const Ids& disks);
    /// Pauses, resumes or aborts what runs on a virtual disk.
    Status Steer(Time second, HX_U16 virtual_disk, ControlAction action);

    /// Starts an activity at kNow, whether it may run or not, and takes all events.
    Activity& StartActivity(ActivityKind kind, Owner of, HX_U16 owner);

    // ---- What can be read off it ----

    /// The blocks of a disk in the order of their sectors: "vd0.1 0+128, target1.0 128+64, free
    /// 192+808".
    std::string BlocksOn(HX_U16 disk);

    /// Every value of the adapter, for comparing it with what a refused call leaves behind.
    std::string Everything();

    /// The disks that serve the positions of an object.
    Ids Serving(Owner of, HX_U16 owner);

    /// What the queued events say, oldest first: "1/2 of 0", class, code and device.
    std::vector<std::string> Events();
    /// The same with the four parameters.
    std::vector<std::string> EventsWithParams();
    /// Takes all events, each as "second class.code device", with the first parameter behind it
    /// where that is not 0.
    std::vector<std::string> TakeEvents();

    /// A record of a virtual disk: LD_Info, LD_Status or LD_Config.
    template <class Record>
    Record Described(HX_U16 id, Time now = kNow) {
        Record record{};
        if constexpr (std::is_same_v<Record, LD_Info>) {
            BlocksByPosition blocks;
            Describe(adapter(), virtual_disk(id), blocks, record);
        } else {
            Describe(adapter(), virtual_disk(id), now, record);
        }
        return record;
    }

    /// The record of disk group 0.
    DG_Info DescribedGroup() {
        DG_Info record{};
        Describe(adapter(), disk_group(0), kNow, record);
        return record;
    }

private:
    HX_U16 AddRow(Level level, std::size_t width, HX_U8 legs, HX_U16 group);
    void CutBlock(HX_U16 disk, Sectors sectors, HX_U16 virtual_disk, HX_U8 position);
    void AddElement(HX_U8 number, ElementType type, HX_U16 reading, HX_U16 nominal);
};

/// A test on such a machine. Whatever it leaves behind has to be a sound machine.
class MachineTest : public testing::Test, public TestMachine {
protected:
    explicit MachineTest(unsigned disks = 8) : TestMachine(disks) {}
    void TearDown() override;
    void ExpectSound();
    /// Expects that a call was refused with that code and has changed nothing: `before` is
    /// Everything before it.
    void ExpectRefused(Status code, Status status, const std::string& before);
};

/// A test that tells a story: what happens in which second. It adds its disks, which take 200
/// seconds to go over.
class StoryTest : public MachineTest {
protected:
    StoryTest() : MachineTest(0) {}
    /// A story's end has nothing left to settle.
    void TearDown() override { ExpectSound(); }
    void AddDisks(unsigned count, Sectors usable = 2 * kHundredSeconds);

    /// Disks 0 to 2 with a virtual disk of RAID 5 over them. Returns its ID.
    HX_U16 AddRaid5();
    /// The same, and disk 3 as a global spare.
    HX_U16 AddRaid5AndSpare();
    /// A disk group of RAID 5 on disks 0 to 2, its two virtual disks, of which the second is half
    /// as large as the first, and disk 3 as its spare.
    struct GroupOfTwo {
        HX_U16 group;
        HX_U16 first;
        HX_U16 second;
    };
    GroupOfTwo AddGroupAndSpare();

    /// Disk 1 fails at second 0, and the spare has taken its place by second 150. Takes all events.
    void RebuildOnSpare();
};

/// A test on a machine that has one of everything: the arrays of AddArrays, a free disk 6, disk 7
/// as a spare of the group, an enclosure with five elements, a battery and a flash. Nothing steps
/// in for what is lost.
class MixedMachineTest : public MachineTest {
protected:
    MixedMachineTest();
};

/// A test of that machine's battery, which goes its own way with time.
class BatteryTest : public MixedMachineTest {
protected:
    /// What the battery says at `time`, after all that has happened to it by then.
    BBU_Info At(Time time);
};

}  // namespace hxsim

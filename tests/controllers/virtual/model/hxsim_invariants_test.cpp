// Every rule of a machine, broken once on a machine that is otherwise sound.
#include "model/hxsim_invariants.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "codes/activity.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/flash.h"
#include "codes/state.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_machine.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::Device;
using hxcodes::Image;
using hxcodes::RemapReason;
using hxcodes::State;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr Sectors kUsable = TestMachine::kUsable;

void AddBlock(Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors,
              HX_U16 virtual_disk = kNoVirtualDisk, HX_U8 position = 0) {
    Block block;
    block.id = static_cast<HX_U16>(adapter.blocks.size());
    block.disk = disk;
    block.virtual_disk = virtual_disk;
    block.position = position;
    block.start = start;
    block.sectors = sectors;
    adapter.blocks.push_back(block);
}

void AddHome(Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position, HX_U16 disk) {
    adapter.homes.push_back({of, owner, position, disk, disk});
}

QueuedEvent Numbered(HX_U32 number) {
    QueuedEvent queued;
    queued.number = number;
    queued.event.SequenceNo = number;
    return queued;
}

// The arrays of AddArrays and a free disk 6, all on an expander: blocks 0 to 5 lie on disks 0 to 2,
// two on each, 6 to 9 on the group's, 10 and 11 on the last two. A check of virtual disk 0, two
// remaps of disk 0, two events, an enclosure with two elements.
Machine Sound() {
    TestMachine machine(7);
    machine.AddArrays();
    machine.AddEnclosure();
    machine.AddBattery();
    machine.AddFlash();
    machine.StartActivity(ActivityKind::kCheck, Owner::kVirtualDisk, 0).total = 640000;
    Adapter& adapter = machine.adapter();
    adapter.info.MaxLogicalDrive = 8;
    adapter.remaps.push_back({0, 1000, 8, RemapReason::kReadError});
    adapter.remaps.push_back({0, 2000, 8, RemapReason::kReadError});
    Expander expander;
    expander.parent = Device::kAdapter;
    adapter.expanders.push_back(expander);
    adapter.enclosures[0].parent = Device::kExpander;
    adapter.elements.resize(2);
    for (Disk& disk : adapter.disks) {
        disk.parent = Device::kExpander;
        disk.enclosure = 0;
        disk.slot = disk.id;
    }
    adapter.next_event = 1;
    Queue(adapter, TestMachine::kNow, EventKind::kDiskOnline, 0);
    Queue(adapter, TestMachine::kNow, EventKind::kDiskOnline, 1);
    return machine.rows;
}

TEST(SoundMachine, FindsNothingOnASoundMachine) { EXPECT_THAT(Check(Sound()), IsEmpty()); }

struct Broken {
    const char* name;
    std::function<void(Machine&, Adapter&)> breaks;
    std::vector<std::string> sentences;
};

void PrintTo(const Broken& broken, std::ostream* out) { *out << broken.name; }

class BrokenMachine : public testing::TestWithParam<Broken> {};

TEST_P(BrokenMachine, SaysWhatIsBroken) {
    Machine machine = Sound();
    GetParam().breaks(machine, machine.adapters[0]);
    EXPECT_THAT(Check(machine), ElementsAreArray(GetParam().sentences));
}

const Broken kMachines[] = {
    {"NoAdapter",
     [](Machine& machine, Adapter&) { machine.adapters.clear(); },
     {"The machine has 0 adapters; 1 to 4 fit."}},
    {"AdapterNumber",
     [](Machine&, Adapter& adapter) {
         adapter.id = 1;
         adapter.events.clear();
     },
     {"Adapter 1 stands in place 0; adapters are numbered from 0."}},
    {"ClockBackwards",
     [](Machine& machine, Adapter&) { machine.clock.speed = -1; },
     {"The clock runs backwards."}},
    {"InjectionTwice",
     [](Machine& machine, Adapter&) { machine.injections.resize(2); },
     {"Injection 0 stands behind injection 0; numbers ascend."}},
};
const Broken kDisks[] = {
    {"DiskTwice",
     [](Machine&, Adapter& a) { std::swap(a.disks[5], a.disks[6]); },
     {"a0/pd5 stands behind a0/pd6; IDs are unique and ascend."}},
    {"WorldWideNameTwice",
     [](Machine&, Adapter& a) { a.disks[6].wwn = a.disks[5].wwn; },
     {"a0/pd6 has the world wide name of another disk."}},
    {"SlotTwice",
     [](Machine&, Adapter& a) { a.disks[6].slot = 5; },
     {"a0/pd6 sits in slot 5 of enclosure 0, where another disk sits."}},
    {"SpareOfNoGroup",
     [](Machine&, Adapter& a) {
         a.disks[5].spare = Spare::kGroup;
         a.disks[5].spare_group = 4;
     },
     {"a0/pd5 is a spare of disk group 4, which is not there."}},
    {"SpareThatServes",
     [](Machine&, Adapter& a) { a.disks[0].spare = Spare::kGlobal; },
     {"a0/pd0 is a spare and carries blocks of a virtual disk.",
      "a0/pd0 is a spare and serves a virtual disk or a disk group."}},
    {"DiskOnNothing",
     [](Machine&, Adapter& a) { a.disks[6].parent_id = 9; },
     {"a0/pd6 hangs on expander 9, which is not there."}},
    {"DiskOnDisk",
     [](Machine&, Adapter& a) { a.disks[6].parent = Device::kDisk; },
     {"a0/pd6 hangs on disk 0, which is not there."}},
    {"RemapOfNoDisk",
     [](Machine&, Adapter& a) { a.remaps[1].disk = 9; },
     {"Sectors of disk 9 are remapped, which is not there."}},
    {"RemapBehindTheEnd",
     [](Machine&, Adapter& a) { a.remaps[1].lba = kUsable + kMetadata - 7; },
     {"Remapped sector 1065529 of a0/pd0 and the 8 from there on are not all on the disk."}},
    {"RemapTwice",
     [](Machine&, Adapter& a) { a.remaps[1].lba = 1000; },
     {"Remapped sector 1000 of a0/pd0 is out of order or there twice."}},
};
const Broken kBlocks[] = {
    {"BlockTwice",
     [](Machine&, Adapter& a) { a.blocks[11].id = 10; },
     {"a0/blk10 stands behind a0/blk10; IDs are unique and ascend."}},
    {"Overlap",
     [](Machine&, Adapter& a) {
         a.blocks[1].start -= 10;
         a.blocks[1].sectors += 10;
     },
     {"a0/blk1 overlaps a0/blk0 at sector 639990 of a0/pd0."}},
    {"Gap",
     [](Machine&, Adapter& a) {
         a.blocks[1].start += 10;
         a.blocks[1].sectors -= 10;
     },
     {"a0/pd0 has sectors 640000 to 640009 in no block."}},
    {"ShortOfTheEnd",
     [](Machine&, Adapter& a) { a.blocks[11].sectors -= 1; },
     {"a0/pd6 has sectors 999999 to 999999 in no block."}},
    {"NoBlockAtAll",
     [](Machine&, Adapter& a) { a.blocks.pop_back(); },
     {"a0/pd6 has sectors 0 to 999999 in no block."}},
    {"IntoTheMetadata",
     [](Machine&, Adapter& a) { a.blocks[11].sectors += 1; },
     {"a0/blk11 reaches sector 1000001 of a0/pd6, whose metadata begins at 1000000."}},
    {"EmptyBlock",
     [](Machine&, Adapter& a) {
         AddBlock(a, 0, kUsable, 0, 0, 0);
         a.blocks.back().target = true;
         a.activities[0].kind = ActivityKind::kCopyback;
     },
     {"a0/blk12 has no sectors."}},
    {"FreeBlocksTouch",
     [](Machine&, Adapter& a) {
         a.blocks[11].sectors = 500000;
         AddBlock(a, 6, 500000, 500000);
     },
     {"a0/blk12 and a0/blk11 are free and touch."}},
    {"TooManyBlocks",
     [](Machine&, Adapter& a) { a.info.MaxBlockPerPD = 1; },
     {"a0/pd0 has 2 blocks; the adapter allows 1.", "a0/pd1 has 2 blocks; the adapter allows 1.",
      "a0/pd2 has 2 blocks; the adapter allows 1.", "a0/pd3 has 2 blocks; the adapter allows 1.",
      "a0/pd4 has 2 blocks; the adapter allows 1."}},
    {"BlockOnNoDisk",
     [](Machine&, Adapter& a) { AddBlock(a, 9, 0, 10); },
     {"a0/blk12 lies on disk 9, which is not there."}},
    {"BlockOfNoVirtualDisk",
     [](Machine&, Adapter& a) { a.blocks[11].virtual_disk = 7; },
     {"a0/blk11 belongs to virtual disk 7, which is not there."}},
    {"BlockState",
     [](Machine&, Adapter& a) { a.blocks[0].state = State::kOffline; },
     {"a0/blk0 is offline; a block is optimal, rebuilding or degraded."}},
    {"FreeBlockWithAPosition",
     [](Machine&, Adapter& a) { a.blocks[11].position = 1; },
     {"a0/blk11 is free and has a state, a position or a purpose."}},
    {"PositionTwice",
     [](Machine&, Adapter& a) { a.blocks[8].position = 0; },
     {"a0/blk8 is a second block of position 0 of a0/vd1.",
      "Position 0 of a0/vd1 has its block on a0/pd4, and a0/pd3 serves it.",
      "Position 1 of a0/vd1 has no block, and a0/pd4 serves it."}},
    {"PositionOutside",
     [](Machine&, Adapter& a) {
         a.blocks[11].virtual_disk = 0;
         a.blocks[11].position = 3;
     },
     {"a0/blk11 is position 3 of a0/vd0, which has 3.",
      "a0/blk11 has 1000000 sectors and a0/blk0 has 640000; those of a0/vd0 are of one size."}},
    {"TargetOfNothing",
     [](Machine&, Adapter& a) {
         a.blocks[11].virtual_disk = 0;
         a.blocks[11].target = true;
     },
     {"a0/blk11 is written by a migration or copyback of a0/vd0, and none is there."}},
    {"SizesDiffer",
     [](Machine&, Adapter& a) {
         a.blocks[4].sectors += 1;
         a.blocks[5].start += 1;
         a.blocks[5].sectors -= 1;
     },
     {"a0/blk4 has 640001 sectors and a0/blk0 has 640000; those of a0/vd0 are of one size."}},
    {"TwoPositionsOnADisk",
     [](Machine&, Adapter& a) {
         a.blocks[0].sectors = 500000;
         a.blocks[1].start = 500000;
         a.blocks[1].sectors = 500000;
         a.blocks[1].virtual_disk = 0;
         a.blocks[1].position = 1;
         a.blocks[2].virtual_disk = kNoVirtualDisk;
         a.blocks[2].position = 0;
         a.blocks[2].sectors = kUsable;
         a.blocks.erase(a.blocks.begin() + 3);
         a.blocks[3].sectors = 500000;
         a.blocks[4].start = 500000;
         a.blocks[4].sectors = 500000;
         a.virtual_disks[0].size = 999936;
         a.homes[1].disk = 0;
     },
     {"a0/vd0 has two positions on a0/pd0."}},
};
const Broken kVirtualDisks[] = {
    {"TooManyVirtualDisks",
     [](Machine&, Adapter& a) { a.info.MaxLogicalDrive = 1; },
     {"a0 has 2 virtual disks; it allows 1."}},
    {"VirtualDiskNumber",
     [](Machine&, Adapter& a) {
         a.virtual_disks[1].id = 256;
         for (Block& block : a.blocks)
             if (block.virtual_disk == 1) block.virtual_disk = 256;
     },
     {"a0/vd256 has an ID above 254."}},
    {"LongName",
     [](Machine&, Adapter& a) { a.virtual_disks[0].name = "SEVENTEEN LETTERS"; },
     {"a0/vd0 has a name of 17 bytes; 16 fit."}},
    {"OnNoGroup",
     [](Machine&, Adapter& a) { a.virtual_disks[1].group = 3; },
     {"a0/vd1 lies on disk group 3, which is not there.",
      "a0/pd3 serves a0/dg0 and carries a0/blk6 of a0/vd1.",
      "a0/pd4 serves a0/dg0 and carries a0/blk8 of a0/vd1."}},
    {"UnlikeItsGroup",
     [](Machine&, Adapter& a) { a.virtual_disks[1].level = Level::kRaid0; },
     {"a0/vd1 differs from a0/dg0 in level, legs or width."}},
    {"SlotOutside",
     [](Machine&, Adapter& a) { a.virtual_disks[1].slot = 32; },
     {"a0/vd1 lies in slot 32; slots end at 31."}},
    {"SlotOfAnother",
     [](Machine&, Adapter& a) {
         VirtualDisk twin = a.virtual_disks[1];
         twin.id = 2;
         a.virtual_disks.push_back(twin);
         a.blocks[7].virtual_disk = 2;
         a.blocks[9].virtual_disk = 2;
         a.blocks[9].position = 1;
     },
     {"a0/vd2 lies in slot 0 of a0/dg0, where a0/vd1 lies."}},
    {"LevelOfSoManyDisks",
     [](Machine&, Adapter& a) { a.virtual_disks[0].level = Level::kRaid50; },
     {"a0/vd0 is raid50 of 3 disks, which that level cannot be made of."}},
    {"NoSuchLevel",
     [](Machine&, Adapter& a) { a.virtual_disks[0].level = static_cast<Level>(0x77); },
     {"a0/vd0 is code 119 of 3 disks, which that level cannot be made of."}},
    {"NoStripes",
     [](Machine&, Adapter& a) { a.virtual_disks[0].stripe_kib = 0; },
     {"a0/vd0 has stripes of 0 KiB."}},
    {"NoSize", [](Machine&, Adapter& a) { a.virtual_disks[0].size = 0; }, {"a0/vd0 has no size."}},
    {"MoreThanItsBlocks",
     [](Machine&, Adapter& a) { a.virtual_disks[0].size += 1; },
     {"a0/vd0 has 1280001 sectors; its blocks hold 1280000."}},
    {"AnnouncedState",
     [](Machine&, Adapter& a) { a.virtual_disks[0].state = State::kDegraded; },
     {"a0/vd0 was announced as degraded and is optimal."}},
};
const Broken kGroupsAndHomes[] = {
    {"LongGroupName",
     [](Machine&, Adapter& a) { a.disk_groups[0].name = "SEVENTEEN LETTERS"; },
     {"a0/dg0 has a name of 17 bytes; 16 fit."}},
    {"GroupLevel",
     [](Machine&, Adapter& a) {
         a.disk_groups[0].level = Level::kRaid5;
         a.virtual_disks[1].level = Level::kRaid5;
     },
     {"a0/vd1 is raid5 of 2 disks, which that level cannot be made of.",
      "a0/dg0 is raid5 of 2 disks, which that level cannot be made of."}},
    {"GroupDiskWithOtherBlocks",
     [](Machine&, Adapter& a) {
         a.blocks[7].virtual_disk = 0;

         a.blocks[7].target = true;
         a.activities[0].kind = ActivityKind::kCopyback;
     },
     {"a0/pd3 serves a0/dg0 and carries a0/blk7 of a0/vd0."}},
    {"GroupState",
     [](Machine&, Adapter& a) { a.disk_groups[0].state = State::kOffline; },
     {"a0/dg0 was announced as offline and is optimal."}},
    {"HomeTwice",
     [](Machine&, Adapter& a) { a.homes.insert(a.homes.begin(), a.homes[0]); },
     {"a0 has homes out of order or twice."}},
    {"DiskOfTwoGroupPositions",
     [](Machine&, Adapter& a) { a.homes[4].disk = 3; },
     {"a0/pd3 serves two positions of disk groups.",
      "Position 1 of a0/vd1 has its block on a0/pd4, and a0/pd3 serves it."}},
    {"HomeOfNothing",
     [](Machine&, Adapter& a) { AddHome(a, Owner::kDiskGroup, 1, 0, 6); },
     {"A home is kept for position 0 of a0/dg1, which is not there."}},
    {"HomeOfADisk",
     [](Machine&, Adapter& a) { AddHome(a, Owner::kDisk, 6, 0, 6); },
     {"A home is kept for position 0 of a0/pd6, which is not there."}},
    {"HomeOfAMember",
     [](Machine&, Adapter& a) {
         a.homes.insert(a.homes.begin() + 3, {Owner::kVirtualDisk, 1, 0, 3, 3});
     },
     {"A home is kept for position 0 of a0/vd1, which lies on a disk group."}},
    {"HomeOutside",
     [](Machine&, Adapter& a) { AddHome(a, Owner::kDiskGroup, 0, 2, 6); },
     {"A home is kept for position 2 of a0/dg0, which has fewer."}},
    {"HomeOnNoDisk",
     [](Machine&, Adapter& a) { a.homes[0].home = 9; },
     {"Disk 9 is home of position 0 of a0/vd0 and is not there."}},
    {"ServedByNoDisk",
     [](Machine&, Adapter& a) { a.homes[0].disk = 9; },
     {"Disk 9 serves position 0 of a0/vd0 and is not there.",
      "Position 0 of a0/vd0 has its block on a0/pd0, and a0/pd9 serves it."}},
    {"HomeMissing",
     [](Machine&, Adapter& a) { a.homes.erase(a.homes.begin()); },
     {"No home is kept for position 0 of a0/vd0."}},
    {"GroupHomeMissing",
     [](Machine&, Adapter& a) { a.homes.pop_back(); },
     {"No home is kept for position 1 of a0/dg0."}},
    {"ServedWithoutABlock",
     [](Machine&, Adapter& a) {
         a.blocks[0].sectors = kUsable;
         a.blocks[0].virtual_disk = kNoVirtualDisk;
         a.blocks.erase(a.blocks.begin() + 1);
     },
     {"Position 0 of a0/vd0 has no block, and a0/pd0 serves it."}},
    {"BlockThatDoesNotServe",
     [](Machine&, Adapter& a) { a.homes[0].disk = kNoId; },
     {"Position 0 of a0/vd0 has a block on a0/pd0, and no disk serves it."}},
};
const Broken kTheRest[] = {
    {"TwoActivities",
     [](Machine&, Adapter& a) {
         a.activities.push_back(a.activities[0]);
         a.activities[1].id = 1;
     },
     {"a0/vd0 has two activities."}},
    {"ActivityOfNothing",
     [](Machine&, Adapter& a) { a.activities[0].owner = 9; },
     {"A check runs on a0/vd9, which is not there."}},
    {"ActivityThatDoesNotSuit",
     [](Machine&, Adapter& a) { a.activities[0].of = Owner::kDisk; },
     {"A check runs on a0/pd0, which has no such activity."}},
    {"IdleActivity",
     [](Machine&, Adapter& a) { a.activities[0].state = ActivityState::kIdle; },
     {"The check of a0/vd0 is idle; an activity is running, paused or auto_paused."}},
    {"MoreThanAll",
     [](Machine&, Adapter& a) { a.activities[0].done = 640001; },
     {"The check of a0/vd0 has done 640001 of 640000 sectors."}},
    {"Above100Percent",
     [](Machine&, Adapter& a) { a.activities[0].announced = 101; },
     {"The check of a0/vd0 was announced at 101 percent."}},
    {"ExpanderInACircle",
     [](Machine&, Adapter& a) { a.expanders[0].parent = Device::kExpander; },
     {"a0/exp0 hangs on itself."}},
    {"EnclosureOnNothing",
     [](Machine&, Adapter& a) { a.enclosures[0].parent_id = 7; },
     {"a0/enc0 hangs on expander 7, which is not there."}},
    {"ElementOfNoEnclosure",
     [](Machine&, Adapter& a) { a.elements[1].enclosure = 2; },
     {"a0/enc2/el1 is in enclosure 2, which is not there."}},
    {"ElementTwice",
     [](Machine&, Adapter& a) { a.elements[1].number = 0; },
     {"a0/enc0/el0 stands behind a0/enc0/el0; elements are unique and ascend."}},
    {"ElementType",
     [](Machine&, Adapter& a) { a.elements[1].type = static_cast<ElementType>(0x42); },
     {"a0/enc0/el1 is of type 66, which is none."}},
    {"ElementStatus",
     [](Machine&, Adapter& a) { a.elements[1].status = static_cast<ElementStatus>(9); },
     {"a0/enc0/el1 has the status 9, which is none."}},
    {"TwoBatteries",
     [](Machine&, Adapter& a) { a.batteries.push_back(a.batteries[0]); },
     {"a0 has 2 batteries; one fits."}},
    {"BatteryPercent",
     [](Machine&, Adapter& a) { a.batteries[0].info.percentage = 101; },
     {"a0/bbu is charged to 101 percent."}},
    {"BatteryPercentToCharge",
     [](Machine&, Adapter& a) { a.batteries[0].info.percent_to_charge = 101; },
     {"a0/bbu is to be charged below 101 percent."}},
    {"BatteryHoldsTooMuch",
     [](Machine&, Adapter& a) { a.batteries[0].info.maxCapacity = 1101; },
     {"a0/bbu holds 1101 mAh; what can be set is 600 to 1100."}},
    {"BatteryHasTooMuch",
     [](Machine&, Adapter& a) { a.batteries[0].info.curCapacity = 1001; },
     {"a0/bbu has 1001 of 1000 mAh."}},
    {"BatteryHadTooMuch",
     [](Machine&, Adapter& a) { a.batteries[0].charge_at_since = 1001; },
     {"a0/bbu had 1001 of 1000 mAh."}},
    {"BatteryVoltages",
     [](Machine&, Adapter& a) { a.batteries[0].info.volt_lowerbound = 4251; },
     {"a0/bbu has a lowest voltage above its highest."}},
    {"BatteryTemperatures",
     [](Machine&, Adapter& a) { a.batteries[0].info.temp_lowerbound = 61; },
     {"a0/bbu has a lowest temperature above its highest."}},
    {"ImageType",
     [](Machine&, Adapter& a) { a.images[1].type = static_cast<Image>(9); },
     {"a0 has a flash image of type 9, which is none."}},
    {"ImageTwice",
     [](Machine&, Adapter& a) { a.images[1].type = Image::kBios; },
     {"a0 has the flash image bios twice."}},
    {"ErasedAndHealthy",
     [](Machine&, Adapter& a) { a.images[0].erased = true; },
     {"a0 has the flash image bios erased and healthy."}},
    {"TooManyEvents",
     [](Machine&, Adapter& a) {
         a.events.clear();
         for (HX_U32 number = 1; number <= 513; ++number) a.events.push_back(Numbered(number));
         a.next_event = 514;
     },
     {"a0 has 513 events in its queue; it holds 512."}},
    {"EventTwice",
     [](Machine&, Adapter& a) { a.events[1] = Numbered(1); },
     {"Event 1 of a0 stands behind event 1; numbers are above 0 and ascend."}},
    {"EventOfTheFuture",
     [](Machine&, Adapter& a) { a.events[1] = Numbered(3); },
     {"Event 3 of a0 has a number that comes after 3, the next one's."}},
    {"EventThatSaysAnother",
     [](Machine&, Adapter& a) { a.events[1].event.SequenceNo = 7; },
     {"Event 2 of a0 says that it is event 7 of a0."}},
    {"TooMuchSenseData",
     [](Machine&, Adapter& a) { a.events[1].event.SenseDataLength = 31; },
     {"Event 2 of a0 has 31 bytes of sense data; 30 fit."}},
};

std::string NameOf(const testing::TestParamInfo<Broken>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Machines, BrokenMachine, testing::ValuesIn(kMachines), NameOf);
INSTANTIATE_TEST_SUITE_P(Disks, BrokenMachine, testing::ValuesIn(kDisks), NameOf);
INSTANTIATE_TEST_SUITE_P(Blocks, BrokenMachine, testing::ValuesIn(kBlocks), NameOf);
INSTANTIATE_TEST_SUITE_P(VirtualDisks, BrokenMachine, testing::ValuesIn(kVirtualDisks), NameOf);
INSTANTIATE_TEST_SUITE_P(GroupsAndHomes, BrokenMachine, testing::ValuesIn(kGroupsAndHomes), NameOf);
INSTANTIATE_TEST_SUITE_P(TheRest, BrokenMachine, testing::ValuesIn(kTheRest), NameOf);

}  // namespace
}  // namespace hxsim

// Machines from topologies: those that are built in, and texts that are wrong.
#include "topology/hxsim_topology.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "codes/device.h"
#include "codes/event.h"
#include "codes/state.h"
#include "model/hxsim_invariants.h"
#include "store/hxsim_store.h"
#include "support/temporary_root.h"

namespace hxsim {
namespace {

using hxcodes::Device;
using hxcodes::State;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

constexpr Time kNow = 1'700'000'000'000;

Machine BuiltIn(const char* name, std::uint64_t seed = 1) {
    return MakeMachine(BuiltInTopology(name), seed, kNow);
}

std::vector<std::string> SerialsOf(const Adapter& adapter) {
    std::vector<std::string> serials;
    for (const Disk& disk : adapter.disks) serials.push_back(disk.serial);
    return serials;
}

TEST(Topologies, AreThese) {
    EXPECT_THAT(BuiltInTopologies(), ElementsAre("default", "small", "rack"));
    EXPECT_EQ(BuiltInTopology("other"), "");
}

class EachTopology : public testing::TestWithParam<const char*> {};

TEST_P(EachTopology, MakesASoundMachine) {
    const Machine machine = BuiltIn(GetParam());
    EXPECT_THAT(Check(machine), IsEmpty());
    EXPECT_EQ(machine.topology, GetParam());
    EXPECT_EQ(Now(machine.clock, kNow), kNow);
}

TEST_P(EachTopology, MakesTheSameFileForTheSameSeed) {
    const TemporaryRoot root;
    Store::Create(root.Path("/one.db"), BuiltIn(GetParam()));
    Store::Create(root.Path("/other.db"), BuiltIn(GetParam()));
    const std::string one = root.Read("/one.db");
    EXPECT_FALSE(one.empty());
    EXPECT_TRUE(one == root.Read("/other.db"));
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, EachTopology, testing::Values("default", "small", "rack"),
                         [](const auto& about) { return std::string(about.param); });

TEST(Topology, LeavesSerialNumbersToTheSeed) {
    const std::vector<std::string> of_one = SerialsOf(BuiltIn("small", 1).adapters[0]);
    EXPECT_EQ(SerialsOf(BuiltIn("small", 1).adapters[0]), of_one);
    EXPECT_NE(SerialsOf(BuiltIn("small", 2).adapters[0]), of_one);
    EXPECT_EQ(std::set<std::string>(of_one.begin(), of_one.end()).size(), 8U);
    EXPECT_EQ(of_one[0].substr(0, 4), "6TW0");
}

TEST(Default, HasTwoAdaptersWithTheirDisks) {
    const Machine machine = BuiltIn("default");
    ASSERT_EQ(machine.adapters.size(), 2U);
    const Adapter& first = machine.adapters[0];
    EXPECT_STREQ(first.info.SerialNo, "VC08-24100001");
    EXPECT_STREQ(machine.adapters[1].info.SerialNo, "VC04-24100002");
    EXPECT_EQ(first.disks.size(), 16U);
    EXPECT_EQ(first.disks.back().id, 16);
    EXPECT_EQ(first.disks.back().slot, 15);
    EXPECT_EQ(first.disks[3].sectors, 1172123568U);
    EXPECT_EQ(first.disks[9].spare, Spare::kGlobal);
    EXPECT_EQ(first.disks[10].spare, Spare::kGroup);
    EXPECT_EQ(first.disks[10].spare_group, 0);
    EXPECT_EQ(machine.adapters[1].disks.size(), 8U);
    EXPECT_TRUE(machine.adapters[1].disks[2].has_system);
    EXPECT_EQ(machine.adapters[1].disks[7].parent, Device::kPortMultiplier);
    EXPECT_EQ(first.batteries.size(), 1U);
    EXPECT_THAT(machine.adapters[1].batteries, IsEmpty());
}

TEST(Default, HasItsVirtualDisksOptimalAndInitialised) {
    const Machine machine = BuiltIn("default");
    const std::vector<VirtualDisk>& rows = machine.adapters[0].virtual_disks;
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].name, "DATABASE");
    EXPECT_EQ(rows[0].group, 0);
    EXPECT_EQ(rows[0].size, 1610612736U);  // 768 GiB
    EXPECT_EQ(rows[1].id, 2);
    EXPECT_EQ(rows[1].name, "ARCHIVE");
    EXPECT_EQ(rows[1].size, 6442450944U);  // 3 TiB
    for (const VirtualDisk& row : rows) {
        EXPECT_TRUE(row.initialised);
        EXPECT_EQ(row.state, State::kOptimal);
    }
    EXPECT_EQ(machine.adapters[1].virtual_disks.at(0).name, "MIRROR");
}

TEST(Default, TellsHowItCameUp) {
    const std::vector<QueuedEvent> events = BuiltIn("default").adapters[0].events;
    ASSERT_EQ(events.size(), 22U);
    const auto is = [](EventKind kind, HX_U16 device) {
        return Field(&QueuedEvent::event,
                     AllOf(Field(&Event::Class, ClassOf(kind)), Field(&Event::Code, CodeOf(kind)),
                           Field(&Event::DeviceID, device)));
    };
    EXPECT_THAT(events[0], is(EventKind::kAdapterFound, 0));
    EXPECT_THAT(events[1], is(EventKind::kExpanderPluggedIn, 0));
    EXPECT_THAT(events[2], is(EventKind::kDiskOnline, 0));
    EXPECT_THAT(events[17], is(EventKind::kDiskOnline, 16));
    EXPECT_THAT(events[18], is(EventKind::kBatteryPresent, 0));
    EXPECT_THAT(events[19], is(EventKind::kDiskGroupCreated, 0));
    EXPECT_THAT(events[20], is(EventKind::kVirtualDiskCreated, 0));
    EXPECT_THAT(events[21], is(EventKind::kVirtualDiskCreated, 2));
    const Event& found = events[0].event;
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(found.SenseData), found.SenseDataLength),
              "VC08-24100001");
    EXPECT_EQ(found.TimeStamp, 1'700'000'000U);
}

TEST(Small, HasOneAdapterWithEightFreeDisks) {
    const Machine machine = BuiltIn("small");
    ASSERT_EQ(machine.adapters.size(), 1U);
    EXPECT_EQ(machine.adapters[0].disks.size(), 8U);
    EXPECT_EQ(machine.adapters[0].blocks.size(), 8U);
    EXPECT_THAT(machine.adapters[0].virtual_disks, IsEmpty());
}

TEST(Rack, HasFourAdaptersFullOfDisks) {
    const Machine machine = BuiltIn("rack");
    ASSERT_EQ(machine.adapters.size(), 4U);
    std::set<std::string> serials;
    for (const Adapter& adapter : machine.adapters) {
        EXPECT_EQ(adapter.disks.size(), 128U);
        EXPECT_EQ(adapter.expanders.size(), 8U);
        EXPECT_EQ(adapter.expanders[3].parent, Device::kExpander);
        EXPECT_EQ(adapter.expanders[3].parent_id, 2);
        EXPECT_EQ(adapter.enclosures.size(), 8U);
        EXPECT_EQ(adapter.elements.size(), 96U);
        serials.insert(adapter.info.SerialNo);
    }
    EXPECT_EQ(serials.size(), 4U);
    EXPECT_EQ(machine.adapters[0].virtual_disks.size(), 32U);
    EXPECT_EQ(machine.adapters[0].blocks.size(), 512U);
    EXPECT_EQ(machine.adapters[0].disk_groups.size(), 4U);
}

// ---- Texts that are wrong ----

struct Mistake {
    const char* name;
    std::string text;
    std::string sentence;
};

void PrintTo(const Mistake& mistake, std::ostream* out) { *out << mistake.name; }

class Mistaken : public testing::TestWithParam<Mistake> {};

TEST_P(Mistaken, IsToldWhereAndWhatIsExpected) {
    try {
        MakeMachine(GetParam().text, 1, kNow);
        FAIL() << "it was taken";
    } catch (const TopologyError& error) {
        EXPECT_EQ(error.what(), "Topology: " + GetParam().sentence);
    }
}

// A topology of one adapter with three disks and these members besides.
std::string With(const std::string& members) {
    return R"({"name": "t", "disk_models": [{"name": "M", "gigabytes": 100}], "adapters": [{)"
           R"("disks": [{"at": {"port": 0}, "model": "M", "count": 3}])" +
           members + "}]}";
}
std::string WithDisk(const std::string& disk) {
    return R"({"name": "t", "disk_models": [{"name": "M", "gigabytes": 100}], "adapters": [{)"
           R"("disks": [)" +
           disk + "]}]}";
}

const Mistake kMistakes[] = {
    {"NoJson", "{",
     "no JSON text: parse error at line 1, column 2: syntax error while parsing object key - "
     "unexpected end of input; expected string literal"},
    {"TooDeep", std::string(33, '['), "lists and objects stand in each other more than 32 deep."},
    {"NoObject", "[]", ": expected an object."},
    {"NoName", "{}", "name: expected a value; it is left out."},
    {"NoAdapters", R"({"name": "t"})",
     "adapters: expected a list of 1 to 4 adapters; it is left out."},
    {"TooManyAdapters", R"({"name": "t", "adapters": [{}, {}, {}, {}, {}]})",
     "adapters: expected a list of 1 to 4 adapters."},
    {"UnknownModel", With(R"(, "model": "huge")"),
     "adapters[0].model: expected \"large\" or \"small\"."},
    {"UnknownMember", With(R"(, "batery": {})"),
     "adapters[0].batery: expected one of the members battery, config, disk_groups, disks, "
     "enclosures, expanders, images, info, model, port_multipliers, serial, virtual_disks."},
    {"NumberTooLarge", With(R"(, "info": {"MaxHD": 256})"),
     "adapters[0].info.MaxHD: expected a whole number from 0 to 255."},
    {"NumberBelowZero", With(R"(, "config": {"SyncRate": -1})"),
     "adapters[0].config.SyncRate: expected a whole number from 0 to 255."},
    {"NumberWithAFraction", With(R"(, "config": {"SyncRate": 1.5})"),
     "adapters[0].config.SyncRate: expected a whole number from 0 to 255."},
    {"DiskWithoutAPlace", WithDisk(R"({"model": "M"})"),
     "adapters[0].disks[0].at: expected an object with \"port\", with \"expander\" and \"phy\", or "
     "with \"port_multiplier\" and \"phy\"; it is left out."},
    {"DiskOfNoModel", WithDisk(R"({"model": "N", "at": {"port": 0}})"),
     "adapters[0].disks[0].model: expected the name of one of disk_models."},
    {"DiskBehindNoExpander", WithDisk(R"({"model": "M", "at": {"expander": 2, "phy": 0}})"),
     "adapters[0].disks[0].at: expected an expander that there is."},
    {"SerialOfSeveralDisks",
     WithDisk(R"({"model": "M", "at": {"port": 0}, "count": 2, "serial": "A"})"),
     "adapters[0].disks[0].serial: expected no serial number for several disks."},
    {"LevelThatIsNone", With(R"(, "virtual_disks": [{"level": "raid7", "disks": [0, 1, 2]}])"),
     "adapters[0].virtual_disks[0].level: expected one of \"raid0\", \"raid1\", \"raid5\", "
     "\"raid6\", \"raid10\", \"raid1e\", \"raid50\", \"raid60\"."},
    {"TooFewDisks", With(R"(, "virtual_disks": [{"level": "raid5", "disks": [0, 1], "gib": 1}])"),
     "adapters[0].virtual_disks[0].disks: expected as many disks as the level can be made of."},
    {"DiskTwice", With(R"(, "virtual_disks": [{"level": "raid0", "disks": [0, 0], "gib": 1}])"),
     "adapters[0].virtual_disks[0].disks: expected no disk twice."},
    {"DiskThatIsNone", With(R"(, "virtual_disks": [{"level": "raid0", "disks": [9], "gib": 1}])"),
     "adapters[0].virtual_disks[0].disks: expected disks that there are; 9 is none."},
    {"NoSize", With(R"(, "virtual_disks": [{"level": "raid0", "disks": [0]}])"),
     "adapters[0].virtual_disks[0].gib: expected a size in GiB, or block_sectors of at least a "
     "stripe."},
    {"NoRoom", With(R"(, "virtual_disks": [{"level": "raid0", "disks": [0], "gib": 100}])"),
     "adapters[0].virtual_disks[0].disks: expected room for a block of 209715200 sectors on disk "
     "0."},
    {"GroupThatIsNone", With(R"(, "virtual_disks": [{"disk_group": 3, "gib": 1}])"),
     "adapters[0].virtual_disks[0].disk_group: expected a disk group that there is."},
    {"LikeItself", R"({"name": "t", "adapters": [{"like": 0}]})",
     "adapters[0].like: expected the number of an adapter before this one."},
    {"TextThatIsNumber", R"({"name": 1})", "name: expected a text."},
    {"TruthThatIsNumber", WithDisk(R"({"model": "M", "at": {"port": 0}, "foreign": 1})"),
     "adapters[0].disks[0].foreign: expected true or false."},
    {"VersionOfThreeNumbers", With(R"(, "info": {"BIOSVersion": [1, 2, 3]})"),
     "adapters[0].info.BIOSVersion: expected a list of four numbers."},
    {"VersionThatIsNumber", With(R"(, "info": {"BIOSVersion": 1})"),
     "adapters[0].info.BIOSVersion: expected a list of four numbers."},
    {"MembersThatAreNoList", With(R"(, "virtual_disks": [{"level": "raid0", "disks": 0}])"),
     "adapters[0].virtual_disks[0].disks: expected a list."},
    {"ObjectsThatAreNoList", With(R"(, "virtual_disks": {})"),
     "adapters[0].virtual_disks: expected a list of objects."},
    {"CodesThatAreNoList", With(R"(, "images": "bios")"),
     "adapters[0].images: expected a list of \"bios\", \"firmware\", \"boot_loader\", "
     "\"autoload\", \"hba_info\"."},
    {"CodeThatIsNumber", With(R"(, "virtual_disks": [{"level": 5, "disks": [0, 1, 2]}])"),
     "adapters[0].virtual_disks[0].level: expected one of \"raid0\", \"raid1\", \"raid5\", "
     "\"raid6\", \"raid10\", \"raid1e\", \"raid50\", \"raid60\"."},
    {"LikeAText", R"({"name": "t", "adapters": [{"like": "first"}]})",
     "adapters[0].like: expected the number of an adapter before this one."},
    {"TooManyPorts", With(R"(, "info": {"PortCount": 9})"),
     "adapters[0].info.PortCount: expected at most 8."},
    {"DiskAtNothing", WithDisk(R"({"model": "M", "at": {"phy": 0}})"),
     "adapters[0].disks[0].at: expected an object with \"port\", with \"expander\" and \"phy\", or "
     "with \"port_multiplier\" and \"phy\"."},
    {"DiskWithTheLastNumber", WithDisk(R"({"id": 65535, "model": "M", "at": {"port": 0}})"),
     "adapters[0].disks[0].count: expected as many as there are phys and numbers."},
    {"DisksThatDoNotAscend",
     WithDisk(
         R"({"id": 5, "model": "M", "at": {"port": 0}}, {"id": 5, "model": "M", "at": {"port": 1}})"),
     "adapters[0].disks[1].id: expected a number above that of the one before, below 65535."},
    {"ExpanderWithTheLastNumber", With(R"(, "expanders": [{"id": 65535, "at": {"port": 4}}])"),
     "adapters[0].expanders[0].id: expected a number above that of the one before, below 65535."},
    {"TooManyElements",
     With(R"(, "enclosures": [{"at": {"port": 4}, "elements": [)"
          R"({"type": "power_supply", "count": 255}, {"type": "power_supply"}]}])"),
     "adapters[0].enclosures[0].elements: expected at most 255 elements."},
    {"NoneOfADisk", WithDisk(R"({"model": "M", "at": {"port": 0}, "count": 0})"),
     "adapters[0].disks[0].count: expected at least 1."},
    {"TooHot",
     With(
         R"(, "enclosures": [{"at": {"port": 4}, "elements": [{"type": "temperature", "celsius": 236}]}])"),
     "adapters[0].enclosures[0].elements[0].celsius: expected temperatures up to 235."},
    {"MoreDisksThanPhys", WithDisk(R"({"model": "M", "at": {"port": 255}, "count": 2})"),
     "adapters[0].disks[0].count: expected as many as there are phys and numbers."},
    {"WorldWideNameOfOtherDigits",
     WithDisk(R"({"model": "M", "at": {"port": 0}, "wwn": "5000c500g"})"),
     "adapters[0].disks[0].wwn: expected a text of up to 16 hexadecimal digits."},
    {"WorldWideNameOfNoDigits", WithDisk(R"({"model": "M", "at": {"port": 0}, "wwn": ""})"),
     "adapters[0].disks[0].wwn: expected a text of up to 16 hexadecimal digits."},
    {"MoreDisksThanTheAdapterTakes", With(R"(, "info": {"MaxHD_Ext": 2})"),
     "adapters[0].disks[0].count: expected at most 2 disks, as MaxHD_Ext."},
    {"StripeOfNothing",
     With(R"(, "virtual_disks": [{"level": "raid0", "disks": [0], "gib": 1, "stripe_kib": 0}])"),
     "adapters[0].virtual_disks[0].stripe_kib: expected at least 1."},
    {"BlockThatIsTooLong",
     With(
         R"(, "virtual_disks": [{"level": "raid0", "disks": [0], "block_sectors": 1125899906842625}])"),
     "adapters[0].virtual_disks[0].gib: expected a size in GiB, or block_sectors of at least a "
     "stripe."},
    {"VirtualDiskNumber255",
     With(R"(, "virtual_disks": [{"id": 255, "level": "raid0", "disks": [0], "gib": 1}])"),
     "adapters[0].virtual_disks[0].id: expected numbers of virtual disks from 0 to 254."},
    {"NameThatIsTooLong",
     With(R"(, "virtual_disks": [{"level": "raid0", "disks": [0], "gib": 1, "name": ")" +
          std::string(17, 'n') + R"("}])"),
     "adapters[0].virtual_disks[0].name: expected at most 16 bytes."},
    {"BatteryWithoutCapacity", With(R"(, "battery": {"maxCapacity": 0, "curCapacity": 0})"),
     "adapters[0].battery.curCapacity: expected a charge of at most maxCapacity, above 0."},
    {"BatteryThatIsMoreThanFull", With(R"(, "battery": {"maxCapacity": 10, "curCapacity": 11})"),
     "adapters[0].battery.curCapacity: expected a charge of at most maxCapacity, above 0."},
    {"UnsoundMachine", WithDisk(R"({"model": "M", "at": {"port": 0}, "group_spare": 2})"),
     "the machine would not be sound: a0/pd0 is a spare of disk group 2, which is not there."},
};
INSTANTIATE_TEST_SUITE_P(Topologies, Mistaken, testing::ValuesIn(kMistakes),
                         [](const auto& about) { return std::string(about.param.name); });

TEST(Topology, CanSetEverythingOfADisk) {
    const Machine machine = MakeMachine(
        WithDisk(R"({"id": 5, "model": "M", "at": {"port": 1, "phys": 2}, "enclosure": 65535,
                     "serial": "S", "wwn": "5000c500a0b1c2d3", "write_cache": true, "has_mbr": true,
                     "has_system": true, "foreign": true, "global_spare": true,
                     "remaps": [{"lba": 7}]})"),
        1, kNow);
    const Disk& disk = machine.adapters.at(0).disks.at(0);
    EXPECT_EQ(disk.id, 5);
    EXPECT_EQ(disk.phy, 1);
    EXPECT_EQ(disk.phys, 2);
    EXPECT_EQ(disk.serial, "S");
    EXPECT_EQ(disk.wwn, 0x5000c500a0b1c2d3U);
    EXPECT_TRUE(disk.write_cache && disk.has_mbr && disk.has_system && disk.foreign);
    EXPECT_EQ(disk.spare, Spare::kGlobal);
    EXPECT_EQ(machine.adapters[0].remaps.at(0).lba, 7U);
}

TEST(Topology, CanSetVersionsAndNameImages) {
    const Machine machine = MakeMachine(
        With(R"(, "info": {"BIOSVersion": [1, 2, 3, 4]}, "images": ["bios"])"), 1, kNow);
    const Adapter& adapter = machine.adapters.at(0);
    EXPECT_EQ(adapter.info.BIOSVersion.MajorVersion, 1);
    EXPECT_EQ(adapter.info.BIOSVersion.MinorVersion, 2);
    EXPECT_EQ(adapter.info.BIOSVersion.RevisionNumber, 3);
    EXPECT_EQ(adapter.info.BIOSVersion.BuildNumber, 4);
    ASSERT_EQ(adapter.images.size(), 1U);
}

TEST(Topology, PutsDisksBehindAPortMultiplier) {
    const Machine machine = MakeMachine(
        R"({"name": "t", "disk_models": [{"name": "M", "gigabytes": 100}], "adapters": [
            {"port_multipliers": [{"at": {"port": 0}}],
             "disks": [{"at": {"port_multiplier": 0, "phy": 1}, "model": "M"}]}]})",
        1, kNow);
    const Disk& disk = machine.adapters.at(0).disks.at(0);
    EXPECT_EQ(disk.parent, Device::kPortMultiplier);
    EXPECT_EQ(disk.parent_id, 0);
    EXPECT_EQ(disk.phy, 1);
}

TEST(Topology, MakesAnAdapterLikeAnother) {
    const Machine machine = MakeMachine(
        R"({"name": "t", "disk_models": [{"name": "M", "gigabytes": 100}], "adapters": [
            {"disks": [{"at": {"port": 0}, "model": "M", "count": 3}], "battery": {}},
            {"like": 0, "battery": null, "config": {"SyncRate": 9}}]})",
        1, kNow);
    ASSERT_EQ(machine.adapters.size(), 2U);
    EXPECT_EQ(machine.adapters[1].disks.size(), 3U);
    EXPECT_EQ(machine.adapters[1].config.SyncRate, 9);
    EXPECT_THAT(machine.adapters[1].batteries, IsEmpty());
}

}  // namespace
}  // namespace hxsim

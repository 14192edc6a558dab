#include "controllers/virtual/support/test_machine.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <sstream>
#include <tuple>
#include <type_traits>

#include "calls/hxsim_activity_control.h"
#include "controllers/virtual/support/requests.h"
#include "incidents/hxsim_incident_disk.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_home.h"
#include "model/hxsim_invariants.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_battery.h"
#include "rules/hxsim_migration.h"
#include "store/hxsim_table_rows.h"

namespace hxsim {
namespace {

// A value as text: the bytes of a record one by one.
template <class Value>
void Write(std::ostream& out, const Value& value) {
    if constexpr (std::is_same_v<Value, std::string>) {
        out << value;
    } else if constexpr (std::is_same_v<Value, Bytes>) {
        out << (value == nullptr ? "nothing" : *value);
    } else if constexpr (std::is_enum_v<Value> || std::is_integral_v<Value>) {
        out << static_cast<std::int64_t>(value);
    } else {
        unsigned char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        for (const unsigned byte : bytes) out << byte << ',';
    }
}

template <class Columns, class Row>
void WriteRow(std::ostream& out, const Columns& columns, const Row& row) {
    std::apply(
        [&](const auto&... column) {
            (((out << ' ' << column.name << '='), Write(out, row.*column.field)), ...);
        },
        columns);
    out << '\n';
}

}  // namespace

// ---- Making it ----

TestMachine::TestMachine(unsigned disks, Sectors usable) {
    rows.adapters.resize(1);
    Adapter_Info& info = adapter().info;
    info.MaxPDPerVD = 32;
    info.MaxPDPerDG = 32;
    info.MaxVDPerDG = 32;
    info.MaxParityDisks = 4;
    info.MaxBlockPerPD = 16;
    info.MaxLogicalDrive = 32;
    info.StripeSizeSupported = 0x01F0;  // 16 to 256 KiB
    info.LogicalDriverMode = 0x017F;    // every level
    info.DiskGroupSupport = 1;
    info.AlarmSupport = 1;
    info.Features = 0x5F;  // every rate can be set
    info.BIOSVersion = {3, 1, 0, 27};
    info.SubVenID = 0xFAC0;
    info.SubDevID = 0x0001;
    std::memcpy(info.SerialNo, "VC-1", 5);
    info.img_health = info.boot_rom_img_health = info.firmware_img_health = 1;
    Adapter_Config_V2& config = adapter().config;
    config.AlarmOn = config.AutoRebuildOn = config.CopyBack = config.PollSMARTStatus = 1;
    config.BGARate = config.SyncRate = config.InitRate = config.RebuildRate = 100;
    config.MigrationRate = config.CopybackRate = config.MediaPatrolRate = 100;
    for (unsigned i = 0; i < disks; ++i) AddDisk(usable);
}

HX_U16 TestMachine::AddDisk(Sectors usable) {
    const HX_U16 id = FreeId(adapter().disks);
    AddDisk(id, usable);
    return id;
}

void TestMachine::AddDisk(HX_U16 id, Sectors usable) {
    Disk row;
    row.id = id;
    row.parent = Device::kAdapter;
    row.model = "TARNWELL TW600S10";
    row.firmware = "K2A4";
    row.serial = "6TW0D21" + std::to_string(id);
    row.wwn = 0x5000C50000000000 + id;
    row.sectors = usable + kMetadata;
    Insert(adapter().disks, row);
    ResetDisk(adapter(), id);
}

HX_U16 TestMachine::AddRow(Level level, std::size_t width, HX_U8 legs, HX_U16 group) {
    VirtualDisk row;
    row.id = FreeId(adapter().virtual_disks);
    row.group = group;
    row.slot = static_cast<HX_U8>(row.id);
    row.level = level;
    row.width = static_cast<HX_U8>(width);
    row.legs = legs;
    row.size = 1;
    row.initialised = true;
    Insert(adapter().virtual_disks, row);
    return row.id;
}

void TestMachine::CutBlock(HX_U16 disk, Sectors sectors, HX_U16 virtual_disk, HX_U8 position) {
    const Sectors start = FirstFree(adapter(), disk, sectors)->start;
    Cut(adapter(), disk, start, sectors, virtual_disk, position);
}

HX_U16 TestMachine::AddVirtualDisk(Level level, const Ids& disks, HX_U8 legs, Sectors sectors) {
    const HX_U16 id = AddRow(level, disks.size(), legs, kNoId);
    SetHomes(adapter(), Owner::kVirtualDisk, id, disks);
    HX_U8 position = 0;
    for (const HX_U16 disk : disks) CutBlock(disk, sectors, id, position++);
    return id;
}

HX_U16 TestMachine::AddGroup(Level level, const Ids& disks, HX_U8 legs) {
    DiskGroup group;
    group.id = FreeId(adapter().disk_groups);
    group.level = level;
    group.legs = legs;
    group.width = static_cast<HX_U8>(disks.size());
    Insert(adapter().disk_groups, group);
    SetHomes(adapter(), Owner::kDiskGroup, group.id, disks);
    return group.id;
}

HX_U16 TestMachine::AddVirtualDiskTo(HX_U16 group_id, Sectors sectors) {
    const DiskGroup group = disk_group(group_id);
    const HX_U16 id = AddRow(group.level, group.width, group.legs, group_id);
    HX_U8 position = 0;
    for (const HX_U16 disk : DisksOf(adapter(), Owner::kDiskGroup, group_id)) {
        CutBlock(disk, sectors, id, position++);
    }
    return id;
}

void TestMachine::SetGlobalSpare(HX_U16 id) { disk(id).spare = Spare::kGlobal; }

void TestMachine::SetGroupSpare(HX_U16 id, HX_U16 group) {
    disk(id).spare = Spare::kGroup;
    disk(id).spare_group = group;
}

void TestMachine::AddElement(HX_U8 number, ElementType type, HX_U16 reading, HX_U16 nominal) {
    Element row;
    row.number = number;
    row.type = type;
    row.reading = reading;
    row.nominal = nominal;
    adapter().elements.push_back(row);
}

void TestMachine::AddEnclosure() {
    Enclosure enclosure;
    enclosure.parent = Device::kAdapter;
    adapter().enclosures.push_back(enclosure);
    AddElement(kFan, ElementType::kFan, 4000, 4000);
    element(kFan).speed_code = 3;
    AddElement(kSensor, ElementType::kTemperature, 20 + 30, 0);
    element(kSensor).high_critical = 20 + 60;
    element(kSensor).high_warning = 20 + 50;
    element(kSensor).low_critical = 20 + 0;
    element(kSensor).low_warning = 20 + 5;
    AddElement(kSupply, ElementType::kPowerSupply, 0, 0);
    AddElement(kAlarm, ElementType::kAlarm, 0, 0);
    AddElement(kVoltage, ElementType::kVoltage, 1200, 1200);
    element(kVoltage).high_critical = element(kVoltage).low_critical = 20;
    element(kVoltage).high_warning = element(kVoltage).low_warning = 10;
}

void TestMachine::AddBattery() {
    Battery row;
    row.info.status = BatteryBit::kPresent | BatteryBit::kSafeForWriteBack;
    row.info.supportMinCapacity = 600;
    row.info.supportMaxCapacity = 1100;
    row.info.maxCapacity = row.info.curCapacity = row.charge_at_since = 1000;
    row.info.percentage = 100;
    row.info.percent_to_charge = 80;
    row.info.featureSupport = BatteryFeature::kRelearn | BatteryFeature::kThresholds;
    row.info.temperature = 29;
    row.info.voltage = 4000;
    row.info.temp_lowerbound = 5;
    row.info.temp_upperbound = 50;
    row.info.volt_lowerbound = 3600;
    row.info.volt_upperbound = 4250;
    row.since = kStart;
    adapter().batteries.push_back(row);
}

void TestMachine::AddFlash() {
    adapter().images.push_back({Image::kBios, false, true, 0, nullptr});
    adapter().images.push_back({Image::kFirmware, false, true, 0, nullptr});
}

void TestMachine::BringForeign() {
    disk(6).foreign = true;
    VirtualDisk foreign;
    foreign.id = 2;
    foreign.level = Level::kRaid0;
    foreign.width = 1;
    foreign.size = 128;
    foreign.foreign = true;
    foreign.state = State::kForeign;
    Insert(adapter().virtual_disks, foreign);
    Cut(adapter(), 6, 0, 128, 2, 0);
    SetHomes(adapter(), Owner::kVirtualDisk, 2, Ids{6});
}

void TestMachine::AddArrays() {
    AddVirtualDisk(Level::kRaid5, {0, 1, 2}, 0, 640000);
    virtual_disk(0).name = "ALONE";
    virtual_disk(0).size = 2 * 640000;
    AddGroup(Level::kRaid1, {3, 4});
    disk_group(0).name = "GROUP";
    AddVirtualDiskTo(0, 400000);
    virtual_disk(1).name = "GROUPED";
    virtual_disk(1).size = 400000;
    virtual_disk(1).slot = 0;
    SetGlobalSpare(5);
    RenumberBlocks();
}

void TestMachine::RenumberBlocks() {
    std::ranges::sort(adapter().blocks, {},
                      [](const Block& each) { return std::tuple(each.disk, each.start); });
    HX_U16 id = 0;
    for (Block& each : adapter().blocks) each.id = id++;
}

// ---- What happens to it ----

Block* TestMachine::block(HX_U16 virtual_disk, HX_U8 position, bool target) {
    return BlockOf(adapter(), virtual_disk, position, target);
}

Activity* TestMachine::activity(HX_U16 virtual_disk) {
    return ActivityOf(adapter(), Owner::kVirtualDisk, virtual_disk);
}

Time TestMachine::At(Time second) {
    const Time now = kStart + second * 1000;
    Advance(rows, now);
    return now;
}

void TestMachine::Finish() {
    Settle(adapter(), kStart);
    At(1'000'000);
}

void TestMachine::Fail(Time second, HX_U16 disk) {
    const Time now = At(second);
    FailDisk(adapter(), now, disk);
    Settle(adapter(), now);
}

void TestMachine::PullOut(Time second, HX_U16 disk) {
    const Time now = At(second);
    RemoveDisk(adapter(), now, disk);
    Settle(adapter(), now);
}

void TestMachine::PutBack(Time second, HX_U16 disk) {
    const Time now = At(second);
    InsertDisk(adapter(), now, disk);
    Settle(adapter(), now);
}

void TestMachine::Replace(Time second, HX_U16 disk, Sectors usable) {
    const Time now = At(second);
    ReplaceDisk(adapter(), now, disk, rows.random, false, usable == 0 ? 0 : usable + kMetadata);
    Settle(adapter(), now);
}

Status TestMachine::Initialise(Time second, HX_U16 virtual_disk, Init type) {
    return Call(second, [&](Adapter& adapter, Time now) {
        return StartInitialisation(adapter, now, virtual_disk, NumberOf(type));
    });
}

Status TestMachine::CheckConsistency(Time second, HX_U16 virtual_disk, CheckType type) {
    return Call(second, [&](Adapter& adapter, Time now) {
        return StartCheck(adapter, now, virtual_disk, NumberOf(type));
    });
}

Status TestMachine::Patrol(Time second, HX_U16 disk) {
    return Call(second,
                [&](Adapter& adapter, Time now) { return StartMediaPatrol(adapter, now, disk); });
}

Status TestMachine::Scrub(Time second, HX_U16 disk) {
    return Call(second,
                [&](Adapter& adapter, Time now) { return StartDataScrub(adapter, now, disk); });
}

Status TestMachine::Rebuild(Time second, HX_U16 virtual_disk, const Ids& disks) {
    return Call(second, [&](Adapter& adapter, Time now) {
        return RebuildVirtualDisk(adapter, now, virtual_disk, disks);
    });
}

Status TestMachine::RebuildGroup(Time second, HX_U16 group, const Ids& disks) {
    return Call(second, [&](Adapter& adapter, Time now) {
        return RebuildDiskGroup(adapter, now, group, disks);
    });
}

Status TestMachine::MigrateToRaid6(Time second, HX_U16 virtual_disk, const Ids& disks) {
    Create_LD_Param param = WantedOn(0x06, disks);
    param.LDID = virtual_disk;
    return Call(second,
                [&](Adapter& adapter, Time now) { return StartMigration(adapter, now, param); });
}

Status TestMachine::Steer(Time second, HX_U16 virtual_disk, ControlAction action) {
    return Call(second, [&](Adapter& adapter, Time now) {
        return Control(adapter, now, Owner::kVirtualDisk, virtual_disk, NumberOf(action));
    });
}

Activity& TestMachine::StartActivity(ActivityKind kind, Owner of, HX_U16 owner) {
    Activity activity;
    activity.kind = kind;
    activity.of = of;
    activity.owner = owner;
    activity.total = kUsable;
    Activity& started = Start(adapter(), kNow, activity);
    adapter().events.clear();
    return started;
}

// ---- What can be read off it ----

std::string TestMachine::BlocksOn(HX_U16 disk) {
    std::vector<Block> blocks;
    std::ranges::copy_if(adapter().blocks, std::back_inserter(blocks),
                         [&](const Block& each) { return each.disk == disk; });
    std::ranges::sort(blocks, {}, &Block::start);
    std::ostringstream text;
    for (const Block& each : blocks) {
        if (text.tellp() > 0) text << ", ";
        if (each.virtual_disk == kNoVirtualDisk) {
            text << "free";
        } else {
            text << (each.target ? "target" : "vd") << each.virtual_disk << '.'
                 << unsigned{each.position};
        }
        text << ' ' << each.start << '+' << each.sectors;
    }
    return text.str();
}

std::string TestMachine::Everything() {
    std::ostringstream text;
    WriteRow(text, std::get<0>(kMachineTables).columns, adapter());
    const auto write_table = [&](const auto& table) {
        for (const auto& row : adapter().*table.list) {
            text << table.name;
            WriteRow(text, table.columns, row);
        }
    };
    std::apply([&](const auto&... table) { (write_table(table), ...); }, kAdapterTables);
    return text.str();
}

Ids TestMachine::Serving(Owner of, HX_U16 owner) { return DisksOf(adapter(), of, owner); }

std::vector<std::string> TestMachine::Events() {
    std::vector<std::string> events;
    for (const QueuedEvent& each : adapter().events) {
        events.push_back(std::to_string(each.event.Class) + '/' + std::to_string(each.event.Code) +
                         " of " + std::to_string(each.event.DeviceID));
    }
    return events;
}

std::vector<std::string> TestMachine::EventsWithParams() {
    std::vector<std::string> events = Events();
    for (std::size_t i = 0; i < events.size(); ++i) {
        for (const HX_U32 param : adapter().events[i].event.Params) {
            events[i] += ' ' + std::to_string(param);
        }
    }
    return events;
}

std::vector<std::string> TestMachine::TakeEvents() {
    std::vector<std::string> lines;
    for (const QueuedEvent& queued : adapter().events) {
        const Event& event = queued.event;
        std::string line = std::to_string(event.TimeStamp - kStart / 1000) + ' ' +
                           std::to_string(event.Class) + '.' + std::to_string(event.Code) + ' ' +
                           std::to_string(event.DeviceID);
        // A degraded virtual disk's parameters are a list of its disks, which has its own test.
        const bool lists = hxcodes::KindOf(event) == EventKind::kVirtualDiskDegraded;
        if (event.Params[0] != 0 && !lists) line += ' ' + std::to_string(event.Params[0]);
        lines.push_back(line);
    }
    adapter().events.clear();
    return lines;
}

// ---- Fixtures ----

void MachineTest::TearDown() {
    Settle(adapter(), kNow);
    ExpectSound();
}

void MachineTest::ExpectSound() { EXPECT_THAT(Check(rows), testing::IsEmpty()); }

void MachineTest::ExpectRefused(Status code, Status status, const std::string& before) {
    EXPECT_EQ(code, status);
    EXPECT_EQ(before, Everything());
}

MixedMachineTest::MixedMachineTest() {
    adapter().config.AutoRebuildOn = adapter().config.CopyBack = 0;
    AddArrays();
    SetGroupSpare(7, 0);
    AddEnclosure();
    AddBattery();
    AddFlash();
}

void StoryTest::AddDisks(unsigned count, Sectors usable) {
    for (unsigned i = 0; i < count; ++i) AddDisk(usable);
}

BBU_Info BatteryTest::At(Time time) {
    for (Time due = NextTransition(battery()); due <= time; due = NextTransition(battery())) {
        AdvanceBattery(adapter(), due);
    }
    return Describe(battery(), time);
}

HX_U16 StoryTest::AddRaid5() {
    AddDisks(3);
    return AddVirtualDisk(Level::kRaid5, {0, 1, 2});
}

HX_U16 StoryTest::AddRaid5AndSpare() {
    const HX_U16 id = AddRaid5();
    AddDisks(1);
    SetGlobalSpare(3);
    return id;
}

StoryTest::GroupOfTwo StoryTest::AddGroupAndSpare() {
    AddDisks(4);
    GroupOfTwo made{};
    made.group = AddGroup(Level::kRaid5, {0, 1, 2});
    made.first = AddVirtualDiskTo(made.group);
    made.second = AddVirtualDiskTo(made.group, kHundredSeconds / 2);
    SetGroupSpare(3, made.group);
    return made;
}

void StoryTest::RebuildOnSpare() {
    Fail(0, 1);
    At(150);
    TakeEvents();
}

}  // namespace hxsim

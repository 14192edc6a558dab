// A machine put together by hand, for the tests of disks and of what hangs around them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "codes/battery.h"
#include "codes/device.h"
#include "codes/flash.h"
#include "hxraid.h"
#include "model/hxsim_invariants.h"
#include "model/hxsim_machine.h"
#include "rules/hxsim_settle.h"

namespace parts {

inline constexpr hxsim::Time kNow = 1'700'000'000'000;
inline constexpr hxsim::Sectors kUsable = 1'000'000;
inline constexpr HX_U8 kFan = 0, kSensor = 1, kSupply = 2, kAlarm = 3, kVoltage = 4;  // elements

/// Adapter 0: disks 0 to 2 carry virtual disk 0 (RAID 5), disks 3 and 4 serve disk group 0 (RAID 1)
/// with virtual disk 1, disk 5 is a global spare, disk 6 is free and disk 7 a spare of the group.
/// An enclosure with five elements, a battery of 1000 mAh that is full, and a flash. Nothing steps
/// in for what is lost. Whatever a test leaves behind has to be a sound machine.
class PartsTest : public testing::Test {
protected:
    PartsTest() {
        machine.adapters.resize(1);
        SetUpAdapter();
        for (HX_U16 id = 0; id < 8; ++id) AddDisk(id);
        disk(5).spare = hxsim::Spare::kGlobal;
        disk(7).spare = hxsim::Spare::kGroup;
        disk(7).spare_group = 0;
        AddVirtualDisks();
        AddEnclosure();
        AddBattery();
        adapter().images.push_back({hxcodes::Image::kBios, false, true, 0, nullptr});
        adapter().images.push_back({hxcodes::Image::kFirmware, false, true, 0, nullptr});
    }

    void TearDown() override {
        hxsim::Settle(adapter(), kNow);
        EXPECT_THAT(hxsim::Check(machine), testing::IsEmpty());
    }

    hxsim::Adapter& adapter() { return machine.adapters[0]; }
    hxsim::Disk& disk(HX_U16 id) { return *hxsim::Find(adapter().disks, id); }
    hxsim::VirtualDisk& virtual_disk(HX_U16 id) {
        return *hxsim::Find(adapter().virtual_disks, id);
    }
    hxsim::Battery& battery() { return adapter().batteries[0]; }
    hxsim::Element& element(HX_U8 number) { return adapter().elements[number]; }

    /// What events say, oldest first: "2/9 of 6", class, code and device.
    std::vector<std::string> Events() {
        std::vector<std::string> events;
        for (const hxsim::QueuedEvent& each : adapter().events) {
            std::ostringstream text;
            text << each.event.Class << '/' << each.event.Code << " of " << each.event.DeviceID;
            events.push_back(text.str());
        }
        return events;
    }

    /// The same with the four parameters.
    std::vector<std::string> EventsWithParams() {
        std::vector<std::string> events = Events();
        for (std::size_t i = 0; i < events.size(); ++i) {
            for (const HX_U32 param : adapter().events[i].event.Params) {
                events[i] += ' ' + std::to_string(param);
            }
        }
        return events;
    }

    /// The blocks of a disk: "vd0.1 0+128, free 128+872".
    std::string BlocksOn(HX_U16 id) {
        std::ostringstream text;
        const char* separator = "";
        for (const hxsim::Block& each : adapter().blocks) {
            if (each.disk != id) continue;
            text << separator;
            separator = ", ";
            if (each.virtual_disk == hxsim::kNoVirtualDisk) {
                text << "free";
            } else {
                text << "vd" << each.virtual_disk << '.' << unsigned{each.position};
            }
            text << ' ' << each.start << '+' << each.sectors;
        }
        return text.str();
    }

    /// Everything that a refused call must leave as it is.
    std::string Everything() {
        std::ostringstream text;
        for (const hxsim::Disk& each : adapter().disks) {
            text << each.id << each.present << each.failed << each.offline << each.foreign
                 << static_cast<int>(each.spare) << each.spare_group << each.smart_on
                 << each.smart_exceeded << each.write_cache << each.locate_light << each.serial
                 << ": " << BlocksOn(each.id) << '\n';
        }
        for (const hxsim::Home& each : adapter().homes) text << each.disk << ' ' << each.home;
        for (const hxsim::Element& each : adapter().elements) {
            text << '\n' << each.reading << ' ' << unsigned{each.status};
        }
        text << Bytes(adapter().info) << Bytes(adapter().config) << Bytes(battery().info)
             << static_cast<int>(battery().phase) << battery().present << battery().switched_on;
        for (const hxsim::FlashImage& each : adapter().images) {
            text << each.erased << each.healthy << each.written
                 << (each.data == nullptr ? "none" : *each.data);
        }
        text << adapter().remaps.size() << ' ' << adapter().events.size();
        return text.str();
    }

    hxsim::Machine machine;

private:
    template <class Record>
    static std::string Bytes(const Record& record) {
        std::string bytes(sizeof record, '\0');
        std::memcpy(bytes.data(), &record, sizeof record);
        return bytes;
    }

    void SetUpAdapter() {
        Adapter_Info& info = adapter().info;
        info.MaxBlockPerPD = 16;
        info.MaxLogicalDrive = 8;
        info.DiskGroupSupport = 1;
        info.AlarmSupport = 1;
        info.Features = 0x5F;
        info.BIOSVersion = {3, 1, 0, 27};
        info.SubVenID = 0xFAC0;
        info.SubDevID = 0x0001;
        std::memcpy(info.SerialNo, "VC-1", 5);
        info.img_health = info.boot_rom_img_health = info.firmware_img_health = 1;
        adapter().config.AlarmOn = 1;
        adapter().config.PollSMARTStatus = 1;
    }

    void AddDisk(HX_U16 id) {
        hxsim::Disk row;
        row.id = id;
        row.parent = hxcodes::Device::kAdapter;
        row.model = "TARNWELL TW600S10";
        row.firmware = "K2A4";
        row.serial = "6TW0D21" + std::to_string(id);
        row.wwn = 0x5000C50000000000 + id;
        row.sectors = kUsable + hxsim::kMetadata;
        hxsim::Insert(adapter().disks, row);
        if (id >= 5) AddBlock(id, 0, kUsable);
    }

    void AddBlock(HX_U16 disk, hxsim::Sectors start, hxsim::Sectors sectors,
                  HX_U16 owner = hxsim::kNoVirtualDisk, HX_U8 position = 0) {
        hxsim::Block block;
        block.id = hxsim::FreeId(adapter().blocks);
        block.disk = disk;
        block.virtual_disk = owner;
        block.position = position;
        block.start = start;
        block.sectors = sectors;
        hxsim::Insert(adapter().blocks, block);
    }

    void AddVirtualDisks() {
        hxsim::VirtualDisk alone;
        alone.name = "ALONE";
        alone.level = 0x05;
        alone.width = 3;
        alone.size = 1280000;
        alone.initialised = true;
        adapter().virtual_disks.push_back(alone);
        hxsim::VirtualDisk grouped;
        grouped.id = 1;
        grouped.name = "GROUPED";
        grouped.group = 0;
        grouped.level = 0x01;
        grouped.width = 2;
        grouped.size = 400000;
        grouped.initialised = true;
        adapter().virtual_disks.push_back(grouped);
        hxsim::DiskGroup group;
        group.name = "GROUP";
        group.level = 0x01;
        group.width = 2;
        adapter().disk_groups.push_back(group);
        for (HX_U8 i = 0; i < 3; ++i) {
            AddBlock(i, 0, 640000, 0, i);
            AddBlock(i, 640000, kUsable - 640000);
            adapter().homes.push_back({hxsim::Owner::kVirtualDisk, 0, i, i, i});
        }
        for (HX_U8 i = 0; i < 2; ++i) {
            const auto id = static_cast<HX_U16>(3 + i);
            AddBlock(id, 0, 400000, 1, i);
            AddBlock(id, 400000, kUsable - 400000);
            adapter().homes.push_back({hxsim::Owner::kDiskGroup, 0, i, id, id});
        }
    }

    void AddElement(HX_U8 number, HX_U8 type, HX_U16 reading, HX_U16 nominal) {
        hxsim::Element row;
        row.number = number;
        row.type = type;
        row.reading = reading;
        row.nominal = nominal;
        adapter().elements.push_back(row);
    }

    void AddEnclosure() {
        hxsim::Enclosure enclosure;
        enclosure.parent = hxcodes::Device::kAdapter;
        adapter().enclosures.push_back(enclosure);
        AddElement(kFan, HX_ELEMENT_FAN, 4000, 4000);
        element(kFan).speed_code = 3;
        AddElement(kSensor, HX_ELEMENT_TEMPERATURE, 20 + 30, 0);
        element(kSensor).high_critical = 20 + 60;
        element(kSensor).high_warning = 20 + 50;
        element(kSensor).low_critical = 20 + 0;
        element(kSensor).low_warning = 20 + 5;
        AddElement(kSupply, HX_ELEMENT_POWER_SUPPLY, 0, 0);
        AddElement(kAlarm, HX_ELEMENT_ALARM, 0, 0);
        AddElement(kVoltage, HX_ELEMENT_VOLTAGE, 1200, 1200);
        element(kVoltage).high_critical = element(kVoltage).low_critical = 20;
        element(kVoltage).high_warning = element(kVoltage).low_warning = 10;
    }

    void AddBattery() {
        hxsim::Battery row;
        row.info.status = hxcodes::BatteryBit::kPresent | hxcodes::BatteryBit::kSafeForWriteBack;
        row.info.supportMinCapacity = 600;
        row.info.supportMaxCapacity = 1100;
        row.info.maxCapacity = row.info.curCapacity = row.charge_at_since = 1000;
        row.info.percentage = 100;
        row.info.percent_to_charge = 80;
        row.info.featureSupport =
            hxcodes::BatteryFeature::kRelearn | hxcodes::BatteryFeature::kThresholds;
        row.info.temperature = 29;
        row.info.voltage = 4000;
        row.info.temp_lowerbound = 5;
        row.info.temp_upperbound = 50;
        row.info.volt_lowerbound = 3600;
        row.info.volt_upperbound = 4250;
        row.since = kNow;
        adapter().batteries.push_back(row);
    }
};

}  // namespace parts

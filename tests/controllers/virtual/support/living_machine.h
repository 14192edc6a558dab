// A machine put together by hand, for the tests of what happens to virtual disks and disk groups.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "codes/activity.h"
#include "codes/device.h"
#include "hxraid.h"
#include "model/hxsim_invariants.h"
#include "model/hxsim_machine.h"
#include "rules/hxsim_advance.h"
#include "rules/hxsim_settle.h"

using Ids = std::vector<HX_U16>;

/// One adapter that has everything, with disks that are empty: no enclosure, no battery. A disk has
/// a million sectors to use: 7812 stripes of 64 KiB (128 sectors each) and 64 sectors more, or 3906
/// of 128 KiB and 64 sectors more. Whatever a test leaves behind has to be a sound machine.
class LivingMachine : public testing::Test {
protected:
    static constexpr hxsim::Time kNow = 1'000'000;
    static constexpr hxsim::Sectors kUsable = 1'000'000;

    explicit LivingMachine(HX_U16 disks = 8) {
        machine.adapters.resize(1);
        adapter().info.MaxPDPerVD = 32;
        adapter().info.MaxPDPerDG = 32;
        adapter().info.MaxVDPerDG = 32;
        adapter().info.MaxParityDisks = 4;
        adapter().info.MaxBlockPerPD = 16;
        adapter().info.MaxLogicalDrive = 32;
        adapter().info.StripeSizeSupported = 0x01F0;  // 16 to 256 KiB
        adapter().info.LogicalDriverMode = 0x017F;    // every level
        adapter().info.DiskGroupSupport = 1;
        adapter().config.AutoRebuildOn = 1;
        adapter().config.CopyBack = 1;
        adapter().config.RebuildRate = 100;
        adapter().config.MigrationRate = 100;
        adapter().config.InitRate = 100;
        for (HX_U16 id = 0; id < disks; ++id) AddDisk(id, kUsable);
    }

    void TearDown() override {
        hxsim::Settle(adapter(), kNow);
        EXPECT_THAT(hxsim::Check(machine), testing::IsEmpty());
    }

    hxsim::Adapter& adapter() { return machine.adapters[0]; }

    void AddDisk(HX_U16 id, hxsim::Sectors usable) {
        hxsim::Disk disk;
        disk.id = id;
        disk.parent = hxcodes::Device::kAdapter;
        disk.wwn = 0x5000C50000000000 + id;
        disk.sectors = usable + hxsim::kMetadata;
        hxsim::Insert(adapter().disks, disk);
        hxsim::Block block;
        block.id = hxsim::FreeId(adapter().blocks);
        block.disk = id;
        block.sectors = usable;
        hxsim::Insert(adapter().blocks, block);
    }

    hxsim::Disk& DiskOf(HX_U16 id) { return *hxsim::Find(adapter().disks, id); }
    hxsim::VirtualDisk& VirtualDiskOf(HX_U16 id) {
        return *hxsim::Find(adapter().virtual_disks, id);
    }
    hxsim::DiskGroup& GroupOfId(HX_U16 id) { return *hxsim::Find(adapter().disk_groups, id); }

    /// Lets everything come to its end that goes on.
    void Finish() {
        hxsim::Settle(adapter(), kNow);
        hxsim::Advance(machine, kNow + 1'000'000'000);
    }

    /// The blocks of a disk in the order of their sectors: "vd0.1 0+128, free 128+872".
    std::string BlocksOn(HX_U16 disk) {
        std::vector<hxsim::Block> blocks;
        for (const hxsim::Block& each : adapter().blocks) {
            if (each.disk == disk) blocks.push_back(each);
        }
        std::ranges::sort(blocks, {}, &hxsim::Block::start);
        std::ostringstream text;
        const char* separator = "";
        for (const hxsim::Block& each : blocks) {
            text << separator;
            separator = ", ";
            if (each.virtual_disk == hxsim::kNoVirtualDisk) {
                text << "free";
            } else {
                text << (each.target ? "target" : "vd") << each.virtual_disk << '.'
                     << unsigned{each.position};
            }
            text << ' ' << each.start << '+' << each.sectors;
        }
        return text.str();
    }

    /// Everything that a refused call must leave as it is.
    std::string Everything() {
        std::ostringstream text;
        for (const hxsim::Disk& disk : adapter().disks) {
            text << "pd" << disk.id << ' ' << static_cast<int>(disk.spare) << disk.spare_group
                 << disk.foreign << disk.has_mbr << disk.write_cache
                 << static_cast<int>(disk.spare_before) << ": " << BlocksOn(disk.id) << '\n';
        }
        for (const hxsim::VirtualDisk& each : adapter().virtual_disks) {
            text << "vd" << each.id << ' ' << each.name << ' ' << each.group << ' '
                 << unsigned{each.slot} << ' ' << unsigned{each.level} << ' ' << unsigned{each.legs}
                 << ' ' << unsigned{each.width} << ' ' << each.stripe_kib << ' '
                 << unsigned{each.cache} << ' ' << each.size << ' ' << each.auto_rebuild
                 << each.foreign << '\n';
        }
        for (const hxsim::DiskGroup& each : adapter().disk_groups) {
            text << "dg" << each.id << ' ' << each.name << ' ' << unsigned{each.level} << ' '
                 << unsigned{each.legs} << ' ' << unsigned{each.width} << ' ' << each.stripe_kib
                 << ' ' << each.write_cache << '\n';
        }
        for (const hxsim::Home& each : adapter().homes) {
            text << "home " << static_cast<int>(each.of) << ' ' << each.owner << ' '
                 << unsigned{each.position} << ' ' << each.disk << ' ' << each.home << '\n';
        }
        for (const hxsim::Activity& each : adapter().activities) {
            text << "activity " << each.id << ' ' << unsigned{each.kind} << ' ' << each.owner
                 << '\n';
        }
        text << adapter().events.size() << " events\n";
        return text.str();
    }

    /// What events say, oldest first: "1/2 vd 0" as class, code and device.
    std::vector<std::string> Events() {
        std::vector<std::string> events;
        for (const hxsim::QueuedEvent& each : adapter().events) {
            events.push_back(std::to_string(each.event.Class) + '/' +
                             std::to_string(each.event.Code) + " of " +
                             std::to_string(each.event.DeviceID));
        }
        return events;
    }

    /// The disks that serve the positions of an object.
    Ids Serving(hxsim::Owner of, HX_U16 owner) {
        Ids disks;
        for (const hxsim::Home& home : adapter().homes) {
            if (home.of == of && home.owner == owner) disks.push_back(home.disk);
        }
        return disks;
    }

    hxsim::Machine machine;
};

/// A virtual disk wanted on disks of its own, as large as fits and without an initialisation.
inline Create_LD_Param WantedOn(HX_U8 level, const Ids& disks, uint64_t size = 0) {
    Create_LD_Param param{};
    param.RaidMode = level;
    param.HDCount = static_cast<HX_U8>(disks.size());
    std::copy(disks.begin(), disks.end(), param.HDIDs);
    param.NumParityDisk = 2;  // as callers send it for every level
    param.InitializationOption = hxcodes::Init::kNone;
    param.SectorCoefficient = 1;
    param.Size.value = size;
    return param;
}

/// A disk group wanted, or changed.
inline CreateOrModify_DG_Param GroupOn(HX_U16 id, HX_U8 level, const Ids& disks) {
    CreateOrModify_DG_Param param{};
    param.DGID = id;
    param.RaidMode = level;
    param.PDCount = static_cast<HX_U8>(disks.size());
    std::copy(disks.begin(), disks.end(), param.PDIDs);
    return param;
}

/// A virtual disk wanted in a slot of a disk group.
inline CreateOrModify_VD_Param InSlot(HX_U16 group, HX_U8 level, HX_U8 slot, uint64_t size = 0) {
    CreateOrModify_VD_Param param{};
    param.VDID = HX_NEW_ID;
    param.DGID = group;
    param.RaidMode = level;
    param.DGSlotNum = slot;
    param.InitializationOption = hxcodes::Init::kNone;
    param.Size.value = size;
    return param;
}

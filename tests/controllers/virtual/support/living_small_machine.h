// Small machines made by hand, and what happens to them over time as lines of text.
#ifndef LIVING_SMALL_MACHINE_H
#define LIVING_SMALL_MACHINE_H

#include <algorithm>
#include <initializer_list>
#include <string>
#include <tuple>
#include <vector>

#include "calls/hxsim_activity_control.h"
#include "codes/device.h"
#include "hxraid.h"
#include "incidents/hxsim_incident_disk.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_machine.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_activity_end.h"
#include "rules/hxsim_advance.h"
#include "rules/hxsim_settle.h"

namespace living {

inline constexpr hxsim::Sectors kHundredSeconds = 100 * hxsim::kFullSpeed;  // that a rebuild takes
inline constexpr hxsim::Time kStart = 1'000'000'000;

/// One adapter with disks of one size, rates of 100 percent and everything switched on. Its time is
/// told in seconds since kStart.
class SmallMachine {
public:
    explicit SmallMachine(unsigned disks, hxsim::Sectors usable = 2 * kHundredSeconds) {
        machine.adapters.resize(1);
        hxsim::Adapter& adapter = It();
        adapter.info.MaxBlockPerPD = 16;
        adapter.info.MaxLogicalDrive = 32;
        adapter.info.AlarmSupport = 1;
        adapter.info.Features = 0x5F;
        Adapter_Config_V2& config = adapter.config;
        config.AlarmOn = config.AutoRebuildOn = config.CopyBack = config.PollSMARTStatus = 1;
        config.BGARate = config.SyncRate = config.InitRate = config.RebuildRate = 100;
        config.MigrationRate = config.CopybackRate = config.MediaPatrolRate = 100;
        for (unsigned i = 0; i < disks; ++i) AddDisk(usable);
    }

    hxsim::Adapter& It() { return machine.adapters[0]; }

    HX_U16 AddDisk(hxsim::Sectors usable) {
        hxsim::Disk disk;
        const auto id = static_cast<HX_U16>(It().disks.size());
        disk.id = id;
        disk.parent = hxcodes::Device::kAdapter;
        disk.serial = "SN0" + std::to_string(id);
        disk.wwn = 0x5000000000000000U + id;
        disk.sectors = usable + hxsim::kMetadata;
        hxsim::Insert(It().disks, disk);
        hxsim::ResetDisk(It(), id);
        return id;
    }

    /// A virtual disk directly on disks, initialised.
    HX_U16 AddVirtualDisk(HX_U8 level, std::initializer_list<HX_U16> disks, HX_U8 legs = 0,
                          hxsim::Sectors sectors = kHundredSeconds) {
        const HX_U16 id = AddRow(level, static_cast<HX_U8>(disks.size()), legs, hxsim::kNoId);
        AddHomes(hxsim::Owner::kVirtualDisk, id, disks);
        HX_U8 position = 0;
        for (const HX_U16 disk : disks) CutBlock(disk, sectors, id, position++);
        return id;
    }

    HX_U16 AddGroup(HX_U8 level, std::initializer_list<HX_U16> disks, HX_U8 legs = 0) {
        hxsim::DiskGroup group;
        group.id = hxsim::FreeId(It().disk_groups);
        group.level = level;
        group.legs = legs;
        group.width = static_cast<HX_U8>(disks.size());
        hxsim::Insert(It().disk_groups, group);
        AddHomes(hxsim::Owner::kDiskGroup, group.id, disks);
        return group.id;
    }

    HX_U16 AddVirtualDiskTo(HX_U16 group_id, hxsim::Sectors sectors = kHundredSeconds) {
        const hxsim::DiskGroup group = *hxsim::Find(It().disk_groups, group_id);
        const HX_U16 id = AddRow(group.level, group.width, group.legs, group_id);
        for (const hxsim::Home& home : It().homes) {
            if (home.of == hxsim::Owner::kDiskGroup && home.owner == group_id) {
                CutBlock(home.disk, sectors, id, home.position);
            }
        }
        return id;
    }

    void MakeGlobalSpare(HX_U16 disk) { It().disks[disk].spare = hxsim::Spare::kGlobal; }
    void MakeGroupSpare(HX_U16 disk, HX_U16 group) {
        It().disks[disk].spare = hxsim::Spare::kGroup;
        It().disks[disk].spare_group = group;
    }

    hxsim::VirtualDisk& VirtualDisk(HX_U16 id) { return *hxsim::Find(It().virtual_disks, id); }
    hxsim::Disk& Disk(HX_U16 id) { return *hxsim::Find(It().disks, id); }
    hxsim::Block* BlockOf(HX_U16 virtual_disk, HX_U8 position, bool target = false) {
        return hxsim::BlockOf(It(), virtual_disk, position, target);
    }
    hxsim::Activity* ActivityOf(HX_U16 virtual_disk) {
        return hxsim::ActivityOf(It(), hxsim::Owner::kVirtualDisk, virtual_disk);
    }

    /// Lets everything happen up to then, and returns that time.
    hxsim::Time At(hxsim::Time second) {
        const hxsim::Time now = kStart + second * 1000;
        hxsim::Advance(machine, now);
        return now;
    }

    // Incidents, with their consequences.
    void Fail(hxsim::Time second, HX_U16 disk) {
        const hxsim::Time now = At(second);
        hxsim::FailDisk(It(), now, disk);
        hxsim::Settle(It(), now);
    }
    void PullOut(hxsim::Time second, HX_U16 disk) {
        const hxsim::Time now = At(second);
        hxsim::RemoveDisk(It(), now, disk);
        hxsim::Settle(It(), now);
    }
    void PutBack(hxsim::Time second, HX_U16 disk) {
        const hxsim::Time now = At(second);
        hxsim::InsertDisk(It(), now, disk);
        hxsim::Settle(It(), now);
    }
    void Replace(hxsim::Time second, HX_U16 disk, hxsim::Sectors usable = 0) {
        const hxsim::Time now = At(second);
        const hxsim::Sectors sectors = usable == 0 ? 0 : usable + hxsim::kMetadata;
        hxsim::ReplaceDisk(It(), now, disk, machine.random, false, sectors);
        hxsim::Settle(It(), now);
    }

    /// What a call does: work(adapter, now), which changes nothing when it refuses, and whatever
    /// follows when it does not.
    template <class Work>
    int Call(hxsim::Time second, Work work) {
        const hxsim::Time now = At(second);
        hxsim::Adapter changed = It();
        const HX_U8 status = work(changed, now);
        if (status != HX_SUCCESS) return status;
        It() = changed;
        hxsim::Settle(It(), now);
        return status;
    }

    /// Pauses, resumes or aborts what runs on a virtual disk.
    int Control(hxsim::Time second, HX_U16 virtual_disk, HX_U8 action) {
        return Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
            return hxsim::Control(adapter, now, hxsim::Owner::kVirtualDisk, virtual_disk, action);
        });
    }

    /// Takes all events, each as "second class.code device", with the first parameter behind it
    /// where that is not 0.
    std::vector<std::string> TakeEvents() {
        std::vector<std::string> lines;
        for (const hxsim::QueuedEvent& queued : It().events) {
            const Event& event = queued.event;
            std::string line = std::to_string(event.TimeStamp - kStart / 1000) + ' ' +
                               std::to_string(event.Class) + '.' + std::to_string(event.Code) +
                               ' ' + std::to_string(event.DeviceID);
            if (event.Params[0] != 0) line += ' ' + std::to_string(event.Params[0]);
            lines.push_back(line);
        }
        It().events.clear();
        return lines;
    }

    hxsim::Machine machine;

private:
    HX_U16 AddRow(HX_U8 level, HX_U8 width, HX_U8 legs, HX_U16 group) {
        hxsim::VirtualDisk row;
        row.id = hxsim::FreeId(It().virtual_disks);
        row.group = group;
        row.slot = static_cast<HX_U8>(row.id);
        row.level = level;
        row.width = width;
        row.legs = legs;
        row.size = 1;
        row.initialised = true;
        hxsim::Insert(It().virtual_disks, row);
        return row.id;
    }

    void CutBlock(HX_U16 disk, hxsim::Sectors sectors, HX_U16 virtual_disk, HX_U8 position) {
        const hxsim::Sectors start = hxsim::FirstFree(It(), disk, sectors)->start;
        hxsim::Cut(It(), disk, start, sectors, virtual_disk, position);
    }

    void AddHomes(hxsim::Owner of, HX_U16 owner, std::initializer_list<HX_U16> disks) {
        HX_U8 position = 0;
        for (const HX_U16 disk : disks) It().homes.push_back({of, owner, position++, disk, disk});
        std::ranges::sort(It().homes, {}, [](const hxsim::Home& each) {
            return std::tuple(each.of, each.owner, each.position);
        });
    }
};

}  // namespace living

#endif

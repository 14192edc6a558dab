// Fills the records of disks.
#include "calls/hxsim_disk_record.h"

#include "model/hxsim_activity_row.h"
#include "model/hxsim_link.h"
#include "model/hxsim_record_bytes.h"
#include "model/hxsim_text.h"

namespace hxsim {

void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time, HD_Info& info) {
    SetLink(info.Link, adapter, disk);
    info.AdapterID = adapter.id;
    info.Status = role.status;
    info.HDType = NumberOf(disk.sas ? DiskType::kSas : DiskType::kSata);
    info.ConnectionType = NumberOf(disk.sas ? ConnectionType::kSas : ConnectionType::kSata);
    info.DeviceType = 0;  // a disk, in SCSI's numbering
    // SAS has no such modes.
    info.PIOMode = info.CurrentPIOMode = disk.sas ? 0 : 4;
    info.MDMAMode = info.CurrentMDMAMode = disk.sas ? 0 : 2;
    info.UDMAMode = info.CurrentUDMAMode = disk.sas ? 0 : 6;
    info.FeatureSupport = DiskFeature::kSmart | DiskFeature::kWriteCache | DiskFeature::kQueueing;
    SetPaddedText(info.Model, disk.model);
    SetPaddedText(info.SerialNo, disk.serial);
    SetPaddedText(info.FWVersion, disk.firmware);
    SetWorldWideName(info.WWN, disk.wwn);
    info.Size.value = disk.sectors;
    info.ActivityLEDStatus = Answers(disk);
    info.LocateLEDStatus = disk.locate_light;
    info.ErrorLEDStatus = disk.failed;
    SetZero(info.Reserved1, info.Reserved2, info.Reserved3);
}

void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time,
              HD_FreeSpaceInfo& space) {
    space.ID = disk.id;
    space.AdapterID = adapter.id;
    space.isFixed = 1;
    space.Size.value = role.free;
    SetZero(space.Reserved);
}

void Describe(const Adapter&, const Disk& disk, const DiskRole&, Time, HD_Config& config) {
    config.WriteCacheOn = disk.write_cache;
    config.SMARTOn = disk.smart_on;
    config.Online = Answers(disk) && !disk.offline;
    config.DriveSpeed = NumberOf(disk.speed);
    config.HDID = disk.id;
    SetZero(config.Reserved);
}

void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time now,
              HD_BGA_Status& status) {
    const Activity* activity = ActivityOf(adapter, Owner::kDisk, disk.id);
    // The record of a disk group has no progress; its disks tell that of its migration.
    if (activity == nullptr && role.of_group) {
        activity = ActivityOf(adapter, Owner::kDiskGroup, role.serves);
    }
    status.HDID = disk.id;
    status.Status = role.status;
    status.Percentage = activity == nullptr ? HX_U16{0} : Percentage(*activity, now);
    status.Bga = NumberOf(activity == nullptr ? ActivityKind::kNone : activity->kind);
    status.BgaStatus = NumberOf(activity == nullptr ? ActivityState::kIdle : activity->state);
    SetZero(status.Reserved);
}

void Describe(const Adapter&, const Disk& disk, const DiskRole&, Time, HD_SMART_Status& smart) {
    // With SMART off nothing is measured, so no threshold is known to be exceeded.
    smart.SmartThresholdExceeded = disk.smart_on && disk.smart_exceeded;
    smart.HDID = disk.id;
    SetZero(smart.Reserved1, smart.Reserved2);
}

void Describe(const Adapter&, const Disk& disk, const DiskRole& role, Time,
              HD_RAID_Status& status) {
    status.HDID = disk.id;
    status.DGID = role.serves;
    status.Status = role.status;
    SetZero(status.Reserved);
}

void Describe(const Remap& remap, RCT_Record& record) {
    record.lba.value = remap.lba;
    record.sec = remap.sectors;
    record.flag = NumberOf(remap.reason);
    SetZero(record.Reserved);
}

}  // namespace hxsim

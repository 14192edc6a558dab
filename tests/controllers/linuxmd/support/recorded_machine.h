// A recorded machine: a folder that stands in for "/" with the attributes that Linux 6.1 shows of
// disks and MD arrays, each as a test wants it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/temporary_root.h"

class RecordedMachine {
public:
    /// Without disks and arrays, up for ten minutes.
    RecordedMachine();

    /// A SATA disk of 1 GiB, free, whose identifier ends with `digits`.
    void AddDisk(const std::string& name, const std::string& digits);
    /// A disk whose attributes a test writes itself; `way` leads to it in /sys/devices.
    void AddBareDisk(const std::string& name, const std::string& way);
    /// A device's content, all zero.
    void AddDevice(const std::string& name, std::uint64_t sectors);
    /// A partition from sector 2048 on, as udev finds it.
    void AddPartition(const std::string& disk, const std::string& partition);
    /// Takes the disk out of the machine: whatever points at it dangles.
    void Pull(const std::string& disk);
    /// What udev has noted about the disk, lines of its database.
    void Note(const std::string& disk, const std::string& lines);

    /// A running array, `clean` and idle, of so many places; its UUID ends with `digit`.
    void AddArray(const std::string& name, const std::string& level, unsigned places,
                  char digit = '1');
    /// A member on a device (a disk or a partition) in a place; "none" for a spare.
    void AddMember(const std::string& array, const std::string& device, const std::string& slot,
                   const std::string& state = "in_sync");
    /// The disks sda and sdb, and the RAID 1 md127 on sda and on a partition of sdb.
    void AddMirror();
    void RemoveMember(const std::string& array, const std::string& device);

    /// Writes an attribute: of a disk, of an array ("md/degraded"), of a member.
    void Set(const std::string& device, const std::string& attribute, std::string_view text);
    void SetMember(const std::string& array, const std::string& member,
                   const std::string& attribute, std::string_view text);
    void Forget(const std::string& device, const std::string& attribute);

    /// An enclosure whose slots hold these disks; empty: nothing in it.
    void AddEnclosure(const std::string& name, const std::string& identifier);
    void AddSlot(const std::string& enclosure, const std::string& slot, const std::string& disk);

    const TemporaryRoot& Root() const { return root_; }

private:
    std::string Place(const std::string& device) const;  // where its folder is, below the root
    TemporaryRoot root_;
};

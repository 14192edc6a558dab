// The disks, with all that the library tells of each in lists of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/address.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/library_record.h"

namespace vexorctl {

/// The disk group that an object serves or lies on.
struct Membership {
    Presence presence = Presence::kUnknown;  // kNotOffered: none
    unsigned group = 0;

    bool IsIn(unsigned id) const { return presence == Presence::kThere && group == id; }
};

struct Disk {
    Address address;
    Record<fields::HD_Info> info;
    Record<fields::HD_Config> config;
    Record<fields::HD_SMART_Status> smart;
    Record<fields::HD_RAID_Status> raid;
    Record<fields::HD_BGA_Status> activity;
    Record<fields::HD_FreeSpaceInfo> free_space;
    /// Its state in one word, as "free"; its bits as a number where their meaning is not known.
    std::optional<std::string> state;
    std::optional<bool> boot_record;
    Membership group;  // that it serves, as a member or as a spare
};

inline constexpr std::string_view kFreeState = "free";
inline constexpr std::string_view kConfiguredState = "configured";
inline constexpr std::string_view kMissingState = "missing";
/// Of a disk to which data is copied back: nothing of it is lost, as it is while a disk is rebuilt.
inline constexpr std::string_view kCopybackState = "copyback_target";

inline constexpr ListSource kDiskActivityList = ListOf(
    calls::HX_PD_GetBGAStatus::Result::HD_BGA_Status,
    +[](const View<fields::HD_BGA_Status>& status) { return status[fields::HD_BGA_Status::HDID]; });

/// The same with nothing but their own records, which is one question.
std::vector<Disk> LoadDiskRecords(Controller& controller);

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<Disk> LoadDisks(Controller& controller);

}  // namespace vexorctl

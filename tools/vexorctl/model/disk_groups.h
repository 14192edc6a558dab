// The disk groups, with their settings.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "common/address.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/library_record.h"

namespace vexorctl {

struct DiskGroup {
    Address address;
    Record<fields::DG_Info> info;
    Record<fields::DG_Config> config;
    // How far its activity is, which its disks tell; null while there is none, or not known.
    std::optional<std::uint64_t> percent;
};

inline constexpr ListSource kDiskGroupList = ListOf(
    calls::HX_DG_GetInfo::Result::DG_Info,
    +[](const View<fields::DG_Info>& group) { return group[fields::DG_Info::DGID]; });

/// The disks of a group, and its spares; null when they are not known.
std::optional<std::vector<std::uint64_t>> DisksOf(const View<fields::DG_Info>& group);
std::optional<std::vector<std::uint64_t>> SparesOf(const View<fields::DG_Info>& group);

/// How far the activity of a group is, by what its disks tell of themselves: the least of them.
std::optional<std::uint64_t> PercentOf(const View<fields::DG_Info>& group,
                                       const List<fields::HD_BGA_Status>& disks);

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<DiskGroup> LoadDiskGroups(Controller& controller);

}  // namespace vexorctl

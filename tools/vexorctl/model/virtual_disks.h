// The virtual disks, with their settings, activities and disks.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "common/address.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/library_record.h"

namespace vexorctl {

struct VirtualDisk {
    Address address;
    Record<fields::LD_Info> info;
    Record<fields::LD_Config> config;
    Record<fields::LD_Status> status;
    std::optional<std::vector<std::uint64_t>> disks;  // on which it lies; null: not known
};

/// DGID of a virtual disk that lies on no disk group.
inline constexpr std::uint64_t kNoDiskGroup = 255;

inline constexpr ListSource kVirtualDiskList = ListOf(
    calls::HX_LD_GetInfo::Result::LDInfo,
    +[](const View<fields::LD_Info>& disk) { return disk[fields::LD_Info::ID]; });
inline constexpr ListSource kVirtualDiskStatusList = ListOf(
    calls::HX_LD_GetStatus::Result::Status,
    +[](const View<fields::LD_Status>& status) { return status[fields::LD_Status::LDID]; });
inline constexpr ListSource kBlockList = ListOf(
    calls::HX_BLK_GetInfo::Result::blockInfo,
    +[](const View<fields::Block_Info>& block) { return block[fields::Block_Info::ID]; });

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<VirtualDisk> LoadVirtualDisks(Controller& controller);

}  // namespace vexorctl

// The disks, with all that the library tells of each in lists of its own.
#pragma once

#include <optional>
#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/result_tree.h"

namespace vexorctl {

// A record that could not be had is empty: its fields are unknown.
struct Disk {
    Address address;
    Value info;
    Value config;
    Value smart;
    Value raid;
    Value activity;
    Value free_space;
    std::optional<bool> boot_record;
    std::optional<unsigned> group;  // that it serves, as a member or as a spare
};

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<Disk> LoadDisks(Controller& controller);

/// The state of a disk in one word.
std::string DiskState(const Disk& disk);

}  // namespace vexorctl

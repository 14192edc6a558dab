// The background activities of virtual disks, disks and disk groups.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"

namespace vexorctl {

/// A background activity; its address is that of the object on which it runs.
struct Task {
    Address address;
    std::uint64_t activity = 0;
    std::uint64_t state = 0;
    std::optional<std::uint64_t> percent;
    std::string name;               // of the object
    std::optional<unsigned> group;  // on which the object lies
};

/// Whether a task of the object is meant by this address: its own, or that of the disk group on
/// which it lies.
bool IsTaskOf(const Task& task, std::string_view address);

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<Task> LoadTasks(Controller& controller);

}  // namespace vexorctl

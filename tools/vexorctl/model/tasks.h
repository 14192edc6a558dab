// The background activities of virtual disks, disks and disk groups.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/disks.h"

namespace vexorctl {

/// What the stored events and the sizes of what it works on tell of an activity. All of it is null
/// until TellPace has been asked, and where it is not known.
struct TaskPace {
    std::optional<std::uint64_t> start;  // seconds since 1970, by the controller's clock
    std::optional<double> percent_per_second;
    std::optional<std::uint64_t> bytes_per_second;  // of each disk
    std::optional<std::uint64_t> seconds_left;
    std::optional<std::vector<Address>> targets;  // the disks that a rebuild or copyback writes
    std::optional<std::vector<Address>> disks;    // all on which it works
};

/// A background activity; its address is that of the object on which it runs.
struct Task {
    Address address;
    std::uint64_t activity = 0;
    std::optional<std::uint64_t> state;
    std::optional<std::uint64_t> percent;  // of a disk group as its disks tell it; null: not known
    std::optional<std::string> name;       // of the object; a disk has none
    Membership group;                      // on which the object lies
    std::vector<unsigned> virtual_disks;   // on which it works: itself, or those of the disk group
    TaskPace pace;
    bool has_failed = false;  // the controller lists it no more
    // Why it does not run and what to do. Null until TellCauses has been asked, and where it is not
    // known; empty where there is nothing to tell.
    std::optional<std::string> cause, next_step;
};

/// Whether a task of the object is meant by this address: its own, or that of the disk group on
/// which it lies.
bool IsTaskOf(const Task& task, std::string_view address);

enum class TaskDetail {
    kActivity,    // what runs where, and how far it is
    kWithObject,  // also the object's name and disk group: another list, of virtual disks
};

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault,
/// and so is an object of which nobody can tell whether a task runs on it.
std::vector<Task> LoadTasks(Controller& controller, TaskDetail detail);

}  // namespace vexorctl

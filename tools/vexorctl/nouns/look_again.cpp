#include "nouns/look_again.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "model/adapters.h"
#include "model/batteries.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/sightings.h"
#include "model/virtual_disks.h"

namespace vexorctl {

namespace {

constexpr std::string_view kAdapterParameter = "AdapterID";
constexpr std::string_view kBatteryFunctions = "HX_BBU_";

// The parameters that carry numbers of objects; one with several numbers has blanks between them.
struct IdParameter {
    std::string_view name;
    ObjectKind kind;
};
constexpr IdParameter kIdParameters[] = {
    {"HD_ID", ObjectKind::kDisk},         {"HDID", ObjectKind::kDisk},
    {"HDIDs", ObjectKind::kDisk},         {"PDIDs", ObjectKind::kDisk},
    {"Rebuild_HD_ID", ObjectKind::kDisk}, {"LD_ID", ObjectKind::kVirtualDisk},
    {"LDID", ObjectKind::kVirtualDisk},   {"VDID", ObjectKind::kVirtualDisk},
    {"DG_ID", ObjectKind::kDiskGroup},    {"DGID", ObjectKind::kDiskGroup},
};

// Of virtual disks and disk groups: this or more stands for none, or for one that is to be made.
constexpr unsigned kNone = 255;

std::vector<unsigned> NumbersIn(const std::string& text) {
    std::vector<unsigned> numbers;
    std::istringstream words(text);
    for (unsigned number = 0; words >> number;) numbers.push_back(number);
    return numbers;
}

}  // namespace

Outdated::Outdated(const std::string& differences)
    : Failure(Exit::kNotConfirmed,
              "not what the plan was made for: " + differences + "; nothing was done") {}

SecondLook::SecondLook(Controller& controller, const Change& change)
    : controller_(controller), change_(change) {
    for (const Command& command : change_.commands) WantTargetsOf(command);
    if (!change_.address.empty()) Want(ParseSelector(change_.address).address);
    if (!change_.beside.empty()) objects_.insert(change_.beside);
    if (change_.takes_every_disk) kinds_.insert(ObjectKind::kDisk);
    if (controller_.sightings() == nullptr) controller_.RememberSightings();
    const Sightings& sightings = *controller_.sightings();
    const auto is_seen = [&](const std::string& object) {
        return sightings.First(object) != nullptr;
    };
    if (!std::ranges::all_of(objects_, is_seen)) Load();
    const std::size_t named = objects_.size();
    WantRelated();
    if (objects_.size() > named && !std::ranges::all_of(objects_, is_seen)) Load();
    if (change_.takes_every_disk) WantEveryDisk();
}

void SecondLook::Want(const Address& address) {
    adapters_.insert(address.adapter);
    kinds_.insert(address.kind);
    objects_.insert(address.Text());
}

void SecondLook::WantTargetsOf(const Command& command) {
    const auto adapter = std::ranges::find(command.values, kAdapterParameter,
                                           &std::pair<std::string_view, std::string>::first);
    if (adapter == command.values.end()) return;
    const std::vector<unsigned> numbers = NumbersIn(adapter->second);
    if (numbers.empty()) return;
    Want({.adapter = numbers.front()});
    if (command.function.starts_with(kBatteryFunctions)) {
        of_batteries_ = true;
        objects_.insert(BatteryName({.adapter = numbers.front()}));
    }
    for (const auto& [name, value] : command.values) {
        const auto* const row = std::ranges::find(kIdParameters, name, &IdParameter::name);
        if (row == std::end(kIdParameters)) continue;
        for (const unsigned id : NumbersIn(value)) {
            if (row->kind != ObjectKind::kDisk && id >= kNone) continue;
            Want({.adapter = numbers.front(), .kind = row->kind, .id = id});
        }
    }
}

void SecondLook::WantRelated() {
    const std::set<std::string> named = objects_;
    for (const std::string& object : named) {
        const Sighting* const sighting = controller_.sightings()->First(object);
        if (sighting == nullptr) continue;
        for (const Address& address : sighting->related) Want(address);
    }
}

void SecondLook::WantEveryDisk() {
    for (const unsigned adapter : adapters_) {
        const std::string disks = "a" + std::to_string(adapter) + "/pd";
        objects_.merge(controller_.sightings()->Objects(disks));
    }
}

// What cannot be read shows as a difference, or as an object that is not there.
void SecondLook::Load() {
    if (change_.look_beside) change_.look_beside();
    if (adapters_.empty()) return;
    controller_.Select({adapters_.begin(), adapters_.end()});
    if (kinds_.contains(ObjectKind::kAdapter)) LoadAdapters(controller_);
    if (kinds_.contains(ObjectKind::kDisk)) LoadDisks(controller_);
    if (kinds_.contains(ObjectKind::kVirtualDisk)) LoadVirtualDisks(controller_);
    if (kinds_.contains(ObjectKind::kDiskGroup)) LoadDiskGroups(controller_);
    if (of_batteries_) LoadBatteries(controller_);
}

void SecondLook::Check() {
    Sightings& sightings = *controller_.sightings();
    const std::size_t faults = controller_.faults().size();
    const Exit exit = controller_.exit();
    sightings.LookAgain();
    Load();
    const std::optional<Fault> unread = controller_.TakeBack(faults, exit);
    std::string differences;
    const auto add = [&](const std::string& difference) {
        if (!difference.empty()) differences += difference + "; ";
    };
    // Those that have come since.
    if (change_.takes_every_disk) WantEveryDisk();
    for (const std::string& object : objects_) add(sightings.Difference(object));
    if (differences.empty()) return;
    if (unread) add(unread->address + ": " + unread->message);
    throw Outdated(differences.substr(0, differences.size() - 2));
}

}  // namespace vexorctl

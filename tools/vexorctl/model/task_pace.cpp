#include "model/task_pace.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "codes/named.h"
#include "codes/state.h"
#include "common/address.h"
#include "common/size.h"
#include "library_fields.h"
#include "model/controller_codes.h"
#include "model/disks.h"
#include "model/event_history.h"
#include "model/library_record.h"
#include "model/virtual_disks.h"

namespace vexorctl {

namespace {

// The lists that are needed, each read once.
class Sizes {
public:
    explicit Sizes(Controller& controller) : controller_(controller) {}

    // What the task goes over on each disk. A disk group's goes over its virtual disks one after
    // the other; the events and percentages are of all of them together.
    std::optional<std::uint64_t> SectorsOf(const Task& task) {
        if (task.address.kind == ObjectKind::kDisk) return SizeOfDisk(task.address);
        std::uint64_t all = 0;
        for (const unsigned id : task.virtual_disks) {
            std::uint64_t most = 0;
            for (const auto& [block_id, block] : BlocksOf(task.address.adapter).items) {
                if (block[fields::Block_Info::LDID] != id) continue;
                const auto sectors = block[fields::Block_Info::Size];
                if (!sectors) return std::nullopt;
                most = std::max(most, *sectors);
            }
            if (most == 0) return std::nullopt;
            all += most;
        }
        return all == 0 ? std::nullopt : std::optional(all);
    }

    // Fills in the disks whose blocks of these virtual disks are being written, and all of them.
    void TellDisks(const Task& task, TaskPace& pace) {
        if (task.address.kind == ObjectKind::kDisk) {
            pace.targets.emplace();
            pace.disks = std::vector{task.address};
            return;
        }
        pace.targets = DisksOf(task, true);
        pace.disks = DisksOf(task, false);
    }

private:
    std::optional<std::vector<Address>> DisksOf(const Task& task, bool only_written) {
        std::vector<Address> disks;
        const auto& blocks = BlocksOf(task.address.adapter);
        if (blocks.presence != Presence::kThere) return std::nullopt;
        for (const auto& [block_id, block] : blocks.items) {
            const auto owner = block[fields::Block_Info::LDID];
            const auto state = block[fields::Block_Info::Status];
            const auto disk = block[fields::Block_Info::HDID];
            if (!owner || !state || !disk) return std::nullopt;
            const bool is_its =
                std::ranges::find(task.virtual_disks, *owner) != task.virtual_disks.end();
            const bool is_written = hxcodes::NameOf(controller_.codes().table().states, *state) ==
                                    hxcodes::NameOf(hxcodes::State::kRebuilding);
            if (!is_its || (only_written && !is_written)) continue;
            const Address its_disk{.adapter = task.address.adapter,
                                   .kind = ObjectKind::kDisk,
                                   .id = static_cast<unsigned>(*disk)};
            if (std::ranges::find(disks, its_disk) == disks.end()) disks.push_back(its_disk);
        }
        return disks;
    }

    const List<fields::Block_Info>& BlocksOf(unsigned adapter) {
        const auto found = blocks_.find(adapter);
        if (found != blocks_.end()) return found->second;
        return blocks_.emplace(adapter, controller_.ReadList(adapter, kBlockList)).first->second;
    }

    std::optional<std::uint64_t> SizeOfDisk(const Address& address) {
        if (!disks_) disks_ = LoadDiskRecords(controller_);
        for (const Disk& each : *disks_) {
            if (each.address == address) return each.info[fields::HD_Info::Size];
        }
        return std::nullopt;
    }

    Controller& controller_;
    std::map<unsigned, List<fields::Block_Info>> blocks_;
    std::optional<std::vector<Disk>> disks_;
};

// Null for what no disk or clock can have told: a double may be larger than any whole number.
std::optional<std::uint64_t> WholeNumber(double number) {
    constexpr double kMost = 1e18;
    if (!(number >= 0 && number <= kMost)) return std::nullopt;
    return static_cast<std::uint64_t>(number);
}

std::vector<std::string> ObjectsOf(const Task& task) {
    if (task.address.kind != ObjectKind::kDiskGroup) return {task.address.Text()};
    std::vector<std::string> objects;
    for (const unsigned id : task.virtual_disks) {
        objects.push_back(
            Address{.adapter = task.address.adapter, .kind = ObjectKind::kVirtualDisk, .id = id}
                .Text());
    }
    return objects;
}

}  // namespace

TaskPace PaceOf(const Task& task, std::string_view activity, std::span<const std::string> objects,
                std::span<const Period> periods, std::optional<std::uint64_t> sectors) {
    constexpr double kWhole = 100;
    TaskPace pace;
    const Period* period = nullptr;
    for (const Period& each : periods) {
        const bool is_its = each.how == PeriodEnd::kOpen && each.kind == activity &&
                            std::ranges::find(objects, each.object) != objects.end();
        if (is_its) period = &each;
    }
    if (period == nullptr || !task.percent || period->percent.value_or(0) > *task.percent) {
        return pace;
    }
    // Where events were lost, this one may have ended, and another one begun.
    if (period->has_gap) return pace;
    pace.start = period->start;
    pace.percent_per_second = PercentPerSecond(*period);
    if (!pace.percent_per_second) return pace;
    const double left = kWhole - std::min(static_cast<double>(*task.percent), kWhole);
    pace.seconds_left = WholeNumber(std::ceil(left / *pace.percent_per_second));
    if (sectors) {
        const double bytes = static_cast<double>(*sectors) * vexortools::kSectorBytes;
        pace.bytes_per_second = WholeNumber(std::round(bytes / kWhole * *pace.percent_per_second));
    }
    return pace;
}

void TellPace(Controller& controller, std::vector<Task>& tasks) {
    if (!tasks.empty()) TellPace(controller, KnownHistory(controller).periods, tasks);
}

void TellPace(Controller& controller, std::span<const Period> periods, std::vector<Task>& tasks) {
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    Sizes sizes(controller);
    for (Task& task : tasks) {
        const std::string_view activity =
            hxcodes::NameOf(controller.codes().table().activities, task.activity);
        const std::vector<std::string> objects = ObjectsOf(task);
        if (!task.has_failed) {
            task.pace = PaceOf(task, activity, objects, periods, sizes.SectorsOf(task));
        }
        sizes.TellDisks(task, task.pace);
    }
    controller.TakeBack(faults, exit);
}

}  // namespace vexorctl

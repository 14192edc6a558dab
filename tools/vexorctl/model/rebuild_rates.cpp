#include "model/rebuild_rates.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "codes/activity.h"
#include "codes/event.h"
#include "library_fields.h"
#include "model/event_store.h"
#include "model/failure.h"
#include "model/library_record.h"

namespace vexorctl {

namespace {

namespace hxc = hxconditions;
using hxcodes::ActivityKind;
using hxcodes::Step;

// The latest rebuild is among these, unless it is too old to tell much.
constexpr std::uint64_t kNewestEvents = 5000;

struct RebuiltDisk {
    std::uint64_t adapter = 0;
    std::uint64_t virtual_disk = 0;
    bool operator==(const RebuiltDisk&) const = default;
    bool operator<(const RebuiltDisk& other) const {
        return std::tie(adapter, virtual_disk) < std::tie(other.adapter, other.virtual_disk);
    }
};

constexpr std::uint32_t KindOf(Step step) {
    return NumberOf(*hxcodes::EventOf(ActivityKind::kRebuild, step));
}

// The seconds that the latest whole rebuild of each virtual disk took.
class Durations {
public:
    void Take(const RebuiltDisk& place, std::uint32_t kind, std::uint64_t time) {
        if (kind == KindOf(Step::kStart)) {
            started_[place] = time;
        } else if (kind == KindOf(Step::kComplete)) {
            const auto start = started_.find(place);
            if (start != started_.end() && time > start->second) {
                finished_.emplace_back(place, time - start->second);
            }
            started_.erase(place);
        } else if (kind == NumberOf(hxcodes::EventKind::kVirtualDiskCreated) ||
                   kind == NumberOf(hxcodes::EventKind::kVirtualDiskDeleted)) {
            // Another one has the number from here on.
            started_.erase(place);
            std::erase_if(finished_, [&](const auto& each) { return each.first == place; });
        } else if (EndsMeasure(kind)) {
            started_.erase(place);
        }
    }
    const std::vector<std::pair<RebuiltDisk, std::uint64_t>>& Finished() const { return finished_; }

private:
    static bool EndsMeasure(std::uint32_t kind) {
        return std::ranges::any_of(
            std::initializer_list<Step>{Step::kRestart, Step::kPause, Step::kAbort, Step::kError,
                                        Step::kAutoPaused},
            [&](Step step) { return kind == KindOf(step); });
    }

    std::map<RebuiltDisk, std::uint64_t> started_;
    std::vector<std::pair<RebuiltDisk, std::uint64_t>> finished_;  // in the order of their ends
};

Durations ReadDurations(Controller& controller) {
    using fields::Event;
    Durations durations;
    const Extent extent = AskExtent(controller);
    const std::uint64_t count = std::min(extent.next - extent.first, kNewestEvents);
    std::uint64_t page = kEventsPerPage;
    for (const StoredEvent& each : ReadEvents(controller, extent.next - count, count, page)) {
        const auto event_class = each.record[Event::Class];
        const auto code = each.record[Event::Code];
        const auto adapter = each.record[Event::AdapterID];
        const auto device = each.record[Event::DeviceID];
        const auto time = each.record[Event::TimeStamp];
        if (!event_class || !code || !adapter || !device || !time) continue;
        durations.Take({*adapter, *device},
                       hxcodes::At(static_cast<HX_U16>(*event_class), static_cast<HX_U16>(*code)),
                       *time);
    }
    return durations;
}

// The sectors that a rebuild of the virtual disk writes.
std::uint64_t SectorsOf(const hxc::Answers& answers, const RebuiltDisk& place) {
    std::uint64_t most = 0;
    for (const hxc::Adapter& adapter : answers.adapters) {
        if (adapter.number != place.adapter) continue;
        for (const hxc::VirtualDisk& each : adapter.virtual_disks) {
            if (each.id != place.virtual_disk) continue;
            for (const hxc::Member& member : each.members) most = std::max(most, member.sectors);
        }
    }
    return most;
}

}  // namespace

hxc::RebuildRates MeasureRebuilds(Controller& controller, const hxc::Answers& answers) {
    hxc::RebuildRates rates;
    // What the codes of another controller's events mean is not known.
    if (!controller.codes().AreKnown()) return rates;
    Durations durations;
    try {
        durations = ReadDurations(controller);
    } catch (const Failure&) {
        return rates;
    }
    for (const auto& each : durations.Finished()) {
        const std::uint64_t sectors = SectorsOf(answers, each.first);
        if (sectors == 0) continue;
        rates[static_cast<unsigned>(each.first.adapter)] =
            static_cast<double>(sectors) / static_cast<double>(each.second);
    }
    return rates;
}

}  // namespace vexorctl

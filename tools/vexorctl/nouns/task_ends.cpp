#include "nouns/task_ends.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "codes/activity.h"
#include "codes/named.h"
#include "codes/state.h"
#include "common/address.h"
#include "common/exit_code.h"
#include "library_fields.h"
#include "model/controller_codes.h"
#include "model/event_history.h"
#include "model/event_store.h"
#include "model/failure.h"
#include "model/library_record.h"
#include "model/service_report.h"
#include "model/timeline.h"
#include "model/virtual_disks.h"
#include "output/streams.h"
#include "shell/interrupt.h"

namespace vexorctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kLookMilliseconds = 200;
constexpr std::chrono::seconds kLongestWait{60};
// Of the service: one may have begun before the end, the next one has not.
constexpr unsigned kRounds = 2;

std::string InWords(std::string_view name) {
    std::string words(name);
    std::ranges::replace(words, '_', ' ');
    return words;
}

std::vector<std::string> ObjectsOf(const Task& task) {
    if (task.address.kind == ObjectKind::kDisk) return {task.address.Text()};
    std::vector<std::string> objects;
    for (const unsigned id : task.virtual_disks) {
        objects.push_back(
            Address{.adapter = task.address.adapter, .kind = ObjectKind::kVirtualDisk, .id = id}
                .Text());
    }
    return objects;
}

// One teller for all tasks: the gravest exit code counts.
class Teller {
public:
    explicit Teller(Controller& controller) : controller_(controller) {}

    Exit exit() const { return exit_; }

    // Returns false when the events do not tell how it ended.
    bool TellEvents(const Task& task, const std::vector<Period>& periods) {
        bool is_told = false;
        for (const std::string& object : ObjectsOf(task)) {
            const auto found =
                std::find_if(periods.rbegin(), periods.rend(), [&](const Period& each) {
                    return each.object == object && each.kind == ActivityOf(task);
                });
            if (found == periods.rend()) continue;
            is_told = TellPeriod(*found) || is_told;
        }
        return is_told;
    }

    // What its virtual disks are now. After a rebuild whose end is told a degraded one is no news.
    void TellState(const Task& task, bool is_end_told) {
        for (const unsigned id : task.virtual_disks) TellVirtualDisk(task, id, is_end_told);
    }

    std::string ActivityOf(const Task& task) const {
        return std::string(hxcodes::NameOf(controller_.codes().table().activities, task.activity));
    }

private:
    void Report(const std::string& where, const std::string& what, Exit code) {
        ReportFailure(where, what);
        exit_ = vexortools::MoreSerious(exit_, code);
    }

    bool TellPeriod(const Period& period) {
        const std::string activity = "the " + InWords(period.kind);
        const std::string where = "; what happened: vexorctl timeline " + period.object;
        const std::string far =
            period.percent ? " at " + std::to_string(*period.percent) + " %" : "";
        switch (period.how) {
            case PeriodEnd::kAborted:
                Report(period.object, activity + " was aborted" + far + where, Exit::kRefused);
                return true;
            case PeriodEnd::kFailed:
                Report(period.object, activity + " has failed" + far + where, Exit::kRefused);
                return true;
            case PeriodEnd::kComplete:
                if (period.errors) {
                    const std::string count =
                        *period.errors == 0 ? "errors"
                        : *period.errors == 1
                            ? "1 stripe that disagrees"
                            : std::to_string(*period.errors) + " stripes that disagree";
                    Report(period.object,
                           activity + " has found " + count +
                               "; to repair it, when a backup is there: vexorctl task start " +
                               period.object + " --kind fix",
                           Exit::kRefused);
                }
                return true;
            case PeriodEnd::kOpen:
            case PeriodEnd::kRecovered:
            case PeriodEnd::kChanged:
            case PeriodEnd::kDeleted:
            case PeriodEnd::kReplaced:
            case PeriodEnd::kLost:
                return false;
        }
        return false;
    }

    void TellVirtualDisk(const Task& task, unsigned id, bool is_end_told) {
        const Address address{
            .adapter = task.address.adapter, .kind = ObjectKind::kVirtualDisk, .id = id};
        const auto list = controller_.ReadList(address.adapter, kVirtualDiskList);
        if (list.presence != Presence::kThere) {
            Report(address.Text(), "its task has ended; how is not known", Exit::kUnavailable);
            return;
        }
        const auto found =
            std::ranges::find_if(list.items, [&](const auto& item) { return item.id == id; });
        if (found == list.items.end()) {
            Report(address.Text(), "its task has ended, and it is there no more", Exit::kNoObject);
            return;
        }
        const std::string activity = ActivityOf(task);
        const bool is_rebuild = activity == hxcodes::NameOf(hxcodes::ActivityKind::kRebuild);
        const auto state = found->record[fields::LD_Info::Status];
        const std::string_view name =
            state ? hxcodes::NameOf(controller_.codes().table().states, *state)
                  : std::string_view();
        const bool is_lost = name == hxcodes::NameOf(hxcodes::State::kOffline);
        const bool is_short = is_rebuild && !is_end_told && !name.empty() &&
                              name != hxcodes::NameOf(hxcodes::State::kOptimal);
        if (!is_lost && !is_short) return;
        Report(address.Text(),
               "the " + (activity.empty() ? "task" : activity) + " has ended, and it is " +
                   InWords(name) + "; what happened: vexorctl timeline " + address.Text(),
               Exit::kRefused);
    }

    Controller& controller_;
    Exit exit_ = Exit::kDone;
};

bool IsTold(const std::string& object, const std::string& activity,
            const std::vector<Period>& periods) {
    return std::ranges::any_of(periods, [&](const Period& each) {
        return each.object == object && each.kind == activity && each.how != PeriodEnd::kOpen;
    });
}

std::uint64_t NextEvent(Controller& controller) {
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    std::uint64_t next = 0;
    try {
        next = AskExtent(controller).next;
    } catch (const Failure&) {
        // No events are collected here, or they may not be read.
    }
    controller.TakeBack(faults, exit);
    return next;
}

}  // namespace

TaskEnds::TaskEnds(Controller& controller)
    : controller_(controller), first_event_(NextEvent(controller)) {}

Exit TaskEnds::Tell(std::span<const Task> gone) const {
    if (gone.empty()) return Exit::kDone;
    Teller teller(controller_);
    const auto read = [&] {
        std::vector<Period> periods = KnownHistory(controller_).periods;
        std::erase_if(periods, [&](const Period& each) { return each.last_event < first_event_; });
        return periods;
    };
    const auto is_all_told = [&](const std::vector<Period>& periods) {
        return std::ranges::all_of(gone, [&](const Task& task) {
            return std::ranges::all_of(ObjectsOf(task), [&](const std::string& object) {
                return IsTold(object, teller.ActivityOf(task), periods);
            });
        });
    };
    const Clock::time_point end = Clock::now() + kLongestWait;
    std::optional<std::int64_t> report = LastReportOfService(std::time(nullptr));
    std::vector<Period> periods = read();
    for (unsigned rounds = 0; report && rounds < kRounds && !is_all_told(periods);) {
        if (!controller_.codes().AreKnown() || Clock::now() >= end || Interrupted()) break;
        SleepMilliseconds(kLookMilliseconds);
        const std::optional<std::int64_t> next = LastReportOfService(std::time(nullptr));
        if (next != report) ++rounds;
        report = next;
        periods = read();
    }
    for (const Task& task : gone) {
        const bool is_told = teller.TellEvents(task, periods);
        teller.TellState(task, is_told);
    }
    return teller.exit();
}

}  // namespace vexorctl

// The service's loop: rounds, waits, and what signals ask for meanwhile.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "conditions/hxc_answers.h"
#include "descriptor.h"
#include "service/hxs_alerts.h"
#include "service/hxs_collector.h"
#include "service/hxs_deliverer.h"
#include "service/hxs_keeper.h"
#include "service/hxs_listener.h"
#include "service/hxs_log.h"
#include "service/hxs_manager.h"
#include "service/hxs_settings.h"
#include "service/hxs_snapshot.h"
#include "service/hxs_socket.h"
#include "service/hxs_source.h"
#include "service/hxs_state_file.h"
#include "service/hxs_tasks.h"
#include "service/hxs_watch.h"

namespace hxservice {

/// Why a wait has ended.
/// kWork: what delivers alerts has ended or written, or somebody asks.
/// kChanged: the machine may have changed; told once for each WakeForChange.
enum class Wake : std::uint8_t { kTime, kCheckNow, kReload, kWork, kChanged, kEnd };

/// Time and signals.
class Outside {
public:
    virtual ~Outside() = default;
    /// Waits at most for that long.
    virtual Wake Wait(Duration longest) = 0;
    /// Wait ends when that is readable, too, instead of the one before.
    virtual void WakeForChange(Descriptor changes) = 0;
    /// The time since the boot, sleep included; changes of the date do not move it.
    virtual Duration Now() = 0;
    /// The machine's clocks, for the conditions.
    virtual hxconditions::Now Clocks() = 0;
    /// A random time from 0 to `most`.
    virtual Duration Random(Duration most) = 0;
};

/// What the loop works with. Everything must outlive the loop.
struct Parts {
    Source& source;
    Outside& outside;
    Manager& manager;
    Keeper& keeper;
    Log& log;
    Deliverer& deliverer;
    Callers* callers = nullptr;    // null: nobody can ask
    Scrapers* scrapers = nullptr;  // null: nobody can ask for the metrics
};

/// The name of this machine.
std::string HostName();

class Loop {
public:
    /// `read` reads the settings file and throws SettingsError. `saved` is what an earlier process
    /// has kept, `damage` why that was lost, or empty.
    Loop(const Parts& parts, const Settings& settings, std::function<Settings()> read, Saved saved,
         const std::string& damage);

    /// Makes one round after the other, until Wake::kEnd.
    void Run();

    /// Makes one round with a look at the machine, and one attempt to deliver what it brings.
    CheckIn RunOnce();

private:
    enum class Rounds : std::uint8_t { kAgain, kOnce };

    CheckIn Round(Rounds rounds);
    void Look(const News& news);
    void PlanNextLook(const News& news);
    Snapshot SnapshotOf(Rounds rounds, CheckIn how);
    void Save();
    void ServeAlerts();
    void ServeCallers();
    // When alerts or callers have something to do, at most `otherwise`.
    Duration WorkDue(Duration otherwise) const;
    void Reload();
    // When the next round is due, after one that ended at that time.
    Duration Due(Duration ended);
    // Returns true when the next round is due, false at the end.
    bool WaitForNext();

    Parts parts_;
    Settings settings_;
    std::function<Settings()> read_;
    Collector collector_;
    Watch watch_;
    Alerts alerts_;
    TaskHistory tasks_;
    hxconditions::Answers answers_;  // of the last look
    Facts facts_;
    std::int64_t looked_at_ = 0;  // by the clock; 0: not yet
    Work work_;
    hxconditions::Service self_;
    std::optional<Duration> look_due_;  // at once without it
};

}  // namespace hxservice

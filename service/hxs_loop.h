// The service's loop: a check-in, a wait, and what signals ask for meanwhile.
#pragma once

#include <cstdint>
#include <functional>

#include "service/hxs_collector.h"
#include "service/hxs_log.h"
#include "service/hxs_manager.h"
#include "service/hxs_settings.h"
#include "service/hxs_source.h"

namespace hxservice {

/// Why a wait has ended.
enum class Wake : std::uint8_t { kTime, kCheckNow, kReload, kEnd };

/// Time and signals.
class Outside {
public:
    virtual ~Outside() = default;
    /// Waits at most for that long.
    virtual Wake Wait(Duration longest) = 0;
    /// The time since the boot, sleep included; changes of the date do not move it.
    virtual Duration Now() = 0;
    /// A random time from 0 to `most`.
    virtual Duration Random(Duration most) = 0;
};

class Loop {
public:
    /// `read` reads the settings file and throws SettingsError. The references must outlive the
    /// loop.
    Loop(Source& source, Outside& outside, Manager& manager, Log& log, const Settings& settings,
         std::function<Settings()> read);

    /// Checks in again and again, until Wake::kEnd.
    void Run();

private:
    void Reload();
    // How long to wait for the next check-in.
    Duration Pause();
    // Returns true when the next check-in is due, false at the end.
    bool WaitForNext();

    Collector collector_;
    Outside& outside_;
    Manager& manager_;
    Log& log_;
    Settings settings_;
    std::function<Settings()> read_;
};

}  // namespace hxservice

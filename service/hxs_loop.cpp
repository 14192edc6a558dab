#include "service/hxs_loop.h"

#include <algorithm>
#include <string>
#include <utility>

namespace hxservice {

Loop::Loop(Source& source, Outside& outside, Manager& manager, Log& log, const Settings& settings,
           std::function<Settings()> read)
    : collector_(source, log),
      outside_(outside),
      manager_(manager),
      log_(log),
      settings_(settings),
      read_(std::move(read)) {}

void Loop::Reload() {
    manager_.Reloading();
    try {
        settings_ = read_();
        log_.Say("the settings were read again");
    } catch (const SettingsError& error) {
        log_.Say(std::string(error.what()) + "; the old settings hold");
    }
    manager_.Ready();
}

Duration Loop::Pause() {
    return settings_.collect_interval + outside_.Random(settings_.collect_jitter);
}

bool Loop::WaitForNext() {
    const Duration ended = outside_.Now();
    Duration due = ended + Pause();
    // A storm of signals does not put off the check-in: the time is looked at after each of them.
    do {
        manager_.Alive();
        const Duration left = std::max(due - outside_.Now(), Duration(0));
        switch (outside_.Wait(std::min(left, manager_.LongestSilence()))) {
            case Wake::kTime:
                break;
            case Wake::kCheckNow:
                return true;
            case Wake::kReload:
                Reload();
                due = ended + Pause();
                break;
            case Wake::kEnd:
                return false;
        }
    } while (outside_.Now() < due);
    return true;
}

void Loop::Run() {
    collector_.Collect();
    manager_.Ready();
    manager_.Tell(collector_.Status());
    while (WaitForNext()) {
        collector_.Collect();
        manager_.Tell(collector_.Status());
    }
    manager_.Stopping();
}

}  // namespace hxservice

#include "service/hxs_loop.h"

#include <algorithm>
#include <string>
#include <utility>

namespace hxservice {

Loop::Loop(Source& source, Outside& outside, Log& log, const Settings& settings,
           std::function<Settings()> read)
    : collector_(source, log),
      outside_(outside),
      log_(log),
      settings_(settings),
      read_(std::move(read)) {}

void Loop::Reload() {
    try {
        settings_ = read_();
        log_.Say("the settings were read again");
    } catch (const SettingsError& error) {
        log_.Say(std::string(error.what()) + "; the old settings hold");
    }
}

Duration Loop::Pause() {
    return settings_.collect_interval + outside_.Random(settings_.collect_jitter);
}

bool Loop::WaitForNext() {
    const Duration ended = outside_.Now();
    Duration due = ended + Pause();
    // Due is due: a storm of signals does not put off the check-in.
    do {
        switch (outside_.Wait(std::max(due - outside_.Now(), Duration(0)))) {
            case Wake::kTime:
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
    do {
        collector_.Collect();
    } while (WaitForNext());
}

}  // namespace hxservice

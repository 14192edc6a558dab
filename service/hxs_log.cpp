#include "service/hxs_log.h"

#include <cstdio>

#include "common/terminal_text.h"
#include "service/hxs_journal_entries.h"

#include "vexorapi.h"

namespace hxservice {

void Log::Tell(const StoredEvent& event) {
    Say("event " + std::to_string(event.number) + " [" + event.severity + "] " + event.text);
}

// Without a journal nothing is missed: the line and the event store have the event.
void ServiceLog::Tell(const StoredEvent& event) {
    Log::Tell(event);
    static_cast<void>(journal_.Send(EntryOf(event)));
}

void ServiceLog::Say(const std::string& line) {
    // Names from disks and controllers stand in it.
    const std::string text = vexortools::Printable(line);
    LogPrintf("%s\n", text.c_str());
    if (in_foreground_) std::fprintf(stderr, "hxraidsvc: %s\n", text.c_str());
}

void Lasting::Say(const std::string& reason) {
    if (reason == said_) return;
    said_ = reason;
    log_.Say(reason);
}

void Lasting::End() {
    if (said_.empty()) return;
    said_.clear();
    log_.Say(std::string(over_));
}

}  // namespace hxservice

// The lines that the service writes about itself and about events.
#pragma once

#include <string>
#include <string_view>

#include "service/hxs_journal.h"
#include "service/hxs_source.h"

namespace hxservice {

class Log {
public:
    virtual ~Log() = default;
    /// Writes one line, without a line end.
    virtual void Say(const std::string& line) = 0;
    /// Writes a line for an event.
    virtual void Tell(const StoredEvent& event);
};

/// The service log of the library, and standard error for a service in the foreground. Events go to
/// the journal, too, where there is one or a syslog.
class ServiceLog : public Log {
public:
    /// The journal must outlive it.
    ServiceLog(bool in_foreground, Journal& journal)
        : journal_(journal), in_foreground_(in_foreground) {}
    void Say(const std::string& line) override;
    void Tell(const StoredEvent& event) override;

private:
    Journal& journal_;
    bool in_foreground_;
};

/// A trouble that lasts is told once, again when its reason changes, and when it ends.
class Lasting {
public:
    /// `over` is what is said at the end.
    Lasting(Log& log, std::string_view over) : log_(log), over_(over) {}
    void Say(const std::string& reason);
    void End();
    /// The reason while the trouble lasts; empty otherwise.
    const std::string& Reason() const { return said_; }

private:
    Log& log_;
    std::string_view over_;
    std::string said_;
};

}  // namespace hxservice

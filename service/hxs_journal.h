// Writes structured entries to systemd's journal, or lines to syslog where there is no journal.
//
// The journal is reached by its native protocol, a datagram on a socket, instead of libsystemd's
// sd_journal_sendv: that one waits as long as the journal does not read, which would stop the loop,
// and knows no root prefix.
#pragma once

#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "descriptor.h"

namespace hxservice {

/// The values of PRIORITY, which are syslog's.
enum class Priority : unsigned char {
    kCritical = 2,
    kError = 3,
    kWarning = 4,
    kNotice = 5,
    kInformation = 6,
};

struct JournalField {
    std::string name;
    std::string value;
};

struct JournalEntry {
    Priority priority = Priority::kInformation;
    std::string message;
    std::string message_id;  // 32 hexadecimal digits
    std::vector<JournalField> fields{};
};

/// The entry as the journal reads it.
std::string JournalDatagram(const JournalEntry& entry);

/// The entry as syslog reads it, by a local time as localtime_r gives it.
std::string SyslogLine(const JournalEntry& entry, const std::tm& time);

class Journal {
public:
    Journal(std::string journal_socket, std::string syslog_socket)
        : journal_{std::move(journal_socket)}, syslog_{std::move(syslog_socket)} {}

    /// Sends it; waits for a moment at most. Returns why it could not be sent, or nothing.
    std::string Send(const JournalEntry& entry);

private:
    struct Way {
        std::string path;
        ::Descriptor socket{};
        bool is_stuck = false;  // nothing was read for a moment: it is not waited for again
    };
    static int SendBy(Way& way, const std::string& datagram);

    Way journal_;
    Way syslog_;
};

}  // namespace hxservice

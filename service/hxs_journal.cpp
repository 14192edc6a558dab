#include "service/hxs_journal.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>

#include "common/terminal_text.h"

namespace hxservice {

namespace {

constexpr char kIdentifier[] = "hxraidsvc";
// An entry fits into one datagram, whatever names a controller has.
constexpr std::size_t kLongestValue = 4096;
constexpr int kJournalPatience = 100;  // ms
constexpr int kDaemonFacility = 3;

// A value with line ends has its length before it, in 8 bytes, the lowest first.
void PutField(std::string& datagram, std::string_view name, std::string_view value) {
    value = value.substr(0, kLongestValue);
    datagram += name;
    if (value.find('\n') == std::string_view::npos) {
        datagram += '=';
    } else {
        datagram += '\n';
        for (unsigned shift = 0; shift < 64; shift += 8) {
            datagram += static_cast<char>(std::uint64_t{value.size()} >> shift & 0xFF);
        }
    }
    datagram += value;
    datagram += '\n';
}

::Descriptor Connected(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return {};
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    ::Descriptor made(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!made.IsOpen() ||
        connect(made.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return {};
    }
    return made;
}

bool IsNobodyThere(int error) {
    return error == ENOENT || error == ENOTDIR || error == ECONNREFUSED || error == EPROTOTYPE;
}

}  // namespace

std::string JournalDatagram(const JournalEntry& entry) {
    std::string datagram;
    PutField(datagram, "MESSAGE", vexortools::Printable(entry.message));
    PutField(datagram, "PRIORITY", std::to_string(static_cast<int>(entry.priority)));
    PutField(datagram, "SYSLOG_IDENTIFIER", kIdentifier);
    if (!entry.message_id.empty()) PutField(datagram, "MESSAGE_ID", entry.message_id);
    for (const JournalField& field : entry.fields) PutField(datagram, field.name, field.value);
    return datagram;
}

std::string SyslogLine(const JournalEntry& entry, const std::tm& time) {
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%b %e %H:%M:%S", &time);
    const int priority = kDaemonFacility * 8 + static_cast<int>(entry.priority);
    const std::string message = vexortools::Printable(entry.message).substr(0, kLongestValue);
    return "<" + std::to_string(priority) + ">" + date.data() + " " + kIdentifier + "[" +
           std::to_string(getpid()) + "]: " + message;
}

// An error number; 0 when it was sent.
int Journal::SendBy(Way& way, const std::string& datagram) {
    int error = 0;
    // Who listens may have been started anew since the last entry.
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (!way.socket.IsOpen()) way.socket = Connected(way.path);
        if (!way.socket.IsOpen()) return errno;
        pollfd writable{way.socket.Get(), POLLOUT, 0};
        poll(&writable, 1, way.is_stuck ? 0 : kJournalPatience);
        if (send(way.socket.Get(), datagram.data(), datagram.size(), MSG_NOSIGNAL) >= 0) {
            way.is_stuck = false;
            return 0;
        }
        error = errno;
        way.is_stuck = error == EAGAIN;
        if (way.is_stuck) return error;
        way.socket.Close();
    }
    return error;
}

std::string Journal::Send(const JournalEntry& entry) {
    const int error = SendBy(journal_, JournalDatagram(entry));
    if (error == 0) return "";
    if (!IsNobodyThere(error)) {
        return "the journal cannot be written: " + journal_.path + ": " + std::strerror(error);
    }
    const std::time_t now = std::time(nullptr);
    std::tm time{};
    localtime_r(&now, &time);
    const int syslog_error = SendBy(syslog_, SyslogLine(entry, time));
    if (syslog_error == 0) return "";
    return "there is neither a journal nor a syslog: " + journal_.path + ": " +
           std::strerror(error) + "; " + syslog_.path + ": " + std::strerror(syslog_error);
}

}  // namespace hxservice

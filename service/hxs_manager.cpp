#include "service/hxs_manager.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <string_view>
#include <system_error>

#include "common/terminal_text.h"
#include "descriptor.h"

namespace hxservice {

namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using vexortools::Duration;

// systemd's interface is a few variables and a socket. Its library does the same and loads five
// others for compression and cryptography, a tenth of the memory that this service may take.

std::string_view Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::optional<std::uint64_t> NumberIn(const char* name) {
    const std::string_view text = Variable(name);
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

bool IsThisProcess(std::optional<std::uint64_t> process) {
    return process == static_cast<std::uint64_t>(getpid());
}

// Half of the limit, as systemd advises; a day where nobody watches.
Duration LongestSilenceOfWatchdog() {
    const std::optional<std::uint64_t> limit_us = NumberIn("WATCHDOG_USEC");
    constexpr std::uint64_t kLongest = std::uint64_t{1} << 50;  // as a duration
    const bool is_meant =
        Variable("WATCHDOG_PID").empty() || IsThisProcess(NumberIn("WATCHDOG_PID"));
    if (!limit_us || *limit_us == 0 || *limit_us > kLongest || !is_meant) {
        return std::chrono::hours(24);
    }
    return std::max(duration_cast<Duration>(microseconds(*limit_us)) / 2, Duration(1));
}

// A manager that has gone is no reason to end.
void Send(const std::string& text) {
    const std::string_view path = Variable("NOTIFY_SOCKET");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const bool is_address = path.starts_with('/') || path.starts_with('@');
    if (!is_address || path.size() >= sizeof address.sun_path) return;
    std::memcpy(address.sun_path, path.data(), path.size());
    if (path.starts_with('@')) address.sun_path[0] = '\0';  // one without a file
    const Descriptor out(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!out.IsOpen()) return;
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    static_cast<void>(sendto(out.Get(), text.data(), text.size(), MSG_NOSIGNAL,
                             reinterpret_cast<const sockaddr*>(&address), size));
}

}  // namespace

int SocketOfManager() {
    constexpr int kFirst = 3;  // after the standard ones
    const bool is_there =
        IsThisProcess(NumberIn("LISTEN_PID")) && NumberIn("LISTEN_FDS").value_or(0) != 0;
    if (!is_there || fcntl(kFirst, F_SETFD, FD_CLOEXEC) != 0) return -1;
    return kFirst;
}

Systemd::Systemd() : longest_silence_(LongestSilenceOfWatchdog()) {}

void Systemd::Ready() { Send("READY=1"); }

// systemd tells by the time whether a READY belongs to this reload.
void Systemd::Reloading() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto since_boot = duration_cast<microseconds>(std::chrono::seconds(now.tv_sec) +
                                                        std::chrono::nanoseconds(now.tv_nsec));
    Send("RELOADING=1\nMONOTONIC_USEC=" + std::to_string(since_boot.count()));
}

void Systemd::Stopping() { Send("STOPPING=1"); }

void Systemd::Tell(const std::string& status) { Send("STATUS=" + vexortools::Printable(status)); }

void Systemd::Alive() { Send("WATCHDOG=1"); }

}  // namespace hxservice

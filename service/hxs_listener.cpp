#include "service/hxs_listener.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/failure.h"
#include "service/hxs_manager.h"
#include "service/hxs_scrape.h"

namespace hxservice {

namespace {

using vexortools::Duration;

constexpr Duration kPatience = std::chrono::seconds(5);
constexpr Duration kUntilAcceptedAgain = std::chrono::seconds(1);

struct Address {
    sockaddr_storage bytes{};
    socklen_t size = 0;
};

std::optional<std::uint16_t> PortOf(std::string_view text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    return error == std::errc() && stop == end ? std::optional(port) : std::nullopt;
}

// Of this machine alone: whoever is to ask from elsewhere needs something that asks for a password.
std::optional<Address> LoopbackOf(const std::string& listen) {
    const std::size_t colon = listen.rfind(':');
    if (colon == std::string::npos) return std::nullopt;
    const std::optional<std::uint16_t> port = PortOf(std::string_view(listen).substr(colon + 1));
    const std::string host = listen.substr(0, colon);
    if (!port) return std::nullopt;
    Address address;
    sockaddr_in four{};
    constexpr std::uint32_t kLoopbackNet = 127;
    if (inet_pton(AF_INET, host.c_str(), &four.sin_addr) == 1) {
        if (ntohl(four.sin_addr.s_addr) >> 24 != kLoopbackNet) return std::nullopt;
        four.sin_family = AF_INET;
        four.sin_port = htons(*port);
        std::memcpy(&address.bytes, &four, sizeof four);
        address.size = sizeof four;
        return address;
    }
    if (host != "[::1]") return std::nullopt;
    sockaddr_in6 six{};
    six.sin6_family = AF_INET6;
    six.sin6_addr = in6addr_loopback;
    six.sin6_port = htons(*port);
    std::memcpy(&address.bytes, &six, sizeof six);
    address.size = sizeof six;
    return address;
}

[[noreturn]] void Fail() { throw std::system_error(errno, std::generic_category()); }

// A copy: the next try needs it again.
::Descriptor SocketOfSystemd() {
    const int of_systemd = SocketOfManager();
    if (of_systemd < 0) {
        throw std::system_error(ENOENT, std::generic_category(), "systemd has opened no socket");
    }
    int is_listening = 0;
    socklen_t size = sizeof is_listening;
    if (getsockopt(of_systemd, SOL_SOCKET, SO_ACCEPTCONN, &is_listening, &size) != 0) Fail();
    if (is_listening == 0) {
        throw std::system_error(EINVAL, std::generic_category(), "the socket of systemd");
    }
    ::Descriptor copy(fcntl(of_systemd, F_DUPFD_CLOEXEC, of_systemd + 1));
    if (!copy.IsOpen()) Fail();
    // A connection that has gone before it is accepted must not hold the loop.
    const int flags = fcntl(copy.Get(), F_GETFL);
    if (flags < 0 || fcntl(copy.Get(), F_SETFL, flags | O_NONBLOCK) != 0) Fail();
    return copy;
}

::Descriptor SocketAt(const Address& address) {
    ::Descriptor made(
        socket(address.bytes.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!made.IsOpen()) Fail();
    // Connections of an earlier process may still be ending.
    const int yes = 1;
    static_cast<void>(setsockopt(made.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes));
    if (bind(made.Get(), reinterpret_cast<const sockaddr*>(&address.bytes), address.size) != 0 ||
        listen(made.Get(), static_cast<int>(Listener::kMostConnections)) != 0) {
        Fail();
    }
    return made;
}

bool SetInterest(int events, int descriptor, int how, std::uint32_t what) {
    epoll_event event{};
    event.events = what;
    event.data.fd = descriptor;
    return epoll_ctl(events, how, descriptor, &event) == 0;
}

}  // namespace

std::optional<std::string> WhyNoListenAddress(const std::string& listen) {
    if (listen == kListenOfSystemd || LoopbackOf(listen)) return std::nullopt;
    return "must be an address of this machine alone with a port, such as \"127.0.0.1:9834\" or "
           "\"[::1]:9834\", or \"systemd\"";
}

Listener::Listener(std::string listen, Log& log)
    : listen_(std::move(listen)),
      trouble_(log, "the metrics can be asked for again"),
      events_(epoll_create1(EPOLL_CLOEXEC)) {
    if (!events_.IsOpen()) {
        throw vexortools::Failure(
            vexortools::Exit::kUnavailable,
            std::string("the metrics cannot be offered: ") + std::strerror(errno));
    }
}

void Listener::Open() {
    try {
        const std::optional<Address> address = LoopbackOf(listen_);
        ::Descriptor opened = address ? SocketAt(*address) : SocketOfSystemd();
        if (!SetInterest(events_.Get(), opened.Get(), EPOLL_CTL_ADD, EPOLLIN)) Fail();
        listening_ = std::move(opened);
        trouble_.End();
    } catch (const std::system_error& error) {
        trouble_.Say("the metrics cannot be asked for at " + listen_ + ": " + error.what());
    }
}

void Listener::Publish(const std::string& metrics) {
    metrics_ = std::make_shared<const std::string>(metrics);
    open_metrics_.reset();
    if (!listening_.IsOpen()) Open();
}

unsigned Listener::Port() const {
    Address address;
    address.size = sizeof address.bytes;
    if (!listening_.IsOpen() ||
        getsockname(listening_.Get(), reinterpret_cast<sockaddr*>(&address.bytes), &address.size) !=
            0 ||
        address.bytes.ss_family != AF_INET) {
        return 0;
    }
    sockaddr_in four{};
    std::memcpy(&four, &address.bytes, sizeof four);
    return ntohs(four.sin_port);
}

void Listener::Accept(Duration now) {
    for (;;) {
        ::Descriptor accepted(
            accept4(listening_.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!accepted.IsOpen()) {
            if (errno != EMFILE && errno != ENFILE && errno != ENOBUFS && errno != ENOMEM) return;
            if (SetInterest(events_.Get(), listening_.Get(), EPOLL_CTL_MOD, 0)) {
                accepts_again_ = now + kUntilAcceptedAgain;
            }
            return;
        }
        if (connections_.size() >= kMostConnections) continue;  // it is closed
        const int id = accepted.Get();
        if (!SetInterest(events_.Get(), id, EPOLL_CTL_ADD, EPOLLIN)) continue;
        Connection& connection = connections_[id];
        connection.socket = std::move(accepted);
        connection.end = now + kPatience;
    }
}

void Listener::Answer(Connection& connection) {
    const bool is_too_long = connection.in.size() > kLongestRequest;
    Scrape scrape = is_too_long ? Scrape{.status = 431} : ParseScrape(connection.in);
    if (scrape.status == 200 && !metrics_) scrape.status = 503;
    if (scrape.status != 200) {
        connection.body = std::make_shared<const std::string>(ReasonOf(scrape.status) + "\n");
    } else if (scrape.format == MetricFormat::kOpenMetrics) {
        if (!open_metrics_) {
            open_metrics_ = std::make_shared<const std::string>(OpenMetricsOf(*metrics_));
        }
        connection.body = open_metrics_;
    } else {
        connection.body = metrics_;
    }
    connection.head = HeadOf(scrape, connection.body->size());
    if (scrape.is_head) connection.body.reset();
    connection.is_asked = true;
}

void Listener::Read(Connection& connection) {
    std::array<char, 4096> bytes{};
    const ssize_t count = recv(connection.socket.Get(), bytes.data(), bytes.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count <= 0) {
        connection.is_over = true;
        return;
    }
    connection.in.append(bytes.data(), static_cast<std::size_t>(count));
    const bool has_ended = connection.in.find("\r\n\r\n") != std::string::npos ||
                           connection.in.find("\n\n") != std::string::npos;
    if (!has_ended && connection.in.size() <= kLongestRequest) return;
    Answer(connection);
    Write(connection);
    if (!connection.is_over &&
        !SetInterest(events_.Get(), connection.socket.Get(), EPOLL_CTL_MOD, EPOLLOUT)) {
        connection.is_over = true;
    }
}

void Listener::Write(Connection& connection) {
    const std::string_view body = connection.body ? *connection.body : std::string_view();
    while (connection.sent < connection.head.size() + body.size()) {
        const bool is_head = connection.sent < connection.head.size();
        const std::string_view left =
            is_head ? std::string_view(connection.head).substr(connection.sent)
                    : body.substr(connection.sent - connection.head.size());
        const ssize_t count = send(connection.socket.Get(), left.data(), left.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && errno == EAGAIN) return;
        if (count <= 0) break;
        connection.sent += static_cast<std::size_t>(count);
    }
    connection.is_over = true;
}

void Listener::Serve(Duration now) {
    if (accepts_again_ && now >= *accepts_again_ &&
        SetInterest(events_.Get(), listening_.Get(), EPOLL_CTL_MOD, EPOLLIN)) {
        accepts_again_.reset();
    }
    std::array<epoll_event, kMostConnections + 1> ready{};
    const int count = epoll_wait(events_.Get(), ready.data(), static_cast<int>(ready.size()), 0);
    for (int index = 0; index < count; ++index) {
        const int id = ready[static_cast<std::size_t>(index)].data.fd;
        const auto found = connections_.find(id);
        if (found == connections_.end()) {
            if (id == listening_.Get()) Accept(now);
        } else if (found->second.is_asked) {
            Write(found->second);
        } else {
            Read(found->second);
        }
    }
    std::erase_if(connections_,
                  [&](const auto& each) { return each.second.is_over || now >= each.second.end; });
}

std::optional<Duration> Listener::Due() const {
    std::optional<Duration> due = accepts_again_;
    for (const auto& [id, connection] : connections_) {
        due = due ? std::min(*due, connection.end) : connection.end;
    }
    return due;
}

}  // namespace hxservice

#include "service/hxs_socket.h"

#include <grp.h>
#include <pwd.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>

#include "common/failure.h"

namespace hxservice {

namespace {

using vexortools::Duration;

constexpr char kGroup[] = "hxraid";
constexpr std::size_t kLongestRequest = 4096;
constexpr std::size_t kMostConnections = 16;
constexpr Duration kPatience = std::chrono::seconds(5);
constexpr Duration kUntilAcceptedAgain = std::chrono::seconds(1);

[[noreturn]] void Fail(const std::string& path, const char* what) {
    throw vexortools::Failure(vexortools::Exit::kUnavailable,
                              path + " " + what + ": " + std::strerror(errno));
}

// From the local file alone: a directory service that does not answer would hold the loop.
std::string NameOfUser(uid_t user) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/etc/passwd", "re"), std::fclose);
    for (const passwd* each = nullptr; file && (each = fgetpwent(file.get())) != nullptr;) {
        if (each->pw_uid == user) return each->pw_name;
    }
    return "user " + std::to_string(user);
}

// The mode of the socket lets only root and the group connect; it is asked again here, because a
// socket that has moved or whose folder is shared with a container may be open to others.
Caller CallerOf(int socket, const std::optional<gid_t>& group) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return {};
    Caller caller{NameOfUser(peer.uid), peer.uid == 0 || peer.uid == geteuid()};
    if (!group) return caller;
    constexpr std::size_t kMostGroups = 65536;
    std::vector<gid_t> groups(64);
    size = static_cast<socklen_t>(groups.size() * sizeof(gid_t));
    if (getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) {
        if (errno != ERANGE || size > kMostGroups * sizeof(gid_t)) size = 0;
        groups.resize(size / sizeof(gid_t));
        if (getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) size = 0;
    }
    groups.resize(size / sizeof(gid_t));
    groups.push_back(peer.gid);
    caller.may_change = caller.may_change || std::ranges::find(groups, *group) != groups.end();
    return caller;
}

std::optional<gid_t> GroupOfService() {
    // As with the users. Besides, a directory service's modules would stay in memory.
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/etc/group", "re"), std::fclose);
    for (const group* each = nullptr; file && (each = fgetgrent(file.get())) != nullptr;) {
        if (std::strcmp(each->gr_name, kGroup) == 0) return each->gr_gid;
    }
    return std::nullopt;
}

}  // namespace

Socket::Socket(const std::string& path)
    : path_(path),
      listening_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)),
      events_(epoll_create1(EPOLL_CLOEXEC)) {
    if (!listening_.IsOpen() || !events_.IsOpen()) Fail(path, "cannot be made");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        Fail(path, "cannot be made");
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    // The service's lock is held, so that nobody listens there any more.
    unlink(path.c_str());
    const mode_t old = umask(0117);
    const int bound =
        bind(listening_.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    umask(old);
    if (bound != 0) Fail(path, "cannot be made");
    group_ = GroupOfService();
    if (group_ && geteuid() == 0 && chown(path.c_str(), 0, *group_) != 0) {
        Fail(path, "cannot be given to the group hxraid");
    }
    if (listen(listening_.Get(), static_cast<int>(kMostConnections)) != 0) {
        Fail(path, "cannot be listened on");
    }
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = listening_.Get();
    if (epoll_ctl(events_.Get(), EPOLL_CTL_ADD, listening_.Get(), &event) != 0) {
        Fail(path, "cannot be watched");
    }
}

Socket::~Socket() { unlink(path_.c_str()); }

bool Socket::ListenFor(std::uint32_t events) {
    epoll_event event{};
    event.events = events;
    event.data.fd = listening_.Get();
    return epoll_ctl(events_.Get(), EPOLL_CTL_MOD, listening_.Get(), &event) == 0;
}

void Socket::Accept(Duration now) {
    for (;;) {
        ::Descriptor accepted(
            accept4(listening_.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!accepted.IsOpen()) {
            const bool has_no_room =
                errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
            if (has_no_room && ListenFor(0)) accepts_again_ = now + kUntilAcceptedAgain;
            return;
        }
        if (connections_.size() >= kMostConnections) continue;  // it is closed
        const int id = accepted.Get();
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.fd = id;
        if (epoll_ctl(events_.Get(), EPOLL_CTL_ADD, id, &event) != 0) continue;
        Connection& connection = connections_[id];
        connection.caller = CallerOf(id, group_);
        connection.socket = std::move(accepted);
        connection.end = now + kPatience;
    }
}

void Socket::Read(Connection& connection) {
    std::array<char, kLongestRequest> bytes{};
    const ssize_t count = recv(connection.socket.Get(), bytes.data(), bytes.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    // What comes after the request, and its end too, is of no interest while the answer goes out.
    if (count <= 0) {
        connection.is_over = true;
        return;
    }
    if (connection.is_asked) return;
    connection.in.append(bytes.data(), static_cast<std::size_t>(count));
    if (connection.in.size() > kLongestRequest) connection.is_over = true;
}

void Socket::Write(Connection& connection) {
    while (!connection.out.empty()) {
        const ssize_t count = send(connection.socket.Get(), connection.out.data(),
                                   connection.out.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && errno == EAGAIN) return;
        if (count <= 0) break;
        connection.out.erase(0, static_cast<std::size_t>(count));
    }
    connection.is_over = true;
}

std::vector<Asked> Socket::TakeRequests(Duration now) {
    if (accepts_again_ && now >= *accepts_again_ && ListenFor(EPOLLIN)) accepts_again_.reset();
    std::vector<Asked> asked;
    std::array<epoll_event, kMostConnections + 1> ready{};
    const int count = epoll_wait(events_.Get(), ready.data(), static_cast<int>(ready.size()), 0);
    for (int index = 0; index < count; ++index) {
        const epoll_event& event = ready[static_cast<std::size_t>(index)];
        const int id = event.data.fd;
        if (id == listening_.Get()) {
            Accept(now);
            continue;
        }
        const auto found = connections_.find(id);
        if (found == connections_.end()) continue;
        Connection& connection = found->second;
        if ((event.events & EPOLLOUT) != 0) Write(connection);
        if ((event.events & ~static_cast<unsigned>(EPOLLOUT)) != 0) Read(connection);
        const std::size_t end = connection.in.find('\n');
        if (connection.is_asked || connection.is_over || end == std::string::npos) continue;
        connection.is_asked = true;
        asked.push_back({id, connection.in.substr(0, end), connection.caller});
    }
    std::erase_if(connections_,
                  [&](const auto& each) { return each.second.is_over || now >= each.second.end; });
    return asked;
}

void Socket::Answer(int from, const std::string& text) {
    const auto found = connections_.find(from);
    if (found == connections_.end()) return;
    Connection& connection = found->second;
    connection.out = text;
    Write(connection);
    epoll_event event{};
    event.events = EPOLLIN | EPOLLOUT;
    event.data.fd = from;
    if (connection.is_over || epoll_ctl(events_.Get(), EPOLL_CTL_MOD, from, &event) != 0) {
        connections_.erase(found);
    }
}

std::optional<Duration> Socket::Due() const {
    std::optional<Duration> due = accepts_again_;
    for (const auto& [id, connection] : connections_) {
        due = due ? std::min(*due, connection.end) : connection.end;
    }
    return due;
}

}  // namespace hxservice

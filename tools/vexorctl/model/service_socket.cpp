#include "model/service_socket.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "common/read_file.h"
#include "model/exit_code.h"
#include "model/failure.h"

namespace vexorctl {

namespace {

constexpr char kSocket[] = "/run/hxraid/hxraidsvc.sock";
constexpr char kSavedAnswers[] = "/var/lib/hxraid/alerts.json";
constexpr std::size_t kMostAnswer = std::size_t{16} << 20;
constexpr int kPatience = 60;  // seconds: a round of the service may take as long

class Connection {
public:
    Connection() : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~Connection() {
        if (socket_ >= 0) close(socket_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int Get() const { return socket_; }

private:
    int socket_;
};

std::string BelowRoot(const char* path) {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    return std::string(root == nullptr ? "" : root) + path;
}

[[noreturn]] void FailToReach(const std::string& path, int error) {
    const bool is_denied = error == EACCES || error == EPERM;
    throw Failure(is_denied ? Exit::kNotPermitted : Exit::kUnavailable,
                  "the event service cannot be asked: " + path + ": " + std::strerror(error) +
                      (is_denied ? "; root and members of the group hxraid may"
                                 : "; start it with: systemctl start hxraidsvc"));
}

void Connect(const Connection& connection, const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (connection.Get() < 0) FailToReach(path, errno);
    if (path.size() >= sizeof address.sun_path) FailToReach(path, ENAMETOOLONG);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    timeval patience{};
    patience.tv_sec = kPatience;
    for (const int each : {SO_RCVTIMEO, SO_SNDTIMEO}) {
        setsockopt(connection.Get(), SOL_SOCKET, each, &patience, sizeof patience);
    }
    if (connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
        0) {
        FailToReach(path, errno);
    }
}

void Send(const Connection& connection, std::string_view text, const std::string& path) {
    while (!text.empty()) {
        const ssize_t count = send(connection.Get(), text.data(), text.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) FailToReach(path, errno);
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::string Receive(const Connection& connection, const std::string& path) {
    std::string text;
    std::array<char, 4096> bytes{};
    while (text.find('\n') == std::string::npos && text.size() < kMostAnswer) {
        const ssize_t count = recv(connection.Get(), bytes.data(), bytes.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) FailToReach(path, errno == EAGAIN ? ETIMEDOUT : errno);
        if (count == 0) break;
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace

nlohmann::ordered_json AskService(const nlohmann::ordered_json& request) {
    const std::string path = BelowRoot(kSocket);
    const Connection connection;
    Connect(connection, path);
    const auto replace = nlohmann::ordered_json::error_handler_t::replace;
    Send(connection, request.dump(-1, ' ', false, replace) + "\n", path);
    auto answer =
        nlohmann::ordered_json::parse(Receive(connection, path), nullptr, /*exceptions=*/false);
    if (!answer.is_object() || !answer.contains("ok")) {
        throw Failure(Exit::kUnavailable, "the event service gave no answer that can be read");
    }
    if (answer["ok"] == true) return answer;
    throw Failure(Exit::kRefused, "the event service refuses: " + answer.value("error", "?"));
}

nlohmann::ordered_json RecallService() {
    try {
        auto answer = nlohmann::ordered_json::parse(
            vexortools::ReadFile(BelowRoot(kSavedAnswers).c_str(), vexortools::FileKind::kRegular,
                                 kMostAnswer),
            nullptr, /*allow_exceptions=*/false);
        const bool is_ours = answer.is_object() && answer.contains("as_of") &&
                             answer["as_of"].is_number_integer() &&
                             answer.value("schema", "") == "hxraidsvc-alerts/1";
        return is_ours ? answer : nullptr;
    } catch (const vexortools::FileError&) {
        return nullptr;
    }
}

}  // namespace vexorctl

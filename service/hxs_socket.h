// The Unix socket by which the running service is asked: a line of JSON each way, for root and the
// group hxraid. Every request is bounded in size and time.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "common/duration.h"
#include "descriptor.h"
#include "service/hxs_requests.h"

namespace hxservice {

struct Asked {
    int from = -1;
    std::string request;
    Caller caller;
};

/// Who asks the service.
class Callers {
public:
    virtual ~Callers() = default;
    /// The requests that are complete. Each must be answered.
    virtual std::vector<Asked> TakeRequests(vexortools::Duration now) = 0;
    virtual void Answer(int from, const std::string& text) = 0;
    /// When TakeRequests must be called at the latest.
    virtual std::optional<vexortools::Duration> Due() const = 0;
};

class Socket : public Callers {
public:
    /// Listens there; removes the socket that an earlier process has left. Throws
    /// vexortools::Failure.
    explicit Socket(const std::string& path);
    ~Socket() override;
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    std::vector<Asked> TakeRequests(vexortools::Duration now) override;
    void Answer(int from, const std::string& text) override;
    std::optional<vexortools::Duration> Due() const override;

    /// Readable when TakeRequests has something to do.
    int Descriptor() const { return events_.Get(); }

private:
    struct Connection {
        ::Descriptor socket;
        vexortools::Duration end{0};
        std::string in;
        std::string out;
        Caller caller;
        bool is_asked = false;
        bool is_over = false;
    };
    bool ListenFor(std::uint32_t events);
    void Accept(vexortools::Duration now);
    void Read(Connection& connection);
    static void Write(Connection& connection);

    std::string path_;
    ::Descriptor listening_;
    ::Descriptor events_;         // epoll
    std::optional<gid_t> group_;  // hxraid, where there is one
    std::map<int, Connection> connections_;
    // Nobody is accepted before: without a free descriptor the one who waits would keep it busy.
    std::optional<vexortools::Duration> accepts_again_;
};

}  // namespace hxservice

// Answers scrapes of the metrics by HTTP, from the last snapshot: no scrape asks a controller.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "common/duration.h"
#include "descriptor.h"
#include "service/hxs_log.h"

namespace hxservice {

/// Those who ask for metrics, as the loop sees them.
class Scrapers {
public:
    virtual ~Scrapers() = default;
    /// What is answered from now on.
    virtual void Publish(const std::string& metrics) = 0;
    /// Takes and answers what can be done without waiting.
    virtual void Serve(vexortools::Duration now) = 0;
    /// When Serve has something to do though nothing has arrived.
    virtual std::optional<vexortools::Duration> Due() const = 0;
};

/// The setting metrics.listen. "systemd": the socket that systemd has opened.
inline constexpr char kListenOfSystemd[] = "systemd";

/// Why it is no address to listen on; null when it is one.
std::optional<std::string> WhyNoListenAddress(const std::string& listen);

class Listener : public Scrapers {
public:
    static constexpr std::size_t kMostConnections = 8;
    static constexpr std::size_t kLongestRequest = 8192;

    /// Listens from the first Publish on. Where that fails the log says so and the next Publish
    /// tries again: events are collected without it. The log must outlive it.
    Listener(std::string listen, Log& log);

    void Publish(const std::string& metrics) override;
    void Serve(vexortools::Duration now) override;
    std::optional<vexortools::Duration> Due() const override;

    /// Becomes readable when Serve has something to do.
    int Descriptor() const { return events_.Get(); }
    /// The port it listens on; 0: on none.
    unsigned Port() const;

private:
    // From its acceptance to its end it has a few seconds, however it divides them.
    struct Connection {
        ::Descriptor socket;
        vexortools::Duration end{0};
        std::string in;
        std::string head;                         // of the answer
        std::shared_ptr<const std::string> body;  // null: not asked yet, or none
        std::size_t sent = 0;                     // of both
        bool is_asked = false;
        bool is_over = false;
    };

    void Open();
    void Accept(vexortools::Duration now);
    void Read(Connection& connection);
    void Answer(Connection& connection);
    void Write(Connection& connection);

    std::string listen_;
    Lasting trouble_;
    ::Descriptor events_;
    ::Descriptor listening_;
    std::shared_ptr<const std::string> metrics_;       // null: no round has ended yet
    std::shared_ptr<const std::string> open_metrics_;  // of the same; made when it is asked for
    std::map<int, Connection> connections_;
    // Nothing is accepted before: without a free descriptor the one who waits would keep it busy.
    std::optional<vexortools::Duration> accepts_again_;
};

}  // namespace hxservice

// What the service manager is told: systemd, by its notification socket.
#pragma once

#include <string>

#include "common/duration.h"

namespace hxservice {

class Manager {
public:
    virtual ~Manager() = default;
    /// The service works, also after Reloading.
    virtual void Ready() = 0;
    virtual void Reloading() = 0;
    virtual void Stopping() = 0;
    /// One line for people, shown by "systemctl status".
    virtual void Tell(const std::string& status) = 0;
    /// The loop still runs.
    virtual void Alive() = 0;
    /// The longest time between two calls of Alive.
    virtual vexortools::Duration LongestSilence() const = 0;
};

/// Does nothing where no manager has started the service.
class Systemd : public Manager {
public:
    Systemd();
    void Ready() override;
    void Reloading() override;
    void Stopping() override;
    void Tell(const std::string& status) override;
    void Alive() override;
    vexortools::Duration LongestSilence() const override { return longest_silence_; }

private:
    vexortools::Duration longest_silence_;
};

/// The first of the sockets that the manager has opened for this process; -1: it has opened none.
/// It stays the manager's: whoever accepts from it takes a copy.
int SocketOfManager();

}  // namespace hxservice

// Where the service keeps what it remembers and publishes what it found.
#pragma once

#include <string>

#include "service/hxs_log.h"
#include "service/hxs_state_file.h"

namespace hxservice {

class Keeper {
public:
    virtual ~Keeper() = default;
    /// Saves the state, and the answers for those who ask later.
    virtual void Save(const Saved& saved) = 0;
    /// Replaces the published status.
    virtual void Publish(const std::string& status) = 0;
    /// Replaces the metrics. They stay when the service ends: their age tells that it has.
    virtual void PublishMetrics(const std::string& metrics) = 0;
    /// Nobody watches from now on.
    virtual void Withdraw() = 0;
};

/// Files. A failure is told in the log while it lasts, and ends nothing.
class FileKeeper : public Keeper {
public:
    /// The references must outlive the keeper. Without a path for the metrics none are written.
    FileKeeper(StateFile& state, std::string alerts_path, std::string status_path,
               std::string metrics_path, Log& log);
    void Save(const Saved& saved) override;
    void Publish(const std::string& status) override;
    void PublishMetrics(const std::string& metrics) override;
    void Withdraw() override;

private:
    StateFile& state_;
    std::string alerts_path_;
    std::string status_path_;
    std::string metrics_path_;
    Lasting saving_;
    Lasting publishing_;
    Lasting measuring_;
};

}  // namespace hxservice

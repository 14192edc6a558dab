#include "service/hxs_keeper.h"

#include <unistd.h>

#include <utility>

#include "common/replace_file.h"

namespace hxservice {

namespace {

constexpr mode_t kStatusMode = 0644;

}  // namespace

FileKeeper::FileKeeper(StateFile& state, std::string alerts_path, std::string status_path,
                       std::string metrics_path, Log& log)
    : state_(state),
      alerts_path_(std::move(alerts_path)),
      status_path_(std::move(status_path)),
      metrics_path_(std::move(metrics_path)),
      saving_(log, "the state can be saved again"),
      publishing_(log, "the status can be published again"),
      measuring_(log, "the metrics can be written again") {}

void FileKeeper::Save(const Saved& saved) {
    try {
        state_.Save(saved);
        vexortools::ReplaceFile(alerts_path_, saved.answers, kStatusMode);
        saving_.End();
    } catch (const hxsqlite::StoreError& error) {
        saving_.Say(error.what());
    } catch (const vexortools::FileError& error) {
        saving_.Say(alerts_path_ + " cannot be written: " + error.what());
    }
}

void FileKeeper::Publish(const std::string& status) {
    try {
        vexortools::ReplaceFile(status_path_, status, kStatusMode);
        publishing_.End();
    } catch (const vexortools::FileError& error) {
        publishing_.Say(status_path_ + " cannot be written: " + error.what());
    }
}

void FileKeeper::PublishMetrics(const std::string& metrics) {
    if (metrics_path_.empty()) return;
    const std::string folder = metrics_path_.substr(0, metrics_path_.rfind('/'));
    if (access(folder.c_str(), F_OK) != 0) {
        measuring_.Say(folder +
                       " is not there: no metrics are written. It is the folder of "
                       "prometheus-node-exporter");
        return;
    }
    try {
        vexortools::ReplaceFile(metrics_path_, metrics, kStatusMode);
        measuring_.End();
    } catch (const vexortools::FileError& error) {
        measuring_.Say(metrics_path_ + " cannot be written: " + error.what());
    }
}

void FileKeeper::Withdraw() { unlink(status_path_.c_str()); }

}  // namespace hxservice

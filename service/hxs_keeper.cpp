#include "service/hxs_keeper.h"

#include <unistd.h>

#include <utility>

#include "common/replace_file.h"

namespace hxservice {

namespace {

constexpr mode_t kStatusMode = 0644;

}  // namespace

FileKeeper::FileKeeper(StateFile& state, std::string status_path, Log& log)
    : state_(state),
      status_path_(std::move(status_path)),
      saving_(log, "the state can be saved again"),
      publishing_(log, "the status can be published again") {}

void FileKeeper::Save(const Saved& saved) {
    try {
        state_.Save(saved);
        saving_.End();
    } catch (const hxsqlite::StoreError& error) {
        saving_.Say(error.what());
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

void FileKeeper::Withdraw() { unlink(status_path_.c_str()); }

}  // namespace hxservice

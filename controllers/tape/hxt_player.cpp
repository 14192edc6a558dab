#include "tape/hxt_player.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "descriptor.h"
#include "tape/hxt_recorder.h"

namespace hxtape {

Player::Player(const std::string& tape, std::string folder)
    : tape_(ReadTape(tape)), folder_(std::move(folder)) {
    for (const TapeCall& call : tape_.calls) {
        const auto [place, is_new] = sequences_.try_emplace({call.function, call.request});
        if (is_new) place->second.number = sequences_.size() - 1;
        place->second.calls.push_back(&call);
    }
}

const TapeCall* Player::Next(const std::string& function, const std::string& request,
                             Effect effect) {
    const auto found = sequences_.find({function, request});
    if (found == sequences_.end()) return nullptr;
    Sequence& sequence = found->second;
    const std::uint32_t position = TakePosition(sequence);
    if (position < sequence.calls.size()) return sequence.calls[position];
    return effect == Effect::kReads ? sequence.calls.back() : nullptr;
}

std::uint32_t Player::TakePosition(Sequence& sequence) const {
    if (folder_.empty()) return sequence.given++;
    const std::string path = folder_ + kPositionsFile;
    const Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    const auto at = static_cast<off_t>(sequence.number * sizeof(std::uint32_t));
    std::uint32_t position = 0;  // also where the file ends before it
    if (!file.IsOpen() || flock(file.Get(), LOCK_EX) != 0 ||
        pread(file.Get(), &position, sizeof position, at) < 0) {
        throw TapeError(path + ": " + std::strerror(errno));
    }
    const std::uint32_t next = std::min(position, UINT32_MAX - 1) + 1;
    if (pwrite(file.Get(), &next, sizeof next, at) != sizeof next) {
        throw TapeError(path + ": " + std::strerror(errno));
    }
    return position;
}

void Player::Miss(const std::string& function, const std::string& request) {
    if (folder_.empty()) return;
    AppendWhole(folder_ + kMissedFile, function + " " + HexOf(request) + "\n");
}

}  // namespace hxtape

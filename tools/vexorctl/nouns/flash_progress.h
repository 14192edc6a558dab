// The progress of an image on its way between a file and the flash.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace vexorctl {

/// Bytes per piece; only the last piece of an image may be shorter.
inline constexpr std::uint64_t kFlashPieceBytes = 32768;

/// While it lives, a terminal on standard error shows how many pieces have gone through `path`;
/// anything else shows nothing. The library moves the whole file in one call, and how far it is
/// shows in the position at which this process has the file open.
///
/// Ctrl-C does not cut an image in half: from then on it is only noted.
class TransferProgress {
public:
    /// `pieces` is 0 when their number is not known.
    TransferProgress(std::string label, std::string path, std::uint64_t pieces);
    ~TransferProgress();
    TransferProgress(const TransferProgress&) = delete;
    TransferProgress& operator=(const TransferProgress&) = delete;

private:
    struct Watcher;
    std::unique_ptr<Watcher> watcher_;
};

}  // namespace vexorctl

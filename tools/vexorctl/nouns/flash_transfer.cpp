#include "nouns/flash_transfer.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "common/read_file.h"
#include "hxraid.h"
#include "library_fields.h"
#include "model/failure.h"
#include "nouns/flash_progress.h"

namespace vexorctl {

namespace {

using Transfer = calls::HX_Flash_Option;

// The longest path that the library takes; it refuses the command with a longer one.
constexpr std::size_t kMaxPath = 255;

// Most images fit the first; each further try moves the whole image again.
constexpr std::uint64_t kFirstRoom = 1 << 20;
constexpr std::uint64_t kGrowth = 8;

constexpr mode_t kImageMode = 0666;  // as far as the umask lets it

Command TransferCommand(const FlashPlace& place, unsigned action, const std::string& path) {
    if (path.size() > kMaxPath) throw UsageError("the path of the file is too long");
    return Request<Transfer>{{Transfer::Actions, action},
                             {Transfer::AdapterID, place.adapter.adapter},
                             {Transfer::Type, place.image},
                             {Transfer::filepath, path}};
}

[[noreturn]] void ThrowNotWritten(const std::string& path, const FileError& error) {
    switch (error.error) {
        case EACCES:
        case EPERM:
        case EROFS:
            throw Failure(Exit::kNotPermitted, path + ": cannot be written: " + error.what());
        case EEXIST:
            throw Failure(Exit::kRefused, path + ": is there already; --force replaces it");
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
        case EIO:
            throw Failure(Exit::kRefused,
                          path + ": cannot be written: " + error.what() + "; nothing was saved");
        default:
            throw Failure(Exit::kUsage, path + ": cannot be written: " + error.what());
    }
}

std::string BytesOf(const std::string& path) {
    return ReadFile(path.c_str(), FileKind::kRegular, kMostImageBytes);
}

void Receive(const Send& send, const FlashPlace& place, const std::string& path) {
    const TransferProgress progress(place.adapter.Text() + " flash", path, 0);
    send(ReadCommand(place, path));
}

// The library does not tell a write that failed. What one was missing in shows in a second file:
// there is less room for it, not more, and a disk seldom fails twice at the same byte.
void RequireSecond(const Send& send, const FlashPlace& place, const NewFile& first,
                   const std::string& path) {
    const NewFile second(path);
    Receive(send, place, second.Path());
    if (BytesOf(first.Path()) != BytesOf(second.Path())) throw FileError(EIO);
}

// Receives the image into the file. Room is reserved before, so that no write can
// fail for want of it; as long as the image fills all of it, there may be more.
void ReceiveWhole(const Send& send, const FlashPlace& place, const NewFile& file) {
    for (std::uint64_t room = kFirstRoom;; room = std::min(room * kGrowth, kMostImageBytes + 1)) {
        const bool reserved = file.Reserve(room);
        Receive(send, place, file.Path());
        if (file.Size() == 0) throw FileError(EIO);
        if (!reserved || file.Size() < room) return;
        if (room > kMostImageBytes) throw FileError(EFBIG);
    }
}

}  // namespace

Command WriteCommand(const FlashPlace& place, const std::string& path) {
    return TransferCommand(place, HX_FLASH_WRITE, path);
}

Command ReadCommand(const FlashPlace& place, const std::string& path) {
    return TransferCommand(place, HX_FLASH_READ, path);
}

void RefuseExisting(const std::string& path) {
    struct stat found {};
    if (lstat(path.c_str(), &found) == 0) ThrowNotWritten(path, FileError(EEXIST));
}

void SaveImage(const Send& send, const FlashPlace& place, const std::string& path,
               Existing existing) {
    try {
        const NewFile file(path);
        ReceiveWhole(send, place, file);
        RequireSecond(send, place, file, path);
        file.Put(existing, kImageMode);
    } catch (const FileError& error) {
        ThrowNotWritten(path, error);
    }
}

void CompareWithFlash(const Send& send, const FlashPlace& place, const std::string& path) {
    const std::string adapter = place.adapter.Text();
    const std::string written = adapter + ": " + path + " was written, but ";
    const std::string advice = "; the image in the flash is not to be relied on: write it again";
    std::string sent;
    std::string found;
    try {
        const std::string copy = std::filesystem::temp_directory_path() / "image";
        const NewFile file(copy);
        ReceiveWhole(send, place, file);
        sent = BytesOf(path);
        found = BytesOf(file.Path());
    } catch (const FileError& error) {
        throw Failure(Exit::kRefused,
                      written + "it could not be compared: " + error.what() + advice);
    } catch (const Failure& refused) {
        throw Failure(refused.exit, written + "cannot be read back: " + refused.what() + advice,
                      refused.fault);
    }
    if (sent == found) return;
    const auto at = std::ranges::mismatch(sent, found).in1 - sent.begin();
    throw Failure(Exit::kRefused, written + "what is read back differs from byte " +
                                      std::to_string(at) + " on (" + std::to_string(found.size()) +
                                      " of " + std::to_string(sent.size()) + " bytes)" + advice);
}

}  // namespace vexorctl

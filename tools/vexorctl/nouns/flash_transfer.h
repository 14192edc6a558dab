// Images on their way between files and the flash, and what makes sure that they arrived.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "common/address.h"
#include "common/replace_file.h"
#include "model/ask_controller.h"

namespace vexorctl {

/// Sends a command; throws Failure when it is refused.
using Send = std::function<void(const Command&)>;

/// One image in the flash of one adapter.
struct FlashPlace {
    Address adapter;
    std::uint64_t image;
};

/// The most that the library moves: pieces have numbers of 16 bits.
inline constexpr std::uint64_t kMostImageBytes = 65536 * std::uint64_t{32768};

/// The command that writes the file into the flash, or the image in the flash into the file. Throws
/// UsageError for a path that the library cannot take.
Command WriteCommand(const FlashPlace& place, const std::string& path);
Command ReadCommand(const FlashPlace& place, const std::string& path);

/// Throws Failure when there is something at the path that is to be kept.
void RefuseExisting(const std::string& path);

/// Saves the image to the file, all of it or nothing: the library does not tell when it could not
/// write, so that its file is made beside and checked. Throws Failure.
void SaveImage(const Send& send, const FlashPlace& place, const std::string& path,
               vexortools::Existing existing);

/// Reads the image back that was written from the file, and compares. Throws Failure.
void CompareWithFlash(const Send& send, const FlashPlace& place, const std::string& path);

}  // namespace vexorctl

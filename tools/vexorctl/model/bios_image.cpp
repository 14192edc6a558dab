#include "model/bios_image.h"

#include <cstddef>
#include <cstdio>

namespace vexorctl {

namespace {

// A BIOS image is an option ROM: 55 AA, its length in units of 512 bytes, the subsystem of its
// adapter at byte 32, and bytes whose sum is a multiple of 256.
constexpr std::size_t kHeaderSize = 64;
constexpr std::size_t kLengthAt = 2;
constexpr std::size_t kSubsystemAt = 32;
constexpr std::size_t kUnit = 512;

unsigned ByteAt(std::string_view image, std::size_t at) {
    return static_cast<unsigned char>(image[at]);
}

std::uint64_t WordAt(std::string_view image, std::size_t at) {
    return ByteAt(image, at) | ByteAt(image, at + 1) << 8;
}

}  // namespace

std::string Subsystem::Text() const {
    char text[40];
    std::snprintf(text, sizeof text, "%04llX:%04llX", static_cast<unsigned long long>(vendor),
                  static_cast<unsigned long long>(device));
    return text;
}

std::optional<std::string> WhyNoBiosImage(std::string_view image) {
    if (image.size() < kHeaderSize) {
        return "has " + std::to_string(image.size()) + " bytes, and the header of a BIOS image " +
               std::to_string(kHeaderSize);
    }
    if (ByteAt(image, 0) != 0x55 || ByteAt(image, 1) != 0xAA) {
        return "does not begin with 55 AA, as BIOS images do";
    }
    return std::nullopt;
}

std::optional<std::string> WhyNotWhole(std::string_view image) {
    const std::size_t length = ByteAt(image, kLengthAt) * kUnit;
    if (image.size() != length) {
        return "says that it has " + std::to_string(length) + " bytes, and has " +
               std::to_string(image.size());
    }
    unsigned sum = 0;
    for (std::size_t at = 0; at < image.size(); ++at) sum += ByteAt(image, at);
    if (sum % 256 != 0) return "is damaged: the sum of its bytes is not 0";
    return std::nullopt;
}

Subsystem SubsystemOf(std::string_view image) {
    return {WordAt(image, kSubsystemAt), WordAt(image, kSubsystemAt + 2)};
}

}  // namespace vexorctl

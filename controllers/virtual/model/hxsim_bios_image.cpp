// BIOS images: option ROMs that name the adapter they were built for.
#include "model/hxsim_bios_image.h"

#include <cstddef>

namespace hxsim {
namespace {

// A BIOS image is an option ROM: its signature, its length in units of 512 bytes, its version and
// its adapter's subsystem IDs at the offsets where readers expect them, and filler; the last byte
// makes the sum of all bytes a multiple of 256.
constexpr std::size_t kUnit = 512;
constexpr unsigned char kSampleUnits = 80;
constexpr std::size_t kHeaderSize = 64;
constexpr std::size_t kVersionAt = 6, kSubsystemAt = 32;

unsigned ByteAt(std::string_view image, std::size_t at) {
    return static_cast<unsigned char>(image[at]);
}

HX_U16 WordAt(std::string_view image, std::size_t at) {
    return static_cast<HX_U16>(ByteAt(image, at) | ByteAt(image, at + 1) << 8);
}

void PutWord(std::string& image, std::size_t at, HX_U16 word) {
    image[at] = static_cast<char>(word & 0xFF);
    image[at + 1] = static_cast<char>(word >> 8);
}

unsigned SumOf(std::string_view image) {
    unsigned sum = 0;
    for (std::size_t at = 0; at < image.size(); ++at) sum += ByteAt(image, at);
    return sum % 256;
}

}  // namespace

// A version is four words; in older images it is digits: 1, 1, 1 and 2 of them.
Version_Info_CIM VersionOf(std::string_view image) {
    const auto digit = [&](std::size_t at) { return ByteAt(image, at) - '0'; };
    const auto word = [&](std::size_t at) { return WordAt(image, at); };
    Version_Info_CIM version{};
    if (ByteAt(image, kVersionAt) < '0') {
        version.MajorVersion = word(kVersionAt);
        version.MinorVersion = word(kVersionAt + 2);
        version.RevisionNumber = word(kVersionAt + 4);
        version.BuildNumber = word(kVersionAt + 6);
    } else {
        version.MajorVersion = static_cast<HX_U16>(digit(kVersionAt));
        version.MinorVersion = static_cast<HX_U16>(digit(kVersionAt + 2));
        version.RevisionNumber = static_cast<HX_U16>(digit(kVersionAt + 4));
        version.BuildNumber =
            static_cast<HX_U16>(10 * digit(kVersionAt + 6) + digit(kVersionAt + 7));
    }
    return version;
}

std::string SampleBios(const Adapter_Info& info) {
    std::string image(kSampleUnits * kUnit, '\0');
    image[0] = '\x55';
    image[1] = '\xAA';
    image[2] = static_cast<char>(kSampleUnits);
    PutWord(image, kVersionAt, info.BIOSVersion.MajorVersion);
    PutWord(image, kVersionAt + 2, info.BIOSVersion.MinorVersion);
    PutWord(image, kVersionAt + 4, info.BIOSVersion.RevisionNumber);
    PutWord(image, kVersionAt + 6, info.BIOSVersion.BuildNumber);
    PutWord(image, kSubsystemAt, info.SubVenID);
    PutWord(image, kSubsystemAt + 2, info.SubDevID);
    for (std::size_t at = kHeaderSize; at < image.size() - 1; ++at) {
        image[at] = static_cast<char>(at * 167 + (at >> 8));
    }
    image.back() = static_cast<char>(256 - SumOf(image));
    return image;
}

bool IsBiosFor(const Adapter_Info& info, std::string_view image) {
    return image.size() >= kHeaderSize && WordAt(image, 0) == 0xAA55 &&
           image.size() == ByteAt(image, 2) * kUnit && SumOf(image) == 0 &&
           WordAt(image, kSubsystemAt) == info.SubVenID &&
           WordAt(image, kSubsystemAt + 2) == info.SubDevID;
}

}  // namespace hxsim

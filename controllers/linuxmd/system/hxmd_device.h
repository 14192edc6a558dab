// Opening of block devices, and what lies on them.
#pragma once

#include <cstdint>
#include <string>

#include "descriptor.h"
#include "model/hxmd_machine.h"

namespace hxmd {

inline constexpr std::uint64_t kSectorBytes = 512;
inline constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;

/// The path of a block device, below the root prefix; empty when that is too long.
std::string DevicePath(const std::string& name);

enum class Access : std::uint8_t {
    kRead,
    kWrite,
    kReadAlone,   // with O_EXCL: fails while anything else in the machine holds the device, also a
    kWriteAlone,  // mount in another namespace, or a partition that is in use
};

/// Opens /dev/NAME if it is the block device with that number and that many sectors; else none.
/// Below a root prefix a regular file stands for the device.
Descriptor OpenDevice(const std::string& name, const Text& number, const Number& sectors,
                      Access access);

enum class Found : std::uint8_t {
    kNothing,
    kSomething,
    kUnknown,  // it could not be read
};

/// A signature that libblkid knows.
struct Signature {
    Found found = Found::kUnknown;
    std::string type;  // "linux_raid_member", "gpt"; empty when several contradict each other
    std::string uuid;  // of a linux_raid_member, 32 digits
};

enum class Kinds : std::uint8_t { kSuperblocks, kTablesToo };

/// Looks for file systems, volume managers, arrays, encryption and, if asked, partition tables in
/// a range of bytes.
Signature Probe(const Descriptor& device, std::uint64_t start, std::uint64_t bytes, Kinds kinds);

/// Whether all bytes of the range were read and are zero.
bool IsZero(const Descriptor& device, std::uint64_t start, std::uint64_t bytes);

/// Writes zeros and waits until they are on the device.
bool WriteZeros(const Descriptor& device, std::uint64_t start, std::uint64_t bytes);

}  // namespace hxmd

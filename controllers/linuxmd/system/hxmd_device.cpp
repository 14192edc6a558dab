// Block devices by descriptor, and libblkid.
#include "system/hxmd_device.h"

#include <blkid/blkid.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#include "root_path.h"
#include "sysfs/hxmd_convert.h"

namespace hxmd {
namespace {

struct FreeProbe {
    void operator()(blkid_probe probe) const { blkid_free_probe(probe); }
};
using ProbePointer = std::unique_ptr<std::remove_pointer_t<blkid_probe>, FreeProbe>;

int FlagsOf(Access access) {
    switch (access) {
        case Access::kRead:
            return O_RDONLY;
        case Access::kWrite:
            return O_RDWR;
        case Access::kReadAlone:
            return O_RDONLY | O_EXCL;
        case Access::kWriteAlone:
            break;
    }
    return O_RDWR | O_EXCL;
}

// A recorded machine has files instead of devices.
bool IsRecorded() {
    char root[kRootPathSize];
    return RootPath(root, "") != nullptr && root[0] != '\0';
}

Number BytesOf(const Descriptor& device, const struct stat& found) {
    if (S_ISREG(found.st_mode)) return static_cast<std::uint64_t>(found.st_size);
    std::uint64_t bytes = 0;
    if (ioctl(device.Get(), BLKGETSIZE64, &bytes) != 0) return std::nullopt;
    return bytes;
}

std::string NumberOf(dev_t device) {
    return std::to_string(major(device)) + ":" + std::to_string(minor(device));
}

std::string Value(const ProbePointer& probe, const char* name) {
    const char* data = nullptr;
    std::size_t size = 0;
    if (blkid_probe_lookup_value(probe.get(), name, &data, &size) != 0 || size == 0) return "";
    return {data, size - 1};  // with its NUL
}

}  // namespace

std::string DevicePath(const std::string& name) {
    char path[kRootPathSize];
    return RootPath(path, ("/dev/" + name).c_str()) == nullptr ? "" : path;
}

Descriptor OpenDevice(const std::string& name, const Text& number, const Number& sectors,
                      Access access) {
    const std::string path = DevicePath(name);
    if (path.empty() || !number || !sectors) return {};
    // O_NONBLOCK: an unexpected FIFO would block.
    Descriptor device(
        open(path.c_str(), FlagsOf(access) | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | O_NOFOLLOW));
    struct stat found {};
    if (!device.IsOpen() || fstat(device.Get(), &found) != 0) return {};
    const bool is_it = S_ISBLK(found.st_mode) ? NumberOf(found.st_rdev) == *number
                                              : S_ISREG(found.st_mode) && IsRecorded();
    if (!is_it || *sectors > UINT64_MAX / kSectorBytes) return {};
    if (BytesOf(device, found) != *sectors * kSectorBytes) return {};
    return device;
}

Signature Probe(const Descriptor& device, std::uint64_t start, std::uint64_t bytes, Kinds kinds) {
    Signature signature;
    const ProbePointer probe(blkid_new_probe());
    if (probe == nullptr || !device.IsOpen() || start > INT64_MAX || bytes > INT64_MAX) {
        return signature;
    }
    const auto offset = static_cast<blkid_loff_t>(start);
    const auto size = static_cast<blkid_loff_t>(bytes);
    if (blkid_probe_set_device(probe.get(), device.Get(), offset, size) != 0) return signature;
    blkid_probe_enable_superblocks(probe.get(), 1);
    // A damaged superblock is one all the same.
    blkid_probe_set_superblocks_flags(probe.get(),
                                      BLKID_SUBLKS_TYPE | BLKID_SUBLKS_UUID | BLKID_SUBLKS_BADCSUM);
    if (kinds == Kinds::kTablesToo) blkid_probe_enable_partitions(probe.get(), 1);
    switch (blkid_do_safeprobe(probe.get())) {
        case 0:
            signature.found = Found::kSomething;
            signature.type = Value(probe, "TYPE");
            if (signature.type.empty()) signature.type = Value(probe, "PTTYPE");
            signature.uuid = ToUuid(Value(probe, "UUID")).value_or("");
            break;
        case 1:
            signature.found = Found::kNothing;
            break;
        case -2:  // several signatures contradict each other
            signature.found = Found::kSomething;
            break;
        default:
            break;
    }
    return signature;
}

bool IsZero(const Descriptor& device, std::uint64_t start, std::uint64_t bytes) {
    std::vector<char> piece(std::size_t{64} << 10);
    const std::vector<char> zeros(piece.size());
    while (bytes != 0) {
        const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, piece.size()));
        const ssize_t got = pread(device.Get(), piece.data(), most, static_cast<off_t>(start));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        if (std::memcmp(piece.data(), zeros.data(), static_cast<std::size_t>(got)) != 0)
            return false;
        start += static_cast<std::uint64_t>(got);
        bytes -= static_cast<std::uint64_t>(got);
    }
    return true;
}

bool WriteZeros(const Descriptor& device, std::uint64_t start, std::uint64_t bytes) {
    const std::vector<char> piece(std::size_t{64} << 10);
    while (bytes != 0) {
        const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, piece.size()));
        const ssize_t put = pwrite(device.Get(), piece.data(), most, static_cast<off_t>(start));
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        start += static_cast<std::uint64_t>(put);
        bytes -= static_cast<std::uint64_t>(put);
    }
    return fsync(device.Get()) == 0;
}

}  // namespace hxmd

// Mounts and swap areas, and the devices below them.
#include "sysfs/hxmd_system.h"

#include <algorithm>
#include <cstdint>
#include <sstream>

#include "sysfs/hxmd_convert.h"
#include "sysfs/hxmd_folder.h"

namespace hxmd {
namespace {

constexpr std::string_view kSystemMounts[] = {"/", "/boot", "/boot/efi", "/usr", "/var"};
// File systems in memory, as in an initial RAM disk.
constexpr std::string_view kWithoutDevice[] = {"rootfs", "ramfs", "tmpfs"};

enum class Mounts : std::uint8_t { kOfSystem, kAll };

class Search {
public:
    explicit Search(Mounts mounts) : mounts_(mounts) {}

    void FollowMounts() {
        const Folder proc = Folder::OfSystem("/proc");
        auto mounts = proc.Read("1/mountinfo", kMostText);
        if (!mounts) mounts = proc.Read("self/mountinfo", kMostText);
        if (!mounts) found_.complete = false;
        std::istringstream lines(mounts.value_or(""));
        for (std::string line; std::getline(lines, line);) FollowMount(line);
    }

    void FollowSwaps() {
        const auto swaps = Folder::OfSystem("/proc").Read("swaps", kMostText);
        std::istringstream lines(swaps.value_or(""));
        for (std::string line; std::getline(lines, line);) {
            // A swap file lies on a file system.
            if (line.starts_with("/dev/")) FollowSource(line.substr(0, line.find_first_of(" \t")));
        }
    }

    SystemDevices Found() { return std::move(found_); }

private:
    // "22 27 8:1 / /boot rw,relatime shared:1 - ext4 /dev/sda1 rw"
    void FollowMount(const std::string& line) {
        std::istringstream words(line);
        std::string id, parent, number, root, point, word, type, source;
        words >> id >> parent >> number >> root >> point;
        const bool of_system = std::ranges::find(kSystemMounts, point) != std::end(kSystemMounts);
        if (mounts_ == Mounts::kOfSystem && !of_system) return;
        while (words >> word && word != "-") continue;
        words >> type >> source;
        if (std::ranges::find(kWithoutDevice, type) != std::end(kWithoutDevice)) return;
        const std::string name = LastPart(devices_.Link(number));
        if (!name.empty()) {
            Follow(name);
        } else {
            FollowSource(source);  // a file system over several devices has its own device number
        }
    }

    void FollowSource(const std::string& source) {
        const std::string name = LastPart(source);
        if (source.starts_with("/dev/") && blocks_.Has(name)) {
            Follow(name);
            return;
        }
        for (const std::string& each : blocks_.Names()) {
            const auto mapped = blocks_.Read(each + "/dm/name");
            if (!source.starts_with("/dev/mapper/") || !mapped || Trimmed(*mapped) != name)
                continue;
            Follow(each);
            return;
        }
        found_.complete = false;
    }

    void Follow(const std::string& name) {
        if (!found_.names.insert(name).second) return;
        const Folder device = blocks_.Open(name);
        if (!device.IsOpen()) found_.complete = false;
        for (const std::string& slave : device.Open("slaves").Names()) Follow(slave);
        if (!device.Has("partition")) return;
        // A partition's folder lies inside its disk's folder.
        const std::string way = blocks_.Link(name);
        const std::size_t end = way.rfind('/');
        if (end == std::string::npos) {
            found_.complete = false;
            return;
        }
        Follow(LastPart(way.substr(0, end)));
    }

    const Mounts mounts_;
    const Folder devices_ = Folder::OfSystem("/sys/dev/block");
    const Folder blocks_ = Folder::OfSystem("/sys/class/block");
    SystemDevices found_;
};

SystemDevices Find(Mounts mounts) {
    Search search(mounts);
    search.FollowMounts();
    search.FollowSwaps();
    return search.Found();
}

}  // namespace

SystemDevices FindSystem() { return Find(Mounts::kOfSystem); }

SystemDevices FindUsed() { return Find(Mounts::kAll); }

}  // namespace hxmd

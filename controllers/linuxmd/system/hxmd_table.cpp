// GPT by libfdisk.
#include "system/hxmd_table.h"

#include <libfdisk/libfdisk.h>
#include <linux/blkpg.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "system/hxmd_device.h"

namespace hxmd {
namespace {

constexpr char kLinuxRaid[] = "A19D880F-05FC-4D3B-A006-743F0F84911E";

// A template argument instead of a deleter for each type of libfdisk.
template <auto release>
struct Unreference {
    template <class Object>
    void operator()(Object* object) const {
        release(object);
    }
};
using Context = std::unique_ptr<fdisk_context, Unreference<fdisk_unref_context>>;
using Partitions = std::unique_ptr<fdisk_table, Unreference<fdisk_unref_table>>;
using NewPartition = std::unique_ptr<fdisk_partition, Unreference<fdisk_unref_partition>>;
using Type = std::unique_ptr<fdisk_parttype, Unreference<fdisk_unref_parttype>>;

enum class Use { kRead, kWrite };

// libfdisk takes the other copy in place of a damaged one and only warns.
int NoteWarning(fdisk_context*, fdisk_ask* ask, void* warned) {
    const int type = fdisk_ask_get_type(ask);
    if (type == FDISK_ASKTYPE_WARN || type == FDISK_ASKTYPE_WARNX) {
        *static_cast<bool*>(warned) = true;
    }
    return 0;
}

// None when libfdisk cannot use the device, or finds something wrong with its table.
Context Open(const Descriptor& disk, const std::string& name, Use use) {
    Context context(fdisk_new_context());
    if (context == nullptr || !disk.IsOpen()) return nullptr;
    bool warned = false;
    fdisk_disable_dialogs(context.get(), 1);
    fdisk_set_ask(context.get(), NoteWarning, &warned);
    const int read_only = use == Use::kRead ? 1 : 0;
    const std::string path = DevicePath(name);
    if (fdisk_assign_device_by_fd(context.get(), disk.Get(), path.c_str(), read_only) != 0) {
        return nullptr;
    }
    fdisk_set_ask(context.get(), nullptr, nullptr);
    return warned ? nullptr : std::move(context);
}

bool HasGpt(const Context& context) {
    return context != nullptr && fdisk_is_label(context.get(), GPT) &&
           fdisk_get_sector_size(context.get()) == kSectorBytes;
}

std::optional<std::vector<Entry>> Entries(const Context& context) {
    fdisk_table* listed = nullptr;
    if (!HasGpt(context) || fdisk_get_partitions(context.get(), &listed) != 0) return std::nullopt;
    const Partitions table(listed);
    std::vector<Entry> entries;
    for (std::size_t i = 0; i < fdisk_table_get_nents(table.get()); ++i) {
        fdisk_partition* const partition = fdisk_table_get_partition(table.get(), i);
        if (partition == nullptr) return std::nullopt;
        fdisk_parttype* const type = fdisk_partition_get_type(partition);
        const char* const text = type == nullptr ? nullptr : fdisk_parttype_get_string(type);
        entries.push_back({fdisk_partition_get_partno(partition) + 1,
                           fdisk_partition_get_start(partition),
                           fdisk_partition_get_size(partition),
                           text != nullptr && std::strcmp(text, kLinuxRaid) == 0});
    }
    return entries;
}

// Tells the kernel of one partition. BLKRRPART would refuse while other partitions are in use.
bool TellKernel(const Descriptor& disk, int operation, const Entry& entry) {
    struct stat found {};
    if (fstat(disk.Get(), &found) != 0) return false;
    if (!S_ISBLK(found.st_mode)) return true;  // of a recorded machine
    blkpg_partition partition{};
    constexpr auto kBytes = static_cast<long long>(kSectorBytes);
    partition.start = static_cast<long long>(entry.start) * kBytes;
    partition.length = static_cast<long long>(entry.sectors) * kBytes;
    partition.pno = static_cast<int>(entry.number);
    blkpg_ioctl_arg argument{};
    argument.op = operation;
    argument.datalen = sizeof partition;
    argument.data = &partition;
    return ioctl(disk.Get(), BLKPG, &argument) == 0;
}

}  // namespace

std::optional<std::vector<Entry>> ReadTable(const Descriptor& disk, const std::string& name) {
    return Entries(Open(disk, name, Use::kRead));
}

std::optional<std::size_t> AddPartition(const Descriptor& disk, const std::string& name,
                                        Table table, std::uint64_t start, std::uint64_t sectors) {
    const Context context = Open(disk, name, Use::kWrite);
    if (context == nullptr) return std::nullopt;
    if (table == Table::kNew && fdisk_create_disklabel(context.get(), "gpt") != 0) {
        return std::nullopt;
    }
    if (!HasGpt(context)) return std::nullopt;
    const NewPartition partition(fdisk_new_partition());
    const Type type(
        fdisk_label_parse_parttype(fdisk_get_label(context.get(), nullptr), kLinuxRaid));
    if (partition == nullptr || type == nullptr) return std::nullopt;
    fdisk_partition_set_start(partition.get(), start);
    fdisk_partition_set_size(partition.get(), sectors);
    fdisk_partition_partno_follow_default(partition.get(), 1);
    fdisk_partition_set_type(partition.get(), type.get());
    std::size_t index = 0;
    if (fdisk_add_partition(context.get(), partition.get(), &index) != 0) return std::nullopt;
    if (fdisk_write_disklabel(context.get()) != 0) return std::nullopt;
    const Entry entry{index + 1, start, sectors, true};
    if (!TellKernel(disk, BLKPG_ADD_PARTITION, entry)) return std::nullopt;
    return entry.number;
}

bool DropPartition(const Descriptor& disk, const std::string& name, std::uint64_t start) {
    const Context context = Open(disk, name, Use::kWrite);
    const auto entries = Entries(context);
    if (!entries) return false;
    const auto entry = std::ranges::find(*entries, start, &Entry::start);
    if (entry == entries->end() || !entry->raid) return false;
    // The kernel refuses while the partition is in use; then the table stays as it is, too.
    if (!TellKernel(disk, BLKPG_DEL_PARTITION, *entry)) return false;
    return fdisk_delete_partition(context.get(), entry->number - 1) == 0 &&
           fdisk_write_disklabel(context.get()) == 0;
}

}  // namespace hxmd

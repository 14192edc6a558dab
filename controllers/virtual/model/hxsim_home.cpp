// The rows of positions: found, set and dropped.
#include "model/hxsim_home.h"

#include <algorithm>
#include <tuple>

namespace hxsim {
namespace {

template <class Rows>
auto FindHome(Rows& homes, Owner of, HX_U16 owner, HX_U8 position) -> decltype(homes.data()) {
    const std::tuple key(of, owner, position);
    const auto row = std::ranges::lower_bound(homes, key, {}, [](const Home& each) {
        return std::tuple(each.of, each.owner, each.position);
    });
    const bool found =
        row != homes.end() && row->of == of && row->owner == owner && row->position == position;
    return found ? &*row : nullptr;
}

}  // namespace

Home* HomeOf(Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position) {
    return FindHome(adapter.homes, of, owner, position);
}

const Home* HomeOf(const Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position) {
    return FindHome(adapter.homes, of, owner, position);
}

Home* HomeOf(Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position) {
    return virtual_disk.group == kNoId
               ? HomeOf(adapter, Owner::kVirtualDisk, virtual_disk.id, position)
               : HomeOf(adapter, Owner::kDiskGroup, virtual_disk.group, position);
}

const Home* HomeOf(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position) {
    return virtual_disk.group == kNoId
               ? HomeOf(adapter, Owner::kVirtualDisk, virtual_disk.id, position)
               : HomeOf(adapter, Owner::kDiskGroup, virtual_disk.group, position);
}

bool IsDisplaced(const Home& home) {
    return home.disk != kNoId && home.home != kNoId && home.disk != home.home;
}

std::vector<HX_U16> DisksOf(const Adapter& adapter, Owner of, HX_U16 owner) {
    std::vector<HX_U16> disks;
    for (const Home& home : adapter.homes) {
        if (home.of == of && home.owner == owner) disks.push_back(home.disk);
    }
    return disks;
}

void SetHomes(Adapter& adapter, Owner of, HX_U16 owner, std::span<const HX_U16> disks) {
    DropHomes(adapter, of, owner);
    const auto at = std::ranges::find_if(adapter.homes, [&](const Home& home) {
        return home.of > of || (home.of == of && home.owner > owner);
    });
    std::vector<Home> homes;
    for (const HX_U16 disk : disks) {
        homes.push_back({of, owner, static_cast<HX_U8>(homes.size()), disk, disk});
    }
    adapter.homes.insert(at, homes.begin(), homes.end());
}

void DropHomes(Adapter& adapter, Owner of, HX_U16 owner) {
    std::erase_if(adapter.homes,
                  [&](const Home& home) { return home.of == of && home.owner == owner; });
}

}  // namespace hxsim

#include "nouns/disk_targets.h"

#include <algorithm>
#include <utility>

#include "common/address.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/virtual_disks.h"
#include "nouns/find_object.h"

namespace vexorctl::disk_noun {

using fields::HD_Info;
using fields::Link_Endpoint;
using fields::Link_Entity;

View<Link_Endpoint> SelfOf(const Disk& disk) { return disk.info[HD_Info::Link][Link_Entity::Self]; }
View<Link_Endpoint> ParentOf(const Disk& disk) {
    return disk.info[HD_Info::Link][Link_Entity::Parent];
}

IsMeant DisksMeantBy(Invocation& invocation, const std::string& typed) {
    const Selector selector = ParseSelector(typed);
    if (selector.form == Selector::Form::kSerial) return nullptr;
    const ObjectKind kind =
        selector.form == Selector::Form::kName ? ObjectKind::kVirtualDisk : selector.address.kind;
    if (kind == ObjectKind::kAdapter || kind == ObjectKind::kDisk) return nullptr;
    const Address address = FindObject(invocation, kind, typed);
    if (kind == ObjectKind::kVirtualDisk) {
        auto disks = TakeObject(LoadVirtualDisks(invocation.controller()), address).disks;
        if (!disks) throw Failure(Exit::kRefused, typed + ": its disks are not known");
        return [address, ids = *std::move(disks)](const Disk& disk) {
            return disk.address.adapter == address.adapter &&
                   std::ranges::find(ids, disk.address.id) != ids.end();
        };
    }
    if (kind == ObjectKind::kDiskGroup) {
        return [address](const Disk& disk) {
            return disk.address.adapter == address.adapter && disk.group.IsIn(address.id);
        };
    }
    if (kind == ObjectKind::kEnclosure) {
        return [address](const Disk& disk) {
            return disk.address.adapter == address.adapter &&
                   SelfOf(disk)[Link_Endpoint::EnclosureID] == address.id;
        };
    }
    throw UsageError(typed + " holds no disks: a disk, adapter, vd, dg or enclosure is needed");
}

IsMeant DisksNamedBy(Invocation& invocation, const std::string& typed) {
    const Selector selector = ParseSelector(typed);
    const bool is_adapter =
        selector.form == Selector::Form::kAddress && selector.address.kind == ObjectKind::kAdapter;
    const Address address =
        FindObject(invocation, is_adapter ? ObjectKind::kAdapter : ObjectKind::kDisk, typed);
    return [address, is_adapter](const Disk& disk) {
        return is_adapter ? disk.address.adapter == address.adapter : disk.address == address;
    };
}

}  // namespace vexorctl::disk_noun

// List calls with a record for each disk.
#pragma once

#include <optional>

#include "calls/hxsim_disk_record.h"
#include "calls/hxsim_list_page.h"
#include "hxraid.h"
#include "model/hxsim_disk_role.h"

namespace hxsim {

/// Lists the disks. `describe(adapter, disk, role, now, record)` fills a record.
template <class Request, class Record, class Describe>
HX_U8 ListDisks(const char* call, HX_U8 adapter_id, Request* request, Record (Request::*list)[1],
                Describe describe) {
    std::optional<DiskRoles> roles;  // found once for the whole list
    const auto role_of = [&](const Adapter& adapter, const Disk& disk) -> const DiskRole& {
        if (!roles) roles.emplace(adapter);
        return roles->Of(disk);
    };
    return List(
        call, adapter_id, request, list, &Adapter::disks, Status::kNoDisk,
        [&](const Adapter& adapter, const Disk& disk) {
            return IsListed(disk, role_of(adapter, disk));
        },
        [&](const Adapter& adapter, const Disk& disk, Time now, Record& record) {
            describe(adapter, disk, role_of(adapter, disk), now, record);
        });
}

/// Lists the disks with the Describe overload for the record.
template <class Request, class Record>
HX_U8 ListDisks(const char* call, HX_U8 adapter_id, Request* request, Record (Request::*list)[1]) {
    return ListDisks(call, adapter_id, request, list,
                     [](const Adapter& adapter, const Disk& disk, const DiskRole& role, Time now,
                        Record& record) { Describe(adapter, disk, role, now, record); });
}

}  // namespace hxsim

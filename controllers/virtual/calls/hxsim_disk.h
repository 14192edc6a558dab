// The disks of the virtual controller, and what they are used for.
#pragma once

#include <optional>
#include <vector>

#include "calls/hxsim_list_page.h"
#include "codes/hxraid_codes.h"
#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The part that a disk plays.
struct Part {
    HX_U8 status = 0;       // HxsimDiskStatus
    HX_U16 serves = kNoId;  // disk group or, on a disk of none, virtual disk; kNoId neither
    bool of_group = false;  // it serves a disk group; false for spares, too
    Sectors free = 0;       // that virtual disks can still have which lie directly on disks
};

/// The parts of all disks of an adapter, found in one pass over its blocks.
class Parts {
public:
    explicit Parts(const Adapter& adapter);

    /// `disk` is a row of the adapter.
    const Part& Of(const Disk& disk) const;

private:
    const Adapter& adapter_;
    std::vector<Part> parts_;  // in the order of the disks
};

/// Whether callers see the disk: it is there, or virtual disks still count on what was in its
/// place.
bool IsListed(const Disk& disk, const Part& part);

/// The disk with that ID, if callers see it; else null.
const Disk* FindListed(const Adapter& adapter, HX_U16 id);
Disk* FindListed(Adapter& adapter, HX_U16 id);

/// Whether the disk can be spoken to, whatever it is used for.
constexpr bool Answers(const Disk& disk) { return disk.present && !disk.failed; }

/// Takes everything off a disk that it serves: its blocks become free, and the positions that lay
/// on it are lost. What was writing them fails. A virtual disk of another controller, which only
/// its disks know of, goes with the last of them.
void DropContents(Adapter& adapter, Time now, HX_U16 disk);

/// List of disks. `describe(adapter, disk, part, now, record)` fills a record that is zero.
template <class Request, class Record, class Describe>
HX_U8 ListDisks(const char* call, HX_U8 adapter_id, Request* request, Record (Request::*list)[1],
                Describe describe) {
    std::optional<Parts> parts;  // found once for the whole list
    const auto part_of = [&](const Adapter& adapter, const Disk& disk) -> const Part& {
        if (!parts) parts.emplace(adapter);
        return parts->Of(disk);
    };
    return List(
        call, adapter_id, request, list, &Adapter::disks, HXSIM_NO_DISK,
        [&](const Adapter& adapter, const Disk& disk) {
            return IsListed(disk, part_of(adapter, disk));
        },
        [&](const Adapter& adapter, const Disk& disk, Time now, Record& record) {
            describe(adapter, disk, part_of(adapter, disk), now, record);
        });
}

}  // namespace hxsim

// Quick creation.
#include "xml_rapi_quick_create.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>

#include "heap_block.h"
#include "xml_rapi_paging.h"
#include "xml_rapi_quick_levels.h"

namespace {

constexpr HX_U8 kOutOfMemory = 4;
constexpr HX_U8 kDiskInUse = 73;
constexpr HX_U8 kDiskHasOS = 159;

constexpr HX_U16 kNoVirtualDisk = 255;  // LDID of a free block

constexpr char kQuickName[] = "NEW_VD";
static_assert(sizeof kQuickName <= HX_NAME_SIZE);

constexpr HX_U8 kLook = 1;  // HX_DiskHasOS: the only kind of look there is

// A list request with room for `room` records behind the header; Request, the controller library's
// own type, has room for one.
template <class Request, class Item, HX_U16 room>
struct List {
    RequestHeader header;
    Item items[room];

    static_assert(sizeof(Request) == sizeof(RequestHeader) + sizeof(Item));

    Request* AsRequest() { return reinterpret_cast<Request*>(this); }

    // The returned records; never more than there is room for, even if the controller reports more.
    std::span<const Item> Returned() const {
        return {items, std::min<std::size_t>(header.numReturned, room)};
    }
};

constexpr HX_U16 kBlocksPerPage = 512;
using BlockList = List<Info_Request, Block_Info, kBlocksPerPage>;
using StatusList = List<HD_RAID_Status_Request, HD_RAID_Status, HX_MAX_HDS>;

bool IsInUse(HX_U16 DiskID, std::span<const Block_Info> blocks) {
    return std::ranges::any_of(blocks, [DiskID](const Block_Info& block) {
        return block.HDID == DiskID && block.LDID != kNoVirtualDisk;
    });
}

// A faulty list of blocks may never end. No adapter needs more pages than this for all disks of a
// request, so beyond them every list counts as ended.
constexpr HX_U32 kMostPages = 65536;

// Reads the adapter's list of blocks until it ends or `pages`, the pages that the request may still
// read, is down to `kept`; then looks for an operating system. Reads at least one page. Returns
// what HDisFreeDiskForSkua does.
HX_U8 LookAtDisk(HX_U8 adapter, HX_U16 disk, HX_U32& pages, HX_U32 kept) {
    const auto page = MakeBlock<BlockList>();
    if (page == nullptr) return kOutOfMemory;
    RequestHeader& header = page->header;
    setRequestHeader(&header, HX_REQUEST_BY_INDEX, 0, kBlocksPerPage);
    HX_U8 status;
    do {
        std::memset(static_cast<void*>(page->items), 0, sizeof page->items);
        // Each page overwrites the status, so that the last page alone decides.
        status = HX_BLK_GetInfo(adapter, page->AsRequest());
        if (status == HX_SUCCESS && IsInUse(disk, page->Returned())) status = kDiskInUse;
        // The header is sent back as the controller left it, except that numRequested is limited to
        // the room for blocks.
        header.numRequested = std::min(header.numRequested, kBlocksPerPage);
        header.startingIndexOrId = header.nextStartingIndex;
        --pages;
        // A repeated index does not end the loop: a failed page leaves its own index and may
        // succeed the next time.
    } while (header.nextStartingIndex != HX_LIST_COMPLETE && pages > kept);
    if (HX_DiskHasOS(adapter, kLook, 1, &disk) != 0) status = kDiskHasOS;
    return status;
}

}  // namespace

HX_U8 HDisFreeDiskForSkua(HX_U8 AdapterID, HX_U16 DiskID) {
    HX_U32 pages = kMostPages;
    return LookAtDisk(AdapterID, DiskID, pages, 0);
}

HX_U8 GetRaidMode(HX_U8 AdapterID, HX_BOOLEAN type, Create_LD_Param* ldParams) {
    HX_U8 count = 0;
    Adapter_Info info{};
    // An adapter that fails offers no level.
    static_cast<void>(HX_Adapter_GetInfo(AdapterID, &count, &info));
    if (!type || ldParams->HDCount < 2) return kQuickPlainLevel;
    return QuickLevel(info.LogicalDriverMode, ldParams->HDCount);
}

HX_U8 HX_LD_QuickCreate(HX_U8 AdapterID, HX_BOOLEAN type) {
    const auto disks = MakeZeroedBlock<StatusList>();
    if (disks == nullptr) return kOutOfMemory;
    setRequestHeader(&disks->header, HX_REQUEST_BY_INDEX, 0, HX_MAX_HDS);
    // The code is ignored: an unreadable list contains no disk.
    static_cast<void>(HX_PD_GetHDRaidStatus(AdapterID, disks->AsRequest()));

    Create_LD_Param param{};
    param.StripeBlockSize = 64;
    param.CachePolicy = 4;
    param.SectorCoefficient = 1;
    std::memcpy(param.Name, kQuickName, sizeof kQuickName);
    HX_U32 pages = kMostPages;
    auto disks_left = static_cast<HX_U32>(disks->Returned().size());
    for (const HD_RAID_Status& disk : disks->Returned()) {
        --disks_left;
        if ((disk.Status & kQuickNotFree) != 0) continue;
        // Reserves one page for each remaining disk, so that no disk is used without reading its
        // blocks.
        if (LookAtDisk(AdapterID, disk.HDID, pages, disks_left) != HX_SUCCESS) continue;
        param.HDIDs[param.HDCount++] = disk.HDID;
    }
    param.RaidMode = GetRaidMode(AdapterID, type, &param);
    // Not the number of parity disks of the level: the controller expects 2 for every level but
    // RAID 60.
    param.NumParityDisk = param.RaidMode == kQuickRaid60 ? 4 : 2;
    return HX_LD_Create(AdapterID, &param);
}

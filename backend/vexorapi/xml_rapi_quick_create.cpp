// Quick creation.
#include "xml_rapi_quick_create.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>

#include "heap_block.h"
#include "xml_rapi_paging.h"

namespace {

constexpr HX_U8 kOutOfMemory = 4;
constexpr HX_U8 kDiskInUse = 73;
constexpr HX_U8 kDiskHasOS = 159;

constexpr HX_U16 kNoVirtualDisk = 255;  // LDID of a free block

// Bits of a disk's Status, each of which keeps it from being used for a new virtual disk.
constexpr HX_U8 kNotFree = 0x04 | 0x08 | 0x40 | 0x80;

constexpr HX_U8 kPlainLevel = 0x00;
constexpr HX_U8 kRaid60 = 0x60;

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

    // What the controller has returned: no more than there is room for, whatever it says.
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

// A walk over the blocks: a page, and the start indices visited.
struct BlockWalk {
    BlockList page;
    bool visited[HX_LIST_COMPLETE];
};

struct RaidLevel {
    HX_U16 bit;  // of LogicalDriverMode: the adapter offers the level
    RaidSupport support;
};

// The best level first. RAID 1 takes the first two disks and leaves the others; RAID 6 is offered
// from three disks on.
constexpr RaidLevel kRaidLevels[] = {
    // bit, {raidmode, minhdcount, isEvenNum, isOddNum, isExactNum}
    {0x0100, {kRaid60, 6, 1, 0, 0}},      // RAID 60
    {0x0040, {0x50, 6, 1, 0, 0}},         // RAID 50
    {0x0004, {0x10, 4, 1, 0, 0}},         // RAID 10
    {0x0020, {0x06, 3, 0, 0, 0}},         // RAID 6
    {0x0008, {0x11, 3, 0, 1, 0}},         // the level of odd numbers
    {0x0010, {0x05, 3, 0, 0, 0}},         // RAID 5
    {0x0002, {0x01, 2, 0, 0, 1}},         // RAID 1
    {0x0001, {kPlainLevel, 1, 0, 0, 0}},  // RAID 0
};

bool CanBeMadeOf(const RaidSupport& level, HX_U8 disks) {
    if (disks < level.minhdcount) return false;
    if (level.isExactNum) return true;
    const bool odd = disks % 2 != 0;
    return !(level.isEvenNum && odd) && !(level.isOddNum && !odd);
}

}  // namespace

HX_U8 HDisFreeDiskForSkua(HX_U8 AdapterID, HX_U16 DiskID) {
    const auto walk = MakeZeroedBlock<BlockWalk>();
    if (walk == nullptr) return kOutOfMemory;
    BlockList& page = walk->page;
    HX_U8 status;
    HX_U16 start = 0;
    do {
        walk->visited[start] = true;
        std::memset(&page, 0, sizeof page);
        setRequestHeader(&page.header, HX_REQUEST_BY_INDEX, start, kBlocksPerPage);
        // Each page overwrites the status, so that the last page alone decides.
        status = HX_BLK_GetInfo(AdapterID, page.AsRequest());
        if (status == HX_SUCCESS && IsInUse(DiskID, page.Returned())) status = kDiskInUse;
        start = page.header.nextStartingIndex;
        // A list that leads back to a page that was visited would never end.
    } while (start != HX_LIST_COMPLETE && !walk->visited[start]);
    if (HX_DiskHasOS(AdapterID, kLook, 1, &DiskID) != 0) status = kDiskHasOS;
    return status;
}

HX_U8 GetRaidMode(HX_U8 AdapterID, HX_BOOLEAN type, Create_LD_Param* ldParams) {
    HX_U8 count = 0;
    Adapter_Info info{};
    // An adapter that fails offers no level.
    static_cast<void>(HX_Adapter_GetInfo(AdapterID, &count, &info));
    if (!type || ldParams->HDCount < 2) return kPlainLevel;
    for (const auto& [bit, support] : kRaidLevels) {
        if ((info.LogicalDriverMode & bit) == 0) continue;
        if (!CanBeMadeOf(support, ldParams->HDCount)) continue;
        if (support.isExactNum) ldParams->HDCount = support.minhdcount;
        return support.raidmode;
    }
    return kPlainLevel;
}

HX_U8 HX_LD_QuickCreate(HX_U8 AdapterID, HX_BOOLEAN type) {
    const auto disks = MakeZeroedBlock<StatusList>();
    if (disks == nullptr) return kOutOfMemory;
    setRequestHeader(&disks->header, HX_REQUEST_BY_INDEX, 0, HX_MAX_HDS);
    // The code is ignored: a list that cannot be read holds no disk.
    static_cast<void>(HX_PD_GetHDRaidStatus(AdapterID, disks->AsRequest()));

    Create_LD_Param param{};
    param.StripeBlockSize = 64;
    param.CachePolicy = 4;
    param.SectorCoefficient = 1;
    std::memcpy(param.Name, kQuickName, sizeof kQuickName);
    for (const HD_RAID_Status& disk : disks->Returned()) {
        if ((disk.Status & kNotFree) != 0) continue;
        if (HDisFreeDiskForSkua(AdapterID, disk.HDID) != 0) continue;
        param.HDIDs[param.HDCount++] = disk.HDID;
    }
    param.RaidMode = GetRaidMode(AdapterID, type, &param);
    // Not the number that the level needs: the controller wants 2 for every level but one.
    param.NumParityDisk = param.RaidMode == kRaid60 ? 4 : 2;
    return HX_LD_Create(AdapterID, &param);
}

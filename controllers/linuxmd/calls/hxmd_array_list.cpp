// The records of virtual disks (MD's arrays) and of their blocks (the members).
#include <algorithm>
#include <iterator>

#include "calls/hxmd_list_page.h"
#include "calls/hxmd_session.h"
#include "codes/device.h"
#include "codes/status.h"
#include "codes/virtual_disk.h"
#include "hxraid.h"
#include "rules/hxmd_state.h"

namespace hxmd {
namespace {

using hxcodes::BlockBit;
using hxcodes::CacheBit;
using hxcodes::NumberOf;
using hxcodes::Status;

constexpr HX_U8 kNoGroup = 255;       // DGID without a disk group
constexpr HX_U8 kUnknownLevel = 255;  // of an array that was never seen running
constexpr std::uint64_t kSector = 512;

// ---- Virtual disks ----

HX_U8 CacheOf(const Array& array) {
    return array.read_ahead_kib.value_or(0) != 0 ? NumberOf(CacheBit::kReadAhead) : HX_U8{0};
}

HX_U8 AtMost255(std::uint64_t number) {
    return static_cast<HX_U8>(std::min<std::uint64_t>(number, UINT8_MAX));
}

LD_Info Describe(const View& view, const Array& array) {
    LD_Info info{};
    info.ID = array.id;
    info.DGID = kNoGroup;
    info.Status = NumberOf(StateOf(array));
    info.BGAStatus = NumberOf(ActivityOf(array).kind);
    info.StripeBlockSize =
        static_cast<HX_U16>(std::min<std::uint64_t>(array.chunk.value_or(0) / 1024, UINT16_MAX));
    const auto known = std::ranges::find(view.kept.known_arrays, array.id, &KeptArray::id);
    // An incomplete array reports neither its level nor its places; use the last known ones.
    const std::uint64_t level =
        LevelOf(array).value_or(known->level == kNoId ? kUnknownLevel : known->level);
    info.RaidMode = AtMost255(level);
    info.HDCount = AtMost255(array.disks ? array.disks->now : known->places);
    info.CacheMode = CacheOf(array);
    info.SectorCoefficient = AtMost255(array.sector_size.value_or(kSector) / kSector);
    info.Size.value = array.sectors.value_or(0);
    SetText(info.Name, known->title);
    std::ranges::fill(info.BlockIDs, kNoId);
    for (const Member& member : array.members) {
        if (!member.slot || *member.slot >= std::size(info.BlockIDs)) continue;
        HX_U16& block = info.BlockIDs[*member.slot];
        // When two members share a place, the member with the content counts.
        if (block == kNoId || HasContent(member)) block = member.block;
    }
    info.NumParityDisk = ParityDisks(array);
    return info;
}

LD_Status DescribeStatus(const View&, const Array& array) {
    const Activity activity = ActivityOf(array);
    LD_Status status{};
    status.LDID = array.id;
    status.Status = NumberOf(StateOf(array));
    status.Bga = NumberOf(activity.kind);
    status.BgaPercentage = activity.percent;
    status.BgaState = NumberOf(activity.state);
    return status;
}

LD_Config DescribeArraySettings(const View& view, const Array& array) {
    LD_Config config{};
    config.LDID = array.id;
    config.CacheMode = CacheOf(array);
    config.Status = NumberOf(StateOf(array));
    const auto known = std::ranges::find(view.kept.known_arrays, array.id, &KeptArray::id);
    SetText(config.Name, known->title);
    return config;
}

template <class Request, class Record, class Describe, class IdOf>
HX_U8 ListArrays(HX_U8 adapter, Request* request, Record (Request::*list)[1], Describe describe,
                 IdOf id_of) {
    return ListEach(adapter, request, list, &Machine::arrays, describe, id_of,
                    NumberOf(Status::kNoVirtualDisk));
}

// ---- Blocks ----

Block_Info Describe(const Array& array, const Member& member) {
    Block_Info info{};
    info.ID = member.block;
    info.HDID = member.disk;
    info.LDID = array.id;
    info.Flags = NumberOf(BlockBit::kUsed);
    if (IsFilling(member)) {
        info.Flags = static_cast<HX_U16>(info.Flags | NumberOf(BlockBit::kTarget));
    }
    info.Status = NumberOf(StateOf(member));
    info.BlockSize = kSector;
    info.StartLBA.value = member.start + member.offset.value_or(0);
    info.Size.value = member.size_kib.value_or(0) * 2;
    return info;
}

std::vector<Block_Info> Blocks(const View& view) {
    std::vector<Block_Info> blocks;
    for (const Array& array : view.machine.arrays) {
        for (const Member& member : array.members) {
            if (member.block != kNoId) blocks.push_back(Describe(array, member));
        }
    }
    std::ranges::sort(blocks, {}, &Block_Info::ID);
    // A place with a missing disk can have the same block as a present member of another name.
    const auto same = [](const Block_Info& one, const Block_Info& other) {
        return one.ID == other.ID;
    };
    blocks.erase(std::unique(blocks.begin(), blocks.end(), same), blocks.end());
    return blocks;
}

std::vector<HD_Block_Info> BlocksByDisk(const View& view) {
    const std::vector<Block_Info> blocks = Blocks(view);
    std::vector<HD_Block_Info> disks;
    for (const Disk& disk : view.machine.disks) {
        HD_Block_Info& info = disks.emplace_back();
        info.ID = disk.id;
        info.Type = NumberOf(hxcodes::Device::kDisk);
        std::ranges::fill(info.BlockIDs, kNoId);
        std::size_t count = 0;
        for (const Block_Info& block : blocks) {
            if (block.HDID != disk.id || count == std::size(info.BlockIDs)) continue;
            info.BlockIDs[count++] = block.ID;
        }
    }
    return disks;
}

}  // namespace
}  // namespace hxmd

HX_U8 HX_LD_GetInfo(HX_U8 AdapterID, LD_Info_Request* request) {
    return hxmd::ListArrays(
        AdapterID, request, &LD_Info_Request::ldInfo,
        [](const hxmd::View& view, const hxmd::Array& array) {
            return hxmd::Describe(view, array);
        },
        &LD_Info::ID);
}

HX_U8 HX_LD_GetTargetLDInfo(HX_U8 AdapterID, HX_U16 LD_ID, LD_Info* info) {
    return hxmd::OnView(AdapterID, [&](const hxmd::View& view) -> HX_U8 {
        if (info == nullptr) return hxcodes::NumberOf(hxcodes::Status::kNullAddress);
        const auto array = std::ranges::find(view.machine.arrays, LD_ID, &hxmd::Array::id);
        if (array == view.machine.arrays.end()) {
            return hxcodes::NumberOf(hxcodes::Status::kNoVirtualDisk);
        }
        *info = hxmd::Describe(view, *array);
        return HX_SUCCESS;
    });
}

HX_U8 HX_LD_GetStatus(HX_U8 AdapterID, LD_Status_Request* request) {
    return hxmd::ListArrays(AdapterID, request, &LD_Status_Request::ldStatus, hxmd::DescribeStatus,
                            &LD_Status::LDID);
}

HX_U8 HX_LD_GetConfig(HX_U8 AdapterID, LD_Config_Request* request) {
    return hxmd::ListArrays(AdapterID, request, &LD_Config_Request::ldConfig,
                            hxmd::DescribeArraySettings, &LD_Config::LDID);
}

HX_U8 HX_BLK_GetInfo(HX_U8 AdapterID, Info_Request* request) {
    return hxmd::List(AdapterID, request, &Info_Request::blockInfo, hxmd::Blocks, &Block_Info::ID,
                      hxcodes::NumberOf(hxcodes::Status::kNoBlock));
}

HX_U8 HX_BLK_GetHDBlock(HX_U8 AdapterID, HD_Block_Info_Request* request) {
    return hxmd::List(AdapterID, request, &HD_Block_Info_Request::hdBlockInfo, hxmd::BlocksByDisk,
                      &HD_Block_Info::ID, hxcodes::NumberOf(hxcodes::Status::kNoDisk));
}

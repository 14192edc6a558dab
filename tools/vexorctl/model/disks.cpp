#include "model/disks.h"

#include <algorithm>
#include <map>
#include <span>
#include <string>
#include <utility>

#include "codes/disk.h"

namespace vexorctl {

namespace {

// What the controller tells of disks in lists of their own, by the disks' numbers.
std::map<std::uint64_t, Value> ByDisk(Controller& controller, unsigned adapter,
                                      const ListSource& source) {
    std::map<std::uint64_t, Value> records;
    for (Value& record : controller.List(adapter, source)) {
        const std::uint64_t number = record.Number(source.id);
        records.insert_or_assign(number, std::move(record));
    }
    return records;
}

Value Take(std::map<std::uint64_t, Value>& records, std::uint64_t id) {
    const auto found = records.find(id);
    return found == records.end() ? Value() : std::move(found->second);
}

// The library answers for 128 disks at once.
constexpr std::size_t kDisksPerBootRecordCall = 128;

void LoadBootRecords(Controller& controller, unsigned adapter, std::span<Disk> disks) {
    std::string ids;
    for (const Disk& disk : disks) {
        ids.append(ids.empty() ? "" : " ").append(std::to_string(disk.address.id));
    }
    const auto result =
        controller.Get("a" + std::to_string(adapter), {"HX_PD_GetMBRInfo",
                                                       {{"HDCount", std::to_string(disks.size())},
                                                        {"AdapterID", std::to_string(adapter)},
                                                        {"HDIDs", ids}}});
    if (!result) return;
    const std::vector<std::uint64_t> found = result->Numbers("MBRInfo/hasMBR");
    for (std::size_t i = 0; i < disks.size() && i < found.size(); ++i) {
        disks[i].boot_record = found[i] != 0;
    }
}

void LoadDisksOf(Controller& controller, unsigned adapter, std::vector<Disk>& disks) {
    std::vector<Value> infos =
        controller.List(adapter, {"HX_PD_GetHDInfo_Ext", "HD_Info", "Link/Self/DevID"});
    if (infos.empty()) return;
    auto config = ByDisk(controller, adapter, {"HX_PD_GetConfig", "Config", "HDID"});
    auto smart = ByDisk(controller, adapter, {"HX_PD_GetSmartStatus", "HD_SMART_Status", "HDID"});
    auto raid = ByDisk(controller, adapter, {"HX_PD_GetHDRaidStatus", "Status", "HDID"});
    auto activity = ByDisk(controller, adapter, {"HX_PD_GetBGAStatus", "HD_BGA_Status", "HDID"});
    auto free_space = ByDisk(controller, adapter, {"HX_PD_GetFreeSpaceInfo", "HD_Info", "ID"});
    std::map<std::uint64_t, unsigned> groups;
    for (const Value& group : controller.List(adapter, {"HX_DG_GetInfo", "DG_Info", "DGID"})) {
        for (const auto& [count, ids] :
             {std::pair("PDCount", "PDIDs"), std::pair("SparePDCount", "SparePDIDs")}) {
            for (const std::uint64_t member : group.Numbers(ids, group.Number(count))) {
                groups.emplace(member, static_cast<unsigned>(group.Number("DGID")));
            }
        }
    }
    const std::size_t first = disks.size();
    for (Value& info : infos) {
        const std::uint64_t id = info.Number("Link/Self/DevID");
        Disk disk;
        disk.address = {
            .adapter = adapter, .kind = ObjectKind::kDisk, .id = static_cast<unsigned>(id)};
        disk.info = std::move(info);
        disk.config = Take(config, id);
        disk.smart = Take(smart, id);
        disk.raid = Take(raid, id);
        disk.activity = Take(activity, id);
        disk.free_space = Take(free_space, id);
        if (const auto group = groups.find(id); group != groups.end()) disk.group = group->second;
        disks.push_back(std::move(disk));
    }
    for (std::size_t at = first; at < disks.size(); at += kDisksPerBootRecordCall) {
        const std::size_t count = std::min(kDisksPerBootRecordCall, disks.size() - at);
        LoadBootRecords(controller, adapter, std::span(disks).subspan(at, count));
    }
}

}  // namespace

std::string DiskState(const Disk& disk) {
    return std::string(hxcodes::DiskWordOf(static_cast<HX_U8>(disk.info.Number("Status"))));
}

std::vector<Disk> LoadDisks(Controller& controller) {
    std::vector<Disk> disks;
    for (const unsigned adapter : controller.Selected()) LoadDisksOf(controller, adapter, disks);
    return disks;
}

}  // namespace vexorctl

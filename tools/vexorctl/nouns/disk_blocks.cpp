#include "nouns/disk_blocks.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "codes/code_table.h"
#include "common/address.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/library_record.h"
#include "model/virtual_disks.h"
#include "nouns/disk_targets.h"
#include "nouns/find_object.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/present.h"

namespace vexorctl::disk_noun {

namespace {

using fields::Block_Info;
using fields::RCT_Record;
using hxcodes::CodeTable;
using enum Kind;
using enum Place;

constexpr std::uint64_t kNoVirtualDisk = 255;  // in the records of blocks

struct Block {
    Address disk;
    std::uint64_t id;
    Record<Block_Info> info;
};

constexpr Column<Block> kBlockColumns[] = {
    {{"address", "DISK", kAddress, kTable, "The address of the disk it lies on"},
     [](const Block& it) { return TextCell(it.disk.Text()); }},
    {Always({"block", "BLOCK", kNumber, kTable, "Its number on the adapter"}),
     [](const Block& it) { return NumberCell(it.id); }},
    {{"start_lba", "START", kNumber, kTable, "Its first sector"},
     [](const Block& it) { return FieldCell(it.info, Block_Info::StartLBA); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"},
     [](const Block& it) { return SectorsAt(it.info, Block_Info::Size); }},
    {{"vd", "VD", kReference, kTable, "The virtual disk it belongs to"},
     [](const Block& it) {
         const auto owner = it.info[Block_Info::LDID];
         if (!owner) return Unknown();
         if (*owner == kNoVirtualDisk || *owner == kNoObject) return None();
         return TextCell(Address{.adapter = it.disk.adapter,
                                 .kind = ObjectKind::kVirtualDisk,
                                 .id = static_cast<unsigned>(*owner)}
                             .Text());
     }},
    {{"state", "STATE", kCode, kTable, "Its state", &CodeTable::states},
     [](const Block& it) { return FieldCell(it.info, Block_Info::Status); }},
    {{"flags", "FLAGS", kBits, kTable, "What it is there for", &CodeTable::block_bits},
     [](const Block& it) { return FieldCell(it.info, Block_Info::Flags); }},
};

// The targets are looked up first, because a disk without blocks has no row here and is no fault.
bool IsWanted(const std::vector<Address>& wanted, const Address& disk) {
    return wanted.empty() || std::ranges::any_of(wanted, [&](const Address& each) {
               return each.kind == ObjectKind::kAdapter ? each.adapter == disk.adapter
                                                        : each == disk;
           });
}

constexpr ListSource kBlocksOfDiskList = ListOf(
    calls::HX_BLK_GetHDBlock::Result::Info,
    +[](const View<fields::HD_Block_Info>& disk) { return disk[fields::HD_Block_Info::ID]; });

// Adds the blocks of the wanted disks. A block that a disk lists but that has no record becomes a
// row, too, of which only the number is known.
void AddBlocks(Controller& controller, unsigned adapter, const std::vector<Address>& wanted,
               std::vector<Block>& blocks) {
    auto all = controller.ReadList(adapter, kBlockList);
    for (const auto& [disk, record] : controller.ReadList(adapter, kBlocksOfDiskList).items) {
        const Address address{
            .adapter = adapter, .kind = ObjectKind::kDisk, .id = static_cast<unsigned>(disk)};
        if (!IsWanted(wanted, address)) continue;
        const auto ids = record[fields::HD_Block_Info::BlockIDs];
        if (!ids) {
            controller.Note({.address = address.Text(),
                             .function = std::string(kBlocksOfDiskList.function),
                             .name = "unreadable",
                             .message = "which blocks it carries is not told"},
                            Exit::kRefused);
            continue;
        }
        for (const std::uint64_t id : *ids) {
            if (id != kNoObject) blocks.push_back({address, id, all.Take(id)});
        }
    }
}

struct Remapped {
    Address disk;
    Record<RCT_Record> record;
};

constexpr Column<Remapped> kRemappedColumns[] = {
    {{"address", "DISK", kAddress, kTable, "The address of the disk"},
     [](const Remapped& it) { return TextCell(it.disk.Text()); }},
    {{"lba", "LBA", kNumber, kTable, "The first of the sectors"},
     [](const Remapped& it) { return FieldCell(it.record, RCT_Record::lba); }},
    {{"sectors", "SECTORS", kNumber, kTable, "Their number"},
     [](const Remapped& it) { return FieldCell(it.record, RCT_Record::sec); }},
    {{"reason", "REASON", kCode, kTable, "Why they have been remapped", &CodeTable::remap_reasons},
     [](const Remapped& it) { return FieldCell(it.record, RCT_Record::flag); }},
};

}  // namespace

std::vector<ColumnInfo> BlockColumns() { return InfoOf(kBlockColumns); }

Exit ListBlocks(Invocation& invocation) {
    Controller& controller = invocation.controller();
    std::vector<Address> wanted;
    for (const std::string& target : invocation.targets()) {
        const Selector selector = ParseSelector(target);
        const bool is_adapter = selector.form == Selector::Form::kAddress &&
                                selector.address.kind == ObjectKind::kAdapter;
        wanted.push_back(
            FindObject(invocation, is_adapter ? ObjectKind::kAdapter : ObjectKind::kDisk, target));
    }
    SelectAdapters(invocation);
    std::vector<Block> blocks;
    for (const unsigned adapter : controller.Selected()) {
        AddBlocks(controller, adapter, wanted, blocks);
    }
    return Present(invocation, Tabulated(invocation, kBlockColumns, blocks));
}

std::vector<ColumnInfo> RemappedColumns() { return InfoOf(kRemappedColumns); }

Exit ListRemapped(Invocation& invocation) {
    using Function = calls::HX_PD_GetRCT;
    constexpr std::uint64_t kPage = 1000;
    const Address address = FindTarget(invocation, ObjectKind::kDisk);
    Controller& controller = invocation.controller();
    std::vector<Remapped> all;
    for (std::uint64_t start = 0;;) {
        const auto page =
            controller.Get(address.Text(), Request<Function>{{Function::AdapterID, address.adapter},
                                                             {Function::HD_ID, address.id},
                                                             {Function::n, kPage},
                                                             {Function::s, start},
                                                             {Function::e, start + kPage - 1}});
        if (!page) break;
        const std::size_t before = all.size();
        for (auto& record : (*page)[Function::Result::Record]) {
            all.push_back({address, std::move(record)});
        }
        start += all.size() - before;
        const auto count = (*page)[Function::Result::Count];
        if (!count) {
            controller.Note({.address = address.Text(),
                             .function = std::string(Function::kName),
                             .name = "unreadable",
                             .message = "how many sectors have been remapped is not told"},
                            Exit::kRefused);
        }
        if (all.size() == before || start >= count.value_or(0)) break;
    }
    return Present(invocation, Tabulated(invocation, kRemappedColumns, all));
}

}  // namespace vexorctl::disk_noun

// The rules that a machine must satisfy between two calls.
//
// The rules only read the rows and repair nothing. Sentences name an object by its address, as
// hxsimctl does: a0/pd3 is disk 3 of adapter 0.
#include "model/hxsim_invariants.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "model/hxsim_redundancy.h"
#include "model/hxsim_stripes.h"

namespace hxsim {
namespace {

constexpr HX_U16 kLastVirtualDisk = 254;  // 255 stands for none

std::string Text(std::string_view text) { return std::string(text); }

template <class Number>
requires std::is_integral_v<Number> std::string Text(Number number) {
    return std::to_string(number);
}

// The name of a code, or its number when it has no name.
template <hxcodes::CodeEnum Code>
std::string NameOr(Code code) {
    const std::string_view name = hxcodes::NameOf(TableOf(code), NumberOf(code));
    return name.empty() ? "code " + std::to_string(NumberOf(code)) : std::string(name);
}

// The rules for one adapter.
class AdapterCheck {
public:
    AdapterCheck(const Adapter& adapter, std::vector<std::string>& broken)
        : adapter_(adapter), broken_(broken), known_(broken.size()) {}

    void Run() {
        CheckIds();
        if (broken_.size() != known_) return;  // the other rules find rows by ID
        CheckDisks();
        CheckBlocks();
        CheckTiling();
        CheckVirtualDisks();
        CheckGroups();
        CheckHomes();
        CheckActivities();
        CheckRemaps();
        CheckDevices();
        CheckElements();
        CheckBattery();
        CheckImages();
        CheckEvents();
        // States are computed from the rows above, so they are checked only when those are sound.
        if (broken_.size() == known_) CheckStates();
    }

private:
    template <class... Part>
    void Say(const Part&... parts) {
        broken_.push_back((Text(parts) + ...));
    }

    // ---- Addresses ----

    template <class Id>
    std::string Address(std::string_view kind, Id id) const {
        return 'a' + Text(adapter_.id) + '/' + Text(kind) + Text(id);
    }
    std::string Of(const Disk& disk) const { return Address("pd", disk.id); }
    std::string Of(const Block& block) const { return Address("blk", block.id); }
    std::string Of(const VirtualDisk& virtual_disk) const { return Address("vd", virtual_disk.id); }
    std::string Of(const DiskGroup& group) const { return Address("dg", group.id); }
    std::string Of(const Element& element) const {
        return Address("enc", element.enclosure) + "/el" + Text(element.number);
    }
    std::string Of(Owner of, HX_U16 owner) const {
        switch (of) {
            case Owner::kVirtualDisk:
                return Address("vd", owner);
            case Owner::kDiskGroup:
                return Address("dg", owner);
            case Owner::kDisk:
                break;
        }
        return Address("pd", owner);
    }
    std::string Adapters() const { return 'a' + Text(adapter_.id); }

    // ---- IDs ----

    template <class Rows>
    void CheckAscending(const Rows& rows, std::string_view kind) {
        const auto key = [](const auto& row) { return row.id; };
        const auto wrong = std::ranges::adjacent_find(rows, std::ranges::greater_equal{}, key);
        if (wrong == rows.end()) return;
        const auto next = std::next(wrong);
        Say(Address(kind, next->id), " stands behind ", Address(kind, wrong->id),
            "; IDs are unique and ascend.");
    }

    void CheckIds() {
        CheckAscending(adapter_.disks, "pd");
        CheckAscending(adapter_.blocks, "blk");
        CheckAscending(adapter_.virtual_disks, "vd");
        CheckAscending(adapter_.disk_groups, "dg");
        CheckAscending(adapter_.activities, "activity");
        CheckAscending(adapter_.expanders, "exp");
        CheckAscending(adapter_.port_multipliers, "pm");
        CheckAscending(adapter_.enclosures, "enc");
    }

    // ---- Disks ----

    void CheckDisks() {
        std::set<std::uint64_t> names;
        std::set<std::pair<HX_U16, HX_U16>> slots;
        for (const Disk& disk : adapter_.disks) {
            if (!names.insert(disk.wwn).second) {
                Say(Of(disk), " has the world wide name of another disk.");
            }
            if (disk.enclosure != kNoId && disk.slot != kNoId &&
                !slots.insert({disk.enclosure, disk.slot}).second) {
                Say(Of(disk), " sits in slot ", disk.slot, " of enclosure ", disk.enclosure,
                    ", where another disk sits.");
            }
            if (disk.spare == Spare::kGroup &&
                Find(adapter_.disk_groups, disk.spare_group) == nullptr) {
                Say(Of(disk), " is a spare of disk group ", disk.spare_group,
                    ", which is not there.");
            }
            if (disk.spare != Spare::kNone && Carries(disk.id)) {
                Say(Of(disk), " is a spare and carries blocks of a virtual disk.");
            }
            if (disk.spare != Spare::kNone && Serves(disk.id)) {
                Say(Of(disk), " is a spare and serves a virtual disk or a disk group.");
            }
        }
    }

    bool Carries(HX_U16 disk) const {
        return std::ranges::any_of(adapter_.blocks, [&](const Block& block) {
            return block.disk == disk && block.virtual_disk != kNoVirtualDisk;
        });
    }

    bool Serves(HX_U16 disk) const {
        return std::ranges::any_of(adapter_.homes,
                                   [&](const Home& home) { return home.disk == disk; });
    }

    // ---- Blocks ----

    // The number of positions, including those that a running migration adds.
    unsigned TargetWidth(const VirtualDisk& virtual_disk) const {
        const Activity* const migration = Migration(virtual_disk);
        return migration == nullptr ? virtual_disk.width
                                    : std::max(virtual_disk.width, migration->width);
    }

    const Activity* FindActivity(ActivityKind kind, Owner of, HX_U16 owner) const {
        const auto found = std::ranges::find_if(adapter_.activities, [&](const Activity& each) {
            return each.kind == kind && each.of == of && each.owner == owner;
        });
        return found == adapter_.activities.end() ? nullptr : &*found;
    }

    // The migration or copyback that concerns the virtual disk: its own, or on a disk group the
    // group's.
    const Activity* FindMove(ActivityKind kind, const VirtualDisk& virtual_disk) const {
        return virtual_disk.group == kNoId
                   ? FindActivity(kind, Owner::kVirtualDisk, virtual_disk.id)
                   : FindActivity(kind, Owner::kDiskGroup, virtual_disk.group);
    }

    const Activity* Migration(const VirtualDisk& virtual_disk) const {
        return FindMove(ActivityKind::kMigration, virtual_disk);
    }

    bool WritesTargets(const VirtualDisk& virtual_disk) const {
        return Migration(virtual_disk) != nullptr ||
               FindMove(ActivityKind::kCopyback, virtual_disk) != nullptr;
    }

    void CheckBlocks() {
        std::set<std::tuple<HX_U16, HX_U8, bool>> positions;
        for (const Block& block : adapter_.blocks) {
            if (Find(adapter_.disks, block.disk) == nullptr) {
                Say(Of(block), " lies on disk ", block.disk, ", which is not there.");
            }
            if (block.state != State::kOptimal && block.state != State::kRebuilding &&
                block.state != State::kDegraded) {
                Say(Of(block), " is ", NameOr(block.state),
                    "; a block is optimal, rebuilding or degraded.");
            }
            if (block.virtual_disk == kNoVirtualDisk) {
                CheckFree(block);
                continue;
            }
            if (!positions.insert({block.virtual_disk, block.position, block.target}).second) {
                Say(Of(block), " is a second block of position ", block.position, " of ",
                    Address("vd", block.virtual_disk), ".");
            }
            CheckUsed(block);
        }
    }

    void CheckFree(const Block& block) {
        if (block.target || block.position != 0 || block.state != State::kOptimal) {
            Say(Of(block), " is free and has a state, a position or a purpose.");
        }
    }

    void CheckUsed(const Block& block) {
        const VirtualDisk* const virtual_disk = Find(adapter_.virtual_disks, block.virtual_disk);
        if (virtual_disk == nullptr) {
            Say(Of(block), " belongs to virtual disk ", block.virtual_disk,
                ", which is not there.");
            return;
        }
        const unsigned width =
            block.target ? TargetWidth(*virtual_disk) : unsigned{virtual_disk->width};
        if (block.position >= width) {
            Say(Of(block), " is position ", block.position, " of ", Of(*virtual_disk),
                ", which has ", width, ".");
        }
        if (block.target && !WritesTargets(*virtual_disk)) {
            Say(Of(block), " is written by a migration or copyback of ", Of(*virtual_disk),
                ", and none is there.");
        }
    }

    // The blocks of each disk leave no gap and never overlap.
    void CheckTiling() {
        std::vector<const Block*> blocks;
        blocks.reserve(adapter_.blocks.size());
        for (const Block& block : adapter_.blocks) blocks.push_back(&block);
        std::ranges::sort(blocks, {}, [](const Block* block) {
            return std::tuple(block->disk, block->start, block->id);
        });
        auto next = blocks.begin();
        for (const Disk& disk : adapter_.disks) {
            while (next != blocks.end() && (*next)->disk < disk.id) ++next;
            const auto first = next;
            while (next != blocks.end() && (*next)->disk == disk.id) ++next;
            CheckTiling(disk, {first, next});
        }
    }

    void CheckTiling(const Disk& disk, std::span<const Block* const> blocks) {
        if (blocks.size() > adapter_.info.MaxBlockPerPD) {
            Say(Of(disk), " has ", blocks.size(), " blocks; the adapter allows ",
                adapter_.info.MaxBlockPerPD, ".");
        }
        Sectors end = 0;
        const Block* last = nullptr;
        for (const Block* const block : blocks) {
            if (block->sectors == 0) Say(Of(*block), " has no sectors.");
            if (block->start > end) {
                Say(Of(disk), " has sectors ", end, " to ", block->start - 1, " in no block.");
            } else if (block->start < end) {
                Say(Of(*block), " overlaps ", Of(*last), " at sector ", block->start, " of ",
                    Of(disk), ".");
            } else if (last != nullptr && last->virtual_disk == kNoVirtualDisk &&
                       block->virtual_disk == kNoVirtualDisk) {
                Say(Of(*block), " and ", Of(*last), " are free and touch.");
            }
            end = std::max(end, block->start + block->sectors);
            last = block;
        }
        const Sectors usable = UsableSectors(disk);
        if (end < usable) {
            Say(Of(disk), " has sectors ", end, " to ", usable - 1, " in no block.");
        } else if (end > usable) {
            Say(Of(*last), " reaches sector ", end, " of ", Of(disk), ", whose metadata begins at ",
                usable, ".");
        }
    }

    // ---- Virtual disks ----

    void CheckVirtualDisks() {
        if (adapter_.virtual_disks.size() > adapter_.info.MaxLogicalDrive) {
            Say(Adapters(), " has ", adapter_.virtual_disks.size(), " virtual disks; it allows ",
                adapter_.info.MaxLogicalDrive, ".");
        }
        for (const VirtualDisk& virtual_disk : adapter_.virtual_disks) {
            if (virtual_disk.id > kLastVirtualDisk) {
                Say(Of(virtual_disk), " has an ID above ", kLastVirtualDisk, ".");
            }
            CheckName(Of(virtual_disk), virtual_disk.name);
            if (virtual_disk.group != kNoId) CheckMember(virtual_disk);
            CheckSizes(virtual_disk);
        }
    }

    void CheckName(const std::string& address, const std::string& name) {
        if (name.size() > HX_NAME_SIZE) {
            Say(address, " has a name of ", name.size(), " bytes; ", HX_NAME_SIZE, " fit.");
        }
    }

    // Rules for a virtual disk that lies on a disk group.
    void CheckMember(const VirtualDisk& virtual_disk) {
        const DiskGroup* const group = Find(adapter_.disk_groups, virtual_disk.group);
        if (group == nullptr) {
            Say(Of(virtual_disk), " lies on disk group ", virtual_disk.group,
                ", which is not there.");
            return;
        }
        if (virtual_disk.level != group->level || virtual_disk.legs != group->legs ||
            virtual_disk.width != group->width) {
            Say(Of(virtual_disk), " differs from ", Of(*group), " in level, legs or width.");
        }
        if (virtual_disk.slot >= HX_MAX_VD_SLOTS) {
            Say(Of(virtual_disk), " lies in slot ", virtual_disk.slot, "; slots end at ",
                HX_MAX_VD_SLOTS - 1, ".");
        }
        for (const VirtualDisk& other : adapter_.virtual_disks) {
            if (other.id < virtual_disk.id && other.group == virtual_disk.group &&
                other.slot == virtual_disk.slot) {
                Say(Of(virtual_disk), " lies in slot ", virtual_disk.slot, " of ", Of(*group),
                    ", where ", Of(other), " lies.");
            }
        }
    }

    void CheckSizes(const VirtualDisk& virtual_disk) {
        const Block* first = nullptr;
        const Block* first_target = nullptr;
        std::set<HX_U16> disks;
        for (const Block& block : adapter_.blocks) {
            if (block.virtual_disk != virtual_disk.id) continue;
            const Block*& like = block.target ? first_target : first;
            if (like == nullptr) like = &block;
            if (block.sectors != like->sectors) {
                Say(Of(block), " has ", block.sectors, " sectors and ", Of(*like), " has ",
                    like->sectors, "; those of ", Of(virtual_disk), " are of one size.");
            }
            if (!block.target && !disks.insert(block.disk).second) {
                Say(Of(virtual_disk), " has two positions on ", Address("pd", block.disk), ".");
            }
        }
        if (!CheckLevel(virtual_disk)) return;
        const Sectors held =
            first == nullptr
                ? virtual_disk.size
                : DataSectors(virtual_disk.level, virtual_disk.width, virtual_disk.legs,
                              virtual_disk.stripe_kib, first->sectors);
        if (virtual_disk.size == 0) {
            Say(Of(virtual_disk), " has no size.");
        } else if (virtual_disk.size > held) {
            Say(Of(virtual_disk), " has ", virtual_disk.size, " sectors; its blocks hold ", held,
                ".");
        }
    }

    // Whether the virtual disk's or disk group's level, width and stripes are possible.
    template <class Row>
    bool CheckLevel(const Row& row) {
        const LevelRow* const level = hxcodes::FindCode(hxcodes::kLevels, NumberOf(row.level));
        if (level == nullptr || !CanBeMade(*level, row.width, row.legs)) {
            Say(Of(row), " is ", NameOr(row.level), " of ", row.width,
                " disks, which that level cannot be made of.");
            return false;
        }
        if (row.stripe_kib == 0) {
            Say(Of(row), " has stripes of 0 KiB.");
            return false;
        }
        return true;
    }

    // ---- Disk groups ----

    void CheckGroups() {
        for (const DiskGroup& group : adapter_.disk_groups) {
            CheckName(Of(group), group.name);
            CheckLevel(group);
        }
        // A disk group has its disks to itself: no other virtual disk has blocks on them.
        for (const Home& home : adapter_.homes) {
            if (home.of != Owner::kDiskGroup || home.disk == kNoId) continue;
            for (const Block& block : adapter_.blocks) {
                if (block.disk != home.disk || block.virtual_disk == kNoVirtualDisk) continue;
                const VirtualDisk* const virtual_disk =
                    Find(adapter_.virtual_disks, block.virtual_disk);
                if (virtual_disk == nullptr || virtual_disk->group == home.owner) continue;
                Say(Address("pd", home.disk), " serves ", Address("dg", home.owner),
                    " and carries ", Of(block), " of ", Of(*virtual_disk), ".");
            }
        }
    }

    // ---- Homes ----

    void CheckHomes() {
        const auto key = [](const Home& home) {
            return std::tuple(home.of, home.owner, home.position);
        };
        if (std::ranges::adjacent_find(adapter_.homes, std::ranges::greater_equal{}, key) !=
            adapter_.homes.end()) {
            Say(Adapters(), " has homes out of order or twice.");
        }
        std::set<HX_U16> of_groups;
        for (const Home& home : adapter_.homes) {
            CheckHome(home);
            if (home.of == Owner::kDiskGroup && home.disk != kNoId &&
                !of_groups.insert(home.disk).second) {
                Say(Address("pd", home.disk), " serves two positions of disk groups.");
            }
        }
        for (const VirtualDisk& virtual_disk : adapter_.virtual_disks) {
            CheckHomesOf(virtual_disk);
        }
        for (const DiskGroup& group : adapter_.disk_groups) {
            CheckComplete(Owner::kDiskGroup, group.id, group.width);
        }
    }

    void CheckHome(const Home& home) {
        const std::string position =
            "position " + Text(home.position) + " of " + Of(home.of, home.owner);
        const bool of_disks = home.of == Owner::kVirtualDisk;
        const VirtualDisk* const virtual_disk =
            of_disks ? Find(adapter_.virtual_disks, home.owner) : nullptr;
        const DiskGroup* const group =
            home.of == Owner::kDiskGroup ? Find(adapter_.disk_groups, home.owner) : nullptr;
        if (virtual_disk == nullptr && group == nullptr) {
            Say("A home is kept for ", position, ", which is not there.");
            return;
        }
        if (virtual_disk != nullptr && virtual_disk->group != kNoId) {
            Say("A home is kept for ", position, ", which lies on a disk group.");
        }
        if (home.position >= (of_disks ? virtual_disk->width : group->width)) {
            Say("A home is kept for ", position, ", which has fewer.");
        }
        if (home.disk != kNoId && Find(adapter_.disks, home.disk) == nullptr) {
            Say("Disk ", home.disk, " serves ", position, " and is not there.");
        }
        if (home.home != kNoId && Find(adapter_.disks, home.home) == nullptr) {
            Say("Disk ", home.home, " is home of ", position, " and is not there.");
        }
    }

    const Home* FindHome(Owner of, HX_U16 owner, HX_U8 position) const {
        const auto found = std::ranges::find_if(adapter_.homes, [&](const Home& home) {
            return home.of == of && home.owner == owner && home.position == position;
        });
        return found == adapter_.homes.end() ? nullptr : &*found;
    }

    void CheckComplete(Owner of, HX_U16 owner, HX_U8 width) {
        for (HX_U8 position = 0; position < width; ++position) {
            if (FindHome(of, owner, position) == nullptr) {
                Say("No home is kept for position ", position, " of ", Of(of, owner), ".");
            }
        }
    }

    // The home rows agree with the disks on which the blocks lie.
    void CheckHomesOf(const VirtualDisk& virtual_disk) {
        const bool grouped = virtual_disk.group != kNoId;
        const Owner of = grouped ? Owner::kDiskGroup : Owner::kVirtualDisk;
        const HX_U16 owner = grouped ? virtual_disk.group : virtual_disk.id;
        if (!grouped) CheckComplete(of, owner, virtual_disk.width);
        std::map<HX_U8, HX_U16> disks;  // by position
        for (const Block& block : adapter_.blocks) {
            if (block.virtual_disk == virtual_disk.id && !block.target) {
                disks[block.position] = block.disk;
            }
        }
        for (HX_U8 position = 0; position < virtual_disk.width; ++position) {
            const Home* const home = FindHome(of, owner, position);
            if (home == nullptr) continue;
            const auto block = disks.find(position);
            if (block == disks.end()) {
                if (home->disk == kNoId) continue;
                Say("Position ", position, " of ", Of(virtual_disk), " has no block, and ",
                    Address("pd", home->disk), " serves it.");
            } else if (home->disk == kNoId) {
                Say("Position ", position, " of ", Of(virtual_disk), " has a block on ",
                    Address("pd", block->second), ", and no disk serves it.");
            } else if (home->disk != block->second) {
                Say("Position ", position, " of ", Of(virtual_disk), " has its block on ",
                    Address("pd", block->second), ", and ", Address("pd", home->disk),
                    " serves it.");
            }
        }
    }

    // ---- States ----

    void CheckStates() {
        for (const VirtualDisk& virtual_disk : adapter_.virtual_disks) {
            CheckState(virtual_disk);
        }
        for (const DiskGroup& group : adapter_.disk_groups) CheckState(group);
    }

    template <class Row>
    void CheckState(const Row& row) {
        const State state = StateOf(adapter_, row);
        if (row.state == state) return;
        Say(Of(row), " was announced as ", NameOr(row.state), " and is ", NameOr(state), ".");
    }

    // ---- Activities ----

    void CheckActivities() {
        std::set<std::pair<Owner, HX_U16>> busy;  // not counting migrations that wait
        for (const Activity& activity : adapter_.activities) {
            const std::string address = Of(activity.of, activity.owner);
            const std::string what = NameOr(activity.kind);
            if (!WaitsForRebuild(activity) && !busy.insert({activity.of, activity.owner}).second) {
                Say(address, " has two activities.");
            }
            if (!IsThere(activity.of, activity.owner)) {
                Say("A ", what, " runs on ", address, ", which is not there.");
            }
            if (!Suits(activity.kind, activity.of)) {
                Say("A ", what, " runs on ", address, ", which has no such activity.");
            }
            if (activity.state != ActivityState::kRunning &&
                activity.state != ActivityState::kPaused &&
                activity.state != ActivityState::kAutoPaused) {
                Say("The ", what, " of ", address, " is ", NameOr(activity.state),
                    "; an activity is running, paused or auto_paused.");
            }
            if (activity.done > activity.total) {
                Say("The ", what, " of ", address, " has done ", activity.done, " of ",
                    activity.total, " sectors.");
            }
            if (activity.announced > 100) {
                Say("The ", what, " of ", address, " was announced at ", activity.announced,
                    " percent.");
            }
        }
    }

    bool WaitsForRebuild(const Activity& activity) const {
        return activity.kind == ActivityKind::kMigration &&
               activity.state != ActivityState::kRunning &&
               FindActivity(ActivityKind::kRebuild, activity.of, activity.owner) != nullptr;
    }

    bool IsThere(Owner of, HX_U16 owner) const {
        switch (of) {
            case Owner::kVirtualDisk:
                return Find(adapter_.virtual_disks, owner) != nullptr;
            case Owner::kDiskGroup:
                return Find(adapter_.disk_groups, owner) != nullptr;
            case Owner::kDisk:
                return Find(adapter_.disks, owner) != nullptr;
        }
        return false;
    }

    static bool Suits(ActivityKind kind, Owner of) {
        const auto* const row = hxcodes::FindCode(hxcodes::kActivities, NumberOf(kind));
        if (row == nullptr) return false;
        return row->runs_on == (of == Owner::kDisk ? RunsOn::kDisk : RunsOn::kVirtualDisk);
    }

    // ---- Remapped sectors ----

    void CheckRemaps() {
        const Remap* last = nullptr;
        for (const Remap& remap : adapter_.remaps) {
            const Disk* const disk = Find(adapter_.disks, remap.disk);
            if (disk == nullptr) {
                Say("Sectors of disk ", remap.disk, " are remapped, which is not there.");
            } else if (remap.sectors == 0 || remap.lba >= disk->sectors ||
                       remap.sectors > disk->sectors - remap.lba) {
                Say("Remapped sector ", remap.lba, " of ", Of(*disk), " and the ", remap.sectors,
                    " from there on are not all on the disk.");
            }
            if (last != nullptr &&
                std::tuple(last->disk, last->lba) >= std::tuple(remap.disk, remap.lba)) {
                Say("Remapped sector ", remap.lba, " of ", Address("pd", remap.disk),
                    " is out of order or there twice.");
            }
            last = &remap;
        }
    }

    // ---- What hangs on what ----

    bool HasDevice(Device kind, HX_U16 id) const {
        switch (kind) {
            case Device::kAdapter:
                return true;
            case Device::kExpander:
                return Find(adapter_.expanders, id) != nullptr;
            case Device::kPortMultiplier:
                return Find(adapter_.port_multipliers, id) != nullptr;
            case Device::kEnclosure:
                return Find(adapter_.enclosures, id) != nullptr;
            case Device::kDisk:
                break;
        }
        return false;
    }

    template <class Rows>
    void CheckAttachments(const Rows& rows, std::string_view kind) {
        for (const auto& row : rows) {
            if (!HasDevice(row.parent, row.parent_id)) {
                Say(Address(kind, row.id), " hangs on ", NameOr(row.parent), " ", row.parent_id,
                    ", which is not there.");
            }
        }
    }

    void CheckDevices() {
        CheckAttachments(adapter_.disks, "pd");
        CheckAttachments(adapter_.expanders, "exp");
        CheckAttachments(adapter_.port_multipliers, "pm");
        CheckAttachments(adapter_.enclosures, "enc");
        for (const Expander& expander : adapter_.expanders) {
            const Expander* up = &expander;
            std::size_t steps = 0;
            while (up != nullptr && up->parent == Device::kExpander &&
                   steps <= adapter_.expanders.size()) {
                up = Find(adapter_.expanders, up->parent_id);
                ++steps;
            }
            if (steps > adapter_.expanders.size()) {
                Say(Address("exp", expander.id), " hangs on itself.");
            }
        }
    }

    // ---- Enclosures ----

    void CheckElements() {
        const Element* last = nullptr;
        for (const Element& element : adapter_.elements) {
            if (Find(adapter_.enclosures, element.enclosure) == nullptr) {
                Say(Of(element), " is in enclosure ", element.enclosure, ", which is not there.");
            }
            if (last != nullptr && std::tuple(last->enclosure, last->number) >=
                                       std::tuple(element.enclosure, element.number)) {
                Say(Of(element), " stands behind ", Of(*last), "; elements are unique and ascend.");
            }
            if (!IsCode(element.type)) {
                Say(Of(element), " is of type ", NumberOf(element.type), ", which is none.");
            }
            if (!IsCode(element.status)) {
                Say(Of(element), " has the status ", NumberOf(element.status), ", which is none.");
            }
            last = &element;
        }
    }

    // ---- The battery ----

    void CheckBattery() {
        if (adapter_.batteries.size() > 1) {
            Say(Adapters(), " has ", adapter_.batteries.size(), " batteries; one fits.");
        }
        const std::string battery = Adapters() + "/bbu";
        for (const Battery& each : adapter_.batteries) {
            const BBU_Info& info = each.info;
            if (info.percentage > 100)
                Say(battery, " is charged to ", info.percentage, " percent.");
            if (info.percent_to_charge > 100) {
                Say(battery, " is to be charged below ", info.percent_to_charge, " percent.");
            }
            if (info.maxCapacity < info.supportMinCapacity ||
                info.maxCapacity > info.supportMaxCapacity) {
                Say(battery, " holds ", info.maxCapacity, " mAh; what can be set is ",
                    info.supportMinCapacity, " to ", info.supportMaxCapacity, ".");
            }
            if (info.curCapacity > info.maxCapacity) {
                Say(battery, " has ", info.curCapacity, " of ", info.maxCapacity, " mAh.");
            }
            if (each.charge_at_since > info.maxCapacity) {
                Say(battery, " had ", each.charge_at_since, " of ", info.maxCapacity, " mAh.");
            }
            if (info.volt_lowerbound > info.volt_upperbound) {
                Say(battery, " has a lowest voltage above its highest.");
            }
            if (info.temp_lowerbound > info.temp_upperbound) {
                Say(battery, " has a lowest temperature above its highest.");
            }
        }
    }

    // ---- Flash ----

    void CheckImages() {
        std::set<Image> types;
        for (const FlashImage& image : adapter_.images) {
            const std::string name = NameOr(image.type);
            if (!IsCode(image.type)) {
                Say(Adapters(), " has a flash image of type ", NumberOf(image.type),
                    ", which is none.");
            }
            if (!types.insert(image.type).second) {
                Say(Adapters(), " has the flash image ", name, " twice.");
            }
            if (image.erased && image.healthy) {
                Say(Adapters(), " has the flash image ", name, " erased and healthy.");
            }
        }
    }

    // ---- Events ----

    void CheckEvents() {
        if (adapter_.events.size() > kMostEvents) {
            Say(Adapters(), " has ", adapter_.events.size(), " events in its queue; it holds ",
                kMostEvents, ".");
        }
        HX_U32 last = 0;
        for (const QueuedEvent& queued : adapter_.events) {
            if (queued.number <= last) {
                Say("Event ", queued.number, " of ", Adapters(), " stands behind event ", last,
                    "; numbers are above 0 and ascend.");
            }
            if (queued.number >= adapter_.next_event) {
                Say("Event ", queued.number, " of ", Adapters(), " has a number that comes after ",
                    adapter_.next_event, ", the next one's.");
            }
            if (queued.event.SequenceNo != queued.number || queued.event.AdapterID != adapter_.id) {
                Say("Event ", queued.number, " of ", Adapters(), " says that it is event ",
                    queued.event.SequenceNo, " of a", queued.event.AdapterID, ".");
            }
            if (queued.event.SenseDataLength > sizeof(queued.event.SenseData)) {
                Say("Event ", queued.number, " of ", Adapters(), " has ",
                    queued.event.SenseDataLength, " bytes of sense data; ",
                    sizeof(queued.event.SenseData), " fit.");
            }
            last = queued.number;
        }
    }

    const Adapter& adapter_;
    std::vector<std::string>& broken_;
    const std::size_t known_;  // broken rules of the adapters before this one
};

}  // namespace

std::vector<std::string> Check(const Machine& machine) {
    std::vector<std::string> broken;
    if (machine.adapters.empty() || machine.adapters.size() > kMostAdapters) {
        broken.push_back("The machine has " + Text(machine.adapters.size()) +
                         " adapters; 1 to 4 fit.");
    }
    if (machine.clock.speed < 0) broken.emplace_back("The clock runs backwards.");
    for (std::size_t place = 0; place < machine.adapters.size(); ++place) {
        if (machine.adapters[place].id != place) {
            broken.push_back("Adapter " + Text(machine.adapters[place].id) + " stands in place " +
                             Text(place) + "; adapters are numbered from 0.");
        }
        AdapterCheck(machine.adapters[place], broken).Run();
    }
    for (std::size_t i = 1; i < machine.injections.size(); ++i) {
        if (machine.injections[i - 1].id >= machine.injections[i].id) {
            broken.push_back("Injection " + Text(machine.injections[i].id) +
                             " stands behind injection " + Text(machine.injections[i - 1].id) +
                             "; numbers ascend.");
        }
    }
    return broken;
}

}  // namespace hxsim

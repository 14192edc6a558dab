#include "nouns/choose_disks.h"

#include <algorithm>
#include <utility>

#include "common/address.h"
#include "library_fields.h"
#include "model/controller_codes.h"
#include "model/exit_code.h"
#include "model/library_record.h"
#include "nouns/find_object.h"
#include "output/cell_text.h"

namespace vexorctl {

namespace {

using fields::HD_FreeSpaceInfo;
using fields::HD_Info;

std::optional<std::uint64_t> FreeSectors(const Disk& disk) {
    return disk.free_space[HD_FreeSpaceInfo::Size];
}

// Whether a disk holds data, judged by its boot record.
enum class Data { kNone, kHolds, kUnknown };
Data DataOn(const Disk& disk) {
    if (!disk.boot_record) return Data::kUnknown;
    return *disk.boot_record ? Data::kHolds : Data::kNone;
}

std::string_view RemarkOf(Data data) {
    switch (data) {
        case Data::kNone:
            return "";
        case Data::kHolds:
            return ", holds a boot record";
        case Data::kUnknown:
            return ", may hold a boot record";
    }
    return "";
}

bool IsFree(const Disk& disk) {
    return disk.state == kFreeState && disk.info[HD_Info::CanLogicalUsed].value_or(0) != 0 &&
           FreeSectors(disk).value_or(0) != 0;
}

// A disk with virtual disks may have room for another one, unless it belongs to a disk group, which
// takes all of it.
bool HasRoomBeside(const Disk& disk) {
    constexpr std::uint64_t kWorthTelling = 2 * 1024 * 1024;  // sectors: 1 GiB
    return disk.state == kConfiguredState && disk.group.presence == Presence::kNotOffered &&
           FreeSectors(disk).value_or(0) >= kWorthTelling;
}

// "a1/pd3, a1/pd4 (465.73 GiB each), a1/pd2 (465.73 GiB, holds a boot record)"
// At most `left` of them, which is counted down; the rest is counted.
std::string Listed(std::span<const Disk* const> disks, std::size_t& left) {
    const std::size_t all = disks.size();
    disks = disks.first(std::min(left, all));
    left -= disks.size();
    if (disks.empty()) return std::to_string(all) + (all == 1 ? " disk" : " disks");
    const auto remark = [](const Disk& disk) {
        return std::pair(SectorsText(FreeSectors(disk)), DataOn(disk));
    };
    std::string text;
    for (std::size_t at = 0; at < disks.size();) {
        std::size_t end = at;
        while (end < disks.size() && remark(*disks[end]) == remark(*disks[at])) {
            text.append(text.empty() ? "" : ", ").append(disks[end++]->address.Text());
        }
        const auto [size, data] = remark(*disks[at]);
        text.append(" (").append(size).append(end - at > 1 ? " each" : "");
        text.append(RemarkOf(data)).append(")");
        at = end;
    }
    if (disks.size() < all) text += " and " + std::to_string(all - disks.size()) + " more";
    return text;
}

std::string FreeOn(const std::vector<Disk>& disks, unsigned adapter, std::size_t& left) {
    std::vector<const Disk*> free_disks;
    std::vector<const Disk*> partly_free;
    for (const Disk& disk : disks) {
        if (disk.address.adapter != adapter) continue;
        if (IsFree(disk)) free_disks.push_back(&disk);
        if (HasRoomBeside(disk)) partly_free.push_back(&disk);
    }
    const auto data_last = [](const Disk* disk) { return DataOn(*disk); };
    std::ranges::stable_sort(free_disks, {}, data_last);
    const std::string name = "a" + std::to_string(adapter);
    std::string text =
        "; free on " + name + ": " + (free_disks.empty() ? "no disk" : Listed(free_disks, left));
    if (!partly_free.empty()) {
        text += "; with room beside virtual disks on " + name + ": " + Listed(partly_free, left);
    }
    return text;
}

using Choice = std::vector<Disk>;

// Every run of `count` disks that are next to each other in size.
std::vector<Choice> ChoicesOf(std::vector<Disk> disks, std::size_t count) {
    std::ranges::stable_sort(disks, {}, FreeSectors);
    std::vector<Choice> choices;
    for (std::size_t at = 0; at + count <= disks.size(); ++at) {
        const auto first = disks.begin() + static_cast<std::ptrdiff_t>(at);
        // This run has as much room as the one before, whose disks come first in the list: that one
        // is kept.
        if (!choices.empty() && FreeSectors(choices.back().front()) == FreeSectors(*first)) {
            continue;
        }
        choices.emplace_back(first, first + static_cast<std::ptrdiff_t>(count));
    }
    return choices;
}

// First the choices among disks with one kind of link; second, in case the first are not enough,
// the choices among all disks.
std::vector<std::vector<Choice>> Rounds(const std::vector<Disk>& disks, std::size_t count) {
    std::vector<std::optional<std::uint64_t>> links;
    for (const Disk& disk : disks) {
        const auto link = disk.info[HD_Info::ConnectionType];
        if (std::ranges::find(links, link) == links.end()) links.push_back(link);
    }
    std::vector<Choice> of_one_link;
    for (const auto& link : links) {
        std::vector<Disk> linked = disks;
        std::erase_if(linked,
                      [&](const Disk& disk) { return disk.info[HD_Info::ConnectionType] != link; });
        std::ranges::move(ChoicesOf(std::move(linked), count), std::back_inserter(of_one_link));
    }
    std::vector<std::vector<Choice>> rounds;
    rounds.push_back(std::move(of_one_link));
    if (links.size() > 1) rounds.push_back(ChoicesOf(disks, count));
    return rounds;
}

}  // namespace

std::string Described(const Disk& disk) {
    return disk.address.Text() + " (" + Shown(disk.info[HD_Info::Model]) + ", " +
           SectorsText(FreeSectors(disk)) + " free" + std::string(RemarkOf(DataOn(disk))) + ")";
}

std::vector<Disk> NamedDisks(Invocation& invocation, std::span<const std::string> typed) {
    std::vector<Address> addresses;
    for (const std::string& each : vexortools::WithRangesWritten(typed)) {
        addresses.push_back(FindObject(invocation, ObjectKind::kDisk, each));
        if (addresses.back().adapter != addresses.front().adapter) {
            throw UsageError("the disks are on several adapters");
        }
    }
    std::vector<Disk> all = LoadDisks(invocation.controller());
    std::vector<Disk> named;
    for (const Address& address : addresses) {
        for (Disk& disk : all) {
            if (disk.address == address) named.push_back(disk);
        }
    }
    return named;
}

std::string Ids(std::span<const Disk> disks) {
    std::string ids;
    for (const Disk& disk : disks) {
        ids.append(ids.empty() ? "" : " ").append(std::to_string(disk.address.id));
    }
    return ids;
}

std::vector<unsigned> IdsOf(std::span<const Disk> disks) {
    std::vector<unsigned> ids;
    for (const Disk& disk : disks) ids.push_back(disk.address.id);
    return ids;
}

std::vector<Disk> PickDisks(Invocation& invocation, std::size_t count, const SizeWish& size,
                            const RoomOfDisks& room) {
    // The caller refuses --disks 0.
    if (count == 0) return {};
    const unsigned adapter = FindAdapter(invocation);
    std::vector<Disk> disks = LoadDisks(invocation.controller());
    std::erase_if(disks,
                  [](const Disk& disk) { return !IsFree(disk) || DataOn(disk) != Data::kNone; });
    if (disks.size() < count) {
        throw Failure(Exit::kRefused,
                      std::to_string(count) + " disks are needed and a" + std::to_string(adapter) +
                          " has " + std::to_string(disks.size()) + " free without a boot record" +
                          Alternatives(invocation, adapter));
    }
    const auto least = [](const Choice& choice) { return FreeSectors(choice.front()); };
    const auto sum = [](const Choice& choice) {
        std::uint64_t sectors = 0;
        for (const Disk& disk : choice) sectors += FreeSectors(disk).value_or(0);
        return sectors;
    };
    std::uint64_t most = 0;
    for (std::vector<Choice>& choices : Rounds(disks, count)) {
        if (choices.empty()) continue;
        if (!size.sectors) return std::move(*std::ranges::max_element(choices, {}, least));
        std::ranges::stable_sort(choices, {}, sum);
        for (Choice& choice : choices) {
            const auto sectors = room(choice);
            // When the controller refuses to say how much room there is, no other choice helps
            // either; creating from this one will report the reason.
            if (!sectors || *sectors >= *size.sectors) return std::move(choice);
            most = std::max(most, *sectors);
        }
    }
    throw Failure(Exit::kRefused, "--size: no " + std::to_string(count) + " free disks of a" +
                                      std::to_string(adapter) + " give " + size.typed +
                                      "; the most is " + SectorsText(most) +
                                      Alternatives(invocation, adapter));
}

std::string Alternatives(Invocation& invocation, unsigned adapter) {
    Controller& controller = invocation.controller();
    if (!controller.codes().AreKnown()) {
        return "; which disks are free is not known: " + std::string(kCodesNotKnown);
    }
    const std::vector<unsigned> adapters = controller.Adapters();
    controller.Select(adapters);
    const std::vector<Disk> disks = LoadDisks(controller);
    std::size_t left = 8;
    std::string text = FreeOn(disks, adapter, left);
    for (const unsigned other : adapters) {
        if (other != adapter) text += FreeOn(disks, other, left);
    }
    return text;
}

std::string SubjectOf(const Invocation& invocation, const hxcodes::LevelRow& level,
                      std::span<const Disk> disks) {
    const auto legs = static_cast<unsigned>(invocation.Number("--legs", 255).value_or(0));
    const std::string rule = BrokenDiskRule(level, legs, disks.size());
    if (!rule.empty()) return rule + " (" + Addresses(disks) + ")";
    return "RAID " + std::string(level.number) + " over " + Addresses(disks);
}

std::string Addresses(std::span<const Disk> disks) {
    std::vector<std::string> addresses;
    for (const Disk& disk : disks) addresses.push_back(disk.address.Text());
    return Joined(addresses, ", ");
}

std::vector<std::string> KnownDisks(const Address& object,
                                    const std::optional<std::vector<std::uint64_t>>& disks) {
    if (disks) return AddressTexts(object.adapter, ObjectKind::kDisk, *disks);
    throw Failure(Exit::kRefused, object.Text() + ": its disks are not known; nothing was done");
}

Failure Refused(Invocation& invocation, unsigned adapter, const std::string& what,
                const Command& command, const Answer& answer) {
    Controller& controller = invocation.controller();
    const bool is_refused = answer.exit != Exit::kDone;
    const std::string reason = is_refused ? answer.complaint : "the result does not tell the size";
    return {is_refused ? answer.exit : Exit::kUndelivered,
            what + ": " + reason + Alternatives(invocation, adapter),
            controller.FaultOf(command, answer)};
}

void AddDisks(Change& change, std::span<const Disk> disks, const std::string& name) {
    for (const Disk& disk : disks) change.losses.push_back(Described(disk));
    for (const Disk& disk : disks) {
        const Data data = DataOn(disk);
        if (data == Data::kNone) continue;
        change.losses.push_back((data == Data::kHolds ? "the data on " : "any data on ") +
                                disk.address.Text() + " will be lost");
        change.confirm = name;
    }
}

}  // namespace vexorctl

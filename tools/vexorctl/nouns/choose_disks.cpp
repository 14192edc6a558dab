#include "nouns/choose_disks.h"

#include <algorithm>
#include <utility>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "nouns/creation_options.h"
#include "nouns/find_object.h"
#include "output/cell_text.h"
#include "shell/invocation.h"

namespace vexorctl {

namespace {

std::uint64_t FreeSectors(const Disk& disk) { return disk.free_space.Number("Size"); }

bool HoldsData(const Disk& disk) { return disk.boot_record.value_or(false); }

bool IsFree(const Disk& disk) {
    return DiskState(disk) == "free" && disk.info.Number("CanLogicalUsed") != 0 &&
           FreeSectors(disk) != 0;
}

// A disk of virtual disks may have room for more, where no disk group has it all.
bool HasRoomBeside(const Disk& disk) {
    constexpr std::uint64_t kWorthTelling = 2 * 1024 * 1024;  // sectors: 1 GiB
    return DiskState(disk) == "configured" && !disk.group && FreeSectors(disk) >= kWorthTelling;
}

// "a1/pd3, a1/pd4 (465.73 GiB each), a1/pd2 (465.73 GiB, holds a boot record)"
std::string Listed(std::span<const Disk* const> disks) {
    const auto remark = [](const Disk& disk) {
        return std::pair(SizeText(512 * FreeSectors(disk), {}), HoldsData(disk));
    };
    std::string text;
    for (std::size_t at = 0; at < disks.size();) {
        std::size_t end = at;
        while (end < disks.size() && remark(*disks[end]) == remark(*disks[at])) {
            text.append(text.empty() ? "" : ", ").append(disks[end++]->address.Text());
        }
        const auto [size, data] = remark(*disks[at]);
        text +=
            " (" + size + (end - at > 1 ? " each" : "") + (data ? ", holds a boot record)" : ")");
        at = end;
    }
    return text;
}

std::string FreeOn(const std::vector<Disk>& disks, unsigned adapter) {
    std::vector<const Disk*> free_disks;
    std::vector<const Disk*> partly_free;
    for (const Disk& disk : disks) {
        if (disk.address.adapter != adapter) continue;
        if (IsFree(disk)) free_disks.push_back(&disk);
        if (HasRoomBeside(disk)) partly_free.push_back(&disk);
    }
    const auto data_last = [](const Disk* disk) { return HoldsData(*disk); };
    std::ranges::stable_sort(free_disks, {}, data_last);
    const std::string name = "a" + std::to_string(adapter);
    std::string text =
        "; free on " + name + ": " + (free_disks.empty() ? "no disk" : Listed(free_disks));
    if (!partly_free.empty()) {
        text += "; with room beside virtual disks on " + name + ": " + Listed(partly_free);
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
        // The same room as the run before: its disks come first in the list, and it is taken.
        if (!choices.empty() && FreeSectors(choices.back().front()) == FreeSectors(*first)) {
            continue;
        }
        choices.emplace_back(first, first + static_cast<std::ptrdiff_t>(count));
    }
    return choices;
}

// The choices among disks of one kind of link, and then, where those do not do, among all.
std::vector<std::vector<Choice>> Rounds(const std::vector<Disk>& disks, std::size_t count) {
    std::vector<std::uint64_t> links;
    for (const Disk& disk : disks) {
        const std::uint64_t link = disk.info.Number("ConnectionType");
        if (std::ranges::find(links, link) == links.end()) links.push_back(link);
    }
    std::vector<Choice> of_one_link;
    for (const std::uint64_t link : links) {
        std::vector<Disk> linked = disks;
        std::erase_if(linked,
                      [&](const Disk& disk) { return disk.info.Number("ConnectionType") != link; });
        std::ranges::move(ChoicesOf(std::move(linked), count), std::back_inserter(of_one_link));
    }
    std::vector<std::vector<Choice>> rounds;
    rounds.push_back(std::move(of_one_link));
    if (links.size() > 1) rounds.push_back(ChoicesOf(disks, count));
    return rounds;
}

}  // namespace

std::string Described(const Disk& disk) {
    return disk.address.Text() + " (" + disk.info.Text("Model") + ", " +
           SizeText(512 * FreeSectors(disk), {}) + " free" +
           (HoldsData(disk) ? ", holds a boot record" : "") + ")";
}

std::vector<Disk> NamedDisks(Invocation& invocation, std::span<const std::string> typed) {
    std::vector<Address> addresses;
    for (const std::string& each : typed) {
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

std::vector<Disk> PickDisks(Invocation& invocation, std::size_t count, const SizeWish& size,
                            const RoomOfDisks& room) {
    // --disks 0: the caller's to refuse.
    if (count == 0) return {};
    const unsigned adapter = FindAdapter(invocation);
    std::vector<Disk> disks = LoadDisks(invocation.controller());
    std::erase_if(disks, [](const Disk& disk) { return !IsFree(disk) || HoldsData(disk); });
    if (disks.size() < count) {
        throw Failure(Exit::kRefused,
                      std::to_string(count) + " disks are needed and a" + std::to_string(adapter) +
                          " has " + std::to_string(disks.size()) + " free without a boot record" +
                          Alternatives(invocation, adapter));
    }
    const auto least = [](const Choice& choice) { return FreeSectors(choice.front()); };
    const auto sum = [](const Choice& choice) {
        std::uint64_t sectors = 0;
        for (const Disk& disk : choice) sectors += FreeSectors(disk);
        return sectors;
    };
    std::uint64_t most = 0;
    for (std::vector<Choice>& choices : Rounds(disks, count)) {
        if (choices.empty()) continue;
        if (!size.sectors) return std::move(*std::ranges::max_element(choices, {}, least));
        std::ranges::stable_sort(choices, {}, sum);
        for (Choice& choice : choices) {
            const auto sectors = room(choice);
            // Then no choice will do, and whoever goes on with this one is told why.
            if (!sectors || *sectors >= *size.sectors) return std::move(choice);
            most = std::max(most, *sectors);
        }
    }
    throw Failure(Exit::kRefused, "--size: no " + std::to_string(count) + " free disks of a" +
                                      std::to_string(adapter) + " give " + size.typed +
                                      "; the most is " + SizeText(512 * most, {}) +
                                      Alternatives(invocation, adapter));
}

std::string Alternatives(Invocation& invocation, unsigned adapter) {
    Controller& controller = invocation.controller();
    const std::vector<unsigned> adapters = controller.Adapters();
    controller.Select(adapters);
    const std::vector<Disk> disks = LoadDisks(controller);
    std::string text = FreeOn(disks, adapter);
    for (const unsigned other : adapters) {
        if (other != adapter) text += FreeOn(disks, other);
    }
    return text;
}

void AddDisks(Change& change, std::span<const Disk> disks, const std::string& name) {
    for (const Disk& disk : disks) change.losses.push_back(Described(disk));
    for (const Disk& disk : disks) {
        if (!HoldsData(disk)) continue;
        change.losses.push_back("the data on " + disk.address.Text() + " will be lost");
        change.confirm = name;
    }
}

}  // namespace vexorctl

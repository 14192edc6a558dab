#include "nouns/vd_plan.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "codes/code_table.h"
#include "codes/level.h"
#include "codes/named.h"
#include "common/address.h"
#include "common/size.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/failure.h"
#include "model/group_room.h"
#include "model/virtual_disks.h"
#include "nouns/find_object.h"
#include "nouns/plan_and_act.h"
#include "output/cell_text.h"
#include "shell/invocation.h"

namespace vexorctl::vd_noun {

namespace {

using fields::LD_Info;
using hxcodes::CodeTable;

// The cache modes that can be set. forced_write_through is the controller's own.
constexpr std::string_view kCacheModes[] = {"write_back", "read_ahead"};

std::string LevelText(const VirtualDisk& disk) {
    const auto code = disk.info[LD_Info::RaidMode];
    if (!code) return "level unknown";
    const std::string_view name = hxcodes::NameOf(hxcodes::kLevels, *code);
    return name.empty() ? "level " + std::to_string(*code) : std::string(name);
}

}  // namespace

VirtualDisk FindVirtualDisk(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kVirtualDisk);
    return TakeObject(LoadVirtualDisks(invocation.controller()), address);
}

std::string Described(const VirtualDisk& disk) {
    return disk.address.Text() + " (" + Shown(disk.info[LD_Info::Name]) + ", " + LevelText(disk) +
           ", " + SectorsText(disk.info[LD_Info::Size]) + ")";
}

std::string ConfirmName(const VirtualDisk& disk) {
    const std::string name = disk.info[LD_Info::Name].value_or("");
    return name.empty() ? disk.address.Text() : name;
}

std::string_view StateOf(Invocation& invocation, const VirtualDisk& disk) {
    const auto code = disk.info[LD_Info::Status];
    if (!code) return {};
    return hxcodes::NameOf(invocation.controller().codes().table().states, *code);
}

Change ChangeOf(const VirtualDisk& disk, const std::string& what, Command command) {
    return {.what = what + " virtual disk " + Described(disk),
            .commands = {std::move(command)},
            .address = disk.address.Text()};
}

std::uint64_t CacheOption(Controller& controller, const std::string& text) {
    std::uint64_t bits = 0;
    std::string_view rest = text;
    while (!rest.empty() && rest != "none") {
        const std::size_t comma = rest.find(',');
        const std::string_view name = rest.substr(0, comma);
        if (std::ranges::find(kCacheModes, name) == std::end(kCacheModes)) {
            throw UsageError("--cache cannot be \"" + text +
                             "\"; say write_back, read_ahead, both with a comma, or none");
        }
        bits |= CodeNamed(controller, &CodeTable::cache_bits, name);
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    return bits;
}

std::optional<std::uint64_t> SectorsResulting(Invocation& invocation, const Striping& striping,
                                              std::uint64_t sectors) {
    constexpr std::uint64_t kGiB = (std::uint64_t{1} << 30U) / kSectorBytes;
    const std::string round = invocation.Get("--round", "stripe");
    const std::uint64_t unit = round == "10_gib" ? 10 * kGiB : round == "1_gib" ? kGiB : 1;
    const std::uint64_t whole = InWholeStripes(striping, sectors);
    const std::uint64_t rounded = whole - whole % unit;
    if (invocation.controller().codes().AreOurs() || rounded == sectors) return rounded;
    return std::nullopt;
}

void TellSize(Change& change, std::optional<std::uint64_t> resulting, std::uint64_t asked) {
    if (resulting) {
        change.size_bytes = kSectorBytes * *resulting;
    } else {
        change.losses.push_back("the resulting size is not known: the controller rounds " +
                                SectorsText(asked));
    }
}

}  // namespace vexorctl::vd_noun

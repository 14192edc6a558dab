#include "nouns/creation_options.h"

#include "common/size.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "output/cell_text.h"
#include "shell/option_value.h"

namespace vexorctl {

const hxcodes::LevelRow& LevelOption(const Invocation& invocation) {
    const std::string name = invocation.Get("--raid", "");
    for (const hxcodes::LevelRow& row : hxcodes::kLevels) {
        if (row.number == name) return row;
    }
    throw UsageError("--raid is missing: say one of 0, 1, 1e, 5, 6, 10, 50, 60");
}

std::string BrokenDiskRule(const hxcodes::LevelRow& level, unsigned asked_legs, std::size_t disks) {
    const unsigned legs = hxcodes::LegsOf(level, asked_legs);
    const std::size_t least = std::size_t{level.leg_least} * legs;
    const std::size_t most = std::size_t{level.leg_most} * legs;
    const bool odd = disks % 2 != 0;
    const bool keeps = disks >= least && (most == 0 || disks <= most) && disks % legs == 0 &&
                       !(level.leg_disks == hxcodes::Disks::kEven && odd) &&
                       !(level.leg_disks == hxcodes::Disks::kOdd && !odd);
    if (keeps) return "";
    std::string rule;
    if (least == most) {
        rule = "exactly " + std::to_string(least) + " disks";
    } else if (legs > 1) {
        rule = std::to_string(legs) + " legs of " + std::to_string(level.leg_least) +
               " disks or more each, all of the same number";
    } else if (level.leg_disks == hxcodes::Disks::kAny) {
        rule = std::to_string(least) + " disks or more";
    } else {
        rule = std::string(level.leg_disks == hxcodes::Disks::kOdd ? "an odd" : "an even") +
               " number of disks from " + std::to_string(least);
    }
    return "RAID " + std::string(level.number) + " takes " + rule + "; " + std::to_string(disks) +
           (disks == 1 ? " was given" : " were given");
}

std::optional<std::string> NameOption(const Invocation& invocation, NameMarkup markup) {
    const std::string* const name = invocation.Get("--name");
    if (name == nullptr) return std::nullopt;
    const std::string fault = NameFault(*name, markup);
    if (!fault.empty()) throw UsageError("--name: \"" + *name + "\" " + fault);
    return *name;
}

std::optional<std::uint64_t> StripeOption(const Invocation& invocation) {
    const std::string* const text = invocation.Get("--stripe");
    if (text == nullptr) return std::nullopt;
    const std::uint64_t bytes = ReadOption("--stripe", *text, ParseSize);
    if (bytes % 1024 != 0 || bytes / 1024 > 65535) {
        throw UsageError("--stripe takes a size as in 64KiB, not \"" + *text + "\"");
    }
    return bytes / 1024;
}

std::uint64_t SizeWish::Of(std::uint64_t most_sectors, const std::string& alternatives) const {
    if (!sectors) return percent == 100 ? most_sectors : most_sectors / 100 * percent;
    if (*sectors > most_sectors) {
        throw Failure(Exit::kRefused, "--size: " + typed + " is more than the most there, " +
                                          SectorsText(most_sectors) + alternatives);
    }
    return *sectors;
}

SizeWish SizeOption(const Invocation& invocation) {
    SizeWish wish{invocation.Get("--size", "max"), {}};
    const auto [bytes, percent] = ReadOption("--size", wish.typed, ParseSizeOrShare);
    if (bytes) wish.sectors = *bytes / kSectorBytes;
    wish.percent = percent;
    return wish;
}

std::vector<std::string> SplitList(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const std::size_t comma = list.find(',');
        parts.emplace_back(list.substr(0, comma));
        list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 1);
    }
    return parts;
}

}  // namespace vexorctl

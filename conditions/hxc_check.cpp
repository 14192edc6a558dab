// The lines of a monitoring plugin. Names come from outside, so "|" and line ends are replaced in
// them.
#include "conditions/hxc_check.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <utility>

#include "codes/enclosure.h"
#include "conditions/hxc_find_arrays.h"
#include "conditions/hxc_redundancy.h"

namespace hxconditions {

namespace {

using hxcodes::ElementType;

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& each : upper) {
        each = static_cast<char>(std::toupper(static_cast<unsigned char>(each)));
    }
    return upper;
}

std::string Counted(const std::optional<std::uint64_t>& number, const std::string& what) {
    return (number ? std::to_string(*number) : "?") + " " + what + (number == 1U ? "" : "s");
}

// Joins items as long as they fit; never cuts one.
class Items {
public:
    void Add(const std::string& item) {
        const std::size_t longer = text_.size() + (text_.empty() ? 0 : 1) + item.size();
        if (is_full_ || longer > kLongestPerformanceData) {
            is_full_ = true;
            return;
        }
        if (!text_.empty()) text_ += ' ';
        text_ += item;
    }
    template <class Number>
    void Add(const std::string& label, const std::optional<Number>& value,
             const std::string& limits = "") {
        if (value) Add(label + "=" + std::to_string(*value) + limits);
    }
    std::string Take() { return std::move(text_); }

private:
    std::string text_;
    bool is_full_ = false;
};

// "a0/vd0" as a label.
std::string LabelOf(const std::string& address) {
    std::string label = address;
    std::ranges::replace(label, '/', '_');
    return label;
}

struct Measured {
    const Adapter* adapter;
    const VirtualDisk* virtual_disk;
    std::optional<unsigned> survives;
    unsigned rank;  // rank of its state; the worst first
};

std::vector<Measured> WorstFirst(const Answers& answers) {
    std::vector<Measured> all;
    for (const Adapter& adapter : answers.adapters) {
        for (const VirtualDisk& each : adapter.virtual_disks) {
            constexpr unsigned kGood = 1000;
            const auto code = StateCodeOf(adapter, each);
            all.push_back({&adapter, &each, RedundancyOf(each, adapter.disks).survives,
                           code ? RowOf(*code).rank : kGood});
        }
    }
    std::ranges::stable_sort(all, {}, &Measured::rank);
    return all;
}

void AddVirtualDisks(Items& items, const Answers& answers) {
    for (const Measured& each : WorstFirst(answers)) {
        const std::string label =
            LabelOf(AddressOf(each.adapter->number, Kind::kVirtualDisk, each.virtual_disk->id));
        // No threshold without redundancy: such a level never survives a failure.
        const bool redundant = IsRedundant(each.virtual_disk->level);
        items.Add(label + "_survives", each.survives, redundant ? ";1:;" : "");
        const Activity* const activity = ActivityOf(*each.adapter, *each.virtual_disk);
        if (activity != nullptr) items.Add(label + "_progress", activity->percent, "%");
    }
}

void AddBattery(Items& items, const Adapter& adapter) {
    if (!adapter.battery) return;
    const Battery& battery = *adapter.battery;
    const std::string label = LabelOf(AddressOf(adapter.number)) + "_battery_";
    const auto& least = battery.percent_to_charge;
    items.Add(label + "charge", battery.percent, least ? "%;" + std::to_string(*least) + ":" : "%");
    const bool bounded = battery.low_celsius && battery.high_celsius;
    items.Add(label + "temperature", battery.celsius,
              bounded ? ";" + std::to_string(*battery.low_celsius) + ":" +
                            std::to_string(*battery.high_celsius) + ";"
                      : "");
}

std::string RangeText(const std::optional<int>& low, const std::optional<int>& high) {
    if (!low && !high) return "";
    // "~:" is a range without a lower end; a plain "low:" one without an upper end.
    return (low ? std::to_string(*low) : "~") + ":" + (high ? std::to_string(*high) : "");
}

void AddSensors(Items& items, const Adapter& adapter) {
    constexpr std::pair<unsigned, std::string_view> kSensors[] = {
        {NumberOf(ElementType::kTemperature), "_temperature"},
        {NumberOf(ElementType::kFan), "_rpm"},
        {NumberOf(ElementType::kVoltage), "_millivolts"},
    };
    for (const Enclosure& enclosure : adapter.enclosures) {
        for (const Element& element : enclosure.elements) {
            for (const auto& [type, name] : kSensors) {
                if (element.type != type) continue;
                const std::string label =
                    LabelOf(AddressOf(adapter.number, Kind::kEnclosure, enclosure.id)) + "_el" +
                    std::to_string(element.id) + std::string(name);
                std::string limits = ";" + RangeText(element.low_warning, element.high_warning) +
                                     ";" + RangeText(element.low_critical, element.high_critical);
                while (limits.ends_with(';')) limits.pop_back();
                items.Add(label, element.reading, limits);
            }
        }
    }
}

std::string CommandText(const std::vector<std::string>& command) {
    std::string text;
    for (const std::string& word : command) text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string NextStepText(const Condition& head) {
    if (head.command.empty()) return "  -> " + head.next_step;
    return "  -> " + CommandText(head.command) + "     " +
           (head.otherwise.empty() ? head.next_step : "or " + head.otherwise);
}

std::string MarksText(const Condition& head) {
    std::string text;
    if (head.since != 0) {
        text += head.since_is == SinceIs::kEvent ? ", since " : ", since at least ";
        text += TimeText(head.since);
    }
    if (head.is_stale) text += ", last seen " + TimeText(head.last_seen);
    if (head.is_flapping) text += ", comes and goes";
    if (head.level_is_set_here) text += ", level set here";
    if (head.acknowledged) text += ", acknowledged by " + Harmless(head.acknowledged->by);
    if (head.silenced_until) text += ", silenced until " + TimeText(*head.silenced_until);
    return text;
}

std::string FoldedText(const Condition& folded) {
    std::string text(RowOf(folded.code).name);
    if (!folded.detail.empty()) return text + ": " + folded.detail;
    return folded.label.empty() ? text : text + " " + folded.label;
}

}  // namespace

std::string CountsText(const Counts& counts) {
    return Counted(counts.adapters, "adapter") + ", " +
           Counted(counts.virtual_disks, "virtual disk") + ", " + Counted(counts.disks, "disk");
}

std::string FirstLine(const Overview& overview, const Counts& counts) {
    std::string line = UpperCase(OverallNameOf(overview.overall)) + ": ";
    std::string sentence = CountsText(counts) + ", all well";
    std::uint64_t more = overview.critical + overview.unknown + overview.warning;
    if (ExitCodeOf(overview.overall) != 0) {
        const auto worst = std::ranges::find(overview.heads, *overview.overall, &Condition::level);
        sentence = worst->sentence;
        --more;
    }
    std::string marks;
    if (more > 0) marks += "; and " + std::to_string(more) + " more";
    if (overview.silenced > 0) marks += "; " + std::to_string(overview.silenced) + " silenced";
    if (overview.off > 0) marks += "; " + std::to_string(overview.off) + " switched off";
    const std::size_t room = kLongestFirstLine - line.size() - marks.size();
    return line + Shortened(Harmless(sentence), room) + marks;
}

std::string PerformanceData(const Answers& answers, const Overview& overview) {
    const Counts counts = CountsOf(answers);
    Items items;
    items.Add("vds", counts.virtual_disks);
    items.Add("vds_offline", counts.offline, ";;0");
    items.Add("vds_unprotected", counts.unprotected, ";;0");
    items.Add("vds_reduced", counts.reduced, ";0");
    items.Add("disks", counts.disks);
    items.Add("disks_failed", counts.failed, ";0");
    items.Add("disks_missing", counts.missing, ";0");
    items.Add("disks_predicted", counts.predicted, ";0");
    items.Add("spares", counts.spares);
    items.Add("conditions_critical", std::optional(overview.critical), ";;0");
    items.Add("conditions_warning", std::optional(overview.warning), ";0");
    items.Add("conditions_unknown", std::optional(overview.unknown), ";0");
    AddVirtualDisks(items, answers);
    for (const Adapter& adapter : answers.adapters) AddBattery(items, adapter);
    for (const Adapter& adapter : answers.adapters) AddSensors(items, adapter);
    return items.Take();
}

std::vector<std::string> LongOutput(const Overview& overview, std::string_view first_line) {
    std::vector<std::string> lines;
    for (const Condition& head : overview.heads) {
        std::string line = "[" + std::string(NameOf(head.level)) + "] ";
        line += RowOf(head.code).name;
        if (!head.label.empty()) line += " " + head.label;
        lines.push_back(line + MarksText(head));
        if (first_line.find(head.sentence) == std::string_view::npos) {
            lines.push_back("  " + head.sentence);
        }
        std::string folded;
        for (const Condition& each : head.folded) {
            folded += (folded.empty() ? "  " : "; ") + FoldedText(each);
        }
        if (!folded.empty()) lines.push_back(folded);
        lines.push_back(NextStepText(head));
    }
    for (std::string& line : lines) {
        std::ranges::replace_if(
            line,
            [](char each) {
                const auto byte = static_cast<unsigned char>(each);
                return byte < 0x20 || byte == 0x7F || each == '|';
            },
            '?');
    }
    return lines;
}

}  // namespace hxconditions

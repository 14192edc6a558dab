// The tables of codes, collected for programs that print them.
#include "codes/code_table.h"

#include <vector>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/event.h"
#include "codes/flash.h"
#include "codes/level.h"
#include "codes/rate.h"
#include "codes/state.h"
#include "codes/virtual_disk.h"

namespace hxcodes {
namespace {

constexpr auto kRefusalTexts = [] {
    std::array<RefusalText, std::size(kRefusals)> texts{};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const StatusRow& row = kRefusals[i];
        texts[i] = {NumberOf(row.code), row.name, row.sentence, row.fault};
    }
    return texts;
}();

EventText TextOf(EventKind kind, std::string_view key, std::string_view sentence) {
    return {ClassOf(kind), CodeOf(kind), NumberOf(SeverityOf(kind)),
            std::string(kEventKeyPrefix).append(key), std::string(sentence)};
}

EventText TextOf(const ActivityRow& activity, const StepRow& step) {
    const StepEvents& events = *activity.events;
    const HX_U16 code = static_cast<HX_U16>(events.first + NumberOf(step.code));
    std::string key = "LD_";
    key.append(events.key).append("_").append(step.key);
    std::string sentence(events.phrase);
    sentence.append(" of virtual disk {object} ").append(step.phrase);
    return TextOf(static_cast<EventKind>(At(events.type, code)), key, sentence);
}

std::vector<EventText> AllEventTexts() {
    std::vector<EventText> texts;
    for (const EventRow& row : kEvents) {
        if (row.key.empty()) continue;
        texts.push_back(TextOf(row.code, row.key, row.sentence));
        for (const TextVariant& variant : kTextVariants) {
            if (variant.code != row.code) continue;
            texts.push_back(TextOf(row.code, variant.key, variant.sentence));
        }
    }
    for (const ActivityRow& activity : kActivities) {
        if (!activity.events || activity.events->key.empty()) continue;
        for (const StepRow& step : kSteps) texts.push_back(TextOf(activity, step));
    }
    return texts;
}

constexpr CodeTable kInterfaceCodes{
    .element_types = kElementTypeNames,
    .event_classes = kEventClassNames,
    .level_bits = kLevelBits,
    .levels = kLevelNames,
    .rate_bits = kRateBits,
    .severities = kSeverityNames,
};

constexpr CodeList kCodeLists[] = {
    {"activities", &CodeTable::activities},
    {"activity_states", &CodeTable::activity_states},
    {"battery_bits", &CodeTable::battery_bits},
    {"battery_features", &CodeTable::battery_features},
    {"block_bits", &CodeTable::block_bits},
    {"cache_bits", &CodeTable::cache_bits},
    {"check_types", &CodeTable::check_types},
    {"connections", &CodeTable::connections},
    {"controls", &CodeTable::controls},
    {"devices", &CodeTable::devices},
    {"disk_actions", &CodeTable::disk_actions},
    {"disk_bits", &CodeTable::disk_bits},
    {"disk_features", &CodeTable::disk_features},
    {"element_states", &CodeTable::element_states},
    {"images", &CodeTable::images},
    {"inits", &CodeTable::inits},
    {"link_speeds", &CodeTable::link_speeds},
    {"powers", &CodeTable::powers},
    {"rebuild_types", &CodeTable::rebuild_types},
    {"remap_reasons", &CodeTable::remap_reasons},
    {"roundings", &CodeTable::roundings},
    {"states", &CodeTable::states},
};

CodeTable MakeOwnCodes() {
    static const std::vector<EventText> events = AllEventTexts();
    CodeTable table = kInterfaceCodes;
    table.refusals = kRefusalTexts;
    table.events = events;
    table.activities = kActivityNames;
    table.activity_states = kActivityStateNames;
    table.battery_bits = kBatteryBits;
    table.battery_features = kBatteryFeatureBits;
    table.block_bits = kBlockBits;
    table.cache_bits = kCacheBits;
    table.check_types = kCheckTypeNames;
    table.connections = kConnectionTypeNames;
    table.controls = kControlActionNames;
    table.devices = kDeviceNames;
    table.disk_actions = kDiskActionNames;
    table.disk_bits = kDiskBits;
    table.disk_features = kDiskFeatureBits;
    table.element_states = kElementStatusNames;
    table.images = kImageNames;
    table.inits = kInitNames;
    table.link_speeds = kLinkSpeedNames;
    table.powers = kPowerNames;
    table.rebuild_types = kRebuildTypeNames;
    table.remap_reasons = kRemapReasonNames;
    table.roundings = kRoundingNames;
    table.states = kStateNames;
    return table;
}

}  // namespace

std::span<const CodeList> CodeLists() { return kCodeLists; }

const CodeTable& OwnCodes() {
    static const CodeTable codes = MakeOwnCodes();
    return codes;
}

const CodeTable& NoCodes() { return kInterfaceCodes; }

}  // namespace hxcodes

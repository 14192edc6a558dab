// Findings about the machine, adapters, disks, enclosures, batteries, flash, store, service and
// sinks.
#include "conditions/hxc_finding.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/virtual_disk.h"
#include "conditions/hxc_find_arrays.h"

namespace hxconditions {

namespace {

using hxcodes::BatteryBit;
using hxcodes::CacheBit;
using hxcodes::DiskBit;
using hxcodes::ElementStatus;
using hxcodes::ElementType;

using Findings = std::vector<Finding>;

// ---- Failed queries ----

void FindUnreadable(Findings& findings, const Things& things, const Adapter& adapter) {
    const std::pair<Code, const Query*> queries[] = {
        {Code::kAdapterUnreadable, &adapter.info},
        {Code::kVdsUnreadable, &adapter.virtual_disks_query},
        {Code::kDisksUnreadable, &adapter.disks_query},
        {Code::kEnclosuresUnreadable, &adapter.enclosures_query},
        {Code::kBatteryUnreadable, &adapter.battery_query},
        {Code::kSmartUnreadable, &adapter.smart},
        {Code::kGroupsUnreadable, &adapter.groups_query},
        {Code::kSettingsUnreadable, &adapter.settings},
    };
    std::vector<std::string> implausible;
    for (const auto& [code, query] : queries) {
        if (!query->Failed()) continue;
        const bool told = query->result != Query::Result::kImplausible;
        if (!told) implausible.push_back(Harmless(query->call + ": " + query->what));
        // Skip an implausible answer: the adapter did answer.
        if (!told && code == Code::kAdapterUnreadable) continue;
        Finding& finding = findings.emplace_back(FindingOf(code, things.Of(adapter)));
        finding.values["call"] = query->call;
        finding.values["number"] = std::to_string(adapter.number);
        finding.values["number_of_code"] = told ? std::to_string(query->code) : "is implausible";
        finding.values["code_name"] = query->name.empty() ? "" : " " + Harmless(query->name);
    }
    if (implausible.empty()) return;
    Finding& finding =
        findings.emplace_back(FindingOf(Code::kAnswerImplausible, things.Of(adapter)));
    finding.values["what"] = Listed(implausible);
}

void FindMachine(Findings& findings, const Answers& answers, const Things& things) {
    if (answers.machine.result == Query::Result::kDenied) {
        Finding& denied =
            findings.emplace_back(FindingOf(Code::kControllerDenied, things.Machine()));
        denied.values["reason"] = answers.reason.empty() ? "" : ": " + Harmless(answers.reason);
        return;
    }
    const bool none = answers.machine.IsRead() && answers.adapters.empty();
    if (!answers.machine.Failed() && !none) return;
    Finding& finding =
        findings.emplace_back(FindingOf(Code::kControllerUnreachable, things.Machine()));
    finding.values["reason"] = none ? "it lists no adapter" : Harmless(answers.reason);
    finding.values["advice"] = answers.advice.empty()
                                   ? "Look at the controller, its driver and its library"
                                   : Harmless(answers.advice);
}

// ---- Disks ----

std::string RoleText(const Things& things, const Adapter& adapter, const Disk& disk) {
    std::vector<std::string> in;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        const bool member = std::ranges::any_of(each.members, [&](const Member& position) {
            return position.disk && *position.disk == disk.id;
        });
        if (member) in.push_back(TitleOf(things.Of(adapter, each)));
    }
    if (!in.empty()) return "; it was in " + Listed(in);
    if ((disk.status & (DiskBit::kGlobalSpare | DiskBit::kGroupSpare)) != 0) {
        return "; it was a spare";
    }
    if (disk.group)
        return "; it was in " + AddressOf(adapter.number, Kind::kDiskGroup, *disk.group);
    return adapter.virtual_disks_query.IsRead() ? "; it is in no virtual disk" : "";
}

std::optional<Code> StateCodeOf(const Disk& disk) {
    constexpr unsigned kHasATask =
        DiskBit::kConfigured | DiskBit::kGlobalSpare | DiskBit::kGroupSpare;
    if ((disk.status & DiskBit::kFailed) != 0) return Code::kDiskFailed;
    if ((disk.status & DiskBit::kForeign) != 0) return Code::kDiskForeign;
    const bool unavailable = (disk.status & DiskBit::kUnavailable) != 0;
    const bool online = (disk.status & DiskBit::kOnline) != 0;
    if (unavailable && !online && (disk.status & kHasATask) != 0) return Code::kDiskMissing;
    if ((unavailable && online) || disk.is_online == false) return Code::kDiskOffline;
    return std::nullopt;
}

void FindDisks(Findings& findings, const Things& things, const Adapter& adapter) {
    const auto add = [&](const Disk& disk, Code code) {
        Finding& finding = findings.emplace_back(FindingOf(code, things.Of(adapter, disk)));
        finding.values["id"] = DiskIdText(finding.object, disk);
        finding.values["role"] = RoleText(things, adapter, disk);
        if (disk.enclosure) {
            finding.values["enclosure"] =
                AddressOf(adapter.number, Kind::kEnclosure, *disk.enclosure);
        }
    };
    for (const Disk& disk : adapter.disks) {
        if (const auto code = StateCodeOf(disk)) add(disk, *code);
        if (disk.smart_alarm == true) add(disk, Code::kDiskPredictedFailure);
        if (disk.smart_on == false && adapter.poll_smart != false) add(disk, Code::kDiskSmartOff);
    }
}

void FindDiskActivities(Findings& findings, const Things& things, const Adapter& adapter) {
    for (const Disk& disk : adapter.disks) {
        const auto& activity = disk.activity;
        if (!activity || activity->kind == hxcodes::ActivityKind::kNone) continue;
        const bool paused = activity->state == hxcodes::ActivityState::kPaused;
        Finding& finding = findings.emplace_back(FindingOf(
            paused ? Code::kActivityPaused : Code::kActivityRunning, things.Of(adapter, disk)));
        finding.values["activity"] = ActivityText(activity->kind);
        finding.values["percent"] = PercentText(activity->percent);
        finding.values["left"].clear();
    }
}

void FindSettings(Findings& findings, const Things& things, const Adapter& adapter) {
    if (adapter.poll_smart == false) {
        findings.push_back(FindingOf(Code::kDiskSmartOff, things.Of(adapter)));
    }
    if (adapter.auto_rebuild == false) {
        findings.push_back(FindingOf(Code::kAutoRebuildDisabled, things.Of(adapter)));
    }
}

// ---- The battery ----

bool HasWriteBack(const Adapter& adapter, unsigned bits) {
    return std::ranges::any_of(adapter.virtual_disks, [&](const VirtualDisk& each) {
        return each.cache && (*each.cache & bits) == bits;
    });
}

std::string Allowed(const std::string& low, const std::string& high, const char* unit) {
    return " (allowed " + low + " to " + high + " " + unit + ")";
}

std::string VoltText(unsigned millivolts) {
    constexpr double kMillivolts = 1000;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f", millivolts / kMillivolts);
    return text.data();
}

void FindBounds(Findings& findings, const Object& object, const Battery& battery) {
    if ((battery.status & BatteryBit::kTemperatureOutOfBounds) != 0) {
        Finding& finding = findings.emplace_back(FindingOf(Code::kBatteryTemperature, object));
        finding.values["reading"] =
            battery.celsius ? std::to_string(*battery.celsius) + " C" : "an unknown temperature";
        finding.values["allowed"].clear();
        if (battery.low_celsius && battery.high_celsius) {
            finding.values["allowed"] = Allowed(std::to_string(*battery.low_celsius),
                                                std::to_string(*battery.high_celsius), "C");
        }
    }
    if ((battery.status & BatteryBit::kVoltageOutOfBounds) != 0) {
        Finding& finding = findings.emplace_back(FindingOf(Code::kBatteryVoltage, object));
        finding.values["reading"] =
            battery.millivolts ? VoltText(*battery.millivolts) + " V" : "an unknown voltage";
        finding.values["allowed"].clear();
        if (battery.low_millivolts && battery.high_millivolts) {
            finding.values["allowed"] =
                Allowed(VoltText(*battery.low_millivolts), VoltText(*battery.high_millivolts), "V");
        }
    }
}

void FindLowCharge(Findings& findings, const Object& object, const Battery& battery) {
    constexpr unsigned kOtherReasons =
        BatteryBit::kRelearning | BatteryBit::kTemperatureOutOfBounds |
        BatteryBit::kVoltageOutOfBounds | BatteryBit::kNeedsReplacement | BatteryBit::kSwitchedOff;
    constexpr std::uint32_t kWhileCharging = 4 * 3600;
    if ((battery.status & (kOtherReasons | BatteryBit::kSafeForWriteBack)) != 0) return;
    Finding& finding = findings.emplace_back(FindingOf(Code::kBatteryLow, object));
    finding.values["percent"] = PercentText(battery.percent);
    finding.values["wait"] = "Replace it if it does not charge";
    if ((battery.status & BatteryBit::kCharging) == 0) return;
    finding.up = Damping{.seconds = kWhileCharging};
    finding.values["wait"] = "Wait until it is charged; else replace it";
    constexpr std::int64_t kMinute = 60;
    if (battery.minutes_to_full) {
        finding.values["wait"] = "Wait " + DurationText(kMinute * *battery.minutes_to_full) +
                                 " until it is charged; else replace it";
    }
}

void FindBattery(Findings& findings, const Things& things, const Adapter& adapter) {
    const Object object = things.BatteryOf(adapter);
    const bool present = adapter.battery && (adapter.battery->status & BatteryBit::kPresent) != 0;
    if (!present) {
        const bool none = adapter.battery_query.result == Query::Result::kNone || adapter.battery;
        constexpr unsigned kForced = CacheBit::kWriteBack | CacheBit::kForcedWriteThrough;
        if (none && HasWriteBack(adapter, kForced)) {
            findings.push_back(FindingOf(Code::kBatteryRemoved, object));
        }
        return;
    }
    const Battery& battery = *adapter.battery;
    if ((battery.status & BatteryBit::kNeedsReplacement) != 0) {
        Finding& finding = findings.emplace_back(FindingOf(Code::kBatteryReplace, object));
        finding.values["capacity"].clear();
        if (battery.capacity_mah && battery.new_mah && battery.cycles) {
            finding.values["capacity"] = " (" + std::to_string(*battery.capacity_mah) + " of " +
                                         std::to_string(*battery.new_mah) + " mAh, " +
                                         std::to_string(*battery.cycles) + " cycles)";
        }
    }
    if ((battery.status & BatteryBit::kSwitchedOff) != 0 &&
        HasWriteBack(adapter, NumberOf(CacheBit::kWriteBack))) {
        findings.push_back(FindingOf(Code::kBatteryOff, object));
    }
    FindBounds(findings, object, battery);
    FindLowCharge(findings, object, battery);
    if ((battery.status & BatteryBit::kRelearning) != 0) {
        findings.emplace_back(FindingOf(Code::kBatteryRelearning, object)).values["left"].clear();
    }
}

// ---- Enclosures and flash ----

std::string ReadingText(unsigned type, int reading) {
    if (type == ElementType::kTemperature) return std::to_string(reading) + " C";
    if (type == ElementType::kFan) return std::to_string(reading) + " rpm";
    if (type == ElementType::kVoltage && reading >= 0) {
        return VoltText(static_cast<unsigned>(reading)) + " V";
    }
    return std::to_string(reading);
}

std::string LimitText(const Element& element) {
    if (!element.reading) return "";
    const auto above = [&](const std::optional<int>& limit) {
        return limit && *element.reading > *limit;
    };
    const auto below = [&](const std::optional<int>& limit) {
        return limit && *element.reading < *limit;
    };
    const std::optional<int>* broken = nullptr;
    if (above(element.high_warning)) broken = &element.high_warning;
    if (above(element.high_critical)) broken = &element.high_critical;
    if (below(element.low_warning)) broken = &element.low_warning;
    if (below(element.low_critical)) broken = &element.low_critical;
    return broken == nullptr ? "" : " (limit " + ReadingText(element.type, **broken) + ")";
}

std::optional<Code> StateCodeOf(const Element& element) {
    const auto status = hxcodes::ToCode<ElementStatus>(element.status);
    if (!status) return Code::kElementStateUnknown;
    switch (*status) {
        case ElementStatus::kCritical:
        case ElementStatus::kUnrecoverable:
            return Code::kEncElementCritical;
        case ElementStatus::kNoncritical:
            return Code::kEncElementWarning;
        case ElementStatus::kUnsupported:
        case ElementStatus::kOk:
        case ElementStatus::kNotInstalled:
        case ElementStatus::kNotAvailable:
            return std::nullopt;
        case ElementStatus::kUnknown:
            break;
    }
    return Code::kElementStateUnknown;
}

void FindElements(Findings& findings, const Things& things, const Adapter& adapter) {
    for (const Enclosure& enclosure : adapter.enclosures) {
        for (const Element& element : enclosure.elements) {
            const auto code = StateCodeOf(element);
            if (!code) continue;
            Finding& finding =
                findings.emplace_back(FindingOf(*code, things.Of(adapter, enclosure, element)));
            finding.values["type"] = ElementTypeText(element.type);
            finding.values["enclosure"] = AddressOf(adapter.number, Kind::kEnclosure, enclosure.id);
            finding.values["reading"] =
                element.reading ? ": " + ReadingText(element.type, *element.reading) : "";
            finding.values["limit"] = LimitText(element);
            finding.links.push_back(things.Of(adapter, enclosure).identity);
            // A failed power supply is shown at once, without damping; other readings may be
            // transient.
            if (*code == Code::kEncElementCritical && element.type == ElementType::kPowerSupply) {
                finding.up = Damping{};
            }
        }
    }
}

struct ImageText {
    std::optional<bool> Flash::*sound;
    Code code;
    std::string_view text;
    std::string_view name;  // as an argument of vexorctl
};
constexpr ImageText kImages[] = {
    {&Flash::firmware, Code::kFlashFirmwareDamaged, "the firmware", "firmware"},
    {&Flash::boot_loader, Code::kFlashFirmwareDamaged, "the boot loader", "boot_loader"},
    {&Flash::bios, Code::kFlashImageDamaged, "the BIOS image", "bios"},
    {&Flash::autoload, Code::kFlashImageDamaged, "the autoload image", "autoload"},
    {&Flash::hba_info, Code::kFlashImageDamaged, "the adapter's data", "hba_info"},
};

void FindFlash(Findings& findings, const Things& things, const Adapter& adapter) {
    bool named = false;
    for (const Code code : {Code::kFlashFirmwareDamaged, Code::kFlashImageDamaged}) {
        std::vector<std::string> damaged;
        std::string_view first;
        for (const ImageText& image : kImages) {
            if (image.code != code || adapter.flash.*image.sound != false) continue;
            if (damaged.empty()) first = image.name;
            damaged.emplace_back(image.text);
        }
        const bool unnamed =
            code == Code::kFlashImageDamaged && !named && adapter.flash.all == false;
        if (damaged.empty() && !unnamed) continue;
        named = true;
        Finding& finding = findings.emplace_back(FindingOf(code, things.Of(adapter)));
        finding.values["image"] = damaged.empty() ? "an image in the flash" : Listed(damaged);
        finding.values["image_name"] = first;
    }
}

// ---- The store, the service and its sinks ----

void FindStore(Findings& findings, const Answers& answers, const Things& things) {
    constexpr unsigned kRoundsWithoutCheckIn = 5;
    const Store& store = answers.store;
    const auto add = [&](Code code) {
        Finding& finding = findings.emplace_back(FindingOf(code, things.OfStore()));
        finding.values["path"] = Harmless(store.path);
        finding.values["folder"] = Harmless(store.folder.empty() ? store.path : store.folder);
        finding.values["reason"] = Harmless(store.reason);
        return &finding;
    };
    if (store.state == Store::State::kDamaged) {
        Finding* const damaged = add(Code::kStoreDamaged);
        damaged->values["reason"] = store.reason.empty() ? "" : ": " + Harmless(store.reason);
    }
    if (store.state == Store::State::kUnreadable) {
        Finding* const unreadable = add(Code::kStoreUnreadable);
        if (store.is_there) {
            unreadable->values[kNextStep] =
                "Let whoever asks read it, or move it aside; the service makes a new one";
        }
    }
    if (store.state == Store::State::kNotWritable) {
        add(Code::kEventsNotCollected);
    } else if (answers.service.rounds_without_check_in >= kRoundsWithoutCheckIn) {
        Finding* const closed = add(Code::kEventsNotCollected);
        const bool is_damaged = store.state == Store::State::kDamaged;
        closed->values["reason"] =
            is_damaged ? "the event store is damaged" : "no check-in has succeeded";
        if (is_damaged) closed->values[kNextStep] = RowOf(Code::kStoreDamaged).next_step;
    }
}

void FindService(Findings& findings, const Answers& answers, const Things& things) {
    constexpr unsigned kSlowRounds = 3;
    const Service& service = answers.service;
    const auto add = [&](Code code) -> Values& {
        return findings.emplace_back(FindingOf(code, things.OfService())).values;
    };
    if (!service.is_here) add(Code::kNotWatched);
    if (service.silent_for_s) {
        add(Code::kServiceStale)["for"] = " for " + DurationText(*service.silent_for_s);
    }
    if (!service.rejected_configuration.empty()) {
        add(Code::kServiceConfigRejected)["what"] = Harmless(service.rejected_configuration);
    }
    if (service.state_was_damaged) {
        add(Code::kServiceStateDamaged)["reason"] =
            service.state_damage.empty() ? "" : ": " + Harmless(service.state_damage);
    }
    if (service.slow_rounds >= kSlowRounds) {
        add(Code::kServiceSlow)["n"] = std::to_string(service.slow_rounds);
    }
    for (const Sink& sink : service.sinks) {
        const auto told = [&](Code code, std::uint64_t number) {
            Finding& finding = findings.emplace_back(FindingOf(code, things.OfSink(sink)));
            finding.values["sink"] = finding.object.name;
            finding.values["reason"] = Harmless(sink.error);
            finding.values["n"] = std::to_string(number);
            return &finding;
        };
        if (sink.is_failing) told(Code::kDeliveryFailing, sink.waiting);
        if (sink.given_up != 0) told(Code::kDeliveryDropped, sink.given_up)->count = sink.given_up;
    }
}

struct ActivityName {
    unsigned kind;
    std::string_view text;
};
constexpr ActivityName kActivityTexts[] = {
    {NumberOf(hxcodes::ActivityKind::kCheck), "consistency check"},
    {NumberOf(hxcodes::ActivityKind::kFix), "consistency repair"},
    {NumberOf(hxcodes::ActivityKind::kInitQuick), "quick initialisation"},
    {NumberOf(hxcodes::ActivityKind::kInitBackground), "background initialisation"},
    {NumberOf(hxcodes::ActivityKind::kInitForeground), "foreground initialisation"},
    {NumberOf(hxcodes::ActivityKind::kRebuild), "rebuild"},
    {NumberOf(hxcodes::ActivityKind::kMigration), "migration"},
    {NumberOf(hxcodes::ActivityKind::kCopyback), "copyback"},
    {NumberOf(hxcodes::ActivityKind::kMediaPatrol), "media patrol"},
    {NumberOf(hxcodes::ActivityKind::kDataScrub), "data scrub"},
};

constexpr ActivityName kElementTexts[] = {
    {NumberOf(ElementType::kPowerSupply), "power supply"},
    {NumberOf(ElementType::kFan), "fan"},
    {NumberOf(ElementType::kTemperature), "temperature sensor"},
    {NumberOf(ElementType::kDoor), "door"},
    {NumberOf(ElementType::kAlarm), "alarm"},
    {NumberOf(ElementType::kVoltage), "voltage sensor"},
};

}  // namespace

Finding FindingOf(Code code, const Object& object) {
    Finding finding{.code = code, .object = object};
    finding.values["o"] = TitleOf(object);
    finding.values["a"] = object.address;
    if (object.adapter != kNoNumber) finding.values["number"] = std::to_string(object.adapter);
    return finding;
}

std::string_view ActivityText(unsigned kind) {
    const auto* const found = std::ranges::find(kActivityTexts, kind, &ActivityName::kind);
    return found == std::end(kActivityTexts) ? "activity" : found->text;
}

std::string PercentText(const std::optional<unsigned>& percent) {
    return percent ? std::to_string(*percent) + " %" : "?";
}

std::string_view ElementTypeText(unsigned type) {
    const auto* const found = std::ranges::find(kElementTexts, type, &ActivityName::kind);
    return found == std::end(kElementTexts) ? "element" : found->text;
}

std::string DiskIdText(const Object& object, const Disk& disk) {
    const std::string bay = Harmless(disk.bay);
    if (object.serial.empty() && bay.empty()) return "";
    const char* const between = object.serial.empty() || bay.empty() ? "" : ", ";
    return " (" + object.serial + between + bay + ")";
}

std::vector<Finding> FindAll(const Answers& answers, const Things& things,
                             const Movement* movement) {
    Findings findings;
    FindMachine(findings, answers, things);
    for (const Adapter& adapter : answers.adapters) {
        FindUnreadable(findings, things, adapter);
        FindVirtualDisks(findings, things, adapter, movement);
        FindDiskGroups(findings, things, adapter);
        FindSpares(findings, things, adapter);
        FindReplacements(findings, things, adapter);
        FindDisks(findings, things, adapter);
        FindDiskActivities(findings, things, adapter);
        FindSettings(findings, things, adapter);
        FindBattery(findings, things, adapter);
        FindElements(findings, things, adapter);
        FindFlash(findings, things, adapter);
    }
    FindStore(findings, answers, things);
    FindService(findings, answers, things);
    return findings;
}

}  // namespace hxconditions

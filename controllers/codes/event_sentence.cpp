#include "codes/event_sentence.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

#include "codes/enclosure.h"
#include "codes/flash.h"

namespace hxcodes {

namespace {

constexpr unsigned kMostNamed = 6;  // disks in the parameters of kVirtualDiskDegraded
constexpr unsigned kHalf = 16;      // bits

std::string AddressOf(const EventFacts& event) { return "a" + std::to_string(event.adapter); }

std::string AddressOf(const EventFacts& event, std::string_view kind, unsigned number) {
    return AddressOf(event) + "/" + std::string(kind) + std::to_string(number);
}

unsigned LowerHalf(HX_U32 value) { return value & 0xFFFFU; }
unsigned UpperHalf(HX_U32 value) { return value >> kHalf; }

// "a0/pd5", "a0/pd6 or a0/pd7", "a0/pd4, a0/pd6 or a0/pd7"
std::string OneOf(const EventFacts& event, std::span<const unsigned> disks) {
    std::string text;
    for (std::size_t i = 0; i < disks.size(); ++i) {
        if (i != 0) text += i + 1 == disks.size() ? " or " : ", ";
        text += AddressOf(event, "pd", disks[i]);
    }
    return text;
}

std::string DegradedSentence(const EventFacts& event, std::string_view what) {
    const unsigned fatal = LowerHalf(event.params[0]);
    const unsigned harmless = UpperHalf(event.params[0]);
    if (fatal == 0) return {};
    const std::string start =
        "Virtual disk " + AddressOf(event, "vd", event.device) + " " + std::string(what);
    if (harmless == 0) return start + "no redundancy is left";
    std::vector<unsigned> disks;
    for (const HX_U32 pair : std::span(event.params).subspan(1)) {
        disks.push_back(LowerHalf(pair));
        disks.push_back(UpperHalf(pair));
    }
    const std::span<const unsigned> named(disks);
    return start + "it survives no failure of " +
           (fatal <= kMostNamed ? OneOf(event, named.first(fatal))
                                : std::to_string(fatal) + " of its disks") +
           "; " +
           (fatal + harmless <= kMostNamed ? OneOf(event, named.subspan(fatal, harmless))
                                           : "one of " + std::to_string(harmless) + " others") +
           " may still fail";
}

std::string_view NameOfElement(HX_U32 type) {
    switch (static_cast<ElementType>(type)) {
        case ElementType::kPowerSupply:
            return "power supply";
        case ElementType::kFan:
            return "fan";
        case ElementType::kTemperature:
            return "temperature sensor";
        case ElementType::kDoor:
            return "door";
        case ElementType::kAlarm:
            return "alarm";
        case ElementType::kVoltage:
            return "voltage sensor";
    }
    return "element";
}

// SES sends degrees Celsius plus 20, and 0 for none; volts in tens of millivolts.
std::string ReadingText(HX_U32 type, HX_U32 reading) {
    constexpr int kSesZero = 20;
    switch (static_cast<ElementType>(type)) {
        case ElementType::kFan:
            return ", " + std::to_string(reading) + " rpm";
        case ElementType::kTemperature:
            if (reading == 0) return "";
            return ", " + std::to_string(static_cast<int>(reading) - kSesZero) + " degrees C";
        case ElementType::kVoltage: {
            char text[32];
            std::snprintf(text, sizeof text, ", %u.%02u V", reading / 100, reading % 100);
            return text;
        }
        case ElementType::kPowerSupply:
        case ElementType::kDoor:
        case ElementType::kAlarm:
            break;
    }
    return "";
}

std::string ElementSentence(const EventFacts& event, std::string_view what) {
    const auto& [number, type, reading, unused] = event.params;
    return "The " + std::string(NameOfElement(type)) + " " + AddressOf(event, "enc", event.device) +
           "/el" + std::to_string(number) + " " + std::string(what) + ReadingText(type, reading);
}

std::string ImageSentence(const EventFacts& event, std::string_view what) {
    std::string name = "of unknown kind " + std::to_string(event.params[0]);
    for (const Named& row : kImageNames) {
        if (row.code == event.params[0]) name = row.name;
    }
    return "The image " + name + " in the flash of " + AddressOf(event) + " " + std::string(what);
}

std::string BetterSentence(const EventFacts& event, std::string_view what) {
    if (!IsBetter(event.kind, event.params[0])) return {};
    return "Virtual disk " + AddressOf(event, "vd", event.device) + " " + std::string(what);
}

std::string ReplacementSentence(const EventFacts& event, std::string_view what) {
    if (event.params[0] != 1) return {};
    return "Disk " + AddressOf(event, "pd", event.device) + " " + std::string(what);
}

struct SentenceRow {
    EventKind kind;
    std::string (*make)(const EventFacts&, std::string_view what);  // empty: not told
    std::string_view what;
};
constexpr SentenceRow kSentences[] = {
    {EventKind::kVirtualDiskDegraded, DegradedSentence, "is degraded: "},
    {EventKind::kVirtualDiskPartiallyOptimal, BetterSentence,
     "is better: it has some redundancy again"},
    {EventKind::kElementCritical, ElementSentence, "is critical"},
    {EventKind::kElementWarning, ElementSentence, "is not as it should be"},
    {EventKind::kElementOk, ElementSentence, "is ok"},
    {EventKind::kFlashErased, ImageSentence, "was erased"},
    {EventKind::kFlashWritten, ImageSentence, "was written"},
    {EventKind::kFlashDamaged, ImageSentence, "is damaged"},
    {EventKind::kDiskTooSmallForCopyback, ReplacementSentence,
     "is too small to replace the one that was in its bay"},
};

}  // namespace

std::optional<std::string> SentenceOf(const EventFacts& event) {
    for (const SentenceRow& row : kSentences) {
        if (row.kind != event.kind) continue;
        std::string sentence = row.make(event, row.what);
        if (!sentence.empty()) return sentence;
    }
    return std::nullopt;
}

std::optional<unsigned> ElementOf(const EventFacts& event) {
    if (ClassOf(event.kind) != NumberOf(EventClass::kEnclosure)) return std::nullopt;
    if (!HasCode(kEvents, NumberOf(event.kind))) return std::nullopt;
    return event.params[0];
}

EventParams ParamsOfDegraded(std::span<const HX_U16> fatal, std::span<const HX_U16> harmless) {
    std::vector<HX_U32> disks(fatal.begin(), fatal.end());
    disks.insert(disks.end(), harmless.begin(), harmless.end());
    disks.resize(kMostNamed);
    EventParams params{static_cast<HX_U32>(fatal.size() | harmless.size() << kHalf)};
    for (unsigned i = 0; i < kMostNamed; ++i) params[1 + i / 2] |= disks[i] << (kHalf * (i % 2));
    return params;
}

}  // namespace hxcodes

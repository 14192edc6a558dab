// The forms and words of attributes.
#include "sysfs/hxmd_convert.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <system_error>
#include <utility>

namespace hxmd {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

Number Digits(std::string_view text, int base) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

template <class Value>
struct Word {
    std::string_view word;
    Value value;
};

// ---- Words ----

constexpr Word<ArrayState> kArrayStates[] = {
    {"clear", ArrayState::kClear},         {"inactive", ArrayState::kInactive},
    {"suspended", ArrayState::kRunning},   {"readonly", ArrayState::kRunning},
    {"read-auto", ArrayState::kReadAuto},  {"clean", ArrayState::kRunning},
    {"active", ArrayState::kRunning},      {"write-pending", ArrayState::kRunning},
    {"active-idle", ArrayState::kRunning}, {"broken", ArrayState::kBroken},
};

constexpr Word<SyncAction> kSyncActions[] = {
    {"idle", SyncAction::kIdle},       {"resync", SyncAction::kResync},
    {"recover", SyncAction::kRecover}, {"check", SyncAction::kCheck},
    {"repair", SyncAction::kRepair},   {"reshape", SyncAction::kReshape},
    {"frozen", SyncAction::kFrozen},
};

// Linear, multipath and faulty arrays are no virtual disks, and have no code.
constexpr Word<HX_U8> kLevels[] = {
    {"raid0", 0x00}, {"raid1", 0x01}, {"raid4", 0x04},
    {"raid5", 0x05}, {"raid6", 0x06}, {"raid10", 0x10},
};

constexpr Word<bool MemberState::*> kMemberWords[] = {
    {"in_sync", &MemberState::in_sync},
    {"faulty", &MemberState::faulty},
    {"spare", &MemberState::spare},
    {"want_replacement", &MemberState::want_replacement},
    {"replacement", &MemberState::replacement},
};

template <class Words>
auto Find(const Words& words, std::string_view word) -> decltype(std::begin(words)) {
    const auto* const found =
        std::ranges::find(words, word, [](const auto& row) { return row.word; });
    return found == std::end(words) ? nullptr : found;
}

// An unknown word, of a later kernel, gives `otherwise`: the attribute exists but its value is not
// understood.
template <class Words, class Value>
std::optional<Value> Meaning(const Words& words, std::string_view text, Value otherwise) {
    text = Trimmed(text);
    if (text.empty()) return std::nullopt;
    const auto* const row = Find(words, text);
    return row == nullptr ? otherwise : row->value;
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

Number ToNumber(std::string_view text) { return Digits(Trimmed(text), 10); }

Number ToAddress(std::string_view text) {
    text = Trimmed(text);
    if (!text.starts_with("0x")) return std::nullopt;
    return Digits(text.substr(2), 16);
}

Text ToText(std::string_view text) {
    text = Trimmed(text);
    if (text.empty()) return std::nullopt;
    return std::string(text);
}

Text ToSerialPage(std::string_view bytes) {
    constexpr std::size_t kHeader = 4;
    constexpr char kPage = '\x80';
    if (bytes.size() <= kHeader || bytes[1] != kPage) return std::nullopt;
    const std::size_t length = std::size_t{static_cast<unsigned char>(bytes[2])} << 8 |
                               static_cast<unsigned char>(bytes[3]);
    std::string_view serial = bytes.substr(kHeader, length);
    return ToText(serial.substr(0, serial.find('\0')));
}

Text ToUuid(std::string_view text) {
    constexpr std::size_t kDigits = 32;
    std::array<char, kDigits> digits{};
    std::size_t count = 0;
    for (const char each : Trimmed(text)) {
        if (each == '-' || each == ':') continue;
        if (count == kDigits || std::isxdigit(static_cast<unsigned char>(each)) == 0) {
            return std::nullopt;
        }
        digits[count++] = static_cast<char>(std::tolower(static_cast<unsigned char>(each)));
    }
    if (count != kDigits) return std::nullopt;
    return Text(std::in_place, digits.data(), count);
}

std::optional<ArrayState> ToArrayState(std::string_view text) {
    return Meaning(kArrayStates, text, ArrayState::kUnknown);
}

std::optional<SyncAction> ToSyncAction(std::string_view text) {
    return Meaning(kSyncActions, text, SyncAction::kUnknown);
}

std::optional<Completed> ToCompleted(std::string_view text) {
    text = Trimmed(text);
    if (text == "none") return Completed{};
    if (text == "delayed") return Completed{.delayed = true};
    const std::size_t slash = text.find(" / ");
    if (slash == std::string_view::npos) return std::nullopt;
    const Number done = ToNumber(text.substr(0, slash));
    const Number total = ToNumber(text.substr(slash + 3));
    if (!done || !total) return std::nullopt;
    return Completed{.done = *done, .total = *total};
}

std::optional<DiskCount> ToDiskCount(std::string_view text) {
    text = Trimmed(text);
    const std::size_t bracket = text.find(" (");
    const Number now = ToNumber(text.substr(0, bracket));
    if (!now) return std::nullopt;
    if (bracket == std::string_view::npos) return DiskCount{.now = *now};
    std::string_view rest = text.substr(bracket + 2);
    if (!rest.ends_with(')')) return std::nullopt;
    rest.remove_suffix(1);
    const Number before = ToNumber(rest);
    if (!before) return std::nullopt;
    return DiskCount{.now = *now, .before = *before};
}

std::optional<MemberState> ToMemberState(std::string_view text) {
    text = Trimmed(text);
    if (text.empty()) return std::nullopt;
    MemberState state;
    while (true) {
        const std::size_t comma = text.find(',');
        if (const auto* const row = Find(kMemberWords, text.substr(0, comma))) {
            state.*row->value = true;
        }
        if (comma == std::string_view::npos) return state;
        text.remove_prefix(comma + 1);
    }
}

Number ToLevel(std::string_view text) {
    const auto* const row = Find(kLevels, Trimmed(text));
    if (row == nullptr) return std::nullopt;
    return row->value;
}

Number ToRowCount(std::string_view text) {
    text = Trimmed(text);
    if (text.empty()) return 0;
    return static_cast<std::uint64_t>(std::ranges::count(text, '\n')) + 1;
}

}  // namespace hxmd

#include "words.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <ctime>

#include "failure.h"

namespace {

using hxsim::Sectors;
using hxsim::Time;

struct KindRow {
    Kind kind;
    std::string_view prefix;  // of the part behind the adapter
    std::string_view noun;
    std::string_view example;
};
constexpr KindRow kKinds[] = {
    {Kind::kAdapter, "a", "an adapter", "a0"},
    {Kind::kDisk, "pd", "a disk", "a0/pd12"},
    {Kind::kVirtualDisk, "vd", "a virtual disk", "a0/vd3"},
    {Kind::kDiskGroup, "dg", "a disk group", "a0/dg0"},
    {Kind::kEnclosure, "enc", "an enclosure", "a0/enc0"},
    {Kind::kElement, "el", "an element of an enclosure", "a0/enc0/el3"},
};

const KindRow& RowOf(Kind kind) { return *std::ranges::find(kKinds, kind, &KindRow::kind); }

std::string Quoted(std::string_view word) { return '"' + std::string(word) + '"'; }

struct Unit {
    std::string_view name;
    std::uint64_t factor;
};
constexpr Unit kTimeUnits[] = {
    {"w", 604800000}, {"d", 86400000}, {"h", 3600000}, {"m", 60000}, {"s", 1000}, {"ms", 1},
};
constexpr Unit kSizeUnits[] = {
    {"TiB", 2147483648}, {"GiB", 2097152}, {"MiB", 2048}, {"KiB", 2}, {"s", 1},
};
constexpr Time kLongest = Time{36500} * 86400000;

const Unit* FindUnit(std::span<const Unit> units, std::string_view name) {
    const auto found = std::ranges::find(units, name, &Unit::name);
    return found == units.end() ? nullptr : &*found;
}

// Takes a number off the front; false when there is none or it is above `most`.
bool TakeNumber(std::string_view& text, std::uint64_t most, std::uint64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || number > most) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

// One part of an address: the prefix and a number, to its end.
bool IsPart(std::string_view part, std::string_view prefix, std::uint64_t most,
            std::uint64_t& number) {
    if (!part.starts_with(prefix)) return false;
    part.remove_prefix(prefix.size());
    return TakeNumber(part, most, number) && part.empty();
}

std::string_view TakePart(std::string_view& text) {
    const std::size_t end = std::min(text.find('/'), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

bool TryAddress(std::string_view text, Address& address) {
    if (text.ends_with('/')) return false;
    std::uint64_t number = 0;
    if (!IsPart(TakePart(text), "a", 254, number)) return false;
    address.adapter = static_cast<HX_U8>(number);
    if (text.empty()) return true;
    const std::string_view device = TakePart(text);
    for (const Kind kind : {Kind::kDisk, Kind::kVirtualDisk, Kind::kDiskGroup, Kind::kEnclosure}) {
        if (!IsPart(device, RowOf(kind).prefix, hxsim::kNoId - 1, number)) continue;
        address.kind = kind;
        address.id = static_cast<HX_U16>(number);
        if (text.empty()) return true;
        if (kind != Kind::kEnclosure || !IsPart(TakePart(text), "el", 255, number)) return false;
        address.kind = Kind::kElement;
        address.element = static_cast<HX_U8>(number);
        return text.empty();
    }
    return false;
}

template <class Machine>
auto& FindAdapter(Machine& machine, const Address& address) {
    if (address.adapter >= machine.adapters.size()) {
        throw NoObject(address.text + ": the machine has " +
                       std::to_string(machine.adapters.size()) +
                       " adapters, numbered from 0; hxsimctl show lists them");
    }
    return machine.adapters[address.adapter];
}

}  // namespace

Address ParseAddress(const std::string& word) {
    Address address;
    if (!TryAddress(word, address)) {
        throw UsageError(Quoted(word) +
                         " is no address; write one such as a0, a0/pd12, a0/vd3, a0/dg0 or "
                         "a0/enc0/el3, as hxsimctl show does");
    }
    address.text = word;
    return address;
}

Address ParseAddress(const std::string& word, Kind kind) {
    Address address;
    const KindRow& row = RowOf(kind);
    if (!TryAddress(word, address) || address.kind != kind) {
        throw UsageError(Quoted(word) + " is not the address of " + std::string(row.noun) +
                         "; write one such as " + std::string(row.example));
    }
    address.text = word;
    return address;
}

std::uint64_t ParseNumber(std::string_view word, std::uint64_t most, const std::string& what) {
    std::string_view rest = word;
    std::uint64_t number = 0;
    if (!TakeNumber(rest, most, number) || !rest.empty()) {
        throw UsageError(Quoted(word) + " is no " + what + "; write a number from 0 to " +
                         std::to_string(most));
    }
    return number;
}

Time ParseDuration(const std::string& word) {
    const UsageError wrong(Quoted(word) +
                           " is no duration; write one such as 2h30m, 10s or 1d, of at most "
                           "36500 days");
    std::string_view rest = word;
    Time duration = 0;
    if (rest.empty()) throw wrong;
    while (!rest.empty()) {
        std::uint64_t number = 0;
        if (!TakeNumber(rest, static_cast<std::uint64_t>(kLongest), number)) throw wrong;
        const std::size_t length = std::min(rest.find_first_of("0123456789"), rest.size());
        const Unit* const unit = FindUnit(kTimeUnits, rest.substr(0, length));
        if (unit == nullptr || number > static_cast<std::uint64_t>(kLongest) / unit->factor) {
            throw wrong;
        }
        duration += static_cast<Time>(number * unit->factor);
        if (duration > kLongest) throw wrong;
        rest.remove_prefix(length);
    }
    return duration;
}

std::string DurationText(Time duration) {
    std::string text;
    auto rest = static_cast<std::uint64_t>(duration);
    for (const Unit& unit : kTimeUnits) {
        if (unit.name == "w" || rest < unit.factor) continue;
        text += std::to_string(rest / unit.factor) + std::string(unit.name);
        rest %= unit.factor;
    }
    return text.empty() ? "0s" : text;
}

Sectors ParseSize(const std::string& word) {
    std::string_view rest = word;
    std::uint64_t number = 0;
    const bool counted = TakeNumber(rest, UINT64_MAX, number);
    const Unit* const unit = FindUnit(kSizeUnits, rest);
    if (!counted || unit == nullptr || number > UINT64_MAX / unit->factor) {
        throw UsageError(Quoted(word) +
                         " is no size; write one such as 100GiB, 512MiB, 2TiB or 4096s (sectors)");
    }
    return number * unit->factor;
}

std::string SizeText(Sectors sectors) {
    const Unit* unit = kSizeUnits;
    while (unit->factor > 2 && sectors < unit->factor) ++unit;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f %s",
                  static_cast<double>(sectors) / static_cast<double>(unit->factor),
                  std::string(unit->name).c_str());
    return text.data();
}

std::string TimeText(Time time) {
    const std::time_t seconds = time / 1000;
    std::tm date{};
    gmtime_r(&seconds, &date);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &date);
    return text.data();
}

HX_U32 ParseName(std::span<const HxraidName> names, std::string_view word,
                 const std::string& what) {
    if (const HxraidName* const row = HxraidFind(names, word)) return row->code;
    std::string list;
    for (const HxraidName& each : names) {
        list += list.empty() ? "" : ", ";
        list += each.name;
    }
    throw UsageError(Quoted(word) + " is no " + what + "; take one of " + list);
}

std::string NameText(std::span<const HxraidName> names, HX_U32 code) {
    const std::string_view name = HxraidNameOf(names, code);
    return name.empty() ? std::to_string(code) : std::string(name);
}

const hxsim::Adapter& AdapterAt(const hxsim::Machine& machine, const Address& address) {
    return FindAdapter(machine, address);
}

hxsim::Adapter& AdapterAt(hxsim::Machine& machine, const Address& address) {
    return FindAdapter(machine, address);
}

void RequireObject(const hxsim::Machine& machine, const Address& address) {
    const hxsim::Adapter& adapter = AdapterAt(machine, address);
    const auto has = [&] {
        switch (address.kind) {
            case Kind::kAdapter:
                return true;
            case Kind::kDisk:
                return hxsim::Find(adapter.disks, address.id) != nullptr;
            case Kind::kVirtualDisk:
                return hxsim::Find(adapter.virtual_disks, address.id) != nullptr;
            case Kind::kDiskGroup:
                return hxsim::Find(adapter.disk_groups, address.id) != nullptr;
            case Kind::kEnclosure:
                return hxsim::Find(adapter.enclosures, address.id) != nullptr;
            case Kind::kElement:
                return std::ranges::any_of(adapter.elements, [&](const hxsim::Element& element) {
                    return element.enclosure == address.id && element.number == address.element;
                });
        }
        return false;
    };
    if (!has()) {
        throw NoObject(address.text + ": adapter a" + std::to_string(address.adapter) +
                       " has none of that number; hxsimctl show lists what there is");
    }
}

std::vector<std::string> WordsOf(std::string_view line) {
    std::vector<std::string> words;
    bool inside = false;  // of a word
    bool quoted = false;
    for (const char each : line) {
        if (each == '#' && !inside) break;
        if (!quoted && (each == ' ' || each == '\t' || each == '\r')) {
            inside = false;
            continue;
        }
        if (!inside) words.emplace_back();
        inside = true;
        if (each == '"') {
            quoted = !quoted;
        } else {
            words.back() += each;
        }
    }
    if (quoted) throw UsageError("a quote has no end; put \" behind its text");
    return words;
}

// The words of hxsimctl's commands and of scenarios: addresses, durations, sizes, names.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codes/hxraid_codes.h"
#include "model/hxsim_machine.h"

/// What an address names.
enum class Kind { kAdapter, kDisk, kVirtualDisk, kDiskGroup, kEnclosure, kElement };

/// An object of the machine: a0, a0/pd12, a0/vd3, a0/dg0, a0/enc0 or a0/enc0/el3.
struct Address {
    Kind kind = Kind::kAdapter;
    HX_U8 adapter = 0;
    HX_U16 id = 0;      // of the disk, virtual disk, disk group or enclosure
    HX_U8 element = 0;  // of the enclosure
    std::string text;
};

/// The address that a word is. Throws UsageError.
Address ParseAddress(const std::string& word);

/// The same, of an object of that kind.
Address ParseAddress(const std::string& word, Kind kind);

/// A number of digits alone, at most `most`. `what` names it in the UsageError.
std::uint64_t ParseNumber(std::string_view word, std::uint64_t most, const std::string& what);

/// Virtual time such as 2h30m, 10s or 1d: numbers with the units w, d, h, m, s and ms, at most
/// 36500 days. Throws UsageError.
hxsim::Time ParseDuration(const std::string& word);

/// The shortest of the words that ParseDuration takes for so long; 0s for none.
std::string DurationText(hxsim::Time duration);

/// A size such as 100GiB, 512MiB, 2TiB or 4096s (sectors). Throws UsageError.
hxsim::Sectors ParseSize(const std::string& word);

/// A size in the largest unit in which it is 1 or more, with one digit behind the point.
std::string SizeText(hxsim::Sectors sectors);

/// Virtual time as a date: 2026-03-01 12:00:00 UTC.
std::string TimeText(hxsim::Time time);

/// The code that a name stands for. `what` names it in the UsageError, which lists the names.
HX_U32 ParseName(std::span<const HxraidName> names, std::string_view word, const std::string& what);

/// The name of a code, or the number when it has none.
std::string NameText(std::span<const HxraidName> names, HX_U32 code);

/// The adapter, disk, virtual disk or disk group of an address in a machine. Throw NoObject.
const hxsim::Adapter& AdapterAt(const hxsim::Machine& machine, const Address& address);
hxsim::Adapter& AdapterAt(hxsim::Machine& machine, const Address& address);

/// Throws NoObject unless the machine has what the address names.
void RequireObject(const hxsim::Machine& machine, const Address& address);

/// The words of a line: parted by blanks; "a b" is one word; from a # on nothing counts.
/// Throws UsageError for a quote without its end.
std::vector<std::string> WordsOf(std::string_view line);

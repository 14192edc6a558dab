// Formats numbers, times and sentences in the same way for every consumer.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace hxconditions {

/// The values of a sentence's placeholders, by name.
using Values = std::map<std::string, std::string, std::less<>>;

/// The text with its placeholders filled; "?" for unknown values.
std::string Fill(std::string_view text, const Values& values);

/// The words of a command; empty when a placeholder cannot be filled.
std::vector<std::string> FillCommand(std::string_view command, const Values& values);

/// "1.8 TiB", "300 GiB".
std::string SizeText(std::uint64_t sectors);

/// "20 s", "12 min", "3 h", "9 days".
std::string DurationText(std::int64_t seconds);

/// "2026-11-22 02:31:20 UTC".
std::string TimeText(std::int64_t seconds);

/// "2026-11-22T02:31:20Z".
std::string IsoTimeText(std::int64_t seconds);

/// "a", "a and b", "a, b and c"; of more than four "a, b, c and 3 more".
std::string Listed(const std::vector<std::string>& items);

/// At most `most` bytes, cut between characters, with "..." when something was cut off.
std::string Shortened(std::string_view text, std::size_t most);

}  // namespace hxconditions

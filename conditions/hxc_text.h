// How numbers, times and sentences are written, the same for every consumer.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace hxconditions {

/// What stands in the places of a sentence.
using Values = std::map<std::string, std::string, std::less<>>;

/// The text with its places filled; "?" where nothing is known to stand.
std::string Fill(std::string_view text, const Values& values);

/// The words of a command; none when a place cannot be filled.
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

/// At most so many bytes, cut between characters, with "..." where something is missing.
std::string Shortened(std::string_view text, std::size_t most);

}  // namespace hxconditions

#include "common/nearest_name.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace vexortools {

namespace {

constexpr std::size_t kMostMistakes = 2;
// Longer ones are no slips of somebody who typed a name.
constexpr std::size_t kLongestName = 128;

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// How many characters are missing, too many, others or exchanged with their neighbour (the
// Damerau-Levenshtein distance of neighbours); the case of letters does not count.
std::size_t Mistakes(std::string_view one, std::string_view other) {
    const std::size_t columns = other.size() + 1;
    std::vector<std::size_t> before_last(columns);
    std::vector<std::size_t> last(columns);
    std::vector<std::size_t> now(columns);
    for (std::size_t column = 0; column < columns; ++column) last[column] = column;
    for (std::size_t row = 1; row <= one.size(); ++row) {
        now[0] = row;
        for (std::size_t column = 1; column < columns; ++column) {
            const char a = Lower(one[row - 1]);
            const char b = Lower(other[column - 1]);
            now[column] =
                std::min({last[column] + 1, now[column - 1] + 1, last[column - 1] + (a != b)});
            const bool exchanged =
                row > 1 && column > 1 && a == Lower(other[column - 2]) && b == Lower(one[row - 2]);
            if (exchanged) now[column] = std::min(now[column], before_last[column - 2] + 1);
        }
        before_last.swap(last);
        last.swap(now);
    }
    return last[columns - 1];
}

}  // namespace

std::string_view NearestName(std::string_view typed, std::span<const std::string_view> names) {
    if (typed.size() > kLongestName) return {};
    std::string_view nearest;
    std::size_t least = kMostMistakes + 1;
    for (const std::string_view name : names) {
        if (name.size() > kLongestName) continue;
        const std::size_t mistakes = Mistakes(typed, name);
        // Of names of two letters one mistake is half; they are meant where one letter is too many.
        const bool is_longer = name.size() >= 2 && typed.size() == name.size() + 1;
        if (mistakes < least && (2 * mistakes < name.size() || (mistakes == 1 && is_longer))) {
            nearest = name;
            least = mistakes;
        }
    }
    return nearest;
}

}  // namespace vexortools

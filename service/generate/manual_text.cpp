#include "service/generate/manual_text.h"

#include <algorithm>
#include <cstddef>

namespace hxservice {

std::string ManualText(std::string_view text) {
    constexpr std::size_t kMostColumns = 78;
    std::string wrapped;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const bool is_new = wrapped.empty() || wrapped.ends_with('.');
        if (is_new || column + 1 + word.size() > kMostColumns) {
            if (!wrapped.empty()) wrapped += '\n';
            column = 0;
        } else {
            wrapped += ' ';
            ++column;
        }
        wrapped += word;
        column += word.size();
    }
    return wrapped;
}

}  // namespace hxservice

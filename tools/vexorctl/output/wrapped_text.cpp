#include "output/wrapped_text.h"

#include <algorithm>

#include "common/terminal_text.h"

namespace vexorctl {

namespace {

using vexortools::DisplayWidth;

bool GoesOn(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// The bytes of the characters that fit; those of the first character at least.
std::size_t BytesThatFit(std::string_view word, std::size_t width) {
    std::size_t fitting = 0;
    for (std::size_t end = 1; end <= word.size(); ++end) {
        if (end < word.size() && GoesOn(word[end])) continue;
        if (fitting != 0 && DisplayWidth(word.substr(0, end)) > width) break;
        fitting = end;
    }
    return fitting;
}

}  // namespace

std::vector<std::string> WrappedLines(std::string_view text, std::size_t width) {
    std::vector<std::string> lines(1);
    bool begun = false;  // the last line has a word, be it an empty one
    while (!text.empty()) {
        std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (begun && DisplayWidth(lines.back()) + 1 + DisplayWidth(word) > width) {
            lines.emplace_back();
            begun = false;
        }
        if (begun) lines.back() += ' ';
        begun = true;
        while (DisplayWidth(lines.back()) + DisplayWidth(word) > width) {
            const std::size_t bytes = BytesThatFit(word, width);
            if (bytes == word.size()) break;
            lines.back() += word.substr(0, bytes);
            word.remove_prefix(bytes);
            lines.emplace_back();
        }
        lines.back() += word;
    }
    return lines;
}

std::string Wrapped(std::string_view first, std::string_view text, std::size_t width) {
    const std::size_t indent = DisplayWidth(first);
    std::string out;
    for (const std::string& line : WrappedLines(text, width > indent ? width - indent : 1)) {
        out += out.empty() ? std::string(first) : std::string(indent, ' ');
        out += line;
        out += '\n';
    }
    return out;
}

}  // namespace vexorctl

#include "words.h"

#include <algorithm>

#include "markdown.h"

std::string InWords(const Meaning& meaning) {
    std::string words(meaning.text);
    if (!meaning.values.empty()) words.append("; ").append(meaning.values);
    if (meaning.codes != Codes::kNone) {
        words.append("; codes: \"").append(TitleOf(meaning.codes)).append("\"");
    }
    return words;
}

bool HasStatus(const FunctionText& function) {
    return std::ranges::any_of(function.elements, [&](const Element& element) {
        return element.name == "RetVal" &&
               MeaningOf(function.name, element).codes == Codes::kRefusals;
    });
}

bool IsAsked(const FunctionText& function, const Child& child) {
    return !function.paged || (child.name != "version" && child.name != "numReturned" &&
                               child.name != "nextStartingIndex");
}

std::string Wrapped(std::string_view text, const std::string& indent, std::size_t width) {
    std::string lines;
    std::string line = indent;
    bool is_empty = true;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!is_empty && line.size() + 1 + word.size() > width) {
            lines += line + "\n";
            line = indent + "  ";
            is_empty = true;
        }
        if (!is_empty) line += " ";
        line += word;
        is_empty = false;
    }
    return lines + line + "\n";
}

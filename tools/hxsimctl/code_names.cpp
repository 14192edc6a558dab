#include "code_names.h"

#include <algorithm>

#include "failure.h"

namespace hxsimctl {

void RequireOneOf(std::string_view word, const std::vector<std::string_view>& words,
                  const std::string& what) {
    if (std::ranges::find(words, word) != words.end()) return;
    throw UsageError('"' + std::string(word) + "\" is no " + what + "; take one of " +
                     ListOf(words));
}

HX_U32 ParseName(std::span<const hxcodes::Named> names, std::string_view word,
                 const std::string& what) {
    RequireOneOf(word, WordsOf(names), what);
    return hxcodes::FindName(names, word)->code;
}

std::vector<std::string_view> WordsOf(std::span<const hxcodes::Named> names) {
    std::vector<std::string_view> words;
    words.reserve(names.size());
    for (const hxcodes::Named& each : names) words.push_back(each.name);
    return words;
}

std::string ListOf(const std::vector<std::string_view>& words) {
    std::string list;
    for (const std::string_view word : words) list.append(list.empty() ? "" : ", ").append(word);
    return list;
}

}  // namespace hxsimctl

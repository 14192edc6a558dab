// Names of codes on the command line.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codes/named.h"

namespace hxsimctl {

/// The code of a name. The UsageError for an unknown name says `what` is expected and lists the
/// names.
HX_U32 ParseName(std::span<const hxcodes::Named> names, std::string_view word,
                 const std::string& what);
template <hxcodes::CodeEnum Code>
Code ParseCode(std::string_view word, const std::string& what) {
    return static_cast<Code>(ParseName(hxcodes::NamesOf<Code>(), word, what));
}

/// Throws the same UsageError unless `words` contains the word.
void RequireOneOf(std::string_view word, const std::vector<std::string_view>& words,
                  const std::string& what);

/// The names of a table, in its order.
std::vector<std::string_view> WordsOf(std::span<const hxcodes::Named> names);

/// The words with a comma between each two.
std::string ListOf(const std::vector<std::string_view>& words);

}  // namespace hxsimctl

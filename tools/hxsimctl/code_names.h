// Names of codes, as people type and read them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codes/named.h"

namespace hxsimctl {

/// The code that a name stands for. `what` tells in the UsageError what is wanted; the names that
/// there are stand behind it.
HX_U32 ParseName(std::span<const hxcodes::Named> names, std::string_view word,
                 const std::string& what);
template <hxcodes::CodeEnum Code>
Code ParseCode(std::string_view word, const std::string& what) {
    return static_cast<Code>(ParseName(hxcodes::NamesOf<Code>(), word, what));
}

/// Throws the same UsageError unless the word is one of those.
void RequireOneOf(std::string_view word, const std::vector<std::string_view>& words,
                  const std::string& what);

/// The names of a table, in its order.
std::vector<std::string_view> WordsOf(std::span<const hxcodes::Named> names);

/// The words with a comma between each two.
std::string ListOf(const std::vector<std::string_view>& words);

}  // namespace hxsimctl

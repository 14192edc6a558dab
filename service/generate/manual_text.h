// Texts for manual pages in mdoc.
#pragma once

#include <string>
#include <string_view>

namespace hxservice {

/// The text in lines of at most 78 columns, each sentence beginning a new one, without the last
/// line's end.
std::string ManualText(std::string_view text);

}  // namespace hxservice

// What somebody may have meant by a word that is none, as messages say it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vexorctl {

/// "; did you mean \"disk\"?", or empty where no word comes near.
std::string Meant(std::string_view word, const std::vector<std::string>& words);

}  // namespace vexorctl

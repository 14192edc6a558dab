#include "shell/nearest_word.h"

#include "common/nearest_name.h"

namespace vexorctl {

std::string Meant(std::string_view word, const std::vector<std::string>& words) {
    const std::vector<std::string_view> names(words.begin(), words.end());
    const std::string_view nearest = vexortools::NearestName(word, names);
    return nearest.empty() ? "" : "; did you mean \"" + std::string(nearest) + "\"?";
}

}  // namespace vexorctl

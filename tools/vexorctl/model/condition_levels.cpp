#include "model/condition_levels.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <variant>
#include <vector>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/read_file.h"
#include "conditions/hxc_rows.h"

namespace vexorctl {

namespace {

namespace hxc = hxconditions;

constexpr char kFile[] = "/etc/hxraid/hxraidsvc.conf";
constexpr std::size_t kMostBytes = std::size_t{1} << 20;

struct LevelWord {
    std::string_view word;
    std::optional<hxc::Level> level;  // none: it is switched off
};
constexpr LevelWord kLevelWords[] = {{"critical", hxc::Level::kCritical},
                                     {"warning", hxc::Level::kWarning},
                                     {"info", hxc::Level::kInfo},
                                     {"off", std::nullopt}};

std::string NearestCode(const std::string& typed) {
    std::vector<std::string_view> names;
    for (const hxc::Row& row : hxc::Rows()) names.push_back(row.name);
    const std::string_view nearest = vexortools::NearestName(typed, names);
    return nearest.empty() ? "" : "; did you mean " + vexortools::Quoted(nearest) + "?";
}

// The error of every value, a line each.
std::string TakeAll(const std::string& path, const std::string& text, hxc::Settings& settings) {
    std::string complaints;
    try {
        for (const vexortools::TomlValue& value : vexortools::ParseToml(text)) {
            if (!IsConditionLevel(value)) continue;
            const auto what = TakeConditionLevel(settings, value);
            if (!what) continue;
            complaints += complaints.empty() ? "" : "; ";
            complaints += path + ":" + std::to_string(value.line) + ": " + *what;
        }
    } catch (const vexortools::TomlError& error) {
        return path + ":" + std::to_string(error.line) + ": " + error.what();
    }
    return complaints;
}

}  // namespace

bool IsConditionLevel(const vexortools::TomlValue& value) {
    return value.key.starts_with(std::string(kConditionsTable) + ".");
}

std::optional<std::string> TakeConditionLevel(hxc::Settings& settings,
                                              const vexortools::TomlValue& value) {
    const std::string name = value.key.substr(kConditionsTable.size() + 1);
    const std::optional<hxc::Code> code = hxc::FindRow(name);
    if (!code) return "there is no condition " + vexortools::Quoted(name) + NearestCode(name);
    const auto* const text = std::get_if<std::string>(&value.value);
    const auto* const word = text == nullptr
                                 ? std::end(kLevelWords)
                                 : std::ranges::find(kLevelWords, *text, &LevelWord::word);
    if (word == std::end(kLevelWords)) {
        return vexortools::Quoted(value.key) +
               " must be one of \"critical\", \"warning\", \"info\", \"off\"";
    }
    if (!hxc::MayBeLowered(hxc::RowOf(*code)) && word->level != hxc::Level::kCritical) {
        return vexortools::Quoted(value.key) +
               " stays critical: it tells of data that is lost or in danger";
    }
    if (word->level) {
        settings.levels[*code] = *word->level;
    } else {
        settings.off.insert(*code);
    }
    return std::nullopt;
}

ConditionLevels ReadConditionLevels() {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    const std::string path = std::string(root == nullptr ? "" : root) + kFile;
    ConditionLevels levels;
    try {
        const std::string text =
            vexortools::ReadFile(path.c_str(), vexortools::FileKind::kRegular, kMostBytes);
        levels.complaint = TakeAll(path, text, levels.settings);
    } catch (const vexortools::FileError& error) {
        levels.is_denied = error.error == EACCES || error.error == EPERM;
        const bool is_missing = error.error == ENOENT || error.error == ENOTDIR;
        if (!is_missing && !levels.is_denied) levels.complaint = path + ": " + error.what();
    }
    if (!levels.complaint.empty()) levels.settings = {};
    return levels;
}

}  // namespace vexorctl

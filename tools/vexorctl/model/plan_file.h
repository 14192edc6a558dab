// A plan as a file: what was to be done, with which commands, to which objects and with which
// effects, so that somebody else can read it and have exactly that carried out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/failure.h"

namespace vexorctl {

/// The largest plan that is read or written.
inline constexpr std::size_t kMostPlanBytes = std::size_t{4} << 20U;

/// A text is no plan; what() says why.
struct PlanFileError : vexortools::UsageError {
    using UsageError::UsageError;
};

/// By what an object is known again: what each fact is called, and what it was.
using Fingerprint = std::vector<std::pair<std::string, std::string>>;

struct PlanFile {
    std::string made_by;             // program and version
    std::string made_at;             // ISO 8601
    std::string host;                // the machine's name
    std::vector<std::string> words;  // the command, as it is typed behind "vexorctl"
    std::string what;
    std::vector<std::string> effects;
    std::optional<std::uint64_t> size_bytes;
    std::vector<std::string> functions;  // the commands to the library
    std::map<std::string, Fingerprint> objects;

    bool operator==(const PlanFile&) const = default;
};

/// The text of the file. Characters that are no UTF-8 are replaced.
std::string WritePlan(const PlanFile& plan);

/// Reads such a text, which may come from anybody. Throws PlanFileError for everything that
/// WritePlan would not have written: other keys, other types, keys that stand there twice.
PlanFile ReadPlan(const std::string& text);

}  // namespace vexorctl

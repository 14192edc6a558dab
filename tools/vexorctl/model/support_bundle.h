// What a machine's support bundle is made of, and the archive of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vexorctl {

enum class PartState {
    kIncluded,
    kAbsent,   // there is no such thing on this machine
    kLeftOut,  // it would tell whose machine it is
    kUnread,   // it is there, or ought to be, and could not be read
};

/// "included", "absent", "left_out" or "unread".
std::string_view WordOf(PartState state);

struct BundlePart {
    std::string name;    // of the file in the archive
    std::string source;  // a command or a path
    PartState state = PartState::kIncluded;
    std::optional<std::uint64_t> bytes{};
    std::string reason{};  // why it is not whole
};

/// Collects everything, writes it to a new archive that only its owner can read, and reads that
/// back. Throws Failure; then there is no archive.
std::vector<BundlePart> WriteBundle(const std::string& path, bool anonymous, bool replace);

}  // namespace vexorctl

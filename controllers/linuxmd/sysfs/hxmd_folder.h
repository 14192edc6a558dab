// Folders of sysfs and procfs, and the attributes in them. Nothing here opens a device or starts a
// process; all reads are bounded.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "descriptor.h"

namespace hxmd {

/// The longest attribute that is read: a page, sysfs's own limit.
inline constexpr std::size_t kMostBytes = 4096;
/// The longest text of procfs that is read, and the most entries of a folder that are listed.
inline constexpr std::size_t kMostText = std::size_t{1} << 20;
inline constexpr std::size_t kMostEntries = 65536;

/// An open folder, or none; then everything in it counts as missing.
class Folder {
public:
    Folder() = default;
    explicit Folder(Descriptor folder) : folder_(std::move(folder)) {}

    /// Opens a folder below the root prefix; `path` begins with "/".
    static Folder OfSystem(const char* path);

    bool IsOpen() const { return folder_.IsOpen(); }

    /// Opens a folder in this one, following links.
    Folder Open(const std::string& path) const;

    /// The bytes of a file; none when it is missing, cannot be read or is longer than `most`. An
    /// attribute whose object disappears during the read counts as missing.
    std::optional<std::string> Read(const std::string& path, std::size_t most = kMostBytes) const;

    /// The target of a symbolic link; empty when it is no link.
    std::string Link(const std::string& path) const;

    /// Whether the path exists, following links.
    bool Has(const std::string& path) const;

    /// The names in the folder, sorted, without those that begin with a dot.
    std::vector<std::string> Names() const;

private:
    Descriptor folder_;
};

/// The last part of a path.
std::string LastPart(const std::string& path);

}  // namespace hxmd

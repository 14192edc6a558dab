// Writes whole files, in one step: whoever reads the file sees the old content or the new, never a
// part, and after a crash of the machine it is one of the two.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "common/read_file.h"  // IWYU pragma: keep: the FileError that it throws

namespace vexortools {

/// What becomes of a file that is there already.
enum class Existing { kReplace, kKeep };

/// A file that somebody else writes and that takes its place when it is whole. It stands in a
/// folder beside that place which only its owner can enter; both are gone with this object unless
/// Put was called.
class NewFile {
public:
    /// Makes the file, empty, for the place `path`. Throws FileError.
    explicit NewFile(const std::string& path);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Where the content is to be written.
    const std::string& Path() const { return file_; }

    /// Empties the file and reserves room for so many bytes, so that writing them cannot fail for
    /// want of room. Returns false where the file system cannot reserve; throws FileError, with
    /// ENOSPC, EDQUOT or EFBIG, when there is no such room.
    bool Reserve(std::uint64_t bytes) const;

    /// How many bytes have been written. Throws FileError.
    std::uint64_t Size() const;

    /// Puts the file in its place, when all of it is on the disk. A file that is replaced leaves
    /// its mode and, as far as that is permitted, its owner to the new one; otherwise it has `mode`
    /// as far as the umask lets it. A link at the place is replaced, not followed. Throws
    /// FileError, with EEXIST for one that is to be kept; then everything there stays as it was.
    void Put(Existing existing, mode_t mode) const;

private:
    std::string place_;
    std::string folder_;
    std::string file_;
};

/// Puts a file with that content in the place of the one at `path`, or where there is none. Only
/// the owner may read a file that was not there. Throws FileError; then the old one stays.
void ReplaceFile(const std::string& path, std::string_view content);

}  // namespace vexortools

// Replaces files atomically: readers see the old content or the new, never a part, even after a
// crash of the machine.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "common/read_file.h"  // IWYU pragma: keep: the FileError that it throws

namespace vexortools {

/// What to do with an existing file.
enum class Existing { kReplace, kKeep };

/// A temporary file for other code to write, which is moved to its place when it is complete. It is
/// in a private folder beside that place; the destructor removes both unless Put was called.
class NewFile {
public:
    /// Creates an empty temporary file for the place `path`. Throws FileError.
    explicit NewFile(const std::string& path);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// The path of the temporary file.
    const std::string& Path() const { return file_; }

    /// Empties the file and reserves `bytes` bytes, so that writing them cannot fail for lack of
    /// space. Returns false when the file system cannot reserve; throws FileError with ENOSPC,
    /// EDQUOT or EFBIG when there is not enough space.
    bool Reserve(std::uint64_t bytes) const;

    /// The number of bytes written. Throws FileError.
    std::uint64_t Size() const;

    /// Syncs the file and moves it to its place. It takes over the mode and, if permitted, the
    /// owner of a file that it replaces; otherwise it gets `mode`, reduced by the umask. A link at
    /// the place is replaced, not followed. Throws FileError, with EEXIST when an existing file is
    /// to be kept; then nothing has changed there.
    void Put(Existing existing, mode_t mode) const;

private:
    std::string place_;
    std::string folder_;
    std::string file_;
};

/// Replaces or creates the file at `path` with that content. A new file gets `mode`, reduced by the
/// umask. Throws FileError; then the old file stays.
void ReplaceFile(const std::string& path, std::string_view content, mode_t mode = 0600);

}  // namespace vexortools

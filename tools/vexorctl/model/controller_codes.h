// What the codes of the controller mean that answers. Codes are its maker's own choice, so names,
// sentences and what follows from them are used for a controller that is known by its identity, or
// that the administrator has described in a file; the codes of any other are numbers.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "codes/code_table.h"
#include "model/exit_code.h"

namespace vexorctl {

/// Why a command that needs a code cannot be carried out, to be put behind what needs it.
inline constexpr std::string_view kCodesNotKnown =
    "the codes of this controller are not known; describe them in a file (see --codes)";

/// The file of codes that is read where none is named, below VEXORAPI_ROOT.
std::string CodesPath();

class ControllerCodes {
public:
    /// The interface's codes alone.
    ControllerCodes();
    /// Those of the controller that calls itself so (HX_API_Version). A controller of ours has its
    /// own; any other those of the file at `path`, or when that is null of the file at CodesPath()
    /// where there is one. Throws Failure when the named file cannot be read or is for
    /// another controller, Unavailable when the other one cannot be read.
    ControllerCodes(std::string_view identity, const std::optional<std::string>& path);
    ~ControllerCodes();
    ControllerCodes(ControllerCodes&&) noexcept;
    ControllerCodes& operator=(ControllerCodes&&) noexcept;

    const hxcodes::CodeTable& table() const { return *table_; }
    /// Whether the controller's own codes are known, all or some.
    bool AreKnown() const { return are_known_; }

    /// The name of a refusal; empty when it has none.
    std::string_view NameOfRefusal(std::uint64_t status) const;
    /// "The adapter has no disk with that ID. (no_disk, code 205)"; "code 77" where it has no name.
    std::string RefusalText(std::uint64_t status) const;
    /// What a refusal means for the command.
    Exit ExitOf(std::uint64_t status) const;
    /// Whether the adapter says that it simply does not have what was asked for.
    bool IsAbsence(std::uint64_t status) const;

private:
    struct File;
    const hxcodes::RefusalText* Find(std::uint64_t status) const;

    const hxcodes::CodeTable* table_;
    std::unique_ptr<File> file_;
    bool are_known_ = false;
};

}  // namespace vexorctl

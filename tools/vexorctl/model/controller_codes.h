// The meaning of the controller's codes. Every maker chooses its own codes, so names, sentences and
// exit codes are used only for a controller that is known by its identity or that the administrator
// has described in a file. The codes of any other controller stay numbers.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "codes/code_table.h"
#include "model/exit_code.h"

namespace vexorctl {

/// The end of the message that a command needs a code which is not known.
inline constexpr std::string_view kCodesNotKnown =
    "the codes of this controller are not known; describe them in a file (see --codes)";

/// The default file of codes, below VEXORAPI_ROOT.
std::string CodesPath();

class ControllerCodes {
public:
    /// The interface's codes alone.
    ControllerCodes();
    /// The codes of the controller whose HX_API_Version is `identity`. Ours has its own. For any
    /// other they are read from `path`, or, when that is null, from CodesPath() if that file
    /// exists. Throws Failure when `path` cannot be used or is for another controller, Unavailable
    /// when CodesPath() cannot be used.
    ControllerCodes(std::string_view identity, const std::optional<std::string>& path);
    ~ControllerCodes();
    ControllerCodes(ControllerCodes&&) noexcept;
    ControllerCodes& operator=(ControllerCodes&&) noexcept;

    const hxcodes::CodeTable& table() const { return *table_; }
    /// Whether the controller's own codes are known, all or some.
    bool AreKnown() const { return are_known_; }
    /// Whether the controller is one of ours, whose rules are known beside its codes.
    bool AreOurs() const { return are_known_ && file_ == nullptr; }

    /// The name of a refusal; empty when it has none.
    std::string_view NameOfRefusal(std::uint64_t status) const;
    /// "The adapter has no disk with that ID. (no_disk, code 205)"; "code 77" where it has no name.
    std::string RefusalText(std::uint64_t status) const;
    /// What a refusal means for the command.
    Exit ExitOf(std::uint64_t status) const;
    /// Whether the refusal only says that the adapter does not have what was asked for.
    bool IsAbsence(std::uint64_t status) const;

private:
    struct File;
    const hxcodes::RefusalText* Find(std::uint64_t status) const;

    const hxcodes::CodeTable* table_;
    std::unique_ptr<File> file_;
    bool are_known_ = false;
};

}  // namespace vexorctl

#include "model/controller_codes.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "codes/identity.h"
#include "codes/named.h"
#include "common/read_file.h"
#include "model/codes_file.h"
#include "model/failure.h"
#include "model/library_session.h"

namespace vexorctl {

namespace {

constexpr std::size_t kMaxCodesFile = 1024 * 1024;

// Refusals that only say that the adapter lacks the function or the object that it is about.
constexpr std::string_view kAbsences[] = {"not_supported", "no_battery"};

}  // namespace

// On the heap, because the table points into the file's rows, which must not move.
struct ControllerCodes::File : CodesFile {
    using CodesFile::CodesFile;
};

std::string CodesPath() {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    return std::string(root == nullptr ? "" : root) + "/etc/vexorapi/codes.json";
}

ControllerCodes::ControllerCodes() : table_(&hxcodes::NoCodes()) {}
ControllerCodes::~ControllerCodes() = default;
ControllerCodes::ControllerCodes(ControllerCodes&&) noexcept = default;
ControllerCodes& ControllerCodes::operator=(ControllerCodes&&) noexcept = default;

ControllerCodes::ControllerCodes(std::string_view identity, const std::optional<std::string>& path)
    : table_(&hxcodes::NoCodes()) {
    const bool is_named = path.has_value();
    const bool is_ours =
        identity.ends_with(hxcodes::kVirtualController) || identity.ends_with(hxcodes::kLinuxMd);
    if (is_ours) {
        table_ = &hxcodes::OwnCodes();
        are_known_ = true;
        if (!is_named) return;
    }
    const std::string where = path.value_or(CodesPath());
    const auto fail = [&](Exit exit, const std::string& reason) {
        if (!is_named) throw Unavailable(where, reason);
        throw Failure(exit, where + ": " + reason);
    };
    std::unique_ptr<File> file;
    try {
        file = std::make_unique<File>(ReadFile(where.c_str(), FileKind::kRegular, kMaxCodesFile));
    } catch (const FileError& error) {
        if (!is_named && (error.error == ENOENT || error.error == ENOTDIR)) return;
        fail(error.error == EACCES ? Exit::kNotPermitted : Exit::kUsage,
             std::string("codes cannot be read: ") + error.what());
    } catch (const CodesFileError& error) {
        fail(Exit::kUsage, std::string("codes: ") + error.what());
    }
    const bool is_for_another = !file->controller().empty() && file->controller() != identity;
    if (is_for_another && is_named) {
        fail(Exit::kUsage, "the codes are those of \"" + file->controller() +
                               "\"; the controller that answers is \"" + std::string(identity) +
                               "\"");
    }
    // The codes of our own controller are known; a file does not change them.
    if (is_ours || is_for_another) return;
    table_ = &file->table();
    file_ = std::move(file);
    are_known_ = true;
}

const hxcodes::RefusalText* ControllerCodes::Find(std::uint64_t status) const {
    return hxcodes::FindCode(table_->refusals, status);
}

std::string_view ControllerCodes::NameOfRefusal(std::uint64_t status) const {
    const hxcodes::RefusalText* const refusal = Find(status);
    return refusal == nullptr ? std::string_view() : refusal->name;
}

std::string ControllerCodes::RefusalText(std::uint64_t status) const {
    const hxcodes::RefusalText* const refusal = Find(status);
    if (refusal == nullptr) return "code " + std::to_string(status);
    return std::string(refusal->sentence) + " (" + std::string(refusal->name) + ", code " +
           std::to_string(status) + ")";
}

Exit ControllerCodes::ExitOf(std::uint64_t status) const {
    if (status == 0) return Exit::kDone;
    const hxcodes::RefusalText* const refusal = Find(status);
    if (refusal == nullptr) return Exit::kRefused;
    switch (refusal->fault) {
        case hxcodes::Fault::kRequest:
            return Exit::kRefused;
        case hxcodes::Fault::kNoObject:
            return Exit::kNoObject;
        case hxcodes::Fault::kUnavailable:
            return Exit::kUnavailable;
    }
    return Exit::kRefused;
}

bool ControllerCodes::IsAbsence(std::uint64_t status) const {
    return std::ranges::find(kAbsences, NameOfRefusal(status)) != std::end(kAbsences);
}

}  // namespace vexorctl

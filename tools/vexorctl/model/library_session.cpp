#include "model/library_session.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "common/read_file.h"
#include "library/trouble.h"
#include "model/xml_text.h"

#include "vexorapi.h"

namespace vexorctl {

namespace {

// The library treats a larger configuration file as absent.
constexpr std::size_t kMaxConfiguration = 65535;

// Put into the buffer before a call. Neither a result nor an empty text begins with this byte, so a
// buffer that still does was not written.
constexpr char kUntouched = '\x01';

// The configuration's text, well-formed; empty where there is no file, or an empty one: then the
// library's defaults hold.
std::string CheckedConfiguration() {
    const std::string path = ConfigurationPath();
    std::string text;
    try {
        text =
            vexortools::ReadFile(path.c_str(), vexortools::FileKind::kRegular, kMaxConfiguration);
    } catch (const vexortools::FileError& failure) {
        if (failure.error == ENOENT || failure.error == ENOTDIR) return {};
        if (failure.error == EFBIG) {
            throw Unavailable(path, "configuration too large: more than " +
                                        std::to_string(kMaxConfiguration) + " bytes");
        }
        throw Unavailable(path, std::string("configuration cannot be read: ") + failure.what());
    }
    if (text.empty()) return text;
    const XmlInspection inspection = InspectXml(text);
    if (inspection.too_many_declarations) {
        throw Unavailable(path, "configuration with more than " + std::to_string(kMaxDeclarations) +
                                    " declarations in its document type");
    }
    if (!inspection.well_formed) {
        throw Unavailable(path, "configuration malformed: " + std::to_string(inspection.line) +
                                    ": " + inspection.reason);
    }
    return text;
}

}  // namespace

std::string ConfigurationPath() {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    return std::string(root == nullptr ? "" : root) + "/vexorapi.ini";
}

std::vector<std::pair<std::string, std::string>> ReadConfiguration() {
    return XmlAttributes(CheckedConfiguration());
}

std::string ControllerTrouble() {
    // A library of that name may be the vendor's, which does not have it.
    const auto tell =
        reinterpret_cast<decltype(&hx_trouble)>(dlsym(RTLD_DEFAULT, hxlibrary::kTroubleFunction));
    return tell == nullptr ? "" : tell();
}

Session::Session() : result_(std::make_unique_for_overwrite<char[]>(VEXORAPI_MAX_RESULT)) {
    CheckedConfiguration();
    if (vexorApiInit() != 1) throw Unavailable("", "the library cannot be initialised");
}

Session::~Session() { vexorApiShutdown(); }

Reply Session::Send(const std::string& command) {
    result_[0] = kUntouched;
    const int ok = vexorApi(command.c_str(), result_.get(), VEXORAPI_MAX_RESULT);
    if (ok == 0) return {result_[0] == kUntouched ? Outcome::kNotParsed : Outcome::kDeclined, {}};
    const std::string_view result(result_.get(), strnlen(result_.get(), VEXORAPI_MAX_RESULT));
    return {result.empty() ? Outcome::kDidNotFit : Outcome::kDelivered, result};
}

}  // namespace vexorctl

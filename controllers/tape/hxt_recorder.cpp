#include "tape/hxt_recorder.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "codes/status.h"
#include "descriptor.h"
#include "library/set_while_inside.h"
#include "library/trouble.h"

namespace hxtape {
namespace {

std::string LoaderError() {
    const char* const text = dlerror();
    return text == nullptr ? "the loader gives no reason" : text;
}

}  // namespace

void AppendWhole(const std::string& path, std::string_view text) {
    Descriptor file(open(path.c_str(),
                         O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY | O_CREAT, 0600));
    struct stat before {};
    if (!file.IsOpen() || flock(file.Get(), LOCK_EX) != 0 || fstat(file.Get(), &before) != 0) {
        throw TapeError(std::strerror(errno));
    }
    std::string_view rest = text;
    while (!rest.empty()) {
        const ssize_t count = write(file.Get(), rest.data(), rest.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) {
            const int error = errno;
            // A line that was written in part would make the whole tape unreadable.
            if (ftruncate(file.Get(), before.st_size) != 0) throw TapeError("half a line is there");
            throw TapeError(std::strerror(error));
        }
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    if (!file.Close()) throw TapeError(std::strerror(errno));
}

void Recorder::Closer::operator()(void* library) const { dlclose(library); }

Recorder::Recorder(const std::string& controller, std::string tape, std::string folder,
                   std::optional<PseudonymKey> key)
    : library_(dlopen(controller.c_str(), RTLD_NOW | RTLD_LOCAL)),
      tape_(std::move(tape)),
      folder_(std::move(folder)),
      key_(key) {
    if (!library_) throw TapeError("The controller library cannot be loaded: " + LoaderError());
    if (Find("HX_API_Version") == reinterpret_cast<AnyFunction>(&HX_API_Version)) {
        throw TapeError("The controller library that is to be recorded is the recording one.");
    }
}

AnyFunction Recorder::Find(const char* name) const {
    return reinterpret_cast<AnyFunction>(dlsym(library_.get(), name));
}

// Other makers' libraries tell no reasons.
std::string Recorder::ReasonFor() const {
    const auto tell = reinterpret_cast<decltype(&hx_trouble)>(Find(hxlibrary::kTroubleFunction));
    return tell == nullptr ? "" : tell();
}

HX_U8 Recorder::Pass(const char* name, Returned returned, std::span<const Part> parts,
                     RealCall call) {
    const AnyFunction function = Find(name);
    if (function == nullptr) {
        hxlibrary::NoteTrouble("The controller library lacks a function of its interface.");
        return hxcodes::NumberOf(hxcodes::Status::kNotSupported);
    }
    if (is_inside_ || IsIncomplete(parts)) return call(function);
    TapeCall line{.function = name};
    const PseudonymKey* const key = key_ ? &*key_ : nullptr;
    line.request = RequestOf(parts, key);
    {
        const hxlibrary::SetWhileInside inside(is_inside_);
        line.status = call(function);
    }
    if (returned == Returned::kCount || line.status == HX_SUCCESS) {
        line.answer = AnswerOf(parts, key);
    } else {
        const std::string reason = ReasonFor();
        hxlibrary::NoteTrouble(reason.c_str());
        // A reason may name files and with them people.
        if (key == nullptr) line.answer = reason;
    }
    Write(line);
    return line.status;
}

const char* Recorder::PassVersion() {
    const auto version = reinterpret_cast<decltype(&HX_API_Version)>(Find("HX_API_Version"));
    const char* const text = version == nullptr ? nullptr : version();
    if (text != nullptr && !is_inside_) {
        Write({.function = "HX_API_Version", .request = "", .status = 0, .answer = text});
    }
    return text;
}

// The call has been made, and its answer is right: what cannot be written does not change it. It is
// said at once, and at the end by the program that records.
void Recorder::Write(const TapeCall& call) {
    if (is_broken_) return;
    try {
        AppendWhole(tape_, LineOf(call));
    } catch (const TapeError& error) {
        is_broken_ = true;
        const std::string reason = std::string("The tape is not whole: ") + error.what() + ".\n";
        std::fputs(reason.c_str(), stderr);
        if (folder_.empty()) return;
        try {
            AppendWhole(folder_ + kTroubleFile, reason);
        } catch (const TapeError& other) {
            std::fprintf(stderr, "That cannot be noted: %s.\n", other.what());
        }
    }
}

}  // namespace hxtape

// Records: passes every call on to the real controller library and writes it to the tape.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "hxraid.h"
#include "library/function_ref.h"
#include "tape/hxt_call.h"
#include "tape/hxt_pseudonym.h"
#include "tape/hxt_tape.h"

namespace hxtape {

using AnyFunction = void (*)();

/// Calls the function of the real library and returns what it returned.
using RealCall = hxlibrary::FunctionRef<HX_U8(AnyFunction)>;

/// What the number that a function returns says.
enum class Returned : HX_U8 { kStatus, kCount };

class Recorder {
public:
    /// Opens the controller library. Throws TapeError.
    Recorder(const std::string& controller, std::string tape, std::string folder,
             std::optional<PseudonymKey> key);

    HX_U8 Pass(const char* name, Returned returned, std::span<const Part> parts, RealCall call);
    const char* PassVersion();

private:
    AnyFunction Find(const char* name) const;
    std::string ReasonFor() const;
    void Write(const TapeCall& call);

    struct Closer {
        void operator()(void* library) const;
    };
    std::unique_ptr<void, Closer> library_;
    std::string tape_, folder_;
    std::optional<PseudonymKey> key_;
    bool is_inside_ = false;  // the library calls a function of its own interface
    bool is_broken_ = false;  // the tape takes no more
};

/// Appends the text to the file in one piece, while no other process does. Throws TapeError; then
/// nothing of it is there.
void AppendWhole(const std::string& path, std::string_view text);

}  // namespace hxtape

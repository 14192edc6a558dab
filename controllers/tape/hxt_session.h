// The open tape: what the environment says is recorded or played back.
#pragma once

#include <array>
#include <span>
#include <type_traits>

#include "hxraid.h"
#include "tape/hxt_call.h"
#include "tape/hxt_recorder.h"

namespace hxtape {

/// One call, recorded or played back. The status is the real library's, the recorded one, or a
/// refusal: kNoState where no tape can be used, kNotOnTape where it has no answer. hx_trouble tells
/// why. A count is 0 then.
HX_U8 Perform(const char* name, Effect effect, Returned returned, std::span<const Part> parts,
              RealCall call);

/// The same for HX_API_Version, whose text stays until the library is closed.
const char* PerformVersion();

/// The same for HX_API_Finalize; then the tape is closed.
void PerformFinalize(RealCall call);

/// A number is its own description: it is asked.
template <class Number>
Argument<Number> Described(Number& number) {
    return {number, PartOf(Part::Role::kIn, &number)};
}
template <class Value>
Argument<Value*>& Described(Argument<Value*>& argument) {
    return argument;
}

template <class Value>
Value RawOf(const Argument<Value>& argument) {
    return argument.value;
}
template <class Number>
requires std::is_arithmetic_v<Number> Number RawOf(Number number) { return number; }

/// Makes the call of a function of hxraid.h from its arguments: numbers, and buffers with their
/// roles. `name` is the function's.
template <auto function, class... Arguments>
HX_U8 Call(const char* name, Effect effect, Returned returned, Arguments... arguments) {
    const std::array<Part, sizeof...(Arguments)> parts{Described(arguments).part...};
    const auto call = [&](AnyFunction real) -> HX_U8 {
        return reinterpret_cast<decltype(function)>(real)(RawOf(arguments)...);
    };
    return Perform(name, effect, returned, parts, call);
}

template <auto function, class... Arguments>
HX_U8 Reads(const char* name, Arguments... arguments) {
    return Call<function>(name, Effect::kReads, Returned::kStatus, arguments...);
}
template <auto function, class... Arguments>
HX_U8 Changes(const char* name, Arguments... arguments) {
    return Call<function>(name, Effect::kChanges, Returned::kStatus, arguments...);
}

}  // namespace hxtape

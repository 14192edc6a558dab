// A non-owning reference to a callable.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace hxlibrary {

template <class Signature>
class FunctionRef;

/// Refers to a callable that must outlive the call. Unlike std::function it never allocates, so
/// that an entry point works when memory has run out.
template <class Result, class... Arguments>
class FunctionRef<Result(Arguments...)> {
public:
    template <class Callable>
    requires std::is_class_v<Callable> FunctionRef(const Callable& callable)
        : target_{.object = std::addressof(callable)},
          call_([](Target target, Arguments... arguments) -> Result {
              const auto& called = *static_cast<const Callable*>(target.object);
              return called(std::forward<Arguments>(arguments)...);
          }) {}

    FunctionRef(Result (*function)(Arguments...))
        : target_{.function = reinterpret_cast<void (*)()>(function)},
          call_([](Target target, Arguments... arguments) -> Result {
              return reinterpret_cast<Result (*)(Arguments...)>(target.function)(
                  std::forward<Arguments>(arguments)...);
          }) {}

    Result operator()(Arguments... arguments) const {
        return call_(target_, std::forward<Arguments>(arguments)...);
    }

private:
    union Target {
        const void* object;
        void (*function)();
    };

    Target target_;
    Result (*call_)(Target, Arguments...);
};

}  // namespace hxlibrary

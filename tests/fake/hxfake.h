// A scripted libhxraid for tests: it defines every function of hxraid.h, notes each call as a line
// and plays back the answers that the test has queued. Unscripted, a function returns 0 (null for a
// text) and writes nothing.
//
//     hxfake::Reset();
//     hxfake::On<&HX_LD_GetInfo>().Once(0, hxfake::Page(2, {first, second})).Once(7);
//     hxfake::On<&HX_BBU_GetInfo>().Always(0, hxfake::Fill(battery));
//     ... call the code under test ...
//     EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_LD_GetInfo(0, {1, 0, 32})", ...));
//
// Not for several threads at once, as libhxraid is not.
#ifndef HXFAKE_H
#define HXFAKE_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "hxraid.h"

namespace hxfake {

/// Forgets every script, hook, queued event and noted call, and switches noting on.
void Reset();

/// The calls since the last Reset or ForgetCalls, oldest first, as "HX_LD_Delete(0, 5, 1)": numbers
/// in decimal; a list request as the header it came with, "{requestType, startingIndexOrId,
/// numRequested}"; the disks of HX_DiskHasOS as "[3, 4]"; every other pointer as "&"; a null
/// pointer as "null".
const std::vector<std::string>& Calls();

/// Forgets the noted calls and keeps the scripts.
void ForgetCalls();

/// Switches the noting of calls; off, a call costs no more than its answer (for benchmarks).
void NoteCalls(bool on);

/// Answers that were queued by Once and have not been played, over all functions. A test whose
/// script must be used up expects 0.
std::size_t AnswersLeft();

/// Puts events behind those already queued for the adapter, and lets HX_EVT_GetEvent hand them out
/// as a controller does: oldest first, at most as many as asked for, each once, finally none.
void QueueEvents(HX_U8 adapter, const std::vector<Event>& events);

namespace internal {

class ScriptBase {
public:
    ScriptBase(const ScriptBase&) = delete;
    ScriptBase& operator=(const ScriptBase&) = delete;
    virtual void Clear() = 0;
    virtual std::size_t AnswersLeft() const = 0;

protected:
    ScriptBase();  // makes Reset and AnswersLeft find it
    ~ScriptBase() = default;
};

template <class Signature>
class Script;

}  // namespace internal

/// What one function answers. Each member returns the script itself, so that answers are chained.
/// An answer is a code, a code and what it writes, or a function with the signature of the faked
/// one. What writes is called with all arguments of the faked call.
template <class R, class... A>
class internal::Script<R(A...)> final : public internal::ScriptBase {
public:
    using Writer = std::function<void(A...)>;
    using Answer = std::function<R(A...)>;

    /// Queues one answer; queued answers are played in order, once each.
    template <class F>
    requires std::is_invocable_r_v<R, F, A...> Script& Once(F answer) {
        once_.push_back(std::move(answer));
        return *this;
    }
    template <class T>
    requires(!std::is_void_v<R> && std::is_convertible_v<T, R>) Script& Once(T result,
                                                                             Writer write = {}) {
        return Once(Returning(result, std::move(write)));
    }

    /// Sets the answer that is played when none is queued.
    template <class F>
    requires std::is_invocable_r_v<R, F, A...> Script& Always(F answer) {
        always_ = std::move(answer);
        return *this;
    }
    template <class T>
    requires(!std::is_void_v<R> && std::is_convertible_v<T, R>) Script& Always(T result,
                                                                               Writer write = {}) {
        return Always(Returning(result, std::move(write)));
    }

    /// Sets a hook that sees the arguments of every call before it is answered.
    Script& Inspect(Writer hook) {
        inspect_ = std::move(hook);
        return *this;
    }

    /// Calls since the last Reset, noted or not.
    std::size_t CallCount() const { return call_count_; }

    /// Takes one call.
    R Play(A... args) {
        ++call_count_;
        if (inspect_) inspect_(args...);
        if (played_ < once_.size()) {
            // Out of the queue first: the answer may queue others.
            const Answer answer = std::move(once_[played_++]);
            return answer(args...);
        }
        return always_ ? always_(args...) : R();
    }

    void Clear() override {
        once_.clear();
        played_ = 0;
        always_ = nullptr;
        inspect_ = nullptr;
        call_count_ = 0;
    }
    std::size_t AnswersLeft() const override { return once_.size() - played_; }

private:
    template <class T>
    static Answer Returning(T result, Writer write) {
        return [result = static_cast<R>(result), write = std::move(write)](A... args) {
            if (write) write(args...);
            return result;
        };
    }

    std::vector<Answer> once_;
    std::size_t played_ = 0;  // how many of them
    Answer always_;
    Writer inspect_;
    std::size_t call_count_ = 0;
};

/// The script of a function: On<&HX_LD_Delete>().
template <auto function>
auto& On() {
    static internal::Script<std::remove_pointer_t<decltype(function)>> script;
    return script;
}

// ---- What answers write -------------------------------------------------------------------
// Each returns a writer for Once and Always; a record of a type that the function does not take
// does not compile.

/// Writes one value through the parameter that points to its type: Fill(battery), Fill(HX_U32{5}).
template <class T>
auto Fill(const T& value) {
    return [value](auto... args) {
        static_assert((0 + ... + std::is_same_v<decltype(args), T*>) == 1,
                      "the function has no such output");
        const auto write = [&value](auto arg) {
            if constexpr (std::is_same_v<decltype(arg), T*>) *arg = value;
        };
        (write(args), ...);
    };
}

/// Writes records to the parameter that points to them and their number to the 8-bit count, or,
/// for a controller that lies, another number.
template <class T>
auto Records(const std::vector<T>& records, std::optional<HX_U8> count = {}) {
    return [records, count](auto... args) {
        static_assert((0 + ... + std::is_same_v<decltype(args), T*>) == 1 &&
                          (0 + ... + std::is_same_v<decltype(args), HX_U8*>) == 1,
                      "the function has no such outputs");
        const auto write = [&records, &count](auto arg) {
            if constexpr (std::is_same_v<decltype(arg), T*>) {
                std::copy(records.begin(), records.end(), arg);
            } else if constexpr (std::is_same_v<decltype(arg), HX_U8*>) {
                *arg = count.value_or(static_cast<HX_U8>(records.size()));
            }
        };
        (write(args), ...);
    };
}
template <class T>
auto Records(std::initializer_list<T> records, std::optional<HX_U8> count = {}) {
    return Records(std::vector<T>(records), count);
}

namespace internal {

// Writes records behind the header of a list reply; numReturned is the caller's word for it.
template <class Request, class T>
void WritePage(Request* request, std::span<const T> records, HX_U16 returned, HX_U16 next) {
    auto& [header, items] = *request;
    static_assert(std::is_same_v<std::remove_all_extents_t<decltype(items)>, T>,
                  "the function lists other records");
    header.numReturned = returned;
    header.nextStartingIndex = next;
    // The caller's room goes on behind the one record that the type shows.
    std::byte* const room = reinterpret_cast<std::byte*>(request) + sizeof(RequestHeader);
    if (!records.empty()) std::memcpy(room, records.data(), records.size_bytes());
}

}  // namespace internal

/// Writes one page of a list: the records behind the header, nextStartingIndex, and as numReturned
/// their number or, for a controller that lies, another one.
template <class T>
auto Page(HX_U16 next, const std::vector<T>& records, std::optional<HX_U16> returned = {}) {
    return [next, records, returned](HX_U8, auto* request) {
        internal::WritePage(request, std::span<const T>(records),
                            returned.value_or(static_cast<HX_U16>(records.size())), next);
    };
}
template <class T>
auto Page(HX_U16 next, std::initializer_list<T> records, std::optional<HX_U16> returned = {}) {
    return Page(next, std::vector<T>(records), returned);
}

/// Answers a list function as a controller with these records does, at most page_limit a call:
/// On<&HX_LD_GetInfo>().Always(List(records)).
template <class T>
auto List(const std::vector<T>& records, HX_U16 page_limit = 65535) {
    return [records, page_limit](HX_U8, auto* request) -> HX_U8 {
        const std::span<const T> all(records);
        const auto rest =
            all.subspan(std::min<std::size_t>(request->header.startingIndexOrId, all.size()));
        const auto page = rest.first(
            std::min<std::size_t>({rest.size(), request->header.numRequested, page_limit}));
        const std::size_t left = rest.size() - page.size();
        internal::WritePage(
            request, page, static_cast<HX_U16>(page.size()),
            left == 0 ? HX_U16{HX_LIST_COMPLETE} : static_cast<HX_U16>(all.size() - left));
        return HX_SUCCESS;
    };
}

/// The most records that a call may write behind a pointer whose caller does not say how many it
/// has room for.
template <class T>
inline constexpr std::size_t kRoomUnasked = 1;
template <>
inline constexpr std::size_t kRoomUnasked<EncElementType_Info> = 255;
template <>
inline constexpr std::size_t kRoomUnasked<EncElement_Config> = 255;

}  // namespace hxfake

#endif

// Every vendor function but those that answer from the host (users, flash images) as one row: the
// children of its request, the calls that they become, and the answer that its expected result
// shows. The tests that hold for all of them run over these rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "hxfake.h"
#include "xml_rapi_functions_records.h"

/// What a child holds: a number, a text of up to 15 characters, or as many numbers as its field has
/// room for.
enum class Holds { U8, U16, U32, U64, Text16, U8x8, U16x128 };

/// The child is seen in the line of a call and in no record.
inline constexpr std::size_t kInLine = SIZE_MAX;

/// One child of a request.
struct Child {
    const char* name;
    Holds kind;
    std::size_t at = kInLine;  // where it stands in the record that the controller is handed
    HX_U16 value = 0;          // sent when a value of its own would not do; 0: any
};

/// The record that the controller is handed.
struct WatchedRecord {
    std::size_t size = 0;              // bytes; 0 when there is no record to look at
    std::function<void()> watch;       // makes Handed() its bytes, as they are at the next call
    std::vector<std::size_t> ff = {};  // bytes that are 255 whatever the request says
};

struct FunctionRow {
    const char* name;
    std::vector<Child> children;
    /// The lines of the controller's log; "$AdapterID" stands for what the child of that name
    /// holds.
    std::vector<std::string> calls;
    /// Makes the controller answer so that the result is the one in golden/functions.
    std::function<void()> answer;
    /// Makes the call whose code becomes RetVal return this one; empty: the code is always 0.
    std::function<void(HX_U8 code)> refuse;
    bool status_only = false;
    WatchedRecord record = {};
    /// The lines when no child is given and they are others than `calls` with zeros.
    std::vector<std::string> calls_without = {};
};

inline void PrintTo(const FunctionRow* row, std::ostream* os) { *os << row->name; }

std::vector<FunctionRow> AdapterRows();
std::vector<FunctionRow> DiskRows();
std::vector<FunctionRow> VirtualDiskRows();
std::vector<FunctionRow> DiskGroupRows();

// ---- for the rows ------------------------------------------------------------------------------

/// The bytes that the controller was handed.
inline std::string& Handed() {
    static std::string bytes;
    return bytes;
}

template <class Record, class Argument>
void KeepHanded(Argument argument) {
    const void* from = nullptr;
    if constexpr (std::is_same_v<Argument, Record*>) {
        from = argument;
    } else if constexpr (std::is_same_v<Record, RequestHeader> && requires { argument->header; }) {
        from = &argument->header;
    }
    if (from != nullptr) Handed().assign(static_cast<const char*>(from), sizeof(Record));
}

/// Looks at the `Record` that `function` is handed, or at the header of the list that it is asked
/// for.
template <auto function, class Record>
WatchedRecord Watched(std::vector<std::size_t> ff = {}) {
    return {sizeof(Record),
            [] {
                hxfake::On<function>().Inspect([](auto... args) {
                    if (Handed().empty()) (KeepHanded<Record>(args), ...);
                });
            },
            std::move(ff)};
}

template <auto function>
std::function<void(HX_U8)> Code() {
    return [](HX_U8 code) { hxfake::On<function>().Always(code); };
}

/// The function writes what `writer` writes and returns 0.
template <auto function, class Writer>
std::function<void()> Writes(Writer writer) {
    return [writer] { hxfake::On<function>().Always(0, writer); };
}

/// A function that answers with a code alone: it makes one call, whose code that is.
template <auto function>
FunctionRow StatusRow(const char* name, std::vector<Child> children, const char* call,
                      WatchedRecord record = {}) {
    return {name, std::move(children), {call}, [] {}, Code<function>(), true, std::move(record)};
}

/// A function that lists records: it asks `function`, whose name is `called`, for its pages. The
/// expected result shows two records.
template <auto function, class Item>
FunctionRow ListRow(const char* name, const std::string& called) {
    return {name,
            {
                {"AdapterID", Holds::U8},
                {"version", Holds::U8, 0},
                {"requestType", Holds::U8, 1},
                {"startingIndexOrId", Holds::U16, 2},
                {"numRequested", Holds::U16, 4, 7},  // no list's page is shorter
                {"numReturned", Holds::U16, 6},
                {"nextStartingIndex", Holds::U16, 8},
            },
            {"HX_Adapter_GetInfo($AdapterID, &, &)",
             called + "($AdapterID, {$requestType, $startingIndexOrId, $numRequested})"},
            Writes<function>(hxfake::Page(65535, {Distinct<Item>(0), Distinct<Item>(1)})),
            Code<function>(),
            false,
            Watched<function, RequestHeader>(),
            {"HX_Adapter_GetInfo(0, &, &)"}};
}

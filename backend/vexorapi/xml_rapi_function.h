// The description of a vendor function: rows for its request, its call and its result. The shared
// handlers work from these rows.
#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "XMLWriter.h"
#include "vexorapi_element.h"
#include "xml_rapi_calls.h"
#include "xml_rapi_paging.h"
#include "xml_rapi_params.h"
#include "xml_rapi_requests.h"
#include "xml_rapi_results.h"
#include "xml_rapi_row_list.h"
#include "xml_rapi_rows.h"

/// Bytes of a request record that are zeroed before the parse: all of it, except for arrays that
/// the call itself zeroes as far as they may be filled.
template <class R>
inline constexpr std::size_t kZeroedBytes = sizeof(R);
template <>
inline constexpr std::size_t kZeroedBytes<VX_Adapter_GetInfo> = offsetof(VX_Adapter_GetInfo,
                                                                         AdapterInfo);
template <>
inline constexpr std::size_t kZeroedBytes<VX_Adapter_GetConfig> = offsetof(VX_Adapter_GetConfig,
                                                                           AdapterConfig);
template <>
inline constexpr std::size_t kZeroedBytes<VX_ENC_GetElementInfo> = offsetof(VX_ENC_GetElementInfo,
                                                                            ElementInfo);
template <>
inline constexpr std::size_t kZeroedBytes<VX_ENC_GetElementConfig> =
    offsetof(VX_ENC_GetElementConfig, ElementCfg);
template <class Item, std::size_t limit>
inline constexpr std::size_t kZeroedBytes<PagedRequest<Item, limit>> =
    kPageHeaderEnd<PagedRequest<Item, limit>>;

/// Whether a request record takes a password, so that it is wiped when the request ends.
template <class R>
inline constexpr bool kTakesPassword = false;
template <>
inline constexpr bool kTakesPassword<VX_LogonUser> = true;

// Never defined, like those of xml_rapi_coverage.h: the compiler's message names the reason.
void TheCallTakesANumberThatNoCommandHolds();
void TheCallDoesNotTakeWhatACommandHolds();

template <class R, class A, class B>
constexpr bool IsSameField(A R::*one, B R::*other) {
    if constexpr (std::is_same_v<A, B>) {
        return one == other;
    } else {
        return false;
    }
}

/// Checks a plain call against the children of its function: every child is passed, and every
/// passed number is a child. A record may be filled by the controller alone. Other calls are code
/// and are not checked.
template <class R, class... ParamRow, class Call>
constexpr void CheckThatCallTakes(const Params<R, ParamRow...>&, const Call&) {}
template <class R, class... ParamRow, auto function, class... T>
constexpr void CheckThatCallTakes(const Params<R, ParamRow...>& params,
                                  const PlainCall<function, R, T...>& call) {
    const auto is_held = [&](auto passed) {
        return params.rows.Apply(
            [&](const auto&... row) { return (IsSameField(row.field, passed) || ...); });
    };
    const auto is_passed = [&](auto held) {
        return call.fields.Apply(
            [&](auto... passed) { return (IsSameField(passed, held) || ...); });
    };
    const bool all_are_held = call.fields.Apply(
        [&](auto... passed) { return ((std::is_class_v<T> || is_held(passed)) && ...); });
    if (!all_are_held) TheCallTakesANumberThatNoCommandHolds();
    const bool all_are_passed =
        params.rows.Apply([&](const auto&... row) { return (is_passed(row.field) && ...); });
    if (!all_are_passed) TheCallDoesNotTakeWhatACommandHolds();
}

/// One vendor function, completely described by its rows.
template <class R, class ParamRows, class Call, class ResultRows, class List = NoList>
struct Function;

template <class R, class... ParamRow, class Call, class... Row, class List>
struct Function<R, Params<R, ParamRow...>, Call, Result<R, Row...>, List> {
    using Type = R;
    static constexpr std::size_t kRows = sizeof...(Row);

    const char* name;               // in commands and results
    R XML_RA_FuncData::*record;     // its record in the request
    Params<R, ParamRow...> params;  // the children of a command
    Call call;                      // the call of the controller
    RowList<Row...> rows;           // the start of the result ...
    List list;                      // ... and the records that follow

    constexpr Function(const char* function_name, R XML_RA_FuncData::*function_record,
                       Params<R, ParamRow...> function_params, Call function_call,
                       Result<R, Row...> result, List function_list = {})
        : name(function_name),
          record(function_record),
          params(function_params),
          call(function_call),
          rows(result.rows),
          list(function_list) {
        CheckThatCallTakes(params, call);
    }
};
template <class R, class ParamRows, class Call, class ResultRows>
Function(const char*, R XML_RA_FuncData::*, ParamRows, Call, ResultRows)
    -> Function<R, ParamRows, Call, ResultRows>;
template <class R, class ParamRows, class Call, class ResultRows, class List>
Function(const char*, R XML_RA_FuncData::*, ParamRows, Call, ResultRows, List)
    -> Function<R, ParamRows, Call, ResultRows, List>;

/// The empty list of children.
template <class R>
constexpr Params<R> NoParams() {
    return Params<R>{};
}

/// The record of `kFunction` in a request.
template <const auto& kFunction>
auto& RequestRecord(XMLElement* elmt) {
    return static_cast<XML_RA_FuncData*>(elmt->Ext)->*kFunction.record;
}

/// Every end-element handler.
template <const auto& kFunction>
void XMLCALL EndParameter(void* userData, const XML_Char* name) {
    auto* const elmt = static_cast<XMLElement*>(userData);
    constexpr ChildName own(kFunction.name);
    const EndedChild child(name);
    // The function's own end is no parameter, and an empty element leaves its field unchanged.
    if (child.Is(own) || elmt->CharDataIndex == 0) return;
    ReadParam(*elmt, child, RequestRecord<kFunction>(elmt), kFunction.params);
}

template <const auto& kFunction>
inline constexpr auto kFunctionOpen = MakeLiteral([](LiteralSink& sink) {
    sink.Put("<");
    sink.Put(kFunction.name);
    sink.Put(" type=\"function\">\n");
    RowAt<0>(kFunction.rows).Head(sink, kListDepth);
});
template <const auto& kFunction>
inline constexpr auto kEndTag = MakeLiteral([](LiteralSink& sink) {
    sink.Put("</");
    sink.Put(kFunction.name);
    sink.Put(">\n");
});
// The last row's tail, and the end tag unless a list comes between them.
template <const auto& kFunction>
inline constexpr auto kFunctionClose = MakeLiteral([](LiteralSink& sink) {
    RowAt<std::remove_cvref_t<decltype(kFunction)>::kRows - 1>(kFunction.rows)
        .Tail(sink, kListDepth);
    if constexpr (!std::remove_cvref_t<decltype(kFunction.list)>::kWrites) {
        sink.Put("</");
        sink.Put(kFunction.name);
        sink.Put(">\n");
    }
});

/// Every result writer: the function element, its rows, its list.
template <const auto& kFunction>
void WriteResult(XMLElement* elmt, XMLWR_Doc* doc) {
    using List = std::remove_cvref_t<decltype(kFunction.list)>;
    constexpr bool list = List::kWrites;
    constexpr bool closed = requires { List::kClosesFunction; };
    auto& record = RequestRecord<kFunction>(elmt);
    const bool fast = doc->Depth == kListDepth - 1;
    constexpr std::size_t bound = kFunctionOpen<kFunction>.size() +
                                  kRowsBound<kFunction, kListDepth> +
                                  kFunctionClose<kFunction>.size();
    if (fast && kDocCapacity - doc->CurPos >= bound) [[likely]] {
        char* at = PutLiteral(doc->Buf + doc->CurPos, kFunctionOpen<kFunction>);
        at = PutRows<kFunction, kListDepth>(at, record);
        at = PutLiteral(at, kFunctionClose<kFunction>);
        doc->CurPos = static_cast<std::uint32_t>(at - doc->Buf);
        if constexpr (!list) return;
        ++doc->Depth;
    } else {
        XMLWR_ElmtStartPrintf(doc, 0, kFunction.name, " %s=\"%s\"", "type", "function");
        WriteRowsExact<kFunction>(doc, record);
    }
    if constexpr (list) kFunction.list.Write(doc, kFunction.name, record);
    if (fast && !closed && kDocCapacity - doc->CurPos >= kEndTag<kFunction>.size()) [[likely]] {
        const char* const end = PutLiteral(doc->Buf + doc->CurPos, kEndTag<kFunction>);
        doc->CurPos = static_cast<std::uint32_t>(end - doc->Buf);
        --doc->Depth;
    } else {
        XMLWR_ElmtEnd(doc, 0, kFunction.name);
    }
}

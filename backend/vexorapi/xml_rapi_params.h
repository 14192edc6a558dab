// The parameters of a command: a row for each child of its root, and the loop that stores a child
// in the field of its row.
#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include "XMLWriter_scan.h"
#include "hxraid.h"
#include "vexorapi_element.h"
#include "vx_dbg.h"
#include "xml_rapi_coverage.h"
#include "xml_rapi_row_list.h"
#include "xml_rapi_text.h"

/// The first two characters of a name, or its only one, as a number.
constexpr unsigned NameStart(const char* name) {
    const auto character = [](char c) { return static_cast<unsigned char>(c); };
    return name[0] == '\0' ? 0u : character(name[0]) + 256u * character(name[1]);
}

/// A child's name. Nearly all children of a function differ in the first two characters, so these
/// are compared before the whole name.
struct ChildName {
    const char* text;
    unsigned start;

    constexpr explicit ChildName(const char* name) : text(name), start(NameStart(name)) {}
};

/// The name of the child that has just ended.
struct EndedChild {
    const char* name;
    unsigned start;

    explicit EndedChild(const char* child) : name(child), start(NameStart(child)) {}
    [[gnu::always_inline]] bool Is(const ChildName& row) const {
        return start == row.start && std::strcmp(name, row.text) == 0;
    }
};

/// A request child, stored in the field of the same name; the field's type chooses how.
template <class R, class T>
struct RequestParam {
    using Of = R;
    static constexpr std::size_t kWidth = sizeof(T);
    ChildName name;
    T R::*field;
};

template <class R, class T>
constexpr RequestParam<R, T> Param(const char* name, T R::*field) {
    return {ChildName(name), field};
}

/// A text that must not be truncated: a path, name or password. A text that is too long fills the
/// field without a NUL, which the function refuses.
template <class R, std::size_t n>
struct WholeTextRow {
    using Of = R;
    ChildName name;
    char (R::*field)[n];
};

template <class R, std::size_t n>
constexpr WholeTextRow<R, n> WholeTextParam(const char* name, char (R::*field)[n]) {
    return {ChildName(name), field};
}

/// The children of a request, or of a record within it. For a record of the controller library the
/// list begins with the members left out and must then fill all others.
template <class R, class... Row>
struct Params {
    using Type = R;
    RowList<Row...> rows;

    constexpr explicit Params(Row... row) : rows(row...) {}
    consteval explicit Params(LeftOut<R> left_out, Row... row) : rows(row...) {
        CheckThatRowsCover<R, Row...>(left_out);
    }
};
template <class First, class... Row>
Params(First, Row...) -> Params<typename First::Of, First, Row...>;
template <class R, class... Row>
Params(LeftOut<R>, Row...) -> Params<R, Row...>;

/// Children that are stored in a record within the request.
template <class R, class Inner, class... Row>
struct InnerParams {
    using Of = R;
    Inner R::*field;
    Params<Inner, Row...> params;
};

template <class R, class Inner, class... Row>
constexpr InnerParams<R, Inner, Row...> Within(Inner R::*field, Params<Inner, Row...> params) {
    return {field, params};
}

/// The paging header's fields: in a request they are plain children.
inline constexpr Params kRequestHeader{
    Param("version", &RequestHeader::version),
    Param("requestType", &RequestHeader::requestType),
    Param("startingIndexOrId", &RequestHeader::startingIndexOrId),
    Param("numRequested", &RequestHeader::numRequested),
    Param("numReturned", &RequestHeader::numReturned),
    Param("nextStartingIndex", &RequestHeader::nextStartingIndex),
};

/// The children of every paged function.
template <class R>
constexpr auto PagedParams() {
    using Page = decltype(R::Request);
    return Params{
        Param("AdapterID", &R::AdapterID),
        Within(&R::Request, Params{Within(&Page::header, kRequestHeader)}),
    };
}

// Stores one value; `name` is the child's, for the log. Not inlined, since only one of a function's
// many rows calls it and the search for that row stays short. A number: its low bits; a text
// without a digit leaves the field unchanged.
template <class T>
requires std::is_unsigned_v<T>
[[gnu::noinline]] void StoreParam(XMLElement& elmt, const char*, T& field) {
    const char* cursor = elmt.CharDataBuf;
    HX_U32 number;
    if (ScanNumber(cursor, number)) field = static_cast<T>(number);
}
[[gnu::noinline]] inline void StoreParam(XMLElement& elmt, const char*, HX_U64& field) {
    const char* cursor = elmt.CharDataBuf;
    std::uint64_t number;
    if (ScanNumber(cursor, number)) field.value = number;
}
// An array: as many numbers as the text has and the field holds; the rest of the field is
// unchanged.
template <class T, std::size_t n>
requires std::is_unsigned_v<T>
[[gnu::noinline]] void StoreParam(XMLElement& elmt, const char*, T (&field)[n]) {
    const char* cursor = elmt.CharDataBuf;
    for (T& item : field) {
        HX_U32 number;
        if (!ScanNumber(cursor, number)) break;
        item = static_cast<T>(number);
    }
}
// A text, cut to its field.
template <std::size_t n>
[[gnu::noinline]] void StoreParam(XMLElement& elmt, const char* name, char (&field)[n]) {
    CutText(field, elmt.CharDataBuf, elmt.CharDataIndex);
    VX_DBG_TRACE("%s = %s\n", name, elmt.CharDataBuf);
}

template <class R, class... Row>
[[gnu::always_inline]] bool ReadParam(XMLElement& elmt, EndedChild child, R& record,
                                      const Params<R, Row...>& params);

template <class R, class T>
[[gnu::always_inline]] inline bool TakeParam(XMLElement& elmt, EndedChild child, R& record,
                                             const RequestParam<R, T>& row) {
    if (!child.Is(row.name)) return false;
    StoreParam(elmt, child.name, record.*row.field);
    return true;
}
template <class R, std::size_t n>
[[gnu::always_inline]] inline bool TakeParam(XMLElement& elmt, EndedChild child, R& record,
                                             const WholeTextRow<R, n>& row) {
    if (!child.Is(row.name)) return false;
    StoreParam(elmt, child.name, record.*row.field);
    if (elmt.CharDataIndex >= n) (record.*row.field)[n - 1] = elmt.CharDataBuf[n - 1];
    return true;
}
template <class R, class Inner, class... Row>
[[gnu::always_inline]] inline bool TakeParam(XMLElement& elmt, EndedChild child, R& record,
                                             const InnerParams<R, Inner, Row...>& row) {
    return ReadParam(elmt, child, record.*row.field, row.params);
}

/// Stores the child that has just ended in the field of the first row with its name. Returns
/// whether there is one.
template <class R, class... Row>
[[gnu::always_inline]] inline bool ReadParam(XMLElement& elmt, EndedChild child, R& record,
                                             const Params<R, Row...>& params) {
    return [&]<std::size_t... i>(std::index_sequence<i...>) __attribute__((always_inline)) {
        return (TakeParam(elmt, child, record, RowAt<i>(params.rows)) || ...);
    }
    (std::index_sequence_for<Row...>{});
}

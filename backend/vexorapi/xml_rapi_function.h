// What one vendor function is: rows for its request, its call and its result, and the code over
// them that every function shares.
#pragma once

#include <cstddef>
#include <cstdlib>

#include "XMLWriter_scan.h"
#include "vx_dbg.h"
#include "xml_rapi.h"
#include "xml_rapi_records.h"
#include "xml_rapi_row_list.h"

// Request ----------------------------------------------------------------------------------------

/// A request child, stored in the field of the same name; the field's type chooses how.
template <class R, class T>
struct RequestParam {
    using Of = R;
    const char* name;
    T R::*field;
};

template <class R, class T>
constexpr RequestParam<R, T> Param(const char* name, T R::*field) {
    return {name, field};
}

/// A text that is taken whole or not at all, because a path, name or password that is cut would be
/// another one: a longer text fills its field without a NUL, which its reader refuses.
template <class R, std::size_t n>
struct WholeTextRow {
    using Of = R;
    const char* name;
    char (R::*field)[n];
};

template <class R, std::size_t n>
constexpr WholeTextRow<R, n> WholeTextParam(const char* name, char (R::*field)[n]) {
    return {name, field};
}

/// The children of a request, or of a record within it.
template <class R, class... Row>
struct Params {
    using Type = R;
    RowList<Row...> rows;

    constexpr explicit Params(Row... row) : rows(row...) {}
};
template <class First, class... Row>
Params(First, Row...) -> Params<typename First::Of, First, Row...>;

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

// Stores one value; `name` is the child's, for the log. A number: its low bits; a text without a
// digit leaves the field as it was.
template <class T>
requires std::is_unsigned_v<T>
void StoreParam(XMLElement& elmt, const char*, T& field) {
    const char* cursor = elmt.CharDataBuf;
    HX_U32 number;
    if (XMLWR_CharDataToDec32(&cursor, &number) != -1) field = static_cast<T>(number);
}
inline void StoreParam(XMLElement& elmt, const char*, HX_U64& field) {
    const char* cursor = elmt.CharDataBuf;
    XMLWR_CharDataToDec64(&cursor, &field);
}
// An array: as many numbers as there are and as the field holds; the rest of it stays.
template <class T, std::size_t n>
requires std::is_unsigned_v<T>
void StoreParam(XMLElement& elmt, const char*, T (&field)[n]) {
    const char* cursor = elmt.CharDataBuf;
    for (T& item : field) {
        HX_U32 number;
        if (XMLWR_CharDataToDec32(&cursor, &number) == -1) break;
        item = static_cast<T>(number);
    }
}
// A text, cut to its field.
template <std::size_t n>
void StoreParam(XMLElement& elmt, const char* name, char (&field)[n]) {
    CutText(field, elmt.CharDataBuf, elmt.CharDataIndex);
    VX_DBG_TRACE("%s = %s\n", name, elmt.CharDataBuf);
}

template <class R, class... Row>
bool ReadParam(XMLElement& elmt, const char* name, R& record, const Params<R, Row...>& params);

template <class R, class T>
bool TakeParam(XMLElement& elmt, const char* name, R& record, const RequestParam<R, T>& row) {
    if (std::strcmp(name, row.name) != 0) return false;
    StoreParam(elmt, name, record.*row.field);
    return true;
}
template <class R, std::size_t n>
bool TakeParam(XMLElement& elmt, const char* name, R& record, const WholeTextRow<R, n>& row) {
    if (std::strcmp(name, row.name) != 0) return false;
    StoreParam(elmt, name, record.*row.field);
    if (elmt.CharDataIndex >= n) (record.*row.field)[n - 1] = elmt.CharDataBuf[n - 1];
    return true;
}
template <class R, class Inner, class... Row>
bool TakeParam(XMLElement& elmt, const char* name, R& record,
               const InnerParams<R, Inner, Row...>& row) {
    return ReadParam(elmt, name, record.*row.field, row.params);
}

/// Stores the child that has just ended when one of the rows is its, and returns whether one was.
/// The first equal name decides.
template <class R, class... Row>
bool ReadParam(XMLElement& elmt, const char* name, R& record, const Params<R, Row...>& params) {
    return params.rows.Apply(
        [&](const Row&... row) { return (TakeParam(elmt, name, record, row) || ...); });
}

// Call -------------------------------------------------------------------------------------------
//
// A call row performs the function on its record, stores the code in RetVal and returns whether the
// result is to be written.

/// A number goes to the controller by value, a record by address.
template <class T>
auto Argument(T& field) {
    if constexpr (std::is_class_v<T>) {
        return &field;
    } else {
        return field;
    }
}

template <auto function, class R, class... T>
struct PlainCall {
    RowList<T R::*...> fields;

    bool operator()(R& record) const {
        record.RetVal =
            fields.Apply([&](auto... field) { return function(Argument(record.*field)...); });
        return true;
    }
};

/// Passes the fields in order and keeps the returned byte in RetVal.
template <auto function, class R, class... T>
constexpr PlainCall<function, R, T...> Call(T R::*... fields) {
    return {RowList<T R::*...>(fields...)};
}

/// Whether each adapter's items follow those of the one before, or all go to the first element.
enum class Items : bool { FollowEachOther, OverwriteTheFirst };

/// The executor's running count and sum, both of 8 bits. The process has one of each, because
/// requests run one at a time.
struct AdapterItems {
    static inline constinit HX_U8 count = 0;
    static inline constinit HX_U8 sum = 0;
};

template <class R, class Item, std::size_t room, class Query>
struct AdaptersCall {
    Item (R::*items)[room];
    Items order;
    Query query;

    bool operator()(R& record) const {
        Item* const first = record.*items;
        std::size_t zeroed = 0;
        // What the controller may fill is zeroed before it is asked: any 8-bit count from here on.
        const auto zero_from = [&](std::size_t at) {
            const std::size_t from = at < zeroed ? zeroed : at;
            const std::size_t end = at + 255;
            if (from >= end) return;
            std::memset(static_cast<void*>(first + from), 0, (end - from) * sizeof(Item));
            zeroed = end;
        };
        if (record.AdapterID != HX_ALL_ADAPTERS) {
            zero_from(0);
            record.RetVal = query(record, record.AdapterID, &record.Count, first);
            return true;
        }
        HX_U8& count = AdapterItems::count;
        HX_U8& sum = AdapterItems::sum;
        count = 0;
        sum = 0;
        for (HX_U8 adapter = 0; adapter < HX_Adapter_GetCount(); ++adapter) {
            const std::size_t at = order == Items::FollowEachOther ? sum : 0;
            zero_from(at);
            record.RetVal = query(record, adapter, &count, first + at);
            sum = static_cast<HX_U8>(sum + count);
        }
        record.Count = sum;
        return true;
    }
};

/// Asks one adapter, or every one of them when AdapterID says so. `query` is called with the
/// record, the adapter, the address of its 8-bit item count and the place for the items.
template <class R, class Item, std::size_t room, class Query>
constexpr AdaptersCall<R, Item, room, Query> EachAdapter(Item (R::*items)[room], Items order,
                                                         Query query) {
    return {items, order, query};
}

// Pages ------------------------------------------------------------------------------------------

/// Collects a list page by page. `fetch` is called with the adapter and the request's header,
/// behind which the controller puts at most a page of items.
template <class R, class Fetch>
struct PagesCall {
    using Page = decltype(R::Request);
    using Item = std::remove_all_extents_t<decltype(Page::items)>;
    static constexpr std::size_t kLimit = std::extent_v<decltype(Page::items)>;

    Fetch fetch;
    std::size_t cleared;  // bytes of the data area that are cleared before each page

    bool operator()(R& record) const {
        RequestHeader& header = record.Request.header;
        const HX_U16 requested = header.numRequested;
        // The controller's pages and the list's room are both counted in items of the header's 16
        // bits. calloc: the room that stays unused costs no memory.
        auto* const list = static_cast<std::byte*>(
            std::calloc(1, sizeof(RequestHeader) + std::size_t{requested} * sizeof(Item)));
        if (list == nullptr) return false;
        record.Result = reinterpret_cast<RequestHeader*>(list);

        const HX_U16 kibibytes = Get_Adapter_MaxBuffersize(record.AdapterID);
        // Narrowed to 16 bits on purpose, as controllers have always been asked: 65536 items wrap
        // to none, so that a buffer of 1024 KiB lists nothing when its items have 8 bytes or 16.
        const auto page_limit = static_cast<HX_U16>(
            kibibytes == 0 ? kLimit : std::size_t{kibibytes} * 1024 / sizeof(Item));
        AdjustRequestNum(&header, page_limit, kLimit);

        if (cleared < sizeof record.Request.items) {
            std::memset(static_cast<void*>(record.Request.items), 0, sizeof record.Request.items);
        }
        HX_U16 collected = 0;
        // Signed and 16 bits wide: a request for 32768 items and more asks for nothing.
        auto wanted = static_cast<std::int16_t>(requested);
        while (header.nextStartingIndex != HX_LIST_COMPLETE && wanted >= 1) {
            std::memset(static_cast<void*>(record.Request.items), 0, cleared);
            record.RetVal = fetch(record.AdapterID, &header);
            if (record.RetVal != HX_SUCCESS) break;
            const HX_U16 returned = header.numReturned;
            if (returned == 0 || returned > wanted || returned > kLimit) break;
            std::memcpy(list + sizeof header + collected * sizeof(Item), record.Request.items,
                        returned * sizeof(Item));
            collected = static_cast<HX_U16>(collected + returned);
            wanted = static_cast<std::int16_t>(wanted - returned);
            ResetnumRequestOfRequestHead(&header, page_limit, requested, collected, kLimit);
            header.startingIndexOrId = header.nextStartingIndex;
        }
        *record.Result = header;
        record.Result->numReturned = collected;
        record.Result->numRequested = requested;
        return true;
    }

    /// Runs when the result has been written.
    static void Release(R& record) { std::free(record.Result); }
};

/// Calls one function of the controller library for a page; its request begins with the header.
template <auto function>
struct FetchPage;
template <class Request, HX_U8 (*function)(HX_U8, Request*)>
struct FetchPage<function> {
    HX_U8 operator()(HX_U8 adapter, RequestHeader* header) const {
        return function(adapter, reinterpret_cast<Request*>(header));
    }
};

/// One call of `function` a page. All of the data area is cleared before it, or `cleared` bytes.
template <auto function, class R>
constexpr PagesCall<R, FetchPage<function>> Pages(std::size_t cleared = sizeof R::Request.items) {
    return {{}, cleared};
}

/// Whatever `fetch` does for a page.
template <class R, class Fetch>
constexpr PagesCall<R, Fetch> PagesBy(Fetch fetch) {
    return {fetch, sizeof R::Request.items};
}

// Result -----------------------------------------------------------------------------------------

/// The elements of known size that a result begins with, RetVal first.
template <class R, class... Row>
struct Result {
    RowList<Row...> rows;

    constexpr explicit Result(Row... row) : rows(row...) {}
};
template <class First, class... Row>
Result(First, Row...) -> Result<typename First::Of, First, Row...>;

/// The result of a function that answers with its status alone.
template <class R>
constexpr auto StatusOnly() {
    return Result{Col("RetVal", kU8, &R::RetVal)};
}

/// Nothing follows the rows.
struct NoList {
    static constexpr bool kWrites = false;
};

/// As many records as the request's record counts, and never more than it holds.
template <const auto& kRecord, auto writer, class R, std::size_t room, class Number>
struct CountedList {
    static constexpr bool kWrites = true;
    static constexpr const auto& kItem = kRecord;
    const char* name;
    RecordType<kRecord> (R::*items)[room];
    Number R::*number;

    void Write(XMLWR_Doc* doc, const char*, R& record) const {
        const std::size_t counted = record.*number;
        writer(doc, name, record.*items, static_cast<HX_U32>(counted < room ? counted : room));
    }
};

template <const auto& kRecord, auto writer, class R, std::size_t room, class Number>
constexpr CountedList<kRecord, writer, R, room, Number> Records(
    const char* name, RecordType<kRecord> (R::*items)[room], Number R::*number) {
    return {name, items, number};
}

/// The list that the executor has collected.
template <const auto& kReply, class R>
struct CollectedList {
    static constexpr bool kWrites = true;
    static constexpr const auto& kItems = kReply;

    // Header and items bear their own names.
    void Write(XMLWR_Doc* doc, const char*, R& record) const {
        kReply.WriteReply(doc, nullptr, record.Result, 1);
    }
};

template <const auto& kReply, class R>
constexpr CollectedList<kReply, R> Reply() {
    return {};
}

/// A user's values. Their writer is given the function element's own name and closes it; the
/// closing call that ends every result then finds no element open and writes nothing.
template <auto writer, class R, class Inner>
struct UserValues {
    static constexpr bool kWrites = true;
    static constexpr bool kClosesFunction = true;
    Inner inner;

    void Write(XMLWR_Doc* doc, const char* function, R& record) const {
        writer(doc, function, &inner(record), 1);
    }
};

/// The values in a field of the record, or in the record itself.
template <auto writer, class R, class T>
constexpr UserValues<writer, R, InnerField<T, R>> Values(T R::*field) {
    return {{field}};
}
template <auto writer, class R>
constexpr UserValues<writer, R, InnerSelf<R>> Values() {
    return {};
}

// A function -------------------------------------------------------------------------------------

/// Bytes of a request record that are zero when the parse begins: all of it, but for records with
/// room that the call zeroes itself, as far as it may be filled.
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

/// One vendor function, wholly described by its rows.
template <class R, class ParamRows, class Call, class ResultRows, class List = NoList>
struct Function;

template <class R, class... ParamRow, class Call, class... Row, class List>
struct Function<R, Params<R, ParamRow...>, Call, Result<R, Row...>, List> {
    using Type = R;
    static constexpr std::size_t kRows = sizeof...(Row);

    const char* name;               // as it stands in commands and results
    R XML_RA_FuncData::*record;     // its record in the request
    Params<R, ParamRow...> params;  // what a command may hold
    Call call;                      // what the controller is asked
    RowList<Row...> rows;           // what the result begins with ...
    List list;                      // ... and the records that follow

    constexpr Function(const char* function_name, R XML_RA_FuncData::*function_record,
                       Params<R, ParamRow...> function_params, Call function_call,
                       Result<R, Row...> result, List function_list = {})
        : name(function_name),
          record(function_record),
          params(function_params),
          call(function_call),
          rows(result.rows),
          list(function_list) {}
};
template <class R, class ParamRows, class Call, class ResultRows>
Function(const char*, R XML_RA_FuncData::*, ParamRows, Call, ResultRows)
    -> Function<R, ParamRows, Call, ResultRows>;
template <class R, class ParamRows, class Call, class ResultRows, class List>
Function(const char*, R XML_RA_FuncData::*, ParamRows, Call, ResultRows, List)
    -> Function<R, ParamRows, Call, ResultRows, List>;

/// The children of a function that takes none.
template <class R>
constexpr Params<R> NoParams() {
    return Params<R>{};
}

/// The record of `kFunction` in a request.
template <const auto& kFunction>
auto& RequestRecord(XMLElement* elmt) {
    return static_cast<XML_RA_FuncData*>(elmt->Ext)->*kFunction.record;
}

/// Every start-element handler: attributes are logged and never interpreted.
inline void XMLCALL StartParameter(void*, const XML_Char*, const XML_Char** atts) {
    PrintXMLAtts(atts);
}

/// Every end-element handler.
template <const auto& kFunction>
void XMLCALL EndParameter(void* userData, const XML_Char* name) {
    auto* const elmt = static_cast<XMLElement*>(userData);
    // The function's own end is no parameter, and an empty element leaves its field unchanged.
    if (std::strcmp(name, kFunction.name) == 0 || elmt->CharDataIndex == 0) return;
    ReadParam(*elmt, name, RequestRecord<kFunction>(elmt), kFunction.params);
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
// The last row's tail, and the end tag when no list stands between them.
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
        WriteRowsAt<kFunction, kListDepth>(doc, record);
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

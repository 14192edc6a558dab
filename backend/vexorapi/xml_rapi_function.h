// What one vendor function is: rows for its request, its call and its result, and the code over
// them that every function shares.
#pragma once

#include "vx_dbg.h"
#include "xml_rapi.h"
#include "xml_rapi_rows.h"

// Request ----------------------------------------------------------------------------------------

/// A request child, stored in the field of the same name; the field's type chooses the scan.
template <class R, class T>
struct RequestParam {
    const char* name;
    T R::*field;
};

template <class R, class T>
consteval RequestParam<R, T> Param(const char* name, T R::*field) {
    return {name, field};
}

template <class R, class... Row>
struct RequestParams {
    std::tuple<Row...> rows;
};

template <class R, class... Row>
consteval RequestParams<R, Row...> Params(Row... rows) {
    return {{rows...}};
}

// A number: its low bits. A text without a digit leaves the field as it was.
template <class T>
requires std::is_unsigned_v<T>
void StoreParam(XMLElement& elmt, const char*, T& field) {
    const char* cursor = elmt.CharDataBuf;
    HX_U32 number;
    if (XMLWR_CharDataToDec32(&cursor, &number) != -1) field = static_cast<T>(number);
}

/// Stores the child that has just ended, when it is one of the rows'. The first equal name decides.
template <class R, class... Row>
void ReadParam(XMLElement& elmt, const char* name, R& record,
               const RequestParams<R, Row...>& params) {
    const auto take = [&](const auto& row) {
        if (std::strcmp(name, row.name) != 0) return false;
        StoreParam(elmt, name, record.*row.field);
        return true;
    };
    std::apply([&](const Row&... row) { (void)(take(row) || ...); }, params.rows);
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
    std::tuple<T R::*...> fields;

    bool operator()(R& record) const {
        record.RetVal =
            std::apply([&](auto... field) { return function(Argument(record.*field)...); }, fields);
        return true;
    }
};

/// Passes the fields in order and keeps the returned byte in RetVal.
template <auto function, class R, class... T>
consteval PlainCall<function, R, T...> Call(T R::*... fields) {
    return {{fields...}};
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
consteval AdaptersCall<R, Item, room, Query> EachAdapter(Item (R::*items)[room], Items order,
                                                         Query query) {
    return {items, order, query};
}

// Result -----------------------------------------------------------------------------------------

template <class R, class... Row>
struct ResultRows {
    std::tuple<Row...> rows;
};

/// The elements of fixed size, RetVal first.
template <class R, class... Row>
consteval ResultRows<R, Row...> Result(Row... rows) {
    return {{rows...}};
}

/// Nothing follows the rows.
struct NoList {
    static constexpr bool kWrites = false;
};

/// As many records as the record counts.
template <auto writer, class R, class Item, std::size_t room>
struct CountedList {
    static constexpr bool kWrites = true;
    const char* name;
    Item (R::*items)[room];
    HX_U8 R::*number;

    void Write(XMLWR_Doc* doc, const R& record) const {
        writer(doc, name, record.*items, record.*number);
    }
};

template <auto writer, class R, class Item, std::size_t room>
consteval CountedList<writer, R, Item, room> Records(const char* name, Item (R::*items)[room],
                                                     HX_U8 R::*number) {
    return {name, items, number};
}

// A function -------------------------------------------------------------------------------------

/// Bytes of a request record that are zero when the parse begins: all of it, but for records whose
/// call zeroes the rest itself.
template <class R>
inline constexpr std::size_t kZeroedBytes = sizeof(R);
template <>
inline constexpr std::size_t kZeroedBytes<VX_Adapter_GetInfo> = offsetof(VX_Adapter_GetInfo,
                                                                         AdapterInfo);

template <class R, class Params, class Call, class Rows, class List>
struct Function;

template <class R, class Params, class Call, class... Row, class List>
struct Function<R, Params, Call, ResultRows<R, Row...>, List> {
    using Type = R;
    static constexpr std::size_t kRows = sizeof...(Row);

    const char* name;            // as it stands in commands and results
    R XML_RA_FuncData::*record;  // its record in the request
    Params params;               // what a command may hold
    Call call;                   // what the controller is asked
    std::tuple<Row...> rows;     // what the result begins with ...
    List list;                   // ... and the records that follow
};

template <class R, class Params, class Call, class... Row, class List = NoList>
consteval Function<R, Params, Call, ResultRows<R, Row...>, List> MakeFunction(
    const char* name, R XML_RA_FuncData::*record, Params params, Call call,
    ResultRows<R, Row...> result, List list = {}) {
    return {name, record, params, call, result.rows, list};
}

/// The record of `kFunction` in a request.
template <const auto& kFunction>
auto& RequestRecord(XMLElement* elmt) {
    return static_cast<XML_RA_FuncData*>(elmt->Ext)->*kFunction.record;
}

/// The body of every start-element handler: attributes are logged and never interpreted.
inline void StartParameter(const XML_Char** atts) { PrintXMLAtts(atts); }

/// The body of every end-element handler.
template <const auto& kFunction>
void EndParameter(void* userData, const XML_Char* name) {
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
    std::get<0>(kFunction.rows).Head(sink, kListDepth);
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
    std::get<std::remove_cvref_t<decltype(kFunction)>::kRows - 1>(kFunction.rows)
        .Tail(sink, kListDepth);
    if constexpr (!std::remove_cvref_t<decltype(kFunction.list)>::kWrites) {
        sink.Put("</");
        sink.Put(kFunction.name);
        sink.Put(">\n");
    }
});

/// The body of every result writer: the function element, its rows, its list.
template <const auto& kFunction>
void WriteResult(XMLElement* elmt, XMLWR_Doc* doc) {
    constexpr bool list = std::remove_cvref_t<decltype(kFunction.list)>::kWrites;
    const auto& record = RequestRecord<kFunction>(elmt);
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
        if (fast) {
            WriteRowsNearEnd<kFunction, kListDepth>(doc, record);
        } else {
            WriteRowsNearEnd<kFunction, kAnyDepth>(doc, record);
        }
    }
    if constexpr (list) kFunction.list.Write(doc, record);
    if (fast && kDocCapacity - doc->CurPos >= kEndTag<kFunction>.size()) [[likely]] {
        const char* const end = PutLiteral(doc->Buf + doc->CurPos, kEndTag<kFunction>);
        doc->CurPos = static_cast<std::uint32_t>(end - doc->Buf);
        --doc->Depth;
    } else {
        XMLWR_ElmtEnd(doc, 0, kFunction.name);
    }
}

// Call rows: one call of the controller with fields of the request's record, or a call per adapter.
//
// A call row performs the function with its record, stores the code in RetVal and returns whether
// to write the result.
#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "hxraid.h"
#include "xml_rapi_row_list.h"

/// Passes a number to the controller by value, a record by address.
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

/// Whether each adapter's items follow those of the previous one, or all overwrite the first
/// element.
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
        // Zeroes the items that the controller may fill: the next 255, the most that it can count.
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

/// Queries one adapter, or all of them when AdapterID is 255. Calls `query` with the record, the
/// adapter, the address of its 8-bit item count and the destination of the items.
template <class R, class Item, std::size_t room, class Query>
constexpr AdaptersCall<R, Item, room, Query> EachAdapter(Item (R::*items)[room], Items order,
                                                         Query query) {
    return {items, order, query};
}

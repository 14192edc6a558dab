// The parts of a result: the rows at its start, and the list that may follow.
#pragma once

#include <cstddef>

#include "XMLWriter.h"
#include "hxraid.h"
#include "xml_rapi_records.h"
#include "xml_rapi_reply_rows.h"
#include "xml_rapi_row_list.h"
#include "xml_rapi_rows.h"

/// The elements of known size at the start of a result, RetVal first.
template <class R, class... Row>
struct Result {
    RowList<Row...> rows;

    constexpr explicit Result(Row... row) : rows(row...) {}
};
template <class First, class... Row>
Result(First, Row...) -> Result<typename First::Of, First, Row...>;

/// The result of a function that returns only its status.
template <class R>
constexpr auto StatusOnly() {
    return Result{Col("RetVal", kU8, &R::RetVal)};
}

/// Nothing follows the rows.
struct NoList {
    static constexpr bool kWrites = false;
};

/// `number` records, but at most as many as the field holds.
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

    // The reply's writer names its elements itself.
    void Write(XMLWR_Doc* doc, const char*, R& record) const {
        kReply.WriteReply(doc, nullptr, record.Result, 1);
    }
};

template <const auto& kReply, class R>
constexpr CollectedList<kReply, R> Reply() {
    return {};
}

/// A user's values. Their writer closes the function element itself, so that the closing call at
/// the end of every result finds no element open and writes nothing.
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

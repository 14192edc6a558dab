// Rows: one constexpr list of fields per record, and the loops that write records by it.
//
// The list drives two writers whose bytes are equal. The fast one joins, at compile time, each
// field's end tag with the line end, indentation and start tag of the next field, checks the room
// once per record and copies. The exact one, for records at the document's end, goes piece by piece
// through the document writer, which decides what is dropped when the document is full.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <utility>

#include "XMLWriter.h"
#include "XMLWriter_digits.h"
#include "hxraid.h"
#include "xml_rapi_coverage.h"
#include "xml_rapi_elements.h"
#include "xml_rapi_row_list.h"
#include "xml_rapi_text.h"

// The depth at which a result lists its records: directly below the function element. The fast
// writer is compiled only for this depth; elsewhere records are written piece by piece.
inline constexpr int kListDepth = 1;

/// A type name of the result grammar, and the width in bytes that a field of this type must have.
struct XmlType {
    const char* name;
    std::size_t bytes;
};
inline constexpr XmlType kU8{"U8", 1}, kBOOL{"BOOL", 1}, kU16{"U16", 2}, kU32{"U32", 4},
    kU64{"U64", 8};
// The same types under the controller library's names, which some records use.
inline constexpr XmlType kHX_U8{"HX_U8", 1}, kHX_BOOLEAN{"HX_BOOLEAN", 1}, kHX_U16{"HX_U16", 2},
    kHX_U32{"HX_U32", 4};

// Never defined: a faulty list of rows calls it and does not compile, and the compiler's message
// names the reason.
void TypeAndFieldDifferInWidth();

// Text that is known at compile time -----------------------------------------------------------

/// Receives the parts of a literal: counts them when `at` is null, else copies them.
struct LiteralSink {
    char* at = nullptr;
    std::size_t length = 0;
    constexpr void Put(std::string_view part) {
        for (const char c : part) {
            if (at != nullptr) at[length] = c;
            ++length;
        }
    }
    constexpr void Indent(int depth) {
        for (int level = 0; level < depth; ++level) Put("  ");
    }
    constexpr void Number(std::size_t number) {
        if (number >= 10) Number(number / 10);
        const char digit = static_cast<char>('0' + number % 10);
        Put({&digit, 1});
    }
};

/// The text that `fill` (a lambda without captures over a LiteralSink&) composes.
template <class Fill>
consteval auto MakeLiteral(Fill fill) {
    constexpr std::size_t length = [] {
        LiteralSink sink;
        Fill{}(sink);
        return sink.length;
    }();
    std::array<char, length> text{};
    LiteralSink sink{text.data()};
    fill(sink);
    return text;
}

/// Copies a literal, in pieces of 64 bytes: compilers copy those in place and call memcpy for more.
template <std::size_t n>
[[gnu::always_inline]] inline char* PutLiteral(char* at, const std::array<char, n>& text) {
    constexpr std::size_t kPiece = 64;
    [&]<std::size_t... i>(std::index_sequence<i...>) __attribute__((always_inline)) {
        (std::memcpy(at + i * kPiece, text.data() + i * kPiece, kPiece), ...);
    }
    (std::make_index_sequence<n / kPiece>{});
    if constexpr (n % kPiece != 0) {
        std::memcpy(at + n / kPiece * kPiece, text.data() + n / kPiece * kPiece, n % kPiece);
    }
    return at + n;
}

// Rows -----------------------------------------------------------------------------------------
//
// A row of record R has: kWidth, the bytes of the record that it shows; Head and Tail, the text
// before and behind its value when its line starts at a depth; ValueBound, the most bytes that the
// value may take (garbage behind it included); Put, the value for the fast writer; WriteExact, the
// whole line piece by piece.

enum class Form : std::uint8_t {
    Decimal,
    Hex,   // lower case, without a prefix
    Flag,  // 1 for any non-zero byte
};

template <class T>
inline constexpr std::size_t kDecimalBound = sizeof(T) == 1   ? 3
                                             : sizeof(T) == 2 ? 5
                                             : sizeof(T) == 4 ? 10
                                                              : 20;

template <class T>
auto NumberOf(const T& field) {
    if constexpr (std::is_same_v<T, HX_U64>) {
        return field.value;
    } else {
        static_assert(std::is_unsigned_v<T>);
        return field;
    }
}

// The tags of a scalar element, all on one line.
constexpr void ScalarHead(LiteralSink& sink, int depth, const char* name, const char* type) {
    sink.Indent(depth);
    sink.Put("<");
    sink.Put(name);
    sink.Put(" type=\"");
    sink.Put(type);
    sink.Put("\">");
}
constexpr void ScalarTail(LiteralSink& sink, const char* name) {
    sink.Put("</");
    sink.Put(name);
    sink.Put(">\n");
}

/// A number. `type` is its name in the result.
template <class R, class T, Form form>
struct Column {
    using Of = R;
    static constexpr std::size_t kWidth = sizeof(T);
    const char* name;
    const char* type;
    T R::*field;

    constexpr void Head(LiteralSink& sink, int depth) const { ScalarHead(sink, depth, name, type); }
    constexpr void Tail(LiteralSink& sink, int) const { ScalarTail(sink, name); }
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return kDecimalBound<T> + kDigitSlack;
    }

    auto Value(const R& record) const {
        const auto value = NumberOf(record.*field);
        if constexpr (form == Form::Flag) {
            return static_cast<T>(value != 0 ? 1 : 0);
        } else {
            return value;
        }
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const R& record) const {
        if constexpr (form == Form::Hex) {
            return PutHex(at, Value(record));
        } else {
            return PutDecimal(at, Value(record));
        }
    }
    void WriteExact(XMLWR_Doc* doc, const R& record) const {
        if constexpr (sizeof(T) == 8) {
            XML_RA_ElmtNonArrayData(doc, name, type, "%llu",
                                    static_cast<unsigned long long>(Value(record)));
        } else if constexpr (form == Form::Hex) {
            XML_RA_ElmtNonArrayData(doc, name, type, "%x", static_cast<unsigned>(Value(record)));
        } else {
            XML_RA_ElmtNonArrayData(doc, name, type, "%u", static_cast<unsigned>(Value(record)));
        }
    }
};

/// Whether the last item of an array is followed by a blank, as every other one is.
enum class LastBlank : bool { No, Yes };

// Whether all items in a word of 8 bytes are single digits: no item has a bit above its low four,
// and none gets one when 6 is added.
template <class T>
[[gnu::always_inline]] inline bool AreDigits(const T* items) {
    constexpr std::uint64_t kOnes = UINT64_MAX / static_cast<T>(-1);
    std::uint64_t word;
    std::memcpy(&word, items, sizeof word);
    return ((word | (word + 6 * kOnes)) & ~(15 * kOnes)) == 0;
}

// A word of single digits, each followed by a blank.
[[gnu::always_inline]] inline char* PutDigits(char* at, const HX_U8* items) {
    using Eight [[gnu::vector_size(8)]] = HX_U8;
    using Sixteen [[gnu::vector_size(16)]] = HX_U8;
    Eight digits;
    std::memcpy(&digits, items, sizeof digits);
    const Sixteen text = __builtin_shufflevector(digits | '0', Eight{} + ' ', 0, 8, 1, 9, 2, 10, 3,
                                                 11, 4, 12, 5, 13, 6, 14, 7, 15);
    std::memcpy(at, &text, sizeof text);
    return at + sizeof text;
}
[[gnu::always_inline]] inline char* PutDigits(char* at, const HX_U16* items) {
    std::uint64_t word;
    std::memcpy(&word, items, sizeof word);
    word |= 0x2030203020302030;  // little-endian: the digit comes first, the blank behind it
    std::memcpy(at, &word, sizeof word);
    return at + sizeof word;
}

// The items of an array on one line, each followed by a blank.
template <class T, std::size_t n>
[[gnu::always_inline]] inline char* PutItems(char* at, const T (&items)[n]) {
    // A word of single digits is one step: most arrays are all zero, others hold flags or small
    // codes.
    constexpr std::size_t kItemsOfWord = sizeof(std::uint64_t) / sizeof(T);
    constexpr bool kByWords = sizeof(T) <= 2 && n >= 8 && n % kItemsOfWord == 0;
    constexpr std::size_t kStep = kByWords ? kItemsOfWord : 1;
    for (std::size_t i = 0; i < n; i += kStep) {
        if constexpr (kByWords) {
            if (AreDigits(items + i)) {
                at = PutDigits(at, items + i);
                continue;
            }
        }
        for (std::size_t k = i; k < i + kStep; ++k) {
            at = PutDecimal(at, NumberOf(items[k]));
            *at++ = ' ';
        }
    }
    return at;
}

// An array element's start: its tag, and the indentation of the line of items.
constexpr void ArrayHead(LiteralSink& sink, int depth, std::string_view name, std::string_view type,
                         std::size_t width) {
    sink.Indent(depth);
    sink.Put("<");
    sink.Put(name);
    sink.Put(" type=\"");
    sink.Put(type);
    sink.Put("\" width=\"");
    sink.Number(width);
    sink.Put("\">\n");
    sink.Indent(depth + 1);
}
constexpr void ArrayTail(LiteralSink& sink, int depth, std::string_view name) {
    sink.Put("\n");
    sink.Indent(depth);
    sink.Put("</");
    sink.Put(name);
    sink.Put(">\n");
}

template <class T, std::size_t n>
void WriteItemsExact(XMLWR_Doc* doc, const char* name, const char* type, const T (&items)[n],
                     LastBlank last_blank = LastBlank::No) {
    XML_RA_ElmtStartArrayData(doc, name, type, n);
    XMLWR_PrintTabs(doc);
    for (std::size_t i = 0; i < n; ++i) {
        const bool blank = i + 1 < n || last_blank == LastBlank::Yes;
        XMLWR_ElmtCharData(doc, kNoIndent | kNoNewLine, blank ? "%llu " : "%llu",
                           static_cast<unsigned long long>(NumberOf(items[i])));
    }
    XMLWR_PrintNewLine(doc);
    XMLWR_ElmtEnd(doc, 0, name);
}

/// An array of numbers, always written in its full width.
template <class R, class T, std::size_t n, LastBlank last_blank>
struct ArrayColumn {
    using Of = R;
    static constexpr std::size_t kWidth = n * sizeof(T);
    const char* name;
    const char* type;
    T (R::*field)[n];

    constexpr void Head(LiteralSink& sink, int depth) const {
        ArrayHead(sink, depth, name, type, n);
    }
    constexpr void Tail(LiteralSink& sink, int depth) const { ArrayTail(sink, depth, name); }
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return n * (kDecimalBound<T> + 1) + kDigitSlack;
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const R& record) const {
        at = PutItems(at, record.*field);
        return last_blank == LastBlank::Yes ? at : at - 1;
    }
    void WriteExact(XMLWR_Doc* doc, const R& record) const {
        WriteItemsExact(doc, name, type, record.*field, last_blank);
    }
};

enum class Markup : bool {
    CData,  // in a CDATA section, nothing escaped
    Bare,   // as it stands: its readers rely on it holding no markup
};

/// A text of a fixed-width field, as `Cleaner` puts it.
template <class R, class C, std::size_t n, class Cleaner, Markup markup>
struct TextColumn {
    using Of = R;
    static constexpr std::size_t kWidth = n * sizeof(C);
    const char* name;
    C (R::*field)[n];

    constexpr void Head(LiteralSink& sink, int depth) const {
        ScalarHead(sink, depth, name, "string");
        if (markup == Markup::CData) sink.Put("<![CDATA[");
    }
    constexpr void Tail(LiteralSink& sink, int) const {
        if (markup == Markup::CData) sink.Put("]]>");
        ScalarTail(sink, name);
    }
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return n + 1;
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const R& record) const {
        return Cleaner::Put(at, record.*field);
    }
    void WriteExact(XMLWR_Doc* doc, const R& record) const {
        char text[n + 1];
        *Cleaner::Put(text, record.*field) = '\0';
        if constexpr (markup == Markup::CData) {
            XML_RA_ElmtNonArrayData(doc, name, "string", "<![CDATA[%s]]>", text);
        } else {
            XML_RA_ElmtNonArrayData(doc, name, "string", "%s", text);
        }
    }
};

/// A record: the value of its element's type attribute and its rows, all of the same `R`, which
/// show every member that is not left out by name.
template <class R, class... Row>
struct Record {
    using Type = R;
    static constexpr std::size_t kRows = sizeof...(Row);

    const char* type;
    RowList<Row...> rows;

    consteval explicit Record(const char* type_name, Row... row) : Record(type_name, {0}, row...) {}
    consteval Record(const char* type_name, LeftOut<R> left_out, Row... row)
        : type(type_name), rows(row...) {
        CheckThatRowsCover<R, Row...>(left_out);
    }
};
template <class First, class... Row>
Record(const char*, First, Row...) -> Record<typename First::Of, First, Row...>;
template <class R, class... Row>
Record(const char*, LeftOut<R>, Row...) -> Record<R, Row...>;

template <const auto& kRecord>
using RecordType = typename std::remove_cvref_t<decltype(kRecord)>::Type;

// The loops over rows --------------------------------------------------------------------------

template <const auto& kRecord, std::size_t i, int depth>
inline constexpr std::size_t kRowBound = [] {
    LiteralSink sink;
    RowAt<i>(kRecord.rows).Head(sink, depth);
    RowAt<i>(kRecord.rows).Tail(sink, depth);
    return sink.length + RowAt<i>(kRecord.rows).template ValueBound<depth>();
}();

template <const auto& kRecord, int depth>
inline constexpr std::size_t kRowsBound = []<std::size_t... i>(std::index_sequence<i...>) {
    return (std::size_t{0} + ... + kRowBound<kRecord, i, depth>);
}
(std::make_index_sequence<std::remove_cvref_t<decltype(kRecord)>::kRows>{});

// The text between the values of rows i - 1 and i; only the existing side before the first and
// after the last row.
template <const auto& kRecord, std::size_t i, int depth>
inline constexpr auto kGap = MakeLiteral([](LiteralSink& sink) {
    constexpr std::size_t rows = std::remove_cvref_t<decltype(kRecord)>::kRows;
    if constexpr (i > 0) RowAt<i - 1>(kRecord.rows).Tail(sink, depth);
    if constexpr (i < rows) RowAt<i>(kRecord.rows).Head(sink, depth);
});

// Writes the value of one row. The row is copied at compile time, because compilers do not fold a
// table's fields but read them from memory each time.
template <const auto& kRecord, std::size_t i, int depth>
[[gnu::always_inline]] inline char* PutRow(char* at, const RecordType<kRecord>& record) {
    constexpr auto row = RowAt<i>(kRecord.rows);
    return row.template Put<depth>(at, record);
}

// Writes from the first row's value to the last one's; the caller writes the gaps around them.
template <const auto& kRecord, int depth>
[[gnu::always_inline]] inline char* PutRows(char* at, const RecordType<kRecord>& record) {
    [&]<std::size_t... i>(std::index_sequence<i...>) __attribute__((always_inline)) {
        ((at = i == 0 ? at : PutLiteral(at, kGap<kRecord, i, depth>),
          at = PutRow<kRecord, i, depth>(at, record)),
         ...);
    }
    (std::make_index_sequence<std::remove_cvref_t<decltype(kRecord)>::kRows>{});
    return at;
}

/// Writes a record's rows piece by piece, at the document's current depth.
template <const auto& kRecord>
[[gnu::noinline]] void WriteRowsExact(XMLWR_Doc* doc, const RecordType<kRecord>& record) {
    kRecord.rows.Apply([&](const auto&... row) { (row.WriteExact(doc, record), ...); });
}

/// The record within `R` that a nested element shows: a field, or (for rows over the same record) R
/// itself.
template <class Inner, class R>
struct InnerField {
    static constexpr std::size_t kWidth = sizeof(Inner);
    Inner R::*field;
    const Inner& operator()(const R& record) const { return record.*field; }
};
template <class R>
struct InnerSelf {
    static constexpr std::size_t kWidth = 0;
    const R& operator()(const R& record) const { return record; }
};

/// A record within a record.
template <const auto& kInner, class R, class Inner>
struct Nested {
    using Of = R;
    static constexpr std::size_t kWidth = Inner::kWidth;
    const char* name;
    Inner inner;

    constexpr void Head(LiteralSink& sink, int depth) const {
        sink.Indent(depth);
        sink.Put("<");
        sink.Put(name);
        sink.Put(" type=\"");
        sink.Put(kInner.type);
        sink.Put("\">\n");
        RowAt<0>(kInner.rows).Head(sink, depth + 1);
    }
    constexpr void Tail(LiteralSink& sink, int depth) const {
        constexpr std::size_t last = std::remove_cvref_t<decltype(kInner)>::kRows - 1;
        RowAt<last>(kInner.rows).Tail(sink, depth + 1);
        sink.Indent(depth);
        sink.Put("</");
        sink.Put(name);
        sink.Put(">\n");
    }
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return kRowsBound<kInner, depth + 1>;
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const R& record) const {
        return PutRows<kInner, depth + 1>(at, inner(record));
    }
    void WriteExact(XMLWR_Doc* doc, const R& record) const {
        XMLWR_ElmtStartPrintf(doc, 0, name, " %s=\"%s\"", "type", kInner.type);
        WriteRowsExact<kInner>(doc, inner(record));
        XMLWR_ElmtEnd(doc, 0, name);
    }
};

/// A number that is not stored but computed from the record by `value`, which gives one byte.
template <class R, class Value>
struct ComputedByte {
    using Of = R;
    static constexpr std::size_t kWidth = 0;
    const char* name;
    Value value;

    constexpr void Head(LiteralSink& sink, int depth) const { ScalarHead(sink, depth, name, "U8"); }
    constexpr void Tail(LiteralSink& sink, int) const { ScalarTail(sink, name); }
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return kDecimalBound<HX_U8> + kDigitSlack;
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const R& record) const {
        return PutDecimal(at, static_cast<HX_U8>(value(record)));
    }
    void WriteExact(XMLWR_Doc* doc, const R& record) const {
        XML_RA_ElmtNonArrayData(doc, name, "U8", "%u", static_cast<unsigned>(value(record)));
    }
};

// Rows as they stand in a list -----------------------------------------------------------------

template <class T>
consteval void CheckWidth(XmlType type) {
    if (sizeof(std::remove_all_extents_t<T>) != type.bytes) TypeAndFieldDifferInWidth();
}

/// A number or an array of numbers. A type and a field that differ in width do not compile.
template <class R, class T>
consteval Column<R, T, Form::Decimal> Col(const char* name, XmlType type, T R::*field) {
    CheckWidth<T>(type);
    return {name, type.name, field};
}
template <class R, class T, std::size_t n>
consteval ArrayColumn<R, T, n, LastBlank::No> Col(const char* name, XmlType type,
                                                  T (R::*field)[n]) {
    CheckWidth<T>(type);
    return {name, type.name, field};
}

/// An array of numbers whose last item is followed by a blank, too.
template <class R, class T, std::size_t n>
consteval ArrayColumn<R, T, n, LastBlank::Yes> ColWithLastBlank(const char* name, XmlType type,
                                                                T (R::*field)[n]) {
    CheckWidth<T>(type);
    return {name, type.name, field};
}

/// A number in hexadecimal.
template <class R, class T>
consteval Column<R, T, Form::Hex> Hex(const char* name, XmlType type, T R::*field) {
    CheckWidth<T>(type);
    return {name, type.name, field};
}

/// A byte written as 1 when it is not zero.
template <class R, class T>
consteval Column<R, T, Form::Flag> Flag(const char* name, XmlType type, T R::*field) {
    CheckWidth<T>(type);
    return {name, type.name, field};
}

/// A text in CDATA, unchanged or cleaned first.
template <class Cleaner = PlainText, class R, class C, std::size_t n>
consteval TextColumn<R, C, n, Cleaner, Markup::CData> CData(const char* name, C (R::*field)[n]) {
    static_assert(sizeof(C) == 1);
    return {name, field};
}

/// A text without CDATA.
template <class R, class C, std::size_t n>
consteval TextColumn<R, C, n, PlainText, Markup::Bare> Bare(const char* name, C (R::*field)[n]) {
    static_assert(sizeof(C) == 1);
    return {name, field};
}

/// One byte, computed from the record.
template <class R, class Value>
consteval ComputedByte<R, Value> Computed(const char* name, Value value) {
    return {name, value};
}

/// A record element within the record.
template <const auto& kInner, class R>
consteval Nested<kInner, R, InnerField<RecordType<kInner>, R>> Nest(const char* name,
                                                                    RecordType<kInner> R::*field) {
    return {name, {field}};
}

/// A record element that shows other rows of the same record.
template <const auto& kInner>
consteval Nested<kInner, RecordType<kInner>, InnerSelf<RecordType<kInner>>> NestSelf(
    const char* name) {
    return {name, {}};
}

// Lists of records -----------------------------------------------------------------------------

// An element name given at run time, padded so that it is copied in one step of fixed size.
struct PaddedName {
    static constexpr std::size_t kRoom = 32;
    char text[kRoom] = {};
    std::size_t length;

    explicit PaddedName(const char* name) : length(std::strlen(name)) {
        std::memcpy(text, name, length < kRoom ? length : kRoom);
    }
    bool Fits() const { return length <= kRoom; }
    [[gnu::always_inline]] char* Put(char* at) const {
        std::memcpy(at, text, kRoom);
        return at + length;
    }
};

// The first and last text of a record element whose name is not known at compile time.
template <const auto& kRecord, int depth>
inline constexpr auto kRecordOpen = MakeLiteral([](LiteralSink& sink) {
    sink.Put(" type=\"");
    sink.Put(kRecord.type);
    sink.Put("\">\n");
    RowAt<0>(kRecord.rows).Head(sink, depth + 1);
});
template <const auto& kRecord, int depth>
inline constexpr auto kRecordClose = MakeLiteral([](LiteralSink& sink) {
    RowAt<std::remove_cvref_t<decltype(kRecord)>::kRows - 1>(kRecord.rows).Tail(sink, depth + 1);
    sink.Indent(depth);
    sink.Put("</");
});
template <int depth>
inline constexpr auto kTagStart = MakeLiteral([](LiteralSink& sink) {
    sink.Indent(depth);
    sink.Put("<");
});

template <const auto& kRecord, int depth>
inline constexpr std::size_t kRecordBound =
    kTagStart<depth>.size() + 2 * PaddedName::kRoom + kRecordOpen<kRecord, depth>.size() +
    kRowsBound<kRecord, depth + 1> + kRecordClose<kRecord, depth>.size() + 2;

/// Writes `count` record elements called `elmt`, one after the other. Returns 1.
template <const auto& kRecord>
int WriteRecords(XMLWR_Doc* doc, const char* elmt, const RecordType<kRecord>* records,
                 HX_U32 count) {
    const PaddedName name(elmt);
    const bool fast = doc->Depth == kListDepth && name.Fits();
    for (const auto* record = records; record != records + count; ++record) {
        if (fast && kDocCapacity - doc->CurPos >= kRecordBound<kRecord, kListDepth>) [[likely]] {
            char* at = PutLiteral(doc->Buf + doc->CurPos, kTagStart<kListDepth>);
            at = PutLiteral(name.Put(at), kRecordOpen<kRecord, kListDepth>);
            at = PutRows<kRecord, kListDepth + 1>(at, *record);
            at = name.Put(PutLiteral(at, kRecordClose<kRecord, kListDepth>));
            *at++ = '>';
            *at++ = '\n';
            doc->CurPos = static_cast<std::uint32_t>(at - doc->Buf);
            continue;
        }
        if (doc->CurPos == kDocCapacity) break;  // the document is completely full
        XMLWR_ElmtStartPrintf(doc, 0, elmt, " %s=\"%s\"", "type", kRecord.type);
        WriteRowsExact<kRecord>(doc, *record);
        XMLWR_ElmtEnd(doc, 0, elmt);
    }
    return 1;
}

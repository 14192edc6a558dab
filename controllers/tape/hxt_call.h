// A call of the controller library as bytes: what it asks is its request, what it fills in is its
// answer.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "hxraid.h"
#include "tape/hxt_fields.h"
#include "tape/hxt_pseudonym.h"

namespace hxtape {

/// What a call does to the machine.
enum class Effect : HX_U8 {
    kReads,    // the same question may be asked again
    kTakes,    // it takes away what it answers
    kChanges,  // it changes something
};

/// A buffer or a number that a call passes.
struct Part {
    enum class Role : HX_U8 {
        kNone,     // described by another part
        kIn,       // asked
        kOut,      // filled in
        kBoth,     // asked, and filled in
        kPage,     // a list: its header, and records behind it
        kCounted,  // records filled in, of which *count tells the number
        kSent,     // a piece of a flash image that is asked: its header tells the length
        kPiece,    // the same, filled in; its number is asked
    };
    Role role = Role::kNone;
    char* at = nullptr;
    std::size_t size = 0;      // bytes of a record
    std::size_t capacity = 1;  // records
    HX_U8* count = nullptr;
    std::span<const Field> fields{};
};

/// An argument with what is done with the buffer that it points to.
template <class Value>
struct Argument {
    Value value;
    Part part;
};

// The bytes are copied out of a request or into an answer as the part's role says, so that the
// address of a constant one is never written to.
template <class Record>
Part PartOf(Part::Role role, Record* records, std::size_t capacity = 1, HX_U8* count = nullptr) {
    using Plain = std::remove_const_t<Record>;
    return {role,          reinterpret_cast<char*>(const_cast<Plain*>(records)),
            sizeof(Plain), capacity,
            count,         kFieldsOf<Plain>};
}

template <class Record>
Argument<Record*> In(Record* records, std::size_t count = 1) {
    return {records, PartOf(Part::Role::kIn, records, count)};
}
template <class Record>
Argument<Record*> Out(Record* records, std::size_t count = 1) {
    return {records, PartOf(Part::Role::kOut, records, count)};
}
template <class Record>
Argument<Record*> Both(Record* record) {
    return {record, PartOf(Part::Role::kBoth, record)};
}
/// Filled in as the count of a Counted beside it.
inline Argument<HX_U8*> CountOf(HX_U8* count) { return {count, {}}; }
template <class Record>
Argument<Record*> Counted(Record* records, HX_U8* count, std::size_t most) {
    return {records, PartOf(Part::Role::kCounted, records, most, count)};
}
/// A list request, whose records are of the type that `first` points to.
template <class Request, class Record, std::size_t one>
Argument<Request*> Page(Request* request, Record (Request::*)[one]) {
    static_assert(sizeof(Request) == sizeof(RequestHeader) + sizeof(Record));
    return {request,
            {Part::Role::kPage, reinterpret_cast<char*>(request), sizeof(Record), 1, nullptr,
             kFieldsOf<Record>}};
}
/// A piece of a flash image: sent, or asked for by its number and filled in.
Argument<Flash_Data*> Piece(HX_U8 actions, Flash_Data* piece);

/// Whether an address that the call needs is null.
bool IsIncomplete(std::span<const Part> parts);

/// The bytes of a call's request, and of the answer that it got. A key makes them anonymous.
std::string RequestOf(std::span<const Part> parts, const PseudonymKey* key);
std::string AnswerOf(std::span<const Part> parts, const PseudonymKey* key);

/// Fills in the answer. False, and nothing is written, when it has not the size of such an answer.
bool FillIn(std::span<const Part> parts, std::string_view answer);

}  // namespace hxtape

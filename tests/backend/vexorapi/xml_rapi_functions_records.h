// Records of the controller in which every byte of every field is another one, so that a field that
// is swapped with its neighbour, or read in another width, shows.
#pragma once

#include <cstddef>
#include <cstring>

#include "hxraid.h"
#include "xml_rapi_user.h"

/// A record's numbers: byte i is 37 i + 5 (i / 256) + 11, and 101 more for each `seed`.
template <class R>
R DistinctBytes(unsigned seed) {
    unsigned char bytes[sizeof(R)];
    for (unsigned i = 0; i < sizeof bytes; ++i) {
        bytes[i] = static_cast<unsigned char>(37 * i + 5 * (i / 256) + 11 + 101 * seed);
    }
    R record;
    std::memcpy(&record, bytes, sizeof record);
    return record;
}

/// A record's text: letters and digits up to the field's last byte, with no NUL behind them. The
/// one at byte i of the record is number 5 i + 3 of A to Z, a to z and 0 to 9, and 11 more for each
/// `seed`.
template <class R, std::size_t n>
void SetDistinctText(R& record, char (&field)[n], unsigned seed) {
    constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    const auto first = static_cast<std::size_t>(field - reinterpret_cast<const char*>(&record));
    for (std::size_t i = 0; i < n; ++i) field[i] = kLetters[(5 * (first + i) + 3 + 11 * seed) % 62];
}

/// Of a record whose one text is its name, and of those without a text. The others have functions
/// of their own.
template <class R>
void SetDistinctTexts(R& record, unsigned seed) {
    if constexpr (requires { record.Name; }) SetDistinctText(record, record.Name, seed);
}
inline void SetDistinctTexts(Adapter_Info& record, unsigned seed) {
    SetDistinctText(record, record.SerialNo, seed);
}
inline void SetDistinctTexts(HD_Info& record, unsigned seed) {
    SetDistinctText(record, record.Model, seed);
    SetDistinctText(record, record.SerialNo, seed);
    SetDistinctText(record, record.FWVersion, seed);
}
inline void SetDistinctTexts(Exp_Info& record, unsigned seed) {
    SetDistinctText(record, record.VendorID, seed);
    SetDistinctText(record, record.ProductID, seed);
    SetDistinctText(record, record.ProductRev, seed);
    SetDistinctText(record, record.ComponentVendorID, seed);
}
inline void SetDistinctTexts(Enclosure_Info& record, unsigned seed) {
    SetDistinctText(record, record.LogicalID, seed);
    SetDistinctText(record, record.VendorID, seed);
    SetDistinctText(record, record.ProductID, seed);
    SetDistinctText(record, record.RevisionLevel, seed);
}
inline void SetDistinctTexts(VX_GetUserName& record, unsigned seed) {
    SetDistinctText(record, record.UserName, seed);
    SetDistinctText(record, record.DomaimName, seed);
}

/// A record with distinct numbers and texts; another `seed`, another record.
template <class R>
R Distinct(unsigned seed = 0) {
    R record = DistinctBytes<R>(seed);
    SetDistinctTexts(record, seed);
    return record;
}

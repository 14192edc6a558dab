// Pseudonyms: the same value always gets the same one, two values never get one and the same, and
// without the key none can be found out by trying values.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace hxtape {

using PseudonymKey = std::array<std::uint8_t, 16>;

/// SipHash-2-4 of the bytes.
std::uint64_t SipHash(const PseudonymKey& key, std::string_view bytes);

/// What a value is; values of different kinds have nothing to do with each other.
enum class Identity : std::uint8_t {
    kSerial,      // a text; a "0" at its beginning stays, because it means that there is none
    kName,        // a text
    kAddress,     // a world wide name or SAS address of 8 bytes; its first half byte, its format,
                  // stays
    kHexAddress,  // the same, as a text of 16 hexadecimal digits
    kSenseData,   // a serial number as a text, or bytes, which stay
    kImage,       // bytes of a flash image, which has serial numbers; they are all cleared
};

/// Replaces the value by its pseudonym of the same width. Of a text letters stay letters, digits
/// stay digits, and what is neither stays as it is, but for bytes outside ASCII, which become
/// letters; whatever follows its NUL is cleared. A text without a letter or digit, and an address
/// of zeros, stay.
void Pseudonymise(const PseudonymKey& key, Identity identity, std::span<char> value);

/// The key of 32 hexadecimal digits; null for any other text.
bool ParseKey(std::string_view text, PseudonymKey& key);

}  // namespace hxtape

#include "tape/hxt_pseudonym.h"

#include <algorithm>
#include <bit>
#include <string>
#include <vector>

namespace hxtape {
namespace {

std::uint64_t LittleEndian(const char* bytes, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        value |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    }
    return value;
}

struct SipState {
    std::uint64_t v0, v1, v2, v3;

    void Round() {
        v0 += v1;
        v1 = std::rotl(v1, 13) ^ v0;
        v0 = std::rotl(v0, 32);
        v2 += v3;
        v3 = std::rotl(v3, 16) ^ v2;
        v0 += v3;
        v3 = std::rotl(v3, 21) ^ v0;
        v2 += v1;
        v1 = std::rotl(v1, 17) ^ v2;
        v2 = std::rotl(v2, 32);
    }

    void Take(std::uint64_t word) {
        v3 ^= word;
        Round();
        Round();
        v0 ^= word;
    }
};

// A digit of the value: which of `radix` characters it is.
struct Digit {
    std::size_t at;   // its place in the value
    char first;       // the character of 0
    unsigned radix;   // 26, 10, 9 or 16
    unsigned number;  // 0 to radix - 1
};

// A Feistel network over the two halves of the digits, each of which is added modulo its own radix:
// every step can be undone, so that two values of one shape never meet. Ten rounds are what the
// standards of format-preserving encryption take for short values.
void Permute(const PseudonymKey& key, Identity identity, std::vector<Digit>& digits) {
    constexpr unsigned kRounds = 10;
    const std::size_t half = (digits.size() + 1) / 2;
    for (unsigned round = 0; round < kRounds; ++round) {
        const bool is_left = round % 2 == 0;
        const auto middle = digits.begin() + static_cast<std::ptrdiff_t>(half);
        const std::span<Digit> changed = is_left ? std::span<Digit>(digits.begin(), middle)
                                                 : std::span<Digit>(middle, digits.end());
        const std::span<Digit> other = is_left ? std::span<Digit>(middle, digits.end())
                                               : std::span<Digit>(digits.begin(), middle);
        std::string text{static_cast<char>(identity), static_cast<char>(round),
                         static_cast<char>(digits.size())};
        for (const Digit& each : other) text += static_cast<char>(each.number);
        text += '\0';  // the place of the digit
        for (std::size_t i = 0; i < changed.size(); ++i) {
            text.back() = static_cast<char>(i);
            Digit& digit = changed[i];
            const std::uint64_t added = SipHash(key, text) % digit.radix;
            digit.number = (digit.number + static_cast<unsigned>(added)) % digit.radix;
        }
    }
}

bool IsIn(char c, char first, unsigned radix) {
    return c >= first && c < first + static_cast<int>(radix);
}

void ReplaceText(const PseudonymKey& key, Identity identity, std::span<char> value) {
    const auto end = std::ranges::find(value, '\0');
    std::fill(end, value.end(), '\0');
    std::vector<Digit> digits;
    for (auto at = value.begin(); at != end; ++at) {
        const auto place = static_cast<std::size_t>(at - value.begin());
        const bool is_first_of_serial = identity == Identity::kSerial && place == 0;
        if (is_first_of_serial && *at == '0') continue;
        if (static_cast<unsigned char>(*at) >= 128) {
            *at = static_cast<char>('a' + static_cast<unsigned char>(*at) % 26);
        }
        for (const char first : {'a', 'A'}) {
            if (IsIn(*at, first, 26)) {
                digits.push_back({place, first, 26, static_cast<unsigned>(*at - first)});
            }
        }
        const char zero = is_first_of_serial ? '1' : '0';
        const unsigned radix = is_first_of_serial ? 9 : 10;
        if (IsIn(*at, zero, radix)) {
            digits.push_back({place, zero, radix, static_cast<unsigned>(*at - zero)});
        }
    }
    Permute(key, identity, digits);
    for (const Digit& digit : digits) {
        value[digit.at] = static_cast<char>(digit.first + static_cast<int>(digit.number));
    }
}

void ReplaceAddress(const PseudonymKey& key, std::span<char> value) {
    if (std::ranges::all_of(value, [](char c) { return c == '\0'; })) return;
    std::vector<Digit> digits;
    for (std::size_t i = 1; i < 2 * value.size(); ++i) {
        const auto byte = static_cast<unsigned char>(value[i / 2]);
        digits.push_back({i, 0, 16, i % 2 == 0 ? byte >> 4U : byte & 15U});
    }
    Permute(key, Identity::kAddress, digits);
    for (const Digit& digit : digits) {
        char& byte = value[digit.at / 2];
        const auto old = static_cast<unsigned char>(byte);
        byte = static_cast<char>(digit.at % 2 == 0 ? (digit.number << 4U) | (old & 15U)
                                                   : (old & 240U) | digit.number);
    }
}

// The bytes of 16 hexadecimal digits; a text of another form is replaced as a text.
void ReplaceHexAddress(const PseudonymKey& key, std::span<char> value) {
    constexpr std::string_view kUpper = "0123456789ABCDEF", kLower = "0123456789abcdef";
    const std::string_view text(
        value.data(), static_cast<std::size_t>(std::ranges::find(value, '\0') - value.begin()));
    const bool is_upper = text.find_first_of("ABCDEF") != std::string_view::npos;
    const std::string_view digits = is_upper ? kUpper : kLower;
    if (text.size() != 16 || text.find_first_not_of(digits) != std::string_view::npos) {
        ReplaceText(key, Identity::kName, value);
        return;
    }
    std::array<char, 8> address{};
    for (std::size_t i = 0; i < 16; ++i) {
        const auto number = static_cast<unsigned>(digits.find(value[i]));
        const unsigned high = static_cast<unsigned char>(address[i / 2]);
        address[i / 2] = static_cast<char>((high << 4U) | number);
    }
    ReplaceAddress(key, address);
    for (std::size_t i = 0; i < 16; ++i) {
        const auto byte = static_cast<unsigned char>(address[i / 2]);
        value[i] = digits[i % 2 == 0 ? byte >> 4U : byte & 15U];
    }
}

// SCSI sense data begin with a response code from 0x70, and their next bytes hold a 0 or a code
// below the printable characters.
bool IsTextOf(std::span<const char> bytes) {
    constexpr std::size_t kLooked = 3;
    const auto end = std::ranges::find(bytes, '\0');
    return end - bytes.begin() >= static_cast<std::ptrdiff_t>(kLooked) &&
           std::all_of(bytes.begin(), end, [](char c) { return c >= ' ' && c <= '~'; });
}

}  // namespace

std::uint64_t SipHash(const PseudonymKey& key, std::string_view bytes) {
    std::array<char, 16> text{};
    std::ranges::transform(key, text.begin(), [](std::uint8_t c) { return static_cast<char>(c); });
    const std::uint64_t k0 = LittleEndian(text.data(), 8), k1 = LittleEndian(text.data() + 8, 8);
    SipState state{k0 ^ 0x736f6d6570736575U, k1 ^ 0x646f72616e646f6dU, k0 ^ 0x6c7967656e657261U,
                   k1 ^ 0x7465646279746573U};
    const std::uint64_t length = bytes.size();
    while (bytes.size() >= 8) {
        state.Take(LittleEndian(bytes.data(), 8));
        bytes.remove_prefix(8);
    }
    state.Take(LittleEndian(bytes.data(), bytes.size()) | (length << 56));
    state.v2 ^= 0xff;
    for (int i = 0; i < 4; ++i) state.Round();
    return state.v0 ^ state.v1 ^ state.v2 ^ state.v3;
}

void Pseudonymise(const PseudonymKey& key, Identity identity, std::span<char> value) {
    switch (identity) {
        case Identity::kSerial:
        case Identity::kName:
            ReplaceText(key, identity, value);
            return;
        case Identity::kAddress:
            ReplaceAddress(key, value);
            return;
        case Identity::kHexAddress:
            ReplaceHexAddress(key, value);
            return;
        case Identity::kSenseData:
            if (IsTextOf(value)) ReplaceText(key, Identity::kSerial, value);
            return;
        case Identity::kImage:
            std::ranges::fill(value, '\0');
            return;
    }
}

bool ParseKey(std::string_view text, PseudonymKey& key) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    if (text.size() != 2 * key.size() ||
        text.find_first_not_of(kDigits) != std::string_view::npos) {
        return false;
    }
    for (std::size_t i = 0; i < key.size(); ++i) {
        key[i] = static_cast<std::uint8_t>(kDigits.find(text[2 * i]) * 16 +
                                           kDigits.find(text[2 * i + 1]));
    }
    return true;
}

}  // namespace hxtape

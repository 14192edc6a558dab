// Values taken from the bytes that a fuzzer gives, from the front on.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

/// The bytes of one input. Behind its end everything is zero, and texts are empty.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

    bool IsEmpty() const { return at_ == end_; }

    std::uint8_t U8() { return at_ == end_ ? std::uint8_t{0} : *at_++; }
    std::uint16_t U16() {
        const unsigned low = U8();
        return static_cast<std::uint16_t>(low | static_cast<unsigned>(U8()) << 8);
    }
    std::uint32_t U32() {
        const std::uint32_t low = U16();
        return low | static_cast<std::uint32_t>(U16()) << 16;
    }
    std::uint64_t U64() {
        const std::uint64_t low = U32();
        return low | static_cast<std::uint64_t>(U32()) << 32;
    }

    /// The next `length` bytes, or as many as there are.
    std::string Bytes(std::size_t length) {
        const auto left = static_cast<std::size_t>(end_ - at_);
        const std::string bytes(reinterpret_cast<const char*>(at_), std::min(length, left));
        at_ += bytes.size();
        return bytes;
    }

    /// What stands before the next byte `separator`, which is passed over, or before the end.
    std::string Until(std::uint8_t separator) {
        const std::uint8_t* const found = std::find(at_, end_, separator);
        const std::string bytes(reinterpret_cast<const char*>(at_),
                                static_cast<std::size_t>(found - at_));
        at_ = found == end_ ? end_ : found + 1;
        return bytes;
    }

    std::string Rest() { return Bytes(static_cast<std::size_t>(end_ - at_)); }

private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

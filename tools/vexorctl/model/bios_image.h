// What a file claims to be that holds a BIOS image.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vexorctl {

/// The subsystem that an image is for, or that an adapter is.
struct Subsystem {
    std::uint64_t vendor;
    std::uint64_t device;
    bool operator==(const Subsystem&) const = default;
    std::string Text() const;  // "FAC0:0001"
};

/// Why the bytes have no header of a BIOS image; null when they have one.
std::optional<std::string> WhyNoBiosImage(std::string_view image);

/// What is wrong with an image that has a header: it is not as long as it says, or the sum of its
/// bytes is not 0. Null when nothing is.
std::optional<std::string> WhyNotWhole(std::string_view image);

/// The subsystem in the header, which is there.
Subsystem SubsystemOf(std::string_view image);

}  // namespace vexorctl

#include "output/record_cells.h"

#include <cstdio>
#include <initializer_list>

namespace vexorctl {

namespace {

template <class R>
std::optional<std::string> Dotted(const View<R>& version,
                                  std::initializer_list<NumberField<R>> parts) {
    std::string text;
    for (const auto field : parts) {
        const auto part = version[field];
        if (!part) return std::nullopt;
        text.append(text.empty() ? "" : ".").append(std::to_string(*part));
    }
    return text;
}

}  // namespace

std::string HexBytes(const std::vector<std::uint64_t>& bytes) {
    std::string text;
    for (const std::uint64_t byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02X", static_cast<unsigned>(byte & 0xFF));
        text += digits;
    }
    return text;
}

std::optional<std::string> VersionText(const View<fields::Version_Info>& version) {
    using V = fields::Version_Info;
    return Dotted(version, {V::VerMajor, V::VerMinor, V::VerOEM, V::VerBuild});
}

std::optional<std::string> VersionText(const View<fields::VX_VER_INFO>& version) {
    using V = fields::VX_VER_INFO;
    return Dotted(version, {V::Major, V::Minor, V::OEM, V::Build});
}

}  // namespace vexorctl

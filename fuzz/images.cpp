// Flash images from and to files, with pieces that are the fuzzer's, and the version of one.
#include <algorithm>
#include <cstring>
#include <string>

#include "hxfake.h"
#include "input.h"
#include "support/temporary_root.h"
#include "targets.h"
#include "xml_rapi_flash.h"

namespace {

constexpr std::size_t kPiece = sizeof(Flash_Data::Data);
constexpr int kMostCalls = 20;  // of a controller that never marks a last piece

// The 64 bytes of a header, read by the layout of BIOS images.
const char* ReadHeader(HX_U8* path, const std::string& file) {
    VX_BIOS_Version read;
    std::memset(&read, 0xEE, sizeof read);
    const VX_BIOS_Version untouched = read;
    const HX_U8 code = HX_BIOS_Version(path, &read);
    if (file.size() < 64) {
        if (code != 1) return "a version was read from a file that is too short for one";
        return std::memcmp(&read, &untouched, sizeof read) == 0 ? nullptr : "a record was touched";
    }
    if (code != 0) return "a header was refused";
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(file[at]); };
    const auto word = [&](std::size_t at) { return byte(at) + 256 * byte(at + 1); };
    const bool digits = byte(6) >= '0';
    const int expected[] = {digits ? byte(6) - '0' : word(6), digits ? byte(8) - '0' : word(8),
                            digits ? byte(10) - '0' : word(10),
                            digits ? 10 * byte(12) + byte(13) - 528 : word(12)};
    const auto same = [](HX_U16 value, int number) {
        return value == static_cast<HX_U16>(static_cast<unsigned>(number) & 0xFFFF);
    };
    if (!same(read.VersionInfo.MajorVersion, expected[0]) ||
        !same(read.VersionInfo.MinorVersion, expected[1]) ||
        !same(read.VersionInfo.RevisionNumber, expected[2]) ||
        !same(read.VersionInfo.BuildNumber, expected[3])) {
        return "another version was read";
    }
    return same(read.SubVenID, word(32)) && same(read.SubDevID, word(34))
               ? nullptr
               : "other subsystem IDs were read";
}

const char* Send(HX_U8* path, const std::string& file, HX_U8 refusal, int refused_piece) {
    std::string sent;
    int pieces = 0;
    bool ended = false;
    const char* wrong = nullptr;
    hxfake::On<&HX_Flash_Bin>().Always([&](HX_U8, HX_U8, HX_U8, Flash_Data* piece) {
        if (piece->PageNum != pieces) wrong = "a piece has another number";
        if (ended) wrong = "a piece comes behind the last one";
        if (piece->DataLength == 0 || piece->DataLength > kPiece) {
            wrong = "a piece has an impossible length";
        } else {
            sent.append(reinterpret_cast<const char*>(piece->Data), piece->DataLength);
        }
        ended = piece->isLastPage != 0;
        return pieces++ == refused_piece ? refusal : HX_U8{0};
    });
    const HX_U8 code = HX_Flash_Option(0, HX_FLASH_WRITE, 1, path);
    if (wrong != nullptr) return wrong;
    if (file.empty()) return code == 1 && pieces == 0 ? nullptr : "an empty image was sent";
    const bool refused = refusal != 0 && pieces > refused_piece;
    if (code != (refused ? refusal : 0)) return "the code is not the last piece's";
    if (!file.starts_with(sent)) return "other bytes were sent than the file has";
    return refused || (ended && sent == file) ? nullptr : "an image was sent in part";
}

const char* Receive(const TemporaryRoot& root, HX_U8* path, const std::string& before,
                    Input& input) {
    std::string received;
    int pieces = 0;
    HX_U8 last_code = 0;
    hxfake::On<&HX_Flash_Bin>().Always([&](HX_U8, HX_U8, HX_U8, Flash_Data* piece) {
        if (++pieces > kMostCalls) return last_code = 9;
        piece->DataLength = input.U8() % 4 == 3 ? input.U32() : input.U16() % 2000u;
        const std::string bytes = input.Bytes(16);
        for (std::size_t at = 0; at < kPiece && !bytes.empty(); at += bytes.size()) {
            std::memcpy(piece->Data + at, bytes.data(), std::min(bytes.size(), kPiece - at));
        }
        piece->isLastPage = input.U8() % 4 == 0;
        last_code = input.U8() < 200 ? HX_U8{0} : HX_U8{7};
        if (last_code == 0) {
            received.append(reinterpret_cast<const char*>(piece->Data),
                            std::min<std::size_t>(piece->DataLength, kPiece));
        }
        return last_code;
    });
    if (HX_Flash_Option(0, HX_FLASH_READ, 1, path) != last_code) return "the code is another one";
    // It is overwritten from its start and not shortened.
    std::string expected = before;
    expected.replace(0, std::min(expected.size(), received.size()), received);
    return root.Read("/image") == expected ? nullptr : "the file has other bytes";
}

}  // namespace

const char* FuzzImages(const std::uint8_t* data, std::size_t size) {
    static const TemporaryRoot root;
    static const bool quiet = (hxfake::NoteCalls(false), true);
    static_cast<void>(quiet);
    std::string path = root.Path("/image");
    path.resize(kFilePathSize);
    auto* const field = reinterpret_cast<HX_U8*>(path.data());

    Input input(data, size);
    const bool is_long = input.U8() % 4 == 0;
    const std::size_t times = is_long ? 1 + std::size_t{input.U16()} % 200 : 1;
    const HX_U8 refusal = input.U8();
    const int refused_piece = input.U8() % 8;
    const std::string tile = input.Bytes(input.U16() % 1024);
    std::string file;
    for (std::size_t time = 0; time < times; ++time) file += tile;

    root.Write("/image", file);
    if (const char* const wrong = ReadHeader(field, file)) return wrong;
    if (const char* const wrong = Send(field, file, refusal, refused_piece)) return wrong;
    return Receive(root, field, file, input);
}

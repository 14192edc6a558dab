// The adapters' flash: a sample BIOS image each, made up when it is read.
#include <algorithm>

#include "hxraid.h"
#include "hxsim_adapter.h"
#include "hxraid_codes.h"
#include "hxsim_library.h"

namespace hxsim {
namespace {

// An image is an option ROM: its signature, its length in units of 512 bytes, the adapter's BIOS
// version and subsystem IDs where readers of such images look for them, and bytes that mean
// nothing; the last of them makes the sum of all a multiple of 256.
constexpr HX_U8 kImageUnits = 80;
constexpr HX_U32 kImageSize = 512 * kImageUnits;
constexpr HX_U32 kHeaderSize = 64;
constexpr HX_U32 kVersionAt = 6, kSubsystemAt = 32;

struct Header {
    HX_U8 bytes[kHeaderSize] = {0x55, 0xAA, kImageUnits};

    void Put(HX_U32 at, HX_U16 number) {
        bytes[at] = static_cast<HX_U8>(number);
        bytes[at + 1] = static_cast<HX_U8>(number >> 8);
    }
};

Header HeaderOf(HX_U8 adapter) {
    const Adapter_Info& model = ModelOf(adapter);
    Header header;
    header.Put(kVersionAt, model.BIOSVersion.MajorVersion);
    header.Put(kVersionAt + 2, model.BIOSVersion.MinorVersion);
    header.Put(kVersionAt + 4, model.BIOSVersion.RevisionNumber);
    header.Put(kVersionAt + 6, model.BIOSVersion.BuildNumber);
    header.Put(kSubsystemAt, model.SubVenID);
    header.Put(kSubsystemAt + 2, model.SubDevID);
    return header;
}

HX_U8 ByteOf(const Header& header, HX_U32 at) {
    if (at < kHeaderSize) return header.bytes[at];
    if (at < kImageSize - 1) return static_cast<HX_U8>(at * 167 + (at >> 8));
    HX_U8 sum = 0;
    for (HX_U32 before = 0; before < at; ++before) {
        sum = static_cast<HX_U8>(sum + ByteOf(header, before));
    }
    return static_cast<HX_U8>(-sum);
}

HX_U8 ReadPiece(HX_U8 adapter, Flash_Data& piece) {
    const HX_U32 start = HX_U32{piece.PageNum} * HX_FLASH_PIECE_SIZE;
    if (start >= kImageSize) return HXSIM_NO_PIECE;
    const Header header = HeaderOf(adapter);
    piece.DataLength = std::min<HX_U32>(HX_FLASH_PIECE_SIZE, kImageSize - start);
    piece.isLastPage = start + piece.DataLength == kImageSize;
    for (HX_U32 i = 0; i < piece.DataLength; ++i) piece.Data[i] = ByteOf(header, start + i);
    return HX_SUCCESS;
}

}  // namespace
}  // namespace hxsim

HX_U8 HX_Flash_Bin(HX_U8 AdapterID, HX_U8 Actions, HX_U8 Type, Flash_Data* piece) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (piece == nullptr) return HXSIM_NULL_ADDRESS;
    if (Actions == HX_FLASH_WRITE) return HXSIM_NOT_SUPPORTED;
    if (Actions != HX_FLASH_READ) return HXSIM_BAD_ACTION;
    if (Type != HXSIM_IMAGE_BIOS) return HXSIM_NO_IMAGE;
    return hxsim::ReadPiece(AdapterID, *piece);
}

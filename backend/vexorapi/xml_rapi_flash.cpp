// Transfers flash images in pieces of 32 KiB and reads a BIOS image's version from its header.
#include "xml_rapi_flash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include "descriptor.h"
#include "guarded_file.h"
#include "heap_block.h"
#include "read_file.h"
#include "xml_rapi_text.h"

static_assert(sizeof(off_t) == 8,
              "an image beyond 2 GiB would fail to open instead of to transfer");

namespace {

constexpr HX_U8 kFailed = 1;

constexpr mode_t kImageMode = 0644;

// Opens or makes the file for an image; the result is closed when that fails. Anything but a
// regular file counts as unopenable.
Descriptor OpenImageForWrite(const char* filename) {
    GuardedFile image = OpenGuarded(filename, O_RDWR | O_CREAT, kImageMode);
    if (!S_ISREG(image.status.mode)) image.file.Close();
    return std::move(image.file);
}

// 32 KiB, too much for a stack that may be a thread's.
HeapBlock<Flash_Data> MakePiece() { return MakeBlock<Flash_Data>(); }

// Clears the piece, so that no bytes of the previous one are sent with it.
void NumberPiece(Flash_Data& piece, HX_U32 number) {
    std::memset(&piece, 0, sizeof piece);
    piece.PageNum = static_cast<HX_U16>(number);
}

constexpr HX_U32 kMostPieces = 65536;  // their numbers have 16 bits

HX_U8 SendImage(HX_U8 AdapterID, HX_U8 Type, const char* filename) {
    const Descriptor file = OpenForRead(filename);
    if (!file.IsOpen()) return kFailed;
    const auto piece = MakePiece();
    if (piece == nullptr) return kFailed;
    for (HX_U32 number = 0; number < kMostPieces; ++number) {
        NumberPiece(*piece, number);
        ReadFromFile(file.Get(), piece->Data, sizeof piece->Data, &piece->DataLength);
        if (piece->DataLength == 0) return kFailed;
        // The position is at most 2 GiB, so it never equals the all-ones length of a larger file.
        const bool last = FileSeek(file.Get(), 0, SEEK_CUR) == GetFileLen(file.Get());
        piece->isLastPage = last ? 1 : 0;
        const HX_U8 status = HX_Flash_Bin(AdapterID, HX_FLASH_WRITE, Type, piece.get());
        if (status != HX_SUCCESS || last) return status;
    }
    return kFailed;
}

HX_U8 ReceiveImage(HX_U8 AdapterID, HX_U8 Type, const char* filename) {
    const auto piece = MakePiece();
    if (piece == nullptr) return kFailed;
    const Descriptor file = OpenImageForWrite(filename);
    if (!file.IsOpen()) return kFailed;
    // Sets the mode regardless of the umask; fails harmlessly for another user's file.
    static_cast<void>(fchmod(file.Get(), kImageMode));
    for (HX_U32 number = 0; number < kMostPieces; ++number) {
        NumberPiece(*piece, number);
        const HX_U8 status = HX_Flash_Bin(AdapterID, HX_FLASH_READ, Type, piece.get());
        if (status != HX_SUCCESS) return status;
        // A failed write is not reported: the function returns the controller's code.
        WriteToFile(file.Get(), piece->Data,
                    std::min<HX_U32>(piece->DataLength, sizeof piece->Data));
        if (piece->isLastPage != 0) return status;
    }
    return kFailed;
}

constexpr std::size_t kBiosHeaderSize = 64;

HX_U16 LittleEndian16(const HX_U8* at) { return static_cast<HX_U16>(at[0] | at[1] << 8); }

// Bytes other than digits are not refused; the numbers wrap at 16 bits.
HX_U16 Digit(const HX_U8* at) { return static_cast<HX_U16>(at[0] - '0'); }
HX_U16 TwoDigits(const HX_U8* at) {
    return static_cast<HX_U16>(10 * (at[0] - '0') + (at[1] - '0'));
}

// A file position in 32 bits: all ones when it does not fit.
HX_U32 Position(off_t position) {
    constexpr HX_U32 kNone = std::numeric_limits<HX_U32>::max();
    return position < 0 || position > off_t{kNone} ? kNone : static_cast<HX_U32>(position);
}

}  // namespace

HX_U8 HX_Flash_Option(HX_U8 AdapterID, HX_U8 Actions, HX_U8 Type, HX_U8* filename) {
    const char* const path = WholeText(filename, kFilePathSize);
    if (path == nullptr) return kFailed;
    if (Actions == HX_FLASH_WRITE) return SendImage(AdapterID, Type, path);
    if (Actions == HX_FLASH_READ) return ReceiveImage(AdapterID, Type, path);
    return HX_SUCCESS;
}

HX_U8 HX_BIOS_Version(HX_U8* filename, VX_BIOS_Version* BiosVersion) {
    const char* const path = WholeText(filename, kFilePathSize);
    if (path == nullptr) return kFailed;
    const Descriptor file = OpenForRead(path);
    if (!file.IsOpen()) return kFailed;
    HX_U8 header[kBiosHeaderSize];
    HX_U32 length;
    ReadFromFile(file.Get(), header, sizeof header, &length);
    if (length < sizeof header) return kFailed;
    const bool binary = header[6] < '0';
    BiosVersion->VersionInfo = {
        binary ? LittleEndian16(header + 6) : Digit(header + 6),
        binary ? LittleEndian16(header + 8) : Digit(header + 8),
        binary ? LittleEndian16(header + 10) : Digit(header + 10),
        binary ? LittleEndian16(header + 12) : TwoDigits(header + 12),
    };
    BiosVersion->SubVenID = LittleEndian16(header + 32);
    BiosVersion->SubDevID = LittleEndian16(header + 34);
    return HX_SUCCESS;
}

HX_U8 WriteToFile(int file, HX_U8* Data, HX_U32 size) {
    HX_U32 total = 0;
    while (total < size) {
        const ssize_t written = write(file, Data + total, size - total);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return kFailed;
        total += static_cast<HX_U32>(written);
    }
    return HX_SUCCESS;
}

HX_U8 ReadFromFile(int file, HX_U8* buf, HX_U32 len, HX_U32* ReadBytes) {
    *ReadBytes = static_cast<HX_U32>(::ReadBytes(file, reinterpret_cast<char*>(buf), len));
    return HX_SUCCESS;
}

HX_U32 GetFileLen(int file) {
    const off_t here = lseek(file, 0, SEEK_CUR);
    const off_t end = lseek(file, 0, SEEK_END);
    static_cast<void>(lseek(file, here, SEEK_SET));
    return Position(end);
}

HX_U32 FileSeek(int file, HX_I32 offset, HX_U32 whence) {
    return Position(lseek(file, offset, static_cast<int>(whence)));
}
